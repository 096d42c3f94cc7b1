// The tree's object registry: the object recorded under each id.
//
// Ids are dense in the common case (decomposition numbers objects 0, 1, 2,
// ...; composing records the ids a writer gave out), and the registry keeps
// them in the tree's two vectors, indexed by id. An id read from a file may
// be far beyond the ids in use; growing the vectors up to it would allocate
// an entry per unused id below it. So an id goes into the vectors only when
// it lies within max(length, denseSlack) entries past their end; any other
// id is kept in a side table, and migrates into the vectors when they grow
// over it. An id is in use exactly when the vectors or the side table hold
// it.
//
// The linear search of findObject (the lowest id whose whole-object pointer
// equals the object's) is answered by a hash index from whole-object pointer
// to the lowest id recorded for it. Ids are never taken back one by one, so
// the lowest id of a pointer only changes when a lower one is recorded, and
// the index is rebuilt from nothing when the registry is cleared.
//
// The index and the side table live in one block that the tree's
// objectIndex field owns; it is made on the first record, emptied when the
// registry is cleared (forgetAllObjects, reset; it keeps its memory for the
// next decomposition unless that memory is far larger than the last one
// needed) and freed with the tree.
#include <new>

#include "tree/flat_table.hpp"
#include "tree/tree_internal.hpp"
#include "tree/tree_registry.hpp"
#include "vectors/vector_view.hpp"

namespace vexpers::tree {
namespace {

constexpr int64_t denseSlack = 4096;

// An object recorded under an id beyond the vectors.
struct SparseEntry {
    const void* whole;
    kstd_persistentVariant variant;
};

struct ObjectIndex {
    FlatTable lowestId;  // whole-object pointer -> lowest id
    FlatTable sparse;    // id + 1 -> SparseEntry*
    int64_t sparseEnd = 0;  // one past the highest id the side table was given
};

ObjectIndex* indexOf(const Tree* tree) { return static_cast<ObjectIndex*>(tree->objectIndex); }

uint64_t pointerKey(const void* whole) { return reinterpret_cast<uintptr_t>(whole); }
uint64_t idKey(int64_t id) { return static_cast<uint64_t>(id) + 1; }

SparseEntry* sparseEntry(const ObjectIndex* index, int64_t id) {
    if (index == nullptr) return nullptr;
    const int64_t* value = index->sparse.find(idKey(id));
    return value != nullptr ? reinterpret_cast<SparseEntry*>(*value) : nullptr;
}

void deleteSparseEntry(SparseEntry* entry, kstd_result* first) {
    const kstd_result result = kstd_persistentVariant_destruct(&entry->variant);
    if (*first >= 0 && result < 0) *first = result;
    void* memory = entry;
    ksys_memory_free_internal(&memory);
}

int64_t denseLength(const Tree* tree) { return sizeOf(tree->objectPointers); }

bool lengthsDiffer(const Tree* tree) { return sizeOf(tree->objectPointers) != sizeOf(tree->objects); }

// The variant recorded under `id`, or null for a free id.
const kstd_persistentVariant* recorded(const Tree* tree, int64_t id) {
    if (id < 0) return nullptr;
    if (id < denseLength(tree) && elementsOf<const void*>(tree->objectPointers)[static_cast<size_t>(id)] != nullptr)
        return &elementsOf<kstd_persistentVariant>(tree->objects)[static_cast<size_t>(id)];
    const SparseEntry* entry = sparseEntry(indexOf(tree), id);
    return entry != nullptr ? &entry->variant : nullptr;
}

kstd_result ensureIndex(Tree* tree) {
    if (tree->objectIndex != nullptr) return 0;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(ObjectIndex), &memory));
    tree->objectIndex = new (memory) ObjectIndex;
    return 0;
}

// Moves the side table's objects with ids in [from, to) into the vectors,
// which already reach `to`. One that cannot move stays in the side table,
// where lookups still find it.
void migrate(Tree* tree, int64_t from, int64_t to) {
    ObjectIndex* index = indexOf(tree);
    if (index == nullptr) return;
    auto pointers = elementsOf<const void*>(tree->objectPointers);
    auto objects = elementsOf<kstd_persistentVariant>(tree->objects);
    for (int64_t id = from; id < to && index->sparse.count() > 0; ++id) {
        SparseEntry* entry = sparseEntry(index, id);
        if (entry == nullptr) continue;
        if (kstd_persistentVariant_assign(&objects[static_cast<size_t>(id)], &entry->variant) < 0) continue;
        pointers[static_cast<size_t>(id)] = entry->whole;
        index->sparse.erase(idKey(id));
        kstd_result ignored = 0;
        deleteSparseEntry(entry, &ignored);
    }
}

// Grows both vectors to `length` entries; on failure both keep their length.
kstd_result growVectors(Tree* tree, int64_t length) {
    const int64_t old = denseLength(tree);
    VEXPERS_TRY(kstd_vector_kstd_persistentVariant_resize(&tree->objects, length));
    const kstd_result result = kstd_vectorPtrConstVoid_resize(&tree->objectPointers, length);
    if (result < 0) {
        kstd_vector_kstd_persistentVariant_resize(&tree->objects, old);
        return result;
    }
    if (indexOf(tree) != nullptr && indexOf(tree)->sparse.count() > 0) migrate(tree, old, length);
    return 0;
}

// Records `whole` under `id` in the index (room reserved by the caller).
void indexLowest(ObjectIndex* index, const void* whole, int64_t id) {
    int64_t* lowest = index->lowestId.find(pointerKey(whole));
    if (lowest == nullptr)
        index->lowestId.insert(pointerKey(whole), id);
    else if (id < *lowest)
        *lowest = id;
}

kstd_result recordSparse(Tree* tree, int64_t id, const void* whole, const kstd_persistentVariant* value) {
    ObjectIndex* index = indexOf(tree);
    VEXPERS_TRY(index->sparse.reserve(1));
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(SparseEntry), &memory));
    auto* entry = static_cast<SparseEntry*>(memory);
    entry->whole = whole;
    kstd_result result = kstd_persistentVariant_construct(&entry->variant);
    if (result < 0) {
        ksys_memory_free_internal(&memory);
        return result;
    }
    result = kstd_persistentVariant_assign(&entry->variant, value);
    if (result < 0) {
        kstd_result ignored = 0;
        deleteSparseEntry(entry, &ignored);
        return result;
    }
    index->sparse.insert(idKey(id), reinterpret_cast<intptr_t>(entry));
    if (id + 1 > index->sparseEnd) index->sparseEnd = id + 1;
    return 0;
}

}  // namespace

int64_t nextObjectId(const Tree* tree) {
    const ObjectIndex* index = indexOf(tree);
    const int64_t dense = denseLength(tree);
    return index != nullptr && index->sparseEnd > dense ? index->sparseEnd : dense;
}

kstd_result forgetObjects(Tree* tree) {
    // Releasing n objects touches n scattered objects: release them here,
    // fetching a few ahead, so that the vector's clear destroys empty variants.
    kstd_result first = 0;
    auto objects = elementsOf<kstd_persistentVariant>(tree->objects);
    constexpr size_t ahead = 8;
    for (size_t i = 0; i < objects.size(); ++i) {
        if (i + ahead < objects.size() && objects[i + ahead].sharedObject.shared != nullptr)
            __builtin_prefetch(objects[i + ahead].sharedObject.shared, 1);
        const kstd_result result = kstd_persistentVariant_reset(&objects[i]);
        if (first >= 0 && result < 0) first = result;
    }
    kstd_result result = kstd_vectorPtrConstVoid_clear(&tree->objectPointers);
    if (first >= 0) first = result;
    result = kstd_vector_kstd_persistentVariant_clear(&tree->objects);
    if (first >= 0) first = result;
    if (ObjectIndex* index = indexOf(tree); index != nullptr) {
        index->sparse.forEach(
            [&](uint64_t, int64_t value) { deleteSparseEntry(reinterpret_cast<SparseEntry*>(value), &first); });
        index->sparse.clear();
        index->lowestId.clear();
        index->sparseEnd = 0;
    }
    return first;
}

void releaseObjectIndex(Tree* tree) {
    if (ObjectIndex* index = indexOf(tree); index != nullptr) {
        index->~ObjectIndex();
        void* memory = index;
        ksys_memory_free_internal(&memory);
        tree->objectIndex = nullptr;
    }
}

}  // namespace vexpers::tree

using namespace vexpers::tree;
using vexpers::elementsOf;

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_setObjectWithId(kstd_persistentPropertyTree* tree, int64_t id,
                                                                       const kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    if (id < 0 || id > kstd_persistentPropertyTree_maxObjectId) return kstd_persistentResult_invalidArgument;
    void* whole = nullptr;
    VEXPERS_TRY(kstd_persistentVariant_getWholeObject(value, &whole));
    if (whole == nullptr) return kstd_persistentResult_nullArgument;
    if (lengthsDiffer(tree)) return kstd_persistentResult_internalInconsistency;
    if (recorded(tree, id) != nullptr) return kstd_persistentResult_objectIdTaken;
    VEXPERS_TRY(ensureIndex(tree));
    ObjectIndex* index = indexOf(tree);
    VEXPERS_TRY(index->lowestId.reserve(1));
    const int64_t dense = denseLength(tree);
    if (id >= dense && id - dense >= (dense > denseSlack ? dense : denseSlack)) {
        VEXPERS_TRY(recordSparse(tree, id, whole, value));
    } else {
        if (id >= dense) VEXPERS_TRY(growVectors(tree, id + 1));
        VEXPERS_TRY(kstd_persistentVariant_assign(&elementsOf<kstd_persistentVariant>(tree->objects)[id], value));
        elementsOf<const void*>(tree->objectPointers)[id] = whole;
    }
    indexLowest(index, whole, id);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_getObjectById(const kstd_persistentPropertyTree* tree,
                                                                     int64_t id, kstd_persistentVariant* value) {
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    VEXPERS_TRY(kstd_persistentVariant_reset(value));
    if (lengthsDiffer(tree)) return kstd_persistentResult_internalInconsistency;
    const kstd_persistentVariant* object = recorded(tree, id);
    if (object == nullptr) return kstd_persistentResult_objectIdNotFound;
    return kstd_persistentVariant_assign(value, object);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_findObject(kstd_persistentPropertyTree* tree,
                                                                  const kstd_persistentVariant* value, int64_t* id,
                                                                  uint32_t* isNew) {
    VEXPERS_REQUIRE(id != nullptr);
    VEXPERS_REQUIRE(isNew != nullptr);
    *id = -1;
    *isNew = 0;
    VEXPERS_REQUIRE(tree != nullptr);
    VEXPERS_REQUIRE(value != nullptr);
    if (lengthsDiffer(tree)) return kstd_persistentResult_internalInconsistency;
    void* whole = nullptr;
    VEXPERS_TRY(kstd_persistentVariant_getWholeObject(value, &whole));
    if (whole == nullptr) return kstd_persistentResult_nullArgument;
    if (const ObjectIndex* index = indexOf(tree); index != nullptr) {
        if (const int64_t* lowest = index->lowestId.find(pointerKey(whole)); lowest != nullptr) {
            *id = *lowest;
            return 0;
        }
    }
    const int64_t next = nextObjectId(tree);
    VEXPERS_TRY(kstd_persistentPropertyTree_setObjectWithId(tree, next, value));
    *id = next;
    *isNew = 1;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyTree_forgetAllObjects(kstd_persistentPropertyTree* tree) {
    VEXPERS_REQUIRE(tree != nullptr);
    return forgetObjects(tree);
}
