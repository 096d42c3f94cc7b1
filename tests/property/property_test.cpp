// The property: descriptor and value together. Its value functions forward
// to the variant's, whose conversions the variant tests cover.

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

// Leaf flag and kind, array flag and kind, null-pointer flag and item count.
struct Kinds {
    uint32_t isLeaf, leaf, isArray, array, isNull;
    int64_t items;
    bool operator==(const Kinds&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Kinds& k) {
    return os << "leaf " << k.isLeaf << "/" << k.leaf << " array " << k.isArray << "/" << k.array << " null "
              << k.isNull << " items " << k.items;
}
Kinds kindsOf(const kstd_persistentProperty* property) {
    Kinds k{};
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &k.isLeaf, &k.leaf), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsArray(property, &k.isArray, &k.array), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsNullPointer(property, &k.isNull), 0);
    EXPECT_EQ(kstd_persistentProperty_getNumItemsIfArray(property, &k.items), 0);
    return k;
}

TEST(Property, FreshTypedAndCombinedResets) {
    Property property, declared;
    Variant value;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(property, u"Width", 0, 5), 0);
    EXPECT_EQ(kindsOf(property), (Kinds{1, kstd_persistentLeafKind_coreValue, 0, kstd_persistentArrayKind_none, 0, 0}));

    // The typed get converts, with the variant's range checks.
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int64(property, u"Big", 1, 300), 0);
    EXPECT_EQ(outOf<int8_t>(D0, kstd_persistentProperty_getValue_k_Int8, property), 0);

    // A value that cannot be stored leaves the new descriptor with the old
    // value's parts reset: characters are declared but never held.
    EXPECT_EQ(kstd_persistentProperty_resetInfoAndValue_char(property, u"Letter", 4, 'a'), CA);
    EXPECT_EQ(nameOf(property.v), u"Letter");
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getCoreTypeId, property), kstd_persistentCoreTypeId_char);

    // The descriptor's type is the declared one; the value's type may differ.
    ASSERT_EQ(kstd_persistentVariant_setValue_double(value, 2.5), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(declared, u"Declared", 2, 1), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue(property, &declared->info, value), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getCoreTypeId, property), kstd_persistentCoreTypeId_int);
    Type held;
    ASSERT_EQ(kstd_persistentProperty_getValueType(property, held), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_getCoreTypeId, held), kstd_persistentCoreTypeId_double);

    // String forms hold their own core type and convert on the way out.
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueStringA(property, u"Town", 2, "K\xc3\xb6ln"), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getCoreTypeId, property), kstd_persistentCoreTypeId_stringA);
    char16_t* wide = outOf<char16_t*>(0, kstd_persistentProperty_getValueCloneStringW, property);
    EXPECT_EQ(text(wide), u"K\u00f6ln");
    freeBlock(wide);
}

TEST(Property, LeafAndArrayKindsFollowTheValue) {
    const ModuleTypes& types = moduleTypes();
    Type intPointer, doubles, ints, widgets;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_pointer, 1, intPointer), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"double", kstd_persistentTypeDerivation_array, 1, doubles), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_array, 1, ints), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(widgets, types.widget, kstd_persistentTypeDerivation_array),
              0);
    Info info;
    Property property;

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(info, u"p", intPointer, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValuePointerNull(property, info), 0);
    EXPECT_EQ(kindsOf(property), (Kinds{1, kstd_persistentLeafKind_nullPointer, 0, 0, 1, 0}));

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(info, u"a", doubles, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueArrayEmpty(property, info), 0);
    EXPECT_EQ(kindsOf(property),
              (Kinds{1, kstd_persistentLeafKind_emptyArray, 1, kstd_persistentArrayKind_coreItems, 0, 0}));

    // Three allocated items, or three in a container: no leaf.
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueArrayAndAlloc(property, info, 3, nullptr, nullptr), 0);
    EXPECT_EQ(kindsOf(property), (Kinds{0, 0, 1, kstd_persistentArrayKind_coreItems, 0, 3}));
    Box list{{1, 2, 3}, 3};
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&property->value, ints, &list, boxOperations()),
              0);
    EXPECT_EQ(kindsOf(property), (Kinds{0, 0, 1, kstd_persistentArrayKind_coreItems, 0, 3}));

    // An array of objects is of the other kind; an object without its object
    // is a null-pointer leaf, an enum is decomposed.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayEmpty(&property->value, widgets), 0);
    uint32_t flag = 0, leaf = 0, array = 0;
    EXPECT_EQ(kstd_persistentProperty_getIsArray(property, &flag, &array), 0);
    EXPECT_EQ(array, kstd_persistentArrayKind_otherItems);
    ASSERT_EQ(kstd_persistentVariant_resetType(&property->value, types.widget), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &flag, &leaf), 0);
    EXPECT_EQ(leaf, kstd_persistentLeafKind_nullPointer);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(&property->value, types.color, 3), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &flag, nullptr), 0);
    EXPECT_EQ(flag, 0u);

    // A plain value of an unregistered type: nothing is written.
    ASSERT_EQ(kstd_persistentVariant_resetTypeName(&property->value, u"PropTestNoSuchType"), 0);
    flag = leaf = 7;
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &flag, &leaf), C8);
    EXPECT_EQ(std::make_pair(flag, leaf), std::make_pair(7u, 7u));
}

}  // namespace
