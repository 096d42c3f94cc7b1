// The property record: life cycle, the readers of its descriptor and value,
// the combined resets, and the questions a tree asks to decompose it.
#include "vexpers/property.h"

#include "frame/lifecycle.hpp"
#include "types/empty_records.hpp"
#include "types/type_record.hpp"

namespace {

using Property = kstd_persistentProperty;

bool isArrayDerivation(uint32_t derivation) {
    return derivation == kstd_persistentTypeDerivation_array ||
           derivation == kstd_persistentTypeDerivation_bitfieldArray;
}

// The type record of the value held (registered or not).
kstd_result valueRecord(const Property* property, const kstd_persistentType_** record) {
    return vexpers::types::resolveRecord(&property->value.type, false, record);
}

}  // namespace

// ---- Life cycle ------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentProperty_construct(kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(property != nullptr);
    *property = vexpers::types::emptyProperty;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_assign(kstd_persistentProperty* property,
                                                          const kstd_persistentProperty* source) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (property == source) return 0;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, &source->info));
    return kstd_persistentVariant_assign(&property->value, &source->value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_destruct(kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_destruct(&property->info));
    return kstd_persistentVariant_destruct(&property->value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_reset(kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(property != nullptr);
    // A property that holds no share of anything has nothing to release:
    // resetting it is writing the empty property over it.
    const kstd_persistentVariant& value = property->value;
    if (property->info.name.holder.shared == nullptr && property->info.type.record.shared == nullptr &&
        value.type.record.shared == nullptr && value.stringValue.holder.shared == nullptr &&
        value.sharedObject.shared == nullptr) {
        *property = vexpers::types::emptyProperty;
        return 0;
    }
    VEXPERS_TRY(kstd_persistentPropertyInfo_reset(&property->info));
    return kstd_persistentVariant_reset(&property->value);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentProperty)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentProperty)

// ---- The descriptor --------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getInfo(const kstd_persistentProperty* property,
                                                           kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentPropertyInfo_assign(info, &property->info);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getName(const kstd_persistentProperty* property,
                                                           const char16_t** name) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    return kstd_persistentPropertyInfo_getName(&property->info, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getTypeName(const kstd_persistentProperty* property,
                                                               const char16_t** typeName) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(typeName != nullptr);
    *typeName = nullptr;
    return kstd_persistentPropertyInfo_getTypeName(&property->info, typeName);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getTypeDerivation(const kstd_persistentProperty* property,
                                                                     uint32_t* derivation) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentPropertyInfo_getTypeDerivation(&property->info, derivation);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getTypeCategory(const kstd_persistentProperty* property,
                                                                   uint32_t* category) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentPropertyInfo_getTypeCategory(&property->info, category);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getCoreTypeId(const kstd_persistentProperty* property,
                                                                 int32_t* coreTypeId) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentPropertyInfo_getCoreTypeId(&property->info, coreTypeId);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getDataAccess(const kstd_persistentProperty* property,
                                                                 uint32_t* dataAccess) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentPropertyInfo_getDataAccess(&property->info, dataAccess);
}

// ---- The value -------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValue(const kstd_persistentProperty* property,
                                                            kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return kstd_persistentVariant_assign(value, &property->value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValuePtrConst(const kstd_persistentProperty* property,
                                                                    const kstd_persistentVariant** value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    *value = &property->value;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getInfoAndValue(const kstd_persistentProperty* property,
                                                                   kstd_persistentPropertyInfo* info,
                                                                   kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(info, &property->info));
    return kstd_persistentVariant_assign(value, &property->value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValueType(const kstd_persistentProperty* property,
                                                                kstd_persistentType* type) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentVariant_getType(&property->value, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValueUsingType(const kstd_persistentProperty* property,
                                                                     const kstd_persistentType* type, void* value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return kstd_persistentVariant_getValueUsingType(&property->value, type, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getValuePtrConstUsingType(const kstd_persistentProperty* property,
                                                                             const kstd_persistentType* type,
                                                                             const void** value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return kstd_persistentVariant_getValuePtrConstUsingType(&property->value, type, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getArrayBeginSizeIntPtr(kstd_persistentProperty* property,
                                                                           void** begin, intptr_t* count) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentVariant_getArrayBeginSizeIntPtr(&property->value, begin, count);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getArrayBeginSizeIntPtrConst(
    const kstd_persistentProperty* property, const void** begin, intptr_t* count) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentVariant_getArrayBeginSizeIntPtrConst(&property->value, begin, count);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getContainer(const kstd_persistentProperty* property,
                                                                void** container, uint32_t* containerValue,
                                                                uint32_t* elementSize, void** first, intptr_t* count,
                                                                const kstd_persistentContainerVtable** table,
                                                                kstd_persistentType* elementType) {
    VEXPERS_REQUIRE(property != nullptr);
    return kstd_persistentVariant_getContainer(&property->value, container, containerValue, elementSize, first, count,
                                               table, elementType);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getSubpropertyUsingName(const kstd_persistentProperty* property,
                                                                           const char16_t* name,
                                                                           kstd_persistentProperty* subproperty) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(subproperty != nullptr);
    return kstd_persistentVariant_getPropertyUsingName(&property->value, name, subproperty);
}

// ---- Decomposing -----------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getIsLeaf(const kstd_persistentProperty* property,
                                                             uint32_t* isLeaf, uint32_t* leafKind) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(isLeaf != nullptr);
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(valueRecord(property, &record));
    const bool noObject = property->value.value.pointer == nullptr;
    uint32_t kind = kstd_persistentLeafKind_none;
    if (isArrayDerivation(record->derivation)) {
        if (property->value.arrayCount == 0) kind = kstd_persistentLeafKind_emptyArray;
    } else if (record->derivation == kstd_persistentTypeDerivation_pointer) {
        if (noObject) kind = kstd_persistentLeafKind_nullPointer;
    } else {
        if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
        if (record->category == kstd_persistentTypeCategory_object) {
            if (noObject) kind = kstd_persistentLeafKind_nullPointer;
        } else if (record->category != kstd_persistentTypeCategory_enum) {
            // Enumerations are decomposed like objects; every core value is a leaf.
            kind = kstd_persistentLeafKind_coreValue;
        }
    }
    *isLeaf = kind != kstd_persistentLeafKind_none ? 1 : 0;
    if (leafKind != nullptr) *leafKind = kind;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getIsArray(const kstd_persistentProperty* property,
                                                              uint32_t* isArray, uint32_t* arrayKind) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(isArray != nullptr);
    *isArray = 0;
    if (arrayKind != nullptr) *arrayKind = kstd_persistentArrayKind_none;
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(valueRecord(property, &record));
    if (!isArrayDerivation(record->derivation)) return 0;
    const bool coreItems = record->isKnown != 0 && record->coreTypeId >= 0;
    *isArray = 1;
    if (arrayKind != nullptr)
        *arrayKind = coreItems ? kstd_persistentArrayKind_coreItems : kstd_persistentArrayKind_otherItems;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getIsNullPointer(const kstd_persistentProperty* property,
                                                                    uint32_t* isNullPointer) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(isNullPointer != nullptr);
    *isNullPointer = 0;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentType_getTypeDerivation(&property->value.type, &derivation));
    *isNullPointer =
        derivation == kstd_persistentTypeDerivation_pointer && property->value.value.pointer == nullptr ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_getNumItemsIfArray(const kstd_persistentProperty* property,
                                                                      int64_t* count) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    *count = 0;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentType_getTypeDerivation(&property->value.type, &derivation));
    if (isArrayDerivation(derivation)) *count = property->value.arrayCount;
    return 0;
}

// ---- Setting descriptor and value together -------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValue(kstd_persistentProperty* property,
                                                                     const kstd_persistentPropertyInfo* info,
                                                                     const kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, info));
    return kstd_persistentVariant_assign(&property->value, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueUsingType(kstd_persistentProperty* property,
                                                                              const kstd_persistentType* type,
                                                                              const char16_t* name,
                                                                              uint32_t dataAccess,
                                                                              const void* object) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeAccess(&property->info, name, type, dataAccess));
    return kstd_persistentVariant_setValueUsingType(&property->value, type, object);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueUsingTypeEnum(kstd_persistentProperty* property,
                                                                                  const kstd_persistentType* type,
                                                                                  const char16_t* name,
                                                                                  uint32_t dataAccess,
                                                                                  int64_t value) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeAccess(&property->info, name, type, dataAccess));
    return kstd_persistentVariant_setValueUsingTypeEnum(&property->value, type, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentProperty* property, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint32_t bits) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeAccess(&property->info, name, type, dataAccess));
    return kstd_persistentVariant_setValueBitfield32UsingTypeEnumBitfield(&property->value, type, bits);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentProperty* property, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint64_t bits) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeAccess(&property->info, name, type, dataAccess));
    return kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(&property->value, type, bits);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValuePointerNull(
    kstd_persistentProperty* property, const kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, info));
    return kstd_persistentVariant_setValueUsingTypePointerNull(&property->value, &property->info.type);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueArrayEmpty(
    kstd_persistentProperty* property, const kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, info));
    return kstd_persistentVariant_setValueUsingTypeArrayEmpty(&property->value, &property->info.type);
}

VEXPERS_EXPORT kstd_result kstd_persistentProperty_resetInfoAndValueArrayAndAlloc(
    kstd_persistentProperty* property, const kstd_persistentPropertyInfo* info, int32_t count, void** first,
    uint32_t* elementSize) {
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, info));
    return kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&property->value, &property->info.type, count, first,
                                                                 elementSize);
}
