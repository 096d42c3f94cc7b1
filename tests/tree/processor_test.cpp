// The processor's walks as a visitor sees them: event sequences over bags
// and over trees, identities of shared objects, expansion of arrays of
// object items, failures that stop a walk, and deep values.
#include <algorithm>
#include <string>
#include <vector>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

struct BagEvent {
    int32_t event, depth, index, count, isShared, objectIndex, isNew, isLeaf;
    std::u16string name;
};

struct BagRecorder {
    std::vector<BagEvent> events;
    size_t failAt = SIZE_MAX;  // the visitor call that fails with ksys_result_failure

    static kstd_result visit(void* context, int32_t event, int32_t depth, const kstd_persistentProperty* property,
                             int32_t index, int32_t count, int32_t isShared, int32_t objectIndex, int32_t isNew,
                             int32_t isLeaf) {
        auto* self = static_cast<BagRecorder*>(context);
        std::u16string name;
        if (property != nullptr && property->info.name.chars != nullptr) name = property->info.name.chars;
        self->events.push_back({event, depth, index, count, isShared, objectIndex, isNew, isLeaf, name});
        return self->events.size() - 1 == self->failAt ? ksys_result_failure : 0;
    }

    // (event, depth, index, count) of each call.
    std::vector<std::vector<int32_t>> shape() const {
        std::vector<std::vector<int32_t>> result;
        for (const BagEvent& e : events) result.push_back({e.event, e.depth, e.index, e.count});
        return result;
    }
    // The property events of depth 0.
    std::vector<BagEvent> topProperties() const {
        std::vector<BagEvent> result;
        for (const BagEvent& e : events)
            if (e.depth == 0 && e.event == kstd_persistentPropertyProcessorEvent_propertyBegin) result.push_back(e);
        return result;
    }
};

struct NodeEvent {
    int32_t event, depth;
    std::u16string name;
    uint32_t flags;
};

struct NodeRecorder {
    std::vector<NodeEvent> events;
    static kstd_result visit(void* context, int32_t event, int32_t depth, const kstd_persistentPropertyNode* node) {
        std::u16string name;
        if (node->info.name.chars != nullptr) name = node->info.name.chars;
        static_cast<NodeRecorder*>(context)->events.push_back({event, depth, name, node->flags});
        return 0;
    }
};

struct BagBox {
    kstd_persistentPropertyBag b;
    BagBox() { kstd_persistentPropertyBag_construct(&b); }
    ~BagBox() { kstd_persistentPropertyBag_destruct(&b); }
    BagBox(const BagBox&) = delete;
    BagBox& operator=(const BagBox&) = delete;
};

void derive(TypeBox& out, const kstd_persistentType* type, uint32_t derivation) {
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&out.t, type, derivation), 0);
}

TEST(ProcessorBagWalk, LeafAndObjectPropertiesSendTheirEventsInOrder) {
    types();
    ProcessorBox processor;
    {
        PropertyBox leaf;
        ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int32(&leaf.p, u"n", 2, 5), 0);
        BagRecorder recorder;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &leaf.p, BagRecorder::visit,
                                                                   &recorder),
                  0);
        EXPECT_EQ(recorder.shape(), (std::vector<std::vector<int32_t>>{{0, 0, -1, 1}, {2, 0, 0, 1}, {3, 0, 0, 1},
                                                                       {1, 0, 1, 1}}));
        EXPECT_EQ(recorder.events[1].isLeaf, 1);
        EXPECT_EQ(recorder.events[1].isShared, 0);
        EXPECT_EQ(recorder.events[1].objectIndex, -1);
    }
    {
        // An object with two leaf properties, held by value.
        Box box{3, 4};
        PropertyBox object;
        ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(&object.p, types().box, u"box", 2, &box), 0);
        BagRecorder recorder;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &object.p, BagRecorder::visit,
                                                                   &recorder),
                  0);
        EXPECT_EQ(recorder.shape(),
                  (std::vector<std::vector<int32_t>>{{0, 0, -1, 1}, {2, 0, 0, 1}, {0, 1, -1, 2}, {2, 1, 0, 2},
                                                     {3, 1, 0, 2}, {2, 1, 1, 2}, {3, 1, 1, 2}, {1, 1, 2, 2},
                                                     {3, 0, 0, 1}, {1, 0, 1, 1}}));
        EXPECT_EQ(recorder.events[1].isLeaf, 0);
        EXPECT_EQ(recorder.events[3].name, u"width");
        EXPECT_EQ(recorder.events[5].name, u"height");
    }
}

TEST(ProcessorBagWalk, SharedObjectsAreExpandedOnceAndThenReportedByIndex) {
    types();
    PointerBox link;
    newLink(&link.p);
    TypeBox linkPointer;
    derive(linkPointer, types().link, kstd_persistentTypeDerivation_pointer);
    BagBox bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(&bag.b, &linkPointer.t, u"a", 2, linkOf(link.p)), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(&bag.b, &linkPointer.t, u"b", 2, linkOf(link.p)), 0);
    ProcessorBox processor;
    BagRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(&processor.p, &bag.b, BagRecorder::visit, &recorder),
              0);
    const std::vector<BagEvent> top = recorder.topProperties();
    ASSERT_EQ(top.size(), 2u);
    EXPECT_EQ(top[0].isShared, 1);
    EXPECT_EQ(top[0].isNew, 1);
    EXPECT_EQ(top[0].objectIndex, 0);
    EXPECT_EQ(top[1].isShared, 1);
    EXPECT_EQ(top[1].isNew, 0);
    EXPECT_EQ(top[1].objectIndex, 0);
    // "b" is not expanded: its events 2 and 3 follow each other at depth 0.
    ASSERT_GE(recorder.events.size(), 3u);
    const size_t n = recorder.events.size();
    EXPECT_EQ(recorder.events[n - 3].name, u"b");
    EXPECT_EQ(recorder.events[n - 2].event, kstd_persistentPropertyProcessorEvent_propertyEnd);
    EXPECT_EQ(recorder.events[n - 2].depth, 0);
    EXPECT_GT(n, 8u) << "a was expanded";

    // A second call on the same processor still knows the object; reset
    // forgets it.
    PropertyBox single;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(&single.p, &linkPointer.t, u"c", 2, linkOf(link.p)),
              0);
    BagRecorder again;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &single.p, BagRecorder::visit, &again), 0);
    EXPECT_EQ(again.events.size(), 4u);
    EXPECT_EQ(again.topProperties()[0].isNew, 0);
    EXPECT_EQ(again.topProperties()[0].objectIndex, 0);
    ASSERT_EQ(kstd_persistentPropertyProcessor_reset(&processor.p), 0);
    EXPECT_EQ(processor.p.bagCount, 0);
    BagRecorder afterReset;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &single.p, BagRecorder::visit,
                                                               &afterReset),
              0);
    EXPECT_EQ(afterReset.topProperties()[0].isNew, 1);
}

// The indexed search must answer as the search from the start of the list
// would: first position of a whole-object pointer, objects held by value
// appended every time, and a pointer to an object first met by value finds
// that entry.
TEST(ProcessorBagWalk, SharedObjectIndexesMatchTheLinearSearch) {
    types();
    constexpr int count = 300;
    std::vector<PointerBox> links(count);
    for (PointerBox& link : links) newLink(&link.p);
    std::vector<Box> boxes(3, Box{1, 2});
    TypeBox linkPointer, boxPointer;
    derive(linkPointer, types().link, kstd_persistentTypeDerivation_pointer);
    derive(boxPointer, types().box, kstd_persistentTypeDerivation_pointer);

    BagBox bag;
    std::vector<const void*> expectedList;  // the linear model
    std::vector<int32_t> expectedIndex, expectedNew;
    int next = 0;
    const auto add = [&](const kstd_persistentType* type, const void* object, bool byValue) {
        const std::u16string name = u"p" + std::u16string(1, char16_t(u'A' + next / 26 / 26 % 26)) +
                                    std::u16string(1, char16_t(u'A' + next / 26 % 26)) +
                                    std::u16string(1, char16_t(u'A' + next % 26));
        ++next;
        ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(&bag.b, type, name.c_str(), 2, object), 0);
        int32_t found = -1;
        for (size_t i = 0; !byValue && i < expectedList.size() && found < 0; ++i)
            if (expectedList[i] == object) found = static_cast<int32_t>(i);
        if (found < 0) {
            expectedList.push_back(object);
            found = static_cast<int32_t>(expectedList.size() - 1);
            expectedNew.push_back(1);
        } else {
            expectedNew.push_back(0);
        }
        expectedIndex.push_back(found);
    };
    add(types().box, &boxes[0], true);
    for (int i = 0; i < count; ++i) add(&linkPointer.t, linkOf(links[i].p), false);
    add(types().box, &boxes[0], true);  // by value again: new again
    add(&boxPointer.t, &boxes[0], false);  // a pointer finds the first entry
    for (int i = count - 1; i >= 0; i -= 7) add(&linkPointer.t, linkOf(links[i].p), false);
    add(&boxPointer.t, &boxes[1], false);
    add(types().box, &boxes[1], true);

    ProcessorBox processor;
    BagRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(&processor.p, &bag.b, BagRecorder::visit, &recorder),
              0);
    const std::vector<BagEvent> top = recorder.topProperties();
    ASSERT_EQ(top.size(), expectedIndex.size());
    for (size_t i = 0; i < top.size(); ++i) {
        EXPECT_EQ(top[i].objectIndex, expectedIndex[i]) << "property " << i;
        EXPECT_EQ(top[i].isNew, expectedNew[i]) << "property " << i;
    }
}

TEST(ProcessorBagWalk, FailuresEndTheWalkAtOnce) {
    types();
    Box box{3, 4};
    PropertyBox object;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(&object.p, types().box, u"box", 2, &box), 0);
    ProcessorBox processor;
    BagRecorder recorder;
    recorder.failAt = 3;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &object.p, BagRecorder::visit, &recorder),
              ksys_result_failure);
    EXPECT_EQ(recorder.events.size(), 4u);

    // A vector's items are a non-empty array, which a bag walk cannot
    // expand.
    kstd_vector32s vector;
    kstd_vector32s_construct(&vector);
    kstd_vector32s_pushBack(&vector, 1);
    BagBox bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_kstd_vector32s(&bag.b, u"v", 2, &vector), 0);
    BagRecorder walk;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(&processor.p, &bag.b, BagRecorder::visit, &walk),
              kstd_persistentResult_notSupported);
    kstd_vector32s_destruct(&vector);
}

TEST(ProcessorNodeWalk, ArraysOfObjectItemsAreExpandedItemByItem) {
    types();
    PointerBox root;
    newNode(&root.p);
    Node& node = *nodeOf(root.p);
    node.items.count = 2;
    node.items.items[0].weight = 1;
    node.items.items[1].weight = 2;
    kstd_vector32_pushBack(&node.v32, 9);
    PropertyBox property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property.p, u"root", 2, &root.p), 0);
    TreeBox tree;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree.t, &property.p), 0);
    ProcessorBox processor;

    const kstd_persistentPropertyNode* pointee = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(tree.t.firstChild, u"ptr", 1, &pointee), 0);
    const kstd_persistentPropertyNode* items = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(pointee, u"items", 1, &items), 0);
    NodeRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyNode(
                  &processor.p, const_cast<kstd_persistentPropertyNode*>(items), 3, NodeRecorder::visit, &recorder),
              0);
    // items begins, each item "i" is walked one level deeper, items ends.
    ASSERT_GE(recorder.events.size(), 2u);
    EXPECT_EQ(recorder.events.front().event, kstd_persistentPropertyProcessorEvent_nodeBegin);
    EXPECT_EQ(recorder.events.front().depth, 3);
    EXPECT_EQ(recorder.events.back().event, kstd_persistentPropertyProcessorEvent_nodeEnd);
    EXPECT_EQ(recorder.events.back().name, u"items");
    int itemBegins = 0;
    for (const NodeEvent& e : recorder.events) {
        if (e.depth != 4) {
            EXPECT_TRUE(e.depth == 3 || e.depth > 4);
            continue;
        }
        EXPECT_EQ(e.name, u"i");
        EXPECT_NE(e.flags & kstd_persistentPropertyNodeFlag_arrayItem, 0u);
        if (e.event == kstd_persistentPropertyProcessorEvent_nodeBegin) ++itemBegins;
    }
    EXPECT_EQ(itemBegins, 2);

    // The whole tree: vectors hold core items (event 6, or 5 when empty).
    NodeRecorder whole;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(&processor.p, &tree.t, NodeRecorder::visit, &whole),
              0);
    const auto itemsEventAfter = [&](const std::u16string& vector) {
        for (size_t i = 0; i + 1 < whole.events.size(); ++i)
            if (whole.events[i].name == vector && whole.events[i].event == 4) return whole.events[i + 1].event;
        return -1;
    };
    EXPECT_EQ(itemsEventAfter(u"v32"), kstd_persistentPropertyProcessorEvent_coreArray);
    EXPECT_EQ(itemsEventAfter(u"v32s"), kstd_persistentPropertyProcessorEvent_leaf);
    int open = 0;
    for (const NodeEvent& e : whole.events) {
        if (e.event == 4) ++open;
        if (e.event == 7) --open;
        EXPECT_GE(open, 0);
    }
    EXPECT_EQ(open, 0);
    unlinkNode(&node);
}

TEST(ProcessorNodeWalk, CompoundNodeWithoutChildrenAndNegativeDepthAreRefused) {
    types();
    TreeBox tree;
    kstd_persistentPropertyNode* top = nullptr;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree.t, &top), 0);
    kstd_persistentPropertyNodeSection section;
    ASSERT_EQ(kstd_persistentPropertyNodeSection_construct(&section), 0);
    kstd_persistentPropertyInfo info;
    ASSERT_EQ(kstd_persistentPropertyInfo_construct(&info), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&info, u"box", types().box, 2), 0);
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(&section, &info, &info, 0, -1, 0, 0, 0, 0), 0);
    section.sectionType = kstd_persistentPropertyNodeSectionType_start;
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(top, &section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(top), 0);
    kstd_persistentPropertyInfo_destruct(&info);
    kstd_persistentPropertyNodeSection_destruct(&section);

    ProcessorBox processor;
    NodeRecorder recorder;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(&processor.p, &tree.t, NodeRecorder::visit,
                                                                   &recorder),
              kstd_persistentResult_nodeHasNoChildren);
    ASSERT_EQ(recorder.events.size(), 1u);
    EXPECT_EQ(recorder.events[0].event, kstd_persistentPropertyProcessorEvent_nodeBegin);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyNode(&processor.p, top, -1, NodeRecorder::visit,
                                                                   &recorder),
              ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

// A chain nesting 100,000 objects deep is walked over bags and over its
// tree on the default stack.
TEST(ProcessorDeepValues, LongChainsWalkWithoutDeepNativeStack) {
    types();
    constexpr int32_t length = 100000;
    PointerBox head;
    newLink(&head.p);
    {
        PointerBox tail;
        kstd_ptrh_assign(&tail.p, &head.p);
        for (int32_t i = 1; i < length; ++i) {
            newLink(&linkOf(tail.p)->next);
            kstd_ptrh_assign(&tail.p, &linkOf(tail.p)->next);
        }
    }
    PropertyBox property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property.p, u"root", 2, &head.p), 0);
    {
        ProcessorBox processor;
        BagRecorder recorder;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(&processor.p, &property.p, BagRecorder::visit,
                                                                   &recorder),
                  0);
        int32_t deepest = 0, newObjects = 0;
        for (const BagEvent& e : recorder.events) {
            deepest = std::max(deepest, e.depth);
            if (e.event == kstd_persistentPropertyProcessorEvent_propertyBegin && e.isNew != 0) ++newObjects;
        }
        EXPECT_EQ(newObjects, length);
        EXPECT_GE(deepest, 2 * length);
    }
    {
        TreeBox tree;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree.t, &property.p), 0);
        ProcessorBox processor;
        NodeRecorder recorder;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(&processor.p, &tree.t, NodeRecorder::visit,
                                                                       &recorder),
                  0);
        int32_t deepest = 0;
        for (const NodeEvent& e : recorder.events) deepest = std::max(deepest, e.depth);
        EXPECT_GE(deepest, 2 * length);
    }
    releaseChain(&head.p);
}

}  // namespace
}  // namespace vexpers::test::rt
