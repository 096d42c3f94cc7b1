// Moving an object's declared properties through its type's property info
// entries: reading one property through an entry, and finding one property
// by a part of a name. The bag transfer
// (kstd_persistentType_transferObjectPersistentProperties), the variant's
// property paths and the built-in types' value access answer through these.
#pragma once

#include "property/info_entries.hpp"
#include "vexpers/property.h"

namespace vexpers::types {

// Reads the property that `entry` declares from `object` into `property`
// (reset first). With a store accessor (word 6) the accessor fills the whole
// property. Otherwise the entry is resolved (0x800040C8 when its type stays
// unregistered), its descriptor copied, and the value taken with the first
// accessor present of: the address accessor or the second address accessor,
// the variant getter, the member locator (an array in a container), the enum
// getter, the 32-bit and the 64-bit bit-field getter. An entry with none of
// these gives nothing: 0 with *stored false. A null object fails with
// 0x800040CC; accessor failures are returned. `object` is only read, also
// through the member locator.
kstd_result readEntryProperty(vexpers::property::PropertyInfoEntry* entry, const void* object, bool* stored,
                              kstd_persistentProperty* property);

// The property of `object` whose declared name is text[start, start + length)
// (exactly that many units), from the first entry of `record` of that name
// that gives one (readEntryProperty). Not found is success with *found false.
// A null object fails with 0x800040CC; a null or empty text, a negative
// start, a length below 1 or a part beyond the text's end with 0x800040C3.
kstd_result getEntryPropertyUsingNamePart(const kstd_persistentType_* record, const void* object,
                                          const char16_t* text, int32_t start, int32_t length, bool* found,
                                          kstd_persistentProperty* property);

}  // namespace vexpers::types
