// The processor's index of the shared objects its bag walks have met: from a
// whole-object pointer to the first position in `sharedObjects` whose value
// has that whole-object pointer, which is the answer of the linear search
// from the start of the list. Objects held by value are appended like any
// other, so a later pointer to one of them finds its first position too.
//
// The index is an open-addressing hash table in one block of the memory
// service, owned through the processor's `sharedIndex`. It knows how many
// positions of the list it describes; when that differs from the list's size
// (the list was changed without it) it is rebuilt from the list before use.
// It allocates only in prepare(), which the caller runs before appending to
// the list, so a failed allocation leaves list and index as they were.
#pragma once

#include "vexpers/tree.h"

namespace vexpers::tree::sharedindex {

// Whether the value is a shareable object and, if so, its whole-object
// pointer (the whole shared object when the value's shared pointer holds
// one, else the object pointer) and whether it is an object held by value
// (object category, value derivation). *whole is null for a value that is
// not shareable. Failing type queries are returned.
kstd_result wholeObjectOf(const kstd_persistentVariant* value, const void** whole, bool* heldByValue);

// Makes the index describe every position of `objects`, with room for one
// more key: ksys_result_outOfMemory when memory ran out (the index is then
// absent or still the one that described the list).
kstd_result prepare(void** index, const kstd_vector_kstd_persistentVariant* objects);

// The first position recorded for `whole`, or -1 (after prepare()).
int32_t find(const void* index, const void* whole);

// Records that position `position` (the list's new last one) holds `whole`,
// unless an earlier position already does (after prepare()).
void record(void* index, const void* whole, int32_t position);

// Frees the index; *index becomes null.
void release(void** index);

}  // namespace vexpers::tree::sharedindex
