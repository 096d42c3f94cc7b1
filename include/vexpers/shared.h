/*
 * vexpers/shared.h - shared objects with custom, thread-safe reference
 * counting, the shared pointers kstd_ptrh / kstd_ptrhConst, and the minimal
 * type-descriptor table through which objects answer interface queries.
 *
 * A shared object starts with a kstd_shared header. Its reference count starts
 * at 0; every shared pointer that holds it adds one. When the count drops to 0
 * the header's destroy operation runs.
 */
#ifndef VEXPERS_SHARED_H
#define VEXPERS_SHARED_H

#include "vexpers/base.h"

VEXPERS_EXTERN_C_BEGIN

typedef struct kstd_shared kstd_shared;

/** Reference-counting operations of a shared object. */
typedef struct kstd_sharedCustom {
    /** Destroys the object and frees its memory (count reached 0). */
    kstd_result (*destroy)(kstd_shared* shared);
    /** Adds a reference (kstd_shared_increment_default as a rule). */
    kstd_result (*increment)(kstd_shared* shared);
    /** Drops a reference; destroys at 0 (kstd_shared_decrement_default). */
    kstd_result (*decrement)(kstd_shared* shared);
} kstd_sharedCustom;

/** Interface query and type name of a typed shared object. */
typedef struct kstd_sharedTyped {
    /** Answers `name` with an interface pointer, or hands the request on to
     *  kstd_shared_queryInterfaceByTypenameFinal. */
    kstd_result (*queryInterfaceByTypename)(kstd_shared* shared, const char16_t* name, void** result);
    /** The object's type name (static text). */
    kstd_result (*getTypename)(const kstd_shared* shared, const char16_t** name);
} kstd_sharedTyped;

/** Header of a shared object. Fields belong to the runtime. */
struct kstd_shared {
    const kstd_sharedCustom* custom;
    const kstd_sharedTyped* typed;
    void* whole;
    int32_t referenceCount;
    int32_t reserved;
};

/* Shared objects. Getters set their output to null or 0 first; a null
 * output, a null header where one is required, or a table without its
 * required slot is a precondition fault. The codes of the object's own
 * operations (destroy, interface query, type name) are returned unchanged. */
/** Initialises the header: `whole` is the start of the whole object, count 0.
 *  `custom` and its destroy slot are required; a null increment or decrement
 *  slot means the default one. */
VEXPERS_API kstd_result kstd_shared_initCustom(kstd_shared* shared, void* whole, const kstd_sharedCustom* custom);
/** As initCustom, with an interface query and type name. */
VEXPERS_API kstd_result kstd_shared_initCustomTyped(kstd_shared* shared, void* whole, const kstd_sharedCustom* custom,
                                                    const kstd_sharedTyped* typed);
/** The whole object of `shared` (null for null). */
VEXPERS_API kstd_result kstd_shared_getWhole(const kstd_shared* shared, void** whole);
/** The type name of a typed shared object; null for an untyped one. */
VEXPERS_API kstd_result kstd_shared_getTypename(const kstd_shared* shared, const char16_t** name);
/** The end of every interface query: "kstd_shared" is answered with the
 *  header itself, every other name with null (success). */
VEXPERS_API kstd_result kstd_shared_queryInterfaceByTypenameFinal(kstd_shared* shared, const char16_t* name, void** result);
/** Asks a shared object for an interface through its typed operations. */
VEXPERS_API kstd_result kstd_shared_queryInterfaceByTypename(kstd_shared* shared, const char16_t* name, void** result);
/** Atomic increment of the reference count. */
VEXPERS_API kstd_result kstd_shared_increment_default(kstd_shared* shared);
/** Atomic decrement; runs destroy when the count reaches 0 and returns its
 *  code. Decrementing a count of 0 is a precondition fault (count kept). */
VEXPERS_API kstd_result kstd_shared_decrement_default(kstd_shared* shared);
/** Current reference count (for tests and diagnostics). */
VEXPERS_API kstd_result kstd_shared_getReferenceCount(const kstd_shared* shared, int32_t* count);

/* ---- Minimal type-descriptor table ----------------------------------------- */

typedef struct kstd_typeDescriptorMinimalVtable {
    /** (object, name, out interface): the object's interface of that name. */
    kstd_result (*queryInterfaceByTypename)(void* object, const char16_t* name, void** result);
    /** (object, out name): the object's type name. */
    kstd_result (*getTypename)(const void* object, const char16_t** name);
} kstd_typeDescriptorMinimalVtable;

/** Calls the table's query for `object`; *result is null first. A table
 *  without the slot fails with ksys_result_preconditionFailed. */
VEXPERS_API kstd_result kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename(
    const kstd_typeDescriptorMinimalVtable* table, void* object, const char16_t* name, void** result);

/* ---- Shared pointers ------------------------------------------------------- */

/**
 * A shared pointer: one reference to a shared object, plus the base type name
 * it was constructed with (kept across assignments; it names what an empty
 * pointer would point at).
 */
typedef struct kstd_ptrh {
    kstd_shared* shared;
    const char16_t* baseTypename;
} kstd_ptrh;

/** The same for a pointer to a constant object. */
typedef struct kstd_ptrhConst {
    kstd_shared* shared;
    const char16_t* baseTypename;
} kstd_ptrhConst;

/*
 * The shared-pointer family. Making a pointer hold an object takes the new
 * reference (the object's increment) before it drops the old one (its
 * decrement), so holding what is already held, or a part of it, is safe.
 * Codes: a failing increment is returned with the pointer unchanged (the
 * construct forms then leave it empty); dropping the last reference runs the
 * old object's destroy, whose failure is returned although the pointer holds
 * the new object. A null pointer record or output is a precondition fault;
 * getters set their output to null first. Nothing here allocates.
 */
/** Constructs holding `shared` (may be null), adding a reference. */
VEXPERS_API kstd_result kstd_ptrh_construct(kstd_ptrh* pointer, kstd_shared* shared);
/** Constructs holding `shared` (may be null) with a base type name (static
 *  text, may be null). On failure the pointer is constructed empty. */
VEXPERS_API kstd_result kstd_ptrh_constructBaseTypename(kstd_ptrh* pointer, kstd_shared* shared,
                                                        const char16_t* baseTypename);
/** An empty pointer without a base type name. */
VEXPERS_API kstd_result kstd_ptrh_constructEmpty(kstd_ptrh* pointer);
/** Shares the source's object and takes its base type name. */
VEXPERS_API kstd_result kstd_ptrh_constructCopy(kstd_ptrh* pointer, const kstd_ptrh* source);
/** Shares the source's object; the base type name is kept unless empty. */
VEXPERS_API kstd_result kstd_ptrh_assign(kstd_ptrh* pointer, const kstd_ptrh* source);
/** Makes the pointer hold `shared` (may be null), dropping the old one. */
VEXPERS_API kstd_result kstd_ptrh_assignShared(kstd_ptrh* pointer, kstd_shared* shared);
/** The whole object of the held shared object, null when empty. */
VEXPERS_API kstd_result kstd_ptrh_getWholeShared(const kstd_ptrh* pointer, void** whole);
/** The held shared object (no reference is added). */
VEXPERS_API kstd_result kstd_ptrh_getShared(const kstd_ptrh* pointer, kstd_shared** shared);
/** The type name of the held object, or the base type name when the pointer
 *  is empty or the object gives no type name (an untyped shared object). */
VEXPERS_API kstd_result kstd_ptrh_getTypename(const kstd_ptrh* pointer, const char16_t** name);
/** Drops the reference; the base type name is kept. */
VEXPERS_API kstd_result kstd_ptrh_reset(kstd_ptrh* pointer);
/** Drops the reference and forgets the base type name. */
VEXPERS_API kstd_result kstd_ptrh_destruct(kstd_ptrh* pointer);

/* The kstd_ptrhConst functions behave as the kstd_ptrh functions of the same
 * name, over a constant object. */
VEXPERS_API kstd_result kstd_ptrhConst_construct(kstd_ptrhConst* pointer, const kstd_shared* shared);
VEXPERS_API kstd_result kstd_ptrhConst_constructBaseTypename(kstd_ptrhConst* pointer, const kstd_shared* shared,
                                                             const char16_t* baseTypename);
VEXPERS_API kstd_result kstd_ptrhConst_constructEmpty(kstd_ptrhConst* pointer);
VEXPERS_API kstd_result kstd_ptrhConst_constructCopy(kstd_ptrhConst* pointer, const kstd_ptrhConst* source);
VEXPERS_API kstd_result kstd_ptrhConst_assign(kstd_ptrhConst* pointer, const kstd_ptrhConst* source);
VEXPERS_API kstd_result kstd_ptrhConst_assignShared(kstd_ptrhConst* pointer, const kstd_shared* shared);
VEXPERS_API kstd_result kstd_ptrhConst_getWholeShared(const kstd_ptrhConst* pointer, const void** whole);
VEXPERS_API kstd_result kstd_ptrhConst_getShared(const kstd_ptrhConst* pointer, const kstd_shared** shared);
VEXPERS_API kstd_result kstd_ptrhConst_getTypename(const kstd_ptrhConst* pointer, const char16_t** name);
VEXPERS_API kstd_result kstd_ptrhConst_reset(kstd_ptrhConst* pointer);
VEXPERS_API kstd_result kstd_ptrhConst_destruct(kstd_ptrhConst* pointer);

VEXPERS_API void ksys_typeCheck_kstd_ptrh(kstd_ptrh* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_ptrh(kstd_ptrh** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_ptrh(kstd_result (*function)(kstd_ptrh*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_ptrh(kstd_result (*function)(kstd_ptrh**));
VEXPERS_API void ksys_typeCheck_kstd_ptrhConst(kstd_ptrhConst* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_ptrhConst(kstd_ptrhConst** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_ptrhConst(kstd_result (*function)(kstd_ptrhConst*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_ptrhConst(kstd_result (*function)(kstd_ptrhConst**));

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_SHARED_H */
