// Internal access to the type record behind a descriptor, shared by the
// descriptor, the registry and the code that dispatches through a type's
// operation tables.
#pragma once

#include "vexpers/type.h"

namespace vexpers::types {

inline constexpr char16_t recordTypename[] = u"kstd_persistentType_";

// The record a descriptor holds. An empty descriptor fails with
// kstd_persistentResult_typeEmpty; with `mustBeRegistered`, a record made for
// an unregistered name fails with kstd_persistentResult_typeNotRegistered.
// *record is null on failure.
kstd_result resolveRecord(const kstd_persistentType* type, bool mustBeRegistered,
                          const kstd_persistentType_** record);

// Replaces what `type` (constructed) holds with a new reset record, which
// *record then points at for filling in. On failure `type` is empty.
kstd_result resetWithNewRecord(kstd_persistentType* type, kstd_persistentType_** record);

}  // namespace vexpers::types

namespace vexpers::types {

// The size of one value of the record's named type (its derivation is not
// looked at), from slot 0 of its object operation table:
// kstd_persistentResult_noObjectVtable without a table,
// kstd_persistentResult_operationMissing without the slot,
// kstd_persistentResult_invalidElementSize for a size below 1. *size is 0 on
// failure.
kstd_result elementSizeOf(const kstd_persistentType_* record, uint32_t* size);

}  // namespace vexpers::types
