// An open-addressing hash table from non-zero 64-bit keys to 64-bit values,
// in one block of the memory service. Linear probing, at most half full;
// erasing shifts the following entries back, so there are no tombstones.
// Only reserve() allocates: callers reserve before they change anything, so
// that a failure to allocate changes nothing.
#pragma once

#include <cstdint>

#include "frame/frame.hpp"

namespace vexpers::tree {

class FlatTable {
public:
    struct Slot {
        uint64_t key;  // 0: free
        int64_t value;
    };

    FlatTable() = default;
    FlatTable(const FlatTable&) = delete;
    FlatTable& operator=(const FlatTable&) = delete;
    ~FlatTable() { release(); }

    int64_t count() const { return count_; }

    // The value stored under `key`, or null.
    int64_t* find(uint64_t key) const {
        if (count_ == 0) return nullptr;
        for (uint64_t i = home(key);; i = (i + 1) & mask()) {
            Slot& slot = slots_[i];
            if (slot.key == key) return &slot.value;
            if (slot.key == 0) return nullptr;
        }
    }

    // Room for `more` further keys without allocating.
    kstd_result reserve(int64_t more) {
        const int64_t needed = count_ + more;
        if (needed * 2 <= capacity_) return 0;
        int64_t capacity = capacity_ < 16 ? 16 : capacity_;
        while (capacity < needed * 2) capacity *= 2;
        void* memory = nullptr;
        VEXPERS_TRY(ksys_memory_alloc_internal(static_cast<size_t>(capacity) * sizeof(Slot), &memory));
        Slot* old = slots_;
        const int64_t oldCapacity = capacity_;
        slots_ = static_cast<Slot*>(memory);
        capacity_ = capacity;
        for (int64_t i = 0; i < capacity; ++i) slots_[i] = Slot{0, 0};
        for (int64_t i = 0; i < oldCapacity; ++i)
            if (old[i].key != 0) place(old[i].key, old[i].value);
        void* oldMemory = old;
        ksys_memory_free_internal(&oldMemory);
        return 0;
    }

    // Stores `value` under a key that is not present (after reserve()).
    void insert(uint64_t key, int64_t value) {
        place(key, value);
        ++count_;
    }

    // Removes `key` when present.
    void erase(uint64_t key) {
        if (count_ == 0) return;
        uint64_t i = home(key);
        while (slots_[i].key != key) {
            if (slots_[i].key == 0) return;
            i = (i + 1) & mask();
        }
        // Shift back every following entry whose home does not lie in the
        // cyclic range (i, j], so that no probe sequence is broken.
        for (uint64_t j = (i + 1) & mask(); slots_[j].key != 0; j = (j + 1) & mask()) {
            const uint64_t h = home(slots_[j].key);
            const bool between = i <= j ? (i < h && h <= j) : (i < h || h <= j);
            if (between) continue;
            slots_[i] = slots_[j];
            i = j;
        }
        slots_[i] = Slot{0, 0};
        --count_;
    }

    // Calls visit(key, value) for every entry.
    template <class Visit>
    void forEach(Visit visit) const {
        for (int64_t i = 0; i < capacity_; ++i)
            if (slots_[i].key != 0) visit(slots_[i].key, slots_[i].value);
    }

    // Empties the table. Its memory stays for the next fill unless it is
    // much larger than this fill needed, so clearing costs no more than the
    // filling did.
    void clear() {
        if (capacity_ > 8 * (count_ > 16 ? count_ : 16)) {
            release();
            return;
        }
        if (count_ > 0)
            for (int64_t i = 0; i < capacity_; ++i) slots_[i] = Slot{0, 0};
        count_ = 0;
    }

    void release() {
        void* memory = slots_;
        ksys_memory_free_internal(&memory);
        slots_ = nullptr;
        capacity_ = 0;
        count_ = 0;
    }

private:
    uint64_t mask() const { return static_cast<uint64_t>(capacity_) - 1; }
    uint64_t home(uint64_t key) const {
        key ^= key >> 30;
        key *= 0xBF58476D1CE4E5B9u;
        key ^= key >> 27;
        key *= 0x94D049BB133111EBu;
        key ^= key >> 31;
        return key & mask();
    }
    void place(uint64_t key, int64_t value) {
        uint64_t i = home(key);
        while (slots_[i].key != 0) i = (i + 1) & mask();
        slots_[i] = Slot{key, value};
    }

    Slot* slots_ = nullptr;
    int64_t capacity_ = 0;  // 0 or a power of two
    int64_t count_ = 0;
};

}  // namespace vexpers::tree
