// The assertion hook. A library must never take its host process down, so a
// precondition fault is reported to a replaceable handler and the faulting
// function returns ksys_result_preconditionFailed.
#include <atomic>
#include <cstdio>
#include <mutex>

#include "frame/frame.hpp"

namespace {

void defaultHandler(int32_t line, const char* file, void*) {
    std::fprintf(stderr, "vexpers: precondition fault at %s:%d\n", file != nullptr ? file : "?", static_cast<int>(line));
}

std::mutex handlerLock;
ksys_assertHandler currentHandler = defaultHandler;
void* currentContext = nullptr;
std::atomic<int64_t> faultCount{0};

}  // namespace

VEXPERS_EXPORT void ksys_assert_at(const char* file, int32_t line) {
    faultCount.fetch_add(1, std::memory_order_relaxed);
    ksys_assertHandler handler;
    void* context;
    {
        std::lock_guard<std::mutex> lock(handlerLock);
        handler = currentHandler;
        context = currentContext;
    }
    handler(line, file, context);
}

VEXPERS_EXPORT void kstd_assert_(int32_t line) { ksys_assert_at(nullptr, line); }

VEXPERS_EXPORT kstd_result ksys_assert_setHandler(ksys_assertHandler handler, void* context,
                                                  ksys_assertHandler* previousHandler, void** previousContext) {
    std::lock_guard<std::mutex> lock(handlerLock);
    if (previousHandler != nullptr) *previousHandler = currentHandler == defaultHandler ? nullptr : currentHandler;
    if (previousContext != nullptr) *previousContext = currentContext;
    currentHandler = handler != nullptr ? handler : defaultHandler;
    currentContext = handler != nullptr ? context : nullptr;
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_assert_getCount(int64_t* count) {
    VEXPERS_REQUIRE(count != nullptr);
    *count = faultCount.load(std::memory_order_relaxed);
    return 0;
}
