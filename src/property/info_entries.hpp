// The property info entries of a registered object or enum type: one per
// definition of the static property list its registration gave, each with
// the property's descriptor, whether the descriptor's type is a registered
// one, and the thirteen accessor words through which the property is stored
// and loaded. The registry makes them at registration, keeps them for the
// whole process (type records point at them) and deletes them at shut-down.
//
// Threads: everything in an entry is fixed once its type is registered,
// except the type of an entry that is not resolved yet, which resolveEntry
// replaces once, under the registry lock, and then publishes by setting
// isResolved (release). So: the name, data access, global index and accessor
// words may be read at any time; `info.type` only after entryIsResolved()
// returned true (or under the registry lock). Copy the whole descriptor only
// from a resolved entry.
#pragma once

#include <atomic>
#include <span>

#include "vexpers/propertyinfo.h"

#include "vectors/vector_view.hpp"

// One declared property of a type.
struct kstd_persistentPropertyInfoEntry {
    // 1 when info's type is a registered type. Read through entryIsResolved.
    int32_t isResolved;
    kstd_persistentPropertyInfo info;
    kstd_persistentPropertyAccessors accessors;
};

// The entries of one form of a type: a generic vector whose elements are
// entries, built, copied and destroyed through the entry's own operations.
struct kstd_persistentPropertyInfoEntryVector {
    kstd_vector__ base;
};

namespace vexpers::property {

using PropertyInfoEntry = kstd_persistentPropertyInfoEntry;

// The entries of a type record in declaration order; empty when the record
// has none (core types, types registered without a static property list,
// records made for unregistered names).
inline std::span<PropertyInfoEntry> entriesOf(const kstd_persistentType_* record) {
    if (record == nullptr || record->hasPropertyInfoEntries == 0 || record->propertyInfoEntries == nullptr) return {};
    return elementsOf<PropertyInfoEntry>(*record->propertyInfoEntries);
}

// The same for the record a descriptor shares: 0x80004100 for an empty
// descriptor, 0x800040C8 for an unregistered record (*entries empty).
kstd_result entriesOfType(const kstd_persistentType* type, std::span<PropertyInfoEntry>* entries);

// Number of entries and the entry at `index` (null outside 0..count-1).
inline int64_t entryCount(const kstd_persistentType_* record) {
    return static_cast<int64_t>(entriesOf(record).size());
}
inline PropertyInfoEntry* entryAt(const kstd_persistentType_* record, int64_t index) {
    const std::span<PropertyInfoEntry> entries = entriesOf(record);
    if (index < 0 || index >= static_cast<int64_t>(entries.size())) return nullptr;
    return &entries[static_cast<size_t>(index)];
}

// Whether the entry's type is a registered type (acquire: a true answer makes
// info.type safe to read without the lock).
inline bool entryIsResolved(const PropertyInfoEntry& entry) {
    // Loading through atomic_ref does not write; it needs a non-const object.
    return std::atomic_ref<int32_t>(const_cast<int32_t&>(entry.isResolved)).load(std::memory_order_acquire) != 0;
}

// Whether the entry can load its property in composing: it has the direct
// load accessor (word 8) or the member load accessor (word 9).
inline bool entryIsLoadable(const PropertyInfoEntry& entry) {
    return entry.accessors.slots.directLoadAccessor != nullptr || entry.accessors.slots.memberLoadAccessor != nullptr;
}

// Resolves an entry whose type was not registered when it was made. Under
// the registry lock: calls the entry type registration (word 10) when set
// (its failure is returned), then looks up the registered type of the
// entry's type name and derivation (0x800040C8 when there is none). The
// entry changes only when both succeed. An entry already resolved is left
// alone and gives 0.
kstd_result resolveEntry(PropertyInfoEntry* entry);

// Builds a vector of `count` entries from `definitions` into *entries
// (whatever *entries held is deleted first). With `initializing` false each
// entry's type is looked up in the registry; with it true (while the
// registry starts) the type only gets the definition's name and derivation
// and resolves later. A null or empty type name fails with 0x800040C6.
// On failure *entries is null and nothing is left allocated. Entries made
// here have global index -1; the registry numbers them.
kstd_result buildPropertyInfoEntries(kstd_persistentPropertyInfoEntryVector** entries,
                                     const kstd_persistentPropertyInfoDefinition* definitions, uint32_t count,
                                     bool initializing);

// Destroys and frees a vector made by buildPropertyInfoEntries; null: nothing.
kstd_result deleteEntryVector(kstd_persistentPropertyInfoEntryVector** entries);

}  // namespace vexpers::property
