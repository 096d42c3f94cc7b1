// Helpers of the programs that run the storage formats on the demo scene
// (formats, limits, sweeps): writing a tree into bytes and reading bytes
// back, and the scene as a decomposed tree.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "demo_model.hpp"
#include "support/test_support.hpp"
#include "vexpers/formats/formats.h"

namespace vexpers::test::formats {

using Bytes = std::vector<uint8_t>;
using Tree = Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                   kstd_persistentPropertyTree_destruct>;

inline constexpr uint32_t bothFormats[] = {kfmt_format_json, kfmt_format_binary};

// A scene, released with its cycles broken.
struct Scene : SharedPointer {
    ~Scene() { demo::releaseScene(*this); }
};

inline kstd_result write(kstd_persistentPropertyTree* tree, uint32_t format, Bytes* bytes,
                         kfmt_report* report = nullptr, kfmt_statistics* statistics = nullptr,
                         const kfmt_options* options = nullptr) {
    kfmt_memoryWriter writer;
    kfmt_sink sink;
    kfmt_sink_initMemory(&sink, &writer);
    const kstd_result result = kfmt_writeTree(tree, format, &sink, options, statistics, report);
    bytes->assign(writer.data, writer.data + writer.size);
    kfmt_memoryWriter_release(&writer);
    return result;
}

inline kstd_result read(kstd_persistentPropertyTree* tree, const Bytes& bytes, const kfmt_options* options = nullptr,
                        kfmt_report* report = nullptr, kfmt_statistics* statistics = nullptr, size_t size = SIZE_MAX) {
    kfmt_memoryReader reader;
    kfmt_source source;
    kfmt_source_initMemory(&source, &reader, bytes.data(), size == SIZE_MAX ? bytes.size() : size);
    return kfmt_readTree(tree, kfmt_format_detect, &source, options, statistics, report);
}

inline Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

// Decomposes `scene` into `tree` under the property name "scene".
inline kstd_result decompose(const kstd_ptrh* scene, kstd_persistentPropertyTree* tree) {
    Property property;
    const kstd_result result = kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"scene", 2, scene);
    return result < 0 ? result : kstd_persistentPropertyTree_resetDecomposeProperty(tree, property);
}

// The sample scene of `nodes` nodes written in `format`.
inline Bytes sceneBytes(int64_t nodes, uint32_t format) {
    Scene scene;
    demo::Census census;
    Tree tree;
    Bytes bytes;
    EXPECT_EQ(demo::buildScene(nodes, scene, &census), 0);
    EXPECT_EQ(decompose(scene, tree), 0);
    EXPECT_EQ(write(tree, format, &bytes), 0);
    return bytes;
}

inline std::string dumpOf(const kstd_persistentPropertyTree* tree) {
    kfmt_memoryWriter writer;
    kfmt_sink sink;
    kfmt_sink_initMemory(&sink, &writer);
    EXPECT_EQ(kfmt_dumpTree(tree, &sink), 0);
    std::string text(reinterpret_cast<const char*>(writer.data), writer.size);
    kfmt_memoryWriter_release(&writer);
    return text;
}

inline kfmt_options checkingOptions(uint32_t flags = kfmt_flag_checkObjectIds) {
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.flags = flags;
    return options;
}

}  // namespace vexpers::test::formats
