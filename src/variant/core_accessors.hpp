// The variant's writer and reader of each row of the core type table.
//
// A writer stores one value of the row's C type, read from `value`, as the
// typed set of that type does (for the string pointers stringA ... string32
// `value` is the text pointer itself). A reader stores the variant's value
// into `out` as the typed get of that type does. The reserved rows have
// neither; the string pointer rows have a writer only.
#pragma once

#include <cstdint>

#include "vexpers/variant.h"

namespace vexpers {

using CoreVariantWriter = kstd_result (*)(kstd_persistentVariant* variant, const void* value);
using CoreVariantReader = kstd_result (*)(const kstd_persistentVariant* variant, void* out);

// The writer / reader of core type `id`; null outside 0..51 and for rows
// without one.
CoreVariantWriter coreVariantWriter(int32_t id);
CoreVariantReader coreVariantReader(int32_t id);

}  // namespace vexpers
