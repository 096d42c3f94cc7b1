/*
 * vexpers/propertyinfo.h - property descriptors and the records that gather
 * them: info sets, type schemas and property info tables.
 *
 * A descriptor (kstd_persistentPropertyInfo) says what a property is without
 * holding its value: its interned name, its registered type, a data-access
 * tag chosen by the declaring code (default 2, never interpreted by the
 * library) and the id under which a property info table stores it (-1: none).
 */
#ifndef VEXPERS_PROPERTYINFO_H
#define VEXPERS_PROPERTYINFO_H

#include "vexpers/base.h"
#include "vexpers/recordvectors.h"
#include "vexpers/stringconst.h"
#include "vexpers/type.h"
#include "vexpers/vector.h"

VEXPERS_EXTERN_C_BEGIN

struct kstd_persistentPropertyInfo {
    /** Interned name: the null string, the empty string, or the registry's
     *  shared constant string for the text. */
    kstd_stringConst name;
    kstd_persistentType type;
    uint32_t dataAccess;
    int32_t globalIndex;
};

struct kstd_persistentPropertyInfoSet {
    kstd_vector_kstd_persistentPropertyInfo infos;
};

struct kstd_persistentTypeSchema {
    kstd_persistentPropertyInfoSet infoSet;
    int32_t globalIndex;
};

typedef struct kstd_persistentPropertyInfoTable {
    /** By id: the descriptor stored under it (a default one at a free id). */
    kstd_vector_kstd_persistentPropertyInfo infos;
    kstd_vector_kstd_persistentPropertyInfoSet infoSets;
    /** By id: 1 when the id is in use. */
    kstd_vector8 used;
    kstd_vector8 infoSetUsed;
    /** Highest id given out; -1 while none. */
    int32_t maxId;
    int32_t maxInfoSetId;
    /** The table's own lookup index over the stored descriptors (memory of
     *  the table; never touch it). Null until the first add and after a
     *  reset; finds give the same answers with or without it. */
    void* index;
} kstd_persistentPropertyInfoTable;

/* ---- Property descriptor ----------------------------------------------------- */

/*
 * Life cycle. _construct gives data access 2, global index -1, the null name
 * and an empty type. _assign copies data access, global index, name and type
 * (assigning a record to itself does nothing); _reset returns to the
 * constructed state. _constructCopy and the heap forms are those of the
 * life-cycle family (vexpers/base.h).
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfo_construct(kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_constructCopy(kstd_persistentPropertyInfo* info,
                                                                  const kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_assign(kstd_persistentPropertyInfo* info,
                                                           const kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_destruct(kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_reset(kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_new(kstd_persistentPropertyInfo** out);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_newClone(kstd_persistentPropertyInfo** out,
                                                             const kstd_persistentPropertyInfo* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_delete(kstd_persistentPropertyInfo** out);

/*
 * Setting. Each sets the data access, then the name, then the type, and stops
 * at the first failure: what was set before it stays set (a failed type lookup
 * leaves the new data access and name). The global index is not touched.
 * `name` may be null (the null name) or empty (the empty name); any other text
 * is interned in the registry's name table, so descriptors of one name share
 * one string.
 *   _resetNameTypeAccess: copies `type` (which must not be null).
 *   _resetNameCoreTypeIdAccess: the registered type of the core type id
 *     (0x800040C5 outside 0..51).
 *   _resetNameTypeNameDerivationAccess: the registered type of (typeName,
 *     derivation), or an unregistered type of that name when nobody registered
 *     it (0x800040C6 for a null or empty type name).
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfo_resetNameTypeAccess(kstd_persistentPropertyInfo* info,
                                                                        const char16_t* name,
                                                                        const kstd_persistentType* type,
                                                                        uint32_t dataAccess);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(kstd_persistentPropertyInfo* info,
                                                                              const char16_t* name,
                                                                              int32_t coreTypeId,
                                                                              uint32_t dataAccess);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(
    kstd_persistentPropertyInfo* info, const char16_t* name, const char16_t* typeName, uint32_t typeDerivation,
    uint32_t dataAccess);

/*
 * Comparing; *equal is 0 or 1.
 *   _compareEqual: equal data access, equal global index, equal names and
 *     equal types (kstd_persistentType_compareEqual), tested in that order up
 *     to the first difference. Comparing types fails with 0x80004100 when
 *     either type is empty; that failure is returned (*equal 0).
 *   _compareEqualIgnoreGlobalIndex: the same without the global index.
 *   _compareEqualPropertyName: the names only.
 *   _doesNameMatch: `text` may be null. When the text or the name is null,
 *     1 only when both are; else 1 exactly when the texts are equal unit for
 *     unit (case matters; no prefix or pattern match).
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfo_compareEqual(const kstd_persistentPropertyInfo* info,
                                                                 const kstd_persistentPropertyInfo* other,
                                                                 uint32_t* equal);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(
    const kstd_persistentPropertyInfo* info, const kstd_persistentPropertyInfo* other, uint32_t* equal);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_compareEqualPropertyName(const kstd_persistentPropertyInfo* info,
                                                                             const kstd_persistentPropertyInfo* other,
                                                                             uint32_t* equal);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_doesNameMatch(const kstd_persistentPropertyInfo* info,
                                                                  const char16_t* text, uint32_t* match);

/*
 * Reading. Outputs are set to their none value first.
 *   _getName: the name's own text (null for the null name), valid while the
 *     name is unchanged.
 *   _getNameStringConst, _getType: assign the name or the type to the
 *     caller's constructed record.
 *   _getTypeName, _getTypeDerivation, _getTypeCategory, _getCoreTypeId: the
 *     type's answers (kstd_persistentType_getTypeName and so on), with their
 *     failures: 0x80004100 for an empty type, 0x800040C8 for the category
 *     and core type id of an unregistered type.
 *   _getDataAccess, _getGlobalIndex: the field; always succeed.
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getName(const kstd_persistentPropertyInfo* info,
                                                            const char16_t** name);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getNameStringConst(const kstd_persistentPropertyInfo* info,
                                                                       kstd_stringConst* name);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getType(const kstd_persistentPropertyInfo* info,
                                                            kstd_persistentType* type);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getTypeName(const kstd_persistentPropertyInfo* info,
                                                                const char16_t** typeName);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getTypeDerivation(const kstd_persistentPropertyInfo* info,
                                                                      uint32_t* derivation);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getTypeCategory(const kstd_persistentPropertyInfo* info,
                                                                    uint32_t* category);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getCoreTypeId(const kstd_persistentPropertyInfo* info,
                                                                  int32_t* coreTypeId);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getDataAccess(const kstd_persistentPropertyInfo* info,
                                                                  uint32_t* dataAccess);
VEXPERS_API kstd_result kstd_persistentPropertyInfo_getGlobalIndex(const kstd_persistentPropertyInfo* info,
                                                                   int32_t* globalIndex);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyInfo(kstd_persistentPropertyInfo* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyInfo(kstd_persistentPropertyInfo** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyInfo(kstd_result (*function)(kstd_persistentPropertyInfo*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyInfo(
    kstd_result (*function)(kstd_persistentPropertyInfo**));

/* ---- Info set and type schema ---------------------------------------------------- */

/*
 * Life cycle of the info set (an ordered list of descriptors) and of the type
 * schema (an info set with a global index of its own, -1 after construct and
 * reset): the same family and heap forms as the descriptor. _reset of a set
 * clears its list.
 *
 * _compareEqual of two sets: *equal 1 when both lists have the same length
 * and every pair compares equal by kstd_persistentPropertyInfo_compareEqual
 * (global indexes included); a failing element comparison is returned.
 * _compareEqual of two schemas: 0 when their global indexes differ, else
 * the comparison of their sets; _compareEqualIgnoreGlobalIndex ignores the
 * schema's own index only (the descriptors' indexes still count).
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_construct(kstd_persistentPropertyInfoSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_constructCopy(kstd_persistentPropertyInfoSet* set,
                                                                     const kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_assign(kstd_persistentPropertyInfoSet* set,
                                                              const kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_destruct(kstd_persistentPropertyInfoSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_reset(kstd_persistentPropertyInfoSet* set);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_new(kstd_persistentPropertyInfoSet** out);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_newClone(kstd_persistentPropertyInfoSet** out,
                                                                const kstd_persistentPropertyInfoSet* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_delete(kstd_persistentPropertyInfoSet** out);
VEXPERS_API kstd_result kstd_persistentPropertyInfoSet_compareEqual(const kstd_persistentPropertyInfoSet* set,
                                                                    const kstd_persistentPropertyInfoSet* other,
                                                                    uint32_t* equal);

VEXPERS_API kstd_result kstd_persistentTypeSchema_construct(kstd_persistentTypeSchema* schema);
VEXPERS_API kstd_result kstd_persistentTypeSchema_constructCopy(kstd_persistentTypeSchema* schema,
                                                                const kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_persistentTypeSchema_assign(kstd_persistentTypeSchema* schema,
                                                         const kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_persistentTypeSchema_destruct(kstd_persistentTypeSchema* schema);
VEXPERS_API kstd_result kstd_persistentTypeSchema_reset(kstd_persistentTypeSchema* schema);
VEXPERS_API kstd_result kstd_persistentTypeSchema_new(kstd_persistentTypeSchema** out);
VEXPERS_API kstd_result kstd_persistentTypeSchema_newClone(kstd_persistentTypeSchema** out,
                                                           const kstd_persistentTypeSchema* source);
VEXPERS_API kstd_result kstd_persistentTypeSchema_delete(kstd_persistentTypeSchema** out);
VEXPERS_API kstd_result kstd_persistentTypeSchema_compareEqual(const kstd_persistentTypeSchema* schema,
                                                               const kstd_persistentTypeSchema* other,
                                                               uint32_t* equal);
VEXPERS_API kstd_result kstd_persistentTypeSchema_compareEqualIgnoreGlobalIndex(
    const kstd_persistentTypeSchema* schema, const kstd_persistentTypeSchema* other, uint32_t* equal);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyInfoSet(kstd_persistentPropertyInfoSet* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyInfoSet(kstd_persistentPropertyInfoSet** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyInfoSet(
    kstd_result (*function)(kstd_persistentPropertyInfoSet*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyInfoSet(
    kstd_result (*function)(kstd_persistentPropertyInfoSet**));
VEXPERS_API void ksys_typeCheck_kstd_persistentTypeSchema(kstd_persistentTypeSchema* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentTypeSchema(kstd_persistentTypeSchema** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentTypeSchema(kstd_result (*function)(kstd_persistentTypeSchema*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentTypeSchema(
    kstd_result (*function)(kstd_persistentTypeSchema**));

/* ---- Property info table ------------------------------------------------------------ */

/*
 * A store of distinct descriptors under dense ids. Each stored descriptor
 * carries its id as its global index; no two ids in use hold descriptors
 * equal when the global index is ignored (name, type and data access).
 *
 * Life cycle: the same family and heap forms as the descriptor. _reset
 * empties the table and restarts automatic ids at 0. A failed _assign may
 * leave the target partly assigned with maxId -1; reset or assign it again.
 *
 * _addPropertyInfo(table, info, outInfo, id, added): finds `info`, ignoring
 *   its global index, and gives the lowest id holding it (*added 0);
 *   otherwise stores it under the next automatic id (one past the highest id
 *   given out so far, from 0) with *added 1. outInfo (the stored descriptor,
 *   with its id as global index), id and added are optional.
 * _addPropertyInfoWithId(table, info, wantedId, outInfo): the same, but a
 *   descriptor not yet present is stored under wantedId when it is 0 or more
 *   (ids skipped below it stay free, and automatic ids continue after the
 *   highest id given out); a wanted id in use by another descriptor fails
 *   with 0x80004102.
 * Both fail with 0x80004103 when the wanted id is 0x7FFFFFFF or the highest
 *   id is 0x7FFFFFFE or more, and leave the table unchanged on any failure.
 * _findPropertyInfo(table, info, outInfo, id): the lowest id holding `info`,
 *   or -1 (success) when none does. outInfo is optional.
 * _getPropertyInfoById(table, id, outInfo): a copy of the descriptor stored
 *   under `id` (0x80004101 when the id is not in use).
 * _getAllPropertyInfos(table, infos): replaces the vector's contents with
 *   copies of the stored descriptors in ascending id order.
 * Outputs are reset first (ids -1, flags 0). All return 0x800040DF when the
 * table's parallel vectors disagree in length. Comparing a descriptor that
 * has an empty type with a stored one of the same name and data access fails
 * with 0x80004100.
 */
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_construct(kstd_persistentPropertyInfoTable* table);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_constructCopy(kstd_persistentPropertyInfoTable* table,
                                                                       const kstd_persistentPropertyInfoTable* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_assign(kstd_persistentPropertyInfoTable* table,
                                                                const kstd_persistentPropertyInfoTable* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_destruct(kstd_persistentPropertyInfoTable* table);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_reset(kstd_persistentPropertyInfoTable* table);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_new(kstd_persistentPropertyInfoTable** out);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_newClone(kstd_persistentPropertyInfoTable** out,
                                                                  const kstd_persistentPropertyInfoTable* source);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_delete(kstd_persistentPropertyInfoTable** out);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_addPropertyInfo(kstd_persistentPropertyInfoTable* table,
                                                                         const kstd_persistentPropertyInfo* info,
                                                                         kstd_persistentPropertyInfo* outInfo,
                                                                         int32_t* id, uint32_t* added);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_addPropertyInfoWithId(
    kstd_persistentPropertyInfoTable* table, const kstd_persistentPropertyInfo* info, int32_t wantedId,
    kstd_persistentPropertyInfo* outInfo);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_findPropertyInfo(
    const kstd_persistentPropertyInfoTable* table, const kstd_persistentPropertyInfo* info,
    kstd_persistentPropertyInfo* outInfo, int32_t* id);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_getPropertyInfoById(
    const kstd_persistentPropertyInfoTable* table, int32_t id, kstd_persistentPropertyInfo* outInfo);
VEXPERS_API kstd_result kstd_persistentPropertyInfoTable_getAllPropertyInfos(
    const kstd_persistentPropertyInfoTable* table, kstd_vector_kstd_persistentPropertyInfo* infos);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyInfoTable(kstd_persistentPropertyInfoTable* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyInfoTable(kstd_persistentPropertyInfoTable** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyInfoTable(
    kstd_result (*function)(kstd_persistentPropertyInfoTable*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyInfoTable(
    kstd_result (*function)(kstd_persistentPropertyInfoTable**));

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_PROPERTYINFO_H */
