// The load accessors that composing gives the built-in object types: the
// direct load accessor of the shared pointers' entry "ptr" and the member
// load accessor of the vectors' entry "items".
#pragma once

#include "vexpers/tree.h"

namespace vexpers::tree {

// Loads a kstd_ptrh (respectively kstd_ptrhConst) from the node of its entry
// "ptr": a compound node defines the pointee (created with the node's type,
// recorded under the node's id before it is loaded, then loaded from the
// node); a null-pointer leaf resets the pointer; a reference leaf points it
// at the object recorded under its id (0x800040DE when there is none). Any
// other leaf, and a pointee whose type offers no "kstd_shared" interface,
// fail with 0x800040CD; the created object is then deleted again.
kstd_result loadSharedPointer(void* object, const kstd_persistentType* entryType,
                              const kstd_persistentPropertyNode* node);
kstd_result loadSharedPointerConst(void* object, const kstd_persistentType* entryType,
                                   const kstd_persistentPropertyNode* node);

// Replaces the items of a vector (`container`, with its container table
// `table`) with the items of the node's array, read through the node's
// container description, so that arrays living in containers (a decomposed
// tree) and arrays allocated from sections load alike. The entry type must
// be a core array type (0x800040C5), the node must hold an array (else the
// container description's 0x800040D6) whose items are of that core type
// (0x800040CD); a negative count fails with
// 0x800040D7, missing items with 0x800040D8, a null table with 0x800040C0 and
// a table without assignElements with 0x800040C1.
// The direct load accessor of a shared-pointer type's entry "ptr".
template <class P>
struct SharedPointerLoad;
template <>
struct SharedPointerLoad<kstd_ptrh> {
    static constexpr auto load = loadSharedPointer;
};
template <>
struct SharedPointerLoad<kstd_ptrhConst> {
    static constexpr auto load = loadSharedPointerConst;
};

kstd_result loadVectorItems(void* object, void* container, void* table, const kstd_persistentType* entryType,
                            const kstd_persistentPropertyNode* node);

}  // namespace vexpers::tree
