// The variant record: typing, what a set releases, and the failures of a
// variant that holds no type. (Copies the life-cycle conformance test checks.)
#include "support/test_module.hpp"
#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

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
    // An empty type is no known array type for a container.
    struct List { intptr_t count; int32_t items[1]; } list{0, {}};
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(v, empty, &list,
                                                                       &ListOperations<List, int32_t, 1>::table),
              D6);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentVariant_setValue_k_Int32(nullptr, 1), Fault);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v, nullptr), Fault);
    EXPECT_EQ(kstd_persistentVariant_getValueAsString(v, nullptr), Fault);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, nullptr, &i32), Fault);
    EXPECT_EQ(faults.count(), 4);
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

// A widget that the property itself makes (and alone keeps alive), whose
// next is itself.
kstd_result madeWidget(const void*, kstd_persistentVariant* value) {
    const kstd_result result = kstd_persistentVariant_resetNewObject(value, moduleTypes().widget);
    if (result < 0) return result;
    auto* widget = static_cast<Widget*>(value->value.pointer);
    widget->number = 21;
    widget->next = widget;
    return 0;
}

// Every step of a property path lives until the lookup ends: the widget that
// the first step made is read again by the third and fourth.
TEST(Variant, PropertyPathKeepsEveryStepAlive) {
    startModule();
    static const kstd_persistentPropertyInfoDefinition definitions[]{
        {u"made", 2, u"TestWidget", 0, accessors({{5, word(madeWidget)}})}};
    static const kstd_persistentStaticPropertyList list{definitions, std::size(definitions)};
    Target& maker = newTarget();
    ASSERT_EQ(registerObject(u"VariantTestWidgetMaker", maker, &list), 0);
    NoLeaks leaks;
    int32_t object = 0;
    Variant v;
    Property found;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, &maker.handle, &object), 0);
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(v, u"made.next.next.next.number", found), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, found), 21);
}

}  // namespace
}  // namespace vexpers::test
