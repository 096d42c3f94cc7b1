#include <string>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;
using vexpers::test::sweepAllocationFailures;

// "aé€😀": one, two, three and four UTF-8 bytes; the last is a surrogate pair.
const char utf8Sample[] = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
const char16_t utf16Sample[] = {0x61, 0xE9, 0x20AC, 0xD83D, 0xDE00, 0};
const char32_t utf32Sample[] = {0x61, 0xE9, 0x20AC, 0x1F600, 0};

std::u16string textOf(const kstd_unicodeString& s) { return s.chars != nullptr ? s.chars : u"<null>"; }
std::u16string textOf(const kstd_unicodeStringConst& s) { return s.chars != nullptr ? s.chars : u"<null>"; }

TEST(Text, PlatformFunctionsCompareUnsignedUnits) {
    EXPECT_EQ(ksys_wcslen(u""), 0u);
    EXPECT_EQ(ksys_wcslen(utf16Sample), 5u);
    EXPECT_EQ(ksys_wcscmp(u"a", u"ab"), -1);
    EXPECT_EQ(ksys_wcscmp(u"b", u"ab"), 1);
    EXPECT_EQ(ksys_wcscmp(u"B", u"a"), -1);
    EXPECT_EQ(ksys_wcscmp(u"\xFFFF", u"a"), 1);  // above any signed 16-bit value
    EXPECT_EQ(ksys_wcscmp(u"same", u"same"), 0);
    EXPECT_EQ(ksys_wcsncmp(u"abcx", u"abcy", 3), 0);
    EXPECT_EQ(ksys_wcsncmp(u"abcx", u"abcy", 4), -1);
    const char16_t* text = u"a.b";
    EXPECT_EQ(ksys_wcschr(text, u'.'), text + 1);
    EXPECT_EQ(ksys_wcschr(text, u'z'), nullptr);
    EXPECT_EQ(ksys_wcschr(text, 0), text + 3);
}

TEST(Text, UnicodeStringStatesAndConversions) {
    LiveBlockCheck leaks;
    kstd_unicodeString null, empty, text;
    for (auto* s : {&null, &empty, &text}) kstd_unicodeString_construct(s);
    kstd_unicodeString_assignStringW(&empty, u"");
    EXPECT_NE(empty.chars, nullptr);
    EXPECT_EQ(empty.capacity, 0);
    EXPECT_EQ(leaks.leaked(), 0) << "the empty string allocates nothing";

    uint32_t equal = 9;
    kstd_unicodeString_compareEqual(&null, &empty, &equal);
    EXPECT_EQ(equal, 0u);
    kstd_unicodeString_compareEqual(&null, &null, &equal);
    EXPECT_EQ(equal, 1u);

    for (int source = 0; source < 3; ++source) {
        kstd_unicodeString_reset(&text);
        const kstd_result result = source == 0   ? kstd_unicodeString_assignStringA(&text, utf8Sample)
                                   : source == 1 ? kstd_unicodeString_assignStringW(&text, utf16Sample)
                                                 : kstd_unicodeString_assignString32(&text, utf32Sample);
        EXPECT_EQ(result, 0);
        EXPECT_EQ(textOf(text), utf16Sample) << "source " << source;
        EXPECT_EQ(text.length, 5);
    }

    // Invalid input fails and leaves the string as it was.
    const char16_t* before = text.chars;
    for (const char* bad : {"\xC0\x80", "\xED\xA0\x80", "\xE2\x82", "\xF4\x90\x80\x80", "x\x80", "\xF8\x88\x80\x80\x80"})
        EXPECT_EQ(kstd_unicodeString_assignStringA(&text, bad), ksys_result_invalidText) << bad;
    for (char32_t bad : {char32_t(0xD800), char32_t(0xDFFF), char32_t(0x110000)}) {
        const char32_t wide[] = {0x61, bad, 0};
        EXPECT_EQ(kstd_unicodeString_assignString32(&text, wide), ksys_result_invalidText);
    }
    EXPECT_EQ(text.chars, before);

    // Assigning a string its own text, then null.
    EXPECT_EQ(kstd_unicodeString_assignStringW(&text, text.chars + 1), 0);
    EXPECT_EQ(textOf(text), utf16Sample + 1);
    EXPECT_EQ(kstd_unicodeString_assignStringA(&text, nullptr), 0);
    EXPECT_EQ(text.chars, nullptr);

    // Heap forms: a clone of the null source deletes.
    kstd_unicodeString_assignStringW(&text, u"heap");
    kstd_unicodeString* copy = nullptr;
    ASSERT_EQ(kstd_unicodeString_newClone(&copy, &text), 0);
    kstd_unicodeString_compareEqual(copy, &text, &equal);
    EXPECT_EQ(equal, 1u);
    EXPECT_NE(copy->chars, text.chars);
    EXPECT_EQ(kstd_unicodeString_newClone(&copy, nullptr), 0);
    EXPECT_EQ(copy, nullptr);
    for (auto* s : {&null, &empty, &text}) kstd_unicodeString_destruct(s);
    EXPECT_EQ(leaks.leaked(), 0);
}

int32_t holderCount(const kstd_unicodeStringConst& s) {
    int32_t count = 0;
    kstd_shared_getReferenceCount(s.holder.shared, &count);
    return count;
}

TEST(Text, UnicodeStringConstSharesHolders) {
    LiveBlockCheck leaks;
    kstd_unicodeStringConst a, b, empty;
    kstd_unicodeStringConst_construct(&a);
    kstd_unicodeStringConst_construct(&empty);
    const char16_t* chars = u"x";
    kstd_unicodeStringConst_getStringW(&a, &chars, nullptr);
    EXPECT_EQ(chars, nullptr);

    // Null and empty have no holder and allocate nothing.
    kstd_unicodeStringConst_assignStringA(&empty, "");
    int32_t length = -1;
    kstd_unicodeStringConst_getStringW(&empty, &chars, &length);
    ASSERT_NE(chars, nullptr);
    EXPECT_EQ(chars[0], 0);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(empty.holder.shared, nullptr);
    EXPECT_EQ(leaks.leaked(), 0);

    ASSERT_EQ(kstd_unicodeStringConst_assignString32(&a, utf32Sample), 0);
    EXPECT_EQ(leaks.leaked(), 1) << "one block: holder and text together";
    ASSERT_EQ(kstd_unicodeStringConst_constructCopy(&b, &a), 0);
    EXPECT_EQ(b.chars, a.chars);
    EXPECT_EQ(holderCount(a), 2);
    EXPECT_EQ(leaks.leaked(), 1);

    // New text for one copy leaves the other its text; the source may go.
    kstd_unicodeStringConst_assignStringW(&a, u"other");
    EXPECT_EQ(textOf(b), utf16Sample);
    EXPECT_EQ(holderCount(b), 1);
    kstd_unicodeStringConst_destruct(&a);
    EXPECT_EQ(textOf(b), utf16Sample);

    // A string can take new text from its own holder's text.
    EXPECT_EQ(kstd_unicodeStringConst_assignStringW(&b, b.chars + 3), 0);
    EXPECT_EQ(textOf(b), std::u16string(utf16Sample + 3));

    kstd_unicodeString mutableText;
    kstd_unicodeString_construct(&mutableText);
    kstd_unicodeStringConst_assignUnicodeString(&b, &mutableText);
    EXPECT_EQ(b.chars, nullptr);
    kstd_unicodeStringConst_assignStringW(&b, utf16Sample);
    kstd_unicodeString_assignUnicodeStringConst(&mutableText, &b);
    EXPECT_EQ(textOf(mutableText), utf16Sample);
    kstd_unicodeString_destruct(&mutableText);

    for (auto* s : {&b, &empty}) kstd_unicodeStringConst_destruct(s);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Text, ClonesInEveryEncoding) {
    LiveBlockCheck leaks;
    kstd_unicodeStringConst s;
    kstd_unicodeStringConst_construct(&s);
    char* utf8 = reinterpret_cast<char*>(1);
    EXPECT_EQ(kstd_unicodeStringConst_getCloneStringA(&s, &utf8), 0);
    EXPECT_EQ(utf8, nullptr) << "the clone of the null string is null";

    kstd_unicodeStringConst_assignStringW(&s, utf16Sample);
    char16_t* utf16 = nullptr;
    char32_t* utf32 = nullptr;
    ASSERT_EQ(kstd_unicodeStringConst_getCloneStringA(&s, &utf8), 0);
    ASSERT_EQ(kstd_unicodeStringConst_getCloneString16(&s, &utf16), 0);
    ASSERT_EQ(kstd_unicodeStringConst_getCloneString32(&s, &utf32), 0);
    EXPECT_EQ(std::string(utf8), utf8Sample);
    EXPECT_EQ(std::u16string(utf16), utf16Sample);
    EXPECT_NE(utf16, s.chars);
    EXPECT_EQ(std::u32string(utf32), utf32Sample);
    for (void* p : {(void*)utf8, (void*)utf16, (void*)utf32}) ksys_memory_free_internal(&p);

    // UTF-16 is stored as given; an unpaired surrogate fails only on conversion.
    const char16_t lone[] = {0x61, 0xD83D, 0x62, 0};
    ASSERT_EQ(kstd_unicodeStringConst_assignStringW(&s, lone), 0);
    utf8 = reinterpret_cast<char*>(1);
    EXPECT_EQ(kstd_unicodeStringConst_getCloneStringA(&s, &utf8), ksys_result_invalidText);
    EXPECT_EQ(utf8, nullptr);
    kstd_unicodeStringConst_destruct(&s);
    EXPECT_EQ(leaks.leaked(), 0);

    AssertRecorder faults;
    EXPECT_EQ(kstd_unicodeStringConst_getCloneStringW(nullptr, &utf16), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

// Every allocating assign, on failure, returns the code, leaks nothing and
// leaves the target's text as it was.
TEST(Text, AllocationFailuresLeaveTargetsUnchanged) {
    kstd_unicodeString target;
    kstd_unicodeString_construct(&target);
    kstd_unicodeString_assignStringW(&target, u"old");
    auto mutableCase = [&](auto assign) {
        const int64_t sites = sweepAllocationFailures(
            [&] {
                const kstd_result result = assign();
                if (result < 0) { EXPECT_EQ(textOf(target), u"old"); }
                return result;
            },
            [&] { kstd_unicodeString_assignStringW(&target, u"old"); });
        EXPECT_GE(sites, 1);
    };
    mutableCase([&] { return kstd_unicodeString_assignStringA(&target, utf8Sample); });
    mutableCase([&] { return kstd_unicodeString_assignStringW(&target, utf16Sample); });
    mutableCase([&] { return kstd_unicodeString_assignString32(&target, utf32Sample); });
    kstd_unicodeString source = target;  // a bytewise copy is fine: no inner pointers
    kstd_unicodeString_construct(&target);
    kstd_unicodeString_assignStringW(&target, u"old");
    mutableCase([&] { return kstd_unicodeString_assign(&target, &source); });

    kstd_unicodeString* heap = nullptr;
    sweepAllocationFailures([&] { return kstd_unicodeString_newClone(&heap, &source); },
                            [&] { kstd_unicodeString_delete(&heap); });

    kstd_unicodeStringConst shared;
    kstd_unicodeStringConst_construct(&shared);
    kstd_unicodeStringConst_assignStringW(&shared, u"old");
    auto constCase = [&](auto assign) {
        sweepAllocationFailures(
            [&] {
                const kstd_result result = assign();
                if (result < 0) { EXPECT_EQ(textOf(shared), u"old"); }
                return result;
            },
            [&] { kstd_unicodeStringConst_assignStringW(&shared, u"old"); });
    };
    constCase([&] { return kstd_unicodeStringConst_assignStringA(&shared, utf8Sample); });
    constCase([&] { return kstd_unicodeStringConst_assignString16(&shared, utf16Sample); });
    constCase([&] { return kstd_unicodeStringConst_assignString32(&shared, utf32Sample); });
    constCase([&] { return kstd_unicodeStringConst_assignUnicodeString(&shared, &source); });

    char* clone = nullptr;
    sweepAllocationFailures([&] { return kstd_unicodeStringConst_getCloneStringA(&shared, &clone); },
                            [&] {
                                void* p = clone;
                                ksys_memory_free_internal(&p);
                                clone = nullptr;
                            });

    kstd_string owned;
    kstd_string_constructEmpty(&owned);
    sweepAllocationFailures([&] { return kstd_string_assignString(&owned, utf16Sample); },
                            [&] { kstd_string_destruct(&owned); });

    kstd_unicodeString_destruct(&target);
    kstd_unicodeString_destruct(&source);
    kstd_unicodeStringConst_destruct(&shared);
}

}  // namespace
