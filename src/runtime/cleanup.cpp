// Clean-up lists for callers that keep one. The library itself releases what
// it builds with scope guards (frame/frame.hpp), which give the same
// guarantees per kind.
#include <atomic>

#include "frame/frame.hpp"

namespace {
std::atomic<int32_t> lastTag{0};
}  // namespace

VEXPERS_EXPORT int32_t ksys_cleanup_getNextTag(void) {
    // Wraps around after 2^32 calls; the tag only labels a list.
    return lastTag.fetch_add(1, std::memory_order_relaxed) + 1;
}

VEXPERS_EXPORT kstd_result ksys_cleanupExecute_(ksys_cleanupEntry* entries, int32_t* count, kstd_result* result,
                                                int32_t) {
    VEXPERS_REQUIRE(count != nullptr);
    VEXPERS_REQUIRE(result != nullptr);
    VEXPERS_REQUIRE(*count >= 0);
    VEXPERS_REQUIRE(entries != nullptr || *count == 0);
    // Whether undo entries run is decided by the caller's outcome on entry; a
    // release that fails below turns the outcome into a failure but does not
    // undo what the call built.
    const bool callFailed = *result < 0;
    bool faulted = false;
    for (int32_t i = *count - 1; i >= 0; --i) {
        const ksys_cleanupEntry& entry = entries[i];
        const bool known = entry.kind == ksys_cleanupKind_undoOnFailure || entry.kind == ksys_cleanupKind_heapRecord ||
                           entry.kind == ksys_cleanupKind_always;
        if (!known || entry.function == nullptr) {
            // Reported, skipped; the other entries are still released.
            ksys_assert_at(__FILE__, __LINE__);
            faulted = true;
            continue;
        }
        if (entry.kind == ksys_cleanupKind_undoOnFailure && !callFailed) continue;
        const kstd_result released = entry.function(entry.object);
        if (released < 0 && *result >= 0) *result = released;
    }
    *count = 0;
    if (faulted && *result >= 0) *result = ksys_result_preconditionFailed;
    return *result;
}
