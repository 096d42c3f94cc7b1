#include <cstdlib>
#include <vector>

#include "types/type_test_support.hpp"

namespace {

using namespace vexpers::test;

// Every registered record, as (name, derivation) in the registry's order.
std::vector<std::pair<std::u16string, uint32_t>> allTypes() {
    TypeVector types;
    EXPECT_EQ(kstd_persistentTypeGetAllTypes(&types.v), 0);
    std::vector<std::pair<std::u16string, uint32_t>> result;
    for (int64_t i = 0; i < types.size(); ++i) result.emplace_back(nameOf(types[i]), recordOf(types[i])->derivation);
    return result;
}

TEST(Registry, GetTypeByNameAndDerivation) {
    Type type;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, type), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_getCoreTypeId, type), 20);
    // Core types have no bit-field forms: not found, or an unknown record.
    EXPECT_EQ(kstd_persistentTypeGetType(u"int", 4, 1, type), C8);
    EXPECT_EQ(recordOf(type), nullptr);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 4, 0, type), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, type), 0u);
    // Null and empty names are looked up like any other and never registered.
    for (const char16_t* name : {static_cast<const char16_t*>(nullptr), u""}) {
        EXPECT_EQ(kstd_persistentTypeGetType(name, 0, 0, type), C6);
        EXPECT_EQ(kstd_persistentTypeGetType(name, 0, 1, type), C8);
        EXPECT_EQ(recordOf(type), nullptr);
    }
    // Names are exact and case-sensitive.
    EXPECT_EQ(kstd_persistentTypeGetType(u"Int", 0, 1, type), C8);
    // Names only looked up are not registered.
    const size_t count = allTypes().size();
    ASSERT_EQ(kstd_persistentTypeGetType(u"OnlyLookedUp", 0, 0, type), 0);
    EXPECT_EQ(allTypes().size(), count);
}

// Every core type in four derivations, numbered in (id, derivation) order;
// only the value form counts as a core type.
TEST(Registry, CoreTypes) {
    Type type;
    for (int32_t id = 0; id < kstd_persistentCoreTypeId_count; ++id) {
        const char16_t* coreName = outOf<const char16_t*>(0, kstd_persistentTypeGetCoreTypeTypeName, id);
        for (uint32_t derivation = 0; derivation < 4; ++derivation) {
            SCOPED_TRACE(testing::Message() << "core id " << id << " derivation " << derivation);
            ASSERT_EQ(kstd_persistentType_resetCoreTypeIdAndDerivation(type, id, derivation), 0);
            EXPECT_EQ(nameOf(type), std::u16string(coreName));
            EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_getCoreTypeId, type), id);
            EXPECT_EQ(recordOf(type)->derivation, derivation);
            EXPECT_LE(recordOf(type)->category, 5u);
            EXPECT_EQ(recordOf(type)->isKnown, 1u);
            EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_getGlobalIndex, type), id * 4 + int32_t(derivation));
            EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsCoreTypeOrEnum, type), derivation == 0 ? 1u : 0u);
        }
        EXPECT_EQ(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(id, 4, type), C8);
    }
    // A reserved name is registered, but has no operation table.
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(type, kstd_persistentCoreTypeId_k_Int128), 0);
    EXPECT_EQ(recordOf(type)->objectVtable, nullptr);
    for (int32_t bad : {-1, 52}) {
        EXPECT_EQ(outOf<const char16_t*>(C5, kstd_persistentTypeGetCoreTypeTypeName, bad), nullptr);
        EXPECT_EQ(kstd_persistentType_resetCoreTypeId(type, bad), C5);
        EXPECT_EQ(recordOf(type), nullptr);
    }
}

TEST(Registry, MatchingCoreTypes) {
    constexpr kstd_result NoMatch = kstd_persistentResult_noMatchingCoreType;
    struct Row {
        uint32_t category, size, derivation;
        kstd_result code;
        const char16_t* name;
    };
    const Row rows[] = {
        {0, 4, 0, 0, u"k_Int32"}, {2, 0, 0, 0, u"k_Bool"},        {5, 0, 2, 0, u"kstd_unicodeString"},
        {3, 2, 0, NoMatch, u"(null)"}, {7, 0, 0, D6, u"(null)"}, {0, 4, 4, D6, u"(null)"}, {9, 4, 0, CB, u"(null)"},
        {9, 4, 5, D6, u"(null)"},  // the derivation is checked before the category is known
    };
    Type type;
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.category << ", " << row.size << ", " << row.derivation);
        ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, type), 0);  // replaced, or reset on failure
        EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(row.category, row.size, row.derivation, type), row.code);
        EXPECT_EQ(nameOf(type), row.name);
        if (row.code == 0) {
            EXPECT_EQ(recordOf(type)->derivation, row.derivation);
        }
    }

    // Whether a type matches compares category, derivation and size.
    auto matches = [](const char16_t* name, uint32_t derivation, uint32_t category, uint32_t size,
                      uint32_t askedDerivation = 0) {
        Type type;
        EXPECT_EQ(kstd_persistentTypeGetType(name, derivation, 0, type), 0);
        uint32_t isMatching = 7;
        const kstd_result result =
            kstd_persistentTypeGetIsMatchingCoreType(category, size, askedDerivation, type, &isMatching);
        return std::make_pair(result, isMatching);
    };
    using Answer = std::pair<kstd_result, uint32_t>;
    EXPECT_EQ(matches(u"int", 0, 0, 4), Answer(0, 1));
    EXPECT_EQ(matches(u"unsigned int", 0, 0, 4), Answer(0, 0));  // another category
    EXPECT_EQ(matches(u"int", 1, 0, 4, 0), Answer(0, 0));        // another derivation
    EXPECT_EQ(matches(u"int", 0, 0, 4, 4), Answer(D6, 0));
    EXPECT_EQ(matches(u"k_Int128", 0, 0, 16), Answer(C0, 0));  // a reserved type has no size to compare
}

// Right after start-up the registry holds the core types and the two
// shared-pointer types in four derivations each, sorted by name and
// derivation. Counted in a fresh process, since the other tests here
// register types.
TEST(RegistryDeathTest, AllTypesRightAfterStartUp) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto sortedAtStartUp = [] {
        const auto types = allTypes();
        for (size_t i = 1; i < types.size(); ++i)
            if (!(types[i - 1] < types[i])) return false;
        return types.size() == 52 * 4 + 8 && types.front().first == u"TCHAR";
    };
    EXPECT_EXIT(std::exit(sortedAtStartUp() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Registry, RegisteringTwice) {
    Target& first = newTarget();
    Target& second = newTarget();
    ASSERT_EQ(registerObject(u"Twice", first), 0);
    EXPECT_EQ(first.flag, 1u);
    const kstd_persistentType_* record = recordOf(first.handle);
    ASSERT_NE(record, nullptr);
    const size_t count = allTypes().size();

    // Through its own flag nothing happens; through another flag it is refused.
    EXPECT_EQ(registerObject(u"Twice", first), 0);
    EXPECT_EQ(recordOf(first.handle), record);
    for (const char16_t* name : {u"Twice", u"int"}) {
        EXPECT_EQ(registerObject(name, second), kstd_persistentResult_typeAlreadyRegistered);
        EXPECT_EQ(second.flag, 0u);
    }
    EXPECT_EQ(allTypes().size(), count);
}

TEST(Registry, EnumsWithAndWithoutBitfieldForm) {
    Target &plain = newTarget(), &withBits = newTarget(), &bits = newTarget();
    size_t count = allTypes().size();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"PlainEnum", 1, 2, 3, 4, &valueAccessTable, nullptr, nullptr,
                                                  nullptr, &plain.flag, nullptr, &plain.handle, nullptr),
              0);
    EXPECT_EQ(allTypes().size(), count + 4);
    count = allTypes().size();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"BitEnum", 5, 6, 7, 8, &valueAccessTable,
                                                  &bitfieldValueAccessTable, nullptr, nullptr, &withBits.flag,
                                                  &bits.flag, &withBits.handle, &bits.handle),
              0);
    EXPECT_EQ(allTypes().size(), count + 6);
    EXPECT_EQ(withBits.flag + bits.flag, 2u);

    const kstd_persistentType_* value = recordOf(withBits.handle);
    const kstd_persistentType_* bitfield = recordOf(bits.handle);
    ASSERT_NE(bitfield, nullptr);
    EXPECT_EQ(bitfield->derivation, 4u);
    EXPECT_EQ(bitfield->globalIndex, value->globalIndex + 4);
    EXPECT_EQ(bitfield->enumWords[4], 8u);

    // An enum counts as core-or-enum in its value and bit-field forms only.
    Type type;
    for (uint32_t derivation = 0; derivation < 6; ++derivation) {
        ASSERT_EQ(kstd_persistentTypeGetType(u"BitEnum", derivation, 1, type), 0);
        EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsCoreTypeOrEnum, type),
                  derivation == 0 || derivation == 4 ? 1u : 0u);
    }
    EXPECT_EQ(kstd_persistentTypeGetType(u"PlainEnum", 4, 1, type), C8);
}

// A container table with every operation registration requires.
constexpr kstd_persistentContainerVtable containerTable{
    [](void*, int64_t) -> kstd_result { return 0; }, [](const void*, intptr_t*) -> kstd_result { return 0; },
    [](void*, void**) -> kstd_result { return 0; },  [](uint32_t*, uint32_t*) -> kstd_result { return 0; },
    [](void*, void**) -> kstd_result { return 0; },  nullptr};

TEST(Registry, FailedChecksLeaveTheFlagAtZero) {
    Target& target = newTarget();
    kstd_persistentObjectVtable noDelete = objectTable;
    noDelete.deleteObject = nullptr;
    kstd_persistentContainerVtable noNext = containerTable;
    noNext.getNextElement = nullptr;
    auto registerItem = []() -> kstd_result { return 0; };
    const auto* access = &valueAccessTable;
    uint32_t* flag = &target.flag;
    kstd_persistentType* out = &target.handle;
    auto object = [&](const char16_t* name, const kstd_persistentObjectVtable* table,
                      const kstd_persistentValueAccessVtable* valueAccess) {
        return kstd_persistentTypeRegisterTypeObject(name, table, valueAccess, nullptr, 0, flag, out);
    };
    auto containerOf = [&](const kstd_persistentContainerVtable* table, const char16_t* item,
                           kstd_result (*registration)()) {
        return kstd_persistentTypeRegisterTypeObjectContainer(u"Checked", &objectTable, access, nullptr, table, item,
                                                              registration, 0, flag, out);
    };
    EXPECT_EQ(object(u"Checked", nullptr, access), C0);
    EXPECT_EQ(object(u"Checked", &noDelete, access), C1);
    EXPECT_EQ(object(u"", &objectTable, access), C6);
    EXPECT_EQ(containerOf(nullptr, u"int", registerItem), C0);
    EXPECT_EQ(containerOf(&noNext, u"int", registerItem), C1);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"Checked", 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr, flag,
                                                  nullptr, out, nullptr),
              C0);
    {
        // A missing flag or output is a fault of the caller.
        AssertRecorder faults;
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", &objectTable, access, nullptr, 0, nullptr, out),
                  Fault);
        EXPECT_EQ(faults.count(), 1);
    }
    EXPECT_EQ(target.flag, 0u);
    EXPECT_EQ(recordOf(target.handle), nullptr);
    Type type;
    EXPECT_EQ(kstd_persistentTypeGetType(u"Checked", 0, 1, type), C8);

    // A registration that ran out of memory before making a record can be retried.
    ksys_memory_failAt(1, 1);
    const kstd_result result = registerObject(u"CheckedAfterAll", target);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(result, OOM);
    EXPECT_EQ(target.flag, 0u);
    EXPECT_EQ(registerObject(u"CheckedAfterAll", target), 0);
    EXPECT_EQ(target.flag, 1u);
}

// Nested registrations run while the registering thread holds the registry.
Target* nestedItem = nullptr;
std::vector<std::u16string> registrationOrder;

kstd_result registerItemType() {
    registrationOrder.push_back(u"item");
    return registerObject(u"NestedItem", *nestedItem);
}
kstd_result registerMemberA() {
    registrationOrder.push_back(u"a");
    Type type;  // lookups work inside a registration too
    return kstd_persistentTypeGetType(u"NestedContainer", 0, 1, type);
}
kstd_result registerMemberB() {
    registrationOrder.push_back(u"b");
    return 0;
}

TEST(Registry, NestedRegistrationsOfMembersAndItems) {
    nestedItem = &newTarget();
    Target& target = newTarget();
    static kstd_persistentPropertyInfoDefinition definitions[3]{
        {u"a", 2, u"int", 0, {}}, {u"skipped", 2, u"int", 0, {}}, {u"b", 2, u"int", 0, {}}};
    definitions[0].accessors.slots.entryTypeRegistration = registerMemberA;
    definitions[2].accessors.slots.entryTypeRegistration = registerMemberB;  // "skipped" has none
    static const kstd_persistentStaticPropertyList list{definitions, 3};

    ASSERT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"NestedContainer", &objectTable, &valueAccessTable,
                                                             &list, &containerTable, u"NestedItem", registerItemType, 0,
                                                             &target.flag, &target.handle),
              0);
    EXPECT_EQ(registrationOrder, (std::vector<std::u16string>{u"a", u"b", u"item"}));
    EXPECT_EQ(nestedItem->flag, 1u);
    const kstd_persistentType_* record = recordOf(target.handle);
    EXPECT_EQ(record->isContainer, 1u);
    EXPECT_EQ(std::u16string(record->containedItemTypeName.chars), u"NestedItem");
    EXPECT_EQ(record->containedItemTypeResolved, 0u);
}

TEST(Registry, LookupsSurviveAllocationFailures) {
    Type type;
    ASSERT_EQ(kstd_persistentTypeGetType(u"SweptName", 0, 0, type), 0);  // interns the name
    ASSERT_EQ(kstd_persistentType_reset(type), 0);
    sweepAllocationFailures([&] { return kstd_persistentTypeGetType(u"SweptName", 1, 0, type); },
                            [&] { kstd_persistentType_reset(type); });
    TypeVector types;
    sweepAllocationFailures([&] { return kstd_persistentTypeGetAllTypes(&types.v); },
                            [&] { kstd_vector_kstd_persistentType_clearAndFreeMemory(&types.v); });
}

// Shut-down frees everything the registry made, the callers' handles
// included. Run in a fresh process, which ends with the registry gone.
bool shutDownFreesEverything() {
    const int64_t start = liveBlocks();
    {
        allTypes();
        Type unknown;
        kstd_persistentTypeGetType(u"ShutDownUnknown", 2, 0, unknown);
    }
    Target &object = newTarget(), &enumeration = newTarget(), &bits = newTarget();
    static const kstd_persistentPropertyInfoDefinition members[1]{{u"member", 0, u"int", 0, {}}};
    static const kstd_persistentStaticPropertyList list{members, 1};
    bool ok = registerObject(u"ShutDownObject", object, &list) == 0;
    ok = ok && kstd_persistentTypeRegisterTypeEnum(u"ShutDownEnum", 0, 0, 0, 0, &valueAccessTable, &valueAccessTable,
                                                   nullptr, nullptr, &enumeration.flag, &bits.flag,
                                                   &enumeration.handle, &bits.handle) == 0;
    ok = ok && liveBlocks() > start && ksys_shutdown() == 0;
    ok = ok && recordOf(object.handle) == nullptr && recordOf(bits.handle) == nullptr;
    return ok && liveBlocks() == start;
}

TEST(RegistryDeathTest, ShutDownFreesEverything) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(shutDownFreesEverything() ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
