/*
 * vexpers/runtime.h - system services: memory, clean-up lists, the
 * re-entrant critical section, once-only start-up, shut-down hooks and the
 * C-locale formatting of doubles.
 *
 * All allocation of the library goes through ksys_memory_*. The memory service
 * counts live blocks and can be told to fail the Nth allocation from now on,
 * once or persistently, so that tests can sweep every allocation site.
 */
#ifndef VEXPERS_RUNTIME_H
#define VEXPERS_RUNTIME_H

#include "vexpers/base.h"

VEXPERS_EXTERN_C_BEGIN

/* ---- Memory ------------------------------------------------------------- */

/**
 * Allocates `size` bytes into *pointer (which is overwritten, not freed).
 * A size of 0 gives a null pointer and success. On failure *pointer is null
 * and ksys_result_outOfMemory is returned.
 */
VEXPERS_API kstd_result ksys_memory_alloc_internal(size_t size, void** pointer);
/**
 * Resizes the block at *pointer (null: allocates) to `size` bytes, keeping
 * its contents. Size 0 frees the block and nulls the pointer. On failure the
 * old block is kept unchanged in *pointer.
 */
VEXPERS_API kstd_result ksys_memory_realloc_internal(size_t size, void** pointer);
/** As ksys_memory_realloc_internal with a 64-bit size; a negative or
 *  unaddressable size fails with ksys_result_outOfMemory. */
VEXPERS_API kstd_result ksys_memory_realloc64_internal(int64_t size, void** pointer);
/** Frees *pointer (null is accepted) and sets it to null. */
VEXPERS_API kstd_result ksys_memory_free_internal(void** pointer);
/** Sets `count` bytes at `destination` to `value`. */
VEXPERS_API kstd_result ksys_memory_fill(uint8_t value, size_t count, void* destination);

/** Number of blocks currently allocated through this service. */
VEXPERS_API kstd_result ksys_memory_getLiveCount(int64_t* count);
/** Number of successful allocations (alloc, and realloc of a null pointer)
 *  made in this process so far; used to size allocation-failure sweeps. */
VEXPERS_API kstd_result ksys_memory_getAllocationCount(int64_t* count);
/**
 * Failure injection: the `nth` allocation or reallocation from now on
 * (1 = the next one) fails with ksys_result_outOfMemory; when `persistent`
 * is not 0, every later one fails as well. `nth` 0 switches injection off.
 * The counter is process-wide.
 */
VEXPERS_API kstd_result ksys_memory_failAt(int64_t nth, int32_t persistent);
/** 1 when an injected failure has been returned since the last failAt. */
VEXPERS_API kstd_result ksys_memory_getInjectedFailureHit(int32_t* hit);

/* ---- Clean-up lists ----------------------------------------------------- */

/** Kind of a clean-up entry: given back only when the function fails. */
#define ksys_cleanupKind_undoOnFailure 0x22u
/** Heap record held through a local pointer: object is the address of the
 *  pointer, function the record's _delete; always run. */
#define ksys_cleanupKind_heapRecord 0x31u
/** Given back on every exit. */
#define ksys_cleanupKind_always 0x32u

typedef kstd_result (*ksys_cleanupFunction)(void* object);

typedef struct ksys_cleanupEntry {
    int32_t serial;
    uint32_t kind;
    void* object;
    ksys_cleanupFunction function;
} ksys_cleanupEntry;

/** Gives the tag a function keeps for its clean-up list (a running number). */
VEXPERS_API int32_t ksys_cleanup_getNextTag(void);
/**
 * Runs the entries of a clean-up list, last pushed first: kinds 0x31 and
 * 0x32 always, kind 0x22 only when *result is negative on entry. When *result
 * is not negative and a release function fails, the first such code becomes
 * *result (the 0x22 entries still do not run). *count is 0 afterwards.
 * Returns *result.
 * Precondition faults: a null count or result, a negative count, or null
 * entries with a positive count (nothing runs); an entry of unknown kind or
 * with a null function (reported and skipped, the other entries still run,
 * and a non-negative *result becomes ksys_result_preconditionFailed).
 */
VEXPERS_API kstd_result ksys_cleanupExecute_(ksys_cleanupEntry* entries, int32_t* count,
                                             kstd_result* result, int32_t tag);

/* ---- Critical section (re-entrant) --------------------------------------- */

typedef struct ksys_criticalSection {
    void* implementation;
} ksys_criticalSection;

/** Builds the lock; fails with ksys_result_outOfMemory (section left with a
 *  null implementation, which destruct accepts). */
VEXPERS_API kstd_result ksys_criticalSection_construct(ksys_criticalSection* section);
/** Frees the lock, which must not be held. */
VEXPERS_API kstd_result ksys_criticalSection_destruct(ksys_criticalSection* section);
/** Takes the section (again, when this thread already holds it; every take
 *  needs its release) and sets *isHeld to 1 (isHeld may be null). */
VEXPERS_API kstd_result ksys_criticalSection_wait(ksys_criticalSection* section, uint32_t* isHeld);
/** Gives back one hold of the section (the calling thread must hold it).
 *  wait and release on a null section or one without an implementation
 *  (construct failed) are precondition faults. */
VEXPERS_API kstd_result ksys_criticalSection_release(ksys_criticalSection* section);

VEXPERS_API void ksys_typeCheck_ksys_criticalSection(ksys_criticalSection* object);
VEXPERS_API void ksys_typeCheckPtr_ksys_criticalSection(ksys_criticalSection** object);
VEXPERS_API void ksys_typeCheckFunc_ksys_criticalSection(kstd_result (*function)(ksys_criticalSection*));
VEXPERS_API void ksys_typeCheckFuncPtr_ksys_criticalSection(kstd_result (*function)(ksys_criticalSection**));

/* ---- Once-only start-up --------------------------------------------------- */

/** A once flag; zero-initialise it (static storage does). */
typedef struct ksys_onceFlag {
    int32_t state;
    kstd_result result;
} ksys_onceFlag;

#define KSYS_ONCE_FLAG_INIT {0, 0}

typedef kstd_result (*ksys_onceFunction)(void* argument);

/**
 * Runs `function(argument)` once per flag and process and returns its result
 * (failures included: they are not retried) to that caller and to every
 * later caller. Concurrent callers wait for the first; a function may start
 * other flags, but re-entering its own flag from the same thread fails with
 * ksys_result_reentrantInitialization (the flag's own result is unaffected).
 */
VEXPERS_API kstd_result ksys_initializeOnce(ksys_onceFunction function, void* argument,
                                            ksys_onceFlag* flag);

/* ---- Shut-down ---------------------------------------------------------- */

typedef kstd_result (*ksys_shutdownFunction)(void* argument);

/** Registers a routine to run at shut-down; routines run last registered
 *  first. Fails with ksys_result_outOfMemory; registering after shut-down
 *  is a precondition fault. */
VEXPERS_API kstd_result ksys_shutdown_register(ksys_shutdownFunction function, void* argument);
/**
 * Runs every registered routine once, last registered first, and returns
 * the first failure (or 0); later calls return the same code and run
 * nothing. Runs at most once per process: automatically at process exit, or
 * earlier when an embedder or leak checker calls it. The registrations'
 * memory is freed by then. After it, no other vexpers function may be called.
 */
VEXPERS_API kstd_result ksys_shutdown(void);

/* ---- Formatting ---------------------------------------------------------- */

/**
 * Formats `value` into `buffer` (512 UTF-16 units, NUL-terminated) with the
 * given printf format, which must be "%.20g" (any other is a precondition
 * fault; the buffer then holds the empty text). The C locale is used whatever
 * the host set; infinities print as "inf" / "-inf" and NaN as "nan", never
 * with a sign.
 */
VEXPERS_API kstd_result ksys_clxSprintf_double(char16_t* buffer, const char* format, double value);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_RUNTIME_H */
