// The parts of the object registry that the tree's life cycle uses.
#pragma once

#include "vexpers/tree.h"

namespace vexpers::tree {

// The id findObject gives the next new object: one past the highest id in use
// or ever given to the registry since it was last cleared.
int64_t nextObjectId(const kstd_persistentPropertyTree* tree);

// Clears both vectors (releasing the objects), the registry's index and its
// side table; the first failure is returned after everything went.
kstd_result forgetObjects(kstd_persistentPropertyTree* tree);

// Frees the memory of the index and side table (after forgetObjects).
void releaseObjectIndex(kstd_persistentPropertyTree* tree);

}  // namespace vexpers::tree
