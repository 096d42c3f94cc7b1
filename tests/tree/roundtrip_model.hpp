// A client module for the round-trip tests: an object model registered
// through the public registration functions only, with the accessors a
// client writes (members stored by address, loaded by calling
// kstd_persistentType_loadPropertyNode on the member), and a storage format
// that writes a walked tree as plain records and rebuilds a tree from them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "support/test_support.hpp"

// Runs one step; a failure ends the enclosing function with its code.
#define RT_TRY(expression)                          \
    do {                                            \
        const kstd_result rt_try_ = (expression);   \
        if (rt_try_ < 0) return rt_try_;            \
    } while (0)

namespace vexpers::test::rt {

// Held by value (twice: entries "box" and "sameBox" both read `box`).
// Registered as always shareable, so its first meeting gets an id.
struct Box {
    int32_t width;
    int32_t height;
};

// One item of an array of object items living in a container.
struct Item {
    int32_t weight;
    kstd_ptrh link;
};

// The container of items (a member of Node, reached through its table).
// Its items live in a block of their own, outside the node.
struct ItemList {
    Item* items;  // room for four
    intptr_t count;
};

// The shared object type: scalars of every category that a value can hold,
// a string, an enum and a bit field, every built-in vector, shared
// pointers, a box held by value twice and a container of object items.
struct Node {
    kstd_shared header;
    int8_t i8;
    int16_t i16;
    int32_t i32;
    int64_t i64;
    uint8_t u8;
    uint16_t u16;
    uint32_t u32;
    uint64_t u64;
    int32_t flag;  // k_Bool
    float f;
    double d;
    size_t size;
    kstd_unicodeString name;
    int64_t color;  // RtColor
    uint64_t bits;  // RtColor bit field
    kstd_vector8s v8s;
    kstd_vector8 v8;
    kstd_vector16s v16s;
    kstd_vector16 v16;
    kstd_vector32s v32s;
    kstd_vector32 v32;
    kstd_vector64s v64s;
    kstd_vector64 v64;
    kstd_vectorIntPtrs vps;
    kstd_vectorIntPtr vp;
    kstd_vectorf vf;
    kstd_vectord vd;
    kstd_vectorb vb;
    kstd_vector_kstd_unicodeString vstr;
    kstd_ptrh next;
    kstd_ptrh other;
    kstd_ptrhConst view;
    Box box;
    ItemList items;
};

// A light shared object for long chains: a value and a link.
struct Link {
    kstd_shared header;
    int32_t value;
    kstd_ptrh next;
};

// An object type that answers no "kstd_shared" interface.
struct Plain {
    int32_t value;
};

// A type without declared properties, loaded whole by its value access
// table's load entry: "count" from a leaf, "box" through the box's type.
struct Counter {
    int64_t count;
    Box box;
};

struct Types {
    const kstd_persistentType* counter;
    const kstd_persistentType* bare;  // no declared properties, no load entry
    const kstd_persistentType* node;
    const kstd_persistentType* link;
    const kstd_persistentType* plain;
    const kstd_persistentType* box;
    const kstd_persistentType* item;
    const kstd_persistentType* color;
    const kstd_persistentType* ptrh;
};
// Registers the module once (and starts the registry and the built-in
// types it uses, so that leak checks count only what a test makes).
const Types& types();

// Heap objects, each held by one new reference in `pointer`.
void newNode(kstd_ptrh* pointer);
void newLink(kstd_ptrh* pointer);
Node* nodeOf(const kstd_ptrh& pointer);
Link* linkOf(const kstd_ptrh& pointer);
// Number of Node and Link objects alive.
int64_t liveObjects();
// The after-load calls of links since the last clear: the link's value and
// whether its next pointer was set by then.
struct AfterLoad {
    int32_t value;
    bool hasNext;
};
std::vector<AfterLoad>& linkAfterLoads();

// Drops every pointer a node holds (links of its items included), so that
// cycles can be released.
void unlinkNode(Node* node);
// Releases a chain of links one at a time (no recursion through the chain).
void releaseChain(kstd_ptrh* head);
// Unlinks the Node and Link objects recorded in `tree` under ids 0 .. ids-1.
void unlinkRecorded(const kstd_persistentPropertyTree* tree, int64_t ids);

// Field-by-field comparison of the values of two nodes (pointers are not
// followed; items only `withItems`); empty when equal, else the first
// difference.
std::string compareValues(const Node& expected, const Node& actual, bool withItems = true);

// ---- Storage format ----------------------------------------------------------------------

// One value written out: a scalar by category, or a text.
struct Scalar {
    uint32_t category = 0;
    int64_t i = 0;
    uint64_t u = 0;
    double d = 0;
    int32_t b = 0;
    bool isNull = false;
    std::u16string text;
};

struct Record {
    uint32_t sectionType = 0;
    uint32_t flags = 0;
    std::u16string name;
    std::u16string typeName;
    uint32_t derivation = 0;
    uint32_t access = 2;
    int64_t objectId = -1;
    int64_t numItems = 0;
    enum class Value { none, scalar, nullPointer, emptyArray, items } value = Value::none;
    std::u16string valueTypeName;
    uint32_t valueDerivation = 0;
    Scalar scalar;
    std::vector<Scalar> items;
};

// A node visitor that writes each node as a record: event 4 a start, 5 and
// 6 a leaf with its value, 7 an end.
struct Writer {
    std::vector<Record> records;
    std::vector<const kstd_persistentPropertyNode*> open;
    static kstd_result visit(void* context, int32_t event, int32_t depth, const kstd_persistentPropertyNode* node);
};

// Builds the top-level nodes of `tree` from records through node sections.
kstd_result rebuild(const std::vector<Record>& records, kstd_persistentPropertyTree* tree);

// Owning wrappers.
struct TreeBox {
    kstd_persistentPropertyTree t;
    TreeBox() { kstd_persistentPropertyTree_construct(&t); }
    ~TreeBox() { kstd_persistentPropertyTree_destruct(&t); }
    TreeBox(const TreeBox&) = delete;
    TreeBox& operator=(const TreeBox&) = delete;
};

struct PointerBox {
    kstd_ptrh p;
    PointerBox() { kstd_ptrh_constructEmpty(&p); }
    ~PointerBox() { kstd_ptrh_destruct(&p); }
    PointerBox(const PointerBox&) = delete;
    PointerBox& operator=(const PointerBox&) = delete;
};

struct PropertyBox {
    kstd_persistentProperty p;
    PropertyBox() { kstd_persistentProperty_construct(&p); }
    ~PropertyBox() { kstd_persistentProperty_destruct(&p); }
    PropertyBox(const PropertyBox&) = delete;
    PropertyBox& operator=(const PropertyBox&) = delete;
};

struct ProcessorBox {
    kstd_persistentPropertyProcessor p;
    ProcessorBox() { kstd_persistentPropertyProcessor_construct(&p); }
    ~ProcessorBox() { kstd_persistentPropertyProcessor_destruct(&p); }
    ProcessorBox(const ProcessorBox&) = delete;
    ProcessorBox& operator=(const ProcessorBox&) = delete;
};

struct TypeBox {
    kstd_persistentType t;
    TypeBox() { kstd_persistentType_construct(&t); }
    ~TypeBox() { kstd_persistentType_destruct(&t); }
    TypeBox(const TypeBox&) = delete;
    TypeBox& operator=(const TypeBox&) = delete;
};

}  // namespace vexpers::test::rt
