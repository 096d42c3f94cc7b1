// The record life-cycle family, written once. A record R supplies
// R_construct, R_assign and R_destruct; the copy constructor and the heap
// forms (_new, _newClone, _delete) follow from them with one behaviour for
// every record, and the four no-op type-check hooks are generated the same way.
#pragma once

#include "frame/frame.hpp"

namespace vexpers::lifecycle {

template <class R>
using ConstructFn = kstd_result (*)(R*);
template <class R>
using AssignFn = kstd_result (*)(R*, const R*);
template <class R>
using DestructFn = kstd_result (*)(R*);

// Construct, then assign; a failed assignment destroys the record again.
template <class R>
kstd_result constructCopy(R* self, const R* source, ConstructFn<R> construct, AssignFn<R> assign,
                          DestructFn<R> destruct) {
    VEXPERS_TRY(construct(self));
    const kstd_result result = assign(self, source);
    if (failed(result)) destruct(self);
    return result;
}

// Null: nothing to do. Otherwise destruct; a failing destruct keeps the
// memory and the caller's pointer.
template <class R>
kstd_result deleteRecord(R** out, DestructFn<R> destruct) {
    if (*out == nullptr) return 0;
    VEXPERS_TRY(destruct(*out));
    void* memory = *out;
    const kstd_result result = ksys_memory_free_internal(&memory);
    *out = nullptr;
    return result;
}

// Deletes what *out holds, then allocates and constructs a new record.
template <class R>
kstd_result newRecord(R** out, ConstructFn<R> construct, DestructFn<R> destruct) {
    VEXPERS_TRY(deleteRecord(out, destruct));
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(R), &memory));
    const kstd_result result = construct(static_cast<R*>(memory));
    if (failed(result)) {
        ksys_memory_free_internal(&memory);
        return result;
    }
    *out = static_cast<R*>(memory);
    return result;
}

// A null source deletes; otherwise new, then assign (deleted again on failure).
template <class R>
kstd_result newClone(R** out, const R* source, ConstructFn<R> construct, AssignFn<R> assign,
                     DestructFn<R> destruct) {
    if (source == nullptr) return deleteRecord(out, destruct);
    VEXPERS_TRY(newRecord(out, construct, destruct));
    const kstd_result result = assign(*out, source);
    if (failed(result)) deleteRecord(out, destruct);
    return result;
}

}  // namespace vexpers::lifecycle

// R_constructCopy from R_construct, R_assign and R_destruct.
#define VEXPERS_DEFINE_CONSTRUCT_COPY(R)                                               \
    VEXPERS_EXPORT kstd_result R##_constructCopy(R* self, const R* source) {           \
        VEXPERS_REQUIRE(self != nullptr);                                              \
        VEXPERS_REQUIRE(source != nullptr);                                            \
        return ::vexpers::lifecycle::constructCopy<R>(self, source, R##_construct,     \
                                                      R##_assign, R##_destruct);       \
    }

// R_new, R_newClone and R_delete.
#define VEXPERS_DEFINE_HEAP_FORMS(R)                                                   \
    VEXPERS_EXPORT kstd_result R##_new(R** out) {                                      \
        VEXPERS_REQUIRE(out != nullptr);                                               \
        return ::vexpers::lifecycle::newRecord<R>(out, R##_construct, R##_destruct);   \
    }                                                                                  \
    VEXPERS_EXPORT kstd_result R##_newClone(R** out, const R* source) {                \
        VEXPERS_REQUIRE(out != nullptr);                                               \
        return ::vexpers::lifecycle::newClone<R>(out, source, R##_construct,           \
                                                 R##_assign, R##_destruct);            \
    }                                                                                  \
    VEXPERS_EXPORT kstd_result R##_delete(R** out) {                                   \
        VEXPERS_REQUIRE(out != nullptr);                                               \
        return ::vexpers::lifecycle::deleteRecord<R>(out, R##_destruct);               \
    }

// The copy constructor and the heap forms together.
#define VEXPERS_DEFINE_DERIVED_LIFECYCLE(R) \
    VEXPERS_DEFINE_CONSTRUCT_COPY(R)        \
    VEXPERS_DEFINE_HEAP_FORMS(R)

// The four type-check hooks of a record: compile-time checks only, no effect.
#define VEXPERS_DEFINE_TYPECHECK_HOOKS(R)                                              \
    VEXPERS_EXPORT void ksys_typeCheck_##R(R*) {}                                      \
    VEXPERS_EXPORT void ksys_typeCheckPtr_##R(R**) {}                                  \
    VEXPERS_EXPORT void ksys_typeCheckFunc_##R(kstd_result (*)(R*)) {}                 \
    VEXPERS_EXPORT void ksys_typeCheckFuncPtr_##R(kstd_result (*)(R**)) {}
