#include "property/info_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::info;

TEST(PropertyInfo, FreshDescriptor) {
    Info info;
    const char16_t* name = u"x";
    EXPECT_EQ(kstd_persistentPropertyInfo_getName(&info.d, &name), 0);
    EXPECT_EQ(name, nullptr);
    uint32_t access = 0;
    int32_t index = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_getDataAccess(&info.d, &access), 0);
    EXPECT_EQ(kstd_persistentPropertyInfo_getGlobalIndex(&info.d, &index), 0);
    EXPECT_EQ(access, 2u);
    EXPECT_EQ(index, -1);

    // The type is empty: its readers fail and leave their none values.
    const char16_t* typeName = u"x";
    int32_t coreTypeId = 0;
    uint32_t category = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeName(&info.d, &typeName), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(typeName, nullptr);
    EXPECT_EQ(kstd_persistentPropertyInfo_getCoreTypeId(&info.d, &coreTypeId), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(coreTypeId, -2);
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeCategory(&info.d, &category), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(category, 7u);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentPropertyInfo_getName(nullptr, &name), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&info.d, u"a", nullptr, 2),
              ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 2);
}

TEST(PropertyInfo, NullAndEmptyNamesAndExactMatching) {
    Info null(nullptr, kstd_persistentCoreTypeId_int);
    Info empty(u"", kstd_persistentCoreTypeId_int);
    Info named(u"Width", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(null.d.name.chars, nullptr);
    ASSERT_NE(empty.d.name.chars, nullptr);
    EXPECT_EQ(empty.d.name.chars[0], 0);

    auto matches = [](const Info& info, const char16_t* text) {
        uint32_t match = 2;
        EXPECT_EQ(kstd_persistentPropertyInfo_doesNameMatch(&info.d, text, &match), 0);
        return match;
    };
    EXPECT_EQ(matches(null, nullptr), 1u);
    EXPECT_EQ(matches(null, u""), 0u);
    EXPECT_EQ(matches(empty, nullptr), 0u);
    EXPECT_EQ(matches(empty, u""), 1u);
    EXPECT_EQ(matches(named, u"Width"), 1u);
    EXPECT_EQ(matches(named, u"width"), 0u);
    EXPECT_EQ(matches(named, u"Wid"), 0u);
    EXPECT_EQ(matches(named, u"Width2"), 0u);
    EXPECT_EQ(matches(named, nullptr), 0u);

    uint32_t equal = 2;
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqualPropertyName(&null.d, &empty.d, &equal), 0);
    EXPECT_EQ(equal, 0u);
}

TEST(PropertyInfo, NamesAreInterned) {
    // Two buffers with the same text, named in different calls.
    char16_t first[] = u"sharedName";
    char16_t second[] = u"sharedName";
    Info a(first, kstd_persistentCoreTypeId_double);
    Info b(second, kstd_persistentCoreTypeId_float);
    EXPECT_NE(a.d.name.chars, first);
    EXPECT_EQ(a.d.name.chars, b.d.name.chars);
    uint32_t equal = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqualPropertyName(&a.d, &b.d, &equal), 0);
    EXPECT_EQ(equal, 1u);
    EXPECT_EQ(equalInfos(a.d, b.d), 0u);  // the types differ

    // The interned text outlives the caller's buffer.
    first[0] = u'X';
    EXPECT_EQ(nameOf(a.d), u"sharedName");
}

TEST(PropertyInfo, ComparingCopyingAndAssigning) {
    Info original(u"depth", kstd_persistentCoreTypeId_k_Int64, 7);
    Info copy;
    ASSERT_EQ(kstd_persistentPropertyInfo_assign(&copy.d, &original.d), 0);
    EXPECT_EQ(equalInfos(original.d, copy.d), 1u);

    copy.d.globalIndex = 4;
    EXPECT_EQ(equalInfos(original.d, copy.d), 0u);
    EXPECT_EQ(equalInfos(original.d, copy.d, true), 1u);
    ASSERT_EQ(kstd_persistentPropertyInfo_assign(&original.d, &copy.d), 0);
    EXPECT_EQ(original.d.globalIndex, 4);

    // Self-assignment changes nothing.
    EXPECT_EQ(kstd_persistentPropertyInfo_assign(&copy.d, &copy.d), 0);
    EXPECT_EQ(nameOf(copy.d), u"depth");
    EXPECT_EQ(copy.d.dataAccess, 7u);

    // A different data access alone makes descriptors unequal.
    Info otherAccess(u"depth", kstd_persistentCoreTypeId_k_Int64, 8);
    EXPECT_EQ(equalInfos(original.d, otherAccess.d, true), 0u);

    // Heap forms copy all four fields; reset returns to the fresh state.
    kstd_persistentPropertyInfo* clone = nullptr;
    ASSERT_EQ(kstd_persistentPropertyInfo_newClone(&clone, &original.d), 0);
    EXPECT_EQ(equalInfos(*clone, original.d), 1u);
    ASSERT_EQ(kstd_persistentPropertyInfo_reset(clone), 0);
    EXPECT_EQ(clone->name.chars, nullptr);
    EXPECT_EQ(clone->dataAccess, 2u);
    EXPECT_EQ(clone->globalIndex, -1);
    EXPECT_EQ(kstd_persistentPropertyInfo_delete(&clone), 0);
    EXPECT_EQ(clone, nullptr);
}

TEST(PropertyInfo, EmptyTypesCannotBeCompared) {
    Info a, b;
    uint32_t equal = 2;
    EXPECT_EQ(kstd_persistentPropertyInfo_compareEqual(&a.d, &b.d, &equal), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(equal, 0u);
    // A difference found before the types are reached is an ordinary answer.
    b.d.dataAccess = 3;
    EXPECT_EQ(equalInfos(a.d, b.d), 0u);
}

TEST(PropertyInfo, SettingTypes) {
    Info info;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&info.d, u"count", kstd_persistentCoreTypeId_k_Int32,
                                                                     5),
              0);
    int32_t coreTypeId = 0;
    uint32_t category = 9;
    EXPECT_EQ(kstd_persistentPropertyInfo_getCoreTypeId(&info.d, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, 4);
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeCategory(&info.d, &category), 0);
    EXPECT_EQ(category, 0u);

    // A bad core id fails after the data access and the name were set.
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&info.d, u"other", 52, 9),
              kstd_persistentResult_invalidCoreTypeId);
    EXPECT_EQ(nameOf(info.d), u"other");
    EXPECT_EQ(info.d.dataAccess, 9u);

    // A type name nobody registered gives an unregistered type of that name.
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info.d, u"later", u"InfoNotRegistered", 2,
                                                                            2),
              0);
    const char16_t* typeName = nullptr;
    uint32_t derivation = 0;
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeName(&info.d, &typeName), 0);
    EXPECT_EQ(std::u16string(typeName), u"InfoNotRegistered");
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeDerivation(&info.d, &derivation), 0);
    EXPECT_EQ(derivation, 2u);
    EXPECT_EQ(kstd_persistentPropertyInfo_getTypeCategory(&info.d, &category),
              kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info.d, u"bad", u"", 0, 2),
              kstd_persistentResult_invalidTypeName);

    // resetNameTypeAccess shares the given type.
    Info copy;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&copy.d, u"later", &info.d.type, 2), 0);
    EXPECT_EQ(copy.d.type.record.shared, info.d.type.record.shared);
}

}  // namespace
