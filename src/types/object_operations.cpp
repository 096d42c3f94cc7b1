// The object operations of a type descriptor: creating and deleting objects
// and arrays, element sizes, copying an object out of a variant, named
// property access, interface queries and container descriptions. Each
// dispatches through the operation tables the type was registered with; the
// library never knows an object's layout.
#include <atomic>
#include <cstring>

#include "vexpers/property.h"
#include "vexpers/text.h"
#include "vexpers/variant.h"

#include "frame/frame.hpp"
#include "types/registry.hpp"
#include "types/type_record.hpp"

namespace {

using Record = kstd_persistentType_;
using namespace vexpers::types;

bool isObjectDerivation(uint32_t derivation) {
    return derivation == kstd_persistentTypeDerivation_value || derivation == kstd_persistentTypeDerivation_pointer ||
           derivation == kstd_persistentTypeDerivation_bitfield;
}

bool isArrayDerivation(uint32_t derivation) {
    return derivation == kstd_persistentTypeDerivation_array ||
           derivation == kstd_persistentTypeDerivation_bitfieldArray;
}

// The element type's derivation of an array derivation.
uint32_t itemDerivationOf(uint32_t arrayDerivation) {
    return arrayDerivation == kstd_persistentTypeDerivation_bitfieldArray ? kstd_persistentTypeDerivation_bitfield
                                                                          : kstd_persistentTypeDerivation_value;
}

bool isEmptyText(const char16_t* text) { return text == nullptr || text[0] == 0; }

// The object operation table of a registered record that must have one.
kstd_result objectTableOf(const Record* record, const kstd_persistentObjectVtable** table) {
    *table = record->objectVtable;
    return *table != nullptr ? 0 : kstd_persistentResult_noObjectVtable;
}

kstd_result valueAccessOf(const Record* record, const kstd_persistentValueAccessVtable** table) {
    *table = record->valueAccess;
    return *table != nullptr ? 0 : kstd_persistentResult_noObjectVtable;
}

// Element i of an array of `size`-byte elements.
void* elementAt(void* array, int64_t i, uint32_t size) { return static_cast<char*>(array) + i * int64_t{size}; }

// Destroys elements count-1 down to 0 of a partly built array and frees it.
void discardArray(const kstd_persistentObjectVtable* table, void** array, int64_t count, uint32_t size) {
    if (table->destruct != nullptr)
        for (int64_t i = count - 1; i >= 0; --i) table->destruct(elementAt(*array, i, size));
    ksys_memory_free_internal(array);
}

// Looks up a container type's item type once: resolved into a local handle
// under the registry lock and published into the record only on success, so
// that a failed look-up is tried again by the next caller.
kstd_result resolveContainedItemType(const Record* record) {
    auto* shared = const_cast<Record*>(record);
    std::atomic_ref<uint32_t> resolved(shared->containedItemTypeResolved);
    if (resolved.load(std::memory_order_acquire) != 0) return 0;
    VEXPERS_TRY(ensureRegistryInitialized());
    RegistryLock lock;
    VEXPERS_TRY(lock.take());
    if (resolved.load(std::memory_order_acquire) != 0) return 0;  // another thread was first
    const char16_t* name = nullptr;
    VEXPERS_TRY(kstd_stringConst_getString(&record->containedItemTypeName, &name));
    kstd_persistentType local;
    VEXPERS_TRY(kstd_persistentType_construct(&local));
    VEXPERS_DEFER { kstd_persistentType_destruct(&local); };
    VEXPERS_TRY(kstd_persistentType_resetTypeName(&local, name));
    VEXPERS_TRY(kstd_persistentType_assign(&shared->containedItemType, &local));
    resolved.store(1, std::memory_order_release);
    return 0;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_persistentType_deleteObject(const kstd_persistentType* type, void** object) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(object != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (!isObjectDerivation(record->derivation)) return kstd_persistentResult_wrongTypeKind;
    if (*object == nullptr) return 0;
    const kstd_persistentObjectVtable* table = nullptr;
    VEXPERS_TRY(objectTableOf(record, &table));
    if (table->deleteObject != nullptr) return table->deleteObject(object);
    // Built with construct into memory of the element size.
    if (table->destruct != nullptr) VEXPERS_TRY(table->destruct(*object));
    return ksys_memory_free_internal(object);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_newObject(const kstd_persistentType* type, void** object) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(object != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (!isObjectDerivation(record->derivation)) return kstd_persistentResult_wrongTypeKind;
    const kstd_persistentObjectVtable* table = nullptr;
    VEXPERS_TRY(objectTableOf(record, &table));
    if (*object != nullptr) VEXPERS_TRY(kstd_persistentType_deleteObject(type, object));
    if (table->newObject != nullptr) return table->newObject(object);
    if (table->construct == nullptr) return kstd_persistentResult_operationMissing;
    uint32_t size = 0;
    VEXPERS_TRY(elementSizeOf(record, &size));
    VEXPERS_TRY(ksys_memory_alloc_internal(size, object));
    const kstd_result result = table->construct(*object);
    if (vexpers::failed(result)) ksys_memory_free_internal(object);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_newArray(const kstd_persistentType* type, int32_t count, void** array) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(array != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (count < 0) return kstd_persistentResult_invalidCount;
    if (!isArrayDerivation(record->derivation)) return kstd_persistentResult_wrongTypeKind;
    if (*array != nullptr) return kstd_persistentResult_outputNotEmpty;
    const kstd_persistentObjectVtable* table = nullptr;
    VEXPERS_TRY(objectTableOf(record, &table));
    uint32_t size = 0;
    VEXPERS_TRY(elementSizeOf(record, &size));
    VEXPERS_TRY(ksys_memory_realloc64_internal(int64_t{count} * int64_t{size}, array));
    if (table->construct == nullptr) return 0;  // plain memory, as allocated
    for (int64_t i = 0; i < count; ++i) {
        const kstd_result result = table->construct(elementAt(*array, i, size));
        if (vexpers::failed(result)) {
            discardArray(table, array, i, size);
            return result;
        }
    }
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_deleteArray(const kstd_persistentType* type, int32_t* count,
                                                           void** array) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    VEXPERS_REQUIRE(array != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (!isArrayDerivation(record->derivation)) return kstd_persistentResult_wrongTypeKind;
    if (*array == nullptr) {
        *count = 0;
        return 0;
    }
    const kstd_persistentObjectVtable* table = nullptr;
    VEXPERS_TRY(objectTableOf(record, &table));
    uint32_t size = 0;
    VEXPERS_TRY(elementSizeOf(record, &size));
    VEXPERS_REQUIRE(*count >= 0);
    // Last first; the count always tells how many elements are still alive,
    // so a caller can retry or free what is left after a failure.
    if (table->destruct != nullptr) {
        while (*count > 0) {
            const kstd_result result = table->destruct(elementAt(*array, *count - 1, size));
            --*count;
            VEXPERS_TRY(result);
        }
    }
    *count = 0;
    return ksys_memory_free_internal(array);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getElementSize(const kstd_persistentType* type, uint32_t* size) {
    VEXPERS_REQUIRE(size != nullptr);
    *size = 0;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    return elementSizeOf(record, size);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_assignObjectFromVariant(const kstd_persistentType* type, void* object,
                                                                       const kstd_persistentVariant* variant) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(variant != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    // A variant without a registered object type holds no object to copy.
    const Record* held = nullptr;
    if (vexpers::failed(resolveRecord(&variant->type, true, &held)) ||
        held->category != kstd_persistentTypeCategory_object)
        return kstd_persistentResult_typeMismatch;
    const void* source = variant->value.pointer;
    if (source == nullptr) return kstd_persistentResult_nullArgument;
    uint32_t equal = 0;
    VEXPERS_TRY(kstd_persistentType_compareEqual(&variant->type, type, &equal));
    if (equal == 0) return kstd_persistentResult_typeMismatch;
    const kstd_persistentObjectVtable* table = nullptr;
    VEXPERS_TRY(objectTableOf(record, &table));
    if (table->assign != nullptr) return table->assign(object, source);
    uint32_t size = 0;
    VEXPERS_TRY(elementSizeOf(record, &size));
    if (object != source) std::memmove(object, source, size);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentType_setObjectPropertyFromVariant(const kstd_persistentType* type,
                                                                            void* object, const char16_t* name,
                                                                            const kstd_persistentVariant* variant) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(variant != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (isEmptyText(name)) return kstd_persistentResult_invalidPropertyName;
    const kstd_persistentValueAccessVtable* access = nullptr;
    VEXPERS_TRY(valueAccessOf(record, &access));
    if (access->setObjectProperty == nullptr) return kstd_persistentResult_operationMissing;
    return access->setObjectProperty(object, name, variant);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getObjectPropertyUsingNameSubstr(const kstd_persistentType* type,
                                                                                const void* object,
                                                                                const char16_t* text, int32_t start,
                                                                                int32_t length,
                                                                                kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_reset(property));
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (isEmptyText(text) || start < 0 || length < 1) return kstd_persistentResult_invalidPropertyName;
    if (int64_t{start} + int64_t{length} > static_cast<int64_t>(ksys_wcslen(text)))
        return kstd_persistentResult_invalidPropertyName;
    const kstd_persistentValueAccessVtable* access = nullptr;
    VEXPERS_TRY(valueAccessOf(record, &access));
    if (access->getObjectPropertyUsingNameSubstr == nullptr) return kstd_persistentResult_operationMissing;
    return access->getObjectPropertyUsingNameSubstr(object, text, start, length, property);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getPersistentPropertyInfoSet(const kstd_persistentType* type,
                                                                            kstd_persistentPropertyInfoSet* set) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfoSet_reset(set));
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    const kstd_persistentValueAccessVtable* access = nullptr;
    VEXPERS_TRY(valueAccessOf(record, &access));
    if (access->getPropertyInfoSet == nullptr) return kstd_persistentResult_operationMissing;
    return access->getPropertyInfoSet(set);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_queryInterfaceByTypename(const kstd_persistentType* type, void* object,
                                                                        const char16_t* name, void** result) {
    VEXPERS_REQUIRE(result != nullptr);
    *result = nullptr;
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (isEmptyText(name)) return kstd_persistentResult_invalidTypeName;
    if (record->minimalVtable == nullptr) return kstd_persistentResult_noInterfaceQuery;
    return kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename(record->minimalVtable, object, name, result);
}

VEXPERS_EXPORT kstd_result kstd_persistentType_getContainerVtableAndContainedItemType(
    const kstd_persistentType* type, uint32_t* isContiguous, uint32_t* stride,
    const kstd_persistentContainerVtable** table, kstd_persistentType* itemType) {
    VEXPERS_REQUIRE(isContiguous != nullptr);
    VEXPERS_REQUIRE(stride != nullptr);
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(itemType != nullptr);
    *isContiguous = 0;
    *stride = 0;
    *table = nullptr;
    VEXPERS_TRY(kstd_persistentType_reset(itemType));
    VEXPERS_REQUIRE(type != nullptr);
    const Record* record = nullptr;
    VEXPERS_TRY(resolveRecord(type, true, &record));

    if (isArrayDerivation(record->derivation)) {
        const char16_t* name = nullptr;
        VEXPERS_TRY(kstd_stringConst_getString(&record->name, &name));
        VEXPERS_TRY(
            kstd_persistentType_resetTypeNameAndDerivation(itemType, name, itemDerivationOf(record->derivation)));
        VEXPERS_TRY(elementSizeOf(record, stride));
        *isContiguous = 1;
        return 0;
    }

    if (record->isContainer == 0 || record->containerVtable == nullptr) return kstd_persistentResult_wrongTypeKind;
    VEXPERS_TRY(resolveContainedItemType(record));
    *table = record->containerVtable;
    VEXPERS_TRY(kstd_persistentType_assign(itemType, &record->containedItemType));
    if (record->containerVtable->getLayout == nullptr) return kstd_persistentResult_operationMissing;
    return record->containerVtable->getLayout(isContiguous, stride);
}
