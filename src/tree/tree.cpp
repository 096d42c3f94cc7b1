// The property tree: life cycle, node allocation from its block allocator,
// and the top-level node list.
#include "frame/lifecycle.hpp"
#include "tree/tree_internal.hpp"
#include "tree/tree_registry.hpp"
#include "types/empty_records.hpp"

namespace vexpers::tree {

kstd_result allocNode(Tree* tree, Node** node) {
    *node = nullptr;
    // The tree's node cap is its allocator's block cap.
    const kstd_blockAllocator& nodes = tree->nodeAllocator;
    if (nodes.maxBlocks >= 0 && nodes.liveCount >= nodes.maxBlocks) return kstd_persistentResult_tooManyNodes;
    void* block = nullptr;
    VEXPERS_TRY(kblk_alloc(&tree->nodeAllocator, &block));
    // A fresh node's records hold nothing: they are the constant empty ones,
    // so constructing the node cannot fail once it has its block.
    auto* fresh = static_cast<Node*>(block);
    *fresh = Node{0, types::emptyInfo, types::emptyProperty, -1, 0, nullptr, nullptr, nullptr, tree};
    *node = fresh;
    return 0;
}

namespace {

// Detaches the top-level list and frees each node in list order.
kstd_result freeTopLevel(Tree* tree) {
    Node* node = tree->firstChild;
    tree->firstChild = nullptr;
    tree->lastChild = nullptr;
    kstd_result first = 0;
    while (node != nullptr) {
        Node* next = node->nextSibling;
        const kstd_result result = freeSubtree(node);
        if (first >= 0 && result < 0) first = result;
        node = next;
    }
    return first;
}

}  // namespace
}  // namespace vexpers::tree

using namespace vexpers::tree;

// ---- Life cycle ------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_construct(kstd_persistentPropertyTree* tree) {
    VEXPERS_REQUIRE(tree != nullptr);
    tree->firstChild = nullptr;
    tree->lastChild = nullptr;
    tree->objectIndex = nullptr;
    VEXPERS_TRY(kstd_blockAllocator_construct(&tree->nodeAllocator, static_cast<int32_t>(sizeof(Node)), 0x10000,
                                              kstd_persistentPropertyTree_maxNodes));
    auto allocator = vexpers::makeGuard([&] { kstd_blockAllocator_destruct(&tree->nodeAllocator); });
    VEXPERS_TRY(kstd_persistentPropertyBagSet_construct(&tree->bagSet));
    auto bagSet = vexpers::makeGuard([&] { kstd_persistentPropertyBagSet_destruct(&tree->bagSet); });
    VEXPERS_TRY(kstd_vectorPtrConstVoid_constructEmpty(&tree->objectPointers));
    auto pointers = vexpers::makeGuard([&] { kstd_vectorPtrConstVoid_destruct(&tree->objectPointers); });
    VEXPERS_TRY(kstd_vector_kstd_persistentVariant_constructEmpty(&tree->objects));
    pointers.dismiss();
    bagSet.dismiss();
    allocator.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_destruct(kstd_persistentPropertyTree* tree) {
    VEXPERS_REQUIRE(tree != nullptr);
    // The nodes hold shares of the objects, so they go before the registry.
    VEXPERS_TRY(freeTopLevel(tree));
    VEXPERS_TRY(forgetObjects(tree));
    releaseObjectIndex(tree);
    VEXPERS_TRY(kstd_blockAllocator_destruct(&tree->nodeAllocator));
    VEXPERS_TRY(kstd_persistentPropertyBagSet_destruct(&tree->bagSet));
    VEXPERS_TRY(kstd_vectorPtrConstVoid_destruct(&tree->objectPointers));
    return kstd_vector_kstd_persistentVariant_destruct(&tree->objects);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_reset(kstd_persistentPropertyTree* tree) {
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_TRY(freeTopLevel(tree));
    VEXPERS_TRY(forgetObjects(tree));
    VEXPERS_TRY(kstd_persistentPropertyBagSet_reset(&tree->bagSet));
    return releaseBagValues(&tree->bagSet);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_assign(kstd_persistentPropertyTree* tree,
                                                              const kstd_persistentPropertyTree* source) {
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    // A tree owns its nodes and objects by identity; it is never copied.
    VEXPERS_REQUIRE(tree == source);
    return 0;
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyTree)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyTree)

// ---- Nodes -------------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_getFirstChild(kstd_persistentPropertyTree* tree,
                                                                     kstd_persistentPropertyNode** node) {
    VEXPERS_REQUIRE(node != nullptr);
    *node = nullptr;
    VEXPERS_REQUIRE(tree != nullptr);
    *node = tree->firstChild;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_getFirstChildConst(const kstd_persistentPropertyTree* tree,
                                                                          const kstd_persistentPropertyNode** node) {
    VEXPERS_REQUIRE(node != nullptr);
    *node = nullptr;
    VEXPERS_REQUIRE(tree != nullptr);
    *node = tree->firstChild;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_allocNextChild(kstd_persistentPropertyTree* tree,
                                                                      kstd_persistentPropertyNode** node) {
    VEXPERS_REQUIRE(node != nullptr);
    *node = nullptr;
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(tree->firstChild == nullptr || tree->lastChild != nullptr);
    Node* fresh = nullptr;
    VEXPERS_TRY(allocNode(tree, &fresh));
    if (tree->firstChild == nullptr)
        tree->firstChild = fresh;
    else
        tree->lastChild->nextSibling = fresh;
    tree->lastChild = fresh;
    *node = fresh;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_allocTempNode(kstd_persistentPropertyTree* tree,
                                                                     kstd_persistentPropertyNode** node) {
    VEXPERS_REQUIRE(node != nullptr);
    *node = nullptr;
    VEXPERS_REQUIRE(tree != nullptr);
    return allocNode(tree, node);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_resetDecomposeProperty(kstd_persistentPropertyTree* tree,
                                                                              const kstd_persistentProperty* property) {
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyTree_reset(tree));
    Node* node = nullptr;
    VEXPERS_TRY(kstd_persistentPropertyTree_allocNextChild(tree, &node));
    return kstd_persistentPropertyNode_resetDecomposeProperty(node, property, 0);
}
