// The variant's three functions for each built-in object type, expanded from
// generated/builtin_types.def: a borrowed object set, a copy out through the
// type's assignment, and the held object's address.
#include "frame/frame.hpp"
#include "variant/variant_internal.hpp"

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

kstd_result setBorrowed(kstd_persistentVariant* variant, GetTypeFn getType, const void* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentVariant_setValueUsingType(variant, type.get(), value);
}

kstd_result copyOut(const kstd_persistentVariant* variant, GetTypeFn getType, void* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    BuiltinType type;
    VEXPERS_TRY(type.fetch(getType));
    return kstd_persistentType_assignObjectFromVariant(type.get(), value, variant);
}

kstd_result heldObject(const kstd_persistentVariant* variant, kstd_result (*registerType)(), const void** value) {
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_TRY(registerType());
    uint32_t category = kstd_persistentTypeCategory_object;
    if (vexpers::failed(kstd_persistentType_getTypeCategory(&variant->type, &category)) ||
        category != kstd_persistentTypeCategory_object)
        return kstd_persistentResult_typeMismatch;
    *value = variant->value.pointer;
    return 0;
}

}  // namespace

#define VEXPERS_BUILTIN_TRIO(stem)                                                                            \
    VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValue_##stem(kstd_persistentVariant* variant,        \
                                                                      const stem* value) {                    \
        return setBorrowed(variant, kstd_persistentTypeGetType_##stem, value);                                \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValue_##stem(const kstd_persistentVariant* variant,  \
                                                                      stem* value) {                          \
        return copyOut(variant, kstd_persistentTypeGetType_##stem, value);                                    \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValuePtrConst_##stem(                                \
        const kstd_persistentVariant* variant, const stem** value) {                                          \
        VEXPERS_REQUIRE(value != nullptr);                                                                    \
        const void* held = nullptr;                                                                           \
        const kstd_result result = heldObject(variant, kstd_persistentTypeRegisterType_##stem, &held);        \
        *value = static_cast<const stem*>(held);                                                              \
        return result;                                                                                        \
    }
#define VEXPERS_BUILTIN_SHARED_POINTER(stem) VEXPERS_BUILTIN_TRIO(stem)
#define VEXPERS_BUILTIN_VECTOR(stem, element, item, stride) VEXPERS_BUILTIN_TRIO(stem)
#include "generated/builtin_types.def"
#undef VEXPERS_BUILTIN_SHARED_POINTER
#undef VEXPERS_BUILTIN_VECTOR
#undef VEXPERS_BUILTIN_TRIO
