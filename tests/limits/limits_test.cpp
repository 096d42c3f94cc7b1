// The limits for untrusted input, each at its value and one past it, where
// data read from a file arrives: sections into a tree, the tree's node cap,
// composing, and both storage formats' readers. Each limit past its value
// gives its own code.
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>

#include "support/format_support.hpp"

namespace vexpers::test::formats {
namespace {

using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;

// Starts a top-level node from a compound section with these names and id.
kstd_result startNode(const std::u16string& name, const std::u16string& typeName, int64_t id) {
    Info info;
    Section section;
    Tree tree;
    kstd_persistentPropertyNode* node = nullptr;
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(info, name.c_str(), typeName.c_str(), 0, 2),
              0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setObjectInfo(section, info, info, 1, id, 0, 0, 0, 0), 0);
    EXPECT_EQ(kstd_persistentPropertyNodeSection_setSectionType(section, kstd_persistentPropertyNodeSectionType_start),
              0);
    EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &node), 0);
    return kstd_persistentPropertyNode_startNode(node, section);
}

// Reads `bytes` with the reader's caps changed by `change`.
kstd_result readWith(const Bytes& bytes, const std::function<void(kfmt_limits&)>& change) {
    Tree tree;
    kfmt_options options = checkingOptions(0);
    change(options.limits);
    return read(tree, bytes, &options);
}

// The lowest value of a reader cap that still reads `bytes`, scanned down.
template <class M>
int64_t lowestPassing(const Bytes& bytes, M kfmt_limits::*cap, int64_t from) {
    while (from > 1 && readWith(bytes, [&](kfmt_limits& l) { l.*cap = M(from - 1); }) == 0) --from;
    return from;
}

// Each limit: a check run with a value, the highest (or, for caps of the
// reader, lowest) value that passes, the value that fails, and its code.
struct Limit {
    std::string what;
    std::function<kstd_result(int64_t)> check;
    int64_t passes, fails;
    kstd_result code;
};

TEST(Limits, EachLimitAtAndPastItsValue) {
    ASSERT_EQ(demo::registerTypes(), 0);
    constexpr int64_t maxId = kstd_persistentPropertyTree_maxObjectId;
    constexpr int64_t maxName = kstd_persistentPropertyNodeSection_maxNameUnits;
    std::vector<Limit> limits{
        {"section name units", [](int64_t n) { return startNode(std::u16string(n, u'n'), u"LimitsType", 0); },
         maxName, maxName + 1, kstd_persistentResult_nameTooLong},
        {"section type name units", [](int64_t n) { return startNode(u"a", std::u16string(n, u'n'), 0); }, maxName,
         maxName + 1, kstd_persistentResult_nameTooLong},
        {"section object id", [](int64_t id) { return startNode(u"a", u"LimitsType", id); }, maxId, maxId + 1,
         kstd_persistentResult_invalidArgument},
        {"nodes of a tree (every way to a node counts)",
         [](int64_t n) {
             Tree tree;
             EXPECT_EQ(tree->nodeAllocator.maxBlocks, kstd_persistentPropertyTree_maxNodes);
             tree->nodeAllocator.maxBlocks = 3;
             kstd_persistentPropertyNode* node = nullptr;
             for (int64_t i = 1; i < n; ++i) EXPECT_EQ(kstd_persistentPropertyTree_allocNextChild(tree, &node), 0);
             return kstd_persistentPropertyTree_allocTempNode(tree, &node);
         },
         3, 4, kstd_persistentResult_tooManyNodes},
    };
    // The reader's object ids: an id of the JSON text replaced.
    const Bytes small = sceneBytes(2, kfmt_format_json);
    const std::string text(small.begin(), small.end());
    const size_t at = text.find("\"id\":0");
    ASSERT_NE(at, std::string::npos);
    limits.push_back({"object id read", [&](int64_t id) {
                          std::string changed = text;
                          Tree tree;
                          return read(tree, bytesOf(changed.replace(at, 6, "\"id\":" + std::to_string(id))));
                      },
                      maxId, maxId + 1, kstd_persistentResult_invalidArgument});
    // The reader's caps in both formats: depth and nodes at the read's own
    // counts (the deepest level is a leaf, which the depth cap of open nodes
    // leaves out), items and names at the lowest value that reads, and the
    // tree's own node cap under the reader.
    for (uint32_t format : bothFormats) {
        const std::string name = kfmt_formatName(format);
        const Bytes bytes = sceneBytes(6, format);
        Tree tree;
        kfmt_statistics statistics{};
        ASSERT_EQ(read(tree, bytes, nullptr, nullptr, &statistics), 0);
        const auto cap = [&bytes](auto field) {
            return [bytes, field](int64_t value) {
                return readWith(bytes, [&](kfmt_limits& l) { l.*field = std::decay_t<decltype(l.*field)>(value); });
            };
        };
        const int64_t items = lowestPassing(bytes, &kfmt_limits::maxItems, 64);
        const int64_t nameUnits = lowestPassing(bytes, &kfmt_limits::maxNameUnits, 64);
        EXPECT_GT(items, 1);
        EXPECT_GT(nameUnits, 4);
        limits.push_back({name + " depth", cap(&kfmt_limits::maxDepth), statistics.maxDepth - 1,
                          statistics.maxDepth - 2, kstd_persistentResult_nestingTooDeep});
        limits.push_back({name + " nodes", cap(&kfmt_limits::maxNodes), statistics.nodes, statistics.nodes - 1,
                          kstd_persistentResult_tooManyNodes});
        limits.push_back({name + " items", cap(&kfmt_limits::maxItems), items, items - 1,
                          kstd_persistentResult_arraySizeOverflow});
        limits.push_back({name + " name units", cap(&kfmt_limits::maxNameUnits), nameUnits, nameUnits - 1,
                          kstd_persistentResult_nameTooLong});
        limits.push_back({name + " bytes", cap(&kfmt_limits::maxBytes), int64_t(bytes.size()),
                          int64_t(bytes.size()) - 1, kfmt_result_limitExceeded});
        limits.push_back({name + " tree node cap",
                          [bytes](int64_t n) {
                              Tree capped;
                              capped->nodeAllocator.maxBlocks = n;
                              return read(capped, bytes);
                          },
                          statistics.nodes, statistics.nodes - 1, kstd_persistentResult_tooManyNodes});
    }
    for (const Limit& limit : limits) {
        SCOPED_TRACE(limit.what);
        EXPECT_EQ(limit.check(limit.passes), 0);
        EXPECT_EQ(limit.check(limit.fails), limit.code);
    }
}

TEST(Limits, ArrayBytesOfASection) {
    Section section;
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, u"a", 4, 2), 0);  // k_Int32
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&section->info.type, &section->info.type, 2), 0);
    constexpr int32_t atLimit = kstd_persistentPropertyNodeSection_maxArrayBytes / 4;
    // At the limit the array is allocated: the allocation is made to fail,
    // so that the test needs no gigabyte. One item more is refused before
    // anything is allocated.
    void* first = nullptr;
    uint32_t size = 0;
    using Case = std::tuple<int32_t, kstd_result, int32_t>;
    for (const auto& [count, code, hits] : {Case{atLimit, ksys_result_outOfMemory, 1},
                                            Case{atLimit + 1, kstd_persistentResult_arraySizeOverflow, 0}}) {
        int32_t hit = 0;
        ksys_memory_failAt(1, 0);
        EXPECT_EQ(kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, count, &first, &size), code);
        ksys_memory_getInjectedFailureHit(&hit);
        ksys_memory_failAt(0, 0);
        EXPECT_EQ(hit, hits);
    }
}

TEST(Limits, ComposingNestsNoDeeperThanTheNodeCap) {
    ASSERT_EQ(demo::registerTypes(), 0);
    Tree tree;
    ASSERT_EQ(read(tree, sceneBytes(40, kfmt_format_binary)), 0);
    const int64_t nodes = tree->nodeAllocator.liveCount;
    // The lowest cap that composes the scene, and below it the depth code.
    int64_t lowest = 0;
    for (int64_t cap = 1; cap <= nodes && lowest == 0; ++cap) {
        tree->nodeAllocator.maxBlocks = cap;
        Scene composed;
        const kstd_result result = kstd_persistentType_loadPropertyNode(demo::pointerType(), composed, tree->firstChild);
        demo::unlinkRecorded(tree);
        kstd_persistentPropertyTree_forgetAllObjects(tree);
        if (result == 0)
            lowest = cap;
        else
            ASSERT_EQ(result, kstd_persistentResult_nestingTooDeep) << "cap " << cap;
    }
    // The scene nests several objects deep, and far fewer than its nodes.
    EXPECT_GT(lowest, 3);
    EXPECT_LT(lowest, nodes / 4);
}

}  // namespace
}  // namespace vexpers::test::formats
