// The call frame every exported function follows: precondition checks that
// report to the assertion hook, early return on the first failing step, and
// RAII guards in place of clean-up lists.
#pragma once

#include <utility>

#include "vexpers/base.h"
#include "vexpers/runtime.h"

// Marks a definition as an exported C entry point.
#define VEXPERS_EXPORT extern "C" VEXPERS_API

// A required pointer that is null is a precondition fault: report it with the
// source line and return the stand-in layer's precondition code.
#define VEXPERS_REQUIRE(condition)                                   \
    do {                                                             \
        if (!(condition)) [[unlikely]] {                             \
            ksys_assert_at(__FILE__, __LINE__);                      \
            return ksys_result_preconditionFailed;                   \
        }                                                            \
    } while (0)

// Runs one step; a negative result ends the function with that code.
#define VEXPERS_TRY(expression)                                      \
    do {                                                             \
        const kstd_result vexpers_try_result_ = (expression);        \
        if (vexpers_try_result_ < 0) [[unlikely]]                    \
            return vexpers_try_result_;                              \
    } while (0)

namespace vexpers {

inline constexpr bool failed(kstd_result result) { return result < 0; }

// Runs a release action when the scope ends. `dismiss()` keeps the resource
// (the 0x22 kind: undo only on failure, dismissed on success).
template <class Action>
class ScopeGuard {
public:
    explicit ScopeGuard(Action action) : action_(std::move(action)) {}
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;
    ~ScopeGuard() {
        if (active_) action_();
    }
    void dismiss() { active_ = false; }

private:
    Action action_;
    bool active_ = true;
};

template <class Action>
ScopeGuard<Action> makeGuard(Action action) {
    return ScopeGuard<Action>(std::move(action));
}

}  // namespace vexpers

#define VEXPERS_CONCAT_INNER(a, b) a##b
#define VEXPERS_CONCAT(a, b) VEXPERS_CONCAT_INNER(a, b)
// Always-run guard (clean-up kind 0x32): `VEXPERS_DEFER { release(); };`
#define VEXPERS_DEFER                                                          \
    auto VEXPERS_CONCAT(vexpers_defer_, __LINE__) = ::vexpers::DeferHelper{} + [&]()

namespace vexpers {
struct DeferHelper {
    template <class Action>
    ScopeGuard<Action> operator+(Action action) {
        return ScopeGuard<Action>(std::move(action));
    }
};
}  // namespace vexpers
