// A bag's name index: an open-addressing hash table from a property name to
// the slot that holds it, kept beside the bag's ordered slots so that adding
// n properties and looking each up costs O(n), not O(n^2).
//
// The index answers exactly as the scan of the properties in use from the
// first would: it records the slots in the order they were added, and a
// lookup probes from the name's home position and stops at the first slot
// whose name equals the text, which (with no removals) is the earliest one.
// It describes the first `count` slots and knows that count; an index whose
// count differs from the bag's (the bag was changed without it) is stale and
// is never consulted. Its memory comes from ksys_memory_*; it allocates only
// in prepare(), which an add calls before it changes anything, so that a
// failure to allocate fails the add all-or-nothing.
#pragma once

#include <cstdint>

#include "vexpers/property.h"

namespace vexpers::property::nameindex {

// Bags with fewer properties in use are scanned without an index.
inline constexpr int32_t buildThreshold = 16;

// The slot in [0, count) whose name is text[0, length), or -1; false when the
// index is absent or stale (the caller scans instead).
bool find(const void* index, const kstd_persistentProperty* slots, int32_t count, const char16_t* text,
          int32_t length, int32_t* slot);

// Makes *index describe slots [0, count) with room to record one more slot
// without allocating: builds it when it is absent or stale, grows it when it
// is full. ksys_result_outOfMemory when memory ran out (*index is then null,
// or the earlier index that still describes the slots).
kstd_result prepare(void** index, const kstd_persistentProperty* slots, int32_t count);

// Records `slot`, just added after the `slot` slots the index describes,
// in the room prepare() made. An index that is stale or has no room is
// dropped.
void append(void** index, const kstd_persistentProperty* slots, int32_t slot);

// Frees the index; *index becomes null.
void release(void** index);

}  // namespace vexpers::property::nameindex
