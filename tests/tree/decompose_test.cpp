// Decomposition: what each kind of value becomes, object identity (ids on
// first meeting, reference leaves after, objects held by value expanded
// again, array items without ids, cycles), one bag at a time, deep graphs,
// and failures part-way.
#include <memory>
#include <vector>

#include "tree/tree_fixtures.hpp"

namespace vexpers::test::tree {
namespace {

using Node = kstd_persistentPropertyNode;

class DecomposeTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { start(); }

    // Decomposes `item` held through a pointer property "root".
    const Node* decompose(Item* item) {
        Property property;
        pointTo(property, u"root", item);
        EXPECT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property), 0);
        return tree->firstChild;
    }

    NoLeaks leaks;
    Tree tree;
};

uint32_t kindFlags(const Node* node) { return node->flags & 0x1FFu; }

TEST_F(DecomposeTest, EachKindOfValueBecomesItsNode) {
    Item item, partner;
    item.number = 5;
    item.first = &partner;
    const int32_t values[]{1, 2, 3};
    kstd_vector32s_assignElements(&item.values, values, values + 3);
    const Node* root = decompose(&item);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->flags, 0x5C0004u);  // compound, value, id, info, decomposed
    EXPECT_EQ(root->objectId, 0);
    ASSERT_EQ(childCount(root), itemProperties);

    EXPECT_EQ(kindFlags(child(root, u"number")), 0x18u);
    EXPECT_EQ(kindFlags(child(root, u"second")), 0x28u);    // null pointer
    EXPECT_EQ(kindFlags(child(root, u"embedded")), 0x28u);  // an object value without an object
    EXPECT_EQ(kindFlags(child(child(root, u"link"), u"ptr")), 0x28u);  // an empty shared pointer
    const Node* values_ = child(root, u"values");
    EXPECT_EQ(kindFlags(values_), 0x1u);  // terminal: the whole array is the value, no children
    EXPECT_EQ(values_->numItems, 3);
    EXPECT_EQ(values_->firstChild, nullptr);
    uint32_t terminal = 0;
    EXPECT_EQ(kstd_persistentPropertyNode_getIsTerminal(values_, &terminal), 0);
    EXPECT_EQ(terminal, 1u);
    EXPECT_EQ(kindFlags(child(child(root, u"first"), u"values")), 0x49u);  // an empty array

    // A part is held by value and not shareable: compound, no id.
    const Node* part = child(root, u"part");
    EXPECT_EQ(kindFlags(part), 0x4u);
    EXPECT_EQ(part->objectId, -1);
    EXPECT_EQ(childCount(part), 1);
    int64_t size = -1;
    EXPECT_EQ(kstd_persistentPropertyNode_getEnumAsInt64(part, u"size", &size), 0);
    EXPECT_EQ(size, 0);
    // Every node of the tree is complete.
    for (const Node* c = root->firstChild; c != nullptr; c = c->nextSibling)
        EXPECT_NE(c->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);
}

TEST_F(DecomposeTest, SharedObjectMetTwiceIsDefinedOnceThenReferenced) {
    Item item, shared;
    item.first = &shared;
    item.second = &shared;
    shared.number = 8;
    const Node* root = decompose(&item);
    const Node* first = child(root, u"first");
    const Node* second = child(root, u"second");
    EXPECT_EQ(first->flags & reference, 0x80000u);
    EXPECT_EQ(first->objectId, 1);
    EXPECT_EQ(childCount(first), itemProperties);
    EXPECT_EQ(second->flags & reference, reference);
    EXPECT_EQ(second->objectId, 1);
    EXPECT_EQ(second->firstChild, nullptr);
    EXPECT_NE(second->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);

    Variant recorded;
    ASSERT_EQ(kstd_persistentPropertyTree_getObjectById(&tree, 1, &recorded), 0);
    EXPECT_EQ(recorded->value.pointer, &shared);
    EXPECT_EQ(tree->objectPointers.base.size, 2);
}

TEST_F(DecomposeTest, ObjectHeldByValueIsExpandedAgainWithoutId) {
    Item item, other;
    item.first = &other;
    item.embedded = &other;
    other.number = 3;
    const Node* root = decompose(&item);
    const Node* first = child(root, u"first");
    const Node* embedded = child(root, u"embedded");
    EXPECT_EQ(first->objectId, 1);
    EXPECT_EQ(embedded->flags & reference, 0u);
    EXPECT_EQ(embedded->objectId, -1);
    EXPECT_EQ(childCount(embedded), itemProperties);

    // Met first by value, the object is its definition and gets the id;
    // a pointer to it afterwards is a reference.
    other.first = &other;
    Property property;
    holdByValue(property, u"root", &other);
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property), 0);
    root = tree->firstChild;
    EXPECT_EQ(root->objectId, 0);
    EXPECT_EQ(root->flags & reference, 0x80000u);
    EXPECT_EQ(child(root, u"first")->flags & reference, reference);
}

TEST_F(DecomposeTest, ArrayItemsNeverGetIds) {
    Item item;
    Node* node = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &node), 0);
    Property property;
    pointTo(property, u"item", &item);
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, &property, 1), 0);
    EXPECT_EQ(node->flags & (reference | kstd_persistentPropertyNodeFlag_arrayItem), 0x100u);
    EXPECT_EQ(node->objectId, -1);
    EXPECT_EQ(childCount(node), itemProperties);
    EXPECT_EQ(tree->objectPointers.base.size, 0);
    // Decomposing again replaces the subtree; ids continue from the registry.
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, &property, 0), 0);
    EXPECT_EQ(node->objectId, 0);
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, &property, 0), 0);
    EXPECT_EQ(node->flags & reference, reference);
    EXPECT_EQ(liveNodes(&tree), 1);
}

TEST_F(DecomposeTest, CycleThroughSharedPointersEndsAtAReferenceLeaf) {
    Item a, b;
    ASSERT_EQ(kstd_ptrh_assignShared(&a.link, &b.header), 0);
    ASSERT_EQ(kstd_ptrh_assignShared(&b.link, &a.header), 0);
    b.second = &b;
    const Node* root = decompose(&a);
    // A shared pointer is a compound whose one child "ptr" carries the identity.
    const Node* link = child(root, u"link");
    EXPECT_EQ(kindFlags(link), 0x4u);
    EXPECT_EQ(link->objectId, -1);
    ASSERT_EQ(childCount(link), 1);
    const Node* nodeB = child(link, u"ptr");
    EXPECT_EQ(nodeB->objectId, 1);
    EXPECT_EQ(nodeB->flags & reference, 0x80000u);
    const Node* backToA = child(child(nodeB, u"link"), u"ptr");
    EXPECT_EQ(backToA->flags & reference, reference);
    EXPECT_EQ(backToA->objectId, 0);
    EXPECT_EQ(child(nodeB, u"second")->objectId, 1);
    EXPECT_EQ(child(nodeB, u"second")->flags & reference, reference);
    // The tree's shares of the objects go with its nodes and registry; the
    // bags it decomposed through keep none.
    ASSERT_EQ(kstd_persistentPropertyTree_reset(&tree), 0);
    int32_t count = -1;
    kstd_shared_getReferenceCount(&a.header, &count);
    EXPECT_EQ(count, 1);  // b's link
    kstd_ptrh_reset(&a.link);
    kstd_ptrh_reset(&b.link);
    kstd_shared_getReferenceCount(&a.header, &count);
    EXPECT_EQ(count, 0);
}

TEST_F(DecomposeTest, LongChainsDecomposeAndFreeWithOneBag) {
    constexpr int count = 100000;
    std::vector<std::unique_ptr<Item>> items;
    for (int i = 0; i < count; ++i) items.push_back(std::make_unique<Item>());
    for (int i = 0; i + 1 < count; ++i) {
        items[i]->first = items[i + 1].get();
        items[i]->number = i;
    }
    items.back()->first = items.front().get();  // closes the ring
    const Node* node = decompose(items.front().get());
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(node->objectId, i);
        node = child(node, u"first");
    }
    EXPECT_EQ(node->flags & reference, reference);
    EXPECT_EQ(node->objectId, 0);
    EXPECT_EQ(tree->bagSet.numBags, 1);
    EXPECT_EQ(liveNodes(&tree), int64_t{count} * 10 + 1);
    ASSERT_EQ(kstd_persistentPropertyTree_reset(&tree), 0);
    EXPECT_EQ(liveNodes(&tree), 0);
    EXPECT_EQ(tree->objectPointers.base.size, 0);
}

TEST_F(DecomposeTest, FailuresLeaveTheNodesBuiltSoFar) {
    AssertRecorder faults;
    // A node cap reached part-way: the nodes made stay, not decomposed.
    Item item, other;
    item.first = &other;
    tree->nodeAllocator.maxBlocks = 10;
    Property property;
    pointTo(property, u"root", &item);
    EXPECT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property), kstd_persistentResult_tooManyNodes);
    EXPECT_EQ(liveNodes(&tree), 10);
    EXPECT_EQ(childCount(tree->firstChild), itemProperties);
    EXPECT_EQ(tree->firstChild->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);
    EXPECT_EQ(tree->bagSet.isAvailable[0], 1);  // the bag went back
    tree->nodeAllocator.maxBlocks = kstd_persistentPropertyTree_maxNodes;
    EXPECT_EQ(faults.count(), 0);

    // Every allocation that fails is reported and leaks nothing.
    sweepAllocationFailures([&] {
        Tree local;
        return kstd_persistentPropertyTree_resetDecomposeProperty(&local, &property);
    });
}

}  // namespace
}  // namespace vexpers::test::tree
