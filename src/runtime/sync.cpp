// Locking and process life: the re-entrant critical section, once-only
// start-up and the shut-down routines.
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>

#include "frame/lifecycle.hpp"

namespace {

std::recursive_mutex* mutexOf(const ksys_criticalSection* section) {
    return static_cast<std::recursive_mutex*>(section->implementation);
}

}  // namespace

// ---- Critical section ------------------------------------------------------

VEXPERS_EXPORT kstd_result ksys_criticalSection_construct(ksys_criticalSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    section->implementation = nullptr;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(std::recursive_mutex), &memory));
    section->implementation = new (memory) std::recursive_mutex();
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_criticalSection_destruct(ksys_criticalSection* section) {
    VEXPERS_REQUIRE(section != nullptr);
    if (section->implementation == nullptr) return 0;
    mutexOf(section)->~recursive_mutex();
    return ksys_memory_free_internal(&section->implementation);
}

VEXPERS_EXPORT kstd_result ksys_criticalSection_wait(ksys_criticalSection* section, uint32_t* isHeld) {
    if (isHeld != nullptr) *isHeld = 0;
    VEXPERS_REQUIRE(section != nullptr && section->implementation != nullptr);
    mutexOf(section)->lock();
    if (isHeld != nullptr) *isHeld = 1;
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_criticalSection_release(ksys_criticalSection* section) {
    VEXPERS_REQUIRE(section != nullptr && section->implementation != nullptr);
    mutexOf(section)->unlock();
    return 0;
}

VEXPERS_DEFINE_TYPECHECK_HOOKS(ksys_criticalSection)

// ---- Once-only start-up ----------------------------------------------------

namespace {

enum OnceState : int32_t { onceNotStarted = 0, onceRunning = 1, onceDone = 2 };

struct OnceWaitState {
    std::mutex lock;
    std::condition_variable done;
};
// Never destroyed, so that shut-down routines running at process exit still
// find it alive whatever the order of static destruction.
OnceWaitState& onceWait() {
    alignas(OnceWaitState) static unsigned char storage[sizeof(OnceWaitState)];
    static OnceWaitState* const state = new (storage) OnceWaitState();
    return *state;
}

// The flags whose functions this thread is running, innermost first; each
// link lives in the frame of the ksys_initializeOnce call that runs it.
struct OnceRun {
    const ksys_onceFlag* flag;
    const OnceRun* outer;
};
thread_local const OnceRun* runningHere = nullptr;

bool runByThisThread(const ksys_onceFlag* flag) {
    for (const OnceRun* run = runningHere; run != nullptr; run = run->outer)
        if (run->flag == flag) return true;
    return false;
}

int32_t loadState(const ksys_onceFlag* flag) { return __atomic_load_n(&flag->state, __ATOMIC_ACQUIRE); }

}  // namespace

VEXPERS_EXPORT kstd_result ksys_initializeOnce(ksys_onceFunction function, void* argument, ksys_onceFlag* flag) {
    VEXPERS_REQUIRE(function != nullptr);
    VEXPERS_REQUIRE(flag != nullptr);
    // Fast path: the result was published with release before the state.
    if (loadState(flag) == onceDone) return flag->result;
    OnceWaitState& wait = onceWait();
    {
        std::unique_lock<std::mutex> lock(wait.lock);
        for (;;) {
            const int32_t state = loadState(flag);
            if (state == onceDone) return flag->result;
            if (state == onceNotStarted) break;
            if (runByThisThread(flag)) return ksys_result_reentrantInitialization;
            wait.done.wait(lock);
        }
        __atomic_store_n(&flag->state, onceRunning, __ATOMIC_RELAXED);
    }
    // Run without the lock, so that the function may start other flags.
    const OnceRun run{flag, runningHere};
    runningHere = &run;
    const kstd_result result = function(argument);
    runningHere = run.outer;
    {
        std::lock_guard<std::mutex> lock(wait.lock);
        flag->result = result;
        __atomic_store_n(&flag->state, onceDone, __ATOMIC_RELEASE);
    }
    wait.done.notify_all();
    return result;
}

// ---- Shut-down ---------------------------------------------------------------

namespace {

struct ShutdownRoutine {
    ksys_shutdownFunction function;
    void* argument;
    ShutdownRoutine* next;  // registered before this one
};

// Plain data with a trivially destructible mutex: usable at process exit.
std::mutex shutdownLock;
ShutdownRoutine* lastRegistered = nullptr;
bool exitHookInstalled = false;
bool shutDown = false;
kstd_result shutdownResult = 0;

void shutdownAtExit() { ksys_shutdown(); }

}  // namespace

VEXPERS_EXPORT kstd_result ksys_shutdown_register(ksys_shutdownFunction function, void* argument) {
    VEXPERS_REQUIRE(function != nullptr);
    std::lock_guard<std::mutex> lock(shutdownLock);
    VEXPERS_REQUIRE(!shutDown);  // registering after shut-down is a misuse
    if (!exitHookInstalled) {
        if (std::atexit(shutdownAtExit) != 0) return ksys_result_outOfMemory;
        exitHookInstalled = true;
    }
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(ShutdownRoutine), &memory));
    lastRegistered = new (memory) ShutdownRoutine{function, argument, lastRegistered};
    return 0;
}

VEXPERS_EXPORT kstd_result ksys_shutdown(void) {
    ShutdownRoutine* routine;
    {
        std::lock_guard<std::mutex> lock(shutdownLock);
        if (shutDown) return shutdownResult;
        shutDown = true;
        routine = lastRegistered;
        lastRegistered = nullptr;
    }
    // Routines run without the lock: they may take other locks of the library.
    kstd_result first = 0;
    while (routine != nullptr) {
        const kstd_result result = routine->function(routine->argument);
        if (result < 0 && first >= 0) first = result;
        void* memory = routine;
        routine = routine->next;
        ksys_memory_free_internal(&memory);
    }
    std::lock_guard<std::mutex> lock(shutdownLock);
    shutdownResult = first;
    return first;
}
