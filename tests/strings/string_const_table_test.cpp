#include <string>
#include <vector>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

class Table : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(kstd_stringConstTable_construct(&table), 0); }
    void TearDown() override {
        EXPECT_EQ(kstd_stringConstTable_destruct(&table), 0);
        EXPECT_EQ(leaks.leaked(), 0);
    }
    int32_t add(const char16_t* text, uint32_t* added = nullptr) {
        int32_t id = -7;
        EXPECT_EQ(kstd_stringConstTable_addString(&table, text, nullptr, &id, added), 0);
        return id;
    }
    int32_t find(const char16_t* text) {
        int32_t id = -7;
        EXPECT_EQ(kstd_stringConstTable_findString(&table, text, nullptr, &id), 0);
        return id;
    }
    std::vector<std::u16string> all() {
        kstd_vector_kstd_stringConst strings;
        kstd_vector_kstd_stringConst_constructEmpty(&strings);
        EXPECT_EQ(kstd_stringConstTable_getAllStrings(&table, &strings), 0);
        std::vector<std::u16string> texts;
        const kstd_stringConst* begin = nullptr;
        intptr_t size = 0;
        kstd_vector_kstd_stringConst_getBeginSizeIntPtrConst(&strings, &begin, &size);
        for (intptr_t i = 0; i < size; ++i) texts.push_back(begin[i].chars ? begin[i].chars : u"<null>");
        kstd_vector_kstd_stringConst_destruct(&strings);
        return texts;
    }
    size_t binSize(int32_t index) {
        const kstd_vector_kstd_stringConst* bin = nullptr;
        EXPECT_EQ(kstd_vector_vector_kstd_stringConst_getElementConst(&table.bins, index, &bin), 0);
        return bin != nullptr ? size_t(bin->base.size) : 0;
    }
    LiveBlockCheck leaks;
    kstd_stringConstTable table;
};

// A power of two of bins masks the hash, another count takes the remainder;
// null and empty texts are two entries in the bin of the hash 5381.
TEST_F(Table, BinChoice) {
    for (auto [bins, mask] : {std::pair{1, 0u}, {12, 0u}, {4096, 4095u}}) {
        kstd_stringConstTable_resetNumBins(&table, bins);
        EXPECT_EQ(table.binMask, mask) << bins << " bins";
    }
    // "abc" hashes to 193485963: bin 3211 of 4096, bin 3 of 10.
    kstd_stringConstTable_resetNumBins(&table, 4096);
    add(u"abc");
    EXPECT_EQ(binSize(3211), 1u);
    kstd_stringConstTable_resetNumBins(&table, 10);
    add(u"abc");
    EXPECT_EQ(binSize(3), 1u);

    kstd_stringConstTable_resetNumBins(&table, 8);
    const int32_t null = add(nullptr), empty = add(u"");
    EXPECT_NE(null, empty);
    EXPECT_EQ(find(nullptr), null);
    EXPECT_EQ(find(u""), empty);
    EXPECT_EQ(binSize(5381 & 7), 2u);
}

TEST_F(Table, DenseIdsWantedIdsAndSharedCharacters) {
    kstd_stringConstTable_resetNumBins(&table, 4);
    uint32_t added = 9;
    EXPECT_EQ(add(u"abc", &added), 0);
    EXPECT_EQ(added, 1u);
    EXPECT_EQ(add(u"abc", &added), 0);
    EXPECT_EQ(added, 0u);

    kstd_stringConst first, second;
    kstd_stringConst_construct(&first);
    kstd_stringConst_construct(&second);
    kstd_stringConstTable_addString(&table, u"abc", &first, nullptr, nullptr);
    kstd_stringConstTable_addString(&table, u"abc", &second, nullptr, nullptr);
    EXPECT_EQ(first.chars, second.chars);
    kstd_stringConst_destruct(&second);

    ASSERT_EQ(kstd_stringConstTable_addStringWithId(&table, u"five", 5, nullptr), 0);
    // Free ids, and a negative one that the first check refuses, fail with a
    // code (no fault) and clear both outputs.
    AssertRecorder faults;
    for (int32_t id : {-1, 2, 3, 4}) {
        const char16_t* text = u"stale";
        EXPECT_EQ(kstd_stringConstTable_getStringById(&table, id, &first, &text), ksys_result_failure);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(first.chars, nullptr);
    }
    EXPECT_EQ(faults.count(), 0);
    kstd_stringConst_destruct(&first);
    EXPECT_EQ(add(u"next"), 6);
    // A free id below the highest fills the gap; an id in use fails for a new text.
    ASSERT_EQ(kstd_stringConstTable_addStringWithId(&table, u"two", 2, nullptr), 0);
    EXPECT_EQ(find(u"two"), 2);
    EXPECT_EQ(kstd_stringConstTable_addStringWithId(&table, u"clash", 5, nullptr), ksys_result_failure);
    EXPECT_EQ(find(u"clash"), -1);
    // A present text succeeds whatever id is wanted, and keeps its id.
    EXPECT_EQ(kstd_stringConstTable_addStringWithId(&table, u"five", 3, nullptr), 0);
    EXPECT_EQ(find(u"five"), 5);
    EXPECT_EQ(add(u"after"), 7);
}

TEST_F(Table, GetAllStringsInBinOrderThenOrderOfAdding) {
    kstd_stringConstTable_resetNumBins(&table, 1);
    for (const char16_t* text : {u"zeta", u"alpha", u"mid"}) add(text);
    EXPECT_EQ(all(), (std::vector<std::u16string>{u"zeta", u"alpha", u"mid"}));
    // "a" hashes to 177670 (bin 2 of 4), "b" to 177671 (bin 3), "c" to bin 0.
    kstd_stringConstTable_resetNumBins(&table, 4);
    for (const char16_t* text : {u"a", u"b", u"c"}) add(text);
    EXPECT_EQ(all(), (std::vector<std::u16string>{u"c", u"a", u"b"}));
}

TEST_F(Table, FailedAddsLeaveTheTableConsistentAndResetRemovesTheBins) {
    kstd_stringConstTable_resetNumBins(&table, 2);
    add(u"present");
    vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_stringConstTable_addStringWithId(&table, u"new", 40, nullptr);
            if (result < 0) {
                EXPECT_EQ(find(u"new"), -1);
                EXPECT_EQ(table.maxId, 0);
                EXPECT_EQ(table.used.base.size, 1);
            }
            return result;
        },
        [&] {
            kstd_stringConstTable_resetNumBins(&table, 2);
            add(u"present");
        });
    EXPECT_EQ(add(u"later"), 1);
    EXPECT_EQ(find(u"present"), 0);

    ASSERT_EQ(kstd_stringConstTable_reset(&table), 0);
    AssertRecorder faults;
    int32_t id = 0;
    EXPECT_EQ(kstd_stringConstTable_addString(&table, u"x", nullptr, &id, nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_stringConstTable_resetNumBins(&table, 0), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 2);
}

}  // namespace
