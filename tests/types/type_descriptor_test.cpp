#include "types/type_test_support.hpp"

namespace {

using namespace vexpers::test;

TEST(TypeDescriptor, EmptyHandleFailsEveryQueryWithNoneOutputs) {
    TypeHandle type;
    const char16_t* name = u"stale";
    EXPECT_EQ(kstd_persistentType_getTypeName(&type.t, &name), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(name, nullptr);
    int32_t coreId = 7;
    EXPECT_EQ(kstd_persistentType_getCoreTypeId(&type.t, &coreId), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(coreId, -2);
    uint32_t category = 0, derivation = 3;
    EXPECT_EQ(kstd_persistentType_getTypeCategoryAndDerivation(&type.t, &category, &derivation),
              kstd_persistentResult_typeEmpty);
    EXPECT_EQ(category, 7u);
    EXPECT_EQ(derivation, 0u);
    int32_t globalIndex = 5;
    EXPECT_EQ(kstd_persistentType_getGlobalIndex(&type.t, &globalIndex), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(globalIndex, -1);
    TypeHandle other;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&other.t, u"int"), 0);
    int32_t order = 9;
    EXPECT_EQ(kstd_persistentType_compare(&other.t, &type.t, &order), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(order, 0);

    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentType_getTypeName(nullptr, &name), ksys_result_preconditionFailed);
    EXPECT_EQ(kstd_persistentType_getIsKnown(&type.t, nullptr), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 2);
}

TEST(TypeDescriptor, UnregisteredNameGivesAnUnknownRecord) {
    TypeHandle type;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&type.t, u"NobodyRegisteredThis", 2), 0);
    uint32_t isKnown = 1, derivation = 0;
    EXPECT_EQ(kstd_persistentType_getIsKnown(&type.t, &isKnown), 0);
    EXPECT_EQ(isKnown, 0u);
    EXPECT_EQ(nameOf(type.t), u"NobodyRegisteredThis");
    EXPECT_EQ(kstd_persistentType_getTypeDerivation(&type.t, &derivation), 0);
    EXPECT_EQ(derivation, 2u);
    uint32_t category = 0;
    EXPECT_EQ(kstd_persistentType_getTypeCategory(&type.t, &category), kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(category, 7u);
    uint32_t flag = 1;
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&type.t, nullptr, &flag),
              kstd_persistentResult_typeNotRegistered);

    // Null and empty names have no record; the handle is left empty.
    EXPECT_EQ(kstd_persistentType_resetTypeName(&type.t, u""), kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(recordOf(type.t), nullptr);
    EXPECT_EQ(kstd_persistentType_resetTypeName(&type.t, nullptr), kstd_persistentResult_invalidTypeName);
}

TEST(TypeDescriptor, CoreTypeIdsGiveTheRegisteredCoreRecords) {
    TypeHandle type;
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(&type.t, kstd_persistentCoreTypeId_k_Int32), 0);
    EXPECT_EQ(nameOf(type.t), u"k_Int32");
    uint32_t category = 9, flag = 0;
    int32_t coreId = 0, globalIndex = 0;
    EXPECT_EQ(kstd_persistentType_getTypeCategory(&type.t, &category), 0);
    EXPECT_EQ(category, kstd_persistentTypeCategory_int);
    EXPECT_EQ(kstd_persistentType_getCoreTypeId(&type.t, &coreId), 0);
    EXPECT_EQ(coreId, 4);
    EXPECT_EQ(kstd_persistentType_getIsCoreTypeOrEnum(&type.t, &flag), 0);
    EXPECT_EQ(flag, 1u);
    // Core records are numbered in (id, derivation) order.
    EXPECT_EQ(kstd_persistentType_getGlobalIndex(&type.t, &globalIndex), 0);
    EXPECT_EQ(globalIndex, 16);

    ASSERT_EQ(kstd_persistentType_resetCoreTypeIdAndDerivation(&type.t, 4, kstd_persistentTypeDerivation_pointer), 0);
    EXPECT_EQ(kstd_persistentType_getCoreTypeId(&type.t, &coreId), 0);
    EXPECT_EQ(coreId, 4);
    EXPECT_EQ(kstd_persistentType_getIsCoreTypeOrEnum(&type.t, &flag), 0);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(kstd_persistentType_getGlobalIndex(&type.t, &globalIndex), 0);
    EXPECT_EQ(globalIndex, 17);

    // A reserved name is registered, but has no operation table.
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(&type.t, kstd_persistentCoreTypeId_k_Int128), 0);
    EXPECT_EQ(nameOf(type.t), u"k_Int128");
    EXPECT_EQ(recordOf(type.t)->objectVtable, nullptr);

    for (int32_t bad : {-1, 52}) {
        EXPECT_EQ(kstd_persistentType_resetCoreTypeId(&type.t, bad), kstd_persistentResult_invalidCoreTypeId);
        EXPECT_EQ(recordOf(type.t), nullptr);
    }
}

TEST(TypeDescriptor, CompareOrdersByNameThenDerivation) {
    TypeHandle intValue, intArray, doubleValue, unknownIntArray;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&intValue.t, u"int"), 0);
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&intArray.t, u"int", 2), 0);
    ASSERT_EQ(kstd_persistentType_resetTypeName(&doubleValue.t, u"double"), 0);
    int32_t order = 0;
    EXPECT_EQ(kstd_persistentType_compare(&intValue.t, &intArray.t, &order), 0);
    EXPECT_EQ(order, -1);
    EXPECT_EQ(kstd_persistentType_compare(&intArray.t, &intValue.t, &order), 0);
    EXPECT_EQ(order, 1);
    EXPECT_EQ(kstd_persistentType_compare(&intValue.t, &intValue.t, &order), 0);
    EXPECT_EQ(order, 0);
    // The name decides before the derivation.
    EXPECT_EQ(kstd_persistentType_compare(&doubleValue.t, &intArray.t, &order), 0);
    EXPECT_EQ(order, -1);

    // A record made for (int, 2) outside the registry equals the registered one.
    kstd_persistentType_* record = nullptr;
    ASSERT_EQ(kstd_persistentType__new(&record), 0);
    ASSERT_EQ(kstd_stringConst_assignString(&record->name, u"int"), 0);
    record->derivation = 2;
    ASSERT_EQ(kstd_ptrhConst_assignShared(&unknownIntArray.t.record, &record->header), 0);
    uint32_t equal = 0;
    EXPECT_EQ(kstd_persistentType_compareEqual(&unknownIntArray.t, &intArray.t, &equal), 0);
    EXPECT_EQ(equal, 1u);
    EXPECT_EQ(kstd_persistentType_compareEqual(&unknownIntArray.t, &intValue.t, &equal), 0);
    EXPECT_EQ(equal, 0u);
}

TEST(TypeDescriptor, AssignDifferentDerivationKeepsTheName) {
    TypeHandle value, array;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&value.t, u"double"), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&array.t, &value.t, 2), 0);
    uint32_t isKnown = 0, derivation = 0;
    kstd_persistentType_getIsKnown(&array.t, &isKnown);
    kstd_persistentType_getTypeDerivation(&array.t, &derivation);
    EXPECT_EQ(isKnown, 1u);
    EXPECT_EQ(derivation, 2u);
    EXPECT_EQ(nameOf(array.t), u"double");

    // Onto itself, and from an unregistered source.
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&array.t, &array.t, 1), 0);
    kstd_persistentType_getTypeDerivation(&array.t, &derivation);
    EXPECT_EQ(derivation, 1u);
    TypeHandle unknown;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&unknown.t, u"NotRegisteredEither"), 0);
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&unknown.t, &unknown.t, 3), 0);
    EXPECT_EQ(nameOf(unknown.t), u"NotRegisteredEither");

    TypeHandle empty;
    EXPECT_EQ(kstd_persistentType_assignDifferentDerivation(&array.t, &empty.t, 0), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(recordOf(array.t), nullptr);
}

TEST(TypeDescriptor, HandlesShareOneRecord) {
    {
        TypeHandle name;  // the registry and its interned name stay
        ASSERT_EQ(kstd_persistentType_resetTypeName(&name.t, u"AHandleOnlyName"), 0);
    }
    LiveBlockCheck leaks;
    {
        TypeHandle first;
        ASSERT_EQ(kstd_persistentType_resetTypeName(&first.t, u"AHandleOnlyName"), 0);
        kstd_persistentType* copy = nullptr;
        ASSERT_EQ(kstd_persistentType_newClone(&copy, &first.t), 0);
        EXPECT_EQ(recordOf(*copy), recordOf(first.t));
        int32_t count = 0;
        kstd_shared_getReferenceCount(&recordOf(first.t)->header, &count);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(kstd_persistentType_assign(&first.t, &first.t), 0);
        EXPECT_EQ(kstd_persistentType_reset(&first.t), 0);
        EXPECT_EQ(recordOf(first.t), nullptr);
        kstd_shared_getReferenceCount(&recordOf(*copy)->header, &count);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(kstd_persistentType_delete(&copy), 0);
        EXPECT_EQ(copy, nullptr);
    }
    // The unregistered record went with its last handle; the name stays interned.
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(TypeRecord, LifeCycleAndInterfaceQuery) {
    startRegistry();
    LiveBlockCheck leaks;
    kstd_persistentType_* record = nullptr;
    ASSERT_EQ(kstd_persistentType__new(&record), 0);
    EXPECT_EQ(record->isKnown, 0u);
    EXPECT_EQ(record->coreTypeId, -2);
    EXPECT_EQ(record->category, 7u);
    EXPECT_EQ(record->globalIndex, -1);
    EXPECT_EQ(record->name.chars, nullptr);

    void* answer = nullptr;
    EXPECT_EQ(kstd_shared_queryInterfaceByTypename(&record->header, u"kstd_persistentType_", &answer), 0);
    EXPECT_EQ(answer, record);
    EXPECT_EQ(kstd_shared_queryInterfaceByTypename(&record->header, u"kstd_shared", &answer), 0);
    EXPECT_EQ(answer, &record->header);

    ASSERT_EQ(kstd_stringConst_assignString(&record->name, u"Copied"), 0);
    record->isKnown = 1;
    record->category = 6;
    record->enumWords[3] = 33;
    record->globalIndex = 12;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&record->containedItemType, u"int"), 0);
    kstd_persistentType_* clone = nullptr;
    ASSERT_EQ(kstd_persistentType__newClone(&clone, record), 0);
    EXPECT_EQ(clone->isKnown, 1u);
    EXPECT_EQ(clone->category, 6u);
    EXPECT_EQ(clone->enumWords[3], 33u);
    EXPECT_EQ(clone->globalIndex, 12);
    EXPECT_EQ(clone->name.chars, record->name.chars);  // shared, not copied
    EXPECT_EQ(recordOf(clone->containedItemType), recordOf(record->containedItemType));
    EXPECT_EQ(clone->header.whole, clone);

    EXPECT_EQ(kstd_persistentType__reset(clone), 0);
    EXPECT_EQ(clone->isKnown, 0u);
    EXPECT_EQ(clone->category, 7u);
    EXPECT_EQ(recordOf(clone->containedItemType), nullptr);
    EXPECT_EQ(kstd_persistentType__delete(&clone), 0);
    EXPECT_EQ(kstd_persistentType__delete(&record), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

// Objects that answer "kstd_shared" are shareable; the first word says whether this one does.
kstd_result queryShared(void* object, const char16_t*, void** result) {
    *result = *static_cast<int*>(object) != 0 ? object : nullptr;
    return 0;
}
kstd_result queryFails(void*, const char16_t*, void** result) {
    *result = nullptr;
    return kstd_persistentResult_notSupported;
}
kstd_result typenameOf(const void*, const char16_t** name) {
    *name = u"Dynamic";
    return 0;
}

TEST(TypeDescriptor, ObjectShareabilityAsksTheObject) {
    static const kstd_typeDescriptorMinimalVtable answering{queryShared, typenameOf};
    static const kstd_typeDescriptorMinimalVtable failing{queryFails, typenameOf};
    Target& dynamic = newTarget();
    Target& broken = newTarget();
    Target& always = newTarget();
    Target& plain = newTarget();
    ASSERT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"ShareDynamic", &objectTable, &valueAccessTable, nullptr,
                                                           &answering, 0, &dynamic.flag, &dynamic.handle),
              0);
    ASSERT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"ShareBroken", &objectTable, &valueAccessTable, nullptr,
                                                           &failing, 0, &broken.flag, &broken.handle),
              0);
    ASSERT_EQ(kstd_persistentTypeRegisterTypeObject(u"ShareAlways", &objectTable, &valueAccessTable, nullptr, 1,
                                                    &always.flag, &always.handle),
              0);
    ASSERT_EQ(registerObject(u"SharePlain", plain), 0);

    int yes = 1, no = 0;
    uint32_t flag = 9;
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&dynamic.handle, &yes, &flag), 0);
    EXPECT_EQ(flag, 1u);
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&dynamic.handle, &no, &flag), 0);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&dynamic.handle, nullptr, &flag), 0);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&broken.handle, &yes, &flag),
              kstd_persistentResult_notSupported);
    EXPECT_EQ(flag, 0u);
    // Always shareable: the object is not asked.
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&always.handle, &no, &flag), 0);
    EXPECT_EQ(flag, 1u);
    EXPECT_EQ(kstd_persistentType_getIsAlwaysShareable(&dynamic.handle, &flag), 0);
    EXPECT_EQ(flag, 0u);
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(&plain.handle, &yes, &flag), 0);
    EXPECT_EQ(flag, 0u);
}

}  // namespace
