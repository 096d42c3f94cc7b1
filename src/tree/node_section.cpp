// Node sections: the flat record in which a node is written out and read
// back. Life cycle, writing a section from a node, building one for reading,
// and the getters.
#include "frame/lifecycle.hpp"
#include "tree/tree_internal.hpp"

using namespace vexpers::tree;

namespace {

void resetFields(Section* section) {
    section->sectionType = kstd_persistentPropertyNodeSectionType_none;
    section->flags = 0;
    section->objectId = -1;
    section->numItems = 0;
}

}  // namespace

// ---- Life cycle ------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_construct(kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    resetFields(section);
    VEXPERS_TRY(kstd_persistentPropertyInfo_construct(&section->info));
    const kstd_result result = kstd_persistentProperty_construct(&section->property);
    if (result < 0) kstd_persistentPropertyInfo_destruct(&section->info);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_assign(kstd_persistentPropertyNodeSection* section,
                                                                     const kstd_persistentPropertyNodeSection* source) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (section == source) return 0;
    section->sectionType = source->sectionType;
    section->flags = source->flags;
    section->objectId = source->objectId;
    section->numItems = source->numItems;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&section->info, &source->info));
    return kstd_persistentProperty_assign(&section->property, &source->property);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_destruct(kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_destruct(&section->info));
    return kstd_persistentProperty_destruct(&section->property);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_reset(kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    resetFields(section);
    VEXPERS_TRY(kstd_persistentPropertyInfo_reset(&section->info));
    return kstd_persistentProperty_reset(&section->property);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyNodeSection)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyNodeSection)

// ---- Writing and building --------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_assignNode(kstd_persistentPropertyNodeSection* section,
                                                                         const kstd_persistentPropertyNode* node,
                                                                         uint32_t sectionType) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(node != nullptr);
    section->sectionType = sectionType;
    section->flags = node->flags;
    section->objectId = node->objectId;
    section->numItems = node->numItems;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&section->info, &node->info));
    VEXPERS_TRY(kstd_persistentProperty_assign(&section->property, &node->leafProperty));
    if (sectionType == kstd_persistentPropertyNodeSectionType_start ||
        sectionType == kstd_persistentPropertyNodeSectionType_leaf ||
        sectionType == kstd_persistentPropertyNodeSectionType_startWithValue)
        section->flags |= flag::hasInfo | flag::started;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getSectionType(
    const kstd_persistentPropertyNodeSection* section, uint32_t* sectionType) {
    VEXPERS_REQUIRE(sectionType != nullptr);
    *sectionType = kstd_persistentPropertyNodeSectionType_none;
    VEXPERS_REQUIRE(section != nullptr);
    *sectionType = section->sectionType;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setSectionType(kstd_persistentPropertyNodeSection* section,
                                                                             uint32_t sectionType) {
    VEXPERS_REQUIRE(section != nullptr);
    section->sectionType = sectionType;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setObjectInfo(
    kstd_persistentPropertyNodeSection* section, const kstd_persistentPropertyInfo* info,
    const kstd_persistentPropertyInfo* objectInfo, uint32_t hasObjectId, int64_t objectId, uint32_t leafKind,
    uint32_t arrayKind, int64_t numItems, uint32_t isDeleted) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(objectInfo != nullptr);
    // The object's type must be one the registry can name; nothing else is
    // taken from it. A descriptor that already shares a record was named by
    // the registry when it was made, so only an empty one is looked up.
    if (objectInfo->type.record.shared == nullptr) {
        const char16_t* typeName = nullptr;
        uint32_t derivation = 0;
        VEXPERS_TRY(kstd_persistentPropertyInfo_getTypeName(objectInfo, &typeName));
        VEXPERS_TRY(kstd_persistentPropertyInfo_getTypeDerivation(objectInfo, &derivation));
        kstd_persistentType type;
        VEXPERS_TRY(kstd_persistentType_construct(&type));
        VEXPERS_DEFER { kstd_persistentType_destruct(&type); };
        VEXPERS_TRY(kstd_persistentTypeGetType(typeName, derivation, 0, &type));
    }
    section->flags = 0;
    section->objectId = objectId;
    section->numItems = numItems;
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&section->info, info));
    uint32_t flags = flag::hasInfo | leafKindFlags(leafKind);
    if (hasObjectId != 0) flags |= flag::hasObjectId;
    if (isDeleted != 0) flags |= flag::deleted;
    if (arrayKind == 1) flags |= flag::arrayCore;
    if (arrayKind == 2) flags |= flag::arrayOther;
    if (leafKind == 0 && arrayKind == 0) flags |= flag::compound;
    section->flags = flags;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setObjectInfoNonCoreArrayItem(
    kstd_persistentPropertyNodeSection* section, uint32_t hasObjectId, int64_t objectId) {
    VEXPERS_REQUIRE(section != nullptr);
    section->objectId = objectId;
    section->numItems = 0;
    VEXPERS_TRY(kstd_persistentPropertyInfo_reset(&section->info));
    section->flags = flag::arrayItem | flag::compound | (hasObjectId != 0 ? flag::hasObjectId : 0u);
    section->sectionType = kstd_persistentPropertyNodeSectionType_start;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectInfoNonCoreArrayItem_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* hasObjectId, int64_t* objectId) {
    VEXPERS_REQUIRE(hasObjectId != nullptr);
    VEXPERS_REQUIRE(objectId != nullptr);
    *hasObjectId = 0;
    *objectId = -1;
    VEXPERS_REQUIRE(section != nullptr);
    if ((section->flags & flag::arrayItem) == 0) return ksys_result_failure;
    *hasObjectId = (section->flags & flag::hasObjectId) != 0 ? 1 : 0;
    *objectId = section->objectId;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setLeafPropertyValue(
    kstd_persistentPropertyNodeSection* section, const kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_resetInfoAndValue(&section->property, &section->info, value));
    section->flags |= flag::hasValue | flag::leaf;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setPropertyPointerNull(
    kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_resetInfoAndValuePointerNull(&section->property, &section->info));
    section->numItems = 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setPropertyArrayEmpty(
    kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_TRY(kstd_persistentProperty_resetInfoAndValueArrayEmpty(&section->property, &section->info));
    section->numItems = 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(
    kstd_persistentPropertyNodeSection* section, int32_t count, void** first, uint32_t* elementSize) {
    if (first != nullptr) *first = nullptr;
    if (elementSize != nullptr) *elementSize = 0;
    VEXPERS_REQUIRE(section != nullptr);
    if (count < 0) return kstd_persistentResult_invalidCount;
    // A count read from a file allocates at most the documented cap. A type
    // without a size cannot allocate: the property reports why.
    uint32_t size = 0;
    if (kstd_persistentType_getElementSize(&section->info.type, &size) >= 0 &&
        int64_t{count} * size > kstd_persistentPropertyNodeSection_maxArrayBytes)
        return kstd_persistentResult_arraySizeOverflow;
    VEXPERS_TRY(kstd_persistentProperty_resetInfoAndValueArrayAndAlloc(&section->property, &section->info, count,
                                                                       first, elementSize));
    section->numItems = count;
    return 0;
}

// ---- Reading -----------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getIsLeaf(const kstd_persistentPropertyNodeSection* section,
                                                                        uint32_t* isLeaf, uint32_t* leafKind) {
    VEXPERS_REQUIRE(isLeaf != nullptr);
    *isLeaf = 0;
    if (leafKind != nullptr) *leafKind = 0;
    VEXPERS_REQUIRE(section != nullptr);
    uint32_t kind = 0;
    if (!decodeLeafKind(section->flags, &kind)) return ksys_result_failure;
    *isLeaf = (section->flags & flag::leaf) != 0 ? 1 : 0;
    if (leafKind != nullptr) *leafKind = kind;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getIsArray(const kstd_persistentPropertyNodeSection* section,
                                                                         uint32_t* isArray, uint32_t* arrayKind) {
    VEXPERS_REQUIRE(isArray != nullptr);
    *isArray = 0;
    if (arrayKind != nullptr) *arrayKind = 0;
    VEXPERS_REQUIRE(section != nullptr);
    const uint32_t kind = decodeArrayKind(section->flags);
    *isArray = kind != 0 ? 1 : 0;
    if (arrayKind != nullptr) *arrayKind = kind;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getIsDeleted_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* isDeleted) {
    VEXPERS_REQUIRE(isDeleted != nullptr);
    *isDeleted = 0;
    VEXPERS_REQUIRE(section != nullptr);
    *isDeleted = (section->flags & flag::deleted) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getPointerIsNull_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* isNull) {
    VEXPERS_REQUIRE(isNull != nullptr);
    *isNull = 0;
    VEXPERS_REQUIRE(section != nullptr);
    *isNull = allSet(section->flags, flag::nullPointer) ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getDataAccess_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* dataAccess) {
    VEXPERS_REQUIRE(dataAccess != nullptr);
    *dataAccess = 0;
    VEXPERS_REQUIRE(section != nullptr);
    return kstd_persistentPropertyInfo_getDataAccess(&section->info, dataAccess);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getName_(const kstd_persistentPropertyNodeSection* section,
                                                                       const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    VEXPERS_REQUIRE(section != nullptr);
    return kstd_persistentPropertyInfo_getName(&section->info, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectTypeName_(
    const kstd_persistentPropertyNodeSection* section, const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    VEXPERS_REQUIRE(section != nullptr);
    return kstd_persistentPropertyInfo_getTypeName(&section->info, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectRunTimeTypeName_(
    const kstd_persistentPropertyNodeSection* section, const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    VEXPERS_REQUIRE(section != nullptr);
    return kstd_persistentType_getTypeName(&section->property.value.type, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectCoreTypeId_(
    const kstd_persistentPropertyNodeSection* section, int32_t* coreTypeId) {
    VEXPERS_REQUIRE(coreTypeId != nullptr);
    *coreTypeId = kstd_persistentCoreTypeId_notSet;
    VEXPERS_REQUIRE(section != nullptr);
    return kstd_persistentType_getCoreTypeId(&section->property.value.type, coreTypeId);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectId_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* hasObjectId, int64_t* objectId) {
    VEXPERS_REQUIRE(hasObjectId != nullptr);
    VEXPERS_REQUIRE(objectId != nullptr);
    *hasObjectId = 0;
    *objectId = -1;
    VEXPERS_REQUIRE(section != nullptr);
    *hasObjectId = (section->flags & flag::hasObjectId) != 0 ? 1 : 0;
    *objectId = section->objectId;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getNumItemsIfArray_(
    const kstd_persistentPropertyNodeSection* section, int64_t* numItems) {
    VEXPERS_REQUIRE(numItems != nullptr);
    *numItems = 0;
    VEXPERS_REQUIRE(section != nullptr);
    *numItems = section->numItems;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getNodeSectionPropertyInfo_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentPropertyInfo_assign(info, &section->info);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getObjectVariant_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    return kstd_persistentVariant_assign(value, &section->property.value);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_getPropertyAndObjectInfo_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentProperty* property,
    kstd_persistentPropertyInfo* info, uint32_t* hasObjectId, int64_t* objectId, uint32_t* leafKind,
    uint32_t* arrayKind, int64_t* numItems, uint32_t* isDeleted) {
    VEXPERS_REQUIRE(property != nullptr && info != nullptr);
    VEXPERS_REQUIRE(hasObjectId != nullptr && objectId != nullptr && leafKind != nullptr);
    VEXPERS_REQUIRE(arrayKind != nullptr && numItems != nullptr && isDeleted != nullptr);
    *hasObjectId = 0;
    *objectId = -1;
    *leafKind = 0;
    *arrayKind = 0;
    *numItems = 0;
    *isDeleted = 0;
    VEXPERS_REQUIRE(section != nullptr);
    uint32_t kind = 0;
    if (!decodeLeafKind(section->flags, &kind)) return ksys_result_failure;
    VEXPERS_TRY(kstd_persistentProperty_assign(property, &section->property));
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(info, &section->info));
    *hasObjectId = (section->flags & flag::hasObjectId) != 0 ? 1 : 0;
    *objectId = section->objectId;
    *leafKind = kind;
    *arrayKind = decodeArrayKind(section->flags);
    *numItems = section->numItems;
    *isDeleted = (section->flags & flag::deleted) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNodeSection_compareEqualPropertyInfo(
    const kstd_persistentPropertyNodeSection* first, const kstd_persistentPropertyNodeSection* second,
    uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(first != nullptr);
    VEXPERS_REQUIRE(second != nullptr);
    if (first == second) {
        *equal = 1;
        return 0;
    }
    return kstd_persistentPropertyInfo_compareEqual(&first->info, &second->info, equal);
}
