// String values of the variant: the string sets, the shared string get and
// the clone getters.
#include "variant/variant_internal.hpp"

namespace vexpers::variant {
namespace {

// Holds the string core type `id`, then stores the text through `assign`.
template <class Text>
kstd_result setString(Variant* variant, int32_t id, Text text,
                      kstd_result (*assign)(kstd_unicodeStringConst*, Text)) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_TRY(holdCoreType(variant, id));
    return assign(&variant->stringValue, text);
}

// The held value as a constant string: the string itself (shared), or the
// text form of a scalar.
kstd_result getString(const Variant* variant, kstd_unicodeStringConst* value) {
    VEXPERS_TRY(kstd_unicodeStringConst_reset(value));
    TypeFacts facts{};
    VEXPERS_TRY(describeType(&variant->type, &facts));
    if (facts.derivation != kstd_persistentTypeDerivation_value &&
        facts.derivation != kstd_persistentTypeDerivation_bitfield)
        return kstd_persistentResult_typeMismatch;
    if (facts.category == kstd_persistentTypeCategory_string)
        return kstd_unicodeStringConst_assign(value, &variant->stringValue);
    if (facts.category == kstd_persistentTypeCategory_char) return kstd_persistentResult_notSupported;
    kstd_stringConst text;
    VEXPERS_TRY(kstd_stringConst_construct(&text));
    VEXPERS_DEFER { kstd_stringConst_destruct(&text); };
    VEXPERS_TRY(kstd_persistentVariant_getValueAsString(variant, &text));
    const char16_t* chars = nullptr;
    VEXPERS_TRY(kstd_stringConst_getString(&text, &chars));
    return kstd_unicodeStringConst_assignStringW(value, chars);
}

// The held value as a new text made by `clone`.
template <class Unit>
kstd_result getClone(const Variant* variant, Unit** value,
                     kstd_result (*clone)(const kstd_unicodeStringConst*, Unit**)) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    kstd_unicodeStringConst text;
    VEXPERS_TRY(kstd_unicodeStringConst_construct(&text));
    VEXPERS_DEFER { kstd_unicodeStringConst_destruct(&text); };
    VEXPERS_TRY(getString(variant, &text));
    return clone(&text, value);
}

}  // namespace
}  // namespace vexpers::variant

using namespace vexpers::variant;

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValue_kstd_unicodeString(kstd_persistentVariant* variant,
                                                                              const kstd_unicodeString* value) {
    VEXPERS_REQUIRE(value != nullptr);
    return setString(variant, kstd_persistentCoreTypeId_kstd_unicodeString, value,
                     kstd_unicodeStringConst_assignUnicodeString);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueStringA(kstd_persistentVariant* variant, const char* value) {
    return setString(variant, kstd_persistentCoreTypeId_stringA, value, kstd_unicodeStringConst_assignStringA);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueStringW(kstd_persistentVariant* variant,
                                                                  const char16_t* value) {
    return setString(variant, kstd_persistentCoreTypeId_stringW, value, kstd_unicodeStringConst_assignStringW);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueStringT(kstd_persistentVariant* variant,
                                                                  const char16_t* value) {
    return setString(variant, kstd_persistentCoreTypeId_stringT, value, kstd_unicodeStringConst_assignStringW);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueString16(kstd_persistentVariant* variant,
                                                                   const char16_t* value) {
    return setString(variant, kstd_persistentCoreTypeId_string16, value, kstd_unicodeStringConst_assignString16);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueString32(kstd_persistentVariant* variant,
                                                                   const char32_t* value) {
    return setString(variant, kstd_persistentCoreTypeId_string32, value, kstd_unicodeStringConst_assignString32);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValue_kstd_unicodeStringConst(
    const kstd_persistentVariant* variant, kstd_unicodeStringConst* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return getString(variant, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValue_kstd_unicodeString(const kstd_persistentVariant* variant,
                                                                             kstd_unicodeString* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    VEXPERS_TRY(kstd_unicodeString_reset(value));
    kstd_unicodeStringConst text;
    VEXPERS_TRY(kstd_unicodeStringConst_construct(&text));
    VEXPERS_DEFER { kstd_unicodeStringConst_destruct(&text); };
    VEXPERS_TRY(getString(variant, &text));
    return kstd_unicodeString_assignUnicodeStringConst(value, &text);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueCloneStringA(const kstd_persistentVariant* variant,
                                                                       char** value) {
    return getClone(variant, value, kstd_unicodeStringConst_getCloneStringA);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueCloneStringW(const kstd_persistentVariant* variant,
                                                                       char16_t** value) {
    return getClone(variant, value, kstd_unicodeStringConst_getCloneStringW);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueCloneStringT(const kstd_persistentVariant* variant,
                                                                       char16_t** value) {
    return getClone(variant, value, kstd_unicodeStringConst_getCloneStringT);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueCloneString16(const kstd_persistentVariant* variant,
                                                                        char16_t** value) {
    return getClone(variant, value, kstd_unicodeStringConst_getCloneString16);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueCloneString32(const kstd_persistentVariant* variant,
                                                                        char32_t** value) {
    return getClone(variant, value, kstd_unicodeStringConst_getCloneString32);
}
