#include <cstring>
#include <string>
#include <vector>

#include "property/info_entries.hpp"
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;
using vexpers::property::entriesOf;
using vexpers::property::entryCount;
using vexpers::property::entryIsLoadable;
using vexpers::property::entryIsResolved;

kstd_result addressOf(const void*, const void**) { return 0; }
kstd_result loadDirectly(void*, const kstd_persistentType*, const kstd_persistentPropertyNode*) { return 0; }
kstd_result loadMember(void*, void*, void*, const kstd_persistentType*, const kstd_persistentPropertyNode*) {
    return 0;
}

std::vector<std::u16string> registered;
Target* laterTarget = nullptr;
kstd_result registerLater() {
    registered.push_back(u"InfoEntryLater");
    return registerObject(u"InfoEntryLater", *laterTarget);
}

TEST(PropertyInfoEntries, RegistrationMakesEntries) {
    laterTarget = &newTarget();
    registered.clear();
    static kstd_persistentPropertyInfoDefinition definitions[4]{{u"width", 5, u"int", 0, {}},
                                                                {u"child", 2, u"InfoEntryLater", 1, {}},
                                                                {u"plain", 2, u"double", 2, {}},
                                                                {u"", 9, u"InfoEntryNeverRegistered", 0, {}}};
    definitions[0].accessors.slots.addressAccessor = addressOf;
    definitions[0].accessors.slots.directLoadAccessor = loadDirectly;
    // The member's type registers at the end of the owner's registration,
    // after the entry was made.
    definitions[1].accessors.slots.memberLoadAccessor = loadMember;
    definitions[1].accessors.slots.entryTypeRegistration = registerLater;
    definitions[3].accessors.words[11] = &definitions[0];
    definitions[3].accessors.words[12] = &definitions[1];
    static const kstd_persistentStaticPropertyList list{definitions, 4};

    Target& owner = newTarget();
    ASSERT_EQ(registerObject(u"InfoEntryOwner", owner, &list), 0);
    EXPECT_EQ(registered, std::vector<std::u16string>{u"InfoEntryLater"});
    EXPECT_EQ(laterTarget->flag, 1u);

    const kstd_persistentType_* record = recordOf(owner.handle);
    ASSERT_EQ(record->hasPropertyInfoEntries, 1u);
    ASSERT_EQ(entryCount(record), 4);
    const auto entries = entriesOf(record);
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(std::memcmp(&entries[i].accessors, &definitions[i].accessors, sizeof(definitions[i].accessors)), 0);
        EXPECT_EQ(nameOf(entries[i].info), std::u16string(definitions[i].name));
        EXPECT_EQ(entries[i].info.globalIndex, entries[0].info.globalIndex + i);  // numbered in order
        // The member type registered after its entry was made: not resolved yet.
        EXPECT_EQ(entryIsResolved(entries[i]), i == 0 || i == 2);
        EXPECT_EQ(entryIsLoadable(entries[i]), i < 2);
    }
}

TEST(PropertyInfoEntries, UntypedDefinitionsRefuseTheRegistration) {
    // A definition without a type name refuses the whole registration.
    for (const char16_t* typeName : {static_cast<const char16_t*>(nullptr), u""}) {
        const kstd_persistentPropertyInfoDefinition definitions[2]{{u"fine", 2, u"int", 0, {}},
                                                                   {u"untyped", 2, typeName, 0, {}}};
        const kstd_persistentStaticPropertyList list{definitions, 2};
        Target& target = newTarget();
        EXPECT_EQ(registerObject(u"InfoEntryUntyped", target, &list), C6);
        EXPECT_EQ(target.flag, 0u);
    }
}

// Every allocation of a registration that makes entries may fail: the
// registration returns a code and leaves the flag at 0, and a later attempt
// succeeds. (What a failed registration interned stays with the registry.)
TEST(PropertyInfoEntries, RegistrationSurvivesAllocationFailures) {
    static const kstd_persistentPropertyInfoDefinition definitions[3]{{u"sweptA", 2, u"int", 0, {}},
                                                                      {u"sweptB", 2, u"InfoEntrySweptItem", 2, {}},
                                                                      {u"sweptC", 3, u"double", 1, {}}};
    static const kstd_persistentStaticPropertyList list{definitions, 3};
    startRegistry();  // a failed start-up would be final
    int failures = 0;
    for (int64_t k = 1;; ++k) {
        const std::u16string name = u"InfoEntrySwept" + std::u16string(1, char16_t(u'A' + k % 26)) +
                                    std::u16string(1, char16_t(u'A' + k / 26));
        Target& target = newTarget();
        ksys_memory_failAt(k, 0);
        const kstd_result result = registerObject(name.c_str(), target, &list);
        int32_t hit = 0;
        ksys_memory_getInjectedFailureHit(&hit);
        ksys_memory_failAt(0, 0);
        if (!hit) {
            ASSERT_EQ(result, 0);
            EXPECT_EQ(entryCount(recordOf(target.handle)), 3);
            break;
        }
        ++failures;
        EXPECT_LT(result, 0) << "allocation " << k;
        EXPECT_EQ(target.flag, 0u);
        ASSERT_LT(k, 100);
    }
    EXPECT_GT(failures, 3);
}

}  // namespace
