#include <string>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

// Keys are unicode strings (records that own their text), hashed and compared
// by their units; values are plain int64 bytes.
kstd_result hashText(const void* key, uint32_t* hash) {
    const char16_t* chars = nullptr;
    int32_t length = 0;
    const kstd_result result =
        kstd_unicodeString_getStringW(static_cast<const kstd_unicodeString*>(key), &chars, &length);
    if (result < 0) return result;
    uint32_t h = 0;
    for (int32_t i = 0; i < length; ++i) h = h * 31 + chars[i];
    // A weak hash on purpose: many keys share a bin chain.
    *hash = h % 64;
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
struct Key {
    kstd_unicodeString value;
    explicit Key(const std::u16string& text) {
        kstd_unicodeString_construct(&value);
        kstd_unicodeString_assignStringW(&value, text.c_str());
    }
    ~Key() { kstd_unicodeString_destruct(&value); }
};

std::u16string name(int i) {
    std::u16string s = u"key";
    for (char c : std::to_string(i)) s += char16_t(c);
    return s;
}

TEST(Hashtable, PutReplaceHasGetPtrWithRecordKeys) {
    LiveBlockCheck leaks;
    kstd_hashtable table;
    ASSERT_EQ(kstd_hashtable_construct(&table, &keyOps, &valueOps, 4, -1), 0);
    for (int i = 0; i < 1000; ++i) {  // the bins grow well past their first 4
        const Key key(name(i));
        const int64_t value = i;
        ASSERT_EQ(kstd_hashtable_put(&table, &key.value, &value), 0);
    }
    const Key replaced(name(500));
    const int64_t newValue = -500;
    ASSERT_EQ(kstd_hashtable_put(&table, &replaced.value, &newValue), 0);
    int64_t count = 0;
    ASSERT_EQ(kstd_hashtable_getCount(&table, &count), 0);
    EXPECT_EQ(count, 1000);
    for (int i = 0; i < 1000; ++i) {
        const Key key(name(i));
        void* value = nullptr;
        ASSERT_EQ(kstd_hashtable_getPtr(&table, &key.value, &value), 0);
        EXPECT_EQ(*static_cast<int64_t*>(value), i == 500 ? -500 : i);
    }
    const Key absent(u"absent");
    uint32_t has = 1;
    EXPECT_EQ(kstd_hashtable_has(&table, &absent.value, &has), 0);
    EXPECT_EQ(has, 0u);
    EXPECT_EQ(kstd_hashtable_has(&table, &replaced.value, &has), 0);
    EXPECT_EQ(has, 1u);
    void* value = &has;
    EXPECT_EQ(kstd_hashtable_getPtr(&table, &absent.value, &value), ksys_result_notFound);
    EXPECT_EQ(value, nullptr);
    ASSERT_EQ(kstd_hashtable_destruct(&table), 0);
    EXPECT_EQ(leaks.leaked(), 2) << "only the two keys of this test";
}

TEST(Hashtable, MaximumCountAndAllocationFailures) {
    LiveBlockCheck leaks;
    kstd_hashtable table;
    // Plain int32 keys need no operations at all.
    const kstd_hashtableElementVtable intOps{sizeof(int32_t), nullptr, nullptr, nullptr, nullptr, nullptr};
    ASSERT_EQ(kstd_hashtable_construct(&table, &intOps, &valueOps, 8, 2), 0);
    const int64_t value = 1;
    for (int32_t key : {10, 20}) ASSERT_EQ(kstd_hashtable_put(&table, &key, &value), 0);
    const int32_t third = 30, first = 10;
    EXPECT_EQ(kstd_hashtable_put(&table, &third, &value), ksys_result_invalidSize);
    EXPECT_EQ(kstd_hashtable_put(&table, &first, &value), 0) << "replacing is not adding";
    ASSERT_EQ(kstd_hashtable_destruct(&table), 0);

    // A table of record keys with 1 bin and 2 entries: the put sweep reaches
    // the bin growth, the node and the key's text.
    auto build = [&] {
        kstd_hashtable_construct(&table, &keyOps, &valueOps, 1, -1);
        for (int i = 0; i < 2; ++i) {
            const Key key(name(i));
            kstd_hashtable_put(&table, &key.value, &value);
        }
    };
    build();
    const Key added(u"a key long enough to allocate its text");
    const int64_t sites = vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_hashtable_put(&table, &added.value, &value);
            if (result < 0) {
                uint32_t has = 1;
                kstd_hashtable_has(&table, &added.value, &has);
                EXPECT_EQ(has, 0u);
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
    EXPECT_EQ(leaks.leaked(), 1) << "only the added key's text";

    AssertRecorder faults;
    EXPECT_EQ(kstd_hashtable_put(&table, &first, &value), ksys_result_preconditionFailed) << "destructed table";
    EXPECT_EQ(kstd_hashtable_construct(&table, nullptr, &valueOps, 8, -1), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_hashtable_construct(&table, &intOps, &valueOps, 0, -1), ksys_result_invalidSize);
    EXPECT_EQ(faults.count(), 2);
}

}  // namespace
