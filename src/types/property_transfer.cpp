// Moving an object's declared properties between the object and a bag
// through its type's property info entries, then through the type's own
// transfer operation.
#include "types/property_transfer.hpp"

#include "property/bag_internal.hpp"
#include "property/property_exchange.hpp"
#include "types/type_record.hpp"

namespace vexpers::types {
namespace {

using vexpers::property::PropertyInfoEntry;

// The value of an entry that has no store accessor, by the first accessor
// present in storing order, into `value` as the entry's type `type`.
kstd_result readValue(const kstd_persistentPropertyAccessorSlots& slots, const void* object,
                      const kstd_persistentType* type, kstd_persistentVariant* value) {
    if (slots.addressAccessor != nullptr || slots.secondAddressAccessor != nullptr) {
        const auto accessor = slots.addressAccessor != nullptr ? slots.addressAccessor : slots.secondAddressAccessor;
        const void* member = nullptr;
        VEXPERS_TRY(accessor(object, &member));
        return kstd_persistentVariant_setValueUsingType(value, type, member);
    }
    if (slots.variantGetter != nullptr) return slots.variantGetter(object, value);
    if (slots.memberLocator != nullptr) {
        // The locator gives the container and its operation table; storing
        // only reads them.
        void* container = nullptr;
        void* table = nullptr;
        VEXPERS_TRY(slots.memberLocator(const_cast<void*>(object), &container, &table));
        return kstd_persistentVariant_setValueUsingTypeArrayInContainer(
            value, type, container, static_cast<const kstd_persistentContainerVtable*>(table));
    }
    if (slots.enumGetter != nullptr) {
        int64_t enumValue = 0;
        VEXPERS_TRY(slots.enumGetter(object, &enumValue));
        return kstd_persistentVariant_setValueUsingTypeEnum(value, type, enumValue);
    }
    if (slots.bitfield32Getter != nullptr) {
        uint32_t bits = 0;
        VEXPERS_TRY(slots.bitfield32Getter(object, &bits));
        return kstd_persistentVariant_setValueBitfield32UsingTypeEnumBitfield(value, type, bits);
    }
    uint64_t bits = 0;
    VEXPERS_TRY(slots.bitfield64Getter(object, &bits));
    return kstd_persistentVariant_setValueBitfield64UsingTypeEnumBitfield(value, type, bits);
}

bool givesValue(const kstd_persistentPropertyAccessorSlots& slots) {
    return slots.addressAccessor != nullptr || slots.secondAddressAccessor != nullptr ||
           slots.variantGetter != nullptr || slots.memberLocator != nullptr || slots.enumGetter != nullptr ||
           slots.bitfield32Getter != nullptr || slots.bitfield64Getter != nullptr;
}

// Storing bag: one property per entry that gives one, in entry order.
kstd_result storeThroughEntries(std::span<PropertyInfoEntry> entries, void* object, kstd_persistentPropertyBag* bag) {
    VEXPERS_TRY(vexpers::property::reserveSlots(bag, static_cast<int32_t>(entries.size())));
    for (PropertyInfoEntry& entry : entries) {
        const kstd_persistentPropertyAccessorSlots& slots = entry.accessors.slots;
        bool stored = false;
        if (slots.storeAccessor == nullptr && givesValue(slots)) {
            // The property takes the entry's own name: read it straight into
            // the bag's next slot instead of through the spare property.
            VEXPERS_TRY(vexpers::property::resolveEntry(&entry));
            if (!vexpers::property::entryIsResolved(entry)) return kstd_persistentResult_typeNotRegistered;
            VEXPERS_TRY(vexpers::property::addWith(bag, entry.info.name.chars, [&](kstd_persistentProperty* slot) {
                return readEntryProperty(&entry, object, &stored, slot);
            }));
            continue;
        }
        // Anything else stores through the spare property, whose name is
        // known only then; the new slot takes its contents over.
        kstd_persistentProperty& spare = bag->spareProperty;
        VEXPERS_TRY(readEntryProperty(&entry, object, &stored, &spare));
        if (stored)
            VEXPERS_TRY(vexpers::property::addWith(bag, spare.info.name.chars, [&spare](kstd_persistentProperty* slot) {
                vexpers::property::exchangeProperties(*slot, spare);
                return kstd_result{0};
            }));
    }
    return 0;
}

// Loading bag: loading an object property by property from a bag is not
// offered (objects are composed from nodes), so a bag that holds a property
// for a loadable entry is refused.
kstd_result loadThroughEntries(std::span<PropertyInfoEntry> entries, const kstd_persistentPropertyBag* bag) {
    for (const PropertyInfoEntry& entry : entries) {
        if (!vexpers::property::entryIsLoadable(entry)) continue;
        if (vexpers::property::findInUse(bag, entry.info.name.chars) != nullptr)
            return kstd_persistentResult_notSupported;
    }
    return 0;
}

}  // namespace

kstd_result readEntryProperty(PropertyInfoEntry* entry, const void* object, bool* stored,
                              kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(entry != nullptr);
    VEXPERS_REQUIRE(stored != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    *stored = false;
    VEXPERS_TRY(kstd_persistentProperty_reset(property));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    const kstd_persistentPropertyAccessorSlots& slots = entry->accessors.slots;
    if (slots.storeAccessor != nullptr) {
        VEXPERS_TRY(slots.storeAccessor(object, property));
        *stored = true;
        return 0;
    }
    if (!givesValue(slots)) return 0;
    VEXPERS_TRY(vexpers::property::resolveEntry(entry));
    if (!vexpers::property::entryIsResolved(*entry)) return kstd_persistentResult_typeNotRegistered;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&property->info, &entry->info));
    VEXPERS_TRY(readValue(slots, object, &property->info.type, &property->value));
    *stored = true;
    return 0;
}

kstd_result getEntryPropertyUsingNamePart(const kstd_persistentType_* record, const void* object,
                                          const char16_t* text, int32_t start, int32_t length, bool* found,
                                          kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(found != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    *found = false;
    VEXPERS_TRY(kstd_persistentProperty_reset(property));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (text == nullptr || text[0] == 0 || start < 0 || length < 1 ||
        int64_t(start) + length > static_cast<int64_t>(ksys_wcslen(text)))
        return kstd_persistentResult_invalidPropertyName;
    const char16_t* part = text + start;
    for (PropertyInfoEntry& entry : vexpers::property::entriesOf(record)) {
        const kstd_stringConst& name = entry.info.name;
        if (name.chars == nullptr || name.length != length || ksys_wcsncmp(name.chars, part, length) != 0) continue;
        bool stored = false;
        VEXPERS_TRY(readEntryProperty(&entry, object, &stored, property));
        if (stored) {
            *found = true;
            return 0;
        }
    }
    return 0;
}

}  // namespace vexpers::types

VEXPERS_EXPORT kstd_result kstd_persistentType_transferObjectPersistentProperties(const kstd_persistentType* type,
                                                                                  void* object,
                                                                                  kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(bag != nullptr);
    const kstd_persistentType_* record = nullptr;
    VEXPERS_TRY(vexpers::types::resolveRecord(type, true, &record));
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (bag->isStoring != 0) VEXPERS_TRY(kstd_persistentPropertyBag_removeAllProperties(bag));
    const kstd_persistentValueAccessVtable* access = record->valueAccess;
    if (access == nullptr) return kstd_persistentResult_noObjectVtable;
    const std::span<vexpers::property::PropertyInfoEntry> entries = vexpers::property::entriesOf(record);
    if (!entries.empty()) {
        if (bag->isStoring != 0)
            VEXPERS_TRY(vexpers::types::storeThroughEntries(entries, object, bag));
        else
            VEXPERS_TRY(vexpers::types::loadThroughEntries(entries, bag));
    }
    if (access->transferProperties != nullptr) return access->transferProperties(object, bag);
    return 0;
}
