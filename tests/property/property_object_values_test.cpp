// The variant's object values that the property model needs: null
// pointers, enumerations, empty arrays, arrays in containers, and property
// paths through registered types' declared properties.
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::prop;

uint32_t derivationOf(const kstd_persistentVariant& variant) {
    uint32_t derivation = 99;
    kstd_persistentVariant_getTypeDerivation(&variant, &derivation);
    return derivation;
}

TEST(VariantObjectValues, ChecksComeBeforeAnyChange) {
    const TestTypes& types = testTypes();
    TypeHandle ints, intArray, unknownPointer;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &ints.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_array, 1, &intArray.t), 0);
    ASSERT_EQ(
        kstd_persistentTypeGetType(u"PropTestUnknown", kstd_persistentTypeDerivation_pointer, 0, &unknownPointer.t),
        0);
    Variant variant;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 11), 0);
    auto unchanged = [&] {
        int value = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_int(&variant.v, &value), 0);
        EXPECT_EQ(value, 11);
    };
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypePointerNull(&variant.v, &ints.t),
              kstd_persistentResult_wrongTypeKind);
    unchanged();
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayEmpty(&variant.v, &ints.t),
              kstd_persistentResult_wrongTypeKind);
    unchanged();
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(&variant.v, &types.moodBits->handle, 1),
              kstd_persistentResult_notEnumType);
    EXPECT_EQ(kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(&variant.v, &types.mood->handle, 1),
              kstd_persistentResult_notEnumBitfieldType);
    unchanged();

    IntList list{{5, 6, 0, 0}, 2};
    kstd_persistentContainerVtable partial = listTable;
    partial.getLayout = nullptr;
    IntList negative{{}, -1};
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &intArray.t, nullptr, &listTable),
              kstd_persistentResult_nullArgument);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &intArray.t, &list, nullptr),
              kstd_persistentResult_noObjectVtable);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &intArray.t, &list, &partial),
              kstd_persistentResult_operationMissing);
    EXPECT_EQ(
        kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &intArray.t, &negative, &listTable),
        kstd_persistentResult_invalidCount);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &ints.t, &list, &listTable),
              kstd_persistentResult_wrongTypeKind);
    unchanged();
    void* object = &list;
    EXPECT_EQ(kstd_persistentVariant_getWholeObject(&variant.v, &object), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(object, nullptr);
    void* first = &list;
    intptr_t count = 5;
    EXPECT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(&variant.v, &first, &count),
              kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(first, nullptr);
    EXPECT_EQ(count, 0);

    // A pointer type need not be registered for a null pointer of it.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypePointerNull(&variant.v, &unknownPointer.t), 0);
    EXPECT_EQ(derivationOf(variant.v), kstd_persistentTypeDerivation_pointer);
    EXPECT_EQ(kstd_persistentVariant_getWholeObject(&variant.v, &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(VariantObjectValues, EnumsBitsAndArrays) {
    const TestTypes& types = testTypes();
    Variant variant;
    ASSERT_EQ(kstd_persistentVariant_setValueBitfield32UsingTypeEnumBitfield(&variant.v, &types.moodBits->handle,
                                                                             0x80000000u),
              0);
    uint64_t bits = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(&variant.v, &bits), 0);
    EXPECT_EQ(bits, 2147483648u);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(&variant.v, &types.mood->handle, -3), 0);
    int64_t value = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(&variant.v, &value), 0);
    EXPECT_EQ(value, -3);

    TypeHandle intArray;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_array, 1, &intArray.t), 0);
    IntList list{{5, 6, 7, 0}, 3};
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&variant.v, &intArray.t, &list, &listTable),
              0);
    EXPECT_EQ(variant.v.isBorrowed, 1u);
    EXPECT_EQ(variant.v.containerVtable, &listTable);
    void* first = nullptr;
    intptr_t count = 0;
    EXPECT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(&variant.v, &first, &count), 0);
    EXPECT_EQ(first, &list);  // the container, not an element
    EXPECT_EQ(count, 3);

    // A count beyond 32 bits is refused.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayEmpty(&variant.v, &intArray.t), 0);
    EXPECT_EQ(variant.v.arrayCount, 0);
    variant.v.arrayCount = int64_t(1) << 31;
    EXPECT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(&variant.v, &first, &count),
              kstd_persistentResult_arraySizeOverflow);
    variant.v.arrayCount = 0;
}

TEST(VariantObjectValues, PropertyPaths) {
    const TestTypes& types = testTypes();
    Shape shape;
    shape.width = 4;
    shape.inner.x = 17;
    Variant variant;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&variant.v, &types.shape->handle, &shape), 0);
    Property found;
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"width", &found.p), 0);
    EXPECT_EQ(nameOf(found.p), u"width");
    EXPECT_EQ(intOf(found.p), 4);
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inner.x", &found.p), 0);
    EXPECT_EQ(intOf(found.p), 17);
    // Exact names only, and a name must give a property.
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"Width", &found.p),
              kstd_persistentResult_propertyNotFound);
    EXPECT_EQ(nameOf(found.p), u"(null)");
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"widt", &found.p),
              kstd_persistentResult_propertyNotFound);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"hidden", &found.p),
              kstd_persistentResult_propertyNotFound);
    // Steps through values that are no objects, and empty parts.
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"width.x", &found.p),
              kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"next.width", &found.p),
              kstd_persistentResult_nullArgument);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inner.", &found.p),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u".x", &found.p),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, nullptr, &found.p),
              kstd_persistentResult_invalidPropertyName);

    // Paths run as deep as the objects go.
    Shape second, third;
    third.width = 33;
    second.next = &third;
    shape.next = &second;
    ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"next.next.width", &found.p), 0);
    EXPECT_EQ(intOf(found.p), 33);

    // A type whose declared property's type was never registered.
    Variant broken;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&broken.v, &types.broken->handle, &shape), 0);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&broken.v, u"lost", &found.p),
              kstd_persistentResult_typeNotRegistered);
    // Not an object at all.
    Variant number;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&number.v, 1), 0);
    EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&number.v, u"x", &found.p),
              kstd_persistentResult_wrongTypeKind);
}

}  // namespace
