// Rebuilding nodes from sections: the start/end protocol in and out of order,
// end matching, lookups by name, what sections of each kind leave in a node,
// and sections that no writer makes.
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

using TreeNode = kstd_persistentPropertyNode;
constexpr uint32_t referenceFlags = 0x80088u;

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

// A start section (compound) named `name` of `type`, or an end section.
void startSection(Section& section, const char16_t* name, const kstd_persistentType* type = types().item,
                  uint32_t sectionType = kstd_persistentPropertyNodeSectionType_start) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, name, type, 2), 0);
    section->sectionType = sectionType;
    section->flags = sectionType == kstd_persistentPropertyNodeSectionType_start ? 0x4 : 0;
}
void endSection(Section& section, const char16_t* name) {
    startSection(section, name, types().item, kstd_persistentPropertyNodeSectionType_end);
}

std::u16string nameOf(const TreeNode* node) {
    const char16_t* name = nullptr;
    kstd_persistentPropertyInfo_getName(&node->info, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}

int64_t liveNodes(const kstd_persistentPropertyTree* tree) {
    int64_t count = -1;
    kstd_blockAllocator_getLiveCount(&tree->nodeAllocator, &count);
    return count;
}

class NodeProtocolTest : public ::testing::Test {
protected:
    // The registry interns every name for good: intern the tests' names
    // before the leak checks start.
    static void SetUpTestSuite() {
        types();
        Info info;
        for (const char16_t* name : {u"top", u"part", u"size", u"count", u"x", u"again", u"twin", u"ref", u"item",
                                     u"p", u"a", u"n", u"color", u"value", u"other", u"Top", u"to", u"RtNobody"})
            kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, name, name, 0, 2);
    }

    // A top-level node started from `section`, or from a start section named "top".
    TreeNode* started() {
        TreeNode* top = nullptr;
        EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &top), 0);
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(top, section), 0);
        return top;
    }
    TreeNode* startedTop() {
        startSection(section, u"top");
        return started();
    }

    NoLeaks leaks;  // checked after the tree and the section go
    Tree tree;
    Section section;
};

TEST_F(NodeProtocolTest, SectionsInOrderRebuildTheTree) {
    TreeNode* top = startedTop();
    EXPECT_EQ(top->flags, 0x110004u);
    TreeNode* part = nullptr;
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_startWithValue, u"part", 3);
    ASSERT_EQ(kstd_persistentPropertyNode_startChildNode(top, section, &part), 0);
    EXPECT_EQ(part->flags, 0x150018u);  // open: a child may come before its end
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"size", 7);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(part, section), 0);
    endSection(section, u"part");
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(part), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"count", 9);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(top), 0);

    EXPECT_EQ(nameOf(top->firstChild), u"part");
    EXPECT_EQ(nameOf(top->lastChild), u"count");
    EXPECT_EQ(top->firstChild->nextSibling, top->lastChild);
    const TreeNode* size = part->firstChild;
    EXPECT_EQ(size->flags, 0x170018u);  // leaf core value, value, info, started, ended
    EXPECT_EQ(size->objectId, -1);
    int64_t value = 0;
    EXPECT_EQ(kstd_persistentPropertyNode_getEnumAsInt64(part, u"size", &value), 0);
    EXPECT_EQ(value, 7);
    // Without a child of that name the node's own leaf value is read.
    EXPECT_EQ(kstd_persistentPropertyNode_getEnumAsInt64(part, u"absent", &value), 0);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(liveNodes(tree), 4);
}

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
    EXPECT_EQ(liveNodes(tree), 3);
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
    EXPECT_EQ(faults.count(), 0);
}

TEST_F(NodeProtocolTest, EndsMatchByNameOnlyForEndSectionsAndChildrenByFirstName) {
    TreeNode* top = startedTop();
    uint32_t matches = 9;
    startSection(section, u"top");  // a start section never ends a node
    EXPECT_EQ(kstd_persistentPropertyNode_isMatchingEnd(top, section, &matches), 0);
    EXPECT_EQ(matches, 0u);
    const struct {
        const char16_t* name;
        uint32_t matches;
    } ends[]{{nullptr, 1}, {u"", 1}, {u"top", 1}, {u"other", 0}, {u"Top", 0}, {u"to", 0}};
    for (const auto& end : ends) {
        endSection(section, end.name);
        EXPECT_EQ(kstd_persistentPropertyNode_isMatchingEnd(top, section, &matches), 0);
        EXPECT_EQ(matches, end.matches) << ascii(end.name);
    }

    for (int32_t value : {1, 2}) {
        intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"twin", value);
        ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, section), 0);
    }
    TreeNode* found = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"twin", 1, &found), 0);
    EXPECT_EQ(found, top->firstChild);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"", 0, &found),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"none", 0, &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"none", 1, &found),
              kstd_persistentResult_propertyNotFound);
    EXPECT_EQ(kstd_persistentPropertyNode_doesNameMatch(top, u"", &matches), 0);
    EXPECT_EQ(matches, 1u);
}

TEST_F(NodeProtocolTest, ReferenceLeavesKeepTheirIdAndOtherLeavesTheirValue) {
    TreeNode* top = startedTop();
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"ref", 5);
    section->flags = referenceFlags;
    section->objectId = 7;
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, section), 0);
    const TreeNode* ref = top->lastChild;
    EXPECT_EQ(ref->flags, referenceFlags | 0x130000u);  // no value taken
    uint32_t hasId = 0, isReference = 0;
    int64_t id = 0;
    ASSERT_EQ(kstd_persistentPropertyNode_getObjectId(ref, &hasId, &id, &isReference), 0);
    EXPECT_EQ(hasId + isReference, 2u);
    EXPECT_EQ(id, 7);

    // Any other leaf takes its value; the id goes, the flags copied stay.
    section->flags = 0x80018;
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, section), 0);
    const TreeNode* leaf = top->lastChild;
    EXPECT_EQ(leaf->objectId, -1);
    EXPECT_EQ(leaf->flags, 0x80018u | 0x170000u);
    const kstd_persistentProperty* property = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getLeafPropertyPtrConst(leaf, &property), 0);
    int32_t value = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_k_Int32(property, &value), 0);
    EXPECT_EQ(value, 5);

    // A leaf built with setLeafPropertyValue has no kind yet: the value gives it.
    Variant four;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(four, 4), 0);
    section->flags = 0;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setLeafPropertyValue(section, four), 0);
    EXPECT_EQ(section->flags, 0x40008u);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, section), 0);
    EXPECT_EQ(top->lastChild->flags, 0x170018u);
}

TEST_F(NodeProtocolTest, SectionsCarryTheWholeFlagWordAndBuildFlagsForReading) {
    Box box{1, 2};
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(property, types().boxPointer, u"item", 2, &box), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property), 0);
    const TreeNode* written = tree->firstChild;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_assignNode(section, written, 0), 0);
    EXPECT_EQ(section->flags, written->flags | 0x110000u);
    EXPECT_NE(section->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);
    TreeNode* read = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocTempNode(tree, &read), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(read, section), 0);
    EXPECT_EQ(read->flags, section->flags);
    EXPECT_EQ(read->objectId, 0);
    EXPECT_EQ(kstd_persistentPropertyNode_freeNodeAndChildren(read), 0);

    // No kinds make a compound; an array item is a start; an object type the
    // registry cannot name changes nothing.
    Info info, objectInfo;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(info, u"p", types().item, 2), 0);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(section, info, info, 1, 4, 0, 0, 0, 0), 0);
    EXPECT_EQ(section->flags, 0x180004u);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(section, info, objectInfo, 0, 4, 1, 0, 0, 0),
              kstd_persistentResult_typeEmpty);
    EXPECT_EQ(section->flags, 0x180004u);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setObjectInfoNonCoreArrayItem(section, 1, 3), 0);
    EXPECT_EQ(section->flags, 0x80104u);
    EXPECT_EQ(section->sectionType, 0u);

    // Arrays allocate within the cap; a refused count changes nothing.
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, u"a", 4, 2), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&section->info.type, &section->info.type, 2), 0);
    void* first = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, 3, &first, &size), 0);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(section->numItems, 3);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, -1, &first, &size),
              kstd_persistentResult_invalidCount);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, 0x10000001, &first, &size),
              kstd_persistentResult_arraySizeOverflow);
    EXPECT_EQ(section->numItems, 3);
}

TEST_F(NodeProtocolTest, CoreOrEnumValueIsTheNodeOrItsValueChild) {
    AssertRecorder faults;
    const kstd_persistentVariant* variant = nullptr;
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"n", 4);
    const TreeNode* leaf = started();
    ASSERT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(leaf, 1, &variant), 0);
    EXPECT_EQ(variant, &leaf->leafProperty.value);

    // An enum is a compound whose child "value" holds it; without the child
    // there is no value, required or not.
    startSection(section, u"color", types().color);
    TreeNode* color = started();
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 1, &variant),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 0, &variant), 0);
    EXPECT_EQ(variant, nullptr);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"value", 2);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(color, section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 1, &variant), 0);
    EXPECT_EQ(variant, &color->firstChild->leafProperty.value);

    // An object type has no such value; a type nobody registered neither.
    startSection(section, u"part");
    TreeNode* part = started();
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeMismatch);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&part->info, u"part", u"RtNobody", 0, 2),
              0);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeNotRegistered);
    part->flags |= kstd_persistentPropertyNodeFlag_arrayItem;
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(faults.count(), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
