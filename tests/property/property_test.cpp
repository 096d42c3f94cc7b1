// The property: descriptor and value together. Its value functions forward
// to the variant's, whose conversions the variant tests cover.

#include <tuple>

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

// Leaf flag and kind, array flag and kind, null-pointer flag and item count.
using Kinds = std::tuple<uint32_t, uint32_t, uint32_t, uint32_t, uint32_t, int64_t>;
Kinds kindsOf(const kstd_persistentProperty* property) {
    Kinds k{};
    auto& [isLeaf, leaf, isArray, array, isNull, items] = k;
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &isLeaf, &leaf), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsArray(property, &isArray, &array), 0);
    EXPECT_EQ(kstd_persistentProperty_getIsNullPointer(property, &isNull), 0);
    EXPECT_EQ(kstd_persistentProperty_getNumItemsIfArray(property, &items), 0);
    return k;
}

TEST(Property, FreshTypedAndCombinedResets) {
    Property property, declared;
    Variant value;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(property, u"Width", 0, 5), 0);
    EXPECT_EQ(kindsOf(property), (Kinds{1, kstd_persistentLeafKind_coreValue, 0, kstd_persistentArrayKind_none, 0, 0}));

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
}

TEST(Property, LeafAndArrayKindsFollowTheValue) {
    Type intPointer, doubles;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", kstd_persistentTypeDerivation_pointer, 1, intPointer), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"double", kstd_persistentTypeDerivation_array, 1, doubles), 0);
    Info info;
    Property property;

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(info, u"p", intPointer, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValuePointerNull(property, info), 0);
    EXPECT_EQ(kindsOf(property), (Kinds{1, kstd_persistentLeafKind_nullPointer, 0, 0, 1, 0}));

    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(info, u"a", doubles, 2), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueArrayEmpty(property, info), 0);
    EXPECT_EQ(kindsOf(property),
              (Kinds{1, kstd_persistentLeafKind_emptyArray, 1, kstd_persistentArrayKind_coreItems, 0, 0}));

    // A plain value of an unregistered type: nothing is written.
    ASSERT_EQ(kstd_persistentVariant_resetTypeName(&property->value, u"PropTestNoSuchType"), 0);
    uint32_t flag = 7, leaf = 7;
    EXPECT_EQ(kstd_persistentProperty_getIsLeaf(property, &flag, &leaf), C8);
    EXPECT_EQ(std::make_pair(flag, leaf), std::make_pair(7u, 7u));
}

}  // namespace
