#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

TEST(Memory, CountsLiveBlocksAndInjectsFailures) {
    LiveBlockCheck leaks;
    void* a = nullptr;
    ASSERT_EQ(ksys_memory_alloc_internal(10, &a), 0);
    EXPECT_EQ(leaks.leaked(), 1);
    ASSERT_EQ(ksys_memory_realloc_internal(100, &a), 0);
    EXPECT_EQ(leaks.leaked(), 1);

    // The second allocation from now fails once, then allocation works again.
    ksys_memory_failAt(2, 0);
    void* b = nullptr;
    void* c = nullptr;
    EXPECT_EQ(ksys_memory_alloc_internal(8, &b), 0);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &c), ksys_result_outOfMemory);
    EXPECT_EQ(c, nullptr);
    int32_t hit = 0;
    ksys_memory_getInjectedFailureHit(&hit);
    EXPECT_EQ(hit, 1);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &c), 0);

    // Persistent: every allocation from the first fails, a failed realloc
    // keeps the old block.
    ksys_memory_failAt(1, 1);
    void* kept = a;
    EXPECT_EQ(ksys_memory_realloc_internal(1000, &a), ksys_result_outOfMemory);
    EXPECT_EQ(a, kept);
    void* d = nullptr;
    EXPECT_EQ(ksys_memory_alloc_internal(8, &d), ksys_result_outOfMemory);
    ksys_memory_failAt(0, 0);

    for (void** p : {&a, &b, &c, &d}) EXPECT_EQ(ksys_memory_free_internal(p), 0);
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Memory, EdgeSizesAndNullPointers) {
    LiveBlockCheck leaks;
    void* p = reinterpret_cast<void*>(1);
    EXPECT_EQ(ksys_memory_alloc_internal(0, &p), 0);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(ksys_memory_free_internal(&p), 0);  // null is accepted
    EXPECT_EQ(ksys_memory_realloc64_internal(-1, &p), ksys_result_outOfMemory);
    EXPECT_EQ(ksys_memory_realloc64_internal(int64_t(1) << 60, &p), ksys_result_outOfMemory);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(leaks.leaked(), 0);

    AssertRecorder faults;
    EXPECT_EQ(ksys_memory_alloc_internal(4, nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

}  // namespace
