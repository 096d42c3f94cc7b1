// The core type table: one constant row per core type id, expanded from
// generated/core_types.def. The registry registers every row at start-up; the
// variant reaches a core value through the row's writer and reader.
#pragma once

#include <cstdint>

#include "vexpers/type.h"

namespace vexpers::types {

// Stores one value read from `value` into the variant.
using VariantWriter = kstd_result (*)(kstd_persistentVariant* variant, const void* value);
// Reads the variant into the value at `value`.
using VariantReader = kstd_result (*)(const kstd_persistentVariant* variant, void* value);

struct CoreTypeRow {
    int32_t id;
    uint32_t category;
    const char16_t* name;
    // Null for a reserved name; else slot 0 (the size) only, except the
    // unicode string, whose table is complete.
    const kstd_persistentObjectVtable* objectVtable;
    // Null for a reserved name; the string pointers have a writer only.
    VariantWriter writer;
    VariantReader reader;
};

inline constexpr int32_t coreTypeCount = kstd_persistentCoreTypeId_count;

extern const CoreTypeRow coreTypeTable[coreTypeCount];

// The row of a core type id, or null outside 0..51.
inline const CoreTypeRow* coreTypeRow(int32_t id) {
    return id >= 0 && id < coreTypeCount ? &coreTypeTable[id] : nullptr;
}

}  // namespace vexpers::types
