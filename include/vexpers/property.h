/*
 * vexpers/property.h - properties (a descriptor with a value), property bags
 * (ordered lists of properties with unique names) and bag sets (pools of
 * bags lent out one loan at a time).
 *
 * A property's descriptor gives the declared name, type and data access; its
 * variant holds the value with the value's own, actual type. A bag keeps its
 * properties in the order they were added, never holds two of one name (exact,
 * case-sensitive comparison) and never a null or empty name. Emptying a bag
 * keeps its property records as spare slots, so refilling it reuses them.
 * Properties, bags and bag sets have no lock: one thread at a time.
 */
#ifndef VEXPERS_PROPERTY_H
#define VEXPERS_PROPERTY_H

#include "vexpers/base.h"
#include "vexpers/propertyinfo.h"
#include "vexpers/recordvectors.h"
#include "vexpers/variant.h"

VEXPERS_EXTERN_C_BEGIN

struct kstd_persistentProperty {
    /** Declared name, type and data access. */
    kstd_persistentPropertyInfo info;
    /** The value with its actual type. */
    kstd_persistentVariant value;
};

struct kstd_persistentPropertyBag {
    /** 1: transfers add values to the bag; 0: they read values from it. */
    int32_t isStoring;
    /** First element of propertySlots, refreshed when it is resized or reassigned. */
    kstd_persistentProperty* propertiesBegin;
    /** Properties in use: slots 0 .. numProperties - 1, in order of adding. */
    int32_t numProperties;
    /** At least numProperties slots; spare slots keep earlier properties for reuse. */
    kstd_vector_kstd_persistentProperty propertySlots;
    /** Scratch property for storing an object's declared properties. */
    kstd_persistentProperty spareProperty;
    /** Name index over the properties in use, built past a small size; owned by the bag. */
    void* nameIndex;
};

typedef struct kstd_persistentPropertyBagSet {
    kstd_persistentPropertyBag** bags;
    int32_t numHandedOut;
    int32_t numBags;
    uint8_t* isAvailable;
} kstd_persistentPropertyBagSet;

typedef struct kstd_persistentPropertyBagSetNewBagGetter {
    kstd_persistentPropertyBagSet* bagSet;
    kstd_persistentPropertyBag* bag;
    int32_t index;
} kstd_persistentPropertyBagSetNewBagGetter;

/* Leaf kinds of kstd_persistentProperty_getIsLeaf. */
#define kstd_persistentLeafKind_none 0u
#define kstd_persistentLeafKind_coreValue 1u
#define kstd_persistentLeafKind_nullPointer 2u
#define kstd_persistentLeafKind_emptyArray 3u
/* Array kinds of kstd_persistentProperty_getIsArray. */
#define kstd_persistentArrayKind_none 0u
#define kstd_persistentArrayKind_coreItems 1u
#define kstd_persistentArrayKind_otherItems 2u

/* ==== Property ====================================================================== */

/*
 * Life cycle. _construct gives the default descriptor (null name, empty type,
 * data access 2, global index -1) and an empty variant. _assign copies the
 * descriptor, then the value (the variant shares its parts; assigning a
 * property to itself does nothing); _reset returns to the constructed state;
 * _destruct destroys the descriptor, then the value, stopping at the first
 * failure. _constructCopy and the heap forms are those of the life-cycle
 * family (vexpers/base.h). A null property or out-pointer is a precondition
 * fault, in this and every function below.
 */
VEXPERS_API kstd_result kstd_persistentProperty_construct(kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentProperty_constructCopy(kstd_persistentProperty* property,
                                                              const kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_persistentProperty_assign(kstd_persistentProperty* property,
                                                       const kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_persistentProperty_destruct(kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentProperty_reset(kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentProperty_new(kstd_persistentProperty** out);
VEXPERS_API kstd_result kstd_persistentProperty_newClone(kstd_persistentProperty** out,
                                                         const kstd_persistentProperty* source);
VEXPERS_API kstd_result kstd_persistentProperty_delete(kstd_persistentProperty** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentProperty(kstd_persistentProperty* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentProperty(kstd_persistentProperty** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentProperty(kstd_result (*function)(kstd_persistentProperty*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentProperty(kstd_result (*function)(kstd_persistentProperty**));

/*
 * The descriptor: the declared name and type. _getInfo assigns the
 * descriptor to the caller's constructed one. The other readers answer as
 * the kstd_persistentPropertyInfo reader of the same name, with its failures
 * (0x80004100 for an empty declared type, 0x800040C8 for the category or
 * core type id of an unregistered one) and its none values (null name,
 * derivation 0, category 7, core type id -2); _getDataAccess always succeeds.
 */
VEXPERS_API kstd_result kstd_persistentProperty_getInfo(const kstd_persistentProperty* property,
                                                        kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentProperty_getName(const kstd_persistentProperty* property,
                                                        const char16_t** name);
VEXPERS_API kstd_result kstd_persistentProperty_getTypeName(const kstd_persistentProperty* property,
                                                            const char16_t** typeName);
VEXPERS_API kstd_result kstd_persistentProperty_getTypeDerivation(const kstd_persistentProperty* property,
                                                                  uint32_t* derivation);
VEXPERS_API kstd_result kstd_persistentProperty_getTypeCategory(const kstd_persistentProperty* property,
                                                                uint32_t* category);
VEXPERS_API kstd_result kstd_persistentProperty_getCoreTypeId(const kstd_persistentProperty* property,
                                                              int32_t* coreTypeId);
VEXPERS_API kstd_result kstd_persistentProperty_getDataAccess(const kstd_persistentProperty* property,
                                                              uint32_t* dataAccess);

/*
 * The value.
 *   _getValue assigns the value to the caller's variant; _getInfoAndValue
 *     assigns both, the descriptor first.
 *   _getValuePtrConst gives the address of the property's own variant (a
 *     later change of the property changes what it points at); always 0.
 *   _getValueType: the type of the value held (which may differ from the
 *     declared type).
 *   _getValueUsingType, _getValuePtrConstUsingType: the variant's functions
 *     of the same names; every argument is required.
 *   _getArrayBeginSizeIntPtr and its Const form: the variant's function of
 *     that name (first element, or container, and count of an array value).
 *   _getContainer: kstd_persistentVariant_getContainer on the value (every
 *     output required).
 *   _getSubpropertyUsingName: kstd_persistentVariant_getPropertyUsingName on
 *     the value: the property of the held object named by the dotted path
 *     `name` (which may be null: 0x800040C3).
 */
VEXPERS_API kstd_result kstd_persistentProperty_getValue(const kstd_persistentProperty* property,
                                                         kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst(const kstd_persistentProperty* property,
                                                                 const kstd_persistentVariant** value);
VEXPERS_API kstd_result kstd_persistentProperty_getInfoAndValue(const kstd_persistentProperty* property,
                                                                kstd_persistentPropertyInfo* info,
                                                                kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValueType(const kstd_persistentProperty* property,
                                                             kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentProperty_getValueUsingType(const kstd_persistentProperty* property,
                                                                  const kstd_persistentType* type, void* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConstUsingType(const kstd_persistentProperty* property,
                                                                          const kstd_persistentType* type,
                                                                          const void** value);
VEXPERS_API kstd_result kstd_persistentProperty_getArrayBeginSizeIntPtr(kstd_persistentProperty* property,
                                                                        void** begin, intptr_t* count);
VEXPERS_API kstd_result kstd_persistentProperty_getArrayBeginSizeIntPtrConst(const kstd_persistentProperty* property,
                                                                             const void** begin, intptr_t* count);
VEXPERS_API kstd_result kstd_persistentProperty_getContainer(const kstd_persistentProperty* property,
                                                             void** container, uint32_t* containerValue,
                                                             uint32_t* elementSize, void** first, intptr_t* count,
                                                             const kstd_persistentContainerVtable** table,
                                                             kstd_persistentType* elementType);
VEXPERS_API kstd_result kstd_persistentProperty_getSubpropertyUsingName(const kstd_persistentProperty* property,
                                                                        const char16_t* name,
                                                                        kstd_persistentProperty* subproperty);

/*
 * How a tree decomposes the value (all four look at the value held, not at
 * the declared type):
 *   _getIsLeaf: an array (derivation 2 or 5) is an empty-array leaf (3)
 *     when it has no items, else not a leaf (0); a pointer (derivation 1) is
 *     a null-pointer leaf (2) without an object, else 0. Other derivations
 *     need a registered type (else 0x800040C8): an object (category 7) is 2
 *     without an object, else 0; an enum is 0 (decomposed like an object);
 *     any core value is 1. *isLeaf is 1 when the kind is not 0; the kind is
 *     written when `leafKind` is not null. On failure nothing is written.
 *   _getIsArray: derivation 2 or 5 is an array, of kind 1 when its type is
 *     registered with a core type id, else of kind 2; other derivations are
 *     kind 0. *isArray is 1 when the kind is not 0; `arrayKind` is optional.
 *   _getIsNullPointer: 1 only for derivation 1 without an object.
 *   _getNumItemsIfArray: the item count of an array, 0 for anything else.
 * The last three write 0 first. A value without a type fails with
 * 0x80004100.
 */
VEXPERS_API kstd_result kstd_persistentProperty_getIsLeaf(const kstd_persistentProperty* property, uint32_t* isLeaf,
                                                          uint32_t* leafKind);
VEXPERS_API kstd_result kstd_persistentProperty_getIsArray(const kstd_persistentProperty* property, uint32_t* isArray,
                                                           uint32_t* arrayKind);
VEXPERS_API kstd_result kstd_persistentProperty_getIsNullPointer(const kstd_persistentProperty* property,
                                                                 uint32_t* isNullPointer);
VEXPERS_API kstd_result kstd_persistentProperty_getNumItemsIfArray(const kstd_persistentProperty* property,
                                                                   int64_t* count);

/*
 * Setting descriptor and value together. Each sets the descriptor first and
 * stops at the first failure: when the value cannot be set (out of range, a
 * type that does not fit, an unregistered type) the property keeps its new
 * descriptor with its previous or a partly reset value. Callers that need
 * all-or-nothing keep a copy (a bag's add does).
 *   _resetInfoAndValue: assigns the descriptor and the variant (both
 *     required).
 *   _resetInfoAndValueUsingType: the descriptor of `name`, `type` (required)
 *     and `dataAccess`, then kstd_persistentVariant_setValueUsingType(type,
 *     object).
 *   _resetInfoAndValueUsingTypeEnum, _resetInfoAndValueBitfield32UsingTypeEnumBitfield,
 *   _resetInfoAndValueBitfield64UsingTypeEnumBitfield: the same with the
 *     variant's enum and bit-field setters.
 *   _resetInfoAndValuePointerNull, _resetInfoAndValueArrayEmpty: assign the
 *     descriptor (required), then the value is a null pointer or an empty
 *     array of the descriptor's type.
 *   _resetInfoAndValueArrayAndAlloc: assign the descriptor, then the value is
 *     a new array of `count` elements of the descriptor's type
 *     (kstd_persistentVariant_setValueUsingTypeArrayAndAlloc; `first` and
 *     `elementSize` are optional outputs).
 */
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue(kstd_persistentProperty* property,
                                                                  const kstd_persistentPropertyInfo* info,
                                                                  const kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueUsingType(kstd_persistentProperty* property,
                                                                           const kstd_persistentType* type,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           const void* object);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueUsingTypeEnum(kstd_persistentProperty* property,
                                                                               const kstd_persistentType* type,
                                                                               const char16_t* name,
                                                                               uint32_t dataAccess, int64_t value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentProperty* property, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint32_t bits);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentProperty* property, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint64_t bits);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValuePointerNull(kstd_persistentProperty* property,
                                                                             const kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueArrayEmpty(kstd_persistentProperty* property,
                                                                            const kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueArrayAndAlloc(
    kstd_persistentProperty* property, const kstd_persistentPropertyInfo* info, int32_t count, void** first,
    uint32_t* elementSize);

/*
 * The typed family, one pair per scalar, character and unicode-string type T.
 * _resetInfoAndValue_T names the property (`name` may be null or empty here),
 * declares it of core type T with `dataAccess`, then stores the value with
 * kstd_persistentVariant_setValue_T; the character types are declared but
 * their value is refused with 0x800040CA (a variant holds no characters).
 * _getValue_T reads the value as T with kstd_persistentVariant_getValue_T,
 * whose conversions and failures apply (*value is 0 first for scalars and
 * characters).
 */
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Int8(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         int8_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Int8(const kstd_persistentProperty* property,
                                                                int8_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_UInt8(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          uint8_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_UInt8(const kstd_persistentProperty* property,
                                                                 uint8_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Int16(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          int16_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Int16(const kstd_persistentProperty* property,
                                                                 int16_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_UInt16(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           uint16_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_UInt16(const kstd_persistentProperty* property,
                                                                  uint16_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Int32(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          int32_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Int32(const kstd_persistentProperty* property,
                                                                 int32_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_UInt32(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           uint32_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_UInt32(const kstd_persistentProperty* property,
                                                                  uint32_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Int64(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          int64_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Int64(const kstd_persistentProperty* property,
                                                                 int64_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_UInt64(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           uint64_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_UInt64(const kstd_persistentProperty* property,
                                                                  uint64_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_IntPtr(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           intptr_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_IntPtr(const kstd_persistentProperty* property,
                                                                  intptr_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_UIntPtr(kstd_persistentProperty* property,
                                                                            const char16_t* name, uint32_t dataAccess,
                                                                            uintptr_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_UIntPtr(const kstd_persistentProperty* property,
                                                                   uintptr_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_short(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        short value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_short(const kstd_persistentProperty* property, short* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_ushort(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         unsigned short value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_ushort(const kstd_persistentProperty* property,
                                                                unsigned short* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_int(kstd_persistentProperty* property,
                                                                      const char16_t* name, uint32_t dataAccess,
                                                                      int value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_int(const kstd_persistentProperty* property, int* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_uint(kstd_persistentProperty* property,
                                                                       const char16_t* name, uint32_t dataAccess,
                                                                       unsigned int value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_uint(const kstd_persistentProperty* property,
                                                              unsigned int* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_long(kstd_persistentProperty* property,
                                                                       const char16_t* name, uint32_t dataAccess,
                                                                       long value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_long(const kstd_persistentProperty* property, long* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_ulong(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        unsigned long value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_ulong(const kstd_persistentProperty* property,
                                                               unsigned long* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_size_t(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         size_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_size_t(const kstd_persistentProperty* property,
                                                                size_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_ptrdiff_t(kstd_persistentProperty* property,
                                                                            const char16_t* name, uint32_t dataAccess,
                                                                            ptrdiff_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_ptrdiff_t(const kstd_persistentProperty* property,
                                                                   ptrdiff_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_float(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        float value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_float(const kstd_persistentProperty* property, float* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_double(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         double value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_double(const kstd_persistentProperty* property,
                                                                double* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Bool(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         int32_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Bool(const kstd_persistentProperty* property,
                                                                int32_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_char(kstd_persistentProperty* property,
                                                                       const char16_t* name, uint32_t dataAccess,
                                                                       char value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_char(const kstd_persistentProperty* property, char* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_uchar(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        unsigned char value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_uchar(const kstd_persistentProperty* property,
                                                               unsigned char* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_schar(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        signed char value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_schar(const kstd_persistentProperty* property,
                                                               signed char* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_wchar_t(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          char16_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_wchar_t(const kstd_persistentProperty* property,
                                                                 char16_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_TCHAR(kstd_persistentProperty* property,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        char16_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_TCHAR(const kstd_persistentProperty* property,
                                                               char16_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Char16(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           char16_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Char16(const kstd_persistentProperty* property,
                                                                  char16_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_k_Char32(kstd_persistentProperty* property,
                                                                           const char16_t* name, uint32_t dataAccess,
                                                                           char32_t value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_k_Char32(const kstd_persistentProperty* property,
                                                                  char32_t* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_unicodeString(
    kstd_persistentProperty* property, const char16_t* name, uint32_t dataAccess, const kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_unicodeString(const kstd_persistentProperty* property,
                                                                            kstd_unicodeString* value);

/*
 * Strings given as zero-terminated text: _resetInfoAndValueStringA (UTF-8),
 * _StringW, _StringT, _String16 (UTF-16) and _String32 (UTF-32) declare the
 * property of the core types stringA, stringW, stringT, string16 and
 * string32 and store the text with the variant's setter of the same suffix
 * (a null text gives the null string). _getValueClone* give a new copy of the
 * value's text form in the form of their suffix (*value null first; the
 * caller frees it with ksys_memory_free_internal).
 */
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueStringA(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         const char* text);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueStringW(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         const char16_t* text);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueStringT(kstd_persistentProperty* property,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         const char16_t* text);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueString16(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          const char16_t* text);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValueString32(kstd_persistentProperty* property,
                                                                          const char16_t* name, uint32_t dataAccess,
                                                                          const char32_t* text);
VEXPERS_API kstd_result kstd_persistentProperty_getValueCloneStringA(const kstd_persistentProperty* property,
                                                                     char** value);
VEXPERS_API kstd_result kstd_persistentProperty_getValueCloneStringW(const kstd_persistentProperty* property,
                                                                     char16_t** value);
VEXPERS_API kstd_result kstd_persistentProperty_getValueCloneStringT(const kstd_persistentProperty* property,
                                                                     char16_t** value);
VEXPERS_API kstd_result kstd_persistentProperty_getValueCloneString16(const kstd_persistentProperty* property,
                                                                      char16_t** value);
VEXPERS_API kstd_result kstd_persistentProperty_getValueCloneString32(const kstd_persistentProperty* property,
                                                                      char32_t** value);

/* ==== Property bag =================================================================== */

/*
 * Life cycle. _construct: a storing bag (isStoring 1) without properties or
 * slots. _assign copies every slot (spare ones included), the scratch
 * property, then the property count and the direction; the count is 0 until
 * the slots are copied, so a failed assign leaves an empty bag. _destruct
 * destroys the slots, then the scratch property. _reset empties the bag and
 * makes it storing; _removeAllProperties only empties it. Emptying keeps the
 * slots: refilling reuses their records. _constructCopy and the heap forms
 * follow the property's. A null bag or out-pointer is a precondition fault,
 * in this and every bag function below.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBag_construct(kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentPropertyBag_constructCopy(kstd_persistentPropertyBag* bag,
                                                                 const kstd_persistentPropertyBag* source);
VEXPERS_API kstd_result kstd_persistentPropertyBag_assign(kstd_persistentPropertyBag* bag,
                                                          const kstd_persistentPropertyBag* source);
VEXPERS_API kstd_result kstd_persistentPropertyBag_destruct(kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentPropertyBag_reset(kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentPropertyBag_removeAllProperties(kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentPropertyBag_new(kstd_persistentPropertyBag** out);
VEXPERS_API kstd_result kstd_persistentPropertyBag_newClone(kstd_persistentPropertyBag** out,
                                                            const kstd_persistentPropertyBag* source);
VEXPERS_API kstd_result kstd_persistentPropertyBag_delete(kstd_persistentPropertyBag** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyBag(kstd_persistentPropertyBag* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyBag(kstd_persistentPropertyBag** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyBag(kstd_result (*function)(kstd_persistentPropertyBag*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyBag(
    kstd_result (*function)(kstd_persistentPropertyBag**));

/*
 * Finding.
 *   _getPropertiesBeginSizeConst: the properties in use, in order of adding;
 *     the pointer stays valid until the next add or assign.
 *   _getPropertyPtrConstUsingName: the property in use of exactly that name,
 *     or null (not finding one is success; a null name finds nothing).
 *   _getPropertyUsingName: resets `property`, then copies the property of
 *     that name into it. A name with '.' is a path: the part before the
 *     first '.' names a property of the bag, the rest is looked up in the
 *     object it holds (kstd_persistentProperty_getSubpropertyUsingName), and
 *     so on. A null or empty name fails with 0x800040C3, a missing property
 *     with 0x800040C9; the failures of the path lookup are returned.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBag_getPropertiesBeginSizeConst(const kstd_persistentPropertyBag* bag,
                                                                               const kstd_persistentProperty** begin,
                                                                               int32_t* count);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getPropertyPtrConstUsingName(
    const kstd_persistentPropertyBag* bag, const char16_t* name, const kstd_persistentProperty** property);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getPropertyUsingName(const kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name,
                                                                        kstd_persistentProperty* property);

/*
 * Adding. Every add is all-or-nothing: a null or empty name fails with
 * 0x800040C3, a name already in use with 0x800040C4 (a property is never
 * replaced); otherwise the next slot is taken (a spare one is reused) and
 * filled, and if filling fails the slot is given back, so the bag keeps the
 * properties it had, in the same order, and the fill's code is returned.
 *   _addProperty: a copy of `property` (its descriptor with its global
 *     index, and its value) under the property's own name.
 *   _addValueUsingType: kstd_persistentProperty_resetInfoAndValueUsingType
 *     (`type` required; `object` as the variant's setValueUsingType takes it).
 *   _addValueUsingTypeEnum, _addValueBitfield32UsingTypeEnumBitfield,
 *   _addValueBitfield64UsingTypeEnumBitfield, _addValueStringA, _W, _T, _16,
 *   _32: the property's combined reset of the same suffix.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBag_addProperty(kstd_persistentPropertyBag* bag,
                                                               const kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueUsingType(kstd_persistentPropertyBag* bag,
                                                                     const kstd_persistentType* type,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     const void* object);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueUsingTypeEnum(kstd_persistentPropertyBag* bag,
                                                                         const kstd_persistentType* type,
                                                                         const char16_t* name, uint32_t dataAccess,
                                                                         int64_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentPropertyBag* bag, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint32_t bits);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentPropertyBag* bag, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint64_t bits);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueStringA(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   const char* text);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueStringW(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   const char16_t* text);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueStringT(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   const char16_t* text);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueString16(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    const char16_t* text);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValueString32(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    const char32_t* text);

/*
 * Reading and transferring by type. `dataAccess` is optional everywhere.
 *   _getValueUsingType: finds the property of that name (0x800040C9 when
 *     none), reads its value with kstd_persistentVariant_getValueUsingType
 *     (`type` required), then writes the data access: only after success.
 *   _getValuePtrConstUsingType: the same with
 *     kstd_persistentVariant_getValuePtrConstUsingType (*value null first).
 *   _transferValueUsingType (`type` and `object` required): a bag whose
 *     isStoring is 0 reads, as _getValueUsingType; any other adds, as
 *     _addValueUsingType with the data access read through `dataAccess`, or
 *     2 when it is null.
 * No function sets isStoring to 0: a caller that wants transfers to read
 * from a bag clears the field itself.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValueUsingType(const kstd_persistentPropertyBag* bag,
                                                                     const kstd_persistentType* type,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     void* object);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConstUsingType(const kstd_persistentPropertyBag* bag,
                                                                             const kstd_persistentType* type,
                                                                             const char16_t* name,
                                                                             uint32_t* dataAccess,
                                                                             const void** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValueUsingType(kstd_persistentPropertyBag* bag,
                                                                          const kstd_persistentType* type,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          void* object);

/*
 * The typed family, three members per scalar, character and unicode-string
 * type T.
 *   _addValue_T: an add (as above) filled by
 *     kstd_persistentProperty_resetInfoAndValue_T.
 *   _getValue_T: *value is 0 first (scalars and characters); finds the
 *     property (0x800040C9 when none); writes the data access when
 *     `dataAccess` is not null; then reads the value with
 *     kstd_persistentProperty_getValue_T, so after a failed conversion the
 *     data access is already written.
 *   _transferValue_T: a bag whose isStoring is 0 reads, as _getValue_T; any
 *     other adds *value, as _addValue_T, with the data access read through
 *     `dataAccess`, or 2 when it is null.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Int8(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   int8_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Int8(const kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t* dataAccess,
                                                                   int8_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Int8(kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        int8_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_UInt8(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    uint8_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_UInt8(const kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t* dataAccess,
                                                                    uint8_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_UInt8(kstd_persistentPropertyBag* bag,
                                                                         const char16_t* name, uint32_t* dataAccess,
                                                                         uint8_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Int16(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    int16_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Int16(const kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t* dataAccess,
                                                                    int16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Int16(kstd_persistentPropertyBag* bag,
                                                                         const char16_t* name, uint32_t* dataAccess,
                                                                         int16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_UInt16(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     uint16_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_UInt16(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     uint16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_UInt16(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          uint16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Int32(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    int32_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Int32(const kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t* dataAccess,
                                                                    int32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Int32(kstd_persistentPropertyBag* bag,
                                                                         const char16_t* name, uint32_t* dataAccess,
                                                                         int32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_UInt32(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     uint32_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_UInt32(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     uint32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_UInt32(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          uint32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Int64(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    int64_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Int64(const kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t* dataAccess,
                                                                    int64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Int64(kstd_persistentPropertyBag* bag,
                                                                         const char16_t* name, uint32_t* dataAccess,
                                                                         int64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_UInt64(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     uint64_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_UInt64(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     uint64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_UInt64(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          uint64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_IntPtr(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     intptr_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_IntPtr(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     intptr_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_IntPtr(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          intptr_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_UIntPtr(kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t dataAccess,
                                                                      uintptr_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_UIntPtr(const kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t* dataAccess,
                                                                      uintptr_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_UIntPtr(kstd_persistentPropertyBag* bag,
                                                                           const char16_t* name, uint32_t* dataAccess,
                                                                           uintptr_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_short(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  short value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_short(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  short* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_short(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       short* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_ushort(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   unsigned short value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_ushort(const kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t* dataAccess,
                                                                   unsigned short* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_ushort(kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        unsigned short* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_int(kstd_persistentPropertyBag* bag, const char16_t* name,
                                                                uint32_t dataAccess, int value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_int(const kstd_persistentPropertyBag* bag,
                                                                const char16_t* name, uint32_t* dataAccess,
                                                                int* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_int(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     int* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_uint(kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t dataAccess,
                                                                 unsigned int value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_uint(const kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t* dataAccess,
                                                                 unsigned int* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_uint(kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t* dataAccess,
                                                                      unsigned int* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_long(kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t dataAccess,
                                                                 long value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_long(const kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t* dataAccess,
                                                                 long* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_long(kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t* dataAccess,
                                                                      long* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_ulong(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  unsigned long value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_ulong(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  unsigned long* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_ulong(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       unsigned long* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_size_t(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   size_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_size_t(const kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t* dataAccess,
                                                                   size_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_size_t(kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        size_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_ptrdiff_t(kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t dataAccess,
                                                                      ptrdiff_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_ptrdiff_t(const kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t* dataAccess,
                                                                      ptrdiff_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_ptrdiff_t(kstd_persistentPropertyBag* bag,
                                                                           const char16_t* name, uint32_t* dataAccess,
                                                                           ptrdiff_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_float(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  float value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_float(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  float* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_float(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       float* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_double(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   double value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_double(const kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t* dataAccess,
                                                                   double* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_double(kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        double* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Bool(kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t dataAccess,
                                                                   int32_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Bool(const kstd_persistentPropertyBag* bag,
                                                                   const char16_t* name, uint32_t* dataAccess,
                                                                   int32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Bool(kstd_persistentPropertyBag* bag,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        int32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_char(kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t dataAccess,
                                                                 char value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_char(const kstd_persistentPropertyBag* bag,
                                                                 const char16_t* name, uint32_t* dataAccess,
                                                                 char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_char(kstd_persistentPropertyBag* bag,
                                                                      const char16_t* name, uint32_t* dataAccess,
                                                                      char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_uchar(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  unsigned char value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_uchar(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  unsigned char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_uchar(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       unsigned char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_schar(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  signed char value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_schar(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  signed char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_schar(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       signed char* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_wchar_t(kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t dataAccess,
                                                                    char16_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_wchar_t(const kstd_persistentPropertyBag* bag,
                                                                    const char16_t* name, uint32_t* dataAccess,
                                                                    char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_wchar_t(kstd_persistentPropertyBag* bag,
                                                                         const char16_t* name, uint32_t* dataAccess,
                                                                         char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_TCHAR(kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t dataAccess,
                                                                  char16_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_TCHAR(const kstd_persistentPropertyBag* bag,
                                                                  const char16_t* name, uint32_t* dataAccess,
                                                                  char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_TCHAR(kstd_persistentPropertyBag* bag,
                                                                       const char16_t* name, uint32_t* dataAccess,
                                                                       char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Char16(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     char16_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Char16(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Char16(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          char16_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_k_Char32(kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t dataAccess,
                                                                     char32_t value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_k_Char32(const kstd_persistentPropertyBag* bag,
                                                                     const char16_t* name, uint32_t* dataAccess,
                                                                     char32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_k_Char32(kstd_persistentPropertyBag* bag,
                                                                          const char16_t* name, uint32_t* dataAccess,
                                                                          char32_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_unicodeString(kstd_persistentPropertyBag* bag,
                                                                               const char16_t* name,
                                                                               uint32_t dataAccess,
                                                                               const kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_unicodeString(const kstd_persistentPropertyBag* bag,
                                                                               const char16_t* name,
                                                                               uint32_t* dataAccess,
                                                                               kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_unicodeString(kstd_persistentPropertyBag* bag,
                                                                                    const char16_t* name,
                                                                                    uint32_t* dataAccess,
                                                                                    kstd_unicodeString* value);

/* ==== Bag set and loans ============================================================== */

/*
 * A bag set owns heap bags and lends them out. _construct: no bags.
 * _assign (and so _constructCopy and _newClone) accepts only the set itself
 * as source (0, nothing copied); another source is a precondition fault.
 * _reset makes every bag lent since the last reset available again; bags
 * keep their contents. _destruct checks the set's counts (precondition
 * faults), then deletes the bags, last first. Heap forms as the property's.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_construct(kstd_persistentPropertyBagSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_constructCopy(kstd_persistentPropertyBagSet* set,
                                                                    const kstd_persistentPropertyBagSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_assign(kstd_persistentPropertyBagSet* set,
                                                             const kstd_persistentPropertyBagSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_destruct(kstd_persistentPropertyBagSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_reset(kstd_persistentPropertyBagSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_new(kstd_persistentPropertyBagSet** out);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_newClone(kstd_persistentPropertyBagSet** out,
                                                               const kstd_persistentPropertyBagSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyBagSet_delete(kstd_persistentPropertyBagSet** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyBagSet(kstd_persistentPropertyBagSet* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyBagSet(kstd_persistentPropertyBagSet** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyBagSet(
    kstd_result (*function)(kstd_persistentPropertyBagSet*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyBagSet(
    kstd_result (*function)(kstd_persistentPropertyBagSet**));

/*
 * One loan. _construct lends a bag of `set` into *bag (and the getter):
 * the most recently lent bag that was given back since the last reset, else
 * the next bag after those lent since the reset, creating one when every
 * bag is lent (allocation failure: ksys_result_outOfMemory, *bag null, the
 * set unchanged). The bag comes as it was left: the borrower empties it.
 * _destruct gives the bag back (when the set still holds it at that
 * position) and always returns 0. Destruct every getter before the set is
 * reset or destructed.
 */
VEXPERS_API kstd_result kstd_persistentPropertyBagSetNewBagGetter_construct(
    kstd_persistentPropertyBagSetNewBagGetter* getter, kstd_persistentPropertyBagSet* set,
    kstd_persistentPropertyBag** bag);
VEXPERS_API kstd_result
kstd_persistentPropertyBagSetNewBagGetter_destruct(kstd_persistentPropertyBagSetNewBagGetter* getter);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyBagSetNewBagGetter(
    kstd_persistentPropertyBagSetNewBagGetter* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyBagSetNewBagGetter(
    kstd_persistentPropertyBagSetNewBagGetter** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyBagSetNewBagGetter(
    kstd_result (*function)(kstd_persistentPropertyBagSetNewBagGetter*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyBagSetNewBagGetter(
    kstd_result (*function)(kstd_persistentPropertyBagSetNewBagGetter**));

/* ==== Built-in object types ============================================================= */

/*
 * Members of the property and bag for each built-in object type T (the
 * shared pointers and the typed vectors). Each fetches T's registered type
 * (registering T on first use; a registration failure is returned) and
 * forwards, value by address:
 *   kstd_persistentProperty_resetInfoAndValue_T: _resetInfoAndValueUsingType
 *     (the property borrows the caller's object);
 *   kstd_persistentProperty_getValue_T, _getValuePtrConst_T: the variant's
 *     members of the same names on the property's value;
 *   kstd_persistentPropertyBag_addValue_T, _getValue_T, _transferValue_T and,
 *     for the vectors, _getValuePtrConst_T: the bag's UsingType operations of
 *     the same names, with their codes.
 */
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_ptrh(const kstd_persistentProperty* property,
    kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_ptrh(const kstd_persistentProperty* property,
    const kstd_ptrh** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_ptrh(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_ptrh(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_ptrh(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_ptrh* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_ptrhConst(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_ptrhConst(const kstd_persistentProperty* property,
    kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_ptrhConst(const kstd_persistentProperty* property,
    const kstd_ptrhConst** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_ptrhConst(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_ptrhConst(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_ptrhConst(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_ptrhConst* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector8s(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector8s(const kstd_persistentProperty* property,
    kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector8s(const kstd_persistentProperty* property,
    const kstd_vector8s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector8s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector8s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector8s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector8s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector8s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector8s* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector8(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector8(const kstd_persistentProperty* property,
    kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector8(const kstd_persistentProperty* property,
    const kstd_vector8** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector8(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector8(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector8(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector8** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector8(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector8* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector16s(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector16s(const kstd_persistentProperty* property,
    kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector16s(const kstd_persistentProperty* property,
    const kstd_vector16s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector16s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector16s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector16s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector16s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector16s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector16s* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector16(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector16(const kstd_persistentProperty* property,
    kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector16(const kstd_persistentProperty* property,
    const kstd_vector16** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector16(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector16(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector16(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector16** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector16(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector16* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector32s(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector32s(const kstd_persistentProperty* property,
    kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector32s(const kstd_persistentProperty* property,
    const kstd_vector32s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector32s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector32s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector32s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector32s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector32s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector32s* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector32(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector32(const kstd_persistentProperty* property,
    kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector32(const kstd_persistentProperty* property,
    const kstd_vector32** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector32(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector32(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector32(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector32** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector32(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector32* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector64s(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector64s(const kstd_persistentProperty* property,
    kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector64s(const kstd_persistentProperty* property,
    const kstd_vector64s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector64s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector64s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector64s(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector64s** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector64s(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector64s* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector64(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector64(const kstd_persistentProperty* property,
    kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector64(const kstd_persistentProperty* property,
    const kstd_vector64** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector64(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector64(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector64(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector64** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector64(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector64* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vectorIntPtrs(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vectorIntPtrs(const kstd_persistentProperty* property,
    kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vectorIntPtrs(const kstd_persistentProperty* property,
    const kstd_vectorIntPtrs** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vectorIntPtrs(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vectorIntPtrs(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vectorIntPtrs(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vectorIntPtrs** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vectorIntPtrs(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorIntPtrs* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vectorIntPtr(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vectorIntPtr(const kstd_persistentProperty* property,
    kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vectorIntPtr(const kstd_persistentProperty* property,
    const kstd_vectorIntPtr** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vectorIntPtr(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vectorIntPtr(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vectorIntPtr(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vectorIntPtr** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vectorIntPtr(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorIntPtr* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vectorf(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vectorf(const kstd_persistentProperty* property,
    kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vectorf(const kstd_persistentProperty* property,
    const kstd_vectorf** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vectorf(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vectorf(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vectorf(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vectorf** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vectorf(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorf* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vectord(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vectord(const kstd_persistentProperty* property,
    kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vectord(const kstd_persistentProperty* property,
    const kstd_vectord** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vectord(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vectord(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vectord(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vectord** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vectord(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectord* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vectorb(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vectorb(const kstd_persistentProperty* property,
    kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vectorb(const kstd_persistentProperty* property,
    const kstd_vectorb** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vectorb(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vectorb(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vectorb(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vectorb** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vectorb(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vectorb* value);
VEXPERS_API kstd_result kstd_persistentProperty_resetInfoAndValue_kstd_vector_kstd_unicodeString(kstd_persistentProperty* property,
    const char16_t* name, uint32_t dataAccess, const kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValue_kstd_vector_kstd_unicodeString(const kstd_persistentProperty* property,
    kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentProperty_getValuePtrConst_kstd_vector_kstd_unicodeString(const kstd_persistentProperty* property,
    const kstd_vector_kstd_unicodeString** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_addValue_kstd_vector_kstd_unicodeString(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t dataAccess, const kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValue_kstd_vector_kstd_unicodeString(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector_kstd_unicodeString* value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_getValuePtrConst_kstd_vector_kstd_unicodeString(const kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, const kstd_vector_kstd_unicodeString** value);
VEXPERS_API kstd_result kstd_persistentPropertyBag_transferValue_kstd_vector_kstd_unicodeString(kstd_persistentPropertyBag* bag,
    const char16_t* name, uint32_t* dataAccess, kstd_vector_kstd_unicodeString* value);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_PROPERTY_H */
