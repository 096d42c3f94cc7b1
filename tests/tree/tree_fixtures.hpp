// Registered types and owning wrappers of the tree tests.
//
// "TreeItem" is a shareable object (it answers "kstd_shared") with a number,
// a ratio, a part held by value ("TreePart", not shareable), two pointers to
// other items, an item held by value (null allowed), a vector of int32 items
// and a shared pointer to an item. Its declared properties, in this order:
// number, ratio, part, first, second, embedded, values, link.
#pragma once

#include <string>

#include "support/test_support.hpp"

namespace vexpers::test::tree {

struct Part {
    int32_t size;
};

struct Item {
    kstd_shared header;
    int32_t number;
    double ratio;
    Part part;
    Item* first;
    Item* second;
    Item* embedded;
    kstd_vector32s values;
    kstd_ptrh link;
    Item();
    ~Item();
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
};

struct Types {
    kstd_persistentType item;         // derivation 0
    kstd_persistentType itemPointer;  // derivation 1
    kstd_persistentType part;
    kstd_persistentType color;        // an enum
};
const Types& types();

// Registers the types and warms the registry, so that leak checks that
// follow count only what a test makes.
void start();

template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*)>
struct Owned {
    Owned() { Construct(&r); }
    ~Owned() { Destruct(&r); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    R* operator->() { return &r; }
    R* operator&() { return &r; }
    R r;
};

using Tree = Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                   kstd_persistentPropertyTree_destruct>;
using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Property = Owned<kstd_persistentProperty, kstd_persistentProperty_construct,
                       kstd_persistentProperty_destruct>;
using Variant = Owned<kstd_persistentVariant, kstd_persistentVariant_construct, kstd_persistentVariant_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;

// A property named `name` holding `item` as a pointer (or by value).
void pointTo(Property& property, const char16_t* name, Item* item);
void holdByValue(Property& property, const char16_t* name, Item* item);

// A section of `type` named `name` holding the int32 `value` as a leaf.
void intLeafSection(Section& section, uint32_t type, const char16_t* name, int32_t value);
// A start section (type 0, compound) named `name` of type "TreePart".
void startSection(Section& section, const char16_t* name);
// An end section carrying `name` (may be null).
void endSection(Section& section, const char16_t* name);

std::u16string nameOf(const kstd_persistentPropertyNode* node);
int64_t liveNodes(const kstd_persistentPropertyTree* tree);
// Children of a node, in order.
int childCount(const kstd_persistentPropertyNode* node);
const kstd_persistentPropertyNode* child(const kstd_persistentPropertyNode* node, const char16_t* name);

inline constexpr uint32_t reference = 0x80088u;
inline constexpr int itemProperties = 8;

// Expects, when it goes, that no block allocated since it was made is left;
// declare it before the records whose memory it checks.
struct NoLeaks {
    LiveBlockCheck check;
    ~NoLeaks() { EXPECT_EQ(check.leaked(), 0); }
};

}  // namespace vexpers::test::tree
