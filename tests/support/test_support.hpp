// Helpers shared by the test programs: a handler that records precondition
// faults instead of printing them, and a check that a scope leaks no block
// of the memory service.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

#include "vexpers/vexpers.h"

namespace vexpers::test {

// Installs a recording assertion handler for its lifetime.
class AssertRecorder {
public:
    AssertRecorder();
    ~AssertRecorder();
    AssertRecorder(const AssertRecorder&) = delete;
    AssertRecorder& operator=(const AssertRecorder&) = delete;

    int count() const { return count_; }
    int32_t lastLine() const { return lastLine_; }

private:
    static void record(int32_t line, const char* file, void* context);
    ksys_assertHandler previous_ = nullptr;
    void* previousContext_ = nullptr;
    int count_ = 0;
    int32_t lastLine_ = 0;
};

int64_t liveBlocks();

// Records the live block count at construction; `leaked()` gives the blocks
// allocated since then and not freed.
class LiveBlockCheck {
public:
    LiveBlockCheck() : start_(liveBlocks()) {}
    int64_t leaked() const { return liveBlocks() - start_; }

private:
    int64_t start_;
};

// Allocation-failure sweep: runs `scenario` once to count its allocations,
// then once per allocation k with the k-th allocation failing (once, then
// persistently). Each failing run must return a negative code and leave the
// live block count where it started; `cleanup` (may be empty) releases what a
// run built. Returns the number of allocation sites reached.
int64_t sweepAllocationFailures(const std::function<kstd_result()>& scenario,
                                const std::function<void()>& cleanup = {});

}  // namespace vexpers::test
