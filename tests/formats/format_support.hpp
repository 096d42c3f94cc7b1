// Helpers of the format tests: owning records, writing a tree into bytes and
// reading bytes back, and the sample scene as a decomposed tree.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "demo_model.hpp"
#include "support/test_support.hpp"
#include "vexpers/formats/formats.h"

namespace vexpers::test::formats {

using Bytes = std::vector<uint8_t>;

inline constexpr uint32_t bothFormats[] = {kfmt_format_json, kfmt_format_binary};

struct Tree {
    kstd_persistentPropertyTree t;
    Tree() { kstd_persistentPropertyTree_construct(&t); }
    ~Tree() { kstd_persistentPropertyTree_destruct(&t); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
};

// A scene, released with its cycles broken.
struct Scene {
    kstd_ptrh p;
    Scene() { kstd_ptrh_constructEmpty(&p); }
    ~Scene() {
        demo::releaseScene(&p);
        kstd_ptrh_destruct(&p);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
};

inline kstd_result write(kstd_persistentPropertyTree* tree, uint32_t format, Bytes* bytes,
                         kfmt_report* report = nullptr, kfmt_statistics* statistics = nullptr) {
    kfmt_memoryWriter writer;
    kfmt_sink sink;
    kfmt_sink_initMemory(&sink, &writer);
    const kstd_result result = kfmt_writeTree(tree, format, &sink, nullptr, statistics, report);
    bytes->assign(writer.data, writer.data + writer.size);
    kfmt_memoryWriter_release(&writer);
    return result;
}

inline kstd_result read(kstd_persistentPropertyTree* tree, const uint8_t* data, size_t size,
                        const kfmt_options* options = nullptr, kfmt_report* report = nullptr,
                        kfmt_statistics* statistics = nullptr, uint32_t format = kfmt_format_detect) {
    kfmt_memoryReader reader;
    kfmt_source source;
    kfmt_source_initMemory(&source, &reader, data, size);
    return kfmt_readTree(tree, format, &source, options, statistics, report);
}

inline kstd_result read(kstd_persistentPropertyTree* tree, const Bytes& bytes, const kfmt_options* options = nullptr,
                        kfmt_report* report = nullptr) {
    return read(tree, bytes.data(), bytes.size(), options, report);
}

inline Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }
inline std::string textOf(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

// Decomposes `scene` into `tree` under the property name "scene".
inline kstd_result decompose(const kstd_ptrh& scene, kstd_persistentPropertyTree* tree) {
    kstd_persistentProperty property;
    kstd_persistentProperty_construct(&property);
    kstd_result result = kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property, u"scene", 2, &scene);
    if (result >= 0) result = kstd_persistentPropertyTree_resetDecomposeProperty(tree, &property);
    kstd_persistentProperty_destruct(&property);
    return result;
}

// The sample scene of `nodes` nodes written in `format`.
inline Bytes sceneBytes(int64_t nodes, uint32_t format) {
    Scene scene;
    demo::Census census;
    Tree tree;
    Bytes bytes;
    EXPECT_EQ(demo::buildScene(nodes, &scene.p, &census), 0);
    EXPECT_EQ(decompose(scene.p, &tree.t), 0);
    EXPECT_EQ(write(&tree.t, format, &bytes), 0);
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

inline kfmt_options checkingOptions() {
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.flags = kfmt_flag_checkObjectIds;
    return options;
}

}  // namespace vexpers::test::formats
