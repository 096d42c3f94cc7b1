// The bag set, a pool of heap bags, and the getter through which one bag is
// lent and given back.
#include "frame/lifecycle.hpp"
#include "vexpers/property.h"

namespace {

using Set = kstd_persistentPropertyBagSet;
using Bag = kstd_persistentPropertyBag;

// Creates one more bag at the end of the set, available. On failure the
// set's bags are unchanged (an array may have grown by an unused entry).
kstd_result createBag(Set* set) {
    Bag* bag = nullptr;
    VEXPERS_TRY(kstd_persistentPropertyBag_new(&bag));
    auto undo = vexpers::makeGuard([&] { kstd_persistentPropertyBag_delete(&bag); });
    const size_t count = static_cast<size_t>(set->numBags) + 1;
    void* bags = set->bags;
    VEXPERS_TRY(ksys_memory_realloc_internal(count * sizeof(Bag*), &bags));
    set->bags = static_cast<Bag**>(bags);
    void* flags = set->isAvailable;
    VEXPERS_TRY(ksys_memory_realloc_internal(count, &flags));
    set->isAvailable = static_cast<uint8_t*>(flags);
    set->bags[set->numBags] = bag;
    set->isAvailable[set->numBags] = 1;
    ++set->numBags;
    undo.dismiss();
    return 0;
}

// Lends a bag: one given back early (the highest such position) before the
// mark of bags lent since the last reset moves on, creating a bag when every
// one is lent.
kstd_result takeBag(Set* set, Bag** bag, int32_t* index) {
    for (int32_t i = set->numHandedOut - 1; i >= 0; --i) {
        if (set->isAvailable[i] != 0) {
            set->isAvailable[i] = 0;
            *bag = set->bags[i];
            *index = i;
            return 0;
        }
    }
    if (set->numBags == set->numHandedOut) VEXPERS_TRY(createBag(set));
    const int32_t next = set->numHandedOut;
    VEXPERS_REQUIRE(next < set->numBags && set->bags[next] != nullptr);
    VEXPERS_REQUIRE(set->isAvailable[next] != 0);
    set->isAvailable[next] = 0;
    *bag = set->bags[next];
    *index = next;
    ++set->numHandedOut;
    return 0;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBagSet_construct(kstd_persistentPropertyBagSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    *set = kstd_persistentPropertyBagSet{nullptr, 0, 0, nullptr};
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBagSet_assign(kstd_persistentPropertyBagSet* set,
                                                                const kstd_persistentPropertyBagSet* source) {
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    // Sets own their bags and are never copied.
    VEXPERS_REQUIRE(set == source);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBagSet_reset(kstd_persistentPropertyBagSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    for (int32_t i = 0; i < set->numHandedOut; ++i) set->isAvailable[i] = 1;
    set->numHandedOut = 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBagSet_destruct(kstd_persistentPropertyBagSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_REQUIRE(set->numHandedOut >= 0 && set->numHandedOut <= set->numBags);
    VEXPERS_REQUIRE(set->numBags == 0 || (set->bags != nullptr && set->isAvailable != nullptr));
    for (int32_t i = set->numHandedOut; i < set->numBags; ++i) VEXPERS_REQUIRE(set->isAvailable[i] != 0);
    set->numHandedOut = 0;
    for (int32_t i = 0; i < set->numBags; ++i) set->isAvailable[i] = 0;
    // Every bag goes, last first; the first failure is reported.
    kstd_result first = 0;
    for (int32_t i = set->numBags - 1; i >= 0; --i) {
        const kstd_result result = kstd_persistentPropertyBag_delete(&set->bags[i]);
        if (!vexpers::failed(first) && vexpers::failed(result)) first = result;
    }
    set->numBags = 0;
    void* bags = set->bags;
    void* flags = set->isAvailable;
    ksys_memory_free_internal(&bags);
    ksys_memory_free_internal(&flags);
    set->bags = nullptr;
    set->isAvailable = nullptr;
    return first;
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyBagSet)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyBagSet)

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBagSetNewBagGetter_construct(
    kstd_persistentPropertyBagSetNewBagGetter* getter, kstd_persistentPropertyBagSet* set,
    kstd_persistentPropertyBag** bag) {
    VEXPERS_REQUIRE(getter != nullptr);
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_REQUIRE(bag != nullptr);
    *bag = nullptr;
    getter->bagSet = set;
    getter->bag = nullptr;
    getter->index = -1;
    VEXPERS_TRY(takeBag(set, &getter->bag, &getter->index));
    *bag = getter->bag;
    return 0;
}

VEXPERS_EXPORT kstd_result
kstd_persistentPropertyBagSetNewBagGetter_destruct(kstd_persistentPropertyBagSetNewBagGetter* getter) {
    VEXPERS_REQUIRE(getter != nullptr);
    Set* set = getter->bagSet;
    const int32_t index = getter->index;
    if (set != nullptr && getter->bag != nullptr && index >= 0 && index < set->numBags && set->bags != nullptr &&
        set->isAvailable != nullptr && set->bags[index] == getter->bag)
        set->isAvailable[index] = 1;
    getter->bag = nullptr;
    getter->index = -1;
    return 0;
}

VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyBagSetNewBagGetter)
