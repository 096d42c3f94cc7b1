// Decomposing a property into a node and its subtree.
//
// The subtree is built depth first, children in property order: a node is
// expanded (its identity given and its children made from its persistent
// properties), then each child's subtree is built, then the node is marked
// decomposed. An explicit stack of (node, next child) frames stands in for
// the recursion, so deep object graphs do not overflow the call stack; the
// order of expansions, and so the ids objects get, is that of the recursion.
// Each expansion borrows one bag from the tree's bag set and gives it back
// before any child is built, so one bag is borrowed at a time.
#include "tree/tree_internal.hpp"
#include "vectors/vector_view.hpp"

namespace vexpers::tree {

kstd_result isShareableValue(const kstd_persistentVariant* value, bool* shareable, const void** whole) {
    *shareable = false;
    if (whole != nullptr) *whole = nullptr;
    uint32_t category = 0;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentVariant_getTypeCategoryAndDerivation(value, &category, &derivation));
    void* object = value->value.pointer;
    if (derivation == kstd_persistentTypeDerivation_array || derivation == kstd_persistentTypeDerivation_bitfieldArray)
        return 0;
    if (derivation == kstd_persistentTypeDerivation_pointer) {
        *shareable = object != nullptr;
    } else if (category == kstd_persistentTypeCategory_object && object != nullptr) {
        uint32_t flag = 0;
        VEXPERS_TRY(kstd_persistentType_getIsObjectShareable(&value->type, object, &flag));
        *shareable = flag != 0;
    }
    if (!*shareable) return 0;
    // A shareable value needs a whole-object pointer: the whole shared
    // object when the variant keeps one alive, else the object itself.
    void* wholeShared = nullptr;
    VEXPERS_TRY(kstd_ptrh_getWholeShared(&value->sharedObject, &wholeShared));
    const void* wholeObject = wholeShared != nullptr ? wholeShared : object;
    *shareable = wholeObject != nullptr;
    if (whole != nullptr) *whole = wholeObject;
    return 0;
}

namespace {

// Gives the node its identity: an id where it defines a shareable object, a
// reference leaf where it meets one again (unless held by value).
kstd_result giveIdentity(Node* node) {
    node->objectId = -1;
    if ((node->flags & flag::hasValue) == 0 || (node->flags & flag::arrayItem) != 0) return 0;
    const kstd_persistentVariant* value = &node->leafProperty.value;
    bool shareable = false;
    VEXPERS_TRY(isShareableValue(value, &shareable, nullptr));
    if (!shareable) return 0;
    int64_t id = -1;
    uint32_t isNew = 0;
    VEXPERS_TRY(kstd_persistentPropertyTree_findObject(node->owner, value, &id, &isNew));
    VEXPERS_REQUIRE(id >= 0);
    if (isNew != 0) {
        node->objectId = id;
        node->flags |= flag::hasObjectId;
        return 0;
    }
    uint32_t category = 0;
    uint32_t derivation = 0;
    VEXPERS_TRY(kstd_persistentVariant_getTypeCategoryAndDerivation(value, &category, &derivation));
    // An object held by value is expanded again in full, without an id.
    if (category == kstd_persistentTypeCategory_object && derivation == kstd_persistentTypeDerivation_value) return 0;
    node->objectId = id;
    node->flags |= flag::hasObjectId | flag::reference;
    return 0;
}

// Makes the node's children from its value's persistent properties.
kstd_result expand(Node* node) {
    if ((node->flags & (flag::decomposed | flag::leaf | flag::arrayCore | flag::arrayOther)) != 0) return 0;
    VEXPERS_TRY(giveIdentity(node));
    if ((node->flags & flag::hasObjectId) != 0 && allSet(node->flags, flag::reference)) {
        node->flags |= flag::decomposed;
        return 0;
    }
    kstd_persistentPropertyBagSetNewBagGetter getter;
    kstd_persistentPropertyBag* bag = nullptr;
    VEXPERS_TRY(kstd_persistentPropertyBagSetNewBagGetter_construct(&getter, &node->owner->bagSet, &bag));
    VEXPERS_DEFER { kstd_persistentPropertyBagSetNewBagGetter_destruct(&getter); };
    VEXPERS_TRY(kstd_persistentVariant_getObjectData(&node->leafProperty.value, bag));
    // The bag is borrowed for this expansion only and its values are of no
    // further use: they move into the children, and the bag is emptied so
    // that nothing reads the slots they left.
    VEXPERS_DEFER { kstd_persistentPropertyBag_removeAllProperties(bag); };
    kstd_persistentProperty* properties = bag->propertiesBegin;
    const int32_t count = bag->numProperties;
    for (int32_t i = 0; i < count; ++i) {
        Node* child = nullptr;
        VEXPERS_TRY(allocNode(node->owner, &child));
        appendChild(node, child);
        VEXPERS_TRY(takeValue(child, &properties[i]));
    }
    return 0;
}

struct Frame {
    Node* node;
    Node* next;  // the next child whose subtree is to be built
};

kstd_result build(Node* root) {
    VEXPERS_TRY(expand(root));
    WorkStack<Frame> stack;
    VEXPERS_TRY(stack.push(Frame{root, root->firstChild}));
    while (!stack.empty()) {
        Frame& top = stack.top();
        if (top.next == nullptr) {
            top.node->flags |= flag::decomposed;
            stack.pop();
            continue;
        }
        Node* child = top.next;
        top.next = child->nextSibling;
        VEXPERS_TRY(expand(child));
        VEXPERS_TRY(stack.push(Frame{child, child->firstChild}));
    }
    return 0;
}

}  // namespace

kstd_result releaseBagValues(kstd_persistentPropertyBagSet* set) {
    kstd_result first = 0;
    const auto keep = [&first](kstd_result result) {
        if (first >= 0 && result < 0) first = result;
    };
    for (int32_t i = 0; i < set->numBags; ++i) {
        kstd_persistentPropertyBag* bag = set->bags[i];
        if (set->isAvailable[i] == 0 || bag == nullptr) continue;
        keep(kstd_persistentPropertyBag_removeAllProperties(bag));
        for (kstd_persistentProperty& slot : elementsOf<kstd_persistentProperty>(bag->propertySlots))
            keep(kstd_persistentProperty_reset(&slot));
        keep(kstd_persistentProperty_reset(&bag->spareProperty));
    }
    return first;
}

}  // namespace vexpers::tree

using namespace vexpers::tree;

VEXPERS_EXPORT kstd_result kstd_persistentPropertyNode_resetDecomposeProperty(kstd_persistentPropertyNode* node,
                                                                              const kstd_persistentProperty* property,
                                                                              uint32_t isArrayItem) {
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(node->owner != nullptr);
    node->flags = 0;
    VEXPERS_TRY(freeChildren(node));
    if (isArrayItem != 0) node->flags |= flag::arrayItem;
    VEXPERS_TRY(setValue(node, property));
    const kstd_result result = build(node);
    const kstd_result released = releaseBagValues(&node->owner->bagSet);
    return result < 0 ? result : released;
}
