// The built-in types' answers from their property info entries.
#include "types/builtin_types.hpp"

#include "frame/frame.hpp"
#include "property/info_entries.hpp"
#include "types/property_transfer.hpp"
#include "types/registry.hpp"
#include "types/type_record.hpp"

namespace vexpers::types {

kstd_result propertyFromEntries(const kstd_persistentType* type, const void* object, const char16_t* text,
                                int32_t start, int32_t length, kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(property != nullptr);
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    bool found = false;
    VEXPERS_TRY(getEntryPropertyUsingNamePart(record, object, text, start, length, &found, property));
    return found ? 0 : kstd_persistentResult_propertyNotFound;
}

kstd_result infoSetFromEntries(const kstd_persistentType* type, kstd_persistentPropertyInfoSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfoSet_reset(set));
    std::span<property::PropertyInfoEntry> entries;
    VEXPERS_TRY(property::entriesOfType(type, &entries));
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_reserve(&set->infos, static_cast<int64_t>(entries.size())));
    for (property::PropertyInfoEntry& entry : entries) {
        // An entry whose type is not registered (the shared pointers' "void")
        // still describes its property; its type may only be read under the
        // registry lock, where late resolution would replace it.
        const kstd_result resolved = property::resolveEntry(&entry);
        if (failed(resolved) && resolved != kstd_persistentResult_typeNotRegistered) return resolved;
        if (property::entryIsResolved(entry)) {
            VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_pushBack(&set->infos, &entry.info));
            continue;
        }
        RegistryLock lock;
        VEXPERS_TRY(lock.take());
        VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_pushBack(&set->infos, &entry.info));
    }
    return 0;
}

}  // namespace vexpers::types
