// Internal interface of the type registry for the rest of the library: start-
// up, the registry lock, interning of type and property names, and the hooks
// through which registration makes property info entries.
#pragma once

#include "vexpers/type.h"

namespace vexpers::types {

// Runs the registry's start-up once per process (core types, then the
// shared-pointer types) and returns its result to every caller.
kstd_result ensureRegistryInitialized();

// True while the registry's start-up is registering its own types.
bool registryInitializing();

// Interns `text` (null and empty are entries of their own) in the registry's
// name table: *interned shares the one stored copy. Needs only the core
// stage, so the shared-pointer stage may intern its property names.
kstd_result internName(const char16_t* text, kstd_stringConst* interned);

// Holds the registry's re-entrant lock for its lifetime once take() has
// succeeded. The registry must have passed its core stage.
class RegistryLock {
public:
    RegistryLock() = default;
    RegistryLock(const RegistryLock&) = delete;
    RegistryLock& operator=(const RegistryLock&) = delete;
    ~RegistryLock();
    kstd_result take();

private:
    bool held_ = false;
};

// ---- Property info entries ---------------------------------------------------------
// Registration calls these two under the registry lock. They belong to the
// property model, which makes the entries of a static property list.

// Makes the entries of `list` into *entries (null when no entries are made),
// stamping them with global indexes from *descriptorSerial onwards.
// `initializing` is true while the registry's start-up runs: entry types are
// then only named, not looked up.
kstd_result makePropertyInfoEntries(const kstd_persistentStaticPropertyList* list, bool initializing,
                                    int32_t* descriptorSerial, kstd_persistentPropertyInfoEntryVector** entries);
// Deletes entries made by makePropertyInfoEntries (shut-down); null is a no-op.
kstd_result deletePropertyInfoEntries(kstd_persistentPropertyInfoEntryVector** entries);
// Calls the entry type registration of each entry that has one, in order,
// stopping at the first failure; null entries: nothing.
kstd_result registerPropertyInfoEntryTypes(const kstd_persistentPropertyInfoEntryVector* entries);

}  // namespace vexpers::types
