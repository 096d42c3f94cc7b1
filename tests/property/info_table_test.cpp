#include <climits>
#include <memory>
#include <random>
#include <vector>

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

using Table = Owned<kstd_persistentPropertyInfoTable, kstd_persistentPropertyInfoTable_construct,
                    kstd_persistentPropertyInfoTable_destruct>;

struct Added {
    kstd_result result;
    int32_t id;
    uint32_t added;
};

Added add(kstd_persistentPropertyInfoTable* table, const Info& info) {
    Added a{0, -2, 2};
    a.result = kstd_persistentPropertyInfoTable_addPropertyInfo(table, info, nullptr, &a.id, &a.added);
    return a;
}

int32_t addWithId(kstd_persistentPropertyInfoTable* table, const Info& info, int32_t wanted) {
    Info out;
    const kstd_result result = kstd_persistentPropertyInfoTable_addPropertyInfoWithId(table, info, wanted, out);
    return result < 0 ? result : out->globalIndex;
}

int32_t find(const kstd_persistentPropertyInfoTable* table, const Info& info) {
    return outOf<int32_t>(0, kstd_persistentPropertyInfoTable_findPropertyInfo, table, info, nullptr);
}

// Adding finds or adds in order (a different data access is another
// descriptor); wanted ids leave gaps that a later wanted id may fill, while
// automatic ids go on after the highest.
TEST(PropertyInfoTable, AutomaticAndWantedIds) {
    Table table;
    Info a(u"alpha", kstd_persistentCoreTypeId_int), b(u"beta", kstd_persistentCoreTypeId_int);
    Info a3(u"alpha", kstd_persistentCoreTypeId_int, 3), c(u"gamma", kstd_persistentCoreTypeId_int), out;
    const Added first = add(table, a), second = add(table, b), again = add(table, a), third = add(table, a3);
    EXPECT_EQ((std::vector<int32_t>{first.id, second.id, again.id, third.id}), (std::vector<int32_t>{0, 1, 0, 2}));
    EXPECT_EQ((std::vector<uint32_t>{first.added, second.added, again.added, third.added}),
              (std::vector<uint32_t>{1, 1, 0, 1}));
    // The stored copy carries its id, and is found whatever index it carries.
    ASSERT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(table, 1, out), 0);
    out->globalIndex = 7;
    EXPECT_EQ(find(table, out), 1);
    // Absent: success with id -1 and a reset out descriptor.
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentPropertyInfoTable_findPropertyInfo, table, c, out), -1);
    EXPECT_EQ(out->name.chars, nullptr);

    EXPECT_EQ(addWithId(table, c, 6), 6);
    for (int32_t free : {5, -1, INT32_MAX})
        EXPECT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(table, free, out),
                  kstd_persistentResult_propertyInfoIdNotFound);
    // An id in use by another descriptor fails and changes nothing; a present
    // descriptor keeps its id whatever id is wanted.
    Info d(u"delta", kstd_persistentCoreTypeId_int), e(u"epsilon", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(addWithId(table, d, 6), kstd_persistentResult_idInUse);
    EXPECT_EQ(find(table, d), -1);
    EXPECT_EQ(table->maxId, 6);
    EXPECT_EQ(addWithId(table, a, 4), 0);
    EXPECT_EQ(addWithId(table, d, 4), 4);
    EXPECT_EQ(add(table, e).id, 7);

    // Reset empties the table and restarts automatic ids; the last id is never handed out.
    ASSERT_EQ(kstd_persistentPropertyInfoTable_reset(table), 0);
    EXPECT_EQ(find(table, a), -1);
    EXPECT_EQ(add(table, d).id, 0);
    EXPECT_EQ(addWithId(table, a, INT32_MAX), kstd_persistentResult_idLimitReached);
    EXPECT_EQ(table->maxId, 0);
}

// The walk over ascending ids that the find is defined by.
kstd_result walkingFind(const kstd_persistentPropertyInfoTable* table, const kstd_persistentPropertyInfo* info,
                        int32_t* id) {
    *id = -1;
    const auto* used = static_cast<const uint8_t*>(table->used.base.begin);
    const auto* stored = static_cast<const kstd_persistentPropertyInfo*>(table->infos.base.begin);
    for (int64_t i = 0; i < table->used.base.size; ++i) {
        if (used[i] != 1) continue;
        uint32_t equal = 0;
        const kstd_result result = kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(&stored[i], info, &equal);
        if (result < 0) return result;
        if (equal != 0) {
            *id = int32_t(i);
            return 0;
        }
    }
    return 0;
}

// Random adds of descriptors from a small pool (shared names, types that
// differ only in derivation, empty types, an unregistered type equal by name
// to a registered one): the table and its copy find as the walk over ids.
TEST(PropertyInfoTable, FindAnswersAsTheWalkOverIds) {
    // A record made for a name before it was registered equals the
    // registered record without being it.
    Type early, empty, intValue, intPointer;
    ASSERT_EQ(kstd_persistentTypeGetType(u"InfoTableLater", 0, 0, early), 0);
    Target& later = newTarget();
    ASSERT_EQ(registerObject(u"InfoTableLater", later), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, intValue), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 1, 1, intPointer), 0);
    std::vector<std::unique_ptr<Info>> pool;
    for (const char16_t* name : {static_cast<const char16_t*>(nullptr), u"", u"n1", u"n2"})
        for (const kstd_persistentType* type : {&empty.v, &intValue.v, &intPointer.v, &early.v, &later.handle}) {
            pool.push_back(std::make_unique<Info>());
            EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(*pool.back(), name, type, 2), 0);
        }
    std::mt19937 random(12345);
    int matches = 0;
    for (int round = 0; round < 20; ++round) {
        Table table, copy;
        for (int step = 0; step < 20; ++step)
            kstd_persistentPropertyInfoTable_addPropertyInfo(table, *pool[random() % pool.size()], nullptr, nullptr,
                                                             nullptr);
        ASSERT_EQ(kstd_persistentPropertyInfoTable_assign(copy, table), 0);
        for (const auto& info : pool) {
            int32_t expectedId = -1;
            const kstd_result expected = walkingFind(table, *info, &expectedId);
            matches += expectedId >= 0;
            for (const Table* t : {&table, &copy})
                EXPECT_EQ(outOf<int32_t>(expected, kstd_persistentPropertyInfoTable_findPropertyInfo, *t, *info,
                                         nullptr),
                          expectedId);
        }
    }
    EXPECT_GT(matches, 50);
}

// Every allocation of adds may fail: the call returns a code,
// the table keeps the ids it had and goes on working, and nothing leaks.
TEST(PropertyInfoTable, AllocationFailures) {
    std::vector<std::unique_ptr<Info>> infos;
    for (uint32_t access = 0; access < 40; ++access)
        infos.push_back(std::make_unique<Info>(u"swept", kstd_persistentCoreTypeId_k_Int16, access));
    auto fill = [&](kstd_persistentPropertyInfoTable* table) -> kstd_result {
        for (size_t i = 0; i < infos.size(); ++i) {
            const int32_t maxId = table->maxId;
            const int64_t length = table->used.base.size;
            const int32_t wanted = i % 7 == 3 ? int32_t(i * 3) : -1;
            const kstd_result result =
                kstd_persistentPropertyInfoTable_addPropertyInfoWithId(table, *infos[i], wanted, nullptr);
            if (result < 0) {
                EXPECT_EQ(table->maxId, maxId);
                EXPECT_EQ(table->used.base.size, length);
                EXPECT_EQ(table->infos.base.size, length);
                EXPECT_EQ(find(table, *infos[i]), -1);
                for (size_t j = 0; j < i; ++j) EXPECT_GE(find(table, *infos[j]), 0);
                return result;
            }
        }
        return 0;
    };
    EXPECT_GT(sweepAllocationFailures([&] {
                  Table table;
                  return fill(table);
              }),
              5);
}

}  // namespace
