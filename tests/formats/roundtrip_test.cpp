// Round trips through both formats, the main road through the public
// interface: the round-trip test model is decomposed, written, read back,
// written again (the same bytes), and composed into fresh objects equal to
// the originals, sharing and cycles included, also a deep chain and under
// allocation failure; scenes convert between the formats exactly; the exact
// bytes of a small tree, the dump, and files.
#include <cstdio>
#include <algorithm>
#include <fstream>
#include <sstream>
#include <tuple>
#include <unistd.h>

#include "support/format_support.hpp"
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

// Every value kind of the round-trip model, sharing and a cycle.
void modelRoundTrip(uint32_t format) {
    rt::Graph graph;
    Property root;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(root, u"root", 2, graph.a), 0);
    Tree decomposed, readBack;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, root), 0);
    Bytes first, second;
    kfmt_report report{};
    kfmt_statistics written{}, got{};
    ASSERT_EQ(write(decomposed, format, &first, &report, &written), 0) << report.message;
    EXPECT_EQ(written.bytes, static_cast<int64_t>(first.size()));
    EXPECT_EQ(written.objects, 6) << "one id per node and per box";
    EXPECT_EQ(written.references, 4);
    const kfmt_options options = checkingOptions();
    ASSERT_EQ(read(readBack, first, &options, &report, &got), 0) << report.message;
    const auto counts = [](const kfmt_statistics& s) { return std::tuple(s.nodes, s.objects, s.references, s.bytes); };
    EXPECT_EQ(counts(got), counts(written));
    ASSERT_EQ(write(readBack, format, &second), 0);
    EXPECT_EQ(first, second) << "write, read, write gives the same bytes";
    SharedPointer copy;
    ASSERT_EQ(kstd_persistentType_loadPropertyNode(rt::types().ptrh, copy, readBack->firstChild), 0);
    rt::expectCopyOf(graph, copy.v);
    rt::unlinkRecorded(readBack, 16);
    rt::unlinkNode(rt::nodeOf(copy.v));
}

TEST_P(RoundTrips, RoundTripModelRoundTripsWithStableBytes) {
    warmUp();
    for (const uint32_t format : bothFormats) modelRoundTrip(format);
    const int64_t objectsBefore = rt::liveObjects();
    NoLeaks leaks;
    modelRoundTrip(GetParam());
    EXPECT_EQ(rt::liveObjects(), objectsBefore);
}

// A chain nesting 50,000 objects deep (about 100,000 tree levels) is walked
// over bags, decomposed with one bag, written, read, written again (the same
// bytes), composed and freed without deep native recursion.
TEST_P(RoundTrips, DeepChainRoundTrips) {
    warmUp();
    constexpr int32_t length = 50000;
    SharedPointer head;
    rt::newChain(head, length);
    Property root;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(root, u"chain", 2, head), 0);
    struct Counts {
        int32_t deepest = 0, newObjects = 0;
    } counts;
    const auto bagVisit = [](void* context, int32_t event, int32_t depth, const kstd_persistentProperty*, int32_t,
                             int32_t, int32_t, int32_t, int32_t isNew, int32_t) -> kstd_result {
        auto* c = static_cast<Counts*>(context);
        c->deepest = std::max(c->deepest, depth);
        if (event == kstd_persistentPropertyProcessorEvent_propertyBegin && isNew != 0) ++c->newObjects;
        return 0;
    };
    rt::Processor processor;
    ASSERT_EQ(kstd_persistentPropertyProcessor_processProperty(processor, root, bagVisit, &counts), 0);
    EXPECT_EQ(counts.newObjects, length);
    EXPECT_GE(counts.deepest, 2 * length);
    Bytes first, second;
    kfmt_statistics got{};
    {
        Tree decomposed;
        ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, root), 0);
        EXPECT_EQ(decomposed->bagSet.numBags, 1);
        ASSERT_EQ(write(decomposed, GetParam(), &first), 0);
    }
    Tree readBack;
    ASSERT_EQ(read(readBack, first, nullptr, nullptr, &got), 0);
    EXPECT_GE(got.maxDepth, 2 * length);
    ASSERT_EQ(write(readBack, GetParam(), &second), 0);
    EXPECT_EQ(first, second);
    // Composed as if recursively: a link's after-load entry runs once its
    // next link is loaded completely and pointed at, so the last link comes
    // first.
    SharedPointer composed;
    rt::linkAfterLoads().clear();
    ASSERT_EQ(kstd_persistentType_loadPropertyNode(rt::types().ptrh, composed, readBack->firstChild), 0);
    const std::vector<rt::AfterLoad> loads = std::move(rt::linkAfterLoads());
    rt::linkAfterLoads().clear();
    ASSERT_EQ(loads.size(), size_t(length));
    for (int32_t i = 0; i < length; ++i)
        if (loads[size_t(i)].value != (i == 0 ? -1 : length - 1 - i) || loads[size_t(i)].hasNext != (i != 0)) {
            ADD_FAILURE() << "after-load " << i << " gave " << loads[size_t(i)].value;
            break;
        }
    int32_t count = 0;
    const rt::Link* link = rt::linkOf(composed.v);
    for (; link != nullptr && link->value == count; link = rt::linkOf(link->next)) ++count;
    EXPECT_EQ(count, length - 1);
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->value, -1);
    EXPECT_EQ(link->next.shared, nullptr);
    rt::unlinkRecorded(readBack, length);
    rt::releaseChain(composed);
    rt::releaseChain(head);
}

// The whole road in the binary format with every allocation failing in
// turn: decomposing, writing, reading and composing give a code and leak
// nothing. (The JSON path leaves RapidJSON's own stacks to RapidJSON, which
// does not survive a failed allocation.)
TEST(Formats, ModelRoundTripFailsCleanlyAtEveryAllocation) {
    warmUp();
    modelRoundTrip(kfmt_format_binary);
    const int64_t objectsBefore = rt::liveObjects();
    NoLeaks leaks;
    {
        rt::Graph graph;
        Property root;
        ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(root, u"root", 2, graph.a), 0);
        kstd_persistentPropertyTree *decomposed = nullptr, *readBack = nullptr;
        SharedPointer copy;
        const auto clear = [&] {
            if (readBack != nullptr) rt::unlinkRecorded(readBack, 16);
            if (rt::Node* a = rt::nodeOf(copy.v)) rt::unlinkNode(a);
            kstd_ptrh_reset(copy);
            kstd_persistentPropertyTree_delete(&readBack);
            kstd_persistentPropertyTree_delete(&decomposed);
        };
        const int64_t sites = sweepAllocationFailures(
            [&]() -> kstd_result {
                Bytes bytes;
                RT_TRY(kstd_persistentPropertyTree_new(&decomposed));
                RT_TRY(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, root));
                RT_TRY(write(decomposed, kfmt_format_binary, &bytes));
                RT_TRY(kstd_persistentPropertyTree_new(&readBack));
                RT_TRY(read(readBack, bytes));
                return kstd_persistentType_loadPropertyNode(rt::types().ptrh, copy, readBack->firstChild);
            },
            clear);
        EXPECT_GT(sites, 50);
        std::printf("[ sweep    ] decompose, write, read, compose: %lld allocation sites\n", static_cast<long long>(sites));
        clear();
    }
    EXPECT_EQ(rt::liveObjects(), objectsBefore);
}

TEST(Formats, ConvertingKeepsTheTreeExactlyAndTheDumpMatchesTheCheckedInText) {
    warmUp();
    const Bytes json = sceneBytes(40, kfmt_format_json);
    const Bytes binary = sceneBytes(40, kfmt_format_binary);
    EXPECT_LT(binary.size() * 4, json.size()) << "the binary form is compact";
    Tree tree;
    Bytes converted;
    ASSERT_EQ(read(tree, json), 0);
    ASSERT_EQ(write(tree, kfmt_format_binary, &converted), 0);
    EXPECT_EQ(converted, binary);
    ASSERT_EQ(read(tree, binary), 0);
    ASSERT_EQ(write(tree, kfmt_format_json, &converted), 0);
    EXPECT_EQ(converted, json);

    // The dump of a small scene is the same read from either format and
    // straight from the decomposed tree.
    std::ifstream file(VEXPERS_FORMATS_TEST_DATA "/scene5.dump.txt", std::ios::binary);
    std::stringstream expected;
    expected << file.rdbuf();
    ASSERT_FALSE(expected.str().empty());
    for (const uint32_t format : bothFormats) {
        ASSERT_EQ(read(tree, sceneBytes(5, format)), 0);
        EXPECT_EQ(dumpOf(tree), expected.str()) << kfmt_formatName(format);
    }
    Scene scene;
    demo::Census census;
    ASSERT_EQ(demo::buildScene(5, scene, &census), 0);
    ASSERT_EQ(decompose(scene, tree), 0);
    EXPECT_EQ(dumpOf(tree), expected.str());
}

// A compound with a value, a reference back to itself and an array.
TEST(Formats, TinyTreeHasTheDocumentedBytesInBothFormats) {
    const std::string tinyJson =
        "{\"format\":\"vexpers-tree\",\"version\":1,\"nodes\":[\n"
        "  {\"name\":\"t\",\"type\":\"Tiny\",\"derivation\":1,\"kind\":\"object\",\"id\":0,\"children\":[\n"
        "    {\"name\":\"n\",\"type\":\"k_Int32\",\"kind\":\"value\",\"value\":-2},\n"
        "    {\"name\":\"self\",\"type\":\"Tiny\",\"derivation\":1,\"kind\":\"ref\",\"id\":0},\n"
        "    {\"name\":\"xs\",\"type\":\"double\",\"derivation\":2,\"kind\":\"array\",\"count\":2,\"items\":[0.5,-1.0]}\n"
        "  ]}\n"
        "],\"nodeCount\":4}\n";
    Tree tree;
    kfmt_report report{};
    ASSERT_EQ(read(tree, bytesOf(tinyJson), nullptr, &report), 0) << report.message;
    Bytes json, binary;
    ASSERT_EQ(write(tree, kfmt_format_json, &json), 0);
    EXPECT_EQ(json, bytesOf(tinyJson));
    // The compact JSON form (one line, read back to the same tree) the tool
    // test checks; it leaves the binary form alone.
    kfmt_options compact{};
    ASSERT_EQ(kfmt_options_setDefaults(&compact), 0);
    compact.flags = kfmt_flag_compact;
    ASSERT_EQ(write(tree, kfmt_format_binary, &binary, nullptr, nullptr, &compact), 0);
    const Bytes expected{
        'V', 'X', 'P', 'B', 1, 0, 0, 0,
        // start: compound with id; new texts "t" (index 0) and "Tiny" (1); pointer; access 2; id 0
        'S', 0x40, 1, 2, 't', 1, 5, 'T', 'i', 'n', 'y', 1, 2, 0,
        // leaf: core value; new texts "n" (2) and "k_Int32" (3); k_Int32 (4) = zigzag(-2)
        'L', 1, 1, 2, 'n', 1, 8, 'k', '_', 'I', 'n', 't', '3', '2', 0, 2, 4, 3,
        // leaf: reference with id 0; "self" new (4), "Tiny" again (table index 1 + 2)
        'L', 0x44, 1, 5, 's', 'e', 'l', 'f', 3, 1, 2, 0,
        // leaf: array of core items, 2 items of double (29)
        'L', 0x08, 1, 3, 'x', 's', 1, 7, 'd', 'o', 'u', 'b', 'l', 'e', 2, 2, 2, 29,
        0, 0, 0, 0, 0, 0, 0xE0, 0x3F, 0, 0, 0, 0, 0, 0, 0xF0, 0xBF,
        'E', 'Z', 4};
    EXPECT_EQ(binary, expected);
}

// Text with an unpaired surrogate: JSON cannot hold it and says so; the
// binary format keeps it unit for unit.
TEST(Formats, UnpairedSurrogatesAreKeptInBinaryAndRefusedInJson) {
    const char16_t text[] = {u'a', 0xD800, u'b', 0};
    Text value;
    ASSERT_EQ(kstd_unicodeString_assignStringW(value, text), 0);
    Property property;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_unicodeString(property, u"odd", 2, value), 0);
    Tree tree, readBack;
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property), 0);
    Bytes json, binary, again;
    kfmt_report report{};
    EXPECT_EQ(write(tree, kfmt_format_json, &json, &report), kfmt_result_notStorable);
    EXPECT_NE(std::string(report.message).find("offset"), std::string::npos) << report.message;
    ASSERT_EQ(write(tree, kfmt_format_binary, &binary), 0);
    ASSERT_EQ(read(readBack, binary), 0);
    ASSERT_EQ(write(readBack, kfmt_format_binary, &again), 0);
    EXPECT_EQ(binary, again);
    EXPECT_EQ(dumpOf(readBack), "odd: kstd_unicodeString = \"a\\uD800b\"\n");
}

int64_t progressCalls = 0, lastNodes = 0;
void countProgress(void*, int64_t nodes, int64_t) {
    ++progressCalls;
    EXPECT_GE(nodes, lastNodes);
    lastNodes = nodes;
}

TEST(Formats, FilesRoundTripWithProgressAndFailuresLeaveNoFile) {
    ASSERT_EQ(demo::registerTypes(), 0);
    Scene scene;
    demo::Census census;
    Tree tree, readBack;
    ASSERT_EQ(demo::buildScene(30, scene, &census), 0);
    ASSERT_EQ(decompose(scene, tree), 0);
    char path[] = "/tmp/vexpers-formats-XXXXXX";
    const int descriptor = mkstemp(path);
    ASSERT_GE(descriptor, 0);
    close(descriptor);

    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.progress = countProgress;
    options.progressInterval = 50;
    kfmt_statistics written{}, got{};
    kfmt_report report{};
    ASSERT_EQ(kfmt_writeTreeFile(tree, kfmt_format_binary, path, &options, &written, &report), 0) << report.message;
    EXPECT_EQ(progressCalls, written.nodes / 50 + 1) << "every 50 nodes and once at the end";
    EXPECT_EQ(lastNodes, written.nodes);
    ASSERT_EQ(kfmt_readTreeFile(readBack, kfmt_format_detect, path, nullptr, &got, &report), 0) << report.message;
    EXPECT_EQ(got.bytes, written.bytes);
    EXPECT_EQ(dumpOf(readBack), dumpOf(tree));

    // A write that cannot finish removes its file.
    EXPECT_EQ(kfmt_writeTreeFile(tree, 7, path, nullptr, nullptr, &report), kfmt_result_malformed);
    EXPECT_NE(access(path, F_OK), 0);
    EXPECT_EQ(kfmt_readTreeFile(readBack, kfmt_format_detect, path, nullptr, nullptr, &report), kfmt_result_io);
    EXPECT_EQ(report.offset, -1);
    EXPECT_EQ(kfmt_writeTreeFile(tree, kfmt_format_json, "/nonexistent-dir/x.json", nullptr, nullptr, &report),
              kfmt_result_io);
}

}  // namespace
}  // namespace vexpers::test::formats
