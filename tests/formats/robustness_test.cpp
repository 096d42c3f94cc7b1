// Untrusted input: truncated, corrupted and hostile streams give a code and
// a report naming an offset, never a crash, a leak or an allocation that the
// input cannot justify; what the reader accepts, even of types nobody
// registered, can be written, dumped and composed; and trees no writer
// makes are refused when composed.
#include <random>

#include "support/format_support.hpp"
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::formats {
namespace {

class UntrustedInput : public ::testing::TestWithParam<uint32_t> {};

INSTANTIATE_TEST_SUITE_P(Formats, UntrustedInput, ::testing::ValuesIn(bothFormats),
                         [](const auto& info) { return std::string(kfmt_formatName(info.param)); });

// Reads the first `size` bytes with id checks; on success writes the tree
// again, dumps it and composes a scene from it. Returns the code of the read.
kstd_result readAndUse(const Bytes& bytes, size_t size, kfmt_report* report) {
    Tree tree;
    const kfmt_options options = checkingOptions();
    const kstd_result result = read(tree, bytes, &options, report, nullptr, size);
    if (result < 0) {
        EXPECT_EQ(tree->firstChild, nullptr) << "a failed read leaves the tree empty";
        EXPECT_EQ(report->code, result);
        EXPECT_GE(report->offset, 0) << report->message;
        EXPECT_LE(report->offset, static_cast<int64_t>(size)) << report->message;
        EXPECT_NE(std::string(report->message).find("offset"), std::string::npos);
        return result;
    }
    Bytes again;
    write(tree, kfmt_format_binary, &again);
    dumpOf(tree);
    // Objects of a composition that stopped half way are unlinked through the tree.
    if (tree->firstChild != nullptr) {
        Scene copy;
        kstd_persistentType_loadPropertyNode(demo::pointerType(), copy, tree->firstChild);
        demo::unlinkRecorded(tree);
        kstd_persistentPropertyTree_reset(tree);
    }
    return result;
}

TEST_P(UntrustedInput, TruncationAtEveryOffsetFailsWithACode) {
    // A small scene keeps the JSON case (each prefix parsed from the start) quick.
    const Bytes bytes = sceneBytes(GetParam() == kfmt_format_json ? 3 : demo::defaultNodes, GetParam());
    ASSERT_GT(bytes.size(), 100u);
    NoLeaks leaks;
    // The JSON text ends with a new line that the document does not need.
    const size_t complete = bytes.size() - (GetParam() == kfmt_format_json ? 1 : 0);
    for (size_t cut = 0; cut < complete; ++cut) {
        kfmt_report report{};
        const kstd_result result = readAndUse(bytes, cut, &report);
        // A count that claims more than the rest holds is beyond what the input can hold.
        ASSERT_TRUE(result == kfmt_result_truncated || result == kfmt_result_malformed ||
                    result == kfmt_result_limitExceeded)
            << "cut at " << cut << ": " << report.message;
        EXPECT_LE(report.offset, static_cast<int64_t>(cut));
    }
    kfmt_report report{};
    EXPECT_EQ(readAndUse(bytes, complete, &report), 0);
}

TEST_P(UntrustedInput, RandomByteChangesNeverCrashOrLeak) {
    const Bytes original = sceneBytes(6, GetParam());
    std::mt19937 random(20240611u + GetParam());
    static const uint8_t telling[] = {'0', '9', '"', '{', '}', '[', ']', ',', ':', 'S', 'L', 'E', 'Z', 0, 1, 2, 0x7F, 0xFF};
    int failures = 0;
    int64_t leaked = 0;
    for (int trial = 0; trial < 3000; ++trial) {
        // One to four changed bytes; every third trial sets bytes that are
        // significant to the format.
        Bytes bytes = original;
        for (int k = 0, changes = 1 + int(random() % 4); k < changes; ++k)
            bytes[random() % bytes.size()] =
                trial % 3 == 0 ? telling[random() % sizeof telling] : static_cast<uint8_t>(random());
        // Names read are interned for good the first time (a changed name is
        // a new one); a second read of the same bytes must leave nothing.
        kfmt_report report{}, again{};
        const kstd_result result = readAndUse(bytes, bytes.size(), &report);
        LiveBlockCheck leaks;
        EXPECT_EQ(readAndUse(bytes, bytes.size(), &again), result);
        leaked += leaks.leaked();
        failures += result < 0 ? 1 : 0;
        EXPECT_TRUE(result >= 0 || again.offset == report.offset);
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
        for (; n >= 0x80; n >>= 7) bytes.push_back(uint8_t(n & 0x7F) | 0x80);
        return byte(uint8_t(n));
    }
    BinaryBuilder& text(const std::string& t) {
        number(1).number(t.size() + 1);
        bytes.insert(bytes.end(), t.begin(), t.end());
        return *this;
    }
};

std::string document(const std::string& nodes, int count) {
    return R"({"format":"vexpers-tree","version":1,"nodes":[)" + nodes + R"(],"nodeCount":)" +
           std::to_string(count) + "}";
}
// JSON nodes: a value, an object (with an id: a pointee), a reference.
std::string value(const std::string& name, const std::string& type, int number) {
    return R"({"name":")" + name + R"(","type":")" + type + R"(","kind":"value","value":)" + std::to_string(number) + "}";
}
std::string object(const std::string& name, const std::string& type, const std::string& children, int id = -1) {
    return R"({"name":")" + name + R"(","type":")" + type +
           (id < 0 ? R"(","kind":"object")" : R"(","derivation":1,"kind":"object","id":)" + std::to_string(id)) +
           R"(,"children":[)" + children + "]}";
}
std::string reference(int id) {
    return R"({"name":"ptr","type":"Thing","derivation":1,"kind":"ref","id":)" + std::to_string(id) + "}";
}
Bytes documentOf(const std::string& root) {
    int count = 0;
    for (size_t at = root.find("\"name\""); at != std::string::npos; at = root.find("\"name\"", at + 1)) ++count;
    return bytesOf(document(root, count));
}

TEST(FormatsHostile, MalformedStreamsAreRefusedWithTheirCodeBeforeAllocating) {
    const std::string leaf = value("v", "k_Int32", 1), definition = object("ptr", "Thing", leaf, 0);
    const auto pointer = [](const std::string& inner) { return object("p", "kstd_ptrh", inner); };
    const auto holder = [](const std::string& children) { return object("root", "Holder", children); };
    const std::string early = document(holder(pointer(reference(0)) + "," + pointer(definition)), 6);
    const std::string twice = document(holder(pointer(definition) + "," + pointer(definition)), 7);
    const struct {
        const char* what;
        Bytes bytes;
        kstd_result code;
        const char* message;  // a part of the report's message, or null
        int64_t offset;       // of the report, or -1 not to check
    } cases[]{
        {"2^31 - 1 items claimed, five bytes follow",
         BinaryBuilder{}.byte('L').byte(1 << 3).text("a").text("k_Int32").byte(2).number(2).number(0x7FFFFFFF)
             .byte(4).number(1).number(2).number(3).number(4).number(5).bytes,
         kfmt_result_limitExceeded, "remain", -1},
        {"a text of 2^40 bytes claimed", BinaryBuilder{}.byte('L').byte(1).number(1).number(uint64_t{1} << 40).bytes,
         kfmt_result_limitExceeded, nullptr, -1},
        {"a billion items claimed in JSON",
         bytesOf(document(R"({"name":"a","type":"k_Int32","derivation":2,"kind":"array","count":1000000000,)"
                          R"("items":[1,2,3]})", 1)),
         kfmt_result_limitExceeded, nullptr, -1},
        {"a reference before its definition", bytesOf(early), kfmt_result_objectIds, "before its definition",
         int64_t(early.find(R"({"name":"ptr")"))},
        {"a reference to an id nobody defines", bytesOf(document(holder(pointer(reference(3))), 3)),
         kfmt_result_objectIds, "never defined", -1},
        {"an id defined twice", bytesOf(twice), kfmt_result_objectIds, nullptr,
         int64_t(twice.rfind(R"({"name":"ptr")"))},
        {"a node count that disagrees", bytesOf(document(leaf, 2)), kfmt_result_countMismatch, nullptr, -1},
        {"a list with fewer items than its count",
         bytesOf(document(R"({"name":"l","type":"Thing","derivation":2,"kind":"list","count":2,"children":[)"
                          R"({"name":"i","type":"Thing","kind":"object","item":true,"children":[)" + leaf + "]}]}",
                          3)),
         kfmt_result_countMismatch, nullptr, -1},
        {"an array with fewer items than its count",
         bytesOf(document(R"({"name":"a","type":"k_Int32","derivation":2,"kind":"array","count":3,"items":[1,2]})", 1)),
         kfmt_result_countMismatch, nullptr, -1},
        {"a leaf kind with children", bytesOf(document(R"({"name":"n","type":"T","kind":"null","children":[]})", 1)),
         kfmt_result_malformed, nullptr, -1},
        {"an item that does not fit its type",
         bytesOf(document(R"({"name":"v","type":"k_Int8","derivation":2,"kind":"array","count":1,"items":[300]})", 1)),
         kfmt_result_badValue, nullptr, -1},
        {"a negative unsigned value",
         bytesOf(document(R"({"name":"v","type":"k_UInt32","kind":"value","value":-1})", 1)), kfmt_result_badValue,
         nullptr, -1},
        {"an unknown key", bytesOf(document(R"({"name":"v","type":"T","kind":"null","colour":1})", 1)),
         kfmt_result_malformed, nullptr, -1},
        {"a second version", bytesOf(R"({"format":"vexpers-tree","version":2,"nodes":[],"nodeCount":0})"),
         kfmt_result_unsupportedVersion, nullptr, -1},
        {"data after the document", bytesOf(document("", 0) + " x"), kfmt_result_malformed, nullptr, -1},
        {"an end without an open node", BinaryBuilder{}.byte('E').bytes, kfmt_result_protocol, nullptr, 8},
        {"an unknown tag", BinaryBuilder{}.byte('Q').bytes, kfmt_result_malformed, nullptr, -1},
    };
    const auto readAll = [&] {
        for (const auto& test : cases) {
            SCOPED_TRACE(test.what);
            Tree tree;
            kfmt_report report{};
            const kfmt_options options = checkingOptions();
            EXPECT_EQ(read(tree, test.bytes, &options, &report), test.code) << report.message;
            EXPECT_TRUE(test.message == nullptr || std::string(report.message).find(test.message) != std::string::npos)
                << report.message;
            EXPECT_TRUE(test.offset < 0 || report.offset == test.offset) << report.offset;
        }
    };
    readAll();  // names read are interned for good the first time
    LiveBlockCheck leaks;
    readAll();
    EXPECT_EQ(leaks.leaked(), 0);
    // Without the check, ids are not followed.
    Tree tree;
    EXPECT_EQ(read(tree, bytesOf(early)), 0);
}

// Trees that no writer of this library makes (read without the id checks)
// are refused when composed: the code, no leak (the object created for a
// pointee that failed is released again), members loaded before the
// failure keep their new values, the failing one its old value.
TEST(FormatsCompose, UntrustedTreesFailWithCodesAndLeakNothing) {
    const std::string width = value("width", "k_Int32", 9), i32 = value("i32", "k_Int32", 12);
    const auto next = [](const std::string& pointee) { return object("next", "kstd_ptrh", pointee); };
    const struct {
        const char* what;
        std::string children;
        kstd_result code;
    } cases[]{
        {"a reference to an id nothing defined",
         i32 + "," + next(R"({"name":"ptr","type":"RtNode","derivation":1,"kind":"ref","id":7})") + "," +
             object("box", "RtBox", width),
         kstd_persistentResult_objectIdNotFound},
        {"a pointee whose type offers no shared interface", next(object("ptr", "RtBox", width, 0)),
         kstd_persistentResult_typeMismatch},
        {"a pointee of a core type that can be created", next(object("ptr", "kstd_unicodeString", width, 0)),
         kstd_persistentResult_typeMismatch},
        {"vector items of another core type",
         object("v32s", "kstd_vector32s",
                R"({"name":"items","type":"k_Int16","derivation":2,"kind":"array","count":2,"items":[1,2]})"),
         kstd_persistentResult_typeMismatch},
        {"a single value where items belong", object("v32s", "kstd_vector32s", value("items", "k_Int32", 4)),
         kstd_persistentResult_wrongTypeKind},
        {"a core value where a pointer belongs", next(value("ptr", "k_Int32", 1)), kstd_persistentResult_typeMismatch},
        {"an id defined twice",
         next(object("ptr", "RtNode", i32, 0)) + "," + object("other", "kstd_ptrh", object("ptr", "RtNode", i32, 0)),
         kstd_persistentResult_objectIdTaken},
        {"a pointee of a type nobody registered", next(object("ptr", "RtNobody", width, 0)),
         kstd_persistentResult_typeNotRegistered},
    };
    const auto composeAll = [&] {
        for (const auto& test : cases) {
            SCOPED_TRACE(test.what);
            Tree tree;
            ASSERT_EQ(read(tree, documentOf(object("root", "RtNode", test.children))), 0);
            SharedPointer target;
            rt::newNode(target);
            rt::Node& node = *rt::nodeOf(target.v);
            node.box.width = 1;
            kstd_vector32s_pushBack(&node.v32s, 5);
            EXPECT_EQ(kstd_persistentType_loadPropertyNode(rt::types().node, &node, tree->firstChild), test.code);
            intptr_t size = 0;
            kstd_vector32s_getSizeIntPtr(&node.v32s, &size);
            EXPECT_EQ(size, 1);
            EXPECT_EQ(node.box.width, 1);
            const bool taken = test.code == kstd_persistentResult_objectIdTaken;
            EXPECT_EQ(node.next.shared != nullptr, taken) << "only a first definition is loaded";
            EXPECT_EQ(node.other.shared, nullptr);
            EXPECT_EQ(node.i32, test.code == kstd_persistentResult_objectIdNotFound ? 12 : 0);
            Variant recorded;
            if (test.code == kstd_persistentResult_typeMismatch) {
                EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 0, recorded),
                          kstd_persistentResult_objectIdNotFound);
            }
            rt::unlinkRecorded(tree, 8);
            rt::unlinkNode(&node);
        }
    };
    rt::types();
    composeAll();  // registers and interns what the trees name
    const int64_t objectsBefore = rt::liveObjects();
    NoLeaks leaks;
    composeAll();
    EXPECT_EQ(rt::liveObjects(), objectsBefore);
}

// A file whose types nobody registered reads, dumps and writes back the
// same: descriptors keep their names, values stay core values.
TEST(Formats, UnregisteredTypesReadDumpAndWriteBack) {
    const std::string text = document(
        R"({"name":"thing","type":"NobodyRegisteredThis","derivation":1,"kind":"object","id":0,"children":[)"
        R"({"name":"count","type":"NobodysInt","kind":"value","valueType":"k_Int64","value":-7},)"
        R"({"name":"held","type":"NobodysObject","kind":"null"},)"
        R"({"name":"back","type":"NobodyRegisteredThis","derivation":1,"kind":"ref","id":0},)"
        R"({"name":"list","type":"NobodysItem","derivation":2,"kind":"list","count":1,"children":[)"
        R"({"name":"i","type":"NobodysItem","kind":"object","item":true,"children":[)"
        R"({"name":"w","type":"double","kind":"value","value":0.5}]}]},)"
        R"({"name":"none","type":"NobodysItem","derivation":2,"kind":"emptyList"}]})",
        8);
    Tree tree, again;
    kfmt_report report{};
    const kfmt_options options = checkingOptions();
    ASSERT_EQ(read(tree, bytesOf(text), &options, &report), 0) << report.message;
    EXPECT_NE(dumpOf(tree).find("count: NobodysInt = (k_Int64) -7"), std::string::npos);
    Bytes json, binary, json2;
    ASSERT_EQ(write(tree, kfmt_format_json, &json, &report), 0) << report.message;
    ASSERT_EQ(write(tree, kfmt_format_binary, &binary, &report), 0) << report.message;
    ASSERT_EQ(read(again, binary), 0);
    ASSERT_EQ(write(again, kfmt_format_json, &json2), 0);
    EXPECT_EQ(json, json2);
}

// JSON texts beyond ASCII, raw or escaped, read as the same UTF-16 and are
// held to the caps in UTF-16 units; texts JSON cannot hold are refused.
TEST(Formats, JsonTextsBeyondAsciiAreCappedInUnitsAndCheckedAsText) {
    std::string name;  // 20 units in 40 bytes
    for (int i = 0; i < 5; ++i) name += "\u00e9\u00e9\U0001F600";
    const auto leaf = [](const std::string& name, const std::string& value) {
        return R"({"name":")" + name + R"(","type":"kstd_unicodeString","kind":"value","value":")" + value + "\"}";
    };
    const std::string text = document(R"({"name":")" + name + R"(","type":"T\u00fcp","kind":"object","children":[)" +
                                          leaf(R"(\u00e9\ud83d\ude00)", "a\u00e9\U0001F600") + "]}", 2);
    const auto readCapped = [&](const std::string& bytes, int32_t nameUnits, int32_t stringUnits,
                                kfmt_report* report) {
        Tree tree;
        kfmt_options options = checkingOptions(0);
        options.limits.maxNameUnits = nameUnits;
        options.limits.maxStringUnits = stringUnits;
        const kstd_result result = read(tree, bytesOf(bytes), &options, report);
        if (result >= 0) {
            EXPECT_EQ(dumpOf(tree), name + ": T\u00fcp\n  \u00e9\U0001F600: kstd_unicodeString = \"a\u00e9\U0001F600\"\n");
        }
        return result;
    };
    kfmt_report report{};
    EXPECT_EQ(readCapped(text, 20, 4, &report), 0) << report.message;
    EXPECT_EQ(readCapped(text, 19, 4, &report), kstd_persistentResult_nameTooLong);
    EXPECT_EQ(report.offset, int64_t(text.find(name) + name.size() + 1)) << "found at the name";
    EXPECT_EQ(readCapped(text, 20, 3, &report), kfmt_result_limitExceeded);
    const struct {
        std::string node;
        const char* message;
    } refused[]{
        {leaf("a", R"(x\u0000y)"), "0 character"},
        {leaf(R"(\udd22)", "a"), "unpaired surrogate"},
        {leaf("\xED\xA0\x80", "a"), "encoding"},
    };
    for (const auto& test : refused) {
        EXPECT_EQ(readCapped(document(test.node, 1), 20, 4, &report), kfmt_result_malformed) << test.node;
        EXPECT_NE(std::string(report.message).find(test.message), std::string::npos) << report.message;
    }
}

TEST(Formats, DetectionLooksAtTheFirstBytesAndTheLastPathComponent) {
    uint32_t format = 9;
    EXPECT_EQ(kfmt_detectFormat("VXPB\1\0\0\0", 8, &format), 0);
    EXPECT_EQ(format, kfmt_format_binary);
    EXPECT_EQ(kfmt_detectFormat(" \n{", 3, &format), 0);
    EXPECT_EQ(format, kfmt_format_json);
    EXPECT_EQ(kfmt_detectFormat("VX", 2, &format), kfmt_result_malformed);
    EXPECT_EQ(format, 0u);
    EXPECT_EQ(kfmt_formatFromPath("dir.json/tree.vxb", &format), 0);
    EXPECT_EQ(format, kfmt_format_binary);
    EXPECT_EQ(kfmt_formatFromPath("dir.json/tree", &format), kfmt_result_malformed);
}

}  // namespace
}  // namespace vexpers::test::formats
