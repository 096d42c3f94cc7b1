// The hash table: chained bins; each entry is one allocation holding the
// chain link, the key's hash, the key and the value.
#include <cstring>

#include "frame/frame.hpp"
#include "runtime/hashtable_internal.hpp"
#include "vexpers/containers.h"

struct kstd_hashtableNode {
    kstd_hashtableNode* next;
    uint32_t hash;
    uint32_t reserved;
    // The key follows at offset 16, the value at the next multiple of 16.
};

namespace {

using vexpers::failed;

using Table = kstd_hashtable;
using Node = kstd_hashtableNode;
using Ops = kstd_hashtableElementVtable;

constexpr size_t alignment = 16;
constexpr int32_t maxBins = 1 << 28;
static_assert(sizeof(Node) == alignment);

size_t roundUp(size_t n) { return (n + alignment - 1) & ~(alignment - 1); }

void* keyOf(Node* node) { return reinterpret_cast<char*>(node) + sizeof(Node); }
void* valueOf(const Table* t, Node* node) {
    return static_cast<char*>(keyOf(node)) + roundUp(static_cast<size_t>(t->keyOps->elementSize));
}

kstd_result copyConstruct(const Ops* ops, void* element, const void* source) {
    if (ops->constructCopy) return ops->constructCopy(element, source);
    if (ops->elementSize > 0) std::memcpy(element, source, static_cast<size_t>(ops->elementSize));
    return 0;
}

kstd_result destroy(const Ops* ops, void* element) { return ops->destruct ? ops->destruct(element) : 0; }

kstd_result hashKey(const Table* t, const void* key, uint32_t* hash) {
    *hash = 0;
    if (t->keyOps->hash) return t->keyOps->hash(key, hash);
    // FNV-1a over the key's bytes.
    uint32_t h = 2166136261u;
    const unsigned char* p = static_cast<const unsigned char*>(key);
    for (int32_t i = 0; i < t->keyOps->elementSize; ++i) h = (h ^ p[i]) * 16777619u;
    *hash = h;
    return 0;
}

// *found is the node of `key`, or null.
kstd_result find(const Table* t, const void* key, uint32_t hash, Node** found) {
    *found = nullptr;
    for (Node* node = t->bins[hash % uint32_t(t->numBins)]; node != nullptr; node = node->next) {
        if (node->hash != hash) continue;
        uint32_t equal = 0;
        if (t->keyOps->equal) {
            VEXPERS_TRY(t->keyOps->equal(keyOf(node), key, &equal));
        } else {
            equal = std::memcmp(keyOf(node), key, static_cast<size_t>(t->keyOps->elementSize)) == 0;
        }
        if (equal) {
            *found = node;
            return 0;
        }
    }
    return 0;
}

kstd_result lookup(const Table* t, const void* key, Node** found) {
    uint32_t hash = 0;
    VEXPERS_TRY(hashKey(t, key, &hash));
    return find(t, key, hash, found);
}

// Doubles the bin array; on failure the old one stays.
kstd_result grow(Table* t) {
    const int32_t numBins = t->numBins * 2;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(Node*) * static_cast<size_t>(numBins), &memory));
    Node** bins = static_cast<Node**>(memory);
    for (int32_t i = 0; i < numBins; ++i) bins[i] = nullptr;
    for (int32_t i = 0; i < t->numBins; ++i) {
        for (Node* node = t->bins[i]; node != nullptr;) {
            Node* next = node->next;
            Node** bin = &bins[node->hash % uint32_t(numBins)];
            node->next = *bin;
            *bin = node;
            node = next;
        }
    }
    void* old = t->bins;
    ksys_memory_free_internal(&old);
    t->bins = bins;
    t->numBins = numBins;
    return 0;
}

bool validOps(const Ops* ops, int32_t minimumSize) { return ops->elementSize >= minimumSize; }

}  // namespace

VEXPERS_EXPORT kstd_result kstd_hashtable_construct(kstd_hashtable* table, const kstd_hashtableElementVtable* keyOps,
                                                    const kstd_hashtableElementVtable* valueOps, int32_t numBins,
                                                    int64_t maxCount) {
    VEXPERS_REQUIRE(table != nullptr);
    *table = Table{nullptr, 0, maxCount, 0, 0, keyOps, valueOps};
    VEXPERS_REQUIRE(keyOps != nullptr);
    VEXPERS_REQUIRE(valueOps != nullptr);
    if (!validOps(keyOps, 1) || !validOps(valueOps, 0) || numBins < 1 || numBins > maxBins || maxCount < -1)
        return ksys_result_invalidSize;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(Node*) * static_cast<size_t>(numBins), &memory));
    table->bins = static_cast<Node**>(memory);
    for (int32_t i = 0; i < numBins; ++i) table->bins[i] = nullptr;
    table->numBins = numBins;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_hashtable_destruct(kstd_hashtable* table) {
    VEXPERS_REQUIRE(table != nullptr);
    kstd_result result = 0;
    for (int32_t i = 0; i < table->numBins; ++i) {
        for (Node* node = table->bins[i]; node != nullptr;) {
            Node* next = node->next;
            const kstd_result k = destroy(table->keyOps, keyOf(node));
            const kstd_result v = destroy(table->valueOps, valueOf(table, node));
            if (!failed(result)) result = failed(k) ? k : v;
            void* memory = node;
            ksys_memory_free_internal(&memory);
            node = next;
        }
    }
    void* bins = table->bins;
    ksys_memory_free_internal(&bins);
    table->bins = nullptr;
    table->numBins = 0;
    table->count = 0;
    return result;
}

VEXPERS_EXPORT kstd_result kstd_hashtable_put(kstd_hashtable* table, const void* key, const void* value) {
    VEXPERS_REQUIRE(table != nullptr && table->bins != nullptr);
    VEXPERS_REQUIRE(key != nullptr);
    VEXPERS_REQUIRE(value != nullptr || table->valueOps->elementSize == 0);
    uint32_t hash = 0;
    VEXPERS_TRY(hashKey(table, key, &hash));
    Node* node = nullptr;
    VEXPERS_TRY(find(table, key, hash, &node));
    const Ops* valueOps = table->valueOps;
    if (node != nullptr) {
        if (valueOps->assign) return valueOps->assign(valueOf(table, node), value);
        if (valueOps->elementSize > 0) std::memcpy(valueOf(table, node), value, size_t(valueOps->elementSize));
        return 0;
    }
    if (table->maxCount >= 0 && table->count >= table->maxCount) return ksys_result_invalidSize;
    if (table->count >= 2 * int64_t(table->numBins) && table->numBins <= maxBins / 2) VEXPERS_TRY(grow(table));

    const size_t bytes = sizeof(Node) + roundUp(size_t(table->keyOps->elementSize)) + size_t(valueOps->elementSize);
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(bytes, &memory));
    auto release = vexpers::makeGuard([&] { ksys_memory_free_internal(&memory); });
    node = static_cast<Node*>(memory);
    node->next = nullptr;
    node->hash = hash;
    node->reserved = 0;
    VEXPERS_TRY(copyConstruct(table->keyOps, keyOf(node), key));
    const kstd_result result = copyConstruct(valueOps, valueOf(table, node), value);
    if (failed(result)) {
        destroy(table->keyOps, keyOf(node));
        return result;
    }
    release.dismiss();
    Node** bin = &table->bins[hash % uint32_t(table->numBins)];
    node->next = *bin;
    *bin = node;
    ++table->count;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_hashtable_getPtr(kstd_hashtable* table, const void* key, void** value) {
    VEXPERS_REQUIRE(value != nullptr);
    *value = nullptr;
    VEXPERS_REQUIRE(table != nullptr && table->bins != nullptr);
    VEXPERS_REQUIRE(key != nullptr);
    Node* node = nullptr;
    VEXPERS_TRY(lookup(table, key, &node));
    if (node == nullptr) return ksys_result_notFound;
    *value = valueOf(table, node);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_hashtable_has(const kstd_hashtable* table, const void* key, uint32_t* has) {
    VEXPERS_REQUIRE(has != nullptr);
    *has = 0;
    VEXPERS_REQUIRE(table != nullptr && table->bins != nullptr);
    VEXPERS_REQUIRE(key != nullptr);
    Node* node = nullptr;
    VEXPERS_TRY(lookup(table, key, &node));
    *has = node != nullptr;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_hashtable_getCount(const kstd_hashtable* table, int64_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = 0;
    VEXPERS_REQUIRE(table != nullptr);
    *count = table->count;
    return 0;
}

kstd_result vexpers::runtime::removeFromHashtable(kstd_hashtable* table, const void* key) {
    VEXPERS_REQUIRE(table != nullptr && table->bins != nullptr);
    VEXPERS_REQUIRE(key != nullptr);
    uint32_t hash = 0;
    VEXPERS_TRY(hashKey(table, key, &hash));
    Node* node = nullptr;
    VEXPERS_TRY(find(table, key, hash, &node));
    if (node == nullptr) return 0;
    for (Node** link = &table->bins[hash % uint32_t(table->numBins)]; *link != nullptr; link = &(*link)->next) {
        if (*link != node) continue;
        *link = node->next;
        break;
    }
    --table->count;
    kstd_result result = destroy(table->valueOps, valueOf(table, node));
    const kstd_result keyResult = destroy(table->keyOps, keyOf(node));
    if (!failed(result)) result = keyResult;
    void* memory = node;
    ksys_memory_free_internal(&memory);
    return result;
}
