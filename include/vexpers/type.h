/*
 * vexpers/type.h - type descriptors, the type registry, the operation tables
 * through which the library reaches objects it does not know, and the
 * built-in object types.
 *
 * A type descriptor (kstd_persistentType) is a handle sharing one registry-
 * owned type record (kstd_persistentType_) per registered (name, derivation)
 * pair. The registry starts lazily on first use with the 52 core types in
 * derivations 0 to 3 and the two shared-pointer types; client modules register
 * enum and object types through the four registration functions, each guarded
 * by a flag the module owns. There is no unregistration; ksys_shutdown frees
 * the registry.
 */
#ifndef VEXPERS_TYPE_H
#define VEXPERS_TYPE_H

#include "vexpers/base.h"
#include "vexpers/recordvectors.h"
#include "vexpers/shared.h"
#include "vexpers/stringconst.h"

VEXPERS_EXTERN_C_BEGIN

/* ---- Enumerations ---------------------------------------------------------------- */

/* Type category (uint32). Core types have categories 0 to 5. */
#define kstd_persistentTypeCategory_int 0u
#define kstd_persistentTypeCategory_uint 1u
#define kstd_persistentTypeCategory_bool 2u
#define kstd_persistentTypeCategory_float 3u
#define kstd_persistentTypeCategory_char 4u
#define kstd_persistentTypeCategory_string 5u
#define kstd_persistentTypeCategory_enum 6u
#define kstd_persistentTypeCategory_object 7u

/* Type derivation (uint32). 4 and 5 exist only for enums registered with a bit-field form. */
#define kstd_persistentTypeDerivation_value 0u
#define kstd_persistentTypeDerivation_pointer 1u
#define kstd_persistentTypeDerivation_array 2u
#define kstd_persistentTypeDerivation_indirect 3u
#define kstd_persistentTypeDerivation_bitfield 4u
#define kstd_persistentTypeDerivation_bitfieldArray 5u

/* Core type id (int32): the row of the core type table, -1 for a registered
 * enum or object type, -2 when not set. Names with blanks are written
 * without them ("unsigned short" is ushort, "long double" longdouble). */
#define kstd_persistentCoreTypeId_registered (-1)
#define kstd_persistentCoreTypeId_notSet (-2)
#define kstd_persistentCoreTypeId_count 52
#define kstd_persistentCoreTypeId_k_Int8 0
#define kstd_persistentCoreTypeId_k_UInt8 1
#define kstd_persistentCoreTypeId_k_Int16 2
#define kstd_persistentCoreTypeId_k_UInt16 3
#define kstd_persistentCoreTypeId_k_Int32 4
#define kstd_persistentCoreTypeId_k_UInt32 5
#define kstd_persistentCoreTypeId_k_Int64 6
#define kstd_persistentCoreTypeId_k_UInt64 7
#define kstd_persistentCoreTypeId_k_IntPtr 8
#define kstd_persistentCoreTypeId_k_UIntPtr 9
#define kstd_persistentCoreTypeId_k_Int128 10
#define kstd_persistentCoreTypeId_k_UInt128 11
#define kstd_persistentCoreTypeId_k_Int256 12
#define kstd_persistentCoreTypeId_k_UInt256 13
#define kstd_persistentCoreTypeId_k_IntN 14
#define kstd_persistentCoreTypeId_k_UIntN 15
#define kstd_persistentCoreTypeId_k_IntMax 16
#define kstd_persistentCoreTypeId_k_UIntMax 17
#define kstd_persistentCoreTypeId_short 18
#define kstd_persistentCoreTypeId_ushort 19
#define kstd_persistentCoreTypeId_int 20
#define kstd_persistentCoreTypeId_uint 21
#define kstd_persistentCoreTypeId_long 22
#define kstd_persistentCoreTypeId_ulong 23
#define kstd_persistentCoreTypeId_longlong 24
#define kstd_persistentCoreTypeId_ulonglong 25
#define kstd_persistentCoreTypeId_size_t 26
#define kstd_persistentCoreTypeId_ptrdiff_t 27
#define kstd_persistentCoreTypeId_float 28
#define kstd_persistentCoreTypeId_double 29
#define kstd_persistentCoreTypeId_longdouble 30
#define kstd_persistentCoreTypeId_k_Float32 31
#define kstd_persistentCoreTypeId_k_Float64 32
#define kstd_persistentCoreTypeId_k_Float128 33
#define kstd_persistentCoreTypeId_k_Float256 34
#define kstd_persistentCoreTypeId_k_FloatN 35
#define kstd_persistentCoreTypeId_k_FloatMax 36
#define kstd_persistentCoreTypeId_k_Bool 37
#define kstd_persistentCoreTypeId_bool 38
#define kstd_persistentCoreTypeId_char 39
#define kstd_persistentCoreTypeId_uchar 40
#define kstd_persistentCoreTypeId_schar 41
#define kstd_persistentCoreTypeId_wchar_t 42
#define kstd_persistentCoreTypeId_TCHAR 43
#define kstd_persistentCoreTypeId_k_Char16 44
#define kstd_persistentCoreTypeId_k_Char32 45
#define kstd_persistentCoreTypeId_kstd_unicodeString 46
#define kstd_persistentCoreTypeId_stringA 47
#define kstd_persistentCoreTypeId_stringW 48
#define kstd_persistentCoreTypeId_stringT 49
#define kstd_persistentCoreTypeId_string16 50
#define kstd_persistentCoreTypeId_string32 51

/* ---- Records ------------------------------------------------------------------- */

typedef struct kstd_persistentPropertyBag kstd_persistentPropertyBag;
typedef struct kstd_persistentPropertyNode kstd_persistentPropertyNode;
typedef struct kstd_persistentPropertyInfoEntryVector kstd_persistentPropertyInfoEntryVector;

/** A type descriptor: shares one type record, or is empty. */
struct kstd_persistentType {
    kstd_ptrhConst record;
};

/* Operation tables. Every slot returns a result code; a null slot means the
 * type does not offer that operation. `object` is an untyped pointer to an
 * object of the table's type. */

/** Object operations: a record's size and life cycle. */
typedef struct kstd_persistentObjectVtable {
    /** Size of one object in bytes. */
    kstd_result (*getElementSize)(uint32_t* size);
    kstd_result (*construct)(void* object);
    kstd_result (*constructCopy)(void* object, const void* source);
    kstd_result (*assign)(void* object, const void* source);
    kstd_result (*destruct)(void* object);
    /** Back to the constructed state. */
    kstd_result (*reset)(void* object);
    /** Allocates and constructs; *object gets the new object. */
    kstd_result (*newObject)(void** object);
    kstd_result (*newClone)(void** object, const void* source);
    /** Destroys and frees; *object becomes null. */
    kstd_result (*deleteObject)(void** object);
} kstd_persistentObjectVtable;

/** How values of a type move between objects, variants, properties and nodes. */
typedef struct kstd_persistentValueAccessVtable {
    /** Stores the object in the variant. */
    kstd_result (*setVariant)(kstd_persistentVariant* variant, const void* object);
    /** Copies the variant's object into object. */
    kstd_result (*getVariant)(const kstd_persistentVariant* variant, void* object);
    /** The variant's object. */
    kstd_result (*getVariantPtrConst)(const kstd_persistentVariant* variant, const void** object);
    /** Sets one named property of the object. */
    kstd_result (*setObjectProperty)(void* object, const char16_t* name, const kstd_persistentVariant* value);
    /** Gets the property whose name is text[start, start + length). */
    kstd_result (*getObjectPropertyUsingNameSubstr)(const void* object, const char16_t* text, int32_t start,
                                                    int32_t length, kstd_persistentProperty* property);
    /** The type's persistent property descriptors. */
    kstd_result (*getPropertyInfoSet)(kstd_persistentPropertyInfoSet* set);
    /** The type's own part of a transfer between object and bag. */
    kstd_result (*transferProperties)(void* object, kstd_persistentPropertyBag* bag);
    /** Called after an object's properties were loaded from a node. */
    kstd_result (*afterLoad)(void* object);
    /** Loads a whole object of a type without property info entries. */
    kstd_result (*loadPropertyNode)(void* object, const kstd_persistentPropertyNode* node);
} kstd_persistentValueAccessVtable;

/** Operations of a container object that holds an array of items. */
typedef struct kstd_persistentContainerVtable {
    kstd_result (*resize)(void* container, int64_t count);
    kstd_result (*getSize)(const void* container, intptr_t* count);
    kstd_result (*getBegin)(void* container, void** first);
    /** 1 and the element size when the elements lie at a fixed stride. */
    kstd_result (*getLayout)(uint32_t* isContiguous, uint32_t* stride);
    /** Steps *element to the next element. */
    kstd_result (*getNextElement)(void* container, void** element);
    /** Replaces the contents by copies of [first, end). Optional. */
    kstd_result (*assignElements)(void* container, const void* first, const void* end);
} kstd_persistentContainerVtable;

/*
 * Accessors of one declared property (thirteen words). Storing tries, in this
 * order, the store accessor, then the address accessor (or the second address
 * accessor), the variant getter, the member locator, and the enum and
 * bit-field getters. Composing loads through the direct load accessor, or
 * through the member locator and member load accessor. The entry type
 * registration registers the property's type; the further words are kept and
 * never called.
 */
typedef struct kstd_persistentPropertyAccessorSlots {
    kstd_result (*enumGetter)(const void* object, int64_t* value);                     /* word 0 */
    kstd_result (*bitfield32Getter)(const void* object, uint32_t* value);              /* word 1 */
    kstd_result (*bitfield64Getter)(const void* object, uint64_t* value);              /* word 2 */
    kstd_result (*secondAddressAccessor)(const void* object, const void** member);     /* word 3 */
    kstd_result (*addressAccessor)(const void* object, const void** member);           /* word 4 */
    kstd_result (*variantGetter)(const void* object, kstd_persistentVariant* value);   /* word 5 */
    kstd_result (*storeAccessor)(const void* object, kstd_persistentProperty* property); /* word 6 */
    kstd_result (*memberLocator)(void* object, void** first, void** second);           /* word 7 */
    kstd_result (*directLoadAccessor)(void* object, const kstd_persistentType* entryType,
                                      const kstd_persistentPropertyNode* node);         /* word 8 */
    kstd_result (*memberLoadAccessor)(void* object, void* first, void* second, const kstd_persistentType* entryType,
                                      const kstd_persistentPropertyNode* node);         /* word 9 */
    kstd_result (*entryTypeRegistration)(void);                                        /* word 10 */
    const void* further11;                                                             /* word 11 */
    const void* further12;                                                             /* word 12 */
} kstd_persistentPropertyAccessorSlots;

/** The thirteen accessor words, by name or by position. */
typedef union kstd_persistentPropertyAccessors {
    kstd_persistentPropertyAccessorSlots slots;
    const void* words[13];
} kstd_persistentPropertyAccessors;

/** One declared property of a registered type. */
typedef struct kstd_persistentPropertyInfoDefinition {
    const char16_t* name;
    uint32_t dataAccess;
    const char16_t* typeName;
    uint32_t typeDerivation;
    kstd_persistentPropertyAccessors accessors;
} kstd_persistentPropertyInfoDefinition;

/** A static property list given at registration. */
typedef struct kstd_persistentStaticPropertyList {
    const kstd_persistentPropertyInfoDefinition* definitions;
    uint32_t count;
} kstd_persistentStaticPropertyList;

/** The shared type record behind descriptors (a shared object). */
typedef struct kstd_persistentType_ {
    kstd_shared header;
    kstd_stringConst name;
    uint32_t derivation;
    /** 1 for a record made by registration; 0 for an unregistered name. */
    uint32_t isKnown;
    int32_t coreTypeId;
    uint32_t category;
    uint32_t hasPropertyInfoEntries;
    kstd_persistentPropertyInfoEntryVector* propertyInfoEntries;
    const kstd_persistentObjectVtable* objectVtable;
    const kstd_persistentValueAccessVtable* valueAccess;
    const kstd_typeDescriptorMinimalVtable* minimalVtable;
    uint32_t isContainer;
    const kstd_persistentContainerVtable* containerVtable;
    kstd_stringConst containedItemTypeName;
    /** 1 once containedItemType was looked up (published with release order). */
    uint32_t containedItemTypeResolved;
    kstd_persistentType containedItemType;
    uint32_t alwaysShareable;
    uint32_t enumWords[5];
    int32_t globalIndex;
} kstd_persistentType_;

/* ---- The type record ---------------------------------------------------------- */

/*
 * Life cycle of the record: construct initialises the shared header (type name
 * "kstd_persistentType_"), builds name, containedItemTypeName and
 * containedItemType and resets the fields (isKnown 0, coreTypeId -2, category
 * 7, globalIndex -1, the rest 0 or null). Assign clears isKnown first and
 * copies it last.
 */
VEXPERS_API kstd_result kstd_persistentType__construct(kstd_persistentType_* record);
VEXPERS_API kstd_result kstd_persistentType__constructCopy(kstd_persistentType_* record,
                                                           const kstd_persistentType_* source);
VEXPERS_API kstd_result kstd_persistentType__assign(kstd_persistentType_* record, const kstd_persistentType_* source);
VEXPERS_API kstd_result kstd_persistentType__destruct(kstd_persistentType_* record);
VEXPERS_API kstd_result kstd_persistentType__reset(kstd_persistentType_* record);
VEXPERS_API kstd_result kstd_persistentType__new(kstd_persistentType_** out);
VEXPERS_API kstd_result kstd_persistentType__newClone(kstd_persistentType_** out, const kstd_persistentType_* source);
VEXPERS_API kstd_result kstd_persistentType__delete(kstd_persistentType_** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentType_(kstd_persistentType_* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentType_(kstd_persistentType_** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentType_(kstd_result (*function)(kstd_persistentType_*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentType_(kstd_result (*function)(kstd_persistentType_**));

/* ---- The descriptor ----------------------------------------------------------- */

/* Life cycle (the family of vexpers/base.h): _construct makes an empty
 * handle, _assign and _constructCopy share the record, _reset empties the
 * handle. */
VEXPERS_API kstd_result kstd_persistentType_construct(kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentType_constructCopy(kstd_persistentType* type, const kstd_persistentType* source);
VEXPERS_API kstd_result kstd_persistentType_assign(kstd_persistentType* type, const kstd_persistentType* source);
VEXPERS_API kstd_result kstd_persistentType_destruct(kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentType_reset(kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentType_new(kstd_persistentType** out);
VEXPERS_API kstd_result kstd_persistentType_newClone(kstd_persistentType** out, const kstd_persistentType* source);
VEXPERS_API kstd_result kstd_persistentType_delete(kstd_persistentType** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentType(kstd_persistentType* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentType(kstd_persistentType** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentType(kstd_result (*function)(kstd_persistentType*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentType(kstd_result (*function)(kstd_persistentType**));

/*
 * Setting a descriptor (each replaces what it held). By core type id
 * (0..51, else 0x800040C5; derivations 4 and 5 of core types are not
 * registered: 0x800040C8), or by name: a registered (name, derivation) gives
 * its record, an unregistered one a fresh record with isKnown 0 (a null or
 * empty name fails with 0x800040C6). assignDifferentDerivation takes the
 * source's name (registered or not) with another derivation.
 */
VEXPERS_API kstd_result kstd_persistentType_resetCoreTypeId(kstd_persistentType* type, int32_t coreTypeId);
VEXPERS_API kstd_result kstd_persistentType_resetCoreTypeIdAndDerivation(kstd_persistentType* type,
                                                                         int32_t coreTypeId, uint32_t derivation);
VEXPERS_API kstd_result kstd_persistentType_resetTypeName(kstd_persistentType* type, const char16_t* name);
VEXPERS_API kstd_result kstd_persistentType_resetTypeNameAndDerivation(kstd_persistentType* type,
                                                                       const char16_t* name, uint32_t derivation);
VEXPERS_API kstd_result kstd_persistentType_assignDifferentDerivation(kstd_persistentType* type,
                                                                      const kstd_persistentType* source,
                                                                      uint32_t derivation);

/*
 * Queries. Outputs are set to their none value first (null name, derivation 0,
 * isKnown 0, core id -2, category 7, flags 0, globalIndex -1, order 0). An
 * empty handle fails with 0x80004100; the queries that need a registered
 * record (core id, category, isCoreTypeOrEnum, shareability, globalIndex)
 * fail with 0x800040C8 on a record with isKnown 0. getTypeName gives the
 * interned text, valid while the record lives.
 * getIsCoreTypeOrEnum: 1 for a core type of derivation 0, or an enum of
 * derivation 0 or 4. getIsObjectShareable: 1 when the type is always
 * shareable, or when `object` answers the interface query for "kstd_shared"
 * through the type's minimal table (a null object, or a type without that
 * table, gives 0; a failing query is returned).
 * compare orders by name (null first, then by UTF-16 units) and then by
 * derivation: -1, 0 or +1; compareEqual is 1 exactly when compare gives 0.
 */
VEXPERS_API kstd_result kstd_persistentType_getTypeName(const kstd_persistentType* type, const char16_t** name);
VEXPERS_API kstd_result kstd_persistentType_getTypeDerivation(const kstd_persistentType* type, uint32_t* derivation);
VEXPERS_API kstd_result kstd_persistentType_getIsKnown(const kstd_persistentType* type, uint32_t* isKnown);
VEXPERS_API kstd_result kstd_persistentType_getCoreTypeId(const kstd_persistentType* type, int32_t* coreTypeId);
VEXPERS_API kstd_result kstd_persistentType_getTypeCategory(const kstd_persistentType* type, uint32_t* category);
VEXPERS_API kstd_result kstd_persistentType_getTypeCategoryAndDerivation(const kstd_persistentType* type,
                                                                         uint32_t* category, uint32_t* derivation);
VEXPERS_API kstd_result kstd_persistentType_getIsCoreTypeOrEnum(const kstd_persistentType* type, uint32_t* flag);
VEXPERS_API kstd_result kstd_persistentType_getIsAlwaysShareable(const kstd_persistentType* type, uint32_t* flag);
VEXPERS_API kstd_result kstd_persistentType_getIsObjectShareable(const kstd_persistentType* type, const void* object,
                                                                 uint32_t* flag);
VEXPERS_API kstd_result kstd_persistentType_getGlobalIndex(const kstd_persistentType* type, int32_t* globalIndex);
VEXPERS_API kstd_result kstd_persistentType_compare(const kstd_persistentType* type, const kstd_persistentType* other,
                                                    int32_t* order);
VEXPERS_API kstd_result kstd_persistentType_compareEqual(const kstd_persistentType* type,
                                                         const kstd_persistentType* other, uint32_t* equal);

/*
 * Object operations. Each fails on an empty descriptor (0x80004100) or an
 * unregistered record (0x800040C8) first.
 *   newObject / deleteObject: derivation 0, 1 or 4 (else 0x800040D6); no
 *     object table 0x800040C0; newObject deletes what *object holds first and
 *     uses the table's newObject, else element size + construct (0x800040C1
 *     when neither). deleteObject of null succeeds.
 *   newArray: count >= 0 (0x800040D7), derivation 2 or 5 (0x800040D6), *array
 *     null on entry (0x800040DA); allocates count x element size and constructs
 *     the elements in order; a failing element destroys those before it and
 *     frees the array (*array null).
 *   deleteArray: destroys the elements last first, decrementing *count after
 *     each; a failing destruct is returned with the array kept and *count the
 *     number of elements before the failing one; else frees (*count 0).
 *   getElementSize: the size of one value of the named type (0x800040C0 /
 *     0x800040C1 without table / slot, 0x800040DB for a size below 1).
 *   assignObjectFromVariant: copies the variant's object (category 7, same
 *     type, else 0x800040CD; null object 0x800040CC).
 *   setObjectPropertyFromVariant, getObjectPropertyUsingNameSubstr,
 *     getPersistentPropertyInfoSet: value access slots 3, 4 and 5 (no value
 *     access table 0x800040C0, no slot 0x800040C1; a null object 0x800040CC;
 *     a null or empty name, or a part [start, start + length) that is empty
 *     or not inside `text`, 0x800040C3). The property and the set are reset
 *     first.
 *   transferObjectPersistentProperties: empties a storing bag, then moves the
 *     object's declared properties into it (a loading bag fails with
 *     0x800040CA when it holds a property named like a loadable entry), then
 *     calls the type's transferProperties slot when set.
 *   queryInterfaceByTypename: through the type's minimal table (0x800040D4
 *     without one; a null object 0x800040CC, a null or empty name
 *     0x800040C6); *result is null first.
 *   getContainerVtableAndContainedItemType: for an array derivation the item
 *     type (derivation 0, or 4 for 5) with contiguous stride = element size
 *     and no table; for a container type its table, item type (looked up once)
 *     and layout; otherwise 0x800040D6.
 */
VEXPERS_API kstd_result kstd_persistentType_newObject(const kstd_persistentType* type, void** object);
VEXPERS_API kstd_result kstd_persistentType_deleteObject(const kstd_persistentType* type, void** object);
VEXPERS_API kstd_result kstd_persistentType_newArray(const kstd_persistentType* type, int32_t count, void** array);
VEXPERS_API kstd_result kstd_persistentType_deleteArray(const kstd_persistentType* type, int32_t* count,
                                                        void** array);
VEXPERS_API kstd_result kstd_persistentType_getElementSize(const kstd_persistentType* type, uint32_t* size);
VEXPERS_API kstd_result kstd_persistentType_assignObjectFromVariant(const kstd_persistentType* type, void* object,
                                                                    const kstd_persistentVariant* variant);
VEXPERS_API kstd_result kstd_persistentType_setObjectPropertyFromVariant(const kstd_persistentType* type,
                                                                         void* object, const char16_t* name,
                                                                         const kstd_persistentVariant* variant);
VEXPERS_API kstd_result kstd_persistentType_getObjectPropertyUsingNameSubstr(const kstd_persistentType* type,
                                                                             const void* object,
                                                                             const char16_t* text, int32_t start,
                                                                             int32_t length,
                                                                             kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentType_transferObjectPersistentProperties(const kstd_persistentType* type,
                                                                               void* object,
                                                                               kstd_persistentPropertyBag* bag);
VEXPERS_API kstd_result kstd_persistentType_queryInterfaceByTypename(const kstd_persistentType* type, void* object,
                                                                     const char16_t* name, void** result);
VEXPERS_API kstd_result kstd_persistentType_getPersistentPropertyInfoSet(const kstd_persistentType* type,
                                                                         kstd_persistentPropertyInfoSet* set);
VEXPERS_API kstd_result kstd_persistentType_getContainerVtableAndContainedItemType(
    const kstd_persistentType* type, uint32_t* isContiguous, uint32_t* stride,
    const kstd_persistentContainerVtable** table, kstd_persistentType* itemType);
/*
 * Composing: loads `object` (memory holding a constructed object of `type`)
 * from `node` and its subtree. A null type or node is a precondition fault;
 * a null object fails with 0x800040CC; an empty or unregistered type with
 * 0x80004100 / 0x800040C8.
 *   - A core type takes the core value of the node (its own value, or that
 *     of its child "value"), converted as the variant's typed gets convert;
 *     without one: 0x800040CD.
 *   - A type without property info entries is loaded by the load entry of
 *     its value access table (0x800040C1 when it has none).
 *   - A type with entries is loaded entry by entry: each entry that has a
 *     load accessor is matched by name to a child of the node (an enum or
 *     core type may also be loaded from the node itself) and loaded through
 *     its accessor; a member without a child keeps its value. Then the
 *     after-load entry of the value access table runs, when there is one.
 * The built-in types load as follows: a shared pointer's child "ptr" either
 * defines the pointee (created with the child's type, recorded in the node's
 * tree under the child's id before it loads, so that references inside it
 * resolve; a type that answers no "kstd_shared" interface fails with
 * 0x800040CD and the created object is deleted), or is a null-pointer leaf
 * (the pointer is reset), or references an id recorded before (0x800040DE
 * when none is; 0x80001E7F for an id defined twice); any other leaf fails
 * with 0x800040CD. A vector's child "items" must hold an array of the
 * vector's item type (an array of another item type: 0x800040CD; a value
 * that is not an array: 0x800040D6; no value: ksys_result_failure), read
 * through the node's container description, so arrays in containers and
 * arrays rebuilt from sections load alike.
 * The first failure ends composing and is returned: members loaded before it
 * keep their new values, the others their old ones; objects recorded in the
 * tree stay recorded; nothing else created is kept.
 * Depth: objects are loaded from a work stack, not by recursion, so a chain
 * of objects linked through shared pointers composes in constant native
 * stack. While a load accessor runs, a call of this function for memory
 * inside the object being loaded (the accessor's own member) checks its
 * arguments and loads core values and objects without entries at once, but
 * loads the entries of an object type right after the accessor returns and
 * before the enclosing object's next entry; its result is then that of the
 * part done during the call. A call for memory outside that object loads
 * everything before it returns (and so nests). The work stack holds one
 * frame per object being loaded on the current path of the tree (nested calls
 * on one thread count together): one more than
 * kstd_persistentPropertyTree_maxDepth, or than the node cap of the node's
 * tree, fails with kstd_persistentResult_nestingTooDeep; when memory runs out
 * first the call fails with ksys_result_outOfMemory.
 */
VEXPERS_API kstd_result kstd_persistentType_loadPropertyNode(const kstd_persistentType* type, void* object,
                                                             const kstd_persistentPropertyNode* node);

/* ---- Registry lookups ------------------------------------------------------------ */

/** The type of (name, derivation). Unregistered: 0x800040C8 when mustExist,
 *  else a fresh unregistered record (0x800040C6 for a null or empty name).
 *  `type` is emptied first and stays empty on failure. */
VEXPERS_API kstd_result kstd_persistentTypeGetType(const char16_t* name, uint32_t derivation, uint32_t mustExist,
                                                   kstd_persistentType* type);
/** The name of a core type (0x800040C5 outside 0..51, name null). */
VEXPERS_API kstd_result kstd_persistentTypeGetCoreTypeTypeName(int32_t coreTypeId, const char16_t** name);
/** The registered type of a core type id and derivation: 0x800040C5 outside
 *  0..51, else GetType with mustExist (0x800040C8 for the derivations 4 and
 *  5, which core types do not have); `type` is empty on failure. */
VEXPERS_API kstd_result kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(int32_t coreTypeId,
                                                                               uint32_t derivation,
                                                                               kstd_persistentType* type);
/**
 * The core type a plain scalar maps to: category 2 "k_Bool", 5
 * "kstd_unicodeString" (both with size 0), 0 and 1 the k_(U)IntN of size 1,
 * 2, 4 or 8, 3 "float" (4) or "double" (8). Categories 4, 6, 7, a size other
 * than 0 for categories 2 and 5, and derivations 4, 5 give 0x800040D6;
 * another size 0x80004104; another category 0x800040CB. `type` is emptied
 * first and stays empty on failure.
 */
VEXPERS_API kstd_result kstd_persistentTypeGetMatchingCoreType(uint32_t category, uint32_t size, uint32_t derivation,
                                                               kstd_persistentType* type);
/** 1 when `type` is registered with that category and derivation and (for
 *  categories other than 2 and 5) that element size; 0 for an unregistered
 *  record. The checks of GetMatchingCoreType come first (0x800040D6), and a
 *  failure to take the element size is returned (a reserved core type has
 *  none: 0x800040C0). */
VEXPERS_API kstd_result kstd_persistentTypeGetIsMatchingCoreType(uint32_t category, uint32_t size,
                                                                 uint32_t derivation, const kstd_persistentType* type,
                                                                 uint32_t* isMatching);
/** Every registered record, sorted by name and derivation. */
VEXPERS_API kstd_result kstd_persistentTypeGetAllTypes(kstd_vector_kstd_persistentType* types);

/* ---- Registration ---------------------------------------------------------------- */

/*
 * The registration functions return 0 at once when *registeredFlag is already
 * 1 (RegisterTypeObject's null object table and RegisterTypeObjectContainer's
 * null object or container table give 0x800040C0 even before that check).
 * Otherwise they check their tables (0x800040C0 for a missing required
 * table, 0x800040C1 for a missing required slot, 0x800040C6 for a null or
 * empty name), fail with 0x800040C2 when the name is registered already, make
 * the records of derivations 0 to 3 (and 4, 5 for an enum with a bit-field
 * output), build the property info entries of the static property lists,
 * construct *typeOut (the caller's own global handle, not constructed by the
 * caller) and set the flag to 1. They then register the types of the entries
 * and, for a container, the item type, still holding the registry (a failure
 * there is returned with the type registered and the flag at 1). Any earlier
 * failure leaves the flag at 0 and the registry as it was (no records or
 * entries of the type), so the registration may be retried.
 * The flag is read and set atomically (acquire / release), and *typeOut is
 * filled in before the flag is set, so a module may test its flag without a
 * lock. Two threads registering through one flag both succeed.
 */
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject(const char16_t* name,
                                                              const kstd_persistentObjectVtable* objectVtable,
                                                              const kstd_persistentValueAccessVtable* valueAccess,
                                                              const kstd_persistentStaticPropertyList* staticProperties,
                                                              uint32_t alwaysShareable, uint32_t* registeredFlag,
                                                              kstd_persistentType* typeOut);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObjectContainer(
    const char16_t* name, const kstd_persistentObjectVtable* objectVtable,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_persistentContainerVtable* containerVtable, const char16_t* containedItemTypeName,
    kstd_result (*registerContainedItemType)(void), uint32_t alwaysShareable, uint32_t* registeredFlag,
    kstd_persistentType* typeOut);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObjectDynamic(
    const char16_t* name, const kstd_persistentObjectVtable* objectVtable,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_typeDescriptorMinimalVtable* minimalVtable, uint32_t alwaysShareable, uint32_t* registeredFlag,
    kstd_persistentType* typeOut);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeEnum(
    const char16_t* name, uint32_t enumWord1, uint32_t enumWord2, uint32_t enumWord3, uint32_t enumWord4,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentValueAccessVtable* bitfieldValueAccess,
    const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_persistentStaticPropertyList* bitfieldStaticProperties, uint32_t* registeredFlag,
    uint32_t* bitfieldRegisteredFlag, kstd_persistentType* typeOut, kstd_persistentType* bitfieldTypeOut);

/* Core type registration: the core types are registered when the registry
 * starts, so these do nothing and return 0. */
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Int8(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Int8(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_UInt8(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_UInt8(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Int16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Int16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_UInt16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_UInt16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Int32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Int32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_UInt32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_UInt32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Int64(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Int64(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_UInt64(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_UInt64(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_IntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_IntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_UIntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_UIntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_short(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_short(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_ushort(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_ushort(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_int(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_int(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_uint(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_uint(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_long(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_long(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_ulong(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_ulong(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_size_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_size_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_ptrdiff_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_ptrdiff_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_float(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_float(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_double(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_double(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Bool(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Bool(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_bool(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_bool(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_char(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_char(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_uchar(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_uchar(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_schar(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_schar(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_wchar_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_wchar_t(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_TCHAR(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_TCHAR(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Char16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Char16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_k_Char32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_k_Char32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_unicodeString(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_unicodeString(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_stringA(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_stringA(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_stringW(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_stringW(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_stringT(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_stringT(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_string16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_string16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_string32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeCoreType_string32(void);

/*
 * Built-in object types: the shared pointers and the vectors of core items.
 * RegisterType_T and RegisterTypeObject_T register T once (later calls
 * return 0; failures have the codes of the registration functions above);
 * GetType_T assigns T's global descriptor to `type`, registering T first when
 * registerIfNeeded is not 0 (a failure of that is returned with `type`
 * unchanged; with 0 on an unregistered T the descriptor is empty).
 * Each declares one property: "ptr" (the pointee, pointer derivation) for
 * the shared pointers, "items" (an array of the item type) for the vectors.
 * Their value access answers from that declaration: setting a property of
 * the object (slot 3) fails with 0x800040CA, a lookup by name (slot 4) finds
 * the declared property or fails with 0x800040C9, and the info set (slot 5)
 * holds its descriptor.
 */
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_ptrh(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_ptrh(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_ptrh(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_ptrhConst(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_ptrhConst(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_ptrhConst(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector8s(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector8s(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector8s(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector8(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector8(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector8(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector16s(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector16s(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector16s(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector16(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector16(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector16(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector32s(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector32s(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector32s(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector32(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector32(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector32(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector64s(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector64s(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector64s(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector64(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector64(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector64(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vectorIntPtrs(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vectorIntPtrs(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vectorIntPtrs(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vectorIntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vectorIntPtr(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vectorIntPtr(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vectorf(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vectorf(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vectorf(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vectord(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vectord(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vectord(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vectorb(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vectorb(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vectorb(kstd_persistentType* type, uint32_t registerIfNeeded);
VEXPERS_API kstd_result kstd_persistentTypeRegisterType_kstd_vector_kstd_unicodeString(void);
VEXPERS_API kstd_result kstd_persistentTypeRegisterTypeObject_kstd_vector_kstd_unicodeString(void);
VEXPERS_API kstd_result kstd_persistentTypeGetType_kstd_vector_kstd_unicodeString(kstd_persistentType* type, uint32_t registerIfNeeded);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_TYPE_H */
