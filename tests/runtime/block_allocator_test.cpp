#include <cstring>
#include <set>
#include <vector>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

int64_t live(const kstd_blockAllocator& a) { return outOf<int64_t>(0, kstd_blockAllocator_getLiveCount, &a); }

TEST(BlockAllocator, ReusesBlocksAndChunks) {
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

    // The last freed block comes back first.
    ASSERT_EQ(kblk_free(&a, blocks[4]), 0);
    ASSERT_EQ(kblk_free(&a, blocks[7]), 0);
    EXPECT_EQ(outOf<void*>(0, kblk_alloc, &a), blocks[7]);
    EXPECT_EQ(outOf<void*>(0, kblk_alloc, &a), blocks[4]);
    EXPECT_EQ(kblk_free(&a, nullptr), 0);

    // A failing chunk allocation changes nothing.
    for (int i = 0; i < 3; ++i) blocks.push_back(outOf<void*>(0, kblk_alloc, &a));  // the third chunk is full
    ksys_memory_failAt(1, 0);
    EXPECT_EQ(outOf<void*>(OOM, kblk_alloc, &a), nullptr);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(live(a), 15);

    // All blocks back: the kept chunks are carved again in order, then a new one.
    for (void* block : blocks) ASSERT_EQ(kblk_free(&a, block), 0);
    blocks.assign(15, nullptr);
    for (void*& block : blocks) ASSERT_EQ(kblk_alloc(&a, &block), 0);
    EXPECT_EQ(leaks.leaked(), 3);
    for (size_t i = 1; i < blocks.size(); ++i) {
        if (i % 5 != 0) {
            EXPECT_EQ(static_cast<char*>(blocks[i]) - static_cast<char*>(blocks[i - 1]), 48) << i;
        }
    }
    outOf<void*>(0, kblk_alloc, &a);
    EXPECT_EQ(leaks.leaked(), 4);
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BlockAllocator, MaximumBlocksAndTheCleanupFunction) {
    LiveBlockCheck leaks;
    kstd_blockAllocator a;
    ASSERT_EQ(kstd_blockAllocator_construct(&a, 1000, 16, 2), 0);  // one block per chunk
    outOf<void*>(0, kblk_alloc, &a);
    void* second = outOf<void*>(0, kblk_alloc, &a);
    EXPECT_EQ(outOf<void*>(OOM, kblk_alloc, &a), nullptr);

    // As the undo of an allocation: given back only when the function failed.
    kstd_blockRef ref{&a, second};
    ksys_cleanupEntry entry{1, ksys_cleanupKind_undoOnFailure, &ref, kstd_block_register};
    for (kstd_result result : {0, OOM}) {
        int32_t count = 1;
        EXPECT_EQ(ksys_cleanupExecute_(&entry, &count, &result, ksys_cleanup_getNextTag()), result);
    }
    EXPECT_EQ(live(a), 1);
    EXPECT_EQ(ref.block, nullptr);
    EXPECT_EQ(kstd_block_register(&ref), 0) << "a second run frees nothing";
    EXPECT_EQ(outOf<void*>(0, kblk_alloc, &a), second);
    ASSERT_EQ(kstd_blockAllocator_destruct(&a), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    AssertRecorder faults;
    void* block = nullptr;
    EXPECT_EQ(kstd_blockAllocator_construct(&a, 0, 0x10000, -1), ksys_result_invalidSize);
    EXPECT_EQ(kblk_alloc(&a, &block), Fault) << "not constructed";
    EXPECT_EQ(kstd_block_register(nullptr), Fault);
    EXPECT_EQ(faults.count(), 2);
}

}  // namespace
