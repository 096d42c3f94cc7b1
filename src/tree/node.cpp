// Property nodes: setting a node's value, the start/end protocol by which a
// tree is rebuilt from sections, navigation and lookups, the descriptor and
// value accessors, and freeing a subtree without recursion.
#include <utility>

#include "property/property_exchange.hpp"
#include "tree/tree_internal.hpp"
#include "types/type_record.hpp"

namespace vexpers::tree {
namespace {

bool isEmptyName(const char16_t* name) { return name == nullptr || name[0] == 0; }

// Whether a section's flag word is one that writers make: only defined bits;
// at most one leaf kind bit, and only with the leaf bit; a leaf bit with a
// kind bit unless the node takes its value from the section (which adds the
// kind, as a section made with setLeafPropertyValue expects); at most one
// array kind; compound never with an array bit, and with a leaf bit only for
// a reference leaf (decomposition marks an object compound before it finds
// that the object was met already, and flags are only ever added).
bool isWellFormed(uint32_t flags, bool takesValue) {
    if ((flags & ~flag::known) != 0) return false;
    // At most one leaf-kind bit, and only on a leaf.
    const uint32_t kinds = flags & flag::leafKindBits;
    if ((kinds & (kinds - 1)) != 0 || (kinds != 0 && (flags & flag::leaf) == 0)) return false;
    if ((flags & flag::leaf) != 0 && kinds == 0 && !takesValue) return false;
    if (allSet(flags, flag::arrayCore | flag::arrayOther)) return false;
    if ((flags & flag::compound) != 0) {
        if ((flags & (flag::arrayCore | flag::arrayOther)) != 0) return false;
        if ((flags & flag::leaf) != 0 && !allSet(flags, flag::reference)) return false;
    }
    return true;
}

// The limits on what a section read from a file may carry: its object id
// and the length of its names.
kstd_result checkSectionLimits(const Section* section) {
    if (section->objectId > kstd_persistentPropertyTree_maxObjectId) return kstd_persistentResult_invalidArgument;
    if (section->info.name.length > kstd_persistentPropertyNodeSection_maxNameUnits)
        return kstd_persistentResult_nameTooLong;
    const kstd_persistentType_* record = nullptr;
    if (types::resolveRecord(&section->info.type, false, &record) >= 0 &&
        record->name.length > kstd_persistentPropertyNodeSection_maxNameUnits)
        return kstd_persistentResult_nameTooLong;
    return 0;
}

kstd_result startFromSection(Node* node, const Section* section) {
    if ((node->flags & flag::started) != 0) return ksys_result_failure;
    const uint32_t type = section->sectionType;
    if (type != kstd_persistentPropertyNodeSectionType_start && type != kstd_persistentPropertyNodeSectionType_leaf &&
        type != kstd_persistentPropertyNodeSectionType_startWithValue)
        return ksys_result_failure;
    const bool takesValue =
        type != kstd_persistentPropertyNodeSectionType_start && !allSet(section->flags, flag::reference);
    if (!isWellFormed(section->flags, takesValue) || section->objectId < -1 || section->numItems < 0)
        return ksys_result_failure;
    VEXPERS_TRY(checkSectionLimits(section));
    // A node that takes its value gets its descriptor from that value's
    // property (setValue), so only the others copy the section's.
    if (!takesValue) VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&node->info, &section->info));
    // The started and ended bits of a section describe the node it was
    // written from; this node's state comes from the protocol alone.
    node->flags = section->flags & ~(flag::started | flag::ended);
    node->objectId = section->objectId;
    node->numItems = section->numItems;
    if (takesValue) VEXPERS_TRY(setValue(node, &section->property));
    node->flags |= flag::hasInfo | flag::started;
    if (type == kstd_persistentPropertyNodeSectionType_leaf) node->flags |= flag::ended;
    return 0;
}

bool isOpen(const Node* node) {
    return (node->flags & flag::started) != 0 && (node->flags & flag::ended) == 0;
}

// Appends a new child to an open node; *child is the new node.
kstd_result appendNewChild(Node* node, Node** child) {
    if (!isOpen(node)) return ksys_result_failure;
    VEXPERS_REQUIRE(node->owner != nullptr);
    VEXPERS_TRY(allocNode(node->owner, child));
    appendChild(node, *child);
    return 0;
}

kstd_result matchingChild(const Node* node, const char16_t* name, uint32_t mustExist, const Node** child) {
    *child = nullptr;
    if (isEmptyName(name)) return kstd_persistentResult_invalidPropertyName;
    for (const Node* c = node->firstChild; c != nullptr; c = c->nextSibling) {
        uint32_t matches = 0;
        VEXPERS_TRY(kstd_persistentPropertyInfo_doesNameMatch(&c->info, name, &matches));
        if (matches != 0) {
            *child = c;
            return 0;
        }
    }
    return mustExist != 0 ? kstd_persistentResult_propertyNotFound : 0;
}

// The node's property when it is a leaf with a value, else null.
const kstd_persistentProperty* leafPropertyOf(const Node* node) {
    return allSet(node->flags, flag::leaf | flag::hasValue) ? &node->leafProperty : nullptr;
}

// The registered type that `info` names: its own when that is a registered
// one, else the registry's of the same name and derivation, looked up into
// `scratch`. *registered is null when there is none.
kstd_result lookUpType(const kstd_persistentPropertyInfo* info, kstd_persistentType* scratch,
                       const kstd_persistentType** registered) {
    *registered = nullptr;
    uint32_t isKnown = 0;
    if (kstd_persistentType_getIsKnown(&info->type, &isKnown) < 0) return 0;  // an empty type names nothing
    if (isKnown != 0) {
        *registered = &info->type;
        return 0;
    }
    const char16_t* name = nullptr;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentType_getTypeName(&info->type, &name));
    VEXPERS_TRY(kstd_persistentType_getTypeDerivation(&info->type, &derivation));
    if (isEmptyName(name)) return 0;
    if (kstd_persistentTypeGetType(name, derivation, 1, scratch) >= 0) *registered = scratch;
    return 0;
}

// Reads the leaf value of the child `name`, or of the node itself when it
// has no such child.
template <class T, kstd_result (*Get)(const kstd_persistentProperty*, T*)>
kstd_result readEnumLeaf(const Node* node, const char16_t* name, T* value) {
    VEXPERS_REQUIRE(value != nullptr);
    *value = 0;
    VEXPERS_REQUIRE(node != nullptr);
    const Node* child = nullptr;
    VEXPERS_TRY(matchingChild(node, name, 0, &child));
    const kstd_persistentProperty* property = leafPropertyOf(child != nullptr ? child : node);
    if (property == nullptr) return ksys_result_failure;
    return Get(property, value);
}

}  // namespace

namespace {

// The item count and kind flags of the node's own value, once it is set.
kstd_result describeValue(Node* node) {
    const kstd_persistentProperty* property = &node->leafProperty;
    VEXPERS_TRY(kstd_persistentProperty_getNumItemsIfArray(property, &node->numItems));
    node->objectId = -1;
    node->flags |= flag::hasInfo | flag::hasValue;
    uint32_t isLeaf = 0;
    uint32_t leafKind = 0;
    VEXPERS_TRY(kstd_persistentProperty_getIsLeaf(property, &isLeaf, &leafKind));
    VEXPERS_REQUIRE(leafKind <= 4);
    node->flags |= leafKindFlags(leafKind);
    uint32_t isArray = 0;
    uint32_t arrayKind = 0;
    VEXPERS_TRY(kstd_persistentProperty_getIsArray(property, &isArray, &arrayKind));
    VEXPERS_REQUIRE(arrayKind <= 2);
    if (arrayKind == 1) node->flags |= flag::arrayCore;
    if (arrayKind == 2) node->flags |= flag::arrayOther;
    if (leafKind == 0 && arrayKind == 0) node->flags |= flag::compound;
    return 0;
}

}  // namespace

kstd_result setValue(Node* node, const kstd_persistentProperty* property) {
    VEXPERS_TRY(kstd_persistentProperty_getInfo(property, &node->info));
    VEXPERS_TRY(kstd_persistentProperty_assign(&node->leafProperty, property));
    return describeValue(node);
}

kstd_result takeValue(Node* node, kstd_persistentProperty* property) {
    property::exchangeProperties(node->leafProperty, *property);
    VEXPERS_TRY(kstd_persistentProperty_getInfo(&node->leafProperty, &node->info));
    return describeValue(node);
}

namespace {

void fetchNode(const Node* node) {
    if (node == nullptr) return;
    for (size_t offset = 0; offset < sizeof(Node); offset += 64)
        __builtin_prefetch(reinterpret_cast<const char*>(node) + offset, 1);
}

}  // namespace

kstd_result freeSubtree(Node* node) {
    // The nodes still to free form one list through their sibling links: a
    // node's children are spliced in ahead of the rest before it goes.
    kstd_result first = 0;
    node->nextSibling = nullptr;
    fetchNode(node->firstChild);
    for (Node* work = node; work != nullptr;) {
        Node* current = work;
        work = current->nextSibling;
        if (current->firstChild != nullptr) {
            Node* last = current->lastChild;
            if (last == nullptr)  // only a caller that edited the links leaves it out
                for (last = current->firstChild; last->nextSibling != nullptr; last = last->nextSibling) {
                }
            last->nextSibling = work;
            work = current->firstChild;
        }
        // Large trees do not fit the caches. The next node was fetched one
        // step ago: fetch the node after it and the object its value keeps
        // alive (released when it goes) while this one is destroyed.
        if (work != nullptr) {
            fetchNode(work->firstChild != nullptr ? work->firstChild : work->nextSibling);
            if (work->leafProperty.value.sharedObject.shared != nullptr)
                __builtin_prefetch(work->leafProperty.value.sharedObject.shared, 1);
        }
        Tree* owner = current->owner;
        kstd_result result = kstd_persistentPropertyInfo_destruct(&current->info);
        const kstd_result propertyResult = kstd_persistentProperty_destruct(&current->leafProperty);
        if (result >= 0) result = propertyResult;
        if (first >= 0 && result < 0) first = result;
        if (owner != nullptr) {
            result = kblk_free(&owner->nodeAllocator, current);
            if (first >= 0 && result < 0) first = result;
        }
    }
    return first;
}

kstd_result freeChildren(Node* node) {
    Node* child = node->firstChild;
    node->firstChild = nullptr;
    node->lastChild = nullptr;
    kstd_result first = 0;
    while (child != nullptr) {
        Node* next = child->nextSibling;
        const kstd_result result = freeSubtree(child);
        if (first >= 0 && result < 0) first = result;
        child = next;
    }
    return first;
}

}  // namespace vexpers::tree

using namespace vexpers::tree;

// ---- Start/end protocol ------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_startNode(kstd_persistentPropertyNode* node,
                                                                 const kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(section != nullptr);
    return startFromSection(node, section);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_startAndEndLeafNode(
    kstd_persistentPropertyNode* node, const kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(section != nullptr);
    if (section->sectionType != kstd_persistentPropertyNodeSectionType_leaf) return ksys_result_failure;
    return startFromSection(node, section);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_startChildNode(kstd_persistentPropertyNode* node,
                                                                      const kstd_persistentPropertyNodeSection* section,
                                                                      kstd_persistentPropertyNode** child) {
    VEXPERS_REQUIRE(child != nullptr);
    *child = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(section != nullptr);
    VEXPERS_TRY(appendNewChild(node, child));
    return startFromSection(*child, section);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_addChildLeafNode(
    kstd_persistentPropertyNode* node, const kstd_persistentPropertyNodeSection* section) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(section != nullptr);
    Node* child = nullptr;
    VEXPERS_TRY(appendNewChild(node, &child));
    return kstd_persistentPropertyNode_startAndEndLeafNode(child, section);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_endNode(kstd_persistentPropertyNode* node) {
    VEXPERS_REQUIRE(node != nullptr);
    if ((node->flags & flag::started) == 0) return ksys_result_failure;
    if ((node->flags & flag::leaf) == 0 && (node->flags & flag::ended) != 0) return ksys_result_failure;
    node->flags |= flag::ended;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_isMatchingEnd(const kstd_persistentPropertyNode* node,
                                                                     const kstd_persistentPropertyNodeSection* section,
                                                                     uint32_t* matches) {
    VEXPERS_REQUIRE(matches != nullptr);
    *matches = 0;
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(section != nullptr);
    if (section->sectionType != kstd_persistentPropertyNodeSectionType_end) return 0;
    const char16_t* name = nullptr;
    VEXPERS_TRY(kstd_persistentPropertyInfo_getName(&section->info, &name));
    if (isEmptyName(name)) {
        *matches = 1;
        return 0;
    }
    return kstd_persistentPropertyInfo_doesNameMatch(&node->info, name, matches);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_setIsStarted(kstd_persistentPropertyNode* node) {
    VEXPERS_REQUIRE(node != nullptr);
    node->flags |= flag::started;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsStarted(const kstd_persistentPropertyNode* node,
                                                                    uint32_t* isStarted) {
    VEXPERS_REQUIRE(isStarted != nullptr);
    *isStarted = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *isStarted = (node->flags & flag::started) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsEnded(const kstd_persistentPropertyNode* node,
                                                                  uint32_t* isEnded) {
    VEXPERS_REQUIRE(isEnded != nullptr);
    *isEnded = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *isEnded = (node->flags & flag::ended) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_resetLeafProperty(kstd_persistentPropertyNode* node,
                                                                         const kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(setValue(node, property));
    node->flags |= flag::started | flag::ended;
    return 0;
}

// ---- Navigation and lookups -------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getFirstChild(kstd_persistentPropertyNode* node,
                                                                     kstd_persistentPropertyNode** child) {
    VEXPERS_REQUIRE(child != nullptr);
    *child = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *child = node->firstChild;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getFirstChildConst(const kstd_persistentPropertyNode* node,
                                                                          const kstd_persistentPropertyNode** child) {
    VEXPERS_REQUIRE(child != nullptr);
    *child = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *child = node->firstChild;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getNextSibling(kstd_persistentPropertyNode* node,
                                                                      kstd_persistentPropertyNode** sibling) {
    VEXPERS_REQUIRE(sibling != nullptr);
    *sibling = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *sibling = node->nextSibling;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getNextSiblingConst(const kstd_persistentPropertyNode* node,
                                                                           const kstd_persistentPropertyNode** sibling) {
    VEXPERS_REQUIRE(sibling != nullptr);
    *sibling = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *sibling = node->nextSibling;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getOwner(const kstd_persistentPropertyNode* node,
                                                                kstd_persistentPropertyTree** owner) {
    VEXPERS_REQUIRE(owner != nullptr);
    *owner = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *owner = node->owner;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getOwnerBagSet(const kstd_persistentPropertyNode* node,
                                                                      kstd_persistentPropertyBagSet** bagSet) {
    VEXPERS_REQUIRE(bagSet != nullptr);
    *bagSet = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    if (node->owner != nullptr) *bagSet = &node->owner->bagSet;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_doesNameMatch(const kstd_persistentPropertyNode* node,
                                                                     const char16_t* name, uint32_t* matches) {
    VEXPERS_REQUIRE(matches != nullptr);
    *matches = 0;
    VEXPERS_REQUIRE(node != nullptr);
    if (isEmptyName(name)) {
        *matches = 1;
        return 0;
    }
    return kstd_persistentPropertyInfo_doesNameMatch(&node->info, name, matches);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getMatchingChild(kstd_persistentPropertyNode* node,
                                                                        const char16_t* name, uint32_t mustExist,
                                                                        kstd_persistentPropertyNode** child) {
    VEXPERS_REQUIRE(child != nullptr);
    *child = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    const Node* found = nullptr;
    const kstd_result result = matchingChild(node, name, mustExist, &found);
    *child = const_cast<Node*>(found);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getMatchingChildConst(const kstd_persistentPropertyNode* node,
                                                                             const char16_t* name,
                                                                             uint32_t mustExist,
                                                                             const kstd_persistentPropertyNode** child) {
    VEXPERS_REQUIRE(child != nullptr);
    *child = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    return matchingChild(node, name, mustExist, child);
}

// ---- Descriptor and value --------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getInfo(const kstd_persistentPropertyNode* node,
                                                               kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    if ((node->flags & flag::hasInfo) == 0) return ksys_result_failure;
    return kstd_persistentPropertyInfo_assign(info, &node->info);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_setInfo(kstd_persistentPropertyNode* node,
                                                               const kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&node->info, info));
    node->flags |= flag::hasInfo;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getDataAccess(const kstd_persistentPropertyNode* node,
                                                                     uint32_t* dataAccess) {
    VEXPERS_REQUIRE(dataAccess != nullptr);
    *dataAccess = 0;
    VEXPERS_REQUIRE(node != nullptr);
    return kstd_persistentPropertyInfo_getDataAccess(&node->info, dataAccess);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getPropertyPtrConst(const kstd_persistentPropertyNode* node,
                                                                           const kstd_persistentProperty** property) {
    VEXPERS_REQUIRE(property != nullptr);
    *property = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    if ((node->flags & flag::hasValue) == 0) return ksys_result_failure;
    *property = &node->leafProperty;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getLeafPropertyPtrConst(
    const kstd_persistentPropertyNode* node, const kstd_persistentProperty** property) {
    VEXPERS_REQUIRE(property != nullptr);
    *property = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    *property = leafPropertyOf(node);
    return *property != nullptr ? 0 : ksys_result_failure;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getLeafProperty(const kstd_persistentPropertyNode* node,
                                                                       kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    const kstd_persistentProperty* leaf = leafPropertyOf(node);
    if (leaf == nullptr) return ksys_result_failure;
    return kstd_persistentProperty_assign(property, leaf);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsLeaf(const kstd_persistentPropertyNode* node,
                                                                 uint32_t* isLeaf, uint32_t* leafKind) {
    VEXPERS_REQUIRE(isLeaf != nullptr);
    *isLeaf = 0;
    if (leafKind != nullptr) *leafKind = 0;
    VEXPERS_REQUIRE(node != nullptr);
    uint32_t kind = 0;
    if (!decodeLeafKind(node->flags, &kind)) return ksys_result_failure;
    *isLeaf = (node->flags & flag::leaf) != 0 ? 1 : 0;
    if (leafKind != nullptr) *leafKind = kind;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsTerminal(const kstd_persistentPropertyNode* node,
                                                                     uint32_t* isTerminal) {
    VEXPERS_REQUIRE(isTerminal != nullptr);
    *isTerminal = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *isTerminal = (node->flags & (flag::leaf | flag::arrayCore)) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsArrayItem(const kstd_persistentPropertyNode* node,
                                                                      uint32_t* isArrayItem) {
    VEXPERS_REQUIRE(isArrayItem != nullptr);
    *isArrayItem = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *isArrayItem = (node->flags & flag::arrayItem) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getIsDeleted(const kstd_persistentPropertyNode* node,
                                                                    uint32_t* isDeleted) {
    VEXPERS_REQUIRE(isDeleted != nullptr);
    *isDeleted = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *isDeleted = (node->flags & flag::deleted) != 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getObjectId(const kstd_persistentPropertyNode* node,
                                                                   uint32_t* hasId, int64_t* id,
                                                                   uint32_t* isReference) {
    VEXPERS_REQUIRE(hasId != nullptr);
    VEXPERS_REQUIRE(id != nullptr);
    VEXPERS_REQUIRE(isReference != nullptr);
    *hasId = 0;
    *id = -1;
    *isReference = 0;
    VEXPERS_REQUIRE(node != nullptr);
    *hasId = (node->flags & flag::hasObjectId) != 0 ? 1 : 0;
    *id = node->objectId;
    *isReference = allSet(node->flags, flag::reference) ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getEnumAsInt64(const kstd_persistentPropertyNode* node,
                                                                      const char16_t* name, int64_t* value) {
    return readEnumLeaf<int64_t, kstd_persistentProperty_getValue_k_Int64>(node, name, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getEnumBitfieldAsUInt64(const kstd_persistentPropertyNode* node,
                                                                               const char16_t* name,
                                                                               uint64_t* value) {
    return readEnumLeaf<uint64_t, kstd_persistentProperty_getValue_k_UInt64>(node, name, value);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(
    const kstd_persistentPropertyNode* node, uint32_t required, const kstd_persistentVariant** variant) {
    VEXPERS_REQUIRE(variant != nullptr);
    *variant = nullptr;
    VEXPERS_REQUIRE(node != nullptr);
    // A step that finds no answer fails with its code only when required.
    const auto none = [required](kstd_result code) { return required != 0 ? code : 0; };
    if ((node->flags & flag::arrayItem) != 0) return none(kstd_persistentResult_typeMismatch);
    if ((node->flags & flag::hasInfo) == 0) return none(ksys_result_failure);

    kstd_persistentType type;
    VEXPERS_TRY(kstd_persistentType_construct(&type));
    VEXPERS_DEFER { kstd_persistentType_destruct(&type); };
    const kstd_persistentType* registered = nullptr;
    VEXPERS_TRY(lookUpType(&node->info, &type, &registered));
    if (registered != nullptr) {
        uint32_t isCoreOrEnum = 0;
        VEXPERS_TRY(kstd_persistentType_getIsCoreTypeOrEnum(registered, &isCoreOrEnum));
        if (isCoreOrEnum == 0) return none(kstd_persistentResult_typeMismatch);
        int32_t coreTypeId = -2;
        VEXPERS_TRY(kstd_persistentType_getCoreTypeId(registered, &coreTypeId));
        if (coreTypeId >= 0 || (node->flags & flag::leaf) != 0) {
            *variant = &node->leafProperty.value;
            return 0;
        }
    }
    // An enum decomposes into a compound node whose child "value" holds it.
    const Node* child = nullptr;
    VEXPERS_TRY(matchingChild(node, u"value", 0, &child));
    if (child == nullptr)
        return none(registered != nullptr ? kstd_persistentResult_typeMismatch : kstd_persistentResult_typeNotRegistered);
    const kstd_persistentType* childRegistered = nullptr;
    VEXPERS_TRY(lookUpType(&child->info, &type, &childRegistered));
    if (childRegistered == nullptr) return none(kstd_persistentResult_typeNotRegistered);
    uint32_t isCoreOrEnum = 0;
    VEXPERS_TRY(kstd_persistentType_getIsCoreTypeOrEnum(childRegistered, &isCoreOrEnum));
    if (isCoreOrEnum == 0) return none(kstd_persistentResult_typeMismatch);
    *variant = &child->leafProperty.value;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getContainer(const kstd_persistentPropertyNode* node,
                                                                    void** container, uint32_t* containerValue,
                                                                    uint32_t* elementSize, void** first,
                                                                    intptr_t* count,
                                                                    const kstd_persistentContainerVtable** table,
                                                                    kstd_persistentType* itemType) {
    VEXPERS_REQUIRE(container != nullptr && containerValue != nullptr && elementSize != nullptr);
    VEXPERS_REQUIRE(first != nullptr && count != nullptr && table != nullptr && itemType != nullptr);
    *container = nullptr;
    *containerValue = 0;
    *elementSize = 0;
    *first = nullptr;
    *count = 0;
    *table = nullptr;
    VEXPERS_TRY(kstd_persistentType_reset(itemType));
    VEXPERS_REQUIRE(node != nullptr);
    if ((node->flags & flag::hasValue) == 0) return ksys_result_failure;
    return kstd_persistentProperty_getContainer(&node->leafProperty, container, containerValue, elementSize, first,
                                                count, table, itemType);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getArrayBeginSizeIntPtrConst(
    const kstd_persistentPropertyNode* node, const void** first, intptr_t* count) {
    VEXPERS_REQUIRE(first != nullptr);
    VEXPERS_REQUIRE(count != nullptr);
    *first = nullptr;
    *count = 0;
    VEXPERS_REQUIRE(node != nullptr);
    if ((node->flags & flag::hasValue) == 0) return ksys_result_failure;
    return kstd_persistentProperty_getArrayBeginSizeIntPtrConst(&node->leafProperty, first, count);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getArrayBeginSizeIntPtr(const kstd_persistentPropertyNode* node,
                                                                               void** first, intptr_t* count) {
    VEXPERS_REQUIRE(first != nullptr);
    *first = nullptr;
    const void* begin = nullptr;
    const kstd_result result = kstd_persistentPropertyNode_getArrayBeginSizeIntPtrConst(node, &begin, count);
    *first = const_cast<void*>(begin);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getFullProperty(const kstd_persistentPropertyNode* node,
                                                                       kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    return ksys_result_failure;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_getRegionType_(const kstd_persistentPropertyNode* node,
                                                                      int32_t* first, int32_t* second,
                                                                      int32_t* third) {
    VEXPERS_REQUIRE(first != nullptr && second != nullptr && third != nullptr);
    *first = *second = *third = 0;
    VEXPERS_REQUIRE(node != nullptr);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_freeNodeAndChildren(kstd_persistentPropertyNode* node) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(node->owner != nullptr);
    return freeSubtree(node);
}
