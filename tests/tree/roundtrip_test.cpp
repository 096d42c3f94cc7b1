// The main road through the public interface only: an object graph is
// decomposed into a tree, walked with a node visitor that writes each node
// out, a second tree is rebuilt from what was written, and fresh objects are
// composed from it and compared with the originals.
#include <limits>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

// A, B and C are nodes: A.next, A.other, A.view and A's second item point at
// B; B.next points back at A (a cycle); C is reached only through A's first
// item. B.other and B.view are null.
struct Graph {
    PointerBox a, b, c;

    Graph() {
        newNode(&a.p);
        newNode(&b.p);
        newNode(&c.p);
        Node& na = *nodeOf(a.p);
        Node& nb = *nodeOf(b.p);
        Node& nc = *nodeOf(c.p);
        na.i8 = -128;
        na.i16 = -30000;
        na.i32 = std::numeric_limits<int32_t>::min();
        na.i64 = std::numeric_limits<int64_t>::min();
        na.u8 = 255;
        na.u16 = 65535;
        na.u32 = 4000000000u;
        na.u64 = std::numeric_limits<uint64_t>::max();
        na.flag = 1;
        na.f = 0.25f;
        na.d = -1e300;
        na.size = 12345678901ULL;
        kstd_unicodeString_assignStringW(&na.name, u"Wurzel \u00e4\u2713");
        na.color = 2;
        na.bits = 0x8000000000000005ULL;
        kstd_vector8s_pushBack(&na.v8s, -1);
        kstd_vector8s_pushBack(&na.v8s, 127);
        kstd_vector8_pushBack(&na.v8, 200);
        kstd_vector16s_pushBack(&na.v16s, -300);
        kstd_vector16_pushBack(&na.v16, 60000);
        // v32s stays empty: an empty array.
        kstd_vector32_pushBack(&na.v32, 7);
        kstd_vector32_pushBack(&na.v32, 8);
        kstd_vector64s_pushBack(&na.v64s, std::numeric_limits<int64_t>::min());
        kstd_vector64_pushBack(&na.v64, std::numeric_limits<uint64_t>::max());
        kstd_vectorIntPtrs_pushBack(&na.vps, -5);
        kstd_vectorIntPtr_pushBack(&na.vp, 5);
        kstd_vectorf_pushBack(&na.vf, 1.5f);
        kstd_vectord_pushBack(&na.vd, 2.25);
        kstd_vectord_pushBack(&na.vd, -0.5);
        kstd_vectorb_pushBack(&na.vb, 1);
        kstd_vectorb_pushBack(&na.vb, 0);
        kstd_unicodeString text;
        kstd_unicodeString_construct(&text);
        kstd_unicodeString_assignStringW(&text, u"eins");
        kstd_vector_kstd_unicodeString_pushBack(&na.vstr, &text);
        kstd_unicodeString_assignStringW(&text, u"");
        kstd_vector_kstd_unicodeString_pushBack(&na.vstr, &text);
        kstd_unicodeString_destruct(&text);
        kstd_ptrh_assign(&na.next, &b.p);
        kstd_ptrh_assign(&na.other, &b.p);
        kstd_ptrhConst_assignShared(&na.view, b.p.shared);
        na.box = Box{3, 4};
        na.items.count = 2;
        na.items.items[0].weight = 7;
        kstd_ptrh_assign(&na.items.items[0].link, &c.p);
        na.items.items[1].weight = 9;
        kstd_ptrh_assign(&na.items.items[1].link, &b.p);

        nb.i32 = 42;
        nb.d = 0.5;
        kstd_vector64_pushBack(&nb.v64, 1);
        kstd_ptrh_assign(&nb.next, &a.p);
        nb.box = Box{5, 6};

        nc.i16 = 16;
        kstd_unicodeString_assignStringW(&nc.name, u"C");
    }
    ~Graph() {
        unlinkNode(nodeOf(a.p));
        unlinkNode(nodeOf(b.p));
        unlinkNode(nodeOf(c.p));
    }
};

// Checks that `root` holds a copy of the graph: values, sharing and the cycle.
void expectCopyOf(const Graph& graph, const kstd_ptrh& root) {
    const Node* a = nodeOf(root);
    ASSERT_NE(a, nullptr);
    EXPECT_NE(a, nodeOf(graph.a.p)) << "composing makes new objects";
    EXPECT_EQ(compareValues(*nodeOf(graph.a.p), *a), "");
    const Node* b = nodeOf(a->next);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(compareValues(*nodeOf(graph.b.p), *b), "");
    // Two pointers to one object are rebuilt as one object.
    EXPECT_EQ(a->other.shared, a->next.shared);
    EXPECT_EQ(a->view.shared, a->next.shared);
    EXPECT_EQ(a->items.items[1].link.shared, a->next.shared);
    // The cycle is closed.
    EXPECT_EQ(b->next.shared, root.shared);
    EXPECT_EQ(b->other.shared, nullptr);
    EXPECT_EQ(b->view.shared, nullptr);
    const Node* c = nodeOf(a->items.items[0].link);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(compareValues(*nodeOf(graph.c.p), *c), "");
    EXPECT_NE(c, b);
}

// One round trip, each record on the heap so that a failing run can be
// cleaned up completely.
struct RoundTrip {
    kstd_persistentPropertyTree* decomposed = nullptr;
    kstd_persistentPropertyTree* rebuilt = nullptr;
    kstd_persistentPropertyProcessor* processor = nullptr;
    Writer writer;
    PointerBox root;

    kstd_result run(const kstd_persistentProperty& property) {
        RT_TRY(kstd_persistentPropertyTree_new(&decomposed));
        RT_TRY(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, &property));
        RT_TRY(kstd_persistentPropertyProcessor_new(&processor));
        RT_TRY(kstd_persistentPropertyProcessor_processPropertyTree(processor, decomposed, Writer::visit, &writer));
        RT_TRY(kstd_persistentPropertyTree_new(&rebuilt));
        RT_TRY(rebuild(writer.records, rebuilt));
        return kstd_persistentType_loadPropertyNode(types().ptrh, &root.p, rebuilt->firstChild);
    }

    void clear() {
        // The rebuilt graph has a cycle: unlink what composing recorded.
        if (rebuilt != nullptr) unlinkRecorded(rebuilt, 16);
        if (Node* a = nodeOf(root.p)) unlinkNode(a);
        kstd_ptrh_reset(&root.p);
        kstd_persistentPropertyTree_delete(&rebuilt);
        kstd_persistentPropertyTree_delete(&decomposed);
        kstd_persistentPropertyProcessor_delete(&processor);
        writer = Writer{};
    }
    ~RoundTrip() { clear(); }
};

struct RootProperty {
    PropertyBox property;
    explicit RootProperty(const kstd_ptrh& root) {
        EXPECT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property.p, u"root", 2, &root), 0);
    }
};

// Registers the module and runs one round trip, so that what first uses
// allocate or free for good (late resolution of declared properties, lazy
// registrations) stays out of the leak checks that follow.
void warmUp() {
    types();
    Graph graph;
    RootProperty root(graph.a.p);
    RoundTrip trip;
    EXPECT_EQ(trip.run(root.property.p), 0);
}

TEST(RoundTrip, GraphComposesFromWrittenSectionsWithValuesSharingAndCycle) {
    warmUp();
    const int64_t objectsBefore = liveObjects();
    LiveBlockCheck leaks;
    {
        Graph graph;
        RootProperty root(graph.a.p);
        RoundTrip trip;
        ASSERT_EQ(trip.run(root.property.p), 0);
        expectCopyOf(graph, trip.root.p);

        // What the writer saw: the top node defines A with id 0; B's box
        // is the object held by value met again, so written in full twice.
        ASSERT_FALSE(trip.writer.records.empty());
        EXPECT_EQ(trip.writer.records.front().name, u"root");
        int boxes = 0, references = 0;
        for (const Record& record : trip.writer.records) {
            if (record.name == u"sameBox") {
                ++boxes;
                EXPECT_EQ(record.flags & kstd_persistentPropertyNodeFlag_hasObjectId, 0u);
            }
            if ((record.flags & 0x88u) == 0x88u) ++references;
        }
        EXPECT_EQ(boxes, 6) << "start and end of sameBox in A, B and C";
        EXPECT_EQ(references, 4) << "B.next, A.other, A.view and A's second item";
        trip.clear();
    }
    EXPECT_EQ(liveObjects(), objectsBefore);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(RoundTrip, DecomposedTreeComposesDirectlyAfterForgettingItsObjects) {
    warmUp();
    LiveBlockCheck leaks;
    {
        Graph graph;
        RootProperty root(graph.a.p);
        TreeBox tree;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree.t, &root.property.p), 0);
        PointerBox composed;
        // The tree still holds the objects of its decomposition under their ids.
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, &composed.p, tree.t.firstChild),
                  kstd_persistentResult_objectIdTaken);
        EXPECT_EQ(composed.p.shared, nullptr);
        ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(&tree.t), 0);
        ASSERT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, &composed.p, tree.t.firstChild), 0);
        // The vectors are read from the original containers; the array of
        // object items was never expanded in this tree, so it stays empty.
        const Node* a = nodeOf(composed.p);
        ASSERT_NE(a, nullptr);
        EXPECT_EQ(compareValues(*nodeOf(graph.a.p), *a, false), "");
        EXPECT_EQ(a->items.count, 0);
        ASSERT_NE(nodeOf(a->next), nullptr);
        EXPECT_EQ(nodeOf(a->next)->next.shared, composed.p.shared);
        unlinkRecorded(&tree.t, 16);
        unlinkNode(nodeOf(composed.p));
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(RoundTrip, EveryAllocationFailureFailsCleanlyAndARerunSucceeds) {
    warmUp();
    Graph graph;
    RootProperty root(graph.a.p);
    RoundTrip trip;
    const int64_t objectsBefore = liveObjects();
    const int64_t sites = sweepAllocationFailures([&] { return trip.run(root.property.p); }, [&] { trip.clear(); });
    EXPECT_GT(sites, 50);
    EXPECT_EQ(liveObjects(), objectsBefore);
    ASSERT_EQ(trip.run(root.property.p), 0);
    expectCopyOf(graph, trip.root.p);
}

// A chain nesting 100,000 objects deep decomposes, walks, rebuilds and
// composes on the default stack.
TEST(RoundTrip, LongChainComposesWithoutDeepNativeStack) {
    warmUp();
    constexpr int32_t length = 100000;
    LiveBlockCheck leaks;
    {
        PointerBox head;
        newLink(&head.p);
        {
            PointerBox tail;
            kstd_ptrh_assign(&tail.p, &head.p);
            for (int32_t i = 1; i < length; ++i) {
                linkOf(tail.p)->value = i - 1;
                newLink(&linkOf(tail.p)->next);
                kstd_ptrh_assign(&tail.p, &linkOf(tail.p)->next);
            }
            linkOf(tail.p)->value = -1;
        }
        RootProperty root(head.p);
        TreeBox decomposed, rebuilt;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&decomposed.t, &root.property.p), 0);
        ProcessorBox processor;
        Writer writer;
        ASSERT_EQ(kstd_persistentPropertyProcessor_processPropertyTree(&processor.p, &decomposed.t, Writer::visit,
                                                                       &writer),
                  0);
        ASSERT_EQ(rebuild(writer.records, &rebuilt.t), 0);
        writer = Writer{};
        PointerBox composed;
        linkAfterLoads().clear();
        ASSERT_EQ(kstd_persistentType_loadPropertyNode(types().ptrh, &composed.p, rebuilt.t.firstChild), 0);
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
        const Link* link = linkOf(composed.p);
        for (; link != nullptr && link->value != -1; link = linkOf(link->next)) {
            if (link->value != count) break;
            ++count;
        }
        EXPECT_EQ(count, length - 1);
        ASSERT_NE(link, nullptr);
        EXPECT_EQ(link->value, -1);
        EXPECT_EQ(link->next.shared, nullptr);
        unlinkRecorded(&rebuilt.t, length);
        releaseChain(&composed.p);
        releaseChain(&head.p);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
