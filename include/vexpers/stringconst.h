/*
 * vexpers/stringconst.h - constant strings and the interning table.
 *
 * kstd_stringConst is an immutable UTF-16 text whose copies share one
 * reference-counted character holder: copying never copies characters. It has
 * three states: the null string (no text: chars null), the empty string (chars
 * points at the record's own emptyChar) and a text (chars points into the
 * holder). Because the empty state points into the record itself, a record
 * must never be copied bytewise: use _assign / _constructCopy (the record
 * vectors do).
 *
 * kstd_stringConstTable interns texts under dense ids: each distinct text is
 * stored once, found by hash within a fixed number of bins, or by id.
 */
#ifndef VEXPERS_STRINGCONST_H
#define VEXPERS_STRINGCONST_H

#include "vexpers/base.h"
#include "vexpers/recordvectors.h"
#include "vexpers/shared.h"
#include "vexpers/vector.h"

VEXPERS_EXTERN_C_BEGIN

struct kstd_stringConst {
    /** Holder of the characters; empty for the null and the empty string. */
    kstd_ptrhConst holder;
    /** Null, this record's emptyChar, or the holder's text. */
    const char16_t* chars;
    /** Length in units (terminator not counted); 0 for null and empty. */
    int32_t length;
    /** Always 0: the text of the empty string. */
    char16_t emptyChar;
};

/*
 * Life cycle. _construct and _constructNullString make the null string,
 * _constructEmptyString the empty string; _constructCopy and _assign share the
 * source's holder (assigning a record to itself does nothing); _reset and
 * _resetNullString drop the holder and give the null string, _resetEmptyString
 * the empty string; _destruct drops the holder. _new gives the null string;
 * the other heap forms are those of the life-cycle family (vexpers/base.h).
 * A failed _assign leaves the record as the null string.
 */
VEXPERS_API kstd_result kstd_stringConst_construct(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_constructNullString(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_constructEmptyString(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_constructCopy(kstd_stringConst* string, const kstd_stringConst* source);
VEXPERS_API kstd_result kstd_stringConst_assign(kstd_stringConst* string, const kstd_stringConst* source);
VEXPERS_API kstd_result kstd_stringConst_destruct(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_new(kstd_stringConst** out);
VEXPERS_API kstd_result kstd_stringConst_newClone(kstd_stringConst** out, const kstd_stringConst* source);
VEXPERS_API kstd_result kstd_stringConst_delete(kstd_stringConst** out);
VEXPERS_API kstd_result kstd_stringConst_reset(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_resetNullString(kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConst_resetEmptyString(kstd_stringConst* string);

/**
 * Copies `text` into a new holder. A null text gives the null string, an
 * empty text the empty string (no holder, no allocation). On an allocation
 * failure the record is unchanged; if copying the characters fails, the
 * record reads as the null string.
 */
VEXPERS_API kstd_result kstd_stringConst_assignString(kstd_stringConst* string, const char16_t* text);
/** The text: null for the null string, a pointer to a 0 unit for the empty
 *  string. Valid while a record sharing the holder keeps it. */
VEXPERS_API kstd_result kstd_stringConst_getString(const kstd_stringConst* string, const char16_t** text);

/*
 * Comparison: null orders before every text (the empty one included), two
 * null strings are equal, texts compare by unsigned 16-bit units (a proper
 * prefix is smaller): *order is -1, 0 or +1. `text` may be null. The equal
 * forms store 1 when the order is 0. These never fail.
 */
VEXPERS_API kstd_result kstd_stringConst_compareString(const kstd_stringConst* string, const char16_t* text,
                                                       int32_t* order);
VEXPERS_API kstd_result kstd_stringConst_compare(const kstd_stringConst* string, const kstd_stringConst* other,
                                                 int32_t* order);
VEXPERS_API kstd_result kstd_stringConst_compareEqualString(const kstd_stringConst* string, const char16_t* text,
                                                            uint32_t* equal);
VEXPERS_API kstd_result kstd_stringConst_compareEqual(const kstd_stringConst* string, const kstd_stringConst* other,
                                                      uint32_t* equal);
/** h = 5381; h = h * 33 + unit for each UTF-16 unit (mod 2^32). Null and
 *  empty give 5381; "abc" gives 193485963. */
VEXPERS_API kstd_result kstd_stringConst_hash(const kstd_stringConst* string, uint32_t* hash);

VEXPERS_API void ksys_typeCheck_kstd_stringConst(kstd_stringConst* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_stringConst(kstd_stringConst** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_stringConst(kstd_result (*function)(kstd_stringConst*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_stringConst(kstd_result (*function)(kstd_stringConst**));

/* ---- Interning table ------------------------------------------------------------ */

typedef struct kstd_stringConstTable {
    /** One vector per bin: the strings whose hash falls in it, in order of adding. */
    kstd_vector_vector_kstd_stringConst bins;
    /** Parallel to bins: the id of each string. */
    kstd_vector_vectorIntPtrs binIds;
    /** Parallel to bins: the hash of each string, compared before the texts
     *  so that a bin scan touches no characters of other texts. */
    kstd_vector_vectorIntPtrs binHashes;
    /** By id: 1 when the id holds a string. */
    kstd_vector8 used;
    /** By id: the stored string (the null string at a free id). */
    kstd_vector_kstd_stringConst strings;
    /** Highest id given out; -1 while empty. */
    int32_t maxId;
    /** numBins - 1 for a power-of-two bin count above 1, else 0 (bins by remainder). */
    uint32_t binMask;
} kstd_stringConstTable;

/*
 * Life cycle: _construct (no bins yet: call _resetNumBins before any add or
 * find), _constructCopy, _assign (copies share the source's holders), _destruct,
 * _new, _newClone, _delete; _reset empties the table and removes its bins.
 */
VEXPERS_API kstd_result kstd_stringConstTable_construct(kstd_stringConstTable* table);
VEXPERS_API kstd_result kstd_stringConstTable_constructCopy(kstd_stringConstTable* table,
                                                            const kstd_stringConstTable* source);
VEXPERS_API kstd_result kstd_stringConstTable_assign(kstd_stringConstTable* table, const kstd_stringConstTable* source);
VEXPERS_API kstd_result kstd_stringConstTable_destruct(kstd_stringConstTable* table);
VEXPERS_API kstd_result kstd_stringConstTable_new(kstd_stringConstTable** out);
VEXPERS_API kstd_result kstd_stringConstTable_newClone(kstd_stringConstTable** out, const kstd_stringConstTable* source);
VEXPERS_API kstd_result kstd_stringConstTable_delete(kstd_stringConstTable** out);
VEXPERS_API kstd_result kstd_stringConstTable_reset(kstd_stringConstTable* table);
/** Empties the table and gives it `numBins` bins (at least 1: a smaller value
 *  is a precondition fault). */
VEXPERS_API kstd_result kstd_stringConstTable_resetNumBins(kstd_stringConstTable* table, int32_t numBins);

/*
 * Finding and adding. The outputs are optional (null: not wanted) except
 * findString's id; on entry the out string is reset to null, the id set to -1
 * and the added flag to 0. A present text is returned with its id (added 0);
 * a missing one is added under the next id (maxId + 1), or under `wantedId`
 * for _addStringWithId (a wanted id already in use by another text fails with
 * ksys_result_failure and changes nothing; ids below a wanted one stay free).
 * Null and empty texts are entries of their own. _addStringConst shares the
 * given string's holder instead of copying its characters. _findString never
 * adds: a missing text gives id -1 and success. A failed add leaves the
 * table as it was (no half-made entry, no id used up); an automatic id past
 * INT32_MAX fails with ksys_result_invalidSize.
 */
VEXPERS_API kstd_result kstd_stringConstTable_addString(kstd_stringConstTable* table, const char16_t* text,
                                                        kstd_stringConst* string, int32_t* id, uint32_t* added);
VEXPERS_API kstd_result kstd_stringConstTable_addStringConst(kstd_stringConstTable* table,
                                                             const kstd_stringConst* source, kstd_stringConst* string,
                                                             int32_t* id, uint32_t* added);
VEXPERS_API kstd_result kstd_stringConstTable_addStringWithId(kstd_stringConstTable* table, const char16_t* text,
                                                              int32_t wantedId, kstd_stringConst* string);
VEXPERS_API kstd_result kstd_stringConstTable_findString(kstd_stringConstTable* table, const char16_t* text,
                                                         kstd_stringConst* string, int32_t* id);
/** The string stored under `id` (both outputs optional); an id that is
 *  negative, too large or free fails with ksys_result_failure. */
VEXPERS_API kstd_result kstd_stringConstTable_getStringById(kstd_stringConstTable* table, int32_t id,
                                                            kstd_stringConst* string, const char16_t** text);
/** Every stored string, bin 0 first and in order of adding within a bin. */
VEXPERS_API kstd_result kstd_stringConstTable_getAllStrings(kstd_stringConstTable* table,
                                                            kstd_vector_kstd_stringConst* strings);

VEXPERS_API void ksys_typeCheck_kstd_stringConstTable(kstd_stringConstTable* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_stringConstTable(kstd_stringConstTable** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_stringConstTable(kstd_result (*function)(kstd_stringConstTable*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_stringConstTable(kstd_result (*function)(kstd_stringConstTable**));

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_STRINGCONST_H */
