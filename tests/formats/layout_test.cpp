// The exact bytes of both formats for a small tree, the file helpers and
// progress reports.
#include <cstdio>
#include <unistd.h>

#include "formats/format_support.hpp"

namespace vexpers::test::formats {
namespace {

// A compound with a value, a reference back to itself and an array.
const std::string tinyJson =
    "{\"format\":\"vexpers-tree\",\"version\":1,\"nodes\":[\n"
    "  {\"name\":\"t\",\"type\":\"Tiny\",\"derivation\":1,\"kind\":\"object\",\"id\":0,\"children\":[\n"
    "    {\"name\":\"n\",\"type\":\"k_Int32\",\"kind\":\"value\",\"value\":-2},\n"
    "    {\"name\":\"self\",\"type\":\"Tiny\",\"derivation\":1,\"kind\":\"ref\",\"id\":0},\n"
    "    {\"name\":\"xs\",\"type\":\"double\",\"derivation\":2,\"kind\":\"array\",\"count\":2,\"items\":[0.5,-1.0]}\n"
    "  ]}\n"
    "],\"nodeCount\":4}\n";

TEST(FormatsLayout, TinyTreeHasTheDocumentedBytesInBothFormats) {
    Tree tree;
    kfmt_report report{};
    ASSERT_EQ(read(&tree.t, bytesOf(tinyJson), nullptr, &report), 0) << report.message;
    Bytes json, binary;
    ASSERT_EQ(write(&tree.t, kfmt_format_json, &json), 0);
    EXPECT_EQ(textOf(json), tinyJson);
    ASSERT_EQ(write(&tree.t, kfmt_format_binary, &binary), 0);
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

int64_t progressCalls = 0;
int64_t lastNodes = 0;
void countProgress(void*, int64_t nodes, int64_t) {
    ++progressCalls;
    EXPECT_GE(nodes, lastNodes);
    lastNodes = nodes;
}

TEST(FormatsFiles, FilesRoundTripAndFailuresLeaveNoFile) {
    ASSERT_EQ(demo::registerTypes(), 0);
    Scene scene;
    demo::Census census;
    Tree tree, readBack;
    ASSERT_EQ(demo::buildScene(30, &scene.p, &census), 0);
    ASSERT_EQ(decompose(scene.p, &tree.t), 0);
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
    ASSERT_EQ(kfmt_writeTreeFile(&tree.t, kfmt_format_binary, path, &options, &written, &report), 0) << report.message;
    EXPECT_EQ(progressCalls, written.nodes / 50 + 1) << "every 50 nodes and once at the end";
    EXPECT_EQ(lastNodes, written.nodes);
    ASSERT_EQ(kfmt_readTreeFile(&readBack.t, kfmt_format_detect, path, nullptr, &got, &report), 0) << report.message;
    EXPECT_EQ(got.bytes, written.bytes);
    EXPECT_EQ(dumpOf(&readBack.t), dumpOf(&tree.t));

    // A write that cannot finish removes its file.
    kfmt_options_setDefaults(&options);
    EXPECT_EQ(kfmt_writeTreeFile(&tree.t, 7, path, &options, nullptr, &report), kfmt_result_malformed);
    EXPECT_NE(access(path, F_OK), 0);
    EXPECT_EQ(kfmt_readTreeFile(&readBack.t, kfmt_format_detect, path, nullptr, nullptr, &report), kfmt_result_io);
    EXPECT_EQ(report.offset, -1);
    EXPECT_EQ(kfmt_writeTreeFile(&tree.t, kfmt_format_json, "/nonexistent-dir/x.json", nullptr, nullptr, &report),
              kfmt_result_io);
}

}  // namespace
}  // namespace vexpers::test::formats
