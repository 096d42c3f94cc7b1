// The type descriptor: a handle sharing one type record, its setters (which
// go through the registry) and its queries (which read the record without a
// lock: a registered record never changes).
#include "types/type_record.hpp"

#include "frame/lifecycle.hpp"

using vexpers::types::resolveRecord;
using Record = kstd_persistentType_;

// ---- Life cycle ----------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentType_construct(kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_ptrhConst_constructBaseTypename(&type->record, nullptr, vexpers::types::recordTypename);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_assign(kstd_persistentType* type, const kstd_persistentType* source) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (type == source) return 0;
    return kstd_ptrhConst_assign(&type->record, &source->record);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_destruct(kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_ptrhConst_destruct(&type->record);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_reset(kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_ptrhConst_reset(&type->record);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentType)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentType)

// ---- Setting a descriptor ---------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentType_resetCoreTypeId(kstd_persistentType* type, int32_t coreTypeId) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(coreTypeId, kstd_persistentTypeDerivation_value,
                                                                  type);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_resetCoreTypeIdAndDerivation(kstd_persistentType* type,
                                                                            int32_t coreTypeId, uint32_t derivation) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(coreTypeId, derivation, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_resetTypeName(kstd_persistentType* type, const char16_t* name) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentTypeGetType(name, kstd_persistentTypeDerivation_value, 0, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_resetTypeNameAndDerivation(kstd_persistentType* type,
                                                                          const char16_t* name, uint32_t derivation) {
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentTypeGetType(name, derivation, 0, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_assignDifferentDerivation(kstd_persistentType* type,
                                                                         const kstd_persistentType* source,
                                                                         uint32_t derivation) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    const Record* record = nullptr;
    kstd_result result = resolveRecord(source, false, &record);
    if (vexpers::failed(result)) {
        kstd_persistentType_reset(type);
        return result;
    }
    // Keep the name alive on its own: `type` may be `source`, and the lookup
    // drops what `type` holds first.
    kstd_stringConst name;
    VEXPERS_TRY(kstd_stringConst_constructCopy(&name, &record->name));
    VEXPERS_DEFER { kstd_stringConst_destruct(&name); };
    return kstd_persistentTypeGetType(name.chars, derivation, 0, type);
}

// ---- Queries --------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentType_getTypeName(const kstd_persistentType* type, const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, false, &record));
    return kstd_stringConst_getString(&record->name, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getTypeDerivation(const kstd_persistentType* type,
                                                                 uint32_t* derivation) {
    VEXPERS_REQUIRE(derivation != nullptr);
    *derivation = kstd_persistentTypeDerivation_value;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, false, &record));
    *derivation = record->derivation;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getIsKnown(const kstd_persistentType* type, uint32_t* isKnown) {
    VEXPERS_REQUIRE(isKnown != nullptr);
    *isKnown = 0;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, false, &record));
    *isKnown = record->isKnown;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getCoreTypeId(const kstd_persistentType* type, int32_t* coreTypeId) {
    VEXPERS_REQUIRE(coreTypeId != nullptr);
    *coreTypeId = kstd_persistentCoreTypeId_notSet;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *coreTypeId = record->coreTypeId;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getTypeCategory(const kstd_persistentType* type, uint32_t* category) {
    VEXPERS_REQUIRE(category != nullptr);
    *category = kstd_persistentTypeCategory_object;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *category = record->category;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getTypeCategoryAndDerivation(const kstd_persistentType* type,
                                                                            uint32_t* category, uint32_t* derivation) {
    VEXPERS_REQUIRE(category != nullptr);
    VEXPERS_REQUIRE(derivation != nullptr);
    *category = kstd_persistentTypeCategory_object;
    *derivation = kstd_persistentTypeDerivation_value;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *category = record->category;
    *derivation = record->derivation;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getIsCoreTypeOrEnum(const kstd_persistentType* type, uint32_t* flag) {
    VEXPERS_REQUIRE(flag != nullptr);
    *flag = 0;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    // A pointer or array of a core type is not a core type; an enum counts in
    // its value and its bit-field forms.
    const bool core = record->coreTypeId >= 0 && record->derivation == kstd_persistentTypeDerivation_value;
    const bool enumValue = record->category == kstd_persistentTypeCategory_enum &&
                           (record->derivation == kstd_persistentTypeDerivation_value ||
                            record->derivation == kstd_persistentTypeDerivation_bitfield);
    *flag = core || enumValue ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getIsAlwaysShareable(const kstd_persistentType* type, uint32_t* flag) {
    VEXPERS_REQUIRE(flag != nullptr);
    *flag = 0;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *flag = record->alwaysShareable;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getIsObjectShareable(const kstd_persistentType* type, const void* object,
                                                                    uint32_t* flag) {
    VEXPERS_REQUIRE(flag != nullptr);
    *flag = 0;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *flag = record->alwaysShareable;
    if (*flag == 1 || object == nullptr) return 0;
    if (record->minimalVtable == nullptr) {
        *flag = 0;
        return 0;
    }
    void* shared = nullptr;
    VEXPERS_TRY(kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename(
        record->minimalVtable, const_cast<void*>(object), u"kstd_shared", &shared));
    *flag = shared != nullptr ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getGlobalIndex(const kstd_persistentType* type, int32_t* globalIndex) {
    VEXPERS_REQUIRE(globalIndex != nullptr);
    *globalIndex = -1;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    *globalIndex = record->globalIndex;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_compare(const kstd_persistentType* type,
                                                       const kstd_persistentType* other, int32_t* order) {
    VEXPERS_REQUIRE(order != nullptr);
    *order = 0;
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    const Record* first = nullptr;
    const Record* second = nullptr;
    VEXPERS_TRY(resolveRecord(type, false, &first));
    VEXPERS_TRY(resolveRecord(other, false, &second));
    VEXPERS_TRY(kstd_stringConst_compare(&first->name, &second->name, order));
    if (*order != 0) return 0;
    const auto a = static_cast<int32_t>(first->derivation);
    const auto b = static_cast<int32_t>(second->derivation);
    *order = a < b ? -1 : (a > b ? 1 : 0);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_compareEqual(const kstd_persistentType* type,
                                                            const kstd_persistentType* other, uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    int32_t order = 0;
    VEXPERS_TRY(kstd_persistentType_compare(type, other, &order));
    *equal = order == 0 ? 1 : 0;
    return 0;
}
