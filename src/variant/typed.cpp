// The typed sets and gets of the variant, one worker per type category,
// expanded for every usable core type into thin typed entry points.
#include <type_traits>

#include "variant/variant_internal.hpp"

namespace vexpers::variant {
namespace {

template <uint32_t Category>
struct Typed;

// Signed integers: stored sign-extended; read through the 64-bit signed
// reader, then checked against the width of T.
template <>
struct Typed<kstd_persistentTypeCategory_int> {
    template <class T>
    static kstd_result set(Variant* variant, int32_t id, T value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_TRY(holdCoreType(variant, id));
        variant->value.int64 = static_cast<int64_t>(value);
        return 0;
    }
    template <class T>
    static kstd_result get(const Variant* variant, T* value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        *value = 0;
        int64_t wide = 0;
        VEXPERS_TRY(readInt64(variant, &wide));
        if (static_cast<int64_t>(static_cast<T>(wide)) != wide) return kstd_persistentResult_valueOutOfRange;
        *value = static_cast<T>(wide);
        return 0;
    }
};

// Unsigned integers: stored zero-extended; read through the 64-bit unsigned
// reader, then checked for bits above the width of T.
template <>
struct Typed<kstd_persistentTypeCategory_uint> {
    template <class T>
    static kstd_result set(Variant* variant, int32_t id, T value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_TRY(holdCoreType(variant, id));
        variant->value.uint64 = static_cast<uint64_t>(value);
        return 0;
    }
    template <class T>
    static kstd_result get(const Variant* variant, T* value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        *value = 0;
        uint64_t wide = 0;
        VEXPERS_TRY(readUInt64(variant, &wide));
        if (static_cast<uint64_t>(static_cast<T>(wide)) != wide) return kstd_persistentResult_valueOutOfRange;
        *value = static_cast<T>(wide);
        return 0;
    }
};

// Booleans: a 32-bit integer in the first half of the value. k_Bool keeps
// any value (5 stays 5); bool stores 1 or 0 and reads "not 0", and writes its
// destination only on success.
template <>
struct Typed<kstd_persistentTypeCategory_bool> {
    template <class T>
    static kstd_result set(Variant* variant, int32_t id, T value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_TRY(holdCoreType(variant, id));
        if constexpr (std::is_same_v<T, bool>)
            variant->value.boolean = value ? 1 : 0;
        else
            variant->value.boolean = static_cast<int32_t>(value);
        return 0;
    }
    template <class T>
    static kstd_result get(const Variant* variant, T* value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        if constexpr (std::is_same_v<T, bool>) {
            int32_t stored = 0;
            VEXPERS_TRY(readBool(variant, &stored));
            *value = stored != 0;
            return 0;
        } else {
            static_assert(std::is_same_v<T, int32_t>);
            return readBool(variant, value);
        }
    }
};

// Floating point: stored as a double (a float is widened).
template <>
struct Typed<kstd_persistentTypeCategory_float> {
    template <class T>
    static kstd_result set(Variant* variant, int32_t id, T value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_TRY(holdCoreType(variant, id));
        variant->value.float64 = static_cast<double>(value);
        return 0;
    }
    template <class T>
    static kstd_result get(const Variant* variant, T* value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        if constexpr (std::is_same_v<T, float>) {
            return readFloat(variant, value);
        } else {
            static_assert(std::is_same_v<T, double>);
            return readDouble(variant, value);
        }
    }
};

// Characters are never held: sets leave the variant as it was, gets give 0.
template <>
struct Typed<kstd_persistentTypeCategory_char> {
    template <class T>
    static kstd_result set(Variant* variant, int32_t, T) {
        VEXPERS_REQUIRE(variant != nullptr);
        return kstd_persistentResult_notSupported;
    }
    template <class T>
    static kstd_result get(const Variant* variant, T* value) {
        VEXPERS_REQUIRE(variant != nullptr);
        VEXPERS_REQUIRE(value != nullptr);
        *value = 0;
        return kstd_persistentResult_notSupported;
    }
};

}  // namespace
}  // namespace vexpers::variant

#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                                                       \
    VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValue_##stem(kstd_persistentVariant* variant,           \
                                                                      ctype value) {                             \
        return ::vexpers::variant::Typed<category>::set<ctype>(variant, id, value);                              \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValue_##stem(const kstd_persistentVariant* variant,     \
                                                                      ctype* value) {                            \
        return ::vexpers::variant::Typed<category>::get<ctype>(variant, value);                                  \
    }
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
