// The typed vectors: thin typed faces over the generic vector, expanded from
// the list in generated/typed_vectors.def. Each one supplies its element size
// and (for records) its element table, and forwards everything else.
#include <type_traits>

#include "frame/frame.hpp"
#include "frame/lifecycle.hpp"
#include "vectors/element_table.hpp"
#include "vexpers/vector.h"

using vexpers::baseOf;

namespace {

template <class E>
using ConstPtr = const E*;

// The operations of a typed vector T of elements E; `table` is null for
// plain-byte elements.
template <class T, class E>
struct Typed {
    static kstd_result construct(T* v, const kstd_vectorElementVtable* table) {
        VEXPERS_REQUIRE(v != nullptr);
        return kstd_vector__constructWithVtable(&v->base, 0, static_cast<int32_t>(sizeof(E)), table);
    }
    static kstd_result assignElements(T* v, const E* first, const E* end) {
        return kstd_vector__assignElements(baseOf(v), first, end);
    }
    // Typed outputs: cleared first, then taken from the generic operation.
    template <class Out, class Call>
    static kstd_result out(Out** element, Call call) {
        VEXPERS_REQUIRE(element != nullptr);
        using Generic = std::conditional_t<std::is_const_v<Out>, const void*, void*>;
        Generic generic = nullptr;
        const kstd_result result = call(&generic);
        *element = static_cast<Out*>(generic);
        return result;
    }
    static kstd_result getBegin(T* v, E** begin) {
        return out(begin, [&](void** b) { return kstd_vector__getBegin(baseOf(v), b); });
    }
    static kstd_result getBeginConst(const T* v, const E** begin) {
        return out(begin, [&](const void** b) { return kstd_vector__getBeginConst(baseOf(v), b); });
    }
    static kstd_result getBeginSize(T* v, E** begin, intptr_t* size) {
        return out(begin, [&](void** b) { return kstd_vector__getBeginSize(baseOf(v), b, size); });
    }
    static kstd_result getBeginSizeConst(const T* v, const E** begin, intptr_t* size) {
        return out(begin, [&](const void** b) { return kstd_vector__getBeginSizeConst(baseOf(v), b, size); });
    }
    static kstd_result getElement(T* v, int64_t index, E** element) {
        return out(element, [&](void** e) { return kstd_vector__getElement(baseOf(v), index, e); });
    }
    static kstd_result getElementConst(const T* v, int64_t index, const E** element) {
        return out(element, [&](const void** e) { return kstd_vector__getElementConst(baseOf(v), index, e); });
    }
    static kstd_result getNextElement(T* v, E** element) {
        VEXPERS_REQUIRE(element != nullptr);
        void* generic = *element;
        const kstd_result result = kstd_vector__getNextElement(baseOf(v), &generic);
        *element = static_cast<E*>(generic);
        return result;
    }
};

}  // namespace

// The operations every typed vector has; the element passing differs below.
#define VEXPERS_TYPED_VECTOR_COMMON(T, E, TABLE)                                                              \
    VEXPERS_EXPORT kstd_result T##_construct(T* v) { return Typed<T, E>::construct(v, TABLE); }              \
    VEXPERS_EXPORT kstd_result T##_constructEmpty(T* v) { return Typed<T, E>::construct(v, TABLE); }         \
    VEXPERS_EXPORT kstd_result T##_assign(T* v, const T* source) {                                          \
        return kstd_vector__assign(baseOf(v), baseOf(source));                                                \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_assignElements(T* v, ConstPtr<E> first, ConstPtr<E> end) {               \
        return Typed<T, E>::assignElements(v, first, end);                                                    \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_destruct(T* v) { return kstd_vector__destruct(baseOf(v)); }              \
    VEXPERS_DEFINE_DERIVED_LIFECYCLE(T)                                                                       \
    VEXPERS_EXPORT kstd_result T##_clear(T* v) { return kstd_vector__clear(baseOf(v)); }                    \
    VEXPERS_EXPORT kstd_result T##_resize(T* v, int64_t count) { return kstd_vector__resize(baseOf(v), count); } \
    VEXPERS_EXPORT kstd_result T##_reserve(T* v, int64_t count) {                                          \
        return kstd_vector__reserve(baseOf(v), count);                                                        \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getBegin(T* v, E** begin) { return Typed<T, E>::getBegin(v, begin); }    \
    VEXPERS_EXPORT kstd_result T##_getBeginConst(const T* v, ConstPtr<E>* begin) {                          \
        return Typed<T, E>::getBeginConst(v, begin);                                                          \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getSizeIntPtr(const T* v, intptr_t* size) {                              \
        return kstd_vector__getSize(baseOf(v), size);                                                         \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getBeginSizeIntPtr(T* v, E** begin, intptr_t* size) {                    \
        return Typed<T, E>::getBeginSize(v, begin, size);                                                     \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getBeginSizeIntPtrConst(const T* v, ConstPtr<E>* begin, intptr_t* size) { \
        return Typed<T, E>::getBeginSizeConst(v, begin, size);                                                \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getElement(T* v, int64_t index, E** element) {                           \
        return Typed<T, E>::getElement(v, index, element);                                                    \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getElementConst(const T* v, int64_t index, ConstPtr<E>* element) {       \
        return Typed<T, E>::getElementConst(v, index, element);                                               \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_getNextElement(T* v, E** element) {                                      \
        return Typed<T, E>::getNextElement(v, element);                                                       \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_popBack(T* v) { return kstd_vector__popBack(baseOf(v)); }

#define VEXPERS_TYPED_SCALAR_VECTOR(T, E)                                                                           \
    VEXPERS_TYPED_VECTOR_COMMON(T, E, nullptr)                                                                \
    VEXPERS_EXPORT kstd_result T##_resizeFill(T* v, int64_t count, E element) {                             \
        return kstd_vector__resizeFill(baseOf(v), count, &element);                                           \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_pushBack(T* v, E element) {                                              \
        return kstd_vector__pushBack(baseOf(v), &element);                                                    \
    }

#define VEXPERS_RECORD_ELEMENTS(E) \
    (&vexpers::ElementTable<E, E##_construct, E##_constructCopy, E##_assign, E##_destruct>::table)

#define VEXPERS_TYPED_RECORD_VECTOR(T, E)                                                                           \
    VEXPERS_TYPED_VECTOR_COMMON(T, E, VEXPERS_RECORD_ELEMENTS(E))                                             \
    VEXPERS_EXPORT kstd_result T##_resizeFill(T* v, int64_t count, const E* element) {                       \
        return kstd_vector__resizeFill(baseOf(v), count, element);                                            \
    }                                                                                                         \
    VEXPERS_EXPORT kstd_result T##_pushBack(T* v, const E* element) {                                       \
        return kstd_vector__pushBack(baseOf(v), element);                                                     \
    }

#include "generated/typed_vectors.def"
