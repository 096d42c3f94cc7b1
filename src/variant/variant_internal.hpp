// Pieces shared by the variant's translation units: releasing and clearing
// the value, holding a core type without a registry round trip, describing
// the held type, and the five base readers behind the typed gets.
#pragma once

#include "vexpers/variant.h"

#include "frame/frame.hpp"

namespace vexpers::variant {

using Variant = kstd_persistentVariant;

// Zeroes `value`, drops the shared object and the array description.
kstd_result releaseValue(Variant* variant);
// releaseValue, then isBorrowed 0 and the null string. The type is kept.
kstd_result clearValue(Variant* variant);

// The registered descriptor of core type `id` (0..51, derivation 0). The
// descriptors are looked up once and kept until shut-down, so holding a core
// type takes neither the registry lock nor memory.
kstd_result coreType(int32_t id, const kstd_persistentType** type);
// clearValue, then the variant holds core type `id` (0..51).
kstd_result holdCoreType(Variant* variant, int32_t id);

// Category, derivation and core type id of a registered type record.
struct TypeFacts {
    uint32_t category;
    uint32_t derivation;
    int32_t coreTypeId;
};
// 0x80004100 for a descriptor without a record, 0x800040C8 for an
// unregistered record.
kstd_result describeType(const kstd_persistentType* type, TypeFacts* facts);

// Names of the core type table that no value can be made of.
bool isReservedCoreType(int32_t id);

// How a held value is read, by category and derivation.
enum class Group {
    signedInteger,    // category 0 or 6, derivation 0
    unsignedInteger,  // category 1 derivation 0, category 6 derivation 4
    boolean,          // category 2
    floating,         // category 3
    character,        // category 4
    string,           // category 5
    object,           // category 7
    other,            // anything else (categories 0 and 1 of derivation 4)
    reserved,         // a reserved core type
    notValue,         // a derivation other than 0 and 4
};
Group groupOf(const TypeFacts& facts);

// The base readers (zero the destination first; float writes the clamped
// value when it reports the float range exceeded).
kstd_result readInt64(const Variant* variant, int64_t* value);
kstd_result readUInt64(const Variant* variant, uint64_t* value);
kstd_result readBool(const Variant* variant, int32_t* value);
kstd_result readFloat(const Variant* variant, float* value);
kstd_result readDouble(const Variant* variant, double* value);

}  // namespace vexpers::variant
