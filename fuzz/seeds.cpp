// Writes the seed corpora of the fuzz harnesses into <dir>/<harness>/:
//   read_json, read_binary  demo scenes of 1, 5 and 24 nodes and single
//                           values, as the formats write them
//   compose                 the same files and section streams behind a
//                           target byte (0: a shared pointer to a scene)
//   sections                section streams shaped like a decomposed scene
//   graph                   fixed pseudo-random bytes (each makes a graph)
// Usage: vexpers_fuzz_seeds <dir>   (fuzz/make-corpus.sh runs it)
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "demo_model.hpp"
#include "fuzz_support.hpp"

using namespace vexpers::fuzz;
namespace demo = vexpers::demo;

namespace {

std::filesystem::path root;

void save(const std::string& harness, const std::string& name, const std::string& bytes) {
    const std::filesystem::path dir = root / harness;
    std::filesystem::create_directories(dir);
    std::ofstream(dir / name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string written(kstd_persistentPropertyTree* tree, uint32_t format) {
    Memory memory;
    if (kfmt_writeTree(tree, format, &memory.sink, nullptr, nullptr, nullptr) < 0) fail("cannot write a seed");
    return std::string(reinterpret_cast<const char*>(memory.writer.data), memory.writer.size);
}

// Saves a decomposed tree in both formats for the readers and composing.
void saveTree(kstd_persistentPropertyTree* tree, const std::string& stem, char target) {
    for (const uint32_t format : {kfmt_format_json, kfmt_format_binary}) {
        const std::string bytes = written(tree, format);
        const std::string extension = format == kfmt_format_json ? ".json" : ".vxb";
        save(format == kfmt_format_json ? "read_json" : "read_binary", stem + extension, bytes);
        save("compose", stem + extension, std::string(1, target) + bytes);
    }
}

void saveScene(int64_t nodes) {
    kstd_ptrh scene;
    kstd_ptrh_constructEmpty(&scene);
    demo::Census census;
    if (demo::buildScene(nodes, &scene, &census) < 0) fail("cannot build a scene");
    Tree tree;
    Property property;
    if (kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property.r, u"scene", 2, &scene) < 0 ||
        kstd_persistentPropertyTree_resetDecomposeProperty(&tree.r, &property.r) < 0)
        fail("cannot decompose a scene");
    saveTree(&tree.r, "scene" + std::to_string(nodes), 0);
    kstd_persistentPropertyTree_reset(&tree.r);
    demo::releaseScene(&scene);
    kstd_ptrh_destruct(&scene);
}

void saveValues() {
    Tree tree;
    Property property;
    // A vector of doubles (target 1 composes it into a kstd_vectord).
    kstd_vectord values;
    kstd_vectord_construct(&values);
    for (const double d : {0.5, -0.0, 1e300, 3.25}) kstd_vectord_pushBack(&values, d);
    Type type;
    kstd_persistentTypeGetType(u"kstd_vectord", 0, 1, &type.r);
    Variant value;
    if (kstd_persistentVariant_setValueUsingType(&value.r, &type.r, &values) < 0 ||
        kstd_persistentPropertyInfo_resetNameTypeAccess(&property.r.info, u"value", &type.r, 2) < 0 ||
        kstd_persistentVariant_assign(&property.r.value, &value.r) < 0 ||
        kstd_persistentPropertyTree_resetDecomposeProperty(&tree.r, &property.r) < 0)
        fail("cannot decompose a vector");
    saveTree(&tree.r, "vector", 1);
    kstd_persistentPropertyTree_reset(&tree.r);
    kstd_vectord_destruct(&values);
}

// ---- Section streams, in the encoding of applySectionStream -----------------------------

class Stream {
public:
    const std::string& bytes() const { return bytes_; }

    void start(const char* name, const char* typeName, uint32_t derivation, uint32_t flags, int64_t id) {
        head(0x10, flags, name, typeName, derivation, id, 0);
        byte(0);  // no value
    }
    void end() {
        byte(0x01);
        byte(0);  // the null name matches any node
    }
    void coreLeaf(const char* name, const char* typeName, uint32_t category, uint64_t bits) {
        head(0x12, 0x18, name, typeName, 0, -1, 0);
        byte(1);
        text(typeName);
        byte(0);
        byte(static_cast<uint8_t>(category));
        for (int i = 0; i < 8; ++i) byte(static_cast<uint8_t>(bits >> (8 * i)));
    }
    void stringLeaf(const char* name, const char* value) {
        head(0x12, 0x18, name, "kstd_unicodeString", 0, -1, 0);
        byte(5);
        byte(0);
        text(value);
    }
    void nullLeaf(const char* name) {
        head(0x12, 0x28, name, "kstd_ptrh", 0, -1, 0);
        byte(2);
    }
    void referenceLeaf(const char* name, int64_t id) {
        head(0x12, 0x80088, name, "kstd_ptrh", 0, id, 0);
        byte(0);
    }
    void doubles(const char* name, const std::vector<double>& items) {
        head(0x12, 0x1, name, "kstd_vectord", 0, -1, static_cast<int64_t>(items.size()));
        byte(4);
        byte(static_cast<uint8_t>(items.size()));
        for (const double d : items) {
            uint64_t bits;
            std::memcpy(&bits, &d, sizeof bits);
            for (int i = 0; i < 8; ++i) byte(static_cast<uint8_t>(bits >> (8 * i)));
        }
    }
    void texts(const char* name, const std::vector<const char*>& items) {
        head(0x12, 0x1, name, "kstd_vector_kstd_unicodeString", 0, -1, static_cast<int64_t>(items.size()));
        byte(4);
        byte(static_cast<uint8_t>(items.size()));
        for (const char* item : items) text(item);
    }
    void raw(std::initializer_list<uint8_t> bytes) { bytes_.append(bytes.begin(), bytes.end()); }

private:
    void byte(uint8_t b) { bytes_.push_back(static_cast<char>(b)); }
    void text(const char* ascii) {
        byte(static_cast<uint8_t>(std::strlen(ascii)));
        for (const char* c = ascii; *c != 0; ++c) byte(static_cast<uint8_t>(*c - 0x20));
    }
    void number(int64_t value) {
        if (value >= -1 && value < 62) {
            byte(static_cast<uint8_t>(value + 1));
            return;
        }
        byte(0xF0);
        for (int i = 0; i < 8; ++i) byte(static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i)));
    }
    void head(uint8_t op, uint32_t flags, const char* name, const char* typeName, uint32_t derivation, int64_t id,
              int64_t items) {
        byte(op);
        byte(0xE0);
        for (int i = 0; i < 4; ++i) byte(static_cast<uint8_t>(flags >> (8 * i)));
        text(name);
        text(typeName);
        byte(static_cast<uint8_t>(derivation));
        byte(2);  // access
        number(id);
        number(items);
    }
    std::string bytes_;
};

void node(Stream& s, const char* name, int64_t id, const char* nodeName, int64_t parentId, bool child) {
    s.start(name, "kstd_ptrh", 0, 0x80004, id);
    s.stringLeaf("name", nodeName);
    s.start("kind", "DemoKind", 0, 0x4, -1);
    s.coreLeaf("value", "k_Int64", 0, static_cast<uint64_t>(id % 4));
    s.end();
    s.start("flags", "DemoFlags", 4, 0x4, -1);
    s.coreLeaf("value", "k_UInt64", 1, 5);
    s.end();
    s.doubles("transform", {1, 0, 0, 1.5, 0, 1, 0, 0.25, 0, 0, 1, -0.5});
    s.texts("tags", {"mesh", "tag"});
    s.nullLeaf("material");
    if (parentId >= 0) s.referenceLeaf("parent", parentId);
    else s.nullLeaf("parent");
    if (child) node(s, "firstChild", id + 1, "node-child", id, false);
    else s.nullLeaf("firstChild");
    s.nullLeaf("nextSibling");
    s.end();
}

void saveStreams() {
    Stream scene;
    scene.start("scene", "kstd_ptrh", 0, 0x80004, 0);
    scene.stringLeaf("title", "Demo scene");
    scene.coreLeaf("version", "k_Int32", 0, 1);
    node(scene, "root", 1, "node-0", -1, true);
    scene.referenceLeaf("camera", 2);
    scene.nullLeaf("environment");
    scene.end();
    save("sections", "scene.bin", scene.bytes());
    // The stream must rebuild a scene that composes.
    {
        Tree tree;
        ByteReader input(reinterpret_cast<const uint8_t*>(scene.bytes().data()), scene.bytes().size());
        applySectionStream(input, &tree.r);
        kstd_ptrh copy;
        kstd_ptrh_constructEmpty(&copy);
        if (tree.r.firstChild == nullptr ||
            kstd_persistentType_loadPropertyNode(demo::pointerType(), &copy, tree.r.firstChild) < 0)
            fail("the scene stream does not compose");
        demo::unlinkRecorded(&tree.r);
        kstd_persistentPropertyTree_reset(&tree.r);
        kstd_ptrh_destruct(&copy);
    }
    save("compose", "scene-sections.bin", std::string(1, '\0') + scene.bytes());

    Stream vector;
    vector.doubles("value", {0.5, -1, 2});
    save("sections", "vector.bin", vector.bytes());
    save("compose", "vector-sections.bin", std::string(1, '\1') + vector.bytes());

    // Registry calls, walks and resets between sections.
    Stream mixed = scene;
    mixed.raw({0x05, 0x01, 0x15, 0x02, 0x25, 0x01, 0x06, 0x07, 0x0F});
    save("sections", "mixed.bin", mixed.bytes());
}

// Fixed pseudo-random bytes: each input makes some graph.
void saveGraphs() {
    uint64_t state = 0x9E3779B97F4A7C15ull;
    for (const size_t size : {16, 64, 160, 400, 1000}) {
        std::string bytes;
        for (size_t i = 0; i < size; ++i) {
            state = state * 6364136223846793005ull + 1442695040888963407ull;
            bytes.push_back(static_cast<char>(state >> 56));
        }
        save("graph", "random" + std::to_string(size) + ".bin", bytes);
    }
    // Twelve nodes, four materials, every link set.
    std::string full(2000, '\x03');
    full[0] = 11;
    full[1] = 4;
    save("graph", "full.bin", full);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: vexpers_fuzz_seeds <dir>\n");
        return 2;
    }
    root = argv[1];
    prepare();
    for (const int64_t nodes : {1, 5, 24}) saveScene(nodes);
    saveValues();
    saveStreams();
    saveGraphs();
    return 0;
}
