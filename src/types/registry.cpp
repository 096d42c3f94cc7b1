// The type registry: the process-wide table of persistable types, keyed by
// (interned name, derivation), with the name table that interns every type
// and property name. It starts lazily on first use and is freed at shut-down.
//
// Threads: one re-entrant lock guards the name table, the type table, the
// serials and the arrays; registrations hold it across the nested
// registrations they trigger. Start-up is serialised by once flags. A
// registered record never changes, so handles are read without the lock.
// Callers' registered flags are read and written with acquire/release, and a
// flag is set only after the caller's handle is filled in.
#include "types/registry.hpp"

#include <atomic>

#include "vexpers/containers.h"
#include "vexpers/text.h"

#include "frame/lifecycle.hpp"
#include "runtime/hashtable_internal.hpp"
#include "types/core_type_table.hpp"
#include "types/type_record.hpp"
#include "vectors/vector_view.hpp"

namespace vexpers::types {
namespace {

using Record = kstd_persistentType_;

constexpr int32_t nameTableBins = 4096;
constexpr int32_t typeTableBins = 8192;

// ---- Growable arrays of pointers (zero-initialised when empty) ----------------------

template <class T>
struct PointerArray {
    T* items;
    int64_t count;
    int64_t capacity;
};

// Makes room for `extra` more items, so that the pushes after it cannot fail.
template <class T>
kstd_result reserveMore(PointerArray<T>& array, int64_t extra) {
    const int64_t needed = array.count + extra;
    if (needed <= array.capacity) return 0;
    int64_t capacity = array.capacity < 16 ? 16 : array.capacity * 2;
    if (capacity < needed) capacity = needed;
    void* items = array.items;
    VEXPERS_TRY(ksys_memory_realloc_internal(static_cast<size_t>(capacity) * sizeof(T), &items));
    array.items = static_cast<T*>(items);
    array.capacity = capacity;
    return 0;
}

template <class T>
void freeArray(PointerArray<T>& array) {
    void* items = array.items;
    ksys_memory_free_internal(&items);
    array = {};
}

// ---- Registry state -------------------------------------------------------------------

// A look-up the registry answered for a text at some address. Callers mostly
// pass the same static strings again and again, so the text at that address
// is compared with the answer's (the address may hold other text by now)
// instead of being interned and looked up once more.
struct RecentType {
    const char16_t* text;
    uint32_t derivation;
    const kstd_persistentType* handle;  // in the type table; forgotten before it leaves
};
struct RecentName {
    const char16_t* text;
    kstd_stringConst interned;  // a share of the name table's string
};
constexpr size_t recentSlots = 64;

struct RegistryState {
    ksys_criticalSection lock;
    kstd_stringConstTable names;
    kstd_hashtable types;
    // Next globalIndex of a record made by registration.
    int32_t registrationSerial;
    // Next global index of a property info entry.
    int32_t descriptorSerial;
    // Entry vectors made from static property lists, in order of making.
    PointerArray<kstd_persistentPropertyInfoEntryVector*> entryVectors;
    // The callers' handles that registrations filled in, in order.
    PointerArray<kstd_persistentType*> outputHandles;
    RecentType recentTypes[recentSlots];
    RecentName recentNames[recentSlots];
};

RegistryState state;
ksys_onceFlag coreStageOnce = KSYS_ONCE_FLAG_INIT;
ksys_onceFlag sharedPointerStageOnce = KSYS_ONCE_FLAG_INIT;
ksys_onceFlag registryOnce = KSYS_ONCE_FLAG_INIT;
std::atomic<bool> initializing{false};

// ---- The type table's key -----------------------------------------------------------------

struct RegistryKey {
    kstd_stringConst name;
    uint32_t derivation;
};

kstd_result keyConstructCopy(void* element, const void* source) {
    auto* key = static_cast<RegistryKey*>(element);
    const auto* from = static_cast<const RegistryKey*>(source);
    key->derivation = from->derivation;
    return kstd_stringConst_constructCopy(&key->name, &from->name);
}

kstd_result keyAssign(void* element, const void* source) {
    auto* key = static_cast<RegistryKey*>(element);
    const auto* from = static_cast<const RegistryKey*>(source);
    key->derivation = from->derivation;
    return kstd_stringConst_assign(&key->name, &from->name);
}

kstd_result keyDestruct(void* element) { return kstd_stringConst_destruct(&static_cast<RegistryKey*>(element)->name); }

// Only the name is hashed: the derivations of one name share a bin.
kstd_result keyHash(const void* element, uint32_t* hash) {
    return kstd_stringConst_hash(&static_cast<const RegistryKey*>(element)->name, hash);
}

kstd_result keyEqual(const void* first, const void* second, uint32_t* equal) {
    const auto* a = static_cast<const RegistryKey*>(first);
    const auto* b = static_cast<const RegistryKey*>(second);
    *equal = 0;
    if (a->derivation != b->derivation) return 0;
    // Interned names share their characters.
    if (a->name.chars == b->name.chars) {
        *equal = 1;
        return 0;
    }
    return kstd_stringConst_compareEqual(&a->name, &b->name, equal);
}

constexpr kstd_hashtableElementVtable keyOperations{
    sizeof(RegistryKey), keyConstructCopy, keyAssign, keyDestruct, keyHash, keyEqual};

kstd_result handleConstructCopy(void* element, const void* source) {
    return kstd_persistentType_constructCopy(static_cast<kstd_persistentType*>(element),
                                             static_cast<const kstd_persistentType*>(source));
}
kstd_result handleAssign(void* element, const void* source) {
    return kstd_persistentType_assign(static_cast<kstd_persistentType*>(element),
                                      static_cast<const kstd_persistentType*>(source));
}
kstd_result handleDestruct(void* element) {
    return kstd_persistentType_destruct(static_cast<kstd_persistentType*>(element));
}

constexpr kstd_hashtableElementVtable handleOperations{
    sizeof(kstd_persistentType), handleConstructCopy, handleAssign, handleDestruct, nullptr, nullptr};

// A key made for one lookup; the name is interned by the caller.
class LocalKey {
public:
    LocalKey(uint32_t derivation) {
        key_.derivation = derivation;
        kstd_stringConst_construct(&key_.name);
    }
    ~LocalKey() { kstd_stringConst_destruct(&key_.name); }
    LocalKey(const LocalKey&) = delete;
    LocalKey& operator=(const LocalKey&) = delete;
    RegistryKey& get() { return key_; }

private:
    RegistryKey key_;
};

// The registered handle of `key`, or null. Caller holds the lock.
kstd_result findType(const RegistryKey& key, const kstd_persistentType** handle) {
    *handle = nullptr;
    void* value = nullptr;
    const kstd_result result = kstd_hashtable_getPtr(&state.types, &key, &value);
    if (result == ksys_result_notFound) return 0;
    VEXPERS_TRY(result);
    *handle = static_cast<const kstd_persistentType*>(value);
    return 0;
}

// ---- Recent look-ups (under the lock) ------------------------------------------------------

size_t recentSlot(const char16_t* text, uint32_t derivation) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(text);
    return ((address >> 1) ^ (address >> 9) ^ derivation * 7u) % recentSlots;
}

// Whether `text` (terminated) is the `length` units at `chars`.
bool isText(const char16_t* text, const char16_t* chars, int32_t length) {
    return chars != nullptr && ksys_wcsncmp(text, chars, length) == 0 && text[length] == 0;
}

const kstd_persistentType* recentType(const char16_t* text, uint32_t derivation) {
    if (text == nullptr) return nullptr;
    const RecentType& slot = state.recentTypes[recentSlot(text, derivation)];
    if (slot.text != text || slot.derivation != derivation || slot.handle == nullptr) return nullptr;
    const Record* record = nullptr;
    if (failed(resolveRecord(slot.handle, false, &record))) return nullptr;
    return isText(text, record->name.chars, record->name.length) ? slot.handle : nullptr;
}

void rememberType(const char16_t* text, uint32_t derivation, const kstd_persistentType* handle) {
    if (text != nullptr) state.recentTypes[recentSlot(text, derivation)] = RecentType{text, derivation, handle};
}

// Before a handle leaves the type table, and at shut-down.
kstd_result forgetRecent() {
    kstd_result first = 0;
    for (RecentType& slot : state.recentTypes) slot = RecentType{};
    for (RecentName& slot : state.recentNames) {
        slot.text = nullptr;
        const kstd_result result = kstd_stringConst_reset(&slot.interned);
        if (!failed(first) && failed(result)) first = result;
    }
    return first;
}

// Interns under the lock, which the caller holds (or does not need during
// the core stage).
kstd_result internLocked(const char16_t* text, kstd_stringConst* interned) {
    RecentName* slot = text != nullptr && text[0] != 0 ? &state.recentNames[recentSlot(text, 0)] : nullptr;
    if (slot != nullptr && slot->text == text && isText(text, slot->interned.chars, slot->interned.length))
        return kstd_stringConst_assign(interned, &slot->interned);
    VEXPERS_TRY(kstd_stringConstTable_addString(&state.names, text, interned, nullptr, nullptr));
    if (slot != nullptr && !failed(kstd_stringConst_assign(&slot->interned, interned))) slot->text = text;
    return 0;
}

// Makes a registered record for (name, derivation) filled by `fill` and puts
// it into the type table. *handle (constructed) shares it afterwards.
template <class Fill>
kstd_result addRecord(const kstd_stringConst& name, uint32_t derivation, kstd_persistentType* handle, Fill fill) {
    Record* record = nullptr;
    VEXPERS_TRY(resetWithNewRecord(handle, &record));
    VEXPERS_TRY(kstd_stringConst_assign(&record->name, &name));
    record->derivation = derivation;
    VEXPERS_TRY(fill(record));
    record->globalIndex = state.registrationSerial++;
    record->isKnown = 1;
    LocalKey key(derivation);
    VEXPERS_TRY(kstd_stringConst_assign(&key.get().name, &name));
    return kstd_hashtable_put(&state.types, &key.get(), handle);
}

// ---- Start-up and shut-down -------------------------------------------------------------

kstd_result shutDownRegistry(void*);

// The core types: the lock, the two tables, and the 52 rows in derivations 0
// to 3 (globalIndex 0 to 207 in (id, derivation) order).
kstd_result runCoreStage(void*) {
    for (int32_t id = 0; id < coreTypeCount; ++id) {
        const CoreTypeRow& row = coreTypeTable[id];
        VEXPERS_REQUIRE(row.id >= 0 && row.id == id);
        VEXPERS_REQUIRE(row.name != nullptr && row.name[0] != 0);
        VEXPERS_REQUIRE(row.category != kstd_persistentTypeCategory_enum &&
                        row.category != kstd_persistentTypeCategory_object);
    }
    VEXPERS_TRY(ksys_criticalSection_construct(&state.lock));
    auto lock = makeGuard([] { ksys_criticalSection_destruct(&state.lock); });
    VEXPERS_TRY(kstd_stringConstTable_construct(&state.names));
    auto names = makeGuard([] { kstd_stringConstTable_destruct(&state.names); });
    VEXPERS_TRY(kstd_stringConstTable_resetNumBins(&state.names, nameTableBins));
    VEXPERS_TRY(kstd_hashtable_construct(&state.types, &keyOperations, &handleOperations, typeTableBins, -1));
    auto types = makeGuard([] { kstd_hashtable_destruct(&state.types); });

    kstd_stringConst name;
    VEXPERS_TRY(kstd_stringConst_construct(&name));
    VEXPERS_DEFER { kstd_stringConst_destruct(&name); };
    kstd_persistentType handle;
    VEXPERS_TRY(kstd_persistentType_construct(&handle));
    VEXPERS_DEFER { kstd_persistentType_destruct(&handle); };
    for (const CoreTypeRow& row : coreTypeTable) {
        VEXPERS_TRY(internLocked(row.name, &name));
        for (uint32_t derivation = kstd_persistentTypeDerivation_value;
             derivation <= kstd_persistentTypeDerivation_indirect; ++derivation) {
            VEXPERS_TRY(addRecord(name, derivation, &handle, [&](Record* record) -> kstd_result {
                record->coreTypeId = row.id;
                record->category = row.category;
                record->objectVtable = row.objectVtable;
                return 0;
            }));
        }
    }
    VEXPERS_TRY(ksys_shutdown_register(shutDownRegistry, nullptr));
    lock.dismiss();
    names.dismiss();
    types.dismiss();
    return 0;
}

// The shared-pointer types, registered through their own registration
// functions. Their names are start-up names: registerType waits only for the
// core stage for them, so this stage does not wait on its own once flag.
kstd_result runSharedPointerStage(void*) {
    VEXPERS_TRY(kstd_persistentTypeRegisterType_kstd_ptrh());
    return kstd_persistentTypeRegisterType_kstd_ptrhConst();
}

kstd_result initializeRegistry(void*) {
    initializing.store(true, std::memory_order_relaxed);
    VEXPERS_DEFER { initializing.store(false, std::memory_order_relaxed); };
    VEXPERS_TRY(ksys_initializeOnce(runCoreStage, nullptr, &coreStageOnce));
    return ksys_initializeOnce(runSharedPointerStage, nullptr, &sharedPointerStageOnce);
}

kstd_result ensureCoreStage() { return ksys_initializeOnce(runCoreStage, nullptr, &coreStageOnce); }

kstd_result keepFirstFailure(kstd_result first, kstd_result next) { return failed(first) ? first : next; }

// Frees everything the registry made: the name table, the type table (its
// shares of the records), the entry vectors and the callers' handles (each
// last made first), then the lock. Continues after failures and returns the
// first.
kstd_result shutDownRegistry(void*) {
    uint32_t held = 0;
    VEXPERS_TRY(ksys_criticalSection_wait(&state.lock, &held));
    kstd_result result = forgetRecent();
    result = keepFirstFailure(result, kstd_stringConstTable_destruct(&state.names));
    result = keepFirstFailure(result, kstd_hashtable_destruct(&state.types));
    for (int64_t i = state.entryVectors.count - 1; i >= 0; --i)
        result = keepFirstFailure(result, deletePropertyInfoEntries(&state.entryVectors.items[i]));
    freeArray(state.entryVectors);
    for (int64_t i = state.outputHandles.count - 1; i >= 0; --i)
        result = keepFirstFailure(result, kstd_persistentType_destruct(state.outputHandles.items[i]));
    freeArray(state.outputHandles);
    result = keepFirstFailure(result, ksys_criticalSection_release(&state.lock));
    return keepFirstFailure(result, ksys_criticalSection_destruct(&state.lock));
}

// ---- Registration --------------------------------------------------------------------------

struct Registration {
    const char16_t* name;
    uint32_t category;
    const kstd_persistentObjectVtable* objectVtable;
    const kstd_persistentValueAccessVtable* valueAccess;
    const kstd_persistentValueAccessVtable* bitfieldValueAccess;
    const kstd_persistentStaticPropertyList* staticProperties;
    const kstd_persistentStaticPropertyList* bitfieldStaticProperties;
    const kstd_typeDescriptorMinimalVtable* minimalVtable;
    const kstd_persistentContainerVtable* containerVtable;
    const char16_t* containedItemTypeName;
    kstd_result (*registerContainedItemType)(void);
    uint32_t alwaysShareable;
    uint32_t enumWords[5];
    uint32_t* registeredFlag;
    uint32_t* bitfieldRegisteredFlag;
    kstd_persistentType* typeOut;
    kstd_persistentType* bitfieldTypeOut;
};

bool isRegistered(uint32_t* flag) { return std::atomic_ref<uint32_t>(*flag).load(std::memory_order_acquire) == 1; }

void publishRegistered(uint32_t* flag) { std::atomic_ref<uint32_t>(*flag).store(1, std::memory_order_release); }

bool isEmptyText(const char16_t* text) { return text == nullptr || text[0] == 0; }

// The names registered while the registry starts, which must not wait for it.
bool isStartUpName(const char16_t* name) {
    for (const char16_t* startUp : {u"kstd_shared", u"kstd_ptrh", u"kstd_ptrhConst"})
        if (ksys_wcscmp(name, startUp) == 0) return true;
    return false;
}

// The checks that need no registry state.
kstd_result checkTables(const Registration& r) {
    if (isEmptyText(r.name)) return kstd_persistentResult_invalidTypeName;
    VEXPERS_REQUIRE(r.category == kstd_persistentTypeCategory_enum ||
                    r.category == kstd_persistentTypeCategory_object);
    if (r.category == kstd_persistentTypeCategory_enum) {
        VEXPERS_REQUIRE(r.objectVtable == nullptr);
        VEXPERS_REQUIRE(r.containerVtable == nullptr);
        VEXPERS_REQUIRE(r.minimalVtable == nullptr);
        VEXPERS_REQUIRE(r.alwaysShareable == 0);
        if (r.valueAccess == nullptr) return kstd_persistentResult_noObjectVtable;
        return 0;
    }
    const kstd_persistentObjectVtable* object = r.objectVtable;
    if (object != nullptr && (object->reset == nullptr || object->newObject == nullptr ||
                              object->newClone == nullptr || object->deleteObject == nullptr))
        return kstd_persistentResult_operationMissing;
    if (r.valueAccess == nullptr) return kstd_persistentResult_noObjectVtable;
    if (const kstd_persistentContainerVtable* container = r.containerVtable) {
        if (container->resize == nullptr || container->getSize == nullptr || container->getBegin == nullptr ||
            container->getLayout == nullptr || container->getNextElement == nullptr)
            return kstd_persistentResult_operationMissing;
        if (isEmptyText(r.containedItemTypeName)) return kstd_persistentResult_invalidTypeName;
        if (r.registerContainedItemType == nullptr) return kstd_persistentResult_noObjectVtable;
    }
    if (r.minimalVtable != nullptr &&
        (r.minimalVtable->queryInterfaceByTypename == nullptr || r.minimalVtable->getTypename == nullptr))
        return kstd_persistentResult_operationMissing;
    return 0;
}

// Makes the entries of a static property list (when given) and keeps them.
kstd_result makeEntries(const kstd_persistentStaticPropertyList* list,
                        kstd_persistentPropertyInfoEntryVector** entries) {
    *entries = nullptr;
    if (list == nullptr) return 0;
    VEXPERS_TRY(reserveMore(state.entryVectors, 1));
    VEXPERS_TRY(makePropertyInfoEntries(list, registryInitializing(), &state.descriptorSerial, entries));
    if (*entries != nullptr) state.entryVectors.items[state.entryVectors.count++] = *entries;
    return 0;
}

// Copy-constructs the caller's handle and remembers it for shut-down.
kstd_result fillOutput(kstd_persistentType* out, const kstd_persistentType* handle) {
    VEXPERS_TRY(reserveMore(state.outputHandles, 1));
    VEXPERS_TRY(kstd_persistentType_constructCopy(out, handle));
    state.outputHandles.items[state.outputHandles.count++] = out;
    return 0;
}

kstd_result registerType(const Registration& r) {
    VEXPERS_REQUIRE(r.registeredFlag != nullptr);
    VEXPERS_REQUIRE(r.typeOut != nullptr);
    if (isRegistered(r.registeredFlag)) return 0;
    VEXPERS_TRY(checkTables(r));
    VEXPERS_TRY(isStartUpName(r.name) ? ensureCoreStage() : ensureRegistryInitialized());

    RegistryLock lock;
    VEXPERS_TRY(lock.take());
    // Another thread may have registered through the same flag meanwhile.
    if (isRegistered(r.registeredFlag)) return 0;
    kstd_stringConst name;
    VEXPERS_TRY(kstd_stringConst_construct(&name));
    VEXPERS_DEFER { kstd_stringConst_destruct(&name); };
    VEXPERS_TRY(internLocked(r.name, &name));
    kstd_stringConst itemName;
    VEXPERS_TRY(kstd_stringConst_construct(&itemName));
    VEXPERS_DEFER { kstd_stringConst_destruct(&itemName); };
    if (r.containerVtable != nullptr) VEXPERS_TRY(internLocked(r.containedItemTypeName, &itemName));

    {
        LocalKey key(kstd_persistentTypeDerivation_value);
        VEXPERS_TRY(kstd_stringConst_assign(&key.get().name, &name));
        const kstd_persistentType* existing = nullptr;
        VEXPERS_TRY(findType(key.get(), &existing));
        if (existing != nullptr) return kstd_persistentResult_typeAlreadyRegistered;
    }

    // A registration that fails leaves the registry as it was: the room for
    // what it keeps is made first, and what it made is taken back.
    VEXPERS_TRY(reserveMore(state.entryVectors, 2));
    VEXPERS_TRY(reserveMore(state.outputHandles, 2));
    const int64_t entryVectorsBefore = state.entryVectors.count;
    uint32_t derivationsPut = 0;
    auto undo = makeGuard([&] {
        for (uint32_t derivation = 0; derivation < derivationsPut; ++derivation) {
            LocalKey key(derivation);
            forgetRecent();
            if (!failed(kstd_stringConst_assign(&key.get().name, &name)))
                runtime::removeFromHashtable(&state.types, &key.get());
        }
        while (state.entryVectors.count > entryVectorsBefore)
            deletePropertyInfoEntries(&state.entryVectors.items[--state.entryVectors.count]);
    });

    kstd_persistentPropertyInfoEntryVector* entries = nullptr;
    kstd_persistentPropertyInfoEntryVector* bitfieldEntries = nullptr;
    VEXPERS_TRY(makeEntries(r.staticProperties, &entries));
    if (r.bitfieldTypeOut != nullptr) {
        if (r.category != kstd_persistentTypeCategory_enum) return kstd_persistentResult_wrongTypeKind;
        VEXPERS_TRY(makeEntries(r.bitfieldStaticProperties, &bitfieldEntries));
    }

    kstd_persistentType plain;
    VEXPERS_TRY(kstd_persistentType_construct(&plain));
    VEXPERS_DEFER { kstd_persistentType_destruct(&plain); };
    kstd_persistentType bitfield;
    VEXPERS_TRY(kstd_persistentType_construct(&bitfield));
    VEXPERS_DEFER { kstd_persistentType_destruct(&bitfield); };
    kstd_persistentType made;
    VEXPERS_TRY(kstd_persistentType_construct(&made));
    VEXPERS_DEFER { kstd_persistentType_destruct(&made); };
    const uint32_t lastDerivation = r.bitfieldTypeOut != nullptr ? kstd_persistentTypeDerivation_bitfieldArray
                                                                 : kstd_persistentTypeDerivation_indirect;
    for (uint32_t derivation = kstd_persistentTypeDerivation_value; derivation <= lastDerivation; ++derivation) {
        const bool bitfieldForm = derivation >= kstd_persistentTypeDerivation_bitfield;
        VEXPERS_TRY(addRecord(name, derivation, &made, [&](Record* record) -> kstd_result {
            record->coreTypeId = kstd_persistentCoreTypeId_registered;
            record->category = r.category;
            record->objectVtable = r.objectVtable;
            record->minimalVtable = r.minimalVtable;
            record->isContainer = r.containerVtable != nullptr ? 1 : 0;
            record->containerVtable = r.containerVtable;
            VEXPERS_TRY(kstd_stringConst_assign(&record->containedItemTypeName, &itemName));
            record->containedItemTypeResolved = 0;
            record->alwaysShareable = r.alwaysShareable;
            for (int i = 0; i < 5; ++i) record->enumWords[i] = r.enumWords[i];
            record->valueAccess = bitfieldForm ? r.bitfieldValueAccess : r.valueAccess;
            kstd_persistentPropertyInfoEntryVector* formEntries = bitfieldForm ? bitfieldEntries : entries;
            record->propertyInfoEntries = formEntries;
            record->hasPropertyInfoEntries = formEntries != nullptr ? 1 : 0;
            return 0;
        }));
        derivationsPut = derivation + 1;
        if (derivation == kstd_persistentTypeDerivation_value) VEXPERS_TRY(kstd_persistentType_assign(&plain, &made));
        if (derivation == kstd_persistentTypeDerivation_bitfield)
            VEXPERS_TRY(kstd_persistentType_assign(&bitfield, &made));
    }

    VEXPERS_TRY(fillOutput(r.typeOut, &plain));
    if (r.bitfieldTypeOut != nullptr) {
        const kstd_result filled = fillOutput(r.bitfieldTypeOut, &bitfield);
        if (failed(filled)) {
            kstd_persistentType_destruct(r.typeOut);
            --state.outputHandles.count;
            return filled;
        }
    }
    undo.dismiss();
    publishRegistered(r.registeredFlag);
    if (r.bitfieldRegisteredFlag != nullptr && r.bitfieldTypeOut != nullptr) publishRegistered(r.bitfieldRegisteredFlag);

    // The types the declared properties refer to, and a container's item
    // type, register now, while the lock is still held.
    VEXPERS_TRY(registerPropertyInfoEntryTypes(entries));
    if (r.containerVtable != nullptr) VEXPERS_TRY(r.registerContainedItemType());
    return 0;
}

// ---- Lookups ---------------------------------------------------------------------------------

// The name a plain scalar of that category and size maps to, after the
// checks shared by GetMatchingCoreType and GetIsMatchingCoreType.
kstd_result checkScalarRequest(uint32_t category, uint32_t size, uint32_t derivation) {
    if (category == kstd_persistentTypeCategory_char || category == kstd_persistentTypeCategory_enum ||
        category == kstd_persistentTypeCategory_object)
        return kstd_persistentResult_wrongTypeKind;
    if ((category == kstd_persistentTypeCategory_bool || category == kstd_persistentTypeCategory_string) && size != 0)
        return kstd_persistentResult_wrongTypeKind;
    if (derivation == kstd_persistentTypeDerivation_bitfield ||
        derivation == kstd_persistentTypeDerivation_bitfieldArray)
        return kstd_persistentResult_wrongTypeKind;
    return 0;
}

kstd_result matchingCoreTypeId(uint32_t category, uint32_t size, int32_t* id) {
    *id = -1;
    auto bySize = [&](int32_t one, int32_t two, int32_t four, int32_t eight) -> kstd_result {
        switch (size) {
            case 1: *id = one; return 0;
            case 2: *id = two; return 0;
            case 4: *id = four; return 0;
            case 8: *id = eight; return 0;
            default: return kstd_persistentResult_noMatchingCoreType;
        }
    };
    switch (category) {
        case kstd_persistentTypeCategory_int:
            return bySize(kstd_persistentCoreTypeId_k_Int8, kstd_persistentCoreTypeId_k_Int16,
                          kstd_persistentCoreTypeId_k_Int32, kstd_persistentCoreTypeId_k_Int64);
        case kstd_persistentTypeCategory_uint:
            return bySize(kstd_persistentCoreTypeId_k_UInt8, kstd_persistentCoreTypeId_k_UInt16,
                          kstd_persistentCoreTypeId_k_UInt32, kstd_persistentCoreTypeId_k_UInt64);
        case kstd_persistentTypeCategory_float:
            if (size == 4) *id = kstd_persistentCoreTypeId_float;
            else if (size == 8) *id = kstd_persistentCoreTypeId_double;
            else return kstd_persistentResult_noMatchingCoreType;
            return 0;
        case kstd_persistentTypeCategory_bool: *id = kstd_persistentCoreTypeId_k_Bool; return 0;
        case kstd_persistentTypeCategory_string: *id = kstd_persistentCoreTypeId_kstd_unicodeString; return 0;
        default: return kstd_persistentResult_invalidTypeCategory;
    }
}

kstd_result compareHandles(const void* first, const void* second, int32_t* order) {
    return kstd_persistentType_compare(static_cast<const kstd_persistentType*>(first),
                                       static_cast<const kstd_persistentType*>(second), order);
}

}  // namespace

// ---- Internal interface -------------------------------------------------------------------

kstd_result ensureRegistryInitialized() { return ksys_initializeOnce(initializeRegistry, nullptr, &registryOnce); }

bool registryInitializing() { return initializing.load(std::memory_order_relaxed); }

kstd_result internName(const char16_t* text, kstd_stringConst* interned) {
    VEXPERS_REQUIRE(interned != nullptr);
    VEXPERS_TRY(ensureCoreStage());
    RegistryLock lock;
    VEXPERS_TRY(lock.take());
    return internLocked(text, interned);
}

RegistryLock::~RegistryLock() {
    if (held_) ksys_criticalSection_release(&state.lock);
}

kstd_result RegistryLock::take() {
    VEXPERS_REQUIRE(!held_);
    uint32_t held = 0;
    VEXPERS_TRY(ksys_criticalSection_wait(&state.lock, &held));
    held_ = held != 0;
    return 0;
}

}  // namespace vexpers::types

using namespace vexpers::types;

// ---- Lookups (exported) -------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetType(const char16_t* name, uint32_t derivation, uint32_t mustExist,
                                                      kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentType_reset(type));
    VEXPERS_TRY(ensureRegistryInitialized());
    RegistryLock lock;
    VEXPERS_TRY(lock.take());
    if (const kstd_persistentType* recent = recentType(name, derivation)) return kstd_persistentType_assign(type, recent);
    LocalKey key(derivation);
    VEXPERS_TRY(internLocked(name, &key.get().name));
    const kstd_persistentType* found = nullptr;
    VEXPERS_TRY(findType(key.get(), &found));
    if (found != nullptr) {
        rememberType(name, derivation, found);
        return kstd_persistentType_assign(type, found);
    }
    if (mustExist != 0) return kstd_persistentResult_typeNotRegistered;
    if (isEmptyText(name)) return kstd_persistentResult_invalidTypeName;
    // A record for a name nobody registered: it carries name and derivation
    // only and is held by its handles alone.
    Record* record = nullptr;
    VEXPERS_TRY(resetWithNewRecord(type, &record));
    record->derivation = derivation;
    const kstd_result result = kstd_stringConst_assign(&record->name, &key.get().name);
    if (vexpers::failed(result)) kstd_persistentType_reset(type);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetCoreTypeTypeName(int32_t coreTypeId, const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    const CoreTypeRow* row = coreTypeRow(coreTypeId);
    if (row == nullptr) return kstd_persistentResult_invalidCoreTypeId;
    *name = row->name;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(int32_t coreTypeId,
                                                                                  uint32_t derivation,
                                                                                  kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    const CoreTypeRow* row = coreTypeRow(coreTypeId);
    if (row == nullptr) {
        VEXPERS_TRY(kstd_persistentType_reset(type));
        return kstd_persistentResult_invalidCoreTypeId;
    }
    return kstd_persistentTypeGetType(row->name, derivation, 1, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetMatchingCoreType(uint32_t category, uint32_t size,
                                                                  uint32_t derivation, kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentType_reset(type));
    VEXPERS_TRY(checkScalarRequest(category, size, derivation));
    int32_t id = -1;
    VEXPERS_TRY(matchingCoreTypeId(category, size, &id));
    return kstd_persistentTypeGetType(coreTypeTable[id].name, derivation, 1, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetIsMatchingCoreType(uint32_t category, uint32_t size,
                                                                    uint32_t derivation,
                                                                    const kstd_persistentType* type,
                                                                    uint32_t* isMatching) {
    VEXPERS_REQUIRE(isMatching != nullptr);
    *isMatching = 0;
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(checkScalarRequest(category, size, derivation));
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, false, &record));
    if (record->isKnown == 0) return 0;
    if (record->category != category || record->derivation != derivation) return 0;
    if (category == kstd_persistentTypeCategory_bool || category == kstd_persistentTypeCategory_string) {
        *isMatching = 1;
        return 0;
    }
    uint32_t elementSize = 0;
    VEXPERS_TRY(elementSizeOf(record, &elementSize));
    *isMatching = elementSize == size ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeGetAllTypes(kstd_vector_kstd_persistentType* types) {
    VEXPERS_REQUIRE(types != nullptr);
    VEXPERS_TRY(kstd_vector_kstd_persistentType_clear(types));
    VEXPERS_TRY(ensureRegistryInitialized());
    RegistryLock lock;
    VEXPERS_TRY(lock.take());
    kstd_vector_kstd_stringConst names;
    VEXPERS_TRY(kstd_vector_kstd_stringConst_constructEmpty(&names));
    VEXPERS_DEFER { kstd_vector_kstd_stringConst_destruct(&names); };
    VEXPERS_TRY(kstd_stringConstTable_getAllStrings(&state.names, &names));
    VEXPERS_TRY(kstd_vector_kstd_persistentType_reserve(types, vexpers::sizeOf(names)));
    LocalKey key(kstd_persistentTypeDerivation_value);
    // Property names share the table but match no type.
    for (const kstd_stringConst& name : vexpers::elementsOf<const kstd_stringConst>(names)) {
        VEXPERS_TRY(kstd_stringConst_assign(&key.get().name, &name));
        for (uint32_t derivation = kstd_persistentTypeDerivation_value;
             derivation <= kstd_persistentTypeDerivation_bitfieldArray; ++derivation) {
            key.get().derivation = derivation;
            const kstd_persistentType* found = nullptr;
            VEXPERS_TRY(findType(key.get(), &found));
            if (found != nullptr) VEXPERS_TRY(kstd_vector_kstd_persistentType_pushBack(types, found));
        }
    }
    return kstd_vector__qsort(&types->base, compareHandles);
}

// ---- Registration (exported) ------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterTypeObject(const char16_t* name,
                                                                 const kstd_persistentObjectVtable* objectVtable,
                                                                 const kstd_persistentValueAccessVtable* valueAccess,
                                                                 const kstd_persistentStaticPropertyList* staticProperties,
                                                                 uint32_t alwaysShareable, uint32_t* registeredFlag,
                                                                 kstd_persistentType* typeOut) {
    if (objectVtable == nullptr) return kstd_persistentResult_noObjectVtable;
    Registration r{};
    r.name = name;
    r.category = kstd_persistentTypeCategory_object;
    r.objectVtable = objectVtable;
    r.valueAccess = valueAccess;
    r.staticProperties = staticProperties;
    r.alwaysShareable = alwaysShareable;
    r.registeredFlag = registeredFlag;
    r.typeOut = typeOut;
    return registerType(r);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterTypeObjectContainer(
    const char16_t* name, const kstd_persistentObjectVtable* objectVtable,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_persistentContainerVtable* containerVtable, const char16_t* containedItemTypeName,
    kstd_result (*registerContainedItemType)(void), uint32_t alwaysShareable, uint32_t* registeredFlag,
    kstd_persistentType* typeOut) {
    if (objectVtable == nullptr || containerVtable == nullptr) return kstd_persistentResult_noObjectVtable;
    Registration r{};
    r.name = name;
    r.category = kstd_persistentTypeCategory_object;
    r.objectVtable = objectVtable;
    r.valueAccess = valueAccess;
    r.staticProperties = staticProperties;
    r.containerVtable = containerVtable;
    r.containedItemTypeName = containedItemTypeName;
    r.registerContainedItemType = registerContainedItemType;
    r.alwaysShareable = alwaysShareable;
    r.registeredFlag = registeredFlag;
    r.typeOut = typeOut;
    return registerType(r);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterTypeObjectDynamic(
    const char16_t* name, const kstd_persistentObjectVtable* objectVtable,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_typeDescriptorMinimalVtable* minimalVtable, uint32_t alwaysShareable, uint32_t* registeredFlag,
    kstd_persistentType* typeOut) {
    Registration r{};
    r.name = name;
    r.category = kstd_persistentTypeCategory_object;
    r.objectVtable = objectVtable;
    r.valueAccess = valueAccess;
    r.staticProperties = staticProperties;
    r.minimalVtable = minimalVtable;
    r.alwaysShareable = alwaysShareable;
    r.registeredFlag = registeredFlag;
    r.typeOut = typeOut;
    return registerType(r);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterTypeEnum(
    const char16_t* name, uint32_t enumWord1, uint32_t enumWord2, uint32_t enumWord3, uint32_t enumWord4,
    const kstd_persistentValueAccessVtable* valueAccess, const kstd_persistentValueAccessVtable* bitfieldValueAccess,
    const kstd_persistentStaticPropertyList* staticProperties,
    const kstd_persistentStaticPropertyList* bitfieldStaticProperties, uint32_t* registeredFlag,
    uint32_t* bitfieldRegisteredFlag, kstd_persistentType* typeOut, kstd_persistentType* bitfieldTypeOut) {
    Registration r{};
    r.name = name;
    r.category = kstd_persistentTypeCategory_enum;
    r.valueAccess = valueAccess;
    r.bitfieldValueAccess = bitfieldValueAccess;
    r.staticProperties = staticProperties;
    r.bitfieldStaticProperties = bitfieldStaticProperties;
    // The first word is the library's own and always 0.
    r.enumWords[1] = enumWord1;
    r.enumWords[2] = enumWord2;
    r.enumWords[3] = enumWord3;
    r.enumWords[4] = enumWord4;
    r.registeredFlag = registeredFlag;
    r.bitfieldRegisteredFlag = bitfieldRegisteredFlag;
    r.typeOut = typeOut;
    r.bitfieldTypeOut = bitfieldTypeOut;
    return registerType(r);
}
