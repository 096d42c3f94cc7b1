// Objects and arrays that a variant owns or describes: new objects kept
// alive through their shared interface, arrays allocated in a shared array
// holder, the shared interface of a held object, and the description of an
// array value with or without a container.
#include "vexpers/property.h"

#include "frame/frame.hpp"
#include "types/type_record.hpp"
#include "variant/array_holder.hpp"
#include "variant/variant_internal.hpp"

namespace {

using Record = kstd_persistentType_;
using vexpers::failed;

constexpr char16_t sharedInterfaceName[] = u"kstd_shared";

bool isArrayDerivation(uint32_t derivation) {
    return derivation == kstd_persistentTypeDerivation_array ||
           derivation == kstd_persistentTypeDerivation_bitfieldArray;
}

bool fitsInt32(int64_t value) { return value >= INT32_MIN && value <= INT32_MAX; }

// The registered record of an array type, else 0x800040D6.
kstd_result knownArrayRecord(const kstd_persistentType* type, const Record** record) {
    *record = nullptr;
    const Record* found = nullptr;
    if (failed(vexpers::types::resolveRecord(type, true, &found)) || !isArrayDerivation(found->derivation))
        return kstd_persistentResult_wrongTypeKind;
    *record = found;
    return 0;
}

// The object's shared interface through the type's interface query, or null
// for a type without one.
kstd_result sharedInterfaceOf(const Record* record, void* object, kstd_shared** shared) {
    *shared = nullptr;
    if (object == nullptr || record->minimalVtable == nullptr) return 0;
    void* found = nullptr;
    VEXPERS_TRY(kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename(record->minimalVtable, object,
                                                                          sharedInterfaceName, &found));
    *shared = static_cast<kstd_shared*>(found);
    return 0;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_persistentVariant_resetNewObject(kstd_persistentVariant* variant,
                                                                 const kstd_persistentType* type) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    VEXPERS_TRY(kstd_persistentType_newObject(&variant->type, &variant->value.pointer));
    // A created object that cannot be kept alive is deleted again, so that a
    // failure leaves nothing behind.
    auto undo = vexpers::makeGuard([&] { kstd_persistentType_deleteObject(&variant->type, &variant->value.pointer); });
    const Record* record = nullptr;
    VEXPERS_TRY(vexpers::types::resolveRecord(&variant->type, true, &record));
    kstd_shared* shared = nullptr;
    VEXPERS_TRY(sharedInterfaceOf(record, variant->value.pointer, &shared));
    // Without a shared interface nothing owns the object: the caller must
    // delete it through the type.
    if (shared != nullptr) VEXPERS_TRY(kstd_ptrh_assignShared(&variant->sharedObject, shared));
    undo.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(kstd_persistentVariant* variant,
                                                                                 const kstd_persistentType* type,
                                                                                 int32_t count, void** first,
                                                                                 uint32_t* elementSize) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    if (first != nullptr) *first = nullptr;
    if (elementSize != nullptr) *elementSize = 0;
    if (count < 0) return kstd_persistentResult_invalidCount;
    const Record* record = nullptr;
    VEXPERS_TRY(knownArrayRecord(type, &record));
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    void* data = nullptr;
    VEXPERS_TRY(vexpers::variant::holdNewArray(&variant->sharedObject, &variant->type, count, &data));
    variant->value.pointer = data;
    variant->arrayCount = count;
    variant->containerVtable = nullptr;
    if (first != nullptr) *first = data;
    if (elementSize != nullptr) VEXPERS_TRY(kstd_persistentType_getElementSize(&variant->type, elementSize));
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getShared(const kstd_persistentVariant* variant,
                                                            kstd_shared** shared) {
    VEXPERS_REQUIRE(shared != nullptr);
    *shared = nullptr;
    VEXPERS_REQUIRE(variant != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(vexpers::types::resolveRecord(&variant->type, false, &record));
    if (record->category != kstd_persistentTypeCategory_object &&
        record->derivation != kstd_persistentTypeDerivation_pointer)
        return kstd_persistentResult_wrongTypeKind;
    if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    return sharedInterfaceOf(record, variant->value.pointer, shared);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getContainer(const kstd_persistentVariant* variant,
                                                               void** container, uint32_t* containerValue,
                                                               uint32_t* elementSize, void** first, intptr_t* count,
                                                               const kstd_persistentContainerVtable** table,
                                                               kstd_persistentType* elementType) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(container != nullptr);
    VEXPERS_REQUIRE(containerValue != nullptr);
    VEXPERS_REQUIRE(elementSize != nullptr);
    VEXPERS_REQUIRE(first != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(elementType != nullptr);
    *container = nullptr;
    *containerValue = 0;
    *elementSize = 0;
    *first = nullptr;
    *count = 0;
    *table = nullptr;
    VEXPERS_TRY(kstd_persistentType_reset(elementType));
    const Record* record = nullptr;
    VEXPERS_TRY(knownArrayRecord(&variant->type, &record));

    if (const kstd_persistentContainerVtable* operations = variant->containerVtable) {
        if (operations->getSize == nullptr || operations->getBegin == nullptr || operations->getLayout == nullptr)
            return kstd_persistentResult_operationMissing;
        *container = variant->value.pointer;
        *table = operations;
        VEXPERS_TRY(operations->getBegin(variant->value.pointer, first));
        VEXPERS_TRY(operations->getSize(variant->value.pointer, count));
        VEXPERS_TRY(operations->getLayout(containerValue, elementSize));
    } else {
        if (!fitsInt32(variant->arrayCount)) return kstd_persistentResult_arraySizeOverflow;
        *first = variant->value.pointer;
        *count = static_cast<intptr_t>(variant->arrayCount);
        VEXPERS_TRY(kstd_persistentType_getElementSize(&variant->type, elementSize));
    }

    const uint32_t itemDerivation = record->derivation == kstd_persistentTypeDerivation_bitfieldArray
                                        ? kstd_persistentTypeDerivation_bitfield
                                        : kstd_persistentTypeDerivation_value;
    // Items of a core type: the core type's handle is at hand, which spares
    // a registry look-up by name (the array's name is the item type's,
    // interned, so the same text is the same pointer).
    if (record->isKnown != 0 && record->coreTypeId >= 0 && record->coreTypeId < kstd_persistentCoreTypeId_count &&
        itemDerivation == kstd_persistentTypeDerivation_value) {
        const kstd_persistentType* core = nullptr;
        VEXPERS_TRY(vexpers::variant::coreType(record->coreTypeId, &core));
        const Record* coreRecord = nullptr;
        if (vexpers::types::resolveRecord(core, true, &coreRecord) >= 0 &&
            coreRecord->derivation == kstd_persistentTypeDerivation_value &&
            coreRecord->name.chars == record->name.chars)
            return kstd_persistentType_assign(elementType, core);
    }
    const char16_t* name = nullptr;
    VEXPERS_TRY(kstd_stringConst_getString(&record->name, &name));
    return kstd_persistentType_resetTypeNameAndDerivation(elementType, name, itemDerivation);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getObjectData(const kstd_persistentVariant* variant,
                                                                kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(bag != nullptr);
    if (bag->isStoring == 0) return kstd_persistentResult_bagNotStoring;
    VEXPERS_TRY(kstd_persistentPropertyBag_removeAllProperties(bag));
    const Record* record = nullptr;
    VEXPERS_TRY(vexpers::types::resolveRecord(&variant->type, true, &record));
    const uint32_t category = record->category;
    const uint32_t derivation = record->derivation;
    const bool isObject = category == kstd_persistentTypeCategory_object;
    const bool isEnum = category == kstd_persistentTypeCategory_enum;
    // A core value has no properties of its own.
    if (!isObject && !isEnum && derivation == kstd_persistentTypeDerivation_value) return 0;
    if (isArrayDerivation(derivation)) return kstd_persistentResult_notSupported;
    // An enumeration's value is its own object; everything else is reached
    // through the pointer the variant holds.
    void* object = variant->value.pointer;
    if (isEnum && (derivation == kstd_persistentTypeDerivation_value ||
                   derivation == kstd_persistentTypeDerivation_bitfield))
        object = const_cast<kstd_persistentVariantValue*>(&variant->value);
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    return kstd_persistentType_transferObjectPersistentProperties(&variant->type, object, bag);
}
