#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <locale.h>
#include <string>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// ---- Clean-up lists ---------------------------------------------------------

std::string released;

// Records the entry's letter in lower case; 'B' fails its release.
kstd_result release(void* object) {
    const char letter = *static_cast<const char*>(object);
    released += char(letter | 0x20);
    return letter == 'B' ? -7 : 0;
}

// Undo entries run only on failure, last pushed first; a failing release
// keeps a failure's code and turns success into its own.
TEST(Cleanup, RunsEntriesByKindLastPushedFirst) {
    EXPECT_NE(ksys_cleanup_getNextTag(), ksys_cleanup_getNextTag());
    const char a = 'a', b = 'b', c = 'c', failing = 'B';
    const struct {
        kstd_result in;
        const char* middle;
        kstd_result out;
        const char* released;
    } cases[] = {{5, &b, 5, "b"}, {-3, &failing, -3, "cba"}, {0, &failing, -7, "b"}};
    for (const auto& k : cases) {
        ksys_cleanupEntry entries[] = {{1, ksys_cleanupKind_undoOnFailure, (void*)&a, release},
                                       {2, ksys_cleanupKind_always, (void*)k.middle, release},
                                       {3, ksys_cleanupKind_undoOnFailure, (void*)&c, release}};
        int32_t count = 3;
        kstd_result result = k.in;
        released.clear();
        EXPECT_EQ(ksys_cleanupExecute_(entries, &count, &result, 0), k.out);
        EXPECT_EQ(result, k.out);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(released, k.released);
    }
}

// ---- Once-only start-up -------------------------------------------------------

struct OnceProbe {
    int calls = 0;
    kstd_result result = 0;
    ksys_onceFlag* self = nullptr;
    ksys_onceFlag* nested = nullptr;
    kstd_result reentry = 0;
    kstd_result nestedResult = 0;
};

kstd_result onceBody(void* argument) {
    auto* probe = static_cast<OnceProbe*>(argument);
    ++probe->calls;
    if (probe->self != nullptr) probe->reentry = ksys_initializeOnce(onceBody, probe, probe->self);
    if (probe->nested != nullptr) {
        static OnceProbe inner{0, 42};
        probe->nestedResult = ksys_initializeOnce(onceBody, &inner, probe->nested);
    }
    return probe->result;
}

TEST(InitializeOnce, KeepsTheResultAndAllowsNestedFlags) {
    ksys_onceFlag failing = KSYS_ONCE_FLAG_INIT;
    OnceProbe failure{0, OOM};
    EXPECT_EQ(ksys_initializeOnce(onceBody, &failure, &failing), OOM);
    EXPECT_EQ(ksys_initializeOnce(onceBody, &failure, &failing), OOM);
    EXPECT_EQ(failure.calls, 1);
    ksys_onceFlag outer = KSYS_ONCE_FLAG_INIT, inner = KSYS_ONCE_FLAG_INIT;
    OnceProbe probe{0, 3, &outer, &inner};
    EXPECT_EQ(ksys_initializeOnce(onceBody, &probe, &outer), 3);
    EXPECT_EQ(probe.calls, 1);
    EXPECT_EQ(probe.reentry, ksys_result_reentrantInitialization);
    EXPECT_EQ(probe.nestedResult, 42);
    EXPECT_EQ(ksys_initializeOnce(onceBody, &probe, &inner), 42);  // already done: not run again

}

// ---- Shut-down ------------------------------------------------------------------

std::string shutdownOrder;

kstd_result recordShutdown(void* argument) {
    shutdownOrder += static_cast<const char*>(argument);
    return std::string(static_cast<const char*>(argument)) == "2" ? -5 : 0;
}

// Shut-down ends the library's use in the process, so it runs in a child.
TEST(ShutdownDeathTest, RunsRoutinesOnceLastRegisteredFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const int64_t start = liveBlocks();
            for (const char* name : {"1", "2", "3"}) ksys_shutdown_register(recordShutdown, (void*)name);
            const kstd_result first = ksys_shutdown();
            const kstd_result again = ksys_shutdown();
            std::_Exit(first == -5 && again == -5 && shutdownOrder == "321" && liveBlocks() == start ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

// ---- Formatting ------------------------------------------------------------------

std::string format(double value) {
    char16_t buffer[512];
    EXPECT_EQ(ksys_clxSprintf_double(buffer, "%.20g", value), 0);
    return ascii(buffer);
}

// Fixed forms, agreement with printf's %.20g across magnitudes, and the same
// text under a thread locale with a comma decimal separator.
TEST(Format, DoublesInTheCLocaleWhateverTheThreadsLocale) {
    const std::pair<double, const char*> fixed[] = {{0.1, "0.10000000000000000555"},
                                                    {-0.0, "-0"},
                                                    {5e-324, "4.9406564584124654418e-324"},
                                                    {-INFINITY, "-inf"},
                                                    {-std::nan(""), "nan"}};
    for (auto [value, text] : fixed) EXPECT_EQ(format(value), text);
    for (double v : {123456789012345678901.0, 1e-5, 1e-4, 1e21}) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "%.20g", v);
        EXPECT_EQ(format(v), expected);
    }

    AssertRecorder faults;
    char16_t buffer[512] = u"x";
    EXPECT_EQ(ksys_clxSprintf_double(buffer, "%g", 1.0), Fault);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(faults.count(), 1);

    locale_t german = newlocale(LC_NUMERIC_MASK, "de_DE.UTF-8", static_cast<locale_t>(0));
    if (german == static_cast<locale_t>(0)) GTEST_SKIP() << "locale de_DE.UTF-8 is not installed";
    const locale_t previous = uselocale(german);
    char host[16];
    std::snprintf(host, sizeof host, "%g", 0.5);
    const std::string ours = format(0.5);
    uselocale(previous);
    freelocale(german);
    EXPECT_STREQ(host, "0,5") << "the locale did not take effect";
    EXPECT_EQ(ours, "0.5");
}

}  // namespace
