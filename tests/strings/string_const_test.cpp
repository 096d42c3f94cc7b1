#include <cstring>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

struct Text {
    kstd_stringConst value;
    Text() { kstd_stringConst_construct(&value); }
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

int32_t order(const kstd_stringConst& s, const char16_t* text) {
    int32_t result = 7;
    kstd_stringConst_compareString(&s, text, &result);
    return result;
}

TEST(StringConst, NullEmptyAndTextStates) {
    LiveBlockCheck leaks;
    {
        Text s;
        EXPECT_EQ(s.chars(), nullptr);
        EXPECT_EQ(s.hash(), 5381u);
        EXPECT_EQ(order(s.value, nullptr), 0);
        EXPECT_EQ(order(s.value, u""), -1);

        ASSERT_EQ(kstd_stringConst_assignString(&s.value, u""), 0);
        EXPECT_EQ(s.chars(), &s.value.emptyChar);
        EXPECT_EQ(s.hash(), 5381u);
        uint32_t equal = 9;
        kstd_stringConst_compareEqualString(&s.value, u"", &equal);
        EXPECT_EQ(equal, 1u);
        kstd_stringConst_compareEqualString(&s.value, nullptr, &equal);
        EXPECT_EQ(equal, 0u);
        EXPECT_EQ(leaks.leaked(), 0) << "the empty string needs no holder";

        ASSERT_EQ(kstd_stringConst_assignString(&s.value, u"abc"), 0);
        EXPECT_EQ(s.hash(), 193485963u);
        EXPECT_EQ(s.value.length, 3);
        ASSERT_EQ(kstd_stringConst_assignString(&s.value, u"a"), 0);
        EXPECT_EQ(s.hash(), 177670u);
        ASSERT_EQ(kstd_stringConst_assignString(&s.value, u"ab"), 0);
        const uint32_t ab = s.hash();
        ASSERT_EQ(kstd_stringConst_assignString(&s.value, u"ba"), 0);
        EXPECT_NE(s.hash(), ab);

        // Assigning the record's own text to it is safe.
        ASSERT_EQ(kstd_stringConst_assignString(&s.value, s.chars()), 0);
        EXPECT_EQ(std::u16string(s.chars()), u"ba");
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(StringConst, CopiesShareHoldersAndEmptyCopiesPointAtThemselves) {
    LiveBlockCheck leaks;
    {
        Text copy;
        Text emptyCopy;
        {
            Text source;
            kstd_stringConst_assignString(&source.value, u"shared");
            ASSERT_EQ(kstd_stringConst_assign(&copy.value, &source.value), 0);
            EXPECT_EQ(copy.chars(), source.chars()) << "a copy shares the characters";

            Text emptySource;
            kstd_stringConst_resetEmptyString(&emptySource.value);
            ASSERT_EQ(kstd_stringConst_assign(&emptyCopy.value, &emptySource.value), 0);
            EXPECT_EQ(emptyCopy.chars(), &emptyCopy.value.emptyChar);

            // New text for the source leaves the copy's text alone.
            kstd_stringConst_assignString(&source.value, u"changed");
            EXPECT_EQ(std::u16string(copy.chars()), u"shared");
        }
        EXPECT_EQ(std::u16string(copy.chars()), u"shared") << "the holder survives the source";
        EXPECT_EQ(emptyCopy.chars(), &emptyCopy.value.emptyChar);
        EXPECT_EQ(*emptyCopy.chars(), u'\0');
        EXPECT_EQ(kstd_stringConst_assign(&copy.value, &copy.value), 0);
        EXPECT_EQ(std::u16string(copy.chars()), u"shared");
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(StringConst, ComparisonOrder) {
    Text a, ab, b, capitalB, empty;
    kstd_stringConst_assignString(&a.value, u"a");
    kstd_stringConst_assignString(&ab.value, u"ab");
    kstd_stringConst_assignString(&b.value, u"b");
    kstd_stringConst_assignString(&capitalB.value, u"B");
    kstd_stringConst_resetEmptyString(&empty.value);
    Text null;
    auto compare = [](const Text& x, const Text& y) {
        int32_t result = 7;
        kstd_stringConst_compare(&x.value, &y.value, &result);
        return result;
    };
    EXPECT_EQ(compare(a, ab), -1);
    EXPECT_EQ(compare(ab, b), -1);
    EXPECT_EQ(compare(b, a), 1);
    EXPECT_EQ(compare(capitalB, a), -1);
    EXPECT_EQ(compare(null, empty), -1);
    EXPECT_EQ(compare(empty, null), 1);
    EXPECT_EQ(compare(null, null), 0);
    EXPECT_EQ(compare(empty, empty), 0);
    // Units compare unsigned: a unit above 0x7FFF orders after ASCII.
    EXPECT_EQ(order(a.value, u"\xE9"), -1);
}

TEST(StringConst, AllocationFailuresLeaveTheRecordUnchanged) {
    Text s;
    kstd_stringConst_assignString(&s.value, u"keep");
    const int64_t sites = vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_stringConst_assignString(&s.value, u"replacement");
            if (result < 0) {
                EXPECT_EQ(std::u16string(s.chars()), u"keep");
            }
            return result;
        },
        [&] { kstd_stringConst_assignString(&s.value, u"keep"); });
    EXPECT_EQ(sites, 2) << "one holder and one character block";

    kstd_stringConst* heap = nullptr;
    vexpers::test::sweepAllocationFailures([&] { return kstd_stringConst_newClone(&heap, &s.value); },
                                           [&] { kstd_stringConst_delete(&heap); });
}

TEST(StringConst, NullRequiredPointersReachTheAssertionHook) {
    AssertRecorder faults;
    const char16_t* text = u"x";
    EXPECT_EQ(kstd_stringConst_construct(nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_stringConst_getString(nullptr, &text), ksys_result_preconditionFailed);
    EXPECT_EQ(text, nullptr) << "the output is cleared before the check of the record";
    Text s;
    EXPECT_EQ(kstd_stringConst_hash(&s.value, nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 3);
    EXPECT_GT(faults.lastLine(), 0);
}

}  // namespace
