// The five base readers against every stored group, the rounding and range
// edges of floating values, the setters under a chosen type, and the text
// form of a value. (The formatting of doubles itself, locale included, is the
// runtime's and tested there.)
#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

constexpr double twoPow63 = 9223372036854775808.0;
constexpr double twoPow64 = 18446744073709551616.0;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

// Ways to fill a variant for one row of a table.
using Fill = std::function<void(kstd_persistentVariant*)>;
template <class T>
Fill set(kstd_result (*setter)(kstd_persistentVariant*, T), std::type_identity_t<T> value) {
    return [=](kstd_persistentVariant* v) { ASSERT_EQ(setter(v, value), 0); };
}
Fill core(int32_t id, uint32_t derivation = 0) {
    return [=](kstd_persistentVariant* v) { holdCore(v, id, derivation); };
}
Fill handMade(uint32_t category, uint32_t derivation) {
    return [=](kstd_persistentVariant* v) {
        Type type;
        handMadeType(type, category, derivation);
        ASSERT_EQ(kstd_persistentVariant_resetType(v, type), 0);
    };
}
Fill bits(const kstd_persistentType* type, uint64_t value) {
    return [=](kstd_persistentVariant* v) {
        ASSERT_EQ(kstd_persistentVariant_resetType(v, type), 0);
        v->value.uint64 = value;
    };
}
Fill object(const void* address) {
    return [=](kstd_persistentVariant* v) {
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, testTypes().object, address), 0);
    };
}

struct Cell {
    kstd_result code;
    double value;  // the destination, compared as a double
};

// Every stored group against every reader: the code, and the destination
// (0 after a failure).
TEST(VariantConversions, ReaderTableRowByRow) {
    const TestTypes& types = testTypes();
    static int anObject = 0;
    const struct Row {
        const char* stored;
        Fill fill;
        Cell int64, uint64, boolean, real32, real64;
    } rows[] = {
        {"signed -5", set(kstd_persistentVariant_setValue_k_Int64, -5), {0, -5}, {D0, 0}, {0, 1}, {0, -5}, {0, -5}},
        {"plain enum 3", bits(types.plainEnum, 3), {0, 3}, {0, 3}, {0, 1}, {0, 3}, {0, 3}},
        {"unsigned 2^64 - 1", set(kstd_persistentVariant_setValue_ulong, ~0ul), {D0, 0}, {0, twoPow64}, {0, 1},
         {0, twoPow64}, {0, twoPow64}},
        {"bit field 2^63", bits(types.bitfieldEnum, 1ull << 63), {D0, 0}, {0, twoPow63}, {0, 1}, {0, twoPow63},
         {0, twoPow63}},
        {"k_Bool 5", set(kstd_persistentVariant_setValue_k_Bool, 5), {0, 5}, {0, 1}, {0, 5}, {0, 1}, {0, 1}},
        {"bool false", set(kstd_persistentVariant_setValue_bool, false), {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        {"double 2.5", set(kstd_persistentVariant_setValue_double, 2.5), {0, 3}, {0, 3}, {0, 1}, {0, 2.5}, {0, 2.5}},
        {"double -2.5", set(kstd_persistentVariant_setValue_double, -2.5), {0, -3}, {D0, 0}, {0, 1}, {0, -2.5},
         {0, -2.5}},
        {"character", core(kstd_persistentCoreTypeId_char), {CA, 0}, {CA, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"object", object(&anObject), {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"int of derivation 4", handMade(0, 4), {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}},
        {"category 9", handMade(9, 0), {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}},
        {"array of double", core(kstd_persistentCoreTypeId_double, 2), {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"reserved k_Int128", core(kstd_persistentCoreTypeId_k_Int128), {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.stored);
        Variant v;
        row.fill(v);
        EXPECT_EQ(double(outOf<int64_t>(row.int64.code, kstd_persistentVariant_getValue_k_Int64, v)), row.int64.value);
        EXPECT_EQ(double(outOf<uint64_t>(row.uint64.code, kstd_persistentVariant_getValue_k_UInt64, v)),
                  row.uint64.value);
        EXPECT_EQ(outOf<int32_t>(row.boolean.code, kstd_persistentVariant_getValue_k_Bool, v), row.boolean.value);
        EXPECT_EQ(outOf<float>(row.real32.code, kstd_persistentVariant_getValue_float, v), row.real32.value);
        EXPECT_EQ(outOf<double>(row.real64.code, kstd_persistentVariant_getValue_double, v), row.real64.value);
    }
}

// A double read through `get`.
template <class T>
T fromDouble(Expect code, double x, kstd_result (*get)(const kstd_persistentVariant*, T*)) {
    Variant v;
    EXPECT_EQ(kstd_persistentVariant_setValue_double(v, x), 0);
    return outOf<T>(code, get, v);
}

// Integers: halves round away from zero, values beyond the range (NaN
// included) fail with 0. Floats: values beyond the range clamp with a code.
TEST(VariantConversions, DoublesAtTheEdgesOfTheirReaders) {
    const std::pair<double, int64_t> int64s[] = {{2.4999, 2},
                                                 {0.49999999999999994, 0},  // adding 0.5 would give 1
                                                 {-0.5, -1},
                                                 {-twoPow63, std::numeric_limits<int64_t>::min()},
                                                 {std::nextafter(twoPow63, 0.0), 9223372036854774784}};
    for (auto [x, expected] : int64s)
        EXPECT_EQ(fromDouble(0, x, kstd_persistentVariant_getValue_k_Int64), expected) << x;
    for (double x : {twoPow63, std::nextafter(-twoPow63, -inf), inf, -inf, nan})
        EXPECT_EQ(fromDouble(D0, x, kstd_persistentVariant_getValue_k_Int64), 0) << x;

    const std::pair<double, uint64_t> uint64s[] = {
        {twoPow63, 9223372036854775808u}, {std::nextafter(twoPow64, 0.0), 18446744073709549568u}, {-0.0, 0}, {0.5, 1}};
    for (auto [x, expected] : uint64s)
        EXPECT_EQ(fromDouble(0, x, kstd_persistentVariant_getValue_k_UInt64), expected) << x;
    for (double x : {-0.3, -2.5, twoPow64, inf, nan})
        EXPECT_EQ(fromDouble(D0, x, kstd_persistentVariant_getValue_k_UInt64), 0u) << x;

    // Just beyond the largest float it would round to it, but is refused.
    for (double x : {inf, std::nextafter(static_cast<double>(FLT_MAX), inf)}) {
        EXPECT_EQ(fromDouble(E66, x, kstd_persistentVariant_getValue_float), FLT_MAX) << x;
        EXPECT_EQ(fromDouble(E66, -x, kstd_persistentVariant_getValue_float), -FLT_MAX) << x;
    }
    EXPECT_EQ(fromDouble(0, FLT_MAX, kstd_persistentVariant_getValue_float), FLT_MAX);
    EXPECT_EQ(fromDouble(0, 0.1, kstd_persistentVariant_getValue_float), 0.1f);
    EXPECT_TRUE(std::isnan(fromDouble(0, nan, kstd_persistentVariant_getValue_float)));
    EXPECT_EQ(fromDouble(0, nan, kstd_persistentVariant_getValue_k_Bool), 1);  // a NaN is "not 0"
}

TEST(VariantConversions, SettersUnderAChosenTypeCheckOnlyTheCategory) {
    Variant v;
    Type int8Type, uint32Type, floatType, reserved;
    coreType(int8Type, kstd_persistentCoreTypeId_k_Int8);
    coreType(uint32Type, kstd_persistentCoreTypeId_k_UInt32);
    coreType(floatType, kstd_persistentCoreTypeId_float);
    coreType(reserved, kstd_persistentCoreTypeId_k_UInt128);

    // 1000 under k_Int8 is held as it is and fails only when read narrowly.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_k_Int64_(v, int8Type, 1000), 0);
    EXPECT_EQ(outOf<int8_t>(D0, kstd_persistentVariant_getValue_k_Int8, v), 0);
    EXPECT_EQ(outOf<int16_t>(0, kstd_persistentVariant_getValue_k_Int16, v), 1000);

    // Another category is refused and the variant stays as it was.
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_Int64_(v, uint32Type, 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_UInt64_(v, int8Type, 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_UInt64_(v, reserved, 5), CA);
    EXPECT_EQ(outOf<int16_t>(0, kstd_persistentVariant_getValue_k_Int16, v), 1000);

    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_double_(v, floatType, 1e300), 0);
    EXPECT_EQ(outOf<float>(E66, kstd_persistentVariant_getValue_float, v), FLT_MAX);  // held as given, clamped on read
    EXPECT_EQ(coreTypeIdOf(v), kstd_persistentCoreTypeId_float);
}

TEST(VariantConversions, TextForms) {
    const TestTypes& types = testTypes();
    constexpr uint64_t topAndOne = 0x8000000000000001ull;
    const struct {
        Fill fill;
        const char* text;
        kstd_result code;
    } forms[] = {
        {set(kstd_persistentVariant_setValue_bool, true), "true", 0},
        {set(kstd_persistentVariant_setValue_k_Int64, std::numeric_limits<int64_t>::min()), "-9223372036854775808", 0},
        {set(kstd_persistentVariant_setValue_k_UInt64, ~0ull), "18446744073709551615", 0},
        {set(kstd_persistentVariant_setValue_double, 0.1), "0.10000000000000000555", 0},  // 20 significant digits
        // An enumeration bit field with the top bit set is unsigned; the same
        // bits in a plain enumeration are signed.
        {bits(types.bitfieldEnum, topAndOne), "9223372036854775809", 0},
        {bits(types.plainEnum, topAndOne), "-9223372036854775807", 0},
        // An object: its address as 16 upper-case hexadecimal digits.
        {object(reinterpret_cast<const void*>(uintptr_t{0xABCDEF12345})), "00000ABCDEF12345", 0},
        // Strings are their own text; null stays null, empty stays empty.
        {set(kstd_persistentVariant_setValueStringW, nullptr), "(null)", 0},
        {set(kstd_persistentVariant_setValueString16, u""), "", 0},
        // Refused kinds leave the output alone; other kinds empty it.
        {core(kstd_persistentCoreTypeId_k_Char32), "(unchanged)", CA},
        {handMade(kstd_persistentTypeCategory_uint, kstd_persistentTypeDerivation_bitfield), "", CB},
    };
    for (const auto& form : forms) {
        Variant v;
        form.fill(v);
        kstd_result code = 1;
        EXPECT_EQ(textForm(v, &code), form.text);
        EXPECT_EQ(code, form.code) << form.text;
    }
}

}  // namespace
}  // namespace vexpers::test
