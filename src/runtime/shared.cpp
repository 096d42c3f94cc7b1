// Shared objects with atomic reference counts, interface queries, and the two
// shared pointers kstd_ptrh / kstd_ptrhConst, which share one implementation.
#include "frame/lifecycle.hpp"
#include "vexpers/shared.h"
#include "vexpers/text.h"

namespace {

int32_t* countOf(const kstd_shared* shared) { return const_cast<int32_t*>(&shared->referenceCount); }

kstd_shared* mutableShared(const kstd_shared* shared) { return const_cast<kstd_shared*>(shared); }

// The default reference operations, here in full so that the shared
// pointers' own changes need no call for them.
[[gnu::always_inline]] inline kstd_result incrementDefault(kstd_shared* shared) {
    __atomic_fetch_add(countOf(shared), 1, __ATOMIC_RELAXED);
    return 0;
}

// More releases than references: undo the last and report the misuse.
[[gnu::cold, gnu::noinline]] kstd_result overReleased(kstd_shared* shared) {
    __atomic_fetch_add(countOf(shared), 1, __ATOMIC_RELAXED);
    ksys_assert_at(__FILE__, __LINE__);
    return ksys_result_preconditionFailed;
}

[[gnu::always_inline]] inline kstd_result decrementDefault(kstd_shared* shared) {
    // Release our writes to the object; the thread that drops the last
    // reference acquires everyone's before it destroys.
    const int32_t before = __atomic_fetch_sub(countOf(shared), 1, __ATOMIC_ACQ_REL);
    if (__builtin_expect(before <= 0, 0)) return overReleased(shared);
    return before == 1 ? shared->custom->destroy(shared) : 0;
}

// Reference changes go through the object's own operations, falling back to
// the default atomic ones when a slot is empty.
[[gnu::always_inline]] inline kstd_result addReference(const kstd_shared* shared) {
    if (shared == nullptr) return 0;
    kstd_shared* object = mutableShared(shared);
    const auto increment = object->custom->increment;
    return increment != nullptr ? increment(object) : incrementDefault(object);
}

[[gnu::always_inline]] inline kstd_result dropReference(const kstd_shared* shared) {
    if (shared == nullptr) return 0;
    kstd_shared* object = mutableShared(shared);
    const auto decrement = object->custom->decrement;
    return decrement != nullptr ? decrement(object) : decrementDefault(object);
}

// Makes `pointer` hold `shared`: the new reference is taken before the old one
// is dropped, so holding what is already held (or a part of it) is safe.
template <class P>
[[gnu::always_inline]] inline kstd_result hold(P* pointer, const kstd_shared* shared) {
    if (pointer->shared == shared) return 0;
    VEXPERS_TRY(addReference(shared));
    const kstd_shared* old = pointer->shared;
    pointer->shared = mutableShared(shared);
    return dropReference(old);
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_shared_initCustom(kstd_shared* shared, void* whole, const kstd_sharedCustom* custom) {
    VEXPERS_REQUIRE(shared != nullptr);
    VEXPERS_REQUIRE(custom != nullptr && custom->destroy != nullptr);
    *shared = kstd_shared{custom, nullptr, whole, 0, 0};
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_shared_initCustomTyped(kstd_shared* shared, void* whole, const kstd_sharedCustom* custom,
                                                       const kstd_sharedTyped* typed) {
    VEXPERS_REQUIRE(typed != nullptr);
    VEXPERS_TRY(kstd_shared_initCustom(shared, whole, custom));
    shared->typed = typed;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_shared_getWhole(const kstd_shared* shared, void** whole) {
    VEXPERS_REQUIRE(whole != nullptr);
    *whole = shared != nullptr ? shared->whole : nullptr;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_shared_getTypename(const kstd_shared* shared, const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    if (shared == nullptr || shared->typed == nullptr || shared->typed->getTypename == nullptr) return 0;
    return shared->typed->getTypename(shared, name);
}

VEXPERS_EXPORT kstd_result kstd_shared_queryInterfaceByTypenameFinal(kstd_shared* shared, const char16_t* name,
                                                                     void** result) {
    VEXPERS_REQUIRE(result != nullptr);
    *result = nullptr;
    VEXPERS_REQUIRE(name != nullptr);
    if (ksys_wcscmp(name, u"kstd_shared") == 0) *result = shared;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_shared_queryInterfaceByTypename(kstd_shared* shared, const char16_t* name,
                                                                void** result) {
    VEXPERS_REQUIRE(result != nullptr);
    *result = nullptr;
    VEXPERS_REQUIRE(name != nullptr);
    if (shared == nullptr) return 0;
    if (shared->typed != nullptr && shared->typed->queryInterfaceByTypename != nullptr)
        return shared->typed->queryInterfaceByTypename(shared, name, result);
    return kstd_shared_queryInterfaceByTypenameFinal(shared, name, result);
}

VEXPERS_EXPORT kstd_result kstd_shared_increment_default(kstd_shared* shared) {
    VEXPERS_REQUIRE(shared != nullptr);
    return incrementDefault(shared);
}

VEXPERS_EXPORT kstd_result kstd_shared_decrement_default(kstd_shared* shared) {
    VEXPERS_REQUIRE(shared != nullptr);
    return decrementDefault(shared);
}

VEXPERS_EXPORT kstd_result kstd_shared_getReferenceCount(const kstd_shared* shared, int32_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = 0;
    VEXPERS_REQUIRE(shared != nullptr);
    *count = __atomic_load_n(&shared->referenceCount, __ATOMIC_ACQUIRE);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename(
    const kstd_typeDescriptorMinimalVtable* table, void* object, const char16_t* name, void** result) {
    VEXPERS_REQUIRE(result != nullptr);
    *result = nullptr;
    VEXPERS_REQUIRE(table != nullptr && table->queryInterfaceByTypename != nullptr);
    VEXPERS_REQUIRE(name != nullptr);
    return table->queryInterfaceByTypename(object, name, result);
}

// The shared-pointer family, written once for the mutable and the constant
// pointer: P is the record, S the (possibly const) shared header, W the
// (possibly const) whole object.
#define VEXPERS_DEFINE_SHARED_POINTER(P, S, W)                                                     \
    VEXPERS_EXPORT kstd_result P##_constructBaseTypename(P* pointer, S* shared,                    \
                                                         const char16_t* baseTypename) {           \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        *pointer = P{nullptr, nullptr};                                                            \
        VEXPERS_TRY(hold(pointer, shared));                                                        \
        pointer->baseTypename = baseTypename;                                                      \
        return 0;                                                                                  \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_construct(P* pointer, S* shared) {                              \
        return P##_constructBaseTypename(pointer, shared, nullptr);                                \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_constructEmpty(P* pointer) {                                    \
        return P##_constructBaseTypename(pointer, nullptr, nullptr);                               \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_constructCopy(P* pointer, const P* source) {                    \
        VEXPERS_REQUIRE(source != nullptr);                                                        \
        return P##_constructBaseTypename(pointer, source->shared, source->baseTypename);           \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_assign(P* pointer, const P* source) {                           \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        VEXPERS_REQUIRE(source != nullptr);                                                        \
        VEXPERS_TRY(hold(pointer, source->shared));                                                \
        if (pointer->baseTypename == nullptr) pointer->baseTypename = source->baseTypename;        \
        return 0;                                                                                  \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_assignShared(P* pointer, S* shared) {                           \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        return hold(pointer, shared);                                                              \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_getWholeShared(const P* pointer, W** whole) {                   \
        VEXPERS_REQUIRE(whole != nullptr);                                                         \
        *whole = nullptr;                                                                          \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        if (pointer->shared != nullptr) *whole = pointer->shared->whole;                           \
        return 0;                                                                                  \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_getShared(const P* pointer, S** shared) {                       \
        VEXPERS_REQUIRE(shared != nullptr);                                                        \
        *shared = nullptr;                                                                         \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        *shared = pointer->shared;                                                                 \
        return 0;                                                                                  \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_getTypename(const P* pointer, const char16_t** name) {          \
        VEXPERS_REQUIRE(name != nullptr);                                                          \
        *name = nullptr;                                                                           \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        VEXPERS_TRY(kstd_shared_getTypename(pointer->shared, name));                               \
        if (*name == nullptr) *name = pointer->baseTypename;                                       \
        return 0;                                                                                  \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_reset(P* pointer) {                                             \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        return hold(pointer, nullptr);                                                             \
    }                                                                                              \
    VEXPERS_EXPORT kstd_result P##_destruct(P* pointer) {                                          \
        VEXPERS_REQUIRE(pointer != nullptr);                                                       \
        const kstd_result result = hold(pointer, nullptr);                                         \
        pointer->baseTypename = nullptr;                                                           \
        return result;                                                                             \
    }                                                                                              \
    VEXPERS_DEFINE_TYPECHECK_HOOKS(P)

VEXPERS_DEFINE_SHARED_POINTER(kstd_ptrh, kstd_shared, void)
VEXPERS_DEFINE_SHARED_POINTER(kstd_ptrhConst, const kstd_shared, const void)
