// Round-trips one object graph through vexpers and through established C++
// serialization libraries in the same process, and prints what each costs.
//
// The graph: N items, each with scalars, a 12-letter name, 16 doubles and two
// shared pointers (`left` to a random earlier item, `right` for odd items to a
// random item anywhere, so there are cycles and self-references), held in
// creation order by one root. Generated from std::mt19937_64 seeded with
// 12345, so every library sees the same values.
//
// Each case writes the graph to memory and reads it back; the copy is then
// checked (every value, and that each original object has exactly one copy
// that the copies' pointers share) and freed, untimed. vexpers writes by
// decomposing the root into a property tree and writing the tree; it reads by
// reading the tree and composing new objects from it; freeing the trees is
// part of the timed work.
//
//   roundtrip_compare [--sizes 1000,10000] [--reps 5] [--no-memory] [--no-probe] [--lock FILE]
//   roundtrip_compare --case NAME --n N      one round trip, peak memory (used
//                                             by the main run, one process a case;
//                                             for vexpers also the cost of each
//                                             phase, on stderr)
//
// With --lock, each round of timed runs (every case once) holds an exclusive
// flock on FILE, so that builds sharing the machine wait for the round and
// run between rounds.
//
// vexpers runs on the main thread with the process's default stack. The peer
// libraries recurse once per level of the graph's depth-first nesting, so
// they run on a thread with a raised stack (peerStackBytes).
#include <pthread.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "vexpers/formats/formats.h"
#include "vexpers/vexpers.h"

#include "client_object.hpp"

#if VEXPERS_HAVE_CEREAL
#include <cereal/archives/binary.hpp>
#include <cereal/archives/json.hpp>
#include <cereal/types/memory.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#endif
#if VEXPERS_HAVE_BOOST_SERIALIZATION
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/shared_ptr.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/vector.hpp>
#endif

namespace {

constexpr size_t peerStackBytes = size_t{4} << 30;  // 4 GiB reserved; only what is touched is memory
constexpr double slowRunSeconds = 20.0;

// ---- The graph, as plain values --------------------------------------------------------

struct ItemValues {
    int32_t id;
    int64_t counter;
    double weight;
    float ratio;
    bool flag;
    uint16_t code;
    std::string name;
    std::u16string name16;
    double samples[16];
    int64_t left;   // index or -1
    int64_t right;  // index or -1
};

std::vector<ItemValues> generate(int64_t n) {
    std::mt19937_64 random(12345);
    std::uniform_int_distribution<int64_t> counter(INT64_MIN, INT64_MAX);
    std::uniform_real_distribution<double> weight(0.0, 1.0);
    std::uniform_real_distribution<float> ratio(0.0f, 1.0f);
    std::uniform_int_distribution<int> bit(0, 1);
    std::uniform_int_distribution<int> code(0, 65535);
    std::uniform_int_distribution<int> letter(0, 25);
    std::uniform_real_distribution<double> sample(-1000.0, 1000.0);
    std::vector<ItemValues> items(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i) {
        ItemValues& v = items[static_cast<size_t>(i)];
        v.id = static_cast<int32_t>(i);
        v.counter = counter(random);
        v.weight = weight(random);
        v.ratio = ratio(random);
        v.flag = bit(random) != 0;
        v.code = static_cast<uint16_t>(code(random));
        for (int k = 0; k < 12; ++k) v.name.push_back(static_cast<char>('a' + letter(random)));
        v.name16.assign(v.name.begin(), v.name.end());
        for (double& s : v.samples) s = sample(random);
        v.left = i == 0 ? -1 : std::uniform_int_distribution<int64_t>(0, i - 1)(random);
        v.right = i % 2 == 0 ? -1 : std::uniform_int_distribution<int64_t>(0, n - 1)(random);
    }
    return items;
}

// The deepest nesting a depth-first writer reaches: the root, then each item
// in order, each unseen item nesting its unseen `left` and `right` below it.
int64_t nestingDepth(const std::vector<ItemValues>& items) {
    std::vector<char> seen(items.size(), 0);
    struct Frame {
        int64_t item;
        int step;
    };
    std::vector<Frame> stack;
    int64_t deepest = 0;
    for (size_t top = 0; top < items.size(); ++top) {
        if (seen[top]) continue;
        seen[top] = 1;
        stack.push_back({static_cast<int64_t>(top), 0});
        while (!stack.empty()) {
            deepest = std::max<int64_t>(deepest, static_cast<int64_t>(stack.size()));
            Frame& f = stack.back();
            if (f.step == 2) {
                stack.pop_back();
                continue;
            }
            const ItemValues& v = items[static_cast<size_t>(f.item)];
            const int64_t next = f.step++ == 0 ? v.left : v.right;
            if (next >= 0 && !seen[static_cast<size_t>(next)]) {
                seen[static_cast<size_t>(next)] = 1;
                stack.push_back({next, 0});
            }
        }
    }
    return deepest + 1;  // the root
}

// ---- The peers' model: the natural C++ struct -------------------------------------------

struct Item {
    int32_t id = 0;
    int64_t counter = 0;
    double weight = 0;
    float ratio = 0;
    bool flag = false;
    uint16_t code = 0;
    std::string name;
    std::vector<double> samples;
    std::shared_ptr<Item> left;
    std::shared_ptr<Item> right;

#if VEXPERS_HAVE_CEREAL
    template <class Archive>
    void serialize(Archive& archive) {
        archive(CEREAL_NVP(id), CEREAL_NVP(counter), CEREAL_NVP(weight), CEREAL_NVP(ratio), CEREAL_NVP(flag),
                CEREAL_NVP(code), CEREAL_NVP(name), CEREAL_NVP(samples), CEREAL_NVP(left), CEREAL_NVP(right));
    }
#endif
};

using Graph = std::vector<std::shared_ptr<Item>>;

Graph buildPlain(const std::vector<ItemValues>& values) {
    Graph items(values.size());
    for (auto& item : items) item = std::make_shared<Item>();
    for (size_t i = 0; i < values.size(); ++i) {
        const ItemValues& v = values[i];
        Item& t = *items[i];
        t.id = v.id;
        t.counter = v.counter;
        t.weight = v.weight;
        t.ratio = v.ratio;
        t.flag = v.flag;
        t.code = v.code;
        t.name = v.name;
        t.samples.assign(v.samples, v.samples + 16);
        if (v.left >= 0) t.left = items[static_cast<size_t>(v.left)];
        if (v.right >= 0) t.right = items[static_cast<size_t>(v.right)];
    }
    return items;
}

// Cycles keep shared_ptr objects alive: cut the links, then let go.
void releasePlain(Graph& items) {
    for (auto& item : items)
        if (item) item->left.reset(), item->right.reset();
    items.clear();
}

// Every value as generated, and one copy per original object: item i's
// pointers lead to the copies of the items they led to.
std::string checkPlain(const Graph& items, const std::vector<ItemValues>& values) {
    if (items.size() != values.size()) return "item count";
    for (size_t i = 0; i < values.size(); ++i) {
        const ItemValues& v = values[i];
        const Item* t = items[i].get();
        if (t == nullptr) return "null item " + std::to_string(i);
        if (t->id != v.id || t->counter != v.counter || t->weight != v.weight || t->ratio != v.ratio ||
            t->flag != v.flag || t->code != v.code || t->name != v.name)
            return "scalar or name of item " + std::to_string(i);
        if (t->samples.size() != 16 || !std::equal(t->samples.begin(), t->samples.end(), v.samples))
            return "samples of item " + std::to_string(i);
        const Item* l = v.left >= 0 ? items[static_cast<size_t>(v.left)].get() : nullptr;
        const Item* r = v.right >= 0 ? items[static_cast<size_t>(v.right)].get() : nullptr;
        if (t->left.get() != l || t->right.get() != r) return "sharing of item " + std::to_string(i);
    }
    return {};
}

// ---- The vexpers model: a registered client type -----------------------------------------

#define BENCH_TRY(expression)                        \
    do {                                             \
        const kstd_result benchTry_ = (expression);  \
        if (benchTry_ < 0) return benchTry_;         \
    } while (0)

struct VItem {
    kstd_shared header;
    int32_t id;
    int64_t counter;
    double weight;
    float ratio;
    int32_t flag;  // k_Bool
    uint16_t code;
    kstd_unicodeString name;
    kstd_vectord samples;
    kstd_ptrh left;
    kstd_ptrh right;
};

// The root's items: a container the library reaches through its table.
struct VItemList {
    kstd_ptrh* items;
    intptr_t count;
};

struct VRoot {
    kstd_shared header;
    VItemList items;
};

using vexpers::client::accessors;
using vexpers::client::member;
using vexpers::client::word;

template <class T>
struct Traits;

template <class T>
using Operations = vexpers::client::ObjectOperations<T, Traits<T>>;

kstd_result listResize(void* container, int64_t count);

template <>
struct Traits<VItem> {
    static constexpr const char16_t* name = u"BenchItem";
    static kstd_result construct(VItem& t) {
        BENCH_TRY(kstd_unicodeString_construct(&t.name));
        BENCH_TRY(kstd_vectord_construct(&t.samples));
        BENCH_TRY(kstd_ptrh_constructBaseTypename(&t.left, nullptr, name));
        return kstd_ptrh_constructBaseTypename(&t.right, nullptr, name);
    }
    static kstd_result destruct(VItem& t) {
        kstd_unicodeString_destruct(&t.name);
        kstd_vectord_destruct(&t.samples);
        kstd_ptrh_destruct(&t.left);
        return kstd_ptrh_destruct(&t.right);
    }
};

template <>
struct Traits<VRoot> {
    static constexpr const char16_t* name = u"BenchRoot";
    static kstd_result construct(VRoot&) { return 0; }
    static kstd_result destruct(VRoot& r) { return listResize(&r.items, 0); }
};

kstd_result listResize(void* container, int64_t count) {
    auto* list = static_cast<VItemList*>(container);
    if (count < 0) return kstd_persistentResult_invalidCount;
    for (intptr_t i = count; i < list->count; ++i) kstd_ptrh_destruct(&list->items[i]);
    if (count > list->count) {
        void* memory = list->items;
        BENCH_TRY(ksys_memory_realloc_internal(static_cast<size_t>(count) * sizeof(kstd_ptrh), &memory));
        list->items = static_cast<kstd_ptrh*>(memory);
        for (intptr_t i = list->count; i < count; ++i)
            kstd_ptrh_constructBaseTypename(&list->items[i], nullptr, Traits<VItem>::name);
    } else if (count == 0) {
        void* memory = list->items;
        ksys_memory_free_internal(&memory);
        list->items = nullptr;
    }
    list->count = static_cast<intptr_t>(count);
    return 0;
}
kstd_result listSize(const void* container, intptr_t* count) {
    *count = static_cast<const VItemList*>(container)->count;
    return 0;
}
kstd_result listBegin(void* container, void** first) {
    *first = static_cast<VItemList*>(container)->items;
    return 0;
}
kstd_result listLayout(uint32_t* isContiguous, uint32_t* stride) {
    *isContiguous = 1;
    *stride = sizeof(kstd_ptrh);
    return 0;
}
kstd_result listNext(void*, void** element) {
    *element = static_cast<kstd_ptrh*>(*element) + 1;
    return 0;
}
constexpr kstd_persistentContainerVtable listTable{listResize, listSize, listBegin, listLayout, listNext, nullptr};

kstd_result locateItems(void* object, void** first, void** second) {
    *first = &static_cast<VRoot*>(object)->items;
    *second = const_cast<kstd_persistentContainerVtable*>(&listTable);
    return 0;
}

// Loads the root's items from the children of the array's node, one each.
kstd_result loadItems(void*, void* first, void*, const kstd_persistentType* arrayType,
                      const kstd_persistentPropertyNode* node) {
    auto* list = static_cast<VItemList*>(first);
    int64_t count = 0;
    for (const kstd_persistentPropertyNode* child = node->firstChild; child != nullptr; child = child->nextSibling)
        ++count;
    BENCH_TRY(listResize(list, count));
    kstd_persistentType itemType;
    kstd_persistentType_construct(&itemType);
    kstd_result result = kstd_persistentType_assignDifferentDerivation(&itemType, arrayType, 0);
    intptr_t index = 0;
    for (const kstd_persistentPropertyNode* child = node->firstChild; child != nullptr && result >= 0;
         child = child->nextSibling)
        result = kstd_persistentType_loadPropertyNode(&itemType, &list->items[index++], child);
    kstd_persistentType_destruct(&itemType);
    return result;
}

constexpr kstd_persistentValueAccessVtable emptyAccess{};

const kstd_persistentPropertyInfoDefinition itemDefinitions[]{
    {u"id", 2, u"k_Int32", 0, member<offsetof(VItem, id)>()},
    {u"counter", 2, u"k_Int64", 0, member<offsetof(VItem, counter)>()},
    {u"weight", 2, u"double", 0, member<offsetof(VItem, weight)>()},
    {u"ratio", 2, u"float", 0, member<offsetof(VItem, ratio)>()},
    {u"flag", 2, u"k_Bool", 0, member<offsetof(VItem, flag)>()},
    {u"code", 2, u"k_UInt16", 0, member<offsetof(VItem, code)>()},
    {u"name", 2, u"kstd_unicodeString", 0, member<offsetof(VItem, name)>()},
    {u"samples", 2, u"kstd_vectord", 0,
     member<offsetof(VItem, samples)>(kstd_persistentTypeRegisterType_kstd_vectord)},
    {u"left", 2, u"kstd_ptrh", 0, member<offsetof(VItem, left)>()},
    {u"right", 2, u"kstd_ptrh", 0, member<offsetof(VItem, right)>()},
};
const kstd_persistentStaticPropertyList itemProperties{itemDefinitions, std::size(itemDefinitions)};

// The root's items: an array (derivation 2) of shared pointers in a container.
const kstd_persistentPropertyInfoDefinition rootDefinitions[]{
    {u"items", 2, u"kstd_ptrh", 2, accessors({{7, word(locateItems)}, {9, word(loadItems)}})},
};
const kstd_persistentStaticPropertyList rootProperties{rootDefinitions, std::size(rootDefinitions)};

struct Registered {
    uint32_t itemFlag, rootFlag;
    kstd_persistentType item, root, pointer;
};
Registered registered{};

kstd_result registerAll() {
    BENCH_TRY(kstd_persistentTypeRegisterTypeObjectDynamic(Traits<VItem>::name, &Operations<VItem>::objects,
                                                           &emptyAccess, &itemProperties, &Operations<VItem>::minimal,
                                                           0, &registered.itemFlag, &registered.item));
    BENCH_TRY(kstd_persistentTypeRegisterTypeObjectDynamic(Traits<VRoot>::name, &Operations<VRoot>::objects,
                                                           &emptyAccess, &rootProperties, &Operations<VRoot>::minimal,
                                                           0, &registered.rootFlag, &registered.root));
    BENCH_TRY(kstd_persistentType_construct(&registered.pointer));
    return kstd_persistentTypeGetType_kstd_ptrh(&registered.pointer, 1);
}

using vexpers::client::objectOf;

template <class T>
kstd_result make(kstd_ptrh* pointer, T** object) {
    return Operations<T>::make(pointer, object);
}

// A shared pointer to a BenchRoot, released without recursion: the items'
// links are cut first, so dropping the root frees each item on its own.
struct VGraph {
    kstd_ptrh root;
    VGraph() { kstd_ptrh_constructEmpty(&root); }
    VGraph(const VGraph&) = delete;
    VGraph& operator=(const VGraph&) = delete;
    ~VGraph() { release(); }
    void release() {
        if (VRoot* r = objectOf<VRoot>(root))
            for (intptr_t i = 0; i < r->items.count; ++i)
                if (VItem* t = objectOf<VItem>(r->items.items[i])) {
                    kstd_ptrh_reset(&t->left);
                    kstd_ptrh_reset(&t->right);
                }
        kstd_ptrh_reset(&root);
    }
};

kstd_result buildVexpers(const std::vector<ItemValues>& values, VGraph& graph) {
    VRoot* root = nullptr;
    BENCH_TRY(make(&graph.root, &root));
    BENCH_TRY(listResize(&root->items, static_cast<int64_t>(values.size())));
    std::vector<VItem*> items(values.size());
    for (size_t i = 0; i < values.size(); ++i) BENCH_TRY(make(&root->items.items[i], &items[i]));
    for (size_t i = 0; i < values.size(); ++i) {
        const ItemValues& v = values[i];
        VItem& t = *items[i];
        t.id = v.id;
        t.counter = v.counter;
        t.weight = v.weight;
        t.ratio = v.ratio;
        t.flag = v.flag ? 1 : 0;
        t.code = v.code;
        BENCH_TRY(kstd_unicodeString_assignStringW(&t.name, v.name16.c_str()));
        BENCH_TRY(kstd_vectord_assignElements(&t.samples, v.samples, v.samples + 16));
        if (v.left >= 0) BENCH_TRY(kstd_ptrh_assign(&t.left, &root->items.items[v.left]));
        if (v.right >= 0) BENCH_TRY(kstd_ptrh_assign(&t.right, &root->items.items[v.right]));
    }
    return 0;
}

std::string checkVexpers(const VGraph& graph, const std::vector<ItemValues>& values) {
    const VRoot* root = objectOf<VRoot>(graph.root);
    if (root == nullptr) return "no root";
    if (root->items.count != static_cast<intptr_t>(values.size())) return "item count";
    const kstd_ptrh* items = root->items.items;
    for (size_t i = 0; i < values.size(); ++i) {
        const ItemValues& v = values[i];
        const VItem* t = objectOf<VItem>(items[i]);
        if (t == nullptr) return "null item " + std::to_string(i);
        const char16_t* chars = nullptr;
        int32_t length = 0;
        kstd_unicodeString_getStringW(&t->name, &chars, &length);
        if (t->id != v.id || t->counter != v.counter || t->weight != v.weight || t->ratio != v.ratio ||
            (t->flag != 0) != v.flag || t->code != v.code || chars == nullptr ||
            std::u16string(chars, static_cast<size_t>(length)) != v.name16)
            return "scalar or name of item " + std::to_string(i);
        const double* samples = nullptr;
        intptr_t size = 0;
        kstd_vectord_getBeginSizeIntPtrConst(&t->samples, &samples, &size);
        if (size != 16 || !std::equal(samples, samples + 16, v.samples)) return "samples of item " + std::to_string(i);
        const kstd_shared* l = v.left >= 0 ? items[v.left].shared : nullptr;
        const kstd_shared* r = v.right >= 0 ? items[v.right].shared : nullptr;
        if (t->left.shared != l || t->right.shared != r) return "sharing of item " + std::to_string(i);
    }
    return {};
}

// ---- Cases ---------------------------------------------------------------------------------

using Clock = std::chrono::steady_clock;
double seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

struct Timing {
    double write = 0;  // seconds
    double read = 0;
    size_t bytes = 0;
    double phases[4] = {0, 0, 0, 0};  // vexpers: decompose, write, read, compose (each with its tree reset)
    std::string failure;  // empty when the copy agreed
};

struct Data {
    std::vector<ItemValues> values;
    Graph plain;
    VGraph vexpers;
};

Timing vexpersCase(Data& data, uint32_t format, bool check) {
    Timing timing;
    kstd_persistentPropertyTree tree;
    kstd_persistentPropertyTree_construct(&tree);
    kfmt_memoryWriter writer{};
    kfmt_sink sink{};
    kfmt_sink_initMemory(&sink, &writer);
    kfmt_report report{};
    VGraph copy;

    auto start = Clock::now();
    kstd_persistentProperty property;
    kstd_persistentProperty_construct(&property);
    kstd_result result = kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property, u"root", 2, &data.vexpers.root);
    if (result >= 0) result = kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property);
    kstd_persistentProperty_destruct(&property);
    timing.phases[0] = seconds(start);
    // JSON on one line, as cereal's JSON is written without indentation.
    kfmt_options options{};
    kfmt_options_setDefaults(&options);
    options.flags = kfmt_flag_compact;
    if (result >= 0) result = kfmt_writeTree(&tree, format, &sink, &options, nullptr, &report);
    kstd_persistentPropertyTree_reset(&tree);
    timing.phases[1] = seconds(start) - timing.phases[0];
    timing.write = seconds(start);
    timing.bytes = writer.size;

    if (result >= 0) {
        start = Clock::now();
        kfmt_memoryReader reader;
        kfmt_source source;
        kfmt_source_initMemory(&source, &reader, writer.data, writer.size);
        result = kfmt_readTree(&tree, format, &source, nullptr, nullptr, &report);
        timing.phases[2] = seconds(start);
        if (result >= 0)
            result = kstd_persistentType_loadPropertyNode(&registered.pointer, &copy.root, tree.firstChild);
        kstd_persistentPropertyTree_reset(&tree);
        timing.read = seconds(start);
        timing.phases[3] = timing.read - timing.phases[2];
    }
    if (result < 0) {
        char text[400];
        std::snprintf(text, sizeof text, "vexpers result 0x%08" PRIx32 " %s", static_cast<uint32_t>(result),
                      report.message);
        timing.failure = text;
    } else if (check) {
        timing.failure = checkVexpers(copy, data.values);
    }
    kstd_persistentPropertyTree_destruct(&tree);
    kfmt_memoryWriter_release(&writer);
    return timing;
}

template <class Write, class Read>
Timing plainCase(Data& data, bool check, Write write, Read read) {
    Timing timing;
    std::string bytes;
    Graph copy;
    auto start = Clock::now();
    {
        std::ostringstream out;
        write(out, data.plain);
        bytes = std::move(out).str();
    }
    timing.write = seconds(start);
    timing.bytes = bytes.size();
    start = Clock::now();
    {
        std::istringstream in(std::move(bytes));
        read(in, copy);
    }
    timing.read = seconds(start);
    if (check) timing.failure = checkPlain(copy, data.values);
    releasePlain(copy);
    return timing;
}

struct Case {
    const char* name;
    bool peer;        // runs on the raised-stack thread
    bool text;        // a slow text peer may be skipped at the largest size
    std::function<Timing(Data&, bool)> run;
};

std::vector<Case> cases() {
    std::vector<Case> all;
    all.push_back({"vexpers binary", false, false,
                   [](Data& d, bool check) { return vexpersCase(d, kfmt_format_binary, check); }});
    all.push_back({"vexpers JSON", false, false,
                   [](Data& d, bool check) { return vexpersCase(d, kfmt_format_json, check); }});
#if VEXPERS_HAVE_CEREAL
    all.push_back({"cereal binary", true, false, [](Data& d, bool check) {
                       return plainCase(
                           d, check,
                           [](std::ostream& out, const Graph& g) {
                               cereal::BinaryOutputArchive archive(out);
                               archive(g);
                           },
                           [](std::istream& in, Graph& g) {
                               cereal::BinaryInputArchive archive(in);
                               archive(g);
                           });
                   }});
    all.push_back({"cereal JSON", true, true, [](Data& d, bool check) {
                       return plainCase(
                           d, check,
                           [](std::ostream& out, const Graph& g) {
                               cereal::JSONOutputArchive archive(out, cereal::JSONOutputArchive::Options::NoIndent());
                               archive(cereal::make_nvp("items", g));
                           },
                           [](std::istream& in, Graph& g) {
                               cereal::JSONInputArchive archive(in);
                               archive(cereal::make_nvp("items", g));
                           });
                   }});
#endif
#if VEXPERS_HAVE_BOOST_SERIALIZATION
    all.push_back({"Boost binary", true, false, [](Data& d, bool check) {
                       return plainCase(
                           d, check,
                           [](std::ostream& out, const Graph& g) {
                               boost::archive::binary_oarchive archive(out);
                               archive << g;
                           },
                           [](std::istream& in, Graph& g) {
                               boost::archive::binary_iarchive archive(in);
                               archive >> g;
                           });
                   }});
#endif
    return all;
}

// Runs `work` on a thread with a stack of `bytes`.
void onStack(size_t bytes, const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    pthread_t thread;
    auto body = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, body, const_cast<std::function<void()>*>(&work)) != 0) {
        std::fprintf(stderr, "cannot start a thread with a %zu-byte stack\n", bytes);
        std::exit(2);
    }
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

Timing runCase(const Case& c, Data& data, bool check, size_t stack) {
    if (!c.peer) return c.run(data, check);
    Timing timing;
    onStack(stack, [&] { timing = c.run(data, check); });
    return timing;
}

void prepare(Data& data, int64_t n, bool plain, bool vexpers) {
    data.values = generate(n);
    if (plain) data.plain = buildPlain(data.values);
    if (vexpers) {
        if (const kstd_result result = buildVexpers(data.values, data.vexpers); result < 0) {
            std::fprintf(stderr, "building the vexpers graph failed: 0x%08" PRIx32 "\n", static_cast<uint32_t>(result));
            std::exit(2);
        }
    }
}

// ---- One case in its own process: peak memory --------------------------------------------

long residentKiB(const char* field) {
    FILE* file = std::fopen("/proc/self/status", "r");
    if (file == nullptr) return -1;
    char line[256];
    long value = -1;
    const size_t length = std::strlen(field);
    while (std::fgets(line, sizeof line, file) != nullptr)
        if (std::strncmp(line, field, length) == 0) value = std::strtol(line + length, nullptr, 10);
    std::fclose(file);
    return value;
}

// Prints "peak <KiB of peak resident memory> <KiB the round trip added above the
// built graph>". The peak is this process's own high-water mark: ru_maxrss
// would also count the parent's memory at the fork, which exec carries over.
int caseProcess(const char* name, int64_t n, size_t stack) {
    for (const Case& c : cases()) {
        if (std::strcmp(c.name, name) != 0) continue;
        Data data;
        prepare(data, n, c.peer, !c.peer);
        const long before = residentKiB("VmRSS:");
        const long preparedHigh = residentKiB("VmHWM:");
        // Start the high-water mark again from the current size (Linux 4.0+).
        if (FILE* clear = std::fopen("/proc/self/clear_refs", "w")) {
            std::fputs("5", clear);
            std::fclose(clear);
        }
        const Timing timing = runCase(c, data, false, stack);
        const long high = residentKiB("VmHWM:");
        if (!timing.failure.empty()) {
            std::printf("failed %s\n", timing.failure.c_str());
            return 1;
        }
        std::printf("peak %ld %ld\n", std::max(preparedHigh, high), high - before);
        if (!c.peer)
            std::fprintf(stderr, "%s phases ns/object: decompose %.0f, write %.0f, read %.0f, compose %.0f\n",
                         c.name, timing.phases[0] * 1e9 / n, timing.phases[1] * 1e9 / n, timing.phases[2] * 1e9 / n,
                         timing.phases[3] * 1e9 / n);
        return 0;
    }
    std::fprintf(stderr, "no case %s\n", name);
    return 2;
}

// Runs this program again for one case; returns its output, or how it died.
std::string childRun(const char* name, int64_t n, size_t stack) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) return "pipe failed";
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        const std::string count = std::to_string(n), stackText = std::to_string(stack);
        execl("/proc/self/exe", "roundtrip_compare", "--case", name, "--n", count.c_str(), "--stack",
              stackText.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipeEnds[1]);
    std::string output;
    char buffer[512];
    ssize_t got;
    while ((got = read(pipeEnds[0], buffer, sizeof buffer)) > 0) output.append(buffer, static_cast<size_t>(got));
    close(pipeEnds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return std::string("killed by signal ") + std::to_string(WTERMSIG(status)) +
                                    (WTERMSIG(status) == SIGSEGV ? " (SIGSEGV: stack overflow)" : "");
    return output;
}

// ---- The main run --------------------------------------------------------------------------

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t m = values.size() / 2;
    return values.size() % 2 != 0 ? values[m] : (values[m - 1] + values[m]) / 2;
}

std::vector<int64_t> parseSizes(const char* text) {
    std::vector<int64_t> sizes;
    std::stringstream in(text);
    std::string part;
    while (std::getline(in, part, ',')) sizes.push_back(static_cast<int64_t>(std::stod(part)));
    return sizes;
}

}  // namespace

#if VEXPERS_HAVE_BOOST_SERIALIZATION
namespace boost::serialization {
template <class Archive>
void serialize(Archive& archive, Item& item, unsigned) {
    archive & item.id & item.counter & item.weight & item.ratio & item.flag & item.code & item.name & item.samples &
        item.left & item.right;
}
}  // namespace boost::serialization
#endif

int main(int argc, char** argv) {
    std::vector<int64_t> sizes{1000, 10000, 100000, 1000000};
    int reps = 5;
    bool memory = true, probe = true;
    const char* caseName = nullptr;
    const char* lockPath = nullptr;
    int64_t caseN = 0;
    size_t stack = peerStackBytes;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (a == "--sizes" && value) sizes = parseSizes(argv[++i]);
        else if (a == "--reps" && value) reps = std::max(1, std::atoi(argv[++i]));
        else if (a == "--case" && value) caseName = argv[++i];
        else if (a == "--n" && value) caseN = static_cast<int64_t>(std::stod(argv[++i]));
        else if (a == "--stack" && value) stack = std::strtoull(argv[++i], nullptr, 10);
        else if (a == "--lock" && value) lockPath = argv[++i];
        else if (a == "--no-memory") memory = false;
        else if (a == "--no-probe") probe = false;
        else {
            std::fprintf(stderr,
                         "usage: roundtrip_compare [--sizes 1000,1e4,...] [--reps R] [--no-memory] [--no-probe] [--lock FILE]\n"
                         "       roundtrip_compare --case NAME --n N [--stack BYTES]\n");
            return 2;
        }
    }
    if (const kstd_result result = registerAll(); result < 0) {
        std::fprintf(stderr, "registering the model failed: 0x%08" PRIx32 "\n", static_cast<uint32_t>(result));
        return 2;
    }
    if (caseName != nullptr) return caseProcess(caseName, caseN, stack);

    const std::vector<Case> all = cases();
    struct rlimit limit {};
    getrlimit(RLIMIT_STACK, &limit);
    std::printf("round trip of the standard graph (mt19937_64 seed 12345), medians of %d interleaved runs\n", reps);
    std::printf("vexpers on the main thread, stack limit %.0f MiB; peers on a thread with a %.0f MiB stack\n",
                limit.rlim_cur == RLIM_INFINITY ? -1.0 : static_cast<double>(limit.rlim_cur) / (1 << 20),
                static_cast<double>(stack) / (1 << 20));
    std::printf("cases:");
    for (const Case& c : all) std::printf(" [%s]", c.name);
    std::printf("\n");

    for (int64_t n : sizes) {
        Data data;
        prepare(data, n, true, true);
        std::printf("\nN = %" PRId64 "   depth-first nesting %" PRId64 "\n", n, nestingDepth(data.values));
        std::vector<std::vector<double>> writes(all.size()), reads(all.size());
        std::vector<size_t> bytes(all.size(), 0);
        std::vector<std::string> notes(all.size());
        std::vector<bool> skipped(all.size(), false);
        for (int rep = 0; rep < reps; ++rep) {
            int lock = lockPath != nullptr ? open(lockPath, O_RDWR | O_CREAT, 0666) : -1;
            if (lock >= 0) flock(lock, LOCK_EX);
            for (size_t k = 0; k < all.size(); ++k) {
                if (skipped[k]) continue;
                const Timing t = runCase(all[k], data, rep == 0, stack);
                if (!t.failure.empty()) {
                    std::printf("  %s: FAILED: %s\n", all[k].name, t.failure.c_str());
                    return 1;
                }
                writes[k].push_back(t.write);
                reads[k].push_back(t.read);
                bytes[k] = t.bytes;
                if (all[k].text && t.write + t.read > slowRunSeconds) {
                    skipped[k] = true;
                    char text[120];
                    std::snprintf(text, sizeof text, "one run took %.1f s (> %.0f s): further runs skipped",
                                  t.write + t.read, slowRunSeconds);
                    notes[k] = text;
                }
            }
            if (lock >= 0) close(lock);  // releases the lock
        }
        const double perObject = 1e9 / static_cast<double>(n);
        std::vector<double> total(all.size());
        std::printf("  %-16s %12s %12s %12s %10s %6s\n", "case", "write ns/obj", "read ns/obj", "round ns/obj",
                    "bytes/obj", "runs");
        for (size_t k = 0; k < all.size(); ++k) {
            const double w = median(writes[k]) * perObject, r = median(reads[k]) * perObject;
            total[k] = w + r;
            std::printf("  %-16s %12.0f %12.0f %12.0f %10.1f %6zu%s%s\n", all[k].name, w, r, w + r,
                        static_cast<double>(bytes[k]) / static_cast<double>(n), writes[k].size(),
                        notes[k].empty() ? "" : "  ", notes[k].c_str());
        }
        for (size_t v = 0; v < all.size(); ++v) {
            if (all[v].peer) continue;
            for (size_t p = 0; p < all.size(); ++p) {
                if (!all[p].peer) continue;
                const double w = median(writes[v]) / median(writes[p]), r = median(reads[v]) / median(reads[p]);
                std::printf("  ratio %-14s / %-14s  write %5.2f  read %5.2f  round trip %5.2f  bytes %5.2f\n",
                            all[v].name, all[p].name, w, r, total[v] / total[p],
                            static_cast<double>(bytes[v]) / static_cast<double>(bytes[p]));
            }
        }
        if (memory) {
            for (const Case& c : all) {
                const std::string out = childRun(c.name, n, stack);
                long peak = 0, added = 0;
                if (std::sscanf(out.c_str(), "peak %ld %ld", &peak, &added) == 2)
                    std::printf("  peak memory %-16s resident %8.1f MiB, round trip added %8.1f MiB\n", c.name,
                                peak / 1024.0, added / 1024.0);
                else
                    std::printf("  peak memory %-16s %s\n", c.name, out.c_str());
            }
        }
    }
    if (probe) {
        // The peers on an ordinary 8 MiB stack, each in its own process.
        std::printf("\npeers on an 8 MiB thread stack (each in its own process):\n");
        for (int64_t n : sizes) {
            if (n < 100000) continue;
            for (const Case& c : all) {
                if (!c.peer) continue;
                std::string out = childRun(c.name, n, size_t{8} << 20);
                if (out.rfind("peak", 0) == 0) out = "ok";
                while (!out.empty() && out.back() == '\n') out.pop_back();
                std::printf("  N = %-8" PRId64 " %-16s %s\n", n, c.name, out.c_str());
            }
        }
    }
    return 0;
}
