// Rebuilding nodes from sections: the start/end protocol in and out of order,
// end matching, lookups by name, what sections of each kind leave in a node,
// and sections that no writer makes.
#include "tree/tree_fixtures.hpp"

namespace vexpers::test::tree {
namespace {

using Node = kstd_persistentPropertyNode;

class NodeProtocolTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { start(); }

    // A top-level node started from a start section named "top".
    Node* startedTop() {
        Node* top = nullptr;
        EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &top), 0);
        Section section;
        startSection(section, u"top");
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(top, &section), 0);
        return top;
    }

    NoLeaks leaks;
    Tree tree;
};

TEST_F(NodeProtocolTest, SectionsInOrderRebuildTheTree) {
    Node* top = startedTop();
    EXPECT_EQ(top->flags, 0x110004u);

    Section section;
    Node* part = nullptr;
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_startWithValue, u"part", 3);
    ASSERT_EQ(kstd_persistentPropertyNode_startChildNode(top, &section, &part), 0);
    EXPECT_EQ(part->flags, 0x150018u);  // open: a child may come before its end
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"size", 7);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(part, &section), 0);
    endSection(section, u"part");
    uint32_t matches = 0;
    ASSERT_EQ(kstd_persistentPropertyNode_isMatchingEnd(part, &section, &matches), 0);
    EXPECT_EQ(matches, 1u);
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(part), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"count", 9);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, &section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(top), 0);

    ASSERT_EQ(childCount(top), 2);
    EXPECT_EQ(nameOf(top->firstChild), u"part");
    EXPECT_EQ(nameOf(top->lastChild), u"count");
    const Node* size = child(part, u"size");
    ASSERT_NE(size, nullptr);
    EXPECT_EQ(size->flags, 0x170018u);  // leaf core value, value, info, started, ended
    EXPECT_EQ(size->objectId, -1);
    int64_t value = 0;
    EXPECT_EQ(kstd_persistentPropertyNode_getEnumAsInt64(part, u"size", &value), 0);
    EXPECT_EQ(value, 7);
    // Without a child of that name the node's own leaf value is read.
    EXPECT_EQ(kstd_persistentPropertyNode_getEnumAsInt64(part, u"absent", &value), 0);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(liveNodes(&tree), 4);
}

TEST_F(NodeProtocolTest, SectionsOutOfOrderFailAndChangeNothing) {
    AssertRecorder faults;
    Section section;
    Node* fresh = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &fresh), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
    // Children and ends need a started node.
    EXPECT_EQ(kstd_persistentPropertyNode_addChildLeafNode(fresh, &section), ksys_result_failure);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(fresh), ksys_result_failure);
    EXPECT_EQ(fresh->firstChild, nullptr);
    EXPECT_EQ(fresh->flags, 0u);

    Node* top = startedTop();
    startSection(section, u"again");
    EXPECT_EQ(kstd_persistentPropertyNode_startNode(top, &section), ksys_result_failure);
    EXPECT_EQ(nameOf(top), u"top");
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(top), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(top), ksys_result_failure);  // a compound ends once
    Node* late = reinterpret_cast<Node*>(1);
    EXPECT_EQ(kstd_persistentPropertyNode_startChildNode(top, &section, &late), ksys_result_failure);
    EXPECT_EQ(late, nullptr);
    EXPECT_EQ(top->firstChild, nullptr);

    // A leaf may be ended again.
    Node* leaf = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &leaf), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
    ASSERT_EQ(kstd_persistentPropertyNode_startAndEndLeafNode(leaf, &section), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_endNode(leaf), 0);
    EXPECT_EQ(faults.count(), 0);
    EXPECT_EQ(liveNodes(&tree), 3);
}

TEST_F(NodeProtocolTest, SectionsNoWriterMakesGiveCodesNotFaults) {
    AssertRecorder faults;
    Node* top = startedTop();
    Section section;
    Node* node = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &node), 0);
    for (uint32_t type : {kstd_persistentPropertyNodeSectionType_end, 7u, kstd_persistentPropertyNodeSectionType_none}) {
        intLeafSection(section, type, u"x", 1);
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, &section), ksys_result_failure) << type;
    }
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_start, u"x", 1);
    EXPECT_EQ(kstd_persistentPropertyNode_startAndEndLeafNode(node, &section), ksys_result_failure);
    // Flag words: unknown bits, two kinds, a kind without the leaf bit, two
    // array kinds, a leaf without a kind in a section that gives no value; a
    // count or id below their ranges.
    for (uint32_t flags : {0x18u | 0x800u, 0x38u, 0x10u, 0x3u}) {
        intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
        section->flags = flags;
        EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, &section), ksys_result_failure) << std::hex << flags;
    }
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_start, u"x", 1);
    section->flags = 0x8;
    EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, &section), ksys_result_failure);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"x", 1);
    section->numItems = -1;
    EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, &section), ksys_result_failure);
    section->numItems = 0;
    section->objectId = -2;
    EXPECT_EQ(kstd_persistentPropertyNode_startNode(node, &section), ksys_result_failure);
    EXPECT_EQ(node->flags, 0u);

    // A child whose section is refused stays in the list, not started.
    intLeafSection(section, 9u, u"x", 1);
    Node* refused = nullptr;
    EXPECT_EQ(kstd_persistentPropertyNode_startChildNode(top, &section, &refused), ksys_result_failure);
    ASSERT_NE(refused, nullptr);
    EXPECT_EQ(top->firstChild, refused);
    EXPECT_EQ(refused->flags, 0u);

    // A leaf flag without a kind (set by hand) is reported, not faulted.
    node->flags = 0x8;
    uint32_t isLeaf = 9, kind = 9;
    EXPECT_EQ(kstd_persistentPropertyNode_getIsLeaf(node, &isLeaf, &kind), ksys_result_failure);
    EXPECT_EQ(isLeaf, 0u);
    EXPECT_EQ(kind, 0u);
    section->flags = 0x8;
    EXPECT_EQ(kstd_persistentPropertyNodeSection_getIsLeaf(&section, &isLeaf, &kind), ksys_result_failure);
    uint32_t hasId = 9;
    int64_t id = 9;
    EXPECT_EQ(kstd_persistentPropertyNodeSection_getObjectInfoNonCoreArrayItem_(&section, &hasId, &id),
              ksys_result_failure);
    EXPECT_EQ(faults.count(), 0);
}

TEST_F(NodeProtocolTest, EndsMatchByNameOnlyForEndSections) {
    Node* top = startedTop();
    Section section;
    uint32_t matches = 9;
    startSection(section, u"top");  // a start section never ends a node
    EXPECT_EQ(kstd_persistentPropertyNode_isMatchingEnd(top, &section, &matches), 0);
    EXPECT_EQ(matches, 0u);
    for (const char16_t* name : {static_cast<const char16_t*>(nullptr), u"", u"top"}) {
        endSection(section, name);
        EXPECT_EQ(kstd_persistentPropertyNode_isMatchingEnd(top, &section, &matches), 0);
        EXPECT_EQ(matches, 1u);
    }
    for (const char16_t* name : {u"other", u"Top", u"to"}) {
        endSection(section, name);
        EXPECT_EQ(kstd_persistentPropertyNode_isMatchingEnd(top, &section, &matches), 0);
        EXPECT_EQ(matches, 0u);
    }
}

TEST_F(NodeProtocolTest, MatchingChildIsTheFirstOfItsName) {
    Node* top = startedTop();
    Section section;
    for (int32_t value : {1, 2}) {
        intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"twin", value);
        ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, &section), 0);
    }
    Node* found = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"twin", 1, &found), 0);
    EXPECT_EQ(found, top->firstChild);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"", 0, &found),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"none", 0, &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(kstd_persistentPropertyNode_getMatchingChild(top, u"none", 1, &found),
              kstd_persistentResult_propertyNotFound);
    uint32_t matches = 0;
    EXPECT_EQ(kstd_persistentPropertyNode_doesNameMatch(top, u"", &matches), 0);
    EXPECT_EQ(matches, 1u);
}

TEST_F(NodeProtocolTest, ReferenceLeafSectionsKeepTheirId) {
    Node* top = startedTop();
    Section section;
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"ref", 5);
    section->flags = reference;
    section->objectId = 7;
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, &section), 0);
    const Node* ref = top->lastChild;
    EXPECT_EQ(ref->objectId, 7);
    EXPECT_EQ(ref->flags, reference | 0x130000u);  // no value taken
    uint32_t hasId = 0, isReference = 0;
    int64_t id = 0;
    ASSERT_EQ(kstd_persistentPropertyNode_getObjectId(ref, &hasId, &id, &isReference), 0);
    EXPECT_EQ(hasId + isReference, 2u);
    EXPECT_EQ(id, 7);

    // Any other leaf takes its value; the id goes, the flags copied stay.
    section->flags = 0x80018;
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, &section), 0);
    const Node* leaf = top->lastChild;
    EXPECT_EQ(leaf->objectId, -1);
    EXPECT_EQ(leaf->flags, 0x80018u | 0x170000u);
    const kstd_persistentProperty* property = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getLeafPropertyPtrConst(leaf, &property), 0);
    int32_t value = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_k_Int32(property, &value), 0);
    EXPECT_EQ(value, 5);

    // A leaf built with setLeafPropertyValue has no kind yet: the value gives it.
    Variant four;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(&four, 4), 0);
    section->flags = 0;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setLeafPropertyValue(&section, &four), 0);
    EXPECT_EQ(section->flags, 0x40008u);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(top, &section), 0);
    EXPECT_EQ(top->lastChild->flags, 0x170018u);
}

TEST_F(NodeProtocolTest, SectionsRoundTripTheWholeFlagWord) {
    Section section;
    EXPECT_EQ(section->sectionType, kstd_persistentPropertyNodeSectionType_none);
    EXPECT_EQ(section->objectId, -1);

    Item item;
    Property property;
    pointTo(property, u"item", &item);
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property), 0);
    const Node* written = tree->firstChild;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_assignNode(&section, written, 0), 0);
    EXPECT_EQ(section->flags, written->flags | 0x110000u);
    EXPECT_NE(section->flags & kstd_persistentPropertyNodeFlag_decomposed, 0u);

    Node* read = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocTempNode(&tree, &read), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(read, &section), 0);
    EXPECT_EQ(read->flags, section->flags);
    EXPECT_EQ(read->objectId, 0);
    EXPECT_EQ(kstd_persistentPropertyNode_freeNodeAndChildren(read), 0);

    // Building for reading: no kinds make a compound; an array item is a start.
    Info info, objectInfo;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&info, u"p", &types().part, 2), 0);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(&section, &info, &info, 1, 4, 0, 0, 0, 0), 0);
    EXPECT_EQ(section->flags, 0x180004u);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(&section, &info, &objectInfo, 0, 4, 1, 0, 0, 0),
              kstd_persistentResult_typeEmpty);  // an object type the registry cannot name
    EXPECT_EQ(section->flags, 0x180004u);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setObjectInfoNonCoreArrayItem(&section, 1, 3), 0);
    EXPECT_EQ(section->flags, 0x80104u);
    EXPECT_EQ(section->sectionType, 0u);
}

TEST_F(NodeProtocolTest, ArraySectionsAllocateWithinTheCap) {
    Section section;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, u"a", 4, 2), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&section->info.type, &section->info.type, 2), 0);
    void* first = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(&section, 3, &first, &size), 0);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(section->numItems, 3);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(&section, -1, &first, &size),
              kstd_persistentResult_invalidCount);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(&section, 0x10000001, &first, &size),
              kstd_persistentResult_arraySizeOverflow);
    EXPECT_EQ(section->numItems, 3);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayEmpty(&section), 0);
    EXPECT_EQ(section->numItems, 0);
}

TEST_F(NodeProtocolTest, CoreOrEnumValueIsTheNodeOrItsValueChild) {
    AssertRecorder faults;
    Section section;
    Node* leaf = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &leaf), 0);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"n", 4);
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(leaf, &section), 0);
    const kstd_persistentVariant* variant = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(leaf, 1, &variant), 0);
    EXPECT_EQ(variant, &leaf->leafProperty.value);

    // An enum is a compound whose child "value" holds it.
    Node* color = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &color), 0);
    startSection(section, u"color");
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, u"color", &types().color, 2), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(color, &section), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 1, &variant),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 0, &variant), 0);
    EXPECT_EQ(variant, nullptr);
    intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"value", 2);
    ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(color, &section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(color, 1, &variant), 0);
    EXPECT_EQ(variant, &color->firstChild->leafProperty.value);

    // An object type has no such value; a type nobody registered neither.
    Node* part = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &part), 0);
    startSection(section, u"part");
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(part, &section), 0);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeMismatch);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&part->info, u"part", u"TreeNobody", 0, 2),
              0);
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeNotRegistered);
    part->flags |= kstd_persistentPropertyNodeFlag_arrayItem;
    EXPECT_EQ(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(part, 1, &variant),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(faults.count(), 0);
}

TEST_F(NodeProtocolTest, DeepSubtreesFreeWithoutRecursion) {
    Node* node = startedTop();
    Section section;
    constexpr int depth = 200000;
    for (int i = 0; i < depth; ++i) {
        startSection(section, u"level");
        Node* next = nullptr;
        ASSERT_EQ(kstd_persistentPropertyNode_startChildNode(node, &section, &next), 0);
        intLeafSection(section, kstd_persistentPropertyNodeSectionType_leaf, u"i", i);
        ASSERT_EQ(kstd_persistentPropertyNode_addChildLeafNode(node, &section), 0);
        node = next;
    }
    EXPECT_EQ(liveNodes(&tree), 2 * depth + 1);
    ASSERT_EQ(kstd_persistentPropertyTree_reset(&tree), 0);
    EXPECT_EQ(liveNodes(&tree), 0);
    EXPECT_EQ(tree->firstChild, nullptr);
}

}  // namespace
}  // namespace vexpers::test::tree
