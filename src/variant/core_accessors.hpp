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

// The writer and reader of each row, named by the row's stem; the core type
// table holds them.
namespace core {
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                    \
    kstd_result write_##stem(kstd_persistentVariant* variant, const void* value); \
    kstd_result read_##stem(const kstd_persistentVariant* variant, void* out);
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype) \
    kstd_result write_##stem(kstd_persistentVariant* variant, const void* value);
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
kstd_result read_kstd_unicodeString(const kstd_persistentVariant* variant, void* out);
// The string pointers are written from the text they point at and have no reader.
inline constexpr CoreVariantReader read_stringA = nullptr;
inline constexpr CoreVariantReader read_stringW = nullptr;
inline constexpr CoreVariantReader read_stringT = nullptr;
inline constexpr CoreVariantReader read_string16 = nullptr;
inline constexpr CoreVariantReader read_string32 = nullptr;
}  // namespace core

// The writer / reader of core type `id` from the core type table; null
// outside 0..51 and for rows without one.
CoreVariantWriter coreVariantWriter(int32_t id);
CoreVariantReader coreVariantReader(int32_t id);

}  // namespace vexpers
