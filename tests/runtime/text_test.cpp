#include <string>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// "aé€😀": one, two, three and four UTF-8 bytes; the last is a surrogate pair.
const char utf8Sample[] = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
const char16_t utf16Sample[] = {0x61, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
const char32_t utf32Sample[] = {0x61, 0xE9, 0x20AC, 0x1F600, 0};

template <class S>
std::u16string textOf(const S& s) {
    return s->chars != nullptr ? s->chars : u"<null>";
}

TEST(Text, UnicodeStringStatesAndConversions) {
    NoLeaks leaks;
    Text null, empty, text;
    kstd_unicodeString_assignStringW(empty, u"");
    EXPECT_NE(empty->chars, nullptr);
    EXPECT_EQ(empty->capacity, 0);
    EXPECT_EQ(leaks.leaked(), 0) << "the empty string allocates nothing";
    EXPECT_EQ(outOf<uint32_t>(0, kstd_unicodeString_compareEqual, null, empty), 0u);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_unicodeString_compareEqual, null, null), 1u);

    for (int source = 0; source < 3; ++source) {
        kstd_unicodeString_reset(text);
        EXPECT_EQ(source == 0   ? kstd_unicodeString_assignStringA(text, utf8Sample)
                  : source == 1 ? kstd_unicodeString_assignStringW(text, utf16Sample)
                                : kstd_unicodeString_assignString32(text, utf32Sample),
                  0);
        EXPECT_EQ(textOf(text), utf16Sample) << "source " << source;
        EXPECT_EQ(text->length, 5);
    }

    // Invalid input fails and leaves the string as it was.
    const char16_t* before = text->chars;
    for (const char* bad :
         {"\xC0\x80", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80", "x\x80", "\xF8\x88\x80\x80\x80"})
        EXPECT_EQ(kstd_unicodeString_assignStringA(text, bad), ksys_result_invalidText) << bad;
    for (char32_t bad : {char32_t(0xD800), char32_t(0xDFFF), char32_t(0x110000)}) {
        const char32_t wide[] = {0x61, bad, 0};
        EXPECT_EQ(kstd_unicodeString_assignString32(text, wide), ksys_result_invalidText);
    }
    EXPECT_EQ(text->chars, before);

    // Assigning a string its own text, then null.
    EXPECT_EQ(kstd_unicodeString_assignStringW(text, text->chars + 1), 0);
    EXPECT_EQ(textOf(text), utf16Sample + 1);
    EXPECT_EQ(kstd_unicodeString_assignStringA(text, nullptr), 0);
    EXPECT_EQ(text->chars, nullptr);
}

TEST(Text, UnicodeStringConstSharesHolders) {
    NoLeaks leaks;
    SharedText a, b;
    auto holders = [](const SharedText& s) {
        return outOf<int32_t>(0, kstd_shared_getReferenceCount, s->holder.shared);
    };
    ASSERT_EQ(kstd_unicodeStringConst_assignString32(a, utf32Sample), 0);
    EXPECT_EQ(leaks.leaked(), 1) << "one block: holder and text together";
    ASSERT_EQ(kstd_unicodeStringConst_assign(b, a), 0);
    EXPECT_EQ(b->chars, a->chars);
    EXPECT_EQ(holders(a), 2);
    EXPECT_EQ(leaks.leaked(), 1);

    // New text for one copy leaves the other its text; the source may go.
    kstd_unicodeStringConst_assignStringW(a, u"other");
    EXPECT_EQ(textOf(b), utf16Sample);
    EXPECT_EQ(holders(b), 1);
    kstd_unicodeStringConst_reset(a);
    EXPECT_EQ(textOf(b), utf16Sample);

    // A string can take new text from its own holder's text.
    EXPECT_EQ(kstd_unicodeStringConst_assignStringW(b, b->chars + 3), 0);
    EXPECT_EQ(textOf(b), std::u16string(utf16Sample + 3));
}

TEST(Text, ClonesInEveryEncoding) {
    NoLeaks leaks;
    SharedText s;
    EXPECT_EQ(outOf<char*>(0, kstd_unicodeStringConst_getCloneStringA, s), nullptr);  // the null string's clone
    kstd_unicodeStringConst_assignStringW(s, utf16Sample);
    char* utf8 = outOf<char*>(0, kstd_unicodeStringConst_getCloneStringA, s);
    EXPECT_EQ(std::string(utf8), utf8Sample);
    freeBlock(utf8);

    // UTF-16 is stored as given; an unpaired surrogate fails only on conversion.
    const char16_t lone[] = {0x61, 0xD83D, 0x62, 0};
    ASSERT_EQ(kstd_unicodeStringConst_assignStringW(s, lone), 0);
    EXPECT_EQ(outOf<char*>(ksys_result_invalidText, kstd_unicodeStringConst_getCloneStringA, s), nullptr);
}

// An allocating assign of each string family, on failure, returns the code,
// leaks nothing and leaves the target's text as it was.
TEST(Text, AllocationFailuresLeaveTargetsUnchanged) {
    Text target;
    SharedText shared;
    const auto restore = [&] {
        kstd_unicodeString_assignStringW(target, u"old");
        kstd_unicodeStringConst_assignStringW(shared, u"old");
    };
    restore();
    EXPECT_GE(sweepAllocationFailures([&] {
        const kstd_result result = kstd_unicodeString_assignStringA(target, utf8Sample);
        EXPECT_TRUE(result >= 0 || textOf(target) == u"old");
        return result;
    }, restore), 1);
    EXPECT_GE(sweepAllocationFailures([&] {
        const kstd_result result = kstd_unicodeStringConst_assignString32(shared, utf32Sample);
        EXPECT_TRUE(result >= 0 || textOf(shared) == u"old");
        return result;
    }, restore), 1);
    char* clone = nullptr;
    sweepAllocationFailures([&] { return kstd_unicodeStringConst_getCloneStringA(shared, &clone); },
                            [&] { freeBlock(clone), clone = nullptr; });
}

}  // namespace
