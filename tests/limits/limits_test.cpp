// The limits for untrusted input, each at its value and one past it, where
// data read from a file arrives: sections into a tree, composing, and both
// storage formats' readers. Each limit past its value gives its own code.
#include <string>
#include <vector>

#include "demo_model.hpp"
#include "support/test_support.hpp"
#include "vexpers/formats/formats.h"

namespace vexpers::test {
namespace {

using Bytes = std::vector<uint8_t>;

struct Tree {
    kstd_persistentPropertyTree t;
    Tree() { kstd_persistentPropertyTree_construct(&t); }
    ~Tree() { kstd_persistentPropertyTree_destruct(&t); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    kstd_persistentPropertyTree* operator&() { return &t; }
};

using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;

// Starts a top-level node from a compound section with these names and id.
kstd_result startNode(const std::u16string& name, const std::u16string& typeName, int64_t id) {
    Info info;
    Section section;
    Tree tree;
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, name.c_str(), typeName.c_str(), 0, 2),
              0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(section, info, info, 1, id, 0, 0, 0, 0), 0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setSectionType(section, kstd_persistentPropertyNodeSectionType_start),
              0);
    kstd_persistentPropertyNode* node = nullptr;
    EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &node), 0);
    return kstd_persistentPropertyNode_startNode(node, section);
}

TEST(Limits, SectionNamesAndIdsAtAndPastTheirLimits) {
    const std::u16string longest(kstd_persistentPropertyNodeSection_maxNameUnits, u'n');
    const std::u16string tooLong = longest + u'n';
    const struct {
        std::u16string name, typeName;
        int64_t id;
        kstd_result expected;
    } cases[]{
        {longest, u"LimitsType", 0, 0},
        {tooLong, u"LimitsType", 0, kstd_persistentResult_nameTooLong},
        {u"a", longest, 0, 0},
        {u"a", tooLong, 0, kstd_persistentResult_nameTooLong},
        {u"a", u"LimitsType", kstd_persistentPropertyTree_maxObjectId, 0},
        {u"a", u"LimitsType", int64_t{kstd_persistentPropertyTree_maxObjectId} + 1, kstd_persistentResult_invalidArgument},
    };
    for (const auto& c : cases)
        EXPECT_EQ(startNode(c.name, c.typeName, c.id), c.expected)
            << "name " << c.name.size() << " units, type name " << c.typeName.size() << " units, id " << c.id;
}

TEST(Limits, NodeCapOfATree) {
    Tree tree;
    EXPECT_EQ(tree.t.nodeAllocator.maxBlocks, kstd_persistentPropertyTree_maxNodes);
    tree.t.nodeAllocator.maxBlocks = 3;
    kstd_persistentPropertyNode* node = nullptr;
    for (int i = 0; i < 3; ++i) ASSERT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &node), 0);
    EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(&tree, &node), kstd_persistentResult_tooManyNodes);
    EXPECT_EQ(node, nullptr);
    // Every way to a node counts.
    EXPECT_EQ(kstd_persistentPropertyTree_allocTempNode(&tree, &node), kstd_persistentResult_tooManyNodes);
}

TEST(Limits, ArrayBytesOfASection) {
    Section section;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, u"a", 4, 2), 0);  // k_Int32
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&section->info.type, &section->info.type, 2), 0);
    constexpr int32_t atLimit = kstd_persistentPropertyNodeSection_maxArrayBytes / 4;
    // At the limit the array is allocated: the allocation is made to fail,
    // so that the test needs no gigabyte.
    void* first = nullptr;
    uint32_t size = 0;
    int32_t hit = 0;
    ksys_memory_failAt(1, 0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, atLimit, &first, &size),
              ksys_result_outOfMemory);
    ksys_memory_getInjectedFailureHit(&hit);
    EXPECT_EQ(hit, 1);
    // One item more is refused before anything is allocated.
    ksys_memory_failAt(1, 0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, atLimit + 1, &first, &size),
              kstd_persistentResult_arraySizeOverflow);
    ksys_memory_getInjectedFailureHit(&hit);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(hit, 0);
}

// ---- Composing and reading the demo scene ----------------------------------------------

Bytes sceneBytes(int64_t nodes, uint32_t format) {
    kstd_ptrh scene;
    kstd_ptrh_constructEmpty(&scene);
    demo::Census census;
    EXPECT_EQ(demo::buildScene(nodes, &scene, &census), 0);
    Property property;
    EXPECT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"scene", 2, &scene), 0);
    Tree tree;
    EXPECT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, property), 0);
    kfmt_memoryWriter writer;
    kfmt_sink sink;
    kfmt_sink_initMemory(&sink, &writer);
    EXPECT_EQ(kfmt_writeTree(&tree, format, &sink, nullptr, nullptr, nullptr), 0);
    Bytes bytes(writer.data, writer.data + writer.size);
    kfmt_memoryWriter_release(&writer);
    demo::releaseScene(&scene);
    kstd_ptrh_destruct(&scene);
    return bytes;
}

kstd_result read(kstd_persistentPropertyTree* tree, const Bytes& bytes, const kfmt_limits* limits = nullptr,
                 kfmt_statistics* statistics = nullptr) {
    kfmt_memoryReader reader;
    kfmt_source source;
    kfmt_source_initMemory(&source, &reader, bytes.data(), bytes.size());
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    if (limits != nullptr) options.limits = *limits;
    return kfmt_readTree(tree, kfmt_format_detect, &source, &options, statistics, nullptr);
}

TEST(Limits, ComposingNestsNoDeeperThanTheNodeCap) {
    ASSERT_EQ(demo::registerTypes(), 0);
    Tree tree;
    ASSERT_EQ(read(&tree, sceneBytes(40, kfmt_format_binary)), 0);
    const int64_t nodes = tree.t.nodeAllocator.liveCount;
    // The lowest cap that composes the scene, and below it the depth code.
    int64_t lowest = 0;
    for (int64_t cap = 1; cap <= nodes && lowest == 0; ++cap) {
        tree.t.nodeAllocator.maxBlocks = cap;
        kstd_ptrh composed;
        kstd_ptrh_constructEmpty(&composed);
        const kstd_result result = kstd_persistentType_loadPropertyNode(demo::pointerType(), &composed, tree.t.firstChild);
        demo::unlinkRecorded(&tree.t);
        kstd_persistentPropertyTree_forgetAllObjects(&tree.t);
        demo::releaseScene(&composed);
        kstd_ptrh_destruct(&composed);
        if (result == 0)
            lowest = cap;
        else
            ASSERT_EQ(result, kstd_persistentResult_nestingTooDeep) << "cap " << cap;
    }
    // The scene nests several objects deep, and far fewer than its nodes.
    EXPECT_GT(lowest, 3);
    EXPECT_LT(lowest, nodes / 4);
}

// The smallest value of a reader cap that still reads `bytes`, scanned down
// from `from`; the read one below it must fail with `code`.
int64_t lowestCap(const Bytes& bytes, int64_t kfmt_limits::*cap, int64_t from, kstd_result code) {
    kfmt_limits limits;
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    limits = options.limits;
    Tree tree;
    limits.*cap = from;
    EXPECT_EQ(read(&tree, bytes, &limits), 0);
    int64_t value = from;
    for (; value > 0; --value) {
        limits.*cap = value - 1;
        const kstd_result result = read(&tree, bytes, &limits);
        if (result == 0) continue;
        EXPECT_EQ(result, code) << "cap " << value - 1;
        break;
    }
    return value;
}

TEST(Limits, ReaderCapsAtAndPastTheirValues) {
    ASSERT_EQ(demo::registerTypes(), 0);
    for (uint32_t format : {kfmt_format_json, kfmt_format_binary}) {
        SCOPED_TRACE(kfmt_formatName(format));
        const Bytes bytes = sceneBytes(6, format);
        Tree tree;
        kfmt_statistics statistics{};
        ASSERT_EQ(read(&tree, bytes, nullptr, &statistics), 0);
        // Depth and nodes: the read's own counts are the boundary. The
        // deepest level is a leaf, which the depth cap (open nodes) leaves out.
        EXPECT_EQ(lowestCap(bytes, &kfmt_limits::maxDepth, statistics.maxDepth, kstd_persistentResult_nestingTooDeep),
                  statistics.maxDepth - 1);
        EXPECT_EQ(lowestCap(bytes, &kfmt_limits::maxNodes, statistics.nodes, kstd_persistentResult_tooManyNodes),
                  statistics.nodes);
        EXPECT_GT(lowestCap(bytes, &kfmt_limits::maxItems, 64, kstd_persistentResult_arraySizeOverflow), 1);
        // Names: the cap is 32 bits wide.
        kfmt_options options;
        kfmt_options_setDefaults(&options);
        kfmt_limits limits = options.limits;
        int32_t longest = 64;
        limits.maxNameUnits = longest;
        ASSERT_EQ(read(&tree, bytes, &limits), 0);
        for (limits.maxNameUnits = longest - 1; read(&tree, bytes, &limits) == 0; --limits.maxNameUnits) longest = limits.maxNameUnits;
        EXPECT_EQ(read(&tree, bytes, &limits), kstd_persistentResult_nameTooLong);
        EXPECT_GT(longest, 4);
        // The tree's own node cap holds under the reader as well.
        kstd_persistentPropertyTree_reset(&tree.t);
        tree.t.nodeAllocator.maxBlocks = statistics.nodes;
        EXPECT_EQ(read(&tree, bytes), 0);
        tree.t.nodeAllocator.maxBlocks = statistics.nodes - 1;
        EXPECT_EQ(read(&tree, bytes), kstd_persistentResult_tooManyNodes);
    }
}

TEST(Limits, ReaderObjectIdsAtAndPastTheirLimit) {
    ASSERT_EQ(demo::registerTypes(), 0);
    const Bytes bytes = sceneBytes(2, kfmt_format_json);
    const std::string text(bytes.begin(), bytes.end());
    const size_t at = text.find("\"id\":0");
    ASSERT_NE(at, std::string::npos);
    const auto withId = [&](int64_t id) {
        std::string changed = text;
        changed.replace(at, 6, "\"id\":" + std::to_string(id));
        return Bytes(changed.begin(), changed.end());
    };
    Tree tree;
    EXPECT_EQ(read(&tree, withId(kstd_persistentPropertyTree_maxObjectId)), 0);
    EXPECT_EQ(read(&tree, withId(int64_t{kstd_persistentPropertyTree_maxObjectId} + 1)),
              kstd_persistentResult_invalidArgument);
}

}  // namespace
}  // namespace vexpers::test
