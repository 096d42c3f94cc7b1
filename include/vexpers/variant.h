/*
 * vexpers/variant.h - the variant: one value of any registered type.
 *
 * A kstd_persistentVariant always carries its type (a kstd_persistentType).
 * Scalars are stored in place in the 8-byte `value`: signed integers and plain
 * enumerations as 64-bit signed, unsigned integers and enumeration bit fields
 * as 64-bit unsigned, booleans as a 32-bit integer in the first 4 bytes (the
 * other 4 bytes 0), floating-point values as a double (a float is widened).
 * Strings live in `stringValue`; objects are held by pointer (borrowed from
 * the caller, or kept alive through `sharedObject`). Character values are
 * never stored: every character set and get is refused.
 *
 * Typed gets convert between the integer, boolean and floating categories:
 *
 *   stored as      k_Int64            k_UInt64           k_Bool        float / double
 *   signed         the value          >= 0, else D0      value != 0    nearest float / double
 *   unsigned       <= 2^63-1, else D0 the value          value != 0    nearest float / double
 *   boolean        sign-extended      value != 0         the value     1.0 / 0.0
 *   floating       rounded, else D0   rounded, else D0   x != 0.0      float: clamped (1E66) / x
 *   character      CA                 CA                 CD            CD
 *   string         CA                 CA                 CA            CA
 *   object         CD                 CD                 CD            CD
 *   other          CB                 CB                 CB            CB
 *
 * (D0 = kstd_persistentResult_valueOutOfRange, CA = _notSupported, CB =
 * _invalidTypeCategory, CD = _typeMismatch, 1E66 = _floatRangeExceeded.)
 * "signed" is category 0 or 6 of derivation 0; "unsigned" category 1 of
 * derivation 0 or category 6 of derivation 4 (an enumeration bit field);
 * "other" includes categories 0 and 1 of derivation 4. Every reader first
 * zeroes its destination and fails with CD for a held derivation other than
 * 0 and 4. A held type that has no record fails with 0x80004100 (typeEmpty),
 * an unregistered one with 0x800040C8; a reserved core type (k_Int128 and the
 * other names of which no value can be made) with CA.
 *
 * Doubles are rounded to integers with halves away from zero (2.5 gives 3,
 * -2.5 gives -3); the signed range is [-2^63, 2^63), the unsigned one
 * [0, 2^64) (-0.0 counts as 0); a NaN read as an integer fails with D0. A
 * double beyond the float range (infinities included) reads as float as the
 * largest float of its sign, and the reader returns 1E66 although it wrote
 * that value. Texts are never parsed.
 *
 * Copies share: assign shares the type record, the string holder and the
 * shared object, and copies the value. Typed sets and gets of scalars
 * allocate nothing. A variant has no lock.
 */
#ifndef VEXPERS_VARIANT_H
#define VEXPERS_VARIANT_H

#include <stdbool.h>

#include "vexpers/base.h"
#include "vexpers/shared.h"
#include "vexpers/stringconst.h"
#include "vexpers/text.h"
#include "vexpers/type.h"
#include "vexpers/vector.h"

VEXPERS_EXTERN_C_BEGIN

/** The 8 bytes of a stored scalar or pointer; all 0 when nothing is stored. */
typedef union kstd_persistentVariantValue {
    int64_t int64;
    uint64_t uint64;
    double float64;
    /** A boolean: the first 4 bytes; the other 4 are 0. */
    int32_t boolean;
    void* pointer;
} kstd_persistentVariantValue;

struct kstd_persistentVariant {
    /** The type of the held value; empty after construct and reset. */
    kstd_persistentType type;
    /** 1 when `value` points at an object or container the caller owns. */
    uint32_t isBorrowed;
    kstd_persistentVariantValue value;
    /** The text of a string value; the null string otherwise. */
    kstd_unicodeStringConst stringValue;
    /** Keeps an object or array owned by the variant alive; empty otherwise. */
    kstd_ptrh sharedObject;
    /** Element count of an array value; 0 otherwise. */
    int64_t arrayCount;
    /** Set when the array lives inside a container object; null otherwise. */
    const kstd_persistentContainerVtable* containerVtable;
};

/* ---- Life cycle and type --------------------------------------------------------- */

/*
 * _construct makes a variant without a type and without a value.
 * _assign shares the source's type record, string holder and shared object and
 * copies the value (assigning a variant to itself does nothing); a failure
 * leaves the variant released with the parts assigned so far.
 * _constructCopy constructs and assigns (destructed again when assign fails).
 * _destruct releases the value and destroys the parts, stopping at the first
 * failure. Every reset and every set releases what the variant held (string,
 * shared object, array description) and sets isBorrowed and value to 0.
 * _reset empties the type as well.
 * _resetType holds `type` with no value.
 * _resetTypeName holds the type of that name, derivation 0 (a null or empty
 * name fails with 0x800040C6 and changes nothing; an unregistered name gives
 * an unregistered type, which most reads then refuse with 0x800040C8).
 * _resetCoreTypeId holds a core type (a negative id fails with 0x800040C5 and
 * changes nothing; an id above 51 empties the variant and fails with 0x800040C5).
 * _getType shares the held type into `type`.
 * _getTypeCategory, _getTypeDerivation, _getTypeCategoryAndDerivation answer
 * for the held type as the kstd_persistentType functions of the same names do
 * (outputs 7 and 0 first; 0x80004100 without a type).
 */
VEXPERS_API kstd_result kstd_persistentVariant_construct(kstd_persistentVariant* variant);
VEXPERS_API kstd_result kstd_persistentVariant_constructCopy(kstd_persistentVariant* variant,
                                                             const kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_persistentVariant_assign(kstd_persistentVariant* variant,
                                                      const kstd_persistentVariant* source);
VEXPERS_API kstd_result kstd_persistentVariant_destruct(kstd_persistentVariant* variant);
VEXPERS_API kstd_result kstd_persistentVariant_reset(kstd_persistentVariant* variant);
VEXPERS_API kstd_result kstd_persistentVariant_resetType(kstd_persistentVariant* variant,
                                                         const kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentVariant_resetTypeName(kstd_persistentVariant* variant, const char16_t* name);
VEXPERS_API kstd_result kstd_persistentVariant_resetCoreTypeId(kstd_persistentVariant* variant, int32_t coreTypeId);
VEXPERS_API kstd_result kstd_persistentVariant_getType(const kstd_persistentVariant* variant,
                                                       kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentVariant_getTypeCategory(const kstd_persistentVariant* variant,
                                                               uint32_t* category);
VEXPERS_API kstd_result kstd_persistentVariant_getTypeDerivation(const kstd_persistentVariant* variant,
                                                                 uint32_t* derivation);
VEXPERS_API kstd_result kstd_persistentVariant_getTypeCategoryAndDerivation(const kstd_persistentVariant* variant,
                                                                            uint32_t* category,
                                                                            uint32_t* derivation);

VEXPERS_API void ksys_typeCheck_kstd_persistentVariant(kstd_persistentVariant* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentVariant(kstd_persistentVariant** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentVariant(kstd_result (*function)(kstd_persistentVariant*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentVariant(kstd_result (*function)(kstd_persistentVariant**));

/* ---- Access by type ------------------------------------------------------------- */

/*
 * _setValueUsingType holds `type` (first, whatever follows), then stores the
 * value read from `value`:
 *   - a pointer type (derivation 1) with a null `value`: a null pointer, 0;
 *   - an object type (category 7): borrows the object, isBorrowed 1;
 *   - a core type of derivation 0: the core type's writer reads one value of
 *     its C type from `value` (for stringA ... string32 `value` is the text
 *     pointer itself; a bool is read as its byte, any non-zero byte storing
 *     1); null `value` 0x800040CC; reserved core types and
 *     character types 0x800040CA;
 *   - anything else (enumerations, arrays, pointers to values): 0x800040D6.
 * A type without a record fails with 0x80004100, an unregistered one with
 * 0x800040C8. A failure leaves the variant holding `type` with no value.
 *
 * _getValueUsingType reads the held value into `value`, which must be of
 * exactly the held type: another type (no conversion) fails with 0x800040CA.
 * A core type goes through its reader (the typed get of its C type; null
 * `value` 0x800040CC; reserved core types 0x800040CA; the string pointers
 * stringA ... string32 have no reader: 0x800040C1). Another type goes through
 * the second slot of its value access table (0x800040C0 without a table,
 * 0x800040C1 without the slot).
 *
 * _getValuePtrConstUsingType gives the held object (null first): the held type
 * must be of category 7 and equal to `type`, else 0x800040CD.
 */
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingType(kstd_persistentVariant* variant,
                                                                 const kstd_persistentType* type, const void* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueUsingType(const kstd_persistentVariant* variant,
                                                                 const kstd_persistentType* type, void* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConstUsingType(const kstd_persistentVariant* variant,
                                                                         const kstd_persistentType* type,
                                                                         const void** value);

/* ---- Typed sets and gets ----------------------------------------------------------- */

/*
 * _setValue_T makes the variant hold exactly the core type T and stores the
 * value: integers sign- or zero-extended to 64 bits, k_Bool unchanged (5 stays
 * 5), bool as 1 or 0, float widened to double. The character types (char,
 * uchar, schar, wchar_t, TCHAR, k_Char16, k_Char32) are refused with
 * 0x800040CA and the variant is left as it was.
 *
 * _getValue_T zeroes *value, then reads the held value as T (conversions in
 * the table at the top). k_Int64, k_UInt64, k_Bool, float and double are the
 * five base readers. The narrower integers read through k_Int64 (signed T) or
 * k_UInt64 (unsigned T) and must fit the width of T's C type in this build,
 * else 0x800040D0 and *value stays 0 (long, unsigned long, k_IntPtr,
 * k_UIntPtr, size_t and ptrdiff_t are 64 bits wide here). _getValue_bool reads
 * through k_Bool and writes *value only on success. The character gets always
 * fail with 0x800040CA and *value 0.
 */
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Int8(kstd_persistentVariant* variant, int8_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Int8(const kstd_persistentVariant* variant, int8_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_UInt8(kstd_persistentVariant* variant, uint8_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_UInt8(const kstd_persistentVariant* variant,
                                                                uint8_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Int16(kstd_persistentVariant* variant, int16_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Int16(const kstd_persistentVariant* variant,
                                                                int16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_UInt16(kstd_persistentVariant* variant, uint16_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_UInt16(const kstd_persistentVariant* variant,
                                                                 uint16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Int32(kstd_persistentVariant* variant, int32_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Int32(const kstd_persistentVariant* variant,
                                                                int32_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_UInt32(kstd_persistentVariant* variant, uint32_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_UInt32(const kstd_persistentVariant* variant,
                                                                 uint32_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Int64(kstd_persistentVariant* variant, int64_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Int64(const kstd_persistentVariant* variant,
                                                                int64_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_UInt64(kstd_persistentVariant* variant, uint64_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_UInt64(const kstd_persistentVariant* variant,
                                                                 uint64_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_IntPtr(kstd_persistentVariant* variant, intptr_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_IntPtr(const kstd_persistentVariant* variant,
                                                                 intptr_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_UIntPtr(kstd_persistentVariant* variant, uintptr_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_UIntPtr(const kstd_persistentVariant* variant,
                                                                  uintptr_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_short(kstd_persistentVariant* variant, short value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_short(const kstd_persistentVariant* variant, short* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_ushort(kstd_persistentVariant* variant, unsigned short value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_ushort(const kstd_persistentVariant* variant,
                                                               unsigned short* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_int(kstd_persistentVariant* variant, int value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_int(const kstd_persistentVariant* variant, int* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_uint(kstd_persistentVariant* variant, unsigned int value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_uint(const kstd_persistentVariant* variant,
                                                             unsigned int* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_long(kstd_persistentVariant* variant, long value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_long(const kstd_persistentVariant* variant, long* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_ulong(kstd_persistentVariant* variant, unsigned long value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_ulong(const kstd_persistentVariant* variant,
                                                              unsigned long* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_size_t(kstd_persistentVariant* variant, size_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_size_t(const kstd_persistentVariant* variant, size_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_ptrdiff_t(kstd_persistentVariant* variant, ptrdiff_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_ptrdiff_t(const kstd_persistentVariant* variant,
                                                                  ptrdiff_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_float(kstd_persistentVariant* variant, float value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_float(const kstd_persistentVariant* variant, float* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_double(kstd_persistentVariant* variant, double value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_double(const kstd_persistentVariant* variant, double* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Bool(kstd_persistentVariant* variant, int32_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Bool(const kstd_persistentVariant* variant, int32_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_bool(kstd_persistentVariant* variant, bool value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_bool(const kstd_persistentVariant* variant, bool* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_char(kstd_persistentVariant* variant, char value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_char(const kstd_persistentVariant* variant, char* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_uchar(kstd_persistentVariant* variant, unsigned char value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_uchar(const kstd_persistentVariant* variant,
                                                              unsigned char* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_schar(kstd_persistentVariant* variant, signed char value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_schar(const kstd_persistentVariant* variant,
                                                              signed char* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_wchar_t(kstd_persistentVariant* variant, char16_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_wchar_t(const kstd_persistentVariant* variant,
                                                                char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_TCHAR(kstd_persistentVariant* variant, char16_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_TCHAR(const kstd_persistentVariant* variant, char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Char16(kstd_persistentVariant* variant, char16_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Char16(const kstd_persistentVariant* variant,
                                                                 char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_k_Char32(kstd_persistentVariant* variant, char32_t value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_k_Char32(const kstd_persistentVariant* variant,
                                                                 char32_t* value);

/*
 * Storing under a chosen type: the type's category must be 0 (_k_Int64_),
 * 1 (_k_UInt64_), 2 (_k_Bool_, stored in the first 4 bytes) or 3 (_double_),
 * else 0x800040D6 and nothing changes (a reserved core type: 0x800040CA).
 * The variant then holds `type` and the value as given, without a range
 * check against the type's width: 1000 under k_Int8 is held as 1000 and
 * fails only when read as an 8-bit integer.
 */
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingType_k_Int64_(kstd_persistentVariant* variant,
                                                                          const kstd_persistentType* type,
                                                                          int64_t value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingType_k_UInt64_(kstd_persistentVariant* variant,
                                                                           const kstd_persistentType* type,
                                                                           uint64_t value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingType_k_Bool_(kstd_persistentVariant* variant,
                                                                         const kstd_persistentType* type,
                                                                         int32_t value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingType_double_(kstd_persistentVariant* variant,
                                                                         const kstd_persistentType* type,
                                                                         double value);

/* ---- Object values: null pointers, enumerations, arrays -------------------------- */

/*
 * Storing. Each checks its arguments first and leaves the variant unchanged
 * when a check fails; then the variant holds `type` and the value.
 *   _setValueUsingTypePointerNull: a null pointer; the type's derivation must
 *     be 1 (else 0x800040D6); the type need not be registered.
 *   _setValueUsingTypeEnum: an enumeration value; the type must be
 *     registered (0x800040C8) with category 6 and derivation 0 (else
 *     0x800040D2).
 *   _setValueBitfield64UsingTypeEnumBitfield: enumeration bits; category 6
 *     and derivation 4 (else 0x800040D3). The 32-bit form zero-extends.
 *   _setValueUsingTypeArrayEmpty: an empty array; derivation 2 or 5 (else
 *     0x800040D6); the type need not be registered.
 *   _setValueUsingTypeArrayInContainer: the array held by `container` (which
 *     stays the caller's, isBorrowed 1), described by its container table: a
 *     null container fails with 0x800040CC, a null table with 0x800040C0, a
 *     table missing one of its first five operations with 0x800040C1; the
 *     count is asked from the container (its failure returned; a negative
 *     count 0x800040D7); the type must be registered with derivation 2 or 5
 *     (else 0x800040D6, also for a descriptor without a record).
 * Otherwise a descriptor without a record fails with 0x80004100.
 *
 * Reading.
 *   _getWholeObject: the object held (borrowed or created) or the pointer of
 *     a pointer type; *object is null first; a value of another category than
 *     7 and another derivation than 1 fails with 0x800040D6.
 *   _getArrayBeginSizeIntPtr: the first element (for an array in a container:
 *     the container) and the item count of an array value; both 0 first; a
 *     derivation other than 2 and 5 fails with 0x800040D6, a count beyond 32
 *     bits with 0x800040DC. The Const form is the same.
 *   _getPropertyUsingName: resets `property`, then finds the property of the
 *     held object named by `path`; "a.b.c" is property c of the object held
 *     by property b of the object held by property a. A null or empty path,
 *     or an empty part (a path ending in '.'), fails with 0x800040C3; a step
 *     whose value is not an object (category 7) with 0x800040D6, a null
 *     object with 0x800040CC, an unregistered type with 0x800040C8; a name
 *     that the object's type does not declare with 0x800040C9. The property
 *     of every step is kept until the lookup ends (a path of more than three
 *     parts allocates room for them: ksys_result_outOfMemory).
 */
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingTypePointerNull(kstd_persistentVariant* variant,
                                                                            const kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingTypeEnum(kstd_persistentVariant* variant,
                                                                     const kstd_persistentType* type, int64_t value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentVariant* variant, const kstd_persistentType* type, uint64_t bits);
VEXPERS_API kstd_result kstd_persistentVariant_setValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentVariant* variant, const kstd_persistentType* type, uint32_t bits);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingTypeArrayEmpty(kstd_persistentVariant* variant,
                                                                           const kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingTypeArrayInContainer(
    kstd_persistentVariant* variant, const kstd_persistentType* type, void* container,
    const kstd_persistentContainerVtable* containerVtable);
VEXPERS_API kstd_result kstd_persistentVariant_getWholeObject(const kstd_persistentVariant* variant, void** object);
VEXPERS_API kstd_result kstd_persistentVariant_getArrayBeginSizeIntPtr(kstd_persistentVariant* variant, void** begin,
                                                                       intptr_t* count);
VEXPERS_API kstd_result kstd_persistentVariant_getArrayBeginSizeIntPtrConst(const kstd_persistentVariant* variant,
                                                                            const void** begin, intptr_t* count);
VEXPERS_API kstd_result kstd_persistentVariant_getPropertyUsingName(const kstd_persistentVariant* variant,
                                                                    const char16_t* path,
                                                                    kstd_persistentProperty* property);

/* ---- Strings -------------------------------------------------------------------- */

/*
 * String sets hold the core type of their form and copy the text into
 * `stringValue`: _setValue_kstd_unicodeString (kstd_unicodeString),
 * _setValueStringA (UTF-8, stringA), _setValueStringW (stringW),
 * _setValueStringT (stringT), _setValueString16 (string16), _setValueString32
 * (UTF-32, string32). A null text gives the null string. Invalid text fails
 * with ksys_result_invalidText; the variant then holds the type with the null
 * string.
 *
 * _getValue_kstd_unicodeStringConst resets `value`, then: a held derivation
 * other than 0 and 4 fails with 0x800040CD; a string shares `stringValue`
 * (nothing is copied); a character type fails with 0x800040CA; any other
 * value gives its text form (_getValueAsString), whose failures are returned.
 * _getValue_kstd_unicodeString does the same into a mutable string.
 * _getValueClone* give a new copy of that text in the form of their name
 * (*value null first; the null string gives null), allocated with
 * ksys_memory_alloc_internal: the caller frees it with
 * ksys_memory_free_internal.
 */
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_unicodeString(kstd_persistentVariant* variant,
                                                                           const kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueStringA(kstd_persistentVariant* variant, const char* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueStringW(kstd_persistentVariant* variant, const char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueStringT(kstd_persistentVariant* variant, const char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueString16(kstd_persistentVariant* variant,
                                                                const char16_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_setValueString32(kstd_persistentVariant* variant,
                                                                const char32_t* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_unicodeStringConst(const kstd_persistentVariant* variant,
                                                                               kstd_unicodeStringConst* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_unicodeString(const kstd_persistentVariant* variant,
                                                                          kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueCloneStringA(const kstd_persistentVariant* variant,
                                                                    char** value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueCloneStringW(const kstd_persistentVariant* variant,
                                                                    char16_t** value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueCloneStringT(const kstd_persistentVariant* variant,
                                                                    char16_t** value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueCloneString16(const kstd_persistentVariant* variant,
                                                                     char16_t** value);
VEXPERS_API kstd_result kstd_persistentVariant_getValueCloneString32(const kstd_persistentVariant* variant,
                                                                     char32_t** value);

/*
 * The text form of the held value, into `text`:
 *   string      the text itself (the null string stays null, empty stays empty)
 *   signed      decimal, a minus sign for negative values ("-42")
 *   unsigned    decimal ("18446744073709551615")
 *   boolean     "true" when not 0, else "false"
 *   floating    up to 20 significant digits, fixed or exponent notation,
 *               without trailing zeros ("0.5", "100", "1e+39"), in the C
 *               locale whatever the host set; "inf", "-inf", "nan"
 *   object      the pointer as 16 upper-case hexadecimal digits, no prefix
 * A failing type query is returned; a held derivation other than 0 and 4, a
 * character type and a reserved core type fail with 0x800040CA; in these
 * cases `text` is unchanged. Any other value resets `text` to the empty
 * string and fails with 0x800040CB.
 */
VEXPERS_API kstd_result kstd_persistentVariant_getValueAsString(const kstd_persistentVariant* variant,
                                                                kstd_stringConst* text);

/* ---- Objects and arrays the variant owns or describes ---------------------------- */

/*
 * _resetNewObject holds `type` (resetType), creates a new object of it
 * (kstd_persistentType_newObject) in `value` and, when the type answers the
 * interface query for "kstd_shared", keeps the object alive through
 * `sharedObject`: the last copy of the variant to let go destroys it. An
 * object without a shared interface is owned by no variant; the caller deletes
 * it through the type. On failure the object is deleted again and the variant
 * holds the type with no value. Codes of newObject pass through.
 *
 * _setValueUsingTypeArrayAndAlloc allocates `count` constructed elements of the
 * array type `type` (derivation 2 or 5, registered) in a shared array holder:
 * `value` is the first element, `arrayCount` the count, and the array lives as
 * long as any variant (or copy of one) holds it; the elements are destroyed
 * through the type when the last one lets go. `first` and `elementSize` are
 * optional outputs (null and 0 first). A negative count fails with 0x800040D7
 * before the type is looked at; another type with 0x800040D6 (the variant is
 * unchanged); a failure of the allocation leaves the variant holding the type
 * with no value.
 *
 * _getShared gives the held object's shared interface, or null when the
 * variant holds no object or its type has no interface query. The held type
 * must be of category 7 or derivation 1 (0x800040D6) and registered
 * (0x800040C8). *shared is null first.
 *
 * _getObjectData fills a storing `bag` with the persistent properties of the
 * held object through its type (kstd_persistentType_transferObjectPersistentProperties):
 * a bag that is not storing fails with 0x800040CE; the bag is emptied first; a
 * held value of a core type leaves it empty; an array fails with 0x800040CA, a
 * null object with 0x800040CC. An enumeration's own value is the object.
 *
 * _getContainer describes an array value (registered type of derivation 2 or
 * 5, else 0x800040D6). With a container table (an array in a container):
 * `container` is the container object, `table` its table, and the table's
 * getBegin, getSize and getLayout give `first`, `count`, `containerValue`
 * (isContiguous) and `elementSize` in that order (0x800040C1 when one of the
 * three is missing). Without one: `container` null, `containerValue` 0,
 * `first` the first element, `count` the element count (0x800040DC beyond 32
 * bits) and `elementSize` the type's. `elementType` is the item type: the same
 * name with derivation 0 (array) or 4 (bit-field array). Every output is
 * cleared first.
 */
VEXPERS_API kstd_result kstd_persistentVariant_resetNewObject(kstd_persistentVariant* variant,
                                                              const kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(kstd_persistentVariant* variant,
                                                                              const kstd_persistentType* type,
                                                                              int32_t count, void** first,
                                                                              uint32_t* elementSize);
VEXPERS_API kstd_result kstd_persistentVariant_getShared(const kstd_persistentVariant* variant, kstd_shared** shared);
VEXPERS_API kstd_result kstd_persistentVariant_getObjectData(const kstd_persistentVariant* variant,
                                                             kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentVariant_getContainer(const kstd_persistentVariant* variant, void** container,
                                                            uint32_t* containerValue, uint32_t* elementSize,
                                                            void** first, intptr_t* count,
                                                            const kstd_persistentContainerVtable** table,
                                                            kstd_persistentType* elementType);

/*
 * The built-in object types, three functions each (the first three slots of
 * the type's value access table):
 * _setValue_T borrows the caller's object: the variant holds T's registered
 * type (registering T on first use) and points at `value`.
 * _getValue_T copies the held object into `value` with T's assignment: the
 * held type must be an object type (0x800040CD) equal to T (0x800040CD) with
 * an object (0x800040CC).
 * _getValuePtrConst_T gives the held object's address (null first); the held
 * category must be 7 (0x800040CD), the held type is not compared with T.
 */

VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_ptrh(kstd_persistentVariant* variant, const kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_ptrh(const kstd_persistentVariant* variant, kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_ptrh(const kstd_persistentVariant* variant,
                                                                     const kstd_ptrh** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_ptrhConst(kstd_persistentVariant* variant, const kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_ptrhConst(const kstd_persistentVariant* variant, kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_ptrhConst(const kstd_persistentVariant* variant,
                                                                     const kstd_ptrhConst** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector8s(kstd_persistentVariant* variant, const kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector8s(const kstd_persistentVariant* variant, kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector8s(const kstd_persistentVariant* variant,
                                                                     const kstd_vector8s** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector8(kstd_persistentVariant* variant, const kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector8(const kstd_persistentVariant* variant, kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector8(const kstd_persistentVariant* variant,
                                                                     const kstd_vector8** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector16s(kstd_persistentVariant* variant, const kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector16s(const kstd_persistentVariant* variant, kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector16s(const kstd_persistentVariant* variant,
                                                                     const kstd_vector16s** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector16(kstd_persistentVariant* variant, const kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector16(const kstd_persistentVariant* variant, kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector16(const kstd_persistentVariant* variant,
                                                                     const kstd_vector16** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector32s(kstd_persistentVariant* variant, const kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector32s(const kstd_persistentVariant* variant, kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector32s(const kstd_persistentVariant* variant,
                                                                     const kstd_vector32s** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector32(kstd_persistentVariant* variant, const kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector32(const kstd_persistentVariant* variant, kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector32(const kstd_persistentVariant* variant,
                                                                     const kstd_vector32** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector64s(kstd_persistentVariant* variant, const kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector64s(const kstd_persistentVariant* variant, kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector64s(const kstd_persistentVariant* variant,
                                                                     const kstd_vector64s** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector64(kstd_persistentVariant* variant, const kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector64(const kstd_persistentVariant* variant, kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector64(const kstd_persistentVariant* variant,
                                                                     const kstd_vector64** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vectorIntPtrs(kstd_persistentVariant* variant, const kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vectorIntPtrs(const kstd_persistentVariant* variant, kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vectorIntPtrs(const kstd_persistentVariant* variant,
                                                                     const kstd_vectorIntPtrs** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vectorIntPtr(kstd_persistentVariant* variant, const kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vectorIntPtr(const kstd_persistentVariant* variant, kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vectorIntPtr(const kstd_persistentVariant* variant,
                                                                     const kstd_vectorIntPtr** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vectorf(kstd_persistentVariant* variant, const kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vectorf(const kstd_persistentVariant* variant, kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vectorf(const kstd_persistentVariant* variant,
                                                                     const kstd_vectorf** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vectord(kstd_persistentVariant* variant, const kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vectord(const kstd_persistentVariant* variant, kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vectord(const kstd_persistentVariant* variant,
                                                                     const kstd_vectord** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vectorb(kstd_persistentVariant* variant, const kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vectorb(const kstd_persistentVariant* variant, kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vectorb(const kstd_persistentVariant* variant,
                                                                     const kstd_vectorb** value);
VEXPERS_API kstd_result kstd_persistentVariant_setValue_kstd_vector_kstd_unicodeString(kstd_persistentVariant* variant, const kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValue_kstd_vector_kstd_unicodeString(const kstd_persistentVariant* variant, kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentVariant_getValuePtrConst_kstd_vector_kstd_unicodeString(const kstd_persistentVariant* variant,
                                                                     const kstd_vector_kstd_unicodeString** value);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_VARIANT_H */
