// The property processor: walks a property, a bag or a property tree depth
// first and reports what it meets to a visitor. Both walks keep their levels
// on explicit work stacks instead of recursing, so a value nested as deeply
// as memory allows is walked on any thread's stack; the visitor sees the
// same events in the same order as a recursive walk would send them.
#include <bit>

#include "vexpers/tree.h"

#include "frame/lifecycle.hpp"
#include "tree/shared_object_index.hpp"
#include "tree/work_stack.hpp"

namespace vexpers::tree {
namespace {

using Processor = kstd_persistentPropertyProcessor;
using Node = kstd_persistentPropertyNode;

constexpr uint32_t flagArrayOfCoreItems = kstd_persistentPropertyNodeFlag_arrayOfCoreItems;
constexpr uint32_t flagArrayOfOtherItems = kstd_persistentPropertyNodeFlag_arrayOfOtherItems;
constexpr uint32_t flagLeaf = kstd_persistentPropertyNodeFlag_leaf;
constexpr uint32_t flagDecomposed = kstd_persistentPropertyNodeFlag_decomposed;

// ---- Bags by depth ----------------------------------------------------------------------

// The bag array holds `bagCount` entries in a block of bit_ceil(bagCount)
// entries, so that a walk that goes one level deeper at a time reallocates
// only when it doubles its depth.
size_t blockEntries(int32_t count) { return count <= 0 ? 0 : std::bit_ceil(static_cast<uint32_t>(count)); }

kstd_result bagAtDepth(Processor* processor, int32_t depth, kstd_persistentPropertyBag** bag) {
    *bag = nullptr;
    VEXPERS_REQUIRE(depth >= 0);
    if (depth >= processor->bagCount) {
        if (depth == INT32_MAX) return ksys_result_outOfMemory;
        const int32_t count = depth + 1;
        const size_t entries = blockEntries(count);
        if (entries > blockEntries(processor->bagCount)) {
            void* memory = processor->bags;
            VEXPERS_TRY(ksys_memory_realloc_internal(entries * sizeof(kstd_persistentPropertyBag*), &memory));
            processor->bags = static_cast<kstd_persistentPropertyBag**>(memory);
        }
        for (int32_t i = processor->bagCount; i < count; ++i) processor->bags[i] = nullptr;
        processor->bagCount = count;
    }
    if (processor->bags[depth] == nullptr) VEXPERS_TRY(kstd_persistentPropertyBag_new(&processor->bags[depth]));
    *bag = processor->bags[depth];
    return 0;
}

// Deletes the bags from the deepest to depth 0 and frees the array.
kstd_result releaseBags(Processor* processor) {
    for (int32_t depth = processor->bagCount - 1; depth >= 0; --depth) {
        VEXPERS_TRY(kstd_persistentPropertyBag_delete(&processor->bags[depth]));
        processor->bagCount = depth;
    }
    void* memory = processor->bags;
    ksys_memory_free_internal(&memory);
    processor->bags = nullptr;
    processor->bagCount = 0;
    return 0;
}

// ---- Bag walk ----------------------------------------------------------------------------

struct Identity {
    int32_t isShared = 0;
    int32_t objectIndex = -1;
    int32_t isNew = 0;
};

// Identifies a property's value among the shared objects met so far: an
// object met before gives its position; a new one (and every object held by
// value) is appended and gives its new position.
kstd_result identify(Processor* processor, const kstd_persistentVariant* value, Identity* identity) {
    *identity = Identity{};
    const void* whole = nullptr;
    bool heldByValue = false;
    VEXPERS_TRY(sharedindex::wholeObjectOf(value, &whole, &heldByValue));
    if (whole == nullptr) return 0;
    VEXPERS_TRY(sharedindex::prepare(&processor->sharedIndex, &processor->sharedObjects));
    if (!heldByValue) {
        const int32_t position = sharedindex::find(processor->sharedIndex, whole);
        if (position >= 0) {
            identity->isShared = 1;
            identity->objectIndex = position;
            return 0;
        }
    }
    intptr_t size = 0;
    VEXPERS_TRY(kstd_vector_kstd_persistentVariant_getSizeIntPtr(&processor->sharedObjects, &size));
    if (size >= INT32_MAX) return kstd_persistentResult_arraySizeOverflow;
    VEXPERS_TRY(kstd_vector_kstd_persistentVariant_pushBack(&processor->sharedObjects, value));
    sharedindex::record(processor->sharedIndex, whole, static_cast<int32_t>(size));
    identity->isShared = 1;
    identity->objectIndex = static_cast<int32_t>(size);
    identity->isNew = 1;
    return 0;
}

// One level of the bag walk: the bag of its depth and the property whose
// events are open (`open` after event 2 of a property that was expanded).
struct BagLevel {
    const kstd_persistentProperty* begin;
    int32_t count;
    int32_t index;
    bool open;
    Identity identity;
    int32_t isLeaf;
};

class BagWalk {
public:
    BagWalk(Processor* processor, kstd_persistentPropertyBagVisitor visitor, void* context)
        : processor_(processor), visitor_(visitor), context_(context) {}

    kstd_result run() {
        VEXPERS_TRY(enter(0));
        while (!levels_.empty()) {
            const int32_t depth = static_cast<int32_t>(levels_.size()) - 1;
            BagLevel& level = levels_.top();
            if (level.open) {
                level.open = false;
                VEXPERS_TRY(propertyEvent(kstd_persistentPropertyProcessorEvent_propertyEnd, depth, level));
                ++level.index;
                continue;
            }
            if (level.index >= level.count) {
                VEXPERS_TRY(bagEvent(kstd_persistentPropertyProcessorEvent_bagEnd, depth, level.count, level.count));
                levels_.pop();
                continue;
            }
            const kstd_persistentProperty& property = level.begin[level.index];
            uint32_t isLeaf = 0;
            VEXPERS_TRY(kstd_persistentProperty_getIsLeaf(&property, &isLeaf, nullptr));
            level.isLeaf = isLeaf != 0 ? 1 : 0;
            VEXPERS_TRY(identify(processor_, &property.value, &level.identity));
            VEXPERS_TRY(propertyEvent(kstd_persistentPropertyProcessorEvent_propertyBegin, depth, level));
            if (isLeaf == 0 && (level.identity.isShared == 0 || level.identity.isNew != 0)) {
                // The bag of the next depth was taken when this level began.
                VEXPERS_TRY(kstd_persistentVariant_getObjectData(&property.value, processor_->bags[depth + 1]));
                level.open = true;
                VEXPERS_TRY(enter(depth + 1));  // `level` may move from here on
                continue;
            }
            VEXPERS_TRY(propertyEvent(kstd_persistentPropertyProcessorEvent_propertyEnd, depth, level));
            ++level.index;
        }
        return last_;
    }

private:
    // Begins the walk of the bag of `depth`: event 0, and the bag of the
    // next depth taken once for all its properties.
    kstd_result enter(int32_t depth) {
        kstd_persistentPropertyBag* bag = nullptr;
        VEXPERS_TRY(bagAtDepth(processor_, depth, &bag));
        BagLevel level{};
        VEXPERS_TRY(kstd_persistentPropertyBag_getPropertiesBeginSizeConst(bag, &level.begin, &level.count));
        VEXPERS_TRY(bagEvent(kstd_persistentPropertyProcessorEvent_bagBegin, depth, -1, level.count));
        if (level.count > 0) {
            if (depth == INT32_MAX) return ksys_result_outOfMemory;
            kstd_persistentPropertyBag* next = nullptr;
            VEXPERS_TRY(bagAtDepth(processor_, depth + 1, &next));
        }
        return levels_.push(level);
    }

    kstd_result bagEvent(int32_t event, int32_t depth, int32_t index, int32_t count) {
        last_ = visitor_(context_, event, depth, nullptr, index, count, 0, 0, 0, 0);
        return last_;
    }

    kstd_result propertyEvent(int32_t event, int32_t depth, const BagLevel& level) {
        last_ = visitor_(context_, event, depth, &level.begin[level.index], level.index, level.count,
                         level.identity.isShared, level.identity.objectIndex, level.identity.isNew, level.isLeaf);
        return last_;
    }

    Processor* processor_;
    kstd_persistentPropertyBagVisitor visitor_;
    void* context_;
    WorkStack<BagLevel> levels_;
    kstd_result last_ = 0;
};

// ---- Node walk -----------------------------------------------------------------------------

// The expansion of an array of items that are not core-typed: its container,
// the item at hand, and the temporary node each item is decomposed into.
struct Expansion {
    kstd_persistentType itemType;
    kstd_persistentVariant variant;
    kstd_persistentPropertyInfo info;
    kstd_persistentProperty property;
    Node* temporary;
    void* container;
    uint32_t containerValue;
    uint32_t elementSize;
    void* current;
    intptr_t count;
    intptr_t index;
    const kstd_persistentContainerVtable* table;
};

// Frees the temporary node and destroys the temporaries.
void deleteExpansion(Expansion** expansion) {
    Expansion* e = *expansion;
    if (e == nullptr) return;
    if (e->temporary != nullptr) kstd_persistentPropertyNode_freeNodeAndChildren(e->temporary);
    kstd_persistentProperty_destruct(&e->property);
    kstd_persistentPropertyInfo_destruct(&e->info);
    kstd_persistentVariant_destruct(&e->variant);
    kstd_persistentType_destruct(&e->itemType);
    void* memory = e;
    ksys_memory_free_internal(&memory);
    *expansion = nullptr;
}

kstd_result newExpansion(Expansion** expansion) {
    *expansion = nullptr;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(Expansion), &memory));
    auto* e = static_cast<Expansion*>(memory);
    *e = Expansion{};
    // Constructing these records allocates nothing, so a partly built
    // expansion is never left behind.
    kstd_persistentType_construct(&e->itemType);
    kstd_persistentVariant_construct(&e->variant);
    kstd_persistentPropertyInfo_construct(&e->info);
    kstd_persistentProperty_construct(&e->property);
    *expansion = e;
    return 0;
}

struct NodeFrame {
    Node* node;
    int32_t depth;
    Node* nextChild;         // children walk
    Expansion* expansion;    // array expansion, owned by the frame
};

class NodeWalk {
public:
    NodeWalk(kstd_persistentPropertyNodeVisitor visitor, void* context) : visitor_(visitor), context_(context) {}
    ~NodeWalk() {
        while (!frames_.empty()) {
            deleteExpansion(&frames_.top().expansion);
            frames_.pop();
        }
    }
    NodeWalk(const NodeWalk&) = delete;
    NodeWalk& operator=(const NodeWalk&) = delete;

    kstd_result run(Node* node, int32_t depth) {
        VEXPERS_TRY(enter(node, depth));
        while (!frames_.empty()) {
            NodeFrame& frame = frames_.top();
            if (frame.expansion != nullptr) {
                VEXPERS_TRY(nextItem(frame));
                continue;
            }
            if (frame.nextChild != nullptr) {
                Node* child = frame.nextChild;
                frame.nextChild = child->nextSibling;
                VEXPERS_TRY(enter(child, frame.depth + 1));
                continue;
            }
            VEXPERS_TRY(leave());
        }
        return last_;
    }

private:
    kstd_result event(int32_t kind, int32_t depth, const Node* node) {
        last_ = visitor_(context_, kind, depth, node);
        return last_;
    }

    // Event 7 for the top frame, which is then dropped.
    kstd_result leave() {
        NodeFrame frame = frames_.top();
        deleteExpansion(&frames_.top().expansion);
        frames_.pop();
        return event(kstd_persistentPropertyProcessorEvent_nodeEnd, frame.depth, frame.node);
    }

    // The first steps of walking `node`: a leaf or a core array is reported
    // at once; any other node is reported begun and gets a frame for its
    // children or its items.
    kstd_result enter(Node* node, int32_t depth) {
        if ((node->flags & flagLeaf) != 0) return event(kstd_persistentPropertyProcessorEvent_leaf, depth, node);
        if ((node->flags & flagArrayOfCoreItems) != 0)
            return event(kstd_persistentPropertyProcessorEvent_coreArray, depth, node);
        VEXPERS_TRY(event(kstd_persistentPropertyProcessorEvent_nodeBegin, depth, node));
        if ((node->flags & flagArrayOfOtherItems) != 0 && (node->flags & flagDecomposed) != 0)
            return beginItems(node, depth);
        if (node->firstChild == nullptr) return kstd_persistentResult_nodeHasNoChildren;
        return frames_.push(NodeFrame{node, depth, node->firstChild, nullptr});
    }

    // Reads the container of an array of other items and prepares the walk
    // of its items through one temporary node.
    kstd_result beginItems(Node* node, int32_t depth) {
        Expansion* e = nullptr;
        VEXPERS_TRY(newExpansion(&e));
        auto guard = makeGuard([&] { deleteExpansion(&e); });
        VEXPERS_TRY(kstd_persistentPropertyNode_getContainer(node, &e->container, &e->containerValue, &e->elementSize,
                                                             &e->current, &e->count, &e->table, &e->itemType));
        if (e->container == nullptr) return kstd_persistentResult_nullArgument;
        if (e->table != nullptr) {
            const kstd_persistentContainerVtable& t = *e->table;
            if (t.resize == nullptr || t.getSize == nullptr || t.getBegin == nullptr || t.getLayout == nullptr ||
                t.getNextElement == nullptr)
                return kstd_persistentResult_operationMissing;
        }
        if (e->count < 0) return kstd_persistentResult_invalidCount;
        if (e->count == 0) {
            // An empty container is reported as a leaf inside its node.
            VEXPERS_TRY(event(kstd_persistentPropertyProcessorEvent_leaf, depth, node));
            return frames_.push(NodeFrame{node, depth, nullptr, nullptr});
        }
        if (e->current == nullptr) return kstd_persistentResult_nullArrayData;
        if (depth == INT32_MAX) return ksys_result_outOfMemory;
        VEXPERS_TRY(kstd_persistentPropertyTree_allocTempNode(node->owner, &e->temporary));
        VEXPERS_TRY(kstd_persistentPropertyInfo_resetNameTypeAccess(&e->info, u"i", &e->itemType, 2));
        VEXPERS_TRY(frames_.push(NodeFrame{node, depth, nullptr, e}));
        guard.dismiss();
        return 0;
    }

    // Walks the next item of the top frame's array, or ends the array.
    kstd_result nextItem(NodeFrame& frame) {
        Expansion* e = frame.expansion;
        if (e->index > 0) {
            // Step past the item just walked.
            if (e->index == e->count) return leave();
            if (e->containerValue != 0) {
                e->current = static_cast<char*>(e->current) + e->elementSize;
            } else {
                void* next = e->current;
                VEXPERS_TRY(e->table->getNextElement(e->container, &next));
                if (next == nullptr) return kstd_persistentResult_nullArrayData;
                e->current = next;
            }
        }
        ++e->index;
        VEXPERS_TRY(kstd_persistentVariant_setValueUsingType(&e->variant, &e->itemType, e->current));
        VEXPERS_TRY(kstd_persistentProperty_resetInfoAndValue(&e->property, &e->info, &e->variant));
        VEXPERS_TRY(kstd_persistentPropertyNode_resetDecomposeProperty(e->temporary, &e->property, 1));
        return enter(e->temporary, frame.depth + 1);  // `frame` may move from here on
    }

    kstd_persistentPropertyNodeVisitor visitor_;
    void* context_;
    WorkStack<NodeFrame> frames_;
    kstd_result last_ = 0;
};

}  // namespace
}  // namespace vexpers::tree

using namespace vexpers::tree;

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_construct(kstd_persistentPropertyProcessor* processor) {
    VEXPERS_REQUIRE(processor != nullptr);
    processor->bags = nullptr;
    processor->bagCount = 0;
    processor->sharedIndex = nullptr;
    return kstd_vector_kstd_persistentVariant_constructEmpty(&processor->sharedObjects);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_destruct(kstd_persistentPropertyProcessor* processor) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_TRY(releaseBags(processor));
    sharedindex::release(&processor->sharedIndex);
    return kstd_vector_kstd_persistentVariant_destruct(&processor->sharedObjects);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_reset(kstd_persistentPropertyProcessor* processor) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_TRY(releaseBags(processor));
    sharedindex::release(&processor->sharedIndex);
    return kstd_vector_kstd_persistentVariant_clear(&processor->sharedObjects);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_new(kstd_persistentPropertyProcessor** out) {
    VEXPERS_REQUIRE(out != nullptr);
    return vexpers::lifecycle::newRecord<kstd_persistentPropertyProcessor>(
        out, kstd_persistentPropertyProcessor_construct, kstd_persistentPropertyProcessor_destruct);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_delete(kstd_persistentPropertyProcessor** out) {
    VEXPERS_REQUIRE(out != nullptr);
    return vexpers::lifecycle::deleteRecord<kstd_persistentPropertyProcessor>(out,
                                                                              kstd_persistentPropertyProcessor_destruct);
}

VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyProcessor)

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_processProperty(kstd_persistentPropertyProcessor* processor,
                                                                            const kstd_persistentProperty* property,
                                                                            kstd_persistentPropertyBagVisitor visitor,
                                                                            void* context) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_REQUIRE(property != nullptr);
    VEXPERS_REQUIRE(visitor != nullptr);
    kstd_persistentPropertyBag* bag = nullptr;
    VEXPERS_TRY(bagAtDepth(processor, 0, &bag));
    VEXPERS_TRY(kstd_persistentPropertyBag_reset(bag));
    VEXPERS_TRY(kstd_persistentPropertyBag_addProperty(bag, property));
    return BagWalk(processor, visitor, context).run();
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_processPropertyBag(
    kstd_persistentPropertyProcessor* processor, const kstd_persistentPropertyBag* bag,
    kstd_persistentPropertyBagVisitor visitor, void* context) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_REQUIRE(bag != nullptr);
    VEXPERS_REQUIRE(visitor != nullptr);
    kstd_persistentPropertyBag* top = nullptr;
    VEXPERS_TRY(bagAtDepth(processor, 0, &top));
    VEXPERS_TRY(kstd_persistentPropertyBag_assign(top, bag));
    return BagWalk(processor, visitor, context).run();
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_processPropertyTree(
    kstd_persistentPropertyProcessor* processor, kstd_persistentPropertyTree* tree,
    kstd_persistentPropertyNodeVisitor visitor, void* context) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(visitor != nullptr);
    kstd_result result = 0;
    for (kstd_persistentPropertyNode* node = tree->firstChild; node != nullptr; node = node->nextSibling) {
        result = NodeWalk(visitor, context).run(node, 0);
        if (vexpers::failed(result)) return result;
    }
    return result;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyProcessor_processPropertyNode(
    kstd_persistentPropertyProcessor* processor, kstd_persistentPropertyNode* node, int32_t depth,
    kstd_persistentPropertyNodeVisitor visitor, void* context) {
    VEXPERS_REQUIRE(processor != nullptr);
    VEXPERS_REQUIRE(node != nullptr);
    VEXPERS_REQUIRE(visitor != nullptr);
    VEXPERS_REQUIRE(depth >= 0);
    return NodeWalk(visitor, context).run(node, depth);
}
