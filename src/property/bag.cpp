// The property bag: life cycle, the add protocol, finding by name and by
// path, and reading and transferring by type.
#include "frame/lifecycle.hpp"
#include "property/bag_internal.hpp"
#include "property/name_index.hpp"

namespace vexpers::property {
namespace {

namespace index = nameindex;

// The slot records and their number.
Property* slotsOf(Bag* bag, int64_t* size) {
    Property* begin = nullptr;
    intptr_t count = 0;
    kstd_vector_kstd_persistentProperty_getBeginSizeIntPtr(&bag->propertySlots, &begin, &count);
    *size = count;
    return begin;
}

void refreshBegin(Bag* bag) {
    int64_t size = 0;
    bag->propertiesBegin = slotsOf(bag, &size);
}

// Empties the bag; its index goes with the properties it described.
void empty(Bag* bag) {
    bag->numProperties = 0;
    index::release(&bag->nameIndex);
}

int32_t lengthOf(const char16_t* text) { return static_cast<int32_t>(ksys_wcslen(text)); }

// The scan the index stands in for: the properties in use from the first.
const Property* scan(const Bag* bag, const char16_t* text, int32_t length) {
    for (int32_t i = 0; i < bag->numProperties; ++i) {
        const kstd_stringConst& name = bag->propertiesBegin[i].info.name;
        if (name.chars != nullptr && name.length == length && ksys_wcsncmp(name.chars, text, length) == 0)
            return &bag->propertiesBegin[i];
    }
    return nullptr;
}

const Property* lookUp(const Bag* bag, const char16_t* text, int32_t length) {
    if (text == nullptr) return nullptr;
    int32_t slot = -1;
    if (index::find(bag->nameIndex, bag->propertiesBegin, bag->numProperties, text, length, &slot))
        return slot >= 0 ? &bag->propertiesBegin[slot] : nullptr;
    return scan(bag, text, length);
}

}  // namespace

const Property* findInUse(const Bag* bag, const char16_t* text, int32_t length) { return lookUp(bag, text, length); }

const Property* findInUse(const Bag* bag, const char16_t* name) {
    return name != nullptr ? lookUp(bag, name, lengthOf(name)) : nullptr;
}

kstd_result NewSlot::reserve(const char16_t* name) {
    if (name == nullptr || name[0] == 0) return kstd_persistentResult_invalidPropertyName;
    const int32_t count = bag_->numProperties;
    refreshBegin(bag_);
    // Large bags find duplicates through the index, which gets room for the
    // new name before anything changes.
    if (count >= index::buildThreshold) VEXPERS_TRY(index::prepare(&bag_->nameIndex, bag_->propertiesBegin, count));
    if (findInUse(bag_, name) != nullptr) return kstd_persistentResult_duplicatePropertyName;
    int64_t size = 0;
    slotsOf(bag_, &size);
    if (size < int64_t(count) + 1) {
        VEXPERS_TRY(kstd_vector_kstd_persistentProperty_resize(&bag_->propertySlots, int64_t(count) + 1));
        refreshBegin(bag_);
    }
    index_ = count;
    bag_->numProperties = count + 1;
    return 0;
}

Property* NewSlot::slot() const { return &bag_->propertiesBegin[index_]; }

void NewSlot::commit() {
    committed_ = true;
    index::append(&bag_->nameIndex, bag_->propertiesBegin, index_);
}

NewSlot::~NewSlot() {
    if (index_ < 0 || committed_) return;
    // Give the slot back. If erasing it fails (it may need memory when spare
    // slots follow), it stays behind as one more spare slot.
    kstd_vector_kstd_persistentProperty_eraseElement(&bag_->propertySlots, slot());
    refreshBegin(bag_);
    bag_->numProperties = index_;
}

kstd_result reserveSlots(Bag* bag, int32_t count) {
    VEXPERS_REQUIRE(bag != nullptr);
    empty(bag);
    int64_t size = 0;
    slotsOf(bag, &size);
    if (size >= count) return 0;
    const kstd_result result = kstd_vector_kstd_persistentProperty_resize(&bag->propertySlots, count);
    refreshBegin(bag);
    return result;
}

}  // namespace vexpers::property

using namespace vexpers::property;

// ---- Life cycle ------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_construct(kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(bag != nullptr);
    bag->isStoring = 1;
    bag->propertiesBegin = nullptr;
    bag->numProperties = 0;
    bag->nameIndex = nullptr;
    VEXPERS_TRY(kstd_vector_kstd_persistentProperty_constructEmpty(&bag->propertySlots));
    auto slots = vexpers::makeGuard([&] { kstd_vector_kstd_persistentProperty_destruct(&bag->propertySlots); });
    VEXPERS_TRY(kstd_persistentProperty_construct(&bag->spareProperty));
    slots.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_assign(kstd_persistentPropertyBag* bag,
                                                             const kstd_persistentPropertyBag* source) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (bag == source) return 0;
    vexpers::property::nameindex::release(&bag->nameIndex);
    bag->numProperties = 0;
    bag->propertiesBegin = nullptr;
    {
        // The first-element pointer follows the slots whether or not they
        // could be copied.
        VEXPERS_DEFER { refreshBegin(bag); };
        VEXPERS_TRY(kstd_vector_kstd_persistentProperty_assign(&bag->propertySlots, &source->propertySlots));
    }
    VEXPERS_TRY(kstd_persistentProperty_assign(&bag->spareProperty, &source->spareProperty));
    // A large copy gets its index before its properties count.
    if (source->numProperties >= vexpers::property::nameindex::buildThreshold)
        VEXPERS_TRY(
            vexpers::property::nameindex::prepare(&bag->nameIndex, bag->propertiesBegin, source->numProperties));
    bag->numProperties = source->numProperties;
    bag->isStoring = source->isStoring;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_destruct(kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(bag != nullptr);
    vexpers::property::nameindex::release(&bag->nameIndex);
    VEXPERS_TRY(kstd_vector_kstd_persistentProperty_destruct(&bag->propertySlots));
    return kstd_persistentProperty_destruct(&bag->spareProperty);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyBag)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyBag)

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_reset(kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(bag != nullptr);
    empty(bag);
    bag->isStoring = 1;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_removeAllProperties(kstd_persistentPropertyBag* bag) {
    VEXPERS_REQUIRE(bag != nullptr);
    empty(bag);
    return 0;
}

// ---- Finding ---------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getPropertiesBeginSizeConst(
    const kstd_persistentPropertyBag* bag, const kstd_persistentProperty** begin, int32_t* count) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(begin != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    *begin = bag->propertiesBegin;
    *count = bag->numProperties;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getPropertyPtrConstUsingName(
    const kstd_persistentPropertyBag* bag, const char16_t* name, const kstd_persistentProperty** property) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    *property = findInUse(bag, name);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getPropertyUsingName(const kstd_persistentPropertyBag* bag,
                                                                           const char16_t* name,
                                                                           kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_reset(property));
    if (name == nullptr || name[0] == 0) return kstd_persistentResult_invalidPropertyName;
    const char16_t* dot = ksys_wcschr(name, u'.');
    if (dot == nullptr) {
        const Property* found = findInUse(bag, name);
        if (found == nullptr) return kstd_persistentResult_propertyNotFound;
        return kstd_persistentProperty_assign(property, found);
    }
    // A path: the first part names a property of the bag, the rest is looked
    // up in the object that property holds.
    const Property* found = findInUse(bag, name, static_cast<int32_t>(dot - name));
    if (found == nullptr) return kstd_persistentResult_propertyNotFound;
    return kstd_persistentProperty_getSubpropertyUsingName(found, dot + 1, property);
}

// ---- Adding ----------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addProperty(kstd_persistentPropertyBag* bag,
                                                                  const kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    // A property that lies in the bag's own slots would move when they grow:
    // add a copy of it instead.
    int64_t size = 0;
    const Property* slots = slotsOf(bag, &size);
    if (size > 0 && property >= slots && property < slots + size) {
        kstd_persistentProperty copy;
        VEXPERS_TRY(kstd_persistentProperty_constructCopy(&copy, property));
        VEXPERS_DEFER { kstd_persistentProperty_destruct(&copy); };
        return kstd_persistentPropertyBag_addProperty(bag, &copy);
    }
    return addWith(bag, property->info.name.chars,
                   [&](Property* slot) { return kstd_persistentProperty_assign(slot, property); });
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValueUsingType(kstd_persistentPropertyBag* bag,
                                                                        const kstd_persistentType* type,
                                                                        const char16_t* name, uint32_t dataAccess,
                                                                        const void* object) {
    VEXPERS_REQUIRE(type != nullptr);
    return addWith(bag, name, [&](Property* slot) {
        return kstd_persistentProperty_resetInfoAndValueUsingType(slot, type, name, dataAccess, object);
    });
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValueUsingTypeEnum(kstd_persistentPropertyBag* bag,
                                                                            const kstd_persistentType* type,
                                                                            const char16_t* name, uint32_t dataAccess,
                                                                            int64_t value) {
    VEXPERS_REQUIRE(type != nullptr);
    return addWith(bag, name, [&](Property* slot) {
        return kstd_persistentProperty_resetInfoAndValueUsingTypeEnum(slot, type, name, dataAccess, value);
    });
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValueBitfield32UsingTypeEnumBitfield(
    kstd_persistentPropertyBag* bag, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint32_t bits) {
    VEXPERS_REQUIRE(type != nullptr);
    return addWith(bag, name, [&](Property* slot) {
        return kstd_persistentProperty_resetInfoAndValueBitfield32UsingTypeEnumBitfield(slot, type, name, dataAccess,
                                                                                        bits);
    });
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_addValueBitfield64UsingTypeEnumBitfield(
    kstd_persistentPropertyBag* bag, const kstd_persistentType* type, const char16_t* name, uint32_t dataAccess,
    uint64_t bits) {
    VEXPERS_REQUIRE(type != nullptr);
    return addWith(bag, name, [&](Property* slot) {
        return kstd_persistentProperty_resetInfoAndValueBitfield64UsingTypeEnumBitfield(slot, type, name, dataAccess,
                                                                                        bits);
    });
}

// ---- Reading and transferring by type ---------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getValueUsingType(const kstd_persistentPropertyBag* bag,
                                                                        const kstd_persistentType* type,
                                                                        const char16_t* name, uint32_t* dataAccess,
                                                                        void* object) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(object != nullptr);
    const Property* found = findInUse(bag, name);
    if (found == nullptr) return kstd_persistentResult_propertyNotFound;
    VEXPERS_TRY(kstd_persistentProperty_getValueUsingType(found, type, object));
    if (dataAccess != nullptr) *dataAccess = found->info.dataAccess;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_getValuePtrConstUsingType(const kstd_persistentPropertyBag* bag,
                                                                                const kstd_persistentType* type,
                                                                                const char16_t* name,
                                                                                uint32_t* dataAccess,
                                                                                const void** value) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    const Property* found = findInUse(bag, name);
    if (found == nullptr) return kstd_persistentResult_propertyNotFound;
    VEXPERS_TRY(kstd_persistentProperty_getValuePtrConstUsingType(found, type, value));
    if (dataAccess != nullptr) *dataAccess = found->info.dataAccess;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyBag_transferValueUsingType(kstd_persistentPropertyBag* bag,
                                                                             const kstd_persistentType* type,
                                                                             const char16_t* name,
                                                                             uint32_t* dataAccess, void* object) {
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(object != nullptr);
    if (bag->isStoring == 0) return kstd_persistentPropertyBag_getValueUsingType(bag, type, name, dataAccess, object);
    return kstd_persistentPropertyBag_addValueUsingType(bag, type, name, dataAccess != nullptr ? *dataAccess : 2,
                                                        object);
}
