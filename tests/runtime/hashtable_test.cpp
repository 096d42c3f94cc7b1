#include <string>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// Keys are unicode strings (records that own their text), hashed and compared
// by their units; values are plain int64 bytes.
kstd_result hashText(const void* key, uint32_t* hash) {
    const auto* text = static_cast<const kstd_unicodeString*>(key);
    uint32_t h = 0;
    for (int32_t i = 0; i < text->length; ++i) h = h * 31 + text->chars[i];
    *hash = h % 64;  // a weak hash on purpose: many keys share a bin chain
    return 0;
}
kstd_result equalText(const void* a, const void* b, uint32_t* equal) {
    return kstd_unicodeString_compareEqual(static_cast<const kstd_unicodeString*>(a),
                                           static_cast<const kstd_unicodeString*>(b), equal);
}
kstd_result copyText(void* e, const void* s) {
    return kstd_unicodeString_constructCopy(static_cast<kstd_unicodeString*>(e),
                                            static_cast<const kstd_unicodeString*>(s));
}
kstd_result assignText(void* e, const void* s) {
    return kstd_unicodeString_assign(static_cast<kstd_unicodeString*>(e), static_cast<const kstd_unicodeString*>(s));
}
kstd_result destructText(void* e) { return kstd_unicodeString_destruct(static_cast<kstd_unicodeString*>(e)); }

const kstd_hashtableElementVtable keyOps{sizeof(kstd_unicodeString), copyText, assignText, destructText, hashText,
                                         equalText};
const kstd_hashtableElementVtable valueOps{sizeof(int64_t), nullptr, nullptr, nullptr, nullptr, nullptr};

// A unicode string key that frees itself.
struct Key : Owned<kstd_unicodeString, kstd_unicodeString_construct, kstd_unicodeString_destruct> {
    explicit Key(const std::u16string& text) { EXPECT_EQ(kstd_unicodeString_assignStringW(&v, text.c_str()), 0); }
};

std::u16string name(int i) {
    std::u16string s = u"key";
    for (char c : std::to_string(i)) s += char16_t(c);
    return s;
}

// A table of record keys with a weak hash grows its bins well past the first
// four; a put of a present key replaces the value; every put that fails on an
// allocation (bins, node, key text) leaves the table as it was.
TEST(Hashtable, RecordKeysReplaceGrowAndSurviveAllocationFailures) {
    LiveBlockCheck leaks;
    kstd_hashtable table;
    ASSERT_EQ(kstd_hashtable_construct(&table, &keyOps, &valueOps, 4, -1), 0);
    for (int i = 0; i < 1000; ++i) {
        const int64_t value = i;
        ASSERT_EQ(kstd_hashtable_put(&table, Key(name(i)), &value), 0);
    }
    const int64_t replaced = -500;
    ASSERT_EQ(kstd_hashtable_put(&table, Key(name(500)), &replaced), 0);
    EXPECT_EQ(outOf<int64_t>(0, kstd_hashtable_getCount, &table), 1000);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(*static_cast<int64_t*>(outOf<void*>(0, kstd_hashtable_getPtr, &table, Key(name(i)))),
                  i == 500 ? -500 : i);
    const Key absent(u"absent");
    EXPECT_EQ(outOf<uint32_t>(0, kstd_hashtable_has, &table, absent), 0u);
    EXPECT_EQ(outOf<void*>(ksys_result_notFound, kstd_hashtable_getPtr, &table, absent), nullptr);
    ASSERT_EQ(kstd_hashtable_destruct(&table), 0);

    const int64_t value = 1;
    auto build = [&] {
        kstd_hashtable_construct(&table, &keyOps, &valueOps, 1, -1);
        for (int i = 0; i < 2; ++i) kstd_hashtable_put(&table, Key(name(i)), &value);
    };
    build();
    const Key added(u"a key long enough to allocate its text");
    const int64_t sites = sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_hashtable_put(&table, added, &value);
            if (result < 0) {
                EXPECT_EQ(outOf<uint32_t>(0, kstd_hashtable_has, &table, added), 0u);
                EXPECT_EQ(table.count, 2);
            }
            return result;
        },
        [&] {
            kstd_hashtable_destruct(&table);
            build();
        });
    EXPECT_EQ(sites, 3);
    kstd_hashtable_destruct(&table);
    EXPECT_EQ(leaks.leaked(), 2) << "only the texts of the keys absent and added";

    // Plain int32 keys need no operations; the maximum count counts adds only.
    const kstd_hashtableElementVtable intOps{sizeof(int32_t), nullptr, nullptr, nullptr, nullptr, nullptr};
    ASSERT_EQ(kstd_hashtable_construct(&table, &intOps, &valueOps, 8, 2), 0);
    const int32_t first = 10, second = 20, third = 30;
    for (const int32_t* key : {&first, &second}) ASSERT_EQ(kstd_hashtable_put(&table, key, &value), 0);
    EXPECT_EQ(kstd_hashtable_put(&table, &third, &value), ksys_result_invalidSize);
    EXPECT_EQ(kstd_hashtable_put(&table, &first, &value), 0) << "replacing is not adding";
    ASSERT_EQ(kstd_hashtable_destruct(&table), 0);
}

}  // namespace
