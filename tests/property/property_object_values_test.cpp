// The variant's object values that the property model needs: refusals that
// change nothing, and property paths through registered types' declared
// properties. (Values that are stored whole the round trips carry.)
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

TEST(VariantObjectValues, ChecksComeBeforeAnyChange) {
    const ModuleTypes& types = moduleTypes();
    Type ints, intArray;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, ints), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_array, 1, intArray), 0);
    Variant variant;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(variant, 11), 0);
    Box list{{5, 6}, 2}, negative{{}, -1};
    const kstd_persistentContainerVtable* listTable = boxOperations();
    kstd_persistentContainerVtable partial = *listTable;
    partial.getLayout = nullptr;
    const kstd_result refusals[] = {
        kstd_persistentVariant_setValueUsingTypePointerNull(variant, ints),
        kstd_persistentVariant_setValueUsingTypeArrayEmpty(variant, ints),
        kstd_persistentVariant_setValueUsingTypeEnum(variant, types.colorBits, 1),
        kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(variant, types.color, 1),
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(variant, intArray, nullptr, listTable),
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(variant, intArray, &list, nullptr),
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(variant, intArray, &list, &partial),
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(variant, intArray, &negative, listTable),
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(variant, ints, &list, listTable),
    };
    const kstd_result expected[] = {D6, D6, kstd_persistentResult_notEnumType,
                                    kstd_persistentResult_notEnumBitfieldType, CC, C0, C1, D7, D6};
    for (size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(refusals[i], expected[i]) << "refusal " << i;
    EXPECT_EQ(outOf<int>(0, kstd_persistentVariant_getValue_int, variant), 11);  // unchanged by all of them

    // Objects and arrays are asked of a value that is neither.
    EXPECT_EQ(outOf<void*>(D6, kstd_persistentVariant_getWholeObject, variant), nullptr);
    void* first = &list;
    intptr_t count = 5;
    EXPECT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(variant, &first, &count), D6);
    EXPECT_EQ(std::make_pair(first, count), std::make_pair(static_cast<void*>(nullptr), intptr_t{0}));
}

TEST(VariantObjectValues, PropertyPaths) {
    const ModuleTypes& types = moduleTypes();
    Widget widget{}, second{}, third{};
    widget.number = 4;
    widget.inner.count = 17;
    Variant variant;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, types.widget, &widget), 0);
    Property found;
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(variant, u"inner.count", found), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, found), 17);

    const std::pair<const char16_t*, kstd_result> refused[] = {
        // Exact names only, at every step, and a name must give a property.
        {u"Number", C9}, {u"inner.absent", C9},
        // Steps through values that are no objects, and empty parts.
        {u"number.count", D6}, {u"next.number", CC}, {u"inner.", C3}, {nullptr, C3}};
    for (auto [name, code] : refused) {
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(variant, name, found), code) << ascii(name);
        EXPECT_EQ(nameOf(found.v), u"(null)") << ascii(name);
    }

    // Paths run as deep as the objects go.
    third.number = 33;
    second.next = &third;
    widget.next = &second;
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(variant, u"next.next.number", found), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, found), 33);

    // A type whose declared property's type was never registered.
    Variant broken;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(broken, types.broken, &widget), 0);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(broken, u"lost", found), C8);
}

}  // namespace
