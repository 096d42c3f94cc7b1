// The property's typed family: the combined reset and the typed get of each
// scalar, character and unicode-string type, and the string forms. Each
// member is a thin shim over one worker.
#include "property/typed_family.hpp"
#include "vexpers/property.h"

namespace vexpers::property {
namespace {

using Property = kstd_persistentProperty;
using Variant = kstd_persistentVariant;

// Declares the property of core type `id`, then stores the value with `set`.
template <class T>
kstd_result resetTyped(Property* property, const char16_t* name, uint32_t dataAccess, int32_t id, T value,
                       kstd_result (*set)(Variant*, T)) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&property->info, name, id, dataAccess));
    return set(&property->value, value);
}

// Reads the value with `get` (which clears *value first).
template <class T>
kstd_result getTyped(const Property* property, T* value, kstd_result (*get)(const Variant*, T*)) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return get(&property->value, value);
}

}  // namespace
}  // namespace vexpers::property

using vexpers::property::getTyped;
using vexpers::property::resetTyped;

#define VEXPERS_PROPERTY_TYPED(id, stem, ctype)                                                                  \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValue_##stem(                                 \
        kstd_persistentProperty* property, const char16_t* name, uint32_t dataAccess, ctype value) {             \
        return resetTyped<ctype>(property, name, dataAccess, id, value, kstd_persistentVariant_setValue_##stem); \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValue_##stem(const kstd_persistentProperty* property,  \
                                                                       ctype* value) {                           \
        return getTyped<ctype>(property, value, kstd_persistentVariant_getValue_##stem);                         \
    }
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype) \
    VEXPERS_PROPERTY_MEMBER(VEXPERS_PROPERTY_TYPED, id, stem, ctype)
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
#undef VEXPERS_PROPERTY_TYPED

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_unicodeString(
    kstd_persistentProperty* property, const char16_t* name, uint32_t dataAccess, const kstd_unicodeString* value) {
    return resetTyped<const kstd_unicodeString*>(property, name, dataAccess,
                                                 kstd_persistentCoreTypeId_kstd_unicodeString, value,
                                                 kstd_persistentVariant_setValue_kstd_unicodeString);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValue_kstd_unicodeString(
    const kstd_persistentProperty* property, kstd_unicodeString* value) {
    return getTyped<kstd_unicodeString>(property, value, kstd_persistentVariant_getValue_kstd_unicodeString);
}

#define VEXPERS_STRING_FORM(id, suffix, unit)                                                             \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValue##suffix(                         \
        kstd_persistentProperty* property, const char16_t* name, uint32_t dataAccess, const unit* text) { \
        return resetTyped<const unit*>(property, name, dataAccess, id, text,                              \
                                       kstd_persistentVariant_setValue##suffix);                          \
    }                                                                                                     \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValueClone##suffix(                             \
        const kstd_persistentProperty* property, unit** value) {                                          \
        return getTyped<unit*>(property, value, kstd_persistentVariant_getValueClone##suffix);            \
    }
#include "generated/string_forms.def"
#undef VEXPERS_STRING_FORM
