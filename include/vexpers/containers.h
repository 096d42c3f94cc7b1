/*
 * vexpers/containers.h - the hash table (kstd_hashtable) and the allocator of
 * fixed-size blocks (kstd_blockAllocator).
 *
 * Both allocate through the ksys_memory service. A failing operation returns
 * its code and leaves the container as it was.
 */
#ifndef VEXPERS_CONTAINERS_H
#define VEXPERS_CONTAINERS_H

#include "vexpers/base.h"

VEXPERS_EXTERN_C_BEGIN

/* ---- Hash table ------------------------------------------------------------ */

/**
 * Operations of the keys or of the values of a hash table. `hash` and `equal`
 * are used for keys only. A null constructCopy or assign copies the bytes, a
 * null destruct does nothing, a null hash hashes the bytes and a null equal
 * compares them; so a table of plain-byte keys and values needs only the
 * element sizes.
 */
typedef struct kstd_hashtableElementVtable {
    int32_t elementSize;
    kstd_result (*constructCopy)(void* element, const void* source);
    kstd_result (*assign)(void* element, const void* source);
    kstd_result (*destruct)(void* element);
    kstd_result (*hash)(const void* key, uint32_t* hash);
    kstd_result (*equal)(const void* first, const void* second, uint32_t* equal);
} kstd_hashtableElementVtable;

/** One entry: a single allocation holding the chain link, key and value. */
typedef struct kstd_hashtableNode kstd_hashtableNode;

/**
 * A hash table with chained bins. The bin array doubles when the table holds
 * more than two entries per bin. Fields belong to the hash table functions;
 * the tables passed to construct must outlive it.
 */
typedef struct kstd_hashtable {
    kstd_hashtableNode** bins;
    int64_t count;
    int64_t maxCount;
    int32_t numBins;
    int32_t reserved;
    const kstd_hashtableElementVtable* keyOps;
    const kstd_hashtableElementVtable* valueOps;
} kstd_hashtable;

/**
 * Constructs an empty table with `numBins` bins (at least 1) that holds at
 * most `maxCount` entries (-1: no limit). The key size must be at least 1,
 * the value size at least 0. Fails with ksys_result_invalidSize on bad sizes
 * or counts and ksys_result_outOfMemory when the bins cannot be allocated;
 * the table is then empty and may be destructed or not.
 */
VEXPERS_API kstd_result kstd_hashtable_construct(kstd_hashtable* table, const kstd_hashtableElementVtable* keyOps,
                                                 const kstd_hashtableElementVtable* valueOps, int32_t numBins,
                                                 int64_t maxCount);
/** Destroys every key and value and frees the table's memory; reports the
 *  first failing destruct after finishing. */
VEXPERS_API kstd_result kstd_hashtable_destruct(kstd_hashtable* table);
/**
 * Inserts copies of `key` and `value`, or assigns `value` to the value of an
 * existing equal key. A new entry beyond the maximum count fails with
 * ksys_result_invalidSize. On failure the table holds the same entries (a
 * failing value assign leaves that value as the assign left it).
 */
VEXPERS_API kstd_result kstd_hashtable_put(kstd_hashtable* table, const void* key, const void* value);
/** The value stored under `key`, or null and ksys_result_notFound. */
VEXPERS_API kstd_result kstd_hashtable_getPtr(kstd_hashtable* table, const void* key, void** value);
/** *has is 1 when `key` is present, else 0. */
VEXPERS_API kstd_result kstd_hashtable_has(const kstd_hashtable* table, const void* key, uint32_t* has);
/** Number of entries. */
VEXPERS_API kstd_result kstd_hashtable_getCount(const kstd_hashtable* table, int64_t* count);

/* ---- Block allocator ----------------------------------------------------------- */

/**
 * Hands out blocks of one fixed size, 16-byte aligned, carved from chunks of
 * the memory service and reused through a free list (the last block freed
 * comes back first). When every block has come back, the chunks are kept and
 * carved again from the start, so that a structure rebuilt after being freed
 * as a whole lies in memory in the order it is built. Fields belong to the
 * allocator functions.
 */
typedef struct kstd_blockAllocator {
    void* chunks;
    void* freeList;
    char* carve;
    char* carveEnd;
    int64_t liveCount;
    int64_t maxBlocks;
    int32_t blockSize;
    int32_t chunkBytes;
} kstd_blockAllocator;

/** A block and the allocator it came from (the object of kstd_block_register). */
typedef struct kstd_blockRef {
    kstd_blockAllocator* allocator;
    void* block;
} kstd_blockRef;

/**
 * Constructs an allocator of `blockSize`-byte blocks (at least 1), taken from
 * chunks of about `chunkBytes` bytes (at least one block per chunk), with at
 * most `maxBlocks` blocks live at once (-1: no limit). Allocates nothing.
 * Bad sizes fail with ksys_result_invalidSize.
 */
VEXPERS_API kstd_result kstd_blockAllocator_construct(kstd_blockAllocator* allocator, int32_t blockSize,
                                                      int32_t chunkBytes, int64_t maxBlocks);
/** Frees every chunk; blocks still live become invalid. */
VEXPERS_API kstd_result kstd_blockAllocator_destruct(kstd_blockAllocator* allocator);
/**
 * A block into *block (null on failure): a freed one when there is one, else
 * the next one of the current chunk, else one of a new chunk.
 * ksys_result_outOfMemory when a chunk cannot be allocated or `maxBlocks`
 * blocks are live.
 */
VEXPERS_API kstd_result kblk_alloc(kstd_blockAllocator* allocator, void** block);
/** Gives a block of this allocator back (null is accepted). */
VEXPERS_API kstd_result kblk_free(kstd_blockAllocator* allocator, void* block);
/** Number of blocks handed out and not given back. */
VEXPERS_API kstd_result kstd_blockAllocator_getLiveCount(const kstd_blockAllocator* allocator, int64_t* count);
/**
 * Clean-up function (a ksys_cleanupFunction) whose object is a kstd_blockRef:
 * gives its block back to its allocator and sets the reference's block to
 * null, so that running it twice frees once.
 */
VEXPERS_API kstd_result kstd_block_register(void* blockRef);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_CONTAINERS_H */
