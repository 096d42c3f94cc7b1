// The variant record: life cycle, typing, and access by type descriptor.
#include <atomic>
#include <mutex>

#include "frame/lifecycle.hpp"
#include "variant/core_accessors.hpp"
#include "types/empty_records.hpp"
#include "variant/variant_internal.hpp"

namespace vexpers::variant {
namespace {

// The type record behind a descriptor; 0x80004100 when there is none.
kstd_result recordOf(const kstd_persistentType* type, const kstd_persistentType_** record) {
    const void* whole = nullptr;
    VEXPERS_TRY(kstd_ptrhConst_getWholeShared(&type->record, &whole));
    if (whole == nullptr) return kstd_persistentResult_typeEmpty;
    *record = static_cast<const kstd_persistentType_*>(whole);
    return 0;
}

// The registered descriptors of the 52 core types, looked up on first use.
// They are resolved outside the mutex (the registry takes its own lock) and
// published under it; a failed look-up is retried by the next caller.
struct CoreTypeCache {
    std::mutex mutex;
    std::atomic<bool> ready{false};
    bool releaseRegistered = false;
    kstd_persistentType types[kstd_persistentCoreTypeId_count];
};
constinit CoreTypeCache coreTypes{};

kstd_result releaseCoreTypes(void*) {
    std::lock_guard lock(coreTypes.mutex);
    if (!coreTypes.ready.load(std::memory_order_relaxed)) return 0;
    coreTypes.ready.store(false, std::memory_order_relaxed);
    kstd_result first = 0;
    for (kstd_persistentType& type : coreTypes.types) {
        const kstd_result result = kstd_persistentType_destruct(&type);
        if (!failed(first) && failed(result)) first = result;
    }
    return first;
}

kstd_result loadCoreTypes() {
    kstd_persistentType found[kstd_persistentCoreTypeId_count];
    int32_t built = 0;
    auto undo = makeGuard([&] {
        while (built > 0) kstd_persistentType_destruct(&found[--built]);
    });
    for (int32_t id = 0; id < kstd_persistentCoreTypeId_count; ++id) {
        VEXPERS_TRY(kstd_persistentType_construct(&found[id]));
        ++built;
        VEXPERS_TRY(kstd_persistentType_resetCoreTypeId(&found[id], id));
    }
    std::lock_guard lock(coreTypes.mutex);
    if (coreTypes.ready.load(std::memory_order_relaxed)) return 0;  // another thread was first
    if (!coreTypes.releaseRegistered) {
        VEXPERS_TRY(ksys_shutdown_register(releaseCoreTypes, nullptr));
        coreTypes.releaseRegistered = true;
    }
    // Handles hold no pointer into themselves: moving them bytewise keeps
    // their references.
    for (int32_t id = 0; id < kstd_persistentCoreTypeId_count; ++id) coreTypes.types[id] = found[id];
    undo.dismiss();
    coreTypes.ready.store(true, std::memory_order_release);
    return 0;
}

}  // namespace

kstd_result coreType(int32_t id, const kstd_persistentType** type) {
    if (!coreTypes.ready.load(std::memory_order_acquire)) VEXPERS_TRY(loadCoreTypes());
    *type = &coreTypes.types[id];
    return 0;
}

kstd_result releaseValue(Variant* variant) {
    variant->value.uint64 = 0;
    VEXPERS_TRY(kstd_ptrh_reset(&variant->sharedObject));
    variant->arrayCount = 0;
    variant->containerVtable = nullptr;
    return 0;
}

kstd_result clearValue(Variant* variant) {
    VEXPERS_TRY(releaseValue(variant));
    variant->isBorrowed = 0;
    variant->value.uint64 = 0;
    return kstd_unicodeStringConst_reset(&variant->stringValue);
}

kstd_result holdCoreType(Variant* variant, int32_t id) {
    const kstd_persistentType* type = nullptr;
    VEXPERS_TRY(coreType(id, &type));
    VEXPERS_TRY(clearValue(variant));
    return kstd_persistentType_assign(&variant->type, type);
}

kstd_result describeType(const kstd_persistentType* type, TypeFacts* facts) {
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(recordOf(type, &record));
    if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    *facts = {record->category, record->derivation, record->coreTypeId};
    return 0;
}

bool isReservedCoreType(int32_t id) {
    static constexpr auto reserved = [] {
        struct Table {
            bool rows[kstd_persistentCoreTypeId_count] = {};
        } table;
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category) table.rows[id] = true;
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
        return table;
    }();
    return id >= 0 && id < kstd_persistentCoreTypeId_count && reserved.rows[id];
}

}  // namespace vexpers::variant

using namespace vexpers::variant;
using vexpers::makeGuard;

// ---- Life cycle --------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentVariant_construct(kstd_persistentVariant* variant) {
    VEXPERS_REQUIRE(variant != nullptr);
    *variant = vexpers::types::emptyVariant;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_assign(kstd_persistentVariant* variant,
                                                         const kstd_persistentVariant* source) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (variant == source) return 0;
    VEXPERS_TRY(releaseValue(variant));
    variant->arrayCount = 0;
    variant->isBorrowed = source->isBorrowed;
    variant->value = source->value;
    VEXPERS_TRY(kstd_persistentType_assign(&variant->type, &source->type));
    VEXPERS_TRY(kstd_unicodeStringConst_assign(&variant->stringValue, &source->stringValue));
    VEXPERS_TRY(kstd_ptrh_assign(&variant->sharedObject, &source->sharedObject));
    variant->containerVtable = source->containerVtable;
    variant->arrayCount = source->arrayCount;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_destruct(kstd_persistentVariant* variant) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_TRY(releaseValue(variant));
    VEXPERS_TRY(kstd_persistentType_destruct(&variant->type));
    VEXPERS_TRY(kstd_unicodeStringConst_destruct(&variant->stringValue));
    return kstd_ptrh_destruct(&variant->sharedObject);
}

VEXPERS_DEFINE_CONSTRUCT_COPY(kstd_persistentVariant)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentVariant)

// ---- Type ---------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentVariant_reset(kstd_persistentVariant* variant) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_TRY(clearValue(variant));
    return kstd_persistentType_reset(&variant->type);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_resetType(kstd_persistentVariant* variant,
                                                            const kstd_persistentType* type) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(clearValue(variant));
    return kstd_persistentType_assign(&variant->type, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_resetTypeName(kstd_persistentVariant* variant,
                                                                const char16_t* name) {
    VEXPERS_REQUIRE(variant != nullptr);
    if (name == nullptr || name[0] == 0) return kstd_persistentResult_invalidTypeName;
    VEXPERS_TRY(clearValue(variant));
    return kstd_persistentType_resetTypeName(&variant->type, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_resetCoreTypeId(kstd_persistentVariant* variant,
                                                                  int32_t coreTypeId) {
    VEXPERS_REQUIRE(variant != nullptr);
    if (coreTypeId < 0) return kstd_persistentResult_invalidCoreTypeId;
    if (coreTypeId < kstd_persistentCoreTypeId_count) return holdCoreType(variant, coreTypeId);
    // Not a core type id: the descriptor's own reset reports it.
    VEXPERS_TRY(clearValue(variant));
    return kstd_persistentType_resetCoreTypeId(&variant->type, coreTypeId);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getType(const kstd_persistentVariant* variant,
                                                          kstd_persistentType* type) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    return kstd_persistentType_assign(type, &variant->type);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getTypeCategory(const kstd_persistentVariant* variant,
                                                                  uint32_t* category) {
    VEXPERS_REQUIRE(variant != nullptr);
    return kstd_persistentType_getTypeCategory(&variant->type, category);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getTypeDerivation(const kstd_persistentVariant* variant,
                                                                    uint32_t* derivation) {
    VEXPERS_REQUIRE(variant != nullptr);
    return kstd_persistentType_getTypeDerivation(&variant->type, derivation);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getTypeCategoryAndDerivation(const kstd_persistentVariant* variant,
                                                                               uint32_t* category,
                                                                               uint32_t* derivation) {
    VEXPERS_REQUIRE(variant != nullptr);
    return kstd_persistentType_getTypeCategoryAndDerivation(&variant->type, category, derivation);
}

// ---- Access by type -----------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentVariant_setValueUsingType(kstd_persistentVariant* variant,
                                                                    const kstd_persistentType* type,
                                                                    const void* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(kstd_persistentVariant_resetType(variant, type));
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(recordOf(&variant->type, &record));
    if (record->derivation == kstd_persistentTypeDerivation_pointer && value == nullptr) return 0;
    if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    if (record->category == kstd_persistentTypeCategory_object) {
        // Borrowed: the object stays the caller's.
        variant->isBorrowed = 1;
        variant->value.pointer = const_cast<void*>(value);
        return 0;
    }
    const int32_t id = record->coreTypeId;
    if (id < 0 || record->derivation != kstd_persistentTypeDerivation_value)
        return kstd_persistentResult_wrongTypeKind;
    if (value == nullptr) return kstd_persistentResult_nullArgument;
    if (id >= kstd_persistentCoreTypeId_count) return kstd_persistentResult_invalidCoreTypeId;
    if (isReservedCoreType(id)) return kstd_persistentResult_notSupported;
    const vexpers::CoreVariantWriter writer = vexpers::coreVariantWriter(id);
    VEXPERS_REQUIRE(writer != nullptr);
    return writer(variant, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValueUsingType(const kstd_persistentVariant* variant,
                                                                    const kstd_persistentType* type, void* value) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    uint32_t equal = 0;
    VEXPERS_TRY(kstd_persistentType_compareEqual(type, &variant->type, &equal));
    if (equal == 0) return kstd_persistentResult_notSupported;  // no conversion by type
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(recordOf(type, &record));
    if (record->isKnown == 0) return kstd_persistentResult_typeNotRegistered;
    const int32_t id = record->coreTypeId;
    if (id < 0) {
        const kstd_persistentValueAccessVtable* access = record->valueAccess;
        if (access == nullptr) return kstd_persistentResult_noObjectVtable;
        if (access->getVariant == nullptr) return kstd_persistentResult_operationMissing;
        return access->getVariant(variant, value);
    }
    if (value == nullptr) return kstd_persistentResult_nullArgument;
    if (id >= kstd_persistentCoreTypeId_count) return kstd_persistentResult_invalidCoreTypeId;
    if (isReservedCoreType(id)) return kstd_persistentResult_notSupported;
    const vexpers::CoreVariantReader reader = vexpers::coreVariantReader(id);
    if (reader == nullptr) return kstd_persistentResult_operationMissing;  // the string pointers
    return reader(variant, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentVariant_getValuePtrConstUsingType(const kstd_persistentVariant* variant,
                                                                            const kstd_persistentType* type,
                                                                            const void** value) {
    VEXPERS_REQUIRE(variant != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    TypeFacts held{};
    VEXPERS_TRY(describeType(&variant->type, &held));
    uint32_t equal = 0;
    VEXPERS_TRY(kstd_persistentType_compareEqual(&variant->type, type, &equal));
    if (held.category != kstd_persistentTypeCategory_object || equal == 0) return kstd_persistentResult_typeMismatch;
    *value = variant->value.pointer;
    return 0;
}
