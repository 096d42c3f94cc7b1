// Structure-aware fuzz harness: the bytes describe an object graph of the
// demo model (a scene, up to 12 nodes, up to 4 materials, every pointer
// free to point at any object or at none, so sharing and cycles of every
// shape occur; texts with characters beyond ASCII, doubles of any bit
// pattern, enums and bit fields of any value). The graph is decomposed,
// composed straight from the tree, and written, read and composed in each
// storage format; every copy must equal the original in values and in
// sharing, or the harness aborts.
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "client_object.hpp"
#include "demo_model.hpp"
#include "fuzz_support.hpp"

using namespace vexpers::fuzz;
namespace demo = vexpers::demo;

namespace {

using vexpers::client::objectOf;

struct Pointer {
    kstd_ptrh p;
    Pointer() { kstd_ptrh_constructEmpty(&p); }
    ~Pointer() { kstd_ptrh_destruct(&p); }
    Pointer(const Pointer& other) { kstd_ptrh_constructCopy(&p, &other.p); }
    Pointer& operator=(const Pointer&) = delete;
};

// ---- Building ------------------------------------------------------------------------------

struct Graph {
    Pointer scene;
    std::vector<Pointer> nodes, materials;
    bool loneSurrogates = false;  // some text holds an unpaired surrogate
};

template <class T>
void make(kstd_ptrh* pointer) {
    Type type;
    if (kstd_persistentTypeGetType(T::typeName, 0, 1, &type.r) < 0) fail("demo type not registered");
    void* object = nullptr;
    if (kstd_persistentType_newObject(&type.r, &object) < 0) fail("cannot make a demo object");
    if (kstd_ptrh_assignShared(pointer, &static_cast<typename T::Record*>(object)->header) < 0)
        fail("cannot share a demo object");
}
struct SceneKind {
    using Record = demo::Scene;
    static constexpr const char16_t* typeName = u"DemoScene";
};
struct NodeKind {
    using Record = demo::Node;
    static constexpr const char16_t* typeName = u"DemoNode";
};
struct MaterialKind {
    using Record = demo::Material;
    static constexpr const char16_t* typeName = u"DemoMaterial";
};

bool hasLoneSurrogate(const std::u16string& text) {
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit >= 0xD800 && unit < 0xDC00) {
            if (i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
                ++i;
                continue;
            }
            return true;
        }
        if (unit >= 0xDC00 && unit < 0xE000) return true;
    }
    return false;
}

// A text from the input: null (left unassigned), empty or some units.
void readText(ByteReader& input, kstd_unicodeString* target, Graph* graph) {
    const uint8_t kind = input.u8();
    if (kind % 8 == 0) return;  // stays null
    std::u16string text = input.text(kind % 8 == 1 ? 0 : 24, true);
    // Texts stop at a zero unit, as the library reads them.
    text = text.substr(0, text.find(u'\0'));
    if (hasLoneSurrogate(text)) graph->loneSurrogates = true;
    if (kstd_unicodeString_assignStringW(target, text.c_str()) < 0) fail("cannot set a text");
}

void readDoubles(ByteReader& input, kstd_vectord* target, uint32_t most) {
    const uint32_t count = input.below(most + 1);
    for (uint32_t i = 0; i < count; ++i) {
        // Mostly ordinary numbers, sometimes any bit pattern (NaN, infinities, -0).
        const double value = input.u8() < 0xC0 ? static_cast<double>(static_cast<int16_t>(input.u16())) / 8.0
                                                 : input.f64();
        if (kstd_vectord_pushBack(target, value) < 0) fail("cannot grow a vector");
    }
}

// The pointer the input names: none, or one of `pool`.
void readLink(ByteReader& input, const std::vector<Pointer>& pool, kstd_ptrh* target) {
    const uint8_t b = input.u8();
    if (pool.empty() || b % (pool.size() + 1) == pool.size()) return;
    if (kstd_ptrh_assign(target, &pool[b % (pool.size() + 1)].p) < 0) fail("cannot link");
}

void build(ByteReader& input, Graph* graph) {
    graph->nodes = std::vector<Pointer>(1 + input.below(12));
    graph->materials = std::vector<Pointer>(input.below(5));
    for (Pointer& m : graph->materials) make<MaterialKind>(&m.p);
    for (Pointer& n : graph->nodes) make<NodeKind>(&n.p);
    make<SceneKind>(&graph->scene.p);
    for (Pointer& pointer : graph->materials) {
        demo::Material* m = objectOf<demo::Material>(pointer.p);
        readText(input, &m->name, graph);
        readDoubles(input, &m->color, 5);
        m->roughness = input.u8() < 0xF0 ? input.u8() / 16.0 : input.f64();
    }
    for (Pointer& pointer : graph->nodes) {
        demo::Node* n = objectOf<demo::Node>(pointer.p);
        readText(input, &n->name, graph);
        n->kind = input.u8() < 0xF0 ? input.u8() % 4 : input.i64();
        n->flags = input.u8() < 0xF0 ? input.u8() % 16 : input.u64();
        readDoubles(input, &n->transform, 12);
        const uint32_t tags = input.below(4);
        for (uint32_t i = 0; i < tags; ++i) {
            Text tag;
            readText(input, &tag.r, graph);
            if (kstd_vector_kstd_unicodeString_pushBack(&n->tags, &tag.r) < 0) fail("cannot add a tag");
        }
        readLink(input, graph->materials, &n->material);
        readLink(input, graph->nodes, &n->parent);
        readLink(input, graph->nodes, &n->firstChild);
        readLink(input, graph->nodes, &n->nextSibling);
    }
    demo::Scene* s = objectOf<demo::Scene>(graph->scene.p);
    readText(input, &s->title, graph);
    s->version = static_cast<int32_t>(input.u32());
    readLink(input, graph->nodes, &s->root);
    readLink(input, graph->nodes, &s->camera);
    readLink(input, graph->materials, &s->environment);
}

// ---- Comparing -----------------------------------------------------------------------------

std::u16string textOf(const kstd_unicodeString& s) {
    const char16_t* chars = nullptr;
    int32_t length = 0;
    kstd_unicodeString_getStringW(&s, &chars, &length);
    // A null text differs from every text.
    return chars != nullptr ? std::u16string(chars, static_cast<size_t>(length)) : std::u16string(1, u'\uFFFF');
}

bool sameDouble(double a, double b) {
    if (a != a || b != b) return a != a && b != b;  // NaN: any NaN
    return std::memcmp(&a, &b, sizeof a) == 0;      // -0 is not 0
}

bool sameDoubles(const kstd_vectord& a, const kstd_vectord& b) {
    const double *x = nullptr, *y = nullptr;
    intptr_t m = 0, n = 0;
    kstd_vectord_getBeginSizeIntPtrConst(&a, &x, &m);
    kstd_vectord_getBeginSizeIntPtrConst(&b, &y, &n);
    if (m != n) return false;
    for (intptr_t i = 0; i < m; ++i)
        if (!sameDouble(x[i], y[i])) return false;
    return true;
}

bool sameTexts(const kstd_vector_kstd_unicodeString& a, const kstd_vector_kstd_unicodeString& b) {
    const kstd_unicodeString *x = nullptr, *y = nullptr;
    intptr_t m = 0, n = 0;
    kstd_vector_kstd_unicodeString_getBeginSizeIntPtrConst(&a, &x, &m);
    kstd_vector_kstd_unicodeString_getBeginSizeIntPtrConst(&b, &y, &n);
    if (m != n) return false;
    for (intptr_t i = 0; i < m; ++i)
        if (textOf(x[i]) != textOf(y[i])) return false;
    return true;
}

// Walks original and copy side by side: one copy per original object (a
// bijection, so sharing and cycles are kept), equal values everywhere.
class Comparison {
public:
    const char* compare(const kstd_ptrh& original, const kstd_ptrh& copy) {
        if (!pair<demo::Scene>(scenes_, original, copy)) return "scene identity";
        while (!pending_.empty()) {
            const Pending p = pending_.back();
            pending_.pop_back();
            if (const char* difference = p.compare(*this, p.original, p.copy)) return difference;
        }
        return nullptr;
    }

private:
    struct Pending {
        const void* original;
        const void* copy;
        const char* (*compare)(Comparison&, const void*, const void*);
    };
    using Pairs = std::map<const void*, const void*>;

    // Pairs the objects two pointers hold; a first meeting queues their values.
    template <class T>
    bool pair(Pairs& pairs, const kstd_ptrh& original, const kstd_ptrh& copy) {
        const T* a = objectOf<T>(original);
        const T* b = objectOf<T>(copy);
        if ((a == nullptr) != (b == nullptr)) return false;
        if (a == nullptr) return true;
        if (a == b) return false;  // composing makes new objects
        const auto [at, added] = pairs.emplace(a, b);
        const auto [back, addedBack] = reverse_.emplace(b, a);
        if (at->second != b || back->second != a) return false;
        if (added) pending_.push_back({a, b, &Comparison::values<T>});
        return true;
    }

    template <class T>
    static const char* values(Comparison& c, const void* a, const void* b) {
        return c.compareValues(*static_cast<const T*>(a), *static_cast<const T*>(b));
    }

    const char* compareValues(const demo::Scene& a, const demo::Scene& b) {
        if (textOf(a.title) != textOf(b.title)) return "scene title";
        if (a.version != b.version) return "scene version";
        if (!pair<demo::Node>(nodes_, a.root, b.root)) return "scene root";
        if (!pair<demo::Node>(nodes_, a.camera, b.camera)) return "scene camera";
        if (!pair<demo::Material>(materials_, a.environment, b.environment)) return "scene environment";
        return nullptr;
    }
    const char* compareValues(const demo::Node& a, const demo::Node& b) {
        if (textOf(a.name) != textOf(b.name)) return "node name";
        if (a.kind != b.kind) return "node kind";
        if (a.flags != b.flags) return "node flags";
        if (!sameDoubles(a.transform, b.transform)) return "node transform";
        if (!sameTexts(a.tags, b.tags)) return "node tags";
        if (!pair<demo::Material>(materials_, a.material, b.material)) return "node material";
        if (!pair<demo::Node>(nodes_, a.parent, b.parent)) return "node parent";
        if (!pair<demo::Node>(nodes_, a.firstChild, b.firstChild)) return "node first child";
        if (!pair<demo::Node>(nodes_, a.nextSibling, b.nextSibling)) return "node next sibling";
        return nullptr;
    }
    const char* compareValues(const demo::Material& a, const demo::Material& b) {
        if (textOf(a.name) != textOf(b.name)) return "material name";
        if (!sameDoubles(a.color, b.color)) return "material color";
        if (!sameDouble(a.roughness, b.roughness)) return "material roughness";
        return nullptr;
    }

    Pairs scenes_, nodes_, materials_, reverse_;
    std::vector<Pending> pending_;
};

// Every scene, node and material a composed copy reaches, its links dropped
// so that cycles let go; the copy is empty afterwards.
void releaseCopy(kstd_ptrh* copy) {
    std::vector<Pointer> keep;  // keeps each object alive while links go
    std::map<const void*, bool> seen;
    std::vector<demo::Node*> work;
    const auto visit = [&](const kstd_ptrh& pointer) {
        demo::Node* n = objectOf<demo::Node>(pointer);
        if (n == nullptr || !seen.emplace(n, true).second) return;
        keep.emplace_back();
        kstd_ptrh_assign(&keep.back().p, &pointer);
        work.push_back(n);
    };
    if (demo::Scene* s = objectOf<demo::Scene>(*copy)) {
        visit(s->root);
        visit(s->camera);
        kstd_ptrh_reset(&s->root);
        kstd_ptrh_reset(&s->camera);
        kstd_ptrh_reset(&s->environment);
    }
    while (!work.empty()) {
        demo::Node* n = work.back();
        work.pop_back();
        visit(n->parent);
        visit(n->firstChild);
        visit(n->nextSibling);
        kstd_ptrh_reset(&n->parent);
        kstd_ptrh_reset(&n->firstChild);
        kstd_ptrh_reset(&n->nextSibling);
        kstd_ptrh_reset(&n->material);
    }
    kstd_ptrh_reset(copy);
    // `keep` releases the last references; nothing links anything now.
    std::vector<Pointer>().swap(keep);
}

void releaseOriginal(Graph* graph) {
    for (Pointer& pointer : graph->nodes) {
        demo::Node* n = objectOf<demo::Node>(pointer.p);
        kstd_ptrh_reset(&n->parent);
        kstd_ptrh_reset(&n->firstChild);
        kstd_ptrh_reset(&n->nextSibling);
    }
}

// Composes the scene from `tree`, compares it with the original and lets the copy go.
void composeAndCompare(const Graph& graph, kstd_persistentPropertyTree* tree, const char* how) {
    Pointer copy;
    kstd_persistentPropertyTree_forgetAllObjects(tree);
    if (kstd_persistentType_loadPropertyNode(demo::pointerType(), &copy.p, tree->firstChild) < 0) {
        std::fprintf(stderr, "fuzz: composing %s failed\n", how);
        fail("a graph does not compose from its tree");
    }
    Comparison comparison;
    if (const char* difference = comparison.compare(graph.scene.p, copy.p)) {
        std::fprintf(stderr, "fuzz: composed %s: %s differs\n", how, difference);
        fail("a composed graph differs from the original");
    }
    kstd_persistentPropertyTree_reset(tree);
    releaseCopy(&copy.p);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    prepare();
    ByteReader input(data, size);
    Graph graph;
    build(input, &graph);

    Tree decomposed;
    {
        Property property;
        if (kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property.r, u"scene", 2, &graph.scene.p) < 0 ||
            kstd_persistentPropertyTree_resetDecomposeProperty(&decomposed.r, &property.r) < 0)
            fail("a graph does not decompose");
    }

    for (const uint32_t format : {kfmt_format_json, kfmt_format_binary}) {
        Memory bytes;
        kfmt_report report{};
        if (kfmt_writeTree(&decomposed.r, format, &bytes.sink, nullptr, nullptr, &report) < 0) {
            if (format == kfmt_format_json && report.code == kfmt_result_notStorable && graph.loneSurrogates) continue;
            std::fprintf(stderr, "fuzz: %s: %s\n", kfmt_formatName(format), report.message);
            fail("a decomposed graph does not write");
        }
        Tree read;
        if (readTree(bytes.writer.data, bytes.writer.size, format, kfmt_flag_checkObjectIds, &read.r) < 0) {
            std::fprintf(stderr, "fuzz: %s\n", kfmt_formatName(format));
            fail("a written graph does not read");
        }
        composeAndCompare(graph, &read.r, kfmt_formatName(format));
    }
    // Straight from the decomposed tree, whose arrays live in the objects.
    composeAndCompare(graph, &decomposed.r, "from the decomposed tree");
    releaseOriginal(&graph);
    return 0;
}
