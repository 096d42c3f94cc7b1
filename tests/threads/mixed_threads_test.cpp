// Eight threads run mixed operations at once: registration on first use of
// types that every thread registers through shared flags, lookups, interning
// of a shared pool of names, copies and releases of type handles and of
// shared pointers to one scene, and decomposing and composing scenes of
// their own that share the registered types and interned names. Run under
// ThreadSanitizer (preset tsan) with 100,000 operations a thread; a normal
// run does fewer (VEXPERS_THREAD_OPERATIONS sets the number).
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "demo_model.hpp"
#include "support/test_support.hpp"

namespace vexpers::test {
namespace {

constexpr int threadCount = 8;
constexpr int sharedTypeCount = 24;
constexpr int namePoolSize = 512;

int64_t operationsPerThread() {
    const char* text = std::getenv("VEXPERS_THREAD_OPERATIONS");
    const long long value = text != nullptr ? std::atoll(text) : 0;
    return value > 0 ? value : 10000;
}

std::u16string numbered(const char* prefix, int n) {
    std::u16string text;
    for (const char* c = prefix; *c != 0; ++c) text += char16_t(*c);
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

// Types that every thread registers on first use through the same flags.
struct Counter {
    int32_t count;
    double rate;
};
template <auto Member>
kstd_result memberOf(const void* object, const void** member) {
    *member = &(static_cast<const Counter*>(object)->*Member);
    return 0;
}
kstd_persistentPropertyAccessors addressAccessor(kstd_result (*address)(const void*, const void**)) {
    kstd_persistentPropertyAccessors result{};
    result.words[4] = reinterpret_cast<const void*>(address);
    return result;
}
const kstd_persistentPropertyInfoDefinition counterDefinitions[]{
    {u"count", 2, u"k_Int32", 0, addressAccessor(memberOf<&Counter::count>)},
    {u"rate", 2, u"double", 0, addressAccessor(memberOf<&Counter::rate>)},
};
const kstd_persistentStaticPropertyList counterProperties{counterDefinitions, 2};

struct SharedType {
    std::u16string name;
    uint32_t flag = 0;
    kstd_persistentType handle{};
};
std::array<SharedType, sharedTypeCount> sharedTypes;

kstd_result registerShared(SharedType& type) {
    return kstd_persistentTypeRegisterTypeObject(type.name.c_str(), &objectTableOf<Counter>, &valueAccessTable,
                                                 &counterProperties, 0, &type.flag, &type.handle);
}

std::array<std::u16string, namePoolSize> namePool;
// The interned text of each pool name as the first thread to intern it saw it.
std::array<std::atomic<const char16_t*>, namePoolSize> internedText{};

struct Shared {
    kstd_ptrh scene;
};

struct Report {
    int64_t operations = 0;
    int64_t failures = 0;
    int64_t compositions = 0;
    std::string firstDifference;
};

class Worker {
public:
    Worker(int index, const Shared& shared, Report& report) : index_(index), shared_(shared), report_(report) {}

    void run(std::latch& start, int64_t operations) {
        start.arrive_and_wait();
        // Every thread registers every shared type at once, each starting
        // at a different one, and the demo model.
        for (int k = 0; k < sharedTypeCount; ++k) check(registerShared(sharedTypes[(k + index_ * 3) % sharedTypeCount]));
        check(demo::registerTypes());
        demo::Census census;
        check(demo::buildScene(3 + index_, &scene_, &census));
        for (int64_t i = 0; i < operations; ++i) {
            step(i);
            ++report_.operations;
        }
        demo::releaseScene(&scene_);
    }

    ~Worker() { kstd_ptrh_destruct(&scene_); }

private:
    void check(kstd_result result) {
        if (result < 0) ++report_.failures;
    }

    void step(int64_t i) {
        const int pick = static_cast<int>((i * 7 + index_) % sharedTypeCount);
        switch (i % 16) {
        case 0: case 1: case 2: case 3: {  // lookups
            Type type;
            check(kstd_persistentTypeGetType(sharedTypes[pick].name.c_str(), uint32_t(i % 4), 1, type));
            int32_t coreId = 0;
            check(kstd_persistentTypeGetType(u"double", uint32_t(i % 4), 1, type));
            check(kstd_persistentType_getCoreTypeId(type, &coreId));
            break;
        }
        case 4: case 5: {  // interning: every thread gets the same text
            const int n = static_cast<int>((i * 13 + index_ * 5) % namePoolSize);
            Type type;
            check(kstd_persistentTypeGetType(namePool[n].c_str(), 0, 0, type));
            const char16_t* name = nullptr;
            check(kstd_persistentType_getTypeName(type, &name));
            const char16_t* expected = nullptr;
            if (!internedText[n].compare_exchange_strong(expected, name) && expected != name) ++report_.failures;
            break;
        }
        case 6: case 7:  // registration on first use, registered already
            check(registerShared(sharedTypes[pick]));
            break;
        case 8: case 9: case 10: {  // copies and releases of a registered handle
            kstd_persistentType copy, second;
            check(kstd_persistentType_constructCopy(&copy, &sharedTypes[pick].handle));
            check(kstd_persistentType_construct(&second));
            check(kstd_persistentType_assign(&second, &copy));
            uint32_t equal = 0;
            check(kstd_persistentType_compareEqual(&second, &sharedTypes[pick].handle, &equal));
            if (equal == 0) ++report_.failures;
            check(kstd_persistentType_destruct(&second));
            check(kstd_persistentType_destruct(&copy));
            break;
        }
        case 11: case 12: {  // copies and releases of pointers into the shared scene
            kstd_ptrh copy;
            check(kstd_ptrh_construct(&copy, shared_.scene.shared));
            const auto* scene = static_cast<const demo::Scene*>(shared_.scene.shared->whole);
            kstd_ptrh root;
            check(kstd_ptrh_construct(&root, scene->root.shared));
            check(kstd_ptrh_assign(&copy, &root));
            check(kstd_ptrh_destruct(&root));
            check(kstd_ptrh_destruct(&copy));
            break;
        }
        case 13: {  // a bag filled from the thread's own root node
            const auto* scene = static_cast<const demo::Scene*>(scene_.shared->whole);
            Type type;
            Bag bag;
            check(kstd_persistentTypeGetType(u"DemoNode", 0, 1, type));
            check(kstd_persistentType_transferObjectPersistentProperties(type, scene->root.shared->whole, bag));
            break;
        }
        default:  // 14, 15: every 256th operation, a round trip of the own scene
            if (i % 256 == 14) roundTrip();
            break;
        }
    }

    // Decomposes the thread's scene, composes a copy from the tree and
    // compares the two.
    void roundTrip() {
        Property property;
        check(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"scene", 2, &scene_));
        kstd_persistentPropertyTree tree;
        check(kstd_persistentPropertyTree_construct(&tree));
        check(kstd_persistentPropertyTree_resetDecomposeProperty(&tree, property));
        check(kstd_persistentPropertyTree_forgetAllObjects(&tree));
        kstd_ptrh copy;
        check(kstd_ptrh_constructEmpty(&copy));
        check(kstd_persistentType_loadPropertyNode(demo::pointerType(), &copy, tree.firstChild));
        demo::Census census;
        const std::string difference = demo::compareScenes(scene_, copy, &census);
        if (!difference.empty() && report_.firstDifference.empty()) report_.firstDifference = difference;
        demo::unlinkRecorded(&tree);
        check(kstd_persistentPropertyTree_destruct(&tree));
        demo::releaseScene(&copy);
        check(kstd_ptrh_destruct(&copy));
        ++report_.compositions;
    }

    int index_;
    const Shared& shared_;
    Report& report_;
    kstd_ptrh scene_{};
};

TEST(MixedThreads, EightThreadsOfMixedOperations) {
    for (int k = 0; k < sharedTypeCount; ++k) sharedTypes[k].name = numbered("MixedShared", k);
    for (int n = 0; n < namePoolSize; ++n) namePool[n] = numbered("MixedPooledName", n);
    ASSERT_EQ(demo::registerTypes(), 0);
    Shared shared;
    ASSERT_EQ(kstd_ptrh_constructEmpty(&shared.scene), 0);
    demo::Census census;
    ASSERT_EQ(demo::buildScene(8, &shared.scene, &census), 0);
    const int32_t sharesBefore = shared.scene.shared->referenceCount;

    const int64_t operations = operationsPerThread();
    std::latch start(threadCount);
    std::vector<Report> reports(threadCount);
    std::vector<std::thread> threads;
    const auto began = std::chrono::steady_clock::now();
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back([&, t] {
            Worker worker(t, shared, reports[t]);
            worker.run(start, operations);
        });
    for (std::thread& thread : threads) thread.join();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();

    int64_t total = 0;
    for (const Report& report : reports) {
        EXPECT_EQ(report.failures, 0);
        EXPECT_EQ(report.operations, operations);
        EXPECT_GT(report.compositions, 0);
        EXPECT_EQ(report.firstDifference, "");
        total += report.operations;
    }
    std::printf("[ threads  ] %d threads x %lld operations = %lld in %.2f s\n", threadCount,
                static_cast<long long>(operations), static_cast<long long>(total), seconds);

    // One record per shared type, each flag set, every handle on it.
    Type type;
    for (const SharedType& t : sharedTypes) {
        EXPECT_EQ(t.flag, 1u);
        ASSERT_EQ(kstd_persistentTypeGetType(t.name.c_str(), 0, 1, type), 0);
        EXPECT_EQ(recordOf(type), recordOf(t.handle));
    }
    // The shared scene has its shares back.
    EXPECT_EQ(shared.scene.shared->referenceCount, sharesBefore);
    demo::releaseScene(&shared.scene);
    kstd_ptrh_destruct(&shared.scene);
}

}  // namespace
}  // namespace vexpers::test
