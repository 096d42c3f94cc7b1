// The lookup index of a property info table. The table's find is defined as
// a walk over the ids in ascending order that stops at the first stored
// descriptor equal to the wanted one (name, type and data access), or at the
// first comparison that fails (comparing an empty type fails). The index
// gives the same answer without the walk:
//
//   key (name, data access)               -> lowest id with that name and access
//   key (name, data access), empty type   -> lowest such id whose type is empty
//   key (name, data access, type)         -> lowest such id with an equal type
//
// Only ids with the same name and data access reach the type comparison in
// the walk, so these three lowest ids decide both the match and the failure.
//
// The index is an open-addressing hash table in one block of ksys_memory,
// owned through the table's `index` field. A null index is always valid:
// the find then walks the ids. Slots hold ids only (never pointers), so a
// copy of a table can copy its index block unchanged.
#pragma once

#include "vexpers/propertyinfo.h"

namespace vexpers::property {

// Finds `info` in `table` as the walk above would: *id is the lowest
// matching id or -1; a failing comparison is returned (with *id -1).
// The caller has checked that `infos` and `used` have the same length.
kstd_result findInTable(const kstd_persistentPropertyInfoTable* table, const kstd_persistentPropertyInfo* info,
                        int32_t* id);

// Makes sure that adding one more id cannot need memory: builds the index
// from the table's ids when it has none, or grows it. Changes nothing else.
kstd_result reserveIndexForOneMore(kstd_persistentPropertyInfoTable* table);

// Records the descriptor just stored under `id` (after reserveIndexForOneMore).
void addToIndex(kstd_persistentPropertyInfoTable* table, int32_t id);

// A copy of `table`'s index block (null when it has none) into *copy.
kstd_result cloneIndex(const kstd_persistentPropertyInfoTable* table, void** copy);

// Frees the index; the table then finds by walking until its next add.
void freeIndex(kstd_persistentPropertyInfoTable* table);

}  // namespace vexpers::property
