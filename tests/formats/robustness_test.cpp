// Untrusted input: truncated, corrupted and hostile streams give a code and
// a report naming an offset, never a crash, a leak or an allocation that the
// input cannot justify.
#include <random>

#include "formats/format_support.hpp"

namespace vexpers::test::formats {
namespace {

class UntrustedInput : public ::testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(Formats, UntrustedInput, ::testing::ValuesIn(bothFormats),
                         [](const auto& info) { return std::string(kfmt_formatName(info.param)); });

// Reads `bytes` with id checks; on success writes the tree again, dumps it
// and composes a scene from it (exercising all three on whatever the reader
// accepted). Returns the code of the read.
kstd_result readAndUse(const uint8_t* data, size_t size, kfmt_report* report) {
    Tree tree;
    const kfmt_options options = checkingOptions();
    const kstd_result result = read(&tree.t, data, size, &options, report);
    if (result < 0) {
        EXPECT_EQ(tree.t.firstChild, nullptr) << "a failed read leaves the tree empty";
        EXPECT_EQ(report->code, result);
        EXPECT_GE(report->offset, 0) << report->message;
        EXPECT_LE(report->offset, static_cast<int64_t>(size)) << report->message;
        EXPECT_NE(std::string(report->message).find("offset"), std::string::npos);
        return result;
    }
    Bytes again;
    write(&tree.t, kfmt_format_binary, &again);
    dumpOf(&tree.t);
    // Composing what was read ends with a code too; objects of a
    // composition that stopped half way are unlinked through the tree.
    if (tree.t.firstChild != nullptr) {
        Scene copy;
        kstd_persistentType_loadPropertyNode(demo::pointerType(), &copy.p, tree.t.firstChild);
        demo::unlinkRecorded(&tree.t);
        kstd_persistentPropertyTree_reset(&tree.t);
    }
    return result;
}

TEST_P(UntrustedInput, TruncationAtEveryOffsetFailsWithACode) {
    // A small scene keeps the JSON case (each prefix parsed from the start)
    // quick; the binary scene is the default one.
    const Bytes bytes = sceneBytes(GetParam() == kfmt_format_json ? 3 : demo::defaultNodes, GetParam());
    ASSERT_GT(bytes.size(), 100u);
    LiveBlockCheck leaks;
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        kfmt_report report{};
        const kstd_result result = readAndUse(bytes.data(), cut, &report);
        // The JSON text ends with a new line that the document does not need.
        if (GetParam() == kfmt_format_json && cut + 1 == bytes.size()) {
            EXPECT_EQ(result, 0);
            continue;
        }
        ASSERT_LT(result, 0) << "cut at " << cut;
        // A count that claims more than the rest of the stream holds is
        // refused as beyond what the input can hold.
        EXPECT_TRUE(result == kfmt_result_truncated || result == kfmt_result_malformed ||
                    result == kfmt_result_limitExceeded)
            << "cut at " << cut << ": " << report.message;
        EXPECT_LE(report.offset, static_cast<int64_t>(cut));
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_P(UntrustedInput, RandomByteChangesNeverCrash) {
    const Bytes original = sceneBytes(6, GetParam());
    std::mt19937 random(20240611u + GetParam());
    int failures = 0;
    int64_t leaked = 0;
    for (int trial = 0; trial < 3000; ++trial) {
        Bytes bytes = original;
        // One to four changed bytes; every third trial sets bytes that are
        // significant to the format (digits, quotes, tags, small numbers).
        const int changes = 1 + static_cast<int>(random() % 4);
        for (int k = 0; k < changes; ++k) {
            const size_t at = random() % bytes.size();
            static const uint8_t telling[] = {'0', '9', '"', '{', '}', '[', ']', ',', ':', 'S', 'L', 'E', 'Z', 0, 1, 2, 0x7F, 0xFF};
            bytes[at] = trial % 3 == 0 ? telling[random() % sizeof telling] : static_cast<uint8_t>(random());
        }
        kfmt_report report{};
        // Names read are interned for good the first time (a changed name is
        // a new one); a second read of the same bytes must leave nothing.
        const kstd_result result = readAndUse(bytes.data(), bytes.size(), &report);
        LiveBlockCheck leaks;
        kfmt_report again{};
        EXPECT_EQ(readAndUse(bytes.data(), bytes.size(), &again), result);
        leaked += leaks.leaked();
        if (result < 0) {
            ++failures;
            EXPECT_EQ(again.offset, report.offset);
        }
    }
    EXPECT_GT(failures, 1000) << "most changes are caught";
    EXPECT_EQ(leaked, 0);
}

// Hand-written binary streams.
struct BinaryBuilder {
    Bytes bytes{'V', 'X', 'P', 'B', 1, 0, 0, 0};
    BinaryBuilder& byte(uint8_t b) {
        bytes.push_back(b);
        return *this;
    }
    BinaryBuilder& number(uint64_t n) {
        do {
            uint8_t b = n & 0x7F;
            n >>= 7;
            bytes.push_back(n != 0 ? (b | 0x80) : b);
        } while (n != 0);
        return *this;
    }
    BinaryBuilder& text(const std::string& t) {
        number(1).number(t.size() + 1);
        bytes.insert(bytes.end(), t.begin(), t.end());
        return *this;
    }
    // A leaf array of `count` k_Int32 items named "a" (items not written).
    BinaryBuilder& int32ArrayHeader(uint64_t count) {
        return byte('L').byte(1 << 3).text("a").text("k_Int32").byte(2).number(2).number(count).byte(4);
    }
};

TEST(FormatsHostile, CountsBeyondTheInputFailBeforeAllocating) {
    LiveBlockCheck leaks;
    Tree tree;
    kfmt_report report{};
    // 2^31 - 1 items claimed, five bytes follow.
    BinaryBuilder binary;
    binary.int32ArrayHeader(0x7FFFFFFF).number(1).number(2).number(3).number(4).number(5);
    EXPECT_EQ(read(&tree.t, binary.bytes.data(), binary.bytes.size(), nullptr, &report), kfmt_result_limitExceeded);
    EXPECT_NE(std::string(report.message).find("remain"), std::string::npos) << report.message;
    // A text of 2^40 bytes claimed.
    BinaryBuilder longText;
    longText.byte('L').byte(1).number(1).number(uint64_t{1} << 40);
    EXPECT_EQ(read(&tree.t, longText.bytes.data(), longText.bytes.size(), nullptr, &report), kfmt_result_limitExceeded);
    // The same in JSON.
    const Bytes json = bytesOf(
        R"({"format":"vexpers-tree","version":1,"nodes":[{"name":"a","type":"k_Int32","derivation":2,)"
        R"("kind":"array","count":1000000000,"items":[1,2,3]}],"nodeCount":1})");
    EXPECT_EQ(read(&tree.t, json, nullptr, &report), kfmt_result_limitExceeded);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(FormatsHostile, CapsOfTheOptionsHold) {
    const Bytes bytes = sceneBytes(3, kfmt_format_binary);
    Tree tree;
    kfmt_report report{};
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.limits.maxDepth = 8;
    EXPECT_EQ(read(&tree.t, bytes, &options, &report), kstd_persistentResult_nestingTooDeep);
    kfmt_options_setDefaults(&options);
    options.limits.maxNodes = 10;
    EXPECT_EQ(read(&tree.t, bytes, &options, &report), kstd_persistentResult_tooManyNodes);
    kfmt_options_setDefaults(&options);
    options.limits.maxNameUnits = 4;
    EXPECT_EQ(read(&tree.t, bytes, &options, &report), kstd_persistentResult_nameTooLong);
    kfmt_options_setDefaults(&options);
    options.limits.maxBytes = 100;
    EXPECT_EQ(read(&tree.t, bytes, &options, &report), kfmt_result_limitExceeded);
    options.limits.maxBytes = static_cast<int64_t>(bytes.size());
    EXPECT_EQ(read(&tree.t, bytes, &options, &report), 0) << report.message;
}

std::string document(const std::string& nodes, int count) {
    return R"({"format":"vexpers-tree","version":1,"nodes":[)" + nodes + R"(],"nodeCount":)" +
           std::to_string(count) + "}";
}

std::string pointer(const std::string& inner) {
    return R"({"name":"p","type":"kstd_ptrh","kind":"object","children":[)" + inner + "]}";
}
std::string definition(int id) {
    return R"({"name":"ptr","type":"Thing","derivation":1,"kind":"object","id":)" + std::to_string(id) +
           R"(,"children":[{"name":"v","type":"k_Int32","kind":"value","value":1}]})";
}
std::string reference(int id) {
    return R"({"name":"ptr","type":"Thing","derivation":1,"kind":"ref","id":)" + std::to_string(id) + "}";
}

kstd_result check(const std::string& text, kfmt_report* report) {
    Tree tree;
    const kfmt_options options = checkingOptions();
    const Bytes bytes = bytesOf(text);
    return read(&tree.t, bytes, &options, report);
}

TEST(FormatsCheck, ObjectIdsAreDefinedOnceAndBeforeTheirReferences) {
    const std::string wrap = R"({"name":"root","type":"Holder","kind":"object","children":[)";
    kfmt_report report{};
    // Fine: definition, then reference.
    EXPECT_EQ(check(document(wrap + pointer(definition(0)) + "," + pointer(reference(0)) + "]}", 6), &report), 0)
        << report.message;
    // A reference before its definition: reported at the reference.
    const std::string early = document(wrap + pointer(reference(0)) + "," + pointer(definition(0)) + "]}", 6);
    EXPECT_EQ(check(early, &report), kfmt_result_objectIds);
    EXPECT_EQ(report.offset, static_cast<int64_t>(early.find(R"({"name":"ptr")")));
    EXPECT_NE(std::string(report.message).find("before its definition"), std::string::npos) << report.message;
    // A reference to an id nobody defines.
    EXPECT_EQ(check(document(wrap + pointer(reference(3)) + "]}", 3), &report), kfmt_result_objectIds);
    EXPECT_NE(std::string(report.message).find("never defined"), std::string::npos) << report.message;
    // An id defined twice.
    const std::string twice = document(wrap + pointer(definition(0)) + "," + pointer(definition(0)) + "]}", 7);
    EXPECT_EQ(check(twice, &report), kfmt_result_objectIds);
    EXPECT_EQ(report.offset, static_cast<int64_t>(twice.rfind(R"({"name":"ptr")")));
    // Without the check the same streams read.
    Tree tree;
    EXPECT_EQ(read(&tree.t, bytesOf(early)), 0);
}

TEST(FormatsCheck, CountsAndProtocolAreChecked) {
    kfmt_report report{};
    const std::string leaf = R"({"name":"v","type":"k_Int32","kind":"value","value":1})";
    EXPECT_EQ(check(document(leaf, 2), &report), kfmt_result_countMismatch);
    const std::string list = R"({"name":"l","type":"Thing","derivation":2,"kind":"list","count":2,"children":[)"
                             R"({"name":"i","type":"Thing","kind":"object","item":true,"children":[)" +
                             leaf + "]}]}";
    EXPECT_EQ(check(document(list, 3), &report), kfmt_result_countMismatch);
    const std::string array = R"({"name":"a","type":"k_Int32","derivation":2,"kind":"array","count":3,"items":[1,2]})";
    EXPECT_EQ(check(document(array, 1), &report), kfmt_result_countMismatch);
    // Kinds that contradict the section: a leaf kind with children.
    EXPECT_EQ(check(document(R"({"name":"n","type":"T","kind":"null","children":[]})", 1), &report),
              kfmt_result_malformed);
    // Values that do not fit their type.
    EXPECT_EQ(check(document(R"({"name":"v","type":"k_Int8","derivation":2,"kind":"array","count":1,"items":[300]})", 1),
                    &report),
              kfmt_result_badValue);
    EXPECT_EQ(check(document(R"({"name":"v","type":"k_UInt32","kind":"value","value":-1})", 1), &report),
              kfmt_result_badValue);
    // An unknown key, a second version, data after the document.
    EXPECT_EQ(check(document(R"({"name":"v","type":"T","kind":"null","colour":1})", 1), &report),
              kfmt_result_malformed);
    EXPECT_EQ(check(R"({"format":"vexpers-tree","version":2,"nodes":[],"nodeCount":0})", &report),
              kfmt_result_unsupportedVersion);
    EXPECT_EQ(check(document("", 0) + " x", &report), kfmt_result_malformed);
    // Binary: an end without an open node, and an unknown tag.
    Tree tree;
    BinaryBuilder end;
    end.byte('E');
    EXPECT_EQ(read(&tree.t, end.bytes.data(), end.bytes.size(), nullptr, &report), kfmt_result_protocol);
    EXPECT_EQ(report.offset, 8);
    BinaryBuilder tag;
    tag.byte('Q');
    EXPECT_EQ(read(&tree.t, tag.bytes.data(), tag.bytes.size(), nullptr, &report), kfmt_result_malformed);
}

// A file whose types nobody registered reads, dumps and writes back the
// same: descriptors keep their names, values stay core values.
TEST(Formats, UnregisteredTypesReadDumpAndWriteBack) {
    const std::string text =
        document(R"({"name":"thing","type":"NobodyRegisteredThis","derivation":1,"kind":"object","id":0,"children":[)"
                 "\n"
                 R"({"name":"count","type":"NobodysInt","kind":"value","valueType":"k_Int64","value":-7},)"
                 R"({"name":"held","type":"NobodysObject","kind":"null"},)"
                 R"({"name":"back","type":"NobodyRegisteredThis","derivation":1,"kind":"ref","id":0},)"
                 R"({"name":"list","type":"NobodysItem","derivation":2,"kind":"list","count":1,"children":[)"
                 R"({"name":"i","type":"NobodysItem","kind":"object","item":true,"children":[)"
                 R"({"name":"w","type":"double","kind":"value","value":0.5}]}]},)"
                 R"({"name":"none","type":"NobodysItem","derivation":2,"kind":"emptyList"}]})",
                 8);
    Tree tree;
    kfmt_report report{};
    const kfmt_options options = checkingOptions();
    ASSERT_EQ(read(&tree.t, bytesOf(text), &options, &report), 0) << report.message;
    EXPECT_EQ(dumpOf(&tree.t),
              "thing: NobodyRegisteredThis* #0\n"
              "  count: NobodysInt = (k_Int64) -7\n"
              "  held: NobodysObject = null\n"
              "  back: NobodyRegisteredThis* -> #0\n"
              "  list: NobodysItem[] (1 item)\n"
              "    [0]: NobodysItem\n"
              "      w: double = 0.5\n"
              "  none: NobodysItem[] = []\n");
    Bytes json, binary;
    ASSERT_EQ(write(&tree.t, kfmt_format_json, &json, &report), 0) << report.message;
    ASSERT_EQ(write(&tree.t, kfmt_format_binary, &binary, &report), 0) << report.message;
    Tree again;
    ASSERT_EQ(read(&again.t, binary), 0);
    Bytes json2;
    ASSERT_EQ(write(&again.t, kfmt_format_json, &json2), 0);
    EXPECT_EQ(json, json2);
}

TEST(Formats, DetectionAndNames) {
    uint32_t format = 9;
    EXPECT_EQ(kfmt_detectFormat("VXPB\1\0\0\0", 8, &format), 0);
    EXPECT_EQ(format, kfmt_format_binary);
    EXPECT_EQ(kfmt_detectFormat(" \n{", 3, &format), 0);
    EXPECT_EQ(format, kfmt_format_json);
    EXPECT_EQ(kfmt_detectFormat("VX", 2, &format), kfmt_result_malformed);
    EXPECT_EQ(format, 0u);
    EXPECT_EQ(kfmt_formatFromPath("dir.json/tree.vxb", &format), 0);
    EXPECT_EQ(format, kfmt_format_binary);
    EXPECT_EQ(kfmt_formatFromPath("tree.json", &format), 0);
    EXPECT_EQ(format, kfmt_format_json);
    EXPECT_EQ(kfmt_formatFromPath("dir.json/tree", &format), kfmt_result_malformed);
}

}  // namespace
}  // namespace vexpers::test::formats

namespace vexpers::test::formats {
namespace {

// The binary path allocates only through the memory service: every failing
// allocation of a write and a read gives a code and leaks nothing. (The
// JSON path leaves RapidJSON's own stacks to RapidJSON, which does not
// survive a failed allocation.)
TEST(FormatsMemory, BinaryWriteAndReadFailCleanlyAtEveryAllocation) {
    ASSERT_EQ(demo::registerTypes(), 0);
    Scene scene;
    demo::Census census;
    ASSERT_EQ(demo::buildScene(5, &scene.p, &census), 0);
    Tree decomposed, readBack;
    ASSERT_EQ(decompose(scene.p, &decomposed.t), 0);
    // The tree keeps its node allocator's first chunk after a reset.
    ASSERT_EQ(read(&readBack.t, sceneBytes(5, kfmt_format_binary)), 0);
    kstd_persistentPropertyTree_reset(&readBack.t);
    const kfmt_options options = checkingOptions();
    const int64_t sites = sweepAllocationFailures(
        [&] {
            Bytes bytes;
            const kstd_result result = write(&decomposed.t, kfmt_format_binary, &bytes);
            if (result < 0) return result;
            return read(&readBack.t, bytes.data(), bytes.size(), &options);
        },
        [&] { kstd_persistentPropertyTree_reset(&readBack.t); });
    EXPECT_GT(sites, 50);
}

}  // namespace
}  // namespace vexpers::test::formats
