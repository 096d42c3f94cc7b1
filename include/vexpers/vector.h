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
 * Element counts are signed 64-bit; a negative count, an element size below
 * 1, a source vector of another element size (assign, append) or a range
 * [first, end) that is not whole elements fails with ksys_result_invalidSize;
 * an index outside the vector, or an element pointer that is not one of its
 * elements (insertElement: or its end), with ksys_result_notFound. A count
 * whose bytes no allocator could give fails with ksys_result_outOfMemory.
 *
 * A table, when given, must fill all four slots and a memory table both of its
 * slots (a precondition). A constructor that fails leaves a valid empty
 * vector, which may be destructed or not. Operations that would shift
 * records in the middle of the vector (insert, erase, assign, sort) copy them
 * into new storage instead, so a failure part-way never leaves the vector
 * half changed. Destroying elements goes on past a failing destruct and
 * reports the first failure.
 */
#ifndef VEXPERS_VECTOR_H
#define VEXPERS_VECTOR_H

#include "vexpers/base.h"
#include "vexpers/text.h"

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
/** Replaces the contents by copies of the elements in [first, end), which
 *  may lie inside the vector itself. */
VEXPERS_API kstd_result kstd_vector__assignElements(kstd_vector__* vector, const void* first, const void* end);
/** Destroys the elements and frees the storage. */
VEXPERS_API kstd_result kstd_vector__destruct(kstd_vector__* vector);

/** Resizes; new elements are default-constructed (vtable construct, or zeros). */
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
/* Access: capacity, element size, and the first element (null when there is
 * no storage), one past the last, and the count, in the combinations their
 * names say (the 32-bit forms fail as getSize32 does). Outputs are cleared
 * first; apart from the 32-bit counts these always succeed. */
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
/** Appends a copy of `element`. */
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

/*
 * Typed vectors. Each is a distinct record around a generic vector, with the
 * same operations over its element type E (scalars are plain bytes; the two
 * vectors of records build, copy and destroy their elements through the
 * element record's own operations). For a typed vector T:
 *
 *   T_construct, T_constructEmpty   an empty vector.
 *   T_constructCopy, T_assign       copies of the source's elements.
 *   T_assignElements(first, end)    copies of the elements in [first, end),
 *                                   which may lie inside the vector itself.
 *   T_destruct                      destroys the elements, frees the storage.
 *   T_new(out)                      deletes what *out holds, then allocates an
 *                                   empty vector; *out is null on failure.
 *   T_newClone(out, source)         a null source only deletes; otherwise new
 *                                   and assign (deleted again on failure).
 *   T_delete(out)                   destructs and frees *out (null: nothing)
 *                                   and sets it to null.
 *   T_clear                         destroys every element, keeps the capacity.
 *   T_resize(count)                 new elements are zeros (scalars) or
 *                                   default-constructed records.
 *   T_resizeFill(count, element)    new elements are copies of `element`
 *                                   (records: passed by address).
 *   T_reserve(count)                room for `count` elements.
 *   T_getBegin, T_getBeginConst     the first element (null when no storage).
 *   T_getSizeIntPtr                 the element count.
 *   T_getBeginSizeIntPtr(Const)     both of them.
 *   T_getElement(Const)(index)      the element at `index`; null and
 *                                   ksys_result_notFound outside the vector.
 *   T_getNextElement(element)       steps *element to the next element.
 *   T_pushBack(element)             appends a copy (records: by address).
 *   T_popBack                       removes the last element;
 *                                   ksys_result_notFound when empty.
 *
 * Results and failure states are those of the generic operation each one
 * forwards to (above); a null vector or output is a precondition fault.
 */

/* ---- kstd_vector8s: int8_t elements */
typedef struct kstd_vector8s {
    kstd_vector__ base;
} kstd_vector8s;

VEXPERS_API kstd_result kstd_vector8s_construct(kstd_vector8s* vector);
VEXPERS_API kstd_result kstd_vector8s_constructEmpty(kstd_vector8s* vector);
VEXPERS_API kstd_result kstd_vector8s_constructCopy(kstd_vector8s* vector, const kstd_vector8s* source);
VEXPERS_API kstd_result kstd_vector8s_assign(kstd_vector8s* vector, const kstd_vector8s* source);
VEXPERS_API kstd_result kstd_vector8s_assignElements(kstd_vector8s* vector, const int8_t* first, const int8_t* end);
VEXPERS_API kstd_result kstd_vector8s_destruct(kstd_vector8s* vector);
VEXPERS_API kstd_result kstd_vector8s_new(kstd_vector8s** out);
VEXPERS_API kstd_result kstd_vector8s_newClone(kstd_vector8s** out, const kstd_vector8s* source);
VEXPERS_API kstd_result kstd_vector8s_delete(kstd_vector8s** out);
VEXPERS_API kstd_result kstd_vector8s_clear(kstd_vector8s* vector);
VEXPERS_API kstd_result kstd_vector8s_resize(kstd_vector8s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector8s_resizeFill(kstd_vector8s* vector, int64_t count, int8_t element);
VEXPERS_API kstd_result kstd_vector8s_reserve(kstd_vector8s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector8s_getBegin(kstd_vector8s* vector, int8_t** begin);
VEXPERS_API kstd_result kstd_vector8s_getBeginConst(const kstd_vector8s* vector, const int8_t** begin);
VEXPERS_API kstd_result kstd_vector8s_getSizeIntPtr(const kstd_vector8s* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector8s_getBeginSizeIntPtr(kstd_vector8s* vector, int8_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector8s_getBeginSizeIntPtrConst(const kstd_vector8s* vector, const int8_t** begin,
                                                              intptr_t* size);
VEXPERS_API kstd_result kstd_vector8s_getElement(kstd_vector8s* vector, int64_t index, int8_t** element);
VEXPERS_API kstd_result kstd_vector8s_getElementConst(const kstd_vector8s* vector, int64_t index,
                                                      const int8_t** element);
VEXPERS_API kstd_result kstd_vector8s_getNextElement(kstd_vector8s* vector, int8_t** element);
VEXPERS_API kstd_result kstd_vector8s_pushBack(kstd_vector8s* vector, int8_t element);
VEXPERS_API kstd_result kstd_vector8s_popBack(kstd_vector8s* vector);

/* ---- kstd_vector8: uint8_t elements */
typedef struct kstd_vector8 {
    kstd_vector__ base;
} kstd_vector8;

VEXPERS_API kstd_result kstd_vector8_construct(kstd_vector8* vector);
VEXPERS_API kstd_result kstd_vector8_constructEmpty(kstd_vector8* vector);
VEXPERS_API kstd_result kstd_vector8_constructCopy(kstd_vector8* vector, const kstd_vector8* source);
VEXPERS_API kstd_result kstd_vector8_assign(kstd_vector8* vector, const kstd_vector8* source);
VEXPERS_API kstd_result kstd_vector8_assignElements(kstd_vector8* vector, const uint8_t* first, const uint8_t* end);
VEXPERS_API kstd_result kstd_vector8_destruct(kstd_vector8* vector);
VEXPERS_API kstd_result kstd_vector8_new(kstd_vector8** out);
VEXPERS_API kstd_result kstd_vector8_newClone(kstd_vector8** out, const kstd_vector8* source);
VEXPERS_API kstd_result kstd_vector8_delete(kstd_vector8** out);
VEXPERS_API kstd_result kstd_vector8_clear(kstd_vector8* vector);
VEXPERS_API kstd_result kstd_vector8_resize(kstd_vector8* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector8_resizeFill(kstd_vector8* vector, int64_t count, uint8_t element);
VEXPERS_API kstd_result kstd_vector8_reserve(kstd_vector8* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector8_getBegin(kstd_vector8* vector, uint8_t** begin);
VEXPERS_API kstd_result kstd_vector8_getBeginConst(const kstd_vector8* vector, const uint8_t** begin);
VEXPERS_API kstd_result kstd_vector8_getSizeIntPtr(const kstd_vector8* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector8_getBeginSizeIntPtr(kstd_vector8* vector, uint8_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector8_getBeginSizeIntPtrConst(const kstd_vector8* vector, const uint8_t** begin,
                                                             intptr_t* size);
VEXPERS_API kstd_result kstd_vector8_getElement(kstd_vector8* vector, int64_t index, uint8_t** element);
VEXPERS_API kstd_result kstd_vector8_getElementConst(const kstd_vector8* vector, int64_t index,
                                                     const uint8_t** element);
VEXPERS_API kstd_result kstd_vector8_getNextElement(kstd_vector8* vector, uint8_t** element);
VEXPERS_API kstd_result kstd_vector8_pushBack(kstd_vector8* vector, uint8_t element);
VEXPERS_API kstd_result kstd_vector8_popBack(kstd_vector8* vector);

/* ---- kstd_vector16s: int16_t elements */
typedef struct kstd_vector16s {
    kstd_vector__ base;
} kstd_vector16s;

VEXPERS_API kstd_result kstd_vector16s_construct(kstd_vector16s* vector);
VEXPERS_API kstd_result kstd_vector16s_constructEmpty(kstd_vector16s* vector);
VEXPERS_API kstd_result kstd_vector16s_constructCopy(kstd_vector16s* vector, const kstd_vector16s* source);
VEXPERS_API kstd_result kstd_vector16s_assign(kstd_vector16s* vector, const kstd_vector16s* source);
VEXPERS_API kstd_result kstd_vector16s_assignElements(kstd_vector16s* vector, const int16_t* first,
                                                      const int16_t* end);
VEXPERS_API kstd_result kstd_vector16s_destruct(kstd_vector16s* vector);
VEXPERS_API kstd_result kstd_vector16s_new(kstd_vector16s** out);
VEXPERS_API kstd_result kstd_vector16s_newClone(kstd_vector16s** out, const kstd_vector16s* source);
VEXPERS_API kstd_result kstd_vector16s_delete(kstd_vector16s** out);
VEXPERS_API kstd_result kstd_vector16s_clear(kstd_vector16s* vector);
VEXPERS_API kstd_result kstd_vector16s_resize(kstd_vector16s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector16s_resizeFill(kstd_vector16s* vector, int64_t count, int16_t element);
VEXPERS_API kstd_result kstd_vector16s_reserve(kstd_vector16s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector16s_getBegin(kstd_vector16s* vector, int16_t** begin);
VEXPERS_API kstd_result kstd_vector16s_getBeginConst(const kstd_vector16s* vector, const int16_t** begin);
VEXPERS_API kstd_result kstd_vector16s_getSizeIntPtr(const kstd_vector16s* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector16s_getBeginSizeIntPtr(kstd_vector16s* vector, int16_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector16s_getBeginSizeIntPtrConst(const kstd_vector16s* vector, const int16_t** begin,
                                                               intptr_t* size);
VEXPERS_API kstd_result kstd_vector16s_getElement(kstd_vector16s* vector, int64_t index, int16_t** element);
VEXPERS_API kstd_result kstd_vector16s_getElementConst(const kstd_vector16s* vector, int64_t index,
                                                       const int16_t** element);
VEXPERS_API kstd_result kstd_vector16s_getNextElement(kstd_vector16s* vector, int16_t** element);
VEXPERS_API kstd_result kstd_vector16s_pushBack(kstd_vector16s* vector, int16_t element);
VEXPERS_API kstd_result kstd_vector16s_popBack(kstd_vector16s* vector);

/* ---- kstd_vector16: uint16_t elements */
typedef struct kstd_vector16 {
    kstd_vector__ base;
} kstd_vector16;

VEXPERS_API kstd_result kstd_vector16_construct(kstd_vector16* vector);
VEXPERS_API kstd_result kstd_vector16_constructEmpty(kstd_vector16* vector);
VEXPERS_API kstd_result kstd_vector16_constructCopy(kstd_vector16* vector, const kstd_vector16* source);
VEXPERS_API kstd_result kstd_vector16_assign(kstd_vector16* vector, const kstd_vector16* source);
VEXPERS_API kstd_result kstd_vector16_assignElements(kstd_vector16* vector, const uint16_t* first,
                                                     const uint16_t* end);
VEXPERS_API kstd_result kstd_vector16_destruct(kstd_vector16* vector);
VEXPERS_API kstd_result kstd_vector16_new(kstd_vector16** out);
VEXPERS_API kstd_result kstd_vector16_newClone(kstd_vector16** out, const kstd_vector16* source);
VEXPERS_API kstd_result kstd_vector16_delete(kstd_vector16** out);
VEXPERS_API kstd_result kstd_vector16_clear(kstd_vector16* vector);
VEXPERS_API kstd_result kstd_vector16_resize(kstd_vector16* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector16_resizeFill(kstd_vector16* vector, int64_t count, uint16_t element);
VEXPERS_API kstd_result kstd_vector16_reserve(kstd_vector16* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector16_getBegin(kstd_vector16* vector, uint16_t** begin);
VEXPERS_API kstd_result kstd_vector16_getBeginConst(const kstd_vector16* vector, const uint16_t** begin);
VEXPERS_API kstd_result kstd_vector16_getSizeIntPtr(const kstd_vector16* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector16_getBeginSizeIntPtr(kstd_vector16* vector, uint16_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector16_getBeginSizeIntPtrConst(const kstd_vector16* vector, const uint16_t** begin,
                                                              intptr_t* size);
VEXPERS_API kstd_result kstd_vector16_getElement(kstd_vector16* vector, int64_t index, uint16_t** element);
VEXPERS_API kstd_result kstd_vector16_getElementConst(const kstd_vector16* vector, int64_t index,
                                                      const uint16_t** element);
VEXPERS_API kstd_result kstd_vector16_getNextElement(kstd_vector16* vector, uint16_t** element);
VEXPERS_API kstd_result kstd_vector16_pushBack(kstd_vector16* vector, uint16_t element);
VEXPERS_API kstd_result kstd_vector16_popBack(kstd_vector16* vector);

/* ---- kstd_vector32s: int32_t elements */
typedef struct kstd_vector32s {
    kstd_vector__ base;
} kstd_vector32s;

VEXPERS_API kstd_result kstd_vector32s_construct(kstd_vector32s* vector);
VEXPERS_API kstd_result kstd_vector32s_constructEmpty(kstd_vector32s* vector);
VEXPERS_API kstd_result kstd_vector32s_constructCopy(kstd_vector32s* vector, const kstd_vector32s* source);
VEXPERS_API kstd_result kstd_vector32s_assign(kstd_vector32s* vector, const kstd_vector32s* source);
VEXPERS_API kstd_result kstd_vector32s_assignElements(kstd_vector32s* vector, const int32_t* first,
                                                      const int32_t* end);
VEXPERS_API kstd_result kstd_vector32s_destruct(kstd_vector32s* vector);
VEXPERS_API kstd_result kstd_vector32s_new(kstd_vector32s** out);
VEXPERS_API kstd_result kstd_vector32s_newClone(kstd_vector32s** out, const kstd_vector32s* source);
VEXPERS_API kstd_result kstd_vector32s_delete(kstd_vector32s** out);
VEXPERS_API kstd_result kstd_vector32s_clear(kstd_vector32s* vector);
VEXPERS_API kstd_result kstd_vector32s_resize(kstd_vector32s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector32s_resizeFill(kstd_vector32s* vector, int64_t count, int32_t element);
VEXPERS_API kstd_result kstd_vector32s_reserve(kstd_vector32s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector32s_getBegin(kstd_vector32s* vector, int32_t** begin);
VEXPERS_API kstd_result kstd_vector32s_getBeginConst(const kstd_vector32s* vector, const int32_t** begin);
VEXPERS_API kstd_result kstd_vector32s_getSizeIntPtr(const kstd_vector32s* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector32s_getBeginSizeIntPtr(kstd_vector32s* vector, int32_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector32s_getBeginSizeIntPtrConst(const kstd_vector32s* vector, const int32_t** begin,
                                                               intptr_t* size);
VEXPERS_API kstd_result kstd_vector32s_getElement(kstd_vector32s* vector, int64_t index, int32_t** element);
VEXPERS_API kstd_result kstd_vector32s_getElementConst(const kstd_vector32s* vector, int64_t index,
                                                       const int32_t** element);
VEXPERS_API kstd_result kstd_vector32s_getNextElement(kstd_vector32s* vector, int32_t** element);
VEXPERS_API kstd_result kstd_vector32s_pushBack(kstd_vector32s* vector, int32_t element);
VEXPERS_API kstd_result kstd_vector32s_popBack(kstd_vector32s* vector);

/* ---- kstd_vector32: uint32_t elements */
typedef struct kstd_vector32 {
    kstd_vector__ base;
} kstd_vector32;

VEXPERS_API kstd_result kstd_vector32_construct(kstd_vector32* vector);
VEXPERS_API kstd_result kstd_vector32_constructEmpty(kstd_vector32* vector);
VEXPERS_API kstd_result kstd_vector32_constructCopy(kstd_vector32* vector, const kstd_vector32* source);
VEXPERS_API kstd_result kstd_vector32_assign(kstd_vector32* vector, const kstd_vector32* source);
VEXPERS_API kstd_result kstd_vector32_assignElements(kstd_vector32* vector, const uint32_t* first,
                                                     const uint32_t* end);
VEXPERS_API kstd_result kstd_vector32_destruct(kstd_vector32* vector);
VEXPERS_API kstd_result kstd_vector32_new(kstd_vector32** out);
VEXPERS_API kstd_result kstd_vector32_newClone(kstd_vector32** out, const kstd_vector32* source);
VEXPERS_API kstd_result kstd_vector32_delete(kstd_vector32** out);
VEXPERS_API kstd_result kstd_vector32_clear(kstd_vector32* vector);
VEXPERS_API kstd_result kstd_vector32_resize(kstd_vector32* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector32_resizeFill(kstd_vector32* vector, int64_t count, uint32_t element);
VEXPERS_API kstd_result kstd_vector32_reserve(kstd_vector32* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector32_getBegin(kstd_vector32* vector, uint32_t** begin);
VEXPERS_API kstd_result kstd_vector32_getBeginConst(const kstd_vector32* vector, const uint32_t** begin);
VEXPERS_API kstd_result kstd_vector32_getSizeIntPtr(const kstd_vector32* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector32_getBeginSizeIntPtr(kstd_vector32* vector, uint32_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector32_getBeginSizeIntPtrConst(const kstd_vector32* vector, const uint32_t** begin,
                                                              intptr_t* size);
VEXPERS_API kstd_result kstd_vector32_getElement(kstd_vector32* vector, int64_t index, uint32_t** element);
VEXPERS_API kstd_result kstd_vector32_getElementConst(const kstd_vector32* vector, int64_t index,
                                                      const uint32_t** element);
VEXPERS_API kstd_result kstd_vector32_getNextElement(kstd_vector32* vector, uint32_t** element);
VEXPERS_API kstd_result kstd_vector32_pushBack(kstd_vector32* vector, uint32_t element);
VEXPERS_API kstd_result kstd_vector32_popBack(kstd_vector32* vector);

/* ---- kstd_vector64s: int64_t elements */
typedef struct kstd_vector64s {
    kstd_vector__ base;
} kstd_vector64s;

VEXPERS_API kstd_result kstd_vector64s_construct(kstd_vector64s* vector);
VEXPERS_API kstd_result kstd_vector64s_constructEmpty(kstd_vector64s* vector);
VEXPERS_API kstd_result kstd_vector64s_constructCopy(kstd_vector64s* vector, const kstd_vector64s* source);
VEXPERS_API kstd_result kstd_vector64s_assign(kstd_vector64s* vector, const kstd_vector64s* source);
VEXPERS_API kstd_result kstd_vector64s_assignElements(kstd_vector64s* vector, const int64_t* first,
                                                      const int64_t* end);
VEXPERS_API kstd_result kstd_vector64s_destruct(kstd_vector64s* vector);
VEXPERS_API kstd_result kstd_vector64s_new(kstd_vector64s** out);
VEXPERS_API kstd_result kstd_vector64s_newClone(kstd_vector64s** out, const kstd_vector64s* source);
VEXPERS_API kstd_result kstd_vector64s_delete(kstd_vector64s** out);
VEXPERS_API kstd_result kstd_vector64s_clear(kstd_vector64s* vector);
VEXPERS_API kstd_result kstd_vector64s_resize(kstd_vector64s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector64s_resizeFill(kstd_vector64s* vector, int64_t count, int64_t element);
VEXPERS_API kstd_result kstd_vector64s_reserve(kstd_vector64s* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector64s_getBegin(kstd_vector64s* vector, int64_t** begin);
VEXPERS_API kstd_result kstd_vector64s_getBeginConst(const kstd_vector64s* vector, const int64_t** begin);
VEXPERS_API kstd_result kstd_vector64s_getSizeIntPtr(const kstd_vector64s* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector64s_getBeginSizeIntPtr(kstd_vector64s* vector, int64_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector64s_getBeginSizeIntPtrConst(const kstd_vector64s* vector, const int64_t** begin,
                                                               intptr_t* size);
VEXPERS_API kstd_result kstd_vector64s_getElement(kstd_vector64s* vector, int64_t index, int64_t** element);
VEXPERS_API kstd_result kstd_vector64s_getElementConst(const kstd_vector64s* vector, int64_t index,
                                                       const int64_t** element);
VEXPERS_API kstd_result kstd_vector64s_getNextElement(kstd_vector64s* vector, int64_t** element);
VEXPERS_API kstd_result kstd_vector64s_pushBack(kstd_vector64s* vector, int64_t element);
VEXPERS_API kstd_result kstd_vector64s_popBack(kstd_vector64s* vector);

/* ---- kstd_vector64: uint64_t elements */
typedef struct kstd_vector64 {
    kstd_vector__ base;
} kstd_vector64;

VEXPERS_API kstd_result kstd_vector64_construct(kstd_vector64* vector);
VEXPERS_API kstd_result kstd_vector64_constructEmpty(kstd_vector64* vector);
VEXPERS_API kstd_result kstd_vector64_constructCopy(kstd_vector64* vector, const kstd_vector64* source);
VEXPERS_API kstd_result kstd_vector64_assign(kstd_vector64* vector, const kstd_vector64* source);
VEXPERS_API kstd_result kstd_vector64_assignElements(kstd_vector64* vector, const uint64_t* first,
                                                     const uint64_t* end);
VEXPERS_API kstd_result kstd_vector64_destruct(kstd_vector64* vector);
VEXPERS_API kstd_result kstd_vector64_new(kstd_vector64** out);
VEXPERS_API kstd_result kstd_vector64_newClone(kstd_vector64** out, const kstd_vector64* source);
VEXPERS_API kstd_result kstd_vector64_delete(kstd_vector64** out);
VEXPERS_API kstd_result kstd_vector64_clear(kstd_vector64* vector);
VEXPERS_API kstd_result kstd_vector64_resize(kstd_vector64* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector64_resizeFill(kstd_vector64* vector, int64_t count, uint64_t element);
VEXPERS_API kstd_result kstd_vector64_reserve(kstd_vector64* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector64_getBegin(kstd_vector64* vector, uint64_t** begin);
VEXPERS_API kstd_result kstd_vector64_getBeginConst(const kstd_vector64* vector, const uint64_t** begin);
VEXPERS_API kstd_result kstd_vector64_getSizeIntPtr(const kstd_vector64* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector64_getBeginSizeIntPtr(kstd_vector64* vector, uint64_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector64_getBeginSizeIntPtrConst(const kstd_vector64* vector, const uint64_t** begin,
                                                              intptr_t* size);
VEXPERS_API kstd_result kstd_vector64_getElement(kstd_vector64* vector, int64_t index, uint64_t** element);
VEXPERS_API kstd_result kstd_vector64_getElementConst(const kstd_vector64* vector, int64_t index,
                                                      const uint64_t** element);
VEXPERS_API kstd_result kstd_vector64_getNextElement(kstd_vector64* vector, uint64_t** element);
VEXPERS_API kstd_result kstd_vector64_pushBack(kstd_vector64* vector, uint64_t element);
VEXPERS_API kstd_result kstd_vector64_popBack(kstd_vector64* vector);

/* ---- kstd_vectorIntPtrs: intptr_t elements */
typedef struct kstd_vectorIntPtrs {
    kstd_vector__ base;
} kstd_vectorIntPtrs;

VEXPERS_API kstd_result kstd_vectorIntPtrs_construct(kstd_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vectorIntPtrs_constructEmpty(kstd_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vectorIntPtrs_constructCopy(kstd_vectorIntPtrs* vector,
                                                         const kstd_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vectorIntPtrs_assign(kstd_vectorIntPtrs* vector, const kstd_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vectorIntPtrs_assignElements(kstd_vectorIntPtrs* vector, const intptr_t* first,
                                                          const intptr_t* end);
VEXPERS_API kstd_result kstd_vectorIntPtrs_destruct(kstd_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vectorIntPtrs_new(kstd_vectorIntPtrs** out);
VEXPERS_API kstd_result kstd_vectorIntPtrs_newClone(kstd_vectorIntPtrs** out, const kstd_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vectorIntPtrs_delete(kstd_vectorIntPtrs** out);
VEXPERS_API kstd_result kstd_vectorIntPtrs_clear(kstd_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vectorIntPtrs_resize(kstd_vectorIntPtrs* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorIntPtrs_resizeFill(kstd_vectorIntPtrs* vector, int64_t count, intptr_t element);
VEXPERS_API kstd_result kstd_vectorIntPtrs_reserve(kstd_vectorIntPtrs* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getBegin(kstd_vectorIntPtrs* vector, intptr_t** begin);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getBeginConst(const kstd_vectorIntPtrs* vector, const intptr_t** begin);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getSizeIntPtr(const kstd_vectorIntPtrs* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getBeginSizeIntPtr(kstd_vectorIntPtrs* vector, intptr_t** begin,
                                                              intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getBeginSizeIntPtrConst(const kstd_vectorIntPtrs* vector,
                                                                   const intptr_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getElement(kstd_vectorIntPtrs* vector, int64_t index, intptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getElementConst(const kstd_vectorIntPtrs* vector, int64_t index,
                                                           const intptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtrs_getNextElement(kstd_vectorIntPtrs* vector, intptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtrs_pushBack(kstd_vectorIntPtrs* vector, intptr_t element);
VEXPERS_API kstd_result kstd_vectorIntPtrs_popBack(kstd_vectorIntPtrs* vector);

/* ---- kstd_vectorIntPtr: uintptr_t elements */
typedef struct kstd_vectorIntPtr {
    kstd_vector__ base;
} kstd_vectorIntPtr;

VEXPERS_API kstd_result kstd_vectorIntPtr_construct(kstd_vectorIntPtr* vector);
VEXPERS_API kstd_result kstd_vectorIntPtr_constructEmpty(kstd_vectorIntPtr* vector);
VEXPERS_API kstd_result kstd_vectorIntPtr_constructCopy(kstd_vectorIntPtr* vector, const kstd_vectorIntPtr* source);
VEXPERS_API kstd_result kstd_vectorIntPtr_assign(kstd_vectorIntPtr* vector, const kstd_vectorIntPtr* source);
VEXPERS_API kstd_result kstd_vectorIntPtr_assignElements(kstd_vectorIntPtr* vector, const uintptr_t* first,
                                                         const uintptr_t* end);
VEXPERS_API kstd_result kstd_vectorIntPtr_destruct(kstd_vectorIntPtr* vector);
VEXPERS_API kstd_result kstd_vectorIntPtr_new(kstd_vectorIntPtr** out);
VEXPERS_API kstd_result kstd_vectorIntPtr_newClone(kstd_vectorIntPtr** out, const kstd_vectorIntPtr* source);
VEXPERS_API kstd_result kstd_vectorIntPtr_delete(kstd_vectorIntPtr** out);
VEXPERS_API kstd_result kstd_vectorIntPtr_clear(kstd_vectorIntPtr* vector);
VEXPERS_API kstd_result kstd_vectorIntPtr_resize(kstd_vectorIntPtr* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorIntPtr_resizeFill(kstd_vectorIntPtr* vector, int64_t count, uintptr_t element);
VEXPERS_API kstd_result kstd_vectorIntPtr_reserve(kstd_vectorIntPtr* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorIntPtr_getBegin(kstd_vectorIntPtr* vector, uintptr_t** begin);
VEXPERS_API kstd_result kstd_vectorIntPtr_getBeginConst(const kstd_vectorIntPtr* vector, const uintptr_t** begin);
VEXPERS_API kstd_result kstd_vectorIntPtr_getSizeIntPtr(const kstd_vectorIntPtr* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtr_getBeginSizeIntPtr(kstd_vectorIntPtr* vector, uintptr_t** begin,
                                                             intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtr_getBeginSizeIntPtrConst(const kstd_vectorIntPtr* vector,
                                                                  const uintptr_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorIntPtr_getElement(kstd_vectorIntPtr* vector, int64_t index, uintptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtr_getElementConst(const kstd_vectorIntPtr* vector, int64_t index,
                                                          const uintptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtr_getNextElement(kstd_vectorIntPtr* vector, uintptr_t** element);
VEXPERS_API kstd_result kstd_vectorIntPtr_pushBack(kstd_vectorIntPtr* vector, uintptr_t element);
VEXPERS_API kstd_result kstd_vectorIntPtr_popBack(kstd_vectorIntPtr* vector);

/* ---- kstd_vectorf: float elements */
typedef struct kstd_vectorf {
    kstd_vector__ base;
} kstd_vectorf;

VEXPERS_API kstd_result kstd_vectorf_construct(kstd_vectorf* vector);
VEXPERS_API kstd_result kstd_vectorf_constructEmpty(kstd_vectorf* vector);
VEXPERS_API kstd_result kstd_vectorf_constructCopy(kstd_vectorf* vector, const kstd_vectorf* source);
VEXPERS_API kstd_result kstd_vectorf_assign(kstd_vectorf* vector, const kstd_vectorf* source);
VEXPERS_API kstd_result kstd_vectorf_assignElements(kstd_vectorf* vector, const float* first, const float* end);
VEXPERS_API kstd_result kstd_vectorf_destruct(kstd_vectorf* vector);
VEXPERS_API kstd_result kstd_vectorf_new(kstd_vectorf** out);
VEXPERS_API kstd_result kstd_vectorf_newClone(kstd_vectorf** out, const kstd_vectorf* source);
VEXPERS_API kstd_result kstd_vectorf_delete(kstd_vectorf** out);
VEXPERS_API kstd_result kstd_vectorf_clear(kstd_vectorf* vector);
VEXPERS_API kstd_result kstd_vectorf_resize(kstd_vectorf* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorf_resizeFill(kstd_vectorf* vector, int64_t count, float element);
VEXPERS_API kstd_result kstd_vectorf_reserve(kstd_vectorf* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorf_getBegin(kstd_vectorf* vector, float** begin);
VEXPERS_API kstd_result kstd_vectorf_getBeginConst(const kstd_vectorf* vector, const float** begin);
VEXPERS_API kstd_result kstd_vectorf_getSizeIntPtr(const kstd_vectorf* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorf_getBeginSizeIntPtr(kstd_vectorf* vector, float** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorf_getBeginSizeIntPtrConst(const kstd_vectorf* vector, const float** begin,
                                                             intptr_t* size);
VEXPERS_API kstd_result kstd_vectorf_getElement(kstd_vectorf* vector, int64_t index, float** element);
VEXPERS_API kstd_result kstd_vectorf_getElementConst(const kstd_vectorf* vector, int64_t index,
                                                     const float** element);
VEXPERS_API kstd_result kstd_vectorf_getNextElement(kstd_vectorf* vector, float** element);
VEXPERS_API kstd_result kstd_vectorf_pushBack(kstd_vectorf* vector, float element);
VEXPERS_API kstd_result kstd_vectorf_popBack(kstd_vectorf* vector);

/* ---- kstd_vectord: double elements */
typedef struct kstd_vectord {
    kstd_vector__ base;
} kstd_vectord;

VEXPERS_API kstd_result kstd_vectord_construct(kstd_vectord* vector);
VEXPERS_API kstd_result kstd_vectord_constructEmpty(kstd_vectord* vector);
VEXPERS_API kstd_result kstd_vectord_constructCopy(kstd_vectord* vector, const kstd_vectord* source);
VEXPERS_API kstd_result kstd_vectord_assign(kstd_vectord* vector, const kstd_vectord* source);
VEXPERS_API kstd_result kstd_vectord_assignElements(kstd_vectord* vector, const double* first, const double* end);
VEXPERS_API kstd_result kstd_vectord_destruct(kstd_vectord* vector);
VEXPERS_API kstd_result kstd_vectord_new(kstd_vectord** out);
VEXPERS_API kstd_result kstd_vectord_newClone(kstd_vectord** out, const kstd_vectord* source);
VEXPERS_API kstd_result kstd_vectord_delete(kstd_vectord** out);
VEXPERS_API kstd_result kstd_vectord_clear(kstd_vectord* vector);
VEXPERS_API kstd_result kstd_vectord_resize(kstd_vectord* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectord_resizeFill(kstd_vectord* vector, int64_t count, double element);
VEXPERS_API kstd_result kstd_vectord_reserve(kstd_vectord* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectord_getBegin(kstd_vectord* vector, double** begin);
VEXPERS_API kstd_result kstd_vectord_getBeginConst(const kstd_vectord* vector, const double** begin);
VEXPERS_API kstd_result kstd_vectord_getSizeIntPtr(const kstd_vectord* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectord_getBeginSizeIntPtr(kstd_vectord* vector, double** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectord_getBeginSizeIntPtrConst(const kstd_vectord* vector, const double** begin,
                                                             intptr_t* size);
VEXPERS_API kstd_result kstd_vectord_getElement(kstd_vectord* vector, int64_t index, double** element);
VEXPERS_API kstd_result kstd_vectord_getElementConst(const kstd_vectord* vector, int64_t index,
                                                     const double** element);
VEXPERS_API kstd_result kstd_vectord_getNextElement(kstd_vectord* vector, double** element);
VEXPERS_API kstd_result kstd_vectord_pushBack(kstd_vectord* vector, double element);
VEXPERS_API kstd_result kstd_vectord_popBack(kstd_vectord* vector);

/* ---- kstd_vectorb: int32_t elements (32-bit booleans) */
typedef struct kstd_vectorb {
    kstd_vector__ base;
} kstd_vectorb;

VEXPERS_API kstd_result kstd_vectorb_construct(kstd_vectorb* vector);
VEXPERS_API kstd_result kstd_vectorb_constructEmpty(kstd_vectorb* vector);
VEXPERS_API kstd_result kstd_vectorb_constructCopy(kstd_vectorb* vector, const kstd_vectorb* source);
VEXPERS_API kstd_result kstd_vectorb_assign(kstd_vectorb* vector, const kstd_vectorb* source);
VEXPERS_API kstd_result kstd_vectorb_assignElements(kstd_vectorb* vector, const int32_t* first, const int32_t* end);
VEXPERS_API kstd_result kstd_vectorb_destruct(kstd_vectorb* vector);
VEXPERS_API kstd_result kstd_vectorb_new(kstd_vectorb** out);
VEXPERS_API kstd_result kstd_vectorb_newClone(kstd_vectorb** out, const kstd_vectorb* source);
VEXPERS_API kstd_result kstd_vectorb_delete(kstd_vectorb** out);
VEXPERS_API kstd_result kstd_vectorb_clear(kstd_vectorb* vector);
VEXPERS_API kstd_result kstd_vectorb_resize(kstd_vectorb* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorb_resizeFill(kstd_vectorb* vector, int64_t count, int32_t element);
VEXPERS_API kstd_result kstd_vectorb_reserve(kstd_vectorb* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorb_getBegin(kstd_vectorb* vector, int32_t** begin);
VEXPERS_API kstd_result kstd_vectorb_getBeginConst(const kstd_vectorb* vector, const int32_t** begin);
VEXPERS_API kstd_result kstd_vectorb_getSizeIntPtr(const kstd_vectorb* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorb_getBeginSizeIntPtr(kstd_vectorb* vector, int32_t** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorb_getBeginSizeIntPtrConst(const kstd_vectorb* vector, const int32_t** begin,
                                                             intptr_t* size);
VEXPERS_API kstd_result kstd_vectorb_getElement(kstd_vectorb* vector, int64_t index, int32_t** element);
VEXPERS_API kstd_result kstd_vectorb_getElementConst(const kstd_vectorb* vector, int64_t index,
                                                     const int32_t** element);
VEXPERS_API kstd_result kstd_vectorb_getNextElement(kstd_vectorb* vector, int32_t** element);
VEXPERS_API kstd_result kstd_vectorb_pushBack(kstd_vectorb* vector, int32_t element);
VEXPERS_API kstd_result kstd_vectorb_popBack(kstd_vectorb* vector);

/* ---- kstd_vectorPtrConstVoid: const void* elements (untyped constant pointers) */
typedef struct kstd_vectorPtrConstVoid {
    kstd_vector__ base;
} kstd_vectorPtrConstVoid;

VEXPERS_API kstd_result kstd_vectorPtrConstVoid_construct(kstd_vectorPtrConstVoid* vector);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_constructEmpty(kstd_vectorPtrConstVoid* vector);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_constructCopy(kstd_vectorPtrConstVoid* vector,
                                                              const kstd_vectorPtrConstVoid* source);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_assign(kstd_vectorPtrConstVoid* vector,
                                                       const kstd_vectorPtrConstVoid* source);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_assignElements(kstd_vectorPtrConstVoid* vector,
                                                               const void* const* first, const void* const* end);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_destruct(kstd_vectorPtrConstVoid* vector);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_new(kstd_vectorPtrConstVoid** out);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_newClone(kstd_vectorPtrConstVoid** out,
                                                         const kstd_vectorPtrConstVoid* source);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_delete(kstd_vectorPtrConstVoid** out);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_clear(kstd_vectorPtrConstVoid* vector);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_resize(kstd_vectorPtrConstVoid* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_resizeFill(kstd_vectorPtrConstVoid* vector, int64_t count,
                                                           const void* element);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_reserve(kstd_vectorPtrConstVoid* vector, int64_t count);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getBegin(kstd_vectorPtrConstVoid* vector, const void*** begin);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getBeginConst(const kstd_vectorPtrConstVoid* vector,
                                                              const void* const** begin);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getSizeIntPtr(const kstd_vectorPtrConstVoid* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getBeginSizeIntPtr(kstd_vectorPtrConstVoid* vector,
                                                                   const void*** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getBeginSizeIntPtrConst(const kstd_vectorPtrConstVoid* vector,
                                                                        const void* const** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getElement(kstd_vectorPtrConstVoid* vector, int64_t index,
                                                           const void*** element);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getElementConst(const kstd_vectorPtrConstVoid* vector, int64_t index,
                                                                const void* const** element);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_getNextElement(kstd_vectorPtrConstVoid* vector,
                                                               const void*** element);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_pushBack(kstd_vectorPtrConstVoid* vector, const void* element);
VEXPERS_API kstd_result kstd_vectorPtrConstVoid_popBack(kstd_vectorPtrConstVoid* vector);

/* ---- kstd_vector_vectorIntPtrs: kstd_vectorIntPtrs elements (vectors of kstd_vectorIntPtrs) */
typedef struct kstd_vector_vectorIntPtrs {
    kstd_vector__ base;
} kstd_vector_vectorIntPtrs;

VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_construct(kstd_vector_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_constructEmpty(kstd_vector_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_constructCopy(kstd_vector_vectorIntPtrs* vector,
                                                                const kstd_vector_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_assign(kstd_vector_vectorIntPtrs* vector,
                                                         const kstd_vector_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_assignElements(kstd_vector_vectorIntPtrs* vector,
                                                                 const kstd_vectorIntPtrs* first,
                                                                 const kstd_vectorIntPtrs* end);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_destruct(kstd_vector_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_new(kstd_vector_vectorIntPtrs** out);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_newClone(kstd_vector_vectorIntPtrs** out,
                                                           const kstd_vector_vectorIntPtrs* source);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_delete(kstd_vector_vectorIntPtrs** out);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_clear(kstd_vector_vectorIntPtrs* vector);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_resize(kstd_vector_vectorIntPtrs* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_resizeFill(kstd_vector_vectorIntPtrs* vector, int64_t count,
                                                             const kstd_vectorIntPtrs* element);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_reserve(kstd_vector_vectorIntPtrs* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getBegin(kstd_vector_vectorIntPtrs* vector,
                                                           kstd_vectorIntPtrs** begin);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getBeginConst(const kstd_vector_vectorIntPtrs* vector,
                                                                const kstd_vectorIntPtrs** begin);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getSizeIntPtr(const kstd_vector_vectorIntPtrs* vector,
                                                                intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getBeginSizeIntPtr(kstd_vector_vectorIntPtrs* vector,
                                                                     kstd_vectorIntPtrs** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getBeginSizeIntPtrConst(const kstd_vector_vectorIntPtrs* vector,
                                                                          const kstd_vectorIntPtrs** begin,
                                                                          intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getElement(kstd_vector_vectorIntPtrs* vector, int64_t index,
                                                             kstd_vectorIntPtrs** element);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getElementConst(const kstd_vector_vectorIntPtrs* vector,
                                                                  int64_t index, const kstd_vectorIntPtrs** element);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_getNextElement(kstd_vector_vectorIntPtrs* vector,
                                                                 kstd_vectorIntPtrs** element);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_pushBack(kstd_vector_vectorIntPtrs* vector,
                                                           const kstd_vectorIntPtrs* element);
VEXPERS_API kstd_result kstd_vector_vectorIntPtrs_popBack(kstd_vector_vectorIntPtrs* vector);

/* ---- kstd_vector_kstd_unicodeString: kstd_unicodeString elements (kstd_unicodeString records) */
typedef struct kstd_vector_kstd_unicodeString {
    kstd_vector__ base;
} kstd_vector_kstd_unicodeString;

VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_construct(kstd_vector_kstd_unicodeString* vector);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_constructEmpty(kstd_vector_kstd_unicodeString* vector);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_constructCopy(kstd_vector_kstd_unicodeString* vector,
                                                                     const kstd_vector_kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_assign(kstd_vector_kstd_unicodeString* vector,
                                                              const kstd_vector_kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_assignElements(kstd_vector_kstd_unicodeString* vector,
                                                                      const kstd_unicodeString* first,
                                                                      const kstd_unicodeString* end);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_destruct(kstd_vector_kstd_unicodeString* vector);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_new(kstd_vector_kstd_unicodeString** out);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_newClone(kstd_vector_kstd_unicodeString** out,
                                                                const kstd_vector_kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_delete(kstd_vector_kstd_unicodeString** out);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_clear(kstd_vector_kstd_unicodeString* vector);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_resize(kstd_vector_kstd_unicodeString* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_resizeFill(kstd_vector_kstd_unicodeString* vector,
                                                                  int64_t count, const kstd_unicodeString* element);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_reserve(kstd_vector_kstd_unicodeString* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getBegin(kstd_vector_kstd_unicodeString* vector,
                                                                kstd_unicodeString** begin);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getBeginConst(const kstd_vector_kstd_unicodeString* vector,
                                                                     const kstd_unicodeString** begin);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getSizeIntPtr(const kstd_vector_kstd_unicodeString* vector,
                                                                     intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getBeginSizeIntPtr(kstd_vector_kstd_unicodeString* vector,
                                                                          kstd_unicodeString** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getBeginSizeIntPtrConst(
    const kstd_vector_kstd_unicodeString* vector, const kstd_unicodeString** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getElement(kstd_vector_kstd_unicodeString* vector,
                                                                  int64_t index, kstd_unicodeString** element);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getElementConst(const kstd_vector_kstd_unicodeString* vector,
                                                                       int64_t index,
                                                                       const kstd_unicodeString** element);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_getNextElement(kstd_vector_kstd_unicodeString* vector,
                                                                      kstd_unicodeString** element);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_pushBack(kstd_vector_kstd_unicodeString* vector,
                                                                const kstd_unicodeString* element);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_popBack(kstd_vector_kstd_unicodeString* vector);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_VECTOR_H */
