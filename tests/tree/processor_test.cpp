// The processor's walks as a visitor sees them: event sequences over bags
// and over trees, identities of shared objects, expansion of arrays of
// object items, and failures that stop a walk. (Deep values: the long chain
// of the round-trip tests.)
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

TEST(ProcessorBagWalk, LeafAndObjectPropertiesSendTheirEventsInOrderAndFailuresStopTheWalk) {
    types();
    Processor processor;
    Property leaf;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int32(leaf, u"n", 2, 5), 0);
    BagRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, leaf, BagRecorder::visit, &recorder), 0);
    EXPECT_EQ(recorder.shape(),
              (std::vector<std::vector<int32_t>>{{0, 0, -1, 1}, {2, 0, 0, 1}, {3, 0, 0, 1}, {1, 0, 1, 1}}));
    EXPECT_EQ(recorder.events[1].isLeaf, 1);
    EXPECT_EQ(recorder.events[1].isShared, 0);
    EXPECT_EQ(recorder.events[1].objectIndex, -1);

    // An object with two leaf properties, held by value.
    Box box{3, 4};
    Property object;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(object, types().box, u"box", 2, &box), 0);
    BagRecorder walk;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, object, BagRecorder::visit, &walk), 0);
    EXPECT_EQ(walk.shape(), (std::vector<std::vector<int32_t>>{{0, 0, -1, 1}, {2, 0, 0, 1}, {0, 1, -1, 2},
                                                                {2, 1, 0, 2}, {3, 1, 0, 2}, {2, 1, 1, 2},
                                                                {3, 1, 1, 2}, {1, 1, 2, 2}, {3, 0, 0, 1},
                                                                {1, 0, 1, 1}}));
    EXPECT_EQ(walk.events[1].isLeaf, 0);
    EXPECT_EQ(walk.events[3].name, u"width");
    EXPECT_EQ(walk.events[5].name, u"height");

    // A visitor's failure ends the walk at once.
    BagRecorder failing;
    failing.failAt = 3;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, object, BagRecorder::visit, &failing),
              ksys_result_failure);
    EXPECT_EQ(failing.events.size(), 4u);

    // A vector's items are a non-empty array, which a bag walk cannot expand.
    kstd_vector32s vector;
    kstd_vector32s_construct(&vector);
    kstd_vector32s_pushBack(&vector, 1);
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_kstd_vector32s(bag, u"v", 2, &vector), 0);
    BagRecorder refused;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(processor, bag, BagRecorder::visit, &refused),
              kstd_persistentResult_notSupported);
    kstd_vector32s_destruct(&vector);
}

// Shared objects are expanded once and then reported by index. The indexed
// search must answer as the search from the start of the list would: first
// position of a whole-object pointer, objects held by value appended every
// time, and a pointer to an object first met by value finds that entry.
TEST(ProcessorBagWalk, SharedObjectIndexesMatchTheLinearSearch) {
    types();
    constexpr int count = 300;
    std::vector<SharedPointer> links(count);
    for (SharedPointer& link : links) newLink(link);
    Box boxes[2]{{1, 2}, {3, 4}};
    Type linkPointer;
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(linkPointer, types().link, 1), 0);

    Bag bag;
    std::vector<const void*> expectedList;  // the linear model
    std::vector<int32_t> expectedIndex, expectedNew;
    const auto add = [&](const kstd_persistentType* type, const void* object, bool byValue) {
        const int next = static_cast<int>(expectedIndex.size());
        const std::u16string name{u'p', char16_t(u'A' + next / 676 % 26), char16_t(u'A' + next / 26 % 26),
                                  char16_t(u'A' + next % 26)};
        ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(bag, type, name.c_str(), 2, object), 0);
        int32_t found = -1;
        for (size_t i = 0; !byValue && i < expectedList.size() && found < 0; ++i)
            if (expectedList[i] == object) found = static_cast<int32_t>(i);
        expectedNew.push_back(found < 0 ? 1 : 0);
        if (found < 0) {
            expectedList.push_back(object);
            found = static_cast<int32_t>(expectedList.size() - 1);
        }
        expectedIndex.push_back(found);
    };
    add(types().box, &boxes[0], true);
    for (int i = 0; i < count; ++i) add(linkPointer, linkOf(links[i].v), false);
    add(types().box, &boxes[0], true);  // by value again: new again
    add(types().boxPointer, &boxes[0], false);  // a pointer finds the first entry
    for (int i = count - 1; i >= 0; i -= 7) add(linkPointer, linkOf(links[i].v), false);
    add(types().boxPointer, &boxes[1], false);
    add(types().box, &boxes[1], true);

    Processor processor;
    BagRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(processor, bag, BagRecorder::visit, &recorder), 0);
    const std::vector<BagEvent> top = recorder.topProperties();
    ASSERT_EQ(top.size(), expectedIndex.size());
    for (size_t i = 0; i < top.size(); ++i) {
        EXPECT_EQ(top[i].objectIndex, expectedIndex[i]) << "property " << i;
        EXPECT_EQ(top[i].isNew, expectedNew[i]) << "property " << i;
        EXPECT_EQ(top[i].isShared, 1) << "property " << i;
    }
    // A link met again is not expanded: its begin and end follow each other.
    for (size_t i = 0; i + 1 < recorder.events.size(); ++i)
        if (recorder.events[i].depth == 0 && recorder.events[i].event == 2 && recorder.events[i].isNew == 0) {
            EXPECT_EQ(recorder.events[i + 1].event, kstd_persistentPropertyProcessorEvent_propertyEnd) << i;
        }

    // A second call on the same processor still knows the objects; reset
    // forgets them.
    Property single;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(single, linkPointer, u"c", 2, linkOf(links[0].v)), 0);
    BagRecorder again, afterReset;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, single, BagRecorder::visit, &again), 0);
    EXPECT_EQ(again.events.size(), 4u);
    EXPECT_EQ(again.topProperties()[0].isNew, 0);
    EXPECT_EQ(again.topProperties()[0].objectIndex, 1);
    ASSERT_EQ(kstd_persistentPropertyProcessor_reset(processor), 0);
    EXPECT_EQ(processor->bagCount, 0);
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, single, BagRecorder::visit, &afterReset), 0);
    EXPECT_EQ(afterReset.topProperties()[0].isNew, 1);
}

TEST(ProcessorNodeWalk, ArraysOfObjectItemsAreExpandedItemByItem) {
    types();
    SharedPointer root;
    newNode(root);
    Node& node = *nodeOf(root.v);
    node.items.count = 2;
    kstd_vector32_pushBack(&node.v32, 9);
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"root", 2, root), 0);
    Tree tree;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property), 0);
    Processor processor;

    const kstd_persistentPropertyNode* items = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(tree->firstChild->firstChild, u"items", 1, &items), 0);
    NodeRecorder recorder;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyNode(
                  processor, const_cast<kstd_persistentPropertyNode*>(items), 3, NodeRecorder::visit, &recorder),
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
    ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(processor, tree, NodeRecorder::visit, &whole), 0);
    for (size_t i = 0; i + 1 < whole.events.size(); ++i) {
        if (whole.events[i].event != kstd_persistentPropertyProcessorEvent_nodeBegin) continue;
        const std::u16string& name = whole.events[i].name;
        const int32_t next = whole.events[i + 1].event;
        EXPECT_TRUE((name != u"v32" || next == 6) && (name != u"v32s" || next == 5)) << next;
    }
}

TEST(ProcessorNodeWalk, CompoundNodeWithoutChildrenAndNegativeDepthAreRefused) {
    types();
    Tree tree;
    ASSERT_EQ(rebuild({start(u"box", u"RtBox"), end()}, tree), 0);
    Processor processor;
    NodeRecorder recorder;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(processor, tree, NodeRecorder::visit, &recorder),
              kstd_persistentResult_nodeHasNoChildren);
    ASSERT_EQ(recorder.events.size(), 1u);
    EXPECT_EQ(recorder.events[0].event, kstd_persistentPropertyProcessorEvent_nodeBegin);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyNode(processor, tree->firstChild, -1, NodeRecorder::visit, &recorder),
              ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

}  // namespace
}  // namespace vexpers::test::rt
