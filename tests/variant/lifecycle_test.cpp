// The variant record: construction, typing, copies that share, and the
// failures of a variant that holds no type.
#include <cmath>

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
    int64_t i64 = 9;
    uint64_t u64 = 9;
    int32_t b = 9;
    float f = 9;
    double d = 9;
    int8_t i8 = 9;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &i64), Empty);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(v.get(), &u64), Empty);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Bool(v.get(), &b), Empty);
    EXPECT_EQ(kstd_persistentVariant_getValue_float(v.get(), &f), Empty);
    EXPECT_EQ(kstd_persistentVariant_getValue_double(v.get(), &d), Empty);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int8(v.get(), &i8), Empty);
    EXPECT_EQ(i64 + int64_t(u64) + b + f + d + i8, 0);

    // bool keeps its destination; character gets fail as not supported.
    bool flag = true;
    EXPECT_EQ(kstd_persistentVariant_getValue_bool(v.get(), &flag), Empty);
    EXPECT_TRUE(flag);
    char16_t c = u'x';
    EXPECT_EQ(kstd_persistentVariant_getValue_wchar_t(v.get(), &c), CA);
    EXPECT_EQ(c, 0);

    kstd_result code = 0;
    EXPECT_EQ(textForm(v.get(), &code), "(unchanged)");
    EXPECT_EQ(code, Empty);

    Type empty;
    int32_t i32 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), empty.get(), &i32), Empty);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), empty.get(), &i32), Empty);
    uint32_t category = 0;
    EXPECT_EQ(kstd_persistentVariant_getTypeCategory(v.get(), &category), Empty);
    EXPECT_EQ(category, kstd_persistentTypeCategory_object);
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
            ASSERT_EQ(kstd_persistentVariant_setValueStringW(source.get(), u"shared text"), 0);
            ASSERT_EQ(kstd_ptrh_assignShared(&source->sharedObject, &object.header), 0);
            source->arrayCount = 3;

            const int64_t before = allocations();
            ASSERT_EQ(kstd_persistentVariant_assign(copy.get(), source.get()), 0);
            EXPECT_EQ(allocations(), before);  // shared, not copied
            EXPECT_EQ(copy->stringValue.chars, source->stringValue.chars);
            EXPECT_EQ(copy->sharedObject.shared, &object.header);
            EXPECT_EQ(copy->arrayCount, 3);
            int32_t references = 0;
            kstd_shared_getReferenceCount(&object.header, &references);
            EXPECT_EQ(references, 2);

            ASSERT_EQ(kstd_persistentVariant_reset(source.get()), 0);
            EXPECT_EQ(source->stringValue.chars, nullptr);
            EXPECT_EQ(source->sharedObject.shared, nullptr);
        }
        EXPECT_FALSE(destroyed);
        EXPECT_EQ(ascii(copy->stringValue.chars), "shared text");
        EXPECT_EQ(copy->sharedObject.shared, &object.header);

        // Self-assignment changes nothing; a copy constructed from it shares too.
        EXPECT_EQ(kstd_persistentVariant_assign(copy.get(), copy.get()), 0);
        kstd_persistentVariant second;
        ASSERT_EQ(kstd_persistentVariant_constructCopy(&second, copy.get()), 0);
        EXPECT_EQ(second.stringValue.chars, copy->stringValue.chars);
        EXPECT_EQ(kstd_persistentVariant_destruct(&second), 0);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);  // the last variant let go of it
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Variant, EverySetReleasesWhatWasHeld) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValueStringW(v.get(), u"text"), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 0.5), 0);
    EXPECT_EQ(v->stringValue.chars, nullptr);
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int8(v.get(), -1), 0);
    EXPECT_EQ(v->value.int64, -1);  // all 8 bytes: the double is gone
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v.get(), -1), 0);
    EXPECT_EQ(v->value.uint64, 0xFFFFFFFFu);  // the second half stays 0
    ASSERT_EQ(kstd_persistentVariant_setValue_float(v.get(), 0.1f), 0);
    EXPECT_EQ(v->value.float64, static_cast<double>(0.1f));

    Type intType;
    coreType(intType, kstd_persistentCoreTypeId_int);
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), intType.get()), 0);
    EXPECT_EQ(v->value.uint64, 0u);
    Type held;
    ASSERT_EQ(kstd_persistentVariant_getType(v.get(), held.get()), 0);
    uint32_t equal = 0;
    ASSERT_EQ(kstd_persistentType_compareEqual(held.get(), intType.get(), &equal), 0);
    EXPECT_EQ(equal, 1u);
}

TEST(Variant, ResetByNameAndCoreTypeId) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(v.get(), 7), 0);
    // Refused arguments change nothing.
    EXPECT_EQ(kstd_persistentVariant_resetTypeName(v.get(), nullptr), kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentVariant_resetTypeName(v.get(), u""), kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentVariant_resetCoreTypeId(v.get(), -1), kstd_persistentResult_invalidCoreTypeId);
    int32_t value = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &value), 0);
    EXPECT_EQ(value, 7);

    EXPECT_EQ(kstd_persistentVariant_resetCoreTypeId(v.get(), 52), kstd_persistentResult_invalidCoreTypeId);

    ASSERT_EQ(kstd_persistentVariant_resetTypeName(v.get(), u"unsigned short"), 0);
    uint32_t category = 9, derivation = 9;
    ASSERT_EQ(kstd_persistentVariant_getTypeCategoryAndDerivation(v.get(), &category, &derivation), 0);
    EXPECT_EQ(category, kstd_persistentTypeCategory_uint);
    EXPECT_EQ(derivation, 0u);
    EXPECT_EQ(v->value.uint64, 0u);

    ASSERT_EQ(kstd_persistentVariant_resetCoreTypeId(v.get(), kstd_persistentCoreTypeId_double), 0);
    ASSERT_EQ(kstd_persistentVariant_getTypeCategory(v.get(), &category), 0);
    EXPECT_EQ(category, kstd_persistentTypeCategory_float);
    ASSERT_EQ(kstd_persistentVariant_getTypeDerivation(v.get(), &derivation), 0);
    EXPECT_EQ(derivation, 0u);

    // An unregistered name gives a type that reads refuse.
    ASSERT_EQ(kstd_persistentVariant_resetTypeName(v.get(), u"VariantTestNoSuchType"), 0);
    int64_t wide = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &wide), kstd_persistentResult_typeNotRegistered);
}

TEST(Variant, NullRecordsArePreconditionFaults) {
    AssertRecorder faults;
    int32_t value = 0;
    Variant v;
    EXPECT_EQ(kstd_persistentVariant_construct(nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_setValue_k_Int32(nullptr, 1), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_setValue_char(nullptr, 'a'), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(nullptr, &value), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_getValueAsString(v.get(), nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), nullptr, &value), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 7);
}

}  // namespace
}  // namespace vexpers::test
