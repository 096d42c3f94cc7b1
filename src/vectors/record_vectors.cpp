// The record vector families, written once and expanded for every element
// record in generated/record_vectors.def. Each operation passes its arguments
// to the generic vector with the element size and the element table.
#include <utility>

#include "vexpers/property.h"
#include "vexpers/propertyinfo.h"
#include "vexpers/recordvectors.h"
#include "vexpers/stringconst.h"
#include "vexpers/type.h"
#include "vexpers/variant.h"

#include "frame/lifecycle.hpp"
#include "vectors/element_table.hpp"

using vexpers::baseOf;
using vexpers::untyped;

// Sizes that the generic vector reports in 32 bits.
#define VEXPERS_RV_SIZE32(V, name, generic)                              \
    VEXPERS_EXPORT kstd_result V##_##name(const V* vector, int32_t* size) { \
        return generic(baseOf(vector), size);                            \
    }

#define VEXPERS_RECORD_VECTOR(V, E, CONSTRUCT)                                                                   \
    namespace {                                                                                                  \
    using V##_elements = vexpers::ElementTable<E, CONSTRUCT, E##_constructCopy, E##_assign, E##_destruct>;       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_construct(V* vector, int64_t count) {                                         \
        return kstd_vector__constructWithVtable(baseOf(vector), count, sizeof(E), &V##_elements::table);         \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructWithMtable(V* vector, int64_t count, const kstd_memoryTable* mtable) { \
        return kstd_vector__constructWithVtableWithMtable(baseOf(vector), count, sizeof(E), &V##_elements::table, \
                                                          mtable);                                               \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructEmpty(V* vector) {                                                   \
        return kstd_vector__constructWithVtable(baseOf(vector), 0, sizeof(E), &V##_elements::table);             \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructEmptyWithMtable(V* vector, const kstd_memoryTable* mtable) {          \
        return kstd_vector__constructWithVtableWithMtable(baseOf(vector), 0, sizeof(E), &V##_elements::table,     \
                                                          mtable);                                               \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructUninit(V* vector, int64_t count) {                                   \
        return kstd_vector__constructWithVtableUninit(baseOf(vector), count, sizeof(E), &V##_elements::table);   \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructFill(V* vector, int64_t count, const E* element) {                   \
        return kstd_vector__constructFillWithVtable(baseOf(vector), count, element, sizeof(E),                   \
                                                    &V##_elements::table);                                       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructFromBlock(V* vector, const E* block, int64_t count) {                \
        return kstd_vector__constructFromBlockWithVtable(baseOf(vector), block, count, sizeof(E),                \
                                                         &V##_elements::table);                                  \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_constructCopy(V* vector, const V* source) {                                   \
        return kstd_vector__constructCopy(baseOf(vector), baseOf(source));                                       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_assign(V* vector, const V* source) {                                          \
        return kstd_vector__assign(baseOf(vector), baseOf(source));                                              \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_assignElements(V* vector, const E* first, const E* end) {                     \
        return kstd_vector__assignElements(baseOf(vector), first, end);                                          \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_destruct(V* vector) { return kstd_vector__destruct(baseOf(vector)); }          \
    VEXPERS_EXPORT kstd_result V##_resize(V* vector, int64_t count) {                                            \
        return kstd_vector__resize(baseOf(vector), count);                                                       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_resizeUninit(V* vector, int64_t count) {                                      \
        return kstd_vector__resizeUninit(baseOf(vector), count);                                                 \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_resizeFill(V* vector, int64_t count, const E* element) {                      \
        return kstd_vector__resizeFill(baseOf(vector), count, element);                                          \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_reserve(V* vector, int64_t count) {                                           \
        return kstd_vector__reserve(baseOf(vector), count);                                                      \
    }                                                                                                            \
    VEXPERS_RV_SIZE32(V, getSize, kstd_vector__getSize32)                                                        \
    VEXPERS_RV_SIZE32(V, getSize32, kstd_vector__getSize32)                                                      \
    VEXPERS_EXPORT kstd_result V##_getSizeIntPtr(const V* vector, intptr_t* size) {                              \
        return kstd_vector__getSize(baseOf(vector), size);                                                       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getCapacity(const V* vector, intptr_t* capacity) {                            \
        return kstd_vector__getCapacity(baseOf(vector), capacity);                                               \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getElementSize(const V* vector, int32_t* elementSize) {                       \
        return kstd_vector__getElementSize(baseOf(vector), elementSize);                                         \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginEnd(V* vector, E** begin, E** end) {                                  \
        return kstd_vector__getBeginEnd(baseOf(vector), untyped(begin), untyped(end));                           \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginEndConst(const V* vector, const E** begin, const E** end) {           \
        return kstd_vector__getBeginEndConst(baseOf(vector), untyped(begin), untyped(end));                      \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBegin(V* vector, E** begin) {                                              \
        return kstd_vector__getBegin(baseOf(vector), untyped(begin));                                            \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginConst(const V* vector, const E** begin) {                             \
        return kstd_vector__getBeginConst(baseOf(vector), untyped(begin));                                       \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSize(V* vector, E** begin, int32_t* size) {                           \
        return kstd_vector__getBeginSize32(baseOf(vector), untyped(begin), size);                                \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSize32(V* vector, E** begin, int32_t* size) {                         \
        return kstd_vector__getBeginSize32(baseOf(vector), untyped(begin), size);                                \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSizeIntPtr(V* vector, E** begin, intptr_t* size) {                    \
        return kstd_vector__getBeginSize(baseOf(vector), untyped(begin), size);                                  \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSizeConst(const V* vector, const E** begin, int32_t* size) {          \
        return kstd_vector__getBeginSize32Const(baseOf(vector), untyped(begin), size);                           \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSize32Const(const V* vector, const E** begin, int32_t* size) {        \
        return kstd_vector__getBeginSize32Const(baseOf(vector), untyped(begin), size);                           \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getBeginSizeIntPtrConst(const V* vector, const E** begin, intptr_t* size) {   \
        return kstd_vector__getBeginSizeConst(baseOf(vector), untyped(begin), size);                             \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getElement(V* vector, int64_t index, E** element) {                           \
        return kstd_vector__getElement(baseOf(vector), index, untyped(element));                                 \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getElementConst(const V* vector, int64_t index, const E** element) {          \
        return kstd_vector__getElementConst(baseOf(vector), index, untyped(element));                            \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getNextElement(V* vector, E** element) {                                      \
        return kstd_vector__getNextElement(baseOf(vector), untyped(element));                                    \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_getNextElementConst(const V* vector, const E** element) {                     \
        return kstd_vector__getNextElementConst(baseOf(vector), untyped(element));                               \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_insert(V* vector, int64_t index, const E* element) {                          \
        return kstd_vector__insert(baseOf(vector), index, element);                                              \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_insertElement(V* vector, E* position, const E* element) {                     \
        return kstd_vector__insertElement(baseOf(vector), position, element);                                    \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_erase(V* vector, int64_t index) {                                             \
        return kstd_vector__erase(baseOf(vector), index);                                                        \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_eraseElement(V* vector, E* element) {                                         \
        return kstd_vector__eraseElement(baseOf(vector), element);                                               \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_pushBack(V* vector, const E* element) {                                       \
        return kstd_vector__pushBack(baseOf(vector), element);                                                   \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_popBack(V* vector) { return kstd_vector__popBack(baseOf(vector)); }            \
    VEXPERS_EXPORT kstd_result V##_clear(V* vector) { return kstd_vector__clear(baseOf(vector)); }                \
    VEXPERS_EXPORT kstd_result V##_clearAndFreeMemory(V* vector) {                                               \
        return kstd_vector__clearAndFreeMemory(baseOf(vector));                                                  \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_append(V* vector, const V* source) {                                          \
        return kstd_vector__append(baseOf(vector), baseOf(source));                                              \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_swap(V* vector, V* other) {                                                   \
        return kstd_vector__swap(baseOf(vector), baseOf(other));                                                 \
    }                                                                                                            \
    namespace {                                                                                                  \
    kstd_result V##_constructForHeap(V* vector) { return V##_constructEmpty(vector); }                           \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_new(V** out) {                                                                \
        VEXPERS_REQUIRE(out != nullptr);                                                                         \
        return vexpers::lifecycle::newRecord<V>(out, V##_constructForHeap, V##_destruct);                        \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_newClone(V** out, const V* source) {                                          \
        VEXPERS_REQUIRE(out != nullptr);                                                                         \
        return vexpers::lifecycle::newClone<V>(out, source, V##_constructForHeap, V##_assign, V##_destruct);     \
    }                                                                                                            \
    VEXPERS_EXPORT kstd_result V##_delete(V** out) {                                                             \
        VEXPERS_REQUIRE(out != nullptr);                                                                         \
        return vexpers::lifecycle::deleteRecord<V>(out, V##_destruct);                                           \
    }                                                                                                            \
    VEXPERS_DEFINE_TYPECHECK_HOOKS(V)

#include "generated/record_vectors.def"

// The one family with a comparison: info sets compared pairwise in order.
namespace {
kstd_result compareInfoSets(const void* first, const void* second, uint32_t* equal) {
    return kstd_persistentPropertyInfoSet_compareEqual(static_cast<const kstd_persistentPropertyInfoSet*>(first),
                                                       static_cast<const kstd_persistentPropertyInfoSet*>(second),
                                                       equal);
}
}  // namespace

VEXPERS_EXPORT kstd_result kstd_vector_kstd_persistentPropertyInfoSet_compareEqual(
    const kstd_vector_kstd_persistentPropertyInfoSet* first, const kstd_vector_kstd_persistentPropertyInfoSet* second,
    uint32_t* equal) {
    return kstd_vector__compareEqual(baseOf(first), baseOf(second), equal, compareInfoSets);
}
