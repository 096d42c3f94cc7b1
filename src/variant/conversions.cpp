// The five base readers with their conversions between the integer, boolean
// and floating categories, the setters under a caller-chosen type, and the
// text form of a held value.
#include <cfloat>
#include <cmath>
#include <limits>

#include "variant/variant_internal.hpp"

namespace vexpers::variant {

Group groupOf(const TypeFacts& facts) {
    const uint32_t derivation = facts.derivation;
    if (derivation != kstd_persistentTypeDerivation_value && derivation != kstd_persistentTypeDerivation_bitfield)
        return Group::notValue;
    if (isReservedCoreType(facts.coreTypeId)) return Group::reserved;
    const bool plain = derivation == kstd_persistentTypeDerivation_value;
    switch (facts.category) {
        case kstd_persistentTypeCategory_int: return plain ? Group::signedInteger : Group::other;
        case kstd_persistentTypeCategory_uint: return plain ? Group::unsignedInteger : Group::other;
        case kstd_persistentTypeCategory_enum: return plain ? Group::signedInteger : Group::unsignedInteger;
        case kstd_persistentTypeCategory_bool: return Group::boolean;
        case kstd_persistentTypeCategory_float: return Group::floating;
        case kstd_persistentTypeCategory_char: return Group::character;
        case kstd_persistentTypeCategory_string: return Group::string;
        case kstd_persistentTypeCategory_object: return Group::object;
        default: return Group::other;
    }
}

namespace {

constexpr double twoPow63 = 9223372036854775808.0;
constexpr double twoPow64 = 18446744073709551616.0;

// The group of the held value; a failing type query is returned.
kstd_result heldGroup(const Variant* variant, Group* group) {
    TypeFacts facts{};
    VEXPERS_TRY(describeType(&variant->type, &facts));
    *group = groupOf(facts);
    return 0;
}

// The failure a reader returns for a group it does not convert. The integer
// readers refuse characters as not supported; the boolean and floating
// readers as a type mismatch.
kstd_result refusal(Group group, bool integerReader) {
    switch (group) {
        case Group::notValue: return kstd_persistentResult_typeMismatch;
        case Group::reserved: return kstd_persistentResult_notSupported;
        case Group::character:
            return integerReader ? kstd_persistentResult_notSupported : kstd_persistentResult_typeMismatch;
        case Group::string: return kstd_persistentResult_notSupported;  // texts are not parsed
        case Group::object: return kstd_persistentResult_typeMismatch;
        default: return kstd_persistentResult_invalidTypeCategory;
    }
}

// Halves round away from zero. NaN and values outside [-2^63, 2^63) do not fit.
kstd_result doubleToInt64(double x, int64_t* value) {
    if (!(x >= -twoPow63 && x < twoPow63)) return kstd_persistentResult_valueOutOfRange;
    *value = static_cast<int64_t>(std::round(x));
    return 0;
}

// Halves round up. NaN, negative values and values from 2^64 on do not fit;
// -0.0 is 0.
kstd_result doubleToUInt64(double x, uint64_t* value) {
    if (!(x >= 0.0 && x < twoPow64)) return kstd_persistentResult_valueOutOfRange;
    *value = static_cast<uint64_t>(std::round(x));
    return 0;
}

}  // namespace

kstd_result readInt64(const Variant* variant, int64_t* value) {
    *value = 0;
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    switch (group) {
        case Group::signedInteger: *value = variant->value.int64; return 0;
        case Group::unsignedInteger:
            if (variant->value.uint64 > static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
                return kstd_persistentResult_valueOutOfRange;
            *value = static_cast<int64_t>(variant->value.uint64);
            return 0;
        case Group::boolean: *value = variant->value.boolean; return 0;
        case Group::floating: return doubleToInt64(variant->value.float64, value);
        default: return refusal(group, true);
    }
}

kstd_result readUInt64(const Variant* variant, uint64_t* value) {
    *value = 0;
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    switch (group) {
        case Group::signedInteger:
            if (variant->value.int64 < 0) return kstd_persistentResult_valueOutOfRange;
            *value = static_cast<uint64_t>(variant->value.int64);
            return 0;
        case Group::unsignedInteger: *value = variant->value.uint64; return 0;
        case Group::boolean: *value = variant->value.boolean != 0 ? 1 : 0; return 0;
        case Group::floating: return doubleToUInt64(variant->value.float64, value);
        default: return refusal(group, true);
    }
}

kstd_result readBool(const Variant* variant, int32_t* value) {
    *value = 0;
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    switch (group) {
        case Group::signedInteger: *value = variant->value.int64 != 0 ? 1 : 0; return 0;
        case Group::unsignedInteger: *value = variant->value.uint64 != 0 ? 1 : 0; return 0;
        case Group::boolean: *value = variant->value.boolean; return 0;
        case Group::floating: *value = variant->value.float64 != 0.0 ? 1 : 0; return 0;  // NaN reads as 1
        default: return refusal(group, false);
    }
}

kstd_result readFloat(const Variant* variant, float* value) {
    *value = 0;
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    switch (group) {
        case Group::signedInteger: *value = static_cast<float>(variant->value.int64); return 0;
        case Group::unsignedInteger: *value = static_cast<float>(variant->value.uint64); return 0;
        case Group::boolean: *value = variant->value.boolean != 0 ? 1.0f : 0.0f; return 0;
        case Group::floating: {
            // Beyond the float range (infinities included) the destination
            // gets the largest float of that sign and the code reports it.
            const double x = variant->value.float64;
            if (x < -static_cast<double>(FLT_MAX)) {
                *value = -FLT_MAX;
                return kstd_persistentResult_floatRangeExceeded;
            }
            if (x > static_cast<double>(FLT_MAX)) {
                *value = FLT_MAX;
                return kstd_persistentResult_floatRangeExceeded;
            }
            *value = static_cast<float>(x);  // a NaN stays a NaN
            return 0;
        }
        default: return refusal(group, false);
    }
}

kstd_result readDouble(const Variant* variant, double* value) {
    *value = 0;
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    switch (group) {
        case Group::signedInteger: *value = static_cast<double>(variant->value.int64); return 0;
        case Group::unsignedInteger: *value = static_cast<double>(variant->value.uint64); return 0;
        case Group::boolean: *value = variant->value.boolean != 0 ? 1.0 : 0.0; return 0;
        case Group::floating: *value = variant->value.float64; return 0;
        default: return refusal(group, false);
    }
}

namespace {

// Stores under a caller-chosen type of one category: the checks come first,
// so a refused type leaves the variant as it was.
template <class Store>
kstd_result setUsingType(Variant* variant, const kstd_persistentType* type, uint32_t category, Store store) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    TypeFacts facts{};
    VEXPERS_TRY(describeType(type, &facts));
    if (facts.category != category) return kstd_persistentResult_wrongTypeKind;
    if (isReservedCoreType(facts.coreTypeId)) return kstd_persistentResult_notSupported;
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    store(variant->value);
    return 0;
}

// Text forms are made in 8-bit characters and widened.
struct TextBuffer {
    static constexpr int capacity = 512;
    char16_t units[capacity];

    void widen(const char* first, const char* last) {
        int n = 0;
        for (; first != last && n < capacity - 1; ++first) units[n++] = static_cast<unsigned char>(*first);
        units[n] = 0;
    }
    // Decimal digits, a minus sign for negative values. Written by hand:
    // std::to_chars would export a table of the standard library from the
    // shared library.
    void decimal(int64_t value) {
        const bool negative = value < 0;
        // The magnitude as unsigned, which also holds that of the smallest value.
        const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
        digits(magnitude, negative);
    }
    void decimal(uint64_t value) { digits(value, false); }
    void digits(uint64_t magnitude, bool negative) {
        char text[24];
        char* first = text + sizeof text;
        do {
            *--first = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (negative) *--first = '-';
        widen(first, text + sizeof text);
    }
    void pointer(const void* value) {
        // 16 upper-case hexadecimal digits, zero-padded, no prefix.
        static constexpr char hex[] = "0123456789ABCDEF";
        auto bits = reinterpret_cast<uintptr_t>(value);
        char digits[16];
        for (int i = 15; i >= 0; --i, bits >>= 4) digits[i] = hex[bits & 0xF];
        widen(digits, digits + 16);
    }
    void literal(const char* text) {
        const char* end = text;
        while (*end != 0) ++end;
        widen(text, end);
    }
};

}  // namespace

}  // namespace vexpers::variant

using namespace vexpers::variant;

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingType_k_Int64_(kstd_persistentVariant* variant,
                                                                             const kstd_persistentType* type,
                                                                             int64_t value) {
    return setUsingType(variant, type, kstd_persistentTypeCategory_int,
                        [value](kstd_persistentVariantValue& stored) { stored.int64 = value; });
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingType_k_UInt64_(kstd_persistentVariant* variant,
                                                                              const kstd_persistentType* type,
                                                                              uint64_t value) {
    return setUsingType(variant, type, kstd_persistentTypeCategory_uint,
                        [value](kstd_persistentVariantValue& stored) { stored.uint64 = value; });
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingType_k_Bool_(kstd_persistentVariant* variant,
                                                                            const kstd_persistentType* type,
                                                                            int32_t value) {
    return setUsingType(variant, type, kstd_persistentTypeCategory_bool,
                        [value](kstd_persistentVariantValue& stored) { stored.boolean = value; });
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingType_double_(kstd_persistentVariant* variant,
                                                                            const kstd_persistentType* type,
                                                                            double value) {
    return setUsingType(variant, type, kstd_persistentTypeCategory_float,
                        [value](kstd_persistentVariantValue& stored) { stored.float64 = value; });
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueAsString(const kstd_persistentVariant* variant,
                                                                   kstd_stringConst* text) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(text != nullptr);
    Group group{};
    VEXPERS_TRY(heldGroup(variant, &group));
    TextBuffer buffer;
    switch (group) {
        case Group::string: {
            const char16_t* chars = nullptr;
            VEXPERS_TRY(kstd_unicodeStringConst_getStringW(&variant->stringValue, &chars, nullptr));
            return kstd_stringConst_assignString(text, chars);
        }
        case Group::signedInteger: buffer.decimal(variant->value.int64); break;
        case Group::unsignedInteger: buffer.decimal(variant->value.uint64); break;
        case Group::boolean: buffer.literal(variant->value.boolean != 0 ? "true" : "false"); break;
        case Group::floating:
            VEXPERS_TRY(ksys_clxSprintf_double(buffer.units, "%.20g", variant->value.float64));
            break;
        case Group::object: buffer.pointer(variant->value.pointer); break;
        case Group::notValue:
        case Group::reserved:
        case Group::character: return kstd_persistentResult_notSupported;
        case Group::other:
            VEXPERS_TRY(kstd_stringConst_resetEmptyString(text));
            return kstd_persistentResult_invalidTypeCategory;
    }
    return kstd_stringConst_assignString(text, buffer.units);
}
