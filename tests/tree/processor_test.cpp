// The processor's walks as a visitor sees them: the event order over a bag,
// failures that stop a walk, and trees a walk refuses. (Node walks in order:
// the writers of the format round trips.)
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
};

kstd_result recordNode(void* context, int32_t event, int32_t, const kstd_persistentPropertyNode*) {
    static_cast<std::vector<int32_t>*>(context)->push_back(event);
    return 0;
}

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
    Owned<kstd_vector32s, kstd_vector32s_construct, kstd_vector32s_destruct> vector;
    kstd_vector32s_pushBack(vector, 1);
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_kstd_vector32s(bag, u"v", 2, vector), 0);
    BagRecorder refused;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyBag(processor, bag, BagRecorder::visit, &refused),
              kstd_persistentResult_notSupported);
}

TEST(ProcessorNodeWalk, CompoundNodeWithoutChildrenAndNegativeDepthAreRefused) {
    types();
    Tree tree;
    Section section;
    kstd_persistentPropertyNode* box = nullptr;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, u"box", types().box, 2), 0);
    section->sectionType = kstd_persistentPropertyNodeSectionType_start;
    section->flags = kstd_persistentPropertyNodeFlag_compound;
    ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &box), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_startNode(box, section), 0);
    ASSERT_EQ(kstd_persistentPropertyNode_endNode(box), 0);
    Processor processor;
    std::vector<int32_t> events;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(processor, tree, recordNode, &events),
              kstd_persistentResult_nodeHasNoChildren);
    EXPECT_EQ(events, std::vector<int32_t>{kstd_persistentPropertyProcessorEvent_nodeBegin});

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentPropertyProcessor_processPropertyNode(processor, tree->firstChild, -1, recordNode, &events),
              ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

}  // namespace
}  // namespace vexpers::test::rt
