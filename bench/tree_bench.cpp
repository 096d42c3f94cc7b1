// Decomposing an object graph into a property tree.
//
// The graph has n objects of a registered client type with ten persistent
// properties: eight scalars and two shared references (kstd_ptrh members)
// to other objects. Object i refers to objects 2i+1 and 2i+2 where they
// exist, and to pseudo-random objects otherwise, so every object is reached
// from object 0 and about n + 1 references meet an object already defined.
// A shared pointer decomposes into a node with one child "ptr" that defines
// or refers to the object, so the tree has 12 nodes per object.
//
// Reported per node of the tree: the decomposition time (ns_per_node; the
// tree is reset, which frees the previous nodes, inside the timing) and the
// bytes a fresh tree holds after decomposing (bytes_per_node: everything the
// memory service has live, measured through the C heap, divided by the node
// count; node_block_bytes is the allocator's block alone).
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

#include "vexpers/vexpers.h"

namespace {

struct Object {
    kstd_shared header;
    int32_t a;
    int32_t b;
    int64_t c;
    uint32_t d;
    double e;
    double f;
    float g;
    int32_t h;  // k_Bool
    kstd_ptrh left;
    kstd_ptrh right;
};

kstd_persistentType objectType;
kstd_persistentType objectPointerType;

kstd_result keep(kstd_shared*) { return 0; }  // the benchmark owns its objects
constexpr kstd_sharedCustom counting{keep, nullptr, nullptr};
kstd_result sharedTypename(const kstd_shared*, const char16_t** name) {
    *name = u"BenchObject";
    return 0;
}
constexpr kstd_sharedTyped typed{kstd_shared_queryInterfaceByTypenameFinal, sharedTypename};

kstd_result objectSize(uint32_t* size) {
    *size = sizeof(Object);
    return 0;
}
kstd_result unsupported(void*) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedCopy(void*, const void*) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedNew(void**) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedClone(void**, const void*) { return kstd_persistentResult_notSupported; }
constexpr kstd_persistentObjectVtable objectOperations{objectSize,     unsupported,      unsupportedCopy,
                                                       unsupportedCopy, unsupported,     unsupported,
                                                       unsupportedNew,  unsupportedClone, unsupportedNew};

kstd_result query(void* object, const char16_t* name, void** result) {
    *result = name[0] == u'k' && std::u16string_view(name) == u"kstd_shared" ? &static_cast<Object*>(object)->header
                                                                              : nullptr;
    return 0;
}
kstd_result typeName(const void*, const char16_t** name) {
    *name = u"BenchObject";
    return 0;
}
constexpr kstd_typeDescriptorMinimalVtable minimal{query, typeName};
constexpr kstd_persistentValueAccessVtable noAccess{};

template <auto Member>
kstd_result address(const void* object, const void** member) {
    *member = &(static_cast<const Object*>(object)->*Member);
    return 0;
}

template <int Index, class F>
kstd_persistentPropertyAccessors word(F function) {
    kstd_persistentPropertyAccessors accessors{};
    accessors.words[Index] = reinterpret_cast<const void*>(function);
    return accessors;
}

const kstd_persistentPropertyInfoDefinition definitions[]{
    {u"a", 2, u"k_Int32", 0, word<4>(address<&Object::a>)},
    {u"b", 2, u"k_Int32", 0, word<4>(address<&Object::b>)},
    {u"c", 2, u"k_Int64", 0, word<4>(address<&Object::c>)},
    {u"d", 2, u"k_UInt32", 0, word<4>(address<&Object::d>)},
    {u"e", 2, u"double", 0, word<4>(address<&Object::e>)},
    {u"f", 2, u"double", 0, word<4>(address<&Object::f>)},
    {u"g", 2, u"float", 0, word<4>(address<&Object::g>)},
    {u"h", 2, u"k_Bool", 0, word<4>(address<&Object::h>)},
    {u"left", 2, u"kstd_ptrh", 0, word<4>(address<&Object::left>)},
    {u"right", 2, u"kstd_ptrh", 0, word<4>(address<&Object::right>)},
};
const kstd_persistentStaticPropertyList properties{definitions, std::size(definitions)};

void registerType() {
    static bool done = false;
    if (done) return;
    static uint32_t flag = 0;
    kstd_persistentType_construct(&objectPointerType);
    kstd_persistentTypeRegisterTypeObjectDynamic(u"BenchObject", &objectOperations, &noAccess, &properties, &minimal,
                                                 0, &flag, &objectType);
    kstd_persistentType_assignDifferentDerivation(&objectPointerType, &objectType, 1);
    done = true;
}

class Graph {
public:
    explicit Graph(int64_t n) : objects_(static_cast<size_t>(n)) {
        for (auto& object : objects_) {
            object = std::make_unique<Object>();
            std::memset(object.get(), 0, sizeof(Object));
            kstd_shared_initCustomTyped(&object->header, object.get(), &counting, &typed);
        }
        std::mt19937_64 random(42);
        for (int64_t i = 0; i < n; ++i) {
            Object& object = *objects_[static_cast<size_t>(i)];
            object.a = int32_t(i);
            object.c = i * 3;
            object.e = double(i) / 7;
            const int64_t left = 2 * i + 1 < n ? 2 * i + 1 : int64_t(random() % uint64_t(n));
            const int64_t right = 2 * i + 2 < n ? 2 * i + 2 : int64_t(random() % uint64_t(n));
            kstd_ptrh_construct(&object.left, &objects_[static_cast<size_t>(left)]->header);
            kstd_ptrh_construct(&object.right, &objects_[static_cast<size_t>(right)]->header);
        }
        kstd_persistentProperty_construct(&root_);
        kstd_persistentProperty_resetInfoAndValueUsingType(&root_, &objectPointerType, u"root", 2,
                                                           objects_.front().get());
    }
    ~Graph() {
        kstd_persistentProperty_destruct(&root_);
        for (auto& object : objects_) {
            kstd_ptrh_destruct(&object->left);
            kstd_ptrh_destruct(&object->right);
        }
    }
    const kstd_persistentProperty* root() const { return &root_; }

private:
    std::vector<std::unique_ptr<Object>> objects_;
    kstd_persistentProperty root_;
};

void BM_DecomposeGraph(benchmark::State& state) {
    registerType();
    const int64_t n = state.range(0);
    Graph graph(n);

    // Memory of one decomposition into a fresh tree.
    int64_t nodes = 0;
    double bytesPerNode = 0;
    int32_t blockBytes = 0;
    {
        const auto heapBytes = [] {
            const struct mallinfo2 info = mallinfo2();
            return info.uordblks + info.hblkhd;  // arena blocks and mapped blocks
        };
        const size_t before = heapBytes();
        kstd_persistentPropertyTree tree;
        kstd_persistentPropertyTree_construct(&tree);
        if (kstd_persistentPropertyTree_resetDecomposeProperty(&tree, graph.root()) != 0)
            state.SkipWithError("decomposition failed");
        kstd_blockAllocator_getLiveCount(&tree.nodeAllocator, &nodes);
        blockBytes = tree.nodeAllocator.blockSize;
        bytesPerNode = double(heapBytes() - before) / double(nodes);
        kstd_persistentPropertyTree_destruct(&tree);
    }

    // The timed tree decomposes once untimed, so that its allocator holds
    // the chunks every later decomposition reuses.
    kstd_persistentPropertyTree tree;
    kstd_persistentPropertyTree_construct(&tree);
    kstd_persistentPropertyTree_resetDecomposeProperty(&tree, graph.root());
    for (auto _ : state) {
        if (kstd_persistentPropertyTree_resetDecomposeProperty(&tree, graph.root()) != 0)
            state.SkipWithError("decomposition failed");
    }
    kstd_persistentPropertyTree_destruct(&tree);

    state.counters["nodes"] = double(nodes);
    state.counters["ns_per_node"] =
        benchmark::Counter(double(nodes) * double(state.iterations()), benchmark::Counter::kIsRate |
                                                                           benchmark::Counter::kInvert);
    state.counters["bytes_per_node"] = bytesPerNode;
    state.counters["node_block_bytes"] = blockBytes;
}
BENCHMARK(BM_DecomposeGraph)->Arg(1000)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
