#include <set>
#include <vector>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

int64_t live(const kstd_blockAllocator& a) { return outOf<int64_t>(0, kstd_blockAllocator_getLiveCount, &a); }

// Freed blocks come back last-freed first, a failing chunk allocation changes
// nothing, and the maximum block count holds.
TEST(BlockAllocator, ReusesBlocksAndChunks) {
    LiveBlockCheck leaks;
    kstd_blockAllocator a;
    // 40-byte blocks take 48 bytes; a 256-byte chunk holds five after its header.
    ASSERT_EQ(kstd_blockAllocator_construct(&a, 40, 256, -1), 0);
    std::vector<void*> blocks(10);
    for (void*& block : blocks) {
        ASSERT_EQ(kblk_alloc(&a, &block), 0);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
    }
    EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), 10u);
    EXPECT_EQ(leaks.leaked(), 2) << "two chunks";
    ASSERT_EQ(kblk_free(&a, blocks[4]), 0);
    ASSERT_EQ(kblk_free(&a, blocks[7]), 0);
    EXPECT_EQ(outOf<void*>(0, kblk_alloc, &a), blocks[7]);
    EXPECT_EQ(outOf<void*>(0, kblk_alloc, &a), blocks[4]);
    ksys_memory_failAt(1, 0);
    EXPECT_EQ(outOf<void*>(OOM, kblk_alloc, &a), nullptr);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(live(a), 10);
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    ASSERT_EQ(kstd_blockAllocator_construct(&a, 1000, 16, 2), 0);  // one block per chunk
    outOf<void*>(0, kblk_alloc, &a);
    void* second = outOf<void*>(0, kblk_alloc, &a);
    EXPECT_EQ(outOf<void*>(OOM, kblk_alloc, &a), nullptr);
    ASSERT_EQ(kblk_free(&a, second), 0);
    EXPECT_EQ(live(a), 1);
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);
    EXPECT_EQ(kstd_blockAllocator_construct(&a, 0, 0x10000, -1), ksys_result_invalidSize);
}

}  // namespace
