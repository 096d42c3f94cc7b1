// The shared array holder: one per array that a variant allocates, keeping
// the array alive while any variant (or copy of one) holds it.
#pragma once

#include "vexpers/variant.h"

namespace vexpers::variant {

// Allocates `count` constructed elements of the array type `type`
// (derivation 2 or 5) in a new holder and makes `owner` hold it; *data is
// the first element. Whatever `owner` held before is released first. A
// negative count fails with 0x800040D7, another derivation with 0x800040D6,
// a count beyond 32 bits with 0x800040DC. On failure nothing stays
// allocated, `owner` is empty and *data null.
kstd_result holdNewArray(kstd_ptrh* owner, const kstd_persistentType* type, int64_t count, void** data);

}  // namespace vexpers::variant
