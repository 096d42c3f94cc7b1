#include "property/info_table_index.hpp"

#include <cstring>

#include "frame/frame.hpp"
#include "strings/text_hash.hpp"
#include "vectors/vector_view.hpp"

namespace vexpers::property {
namespace {

using Table = kstd_persistentPropertyInfoTable;
using Info = kstd_persistentPropertyInfo;
using Record = kstd_persistentType_;

// What a slot's key stands for (see the header).
enum class Kind : uint32_t { nameAndAccess = 0, emptyType = 1, typed = 2 };

struct Slot {
    uint32_t hash;
    Kind kind;
    int32_t id;  // -1: free
    uint32_t unused;
};

struct IndexBlock {
    int64_t capacity;  // a power of two
    int64_t count;     // slots in use, at most half the capacity
    Slot* slots() { return reinterpret_cast<Slot*>(this + 1); }
    const Slot* slots() const { return reinterpret_cast<const Slot*>(this + 1); }
};

constexpr int64_t minimumCapacity = 16;

IndexBlock* blockOf(const Table* table) { return static_cast<IndexBlock*>(table->index); }

const Info& infoAt(const Table* table, int32_t id) { return elementsOf<const Info>(table->infos)[id]; }

// The record a descriptor's type shares, or null for an empty type.
const Record* typeRecordOf(const Info& info) {
    const void* whole = nullptr;
    kstd_ptrhConst_getWholeShared(&info.type.record, &whole);
    return static_cast<const Record*>(whole);
}

bool sameName(const kstd_stringConst& a, const kstd_stringConst& b) {
    if (a.chars == b.chars) return true;  // interned names share their text
    uint32_t equal = 0;
    kstd_stringConst_compareEqual(&a, &b, &equal);
    return equal != 0;
}

// Types compare by name and derivation, as kstd_persistentType_compare does.
bool sameType(const Record* a, const Record* b) {
    return a == b || (a->derivation == b->derivation && sameName(a->name, b->name));
}

uint32_t combine(uint32_t h, uint32_t value) {
    h ^= value + 0x9E3779B9u + (h << 6) + (h >> 2);
    return h;
}

uint32_t finish(uint32_t h) {
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    h ^= h >> 16;
    return h;
}

uint32_t hashOf(Kind kind, const Info& info, const Record* type) {
    uint32_t h = combine(hashText(info.name.chars), info.dataAccess);
    if (kind == Kind::typed) h = combine(combine(h, hashText(type->name.chars)), type->derivation);
    return finish(combine(h, static_cast<uint32_t>(kind)));
}

bool keyEqual(Kind kind, const Info& stored, const Info& info, const Record* type) {
    if (stored.dataAccess != info.dataAccess || !sameName(stored.name, info.name)) return false;
    if (kind != Kind::typed) return true;
    const Record* storedType = typeRecordOf(stored);
    return storedType != nullptr && sameType(storedType, type);
}

// The slot holding the key, or the free slot where it belongs.
Slot* probe(const Table* table, IndexBlock* block, Kind kind, uint32_t hash, const Info& info, const Record* type) {
    const int64_t mask = block->capacity - 1;
    for (int64_t at = hash & mask;; at = (at + 1) & mask) {
        Slot& slot = block->slots()[at];
        if (slot.id < 0) return &slot;
        if (slot.hash == hash && slot.kind == kind && keyEqual(kind, infoAt(table, slot.id), info, type)) return &slot;
    }
}

int32_t lookup(const Table* table, IndexBlock* block, Kind kind, const Info& info, const Record* type) {
    return probe(table, block, kind, hashOf(kind, info, type), info, type)->id;
}

// Keeps the lowest id under the key.
void putLowest(const Table* table, IndexBlock* block, Kind kind, int32_t id) {
    const Info& info = infoAt(table, id);
    const Record* type = typeRecordOf(info);
    const uint32_t hash = hashOf(kind, info, type);
    Slot* slot = probe(table, block, kind, hash, info, type);
    if (slot->id < 0) {
        *slot = Slot{hash, kind, id, 0};
        ++block->count;
    } else if (id < slot->id) {
        slot->id = id;
    }
}

void putAll(const Table* table, IndexBlock* block, int32_t id) {
    putLowest(table, block, Kind::nameAndAccess, id);
    putLowest(table, block, typeRecordOf(infoAt(table, id)) == nullptr ? Kind::emptyType : Kind::typed, id);
}

constexpr int64_t slotsPerId = 2;

kstd_result allocateBlock(int64_t capacity, IndexBlock** block) {
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(IndexBlock) + static_cast<size_t>(capacity) * sizeof(Slot),
                                           &memory));
    auto* made = static_cast<IndexBlock*>(memory);
    made->capacity = capacity;
    made->count = 0;
    for (int64_t i = 0; i < capacity; ++i) made->slots()[i] = Slot{0, Kind::nameAndAccess, -1, 0};
    *block = made;
    return 0;
}

int64_t capacityFor(int64_t slots) {
    int64_t capacity = minimumCapacity;
    while (capacity < slots * 2) capacity *= 2;
    return capacity;
}

// Moves every slot into a larger block; slots keep their hashes.
void rehashInto(const IndexBlock* from, IndexBlock* to) {
    const int64_t mask = to->capacity - 1;
    for (int64_t i = 0; i < from->capacity; ++i) {
        const Slot& slot = from->slots()[i];
        if (slot.id < 0) continue;
        int64_t at = slot.hash & mask;
        while (to->slots()[at].id >= 0) at = (at + 1) & mask;
        to->slots()[at] = slot;
        ++to->count;
    }
}

// The walk itself, for a table without an index.
kstd_result walk(const Table* table, const Info* info, int32_t* id) {
    const auto used = elementsOf<const uint8_t>(table->used);
    const auto infos = elementsOf<const Info>(table->infos);
    for (size_t i = 0; i < used.size(); ++i) {
        if (used[i] != 1) continue;
        uint32_t equal = 0;
        VEXPERS_TRY(kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(&infos[i], info, &equal));
        if (equal != 0) {
            *id = static_cast<int32_t>(i);
            return 0;
        }
    }
    return 0;
}

}  // namespace

kstd_result findInTable(const Table* table, const Info* info, int32_t* id) {
    *id = -1;
    IndexBlock* block = blockOf(table);
    if (block == nullptr) return walk(table, info, id);
    const Record* type = typeRecordOf(*info);
    if (type == nullptr) {
        // The first stored descriptor of this name and access is compared
        // with an empty type, which fails.
        if (lookup(table, block, Kind::nameAndAccess, *info, nullptr) >= 0) return kstd_persistentResult_typeEmpty;
        return 0;
    }
    const int32_t match = lookup(table, block, Kind::typed, *info, type);
    const int32_t empty = lookup(table, block, Kind::emptyType, *info, nullptr);
    if (empty >= 0 && (match < 0 || empty < match)) return kstd_persistentResult_typeEmpty;
    *id = match;
    return 0;
}

kstd_result reserveIndexForOneMore(Table* table) {
    IndexBlock* block = blockOf(table);
    if (block != nullptr) {
        const int64_t needed = block->count + slotsPerId;
        if (needed * 2 <= block->capacity) return 0;
        IndexBlock* grown = nullptr;
        VEXPERS_TRY(allocateBlock(capacityFor(needed), &grown));
        rehashInto(block, grown);
        freeIndex(table);
        table->index = grown;
        return 0;
    }
    const auto used = elementsOf<const uint8_t>(table->used);
    int64_t ids = 0;
    for (uint8_t inUse : used) ids += inUse == 1 ? 1 : 0;
    IndexBlock* built = nullptr;
    VEXPERS_TRY(allocateBlock(capacityFor((ids + 1) * slotsPerId), &built));
    for (size_t i = 0; i < used.size(); ++i)
        if (used[i] == 1) putAll(table, built, static_cast<int32_t>(i));
    table->index = built;
    return 0;
}

void addToIndex(Table* table, int32_t id) { putAll(table, blockOf(table), id); }

kstd_result cloneIndex(const Table* table, void** copy) {
    *copy = nullptr;
    const IndexBlock* block = blockOf(table);
    if (block == nullptr) return 0;
    const size_t bytes = sizeof(IndexBlock) + static_cast<size_t>(block->capacity) * sizeof(Slot);
    VEXPERS_TRY(ksys_memory_alloc_internal(bytes, copy));
    std::memcpy(*copy, block, bytes);
    return 0;
}

void freeIndex(Table* table) { ksys_memory_free_internal(&table->index); }

}  // namespace vexpers::property
