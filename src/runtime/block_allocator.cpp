// The block allocator: fixed-size blocks carved from chunks of the memory
// service and reused through a free list linked through the freed blocks.
// A chunk starts with a 16-byte header (the address the memory service gave,
// the next chunk) at a 16-byte boundary; blocks follow, each a multiple of 16
// bytes, so every block is 16-byte aligned.
#include <cstdint>

#include "frame/frame.hpp"
#include "vexpers/containers.h"

namespace {

constexpr int64_t alignment = 16;

struct ChunkHeader {
    void* allocation;
    ChunkHeader* next;
};
static_assert(sizeof(ChunkHeader) == alignment);

int64_t roundUp(int64_t n) { return (n + alignment - 1) & ~(alignment - 1); }

// Allocates a chunk and makes its blocks the carving range.
kstd_result addChunk(kstd_blockAllocator* a) {
    void* allocation = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(static_cast<size_t>(a->chunkBytes) + alignment - 1, &allocation));
    const uintptr_t aligned = (reinterpret_cast<uintptr_t>(allocation) + alignment - 1) & ~uintptr_t(alignment - 1);
    auto* header = reinterpret_cast<ChunkHeader*>(aligned);
    header->allocation = allocation;
    header->next = static_cast<ChunkHeader*>(a->chunks);
    a->chunks = header;
    a->carve = reinterpret_cast<char*>(header + 1);
    a->carveEnd = reinterpret_cast<char*>(header) + a->chunkBytes;
    return 0;
}

// Makes the next chunk the carving range. Normally the chunk being carved is
// the newest (the head of the list) and every older one is full, so a new
// chunk is allocated. After every block came back (see rewind) the kept
// chunks are carved again: from the second one along the list to its end,
// then the head, after which carving is normal again.
kstd_result nextChunk(kstd_blockAllocator* a) {
    auto* head = static_cast<ChunkHeader*>(a->chunks);
    if (a->carveEnd != nullptr) {
        auto* current = reinterpret_cast<ChunkHeader*>(a->carveEnd - a->chunkBytes);
        if (current != head) {
            ChunkHeader* next = current->next != nullptr ? current->next : head;
            a->carve = reinterpret_cast<char*>(next + 1);
            a->carveEnd = reinterpret_cast<char*>(next) + a->chunkBytes;
            return 0;
        }
    }
    return addChunk(a);
}

// Every block is back: forget the free list and carve the kept chunks again,
// so that a structure rebuilt after it was freed as a whole is laid out in
// the order it is built (which the caches and the TLB favour), not in the
// scattered order of the free list.
void rewind(kstd_blockAllocator* a) {
    a->freeList = nullptr;
    auto* head = static_cast<ChunkHeader*>(a->chunks);
    if (head == nullptr) return;
    ChunkHeader* first = head->next != nullptr ? head->next : head;
    a->carve = reinterpret_cast<char*>(first + 1);
    a->carveEnd = reinterpret_cast<char*>(first) + a->chunkBytes;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_blockAllocator_construct(kstd_blockAllocator* allocator, int32_t blockSize,
                                                         int32_t chunkBytes, int64_t maxBlocks) {
    VEXPERS_REQUIRE(allocator != nullptr);
    *allocator = kstd_blockAllocator{nullptr, nullptr, nullptr, nullptr, 0, maxBlocks, 0, 0};
    if (blockSize < 1 || chunkBytes < 0 || maxBlocks < -1) return ksys_result_invalidSize;
    // Blocks hold the free-list link when free, hence at least one pointer.
    const int64_t block = roundUp(blockSize < int32_t(sizeof(void*)) ? int32_t(sizeof(void*)) : blockSize);
    int64_t perChunk = (chunkBytes - int64_t(sizeof(ChunkHeader))) / block;
    if (perChunk < 1) perChunk = 1;
    const int64_t bytes = int64_t(sizeof(ChunkHeader)) + perChunk * block;
    if (bytes > INT32_MAX - alignment) return ksys_result_invalidSize;
    allocator->blockSize = static_cast<int32_t>(block);
    allocator->chunkBytes = static_cast<int32_t>(bytes);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_blockAllocator_destruct(kstd_blockAllocator* allocator) {
    VEXPERS_REQUIRE(allocator != nullptr);
    for (auto* chunk = static_cast<ChunkHeader*>(allocator->chunks); chunk != nullptr;) {
        ChunkHeader* next = chunk->next;
        void* allocation = chunk->allocation;
        ksys_memory_free_internal(&allocation);
        chunk = next;
    }
    allocator->chunks = allocator->freeList = nullptr;
    allocator->carve = allocator->carveEnd = nullptr;
    allocator->liveCount = 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kblk_alloc(kstd_blockAllocator* allocator, void** block) {
    VEXPERS_REQUIRE(block != nullptr);
    *block = nullptr;
    VEXPERS_REQUIRE(allocator != nullptr && allocator->blockSize > 0);
    if (allocator->maxBlocks >= 0 && allocator->liveCount >= allocator->maxBlocks) return ksys_result_outOfMemory;
    if (allocator->freeList != nullptr) {
        *block = allocator->freeList;
        allocator->freeList = *static_cast<void**>(allocator->freeList);
    } else {
        if (allocator->carve == allocator->carveEnd) VEXPERS_TRY(nextChunk(allocator));
        *block = allocator->carve;
        allocator->carve += allocator->blockSize;
    }
    ++allocator->liveCount;
    return 0;
}

VEXPERS_EXPORT kstd_result kblk_free(kstd_blockAllocator* allocator, void* block) {
    VEXPERS_REQUIRE(allocator != nullptr);
    if (block == nullptr) return 0;
    VEXPERS_REQUIRE(allocator->liveCount > 0);
    *static_cast<void**>(block) = allocator->freeList;
    allocator->freeList = block;
    if (--allocator->liveCount == 0) rewind(allocator);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_blockAllocator_getLiveCount(const kstd_blockAllocator* allocator, int64_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = 0;
    VEXPERS_REQUIRE(allocator != nullptr);
    *count = allocator->liveCount;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_block_register(void* blockRef) {
    VEXPERS_REQUIRE(blockRef != nullptr);
    auto* ref = static_cast<kstd_blockRef*>(blockRef);
    if (ref->block == nullptr) return 0;
    VEXPERS_TRY(kblk_free(ref->allocator, ref->block));
    ref->block = nullptr;
    return 0;
}
