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
    for (int64_t i = 0; i < types.size(); ++i) {
        uint32_t derivation = 0;
        kstd_persistentType_getTypeDerivation(&types[i], &derivation);
        result.emplace_back(nameOf(types[i]), derivation);
    }
    return result;
}

int64_t typeCount() {
    TypeVector types;
    EXPECT_EQ(kstd_persistentTypeGetAllTypes(&types.v), 0);
    return types.size();
}

TEST(Registry, GetTypeByNameAndDerivation) {
    TypeHandle type;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &type.t), 0);
    int32_t coreId = 0;
    EXPECT_EQ(kstd_persistentType_getCoreTypeId(&type.t, &coreId), 0);
    EXPECT_EQ(coreId, 20);

    // Core types have no bit-field forms.
    EXPECT_EQ(kstd_persistentTypeGetType(u"int", 4, 1, &type.t), kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(recordOf(type.t), nullptr);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 4, 0, &type.t), 0);
    uint32_t isKnown = 1;
    kstd_persistentType_getIsKnown(&type.t, &isKnown);
    EXPECT_EQ(isKnown, 0u);

    // Null and empty names are looked up like any other and never registered.
    EXPECT_EQ(kstd_persistentTypeGetType(u"", 0, 0, &type.t), kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentTypeGetType(u"", 0, 1, &type.t), kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(kstd_persistentTypeGetType(nullptr, 0, 0, &type.t), kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentTypeGetType(nullptr, 0, 1, &type.t), kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(recordOf(type.t), nullptr);

    // Names are exact and case-sensitive; lookups of one name share the interned text.
    EXPECT_EQ(kstd_persistentTypeGetType(u"Int", 0, 1, &type.t), kstd_persistentResult_typeNotRegistered);
    TypeHandle again;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &type.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &again.t), 0);
    EXPECT_EQ(recordOf(type.t), recordOf(again.t));
}

TEST(Registry, EveryCoreTypeInFourDerivations) {
    TypeHandle type;
    for (int32_t id = 0; id < kstd_persistentCoreTypeId_count; ++id) {
        const char16_t* coreName = nullptr;
        ASSERT_EQ(kstd_persistentTypeGetCoreTypeTypeName(id, &coreName), 0);
        for (uint32_t derivation = 0; derivation < 4; ++derivation) {
            SCOPED_TRACE(testing::Message() << "core id " << id << " derivation " << derivation);
            ASSERT_EQ(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(id, derivation, &type.t), 0);
            const kstd_persistentType_* record = recordOf(type.t);
            EXPECT_EQ(nameOf(type.t), std::u16string(coreName));
            EXPECT_EQ(record->coreTypeId, id);
            EXPECT_EQ(record->derivation, derivation);
            EXPECT_LE(record->category, 5u);
            EXPECT_EQ(record->globalIndex, id * 4 + int32_t(derivation));
            EXPECT_EQ(record->isKnown, 1u);
        }
        EXPECT_EQ(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(id, 4, &type.t),
                  kstd_persistentResult_typeNotRegistered);
    }
    // The table's sizes are those of this build; the string row is a whole record.
    uint32_t size = 0;
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(&type.t, kstd_persistentCoreTypeId_long), 0);
    ASSERT_EQ(recordOf(type.t)->objectVtable->getElementSize(&size), 0);
    EXPECT_EQ(size, sizeof(long));
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(&type.t, kstd_persistentCoreTypeId_kstd_unicodeString), 0);
    const kstd_persistentObjectVtable* table = recordOf(type.t)->objectVtable;
    ASSERT_EQ(table->getElementSize(&size), 0);
    EXPECT_EQ(size, sizeof(kstd_unicodeString));
    EXPECT_NE(table->deleteObject, nullptr);

    const char16_t* name = u"stale";
    EXPECT_EQ(kstd_persistentTypeGetCoreTypeTypeName(52, &name), kstd_persistentResult_invalidCoreTypeId);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(kstd_persistentTypeGetCoreTypeTypeName(-1, &name), kstd_persistentResult_invalidCoreTypeId);
    EXPECT_EQ(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(-3, 0, &type.t),
              kstd_persistentResult_invalidCoreTypeId);
}

TEST(Registry, MatchingCoreType) {
    TypeHandle type;
    ASSERT_EQ(kstd_persistentTypeGetMatchingCoreType(0, 4, 0, &type.t), 0);
    EXPECT_EQ(nameOf(type.t), u"k_Int32");
    ASSERT_EQ(kstd_persistentTypeGetMatchingCoreType(1, 8, 0, &type.t), 0);
    EXPECT_EQ(nameOf(type.t), u"k_UInt64");
    ASSERT_EQ(kstd_persistentTypeGetMatchingCoreType(2, 0, 0, &type.t), 0);
    EXPECT_EQ(nameOf(type.t), u"k_Bool");
    ASSERT_EQ(kstd_persistentTypeGetMatchingCoreType(5, 0, 2, &type.t), 0);
    EXPECT_EQ(nameOf(type.t), u"kstd_unicodeString");
    ASSERT_EQ(kstd_persistentTypeGetMatchingCoreType(3, 8, 1, &type.t), 0);
    EXPECT_EQ(nameOf(type.t), u"double");
    EXPECT_EQ(recordOf(type.t)->derivation, 1u);

    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(0, 3, 0, &type.t), kstd_persistentResult_noMatchingCoreType);
    EXPECT_EQ(recordOf(type.t), nullptr);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(3, 2, 0, &type.t), kstd_persistentResult_noMatchingCoreType);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(2, 4, 0, &type.t), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(4, 1, 0, &type.t), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(7, 0, 0, &type.t), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(0, 4, 4, &type.t), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(9, 4, 0, &type.t), kstd_persistentResult_invalidTypeCategory);
    // The derivation is checked before the category is known.
    EXPECT_EQ(kstd_persistentTypeGetMatchingCoreType(9, 4, 5, &type.t), kstd_persistentResult_wrongTypeKind);
}

TEST(Registry, IsMatchingCoreTypeComparesCategoryDerivationAndSize) {
    auto matches = [](const char16_t* name, uint32_t derivation, uint32_t category, uint32_t size,
                      uint32_t askedDerivation = 0) {
        TypeHandle type;
        EXPECT_EQ(kstd_persistentTypeGetType(name, derivation, 0, &type.t), 0);
        uint32_t isMatching = 7;
        const kstd_result result =
            kstd_persistentTypeGetIsMatchingCoreType(category, size, askedDerivation, &type.t, &isMatching);
        return std::make_pair(result, isMatching);
    };
    using Answer = std::pair<kstd_result, uint32_t>;
    EXPECT_EQ(matches(u"int", 0, 0, 4), Answer(0, 1));
    EXPECT_EQ(matches(u"k_Int32", 0, 0, 4), Answer(0, 1));
    EXPECT_EQ(matches(u"long", 0, 0, sizeof(long)), Answer(0, 1));  // 8 bytes in this build
    EXPECT_EQ(matches(u"k_Int16", 0, 0, 4), Answer(0, 0));
    EXPECT_EQ(matches(u"unsigned int", 0, 0, 4), Answer(0, 0));  // another category
    EXPECT_EQ(matches(u"int", 1, 0, 4, 1), Answer(0, 1));
    EXPECT_EQ(matches(u"int", 1, 0, 4, 0), Answer(0, 0));  // another derivation
    EXPECT_EQ(matches(u"bool", 0, 2, 0), Answer(0, 1));     // no size for booleans
    EXPECT_EQ(matches(u"NotACoreType", 0, 0, 4), Answer(0, 0));
    EXPECT_EQ(matches(u"int", 0, 0, 4, 4), Answer(kstd_persistentResult_wrongTypeKind, 0));
    // A reserved type has no size to compare.
    EXPECT_EQ(matches(u"k_Int128", 0, 0, 16), Answer(kstd_persistentResult_noObjectVtable, 0));
}

TEST(Registry, AllTypesAreSortedAndUnique) {
    const auto types = allTypes();
    ASSERT_GE(types.size(), 208u);
    for (size_t i = 1; i < types.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "position " << i);
        ASSERT_TRUE(types[i - 1] < types[i]);
    }
    // Property names and unregistered names looked up before add nothing.
    TypeHandle type;
    ASSERT_EQ(kstd_persistentTypeGetType(u"OnlyLookedUp", 0, 0, &type.t), 0);
    EXPECT_EQ(allTypes().size(), types.size());
}

// Right after start-up the registry holds the core types in four derivations
// each; the two shared-pointer types are added to start-up by the built-in
// object types, and 216 records are expected from then on. Counted in a fresh
// process, since the other tests here register types.
bool startsWithTheCoreTypes() {
    const auto types = allTypes();
    bool sorted = true;
    for (size_t i = 1; i < types.size(); ++i) sorted = sorted && types[i - 1] < types[i];
    return sorted && types.size() == 52 * 4 && types.front() == std::make_pair(std::u16string(u"TCHAR"), 0u);
}

TEST(RegistryDeathTest, AllTypesRightAfterStartUp) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(startsWithTheCoreTypes() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(Registry, RegisteringTwice) {
    Target& first = newTarget();
    Target& second = newTarget();
    ASSERT_EQ(registerObject(u"Twice", first), 0);
    EXPECT_EQ(first.flag, 1u);
    const kstd_persistentType_* record = recordOf(first.handle);
    ASSERT_NE(record, nullptr);
    const int64_t count = typeCount();

    // Through its own flag nothing happens; through another flag it is refused.
    EXPECT_EQ(registerObject(u"Twice", first), 0);
    EXPECT_EQ(recordOf(first.handle), record);
    EXPECT_EQ(registerObject(u"Twice", second), kstd_persistentResult_typeAlreadyRegistered);
    EXPECT_EQ(second.flag, 0u);
    EXPECT_EQ(registerObject(u"int", second), kstd_persistentResult_typeAlreadyRegistered);
    EXPECT_EQ(second.flag, 0u);
    EXPECT_EQ(typeCount(), count);

    // The registered record: object category, four derivations, consecutive indexes.
    EXPECT_EQ(record->category, 7u);
    EXPECT_EQ(record->coreTypeId, -1);
    EXPECT_EQ(record->objectVtable, &objectTable);
    EXPECT_EQ(record->valueAccess, &valueAccessTable);
    TypeHandle type;
    for (uint32_t derivation = 0; derivation < 4; ++derivation) {
        ASSERT_EQ(kstd_persistentTypeGetType(u"Twice", derivation, 1, &type.t), 0);
        EXPECT_EQ(recordOf(type.t)->globalIndex, record->globalIndex + int32_t(derivation));
    }
    EXPECT_EQ(kstd_persistentTypeGetType(u"Twice", 4, 1, &type.t), kstd_persistentResult_typeNotRegistered);
}

TEST(Registry, EnumsWithAndWithoutBitfieldForm) {
    Target& plain = newTarget();
    Target& withBits = newTarget();
    Target& bits = newTarget();
    int64_t count = typeCount();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"PlainEnum", 1, 2, 3, 4, &valueAccessTable, nullptr, nullptr,
                                                  nullptr, &plain.flag, nullptr, &plain.handle, nullptr),
              0);
    EXPECT_EQ(typeCount(), count + 4);
    count = typeCount();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"BitEnum", 5, 6, 7, 8, &valueAccessTable,
                                                  &bitfieldValueAccessTable, nullptr, nullptr, &withBits.flag,
                                                  &bits.flag, &withBits.handle, &bits.handle),
              0);
    EXPECT_EQ(typeCount(), count + 6);
    EXPECT_EQ(withBits.flag, 1u);
    EXPECT_EQ(bits.flag, 1u);

    const kstd_persistentType_* value = recordOf(withBits.handle);
    const kstd_persistentType_* bitfield = recordOf(bits.handle);
    ASSERT_NE(bitfield, nullptr);
    EXPECT_EQ(bitfield->derivation, 4u);
    EXPECT_EQ(bitfield->globalIndex, value->globalIndex + 4);
    EXPECT_EQ(value->valueAccess, &valueAccessTable);
    EXPECT_EQ(bitfield->valueAccess, &bitfieldValueAccessTable);
    const uint32_t words[5] = {0, 5, 6, 7, 8};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(bitfield->enumWords[i], words[i]);

    // An enum counts as core-or-enum in its value and bit-field forms only.
    TypeHandle type;
    for (uint32_t derivation = 0; derivation < 6; ++derivation) {
        ASSERT_EQ(kstd_persistentTypeGetType(u"BitEnum", derivation, 1, &type.t), 0);
        uint32_t flag = 9, category = 0;
        kstd_persistentType_getIsCoreTypeOrEnum(&type.t, &flag);
        kstd_persistentType_getTypeCategory(&type.t, &category);
        EXPECT_EQ(flag, derivation == 0 || derivation == 4 ? 1u : 0u) << derivation;
        EXPECT_EQ(category, 6u);
    }
    EXPECT_EQ(kstd_persistentTypeGetType(u"PlainEnum", 4, 1, &type.t), kstd_persistentResult_typeNotRegistered);

    // Without its own flag the bit-field form is still made.
    Target& noBitFlag = newTarget();
    Target& noBitFlagBits = newTarget();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"BitEnumNoFlag", 0, 0, 0, 0, &valueAccessTable,
                                                  &bitfieldValueAccessTable, nullptr, nullptr, &noBitFlag.flag,
                                                  nullptr, &noBitFlag.handle, &noBitFlagBits.handle),
              0);
    EXPECT_NE(recordOf(noBitFlagBits.handle), nullptr);
    EXPECT_EQ(noBitFlagBits.flag, 0u);
}

TEST(Registry, FailedChecksLeaveTheFlagAtZero) {
    Target& target = newTarget();
    static const kstd_persistentObjectVtable noDelete{fourBytes, noOp, noOpCopy, noOpCopy, noOp,
                                                      noOp,      noOpNew, noOpClone, nullptr};
    static const kstd_persistentContainerVtable noNext{
        [](void*, int64_t) -> kstd_result { return 0; },
        [](const void*, intptr_t*) -> kstd_result { return 0; },
        [](void*, void**) -> kstd_result { return 0; },
        [](uint32_t*, uint32_t*) -> kstd_result { return 0; },
        nullptr,
        nullptr};
    static const kstd_persistentContainerVtable container{
        noNext.resize, noNext.getSize, noNext.getBegin, noNext.getLayout,
        [](void*, void**) -> kstd_result { return 0; }, nullptr};
    static const kstd_typeDescriptorMinimalVtable halfMinimal{nullptr, nullptr};
    auto registerItem = []() -> kstd_result { return 0; };
    uint32_t* flag = &target.flag;
    kstd_persistentType* out = &target.handle;

    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", nullptr, &valueAccessTable, nullptr, 0, flag, out),
              kstd_persistentResult_noObjectVtable);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", &objectTable, nullptr, nullptr, 0, flag, out),
              kstd_persistentResult_noObjectVtable);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", &noDelete, &valueAccessTable, nullptr, 0, flag, out),
              kstd_persistentResult_operationMissing);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"", &objectTable, &valueAccessTable, nullptr, 0, flag, out),
              kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"Checked", &objectTable, &valueAccessTable, nullptr,
                                                             nullptr, u"int", registerItem, 0, flag, out),
              kstd_persistentResult_noObjectVtable);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"Checked", &objectTable, &valueAccessTable, nullptr,
                                                             &noNext, u"int", registerItem, 0, flag, out),
              kstd_persistentResult_operationMissing);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"Checked", &objectTable, &valueAccessTable, nullptr,
                                                             &container, u"", registerItem, 0, flag, out),
              kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"Checked", &objectTable, &valueAccessTable, nullptr,
                                                             &container, u"int", nullptr, 0, flag, out),
              kstd_persistentResult_noObjectVtable);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"Checked", nullptr, &valueAccessTable, nullptr,
                                                           &halfMinimal, 0, flag, out),
              kstd_persistentResult_operationMissing);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"Checked", 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr, flag,
                                                  nullptr, out, nullptr),
              kstd_persistentResult_noObjectVtable);
    {
        // A missing flag or output is a fault of the caller.
        AssertRecorder faults;
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", &objectTable, &valueAccessTable, nullptr, 0,
                                                        nullptr, out),
                  ksys_result_preconditionFailed);
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"Checked", &objectTable, &valueAccessTable, nullptr, 0, flag,
                                                        nullptr),
                  ksys_result_preconditionFailed);
        EXPECT_EQ(faults.count(), 2);
    }
    EXPECT_EQ(target.flag, 0u);
    EXPECT_EQ(recordOf(target.handle), nullptr);
    TypeHandle type;
    EXPECT_EQ(kstd_persistentTypeGetType(u"Checked", 0, 1, &type.t), kstd_persistentResult_typeNotRegistered);

    // A registration that ran out of memory before making a record can be retried.
    ksys_memory_failAt(1, 1);
    const kstd_result result = registerObject(u"CheckedAfterAll", target);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(result, ksys_result_outOfMemory);
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
    TypeHandle type;  // lookups work inside a registration too
    return kstd_persistentTypeGetType(u"NestedContainer", 0, 1, &type.t);
}
kstd_result registerMemberB() {
    registrationOrder.push_back(u"b");
    return 0;
}
kstd_result failingMember() { return kstd_persistentResult_notSupported; }

TEST(Registry, NestedRegistrationsOfMembersAndItems) {
    nestedItem = &newTarget();
    Target& target = newTarget();
    static const kstd_persistentContainerVtable container{
        [](void*, int64_t) -> kstd_result { return 0; },
        [](const void*, intptr_t*) -> kstd_result { return 0; },
        [](void*, void**) -> kstd_result { return 0; },
        [](uint32_t*, uint32_t*) -> kstd_result { return 0; },
        [](void*, void**) -> kstd_result { return 0; },
        nullptr};
    static kstd_persistentPropertyInfoDefinition definitions[3]{};
    definitions[0].name = u"a";
    definitions[0].typeName = u"int";
    definitions[0].accessors.slots.entryTypeRegistration = registerMemberA;
    definitions[1].name = u"skipped";  // no entry type registration
    definitions[1].typeName = u"int";
    definitions[2].name = u"b";
    definitions[2].typeName = u"int";
    definitions[2].accessors.slots.entryTypeRegistration = registerMemberB;
    static const kstd_persistentStaticPropertyList list{definitions, 3};

    ASSERT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"NestedContainer", &objectTable, &valueAccessTable,
                                                             &list, &container, u"NestedItem", registerItemType, 0,
                                                             &target.flag, &target.handle),
              0);
    EXPECT_EQ(registrationOrder, (std::vector<std::u16string>{u"a", u"b", u"item"}));
    EXPECT_EQ(nestedItem->flag, 1u);
    const kstd_persistentType_* record = recordOf(target.handle);
    EXPECT_EQ(record->isContainer, 1u);
    EXPECT_EQ(record->containerVtable, &container);
    EXPECT_EQ(std::u16string(record->containedItemTypeName.chars), u"NestedItem");
    EXPECT_EQ(record->containedItemTypeResolved, 0u);

    // A failing member registration is returned; the type itself is registered by then.
    static kstd_persistentPropertyInfoDefinition failing[1]{};
    failing[0].name = u"bad";
    failing[0].typeName = u"int";
    failing[0].accessors.slots.entryTypeRegistration = failingMember;
    static const kstd_persistentStaticPropertyList failingList{failing, 1};
    Target& late = newTarget();
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"FailingMember", &objectTable, &valueAccessTable, &failingList,
                                                    0, &late.flag, &late.handle),
              kstd_persistentResult_notSupported);
    EXPECT_EQ(late.flag, 1u);
    TypeHandle type;
    EXPECT_EQ(kstd_persistentTypeGetType(u"FailingMember", 0, 1, &type.t), 0);
}

TEST(Registry, UnregisteredRecordsStayUnregistered) {
    TypeHandle before;
    ASSERT_EQ(kstd_persistentTypeGetType(u"RegisteredLater", 0, 0, &before.t), 0);
    Target& target = newTarget();
    ASSERT_EQ(registerObject(u"RegisteredLater", target), 0);
    uint32_t isKnown = 1, equal = 0;
    kstd_persistentType_getIsKnown(&before.t, &isKnown);
    EXPECT_EQ(isKnown, 0u);
    EXPECT_EQ(kstd_persistentType_compareEqual(&before.t, &target.handle, &equal), 0);
    EXPECT_EQ(equal, 1u);
    TypeHandle after;
    ASSERT_EQ(kstd_persistentTypeGetType(u"RegisteredLater", 0, 0, &after.t), 0);
    kstd_persistentType_getIsKnown(&after.t, &isKnown);
    EXPECT_EQ(isKnown, 1u);
}

TEST(Registry, LookupsSurviveAllocationFailures) {
    TypeHandle type;
    ASSERT_EQ(kstd_persistentTypeGetType(u"SweptName", 0, 0, &type.t), 0);  // interns the name
    ASSERT_EQ(kstd_persistentType_reset(&type.t), 0);
    sweepAllocationFailures([&] { return kstd_persistentTypeGetType(u"SweptName", 1, 0, &type.t); },
                            [&] { kstd_persistentType_reset(&type.t); });
    TypeVector types;
    sweepAllocationFailures([&] { return kstd_persistentTypeGetAllTypes(&types.v); },
                            [&] { kstd_vector_kstd_persistentType_clearAndFreeMemory(&types.v); });
}

// Shut-down frees everything the registry made, the callers' handles
// included. Run in a fresh process, which ends with the registry gone.
bool shutDownFreesEverything() {
    const int64_t start = liveBlocks();
    {
        TypeVector types;
        kstd_persistentTypeGetAllTypes(&types.v);
        TypeHandle unknown;
        kstd_persistentTypeGetType(u"ShutDownUnknown", 2, 0, &unknown.t);
    }
    Target& object = newTarget();
    Target& enumeration = newTarget();
    Target& bits = newTarget();
    static const kstd_persistentPropertyInfoDefinition members[1]{{u"member", 0, u"int", 0, {}}};
    static const kstd_persistentStaticPropertyList list{members, 1};
    bool ok = kstd_persistentTypeRegisterTypeObject(u"ShutDownObject", &objectTable, &valueAccessTable, &list, 0,
                                                    &object.flag, &object.handle) == 0;
    ok = ok && kstd_persistentTypeRegisterTypeEnum(u"ShutDownEnum", 0, 0, 0, 0, &valueAccessTable, &valueAccessTable,
                                                   nullptr, nullptr, &enumeration.flag, &bits.flag,
                                                   &enumeration.handle, &bits.handle) == 0;
    ok = ok && liveBlocks() > start;
    ok = ok && ksys_shutdown() == 0;
    ok = ok && recordOf(object.handle) == nullptr && recordOf(bits.handle) == nullptr;
    return ok && liveBlocks() == start;
}

TEST(RegistryDeathTest, ShutDownFreesEverything) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(shutDownFreesEverything() ? 0 : 1), testing::ExitedWithCode(0), "");
}

}  // namespace
