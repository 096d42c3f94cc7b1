#include "property/info_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::info;

uint32_t matches(const Info& info, const char16_t* text) {
    uint32_t match = 2;
    EXPECT_EQ(kstd_persistentPropertyInfo_doesNameMatch(&info.d, text, &match), 0);
    return match;
}

TEST(PropertyInfo, FreshDescriptor) {
    Info info;
    const char16_t* name = u"x";
    EXPECT_EQ(kstd_persistentPropertyInfo_getName(&info.d, &name), 0);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(info.d.dataAccess, 2u);
    EXPECT_EQ(info.d.globalIndex, -1);
    // The type is empty: its readers fail and give their none values.
    int32_t coreTypeId = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_getCoreTypeId(&info.d, &coreTypeId), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(coreTypeId, -2);
}

TEST(PropertyInfo, NamesAreInternedAndMatchedExactly) {
    Info null(nullptr, kstd_persistentCoreTypeId_int);
    Info empty(u"", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(null.d.name.chars, nullptr);
    ASSERT_NE(empty.d.name.chars, nullptr);
    EXPECT_EQ(matches(null, nullptr), 1u);
    EXPECT_EQ(matches(null, u""), 0u);
    EXPECT_EQ(matches(empty, nullptr), 0u);
    EXPECT_EQ(matches(empty, u""), 1u);

    // Two buffers with one text, named in different calls, share one string.
    char16_t first[] = u"Width";
    char16_t second[] = u"Width";
    Info a(first, kstd_persistentCoreTypeId_double), b(second, kstd_persistentCoreTypeId_float);
    EXPECT_EQ(a.d.name.chars, b.d.name.chars);
    first[0] = u'X';
    EXPECT_EQ(matches(a, u"Width"), 1u);
    EXPECT_EQ(matches(a, u"width"), 0u);
    EXPECT_EQ(matches(a, u"Wid"), 0u);
    EXPECT_EQ(matches(a, u"Width2"), 0u);
    uint32_t equal = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqualPropertyName(&a.d, &b.d, &equal), 0);
    EXPECT_EQ(equal, 1u);
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqualPropertyName(&null.d, &empty.d, &equal), 0);
    EXPECT_EQ(equal, 0u);
}

TEST(PropertyInfo, Comparing) {
    Info original(u"depth", kstd_persistentCoreTypeId_k_Int64, 7);
    Info copy;
    ASSERT_EQ(kstd_persistentPropertyInfo_assign(&copy.d, &original.d), 0);
    EXPECT_EQ(equalInfos(original.d, copy.d), 1u);
    copy.d.globalIndex = 4;
    EXPECT_EQ(equalInfos(original.d, copy.d), 0u);
    EXPECT_EQ(equalInfos(original.d, copy.d, true), 1u);
    EXPECT_EQ(kstd_persistentPropertyInfo_assign(&copy.d, &copy.d), 0);
    EXPECT_EQ(copy.d.globalIndex, 4);
    Info otherAccess(u"depth", kstd_persistentCoreTypeId_k_Int64, 8);
    Info otherType(u"depth", kstd_persistentCoreTypeId_k_Int32, 7);
    EXPECT_EQ(equalInfos(original.d, otherAccess.d, true), 0u);
    EXPECT_EQ(equalInfos(original.d, otherType.d, true), 0u);

    // Empty types cannot be compared, unless a difference comes first.
    Info x, y;
    uint32_t equal = 2;
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqual(&x.d, &y.d, &equal), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(equal, 0u);
    y.d.dataAccess = 3;
    EXPECT_EQ(equalInfos(x.d, y.d), 0u);
}

TEST(PropertyInfo, SettingTypes) {
    Info info(u"count", kstd_persistentCoreTypeId_k_Int32, 5);
    uint32_t category = 9;
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeCategory(&info.d, &category), 0);
    EXPECT_EQ(category, 0u);

    // A bad core id fails after the data access and the name were set.
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&info.d, u"other", 52, 9),
              kstd_persistentResult_invalidCoreTypeId);
    EXPECT_EQ(nameOf(info.d), u"other");
    EXPECT_EQ(info.d.dataAccess, 9u);

    // A type name nobody registered gives an unregistered type of that name.
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info.d, u"later", u"InfoNotRegistered",
                                                                            2, 2),
              0);
    const char16_t* typeName = nullptr;
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeName(&info.d, &typeName), 0);
    EXPECT_EQ(std::u16string(typeName), u"InfoNotRegistered");
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeCategory(&info.d, &category),
              kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info.d, u"bad", u"", 0, 2),
              kstd_persistentResult_invalidTypeName);
}

TEST(PropertyInfo, SetsAndSchemas) {
    Info a(u"a", kstd_persistentCoreTypeId_int), b(u"b", kstd_persistentCoreTypeId_int);
    kstd_persistentTypeSchema first, second;
    kstd_persistentTypeSchema_construct(&first);
    kstd_persistentTypeSchema_construct(&second);
    EXPECT_EQ(first.globalIndex, -1);
    for (kstd_persistentTypeSchema* schema : {&first, &second}) {
        kstd_vector_kstd_persistentPropertyInfo_pushBack(&schema->infoSet.infos, &a.d);
        kstd_vector_kstd_persistentPropertyInfo_pushBack(&schema->infoSet.infos, &b.d);
    }
    second.globalIndex = 3;
    uint32_t equal = 2;
    EXPECT_EQ(kstd_persistentTypeSchema_compareEqual(&first, &second, &equal), 0);
    EXPECT_EQ(equal, 0u);
    EXPECT_EQ(kstd_persistentTypeSchema_compareEqualIgnoreGlobalIndex(&first, &second, &equal), 0);
    EXPECT_EQ(equal, 1u);
    // The descriptors' own indexes still count.
    static_cast<kstd_persistentPropertyInfo*>(second.infoSet.infos.base.begin)[1].globalIndex = 0;
    EXPECT_EQ(kstd_persistentTypeSchema_compareEqualIgnoreGlobalIndex(&first, &second, &equal), 0);
    EXPECT_EQ(equal, 0u);
    // Vectors of sets compare set by set.
    kstd_vector_kstd_persistentPropertyInfoSet sets, otherSets;
    kstd_vector_kstd_persistentPropertyInfoSet_construct(&sets, 2);
    kstd_vector_kstd_persistentPropertyInfoSet_construct(&otherSets, 2);
    EXPECT_EQ(kstd_vector_kstd_persistentPropertyInfoSet_compareEqual(&sets, &otherSets, &equal), 0);
    EXPECT_EQ(equal, 1u);
    kstd_persistentPropertyInfoSet* last = nullptr;
    kstd_vector_kstd_persistentPropertyInfoSet_getElement(&otherSets, 1, &last);
    kstd_persistentPropertyInfoSet_assign(last, &first.infoSet);
    EXPECT_EQ(kstd_vector_kstd_persistentPropertyInfoSet_compareEqual(&sets, &otherSets, &equal), 0);
    EXPECT_EQ(equal, 0u);

    kstd_vector_kstd_persistentPropertyInfoSet_destruct(&sets);
    kstd_vector_kstd_persistentPropertyInfoSet_destruct(&otherSets);
    kstd_persistentTypeSchema_destruct(&first);
    kstd_persistentTypeSchema_destruct(&second);
}

}  // namespace
