#include "tree/roundtrip_model.hpp"

#include <array>
#include <atomic>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

namespace vexpers::test::rt {
namespace {

std::atomic<int64_t> live{0};

// A member is stored by its address and loaded by loading its own type
// from its node, the way a client declares members.
using vexpers::client::loadAt;
using vexpers::client::member;

// ---- Object life cycles ---------------------------------------------------------------
// Node and Link are shared client objects (the client template gives their
// operations); Box and Item are plain ones.

// The shared pointers a node holds (its view aside).
std::array<kstd_ptrh*, 6> linksOf(Node* node) {
    Item* items = node->items.items;
    return {&node->next, &node->other, &items[0].link, &items[1].link, &items[2].link, &items[3].link};
}

template <class T>
struct Traits;
template <class T>
using Shared = vexpers::client::ObjectOperations<T, Traits<T>>;

template <>
struct Traits<Node> {
    static constexpr const char16_t* name = u"RtNode";
    static kstd_result construct(Node& node) {
        void* items = nullptr;
        RT_TRY(ksys_memory_alloc_internal(4 * sizeof(Item), &items));
        std::memset(items, 0, 4 * sizeof(Item));
        node.items.items = static_cast<Item*>(items);
        RT_TRY(kstd_unicodeString_construct(&node.name));
#define RT_CONSTRUCT(field, vector, element) RT_TRY(vector##_construct(&node.field));
        RT_SCALAR_VECTORS(RT_CONSTRUCT)
#undef RT_CONSTRUCT
        RT_TRY(kstd_vector_kstd_unicodeString_construct(&node.vstr));
        // An empty pointer still names the type it points at.
        for (kstd_ptrh* p : linksOf(&node)) RT_TRY(kstd_ptrh_constructBaseTypename(p, nullptr, u"RtNode"));
        RT_TRY(kstd_ptrhConst_constructBaseTypename(&node.view, nullptr, u"RtNode"));
        ++live;
        return 0;
    }
    static kstd_result destruct(Node& node) {
        kstd_unicodeString_destruct(&node.name);
#define RT_DESTRUCT(field, vector, element) vector##_destruct(&node.field);
        RT_SCALAR_VECTORS(RT_DESTRUCT)
#undef RT_DESTRUCT
        kstd_vector_kstd_unicodeString_destruct(&node.vstr);
        for (kstd_ptrh* p : linksOf(&node)) kstd_ptrh_destruct(p);
        kstd_ptrhConst_destruct(&node.view);
        void* items = node.items.items;
        --live;
        return ksys_memory_free_internal(&items);
    }
};

template <>
struct Traits<Link> {
    static constexpr const char16_t* name = u"RtLink";
    static kstd_result construct(Link& link) {
        ++live;
        return kstd_ptrh_constructBaseTypename(&link.next, nullptr, u"RtLink");
    }
    static kstd_result destruct(Link& link) {
        --live;
        return kstd_ptrh_destruct(&link.next);
    }
};

// Boxes are plain data; an item holds a pointer.
kstd_result construct(Item* item) {
    item->weight = 0;
    return kstd_ptrh_constructBaseTypename(&item->link, nullptr, u"RtNode");
}
kstd_result destruct(Item* item) { return kstd_ptrh_destruct(&item->link); }
kstd_result construct(Box* box) {
    *box = Box{};
    return 0;
}
kstd_result destruct(Box*) { return 0; }

template <class T>
kstd_result constructAt(void* object) {
    return construct(static_cast<T*>(object));
}
template <class T>
kstd_result destructAt(void* object) {
    return destruct(static_cast<T*>(object));
}
template <class T>
kstd_result deleteObject(void** object) {
    if (*object == nullptr) return 0;
    RT_TRY(destruct(static_cast<T*>(*object)));
    return ksys_memory_free_internal(object);
}
template <class T>
kstd_result newObject(void** object) {
    RT_TRY(deleteObject<T>(object));
    RT_TRY(ksys_memory_alloc_internal(sizeof(T), object));
    const kstd_result result = construct(static_cast<T*>(*object));
    if (result < 0) ksys_memory_free_internal(object);
    return result;
}
using Plain = Shared<Link>;  // its refusals of copies serve the plain types too
template <class T>
constexpr kstd_persistentObjectVtable objects{sizeOf<T>,         constructAt<T>, Plain::notOffered,
                                              Plain::notOffered, destructAt<T>,  Plain::notOffered,
                                              newObject<T>,      Plain::notOfferedClone, deleteObject<T>};

template <class T>
void newShared(kstd_ptrh* pointer) {
    T* object = nullptr;
    ASSERT_EQ(Shared<T>::make(pointer, &object), 0);
}

// ---- Accessors that are not members by address --------------------------------------------

kstd_result colorValue(const void* object, int64_t* value) {
    *value = static_cast<const Node*>(object)->color;
    return 0;
}
kstd_result bitsValue(const void* object, uint64_t* value) {
    *value = static_cast<const Node*>(object)->bits;
    return 0;
}

// The container of object items inside Node, and its load entry: one item
// from each child of the array's node.
using ListTable = ListOperations<ItemList, Item, 4>;
kstd_result locateItems(void* object, void** first, void** second) {
    *first = &static_cast<Node*>(object)->items;
    *second = const_cast<kstd_persistentContainerVtable*>(&ListTable::table);
    return 0;
}
kstd_result loadItems(void*, void* first, void*, const kstd_persistentType* arrayType,
                      const kstd_persistentPropertyNode* node) {
    auto* list = static_cast<ItemList*>(first);
    int64_t count = 0;
    for (const kstd_persistentPropertyNode* child = node->firstChild; child != nullptr; child = child->nextSibling)
        ++count;
    RT_TRY(ListTable::resize(list, count));
    Type itemType;
    RT_TRY(kstd_persistentType_assignDifferentDerivation(itemType, arrayType, 0));
    Item* item = list->items;
    for (const kstd_persistentPropertyNode* child = node->firstChild; child != nullptr; child = child->nextSibling)
        RT_TRY(kstd_persistentType_loadPropertyNode(itemType, item++, child));
    return 0;
}

std::vector<AfterLoad> afterLoads;
kstd_result linkLoaded(void* object) {
    const Link* link = static_cast<const Link*>(object);
    afterLoads.push_back(AfterLoad{link->value, link->next.shared != nullptr});
    return 0;
}

constexpr kstd_persistentValueAccessVtable emptyAccess{};
constexpr kstd_persistentValueAccessVtable linkAccess{nullptr, nullptr, nullptr, nullptr,   nullptr,
                                                      nullptr, nullptr, linkLoaded, nullptr};

// ---- Declared properties ----------------------------------------------------------------

struct Registered {
    uint32_t colorFlag, colorBitsFlag, boxFlag, itemFlag, linkFlag, nodeFlag;
    kstd_persistentType color, colorBits, box, boxPointer, item, link, node, ptrh;
};
Registered registered{};

kstd_result registerColor();
kstd_result registerBox();
kstd_result registerItem();

const kstd_persistentPropertyInfoDefinition colorDefinitions[]{
    {u"value", 2, u"k_Int64", 0, member<0>()}};
const kstd_persistentStaticPropertyList colorProperties{colorDefinitions, 1};
const kstd_persistentPropertyInfoDefinition colorBitsDefinitions[]{
    {u"value", 2, u"k_UInt64", 0, member<0>()}};
const kstd_persistentStaticPropertyList colorBitsProperties{colorBitsDefinitions, 1};

const kstd_persistentPropertyInfoDefinition boxDefinitions[]{
    {u"width", 2, u"k_Int32", 0, member<offsetof(Box, width)>()},
    {u"height", 2, u"k_Int32", 0, member<offsetof(Box, height)>()}};
const kstd_persistentStaticPropertyList boxProperties{boxDefinitions, std::size(boxDefinitions)};

const kstd_persistentPropertyInfoDefinition itemDefinitions[]{
    {u"weight", 2, u"k_Int32", 0, member<offsetof(Item, weight)>()},
    {u"link", 2, u"kstd_ptrh", 0, member<offsetof(Item, link)>()}};
const kstd_persistentStaticPropertyList itemProperties{itemDefinitions, std::size(itemDefinitions)};

const kstd_persistentPropertyInfoDefinition linkDefinitions[]{
    {u"value", 2, u"k_Int32", 0, member<offsetof(Link, value)>()},
    {u"next", 2, u"kstd_ptrh", 0, member<offsetof(Link, next)>()}};
const kstd_persistentStaticPropertyList linkProperties{linkDefinitions, std::size(linkDefinitions)};

#define RT_NODE_MEMBER(field, typeName) {u"" #field, 2, typeName, 0, member<offsetof(Node, field)>()}
#define RT_NODE_SCALAR(field, type, typeName) RT_NODE_MEMBER(field, u"" #typeName),
#define RT_NODE_VECTOR(field, vector, element) \
    {u"" #field, 2, u"" #vector, 0, member<offsetof(Node, field)>(kstd_persistentTypeRegisterType_##vector)},

const kstd_persistentPropertyInfoDefinition nodeDefinitions[]{
    RT_SCALARS(RT_NODE_SCALAR)
    RT_NODE_MEMBER(name, u"kstd_unicodeString"),
    {u"color", 2, u"RtColor", 0,
     accessors({{0, word(colorValue)}, {8, word(loadAt<offsetof(Node, color)>)}, {10, word(registerColor)}})},
    {u"bits", 2, u"RtColor", 4, accessors({{2, word(bitsValue)}, {8, word(loadAt<offsetof(Node, bits)>)}})},
    RT_SCALAR_VECTORS(RT_NODE_VECTOR)
    {u"vstr", 2, u"kstd_vector_kstd_unicodeString", 0,
     member<offsetof(Node, vstr)>(kstd_persistentTypeRegisterType_kstd_vector_kstd_unicodeString)},
    RT_NODE_MEMBER(next, u"kstd_ptrh"),
    RT_NODE_MEMBER(other, u"kstd_ptrh"),
    RT_NODE_MEMBER(view, u"kstd_ptrhConst"),
    {u"box", 2, u"RtBox", 0, member<offsetof(Node, box)>(registerBox)},
    // The same member again: an object held by value, met twice.
    {u"sameBox", 2, u"RtBox", 0, member<offsetof(Node, box)>(registerBox)},
    {u"items", 2, u"RtItem", 2,
     accessors({{7, word(locateItems)}, {9, word(loadItems)}, {10, word(registerItem)}})},
};
const kstd_persistentStaticPropertyList nodeProperties{nodeDefinitions, std::size(nodeDefinitions)};

kstd_result registerColor() {
    return kstd_persistentTypeRegisterTypeEnum(u"RtColor", 1, 2, 3, 4, &emptyAccess, &emptyAccess, &colorProperties,
                                               &colorBitsProperties, &registered.colorFlag,
                                               &registered.colorBitsFlag, &registered.color, &registered.colorBits);
}
kstd_result registerBox() {
    return kstd_persistentTypeRegisterTypeObject(u"RtBox", &objects<Box>, &emptyAccess, &boxProperties, 1,
                                                 &registered.boxFlag, &registered.box);
}
kstd_result registerItem() {
    return kstd_persistentTypeRegisterTypeObject(u"RtItem", &objects<Item>, &emptyAccess, &itemProperties, 0,
                                                 &registered.itemFlag, &registered.item);
}

Types registerModule() {
    EXPECT_EQ(registerColor(), 0);
    EXPECT_EQ(registerBox(), 0);
    EXPECT_EQ(registerItem(), 0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"RtLink", &Shared<Link>::objects, &linkAccess,
                                                           &linkProperties, &Shared<Link>::minimal, 0,
                                                           &registered.linkFlag, &registered.link),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"RtNode", &Shared<Node>::objects, &emptyAccess,
                                                           &nodeProperties, &Shared<Node>::minimal, 0,
                                                           &registered.nodeFlag, &registered.node),
              0);
    for (kstd_persistentType* type : {&registered.ptrh, &registered.boxPointer}) kstd_persistentType_construct(type);
    EXPECT_EQ(kstd_persistentTypeGetType_kstd_ptrh(&registered.ptrh, 1), 0);
    EXPECT_EQ(kstd_persistentType_assignDifferentDerivation(&registered.boxPointer, &registered.box, 1), 0);
    return Types{&registered.node, &registered.box, &registered.boxPointer, &registered.item, &registered.ptrh};
}

std::u16string textOf(const kstd_unicodeString& text) {
    const char16_t* chars = nullptr;
    int32_t length = 0;
    kstd_unicodeString_getStringW(&text, &chars, &length);
    return chars != nullptr ? std::u16string(chars, static_cast<size_t>(length)) : std::u16string(u"(null)");
}

template <class V, class E>
std::vector<E> elementsOf(const V& vector, kstd_result (*getBeginSize)(const V*, const E**, intptr_t*)) {
    const E* begin = nullptr;
    intptr_t size = 0;
    getBeginSize(&vector, &begin, &size);
    return std::vector<E>(begin, begin + size);
}

}  // namespace

const Types& types() {
    static const Types module = registerModule();
    // What first uses make for good (late resolution of declared properties,
    // lazy registrations, interned names, the variant's cache of core types)
    // is made here by one round trip, before any leak check.
    static const bool warm = [] {
        Graph graph;
        Property root;
        Tree tree;
        SharedPointer copy;
        kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(root, u"root", 2, graph.a);
        kstd_persistentPropertyTree_resetDecomposeProperty(tree, root);
        kstd_persistentPropertyTree_forgetAllObjects(tree);
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(module.ptrh, copy, tree->firstChild), 0);
        unlinkRecorded(tree, 16);
        if (nodeOf(copy.v) != nullptr) unlinkNode(nodeOf(copy.v));
        return true;
    }();
    (void)warm;
    return module;
}

void newNode(kstd_ptrh* pointer) { newShared<Node>(pointer); }

void newChain(kstd_ptrh* head, int32_t length) {
    newShared<Link>(head);
    SharedPointer tail;
    kstd_ptrh_assign(tail, head);
    for (int32_t i = 1; i < length; ++i) {
        linkOf(tail.v)->value = i - 1;
        newShared<Link>(&linkOf(tail.v)->next);
        kstd_ptrh_assign(tail, &linkOf(tail.v)->next);
    }
    linkOf(tail.v)->value = -1;
}

Node* nodeOf(const kstd_ptrh& pointer) { return vexpers::client::objectOf<Node>(pointer); }
Link* linkOf(const kstd_ptrh& pointer) { return vexpers::client::objectOf<Link>(pointer); }
int64_t liveObjects() { return live.load(); }
std::vector<AfterLoad>& linkAfterLoads() { return afterLoads; }

void unlinkNode(Node* node) {
    for (kstd_ptrh* p : linksOf(node)) kstd_ptrh_reset(p);
    kstd_ptrhConst_reset(&node->view);
}

void releaseChain(kstd_ptrh* head) {
    while (head->shared != nullptr) {
        SharedPointer current;
        kstd_ptrh_assign(current, head);
        Link* link = linkOf(current.v);
        kstd_ptrh_assign(head, &link->next);
        kstd_ptrh_reset(&link->next);
    }
}

void unlinkRecorded(const kstd_persistentPropertyTree* tree, int64_t ids) {
    for (int64_t id = 0; id < ids; ++id) {
        Variant recorded;
        if (kstd_persistentPropertyTree_getObjectById(tree, id, recorded) < 0) continue;
        void* whole = nullptr;
        if (kstd_persistentVariant_getWholeObject(recorded, &whole) < 0 || whole == nullptr) continue;
        const std::u16string name = test::nameOf(recorded->type);
        if (name == u"RtNode") unlinkNode(static_cast<Node*>(whole));
        if (name == u"RtLink") kstd_ptrh_reset(&static_cast<Link*>(whole)->next);
    }
}

// Field-by-field comparison of the values of two nodes (pointers are not
// followed); empty when equal, else the first difference.
static std::string compareValues(const Node& e, const Node& a) {
#define RT_SAME(field) \
    if (!(e.field == a.field)) return "field " #field;
#define RT_SAME_SCALAR(field, type, typeName) RT_SAME(field)
    RT_SCALARS(RT_SAME_SCALAR) RT_SAME(color) RT_SAME(bits) RT_SAME(box.width) RT_SAME(box.height)
#undef RT_SAME_SCALAR
#undef RT_SAME
    if (e.items.count != a.items.count) return "item count";
    if (textOf(e.name) != textOf(a.name)) return "field name";
#define RT_SAME_VECTOR(field, vector, element)                                    \
    if (elementsOf<vector, element>(e.field, vector##_getBeginSizeIntPtrConst) != \
        elementsOf<vector, element>(a.field, vector##_getBeginSizeIntPtrConst))   \
        return "vector " #field;
    RT_SCALAR_VECTORS(RT_SAME_VECTOR)
#undef RT_SAME_VECTOR
    const auto strings = [](const Node& n) {
        std::vector<std::u16string> texts;
        for (const kstd_unicodeString& s : elementsOf<kstd_vector_kstd_unicodeString, kstd_unicodeString>(
                 n.vstr, kstd_vector_kstd_unicodeString_getBeginSizeIntPtrConst))
            texts.push_back(textOf(s));
        return texts;
    };
    if (strings(e) != strings(a)) return "vector vstr";
    for (intptr_t i = 0; i < e.items.count; ++i)
        if (e.items.items[i].weight != a.items.items[i].weight) return "item weight";
    return {};
}

Graph::Graph() {
    newNode(a);
    newNode(b);
    newNode(c);
    Node& na = *nodeOf(a.v);
    na.i8 = -128;
    na.i16 = -30000;
    na.i32 = std::numeric_limits<int32_t>::min();
    na.i64 = std::numeric_limits<int64_t>::min();
    na.u8 = 255;
    na.u16 = 65535;
    na.u32 = 4000000000u;
    na.u64 = std::numeric_limits<uint64_t>::max();
    na.flag = 5;  // a k_Bool keeps any value
    na.f = 0.1f;
    na.d = std::numeric_limits<double>::denorm_min();
    na.size = 12345678901ULL;
    kstd_unicodeString_assignStringW(&na.name, u"quote \" backslash \\ tab \t \U0001F600 \u00e4");
    na.color = 2;
    na.bits = 0x8000000000000005ULL;
    kstd_vector8s_pushBack(&na.v8s, -1);
    kstd_vector8_pushBack(&na.v8, 200);
    kstd_vector16s_pushBack(&na.v16s, -300);
    kstd_vector16_pushBack(&na.v16, 60000);
    // v32s stays empty: an empty array.
    kstd_vector32_pushBack(&na.v32, 7);
    kstd_vector64s_pushBack(&na.v64s, std::numeric_limits<int64_t>::min());
    kstd_vector64_pushBack(&na.v64, std::numeric_limits<uint64_t>::max());
    kstd_vectorIntPtrs_pushBack(&na.vps, -5);
    kstd_vectorIntPtr_pushBack(&na.vp, 5);
    kstd_vectorf_pushBack(&na.vf, 1.0f / 3.0f);
    for (double d : {-0.0, std::numeric_limits<double>::infinity(), 1e308}) kstd_vectord_pushBack(&na.vd, d);
    kstd_vectorb_pushBack(&na.vb, 1);
    kstd_vectorb_pushBack(&na.vb, 0);
    Text text;
    kstd_unicodeString_assignStringW(text, u"");
    kstd_vector_kstd_unicodeString_pushBack(&na.vstr, text);
    kstd_unicodeString_reset(text);  // the null string
    kstd_vector_kstd_unicodeString_pushBack(&na.vstr, text);
    kstd_ptrh_assign(&na.next, b);
    kstd_ptrh_assign(&na.other, b);
    kstd_ptrhConst_assignShared(&na.view, b->shared);
    na.box = Box{3, 4};
    na.items.count = 2;
    na.items.items[0].weight = 7;
    kstd_ptrh_assign(&na.items.items[0].link, c);
    na.items.items[1].weight = 9;
    kstd_ptrh_assign(&na.items.items[1].link, b);
    nodeOf(b.v)->i32 = 42;
    kstd_ptrh_assign(&nodeOf(b.v)->next, a);
    nodeOf(b.v)->box = Box{5, 6};
    kstd_unicodeString_assignStringW(&nodeOf(c.v)->name, u"C");
}

Graph::~Graph() {
    for (SharedPointer* p : {&a, &b, &c}) unlinkNode(nodeOf(p->v));
}

void expectCopyOf(const Graph& graph, const kstd_ptrh& root) {
    const Node* a = nodeOf(root);
    ASSERT_NE(a, nullptr);
    EXPECT_NE(a, nodeOf(graph.a.v)) << "composing makes new objects";
    EXPECT_EQ(compareValues(*nodeOf(graph.a.v), *a), "");
    const Node* b = nodeOf(a->next);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(compareValues(*nodeOf(graph.b.v), *b), "");
    // Pointers to one object are rebuilt as one object.
    EXPECT_EQ(a->other.shared, a->next.shared);
    EXPECT_EQ(a->view.shared, a->next.shared);
    EXPECT_EQ(a->items.items[1].link.shared, a->next.shared);
    EXPECT_EQ(b->next.shared, root.shared) << "the cycle is closed";
    EXPECT_EQ(b->other.shared, nullptr);
    EXPECT_EQ(b->view.shared, nullptr);
    const Node* c = nodeOf(a->items.items[0].link);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(compareValues(*nodeOf(graph.c.v), *c), "");
    EXPECT_NE(c, b);
}

}  // namespace vexpers::test::rt
