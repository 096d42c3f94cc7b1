// The generic vector. Elements of records are built, copied and destroyed
// only through their element table, so a record that points into itself is
// never moved byte by byte. Every operation that can fail builds its result
// beside the current storage (or strictly past the live elements) and commits
// only when everything succeeded; a failure destroys what the call built and
// leaves the vector as it was.
#include <cstring>

#include "frame/frame.hpp"
#include "vexpers/vector.h"

namespace {

using vexpers::failed;

using Vector = kstd_vector__;

// Byte sizes beyond this cannot be allocated (the memory service's limit).
constexpr uint64_t maxBytes = uint64_t(1) << 47;

int64_t maxElements(const Vector* v) { return static_cast<int64_t>(maxBytes / uint64_t(v->elementSize)); }

char* elementAt(void* begin, const Vector* v, int64_t index) {
    return static_cast<char*>(begin) + index * v->elementSize;
}
const char* elementAt(const void* begin, const Vector* v, int64_t index) {
    return static_cast<const char*>(begin) + index * v->elementSize;
}

kstd_result allocateStorage(const Vector* v, int64_t count, void** storage) {
    *storage = nullptr;
    if (count == 0) return 0;
    if (count > maxElements(v)) return ksys_result_outOfMemory;
    const size_t bytes = static_cast<size_t>(count) * static_cast<size_t>(v->elementSize);
    const kstd_result result =
        v->mtable ? v->mtable->allocate(bytes, storage) : ksys_memory_alloc_internal(bytes, storage);
    if (failed(result)) *storage = nullptr;
    return result;
}

void freeStorage(const Vector* v, void** storage) {
    if (*storage == nullptr) return;
    if (v->mtable)
        v->mtable->free(storage);
    else
        ksys_memory_free_internal(storage);
    *storage = nullptr;
}

// Destroys `count` elements from `first`, last first; keeps going after a
// failing destruct and returns the first failure.
kstd_result destroyElements(const Vector* v, char* first, int64_t count) {
    if (v->vtable == nullptr) return 0;
    kstd_result result = 0;
    for (int64_t i = count; i-- > 0;) {
        const kstd_result r = v->vtable->destruct(first + i * v->elementSize);
        if (failed(r) && !failed(result)) result = r;
    }
    return result;
}

// How the new elements of an operation are made.
enum class Make { construct, uninit, fill, copy, permuted };

struct Source {
    Make make;
    const void* from = nullptr;       // fill: the element; copy, permuted: the first source element
    const int64_t* order = nullptr;   // permuted: source index of each new element
};

// Builds new elements [first, first + count) of `source` at `destination`.
// *built counts the elements built; on failure they are the caller's to destroy.
kstd_result buildElements(const Vector* v, char* destination, const Source& source, int64_t first, int64_t count,
                          int64_t* built) {
    const int32_t size = v->elementSize;
    *built = 0;
    if (count == 0 || source.make == Make::uninit) {
        *built = count;
        return 0;
    }
    if (v->vtable == nullptr) {
        switch (source.make) {
            case Make::construct:
                std::memset(destination, 0, static_cast<size_t>(count) * size);
                break;
            case Make::fill:
                for (int64_t i = 0; i < count; ++i) std::memcpy(destination + i * size, source.from, size);
                break;
            case Make::copy:
                std::memmove(destination, elementAt(source.from, v, first), static_cast<size_t>(count) * size);
                break;
            case Make::permuted:
                for (int64_t i = 0; i < count; ++i)
                    std::memcpy(destination + i * size, elementAt(source.from, v, source.order[first + i]), size);
                break;
            case Make::uninit:
                break;
        }
        *built = count;
        return 0;
    }
    const kstd_vectorElementVtable* table = v->vtable;
    for (int64_t i = 0; i < count; ++i) {
        char* element = destination + i * size;
        kstd_result result = 0;
        switch (source.make) {
            case Make::construct:
                result = table->construct(element);
                break;
            case Make::fill:
                result = table->constructCopy(element, source.from);
                break;
            case Make::copy:
                result = table->constructCopy(element, elementAt(source.from, v, first + i));
                break;
            case Make::permuted:
                result = table->constructCopy(element, elementAt(source.from, v, source.order[first + i]));
                break;
            case Make::uninit:
                break;
        }
        if (failed(result)) return result;
        *built = i + 1;
    }
    return 0;
}

// Capacity for `needed` elements when growing: at least double the current one.
int64_t grownCapacity(const Vector* v, int64_t needed) {
    const int64_t limit = maxElements(v);
    int64_t capacity = v->capacity < 4 ? 4 : v->capacity;
    capacity = capacity > limit / 2 ? limit : capacity * 2;
    return capacity < needed ? needed : capacity;
}

// Replaces the storage by a new block of `capacity` elements that holds the
// elements [0, index), `added` new elements of `source`, then the elements
// [index + removed, size). Nothing changes when a step fails.
kstd_result rebuild(Vector* v, int64_t capacity, int64_t index, int64_t removed, int64_t added, const Source& source) {
    const int64_t tail = v->size - index - removed;
    void* storage = nullptr;
    VEXPERS_TRY(allocateStorage(v, capacity, &storage));
    char* out = static_cast<char*>(storage);
    const Source old{Make::copy, v->begin};
    int64_t prefixBuilt = 0, addedBuilt = 0, tailBuilt = 0;
    kstd_result result = buildElements(v, out, old, 0, index, &prefixBuilt);
    if (!failed(result)) result = buildElements(v, elementAt(out, v, index), source, 0, added, &addedBuilt);
    if (!failed(result))
        result = buildElements(v, elementAt(out, v, index + added), old, index + removed, tail, &tailBuilt);
    if (failed(result)) {
        destroyElements(v, elementAt(out, v, index + added), tailBuilt);
        if (source.make != Make::uninit) destroyElements(v, elementAt(out, v, index), addedBuilt);
        destroyElements(v, out, prefixBuilt);
        freeStorage(v, &storage);
        return result;
    }
    // Committed: the old elements go, and a failing destruct is reported.
    result = destroyElements(v, static_cast<char*>(v->begin), v->size);
    freeStorage(v, &v->begin);
    v->begin = storage;
    v->capacity = capacity;
    v->size = index + added + tail;
    return result;
}

// Inserts `added` new elements of `source` before `index`.
kstd_result insertAt(Vector* v, int64_t index, int64_t added, Source source) {
    if (added == 0) return 0;
    if (added > maxElements(v) - v->size) return ksys_result_outOfMemory;
    const int64_t needed = v->size + added;
    if (needed <= v->capacity && (index == v->size || v->vtable == nullptr)) {
        char* gap = elementAt(v->begin, v, index);
        if (index < v->size) {
            // Plain bytes: open the gap in place. A filling element that lay
            // in the moved part moved with it.
            char* end = elementAt(v->begin, v, v->size);
            std::memmove(gap + added * v->elementSize, gap, static_cast<size_t>(end - gap));
            const char* from = static_cast<const char*>(source.from);
            if (source.make == Make::fill && from >= gap && from < end) source.from = from + added * v->elementSize;
        }
        int64_t built = 0;
        const kstd_result result = buildElements(v, gap, source, 0, added, &built);
        if (failed(result)) {
            // Only records can fail, and they are built at the end only.
            if (source.make != Make::uninit) destroyElements(v, gap, built);
            return result;
        }
        v->size = needed;
        return 0;
    }
    const int64_t capacity = needed <= v->capacity ? v->capacity : grownCapacity(v, needed);
    return rebuild(v, capacity, index, 0, added, source);
}

// Destroys the elements from `count` on.
kstd_result shrinkTo(Vector* v, int64_t count) {
    const kstd_result result = destroyElements(v, elementAt(v->begin, v, count), v->size - count);
    v->size = count;
    return result;
}

kstd_result resizeWith(Vector* v, int64_t count, const Source& source) {
    if (count < 0) return ksys_result_invalidSize;
    if (count <= v->size) return shrinkTo(v, count);
    return insertAt(v, v->size, count - v->size, source);
}

// Replaces the contents by copies of `count` elements from `first` (which may
// lie inside the vector itself).
kstd_result assignRange(Vector* v, const void* first, int64_t count) {
    if (v->vtable == nullptr && count <= v->capacity) {
        if (count != 0) std::memmove(v->begin, first, static_cast<size_t>(count) * v->elementSize);
        v->size = count;
        return 0;
    }
    if (count == 0) return shrinkTo(v, 0);
    const int64_t capacity = count <= v->capacity ? v->capacity : count;
    return rebuild(v, capacity, 0, v->size, count, Source{Make::copy, first});
}

// Empty vector state with the given element description.
void initEmpty(Vector* v, int32_t elementSize, const kstd_vectorElementVtable* vtable,
               const kstd_memoryTable* mtable) {
    *v = Vector{nullptr, 0, 0, elementSize, 0, vtable, mtable};
}

bool completeTable(const kstd_vectorElementVtable* t) {
    return t == nullptr || (t->construct && t->constructCopy && t->assign && t->destruct);
}

// Common constructor: empty, checked, then `count` elements of `source`.
// The vector is a valid empty vector whenever this fails.
kstd_result constructWith(Vector* v, int64_t count, int32_t elementSize, const kstd_vectorElementVtable* vtable,
                          const kstd_memoryTable* mtable, const Source& source, bool sourceGiven = true) {
    initEmpty(v, elementSize < 1 ? 1 : elementSize, nullptr, nullptr);
    VEXPERS_REQUIRE(sourceGiven);
    VEXPERS_REQUIRE(completeTable(vtable));
    VEXPERS_REQUIRE(mtable == nullptr || (mtable->allocate && mtable->free));
    if (elementSize < 1 || count < 0) return ksys_result_invalidSize;
    v->vtable = vtable;
    v->mtable = mtable;
    if (count == 0) return 0;
    VEXPERS_TRY(rebuild(v, count, 0, 0, count, source));
    return 0;
}

// Index of `element` in the vector, or -1 when it is not the address of an
// element (or of the end, when `endAllowed`).
int64_t indexOf(const Vector* v, const void* element, bool endAllowed) {
    if (v->begin == nullptr) return element == nullptr && endAllowed ? 0 : -1;
    const char* p = static_cast<const char*>(element);
    const char* b = static_cast<const char*>(v->begin);
    if (p < b) return -1;
    const uint64_t offset = static_cast<uint64_t>(p - b);
    if (offset % uint64_t(v->elementSize) != 0) return -1;
    const int64_t index = static_cast<int64_t>(offset / uint64_t(v->elementSize));
    return index < v->size || (endAllowed && index == v->size) ? index : -1;
}

// Stable bottom-up merge sort of `order` (with `scratch` of the same length).
kstd_result sortIndexes(const Vector* v, kstd_vectorCompareFunction compare, int64_t* order, int64_t* scratch) {
    const int64_t n = v->size;
    for (int64_t width = 1; width < n; width *= 2) {
        for (int64_t low = 0; low < n; low += 2 * width) {
            const int64_t middle = low + width < n ? low + width : n;
            const int64_t high = low + 2 * width < n ? low + 2 * width : n;
            int64_t left = low, right = middle, out = low;
            while (left < middle && right < high) {
                int32_t sign = 0;
                VEXPERS_TRY(compare(elementAt(v->begin, v, order[right]), elementAt(v->begin, v, order[left]), &sign));
                // Ties keep the left (earlier) element first.
                scratch[out++] = sign < 0 ? order[right++] : order[left++];
            }
            while (left < middle) scratch[out++] = order[left++];
            while (right < high) scratch[out++] = order[right++];
        }
        std::memcpy(order, scratch, static_cast<size_t>(n) * sizeof(int64_t));
    }
    return 0;
}

}  // namespace

// ---- Construction and assignment -------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_vector__constructWithVtable(kstd_vector__* vector, int64_t count, int32_t elementSize,
                                                            const kstd_vectorElementVtable* vtable) {
    VEXPERS_REQUIRE(vector != nullptr);
    return constructWith(vector, count, elementSize, vtable, nullptr, Source{Make::construct});
}

VEXPERS_EXPORT kstd_result kstd_vector__constructWithVtableWithMtable(kstd_vector__* vector, int64_t count,
                                                                      int32_t elementSize,
                                                                      const kstd_vectorElementVtable* vtable,
                                                                      const kstd_memoryTable* mtable) {
    VEXPERS_REQUIRE(vector != nullptr);
    return constructWith(vector, count, elementSize, vtable, mtable, Source{Make::construct});
}

VEXPERS_EXPORT kstd_result kstd_vector__constructWithVtableUninit(kstd_vector__* vector, int64_t count,
                                                                  int32_t elementSize,
                                                                  const kstd_vectorElementVtable* vtable) {
    VEXPERS_REQUIRE(vector != nullptr);
    return constructWith(vector, count, elementSize, vtable, nullptr, Source{Make::uninit});
}

VEXPERS_EXPORT kstd_result kstd_vector__constructFillWithVtable(kstd_vector__* vector, int64_t count,
                                                                const void* element, int32_t elementSize,
                                                                const kstd_vectorElementVtable* vtable) {
    VEXPERS_REQUIRE(vector != nullptr);
    return constructWith(vector, count, elementSize, vtable, nullptr, Source{Make::fill, element}, element != nullptr);
}

VEXPERS_EXPORT kstd_result kstd_vector__constructFromBlockWithVtable(kstd_vector__* vector, const void* block,
                                                                     int64_t count, int32_t elementSize,
                                                                     const kstd_vectorElementVtable* vtable) {
    VEXPERS_REQUIRE(vector != nullptr);
    return constructWith(vector, count, elementSize, vtable, nullptr, Source{Make::copy, block},
                         block != nullptr || count == 0);
}

VEXPERS_EXPORT kstd_result kstd_vector__constructCopy(kstd_vector__* vector, const kstd_vector__* source) {
    VEXPERS_REQUIRE(vector != nullptr);
    if (source == nullptr) initEmpty(vector, 1, nullptr, nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    return constructWith(vector, source->size, source->elementSize, source->vtable, source->mtable,
                         Source{Make::copy, source->begin});
}

VEXPERS_EXPORT kstd_result kstd_vector__assign(kstd_vector__* vector, const kstd_vector__* source) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (vector == source) return 0;
    if (vector->elementSize != source->elementSize) return ksys_result_invalidSize;
    return assignRange(vector, source->begin, source->size);
}

VEXPERS_EXPORT kstd_result kstd_vector__assignElements(kstd_vector__* vector, const void* first, const void* end) {
    VEXPERS_REQUIRE(vector != nullptr);
    if (first == end) return assignRange(vector, nullptr, 0);
    VEXPERS_REQUIRE(first != nullptr && end != nullptr);
    const char* a = static_cast<const char*>(first);
    const char* b = static_cast<const char*>(end);
    if (b < a || (b - a) % vector->elementSize != 0) return ksys_result_invalidSize;
    return assignRange(vector, first, (b - a) / vector->elementSize);
}

VEXPERS_EXPORT kstd_result kstd_vector__destruct(kstd_vector__* vector) {
    VEXPERS_REQUIRE(vector != nullptr);
    const kstd_result result = destroyElements(vector, static_cast<char*>(vector->begin), vector->size);
    freeStorage(vector, &vector->begin);
    vector->size = 0;
    vector->capacity = 0;
    return result;
}

// ---- Size and capacity -----------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_vector__resize(kstd_vector__* vector, int64_t count) {
    VEXPERS_REQUIRE(vector != nullptr);
    return resizeWith(vector, count, Source{Make::construct});
}

VEXPERS_EXPORT kstd_result kstd_vector__resizeUninit(kstd_vector__* vector, int64_t count) {
    VEXPERS_REQUIRE(vector != nullptr);
    return resizeWith(vector, count, Source{Make::uninit});
}

VEXPERS_EXPORT kstd_result kstd_vector__resizeFill(kstd_vector__* vector, int64_t count, const void* element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr);
    return resizeWith(vector, count, Source{Make::fill, element});
}

VEXPERS_EXPORT kstd_result kstd_vector__reserve(kstd_vector__* vector, int64_t count) {
    VEXPERS_REQUIRE(vector != nullptr);
    if (count < 0) return ksys_result_invalidSize;
    if (count <= vector->capacity) return 0;
    if (count > maxElements(vector)) return ksys_result_outOfMemory;
    return rebuild(vector, count, vector->size, 0, 0, Source{Make::uninit});
}

VEXPERS_EXPORT kstd_result kstd_vector__getSize(const kstd_vector__* vector, intptr_t* size) {
    VEXPERS_REQUIRE(size != nullptr);
    *size = 0;
    VEXPERS_REQUIRE(vector != nullptr);
    *size = static_cast<intptr_t>(vector->size);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getSize32(const kstd_vector__* vector, int32_t* size) {
    VEXPERS_REQUIRE(size != nullptr);
    *size = 0;
    VEXPERS_REQUIRE(vector != nullptr);
    if (vector->size > INT32_MAX) return ksys_result_invalidSize;
    *size = static_cast<int32_t>(vector->size);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getCapacity(const kstd_vector__* vector, intptr_t* capacity) {
    VEXPERS_REQUIRE(capacity != nullptr);
    *capacity = 0;
    VEXPERS_REQUIRE(vector != nullptr);
    *capacity = static_cast<intptr_t>(vector->capacity);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getElementSize(const kstd_vector__* vector, int32_t* elementSize) {
    VEXPERS_REQUIRE(elementSize != nullptr);
    *elementSize = 0;
    VEXPERS_REQUIRE(vector != nullptr);
    *elementSize = vector->elementSize;
    return 0;
}

// ---- Element access ----------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_vector__getBeginEndConst(const kstd_vector__* vector, const void** begin,
                                                         const void** end) {
    VEXPERS_REQUIRE(begin != nullptr && end != nullptr);
    *begin = *end = nullptr;
    VEXPERS_REQUIRE(vector != nullptr);
    if (vector->begin == nullptr) return 0;
    *begin = vector->begin;
    *end = elementAt(vector->begin, vector, vector->size);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginEnd(kstd_vector__* vector, void** begin, void** end) {
    VEXPERS_REQUIRE(begin != nullptr && end != nullptr);
    const void* b = nullptr;
    const void* e = nullptr;
    const kstd_result result = kstd_vector__getBeginEndConst(vector, &b, &e);
    *begin = const_cast<void*>(b);
    *end = const_cast<void*>(e);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginConst(const kstd_vector__* vector, const void** begin) {
    VEXPERS_REQUIRE(begin != nullptr);
    *begin = nullptr;
    VEXPERS_REQUIRE(vector != nullptr);
    *begin = vector->begin;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBegin(kstd_vector__* vector, void** begin) {
    VEXPERS_REQUIRE(begin != nullptr);
    *begin = nullptr;
    VEXPERS_REQUIRE(vector != nullptr);
    *begin = vector->begin;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginSizeConst(const kstd_vector__* vector, const void** begin,
                                                          intptr_t* size) {
    VEXPERS_REQUIRE(begin != nullptr && size != nullptr);
    *begin = nullptr;
    *size = 0;
    VEXPERS_REQUIRE(vector != nullptr);
    *begin = vector->begin;
    *size = static_cast<intptr_t>(vector->size);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginSize(kstd_vector__* vector, void** begin, intptr_t* size) {
    VEXPERS_REQUIRE(begin != nullptr);
    const void* b = nullptr;
    const kstd_result result = kstd_vector__getBeginSizeConst(vector, &b, size);
    *begin = const_cast<void*>(b);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginSize32Const(const kstd_vector__* vector, const void** begin,
                                                            int32_t* size) {
    VEXPERS_REQUIRE(begin != nullptr);
    *begin = nullptr;
    VEXPERS_TRY(kstd_vector__getSize32(vector, size));
    *begin = vector->begin;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getBeginSize32(kstd_vector__* vector, void** begin, int32_t* size) {
    VEXPERS_REQUIRE(begin != nullptr);
    const void* b = nullptr;
    const kstd_result result = kstd_vector__getBeginSize32Const(vector, &b, size);
    *begin = const_cast<void*>(b);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_vector__getElementConst(const kstd_vector__* vector, int64_t index,
                                                        const void** element) {
    VEXPERS_REQUIRE(element != nullptr);
    *element = nullptr;
    VEXPERS_REQUIRE(vector != nullptr);
    if (index < 0 || index >= vector->size) return ksys_result_notFound;
    *element = elementAt(vector->begin, vector, index);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getElement(kstd_vector__* vector, int64_t index, void** element) {
    VEXPERS_REQUIRE(element != nullptr);
    const void* e = nullptr;
    const kstd_result result = kstd_vector__getElementConst(vector, index, &e);
    *element = const_cast<void*>(e);
    return result;
}

VEXPERS_EXPORT kstd_result kstd_vector__getNextElementConst(const kstd_vector__* vector, const void** element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr && *element != nullptr);
    *element = static_cast<const char*>(*element) + vector->elementSize;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__getNextElement(kstd_vector__* vector, void** element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr && *element != nullptr);
    *element = static_cast<char*>(*element) + vector->elementSize;
    return 0;
}

// ---- Insertion and removal ---------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_vector__insert(kstd_vector__* vector, int64_t index, const void* element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr);
    if (index < 0 || index > vector->size) return ksys_result_notFound;
    return insertAt(vector, index, 1, Source{Make::fill, element});
}

VEXPERS_EXPORT kstd_result kstd_vector__insertElement(kstd_vector__* vector, void* position, const void* element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr);
    const int64_t index = indexOf(vector, position, true);
    if (index < 0) return ksys_result_notFound;
    return insertAt(vector, index, 1, Source{Make::fill, element});
}

VEXPERS_EXPORT kstd_result kstd_vector__erase(kstd_vector__* vector, int64_t index) {
    VEXPERS_REQUIRE(vector != nullptr);
    if (index < 0 || index >= vector->size) return ksys_result_notFound;
    if (index == vector->size - 1) return shrinkTo(vector, index);
    if (vector->vtable != nullptr) {
        // Records are not shifted by assignment (a failure half-way would
        // leave a duplicate): the survivors are copied into new storage.
        return rebuild(vector, vector->capacity, index, 1, 0, Source{Make::uninit});
    }
    char* gap = elementAt(vector->begin, vector, index);
    std::memmove(gap, gap + vector->elementSize, static_cast<size_t>(vector->size - index - 1) * vector->elementSize);
    --vector->size;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__eraseElement(kstd_vector__* vector, void* element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr);
    const int64_t index = indexOf(vector, element, false);
    if (index < 0) return ksys_result_notFound;
    return kstd_vector__erase(vector, index);
}

VEXPERS_EXPORT kstd_result kstd_vector__pushBack(kstd_vector__* vector, const void* element) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(element != nullptr);
    return insertAt(vector, vector->size, 1, Source{Make::fill, element});
}

VEXPERS_EXPORT kstd_result kstd_vector__popBack(kstd_vector__* vector) {
    VEXPERS_REQUIRE(vector != nullptr);
    if (vector->size == 0) return ksys_result_notFound;
    return shrinkTo(vector, vector->size - 1);
}

VEXPERS_EXPORT kstd_result kstd_vector__clear(kstd_vector__* vector) {
    VEXPERS_REQUIRE(vector != nullptr);
    return shrinkTo(vector, 0);
}

VEXPERS_EXPORT kstd_result kstd_vector__clearAndFreeMemory(kstd_vector__* vector) {
    VEXPERS_REQUIRE(vector != nullptr);
    const kstd_result result = shrinkTo(vector, 0);
    freeStorage(vector, &vector->begin);
    vector->capacity = 0;
    return result;
}

VEXPERS_EXPORT kstd_result kstd_vector__append(kstd_vector__* vector, const kstd_vector__* source) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (vector->elementSize != source->elementSize) return ksys_result_invalidSize;
    return insertAt(vector, vector->size, source->size, Source{Make::copy, source->begin});
}

VEXPERS_EXPORT kstd_result kstd_vector__swap(kstd_vector__* vector, kstd_vector__* other) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    const kstd_vector__ held = *vector;
    *vector = *other;
    *other = held;
    return 0;
}

// ---- Comparison and sorting --------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_vector__compareEqual(const kstd_vector__* first, const kstd_vector__* second,
                                                     uint32_t* equal, kstd_vectorCompareEqualFunction compare) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(first != nullptr);
    VEXPERS_REQUIRE(second != nullptr);
    if (first == second) {
        *equal = 1;
        return 0;
    }
    if (first->size != second->size || first->elementSize != second->elementSize) return 0;
    if (compare == nullptr) {
        const size_t bytes = static_cast<size_t>(first->size) * first->elementSize;
        *equal = bytes == 0 || std::memcmp(first->begin, second->begin, bytes) == 0;
        return 0;
    }
    for (int64_t i = 0; i < first->size; ++i) {
        uint32_t same = 0;
        VEXPERS_TRY(compare(elementAt(first->begin, first, i), elementAt(second->begin, second, i), &same));
        if (!same) return 0;
    }
    *equal = 1;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_vector__qsort(kstd_vector__* vector, kstd_vectorCompareFunction compare) {
    VEXPERS_REQUIRE(vector != nullptr);
    VEXPERS_REQUIRE(compare != nullptr);
    const int64_t n = vector->size;
    if (n < 2) return 0;
    // The order is found on indexes first, so a failing comparison changes
    // nothing; the elements are then rebuilt once in sorted order.
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(static_cast<size_t>(n) * 2 * sizeof(int64_t), &memory));
    VEXPERS_DEFER { ksys_memory_free_internal(&memory); };
    int64_t* order = static_cast<int64_t*>(memory);
    for (int64_t i = 0; i < n; ++i) order[i] = i;
    VEXPERS_TRY(sortIndexes(vector, compare, order, order + n));
    bool sorted = true;
    for (int64_t i = 0; i < n && sorted; ++i) sorted = order[i] == i;
    if (sorted) return 0;
    Source source{Make::permuted, vector->begin};
    source.order = order;
    return rebuild(vector, vector->capacity, 0, n, n, source);
}
