/*
 * vexpers/recordvectors.h - typed vectors of the library's own records.
 *
 * Each family (kstd_vector_<record>) is a typed face over the generic vector
 * (vexpers/vector.h): it supplies the element size and the record's life-cycle
 * operations as the element table, so elements are always whole records that
 * are built, copied, overwritten and destroyed through their own functions,
 * and otherwise passes its arguments through unchanged. Every family has the
 * same 47 operations:
 *
 *   constructors     _construct (count default records), _constructWithMtable,
 *                    _constructEmpty, _constructEmptyWithMtable,
 *                    _constructUninit (the caller constructs the elements),
 *                    _constructFill (count copies), _constructFromBlock (copies
 *                    of count records starting at block), _constructCopy
 *   contents         _assign, _assignElements ([first, end)), _destruct,
 *                    _resize, _resizeUninit, _resizeFill, _reserve
 *   sizes            _getSize and _getSize32 (32-bit), _getSizeIntPtr
 *                    (pointer-sized), _getCapacity, _getElementSize
 *   access           _getBeginEnd, _getBegin, _getBeginSize (32-bit size),
 *                    _getBeginSize32, _getBeginSizeIntPtr, their Const forms,
 *                    _getElement (by index), _getNextElement
 *   editing          _insert (before index), _insertElement (before a
 *                    position), _erase (index), _eraseElement (pointer),
 *                    _pushBack, _popBack, _clear (capacity kept),
 *                    _clearAndFreeMemory, _append, _swap
 *   heap forms       _new (empty), _newClone (null source: deletes), _delete
 *
 * Counts are signed 64-bit. The result of the generic operation, or of an
 * element operation it calls, is returned unchanged; a failed operation leaves
 * the vector as it was. Null vector or output pointers are precondition faults.
 * kstd_vector_kstd_persistentPropertyInfoSet also has _compareEqual.
 */
#ifndef VEXPERS_RECORDVECTORS_H
#define VEXPERS_RECORDVECTORS_H

#include "vexpers/base.h"
#include "vexpers/vector.h"

VEXPERS_EXTERN_C_BEGIN

/* Element records, defined in their own headers. */
typedef struct kstd_persistentProperty kstd_persistentProperty;
typedef struct kstd_persistentType kstd_persistentType;
typedef struct kstd_persistentPropertyInfo kstd_persistentPropertyInfo;
typedef struct kstd_persistentPropertyInfoSet kstd_persistentPropertyInfoSet;
typedef struct kstd_persistentTypeSchema kstd_persistentTypeSchema;
typedef struct kstd_persistentVariant kstd_persistentVariant;
typedef struct kstd_stringConst kstd_stringConst;

typedef struct kstd_vector_kstd_persistentProperty {
    kstd_vector__ base;
} kstd_vector_kstd_persistentProperty;

typedef struct kstd_vector_kstd_persistentType {
    kstd_vector__ base;
} kstd_vector_kstd_persistentType;

typedef struct kstd_vector_kstd_persistentPropertyInfo {
    kstd_vector__ base;
} kstd_vector_kstd_persistentPropertyInfo;

typedef struct kstd_vector_kstd_persistentPropertyInfoSet {
    kstd_vector__ base;
} kstd_vector_kstd_persistentPropertyInfoSet;

typedef struct kstd_vector_kstd_persistentTypeSchema {
    kstd_vector__ base;
} kstd_vector_kstd_persistentTypeSchema;

typedef struct kstd_vector_kstd_persistentVariant {
    kstd_vector__ base;
} kstd_vector_kstd_persistentVariant;

typedef struct kstd_vector_kstd_stringConst {
    kstd_vector__ base;
} kstd_vector_kstd_stringConst;

typedef struct kstd_vector_vector_kstd_stringConst {
    kstd_vector__ base;
} kstd_vector_vector_kstd_stringConst;

/* ---- kstd_vector_kstd_persistentProperty: elements kstd_persistentProperty ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_construct(kstd_vector_kstd_persistentProperty* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructWithMtable(kstd_vector_kstd_persistentProperty* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructEmpty(kstd_vector_kstd_persistentProperty* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructEmptyWithMtable(kstd_vector_kstd_persistentProperty* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructUninit(kstd_vector_kstd_persistentProperty* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructFill(kstd_vector_kstd_persistentProperty* vector, int64_t count, const kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructFromBlock(kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_constructCopy(kstd_vector_kstd_persistentProperty* vector, const kstd_vector_kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_assign(kstd_vector_kstd_persistentProperty* vector, const kstd_vector_kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_assignElements(kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty* first, const kstd_persistentProperty* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_destruct(kstd_vector_kstd_persistentProperty* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_resize(kstd_vector_kstd_persistentProperty* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_resizeUninit(kstd_vector_kstd_persistentProperty* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_resizeFill(kstd_vector_kstd_persistentProperty* vector, int64_t count, const kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_reserve(kstd_vector_kstd_persistentProperty* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getSize(const kstd_vector_kstd_persistentProperty* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getSize32(const kstd_vector_kstd_persistentProperty* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getSizeIntPtr(const kstd_vector_kstd_persistentProperty* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getCapacity(const kstd_vector_kstd_persistentProperty* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getElementSize(const kstd_vector_kstd_persistentProperty* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginEnd(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** begin, kstd_persistentProperty** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginEndConst(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** begin, const kstd_persistentProperty** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBegin(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginConst(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSize(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSize32(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSizeIntPtr(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSizeConst(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSize32Const(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getElement(kstd_vector_kstd_persistentProperty* vector, int64_t index, kstd_persistentProperty** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getElementConst(const kstd_vector_kstd_persistentProperty* vector, int64_t index, const kstd_persistentProperty** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getNextElement(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_getNextElementConst(const kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_insert(kstd_vector_kstd_persistentProperty* vector, int64_t index, const kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_insertElement(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty* position, const kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_erase(kstd_vector_kstd_persistentProperty* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_eraseElement(kstd_vector_kstd_persistentProperty* vector, kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_pushBack(kstd_vector_kstd_persistentProperty* vector, const kstd_persistentProperty* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_popBack(kstd_vector_kstd_persistentProperty* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_clear(kstd_vector_kstd_persistentProperty* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_clearAndFreeMemory(kstd_vector_kstd_persistentProperty* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_append(kstd_vector_kstd_persistentProperty* vector, const kstd_vector_kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_swap(kstd_vector_kstd_persistentProperty* vector, kstd_vector_kstd_persistentProperty* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_new(kstd_vector_kstd_persistentProperty** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_newClone(kstd_vector_kstd_persistentProperty** out, const kstd_vector_kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentProperty_delete(kstd_vector_kstd_persistentProperty** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentProperty(kstd_vector_kstd_persistentProperty* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentProperty(kstd_vector_kstd_persistentProperty** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentProperty(kstd_result (*function)(kstd_vector_kstd_persistentProperty*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentProperty(kstd_result (*function)(kstd_vector_kstd_persistentProperty**));

/* ---- kstd_vector_kstd_persistentType: elements kstd_persistentType ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentType_construct(kstd_vector_kstd_persistentType* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructWithMtable(kstd_vector_kstd_persistentType* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructEmpty(kstd_vector_kstd_persistentType* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructEmptyWithMtable(kstd_vector_kstd_persistentType* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructUninit(kstd_vector_kstd_persistentType* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructFill(kstd_vector_kstd_persistentType* vector, int64_t count, const kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructFromBlock(kstd_vector_kstd_persistentType* vector, const kstd_persistentType* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_constructCopy(kstd_vector_kstd_persistentType* vector, const kstd_vector_kstd_persistentType* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_assign(kstd_vector_kstd_persistentType* vector, const kstd_vector_kstd_persistentType* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_assignElements(kstd_vector_kstd_persistentType* vector, const kstd_persistentType* first, const kstd_persistentType* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_destruct(kstd_vector_kstd_persistentType* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_resize(kstd_vector_kstd_persistentType* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_resizeUninit(kstd_vector_kstd_persistentType* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_resizeFill(kstd_vector_kstd_persistentType* vector, int64_t count, const kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_reserve(kstd_vector_kstd_persistentType* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getSize(const kstd_vector_kstd_persistentType* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getSize32(const kstd_vector_kstd_persistentType* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getSizeIntPtr(const kstd_vector_kstd_persistentType* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getCapacity(const kstd_vector_kstd_persistentType* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getElementSize(const kstd_vector_kstd_persistentType* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginEnd(kstd_vector_kstd_persistentType* vector, kstd_persistentType** begin, kstd_persistentType** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginEndConst(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** begin, const kstd_persistentType** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBegin(kstd_vector_kstd_persistentType* vector, kstd_persistentType** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginConst(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSize(kstd_vector_kstd_persistentType* vector, kstd_persistentType** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSize32(kstd_vector_kstd_persistentType* vector, kstd_persistentType** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSizeIntPtr(kstd_vector_kstd_persistentType* vector, kstd_persistentType** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSizeConst(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSize32Const(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getElement(kstd_vector_kstd_persistentType* vector, int64_t index, kstd_persistentType** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getElementConst(const kstd_vector_kstd_persistentType* vector, int64_t index, const kstd_persistentType** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getNextElement(kstd_vector_kstd_persistentType* vector, kstd_persistentType** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_getNextElementConst(const kstd_vector_kstd_persistentType* vector, const kstd_persistentType** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_insert(kstd_vector_kstd_persistentType* vector, int64_t index, const kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_insertElement(kstd_vector_kstd_persistentType* vector, kstd_persistentType* position, const kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_erase(kstd_vector_kstd_persistentType* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_eraseElement(kstd_vector_kstd_persistentType* vector, kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_pushBack(kstd_vector_kstd_persistentType* vector, const kstd_persistentType* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_popBack(kstd_vector_kstd_persistentType* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_clear(kstd_vector_kstd_persistentType* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_clearAndFreeMemory(kstd_vector_kstd_persistentType* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_append(kstd_vector_kstd_persistentType* vector, const kstd_vector_kstd_persistentType* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_swap(kstd_vector_kstd_persistentType* vector, kstd_vector_kstd_persistentType* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_new(kstd_vector_kstd_persistentType** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_newClone(kstd_vector_kstd_persistentType** out, const kstd_vector_kstd_persistentType* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentType_delete(kstd_vector_kstd_persistentType** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentType(kstd_vector_kstd_persistentType* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentType(kstd_vector_kstd_persistentType** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentType(kstd_result (*function)(kstd_vector_kstd_persistentType*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentType(kstd_result (*function)(kstd_vector_kstd_persistentType**));

/* ---- kstd_vector_kstd_persistentPropertyInfo: elements kstd_persistentPropertyInfo ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_construct(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructWithMtable(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructEmpty(kstd_vector_kstd_persistentPropertyInfo* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructEmptyWithMtable(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructUninit(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructFill(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count, const kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructFromBlock(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_constructCopy(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_vector_kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_assign(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_vector_kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_assignElements(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo* first, const kstd_persistentPropertyInfo* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_destruct(kstd_vector_kstd_persistentPropertyInfo* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_resize(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_resizeUninit(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_resizeFill(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count, const kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_reserve(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getSize(const kstd_vector_kstd_persistentPropertyInfo* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getSize32(const kstd_vector_kstd_persistentPropertyInfo* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getSizeIntPtr(const kstd_vector_kstd_persistentPropertyInfo* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getCapacity(const kstd_vector_kstd_persistentPropertyInfo* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getElementSize(const kstd_vector_kstd_persistentPropertyInfo* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginEnd(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** begin, kstd_persistentPropertyInfo** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginEndConst(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** begin, const kstd_persistentPropertyInfo** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBegin(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginConst(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSize(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSize32(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSizeIntPtr(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSizeConst(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSize32Const(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getElement(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t index, kstd_persistentPropertyInfo** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getElementConst(const kstd_vector_kstd_persistentPropertyInfo* vector, int64_t index, const kstd_persistentPropertyInfo** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getNextElement(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_getNextElementConst(const kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_insert(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t index, const kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_insertElement(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo* position, const kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_erase(kstd_vector_kstd_persistentPropertyInfo* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_eraseElement(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_pushBack(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_persistentPropertyInfo* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_popBack(kstd_vector_kstd_persistentPropertyInfo* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_clear(kstd_vector_kstd_persistentPropertyInfo* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_clearAndFreeMemory(kstd_vector_kstd_persistentPropertyInfo* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_append(kstd_vector_kstd_persistentPropertyInfo* vector, const kstd_vector_kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_swap(kstd_vector_kstd_persistentPropertyInfo* vector, kstd_vector_kstd_persistentPropertyInfo* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_new(kstd_vector_kstd_persistentPropertyInfo** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_newClone(kstd_vector_kstd_persistentPropertyInfo** out, const kstd_vector_kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfo_delete(kstd_vector_kstd_persistentPropertyInfo** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentPropertyInfo(kstd_vector_kstd_persistentPropertyInfo* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentPropertyInfo(kstd_vector_kstd_persistentPropertyInfo** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentPropertyInfo(kstd_result (*function)(kstd_vector_kstd_persistentPropertyInfo*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentPropertyInfo(kstd_result (*function)(kstd_vector_kstd_persistentPropertyInfo**));

/* ---- kstd_vector_kstd_persistentPropertyInfoSet: elements kstd_persistentPropertyInfoSet ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_construct(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructWithMtable(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructEmpty(kstd_vector_kstd_persistentPropertyInfoSet* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructEmptyWithMtable(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructUninit(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructFill(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count, const kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructFromBlock(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_constructCopy(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_vector_kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_assign(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_vector_kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_assignElements(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet* first, const kstd_persistentPropertyInfoSet* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_destruct(kstd_vector_kstd_persistentPropertyInfoSet* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_resize(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_resizeUninit(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_resizeFill(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count, const kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_reserve(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getSize(const kstd_vector_kstd_persistentPropertyInfoSet* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getSize32(const kstd_vector_kstd_persistentPropertyInfoSet* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getSizeIntPtr(const kstd_vector_kstd_persistentPropertyInfoSet* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getCapacity(const kstd_vector_kstd_persistentPropertyInfoSet* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getElementSize(const kstd_vector_kstd_persistentPropertyInfoSet* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginEnd(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** begin, kstd_persistentPropertyInfoSet** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginEndConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** begin, const kstd_persistentPropertyInfoSet** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBegin(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSize(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSize32(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSizeIntPtr(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSizeConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSize32Const(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getElement(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t index, kstd_persistentPropertyInfoSet** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getElementConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t index, const kstd_persistentPropertyInfoSet** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getNextElement(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_getNextElementConst(const kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_insert(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t index, const kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_insertElement(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet* position, const kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_erase(kstd_vector_kstd_persistentPropertyInfoSet* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_eraseElement(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_pushBack(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_persistentPropertyInfoSet* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_popBack(kstd_vector_kstd_persistentPropertyInfoSet* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_clear(kstd_vector_kstd_persistentPropertyInfoSet* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_clearAndFreeMemory(kstd_vector_kstd_persistentPropertyInfoSet* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_append(kstd_vector_kstd_persistentPropertyInfoSet* vector, const kstd_vector_kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_swap(kstd_vector_kstd_persistentPropertyInfoSet* vector, kstd_vector_kstd_persistentPropertyInfoSet* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_new(kstd_vector_kstd_persistentPropertyInfoSet** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_newClone(kstd_vector_kstd_persistentPropertyInfoSet** out, const kstd_vector_kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_delete(kstd_vector_kstd_persistentPropertyInfoSet** out);
/** *equal 1 when both hold equal info sets in the same order. */
VEXPERS_API kstd_result kstd_vector_kstd_persistentPropertyInfoSet_compareEqual(const kstd_vector_kstd_persistentPropertyInfoSet* first, const kstd_vector_kstd_persistentPropertyInfoSet* second, uint32_t* equal);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentPropertyInfoSet(kstd_vector_kstd_persistentPropertyInfoSet* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentPropertyInfoSet(kstd_vector_kstd_persistentPropertyInfoSet** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentPropertyInfoSet(kstd_result (*function)(kstd_vector_kstd_persistentPropertyInfoSet*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentPropertyInfoSet(kstd_result (*function)(kstd_vector_kstd_persistentPropertyInfoSet**));

/* ---- kstd_vector_kstd_persistentTypeSchema: elements kstd_persistentTypeSchema ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_construct(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructWithMtable(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructEmpty(kstd_vector_kstd_persistentTypeSchema* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructEmptyWithMtable(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructUninit(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructFill(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count, const kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructFromBlock(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_constructCopy(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_vector_kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_assign(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_vector_kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_assignElements(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema* first, const kstd_persistentTypeSchema* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_destruct(kstd_vector_kstd_persistentTypeSchema* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_resize(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_resizeUninit(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_resizeFill(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count, const kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_reserve(kstd_vector_kstd_persistentTypeSchema* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getSize(const kstd_vector_kstd_persistentTypeSchema* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getSize32(const kstd_vector_kstd_persistentTypeSchema* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getSizeIntPtr(const kstd_vector_kstd_persistentTypeSchema* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getCapacity(const kstd_vector_kstd_persistentTypeSchema* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getElementSize(const kstd_vector_kstd_persistentTypeSchema* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginEnd(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** begin, kstd_persistentTypeSchema** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginEndConst(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** begin, const kstd_persistentTypeSchema** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBegin(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginConst(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSize(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSize32(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSizeIntPtr(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSizeConst(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSize32Const(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getElement(kstd_vector_kstd_persistentTypeSchema* vector, int64_t index, kstd_persistentTypeSchema** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getElementConst(const kstd_vector_kstd_persistentTypeSchema* vector, int64_t index, const kstd_persistentTypeSchema** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getNextElement(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_getNextElementConst(const kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_insert(kstd_vector_kstd_persistentTypeSchema* vector, int64_t index, const kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_insertElement(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema* position, const kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_erase(kstd_vector_kstd_persistentTypeSchema* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_eraseElement(kstd_vector_kstd_persistentTypeSchema* vector, kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_pushBack(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_persistentTypeSchema* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_popBack(kstd_vector_kstd_persistentTypeSchema* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_clear(kstd_vector_kstd_persistentTypeSchema* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_clearAndFreeMemory(kstd_vector_kstd_persistentTypeSchema* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_append(kstd_vector_kstd_persistentTypeSchema* vector, const kstd_vector_kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_swap(kstd_vector_kstd_persistentTypeSchema* vector, kstd_vector_kstd_persistentTypeSchema* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_new(kstd_vector_kstd_persistentTypeSchema** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_newClone(kstd_vector_kstd_persistentTypeSchema** out, const kstd_vector_kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentTypeSchema_delete(kstd_vector_kstd_persistentTypeSchema** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentTypeSchema(kstd_vector_kstd_persistentTypeSchema* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentTypeSchema(kstd_vector_kstd_persistentTypeSchema** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentTypeSchema(kstd_result (*function)(kstd_vector_kstd_persistentTypeSchema*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentTypeSchema(kstd_result (*function)(kstd_vector_kstd_persistentTypeSchema**));

/* ---- kstd_vector_kstd_persistentVariant: elements kstd_persistentVariant ---- */

VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_construct(kstd_vector_kstd_persistentVariant* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructWithMtable(kstd_vector_kstd_persistentVariant* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructEmpty(kstd_vector_kstd_persistentVariant* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructEmptyWithMtable(kstd_vector_kstd_persistentVariant* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructUninit(kstd_vector_kstd_persistentVariant* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructFill(kstd_vector_kstd_persistentVariant* vector, int64_t count, const kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructFromBlock(kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_constructCopy(kstd_vector_kstd_persistentVariant* vector, const kstd_vector_kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_assign(kstd_vector_kstd_persistentVariant* vector, const kstd_vector_kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_assignElements(kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant* first, const kstd_persistentVariant* end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_destruct(kstd_vector_kstd_persistentVariant* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_resize(kstd_vector_kstd_persistentVariant* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_resizeUninit(kstd_vector_kstd_persistentVariant* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_resizeFill(kstd_vector_kstd_persistentVariant* vector, int64_t count, const kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_reserve(kstd_vector_kstd_persistentVariant* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getSize(const kstd_vector_kstd_persistentVariant* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getSize32(const kstd_vector_kstd_persistentVariant* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getSizeIntPtr(const kstd_vector_kstd_persistentVariant* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getCapacity(const kstd_vector_kstd_persistentVariant* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getElementSize(const kstd_vector_kstd_persistentVariant* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginEnd(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** begin, kstd_persistentVariant** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginEndConst(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** begin, const kstd_persistentVariant** end);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBegin(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginConst(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** begin);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSize(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSize32(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSizeIntPtr(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSizeConst(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSize32Const(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getBeginSizeIntPtrConst(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getElement(kstd_vector_kstd_persistentVariant* vector, int64_t index, kstd_persistentVariant** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getElementConst(const kstd_vector_kstd_persistentVariant* vector, int64_t index, const kstd_persistentVariant** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getNextElement(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_getNextElementConst(const kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant** element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_insert(kstd_vector_kstd_persistentVariant* vector, int64_t index, const kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_insertElement(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant* position, const kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_erase(kstd_vector_kstd_persistentVariant* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_eraseElement(kstd_vector_kstd_persistentVariant* vector, kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_pushBack(kstd_vector_kstd_persistentVariant* vector, const kstd_persistentVariant* element);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_popBack(kstd_vector_kstd_persistentVariant* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_clear(kstd_vector_kstd_persistentVariant* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_clearAndFreeMemory(kstd_vector_kstd_persistentVariant* vector);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_append(kstd_vector_kstd_persistentVariant* vector, const kstd_vector_kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_swap(kstd_vector_kstd_persistentVariant* vector, kstd_vector_kstd_persistentVariant* other);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_new(kstd_vector_kstd_persistentVariant** out);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_newClone(kstd_vector_kstd_persistentVariant** out, const kstd_vector_kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_vector_kstd_persistentVariant_delete(kstd_vector_kstd_persistentVariant** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_persistentVariant(kstd_vector_kstd_persistentVariant* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_persistentVariant(kstd_vector_kstd_persistentVariant** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_persistentVariant(kstd_result (*function)(kstd_vector_kstd_persistentVariant*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_persistentVariant(kstd_result (*function)(kstd_vector_kstd_persistentVariant**));

/* ---- kstd_vector_kstd_stringConst: elements kstd_stringConst ---- */

VEXPERS_API kstd_result kstd_vector_kstd_stringConst_construct(kstd_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructWithMtable(kstd_vector_kstd_stringConst* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructEmpty(kstd_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructEmptyWithMtable(kstd_vector_kstd_stringConst* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructUninit(kstd_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructFill(kstd_vector_kstd_stringConst* vector, int64_t count, const kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructFromBlock(kstd_vector_kstd_stringConst* vector, const kstd_stringConst* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_constructCopy(kstd_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_assign(kstd_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_assignElements(kstd_vector_kstd_stringConst* vector, const kstd_stringConst* first, const kstd_stringConst* end);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_destruct(kstd_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_resize(kstd_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_resizeUninit(kstd_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_resizeFill(kstd_vector_kstd_stringConst* vector, int64_t count, const kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_reserve(kstd_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getSize(const kstd_vector_kstd_stringConst* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getSize32(const kstd_vector_kstd_stringConst* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getSizeIntPtr(const kstd_vector_kstd_stringConst* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getCapacity(const kstd_vector_kstd_stringConst* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getElementSize(const kstd_vector_kstd_stringConst* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginEnd(kstd_vector_kstd_stringConst* vector, kstd_stringConst** begin, kstd_stringConst** end);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginEndConst(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** begin, const kstd_stringConst** end);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBegin(kstd_vector_kstd_stringConst* vector, kstd_stringConst** begin);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginConst(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** begin);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSize(kstd_vector_kstd_stringConst* vector, kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSize32(kstd_vector_kstd_stringConst* vector, kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSizeIntPtr(kstd_vector_kstd_stringConst* vector, kstd_stringConst** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSizeConst(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSize32Const(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getBeginSizeIntPtrConst(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getElement(kstd_vector_kstd_stringConst* vector, int64_t index, kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getElementConst(const kstd_vector_kstd_stringConst* vector, int64_t index, const kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getNextElement(kstd_vector_kstd_stringConst* vector, kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_getNextElementConst(const kstd_vector_kstd_stringConst* vector, const kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_insert(kstd_vector_kstd_stringConst* vector, int64_t index, const kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_insertElement(kstd_vector_kstd_stringConst* vector, kstd_stringConst* position, const kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_erase(kstd_vector_kstd_stringConst* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_eraseElement(kstd_vector_kstd_stringConst* vector, kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_pushBack(kstd_vector_kstd_stringConst* vector, const kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_popBack(kstd_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_clear(kstd_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_clearAndFreeMemory(kstd_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_append(kstd_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_swap(kstd_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst* other);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_new(kstd_vector_kstd_stringConst** out);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_newClone(kstd_vector_kstd_stringConst** out, const kstd_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_kstd_stringConst_delete(kstd_vector_kstd_stringConst** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_kstd_stringConst(kstd_vector_kstd_stringConst* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_kstd_stringConst(kstd_vector_kstd_stringConst** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_kstd_stringConst(kstd_result (*function)(kstd_vector_kstd_stringConst*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_kstd_stringConst(kstd_result (*function)(kstd_vector_kstd_stringConst**));

/* ---- kstd_vector_vector_kstd_stringConst: elements kstd_vector_kstd_stringConst ---- */

VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_construct(kstd_vector_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructWithMtable(kstd_vector_vector_kstd_stringConst* vector, int64_t count, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructEmpty(kstd_vector_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructEmptyWithMtable(kstd_vector_vector_kstd_stringConst* vector, const kstd_memoryTable* mtable);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructUninit(kstd_vector_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructFill(kstd_vector_vector_kstd_stringConst* vector, int64_t count, const kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructFromBlock(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* block, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_constructCopy(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_assign(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_assignElements(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* first, const kstd_vector_kstd_stringConst* end);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_destruct(kstd_vector_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_resize(kstd_vector_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_resizeUninit(kstd_vector_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_resizeFill(kstd_vector_vector_kstd_stringConst* vector, int64_t count, const kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_reserve(kstd_vector_vector_kstd_stringConst* vector, int64_t count);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getSize(const kstd_vector_vector_kstd_stringConst* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getSize32(const kstd_vector_vector_kstd_stringConst* vector, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getSizeIntPtr(const kstd_vector_vector_kstd_stringConst* vector, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getCapacity(const kstd_vector_vector_kstd_stringConst* vector, intptr_t* capacity);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getElementSize(const kstd_vector_vector_kstd_stringConst* vector, int32_t* elementSize);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginEnd(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** begin, kstd_vector_kstd_stringConst** end);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginEndConst(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** begin, const kstd_vector_kstd_stringConst** end);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBegin(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** begin);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginConst(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** begin);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSize(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSize32(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSizeIntPtr(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSizeConst(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSize32Const(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** begin, int32_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getBeginSizeIntPtrConst(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** begin, intptr_t* size);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getElement(kstd_vector_vector_kstd_stringConst* vector, int64_t index, kstd_vector_kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getElementConst(const kstd_vector_vector_kstd_stringConst* vector, int64_t index, const kstd_vector_kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getNextElement(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_getNextElementConst(const kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst** element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_insert(kstd_vector_vector_kstd_stringConst* vector, int64_t index, const kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_insertElement(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst* position, const kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_erase(kstd_vector_vector_kstd_stringConst* vector, int64_t index);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_eraseElement(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_pushBack(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_kstd_stringConst* element);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_popBack(kstd_vector_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_clear(kstd_vector_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_clearAndFreeMemory(kstd_vector_vector_kstd_stringConst* vector);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_append(kstd_vector_vector_kstd_stringConst* vector, const kstd_vector_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_swap(kstd_vector_vector_kstd_stringConst* vector, kstd_vector_vector_kstd_stringConst* other);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_new(kstd_vector_vector_kstd_stringConst** out);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_newClone(kstd_vector_vector_kstd_stringConst** out, const kstd_vector_vector_kstd_stringConst* source);
VEXPERS_API kstd_result kstd_vector_vector_kstd_stringConst_delete(kstd_vector_vector_kstd_stringConst** out);
VEXPERS_API void ksys_typeCheck_kstd_vector_vector_kstd_stringConst(kstd_vector_vector_kstd_stringConst* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_vector_vector_kstd_stringConst(kstd_vector_vector_kstd_stringConst** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_vector_vector_kstd_stringConst(kstd_result (*function)(kstd_vector_vector_kstd_stringConst*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_vector_vector_kstd_stringConst(kstd_result (*function)(kstd_vector_vector_kstd_stringConst**));

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_RECORDVECTORS_H */
