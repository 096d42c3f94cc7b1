#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::prop;

TEST(Property, FreshTypedAndCombinedResets) {
    Property property;
    EXPECT_EQ(nameOf(property.p), u"(null)");
    uint32_t access = 0;
    EXPECT_EQ(kstd_persistentProperty_getDataAccess(&property.p, &access), 0);
    EXPECT_EQ(access, 2u);

    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(&property.p, u"Width", 0, 5), 0);
    int32_t coreTypeId = -1;
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&property.p, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_int);
    EXPECT_EQ(intOf(property.p), 5);
    EXPECT_EQ(kstd_persistentProperty_getDataAccess(&property.p, &access), 0);
    EXPECT_EQ(access, 0u);
    uint32_t flag = 2, kind = 9;
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(&property.p, &flag, &kind), 0);
    EXPECT_EQ(flag, 1u);
    EXPECT_EQ(kind, kstd_persistentLeafKind_coreValue);
    EXPECT_EQ(kstd_persistentProperty_getIsArray(&property.p, &flag, &kind), 0);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(kind, kstd_persistentArrayKind_none);

    // The typed get converts, with the variant's range checks.
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int64(&property.p, u"Big", 1, 300), 0);
    int8_t small = 7;
    EXPECT_EQ(kstd_persistentProperty_getValue_k_Int8(&property.p, &small), kstd_persistentResult_valueOutOfRange);
    EXPECT_EQ(small, 0);
    double wide = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_double(&property.p, &wide), 0);
    EXPECT_EQ(wide, 300.0);

    // A value that cannot be stored leaves the new descriptor with the old
    // value's parts reset: characters are declared but never held.
    EXPECT_EQ(kstd_persistentProperty_resetInfoAndValue_char(&property.p, u"Letter", 4, 'a'),
              kstd_persistentResult_notSupported);
    EXPECT_EQ(nameOf(property.p), u"Letter");
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&property.p, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_char);

    // The descriptor's type is the declared one; the value's type may differ.
    Variant value;
    ASSERT_EQ(kstd_persistentVariant_setValue_double(&value.v, 2.5), 0);
    Property declared;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(&declared.p, u"Declared", 2, 1), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue(&property.p, &declared.p.info, &value.v), 0);
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&property.p, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_int);
    TypeHandle held;
    ASSERT_EQ(kstd_persistentProperty_getValueType(&property.p, &held.t), 0);
    EXPECT_EQ(kstd_persistentType_getCoreTypeId(&held.t, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_double);

    // The value pointer is the property's own variant.
    const kstd_persistentVariant* inside = nullptr;
    ASSERT_EQ(kstd_persistentProperty_getValuePtrConst(&property.p, &inside), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_UInt16(&property.p, u"Later", 2, 42), 0);
    unsigned short later = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_ushort(inside, &later), 0);
    EXPECT_EQ(later, 42);
}

TEST(Property, StringForms) {
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueStringA(&property.p, u"Town", 2, "K\xc3\xb6ln"), 0);
    int32_t coreTypeId = -1;
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&property.p, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_stringA);
    char16_t* wide = nullptr;
    ASSERT_EQ(kstd_persistentProperty_getValueCloneStringW(&property.p, &wide), 0);
    EXPECT_EQ(text(wide), u"K\u00f6ln");
    void* memory = wide;
    ksys_memory_free_internal(&memory);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueString32(&property.p, u"Wide", 2, U"\U0001F600"), 0);
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&property.p, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_string32);
    ASSERT_EQ(kstd_persistentProperty_getValueCloneString16(&property.p, &wide), 0);
    EXPECT_EQ(text(wide), u"\U0001F600");
    memory = wide;
    ksys_memory_free_internal(&memory);
}

TEST(Property, LeafAndArrayKindsFollowTheValue) {
    TypeHandle intPointer, doubles, ints;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_pointer, 1, &intPointer.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"double", kstd_persistentTypeDerivation_array, 1, &doubles.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_array, 1, &ints.t), 0);
    Property info;
    Property property;
    auto kinds = [&](uint32_t* leafKind, uint32_t* arrayKind, uint32_t* isNull, int64_t* items) {
        uint32_t flag = 0;
        EXPECT_EQ(kstd_persistentProperty_getIsLeaf(&property.p, &flag, leafKind), 0);
        EXPECT_EQ(flag, *leafKind != 0 ? 1u : 0u);
        EXPECT_EQ(kstd_persistentProperty_getIsArray(&property.p, &flag, arrayKind), 0);
        EXPECT_EQ(flag, *arrayKind != 0 ? 1u : 0u);
        EXPECT_EQ(kstd_persistentProperty_getIsNullPointer(&property.p, isNull), 0);
        EXPECT_EQ(kstd_persistentProperty_getNumItemsIfArray(&property.p, items), 0);
    };
    uint32_t leaf = 9, array = 9, isNull = 9;
    int64_t items = -1;

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&info.p.info, u"p", &intPointer.t, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValuePointerNull(&property.p, &info.p.info), 0);
    kinds(&leaf, &array, &isNull, &items);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_nullPointer);
    EXPECT_EQ(isNull, 1u);
    EXPECT_EQ(array, 0u);

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&info.p.info, u"a", &doubles.t, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueArrayEmpty(&property.p, &info.p.info), 0);
    kinds(&leaf, &array, &isNull, &items);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_emptyArray);
    EXPECT_EQ(array, kstd_persistentArrayKind_coreItems);
    EXPECT_EQ(isNull, 0u);
    EXPECT_EQ(items, 0);

    // Three allocated items: not a leaf; the container description says so.
    void* allocated = nullptr;
    uint32_t elementSize = 0;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueArrayAndAlloc(&property.p, &info.p.info, 3, &allocated,
                                                                     &elementSize),
              0);
    kinds(&leaf, &array, &isNull, &items);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_none);
    EXPECT_EQ(items, 3);
    EXPECT_EQ(elementSize, 8u);
    void* container = &info;
    uint32_t containerValue = 9, size = 0;
    void* begin = nullptr;
    intptr_t described = 0;
    const kstd_persistentContainerVtable* table = &listTable;
    TypeHandle itemType;
    ASSERT_EQ(kstd_persistentProperty_getContainer(&property.p, &container, &containerValue, &size, &begin,
                                                   &described, &table, &itemType.t),
              0);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(containerValue, 0u);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(begin, allocated);
    EXPECT_EQ(described, 3);
    EXPECT_EQ(table, nullptr);
    uint32_t itemDerivation = 9;
    EXPECT_EQ(kstd_persistentType_getTypeDerivation(&itemType.t, &itemDerivation), 0);
    EXPECT_EQ(itemDerivation, kstd_persistentTypeDerivation_value);

    // Three items in a container: not a leaf.
    IntList list{{1, 2, 3, 0}, 3};
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&property.p.value, &ints.t, &list, &listTable),
              0);
    kinds(&leaf, &array, &isNull, &items);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_none);
    EXPECT_EQ(items, 3);
    const void* first = nullptr;
    intptr_t count = 0;
    EXPECT_EQ(kstd_persistentProperty_getArrayBeginSizeIntPtrConst(&property.p, &first, &count), 0);
    EXPECT_EQ(first, &list);
    EXPECT_EQ(count, 3);

    // An array of objects is of the other kind; an object without its object
    // is a null-pointer leaf, an enum is decomposed.
    const TestTypes& types = testTypes();
    TypeHandle shapes;
    ASSERT_EQ(kstd_persistentTypeGetType(u"PropTestShape", kstd_persistentTypeDerivation_array, 1, &shapes.t), 0);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayEmpty(&property.p.value, &shapes.t), 0);
    uint32_t flag = 0;
    EXPECT_EQ(kstd_persistentProperty_getIsArray(&property.p, &flag, &array), 0);
    EXPECT_EQ(array, kstd_persistentArrayKind_otherItems);
    ASSERT_EQ(kstd_persistentVariant_resetType(&property.p.value, &types.shape->handle), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(&property.p, &flag, &leaf), 0);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_nullPointer);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(&property.p.value, &types.mood->handle, 3), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(&property.p, &flag, nullptr), 0);
    EXPECT_EQ(flag, 0u);

    // A plain value of an unregistered type: nothing is written.
    ASSERT_EQ(kstd_persistentVariant_resetTypeName(&property.p.value, u"PropTestNoSuchType"), 0);
    flag = 7;
    leaf = 7;
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(&property.p, &flag, &leaf), kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(flag, 7u);
    EXPECT_EQ(leaf, 7u);
}

}  // namespace
