#include "tree/shared_object_index.hpp"

#include <bit>
#include <cstdint>

#include "frame/frame.hpp"

namespace vexpers::tree::sharedindex {
namespace {

struct Slot {
    const void* key;  // null: free
    int32_t position;
};

struct Header {
    uint32_t capacity;  // a power of two
    uint32_t keys;
    int64_t described;  // positions of the list the index describes
};

Slot* slotsOf(Header* header) { return reinterpret_cast<Slot*>(header + 1); }
const Slot* slotsOf(const Header* header) { return reinterpret_cast<const Slot*>(header + 1); }

uint32_t homeOf(const void* key, uint32_t capacity) {
    uint64_t bits = reinterpret_cast<uintptr_t>(key);
    bits ^= bits >> 33;
    bits *= 0xff51afd7ed558ccdULL;
    bits ^= bits >> 33;
    return static_cast<uint32_t>(bits) & (capacity - 1);
}

// Inserts `key` unless present (there is room).
void insert(Header* header, const void* key, int32_t position) {
    Slot* slots = slotsOf(header);
    for (uint32_t at = homeOf(key, header->capacity);; at = (at + 1) & (header->capacity - 1)) {
        if (slots[at].key == key) return;
        if (slots[at].key == nullptr) {
            slots[at] = Slot{key, position};
            ++header->keys;
            return;
        }
    }
}

kstd_result allocate(uint32_t capacity, Header** header) {
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(Header) + size_t(capacity) * sizeof(Slot), &memory));
    *header = static_cast<Header*>(memory);
    (*header)->capacity = capacity;
    (*header)->keys = 0;
    (*header)->described = 0;
    Slot* slots = slotsOf(*header);
    for (uint32_t i = 0; i < capacity; ++i) slots[i] = Slot{nullptr, -1};
    return 0;
}

// Room for `keys` keys at a load of at most one half.
uint32_t capacityFor(uint64_t keys) { return std::bit_ceil(static_cast<uint32_t>(keys < 8 ? 16 : keys * 2)); }

}  // namespace

kstd_result wholeObjectOf(const kstd_persistentVariant* value, const void** whole, bool* heldByValue) {
    *whole = nullptr;
    *heldByValue = false;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentType_getTypeDerivation(&value->type, &derivation));
    if (derivation == kstd_persistentTypeDerivation_array || derivation == kstd_persistentTypeDerivation_bitfieldArray)
        return 0;
    void* object = value->value.pointer;
    if (object == nullptr) return 0;
    if (derivation != kstd_persistentTypeDerivation_pointer) {
        uint32_t category = 0;
        VEXPERS_TRY(kstd_persistentType_getTypeCategory(&value->type, &category));
        if (category != kstd_persistentTypeCategory_object) return 0;
        uint32_t shareable = 0;
        VEXPERS_TRY(kstd_persistentType_getIsObjectShareable(&value->type, object, &shareable));
        if (shareable == 0) return 0;
        *heldByValue = derivation == kstd_persistentTypeDerivation_value;
    }
    void* shared = nullptr;
    VEXPERS_TRY(kstd_ptrh_getWholeShared(&value->sharedObject, &shared));
    *whole = shared != nullptr ? shared : object;
    return 0;
}

kstd_result prepare(void** index, const kstd_vector_kstd_persistentVariant* objects) {
    const kstd_persistentVariant* begin = nullptr;
    intptr_t size = 0;
    VEXPERS_TRY(kstd_vector_kstd_persistentVariant_getBeginSizeIntPtrConst(objects, &begin, &size));
    auto* header = static_cast<Header*>(*index);
    if (header != nullptr && header->described == size && uint64_t(header->keys + 1) * 2 <= header->capacity)
        return 0;
    // Rebuild (or grow) from the list itself: the first position of each
    // whole-object pointer wins, as in the search from the start.
    Header* fresh = nullptr;
    VEXPERS_TRY(allocate(capacityFor(uint64_t(size) + 1), &fresh));
    for (intptr_t position = 0; position < size; ++position) {
        const void* whole = nullptr;
        bool heldByValue = false;
        if (failed(wholeObjectOf(&begin[position], &whole, &heldByValue)) || whole == nullptr) continue;
        insert(fresh, whole, static_cast<int32_t>(position));
    }
    fresh->described = size;
    release(index);
    *index = fresh;
    return 0;
}

int32_t find(const void* index, const void* whole) {
    const auto* header = static_cast<const Header*>(index);
    const Slot* slots = slotsOf(header);
    for (uint32_t at = homeOf(whole, header->capacity);; at = (at + 1) & (header->capacity - 1)) {
        if (slots[at].key == whole) return slots[at].position;
        if (slots[at].key == nullptr) return -1;
    }
}

void record(void* index, const void* whole, int32_t position) {
    auto* header = static_cast<Header*>(index);
    insert(header, whole, position);
    header->described = int64_t(position) + 1;
}

void release(void** index) { ksys_memory_free_internal(index); }

}  // namespace vexpers::tree::sharedindex
