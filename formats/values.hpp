// Values between the library's records and the formats: scalars read from a
// variant or an array item, written back into a variant or an array item.
// Both formats store a value by the category of its core type: signed and
// unsigned integers, booleans (a k_Bool keeps any 32-bit value), doubles and
// strings (null or text). Characters occur only as array items and are
// stored as unsigned code units.
#pragma once

#include "common.hpp"

namespace vexpers::formats {

struct Scalar {
    uint32_t category = kstd_persistentTypeCategory_int;
    int64_t i = 0;
    uint64_t u = 0;
    int32_t b = 0;
    double f = 0;
    // Strings: the units (not terminated) and their count; null string when isNull.
    const char16_t* text = nullptr;
    size_t length = 0;
    bool isNull = false;
};

// What a core type id stands for.
struct CoreFacts {
    uint32_t category = 0;
    uint32_t elementSize = 0;
    const char16_t* name = nullptr;
};

// The registered core types, looked up once per reader or writer.
class CoreTypes {
public:
    CoreTypes() = default;
    CoreTypes(const CoreTypes&) = delete;
    CoreTypes& operator=(const CoreTypes&) = delete;
    // The type of `coreId` in derivation 0 (values) or 2 (arrays).
    kstd_result type(int32_t coreId, uint32_t derivation, const kstd_persistentType** type);
    // Category, element size and name; kfmt_result_badValue for an id outside
    // 0..51 or a reserved type that holds no values.
    kstd_result facts(int32_t coreId, CoreFacts* facts);
    // The core id of a registered type name (derivation 0); badValue when
    // the name is not a core type.
    kstd_result idOfName(const char16_t* name, int32_t* coreId);
    // The same for a type already looked up (derivation 0).
    kstd_result idOfType(const kstd_persistentType* type, int32_t* coreId);

private:
    kstd_result load(int32_t coreId);
    Type values_[kstd_persistentCoreTypeId_count];
    Type arrays_[kstd_persistentCoreTypeId_count];
    CoreFacts facts_[kstd_persistentCoreTypeId_count];
    bool loaded_[kstd_persistentCoreTypeId_count] = {};
};

// Reads a leaf value (a core value held by `value`) as a scalar. Strings are
// shared through `holder`, which must outlive the scalar's use.
kstd_result scalarOfVariant(const kstd_persistentVariant* value, uint32_t category, StringConst& holder,
                            Scalar* scalar);

// Makes `value` hold the scalar as the core type `coreId`.
kstd_result variantOfScalar(CoreTypes& cores, int32_t coreId, const Scalar& scalar, kstd_persistentVariant* value);

// The items of a node's array of core items, one after the other.
class ArrayCursor {
public:
    // Reads the node's container description; fails with
    // kfmt_result_notStorable for items that are no core values the formats
    // can hold.
    kstd_result open(const kstd_persistentPropertyNode* node, CoreTypes& cores);
    int64_t count() const { return count_; }
    int32_t itemCoreId() const { return itemCoreId_; }
    const kstd_persistentType* itemType() const { return itemType_.get(); }
    // The next item; call count() times.
    kstd_result next(Scalar* scalar);

private:
    Type itemType_;
    int32_t itemCoreId_ = -1;
    CoreFacts facts_;
    void* container_ = nullptr;
    const kstd_persistentContainerVtable* table_ = nullptr;
    bool contiguous_ = true;
    uint32_t elementSize_ = 0;
    uint8_t* current_ = nullptr;
    int64_t count_ = 0;
    int64_t index_ = 0;
};

// Stores a scalar into one constructed array element of core type `facts`
// (kfmt_result_badValue when it does not fit).
kstd_result storeItem(const CoreFacts& facts, const Scalar& scalar, void* element);

// Whether two types have the same name and derivation.
bool sameType(const kstd_persistentType* first, const kstd_persistentType* second);

}  // namespace vexpers::formats
