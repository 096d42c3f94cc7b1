// Round trips through both formats: the sample scene and the round-trip test
// model are written, read back, written again (the same bytes), and composed
// into fresh objects equal to the originals, sharing and cycles included.
#include <limits>

#include "formats/format_support.hpp"
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::formats {
namespace {

class RoundTrips : public ::testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrips, ::testing::ValuesIn(bothFormats),
                         [](const auto& info) { return std::string(kfmt_formatName(info.param)); });

// First uses register types and intern names for good; keep them out of
// the leak checks.
void warmUp() {
    ASSERT_EQ(demo::registerTypes(), 0);
    rt::types();
    sceneBytes(3, kfmt_format_json);
    sceneBytes(3, kfmt_format_binary);
}

TEST_P(RoundTrips, SceneRoundTripsWithStableBytesValuesAndSharing) {
    warmUp();
    LiveBlockCheck leaks;
    {
        Scene scene;
        demo::Census built;
        ASSERT_EQ(demo::buildScene(demo::defaultNodes, &scene.p, &built), 0);
        Tree decomposed, readBack;
        ASSERT_EQ(decompose(scene.p, &decomposed.t), 0);
        Bytes first, second;
        kfmt_statistics written{}, got{};
        ASSERT_EQ(write(&decomposed.t, GetParam(), &first, nullptr, &written), 0);
        EXPECT_EQ(written.bytes, static_cast<int64_t>(first.size()));
        EXPECT_EQ(written.objects, built.objects()) << "one id per object";

        const kfmt_options options = checkingOptions();
        kfmt_report report{};
        ASSERT_EQ(read(&readBack.t, first.data(), first.size(), &options, &report, &got), 0) << report.message;
        EXPECT_EQ(got.nodes, written.nodes);
        EXPECT_EQ(got.objects, written.objects);
        EXPECT_EQ(got.references, written.references);
        EXPECT_EQ(got.bytes, written.bytes);

        ASSERT_EQ(write(&readBack.t, GetParam(), &second), 0);
        EXPECT_EQ(first, second) << "write, read, write gives the same bytes";

        Scene copy;
        ASSERT_EQ(kstd_persistentType_loadPropertyNode(demo::pointerType(), &copy.p, readBack.t.firstChild), 0);
        demo::Census composed;
        EXPECT_EQ(demo::compareScenes(scene.p, copy.p, &composed), "");
        EXPECT_EQ(composed.nodes, built.nodes);
        EXPECT_EQ(composed.materials, built.materials);
        kstd_persistentPropertyTree_reset(&readBack.t);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Formats, ConvertingKeepsTheTreeExactly) {
    warmUp();
    const Bytes json = sceneBytes(40, kfmt_format_json);
    const Bytes binary = sceneBytes(40, kfmt_format_binary);
    EXPECT_LT(binary.size() * 4, json.size()) << "the binary form is compact";
    Tree tree;
    Bytes converted;
    ASSERT_EQ(read(&tree.t, json), 0);
    ASSERT_EQ(write(&tree.t, kfmt_format_binary, &converted), 0);
    EXPECT_EQ(converted, binary);
    ASSERT_EQ(read(&tree.t, binary), 0);
    ASSERT_EQ(write(&tree.t, kfmt_format_json, &converted), 0);
    EXPECT_EQ(converted, json);
}

// The round-trip model: every scalar category, strings, an enum and a bit
// field, every built-in vector (one empty), pointers shared three ways, a
// cycle, a box held by value twice and an array of object items whose items
// hold pointers.
struct ModelGraph {
    rt::PointerBox a, b, c;
    ModelGraph() {
        rt::newNode(&a.p);
        rt::newNode(&b.p);
        rt::newNode(&c.p);
        rt::Node& na = *rt::nodeOf(a.p);
        rt::Node& nb = *rt::nodeOf(b.p);
        na.i8 = -128;
        na.i16 = -30000;
        na.i32 = std::numeric_limits<int32_t>::min();
        na.i64 = std::numeric_limits<int64_t>::min();
        na.u8 = 255;
        na.u16 = 65535;
        na.u32 = 4000000000u;
        na.u64 = std::numeric_limits<uint64_t>::max();
        na.flag = 5;  // a k_Bool keeps any value
        na.f = 0.1f;
        na.d = std::numeric_limits<double>::denorm_min();
        na.size = 12345678901ULL;
        kstd_unicodeString_assignStringW(&na.name, u"quote \" backslash \\ tab \t \U0001F600 \u00e4");
        na.color = 2;
        na.bits = 0x8000000000000005ULL;
        kstd_vector8s_pushBack(&na.v8s, -1);
        kstd_vector8_pushBack(&na.v8, 200);
        kstd_vector16s_pushBack(&na.v16s, -300);
        kstd_vector16_pushBack(&na.v16, 60000);
        kstd_vector32_pushBack(&na.v32, 7);
        kstd_vector64s_pushBack(&na.v64s, std::numeric_limits<int64_t>::min());
        kstd_vector64_pushBack(&na.v64, std::numeric_limits<uint64_t>::max());
        kstd_vectorIntPtrs_pushBack(&na.vps, -5);
        kstd_vectorIntPtr_pushBack(&na.vp, 5);
        kstd_vectorf_pushBack(&na.vf, 1.0f / 3.0f);
        kstd_vectord_pushBack(&na.vd, -0.0);
        kstd_vectord_pushBack(&na.vd, std::numeric_limits<double>::infinity());
        kstd_vectord_pushBack(&na.vd, 1e308);
        kstd_vectorb_pushBack(&na.vb, 1);
        kstd_vectorb_pushBack(&na.vb, 0);
        kstd_unicodeString text;
        kstd_unicodeString_construct(&text);
        kstd_unicodeString_assignStringW(&text, u"");
        kstd_vector_kstd_unicodeString_pushBack(&na.vstr, &text);
        kstd_unicodeString_reset(&text);  // the null string
        kstd_vector_kstd_unicodeString_pushBack(&na.vstr, &text);
        kstd_unicodeString_destruct(&text);
        kstd_ptrh_assign(&na.next, &b.p);
        kstd_ptrh_assign(&na.other, &b.p);
        kstd_ptrhConst_assignShared(&na.view, b.p.shared);
        na.box = rt::Box{3, 4};
        na.items.count = 2;
        na.items.items[0].weight = 7;
        kstd_ptrh_assign(&na.items.items[0].link, &c.p);
        na.items.items[1].weight = 9;
        kstd_ptrh_assign(&na.items.items[1].link, &b.p);
        nb.i32 = 42;
        kstd_ptrh_assign(&nb.next, &a.p);
        nb.box = rt::Box{5, 6};
        kstd_unicodeString_assignStringW(&rt::nodeOf(c.p)->name, u"C");
    }
    ~ModelGraph() {
        rt::unlinkNode(rt::nodeOf(a.p));
        rt::unlinkNode(rt::nodeOf(b.p));
        rt::unlinkNode(rt::nodeOf(c.p));
    }
};

// Writes the model graph, reads it back, writes it again and composes it.
void modelRoundTrip(uint32_t format) {
    ModelGraph graph;
    rt::PropertyBox root;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&root.p, u"root", 2, &graph.a.p), 0);
    Tree decomposed, readBack;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&decomposed.t, &root.p), 0);
    Bytes first, second;
    kfmt_report report{};
    ASSERT_EQ(write(&decomposed.t, format, &first, &report), 0) << report.message;
    const kfmt_options options = checkingOptions();
    ASSERT_EQ(read(&readBack.t, first.data(), first.size(), &options, &report), 0) << report.message;
    ASSERT_EQ(write(&readBack.t, format, &second), 0);
    EXPECT_EQ(first, second);

    rt::PointerBox copy;
    ASSERT_EQ(kstd_persistentType_loadPropertyNode(rt::types().ptrh, &copy.p, readBack.t.firstChild), 0);
    const rt::Node* a = rt::nodeOf(copy.p);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(rt::compareValues(*rt::nodeOf(graph.a.p), *a), "");
    const rt::Node* b = rt::nodeOf(a->next);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(rt::compareValues(*rt::nodeOf(graph.b.p), *b), "");
    EXPECT_EQ(a->other.shared, a->next.shared);
    EXPECT_EQ(a->view.shared, a->next.shared);
    EXPECT_EQ(a->items.items[1].link.shared, a->next.shared);
    EXPECT_EQ(b->next.shared, copy.p.shared) << "the cycle is closed";
    const rt::Node* c = rt::nodeOf(a->items.items[0].link);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(rt::compareValues(*rt::nodeOf(graph.c.p), *c), "");
    rt::unlinkRecorded(&readBack.t, 16);
    rt::unlinkNode(rt::nodeOf(copy.p));
}

TEST_P(RoundTrips, RoundTripModelRoundTripsWithStableBytes) {
    warmUp();
    for (const uint32_t format : bothFormats) modelRoundTrip(format);
    const int64_t objectsBefore = rt::liveObjects();
    LiveBlockCheck leaks;
    modelRoundTrip(GetParam());
    EXPECT_EQ(rt::liveObjects(), objectsBefore);
    EXPECT_EQ(leaks.leaked(), 0);
}

// A chain nesting 50,000 objects deep (about 100,000 tree levels) is
// written, read and written again without deep native recursion.
TEST_P(RoundTrips, DeepChainRoundTrips) {
    warmUp();
    constexpr int32_t length = 50000;
    rt::PointerBox head;
    rt::newLink(&head.p);
    {
        rt::PointerBox tail;
        kstd_ptrh_assign(&tail.p, &head.p);
        for (int32_t i = 1; i < length; ++i) {
            rt::linkOf(tail.p)->value = i;
            rt::newLink(&rt::linkOf(tail.p)->next);
            kstd_ptrh_assign(&tail.p, &rt::linkOf(tail.p)->next);
        }
    }
    rt::PropertyBox root;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&root.p, u"chain", 2, &head.p), 0);
    Bytes first, second;
    kfmt_statistics got{};
    {
        Tree decomposed;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&decomposed.t, &root.p), 0);
        ASSERT_EQ(write(&decomposed.t, GetParam(), &first), 0);
    }
    Tree readBack;
    ASSERT_EQ(read(&readBack.t, first.data(), first.size(), nullptr, nullptr, &got), 0);
    EXPECT_GE(got.maxDepth, 2 * length);
    ASSERT_EQ(write(&readBack.t, GetParam(), &second), 0);
    EXPECT_EQ(first, second);
    kstd_persistentPropertyTree_reset(&readBack.t);
    rt::releaseChain(&head.p);
}

}  // namespace
}  // namespace vexpers::test::formats

namespace vexpers::test::formats {
namespace {

// Text with an unpaired surrogate: JSON cannot hold it and says so; the
// binary format keeps it unit for unit.
TEST(Formats, UnpairedSurrogatesAreKeptInBinaryAndRefusedInJson) {
    const char16_t text[] = {u'a', 0xD800, u'b', 0};
    kstd_unicodeString value;
    kstd_unicodeString_construct(&value);
    ASSERT_EQ(kstd_unicodeString_assignStringW(&value, text), 0);
    rt::PropertyBox property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_unicodeString(&property.p, u"odd", 2, &value), 0);
    kstd_unicodeString_destruct(&value);
    Tree tree, readBack;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree.t, &property.p), 0);
    Bytes json, binary, again;
    kfmt_report report{};
    EXPECT_EQ(write(&tree.t, kfmt_format_json, &json, &report), kfmt_result_notStorable);
    EXPECT_NE(std::string(report.message).find("offset"), std::string::npos) << report.message;
    ASSERT_EQ(write(&tree.t, kfmt_format_binary, &binary), 0);
    ASSERT_EQ(read(&readBack.t, binary), 0);
    ASSERT_EQ(write(&readBack.t, kfmt_format_binary, &again), 0);
    EXPECT_EQ(binary, again);
    EXPECT_EQ(dumpOf(&readBack.t), "odd: kstd_unicodeString = \"a\\uD800b\"\n");
}

}  // namespace
}  // namespace vexpers::test::formats
