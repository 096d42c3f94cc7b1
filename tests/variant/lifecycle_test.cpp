// The variant record: construction, typing, copies that share, and the
// failures of a variant that holds no type.
#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

// A shared object made by the test that reports its destruction.
struct Tracked {
    kstd_shared header;
    bool* destroyed;
};

kstd_result destroyTracked(kstd_shared* shared) {
    *static_cast<Tracked*>(shared->whole)->destroyed = true;
    return 0;
}
constexpr kstd_sharedCustom trackedCounting{destroyTracked, kstd_shared_increment_default,
                                            kstd_shared_decrement_default};

TEST(Variant, WithoutTypeEveryReadFailsAsTypeEmpty) {
    Variant v;
    Type empty;
    EXPECT_EQ(outOf<int64_t>(Empty, kstd_persistentVariant_getValue_k_Int64, v), 0);
    EXPECT_EQ(outOf<double>(Empty, kstd_persistentVariant_getValue_double, v), 0);
    // bool keeps its destination; character gets fail as not supported.
    bool flag = true;
    EXPECT_EQ(kstd_persistentVariant_getValue_bool(v, &flag), Empty);
    EXPECT_TRUE(flag);
    EXPECT_EQ(outOf<char16_t>(CA, kstd_persistentVariant_getValue_wchar_t, v), 0);
    kstd_result code = 0;
    EXPECT_EQ(textForm(v, &code), "(unchanged)");
    EXPECT_EQ(code, Empty);
    int32_t i32 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, empty, &i32), Empty);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, empty, &i32), Empty);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentVariant_setValue_k_Int32(nullptr, 1), Fault);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v, nullptr), Fault);
    EXPECT_EQ(kstd_persistentVariant_getValueAsString(v, nullptr), Fault);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, nullptr, &i32), Fault);
    EXPECT_EQ(faults.count(), 4);
}

TEST(Variant, AssignSharesStringAndObjectThatOutliveTheSource) {
    LiveBlockCheck leaks;
    bool destroyed = false;
    Tracked object{{}, &destroyed};
    ASSERT_EQ(kstd_shared_initCustom(&object.header, &object, &trackedCounting), 0);
    {
        Variant copy;
        {
            Variant source;
            ASSERT_EQ(kstd_persistentVariant_setValueStringW(source, u"shared text"), 0);
            ASSERT_EQ(kstd_ptrh_assignShared(&source->sharedObject, &object.header), 0);

            const int64_t before = allocations();
            ASSERT_EQ(kstd_persistentVariant_assign(copy, source), 0);
            EXPECT_EQ(allocations(), before);  // shared, not copied
            EXPECT_EQ(copy->stringValue.chars, source->stringValue.chars);
            EXPECT_EQ(copy->sharedObject.shared, &object.header);
            EXPECT_EQ(outOf<int32_t>(0, kstd_shared_getReferenceCount, &object.header), 2);
        }
        EXPECT_FALSE(destroyed);
        EXPECT_EQ(ascii(copy->stringValue.chars), "shared text");
    }
    EXPECT_TRUE(destroyed);  // the last variant let go of it
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Variant, EverySetReleasesWhatWasHeld) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValueStringW(v, u"text"), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v, 0.5), 0);
    EXPECT_EQ(v->stringValue.chars, nullptr);
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int8(v, -1), 0);
    EXPECT_EQ(v->value.int64, -1);  // all 8 bytes: the double is gone
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v, -1), 0);
    EXPECT_EQ(v->value.uint64, 0xFFFFFFFFu);  // the second half stays 0
    ASSERT_EQ(kstd_persistentVariant_setValue_float(v, 0.1f), 0);
    EXPECT_EQ(v->value.float64, static_cast<double>(0.1f));
}

TEST(Variant, ResetByNameAndCoreTypeId) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(v, 7), 0);
    // Refused arguments change nothing.
    EXPECT_EQ(kstd_persistentVariant_resetTypeName(v, nullptr), C6);
    EXPECT_EQ(kstd_persistentVariant_resetCoreTypeId(v, -1), C5);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentVariant_getValue_k_Int32, v), 7);
    EXPECT_EQ(kstd_persistentVariant_resetCoreTypeId(v, 52), C5);  // this one empties the variant
    EXPECT_EQ(outOf<int32_t>(Empty, kstd_persistentVariant_getValue_k_Int32, v), 0);

    // An unregistered name gives a type that reads refuse.
    ASSERT_EQ(kstd_persistentVariant_resetTypeName(v, u"VariantTestNoSuchType"), 0);
    EXPECT_EQ(outOf<int64_t>(C8, kstd_persistentVariant_getValue_k_Int64, v), 0);
}

}  // namespace
}  // namespace vexpers::test
