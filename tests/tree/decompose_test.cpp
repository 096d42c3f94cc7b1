// Decomposition: what each kind of value becomes, object identity (ids on
// first meeting, reference leaves after, objects held by value expanded
// again, array items without ids, cycles), and failures part-way. (Deep
// graphs: the long chain of the round-trip tests.)
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

using TreeNode = kstd_persistentPropertyNode;
constexpr uint32_t referenceFlags = 0x80088u;

// The node at `path` (names of children, from `node`), or null.
const TreeNode* at(const TreeNode* node, std::initializer_list<const char16_t*> path) {
    for (const char16_t* name : path) {
        const TreeNode* found = nullptr;
        if (node == nullptr || kstd_persistentPropertyNode_getMatchingChildConst(node, name, 1, &found) < 0)
            return nullptr;
        node = found;
    }
    return node;
}

int childCount(const TreeNode* node) {
    int count = 0;
    for (const TreeNode* c = node->firstChild; c != nullptr; c = c->nextSibling) ++count;
    return count;
}

class DecomposeTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { types(); }
    DecomposeTest() {
        newNode(a);
        newNode(b);
    }
    ~DecomposeTest() override {
        kstd_persistentPropertyTree_reset(tree);
        unlinkNode(nodeOf(a.v));
        unlinkNode(nodeOf(b.v));
    }

    // Decomposes `object` of `type` held by a property "root".
    const TreeNode* decompose(const kstd_persistentType* type, void* object) {
        Property property;
        EXPECT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(property, type, u"root", 2, object), 0);
        EXPECT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property), 0);
        return tree->firstChild;
    }

    NoLeaks leaks;
    SharedPointer a, b;
    Tree tree;
};

TEST_F(DecomposeTest, EachKindOfValueBecomesItsNodeWithIdsInDepthFirstOrder) {
    Node& na = *nodeOf(a.v);
    kstd_ptrh_assign(&na.next, b);
    kstd_ptrh_assign(&na.other, b);
    for (uint32_t value : {1u, 2u, 3u}) kstd_vector32_pushBack(&na.v32, value);
    na.items.count = 2;
    const TreeNode* root = decompose(types().nodePointer, &na);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->flags, 0x5C0004u);  // compound, value, id, info, decomposed
    const struct {
        std::initializer_list<const char16_t*> path;
        uint32_t kind;
        int64_t id;
        int children;
    } cases[]{
        {{u"i32"}, 0x18, -1, 0},
        {{u"name"}, 0x18, -1, 0},
        {{u"color"}, 0x4, -1, 1},  // an enum: its value is the child "value"
        {{u"color", u"value"}, 0x18, -1, 0},
        {{u"next"}, 0x4, -1, 1},  // a shared pointer: its child "ptr" carries the identity
        {{u"next", u"ptr"}, 0x4, 1, -1},  // B, met first: defined
        {{u"next", u"ptr", u"box"}, 0x4, 2, 2},  // a shareable box held by value, met first
        {{u"next", u"ptr", u"sameBox"}, 0x4, -1, 2},  // met again by value: expanded again, no id
        {{u"other", u"ptr"}, 0x8C, 1, 0},  // B met again: a reference (keeping the compound bit)
        {{u"view", u"ptr"}, 0x28, -1, 0},  // an empty shared pointer
        {{u"v32", u"items"}, 0x1, -1, 0},  // terminal: the whole array is the value
        {{u"v32s", u"items"}, 0x49, -1, 0},  // an empty array
        {{u"box"}, 0x4, 3, 2},
        {{u"items"}, 0x2, -1, 0},  // object items are expanded by the walk, not here
    };
    for (const auto& test : cases) {
        const TreeNode* node = at(root, test.path);
        SCOPED_TRACE(ascii(*(test.path.end() - 1)));
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->flags & 0x1FFu, test.kind);
        EXPECT_EQ(node->objectId, test.id);
        EXPECT_TRUE(test.children < 0 || childCount(node) == test.children);
        EXPECT_NE(node->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);
    }
    EXPECT_EQ(at(root, {u"v32", u"items"})->numItems, 3);
    EXPECT_EQ(at(root, {u"items"})->numItems, 2);
    uint32_t terminal = 0;
    EXPECT_EQ(kstd_persistentPropertyNode_getIsTerminal(at(root, {u"v32", u"items"}), &terminal), 0);
    EXPECT_EQ(terminal, 1u);
    Variant recorded;
    ASSERT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 1, recorded), 0);
    EXPECT_EQ(recorded->value.pointer, nodeOf(b.v));
    EXPECT_EQ(tree->objectPointers.base.size, 4);
}

TEST_F(DecomposeTest, ObjectMetFirstByValueIsTheDefinitionAndCyclesEndAtReferences) {
    // A held by value, B.next back at A, B.other at itself.
    kstd_ptrh_assign(&nodeOf(a.v)->next, b);
    kstd_ptrh_assign(&nodeOf(b.v)->next, a);
    kstd_ptrh_assign(&nodeOf(b.v)->other, b);
    int32_t before = -1, after = -1;
    kstd_shared_getReferenceCount(a->shared, &before);
    const TreeNode* root = decompose(types().node, nodeOf(a.v));
    EXPECT_EQ(root->objectId, 0);
    EXPECT_EQ(root->flags & referenceFlags, 0x80000u);
    EXPECT_EQ(at(root, {u"next", u"ptr"})->objectId, 1);
    for (const char16_t* pointer : {u"next", u"other"}) {
        const TreeNode* back = at(root, {u"next", u"ptr", pointer, u"ptr"});
        EXPECT_EQ(back->flags & referenceFlags, referenceFlags);
        EXPECT_EQ(back->firstChild, nullptr);
    }
    EXPECT_EQ(at(root, {u"next", u"ptr", u"next", u"ptr"})->objectId, 0);
    EXPECT_EQ(at(root, {u"next", u"ptr", u"other", u"ptr"})->objectId, 1);
    // The tree's shares of the objects go with its nodes and registry; the
    // bags it decomposed through keep none.
    ASSERT_EQ(kstd_persistentPropertyTree_reset(tree), 0);
    kstd_shared_getReferenceCount(a->shared, &after);
    EXPECT_EQ(after, before);
}

TEST_F(DecomposeTest, ArrayItemsNeverGetIds) {
    Box box{1, 2};
    TreeNode* node = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &node), 0);
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(property, types().boxPointer, u"root", 2, &box), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, property, 1), 0);
    EXPECT_EQ(node->flags & (referenceFlags | kstd_persistentPropertyNodeFlag_arrayItem), 0x100u);
    EXPECT_EQ(node->objectId, -1);
    EXPECT_EQ(childCount(node), 2);
    EXPECT_EQ(tree->objectPointers.base.size, 0);
    // Decomposing again replaces the subtree; ids continue from the registry.
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, property, 0), 0);
    EXPECT_EQ(node->objectId, 0);
    ASSERT_EQ(kstd_persistentPropertyNode_resetDecomposeProperty(node, property, 0), 0);
    EXPECT_EQ(node->flags & referenceFlags, referenceFlags);
    EXPECT_EQ(node->firstChild, nullptr);
}

// (Allocation failures: the sweep over the whole round trip.)
TEST_F(DecomposeTest, NodeCapReachedPartWayLeavesTheNodesBuiltSoFar) {
    kstd_ptrh_assign(&nodeOf(a.v)->next, b);
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"root", 2, a), 0);
    tree->nodeAllocator.maxBlocks = 40;
    EXPECT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property), kstd_persistentResult_tooManyNodes);
    int64_t live = -1;
    kstd_blockAllocator_getLiveCount(&tree->nodeAllocator, &live);
    EXPECT_EQ(live, 40);
    EXPECT_EQ(tree->firstChild->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);
    EXPECT_EQ(tree->bagSet.isAvailable[0], 1);  // the bag went back
}

}  // namespace
}  // namespace vexpers::test::rt
