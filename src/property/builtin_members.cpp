// The typed property and bag members of the built-in object types, expanded
// from generated/builtin_types.def. Each fetches the type's registered
// descriptor (registering the type on first use) and calls the UsingType
// operation of the same name with it.
#include "vexpers/property.h"

#include "frame/frame.hpp"

namespace {

using GetTypeFn = kstd_result (*)(kstd_persistentType*, uint32_t);

// The registered type of a built-in object type in a handle of its own.
class BuiltinType {
public:
    BuiltinType() { kstd_persistentType_construct(&type_); }
    ~BuiltinType() { kstd_persistentType_destruct(&type_); }
    BuiltinType(const BuiltinType&) = delete;
    BuiltinType& operator=(const BuiltinType&) = delete;
    kstd_result fetch(GetTypeFn getType) { return getType(&type_, 1); }
    const kstd_persistentType* get() const { return &type_; }

private:
    kstd_persistentType type_;
};

kstd_result resetInfoAndValue(kstd_persistentProperty* property, GetTypeFn getType, const char16_t* name,
                              uint32_t dataAccess, const void* value) {
    VEXPERS_REQUIRE(property != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentProperty_resetInfoAndValueUsingType(property, type.get(), name, dataAccess, value);
}

kstd_result addValue(kstd_persistentPropertyBag* bag, GetTypeFn getType, const char16_t* name, uint32_t dataAccess,
                     const void* value) {
    VEXPERS_REQUIRE(bag != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentPropertyBag_addValueUsingType(bag, type.get(), name, dataAccess, value);
}

kstd_result getValue(const kstd_persistentPropertyBag* bag, GetTypeFn getType, const char16_t* name,
                     uint32_t* dataAccess, void* value) {
    VEXPERS_REQUIRE(bag != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentPropertyBag_getValueUsingType(bag, type.get(), name, dataAccess, value);
}

kstd_result getValuePtrConst(const kstd_persistentPropertyBag* bag, GetTypeFn getType, const char16_t* name,
                             uint32_t* dataAccess, const void** value) {
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    VEXPERS_REQUIRE(bag != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentPropertyBag_getValuePtrConstUsingType(bag, type.get(), name, dataAccess, value);
}

kstd_result transferValue(kstd_persistentPropertyBag* bag, GetTypeFn getType, const char16_t* name,
                          uint32_t* dataAccess, void* value) {
    VEXPERS_REQUIRE(bag != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentPropertyBag_transferValueUsingType(bag, type.get(), name, dataAccess, value);
}

}  // namespace

// The members every built-in type has.
#define VEXPERS_BUILTIN_MEMBERS(stem)                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValue_##stem(                               \
        kstd_persistentProperty* property, const char16_t* name, uint32_t dataAccess, const stem* value) {      \
        return resetInfoAndValue(property, kstd_persistentTypeGetType_##stem, name, dataAccess, value);        \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValue_##stem(const kstd_persistentProperty* property, \
                                                                       stem* value) {                          \
        VEXPERS_REQUIRE(property != nullptr);                                                                  \
        return kstd_persistentVariant_getValue_##stem(&property->value, value);                                \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValuePtrConst_##stem(                                \
        const kstd_persistentProperty* property, const stem** value) {                                         \
        VEXPERS_REQUIRE(property != nullptr);                                                                  \
        return kstd_persistentVariant_getValuePtrConst_##stem(&property->value, value);                        \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValue_##stem(                                     \
        kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t dataAccess, const stem* value) {       \
        return addValue(bag, kstd_persistentTypeGetType_##stem, name, dataAccess, value);                      \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getValue_##stem(                                     \
        const kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t* dataAccess, stem* value) {      \
        return getValue(bag, kstd_persistentTypeGetType_##stem, name, dataAccess, value);                      \
    }                                                                                                          \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_transferValue_##stem(                                \
        kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t* dataAccess, stem* value) {            \
        return transferValue(bag, kstd_persistentTypeGetType_##stem, name, dataAccess, value);                 \
    }

#define VEXPERS_BUILTIN_SHARED_POINTER(stem) VEXPERS_BUILTIN_MEMBERS(stem)
// The vectors also hand out the address of the value a bag holds.
#define VEXPERS_BUILTIN_VECTOR(stem, element, item, stride)                                                    \
    VEXPERS_BUILTIN_MEMBERS(stem)                                                                              \
    VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getValuePtrConst_##stem(                             \
        const kstd_persistentPropertyBag* bag, const char16_t* name, uint32_t* dataAccess, const stem** value) { \
        VEXPERS_REQUIRE(value != nullptr);                                                                     \
        const void* held = nullptr;                                                                            \
        const kstd_result result = getValuePtrConst(bag, kstd_persistentTypeGetType_##stem, name, dataAccess, &held); \
        *value = static_cast<const stem*>(held);                                                               \
        return result;                                                                                         \
    }
#include "generated/builtin_types.def"
#undef VEXPERS_BUILTIN_SHARED_POINTER
#undef VEXPERS_BUILTIN_VECTOR
#undef VEXPERS_BUILTIN_MEMBERS
