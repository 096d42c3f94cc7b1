// The life-cycle family behaves the same for every record; these tests use
// constant strings and interning tables as representatives.
#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

TEST(Lifecycle, HeapFormsFollowOnePattern) {
    LiveBlockCheck leaks;
    kstd_stringConst* string = nullptr;
    EXPECT_EQ(kstd_stringConst_delete(&string), 0) << "deleting null is a no-op";

    ASSERT_EQ(kstd_stringConst_new(&string), 0);
    ASSERT_NE(string, nullptr);
    kstd_stringConst_assignString(string, u"held");
    const int64_t withOne = vexpers::test::liveBlocks();
    // _new on a pointer that already holds a record frees that record first.
    ASSERT_EQ(kstd_stringConst_new(&string), 0);
    EXPECT_EQ(string->chars, nullptr);
    EXPECT_EQ(vexpers::test::liveBlocks(), withOne - 2) << "record text holder and characters were freed";

    kstd_stringConst source;
    kstd_stringConst_construct(&source);
    kstd_stringConst_assignString(&source, u"clone me");
    ASSERT_EQ(kstd_stringConst_newClone(&string, &source), 0);
    EXPECT_EQ(string->chars, source.chars);
    // _newClone with a null source deletes the caller's record.
    EXPECT_EQ(kstd_stringConst_newClone(&string, nullptr), 0);
    EXPECT_EQ(string, nullptr);
    kstd_stringConst_destruct(&source);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Lifecycle, SelfAssignmentAndCopyConstruction) {
    LiveBlockCheck leaks;
    {
        kstd_stringConstTable table;
        ASSERT_EQ(kstd_stringConstTable_construct(&table), 0);
        kstd_stringConstTable_resetNumBins(&table, 4);
        kstd_stringConstTable_addString(&table, u"one", nullptr, nullptr, nullptr);
        EXPECT_EQ(kstd_stringConstTable_assign(&table, &table), 0);
        int32_t id = -5;
        kstd_stringConstTable_findString(&table, u"one", nullptr, &id);
        EXPECT_EQ(id, 0);

        kstd_stringConstTable copy;
        ASSERT_EQ(kstd_stringConstTable_constructCopy(&copy, &table), 0);
        kstd_stringConstTable_findString(&copy, u"one", nullptr, &id);
        EXPECT_EQ(id, 0);
        kstd_stringConstTable_destruct(&copy);
        kstd_stringConstTable_destruct(&table);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Lifecycle, ConstructorsLeakNothingWhenAllocationFails) {
    kstd_stringConstTable* table = nullptr;
    kstd_stringConstTable source;
    kstd_stringConstTable_construct(&source);
    kstd_stringConstTable_resetNumBins(&source, 3);
    kstd_stringConstTable_addString(&source, u"x", nullptr, nullptr, nullptr);
    vexpers::test::sweepAllocationFailures([&] { return kstd_stringConstTable_newClone(&table, &source); },
                                           [&] { kstd_stringConstTable_delete(&table); });
    EXPECT_EQ(table, nullptr);
    kstd_stringConstTable copy;
    vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_stringConstTable_constructCopy(&copy, &source);
            if (result >= 0) kstd_stringConstTable_destruct(&copy);
            return result;
        });
    kstd_stringConstTable_destruct(&source);
}

TEST(Lifecycle, OutputsAreClearedEvenWhenTheFirstCheckFails) {
    AssertRecorder faults;
    kstd_stringConstTable table;
    kstd_stringConstTable_construct(&table);
    kstd_stringConstTable_resetNumBins(&table, 2);
    const char16_t* text = u"stale";
    kstd_stringConst string;
    kstd_stringConst_construct(&string);
    kstd_stringConst_assignString(&string, u"stale");
    EXPECT_EQ(kstd_stringConstTable_getStringById(&table, -1, &string, &text), ksys_result_failure);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(string.chars, nullptr);
    EXPECT_EQ(faults.count(), 0);
    kstd_stringConst_destruct(&string);
    kstd_stringConstTable_destruct(&table);
}

}  // namespace
