#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// The memory service counts live blocks and fails the Nth allocation on
// request, once or from then on: every allocation-failure sweep relies on it.
TEST(Memory, CountsLiveBlocksAndInjectsFailures) {
    LiveBlockCheck leaks;
    void *a = nullptr, *b = nullptr, *c = nullptr, *d = nullptr;
    ASSERT_EQ(ksys_memory_alloc_internal(10, &a), 0);
    EXPECT_EQ(leaks.leaked(), 1);
    ASSERT_EQ(ksys_memory_realloc_internal(100, &a), 0);
    EXPECT_EQ(leaks.leaked(), 1);

    // The second allocation from now fails once, then allocation works again.
    ksys_memory_failAt(2, 0);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &b), 0);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &c), OOM);
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(outOf<int32_t>(0, ksys_memory_getInjectedFailureHit), 1);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &c), 0);

    // Persistent: every allocation from the first fails; a failed realloc
    // keeps the old block.
    ksys_memory_failAt(1, 1);
    void* kept = a;
    EXPECT_EQ(ksys_memory_realloc_internal(1000, &a), OOM);
    EXPECT_EQ(a, kept);
    EXPECT_EQ(ksys_memory_alloc_internal(8, &d), OOM);
    ksys_memory_failAt(0, 0);

    for (void** p : {&a, &b, &c, &d}) EXPECT_EQ(ksys_memory_free_internal(p), 0);
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(leaks.leaked(), 0);

    // Impossible sizes fail.
    void* p = nullptr;
    EXPECT_EQ(ksys_memory_realloc64_internal(int64_t(1) << 60, &p), OOM);
    EXPECT_EQ(p, nullptr);

    AssertRecorder faults;
    EXPECT_EQ(ksys_memory_alloc_internal(4, nullptr), Fault);
    EXPECT_EQ(faults.count(), 1);
}

}  // namespace
