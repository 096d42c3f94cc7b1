// Object values of the variant that hold no object of their own: null
// pointers, enumerations and enumeration bit fields, empty arrays and arrays
// living in a caller's container; reading the object or array back; and
// finding a property of the held object by a dotted path.
#include <iterator>

#include "types/property_transfer.hpp"
#include "types/type_record.hpp"
#include "variant/variant_internal.hpp"

namespace vexpers::variant {
namespace {

bool isArrayDerivation(uint32_t derivation) {
    return derivation == kstd_persistentTypeDerivation_array ||
           derivation == kstd_persistentTypeDerivation_bitfieldArray;
}

// The record of `type`, registered or not (0x80004100 for an empty one).
kstd_result anyRecord(const kstd_persistentType* type, const kstd_persistentType_** record) {
    return vexpers::types::resolveRecord(type, false, record);
}

// Holds an enumeration of `type` (category 6 and `derivation`, else
// `wrongKind`) with the 64 bits `bits`.
kstd_result holdEnum(Variant* variant, const kstd_persistentType* type, uint32_t derivation, uint64_t bits,
                     kstd_result wrongKind) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    TypeFacts facts{};
    VEXPERS_TRY(describeType(type, &facts));
    if (facts.category != kstd_persistentTypeCategory_enum || facts.derivation != derivation) return wrongKind;
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    variant->value.uint64 = bits;
    return 0;
}

// Looks up the property named path[start, start + length) of the object that
// `variant` holds into `property`.
kstd_result lookUpName(const Variant* variant, const char16_t* path, int32_t start, int32_t length,
                       kstd_persistentProperty* property) {
    if (length == 0) return kstd_persistentResult_invalidPropertyName;
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(anyRecord(&variant->type, &record));
    if (record->category != kstd_persistentTypeCategory_object) return kstd_persistentResult_wrongTypeKind;
    if (variant->value.pointer == nullptr) return kstd_persistentResult_nullArgument;
    if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    bool found = false;
    VEXPERS_TRY(vexpers::types::getEntryPropertyUsingNamePart(record, variant->value.pointer, path, start, length,
                                                              &found, property));
    return found ? 0 : kstd_persistentResult_propertyNotFound;
}

}  // namespace
}  // namespace vexpers::variant

using namespace vexpers::variant;

// ---- Storing -------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingTypePointerNull(kstd_persistentVariant* variant,
                                                                               const kstd_persistentType* type) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(anyRecord(type, &record));
    if (record->derivation != kstd_persistentTypeDerivation_pointer) return kstd_persistentResult_wrongTypeKind;
    return kstd_persistentVariant_resetType(variant, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingTypeEnum(kstd_persistentVariant* variant,
                                                                        const kstd_persistentType* type,
                                                                        int64_t value) {
    return holdEnum(variant, type, kstd_persistentTypeDerivation_value, static_cast<uint64_t>(value),
                    kstd_persistentResult_notEnumType);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentVariant* variant, const kstd_persistentType* type, uint64_t bits) {
    return holdEnum(variant, type, kstd_persistentTypeDerivation_bitfield, bits,
                    kstd_persistentResult_notEnumBitfieldType);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentVariant* variant, const kstd_persistentType* type, uint32_t bits) {
    return kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(variant, type, bits);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingTypeArrayEmpty(kstd_persistentVariant* variant,
                                                                              const kstd_persistentType* type) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(anyRecord(type, &record));
    if (!isArrayDerivation(record->derivation)) return kstd_persistentResult_wrongTypeKind;
    // Holding the type leaves no items and no container.
    return kstd_persistentVariant_resetType(variant, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingTypeArrayInContainer(
    kstd_persistentVariant* variant, const kstd_persistentType* type, void* container,
    const kstd_persistentContainerVtable* containerVtable) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    if (container == nullptr) return kstd_persistentResult_nullArgument;
    if (containerVtable == nullptr) return kstd_persistentResult_noObjectVtable;
    const kstd_persistentContainerVtable& table = *containerVtable;
    if (table.resize == nullptr || table.getSize == nullptr || table.getBegin == nullptr ||
        table.getLayout == nullptr || table.getNextElement == nullptr)
        return kstd_persistentResult_operationMissing;
    intptr_t count = 0;
    VEXPERS_TRY(table.getSize(container, &count));
    if (count < 0) return kstd_persistentResult_invalidCount;
    // An empty or unregistered type is no known array type either.
    const kstd_persistentType_* record = nullptr;
    if (vexpers::failed(vexpers::types::resolveRecord(type, true, &record)) || !isArrayDerivation(record->derivation))
        return kstd_persistentResult_wrongTypeKind;
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    // The container stays the caller's.
    variant->isBorrowed = 1;
    variant->value.pointer = container;
    variant->arrayCount = count;
    variant->containerVtable = containerVtable;
    return 0;
}

// ---- Reading ----------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getWholeObject(const kstd_persistentVariant* variant,
                                                                 void** object) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(object != nullptr);
    *object = nullptr;
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(anyRecord(&variant->type, &record));
    if (record->category != kstd_persistentTypeCategory_object &&
        record->derivation != kstd_persistentTypeDerivation_pointer)
        return kstd_persistentResult_wrongTypeKind;
    *object = variant->value.pointer;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getArrayBeginSizeIntPtr(kstd_persistentVariant* variant,
                                                                          void** begin, intptr_t* count) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(begin != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    *begin = nullptr;
    *count = 0;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentType_getTypeDerivation(&variant->type, &derivation));
    if (!isArrayDerivation(derivation)) return kstd_persistentResult_wrongTypeKind;
    const int64_t items = variant->arrayCount;
    if (items != static_cast<int64_t>(static_cast<int32_t>(items))) return kstd_persistentResult_arraySizeOverflow;
    *begin = variant->value.pointer;
    *count = static_cast<intptr_t>(items);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getArrayBeginSizeIntPtrConst(const kstd_persistentVariant* variant,
                                                                               const void** begin, intptr_t* count) {
    VEXPERS_REQUIRE(begin != nullptr);
    void* first = nullptr;
    *begin = nullptr;
    const kstd_result result =
        kstd_persistentVariant_getArrayBeginSizeIntPtr(const_cast<kstd_persistentVariant*>(variant), &first, count);
    *begin = first;
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getPropertyUsingName(const kstd_persistentVariant* variant,
                                                                       const char16_t* path,
                                                                       kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_reset(property));
    if (path == nullptr || path[0] == 0) return kstd_persistentResult_invalidPropertyName;
    // Each part but the last is looked up into a local property of its own;
    // the next part is looked up in the object that one holds. All of them
    // live until the end: an object that a step made (and alone keeps alive)
    // may hold the objects of the steps after it. Short paths need no memory.
    size_t steps = 0;
    for (const char16_t* dot = ksys_wcschr(path, u'.'); dot != nullptr; dot = ksys_wcschr(dot + 1, u'.')) ++steps;
    kstd_persistentProperty local[2];
    kstd_persistentProperty* step = local;
    void* memory = nullptr;
    if (steps > std::size(local)) {
        VEXPERS_TRY(ksys_memory_alloc_internal(steps * sizeof(kstd_persistentProperty), &memory));
        step = static_cast<kstd_persistentProperty*>(memory);
    }
    size_t built = 0;
    VEXPERS_DEFER {
        while (built > 0) kstd_persistentProperty_destruct(&step[--built]);
        ksys_memory_free_internal(&memory);
    };
    const kstd_persistentVariant* current = variant;
    int32_t start = 0;
    for (;;) {
        const char16_t* dot = ksys_wcschr(path + start, u'.');
        if (dot == nullptr)
            return lookUpName(current, path, start, static_cast<int32_t>(ksys_wcslen(path + start)), property);
        const int32_t length = static_cast<int32_t>(dot - (path + start));
        VEXPERS_TRY(kstd_persistentProperty_construct(&step[built]));
        kstd_persistentProperty* found = &step[built++];
        VEXPERS_TRY(lookUpName(current, path, start, length, found));
        current = &found->value;
        start += length + 1;
    }
}
