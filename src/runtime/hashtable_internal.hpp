// What the library's own code needs of the hash table beyond its exported
// functions.
#pragma once

#include "vexpers/containers.h"

namespace vexpers::runtime {

// Removes the entry of `key`, destroying its key and value; nothing when the
// table holds no such key. Allocates nothing, so it cannot fail for memory.
kstd_result removeFromHashtable(kstd_hashtable* table, const void* key);

}  // namespace vexpers::runtime
