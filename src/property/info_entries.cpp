#include "property/info_entries.hpp"

#include "frame/lifecycle.hpp"
#include "property/property_info.hpp"
#include "types/registry.hpp"
#include "types/type_record.hpp"
#include "vectors/element_table.hpp"
#include "vectors/vector_view.hpp"

namespace vexpers::property {
namespace {

using Entry = PropertyInfoEntry;
using EntryVector = kstd_persistentPropertyInfoEntryVector;
using Definition = kstd_persistentPropertyInfoDefinition;
using Record = kstd_persistentType_;

// ---- Entry life cycle -------------------------------------------------------------

kstd_result entryReset(Entry* entry) {
    entry->isResolved = 0;
    entry->accessors = kstd_persistentPropertyAccessors{};
    return kstd_persistentPropertyInfo_reset(&entry->info);
}

kstd_result entryConstruct(Entry* entry) {
    VEXPERS_TRY(kstd_persistentPropertyInfo_construct(&entry->info));
    return entryReset(entry);
}

kstd_result entryAssign(Entry* entry, const Entry* source) {
    if (entry == source) return 0;
    entry->isResolved = 0;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&entry->info, &source->info));
    entry->accessors = source->accessors;
    entry->isResolved = source->isResolved;
    return 0;
}

kstd_result entryDestruct(Entry* entry) { return kstd_persistentPropertyInfo_destruct(&entry->info); }

kstd_result entryConstructCopy(Entry* entry, const Entry* source) {
    return lifecycle::constructCopy<Entry>(entry, source, entryConstruct, entryAssign, entryDestruct);
}

using EntryElements = ElementTable<Entry, entryConstruct, entryConstructCopy, entryAssign, entryDestruct>;

// ---- Filling an entry ------------------------------------------------------------------

// A type that carries only a name and a derivation, made without asking the
// registry (which is still starting): it reads as not registered.
kstd_result nameTypeWithoutLookup(kstd_persistentType* type, const char16_t* name, uint32_t derivation) {
    if (name == nullptr || name[0] == 0) return kstd_persistentResult_invalidTypeName;
    Record* record = nullptr;
    VEXPERS_TRY(types::resetWithNewRecord(type, &record));
    record->derivation = derivation;
    const kstd_result result = types::internName(name, &record->name);
    if (failed(result)) kstd_persistentType_reset(type);
    return result;
}

kstd_result fillEntry(Entry* entry, const Definition& definition, bool initializing) {
    entry->isResolved = 0;
    entry->accessors = definition.accessors;
    kstd_persistentPropertyInfo& info = entry->info;
    if (!initializing) {
        VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(
            &info, definition.name, definition.typeName, definition.typeDerivation, definition.dataAccess));
    } else {
        info.dataAccess = definition.dataAccess;
        VEXPERS_TRY(setInternedName(&info.name, definition.name));
        VEXPERS_TRY(nameTypeWithoutLookup(&info.type, definition.typeName, definition.typeDerivation));
    }
    uint32_t known = 0;
    VEXPERS_TRY(kstd_persistentType_getIsKnown(&info.type, &known));
    entry->isResolved = known != 0 ? 1 : 0;
    return 0;
}

}  // namespace

// ---- Reading the entries of a type ------------------------------------------------------

kstd_result entriesOfType(const kstd_persistentType* type, std::span<Entry>* entries) {
    VEXPERS_REQUIRE(entries != nullptr);
    *entries = {};
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(types::resolveRecord(type, true, &record));
    *entries = entriesOf(record);
    return 0;
}

kstd_result resolveEntry(Entry* entry) {
    VEXPERS_REQUIRE(entry != nullptr);
    if (entryIsResolved(*entry)) return 0;
    VEXPERS_TRY(types::ensureRegistryInitialized());
    types::RegistryLock lock;
    VEXPERS_TRY(lock.take());
    if (entryIsResolved(*entry)) return 0;  // another thread was first
    if (auto registerType = entry->accessors.slots.entryTypeRegistration) VEXPERS_TRY(registerType());
    const Record* named = nullptr;
    VEXPERS_TRY(types::resolveRecord(&entry->info.type, false, &named));
    // Into a handle of our own first: the entry changes only on success.
    kstd_persistentType resolved;
    VEXPERS_TRY(kstd_persistentType_construct(&resolved));
    VEXPERS_DEFER { kstd_persistentType_destruct(&resolved); };
    VEXPERS_TRY(kstd_persistentTypeGetType(named->name.chars, named->derivation, 1, &resolved));
    uint32_t known = 0;
    VEXPERS_TRY(kstd_persistentType_getIsKnown(&resolved, &known));
    VEXPERS_TRY(kstd_persistentType_assign(&entry->info.type, &resolved));
    std::atomic_ref<int32_t>(entry->isResolved).store(known != 0 ? 1 : 0, std::memory_order_release);
    return 0;
}

// ---- Building and deleting ----------------------------------------------------------------

kstd_result deleteEntryVector(EntryVector** entries) {
    VEXPERS_REQUIRE(entries != nullptr);
    if (*entries == nullptr) return 0;
    VEXPERS_TRY(kstd_vector__destruct(&(*entries)->base));
    void* memory = *entries;
    *entries = nullptr;
    return ksys_memory_free_internal(&memory);
}

kstd_result buildPropertyInfoEntries(EntryVector** entries, const Definition* definitions, uint32_t count,
                                     bool initializing) {
    VEXPERS_REQUIRE(entries != nullptr);
    VEXPERS_REQUIRE(count == 0 || definitions != nullptr);
    VEXPERS_TRY(deleteEntryVector(entries));
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(EntryVector), &memory));
    auto* made = static_cast<EntryVector*>(memory);
    const kstd_result constructed =
        kstd_vector__constructWithVtable(&made->base, count, sizeof(Entry), &EntryElements::table);
    if (failed(constructed)) {
        ksys_memory_free_internal(&memory);
        return constructed;
    }
    auto undo = makeGuard([&] { deleteEntryVector(&made); });
    const std::span<Entry> built = elementsOf<Entry>(*made);
    for (uint32_t i = 0; i < count; ++i) VEXPERS_TRY(fillEntry(&built[i], definitions[i], initializing));
    undo.dismiss();
    *entries = made;
    return 0;
}

}  // namespace vexpers::property

// ---- What the registry calls ---------------------------------------------------------------

namespace vexpers::types {

kstd_result makePropertyInfoEntries(const kstd_persistentStaticPropertyList* list, bool initializing,
                                    int32_t* descriptorSerial, kstd_persistentPropertyInfoEntryVector** entries) {
    VEXPERS_REQUIRE(entries != nullptr);
    *entries = nullptr;
    VEXPERS_REQUIRE(list != nullptr);
    VEXPERS_REQUIRE(descriptorSerial != nullptr);
    kstd_persistentPropertyInfoEntryVector* made = nullptr;
    VEXPERS_TRY(property::buildPropertyInfoEntries(&made, list->definitions, list->count, initializing));
    auto undo = makeGuard([&] { property::deleteEntryVector(&made); });
    const std::span<property::PropertyInfoEntry> built = elementsOf<property::PropertyInfoEntry>(*made);
    VEXPERS_REQUIRE(built.size() == list->count);
    undo.dismiss();
    for (property::PropertyInfoEntry& entry : built) entry.info.globalIndex = (*descriptorSerial)++;
    *entries = made;
    return 0;
}

kstd_result deletePropertyInfoEntries(kstd_persistentPropertyInfoEntryVector** entries) {
    return property::deleteEntryVector(entries);
}

kstd_result registerPropertyInfoEntryTypes(const kstd_persistentPropertyInfoEntryVector* entries) {
    if (entries == nullptr) return 0;
    for (const property::PropertyInfoEntry& entry : elementsOf<const property::PropertyInfoEntry>(*entries))
        if (auto registerType = entry.accessors.slots.entryTypeRegistration) VEXPERS_TRY(registerType());
    return 0;
}

}  // namespace vexpers::types
