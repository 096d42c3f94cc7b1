// The bag's name index (see name_index.hpp).
#include "property/name_index.hpp"

#include "vexpers/runtime.h"

namespace vexpers::property::nameindex {
namespace {

struct Entry {
    uint32_t hash;
    int32_t slot;  // -1: empty
};

// One block: this header, then `capacity` entries.
struct Header {
    int32_t capacity;  // a power of two, at least twice the count
    int32_t count;     // slots [0, count) are recorded
};

constexpr int32_t minimumCapacity = 64;

Entry* entriesOf(Header* header) { return reinterpret_cast<Entry*>(header + 1); }
const Entry* entriesOf(const Header* header) { return reinterpret_cast<const Entry*>(header + 1); }

uint32_t hashUnits(const char16_t* text, int32_t length) {
    uint32_t h = 5381;
    for (int32_t i = 0; i < length; ++i) h = (h << 5) + h + text[i];
    return h;
}

// The name of a slot as text and length; null for the null name.
const char16_t* nameOf(const kstd_persistentProperty& property, int32_t* length) {
    *length = property.info.name.length;
    return property.info.name.chars;
}

bool sameName(const kstd_persistentProperty& property, const char16_t* text, int32_t length) {
    int32_t nameLength = 0;
    const char16_t* name = nameOf(property, &nameLength);
    if (name == nullptr || nameLength != length) return false;
    for (int32_t i = 0; i < length; ++i)
        if (name[i] != text[i]) return false;
    return true;
}

// A new, empty index for `capacity` entries; null when memory ran out.
Header* allocate(int32_t capacity) {
    void* memory = nullptr;
    if (ksys_memory_alloc_internal(sizeof(Header) + sizeof(Entry) * static_cast<size_t>(capacity), &memory) < 0)
        return nullptr;
    Header* header = static_cast<Header*>(memory);
    header->capacity = capacity;
    header->count = 0;
    Entry* entries = entriesOf(header);
    for (int32_t i = 0; i < capacity; ++i) entries[i] = Entry{0, -1};
    return header;
}

void insert(Header* header, uint32_t hash, int32_t slot) {
    Entry* entries = entriesOf(header);
    const uint32_t mask = static_cast<uint32_t>(header->capacity) - 1;
    uint32_t at = hash & mask;
    while (entries[at].slot >= 0) at = (at + 1) & mask;
    entries[at] = Entry{hash, slot};
}

// Capacity for `count` names: a power of two of at least four times the
// count, so that about as many names again fit before it grows.
int32_t capacityFor(int32_t count) {
    int64_t capacity = minimumCapacity;
    while (capacity < int64_t(count) * 4) capacity *= 2;
    return capacity > (int64_t(1) << 30) ? 0 : static_cast<int32_t>(capacity);
}

uint32_t hashOf(const kstd_persistentProperty& property) {
    int32_t length = 0;
    const char16_t* name = nameOf(property, &length);
    return name != nullptr ? hashUnits(name, length) : hashUnits(nullptr, 0);
}

}  // namespace

bool find(const void* index, const kstd_persistentProperty* slots, int32_t count, const char16_t* text,
          int32_t length, int32_t* slot) {
    const Header* header = static_cast<const Header*>(index);
    if (header == nullptr || header->count != count) return false;
    *slot = -1;
    const Entry* entries = entriesOf(header);
    const uint32_t mask = static_cast<uint32_t>(header->capacity) - 1;
    const uint32_t hash = hashUnits(text, length);
    for (uint32_t at = hash & mask; entries[at].slot >= 0; at = (at + 1) & mask) {
        const Entry& entry = entries[at];
        if (entry.hash == hash && sameName(slots[entry.slot], text, length)) {
            *slot = entry.slot;
            return true;
        }
    }
    return true;
}

kstd_result prepare(void** index, const kstd_persistentProperty* slots, int32_t count) {
    Header* header = static_cast<Header*>(*index);
    const bool current = header != nullptr && header->count == count;
    if (current && int64_t(count + 1) * 2 <= header->capacity) return 0;
    // Build, or grow (a full index is at least half as big as this): the
    // slots go in in the order they were added, so that equal names keep
    // their order along a probe.
    const int32_t capacity = capacityFor(count + 1);
    if (capacity == 0) return ksys_result_outOfMemory;
    Header* built = allocate(capacity);
    if (built == nullptr) {
        if (!current) release(index);
        return ksys_result_outOfMemory;
    }
    for (int32_t i = 0; i < count; ++i) insert(built, hashOf(slots[i]), i);
    built->count = count;
    release(index);
    *index = built;
    return 0;
}

void append(void** index, const kstd_persistentProperty* slots, int32_t slot) {
    Header* header = static_cast<Header*>(*index);
    if (header == nullptr) return;
    if (header->count != slot || int64_t(slot + 1) * 2 > header->capacity) {
        release(index);
        return;
    }
    insert(header, hashOf(slots[slot]), slot);
    header->count = slot + 1;
}

void release(void** index) {
    if (*index != nullptr) ksys_memory_free_internal(index);
    *index = nullptr;
}

}  // namespace vexpers::property::nameindex
