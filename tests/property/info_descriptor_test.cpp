#include <tuple>

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

uint32_t matches(const Info& info, const char16_t* text) {
    return outOf<uint32_t>(0, kstd_persistentPropertyInfo_doesNameMatch, info, text);
}

uint32_t equalInfos(const Info& a, const Info& b, bool ignoreGlobalIndex = false) {
    return outOf<uint32_t>(0,
                           ignoreGlobalIndex ? kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex
                                             : kstd_persistentPropertyInfo_compareEqual,
                           a, b);
}

TEST(PropertyInfo, NamesAreInternedAndMatchedExactly) {
    Info null(nullptr, kstd_persistentCoreTypeId_int);
    Info empty(u"", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(null->name.chars, nullptr);
    ASSERT_NE(empty->name.chars, nullptr);
    const std::tuple<const Info*, const char16_t*, uint32_t> cases[] = {
        {&null, nullptr, 1}, {&null, u"", 0}, {&empty, nullptr, 0}, {&empty, u"", 1}};
    for (auto [info, text, expected] : cases) EXPECT_EQ(matches(*info, text), expected) << ascii(text);

    // Two buffers with one text, named in different calls, share one string.
    char16_t first[] = u"Width";
    char16_t second[] = u"Width";
    Info a(first, kstd_persistentCoreTypeId_double), b(second, kstd_persistentCoreTypeId_float);
    EXPECT_EQ(a->name.chars, b->name.chars);
    first[0] = u'X';
    EXPECT_EQ(matches(a, u"Width"), 1u);
    for (const char16_t* other : {u"width", u"Wid", u"Width2"}) EXPECT_EQ(matches(a, other), 0u);
}

TEST(PropertyInfo, Comparing) {
    Info original(u"depth", kstd_persistentCoreTypeId_k_Int64, 7), copy;
    ASSERT_EQ(kstd_persistentPropertyInfo_assign(copy, original), 0);
    EXPECT_EQ(equalInfos(original, copy), 1u);
    copy->globalIndex = 4;
    EXPECT_EQ(equalInfos(original, copy), 0u);
    EXPECT_EQ(equalInfos(original, copy, true), 1u);
    Info otherType(u"depth", kstd_persistentCoreTypeId_k_Int32, 7);
    EXPECT_EQ(equalInfos(original, otherType, true), 0u);

    // Empty types cannot be compared, unless a difference comes first.
    Info x, y;
    EXPECT_EQ(outOf<uint32_t>(Empty, kstd_persistentPropertyInfo_compareEqual, x, y), 0u);
    y->dataAccess = 3;
    EXPECT_EQ(equalInfos(x, y), 0u);
}

TEST(PropertyInfo, SettingTypes) {
    Info info(u"count", kstd_persistentCoreTypeId_k_Int32, 5);

    // A bad core id fails after the data access and the name were set.
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(info, u"other", 52, 9), C5);
    EXPECT_EQ(nameOf(info.v), u"other");
    EXPECT_EQ(info->dataAccess, 9u);

    // A type name nobody registered gives an unregistered type of that name.
    ASSERT_EQ(
        kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, u"later", u"InfoNotRegistered", 2, 2), 0);
    EXPECT_EQ(text(outOf<const char16_t*>(0, kstd_persistentPropertyInfo_getTypeName, info)), u"InfoNotRegistered");
    EXPECT_EQ(outOf<uint32_t>(C8, kstd_persistentPropertyInfo_getTypeCategory, info), 7u);
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, u"bad", u"", 0, 2), C6);
}

}  // namespace
