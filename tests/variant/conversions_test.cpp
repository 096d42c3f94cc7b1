// The five base readers against every stored group, the rounding and range
// edges of floating values, the setters under a chosen type, and the text
// form of a value.
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <locale.h>
#include <string>
#include <vector>

#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

constexpr double twoPow63 = 9223372036854775808.0;
constexpr double twoPow64 = 18446744073709551616.0;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

struct Cell {
    kstd_result code;
    double value;  // the destination, compared as a double
};

struct Row {
    const char* stored;
    std::function<void(kstd_persistentVariant*)> fill;
    Cell int64, uint64, boolean, real32, real64;
};

void fillCore(kstd_persistentVariant* v, int32_t id, uint32_t derivation) {
    Type type;
    coreType(type, id, derivation);
    ASSERT_EQ(kstd_persistentVariant_resetType(v, type.get()), 0);
}

void fillHandMade(kstd_persistentVariant* v, uint32_t category, uint32_t derivation) {
    Type type;
    handMadeType(type, category, derivation);
    ASSERT_EQ(kstd_persistentVariant_resetType(v, type.get()), 0);
}

// Every stored group against every reader: the code, and the destination
// (0 after a failure).
TEST(VariantConversions, ReaderTableRowByRow) {
    const TestTypes& types = testTypes();
    static int object = 0;
    const std::vector<Row> rows = {
        {"signed -5", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_k_Int64(v, -5), 0); },
         {0, -5}, {D0, 0}, {0, 1}, {0, -5}, {0, -5}},
        {"signed 0", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_short(v, 0), 0); },
         {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        {"plain enum 3",
         [&](auto v) {
             ASSERT_EQ(kstd_persistentVariant_resetType(v, types.plainEnum), 0);
             v->value.int64 = 3;
         },
         {0, 3}, {0, 3}, {0, 1}, {0, 3}, {0, 3}},
        {"unsigned 7", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt64(v, 7), 0); },
         {0, 7}, {0, 7}, {0, 1}, {0, 7}, {0, 7}},
        {"unsigned 2^64 - 1",
         [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_ulong(v, ~0ul), 0); },
         {D0, 0}, {0, twoPow64}, {0, 1}, {0, twoPow64}, {0, twoPow64}},
        {"bit field 2^63",
         [&](auto v) {
             ASSERT_EQ(kstd_persistentVariant_resetType(v, types.bitfieldEnum), 0);
             v->value.uint64 = 1ull << 63;
         },
         {D0, 0}, {0, twoPow63}, {0, 1}, {0, twoPow63}, {0, twoPow63}},
        {"k_Bool 5", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v, 5), 0); },
         {0, 5}, {0, 1}, {0, 5}, {0, 1}, {0, 1}},
        {"k_Bool -1", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v, -1), 0); },
         {0, -1}, {0, 1}, {0, -1}, {0, 1}, {0, 1}},
        {"bool false", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_bool(v, false), 0); },
         {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        {"double 2.5", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_double(v, 2.5), 0); },
         {0, 3}, {0, 3}, {0, 1}, {0, 2.5}, {0, 2.5}},
        {"double -2.5", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_double(v, -2.5), 0); },
         {0, -3}, {D0, 0}, {0, 1}, {0, -2.5}, {0, -2.5}},
        {"float 0", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValue_float(v, 0.0f), 0); },
         {0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
        {"character", [](auto v) { fillCore(v, kstd_persistentCoreTypeId_char, 0); },
         {CA, 0}, {CA, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"string", [](auto v) { ASSERT_EQ(kstd_persistentVariant_setValueStringW(v, u"1"), 0); },
         {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}},
        {"object",
         [&](auto v) { ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, types.object, &object), 0); },
         {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"int of derivation 4", [](auto v) { fillHandMade(v, kstd_persistentTypeCategory_int, 4); },
         {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}},
        {"uint of derivation 4", [](auto v) { fillHandMade(v, kstd_persistentTypeCategory_uint, 4); },
         {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}},
        {"category 9", [](auto v) { fillHandMade(v, 9, 0); },
         {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}, {CB, 0}},
        {"pointer to int", [](auto v) { fillCore(v, kstd_persistentCoreTypeId_int, 1); },
         {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"array of double", [](auto v) { fillCore(v, kstd_persistentCoreTypeId_double, 2); },
         {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"bit-field array", [&](auto v) { fillHandMade(v, kstd_persistentTypeCategory_enum, 5); },
         {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}, {CD, 0}},
        {"reserved k_Int128", [](auto v) { fillCore(v, kstd_persistentCoreTypeId_k_Int128, 0); },
         {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}, {CA, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.stored);
        Variant v;
        row.fill(v.get());
        int64_t i64 = 77;
        uint64_t u64 = 77;
        int32_t b = 77;
        float f = 77;
        double d = 77;
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &i64), row.int64.code);
        EXPECT_EQ(static_cast<double>(i64), row.int64.value);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(v.get(), &u64), row.uint64.code);
        EXPECT_EQ(static_cast<double>(u64), row.uint64.value);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Bool(v.get(), &b), row.boolean.code);
        EXPECT_EQ(static_cast<double>(b), row.boolean.value);
        EXPECT_EQ(kstd_persistentVariant_getValue_float(v.get(), &f), row.real32.code);
        EXPECT_EQ(static_cast<double>(f), row.real32.value);
        EXPECT_EQ(kstd_persistentVariant_getValue_double(v.get(), &d), row.real64.code);
        EXPECT_EQ(d, row.real64.value);
    }
}

int64_t asInt64(double x, kstd_result* code) {
    Variant v;
    EXPECT_EQ(kstd_persistentVariant_setValue_double(v.get(), x), 0);
    int64_t out = 77;
    *code = kstd_persistentVariant_getValue_k_Int64(v.get(), &out);
    return out;
}

uint64_t asUInt64(double x, kstd_result* code) {
    Variant v;
    EXPECT_EQ(kstd_persistentVariant_setValue_double(v.get(), x), 0);
    uint64_t out = 77;
    *code = kstd_persistentVariant_getValue_k_UInt64(v.get(), &out);
    return out;
}

float asFloat(double x, kstd_result* code) {
    Variant v;
    EXPECT_EQ(kstd_persistentVariant_setValue_double(v.get(), x), 0);
    float out = 77;
    *code = kstd_persistentVariant_getValue_float(v.get(), &out);
    return out;
}

TEST(VariantConversions, DoublesToIntegersRoundHalvesAwayFromZeroWithinRange) {
    kstd_result code = 0;
    EXPECT_EQ(asInt64(2.4999, &code), 2);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asInt64(0.49999999999999994, &code), 0);  // adding 0.5 would give 1
    EXPECT_EQ(asInt64(-0.5, &code), -1);
    EXPECT_EQ(asInt64(-twoPow63, &code), std::numeric_limits<int64_t>::min());
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asInt64(std::nextafter(twoPow63, 0.0), &code), 9223372036854774784);
    EXPECT_EQ(code, 0);
    for (double x : {twoPow63, std::nextafter(-twoPow63, -inf), inf, -inf, nan}) {
        EXPECT_EQ(asInt64(x, &code), 0) << x;
        EXPECT_EQ(code, D0) << x;
    }

    EXPECT_EQ(asUInt64(twoPow63, &code), 9223372036854775808u);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asUInt64(std::nextafter(twoPow64, 0.0), &code), 18446744073709549568u);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asUInt64(-0.0, &code), 0u);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asUInt64(0.5, &code), 1u);
    for (double x : {-0.3, -2.5, twoPow64, inf, nan}) {
        EXPECT_EQ(asUInt64(x, &code), 0u) << x;
        EXPECT_EQ(code, D0) << x;
    }
}

TEST(VariantConversions, DoublesBeyondTheFloatRangeClampWithACode) {
    kstd_result code = 0;
    EXPECT_EQ(asFloat(1e39, &code), FLT_MAX);
    EXPECT_EQ(code, E66);
    EXPECT_EQ(static_cast<double>(FLT_MAX), 3.4028234663852886e+38);
    EXPECT_EQ(asFloat(-1e39, &code), -FLT_MAX);
    EXPECT_EQ(code, E66);
    EXPECT_EQ(asFloat(inf, &code), FLT_MAX);
    EXPECT_EQ(code, E66);
    EXPECT_EQ(asFloat(-inf, &code), -FLT_MAX);
    EXPECT_EQ(code, E66);
    // Just beyond the largest float: it would round to it, but is refused.
    EXPECT_EQ(asFloat(std::nextafter(static_cast<double>(FLT_MAX), inf), &code), FLT_MAX);
    EXPECT_EQ(code, E66);
    EXPECT_EQ(asFloat(static_cast<double>(FLT_MAX), &code), FLT_MAX);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(asFloat(0.1, &code), 0.1f);
    EXPECT_TRUE(std::isnan(asFloat(nan, &code)));
    EXPECT_EQ(code, 0);

    // A NaN is "not 0" as a boolean.
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), nan), 0);
    int32_t b = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Bool(v.get(), &b), 0);
    EXPECT_EQ(b, 1);
}

TEST(VariantConversions, SettersUnderAChosenTypeCheckOnlyTheCategory) {
    Variant v;
    Type int8Type, uint32Type, kBool, floatType, reserved;
    coreType(int8Type, kstd_persistentCoreTypeId_k_Int8);
    coreType(uint32Type, kstd_persistentCoreTypeId_k_UInt32);
    coreType(kBool, kstd_persistentCoreTypeId_k_Bool);
    coreType(floatType, kstd_persistentCoreTypeId_float);
    coreType(reserved, kstd_persistentCoreTypeId_k_UInt128);

    // 1000 under k_Int8 is held as it is and fails only when read narrowly.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_k_Int64_(v.get(), int8Type.get(), 1000), 0);
    int8_t i8 = 9;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int8(v.get(), &i8), D0);
    int16_t i16 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int16(v.get(), &i16), 0);
    EXPECT_EQ(i16, 1000);

    // Another category is refused and the variant stays as it was.
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_Int64_(v.get(), uint32Type.get(), 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_UInt64_(v.get(), int8Type.get(), 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_Bool_(v.get(), floatType.get(), 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_double_(v.get(), kBool.get(), 5), D6);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType_k_UInt64_(v.get(), reserved.get(), 5), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int16(v.get(), &i16), 0);
    EXPECT_EQ(i16, 1000);

    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_k_UInt64_(v.get(), uint32Type.get(), 1ull << 40), 0);
    uint64_t u64 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(v.get(), &u64), 0);
    EXPECT_EQ(u64, 1ull << 40);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_k_Bool_(v.get(), kBool.get(), 7), 0);
    EXPECT_EQ(v->value.uint64, 7u);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType_double_(v.get(), floatType.get(), 1e300), 0);
    float f = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_float(v.get(), &f), E66);  // held as given, clamped on read
    int32_t coreTypeId = 0;
    ASSERT_EQ(kstd_persistentType_getCoreTypeId(&v->type, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_float);
}

TEST(VariantConversions, TextForms) {
    const TestTypes& types = testTypes();
    Variant v;
    kstd_result code = 0;
    auto text = [&] { return textForm(v.get(), &code); };

    ASSERT_EQ(kstd_persistentVariant_setValue_bool(v.get(), true), 0);
    EXPECT_EQ(text(), "true");
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v.get(), 0), 0);
    EXPECT_EQ(text(), "false");
    ASSERT_EQ(kstd_persistentVariant_setValue_int(v.get(), -42), 0);
    EXPECT_EQ(text(), "-42");
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int64(v.get(), std::numeric_limits<int64_t>::min()), 0);
    EXPECT_EQ(text(), "-9223372036854775808");
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 0.5), 0);
    EXPECT_EQ(text(), "0.5");
    ASSERT_EQ(kstd_persistentVariant_setValue_float(v.get(), 100.0f), 0);
    EXPECT_EQ(text(), "100");
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 0.1), 0);
    EXPECT_EQ(text(), "0.10000000000000000555");  // 20 significant digits
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), -inf), 0);
    EXPECT_EQ(text(), "-inf");
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), nan), 0);
    EXPECT_EQ(text(), "nan");
    ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt64(v.get(), std::numeric_limits<uint64_t>::max()), 0);
    EXPECT_EQ(text(), "18446744073709551615");
    EXPECT_EQ(code, 0);

    // An enumeration bit field with the top bit set is unsigned; the same
    // bits in a plain enumeration are signed.
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), types.bitfieldEnum), 0);
    v->value.uint64 = 0x8000000000000001ull;
    EXPECT_EQ(text(), "9223372036854775809");
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), types.plainEnum), 0);
    v->value.uint64 = 0x8000000000000001ull;
    EXPECT_EQ(text(), "-9223372036854775807");

    // An object: its address as 16 upper-case hexadecimal digits.
    const void* address = reinterpret_cast<const void*>(uintptr_t{0xABCDEF12345});
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), types.object, address), 0);
    EXPECT_EQ(text(), "00000ABCDEF12345");

    // Strings are their own text; null stays null, empty stays empty.
    ASSERT_EQ(kstd_persistentVariant_setValueStringA(v.get(), "as is"), 0);
    EXPECT_EQ(text(), "as is");
    ASSERT_EQ(kstd_persistentVariant_setValueStringW(v.get(), nullptr), 0);
    EXPECT_EQ(text(), "(null)");
    ASSERT_EQ(kstd_persistentVariant_setValueString16(v.get(), u""), 0);
    EXPECT_EQ(text(), "");
    EXPECT_EQ(code, 0);

    // Refused kinds leave the output alone; other kinds empty it.
    fillCore(v.get(), kstd_persistentCoreTypeId_k_Char32, 0);
    EXPECT_EQ(text(), "(unchanged)");
    EXPECT_EQ(code, CA);
    fillCore(v.get(), kstd_persistentCoreTypeId_int, kstd_persistentTypeDerivation_array);
    EXPECT_EQ(text(), "(unchanged)");
    EXPECT_EQ(code, CA);
    fillCore(v.get(), kstd_persistentCoreTypeId_k_FloatMax, 0);
    EXPECT_EQ(text(), "(unchanged)");
    EXPECT_EQ(code, CA);
    fillHandMade(v.get(), kstd_persistentTypeCategory_uint, kstd_persistentTypeDerivation_bitfield);
    EXPECT_EQ(text(), "");
    EXPECT_EQ(code, CB);
}

TEST(VariantConversions, TextFormIgnoresTheHostLocale) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 1234.5), 0);
    locale_t german = newlocale(LC_ALL_MASK, "de_DE.UTF-8", static_cast<locale_t>(0));
    if (german == static_cast<locale_t>(0)) GTEST_SKIP() << "locale de_DE.UTF-8 is not installed";
    const locale_t previous = uselocale(german);
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.1f", 0.5);
    kstd_result code = 0;
    const std::string form = textForm(v.get(), &code);
    uselocale(previous);
    freelocale(german);
    EXPECT_STREQ(probe, "0,5");  // the host's formatting does use a comma
    EXPECT_EQ(form, "1234.5");
    EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace vexpers::test
