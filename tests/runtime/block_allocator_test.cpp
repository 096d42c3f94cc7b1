#include <cstring>
#include <set>
#include <vector>

#include "support/test_support.hpp"

namespace {

using vexpers::test::AssertRecorder;
using vexpers::test::LiveBlockCheck;

int64_t live(const kstd_blockAllocator& a) {
    int64_t count = -1;
    kstd_blockAllocator_getLiveCount(&a, &count);
    return count;
}

TEST(BlockAllocator, ReusesBlocksAndGrowsByChunks) {
    LiveBlockCheck leaks;
    kstd_blockAllocator a;
    // 40-byte blocks take 48 bytes; a 256-byte chunk holds five after its header.
    ASSERT_EQ(kstd_blockAllocator_construct(&a, 40, 256, -1), 0);
    EXPECT_EQ(leaks.leaked(), 0) << "construct allocates nothing";
    std::vector<void*> blocks(12);
    for (void*& block : blocks) {
        ASSERT_EQ(kblk_alloc(&a, &block), 0);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
        std::memset(block, 0xAB, 40);  // the whole block is usable
    }
    EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), 12u);
    EXPECT_EQ(leaks.leaked(), 3) << "three chunks";
    EXPECT_EQ(live(a), 12);

    ASSERT_EQ(kblk_free(&a, blocks[4]), 0);
    ASSERT_EQ(kblk_free(&a, blocks[7]), 0);
    void* reused = nullptr;
    ASSERT_EQ(kblk_alloc(&a, &reused), 0);
    EXPECT_EQ(reused, blocks[7]) << "the last freed block comes back first";
    ASSERT_EQ(kblk_alloc(&a, &reused), 0);
    EXPECT_EQ(reused, blocks[4]);
    EXPECT_EQ(leaks.leaked(), 3);
    EXPECT_EQ(kblk_free(&a, nullptr), 0);

    // A failing chunk allocation changes nothing.
    for (int i = 0; i < 3; ++i) ASSERT_EQ(kblk_alloc(&a, &reused), 0);  // the third chunk is full
    ksys_memory_failAt(1, 0);
    void* block = &a;
    EXPECT_EQ(kblk_alloc(&a, &block), ksys_result_outOfMemory);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(block, nullptr);
    EXPECT_EQ(live(a), 15);
    ASSERT_EQ(kblk_alloc(&a, &block), 0);
    EXPECT_EQ(leaks.leaked(), 4);

    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BlockAllocator, AllBlocksBackMeansTheChunksAreCarvedAgain) {
    LiveBlockCheck leaks;
    kstd_blockAllocator a;
    ASSERT_EQ(kstd_blockAllocator_construct(&a, 40, 256, -1), 0);  // five blocks a chunk
    std::vector<void*> blocks(12);
    for (void*& block : blocks) ASSERT_EQ(kblk_alloc(&a, &block), 0);
    for (int64_t chunks : {3, 4}) {
        for (void* block : blocks) ASSERT_EQ(kblk_free(&a, block), 0);
        blocks.assign(size_t(chunks) * 5, nullptr);
        for (void*& block : blocks) ASSERT_EQ(kblk_alloc(&a, &block), 0);
        EXPECT_EQ(leaks.leaked(), chunks) << "the kept chunks serve every block";
        EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()).size(), blocks.size());
        for (size_t i = 1; i < blocks.size(); ++i) {
            if (i % 5 != 0) {
                EXPECT_EQ(static_cast<char*>(blocks[i]) - static_cast<char*>(blocks[i - 1]), 48);
            }
        }
        blocks.push_back(nullptr);
        ASSERT_EQ(kblk_alloc(&a, &blocks.back()), 0);
        EXPECT_EQ(leaks.leaked(), chunks + 1) << "then a new chunk";
    }
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BlockAllocator, MaximumBlocksAndTheCleanupFunction) {
    LiveBlockCheck leaks;
    kstd_blockAllocator a;
    ASSERT_EQ(kstd_blockAllocator_construct(&a, 1000, 16, 2), 0);  // one block per chunk
    void* first = nullptr;
    void* second = nullptr;
    void* third = &a;
    ASSERT_EQ(kblk_alloc(&a, &first), 0);
    ASSERT_EQ(kblk_alloc(&a, &second), 0);
    EXPECT_EQ(kblk_alloc(&a, &third), ksys_result_outOfMemory);
    EXPECT_EQ(third, nullptr);

    // As the undo of an allocation on a clean-up list: given back only when
    // the function fails.
    kstd_blockRef ref{&a, second};
    ksys_cleanupEntry entry{1, ksys_cleanupKind_undoOnFailure, &ref, kstd_block_register};
    int32_t count = 1;
    kstd_result result = 0;
    ASSERT_EQ(ksys_cleanupExecute_(&entry, &count, &result, ksys_cleanup_getNextTag()), 0);
    EXPECT_EQ(live(a), 2) << "success keeps the block";
    count = 1;
    result = ksys_result_outOfMemory;
    EXPECT_EQ(ksys_cleanupExecute_(&entry, &count, &result, ksys_cleanup_getNextTag()), ksys_result_outOfMemory);
    EXPECT_EQ(live(a), 1);
    EXPECT_EQ(ref.block, nullptr);
    EXPECT_EQ(kstd_block_register(&ref), 0) << "a second run frees nothing";
    EXPECT_EQ(live(a), 1);
    ASSERT_EQ(kblk_alloc(&a, &third), 0);
    EXPECT_EQ(third, second);
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    AssertRecorder faults;
    EXPECT_EQ(kstd_blockAllocator_construct(&a, 0, 0x10000, -1), ksys_result_invalidSize);
    EXPECT_EQ(kblk_alloc(&a, &first), ksys_result_preconditionFailed) << "not constructed";
    EXPECT_EQ(kstd_block_register(nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 2);
}

}  // namespace
