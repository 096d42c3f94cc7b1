// What the node, section, tree and decomposition code share: the flag word's
// masks, node allocation and linking, setting a node's value from a property,
// freeing subtrees without recursion.
#pragma once

#include <cstdint>

#include "frame/frame.hpp"
#include "tree/work_stack.hpp"
#include "vexpers/tree.h"

namespace vexpers::tree {

using Node = kstd_persistentPropertyNode;
using Section = kstd_persistentPropertyNodeSection;
using Tree = kstd_persistentPropertyTree;

namespace flag {
inline constexpr uint32_t arrayCore = kstd_persistentPropertyNodeFlag_arrayOfCoreItems;
inline constexpr uint32_t arrayOther = kstd_persistentPropertyNodeFlag_arrayOfOtherItems;
inline constexpr uint32_t compound = kstd_persistentPropertyNodeFlag_compound;
inline constexpr uint32_t leaf = kstd_persistentPropertyNodeFlag_leaf;
inline constexpr uint32_t leafKindBits = 0xF0u;
inline constexpr uint32_t reference = leaf | kstd_persistentPropertyNodeFlag_leafReference;  // 0x88
inline constexpr uint32_t nullPointer = leaf | kstd_persistentPropertyNodeFlag_leafNullPointer;  // 0x28
inline constexpr uint32_t arrayItem = kstd_persistentPropertyNodeFlag_arrayItem;
inline constexpr uint32_t started = kstd_persistentPropertyNodeFlag_started;
inline constexpr uint32_t ended = kstd_persistentPropertyNodeFlag_ended;
inline constexpr uint32_t hasValue = kstd_persistentPropertyNodeFlag_hasValue;
inline constexpr uint32_t hasObjectId = kstd_persistentPropertyNodeFlag_hasObjectId;
inline constexpr uint32_t hasInfo = kstd_persistentPropertyNodeFlag_hasInfo;
inline constexpr uint32_t deleted = kstd_persistentPropertyNodeFlag_deleted;
inline constexpr uint32_t decomposed = kstd_persistentPropertyNodeFlag_decomposed;
// Every bit the flag word defines.
inline constexpr uint32_t known = 0x1FFu | 0x7F0000u;
}  // namespace flag

inline bool allSet(uint32_t flags, uint32_t mask) { return (flags & mask) == mask; }

// The leaf kind bits of kind 1..4 (leaf bit included); 0 for another kind.
inline uint32_t leafKindFlags(uint32_t kind) {
    return kind >= 1 && kind <= 4 ? flag::leaf | (0x10u << (kind - 1)) : 0u;
}

// Decodes the leaf kind: the first of 0x18, 0x28, 0x48, 0x88 whose bits are
// all set. False for a leaf flag without any of them, which no writer makes.
inline bool decodeLeafKind(uint32_t flags, uint32_t* kind) {
    *kind = 0;
    if ((flags & flag::leaf) == 0) return true;
    for (uint32_t k = 1; k <= 4; ++k) {
        if (allSet(flags, leafKindFlags(k))) {
            *kind = k;
            return true;
        }
    }
    return false;
}

inline uint32_t decodeArrayKind(uint32_t flags) {
    if ((flags & flag::arrayCore) != 0) return 1;
    if ((flags & flag::arrayOther) != 0) return 2;
    return 0;
}

// A constructed node from the tree's allocator, linked nowhere. A failure
// gives nothing back and allocates nothing.
kstd_result allocNode(Tree* tree, Node** node);

// Appends `child` to `parent`'s children.
inline void appendChild(Node* parent, Node* child) {
    if (parent->lastChild == nullptr)
        parent->firstChild = child;
    else
        parent->lastChild->nextSibling = child;
    parent->lastChild = child;
}

// Sets the node's descriptor, value, item count and kind flags from
// `property`. Bits are only added; each step stops the operation on failure.
kstd_result setValue(Node* node, const kstd_persistentProperty* property);

// As setValue, but moves the value out of `property` instead of sharing it:
// the node's own (empty) property is left in its place. For a source that is
// discarded afterwards, this saves a copy of the descriptor and the value
// with their reference counts.
kstd_result takeValue(Node* node, kstd_persistentProperty* property);

// Frees `node` and every node below it back to the owner tree's allocator,
// without recursion. `node`'s own sibling link is not followed. Every node
// is freed even when destroying one fails; the first failure is returned.
kstd_result freeSubtree(Node* node);

// Detaches the children of `node` and frees them with their subtrees.
kstd_result freeChildren(Node* node);

// Whether a value is a shareable object, the kind that gets an id when it is
// first met and is referred to afterwards: a non-null pointer, or an object
// (not an array) whose type calls it shareable; in either case the value
// must yield a whole-object pointer (*whole, optional: the whole shared object
// the variant keeps alive, else the object itself; null when not shareable).
// The processor's bag walk decides the same way. Failing type queries are
// returned.
kstd_result isShareableValue(const kstd_persistentVariant* value, bool* shareable, const void** whole);

// The bags of a bag set keep the properties of their last fill as spare
// slots, and with them shares of the objects they held. Drops those values in
// every bag not lent out, so that a tree keeps objects alive only through its
// nodes and its registry. The first failure is returned after all.
kstd_result releaseBagValues(kstd_persistentPropertyBagSet* set);

}  // namespace vexpers::tree
