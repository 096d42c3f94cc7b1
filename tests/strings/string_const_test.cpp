#include <string>
#include <tuple>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::NoLeaks;

struct Text {
    kstd_stringConst value;
    Text() { kstd_stringConst_construct(&value); }
    explicit Text(const char16_t* text) : Text() { EXPECT_EQ(kstd_stringConst_assignString(&value, text), 0); }
    ~Text() { kstd_stringConst_destruct(&value); }
    const char16_t* chars() const {
        const char16_t* text = nullptr;
        kstd_stringConst_getString(&value, &text);
        return text;
    }
    uint32_t hash() const {
        uint32_t h = 0;
        kstd_stringConst_hash(&value, &h);
        return h;
    }
};

// Null and empty differ (empty points into the record and needs no holder);
// the hash is djb2 over the units; assigning a record its own text is safe.
TEST(StringConst, NullEmptyTextAndHash) {
    NoLeaks leaks;
    Text s;
    EXPECT_EQ(s.chars(), nullptr);
    EXPECT_EQ(s.hash(), 5381u);
    ASSERT_EQ(kstd_stringConst_assignString(&s.value, u""), 0);
    EXPECT_EQ(s.chars(), &s.value.emptyChar);
    EXPECT_EQ(s.hash(), 5381u);
    uint32_t equal = 9;
    kstd_stringConst_compareEqualString(&s.value, nullptr, &equal);
    EXPECT_EQ(equal, 0u);
    EXPECT_EQ(leaks.leaked(), 0) << "the empty string needs no holder";

    for (auto [text, hash] : {std::pair{u"abc", 193485963u}, std::pair{u"a", 177670u}}) {
        ASSERT_EQ(kstd_stringConst_assignString(&s.value, text), 0);
        EXPECT_EQ(s.hash(), hash);
    }
    ASSERT_EQ(kstd_stringConst_assignString(&s.value, s.chars()), 0);
    EXPECT_EQ(std::u16string(s.chars()), u"a");
}

// Null orders before empty; units compare unsigned.
TEST(StringConst, ComparisonOrder) {
    const std::tuple<const char16_t*, const char16_t*, int32_t> cases[] = {
        {u"a", u"ab", -1}, {u"b", u"a", 1}, {nullptr, u"", -1}, {nullptr, nullptr, 0}, {u"a", u"\xE9", -1}};
    for (auto [x, y, expected] : cases) {
        Text a(x), b(y);
        int32_t records = 7, withText = 7;
        kstd_stringConst_compare(&a.value, &b.value, &records);
        kstd_stringConst_compareString(&a.value, y, &withText);
        EXPECT_EQ(records, expected) << vexpers::test::ascii(x) << " " << vexpers::test::ascii(y);
        EXPECT_EQ(withText, expected) << vexpers::test::ascii(x) << " " << vexpers::test::ascii(y);
    }
}

TEST(StringConst, AllocationFailuresAndRequiredPointers) {
    Text s(u"keep");
    const int64_t sites = vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_stringConst_assignString(&s.value, u"replacement");
            if (result < 0) {
                EXPECT_TRUE(s.chars() == nullptr || std::u16string(s.chars()) == u"keep");
            }
            return result;
        },
        [&] { kstd_stringConst_assignString(&s.value, u"keep"); });
    EXPECT_EQ(sites, 2) << "one holder and one character block";
    // Without a holder the record keeps its text; characters that cannot be
    // copied leave it the null string.
    for (auto [site, keeps] : {std::pair{1, true}, {2, false}}) {
        kstd_stringConst_assignString(&s.value, u"keep");
        ksys_memory_failAt(site, 0);
        EXPECT_EQ(kstd_stringConst_assignString(&s.value, u"replacement"), ksys_result_outOfMemory);
        ksys_memory_failAt(0, 0);
        EXPECT_EQ(vexpers::test::ascii(s.chars()), keeps ? "keep" : "(null)") << site;
    }

    AssertRecorder faults;
    const char16_t* text = u"x";
    EXPECT_EQ(kstd_stringConst_getString(nullptr, &text), ksys_result_preconditionFailed);
    EXPECT_EQ(text, nullptr) << "the output is cleared before the check of the record";
    EXPECT_EQ(kstd_stringConst_hash(&s.value, nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 2);
    EXPECT_GT(faults.lastLine(), 0);
}

}  // namespace
