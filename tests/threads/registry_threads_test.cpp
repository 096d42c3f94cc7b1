// The registry under concurrent use: threads register their own types,
// register the same types through shared flags, race for one name through
// their own flags, and look types up, all at once.
#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "types/type_test_support.hpp"

namespace {

using namespace vexpers::test;

constexpr int threadCount = 8;
constexpr int ownTypes = 40;
constexpr int sharedTypes = 16;

// Module-style globals: the registry keeps the handles until shut-down.
Target own[threadCount][ownTypes];
Target shared[sharedTypes];
Target contested[threadCount];

std::u16string numbered(const char16_t* prefix, int first, int second = -1) {
    std::u16string name(prefix);
    for (char c : std::to_string(first)) name += char16_t(c);
    if (second >= 0) {
        name += u'_';
        for (char c : std::to_string(second)) name += char16_t(c);
    }
    return name;
}

struct ThreadReport {
    int failures = 0;
    kstd_result contested = 1;
};

void run(int thread, std::latch& start, ThreadReport& report) {
    auto check = [&](kstd_result result) {
        if (result != 0) ++report.failures;
    };
    start.arrive_and_wait();
    // All threads race for the shared types in the same order first.
    for (int s = 0; s < sharedTypes; ++s) check(registerObject(numbered(u"ThreadShared", s).c_str(), shared[s]));
    TypeHandle type;
    for (int i = 0; i < ownTypes; ++i) {
        check(registerObject(numbered(u"ThreadOwn", thread, i).c_str(), own[thread][i]));
        // And again, each starting at a different one.
        const int s = (i + thread * 2) % sharedTypes;
        const std::u16string sharedName = numbered(u"ThreadShared", s);
        check(registerObject(sharedName.c_str(), shared[s]));
        // Registered through the shared flag means looked up by anyone.
        for (uint32_t derivation = 0; derivation < 4; ++derivation)
            check(kstd_persistentTypeGetType(sharedName.c_str(), derivation, 1, &type.t));
        check(kstd_persistentTypeGetType(u"double", uint32_t(i % 4), 1, &type.t));
        check(kstd_persistentTypeGetType(numbered(u"ThreadUnknown", thread, i).c_str(), 0, 0, &type.t));
        if (i == ownTypes / 2) report.contested = registerObject(u"ThreadContested", contested[thread]);
        if (i % 10 == 0) {
            TypeVector all;
            check(kstd_persistentTypeGetAllTypes(&all.v));
        }
    }
}

TEST(RegistryThreads, ConcurrentRegistrationAndLookup) {
    std::latch start(threadCount);
    std::vector<ThreadReport> reports(threadCount);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) threads.emplace_back(run, t, std::ref(start), std::ref(reports[t]));
    for (std::thread& thread : threads) thread.join();

    int winners = 0;
    for (const ThreadReport& report : reports) {
        EXPECT_EQ(report.failures, 0);
        if (report.contested == 0) ++winners;
        else EXPECT_EQ(report.contested, kstd_persistentResult_typeAlreadyRegistered);
    }
    EXPECT_EQ(winners, 1);

    // Exactly one record per (name, derivation): the sorted list has no two
    // equal neighbours, and every registered name has its four derivations.
    TypeVector all;
    ASSERT_EQ(kstd_persistentTypeGetAllTypes(&all.v), 0);
    int64_t threadRecords = 0;
    for (int64_t i = 0; i < all.size(); ++i) {
        if (nameOf(all[i]).rfind(u"Thread", 0) == 0) ++threadRecords;
        if (i == 0) continue;
        int32_t order = 0;
        ASSERT_EQ(kstd_persistentType_compare(&all[i - 1], &all[i], &order), 0);
        EXPECT_EQ(order, -1) << "records " << i - 1 << " and " << i;
    }
    EXPECT_EQ(threadRecords, 4 * (threadCount * ownTypes + sharedTypes + 1));

    // Every shared flag is set once, with its handle on the registered record.
    TypeHandle type;
    for (int s = 0; s < sharedTypes; ++s) {
        EXPECT_EQ(shared[s].flag, 1u);
        ASSERT_EQ(kstd_persistentTypeGetType(numbered(u"ThreadShared", s).c_str(), 0, 1, &type.t), 0);
        EXPECT_EQ(recordOf(type.t), recordOf(shared[s].handle));
    }
}

}  // namespace
