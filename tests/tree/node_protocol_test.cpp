// Rebuilding nodes from sections that no writer makes: out of order, or of
// kinds and flags a node cannot take, refused with codes and changing nothing.
// (Sections in order: the readers of the format round trips.)
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

using TreeNode = kstd_persistentPropertyNode;

// A section of `type` named `name` holding the int32 `value` as a leaf.
void intLeafSection(Section& section, uint32_t type, const char16_t* name, int32_t value) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, name,
                                                                    kstd_persistentCoreTypeId_k_Int32, 2),
              0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int32(&section->property, name, 2, value), 0);
    section->sectionType = type;
    section->flags = 0x18;
}

// A start section (compound) named `name` of `type`.
void startSection(Section& section, const char16_t* name, const kstd_persistentType* type = types().item) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, name, type, 2), 0);
    section->sectionType = kstd_persistentPropertyNodeSectionType_start;
    section->flags = 0x4;
}

std::u16string nameOf(const TreeNode* node) {
    const char16_t* name = nullptr;
    kstd_persistentPropertyInfo_getName(&node->info, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}


class NodeProtocolTest : public ::testing::Test {
protected:
    // The registry interns every name for good: intern the tests' names
    // before the leak checks start.
    static void SetUpTestSuite() {
        types();
        Info info;
        for (const char16_t* name : {u"top", u"x", u"again"})
            kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, name, name, 0, 2);
    }

    // A top-level node started from a start section named "top".
    TreeNode* startedTop() {
        TreeNode* top = nullptr;
        startSection(section, u"top");
        EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &top), 0);
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(top, section), 0);
        return top;
    }

    NoLeaks leaks;  // checked after the tree and the section go
    Tree tree;
    Section section;
};

TEST_F(NodeProtocolTest, SectionsOutOfOrderFailAndChangeNothing) {
    AssertRecorder faults;
    TreeNode* fresh = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &fresh), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
    // Children and ends need a started node.
    EXPECT_EQ(kstd_persistentPropertyNode_addChildLeafNode(fresh, section), ksys_result_failure);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(fresh), ksys_result_failure);
    EXPECT_EQ(fresh->firstChild, nullptr);
    EXPECT_EQ(fresh->flags, 0u);

    TreeNode* top = startedTop();
    startSection(section, u"again");
    EXPECT_EQ(kstd_persistentPropertyNode_startNode(top, section), ksys_result_failure);
    EXPECT_EQ(nameOf(top), u"top");
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(top), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(top), ksys_result_failure);  // a compound ends once
    TreeNode* late = reinterpret_cast<TreeNode*>(1);
    EXPECT_EQ(kstd_persistentPropertyNode_startChildNode(top, section, &late), ksys_result_failure);
    EXPECT_EQ(late, nullptr);
    EXPECT_EQ(top->firstChild, nullptr);

    // A leaf may be ended again.
    TreeNode* leaf = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &leaf), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
    ASSERT_EQ(kstd_persistentPropertyNode_startAndEndLeafNode(leaf, section), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(leaf), 0);
    EXPECT_EQ(faults.count(), 0);
    EXPECT_EQ(outOf<int64_t>(0, kstd_blockAllocator_getLiveCount, &tree->nodeAllocator), 3);
}

TEST_F(NodeProtocolTest, SectionsNoWriterMakesGiveCodesNotFaults) {
    AssertRecorder faults;
    TreeNode* top = startedTop();
    TreeNode* node = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &node), 0);
    // Section types a node cannot start with; flag words with unknown bits,
    // two kinds, a kind without the leaf bit, two array kinds, a leaf kind in
    // a start section; a count or id below their ranges.
    const struct {
        uint32_t type, flags;
        int64_t numItems, objectId;
    } cases[]{
        {kstd_persistentPropertyNodeSectionType_end, 0x18, 0, -1},
        {7, 0x18, 0, -1},
        {kstd_persistentPropertyNodeSectionType_none, 0x18, 0, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x818, 0, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x38, 0, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x10, 0, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x3, 0, -1},
        {kstd_persistentPropertyNodeSectionType_start, 0x8, 0, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x18, -1, -1},
        {kstd_persistentPropertyNodeSectionType_leaf, 0x18, 0, -2},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::Message() << test.type << " " << std::hex << test.flags);
        intLeafSection(section, test.type, u"x", 1);
        section->flags = test.flags;
        section->numItems = test.numItems;
        section->objectId = test.objectId;
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, section), ksys_result_failure);
        EXPECT_EQ(node->flags, 0u);
    }
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_start, u"x", 1);
    EXPECT_EQ(kstd_persistentPropertyNode_startAndEndLeafNode(node, section), ksys_result_failure);

    // A child whose section is refused stays in the list, not started.
    intLeafSection(section, 9u, u"x", 1);
    TreeNode* refused = nullptr;
    EXPECT_EQ(kstd_persistentPropertyNode_startChildNode(top, section, &refused), ksys_result_failure);
    ASSERT_NE(refused, nullptr);
    EXPECT_EQ(top->firstChild, refused);
    EXPECT_EQ(refused->flags, 0u);

    // A leaf flag without a kind (set by hand) is reported, not faulted.
    node->flags = 0x8;
    uint32_t isLeaf = 9, kind = 9;
    EXPECT_EQ(kstd_persistentPropertyNode_getIsLeaf(node, &isLeaf, &kind), ksys_result_failure);
    EXPECT_EQ(isLeaf + kind, 0u);
    section->flags = 0x8;
    EXPECT_EQ(kstd_persistentPropertyNodeSection_getIsLeaf(section, &isLeaf, &kind), ksys_result_failure);
    uint32_t hasId = 9;
    int64_t id = 9;
    EXPECT_EQ(kstd_persistentPropertyNodeSection_getObjectInfoNonCoreArrayItem_(section, &hasId, &id),
              ksys_result_failure);
    // An array for a descriptor that names no known array type is refused
    // as a variant refuses it, whatever the size check could not learn.
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&section->info, u"x", u"x", 2, 2), 0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, 3, nullptr, nullptr),
              kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(faults.count(), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
