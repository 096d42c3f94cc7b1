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

namespace {

struct SweepRun {
    kstd_result result;
    bool hit;       // the injected failure was reached
    int64_t grew;   // live blocks after the run and the clean-up, less before
};

// One run of the scenario with allocation `failAt` failing (0: none), then
// the clean-up.
SweepRun sweepRun(const std::function<kstd_result()>& scenario, const std::function<void()>& cleanup, int64_t failAt,
                  int32_t persistent) {
    const int64_t before = liveBlocks();
    ksys_memory_failAt(failAt, persistent);
    const kstd_result result = scenario();
    int32_t hit = 0;
    ksys_memory_getInjectedFailureHit(&hit);
    ksys_memory_failAt(0, 0);
    if (cleanup) cleanup();
    return SweepRun{result, hit != 0, liveBlocks() - before};
}

}  // namespace

int64_t sweepAllocationFailures(const std::function<kstd_result()>& scenario, const std::function<void()>& cleanup,
                                SweepKeeps keeps) {
    int64_t before = 0, after = 0;
    ksys_memory_getAllocationCount(&before);
    const SweepRun clean = sweepRun(scenario, cleanup, 0, 0);
    ksys_memory_getAllocationCount(&after);
    EXPECT_GE(clean.result, 0) << "the scenario must succeed without injected failures";
    const int64_t kept = keeps == SweepKeeps::whatSucceeds ? clean.grew : 0;
    EXPECT_EQ(clean.grew, kept) << "the clean run leaked";
    // The allocations counted; reallocations that grow a block fail by
    // injection too, so the sweep goes on past them until the failure is no
    // longer reached.
    const int64_t counted = after - before;
    int64_t reached = 0;
    for (int32_t persistent = 0; persistent < 2; ++persistent) {
        const char* mode = persistent != 0 ? " persistently" : " once";
        for (int64_t k = 1;; ++k) {
            const SweepRun failing = sweepRun(scenario, cleanup, k, persistent);
            if (failing.hit) {
                if (k > reached) reached = k;
                EXPECT_EQ(failing.result, ksys_result_outOfMemory) << "failing allocation " << k << mode;
            }
            EXPECT_EQ(failing.grew, failing.result >= 0 ? kept : 0) << "leak after failing allocation " << k << mode;
            // What a failure left behind must not break the next run.
            const SweepRun rerun = sweepRun(scenario, cleanup, 0, 0);
            EXPECT_GE(rerun.result, 0) << "rerun after failing allocation " << k << mode;
            EXPECT_EQ(rerun.grew, kept) << "leak in the rerun after failing allocation " << k << mode;
            if (!failing.hit && k >= counted) break;
        }
    }
    return reached;
}

}  // namespace vexpers::test
