// The memory service: every allocation of the library goes through here, so
// that live blocks can be counted and the Nth allocation can be made to fail.
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "frame/frame.hpp"

namespace {

std::atomic<int64_t> liveBlocks{0};
std::atomic<int64_t> allocations{0};
// Failure injection: countdown to the failing allocation (0 = off).
std::atomic<int64_t> failCountdown{0};
std::atomic<bool> failPersistent{false};
std::atomic<bool> failureHit{false};

// True when this allocation must fail by injection.
bool injectFailure() {
    if (failPersistent.load(std::memory_order_relaxed) && failCountdown.load(std::memory_order_relaxed) < 0) {
        failureHit.store(true, std::memory_order_relaxed);
        return true;
    }
    int64_t current = failCountdown.load(std::memory_order_relaxed);
    while (current > 0) {
        if (failCountdown.compare_exchange_weak(current, current - 1, std::memory_order_relaxed)) {
            if (current == 1) {
                // The Nth allocation: fail it; persistent mode keeps failing.
                if (failPersistent.load(std::memory_order_relaxed)) failCountdown.store(-1);
                failureHit.store(true, std::memory_order_relaxed);
                return true;
            }
            return false;
        }
    }
    return false;
}

}  // namespace

VEXPERS_EXPORT kstd_result ksys_memory_alloc_internal(size_t size, void** pointer) {
    VEXPERS_REQUIRE(pointer != nullptr);
    *pointer = nullptr;
    if (size == 0) return 0;
    if (injectFailure()) return ksys_result_outOfMemory;
    void* block = std::malloc(size);
    if (block == nullptr) return ksys_result_outOfMemory;
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    allocations.fetch_add(1, std::memory_order_relaxed);
    *pointer = block;
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_realloc_internal(size_t size, void** pointer) {
    VEXPERS_REQUIRE(pointer != nullptr);
    if (size == 0) return ksys_memory_free_internal(pointer);
    if (*pointer == nullptr) return ksys_memory_alloc_internal(size, pointer);
    if (injectFailure()) return ksys_result_outOfMemory;
    void* block = std::realloc(*pointer, size);
    if (block == nullptr) return ksys_result_outOfMemory;
    *pointer = block;
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_realloc64_internal(int64_t size, void** pointer) {
    VEXPERS_REQUIRE(pointer != nullptr);
    // Sizes that no allocator could satisfy fail like an allocation failure.
    if (size < 0 || static_cast<uint64_t>(size) > (static_cast<uint64_t>(1) << 47)) return ksys_result_outOfMemory;
    return ksys_memory_realloc_internal(static_cast<size_t>(size), pointer);
}

VEXPERS_EXPORT kstd_result ksys_memory_free_internal(void** pointer) {
    VEXPERS_REQUIRE(pointer != nullptr);
    if (*pointer != nullptr) {
        std::free(*pointer);
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
        *pointer = nullptr;
    }
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_fill(uint8_t value, size_t count, void* destination) {
    VEXPERS_REQUIRE(destination != nullptr || count == 0);
    if (count != 0) std::memset(destination, value, count);
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_getLiveCount(int64_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = liveBlocks.load(std::memory_order_relaxed);
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_getAllocationCount(int64_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = allocations.load(std::memory_order_relaxed);
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_failAt(int64_t nth, int32_t persistent) {
    VEXPERS_REQUIRE(nth >= 0);
    failureHit.store(false, std::memory_order_relaxed);
    failPersistent.store(persistent != 0, std::memory_order_relaxed);
    failCountdown.store(nth, std::memory_order_relaxed);
    if (nth == 0) failPersistent.store(false, std::memory_order_relaxed);
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_memory_getInjectedFailureHit(int32_t* hit) {
    VEXPERS_REQUIRE(hit != nullptr);
    *hit = failureHit.load(std::memory_order_relaxed) ? 1 : 0;
    return 0;
}
