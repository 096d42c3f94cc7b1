#include "support/test_support.hpp"

namespace vexpers::test {

AssertRecorder::AssertRecorder() { ksys_assert_setHandler(&AssertRecorder::record, this, &previous_, &previousContext_); }

AssertRecorder::~AssertRecorder() { ksys_assert_setHandler(previous_, previousContext_, nullptr, nullptr); }

void AssertRecorder::record(int32_t line, const char*, void* context) {
    auto* self = static_cast<AssertRecorder*>(context);
    ++self->count_;
    self->lastLine_ = line;
}

int64_t liveBlocks() {
    int64_t count = 0;
    ksys_memory_getLiveCount(&count);
    return count;
}

int64_t sweepAllocationFailures(const std::function<kstd_result()>& scenario, const std::function<void()>& cleanup) {
    const int64_t start = liveBlocks();
    int64_t before = 0, after = 0;
    ksys_memory_getAllocationCount(&before);
    EXPECT_GE(scenario(), 0) << "the scenario must succeed without injected failures";
    ksys_memory_getAllocationCount(&after);
    if (cleanup) cleanup();
    EXPECT_EQ(liveBlocks(), start) << "the clean scenario leaked";
    const int64_t sites = after - before;
    for (int persistent = 0; persistent < 2; ++persistent) {
        for (int64_t k = 1; k <= sites; ++k) {
            ksys_memory_failAt(k, persistent);
            const kstd_result result = scenario();
            int32_t hit = 0;
            ksys_memory_getInjectedFailureHit(&hit);
            ksys_memory_failAt(0, 0);
            if (hit) EXPECT_LT(result, 0) << "allocation " << k << (persistent ? " (persistent)" : " (once)") << " failed but the scenario reported success";
            if (cleanup) cleanup();
            EXPECT_EQ(liveBlocks(), start) << "leak after failing allocation " << k << (persistent ? " persistently" : " once");
        }
    }
    EXPECT_GE(scenario(), 0) << "a clean rerun must succeed";
    if (cleanup) cleanup();
    EXPECT_EQ(liveBlocks(), start);
    return sites;
}

}  // namespace vexpers::test
