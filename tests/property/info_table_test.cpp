#include <climits>
#include <memory>
#include <random>
#include <vector>

#include "property/info_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::info;

struct Table {
    Table() { kstd_persistentPropertyInfoTable_construct(&t); }
    ~Table() { kstd_persistentPropertyInfoTable_destruct(&t); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;
    kstd_persistentPropertyInfoTable t;
};

struct Added {
    kstd_result result;
    int32_t id;
    uint32_t added;
};

Added add(kstd_persistentPropertyInfoTable& table, const Info& info) {
    Added a{0, -2, 2};
    a.result = kstd_persistentPropertyInfoTable_addPropertyInfo(&table, &info.d, nullptr, &a.id, &a.added);
    return a;
}

int32_t addWithId(kstd_persistentPropertyInfoTable& table, const Info& info, int32_t wanted) {
    Info out;
    const kstd_result result = kstd_persistentPropertyInfoTable_addPropertyInfoWithId(&table, &info.d, wanted, &out.d);
    return result < 0 ? result : out.d.globalIndex;
}

int32_t find(const kstd_persistentPropertyInfoTable& table, const Info& info) {
    int32_t id = -2;
    EXPECT_EQ(kstd_persistentPropertyInfoTable_findPropertyInfo(&table, &info.d, nullptr, &id), 0);
    return id;
}

TEST(PropertyInfoTable, AddingFindsOrAddsInOrder) {
    Table table;
    Info a(u"alpha", kstd_persistentCoreTypeId_int), b(u"beta", kstd_persistentCoreTypeId_int);
    Info a3(u"alpha", kstd_persistentCoreTypeId_int, 3);  // differs in data access only
    const Added first = add(table.t, a), second = add(table.t, b), again = add(table.t, a), third = add(table.t, a3);
    EXPECT_EQ((std::vector<int32_t>{first.id, second.id, again.id, third.id}), (std::vector<int32_t>{0, 1, 0, 2}));
    EXPECT_EQ((std::vector<uint32_t>{first.added, second.added, again.added, third.added}),
              (std::vector<uint32_t>{1, 1, 0, 1}));
    EXPECT_EQ(again.result, 0);

    // The stored copy carries its id, and is found whatever index it carries.
    Info stored;
    ASSERT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(&table.t, 1, &stored.d), 0);
    EXPECT_EQ(nameOf(stored.d), u"beta");
    EXPECT_EQ(stored.d.globalIndex, 1);
    EXPECT_EQ(b.d.globalIndex, -1);
    stored.d.globalIndex = 7;
    EXPECT_EQ(find(table.t, stored), 1);

    // Absent: success with id -1 and a reset out descriptor.
    Info absent(u"gamma", kstd_persistentCoreTypeId_int), out(u"stale", kstd_persistentCoreTypeId_int);
    int32_t id = 5;
    EXPECT_EQ(kstd_persistentPropertyInfoTable_findPropertyInfo(&table.t, &absent.d, &out.d, &id), 0);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(out.d.name.chars, nullptr);

    // The caller's descriptor may also be the out descriptor.
    ASSERT_EQ(kstd_persistentPropertyInfoTable_addPropertyInfo(&table.t, &b.d, &b.d, nullptr, nullptr), 0);
    EXPECT_EQ(nameOf(b.d), u"beta");
    EXPECT_EQ(b.d.globalIndex, 1);
}

TEST(PropertyInfoTable, WantedIds) {
    Table table;
    Info a(u"alpha", kstd_persistentCoreTypeId_int), b(u"beta", kstd_persistentCoreTypeId_int);
    Info c(u"gamma", kstd_persistentCoreTypeId_int), d(u"delta", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(addWithId(table.t, a, 5), 5);
    Info out;
    for (int32_t free : {0, 3, 4})
        EXPECT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(&table.t, free, &out.d),
                  kstd_persistentResult_propertyInfoIdNotFound);
    for (int32_t outside : {-1, 6, INT32_MAX})
        EXPECT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(&table.t, outside, &out.d),
                  kstd_persistentResult_propertyInfoIdNotFound);
    EXPECT_EQ(add(table.t, b).id, 6);

    // A wanted id in use by another descriptor fails and changes nothing; a
    // descriptor already present keeps its id whatever id is wanted.
    EXPECT_EQ(addWithId(table.t, c, 6), kstd_persistentResult_idInUse);
    EXPECT_EQ(find(table.t, c), -1);
    EXPECT_EQ(table.t.maxId, 6);
    EXPECT_EQ(addWithId(table.t, a, 6), 5);
    EXPECT_EQ(addWithId(table.t, a, 2), 5);

    // A free wanted id below the highest fills the gap; automatic ids go on.
    EXPECT_EQ(addWithId(table.t, c, 0), 0);
    EXPECT_EQ(add(table.t, d).id, 7);

    InfoVector all;
    ASSERT_EQ(kstd_persistentPropertyInfoTable_getAllPropertyInfos(&table.t, &all.v), 0);
    ASSERT_EQ(all.size(), 4);
    const int32_t expected[] = {0, 5, 6, 7};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(all[i].globalIndex, expected[i]);
    EXPECT_EQ(nameOf(all[0]), u"gamma");
    EXPECT_EQ(nameOf(all[1]), u"alpha");

    // Reset empties the table and restarts automatic ids.
    ASSERT_EQ(kstd_persistentPropertyInfoTable_reset(&table.t), 0);
    EXPECT_EQ(find(table.t, a), -1);
    EXPECT_EQ(add(table.t, d).id, 0);
}

TEST(PropertyInfoTable, LimitsAndInconsistentVectors) {
    Table table;
    Info a(u"alpha", kstd_persistentCoreTypeId_int);
    EXPECT_EQ(addWithId(table.t, a, INT32_MAX), kstd_persistentResult_idLimitReached);
    EXPECT_EQ(table.t.maxId, -1);
    EXPECT_EQ(table.t.used.base.size, 0);
    EXPECT_EQ(add(table.t, a).id, 0);

    // `used` longer than `infos`: every operation that reads both refuses.
    ASSERT_EQ(kstd_vector8_pushBack(&table.t.used, 1), 0);
    Info out;
    InfoVector all;
    int32_t id = 0;
    EXPECT_EQ(kstd_persistentPropertyInfoTable_findPropertyInfo(&table.t, &a.d, nullptr, &id),
              kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(kstd_persistentPropertyInfoTable_getPropertyInfoById(&table.t, 1, &out.d),
              kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(kstd_persistentPropertyInfoTable_getAllPropertyInfos(&table.t, &all.v),
              kstd_persistentResult_internalInconsistency);

    // Both agree again but are longer than maxId + 1: inserting refuses.
    ASSERT_EQ(kstd_vector_kstd_persistentPropertyInfo_pushBack(&table.t.infos, &out.d), 0);
    EXPECT_EQ(find(table.t, a), 0);
    EXPECT_EQ(add(table.t, Info(u"beta", kstd_persistentCoreTypeId_int)).result,
              kstd_persistentResult_internalInconsistency);
}

// The walk over ascending ids that the find is defined by.
kstd_result walkingFind(const kstd_persistentPropertyInfoTable& table, const kstd_persistentPropertyInfo& info,
                        int32_t* id) {
    *id = -1;
    const auto* used = static_cast<const uint8_t*>(table.used.base.begin);
    const auto* stored = static_cast<const kstd_persistentPropertyInfo*>(table.infos.base.begin);
    for (int64_t i = 0; i < table.used.base.size; ++i) {
        if (used[i] != 1) continue;
        uint32_t equal = 0;
        const kstd_result result = kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(&stored[i], &info, &equal);
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
// to a registered one, wanted ids): every add and find answers as the walk.
TEST(PropertyInfoTable, FindAnswersAsTheWalkOverIds) {
    // A record made for a name before it was registered equals the
    // registered record without being it.
    TypeHandle early;
    ASSERT_EQ(kstd_persistentTypeGetType(u"InfoTableLater", 0, 0, &early.t), 0);
    Target& later = newTarget();
    ASSERT_EQ(registerObject(u"InfoTableLater", later), 0);
    TypeHandle empty;
    std::vector<std::unique_ptr<Info>> pool;
    auto addToPool = [&](const char16_t* name, const kstd_persistentType& type, uint32_t access) {
        pool.push_back(std::make_unique<Info>());
        EXPECT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&pool.back()->d, name, &type, access), 0);
    };
    TypeHandle intValue, intPointer;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &intValue.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 1, 1, &intPointer.t), 0);
    for (const char16_t* name : {static_cast<const char16_t*>(nullptr), u"", u"n1", u"n2"})
        for (uint32_t access = 1; access <= 2; ++access)
            for (const kstd_persistentType* type : {&empty.t, &intValue.t, &intPointer.t, &early.t, &later.handle})
                addToPool(name, *type, access);
    std::mt19937 random(12345);
    int failures = 0, matches = 0;
    for (int round = 0; round < 30; ++round) {
        Table table;
        for (int step = 0; step < 60; ++step) {
            const Info& info = *pool[random() % pool.size()];
            int32_t expectedId = -1;
            const kstd_result expected = walkingFind(table.t, info.d, &expectedId);
            failures += expected < 0;
            matches += expectedId >= 0;
            int32_t id = -2;
            EXPECT_EQ(kstd_persistentPropertyInfoTable_findPropertyInfo(&table.t, &info.d, nullptr, &id), expected);
            EXPECT_EQ(id, expectedId);
            const int32_t wanted = random() % 3 == 0 ? int32_t(random() % 80) : -1;
            Info out;
            const kstd_result added = kstd_persistentPropertyInfoTable_addPropertyInfoWithId(&table.t, &info.d,
                                                                                             wanted, &out.d);
            if (expected < 0) {
                EXPECT_EQ(added, expected);
            } else if (expectedId >= 0) {
                EXPECT_EQ(out.d.globalIndex, expectedId);
            }
        }
        // A copy answers the same.
        Table copy;
        ASSERT_EQ(kstd_persistentPropertyInfoTable_assign(&copy.t, &table.t), 0);
        for (const auto& info : pool) {
            int32_t expectedId = -1, id = -2;
            const kstd_result expected = walkingFind(table.t, info->d, &expectedId);
            EXPECT_EQ(kstd_persistentPropertyInfoTable_findPropertyInfo(&copy.t, &info->d, nullptr, &id), expected);
            EXPECT_EQ(id, expectedId);
        }
        // ... and grows on its own.
        Info extra(u"n3", kstd_persistentCoreTypeId_int);
        EXPECT_EQ(add(copy.t, extra).id, table.t.maxId + 1);
        EXPECT_EQ(find(table.t, extra), -1);
    }
    EXPECT_GT(failures, 100);
    EXPECT_GT(matches, 100);
}

// Many distinct descriptors: adding stays linear overall (a walk per add
// would take minutes here).
TEST(PropertyInfoTable, ManyAdds) {
    Table table;
    Info info(u"many", kstd_persistentCoreTypeId_int);
    constexpr uint32_t count = 200000;
    for (uint32_t access = 0; access < count; ++access) {
        info.d.dataAccess = access;
        ASSERT_EQ(add(table.t, info).id, int32_t(access));
    }
    for (uint32_t access = 0; access < count; access += 997) {
        info.d.dataAccess = access;
        EXPECT_EQ(find(table.t, info), int32_t(access));
    }
}

// Every allocation of adds and assigns may fail: the call returns
// a code, the table keeps the ids it had and goes on working, and nothing leaks.
TEST(PropertyInfoTable, AllocationFailures) {
    std::vector<std::unique_ptr<Info>> infos;
    for (uint32_t access = 0; access < 40; ++access)
        infos.push_back(std::make_unique<Info>(u"swept", kstd_persistentCoreTypeId_k_Int16, access));
    auto fill = [&](kstd_persistentPropertyInfoTable& table) -> kstd_result {
        for (size_t i = 0; i < infos.size(); ++i) {
            const int32_t maxId = table.maxId;
            const int64_t length = table.used.base.size;
            const int32_t wanted = i % 7 == 3 ? int32_t(i * 3) : -1;
            const kstd_result result =
                kstd_persistentPropertyInfoTable_addPropertyInfoWithId(&table, &infos[i]->d, wanted, nullptr);
            if (result < 0) {
                EXPECT_EQ(table.maxId, maxId);
                EXPECT_EQ(table.used.base.size, length);
                EXPECT_EQ(table.infos.base.size, length);
                EXPECT_EQ(find(table, *infos[i]), -1);
                for (size_t j = 0; j < i; ++j) EXPECT_GE(find(table, *infos[j]), 0);
                return result;
            }
        }
        return 0;
    };
    EXPECT_GT(sweepAllocationFailures([&] {
                  Table table;
                  return fill(table.t);
              }),
              5);
    Table source;
    ASSERT_EQ(fill(source.t), 0);
    sweepAllocationFailures([&] {
        Table target;
        kstd_result result = kstd_persistentPropertyInfoTable_assign(&target.t, &source.t);
        if (result >= 0) {
            EXPECT_EQ(find(target.t, *infos[39]), source.t.maxId);
        }
        return result;
    });
}

}  // namespace
