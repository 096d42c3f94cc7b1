// The bag's typed family: add, get and transfer of each scalar, character
// and unicode-string type, and the string adds. Each member is a thin shim
// over one worker that takes the property's typed functions.
#include <type_traits>

#include "property/bag_internal.hpp"
#include "property/typed_family.hpp"

namespace vexpers::property {
namespace {

// T is the value as the add takes it, Out what the get writes to.
template <class T, class Out, kstd_result (*Reset)(Property*, const char16_t*, uint32_t, T),
          kstd_result (*Get)(const Property*, Out*)>
struct BagTyped {
    static kstd_result add(Bag* bag, const char16_t* name, uint32_t dataAccess, T value) {
        return addWith(bag, name, [&](Property* slot) { return Reset(slot, name, dataAccess, value); });
    }

    // Scalars and characters read 0 until a value is read. The data access
    // is written before the value is read.
    static kstd_result get(const Bag* bag, const char16_t* name, uint32_t* dataAccess, Out* value) {
        VEXPERS_REQUIRE(bag != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        if constexpr (std::is_arithmetic_v<Out>) *value = 0;
        const Property* found = findInUse(bag, name);
        if (found == nullptr) return kstd_persistentResult_propertyNotFound;
        if (dataAccess != nullptr) *dataAccess = found->info.dataAccess;
        return Get(found, value);
    }

    static kstd_result transfer(Bag* bag, const char16_t* name, uint32_t* dataAccess, Out* value) {
        VEXPERS_REQUIRE(bag != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        if (bag->isStoring == 0) return get(bag, name, dataAccess, value);
        const uint32_t access = dataAccess != nullptr ? *dataAccess : 2;
        if constexpr (std::is_pointer_v<T>)
            return add(bag, name, access, value);  // the value is passed by address
        else
            return add(bag, name, access, *value);
    }
};

}  // namespace
}  // namespace vexpers::property

#define VEXPERS_BAG_TYPED_MEMBERS(stem, T, Out)                                                                \
    namespace {                                                                                                \
    using Bag_##stem = ::vexpers::property::BagTyped<T, Out, kstd_persistentProperty_resetInfoAndValue_##stem, \
                                                     kstd_persistentProperty_getValue_##stem>;                 \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValue_##stem(                                     \
        kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t dataAccess, T value) {                 \
        return Bag_##stem::add(bag, name, dataAccess, value);                                                  \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getValue_##stem(                                     \
        const kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t* dataAccess, Out* value) {       \
        return Bag_##stem::get(bag, name, dataAccess, value);                                                  \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_transferValue_##stem(                                \
        kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t* dataAccess, Out* value) {             \
        return Bag_##stem::transfer(bag, name, dataAccess, value);                                             \
    }

#define VEXPERS_BAG_TYPED(id, stem, ctype) VEXPERS_BAG_TYPED_MEMBERS(stem, ctype, ctype)
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype) VEXPERS_PROPERTY_MEMBER(VEXPERS_BAG_TYPED, id, stem, ctype)
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
#undef VEXPERS_BAG_TYPED

VEXPERS_BAG_TYPED_MEMBERS(kstd_unicodeString, const kstd_unicodeString*, kstd_unicodeString)

#define VEXPERS_STRING_FORM(id, suffix, unit)                                                           \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValue##suffix(                             \
        kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t dataAccess, const unit* text) { \
        return ::vexpers::property::addWith(bag, name, [&](kstd_persistentProperty* slot) {             \
            return kstd_persistentProperty_resetInfoAndValue##suffix(slot, name, dataAccess, text);     \
        });                                                                                             \
    }
#include "generated/string_forms.def"
#undef VEXPERS_STRING_FORM
