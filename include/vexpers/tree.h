/*
 * vexpers/tree.h - property nodes, node sections, the property tree and the
 * property processor.
 *
 * A property tree holds a decomposed value as a tree of property nodes: each
 * node stands for one property (descriptor, value, object identity and a flag
 * word saying what kind of node it is). Decomposition gives every shareable
 * object an id (0, 1, 2, ... in depth-first order) the first time it is met
 * and makes every later meeting a reference leaf, so shared and cyclic graphs
 * become finite trees. A storage format writes a tree by walking it with the
 * processor and a node visitor, turning each node into a node section
 * (kstd_persistentPropertyNodeSection_assignNode); it rebuilds a tree by
 * streaming sections back with the start/end protocol (startNode,
 * startChildNode, addChildLeafNode, endNode, isMatchingEnd). Objects are then
 * composed from the tree with kstd_persistentType_loadPropertyNode.
 *
 * Data read from a file reaches the tree only through sections: section types,
 * flag words, ids and counts that a well-behaved writer never produces give
 * result codes (ksys_result_failure for protocol violations), never
 * precondition faults or corrupted trees. Freeing, decomposing and walking do
 * not recurse per level, so deep trees do not overflow the stack.
 */
#ifndef VEXPERS_TREE_H
#define VEXPERS_TREE_H

#include "vexpers/base.h"
#include "vexpers/containers.h"
#include "vexpers/property.h"
#include "vexpers/propertyinfo.h"
#include "vexpers/recordvectors.h"
#include "vexpers/variant.h"
#include "vexpers/vector.h"

VEXPERS_EXTERN_C_BEGIN

/* ---- Flag word of nodes and sections ------------------------------------------------ */

#define kstd_persistentPropertyNodeFlag_arrayOfCoreItems 0x1u
#define kstd_persistentPropertyNodeFlag_arrayOfOtherItems 0x2u
#define kstd_persistentPropertyNodeFlag_compound 0x4u
#define kstd_persistentPropertyNodeFlag_leaf 0x8u
#define kstd_persistentPropertyNodeFlag_leafCoreValue 0x10u
#define kstd_persistentPropertyNodeFlag_leafNullPointer 0x20u
#define kstd_persistentPropertyNodeFlag_leafEmptyArray 0x40u
#define kstd_persistentPropertyNodeFlag_leafReference 0x80u
#define kstd_persistentPropertyNodeFlag_arrayItem 0x100u
#define kstd_persistentPropertyNodeFlag_started 0x10000u
#define kstd_persistentPropertyNodeFlag_ended 0x20000u
#define kstd_persistentPropertyNodeFlag_hasValue 0x40000u
#define kstd_persistentPropertyNodeFlag_hasObjectId 0x80000u
#define kstd_persistentPropertyNodeFlag_hasInfo 0x100000u
#define kstd_persistentPropertyNodeFlag_deleted 0x200000u
#define kstd_persistentPropertyNodeFlag_decomposed 0x400000u

/* Section types. */
#define kstd_persistentPropertyNodeSectionType_start 0u
#define kstd_persistentPropertyNodeSectionType_end 1u
#define kstd_persistentPropertyNodeSectionType_leaf 2u
#define kstd_persistentPropertyNodeSectionType_startWithValue 3u
#define kstd_persistentPropertyNodeSectionType_none 0xFFFFFFFFu

/* Limits for untrusted input. Data read from a file reaches a tree through
 * node sections and objects through composing; each limit below fails with
 * its own code, never a crash, and admits any legitimate graph (a chain of n
 * objects nests about 2n levels; freeing, walking and composing use heap work
 * stacks, so depth costs memory only).
 *
 * Object ids: 0 .. kstd_persistentPropertyTree_maxObjectId. A section with a
 *   larger id is refused by the start/end protocol, and recording one
 *   (setObjectWithId, findObject) fails; code
 *   kstd_persistentResult_invalidArgument. Ids far beyond those in use are
 *   stored sparsely, so one large id allocates nothing per unused id.
 * Nodes: at most nodeAllocator.maxBlocks nodes live in one tree at once, set
 *   to kstd_persistentPropertyTree_maxNodes when the tree is constructed; a
 *   program may lower it per tree. One more node (from sections,
 *   decomposition or allocNextChild) fails with
 *   kstd_persistentResult_tooManyNodes.
 * Nesting depth: composing keeps at most kstd_persistentPropertyTree_maxDepth
 *   objects pending at once, and never more than the tree's node cap; one
 *   level more fails with kstd_persistentResult_nestingTooDeep. A tree built
 *   from sections cannot nest deeper than its node cap.
 * Array counts: setPropertyArrayAndAlloc allocates at most
 *   kstd_persistentPropertyNodeSection_maxArrayBytes (count times element
 *   size); more fails with kstd_persistentResult_arraySizeOverflow.
 * Names: a section's property name and type name hold at most
 *   kstd_persistentPropertyNodeSection_maxNameUnits UTF-16 units; a longer
 *   one is refused by the start/end protocol with
 *   kstd_persistentResult_nameTooLong. */
/** Highest object id the registry records (ids 0 .. 2,147,483,646). */
#define kstd_persistentPropertyTree_maxObjectId 0x7FFFFFFE
/** Default node cap of a tree (33,554,432 nodes). */
#define kstd_persistentPropertyTree_maxNodes 0x2000000
/** Most objects composing keeps pending at once (10,000,000 levels). */
#define kstd_persistentPropertyTree_maxDepth 10000000
/** Most bytes (count times element size) setPropertyArrayAndAlloc allocates (1 GiB). */
#define kstd_persistentPropertyNodeSection_maxArrayBytes 0x40000000
/** Most UTF-16 units of a name in a section that starts a node (65,535). */
#define kstd_persistentPropertyNodeSection_maxNameUnits 0xFFFF

/* Leaf kinds: 0 not a leaf, 1 core value, 2 null pointer, 3 empty array,
 * 4 reference to an object that already has an id. Array kinds: 0 not an
 * array, 1 core items, 2 other items. */

/* Processor events. */
#define kstd_persistentPropertyProcessorEvent_bagBegin 0
#define kstd_persistentPropertyProcessorEvent_bagEnd 1
#define kstd_persistentPropertyProcessorEvent_propertyBegin 2
#define kstd_persistentPropertyProcessorEvent_propertyEnd 3
#define kstd_persistentPropertyProcessorEvent_nodeBegin 4
#define kstd_persistentPropertyProcessorEvent_leaf 5
#define kstd_persistentPropertyProcessorEvent_coreArray 6
#define kstd_persistentPropertyProcessorEvent_nodeEnd 7

/* ---- Records ------------------------------------------------------------------------ */

typedef struct kstd_persistentPropertyTree kstd_persistentPropertyTree;

/** A node: a block of its owner tree's allocator, never constructed by callers. */
struct kstd_persistentPropertyNode {
    uint32_t flags;
    kstd_persistentPropertyInfo info;
    kstd_persistentProperty leafProperty;
    int64_t objectId;
    int64_t numItems;
    kstd_persistentPropertyNode* firstChild;
    kstd_persistentPropertyNode* lastChild;
    kstd_persistentPropertyNode* nextSibling;
    kstd_persistentPropertyTree* owner;
};

/** The flat record in which a tree is streamed out and back in. */
typedef struct kstd_persistentPropertyNodeSection {
    uint32_t sectionType;
    uint32_t flags;
    kstd_persistentPropertyInfo info;
    int64_t objectId;
    int64_t numItems;
    kstd_persistentProperty property;
} kstd_persistentPropertyNodeSection;

struct kstd_persistentPropertyTree {
    kstd_persistentPropertyNode* firstChild;
    kstd_persistentPropertyNode* lastChild;
    kstd_blockAllocator nodeAllocator;
    kstd_persistentPropertyBagSet bagSet;
    /** By object id: the whole-object pointer, null for a free id. */
    kstd_vectorPtrConstVoid objectPointers;
    /** By object id: a variant holding the object. */
    kstd_vector_kstd_persistentVariant objects;
    /** Index from whole-object pointer to lowest id, and the objects of ids
     *  recorded far beyond the two vectors; memory of the tree (never touch
     *  it). */
    void* objectIndex;
};

typedef struct kstd_persistentPropertyProcessor {
    /** The bag of each depth, bagCount entries (null until a walk needs
     *  one); the block has room for bagCount rounded up to a power of two. */
    kstd_persistentPropertyBag** bags;
    int32_t bagCount;
    kstd_vector_kstd_persistentVariant sharedObjects;
    /** Index from whole-object pointer to position in sharedObjects. */
    void* sharedIndex;
} kstd_persistentPropertyProcessor;

/** Bag visitor: (context, event, depth, property or null, index, count,
 *  isShared, objectIndex, isNew, isLeaf). */
typedef kstd_result (*kstd_persistentPropertyBagVisitor)(void* context, int32_t event, int32_t depth,
                                                         const kstd_persistentProperty* property, int32_t index,
                                                         int32_t count, int32_t isShared, int32_t objectIndex,
                                                         int32_t isNew, int32_t isLeaf);
/** Node visitor: (context, event, depth, node). */
typedef kstd_result (*kstd_persistentPropertyNodeVisitor)(void* context, int32_t event, int32_t depth,
                                                          const kstd_persistentPropertyNode* node);

/* ---- Node: start/end protocol ------------------------------------------------------- */

/*
 * Rebuilding a tree from sections. startNode starts a fresh node from a start
 * (0), leaf (2) or start-with-value (3) section: it copies the descriptor, the
 * flags, the id and the item count, takes the value for types 2 and 3 (unless
 * the section is a reference leaf, 0x88; taking a value sets the id to -1 and
 * adds the value's kind flags), and marks the node started (and ended for a
 * leaf). The section's own started and ended bits are not taken over: they
 * describe the node the section was written from. A failing copy of the
 * descriptor or value returns its code, leaving what was set before it.
 * startAndEndLeafNode takes leaf sections only.
 * startChildNode appends a new child to a started, not ended node and starts
 * it (*child is the new node, also when starting it fails: the child then
 * stays in the list, not started); addChildLeafNode does the same with a leaf
 * section. A failing node allocation (ksys_result_outOfMemory, or
 * kstd_persistentResult_tooManyNodes at the tree's node cap) changes no list. endNode ends a
 * started node (a leaf may be ended again). isMatchingEnd is 1 for an end
 * section (1) whose name is null, empty or the node's name, else 0.
 *
 * Sections come from files, so everything in them gives a code, never a
 * precondition fault. Protocol violations fail with ksys_result_failure and
 * change nothing: starting a started node, a child of a node that is not
 * open, ending a node that is not started or a non-leaf twice, a section type
 * other than 0, 2, 3 (startAndEndLeafNode: other than 2), and a section no
 * writer makes: a flag word with bits outside the flags above, more than one
 * leaf kind bit, a kind bit without the leaf bit, a leaf bit without a kind
 * where no value is taken (a section that gives its value may leave the kind
 * to it, as setLeafPropertyValue does), both array kinds, an item count below
 * 0 or an id below -1, compound together with an array bit or with a leaf
 * bit other than a reference leaf's (decomposition marks an object compound
 * before it finds the object met already).
 * setIsStarted sets the started flag only (a node built by hand); getIsStarted
 * and getIsEnded read the flags (0 first). These three always succeed.
 */
VEXPERS_API kstd_result kstd_persistentPropertyNode_startNode(kstd_persistentPropertyNode* node,
                                                              const kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNode_startAndEndLeafNode(
    kstd_persistentPropertyNode* node, const kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNode_startChildNode(kstd_persistentPropertyNode* node,
                                                                   const kstd_persistentPropertyNodeSection* section,
                                                                   kstd_persistentPropertyNode** child);
VEXPERS_API kstd_result kstd_persistentPropertyNode_addChildLeafNode(kstd_persistentPropertyNode* node,
                                                                     const kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNode_endNode(kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_persistentPropertyNode_isMatchingEnd(const kstd_persistentPropertyNode* node,
                                                                  const kstd_persistentPropertyNodeSection* section,
                                                                  uint32_t* matches);
VEXPERS_API kstd_result kstd_persistentPropertyNode_setIsStarted(kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsStarted(const kstd_persistentPropertyNode* node,
                                                                 uint32_t* isStarted);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsEnded(const kstd_persistentPropertyNode* node,
                                                               uint32_t* isEnded);
/** Sets the node's value from `property` and marks it started and ended. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_resetLeafProperty(kstd_persistentPropertyNode* node,
                                                                      const kstd_persistentProperty* property);

/* ---- Node: navigation and lookups ------------------------------------------------------ */

/* getFirstChild, getNextSibling and getOwner (and the Const forms) give the
 * linked node or the owner tree, null when there is none; the output is null
 * first and they always succeed. */

VEXPERS_API kstd_result kstd_persistentPropertyNode_getFirstChild(kstd_persistentPropertyNode* node,
                                                                  kstd_persistentPropertyNode** child);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getFirstChildConst(const kstd_persistentPropertyNode* node,
                                                                       const kstd_persistentPropertyNode** child);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getNextSibling(kstd_persistentPropertyNode* node,
                                                                   kstd_persistentPropertyNode** sibling);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getNextSiblingConst(const kstd_persistentPropertyNode* node,
                                                                        const kstd_persistentPropertyNode** sibling);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getOwner(const kstd_persistentPropertyNode* node,
                                                             kstd_persistentPropertyTree** owner);
/** The owner tree's bag set, or null without an owner. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_getOwnerBagSet(const kstd_persistentPropertyNode* node,
                                                                   kstd_persistentPropertyBagSet** bagSet);
/** 1 for a null or empty name, else the exact name test of the node's descriptor. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_doesNameMatch(const kstd_persistentPropertyNode* node,
                                                                  const char16_t* name, uint32_t* matches);
/** The first child whose name matches (a null or empty name: 0x800040C3);
 *  none: null and success, or 0x800040C9 when mustExist is not 0. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_getMatchingChild(kstd_persistentPropertyNode* node,
                                                                     const char16_t* name, uint32_t mustExist,
                                                                     kstd_persistentPropertyNode** child);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getMatchingChildConst(const kstd_persistentPropertyNode* node,
                                                                          const char16_t* name, uint32_t mustExist,
                                                                          const kstd_persistentPropertyNode** child);

/* ---- Node: descriptor and value ---------------------------------------------------------- */

/*
 * getInfo copies the descriptor (fails with ksys_result_failure without the
 * has-info flag); setInfo sets it. getPropertyPtrConst gives the node's
 * property when it has a value; getLeafPropertyPtrConst and getLeafProperty
 * only for a leaf with a value (else ksys_result_failure, output null).
 * getIsLeaf decodes the leaf kind (leafKind optional): the first of the masks
 * 0x18, 0x28, 0x48, 0x88 whose bits are all set; a leaf flag without any of
 * them fails with ksys_result_failure (outputs 0). getIsTerminal is 1 for a
 * leaf or an array of core items; getIsArrayItem and getIsDeleted read their
 * flags; getDataAccess reads the descriptor's (these three always succeed).
 * getObjectId gives the has-id flag, the id and whether the node is a
 * reference leaf. getEnumAsInt64 /
 * getEnumBitfieldAsUInt64 read the leaf value of the child `name` (or of the
 * node itself when it has no such child) as a 64-bit integer.
 * getCoreTypeOrEnumVariant finds the variant holding the node's core or enum
 * value: its own value, or its child "value" (null with success when there is
 * none and `required` is 0; else 0x800040CD for an array item, a type that is
 * neither core nor enum or an enum without that child, 0x800040C8 for a type
 * nobody registered, ksys_result_failure without a descriptor). A descriptor
 * whose type record is not a registered one is looked up in the registry by
 * name and derivation. getContainer and getArrayBeginSizeIntPtr describe the
 * node's array value (every output cleared first; ksys_result_failure
 * without a value). getFullProperty always fails with ksys_result_failure;
 * getRegionType_ always gives three zeros.
 */
VEXPERS_API kstd_result kstd_persistentPropertyNode_getInfo(const kstd_persistentPropertyNode* node,
                                                            kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyNode_setInfo(kstd_persistentPropertyNode* node,
                                                            const kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getDataAccess(const kstd_persistentPropertyNode* node,
                                                                  uint32_t* dataAccess);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getPropertyPtrConst(const kstd_persistentPropertyNode* node,
                                                                        const kstd_persistentProperty** property);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getLeafPropertyPtrConst(const kstd_persistentPropertyNode* node,
                                                                            const kstd_persistentProperty** property);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getLeafProperty(const kstd_persistentPropertyNode* node,
                                                                    kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsLeaf(const kstd_persistentPropertyNode* node,
                                                              uint32_t* isLeaf, uint32_t* leafKind);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsTerminal(const kstd_persistentPropertyNode* node,
                                                                  uint32_t* isTerminal);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsArrayItem(const kstd_persistentPropertyNode* node,
                                                                   uint32_t* isArrayItem);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getIsDeleted(const kstd_persistentPropertyNode* node,
                                                                 uint32_t* isDeleted);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getObjectId(const kstd_persistentPropertyNode* node,
                                                                uint32_t* hasId, int64_t* id, uint32_t* isReference);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getEnumAsInt64(const kstd_persistentPropertyNode* node,
                                                                   const char16_t* name, int64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getEnumBitfieldAsUInt64(const kstd_persistentPropertyNode* node,
                                                                            const char16_t* name, uint64_t* value);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(const kstd_persistentPropertyNode* node,
                                                                             uint32_t required,
                                                                             const kstd_persistentVariant** variant);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getContainer(const kstd_persistentPropertyNode* node,
                                                                 void** container, uint32_t* containerValue,
                                                                 uint32_t* elementSize, void** first, intptr_t* count,
                                                                 const kstd_persistentContainerVtable** table,
                                                                 kstd_persistentType* itemType);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getArrayBeginSizeIntPtr(const kstd_persistentPropertyNode* node,
                                                                            void** first, intptr_t* count);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getArrayBeginSizeIntPtrConst(
    const kstd_persistentPropertyNode* node, const void** first, intptr_t* count);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getFullProperty(const kstd_persistentPropertyNode* node,
                                                                    kstd_persistentProperty* property);
VEXPERS_API kstd_result kstd_persistentPropertyNode_getRegionType_(const kstd_persistentPropertyNode* node,
                                                                   int32_t* first, int32_t* second, int32_t* third);
/** Decomposes `property` into this node, replacing its former contents and
 *  subtree (see the tree); ids continue from the owner's registry. `property`
 *  must not lie in the node's own subtree. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_resetDecomposeProperty(kstd_persistentPropertyNode* node,
                                                                           const kstd_persistentProperty* property,
                                                                           uint32_t isArrayItem);
/** Frees the node and its subtree back to the owner tree's allocator, without
 *  recursion (deep trees do not overflow the stack). The node is not unlinked
 *  from a list it is in. Every node is freed even when destroying one fails;
 *  the first failure is returned. */
VEXPERS_API kstd_result kstd_persistentPropertyNode_freeNodeAndChildren(kstd_persistentPropertyNode* node);

/* ---- Node section ----------------------------------------------------------------------- */

/* Life cycle (the family of vexpers/base.h): construct and reset give section
 * type 0xFFFFFFFF, flags 0, objectId -1, numItems 0, a default descriptor and
 * property; assign copies every field. */
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_construct(kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_constructCopy(
    kstd_persistentPropertyNodeSection* section, const kstd_persistentPropertyNodeSection* source);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_assign(kstd_persistentPropertyNodeSection* section,
                                                                  const kstd_persistentPropertyNodeSection* source);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_destruct(kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_reset(kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_new(kstd_persistentPropertyNodeSection** out);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_newClone(kstd_persistentPropertyNodeSection** out,
                                                                    const kstd_persistentPropertyNodeSection* source);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_delete(kstd_persistentPropertyNodeSection** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyNodeSection(kstd_persistentPropertyNodeSection* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyNodeSection(kstd_persistentPropertyNodeSection** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyNodeSection(
    kstd_result (*function)(kstd_persistentPropertyNodeSection*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyNodeSection(
    kstd_result (*function)(kstd_persistentPropertyNodeSection**));

/*
 * Writing a section: assignNode copies a node (flags, id, item count,
 * descriptor, property) under a section type; for types 0, 2, 3 it adds
 * has-info and started. Building a section for reading: setObjectInfo sets
 * the descriptor and builds the flags from the kinds (it first looks up the
 * type of `objectInfo`; a failure leaves the section unchanged);
 * setObjectInfoNonCoreArrayItem makes the start section of one item of an
 * array of other items; setLeafPropertyValue, setPropertyPointerNull,
 * setPropertyArrayEmpty and setPropertyArrayAndAlloc set the property from
 * the section's descriptor (the last allocates `count` items and gives their
 * first element and element size, both outputs optional; a negative count
 * fails with 0x800040D7 and one whose items would take more than
 * kstd_persistentPropertyNodeSection_maxArrayBytes with 0x800040DC, before
 * anything changes). getObjectInfoNonCoreArrayItem_ fails with
 * ksys_result_failure on a section without the array-item flag.
 */
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_assignNode(kstd_persistentPropertyNodeSection* section,
                                                                      const kstd_persistentPropertyNode* node,
                                                                      uint32_t sectionType);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getSectionType(
    const kstd_persistentPropertyNodeSection* section, uint32_t* sectionType);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setSectionType(kstd_persistentPropertyNodeSection* section,
                                                                          uint32_t sectionType);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setObjectInfo(
    kstd_persistentPropertyNodeSection* section, const kstd_persistentPropertyInfo* info,
    const kstd_persistentPropertyInfo* objectInfo, uint32_t hasObjectId, int64_t objectId, uint32_t leafKind,
    uint32_t arrayKind, int64_t numItems, uint32_t isDeleted);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setObjectInfoNonCoreArrayItem(
    kstd_persistentPropertyNodeSection* section, uint32_t hasObjectId, int64_t objectId);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectInfoNonCoreArrayItem_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* hasObjectId, int64_t* objectId);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setLeafPropertyValue(
    kstd_persistentPropertyNodeSection* section, const kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setPropertyPointerNull(
    kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setPropertyArrayEmpty(
    kstd_persistentPropertyNodeSection* section);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(
    kstd_persistentPropertyNodeSection* section, int32_t count, void** first, uint32_t* elementSize);

/* Reading a section: each getter reads one field or a part of it, with its
 * outputs cleared first. The flag, id and count getters always succeed. The
 * name, type-name and core-type-id getters answer as the descriptor's or
 * type's function of that name, with its failures (0x80004100 for an empty
 * type, 0x800040C8 for the core type id of an unregistered one); the names of
 * getObjectTypeName_ / getObjectRunTimeTypeName_ are those of the declared
 * type and of the value actually held, getObjectCoreTypeId_ that of the value.
 * getNodeSectionPropertyInfo_ and getObjectVariant_ assign the descriptor and
 * the value to the caller's constructed records. getIsLeaf and
 * getPropertyAndObjectInfo_ decode the leaf kind as the node's getIsLeaf does
 * (ksys_result_failure for a leaf bit without a kind); the kinds' outputs are
 * optional in getIsLeaf and getIsArray. */
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getIsLeaf(const kstd_persistentPropertyNodeSection* section,
                                                                     uint32_t* isLeaf, uint32_t* leafKind);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getIsArray(const kstd_persistentPropertyNodeSection* section,
                                                                      uint32_t* isArray, uint32_t* arrayKind);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getIsDeleted_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* isDeleted);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getPointerIsNull_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* isNull);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getDataAccess_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* dataAccess);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getName_(const kstd_persistentPropertyNodeSection* section,
                                                                    const char16_t** name);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectTypeName_(
    const kstd_persistentPropertyNodeSection* section, const char16_t** name);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectRunTimeTypeName_(
    const kstd_persistentPropertyNodeSection* section, const char16_t** name);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectCoreTypeId_(
    const kstd_persistentPropertyNodeSection* section, int32_t* coreTypeId);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectId_(
    const kstd_persistentPropertyNodeSection* section, uint32_t* hasObjectId, int64_t* objectId);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getNumItemsIfArray_(
    const kstd_persistentPropertyNodeSection* section, int64_t* numItems);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getNodeSectionPropertyInfo_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentPropertyInfo* info);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getObjectVariant_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_getPropertyAndObjectInfo_(
    const kstd_persistentPropertyNodeSection* section, kstd_persistentProperty* property,
    kstd_persistentPropertyInfo* info, uint32_t* hasObjectId, int64_t* objectId, uint32_t* leafKind,
    uint32_t* arrayKind, int64_t* numItems, uint32_t* isDeleted);
/** 1 for the same record, else the descriptor comparison of the two infos. */
VEXPERS_API kstd_result kstd_persistentPropertyNodeSection_compareEqualPropertyInfo(
    const kstd_persistentPropertyNodeSection* first, const kstd_persistentPropertyNodeSection* second,
    uint32_t* equal);

/* ---- Tree --------------------------------------------------------------------------------- */

/* Life cycle: a tree is not copied: assigning it to itself succeeds, any
 * other source is a precondition fault (so constructCopy and newClone with a
 * source succeed only through that rule). reset frees every node, forgets all
 * objects and resets the bag set; the allocator keeps its memory for the next
 * nodes. destruct frees the nodes before the registry releases the objects. */
VEXPERS_API kstd_result kstd_persistentPropertyTree_construct(kstd_persistentPropertyTree* tree);
VEXPERS_API kstd_result kstd_persistentPropertyTree_constructCopy(kstd_persistentPropertyTree* tree,
                                                                  const kstd_persistentPropertyTree* source);
VEXPERS_API kstd_result kstd_persistentPropertyTree_assign(kstd_persistentPropertyTree* tree,
                                                           const kstd_persistentPropertyTree* source);
VEXPERS_API kstd_result kstd_persistentPropertyTree_destruct(kstd_persistentPropertyTree* tree);
VEXPERS_API kstd_result kstd_persistentPropertyTree_reset(kstd_persistentPropertyTree* tree);
VEXPERS_API kstd_result kstd_persistentPropertyTree_new(kstd_persistentPropertyTree** out);
VEXPERS_API kstd_result kstd_persistentPropertyTree_newClone(kstd_persistentPropertyTree** out,
                                                             const kstd_persistentPropertyTree* source);
VEXPERS_API kstd_result kstd_persistentPropertyTree_delete(kstd_persistentPropertyTree** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyTree(kstd_persistentPropertyTree* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyTree(kstd_persistentPropertyTree** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyTree(kstd_result (*function)(kstd_persistentPropertyTree*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyTree(
    kstd_result (*function)(kstd_persistentPropertyTree**));

/** The first top-level node, null when the tree is empty (always succeeds). */
VEXPERS_API kstd_result kstd_persistentPropertyTree_getFirstChild(kstd_persistentPropertyTree* tree,
                                                                  kstd_persistentPropertyNode** node);
VEXPERS_API kstd_result kstd_persistentPropertyTree_getFirstChildConst(const kstd_persistentPropertyTree* tree,
                                                                       const kstd_persistentPropertyNode** node);
/** A new top-level node appended to the tree. Nodes are blocks of the tree's
 *  allocator; at the tree's node cap the next allocation fails with
 *  kstd_persistentResult_tooManyNodes and changes no list. */
VEXPERS_API kstd_result kstd_persistentPropertyTree_allocNextChild(kstd_persistentPropertyTree* tree,
                                                                   kstd_persistentPropertyNode** node);
/** A node of the tree's allocator linked nowhere (free it with freeNodeAndChildren). */
VEXPERS_API kstd_result kstd_persistentPropertyTree_allocTempNode(kstd_persistentPropertyTree* tree,
                                                                  kstd_persistentPropertyNode** node);
/**
 * Resets the tree (ids start again at 0) and decomposes `property` into one
 * new top-level node, depth first in property order, without recursion: a
 * core value becomes a leaf (0x18); a null pointer or an object value without
 * an object a leaf 0x28; an empty array a leaf 0x48 with its array kind; an
 * array of core items a terminal node 0x1 holding the whole array; an array
 * of other items a node 0x2 without children; an object, pointer or enum a
 * compound node 0x4 with one child per persistent property. A shareable
 * object (a non-null pointer, or an object its type calls shareable) that is
 * not an array item gets the next id (has-object-id) the first time it is
 * met; met again it becomes a reference leaf (0x80088) with that id and no
 * children, unless it is held by value (object category, value derivation),
 * which is expanded again in full without an id. One bag of the tree's bag
 * set is borrowed at a time, and the bags hold no values afterwards, so the
 * tree keeps objects alive only through its nodes and its registry. The first failure ends the decomposition and is
 * returned; the nodes built so far stay, marked decomposed (0x400000) only
 * where their subtree is complete.
 */
VEXPERS_API kstd_result kstd_persistentPropertyTree_resetDecomposeProperty(kstd_persistentPropertyTree* tree,
                                                                           const kstd_persistentProperty* property);

/*
 * Object registry. setObjectWithId records the object held by `value` under
 * `id`: negative or above kstd_persistentPropertyTree_maxObjectId fails with
 * 0x80004040; a value of neither the object category nor the pointer
 * derivation with 0x800040D6, no object with 0x800040CC, an id in use with
 * 0x80001E7F, vectors of different lengths with 0x800040DF. An id at most
 * max(length, 4096) past the end of objectPointers and objects grows both to
 * id + 1 entries (5 on an empty registry gives 6); an id further out is kept
 * aside, allocating nothing per unused id below it, and moves into the
 * vectors when they grow over it. getObjectById resets `value`, then gives the
 * recorded variant (0x800040DE for a negative, free or unknown id).
 * findObject gives the lowest id under which the object held by `value` (its
 * whole object) is recorded, with isNew 0; a new object is recorded under
 * the next id (one past the highest id the registry has held or grown to
 * since it was last cleared) with isNew 1, so decomposition numbers objects
 * 0, 1, 2, ... in the order it first meets them. Lookups take constant time.
 * forgetAllObjects clears the registry and releases the objects (nodes keep
 * their ids).
 */
VEXPERS_API kstd_result kstd_persistentPropertyTree_setObjectWithId(kstd_persistentPropertyTree* tree, int64_t id,
                                                                    const kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentPropertyTree_getObjectById(const kstd_persistentPropertyTree* tree, int64_t id,
                                                                  kstd_persistentVariant* value);
VEXPERS_API kstd_result kstd_persistentPropertyTree_findObject(kstd_persistentPropertyTree* tree,
                                                               const kstd_persistentVariant* value, int64_t* id,
                                                               uint32_t* isNew);
VEXPERS_API kstd_result kstd_persistentPropertyTree_forgetAllObjects(kstd_persistentPropertyTree* tree);

/* ---- Processor ------------------------------------------------------------------------------ */

/* Life cycle (the family of vexpers/base.h without the copy forms). reset
 * releases the bags and the shared objects met. */
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_construct(kstd_persistentPropertyProcessor* processor);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_destruct(kstd_persistentPropertyProcessor* processor);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_reset(kstd_persistentPropertyProcessor* processor);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_new(kstd_persistentPropertyProcessor** out);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_delete(kstd_persistentPropertyProcessor** out);

VEXPERS_API void ksys_typeCheck_kstd_persistentPropertyProcessor(kstd_persistentPropertyProcessor* object);
VEXPERS_API void ksys_typeCheckPtr_kstd_persistentPropertyProcessor(kstd_persistentPropertyProcessor** object);
VEXPERS_API void ksys_typeCheckFunc_kstd_persistentPropertyProcessor(
    kstd_result (*function)(kstd_persistentPropertyProcessor*));
VEXPERS_API void ksys_typeCheckFuncPtr_kstd_persistentPropertyProcessor(
    kstd_result (*function)(kstd_persistentPropertyProcessor**));

/*
 * Walks. A null processor, value, bag, tree or visitor is a precondition
 * fault. The result is that of the last visitor call when the walk
 * succeeds, else the first failure (of the visitor or of the library), after
 * which nothing further is called.
 *
 * processProperty empties the bag of depth 0 and adds `property` to it;
 * processPropertyBag makes that bag a copy of `bag`. Then the bag walk: for
 * the bag of depth d, event 0 (property null, index -1, count the bag's
 * size); for each property, event 2 with its index, the bag's size, its
 * identity and whether it is a leaf; a property that is not a leaf and not a
 * shared object met before is expanded into the bag of depth d + 1 (its
 * object's persistent properties; a non-empty array fails with 0x800040CA)
 * and walked at d + 1; then event 3 as event 2; finally event 1 (index and
 * count the bag's size). Identity: a shareable object (a non-null pointer,
 * or an object whose type is always shareable or answers "kstd_shared")
 * gets isShared 1 and objectIndex, its position in `sharedObjects` by first
 * meeting; isNew is 1 when it was appended now. An object held by value is
 * appended (and expanded) every time; a pointer to an object first met by
 * value finds that entry. `sharedObjects` keeps its objects alive until
 * reset, so a second walk on the same processor reports them as met. The
 * processor keeps one bag per depth, reused by every walk.
 *
 * processPropertyTree walks each top-level node of `tree`;
 * processPropertyNode walks `node` at `depth` (below 0: precondition
 * fault): a leaf gives event 5, an array of core items event 6; any other
 * node event 4, then its children at depth + 1 (none: 0x800040D9), then
 * event 7. A decomposed array of other items is expanded instead: its
 * container is read (no container 0x800040CC, an incomplete container table
 * 0x800040C1, a negative count 0x800040D7, a missing element 0x800040D8), an
 * empty one gives event 5 for the array's node, and each item is decomposed
 * as an array item named "i" into one temporary node of the tree (objects
 * met inside get ids in the tree as in decomposition) and walked at
 * depth + 1.
 *
 * Both walks keep their levels on work stacks, so values nested as deep as
 * memory allows are walked on any thread's stack; running out of memory
 * fails with ksys_result_outOfMemory.
 */
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_processProperty(kstd_persistentPropertyProcessor* processor,
                                                                         const kstd_persistentProperty* property,
                                                                         kstd_persistentPropertyBagVisitor visitor,
                                                                         void* context);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_processPropertyBag(
    kstd_persistentPropertyProcessor* processor, const kstd_persistentPropertyBag* bag,
    kstd_persistentPropertyBagVisitor visitor, void* context);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_processPropertyTree(
    kstd_persistentPropertyProcessor* processor, kstd_persistentPropertyTree* tree,
    kstd_persistentPropertyNodeVisitor visitor, void* context);
VEXPERS_API kstd_result kstd_persistentPropertyProcessor_processPropertyNode(
    kstd_persistentPropertyProcessor* processor, kstd_persistentPropertyNode* node, int32_t depth,
    kstd_persistentPropertyNodeVisitor visitor, void* context);

/* ---- Composing: per-vector load functions ----------------------------------------------- */

/* Each checks its three pointers (precondition faults) and returns
 * kstd_persistentType_loadPropertyNode(type, object, node). */
VEXPERS_API kstd_result kstd_vector8s_loadPropertyNode(kstd_vector8s* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector8_loadPropertyNode(kstd_vector8* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector16s_loadPropertyNode(kstd_vector16s* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector16_loadPropertyNode(kstd_vector16* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector32s_loadPropertyNode(kstd_vector32s* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector32_loadPropertyNode(kstd_vector32* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector64s_loadPropertyNode(kstd_vector64s* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector64_loadPropertyNode(kstd_vector64* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vectorIntPtrs_loadPropertyNode(kstd_vectorIntPtrs* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vectorIntPtr_loadPropertyNode(kstd_vectorIntPtr* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vectorf_loadPropertyNode(kstd_vectorf* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vectord_loadPropertyNode(kstd_vectord* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vectorb_loadPropertyNode(kstd_vectorb* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);
VEXPERS_API kstd_result kstd_vector_kstd_unicodeString_loadPropertyNode(kstd_vector_kstd_unicodeString* object, const kstd_persistentType* type,
                                             const kstd_persistentPropertyNode* node);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_TREE_H */
