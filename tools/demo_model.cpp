#include "demo_model.hpp"

#include "client_object.hpp"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vexpers::demo {
namespace {

#define DEMO_TRY(expression)                        \
    do {                                            \
        const kstd_result demoTry_ = (expression);  \
        if (demoTry_ < 0) return demoTry_;          \
    } while (0)

using client::accessors;
using client::loadAt;
using client::member;
using client::word;

// ---- Object operations of the three shared types, from one template ----------------

template <class T>
struct Traits;

template <class T>
using Operations = client::ObjectOperations<T, Traits<T>>;

template <>
struct Traits<Material> {
    static constexpr const char16_t* name = u"DemoMaterial";
    static kstd_result construct(Material& m) {
        DEMO_TRY(kstd_unicodeString_construct(&m.name));
        return kstd_vectord_construct(&m.color);
    }
    static kstd_result destruct(Material& m) {
        kstd_unicodeString_destruct(&m.name);
        return kstd_vectord_destruct(&m.color);
    }
};

template <>
struct Traits<Node> {
    static constexpr const char16_t* name = u"DemoNode";
    static kstd_result construct(Node& n) {
        DEMO_TRY(kstd_unicodeString_construct(&n.name));
        DEMO_TRY(kstd_vectord_construct(&n.transform));
        DEMO_TRY(kstd_vector_kstd_unicodeString_construct(&n.tags));
        // Empty pointers still name what they point at.
        DEMO_TRY(kstd_ptrh_constructBaseTypename(&n.material, nullptr, u"DemoMaterial"));
        DEMO_TRY(kstd_ptrh_constructBaseTypename(&n.parent, nullptr, u"DemoNode"));
        DEMO_TRY(kstd_ptrh_constructBaseTypename(&n.firstChild, nullptr, u"DemoNode"));
        return kstd_ptrh_constructBaseTypename(&n.nextSibling, nullptr, u"DemoNode");
    }
    static kstd_result destruct(Node& n) {
        kstd_unicodeString_destruct(&n.name);
        kstd_vectord_destruct(&n.transform);
        kstd_vector_kstd_unicodeString_destruct(&n.tags);
        kstd_ptrh_destruct(&n.material);
        kstd_ptrh_destruct(&n.parent);
        kstd_ptrh_destruct(&n.firstChild);
        return kstd_ptrh_destruct(&n.nextSibling);
    }
};

template <>
struct Traits<Scene> {
    static constexpr const char16_t* name = u"DemoScene";
    static kstd_result construct(Scene& s) {
        DEMO_TRY(kstd_unicodeString_construct(&s.title));
        DEMO_TRY(kstd_ptrh_constructBaseTypename(&s.root, nullptr, u"DemoNode"));
        DEMO_TRY(kstd_ptrh_constructBaseTypename(&s.camera, nullptr, u"DemoNode"));
        return kstd_ptrh_constructBaseTypename(&s.environment, nullptr, u"DemoMaterial");
    }
    static kstd_result destruct(Scene& s) {
        kstd_unicodeString_destruct(&s.title);
        kstd_ptrh_destruct(&s.root);
        kstd_ptrh_destruct(&s.camera);
        return kstd_ptrh_destruct(&s.environment);
    }
};

// ---- Enum and bit field ----------------------------------------------------------------

kstd_result kindValue(const void* object, int64_t* value) {
    *value = static_cast<const Node*>(object)->kind;
    return 0;
}
kstd_result flagsValue(const void* object, uint64_t* value) {
    *value = static_cast<const Node*>(object)->flags;
    return 0;
}

constexpr kstd_persistentValueAccessVtable emptyAccess{};

// An enum's stored value is its own object: one property "value" at offset 0.
const kstd_persistentPropertyInfoDefinition enumValue[]{{u"value", 2, u"k_Int64", 0, member<0>()}};
const kstd_persistentPropertyInfoDefinition bitsValue[]{{u"value", 2, u"k_UInt64", 0, member<0>()}};
const kstd_persistentStaticPropertyList enumProperties{enumValue, 1};
const kstd_persistentStaticPropertyList bitsProperties{bitsValue, 1};

struct Registered {
    uint32_t kindFlag, kindBitsFlag, flagsFlag, flagsBitsFlag, materialFlag, nodeFlag, sceneFlag;
    kstd_persistentType kind, kindBits, flags, flagsBits, material, node, scene, pointer;
    kstd_result result;
};
Registered registered{};

kstd_result registerKind() {
    return kstd_persistentTypeRegisterTypeEnum(u"DemoKind", 0, 0, 0, 0, &emptyAccess, &emptyAccess, &enumProperties,
                                               &bitsProperties, &registered.kindFlag, &registered.kindBitsFlag,
                                               &registered.kind, &registered.kindBits);
}
kstd_result registerFlags() {
    return kstd_persistentTypeRegisterTypeEnum(u"DemoFlags", 0, 0, 0, 0, &emptyAccess, &emptyAccess, &enumProperties,
                                               &bitsProperties, &registered.flagsFlag, &registered.flagsBitsFlag,
                                               &registered.flags, &registered.flagsBits);
}

// ---- Declared properties -----------------------------------------------------------------

const kstd_persistentPropertyInfoDefinition materialProperties[]{
    {u"name", 2, u"kstd_unicodeString", 0, member<offsetof(Material, name)>()},
    {u"color", 2, u"kstd_vectord", 0, member<offsetof(Material, color)>(kstd_persistentTypeRegisterType_kstd_vectord)},
    {u"roughness", 2, u"double", 0, member<offsetof(Material, roughness)>()},
};

const kstd_persistentPropertyInfoDefinition nodeProperties[]{
    {u"name", 2, u"kstd_unicodeString", 0, member<offsetof(Node, name)>()},
    {u"kind", 2, u"DemoKind", 0,
     accessors({{0, word(kindValue)}, {8, word(loadAt<offsetof(Node, kind)>)}, {10, word(registerKind)}})},
    {u"flags", 2, u"DemoFlags", kstd_persistentTypeDerivation_bitfield,
     accessors({{2, word(flagsValue)}, {8, word(loadAt<offsetof(Node, flags)>)}, {10, word(registerFlags)}})},
    {u"transform", 2, u"kstd_vectord", 0,
     member<offsetof(Node, transform)>(kstd_persistentTypeRegisterType_kstd_vectord)},
    {u"tags", 2, u"kstd_vector_kstd_unicodeString", 0,
     member<offsetof(Node, tags)>(kstd_persistentTypeRegisterType_kstd_vector_kstd_unicodeString)},
    {u"material", 2, u"kstd_ptrh", 0, member<offsetof(Node, material)>()},
    {u"parent", 2, u"kstd_ptrh", 0, member<offsetof(Node, parent)>()},
    {u"firstChild", 2, u"kstd_ptrh", 0, member<offsetof(Node, firstChild)>()},
    {u"nextSibling", 2, u"kstd_ptrh", 0, member<offsetof(Node, nextSibling)>()},
};

const kstd_persistentPropertyInfoDefinition sceneProperties[]{
    {u"title", 2, u"kstd_unicodeString", 0, member<offsetof(Scene, title)>()},
    {u"version", 2, u"k_Int32", 0, member<offsetof(Scene, version)>()},
    {u"root", 2, u"kstd_ptrh", 0, member<offsetof(Scene, root)>()},
    {u"camera", 2, u"kstd_ptrh", 0, member<offsetof(Scene, camera)>()},
    {u"environment", 2, u"kstd_ptrh", 0, member<offsetof(Scene, environment)>()},
};

template <class T, size_t N>
kstd_result registerObject(const kstd_persistentPropertyInfoDefinition (&definitions)[N], uint32_t* flag,
                           kstd_persistentType* type) {
    static const kstd_persistentStaticPropertyList list{definitions, static_cast<uint32_t>(N)};
    return kstd_persistentTypeRegisterTypeObjectDynamic(Traits<T>::name, &Operations<T>::objects, &emptyAccess,
                                                        &list, &Operations<T>::minimal, 0, flag, type);
}

kstd_result registerAll() {
    DEMO_TRY(registerKind());
    DEMO_TRY(registerFlags());
    DEMO_TRY(registerObject<Material>(materialProperties, &registered.materialFlag, &registered.material));
    DEMO_TRY(registerObject<Node>(nodeProperties, &registered.nodeFlag, &registered.node));
    DEMO_TRY(registerObject<Scene>(sceneProperties, &registered.sceneFlag, &registered.scene));
    DEMO_TRY(kstd_persistentType_construct(&registered.pointer));
    return kstd_persistentTypeGetType_kstd_ptrh(&registered.pointer, 1);
}

// ---- Building ----------------------------------------------------------------------------

using vexpers::client::objectOf;

template <class T>
kstd_result make(kstd_ptrh* pointer, T** object) {
    return Operations<T>::make(pointer, object);
}

struct PointerHolder {
    kstd_ptrh p;
    PointerHolder() { kstd_ptrh_constructEmpty(&p); }
    PointerHolder(const PointerHolder& other) { kstd_ptrh_constructCopy(&p, &other.p); }
    PointerHolder& operator=(const PointerHolder&) = delete;
    ~PointerHolder() { kstd_ptrh_destruct(&p); }
};

kstd_result text(kstd_unicodeString* target, const std::u16string& value) {
    return kstd_unicodeString_assignStringW(target, value.c_str());
}

std::u16string numbered(const char16_t* prefix, int64_t number) {
    std::u16string result = prefix;
    for (char c : std::to_string(number)) result.push_back(static_cast<char16_t>(c));
    return result;
}

const char16_t* kindNames[] = {u"group", u"mesh", u"light", u"camera"};

kstd_result fillMaterial(Material& m, int64_t index) {
    DEMO_TRY(text(&m.name, numbered(u"material-", index)));
    const double shade = static_cast<double>(index % 10) / 10.0;
    DEMO_TRY(kstd_vectord_pushBack(&m.color, 0.1 + shade));
    DEMO_TRY(kstd_vectord_pushBack(&m.color, 0.5));
    DEMO_TRY(kstd_vectord_pushBack(&m.color, 1.0 - shade / 3.0));
    DEMO_TRY(kstd_vectord_pushBack(&m.color, 1.0));
    m.roughness = 0.05 * static_cast<double>(index % 20);
    return 0;
}

kstd_result fillNode(Node& n, int64_t index) {
    DEMO_TRY(text(&n.name, numbered(u"node-", index)));
    n.kind = index == 0 ? group : static_cast<int64_t>(index % 4);
    uint64_t flags = visible;
    if (index % 2 != 0) flags |= castsShadow;
    if (index % 3 == 0) flags |= selectable;
    if (index % 7 == 0) flags |= locked;
    n.flags = flags;
    const double x = static_cast<double>(index) * 1.5;
    const double y = static_cast<double>(index % 10) * 0.25;
    const double z = -static_cast<double>(index) / 3.0;
    const double row[12] = {1, 0, 0, x, 0, std::cos(0.1 * static_cast<double>(index)), 0, y, 0, 0, 1, z};
    DEMO_TRY(kstd_vectord_assignElements(&n.transform, row, row + 12));
    // Every fifth node has no tags (an empty array); some have text beyond ASCII.
    if (index % 5 != 4) {
        kstd_unicodeString tag;
        DEMO_TRY(kstd_unicodeString_construct(&tag));
        kstd_result result = text(&tag, kindNames[n.kind]);
        if (result >= 0) result = kstd_vector_kstd_unicodeString_pushBack(&n.tags, &tag);
        if (result >= 0 && index % 3 == 0) result = text(&tag, u"sélection ✓");
        if (result >= 0 && index % 3 == 0) result = kstd_vector_kstd_unicodeString_pushBack(&n.tags, &tag);
        kstd_unicodeString_destruct(&tag);
        DEMO_TRY(result);
    }
    return 0;
}

// Every node reachable from the root, in a fixed order, without recursion.
void collectNodes(const kstd_ptrh& root, std::vector<Node*>& nodes) {
    std::vector<Node*> stack;
    if (Node* n = objectOf<Node>(root)) stack.push_back(n);
    while (!stack.empty()) {
        Node* n = stack.back();
        stack.pop_back();
        nodes.push_back(n);
        if (Node* s = objectOf<Node>(n->nextSibling)) stack.push_back(s);
        if (Node* c = objectOf<Node>(n->firstChild)) stack.push_back(c);
    }
}

std::u16string textOf(const kstd_unicodeString& s) {
    const char16_t* chars = nullptr;
    int32_t length = 0;
    kstd_unicodeString_getStringW(&s, &chars, &length);
    return chars != nullptr ? std::u16string(chars, static_cast<size_t>(length)) : std::u16string(u"\uFFFF(null)");
}

std::vector<double> valuesOf(const kstd_vectord& v) {
    const double* begin = nullptr;
    intptr_t size = 0;
    kstd_vectord_getBeginSizeIntPtrConst(&v, &begin, &size);
    return std::vector<double>(begin, begin + size);
}

std::vector<std::u16string> textsOf(const kstd_vector_kstd_unicodeString& v) {
    const kstd_unicodeString* begin = nullptr;
    intptr_t size = 0;
    kstd_vector_kstd_unicodeString_getBeginSizeIntPtrConst(&v, &begin, &size);
    std::vector<std::u16string> texts;
    for (intptr_t i = 0; i < size; ++i) texts.push_back(textOf(begin[i]));
    return texts;
}

std::string narrow(const std::u16string& text) {
    std::string result;
    for (char16_t c : text) result.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    return result;
}

// One copy per original: the first meeting fixes the pair.
template <class T>
bool samePair(std::unordered_map<const T*, const T*>& pairs, std::unordered_map<const T*, const T*>& reverse,
              const T* original, const T* copy) {
    if ((original == nullptr) != (copy == nullptr)) return false;
    if (original == nullptr) return true;
    if (original == copy) return false;  // composing makes new objects
    auto [at, added] = pairs.emplace(original, copy);
    auto [back, addedBack] = reverse.emplace(copy, original);
    return at->second == copy && back->second == original;
}

}  // namespace

kstd_result registerTypes() {
    static const kstd_result result = registerAll();
    return result;
}

const kstd_persistentType* pointerType() { return &registered.pointer; }

kstd_result buildScene(int64_t nodes, kstd_ptrh* scene, Census* census) {
    DEMO_TRY(registerTypes());
    if (nodes < 1) nodes = 1;
    *census = Census{};
    Scene* s = nullptr;
    DEMO_TRY(make(scene, &s));
    DEMO_TRY(text(&s->title, u"Demo scene"));
    s->version = 1;

    const int64_t materialCount = nodes / 16 > 3 ? nodes / 16 : 3;
    std::vector<PointerHolder> materials(static_cast<size_t>(materialCount));
    for (int64_t i = 0; i < materialCount; ++i) {
        Material* m = nullptr;
        DEMO_TRY(make(&materials[static_cast<size_t>(i)].p, &m));
        DEMO_TRY(fillMaterial(*m, i));
    }
    // Nodes in breadth-first order: node i's parent is (i - 1) / 4; each
    // parent links its first child, each child its next sibling.
    std::vector<PointerHolder> all(static_cast<size_t>(nodes));
    int64_t withMaterial = 0;
    for (int64_t i = 0; i < nodes; ++i) {
        Node* n = nullptr;
        kstd_ptrh* self = &all[static_cast<size_t>(i)].p;
        DEMO_TRY(make(self, &n));
        DEMO_TRY(fillNode(*n, i));
        // Groups have no material (a null pointer); the others share the
        // materials in turn.
        if (n->kind != group)
            DEMO_TRY(kstd_ptrh_assign(&n->material, &materials[static_cast<size_t>(withMaterial++ % materialCount)].p));
        if (i == 0) continue;
        const kstd_ptrh* parent = &all[static_cast<size_t>((i - 1) / 4)].p;
        DEMO_TRY(kstd_ptrh_assign(&n->parent, parent));
        if ((i - 1) % 4 == 0) DEMO_TRY(kstd_ptrh_assign(&objectOf<Node>(*parent)->firstChild, self));
        else DEMO_TRY(kstd_ptrh_assign(&objectOf<Node>(all[static_cast<size_t>(i - 1)].p)->nextSibling, self));
    }
    DEMO_TRY(kstd_ptrh_assign(&s->root, &all[0].p));
    DEMO_TRY(kstd_ptrh_assign(&s->camera, &all[static_cast<size_t>(nodes > 3 ? 3 : nodes - 1)].p));
    census->nodes = nodes;
    census->materials = withMaterial < materialCount ? withMaterial : materialCount;
    return 0;
}

std::string compareScenes(const kstd_ptrh& original, const kstd_ptrh& copy, Census* census) {
    *census = Census{};
    const Scene* a = objectOf<Scene>(original);
    const Scene* b = objectOf<Scene>(copy);
    if (a == nullptr || b == nullptr) return "no scene";
    if (a == b) return "the copy is the original";
    if (textOf(a->title) != textOf(b->title) || a->version != b->version) return "scene title or version";
    if (b->environment.shared != nullptr) return "the environment pointer is not null";

    std::vector<Node*> originals, copies;
    collectNodes(a->root, originals);
    collectNodes(b->root, copies);
    if (originals.size() != copies.size()) return "node count";
    std::unordered_map<const Node*, const Node*> nodePairs, nodeBack;
    std::unordered_map<const Material*, const Material*> materialPairs, materialBack;
    for (size_t i = 0; i < originals.size(); ++i)
        if (!samePair<Node>(nodePairs, nodeBack, originals[i], copies[i])) return "node identity";
    for (size_t i = 0; i < originals.size(); ++i) {
        const Node& x = *originals[i];
        const Node& y = *copies[i];
        const std::string where = " of " + narrow(textOf(x.name));
        if (textOf(x.name) != textOf(y.name)) return "name" + where;
        if (x.kind != y.kind) return "kind" + where;
        if (x.flags != y.flags) return "flags" + where;
        if (valuesOf(x.transform) != valuesOf(y.transform)) return "transform" + where;
        if (textsOf(x.tags) != textsOf(y.tags)) return "tags" + where;
        const Node* parent = objectOf<Node>(x.parent);
        const Node* copyParent = objectOf<Node>(y.parent);
        if ((parent == nullptr) != (copyParent == nullptr) || (parent != nullptr && nodePairs[parent] != copyParent))
            return "parent" + where;
        const Material* m = objectOf<Material>(x.material);
        const Material* cm = objectOf<Material>(y.material);
        if (!samePair<Material>(materialPairs, materialBack, m, cm)) return "shared material" + where;
        if (m != nullptr && (textOf(m->name) != textOf(cm->name) || valuesOf(m->color) != valuesOf(cm->color) ||
                             m->roughness != cm->roughness))
            return "material values" + where;
    }
    const Node* camera = objectOf<Node>(a->camera);
    if (camera == nullptr || nodePairs[camera] != objectOf<Node>(b->camera)) return "camera";
    census->nodes = static_cast<int64_t>(copies.size());
    census->materials = static_cast<int64_t>(materialPairs.size());
    return {};
}

void releaseScene(kstd_ptrh* scene) {
    if (Scene* s = objectOf<Scene>(*scene)) {
        std::vector<Node*> nodes;
        collectNodes(s->root, nodes);
        // Keep every node alive while its links go, so that nothing is
        // destroyed through a chain of pointers.
        std::vector<PointerHolder> holders(nodes.size());
        for (size_t i = 0; i < nodes.size(); ++i) kstd_ptrh_assignShared(&holders[i].p, &nodes[i]->header);
        for (Node* n : nodes) {
            kstd_ptrh_reset(&n->parent);
            kstd_ptrh_reset(&n->firstChild);
            kstd_ptrh_reset(&n->nextSibling);
        }
    }
    kstd_ptrh_reset(scene);
}

void unlinkRecorded(const kstd_persistentPropertyTree* tree) {
    std::vector<const kstd_persistentPropertyNode*> stack;
    for (const kstd_persistentPropertyNode* n = tree->firstChild; n != nullptr; n = n->nextSibling) stack.push_back(n);
    kstd_persistentVariant recorded;
    kstd_persistentVariant_construct(&recorded);
    while (!stack.empty()) {
        const kstd_persistentPropertyNode* node = stack.back();
        stack.pop_back();
        for (const kstd_persistentPropertyNode* c = node->firstChild; c != nullptr; c = c->nextSibling)
            stack.push_back(c);
        uint32_t hasId = 0, isReference = 0;
        int64_t id = -1;
        if (kstd_persistentPropertyNode_getObjectId(node, &hasId, &id, &isReference) < 0 || hasId == 0 ||
            isReference != 0)
            continue;
        void* whole = nullptr;
        const char16_t* name = nullptr;
        if (kstd_persistentPropertyTree_getObjectById(tree, id, &recorded) < 0 ||
            kstd_persistentVariant_getWholeObject(&recorded, &whole) < 0 || whole == nullptr ||
            kstd_persistentType_getTypeName(&recorded.type, &name) < 0 || name == nullptr)
            continue;
        const std::u16string type = name;
        if (type == Traits<Node>::name) {
            Node* n = static_cast<Node*>(whole);
            kstd_ptrh_reset(&n->parent);
            kstd_ptrh_reset(&n->firstChild);
            kstd_ptrh_reset(&n->nextSibling);
            kstd_ptrh_reset(&n->material);
        } else if (type == Traits<Scene>::name) {
            Scene* scene = static_cast<Scene*>(whole);
            kstd_ptrh_reset(&scene->root);
            kstd_ptrh_reset(&scene->camera);
            kstd_ptrh_reset(&scene->environment);
        }
    }
    kstd_persistentVariant_destruct(&recorded);
}

}  // namespace vexpers::demo
