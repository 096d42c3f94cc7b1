// An explicit work stack for the walks that would otherwise recurse once per
// level of a tree or an object graph: a growable array of trivially copyable
// frames in one block of the memory service, doubled when full, so that a
// walk as deep as its input needs only memory, never native stack.
#pragma once

#include <cstddef>
#include <type_traits>

#include "frame/frame.hpp"

namespace vexpers::tree {

template <class T>
class WorkStack {
    static_assert(std::is_trivially_copyable_v<T>, "frames are moved with the block");

public:
    WorkStack() = default;
    ~WorkStack() {
        void* memory = items_;
        ksys_memory_free_internal(&memory);
    }
    WorkStack(const WorkStack&) = delete;
    WorkStack& operator=(const WorkStack&) = delete;

    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    // References stay valid only until the next push.
    T& at(size_t index) { return items_[index]; }
    T& top() { return items_[size_ - 1]; }

    // Appends a frame; ksys_result_outOfMemory (nothing changed) when the
    // block cannot grow.
    kstd_result push(const T& item) {
        if (size_ == capacity_) VEXPERS_TRY(grow());
        items_[size_++] = item;
        return 0;
    }
    void pop() { --size_; }

    // Reverses the order of the frames [first, size()).
    void reverseFrom(size_t first) {
        for (size_t low = first, high = size_; low + 1 < high; ++low, --high) {
            const T swapped = items_[low];
            items_[low] = items_[high - 1];
            items_[high - 1] = swapped;
        }
    }

private:
    kstd_result grow() {
        const size_t capacity = capacity_ == 0 ? 16 : capacity_ * 2;
        if (capacity > SIZE_MAX / sizeof(T)) return ksys_result_outOfMemory;
        void* memory = items_;
        VEXPERS_TRY(ksys_memory_realloc_internal(capacity * sizeof(T), &memory));
        items_ = static_cast<T*>(memory);
        capacity_ = capacity;
        return 0;
    }

    T* items_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

}  // namespace vexpers::tree
