/*
 * vexpers/vector.h - the generic vector (kstd_vector__) and the typed vectors
 * of scalar elements built on it.
 *
 * A generic vector stores elements of one size contiguously. With an element
 * table (kstd_vectorElementVtable) every element is built, copied, overwritten
 * and destroyed through its record's own operations, and elements are moved
 * only through them (never with memcpy/realloc), so records that point into
 * themselves stay valid. Without a table the elements are plain bytes:
 * constructed as zeros and copied bytewise.
 *
 * Capacity grows geometrically. An operation that fails to allocate returns
 * ksys_result_outOfMemory and leaves the vector unchanged. An element
 * operation that fails part-way through a copy destroys what the call built
 * and leaves the vector unchanged, returning that operation's code.
 * Element counts are signed 64-bit; a negative count fails with
 * ksys_result_invalidSize, an index outside the vector with ksys_result_notFound.
 */
#ifndef VEXPERS_VECTOR_H
#define VEXPERS_VECTOR_H

#include "vexpers/base.h"

VEXPERS_EXTERN_C_BEGIN

/** Element operations of a vector of records. */
typedef struct kstd_vectorElementVtable {
    kstd_result (*construct)(void* element);
    kstd_result (*constructCopy)(void* element, const void* source);
    kstd_result (*assign)(void* element, const void* source);
    kstd_result (*destruct)(void* element);
} kstd_vectorElementVtable;

/** Memory operations of a vector; null means the ksys_memory service. */
typedef struct kstd_memoryTable {
    kstd_result (*allocate)(size_t size, void** pointer);
    kstd_result (*free)(void** pointer);
} kstd_memoryTable;

/** The generic vector. Fields belong to the vector functions. */
typedef struct kstd_vector__ {
    void* begin;
    int64_t size;
    int64_t capacity;
    int32_t elementSize;
    int32_t reserved;
    const kstd_vectorElementVtable* vtable;
    const kstd_memoryTable* mtable;
} kstd_vector__;

/** Element comparison for compareEqual: *equal 1 when the records are equal. */
typedef kstd_result (*kstd_vectorCompareEqualFunction)(const void* first, const void* second, uint32_t* equal);
/** Element order for qsort: *order -1, 0 or +1. */
typedef kstd_result (*kstd_vectorCompareFunction)(const void* first, const void* second, int32_t* order);

/* Constructors: `count` default-constructed elements (vtable construct, or zeros). */
VEXPERS_API kstd_result kstd_vector__constructWithVtable(kstd_vector__* vector, int64_t count, int32_t elementSize,
                                                         const kstd_vectorElementVtable* vtable);
VEXPERS_API kstd_result kstd_vector__constructWithVtableWithMtable(kstd_vector__* vector, int64_t count,
                                                                   int32_t elementSize,
                                                                   const kstd_vectorElementVtable* vtable,
                                                                   const kstd_memoryTable* mtable);
/** `count` elements whose bytes are left as allocated; the caller constructs
 *  them (in place, through the element operations) before any other use. */
VEXPERS_API kstd_result kstd_vector__constructWithVtableUninit(kstd_vector__* vector, int64_t count,
                                                               int32_t elementSize,
                                                               const kstd_vectorElementVtable* vtable);
/** `count` copies of `element`. */
VEXPERS_API kstd_result kstd_vector__constructFillWithVtable(kstd_vector__* vector, int64_t count,
                                                             const void* element, int32_t elementSize,
                                                             const kstd_vectorElementVtable* vtable);
/** Copies of the `count` elements of a block that starts at `block`. */
VEXPERS_API kstd_result kstd_vector__constructFromBlockWithVtable(kstd_vector__* vector, const void* block,
                                                                  int64_t count, int32_t elementSize,
                                                                  const kstd_vectorElementVtable* vtable);
/** A copy of `source` with the same element size and operations. */
VEXPERS_API kstd_result kstd_vector__constructCopy(kstd_vector__* vector, const kstd_vector__* source);
/** Replaces the contents by copies of the source's elements. */
VEXPERS_API kstd_result kstd_vector__assign(kstd_vector__* vector, const kstd_vector__* source);
/** Replaces the contents by copies of the elements in [first, end). */
VEXPERS_API kstd_result kstd_vector__assignElements(kstd_vector__* vector, const void* first, const void* end);
VEXPERS_API kstd_result kstd_vector__destruct(kstd_vector__* vector);

VEXPERS_API kstd_result kstd_vector__resize(kstd_vector__* vector, int64_t count);
/** Resizes; new elements are left as allocated (see constructWithVtableUninit). */
VEXPERS_API kstd_result kstd_vector__resizeUninit(kstd_vector__* vector, int64_t count);
/** Resizes; new elements are copies of `element`. */
VEXPERS_API kstd_result kstd_vector__resizeFill(kstd_vector__* vector, int64_t count, const void* element);
/** Makes room for `count` elements without changing the size. */
VEXPERS_API kstd_result kstd_vector__reserve(kstd_vector__* vector, int64_t count);

/** Pointer-sized element count. */
VEXPERS_API kstd_result kstd_vector__getSize(const kstd_vector__* vector, intptr_t* size);
/** 32-bit element count; ksys_result_invalidSize when it does not fit. */
VEXPERS_API kstd_result kstd_vector__getSize32(const kstd_vector__* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector__getCapacity(const kstd_vector__* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector__getElementSize(const kstd_vector__* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector__getBeginEnd(kstd_vector__* vector, void** begin, void** end);
VEXPERS_API kstd_result kstd_vector__getBeginEndConst(const kstd_vector__* vector, const void** begin,
                                                      const void** end);
VEXPERS_API kstd_result kstd_vector__getBegin(kstd_vector__* vector, void** begin);
VEXPERS_API kstd_result kstd_vector__getBeginConst(const kstd_vector__* vector, const void** begin);
VEXPERS_API kstd_result kstd_vector__getBeginSize(kstd_vector__* vector, void** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector__getBeginSizeConst(const kstd_vector__* vector, const void** begin,
                                                       intptr_t* size);
VEXPERS_API kstd_result kstd_vector__getBeginSize32(kstd_vector__* vector, void** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector__getBeginSize32Const(const kstd_vector__* vector, const void** begin,
                                                         int32_t* size);
/** The element at `index` (ksys_result_notFound outside 0..size-1). */
VEXPERS_API kstd_result kstd_vector__getElement(kstd_vector__* vector, int64_t index, void** element);
VEXPERS_API kstd_result kstd_vector__getElementConst(const kstd_vector__* vector, int64_t index,
                                                     const void** element);
/** Steps *element to the next element (one element size further). */
VEXPERS_API kstd_result kstd_vector__getNextElement(kstd_vector__* vector, void** element);
VEXPERS_API kstd_result kstd_vector__getNextElementConst(const kstd_vector__* vector, const void** element);

/** Inserts a copy of `element` before position `index` (0..size). */
VEXPERS_API kstd_result kstd_vector__insert(kstd_vector__* vector, int64_t index, const void* element);
/** Inserts a copy of `element` before the element at `position` (or at the end). */
VEXPERS_API kstd_result kstd_vector__insertElement(kstd_vector__* vector, void* position, const void* element);
/** Removes the element at `index`. */
VEXPERS_API kstd_result kstd_vector__erase(kstd_vector__* vector, int64_t index);
/** Removes the element at `element`, which must point at one of the vector's elements. */
VEXPERS_API kstd_result kstd_vector__eraseElement(kstd_vector__* vector, void* element);
VEXPERS_API kstd_result kstd_vector__pushBack(kstd_vector__* vector, const void* element);
/** Removes the last element (ksys_result_notFound when empty). */
VEXPERS_API kstd_result kstd_vector__popBack(kstd_vector__* vector);
/** Destroys every element; the capacity is kept. */
VEXPERS_API kstd_result kstd_vector__clear(kstd_vector__* vector);
/** Destroys every element and frees the storage. */
VEXPERS_API kstd_result kstd_vector__clearAndFreeMemory(kstd_vector__* vector);
/** Appends copies of the source's elements (same element size required). */
VEXPERS_API kstd_result kstd_vector__append(kstd_vector__* vector, const kstd_vector__* source);
/** Exchanges the contents of two vectors. */
VEXPERS_API kstd_result kstd_vector__swap(kstd_vector__* vector, kstd_vector__* other);
/** *equal 1 when both have the same size and every pair of elements compares
 *  equal by `compare` (bytewise when `compare` is null). */
VEXPERS_API kstd_result kstd_vector__compareEqual(const kstd_vector__* first, const kstd_vector__* second,
                                                  uint32_t* equal, kstd_vectorCompareEqualFunction compare);
/** Sorts stably by `compare`, moving elements through their operations. */
VEXPERS_API kstd_result kstd_vector__qsort(kstd_vector__* vector, kstd_vectorCompareFunction compare);

/* TYPED VECTORS: declared below this line. */

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_VECTOR_H */
