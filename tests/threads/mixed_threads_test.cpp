// Eight threads run mixed operations at once: registration of types of
// their own, of types that every thread registers through shared flags, and
// of one name that every thread claims through a flag of its own; lookups,
// interning of a shared pool of names, copies and releases of type handles
// and of shared pointers to one scene, bags, and decomposing and composing
// scenes of their own. Run under ThreadSanitizer (preset tsan) with 100,000
// operations a thread; a normal run does fewer (VEXPERS_THREAD_OPERATIONS
// sets the number).
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

constexpr int threadCount = 8, sharedCount = 24, ownCount = 16, poolSize = 512;

std::u16string numbered(const char* prefix, int n) {
    std::u16string text;
    for (const char* c = prefix; *c != 0; ++c) text += char16_t(*c);
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

struct Counter {
    int32_t count;
    double rate;
};
template <auto Member>
kstd_result memberOf(const void* object, const void** member) {
    *member = &(static_cast<const Counter*>(object)->*Member);
    return 0;
}
template <auto Member>
kstd_persistentPropertyAccessors accessor() {
    kstd_persistentPropertyAccessors result{};
    result.words[4] = reinterpret_cast<const void*>(memberOf<Member>);
    return result;
}
const kstd_persistentPropertyInfoDefinition counterDefinitions[]{
    {u"count", 2, u"k_Int32", 0, accessor<&Counter::count>()},
    {u"rate", 2, u"double", 0, accessor<&Counter::rate>()},
};
const kstd_persistentStaticPropertyList counterProperties{counterDefinitions, 2};

// The registry keeps flags and handles until shut-down: static storage.
struct Slot {
    std::u16string name;
    uint32_t flag = 0;
    kstd_persistentType handle{};
};
Slot shared[sharedCount], own[threadCount][ownCount], contested[threadCount];
std::u16string pool[poolSize];
// The interned text of each pool name as the first thread to intern it saw it.
std::atomic<const char16_t*> interned[poolSize]{};

kstd_result registerSlot(Slot& slot) {
    return kstd_persistentTypeRegisterTypeObject(slot.name.c_str(), &objectTableOf<Counter>, &valueAccessTable,
                                                 &counterProperties, 0, &slot.flag, &slot.handle);
}

struct Report {
    int64_t operations = 0, failures = 0, compositions = 0;
    kstd_result contested = 1;
    std::string firstDifference;
};

struct Worker {
    int index;
    const kstd_ptrh& sharedScene;
    Report& report;
    kstd_ptrh scene{};

    void check(kstd_result result) { report.failures += result < 0 ? 1 : 0; }

    void run(std::latch& start, int64_t operations) {
        start.arrive_and_wait();
        // Every thread registers every shared type, each starting at a
        // different one, its own types, the contested name and the demo model.
        for (int k = 0; k < sharedCount; ++k) check(registerSlot(shared[(k + index * 3) % sharedCount]));
        for (Slot& slot : own[index]) check(registerSlot(slot));
        report.contested = registerSlot(contested[index]);
        check(demo::registerTypes());
        demo::Census census;
        check(demo::buildScene(3 + index, &scene, &census));
        for (int64_t i = 0; i < operations; ++i, ++report.operations) step(i);
        demo::releaseScene(&scene);
        kstd_ptrh_destruct(&scene);
    }

    void step(int64_t i) {
        Slot& pick = shared[(i * 7 + index) % sharedCount];
        Type type;
        switch (i % 16) {
        case 0: case 1: case 2: case 3: {  // lookups, known and unknown
            int32_t coreId = 0;
            check(kstd_persistentTypeGetType(pick.name.c_str(), uint32_t(i % 4), 1, type));
            check(kstd_persistentTypeGetType(u"double", uint32_t(i % 4), 1, type));
            check(kstd_persistentType_getCoreTypeId(type, &coreId));
            check(kstd_persistentTypeGetType(numbered("MixedUnknown", int(i % 1000)).c_str(), 0, 0, type));
            break;
        }
        case 4: case 5: {  // interning: every thread gets the same text
            const int n = static_cast<int>((i * 13 + index * 5) % poolSize);
            const char16_t *name = nullptr, *expected = nullptr;
            check(kstd_persistentTypeGetType(pool[n].c_str(), 0, 0, type));
            check(kstd_persistentType_getTypeName(type, &name));
            if (!interned[n].compare_exchange_strong(expected, name) && expected != name) ++report.failures;
            break;
        }
        case 6:  // registration on first use, registered already
            check(registerSlot(pick));
            break;
        case 7: {  // the whole registry, as a tool lists it
            Owned<kstd_vector_kstd_persistentType, kstd_vector_kstd_persistentType_constructEmpty,
                  kstd_vector_kstd_persistentType_destruct>
                all;
            if (i % 64 == 7) check(kstd_persistentTypeGetAllTypes(all));
            break;
        }
        case 8: case 9: case 10: {  // copies and releases of a registered handle
            Type copy, second;
            uint32_t equal = 0;
            check(kstd_persistentType_assign(copy, &pick.handle));
            check(kstd_persistentType_assign(second, copy));
            check(kstd_persistentType_compareEqual(second, &pick.handle, &equal));
            report.failures += equal == 0 ? 1 : 0;
            break;
        }
        case 11: case 12: {  // copies and releases of pointers into the shared scene
            SharedPointer copy, root;
            check(kstd_ptrh_assign(copy, &sharedScene));
            check(kstd_ptrh_assignShared(root, static_cast<const demo::Scene*>(sharedScene.shared->whole)->root.shared));
            check(kstd_ptrh_assign(copy, root));
            break;
        }
        case 13: {  // a bag filled from the thread's own root node
            Bag bag;
            check(kstd_persistentTypeGetType(u"DemoNode", 0, 1, type));
            check(kstd_persistentType_transferObjectPersistentProperties(
                type, static_cast<const demo::Scene*>(scene.shared->whole)->root.shared->whole, bag));
            break;
        }
        default:  // every 256th operation, a round trip of the own scene
            if (i % 256 == 14) roundTrip();
        }
    }

    // Decomposes the own scene, composes a copy from the tree and compares.
    void roundTrip() {
        Property property;
        Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct, kstd_persistentPropertyTree_destruct>
            tree;
        SharedPointer copy;
        check(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"scene", 2, &scene));
        check(kstd_persistentPropertyTree_resetDecomposeProperty(tree, property));
        check(kstd_persistentPropertyTree_forgetAllObjects(tree));
        check(kstd_persistentType_loadPropertyNode(demo::pointerType(), copy, tree->firstChild));
        demo::Census census;
        const std::string difference = demo::compareScenes(scene, copy.v, &census);
        if (!difference.empty() && report.firstDifference.empty()) report.firstDifference = difference;
        demo::unlinkRecorded(tree);
        demo::releaseScene(copy);
        ++report.compositions;
    }
};

TEST(MixedThreads, EightThreadsOfMixedOperations) {
    for (int k = 0; k < sharedCount; ++k) shared[k].name = numbered("MixedRegShared", k);
    for (int t = 0; t < threadCount; ++t) {
        contested[t].name = u"MixedRegContested";
        for (int k = 0; k < ownCount; ++k) own[t][k].name = numbered("MixedRegOwn", t * ownCount + k);
    }
    for (int n = 0; n < poolSize; ++n) pool[n] = numbered("MixedPooledName", n);
    ASSERT_EQ(demo::registerTypes(), 0);
    SharedPointer scene;
    demo::Census census;
    ASSERT_EQ(demo::buildScene(8, scene, &census), 0);
    const int32_t sharesBefore = scene->shared->referenceCount;

    const char* text = std::getenv("VEXPERS_THREAD_OPERATIONS");
    const int64_t operations = text != nullptr && std::atoll(text) > 0 ? std::atoll(text) : 10000;
    std::latch start(threadCount);
    std::vector<Report> reports(threadCount);
    std::vector<std::thread> threads;
    const auto began = std::chrono::steady_clock::now();
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back([&, t] { Worker{t, scene.v, reports[t]}.run(start, operations); });
    for (std::thread& thread : threads) thread.join();
    std::printf("[ threads  ] %d threads x %lld operations in %.2f s\n", threadCount,
                static_cast<long long>(operations),
                std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count());

    int winners = 0;
    for (const Report& report : reports) {
        EXPECT_EQ(report.failures, 0);
        EXPECT_EQ(report.operations, operations);
        EXPECT_GT(report.compositions, 0);
        EXPECT_EQ(report.firstDifference, "");
        if (report.contested == 0) ++winners;
        else EXPECT_EQ(report.contested, kstd_persistentResult_typeAlreadyRegistered);
    }
    EXPECT_EQ(winners, 1);
    // Exactly one record per (name, derivation): the sorted list has no two
    // equal neighbours, and every registered name has its four derivations.
    Owned<kstd_vector_kstd_persistentType, kstd_vector_kstd_persistentType_constructEmpty,
          kstd_vector_kstd_persistentType_destruct>
        all;
    ASSERT_EQ(kstd_persistentTypeGetAllTypes(all), 0);
    const auto* types = static_cast<const kstd_persistentType*>(all->base.begin);
    int64_t registered = 0;
    for (int64_t i = 0; i < all->base.size; ++i) {
        registered += nameOf(types[i]).rfind(u"MixedReg", 0) == 0 ? 1 : 0;
        int32_t order = -1;
        if (i > 0) {
            ASSERT_EQ(kstd_persistentType_compare(&types[i - 1], &types[i], &order), 0);
        }
        EXPECT_EQ(order, -1) << "records " << i - 1 << " and " << i;
    }
    EXPECT_EQ(registered, 4 * (sharedCount + threadCount * ownCount + 1));
    // Every shared flag is set once, with its handle on the registered record.
    Type type;
    for (const Slot& slot : shared) {
        EXPECT_EQ(slot.flag, 1u);
        ASSERT_EQ(kstd_persistentTypeGetType(slot.name.c_str(), 0, 1, type), 0);
        EXPECT_EQ(recordOf(type), recordOf(slot.handle));
    }
    EXPECT_EQ(scene->shared->referenceCount, sharesBefore) << "the shared scene has its shares back";
    demo::releaseScene(scene);
}

}  // namespace
}  // namespace vexpers::test
