// The main road through the public interface only: an object graph is
// decomposed into a tree, walked with a node visitor that writes each node as
// a section, a second tree is rebuilt from the sections, and fresh objects
// are composed from it and compared with the originals.
#include <algorithm>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

// One round trip, each record on the heap so that a failing run can be
// cleaned up completely.
struct RoundTrip {
    kstd_persistentPropertyTree* decomposed = nullptr;
    kstd_persistentPropertyTree* rebuilt = nullptr;
    kstd_persistentPropertyProcessor* processor = nullptr;
    Writer* writer = nullptr;
    SharedPointer root;

    kstd_result run(const kstd_persistentProperty* property) {
        writer = new Writer;
        RT_TRY(kstd_persistentPropertyTree_new(&decomposed));
        RT_TRY(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, property));
        RT_TRY(kstd_persistentPropertyProcessor_new(&processor));
        RT_TRY(kstd_persistentPropertyProcessor_processPropertyTree(processor, decomposed, Writer::visit, writer));
        RT_TRY(kstd_persistentPropertyTree_new(&rebuilt));
        RT_TRY(rebuild(writer->sections, rebuilt));
        return kstd_persistentType_loadPropertyNode(types().ptrh, root, rebuilt->firstChild);
    }

    void clear() {
        // The rebuilt graph has a cycle: unlink what composing recorded.
        if (rebuilt != nullptr) unlinkRecorded(rebuilt, 16);
        if (Node* a = nodeOf(root.v)) unlinkNode(a);
        kstd_ptrh_reset(root);
        kstd_persistentPropertyTree_delete(&rebuilt);
        kstd_persistentPropertyTree_delete(&decomposed);
        kstd_persistentPropertyProcessor_delete(&processor);
        delete writer;
        writer = nullptr;
    }
    ~RoundTrip() { clear(); }
};

struct RootProperty {
    Property property;
    explicit RootProperty(const kstd_ptrh* root) {
        EXPECT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"root", 2, root), 0);
    }
};


TEST(RoundTrip, DecomposedTreeComposesDirectlyAfterForgettingItsObjects) {
    types();
    LiveBlockCheck leaks;
    {
        Graph graph;
        RootProperty root(graph.a);
        Tree tree;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, root.property), 0);
        SharedPointer composed;
        // The tree still holds the objects of its decomposition under their ids.
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, composed, tree->firstChild),
                  kstd_persistentResult_objectIdTaken);
        EXPECT_EQ(composed->shared, nullptr);
        ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(tree), 0);
        ASSERT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, composed, tree->firstChild), 0);
        // The vectors are read from the original containers; the array of
        // object items was never expanded in this tree, so it stays empty.
        const Node* a = nodeOf(composed.v);
        ASSERT_NE(a, nullptr);
        EXPECT_EQ(compareValues(*nodeOf(graph.a.v), *a, false), "");
        EXPECT_EQ(a->items.count, 0);
        ASSERT_NE(nodeOf(a->next), nullptr);
        EXPECT_EQ(nodeOf(a->next)->next.shared, composed->shared);
        unlinkRecorded(tree, 16);
        unlinkNode(nodeOf(composed.v));
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(RoundTrip, GraphComposesFromWrittenSectionsAndEveryAllocationFailureFailsCleanly) {
    types();
    const int64_t objectsBefore = liveObjects();
    LiveBlockCheck leaks;
    {
        Graph graph;
        RootProperty root(graph.a);
        RoundTrip trip;
        const int64_t sites = sweepAllocationFailures([&] { return trip.run(root.property); }, [&] { trip.clear(); });
        EXPECT_GT(sites, 50);
        ASSERT_EQ(trip.run(root.property), 0);
        expectCopyOf(graph, trip.root.v);
        // The box held by value is written in full each time, never as a
        // reference; four pointers meet B again.
        int boxes = 0, references = 0;
        for (const kstd_persistentPropertyNodeSection* section : trip.writer->sections.list) {
            const std::u16string name = section->info.name.chars != nullptr ? section->info.name.chars : u"";
            if (name == u"sameBox" && section->sectionType == kstd_persistentPropertyNodeSectionType_start) {
                ++boxes;
                EXPECT_EQ(section->flags & kstd_persistentPropertyNodeFlag_hasObjectId, 0u);
            }
            references += (section->flags & 0x88u) == 0x88u ? 1 : 0;
        }
        EXPECT_EQ(boxes, 3) << "sameBox in A, B and C";
        EXPECT_EQ(references, 4) << "B.next, A.other, A.view and A's second item";
    }
    EXPECT_EQ(liveObjects(), objectsBefore);
    EXPECT_EQ(leaks.leaked(), 0);
}

// A chain nesting 100,000 objects deep (200,000 tree levels) is decomposed
// with one bag, walked over bags and over its tree, written, rebuilt,
// composed and freed on the default stack.
TEST(RoundTrip, LongChainTakesEveryRoadWithoutDeepNativeStack) {
    types();
    constexpr int32_t length = 100000;
    LiveBlockCheck leaks;
    {
        SharedPointer head;
        newChain(head, length);
        RootProperty root(head);
        Processor processor;
        struct Counts {
            int32_t deepest = 0, newObjects = 0;
        } counts;
        const auto bagVisit = [](void* context, int32_t event, int32_t depth, const kstd_persistentProperty*,
                                 int32_t, int32_t, int32_t, int32_t, int32_t isNew, int32_t) -> kstd_result {
            auto* c = static_cast<Counts*>(context);
            c->deepest = std::max(c->deepest, depth);
            if (event == kstd_persistentPropertyProcessorEvent_propertyBegin && isNew != 0) ++c->newObjects;
            return 0;
        };
        ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, root.property, bagVisit, &counts), 0);
        ASSERT_EQ(kstd_persistentPropertyProcessor_reset(processor), 0);
        EXPECT_EQ(counts.newObjects, length);
        EXPECT_GE(counts.deepest, 2 * length);

        Tree decomposed, rebuilt;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, root.property), 0);
        EXPECT_EQ(decomposed->bagSet.numBags, 1);
        const kstd_persistentPropertyNode* node = decomposed->firstChild->firstChild;  // the ptr of the root
        for (int32_t i = 0; i < length && node != nullptr; ++i) {
            ASSERT_EQ(node->objectId, i);
            const kstd_persistentPropertyNode* next = nullptr;
            kstd_persistentPropertyNode_getMatchingChildConst(node, u"next", 1, &next);
            node = next != nullptr ? next->firstChild : nullptr;
        }
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->flags & 0x20u, 0x20u) << "the last link's next is a null pointer";

        Writer writer;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(processor, decomposed, Writer::visit, &writer),
                  0);
        ASSERT_EQ(rebuild(writer.sections, rebuilt), 0);
        SharedPointer composed;
        linkAfterLoads().clear();
        ASSERT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, composed, rebuilt->firstChild), 0);
        // As composed recursively: a link's after-load entry runs once its
        // next link is loaded completely and pointed at, so the last link
        // comes first.
        ASSERT_EQ(linkAfterLoads().size(), size_t(length));
        EXPECT_EQ(linkAfterLoads().front().value, -1);
        EXPECT_FALSE(linkAfterLoads().front().hasNext);
        for (int32_t i = 1; i < length; ++i) {
            const AfterLoad& loaded = linkAfterLoads()[size_t(i)];
            if (loaded.value != length - 1 - i || !loaded.hasNext) {
                ADD_FAILURE() << "after-load " << i << " gave " << loaded.value;
                break;
            }
        }
        linkAfterLoads().clear();
        int32_t count = 0;
        const Link* link = linkOf(composed.v);
        for (; link != nullptr && link->value == count; link = linkOf(link->next)) ++count;
        EXPECT_EQ(count, length - 1);
        ASSERT_NE(link, nullptr);
        EXPECT_EQ(link->value, -1);
        EXPECT_EQ(link->next.shared, nullptr);
        unlinkRecorded(rebuilt, length);
        releaseChain(composed);
        releaseChain(head);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
