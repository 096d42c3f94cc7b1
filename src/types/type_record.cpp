// The type record behind descriptors: a shared object whose reference count
// belongs to the handles that share it; the registry holds one handle of
// every registered record.
#include "types/type_record.hpp"

#include "vexpers/text.h"

#include "frame/lifecycle.hpp"

namespace {

using Record = kstd_persistentType_;

kstd_result destroyRecord(kstd_shared* shared) {
    auto* record = static_cast<Record*>(shared->whole);
    return kstd_persistentType__delete(&record);
}

kstd_result queryRecord(kstd_shared* shared, const char16_t* name, void** result) {
    *result = nullptr;
    if (name != nullptr && ksys_wcscmp(name, vexpers::types::recordTypename) == 0) {
        *result = shared->whole;
        return 0;
    }
    return kstd_shared_queryInterfaceByTypenameFinal(shared, name, result);
}

kstd_result recordTypenameOf(const kstd_shared*, const char16_t** name) {
    *name = vexpers::types::recordTypename;
    return 0;
}

constexpr kstd_sharedCustom recordCounting{destroyRecord, kstd_shared_increment_default,
                                           kstd_shared_decrement_default};
constexpr kstd_sharedTyped recordTyping{queryRecord, recordTypenameOf};

// Every field that is not a record of its own, in declaration order.
void copyPlainFields(Record* record, const Record* source) {
    record->derivation = source->derivation;
    record->coreTypeId = source->coreTypeId;
    record->category = source->category;
    record->hasPropertyInfoEntries = source->hasPropertyInfoEntries;
    record->propertyInfoEntries = source->propertyInfoEntries;
    record->objectVtable = source->objectVtable;
    record->valueAccess = source->valueAccess;
    record->minimalVtable = source->minimalVtable;
    record->isContainer = source->isContainer;
    record->containerVtable = source->containerVtable;
    record->containedItemTypeResolved = source->containedItemTypeResolved;
    record->alwaysShareable = source->alwaysShareable;
    for (int i = 0; i < 5; ++i) record->enumWords[i] = source->enumWords[i];
    record->globalIndex = source->globalIndex;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_persistentType__construct(Record* record) {
    VEXPERS_REQUIRE(record != nullptr);
    VEXPERS_TRY(kstd_shared_initCustomTyped(&record->header, record, &recordCounting, &recordTyping));
    VEXPERS_TRY(kstd_stringConst_construct(&record->name));
    auto name = vexpers::makeGuard([&] { kstd_stringConst_destruct(&record->name); });
    VEXPERS_TRY(kstd_stringConst_construct(&record->containedItemTypeName));
    auto itemName = vexpers::makeGuard([&] { kstd_stringConst_destruct(&record->containedItemTypeName); });
    VEXPERS_TRY(kstd_persistentType_construct(&record->containedItemType));
    auto itemType = vexpers::makeGuard([&] { kstd_persistentType_destruct(&record->containedItemType); });
    VEXPERS_TRY(kstd_persistentType__reset(record));
    name.dismiss();
    itemName.dismiss();
    itemType.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType__reset(Record* record) {
    VEXPERS_REQUIRE(record != nullptr);
    record->isKnown = 0;
    VEXPERS_TRY(kstd_stringConst_reset(&record->name));
    VEXPERS_TRY(kstd_stringConst_reset(&record->containedItemTypeName));
    VEXPERS_TRY(kstd_persistentType_reset(&record->containedItemType));
    record->derivation = kstd_persistentTypeDerivation_value;
    record->coreTypeId = kstd_persistentCoreTypeId_notSet;
    record->category = kstd_persistentTypeCategory_object;
    record->hasPropertyInfoEntries = 0;
    record->propertyInfoEntries = nullptr;
    record->objectVtable = nullptr;
    record->valueAccess = nullptr;
    record->minimalVtable = nullptr;
    record->isContainer = 0;
    record->containerVtable = nullptr;
    record->containedItemTypeResolved = 0;
    record->alwaysShareable = 0;
    for (uint32_t& word : record->enumWords) word = 0;
    record->globalIndex = -1;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType__assign(Record* record, const Record* source) {
    VEXPERS_REQUIRE(record != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (record == source) return 0;
    // A record that fails half-way reads as unregistered.
    record->isKnown = 0;
    VEXPERS_TRY(kstd_stringConst_assign(&record->name, &source->name));
    VEXPERS_TRY(kstd_stringConst_assign(&record->containedItemTypeName, &source->containedItemTypeName));
    VEXPERS_TRY(kstd_persistentType_assign(&record->containedItemType, &source->containedItemType));
    copyPlainFields(record, source);
    record->isKnown = source->isKnown;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType__destruct(Record* record) {
    VEXPERS_REQUIRE(record != nullptr);
    kstd_result result = kstd_stringConst_destruct(&record->name);
    const kstd_result itemName = kstd_stringConst_destruct(&record->containedItemTypeName);
    const kstd_result itemType = kstd_persistentType_destruct(&record->containedItemType);
    if (!vexpers::failed(result)) result = vexpers::failed(itemName) ? itemName : itemType;
    return result;
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentType_)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentType_)

namespace vexpers::types {

kstd_result resolveRecord(const kstd_persistentType* type, bool mustBeRegistered, const Record** record) {
    *record = nullptr;
    const kstd_shared* shared = type->record.shared;
    const void* whole = shared != nullptr ? shared->whole : nullptr;
    if (whole == nullptr) return kstd_persistentResult_typeEmpty;
    const auto* found = static_cast<const Record*>(whole);
    if (mustBeRegistered && found->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    *record = found;
    return 0;
}

kstd_result resetWithNewRecord(kstd_persistentType* type, Record** record) {
    *record = nullptr;
    VEXPERS_TRY(kstd_persistentType_reset(type));
    Record* made = nullptr;
    VEXPERS_TRY(kstd_persistentType__new(&made));
    const kstd_result result = kstd_ptrhConst_assignShared(&type->record, &made->header);
    if (failed(result)) {
        kstd_persistentType__delete(&made);
        return result;
    }
    *record = made;
    return 0;
}

}  // namespace vexpers::types

namespace vexpers::types {

kstd_result elementSizeOf(const Record* record, uint32_t* size) {
    *size = 0;
    if (record->objectVtable == nullptr) return kstd_persistentResult_noObjectVtable;
    if (record->objectVtable->getElementSize == nullptr) return kstd_persistentResult_operationMissing;
    uint32_t reported = 0;
    VEXPERS_TRY(record->objectVtable->getElementSize(&reported));
    if (reported < 1) return kstd_persistentResult_invalidElementSize;
    *size = reported;
    return 0;
}

}  // namespace vexpers::types
