/*
 * vexpers/base.h - result codes, the export macro, the assertion hook and the
 * type-check hook pattern shared by every vexpers header.
 *
 * Every exported function returns a kstd_result: 0 on success, negative on
 * failure. Outputs are set to their "none" value (0, null, -1 for ids and
 * indexes, -2 for core type ids, 7 for type categories) before the first step
 * that can fail, so a caller may read them after a failure.
 *
 * A null pointer passed where a function requires one is a precondition fault:
 * the function calls kstd_assert_ with the source line of the check and returns
 * ksys_result_preconditionFailed. The default handler prints one line to stderr;
 * an embedding program may install its own with ksys_assert_setHandler.
 */
#ifndef VEXPERS_BASE_H
#define VEXPERS_BASE_H

#include <stddef.h>
#include <stdint.h>
#include <uchar.h>

#if defined(VEXPERS_BUILDING_LIBRARY)
#define VEXPERS_API __attribute__((visibility("default")))
#else
#define VEXPERS_API
#endif

#ifdef __cplusplus
#define VEXPERS_EXTERN_C_BEGIN extern "C" {
#define VEXPERS_EXTERN_C_END }
#else
#define VEXPERS_EXTERN_C_BEGIN
#define VEXPERS_EXTERN_C_END
#endif

VEXPERS_EXTERN_C_BEGIN

/** Result code: 0 success, negative failure. */
typedef int32_t kstd_result;

#define VEXPERS_RESULT(code) ((kstd_result)(uint32_t)(code))

/* Codes of the stand-in runtime layer. */
/** Generic failure: node protocol violations, id-table checks. */
#define ksys_result_failure VEXPERS_RESULT(0x80000000u)
/** A required pointer was null or another precondition was violated. */
#define ksys_result_preconditionFailed VEXPERS_RESULT(0x80004003u)
/** Memory could not be allocated (also returned by injected failures). */
#define ksys_result_outOfMemory VEXPERS_RESULT(0x8007000Eu)
/** A size or count is outside what the runtime service accepts. */
#define ksys_result_invalidSize VEXPERS_RESULT(0x80070057u)
/** The runtime service was asked for something it does not hold (index, key). */
#define ksys_result_notFound VEXPERS_RESULT(0x80070490u)
/** A once-only start-up routine was re-entered on the same flag by its own thread. */
#define ksys_result_reentrantInitialization VEXPERS_RESULT(0x8007045Au)
/** Text is not valid in its encoding (unpaired surrogate, bad UTF-8). */
#define ksys_result_invalidText VEXPERS_RESULT(0x80070459u)

/* Codes of the persistence library. */
#define kstd_persistentResult_noObjectVtable VEXPERS_RESULT(0x800040C0u)
#define kstd_persistentResult_operationMissing VEXPERS_RESULT(0x800040C1u)
#define kstd_persistentResult_typeAlreadyRegistered VEXPERS_RESULT(0x800040C2u)
#define kstd_persistentResult_invalidPropertyName VEXPERS_RESULT(0x800040C3u)
#define kstd_persistentResult_duplicatePropertyName VEXPERS_RESULT(0x800040C4u)
#define kstd_persistentResult_invalidCoreTypeId VEXPERS_RESULT(0x800040C5u)
#define kstd_persistentResult_invalidTypeName VEXPERS_RESULT(0x800040C6u)
#define kstd_persistentResult_typeNotRegistered VEXPERS_RESULT(0x800040C8u)
#define kstd_persistentResult_propertyNotFound VEXPERS_RESULT(0x800040C9u)
#define kstd_persistentResult_notSupported VEXPERS_RESULT(0x800040CAu)
#define kstd_persistentResult_invalidTypeCategory VEXPERS_RESULT(0x800040CBu)
#define kstd_persistentResult_nullArgument VEXPERS_RESULT(0x800040CCu)
#define kstd_persistentResult_typeMismatch VEXPERS_RESULT(0x800040CDu)
#define kstd_persistentResult_bagNotStoring VEXPERS_RESULT(0x800040CEu)
#define kstd_persistentResult_valueOutOfRange VEXPERS_RESULT(0x800040D0u)
#define kstd_persistentResult_notEnumType VEXPERS_RESULT(0x800040D2u)
#define kstd_persistentResult_notEnumBitfieldType VEXPERS_RESULT(0x800040D3u)
#define kstd_persistentResult_noInterfaceQuery VEXPERS_RESULT(0x800040D4u)
#define kstd_persistentResult_wrongTypeKind VEXPERS_RESULT(0x800040D6u)
#define kstd_persistentResult_invalidCount VEXPERS_RESULT(0x800040D7u)
#define kstd_persistentResult_nullArrayData VEXPERS_RESULT(0x800040D8u)
#define kstd_persistentResult_nodeHasNoChildren VEXPERS_RESULT(0x800040D9u)
#define kstd_persistentResult_outputNotEmpty VEXPERS_RESULT(0x800040DAu)
#define kstd_persistentResult_invalidElementSize VEXPERS_RESULT(0x800040DBu)
#define kstd_persistentResult_arraySizeOverflow VEXPERS_RESULT(0x800040DCu)
#define kstd_persistentResult_objectIdNotFound VEXPERS_RESULT(0x800040DEu)
#define kstd_persistentResult_internalInconsistency VEXPERS_RESULT(0x800040DFu)
#define kstd_persistentResult_typeEmpty VEXPERS_RESULT(0x80004100u)
#define kstd_persistentResult_propertyInfoIdNotFound VEXPERS_RESULT(0x80004101u)
#define kstd_persistentResult_idInUse VEXPERS_RESULT(0x80004102u)
#define kstd_persistentResult_idLimitReached VEXPERS_RESULT(0x80004103u)
#define kstd_persistentResult_noMatchingCoreType VEXPERS_RESULT(0x80004104u)
#define kstd_persistentResult_floatRangeExceeded VEXPERS_RESULT(0x80001E66u)
#define kstd_persistentResult_objectIdTaken VEXPERS_RESULT(0x80001E7Fu)
#define kstd_persistentResult_invalidArgument VEXPERS_RESULT(0x80004040u)

/* Limits for untrusted input (values and where they apply: vexpers/tree.h).
 * Object ids past their cap give kstd_persistentResult_invalidArgument and
 * arrays past theirs kstd_persistentResult_arraySizeOverflow; the other
 * limits have codes of their own. */
/** Composing or reading would nest deeper than the depth limit. */
#define kstd_persistentResult_nestingTooDeep VEXPERS_RESULT(0x80004110u)
/** A tree would hold more nodes than its node cap. */
#define kstd_persistentResult_tooManyNodes VEXPERS_RESULT(0x80004111u)
/** A property or type name read into a tree is longer than the name limit. */
#define kstd_persistentResult_nameTooLong VEXPERS_RESULT(0x80004112u)

/** True when a result code reports failure. */
#define KSTD_FAILED(result) ((result) < 0)
#define KSTD_SUCCEEDED(result) ((result) >= 0)

/* ---- Assertion hook ---------------------------------------------------- */

/**
 * Handler of precondition faults. `line` is the source line of the failed
 * check, `file` the source file (null when the fault was raised through
 * kstd_assert_ directly). The handler must return; the library then returns
 * ksys_result_preconditionFailed from the faulting function.
 */
typedef void (*ksys_assertHandler)(int32_t line, const char* file, void* context);

/** Reports a precondition fault at `line` to the installed handler. */
VEXPERS_API void kstd_assert_(int32_t line);
/** As kstd_assert_, with the source file as well. */
VEXPERS_API void ksys_assert_at(const char* file, int32_t line);
/**
 * Installs `handler` (null restores the default, which writes one line to
 * stderr) and its context. The previous handler and context are stored in
 * the optional outputs. Safe to call from any thread.
 */
VEXPERS_API kstd_result ksys_assert_setHandler(ksys_assertHandler handler, void* context,
                                               ksys_assertHandler* previousHandler,
                                               void** previousContext);
/** Number of precondition faults reported in this process so far. */
VEXPERS_API kstd_result ksys_assert_getCount(int64_t* count);

/*
 * Type-check hooks. For each record R listed in the headers the library
 * exports ksys_typeCheck_R(R*), ksys_typeCheckPtr_R(R**),
 * ksys_typeCheckFunc_R(kstd_result (*)(R*)) and
 * ksys_typeCheckFuncPtr_R(kstd_result (*)(R**)). They do nothing; they let
 * code that registers clean-up entries check at compile time that an object
 * and its release function belong together.
 */

/*
 * The life-cycle family. Records with a life cycle (strings, types, property
 * descriptors, properties, bags, trees, vectors, ...) share these functions;
 * their headers add only what differs for them.
 *   R_construct(r)            makes the record's empty state; a failure leaves
 *                             nothing to release.
 *   R_constructCopy(r, src)   R_construct, then R_assign; when the assign
 *                             fails the record is destructed again and the
 *                             assign's code returned (nothing to release).
 *   R_assign(r, src)          makes r equal to src by content (records that
 *                             share parts, such as strings and types, share
 *                             them); r == src does nothing. A failed
 *                             assign leaves r valid (to destruct, reset or
 *                             assign again), not necessarily as it was; the
 *                             record's header says more where it matters.
 *   R_reset(r)                back to the state R_construct gives.
 *   R_destruct(r)             releases what the record holds and returns the
 *                             first failure.
 *   R_new(&p)                 deletes what p holds (a failing delete is
 *                             returned with p unchanged), then allocates and
 *                             constructs; p is null on failure.
 *   R_newClone(&p, src)       a null src only deletes (p becomes null);
 *                             otherwise R_new, then R_assign (deleted again,
 *                             p null, when the assign fails).
 *   R_delete(&p)              a null p does nothing; otherwise destructs and
 *                             frees and sets p to null (a failing destruct is
 *                             returned with the memory and p kept).
 * Codes: ksys_result_outOfMemory when memory runs out, the codes of the
 * record's own construct, assign and destruct, and
 * ksys_result_preconditionFailed for a null record or out-pointer.
 */

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_BASE_H */
