// Composing objects from property nodes: kstd_persistentType_loadPropertyNode
// and the load accessors of the built-in types.
//
// Loading an object with property info entries matches each loadable entry
// to a child node by name and calls the entry's load accessor; the accessors
// of members that are objects again load them through
// kstd_persistentType_loadPropertyNode, and a shared pointer's accessor loads
// its pointee. Done by plain calls, that recursion would take native stack
// for every level of the object graph. A composer instead keeps the objects
// whose entries are being loaded as frames on a work stack:
//
// - Each frame is one object of a type with entries, with the index of its
//   next entry. The loop always works on the top frame, so an object's
//   members (and their pointees) are loaded completely before the next entry
//   of the object that holds them, exactly in the order of the recursive
//   algorithm; ids are recorded and references resolved in that order.
// - While a load accessor (or a type's whole-object load entry) runs, a call
//   of kstd_persistentType_loadPropertyNode for memory inside the object
//   being loaded does its checks and core or whole-object loads at once, but
//   leaves the entries of an object type to a new frame that the loop takes
//   up as soon as the accessor returns. Frames started during one accessor
//   call are taken up in the order of the calls. A call for memory outside
//   that object (a temporary, items of a container) first loads what is
//   pending and then loads its object completely before it returns.
// - The shared pointers' accessor creates and records the pointee, then
//   starts its frame with a completion: once the pointee's entries and its
//   after-load entry are done, the shared pointer is pointed at it. A
//   failure anywhere ends the whole composition with its code; the frames
//   still open are dropped (releasing the pointees they kept alive, except
//   those the tree recorded), so nothing leaks.
//
// So a chain of objects linked through shared pointers, however long, is
// composed in constant native stack. What still recurses is client code that
// loads a member outside the object being loaded (each such call runs a
// nested loop before it returns), and after-load entries that compose again.
#include "tree/compose.hpp"

#include "frame/frame.hpp"
#include "property/info_entries.hpp"
#include "tree/work_stack.hpp"
#include "types/core_type_table.hpp"
#include "types/registry.hpp"
#include "types/type_record.hpp"

namespace vexpers::tree {
namespace {

using Node = kstd_persistentPropertyNode;
using Record = kstd_persistentType_;
using property::PropertyInfoEntry;

using AssignSharedFn = kstd_result (*)(void* pointer, kstd_shared* shared);

// The first child named `name` (the search of
// kstd_persistentPropertyNode_getMatchingChildConst). Names are interned,
// so an equal name mostly has the very same characters; other names are
// compared by their text.
kstd_result childNamed(const Node* node, const kstd_stringConst& name, const Node** child) {
    *child = nullptr;
    if (name.chars == nullptr || name.length == 0) return kstd_persistentResult_invalidPropertyName;
    for (const Node* c = node->firstChild; c != nullptr; c = c->nextSibling) {
        const kstd_stringConst& n = c->info.name;
        if (n.chars == name.chars ||
            (n.chars != nullptr && n.length == name.length && ksys_wcsncmp(n.chars, name.chars, name.length) == 0)) {
            *child = c;
            return 0;
        }
    }
    return 0;
}

constexpr uint32_t flagLeaf = kstd_persistentPropertyNodeFlag_leaf;
constexpr uint32_t flagHasValue = kstd_persistentPropertyNodeFlag_hasValue;
constexpr uint32_t flagHasObjectId = kstd_persistentPropertyNodeFlag_hasObjectId;

// The leaf kind of a flag word, as the node decodes it: the masks 0x18,
// 0x28, 0x48, 0x88 in this order; 0 for a leaf flag without any of them
// (which no well-formed node has, but a stream may).
uint32_t leafKindOf(uint32_t flags) {
    if ((flags & flagLeaf) == 0) return 0;
    for (uint32_t kind = 1; kind <= 4; ++kind) {
        const uint32_t mask = flagLeaf | (kstd_persistentPropertyNodeFlag_leafCoreValue << (kind - 1));
        if ((flags & mask) == mask) return kind;
    }
    return 0;
}

// What happens to a pointee once it is loaded: `target`, a shared pointer,
// is pointed at `shared`.
struct Completion {
    void* target;
    AssignSharedFn assignShared;
    kstd_shared* shared;
};

struct Frame {
    const Record* record;
    void* object;
    size_t extent;  // bytes of `object` (0 when the type does not say)
    const Node* node;
    uint32_t nextEntry;
    bool nodeStandsIn;  // a core or enum type whose value the node holds
    kstd_result last;
    void* target;  // completion, when the frame loads a pointee
    AssignSharedFn assignShared;
    kstd_ptrh keep;  // holds the pointee while it loads
};

// The load call in progress: frames started since `pendingBase` are in call
// order (reversed when the call ends, so that the first is on top), and
// memory inside [windowBegin, windowBegin + windowSize) may be left to them.
struct Scope {
    bool open = false;
    size_t pendingBase = 0;
    const char* windowBegin = nullptr;
    size_t windowSize = 0;
};

class Composer;
thread_local Composer* activeComposer = nullptr;

class Composer {
public:
    Composer() : previous_(activeComposer), outer_(previous_ != nullptr ? previous_->pending() : 0) {
        activeComposer = this;
    }
    ~Composer() {
        dropFramesAbove(0);
        activeComposer = previous_;
    }
    Composer(const Composer&) = delete;
    Composer& operator=(const Composer&) = delete;

    bool inLoadCall() const { return scope_.open; }
    bool hasFrames() const { return !frames_.empty(); }

    // Loads `object` from `node` as far as it can without its entries: the
    // checks, a core value, or the whole-object load entry. An object with
    // entries gets a frame (carrying `completion`); otherwise `completion`
    // runs at once.
    kstd_result start(const kstd_persistentType* type, void* object, const Node* node, const Completion* completion) {
        if (object == nullptr) return kstd_persistentResult_nullArgument;
        const Record* record = nullptr;
        VEXPERS_TRY(types::resolveRecord(type, true, &record));
        uint32_t coreOrEnum = 0;
        VEXPERS_TRY(kstd_persistentType_getIsCoreTypeOrEnum(type, &coreOrEnum));
        const kstd_persistentVariant* value = nullptr;
        VEXPERS_TRY(kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(node, 0, &value));
        if (record->coreTypeId >= 0) {
            if (value == nullptr) return kstd_persistentResult_typeMismatch;
            const types::CoreTypeRow* row = types::coreTypeRow(record->coreTypeId);
            if (row == nullptr) return kstd_persistentResult_invalidCoreTypeId;
            // Reserved names have no value at all; the string pointers can
            // be written into a variant but not read out of one.
            if (row->reader == nullptr)
                return row->writer != nullptr ? kstd_persistentResult_operationMissing
                                              : kstd_persistentResult_notSupported;
            const kstd_result result = row->reader(value, object);
            if (failed(result)) return result;
            return complete(completion, result);
        }
        const size_t extent = extentOf(record);
        if (property::entriesOf(record).empty()) {
            if (record->valueAccess == nullptr || record->valueAccess->loadPropertyNode == nullptr)
                return kstd_persistentResult_operationMissing;
            const auto load = record->valueAccess->loadPropertyNode;
            const kstd_result result = withinLoadCall(object, extent, [&] { return load(object, node); });
            if (failed(result)) return result;
            return complete(completion, result);
        }
        VEXPERS_TRY(checkDepth(node));
        Frame frame{record, object, extent, node, 0, coreOrEnum != 0 && value != nullptr, 0, nullptr, nullptr, {}};
        if (completion != nullptr) {
            VEXPERS_TRY(kstd_ptrh_construct(&frame.keep, completion->shared));
            frame.target = completion->target;
            frame.assignShared = completion->assignShared;
        } else {
            VEXPERS_TRY(kstd_ptrh_constructEmpty(&frame.keep));
        }
        const kstd_result pushed = frames_.push(frame);
        if (failed(pushed)) kstd_ptrh_destruct(&frame.keep);
        return pushed;
    }

    // Works on the frames above `floor` until none is left; the result is
    // that of the last frame completed. A failure drops them all.
    kstd_result run(size_t floor) {
        kstd_result result = 0;
        while (frames_.size() > floor) {
            const size_t at = frames_.size() - 1;
            Frame& frame = frames_.at(at);
            const std::span<PropertyInfoEntry> entries = property::entriesOf(frame.record);
            if (frame.nextEntry < entries.size()) {
                PropertyInfoEntry& entry = entries[frame.nextEntry++];
                if (!property::entryIsLoadable(entry)) continue;
                const Node* child = nullptr;
                kstd_result step = childNamed(frame.node, entry.info.name, &child);
                if (failed(step)) return fail(step, floor);
                if (child == nullptr && frame.nodeStandsIn) child = frame.node;
                if (child == nullptr) continue;
                step = loadEntry(frame.object, frame.extent, entry, child);  // `frame` may move
                if (failed(step)) return fail(step, floor);
                frames_.at(at).last = step;
                continue;
            }
            kstd_result step = frame.last;
            const kstd_persistentValueAccessVtable* access = frame.record->valueAccess;
            if (access != nullptr && access->afterLoad != nullptr) {
                void* object = frame.object;
                step = outsideLoadCall([&] { return access->afterLoad(object); });
                if (failed(step)) return fail(step, floor);
            }
            Frame done = frames_.at(at);
            frames_.pop();
            if (done.target != nullptr) {
                const kstd_result pointed = done.assignShared(done.target, done.keep.shared);
                kstd_ptrh_destruct(&done.keep);
                if (failed(pointed)) return fail(pointed, floor);
            } else {
                kstd_ptrh_destruct(&done.keep);
            }
            result = step;
        }
        return result;
    }

    // kstd_persistentType_loadPropertyNode called while a load call of this
    // composer runs.
    kstd_result loadWithinCall(const kstd_persistentType* type, void* object, const Node* node) {
        const char* at = static_cast<const char*>(object);
        if (scope_.windowBegin != nullptr && at >= scope_.windowBegin && at < scope_.windowBegin + scope_.windowSize)
            return start(type, object, node, nullptr);
        // Memory the composer cannot vouch for: load what is pending first,
        // then this object completely, in the order the calls came.
        VEXPERS_TRY(flushPending());
        VEXPERS_TRY(start(type, object, node, nullptr));
        return flushPending();
    }

private:
    // Objects pending on this thread: this composer's frames and those of
    // the composers whose load calls it runs inside.
    size_t pending() const { return outer_ + frames_.size(); }

    // One object more may be pending while that stays within the depth
    // limit and the node cap of the tree being composed from: a tree of n
    // nodes never nests deeper than n.
    kstd_result checkDepth(const Node* node) const {
        uint64_t limit = kstd_persistentPropertyTree_maxDepth;
        if (node->owner != nullptr && node->owner->nodeAllocator.maxBlocks >= 0 &&
            static_cast<uint64_t>(node->owner->nodeAllocator.maxBlocks) < limit)
            limit = static_cast<uint64_t>(node->owner->nodeAllocator.maxBlocks);
        return pending() < limit ? 0 : kstd_persistentResult_nestingTooDeep;
    }

    static size_t extentOf(const Record* record) {
        uint32_t size = 0;
        return failed(types::elementSizeOf(record, &size)) ? 0 : size;
    }

    kstd_result complete(const Completion* completion, kstd_result result) {
        if (completion == nullptr) return result;
        VEXPERS_TRY(completion->assignShared(completion->target, completion->shared));
        return result;
    }

    // Runs `call` as a load call for `object`: frames it starts are taken up
    // in call order after it returns. Nested in an open load call, the
    // frames join that call's pending ones.
    template <class Call>
    kstd_result withinLoadCall(void* object, size_t extent, Call call) {
        const Scope saved = scope_;
        if (!scope_.open) scope_.pendingBase = frames_.size();
        scope_.open = true;
        scope_.windowBegin = static_cast<const char*>(object);
        scope_.windowSize = extent;
        const kstd_result result = call();
        if (!saved.open) frames_.reverseFrom(scope_.pendingBase);
        scope_ = saved;
        return result;
    }

    // Runs `call` (an entry's load accessor) as a load call of its own.
    template <class Call>
    kstd_result freshLoadCall(void* object, size_t extent, Call call) {
        const Scope saved = scope_;
        scope_ = Scope{};
        const kstd_result result = withinLoadCall(object, extent, call);
        scope_ = saved;
        return result;
    }

    template <class Call>
    kstd_result outsideLoadCall(Call call) {
        const Scope saved = scope_;
        scope_ = Scope{};
        const kstd_result result = call();
        scope_ = saved;
        return result;
    }

    // Loads the frames the open load call has started so far.
    kstd_result flushPending() {
        const size_t base = scope_.pendingBase;
        if (frames_.size() <= base) return 0;
        frames_.reverseFrom(base);
        const Scope saved = scope_;
        const kstd_result result = run(base);
        scope_ = saved;
        return result;
    }

    // Loading one entry from a node.
    kstd_result loadEntry(void* object, size_t extent, PropertyInfoEntry& entry, const Node* node) {
        if (object == nullptr) return kstd_persistentResult_nullArgument;
        const kstd_persistentPropertyAccessorSlots& slots = entry.accessors.slots;
        if (slots.memberLocator != nullptr ? slots.memberLoadAccessor == nullptr : slots.directLoadAccessor == nullptr)
            return kstd_persistentResult_operationMissing;
        if (!property::entryIsResolved(entry)) {
            // An entry of type "void" (the shared pointers') loads without a
            // registered type; its type may be read only under the lock
            // until it is resolved.
            bool isVoid = false;
            {
                types::RegistryLock lock;
                VEXPERS_TRY(lock.take());
                const char16_t* name = nullptr;
                if (!failed(kstd_persistentType_getTypeName(&entry.info.type, &name)) && name != nullptr)
                    isVoid = ksys_wcscmp(name, u"void") == 0;
            }
            if (!isVoid) {
                VEXPERS_TRY(property::resolveEntry(&entry));
                if (!property::entryIsResolved(entry)) return kstd_persistentResult_typeNotRegistered;
            }
        }
        const kstd_persistentType* entryType = &entry.info.type;
        if (slots.memberLocator != nullptr) {
            void* first = nullptr;
            void* second = nullptr;
            VEXPERS_TRY(slots.memberLocator(object, &first, &second));
            const auto load = slots.memberLoadAccessor;
            return freshLoadCall(object, extent, [&] { return load(object, first, second, entryType, node); });
        }
        const auto load = slots.directLoadAccessor;
        return freshLoadCall(object, extent, [&] { return load(object, entryType, node); });
    }

    kstd_result fail(kstd_result result, size_t floor) {
        dropFramesAbove(floor);
        return result;
    }

    void dropFramesAbove(size_t floor) {
        while (frames_.size() > floor) {
            kstd_ptrh_destruct(&frames_.top().keep);
            frames_.pop();
        }
    }

    Composer* previous_;
    size_t outer_;
    WorkStack<Frame> frames_;
    Scope scope_;
};

// Starts loading a pointee with the composer whose load call is running, or
// loads it completely with a composer of its own.
kstd_result loadPointee(const kstd_persistentType* type, void* whole, const Node* node, const Completion& completion) {
    if (activeComposer != nullptr && activeComposer->inLoadCall())
        return activeComposer->start(type, whole, node, &completion);
    Composer composer;
    const kstd_result started = composer.start(type, whole, node, &completion);
    if (failed(started) || !composer.hasFrames()) return started;
    return composer.run(0);
}

// ---- Shared pointers ------------------------------------------------------------------------

template <class P>
struct PointerOps;
template <>
struct PointerOps<kstd_ptrh> {
    static kstd_result reset(void* pointer) { return kstd_ptrh_reset(static_cast<kstd_ptrh*>(pointer)); }
    static kstd_result assignShared(void* pointer, kstd_shared* shared) {
        return kstd_ptrh_assignShared(static_cast<kstd_ptrh*>(pointer), shared);
    }
};
template <>
struct PointerOps<kstd_ptrhConst> {
    static kstd_result reset(void* pointer) { return kstd_ptrhConst_reset(static_cast<kstd_ptrhConst*>(pointer)); }
    static kstd_result assignShared(void* pointer, kstd_shared* shared) {
        return kstd_ptrhConst_assignShared(static_cast<kstd_ptrhConst*>(pointer), shared);
    }
};

// A variant owned by this scope.
struct LocalVariant {
    kstd_persistentVariant v;
    LocalVariant() { kstd_persistentVariant_construct(&v); }
    ~LocalVariant() { kstd_persistentVariant_destruct(&v); }
    LocalVariant(const LocalVariant&) = delete;
    LocalVariant& operator=(const LocalVariant&) = delete;
};

// Points the shared pointer at the object that `variant` holds: its shared
// object, or null when it holds no object; an object that is not shared
// cannot be pointed at (0x800040CD).
template <class P>
kstd_result pointAt(void* pointer, const kstd_persistentVariant* variant) {
    kstd_shared* shared = nullptr;
    VEXPERS_TRY(kstd_persistentVariant_getShared(variant, &shared));
    if (shared != nullptr) return PointerOps<P>::assignShared(pointer, shared);
    void* whole = nullptr;
    VEXPERS_TRY(kstd_persistentVariant_getWholeObject(variant, &whole));
    if (whole != nullptr) return kstd_persistentResult_typeMismatch;
    return PointerOps<P>::assignShared(pointer, nullptr);
}

template <class P>
kstd_result loadPointer(void* object, const Node* node) {
    if (object == nullptr || node == nullptr) return kstd_persistentResult_nullArgument;
    const uint32_t flags = node->flags;
    kstd_persistentPropertyTree* tree = node->owner;
    if ((flags & flagLeaf) == 0) {
        // The pointee is defined here: create it with the node's type.
        if (tree == nullptr) return kstd_persistentResult_nullArgument;
        LocalVariant created;
        VEXPERS_TRY(kstd_persistentVariant_resetNewObject(&created.v, &node->info.type));
        // The variant keeps the object alive through its shared interface;
        // an object without one is owned by nobody and is deleted again.
        void* whole = created.v.value.pointer;
        kstd_shared* shared = created.v.sharedObject.shared;
        if (shared == nullptr) {
            if (whole != nullptr) kstd_persistentType_deleteObject(&created.v.type, &whole);
            return kstd_persistentResult_typeMismatch;
        }
        // Recorded before it loads, so that references inside its own
        // subtree resolve to it.
        if ((flags & flagHasObjectId) != 0)
            VEXPERS_TRY(kstd_persistentPropertyTree_setObjectWithId(tree, node->objectId, &created.v));
        return loadPointee(&node->info.type, whole, node, Completion{object, PointerOps<P>::assignShared, shared});
    }
    const uint32_t kind = leafKindOf(flags);
    if (kind == kstd_persistentLeafKind_nullPointer) return PointerOps<P>::reset(object);
    if (kind != 4) return kstd_persistentResult_typeMismatch;
    if ((flags & flagHasObjectId) == 0 || node->objectId < 0) return kstd_persistentResult_objectIdNotFound;
    if (tree == nullptr) return kstd_persistentResult_nullArgument;
    LocalVariant recorded;
    VEXPERS_TRY(kstd_persistentPropertyTree_getObjectById(tree, node->objectId, &recorded.v));
    return pointAt<P>(object, &recorded.v);
}

// ---- Vector items ------------------------------------------------------------------------

// Copies `count` items of `itemType` one at a time through a variant, for a
// source or a destination whose items do not lie at the item size apart.
kstd_result copyItemByItem(const kstd_persistentType* itemType, void* sourceContainer, void* first,
                           uint32_t sourceContiguous, uint32_t sourceStride,
                           const kstd_persistentContainerVtable* sourceTable, intptr_t count, void* container,
                           const kstd_persistentContainerVtable* table) {
    if (table->resize == nullptr || table->getBegin == nullptr || table->getLayout == nullptr ||
        table->getNextElement == nullptr || (sourceContiguous == 0 && sourceTable == nullptr))
        return kstd_persistentResult_operationMissing;
    uint32_t contiguous = 0;
    uint32_t stride = 0;
    VEXPERS_TRY(table->getLayout(&contiguous, &stride));
    VEXPERS_TRY(table->resize(container, count));
    void* to = nullptr;
    VEXPERS_TRY(table->getBegin(container, &to));
    void* from = first;
    LocalVariant item;
    for (intptr_t i = 0; i < count; ++i) {
        if (from == nullptr || to == nullptr) return kstd_persistentResult_nullArrayData;
        VEXPERS_TRY(kstd_persistentVariant_setValueUsingType(&item.v, itemType, from));
        VEXPERS_TRY(kstd_persistentVariant_getValueUsingType(&item.v, itemType, to));
        if (i + 1 == count) break;
        if (sourceContiguous != 0) from = static_cast<char*>(from) + sourceStride;
        else VEXPERS_TRY(sourceTable->getNextElement(sourceContainer, &from));
        if (contiguous != 0) to = static_cast<char*>(to) + stride;
        else VEXPERS_TRY(table->getNextElement(container, &to));
    }
    return 0;
}

}  // namespace

kstd_result loadSharedPointer(void* object, const kstd_persistentType*, const Node* node) {
    return loadPointer<kstd_ptrh>(object, node);
}

kstd_result loadSharedPointerConst(void* object, const kstd_persistentType*, const Node* node) {
    return loadPointer<kstd_ptrhConst>(object, node);
}

kstd_result loadVectorItems(void*, void* container, void* table, const kstd_persistentType* entryType,
                            const Node* node) {
    if (node == nullptr) return kstd_persistentResult_nullArgument;
    int32_t coreTypeId = kstd_persistentCoreTypeId_notSet;
    VEXPERS_TRY(kstd_persistentType_getCoreTypeId(entryType, &coreTypeId));
    if (coreTypeId < 0) return kstd_persistentResult_invalidCoreTypeId;
    if ((node->flags & flagHasValue) == 0) return ksys_result_failure;

    kstd_persistentType itemType;
    VEXPERS_TRY(kstd_persistentType_construct(&itemType));
    VEXPERS_DEFER { kstd_persistentType_destruct(&itemType); };
    void* source = nullptr;
    uint32_t sourceContiguous = 0;
    uint32_t sourceStride = 0;
    void* first = nullptr;
    intptr_t count = 0;
    const kstd_persistentContainerVtable* sourceTable = nullptr;
    VEXPERS_TRY(kstd_persistentPropertyNode_getContainer(node, &source, &sourceContiguous, &sourceStride, &first,
                                                         &count, &sourceTable, &itemType));
    int32_t itemCoreTypeId = kstd_persistentCoreTypeId_notSet;
    if (failed(kstd_persistentType_getCoreTypeId(&itemType, &itemCoreTypeId)) || itemCoreTypeId != coreTypeId)
        return kstd_persistentResult_typeMismatch;
    if (count < 0) return kstd_persistentResult_invalidCount;
    if (count > 0 && first == nullptr) return kstd_persistentResult_nullArrayData;

    const auto* target = static_cast<const kstd_persistentContainerVtable*>(table);
    if (target == nullptr) return kstd_persistentResult_noObjectVtable;
    if (target->assignElements == nullptr) return kstd_persistentResult_operationMissing;
    if (count == 0) return target->assignElements(container, first, first);
    uint32_t itemSize = 0;
    VEXPERS_TRY(kstd_persistentType_getElementSize(&itemType, &itemSize));
    // An allocated array (no container) lies at the item size apart.
    if (source == nullptr) {
        sourceContiguous = 1;
        sourceStride = itemSize;
    }
    if (sourceContiguous != 0 && sourceStride == itemSize) {
        const char* begin = static_cast<const char*>(first);
        return target->assignElements(container, begin, begin + size_t(count) * itemSize);
    }
    return copyItemByItem(&itemType, source, first, sourceContiguous, sourceStride, sourceTable, count, container,
                          target);
}

}  // namespace vexpers::tree

using namespace vexpers::tree;

VEXPERS_EXPORT kstd_result kstd_persistentType_loadPropertyNode(const kstd_persistentType* type, void* object,
                                                                const kstd_persistentPropertyNode* node) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(node != nullptr);
    if (object == nullptr) return kstd_persistentResult_nullArgument;
    if (activeComposer != nullptr && activeComposer->inLoadCall())
        return activeComposer->loadWithinCall(type, object, node);
    Composer composer;
    const kstd_result started = composer.start(type, object, node, nullptr);
    // Without entries to load, start() did all there was to do.
    if (vexpers::failed(started) || !composer.hasFrames()) return started;
    return composer.run(0);
}

#define VEXPERS_VECTOR_LOADER(stem)                                                                        \
    VEXPERS_EXPORT kstd_result stem##_loadPropertyNode(stem* object, const kstd_persistentType* type,      \
                                                       const kstd_persistentPropertyNode* node) {          \
        VEXPERS_REQUIRE(object != nullptr);                                                                \
        VEXPERS_REQUIRE(type != nullptr);                                                                  \
        VEXPERS_REQUIRE(node != nullptr);                                                                  \
        return kstd_persistentType_loadPropertyNode(type, object, node);                                   \
    }
#define VEXPERS_BUILTIN_SHARED_POINTER(stem)
#define VEXPERS_BUILTIN_VECTOR(stem, element, item, stride) VEXPERS_VECTOR_LOADER(stem)
#include "generated/builtin_types.def"
#undef VEXPERS_BUILTIN_SHARED_POINTER
#undef VEXPERS_BUILTIN_VECTOR
#undef VEXPERS_VECTOR_LOADER
