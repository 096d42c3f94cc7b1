// What the value access tables of the built-in object types answer from the
// types' property info entries.
#pragma once

#include "vexpers/type.h"

namespace vexpers::types {

// The property of `object` (of the registered `type`) whose name is
// text[start, start + length), read through the first entry of that name
// that gives one; 0x800040C9 when no entry does.
kstd_result propertyFromEntries(const kstd_persistentType* type, const void* object, const char16_t* text,
                                int32_t start, int32_t length, kstd_persistentProperty* property);

// The descriptors of the registered `type`'s entries, in order, into `set`.
kstd_result infoSetFromEntries(const kstd_persistentType* type, kstd_persistentPropertyInfoSet* set);

}  // namespace vexpers::types
