#include "types/type_test_support.hpp"

namespace {

using namespace vexpers::test;

TEST(TypeDescriptor, EmptyHandleFailsEveryQueryWithNoneOutputs) {
    Type type, other;
    EXPECT_EQ(outOf<const char16_t*>(Empty, kstd_persistentType_getTypeName, type), nullptr);
    EXPECT_EQ(outOf<int32_t>(Empty, kstd_persistentType_getCoreTypeId, type), -2);
    uint32_t category = 0, derivation = 3;
    EXPECT_EQ(kstd_persistentType_getTypeCategoryAndDerivation(type, &category, &derivation), Empty);
    EXPECT_EQ(std::make_pair(category, derivation), std::make_pair(7u, 0u));
    ASSERT_EQ(kstd_persistentType_resetTypeName(other, u"int"), 0);
    EXPECT_EQ(outOf<int32_t>(Empty, kstd_persistentType_compare, other, type), 0);

    AssertRecorder faults;
    const char16_t* name = nullptr;
    EXPECT_EQ(kstd_persistentType_getTypeName(nullptr, &name), Fault);
    EXPECT_EQ(kstd_persistentType_getIsKnown(type, nullptr), Fault);
    EXPECT_EQ(faults.count(), 2);
}

// A name nobody registered gives an unknown record of that name; a handle
// taken before the name was registered stays unknown but compares equal.
TEST(TypeDescriptor, UnregisteredNames) {
    Type type;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(type, u"RegisteredLater", 2), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, type), 0u);
    EXPECT_EQ(nameOf(type), u"RegisteredLater");
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getTypeDerivation, type), 2u);
    EXPECT_EQ(outOf<uint32_t>(C8, kstd_persistentType_getTypeCategory, type), 7u);
    EXPECT_EQ(kstd_persistentType_resetTypeName(type, u""), C6);
    EXPECT_EQ(recordOf(type), nullptr);

    Type before, after;
    ASSERT_EQ(kstd_persistentType_resetTypeName(before, u"RegisteredLater"), 0);
    Target& target = newTarget();
    ASSERT_EQ(registerObject(u"RegisteredLater", target), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, before), 0u);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_compareEqual, before, &target.handle), 1u);
    ASSERT_EQ(kstd_persistentType_resetTypeName(after, u"RegisteredLater"), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, after), 1u);
}

TEST(TypeDescriptor, CompareOrdersByNameThenDerivation) {
    Type intValue, intArray, doubleValue, unknownIntArray;
    ASSERT_EQ(kstd_persistentType_resetTypeName(intValue, u"int"), 0);
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(intArray, u"int", 2), 0);
    ASSERT_EQ(kstd_persistentType_resetTypeName(doubleValue, u"double"), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_compare, intValue, intArray), -1);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentType_compare, doubleValue, intArray), -1);  // the name decides first

    // A record made for (int, 2) outside the registry equals the registered one.
    kstd_persistentType_* record = nullptr;
    ASSERT_EQ(kstd_persistentType__new(&record), 0);
    ASSERT_EQ(kstd_stringConst_assignString(&record->name, u"int"), 0);
    record->derivation = 2;
    ASSERT_EQ(kstd_ptrhConst_assignShared(&unknownIntArray->record, &record->header), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_compareEqual, unknownIntArray, intArray), 1u);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_compareEqual, unknownIntArray, intValue), 0u);
}

TEST(TypeDescriptor, AssignDifferentDerivationKeepsTheName) {
    Type value, array, unknown, empty;
    ASSERT_EQ(kstd_persistentType_resetTypeName(value, u"double"), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(array, value, 2), 0);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, array), 1u);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getTypeDerivation, array), 2u);
    EXPECT_EQ(nameOf(array), u"double");
    // Onto itself, from an unregistered source.
    ASSERT_EQ(kstd_persistentType_resetTypeName(unknown, u"NotRegisteredEither"), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(unknown, unknown, 3), 0);
    EXPECT_EQ(kstd_persistentType_assignDifferentDerivation(array, empty, 0), Empty);
    EXPECT_EQ(recordOf(array), nullptr);
}

// Handles share one record; an unregistered record goes with its last handle.
TEST(TypeDescriptor, HandlesShareOneRecord) {
    startRegistry();
    {
        Type name;  // the interned name stays
        ASSERT_EQ(kstd_persistentType_resetTypeName(name, u"AHandleOnlyName"), 0);
    }
    NoLeaks leaks;
    Type first, copy;
    ASSERT_EQ(kstd_persistentType_resetTypeName(first, u"AHandleOnlyName"), 0);
    ASSERT_EQ(kstd_persistentType_assign(copy, first), 0);
    EXPECT_EQ(recordOf(copy), recordOf(first));
    EXPECT_EQ(outOf<int32_t>(0, kstd_shared_getReferenceCount, &recordOf(first)->header), 2);
}

}  // namespace
