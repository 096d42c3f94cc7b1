// The client module of the tree and format tests: an object model registered
// through the public registration functions only, with the accessors a
// client writes (members stored by address, loaded by calling
// kstd_persistentType_loadPropertyNode on the member), and a graph of it
// that holds every kind of value, sharing and a cycle.
#pragma once

#include <string>
#include <vector>

#include "support/test_support.hpp"

// Runs one step; a failure ends the enclosing function with its code.
#define RT_TRY(expression)                        \
    do {                                          \
        const kstd_result rt_try_ = (expression); \
        if (rt_try_ < 0) return rt_try_;          \
    } while (0)

namespace vexpers::test::rt {

// Held by value (twice: entries "box" and "sameBox" both read `box`).
// Registered as always shareable, so its first meeting gets an id.
struct Box {
    int32_t width;
    int32_t height;
};

// One item of an array of object items; not shareable.
struct Item {
    int32_t weight;
    kstd_ptrh link;
};

// The container of items (a member of Node, reached through its table);
// its items live in a block of their own, room for four.
struct ItemList {
    Item* items;
    intptr_t count;
};

// The scalar members of Node, in one list: member, C type, registered type
// (k_Bool is held in an int32_t).
#define RT_SCALARS(X)                                                                                   \
    X(i8, int8_t, k_Int8) X(i16, int16_t, k_Int16) X(i32, int32_t, k_Int32) X(i64, int64_t, k_Int64)     \
    X(u8, uint8_t, k_UInt8) X(u16, uint16_t, k_UInt16) X(u32, uint32_t, k_UInt32) X(u64, uint64_t, k_UInt64) \
    X(flag, int32_t, k_Bool) X(f, float, float) X(d, double, double) X(size, size_t, size_t)

// The built-in vectors of Node, in one list: member, vector type, element.
#define RT_SCALAR_VECTORS(X)             \
    X(v8s, kstd_vector8s, int8_t)        \
    X(v8, kstd_vector8, uint8_t)         \
    X(v16s, kstd_vector16s, int16_t)     \
    X(v16, kstd_vector16, uint16_t)      \
    X(v32s, kstd_vector32s, int32_t)     \
    X(v32, kstd_vector32, uint32_t)      \
    X(v64s, kstd_vector64s, int64_t)     \
    X(v64, kstd_vector64, uint64_t)      \
    X(vps, kstd_vectorIntPtrs, intptr_t) \
    X(vp, kstd_vectorIntPtr, uintptr_t)  \
    X(vf, kstd_vectorf, float)           \
    X(vd, kstd_vectord, double)          \
    X(vb, kstd_vectorb, int32_t)

// The shared object type: scalars of every category that a value can hold,
// a string, an enum and a bit field, every built-in vector, shared
// pointers, a box held by value twice and a container of object items.
struct Node {
    kstd_shared header;
#define RT_DECLARE_SCALAR(field, type, typeName) type field;
    RT_SCALARS(RT_DECLARE_SCALAR)
#undef RT_DECLARE_SCALAR
    kstd_unicodeString name;
    int64_t color;  // RtColor
    uint64_t bits;  // RtColor bit field
#define RT_DECLARE_VECTOR(field, vector, element) vector field;
    RT_SCALAR_VECTORS(RT_DECLARE_VECTOR)
#undef RT_DECLARE_VECTOR
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

struct Types {
    const kstd_persistentType *node, *box, *boxPointer, *item, *ptrh;
};
// Registers the module once (and starts the registry and the built-in
// types it uses, so that leak checks count only what a test makes).
const Types& types();

using Tree = Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                   kstd_persistentPropertyTree_destruct>;
using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Processor = Owned<kstd_persistentPropertyProcessor, kstd_persistentPropertyProcessor_construct,
                        kstd_persistentPropertyProcessor_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;

// A heap node held by one new reference in `pointer`.
void newNode(kstd_ptrh* pointer);
// A chain of `length` links; link i holds i, the last one -1.
void newChain(kstd_ptrh* head, int32_t length);
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

// A, B and C are nodes: A holds extreme values of every member kind (one
// vector empty, a string with a surrogate pair, an empty and a null string);
// A.next, A.other, A.view and A's second item point at B; B.next points back
// at A (a cycle); C is reached only through A's first item; B.other and
// B.view are null.
struct Graph {
    SharedPointer a, b, c;
    Graph();
    ~Graph();
};
// Checks that `root` holds a copy of the graph: values, sharing and the cycle.
void expectCopyOf(const Graph& graph, const kstd_ptrh& root);

}  // namespace vexpers::test::rt
