#include <cstdlib>
#include <vector>

#include "objects/test_module.hpp"

namespace {

using namespace vexpers::test;

using GetTypeFn = kstd_result (*)(kstd_persistentType*, uint32_t);

struct Builtin {
    const char16_t* name;
    GetTypeFn getType;
    uint32_t size;
    const char16_t* itemType;  // null for the shared pointers
};

const std::vector<Builtin>& builtins() {
    static const std::vector<Builtin> all{
        {u"kstd_ptrh", kstd_persistentTypeGetType_kstd_ptrh, sizeof(kstd_ptrh), nullptr},
        {u"kstd_ptrhConst", kstd_persistentTypeGetType_kstd_ptrhConst, sizeof(kstd_ptrhConst), nullptr},
        {u"kstd_vector8s", kstd_persistentTypeGetType_kstd_vector8s, sizeof(kstd_vector8s), u"k_Int8"},
        {u"kstd_vector8", kstd_persistentTypeGetType_kstd_vector8, sizeof(kstd_vector8), u"k_UInt8"},
        {u"kstd_vector16s", kstd_persistentTypeGetType_kstd_vector16s, sizeof(kstd_vector16s), u"k_Int16"},
        {u"kstd_vector16", kstd_persistentTypeGetType_kstd_vector16, sizeof(kstd_vector16), u"k_UInt16"},
        {u"kstd_vector32s", kstd_persistentTypeGetType_kstd_vector32s, sizeof(kstd_vector32s), u"k_Int32"},
        {u"kstd_vector32", kstd_persistentTypeGetType_kstd_vector32, sizeof(kstd_vector32), u"k_UInt32"},
        {u"kstd_vector64s", kstd_persistentTypeGetType_kstd_vector64s, sizeof(kstd_vector64s), u"k_Int64"},
        {u"kstd_vector64", kstd_persistentTypeGetType_kstd_vector64, sizeof(kstd_vector64), u"k_UInt64"},
        {u"kstd_vectorIntPtrs", kstd_persistentTypeGetType_kstd_vectorIntPtrs, sizeof(kstd_vectorIntPtrs),
         u"k_IntPtr"},
        {u"kstd_vectorIntPtr", kstd_persistentTypeGetType_kstd_vectorIntPtr, sizeof(kstd_vectorIntPtr),
         u"k_UIntPtr"},
        {u"kstd_vectorf", kstd_persistentTypeGetType_kstd_vectorf, sizeof(kstd_vectorf), u"float"},
        {u"kstd_vectord", kstd_persistentTypeGetType_kstd_vectord, sizeof(kstd_vectord), u"double"},
        {u"kstd_vectorb", kstd_persistentTypeGetType_kstd_vectorb, sizeof(kstd_vectorb), u"k_Bool"},
        {u"kstd_vector_kstd_unicodeString", kstd_persistentTypeGetType_kstd_vector_kstd_unicodeString,
         sizeof(kstd_vector_kstd_unicodeString), u"kstd_unicodeString"},
    };
    return all;
}

int64_t typeCount() {
    kstd_vector_kstd_persistentType types;
    kstd_vector_kstd_persistentType_constructEmpty(&types);
    kstd_persistentTypeGetAllTypes(&types);
    intptr_t count = 0;
    kstd_vector_kstd_persistentType_getSizeIntPtr(&types, &count);
    kstd_vector_kstd_persistentType_destruct(&types);
    return count;
}

// In a fresh process: the shared pointers come with the registry, a vector
// type registers on its first GetType with registerIfNeeded and only then.
bool vectorRegistersOnFirstUse() {
    Handle type;
    bool ok = kstd_persistentTypeGetType_kstd_vector32s(&type.t, 0) == 0;
    const char16_t* name = nullptr;
    ok = ok && kstd_persistentType_getTypeName(&type.t, &name) == kstd_persistentResult_typeEmpty;
    const int64_t before = typeCount();
    ok = ok && before == 216;
    ok = ok && kstd_persistentTypeGetType_kstd_ptrh(&type.t, 0) == 0 && typeName(type.t) == u"kstd_ptrh";
    ok = ok && kstd_persistentTypeGetType_kstd_vector32s(&type.t, 1) == 0 && typeCount() == before + 4;
    uint32_t category = 0, known = 0;
    int32_t coreId = 0;
    ok = ok && kstd_persistentType_getTypeCategory(&type.t, &category) == 0 && category == 7;
    ok = ok && kstd_persistentType_getCoreTypeId(&type.t, &coreId) == 0 && coreId == -1;
    ok = ok && kstd_persistentType_getIsKnown(&type.t, &known) == 0 && known == 1;
    ok = ok && kstd_persistentTypeGetType_kstd_vector32s(&type.t, 1) == 0 && typeCount() == before + 4;
    ok = ok && kstd_persistentTypeRegisterTypeObject_kstd_vector32s() == 0 && typeCount() == before + 4;
    return ok;
}

TEST(BuiltinTypesDeathTest, VectorRegistersOnFirstUse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(vectorRegistersOnFirstUse() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// In a fresh process: asking for a shared-pointer type first starts the
// registry, which registers it once; shut-down frees everything.
bool sharedPointerFirst() {
    const int64_t start = liveBlocks();
    {
        Handle type;
        bool ok = kstd_persistentTypeGetType_kstd_ptrhConst(&type.t, 1) == 0 && typeName(type.t) == u"kstd_ptrhConst";
        ok = ok && typeCount() == 216;
        if (!ok) return false;
    }
    return ksys_shutdown() == 0 && liveBlocks() == start;
}

TEST(BuiltinTypesDeathTest, SharedPointerFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(sharedPointerFirst() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(BuiltinTypes, EveryMemberIsAnObjectTypeWithOneProperty) {
    for (const Builtin& builtin : builtins()) {
        SCOPED_TRACE(std::string(builtin.name, builtin.name + std::char_traits<char16_t>::length(builtin.name)));
        Handle type;
        ASSERT_EQ(builtin.getType(&type.t, 1), 0);
        EXPECT_EQ(typeName(type.t), builtin.name);
        uint32_t size = 0;
        EXPECT_EQ(kstd_persistentType_getElementSize(&type.t, &size), 0);
        EXPECT_EQ(size, builtin.size);

        // The type describes its one property from its entries.
        kstd_persistentPropertyInfoSet set;
        ASSERT_EQ(kstd_persistentPropertyInfoSet_construct(&set), 0);
        ASSERT_EQ(kstd_persistentType_getPersistentPropertyInfoSet(&type.t, &set), 0);
        intptr_t count = 0;
        kstd_vector_kstd_persistentPropertyInfo_getSizeIntPtr(&set.infos, &count);
        ASSERT_EQ(count, 1);
        const kstd_persistentPropertyInfo* info = nullptr;
        kstd_vector_kstd_persistentPropertyInfo_getElementConst(&set.infos, 0, &info);
        const char16_t* text = nullptr;
        uint32_t derivation = 0, access = 0;
        kstd_persistentPropertyInfo_getName(info, &text);
        EXPECT_EQ(std::u16string(text), builtin.itemType ? u"items" : u"ptr");
        kstd_persistentPropertyInfo_getTypeName(info, &text);
        EXPECT_EQ(std::u16string(text), builtin.itemType ? builtin.itemType : u"void");
        kstd_persistentPropertyInfo_getTypeDerivation(info, &derivation);
        EXPECT_EQ(derivation, builtin.itemType ? 2u : 1u);
        kstd_persistentPropertyInfo_getDataAccess(info, &access);
        EXPECT_EQ(access, 2u);
        kstd_persistentPropertyInfoSet_destruct(&set);

        // Setting a property by name is not offered, and does not recurse.
        VariantBox value;
        kstd_vector32s object;
        EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(&type.t, &object, u"items", &value.v),
                  kstd_persistentResult_notSupported);
    }
}

TEST(BuiltinTypes, NewObjectsThroughTheTables) {
    startModule();
    LiveBlockCheck leaks;
    Handle vectord;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vectord(&vectord.t, 1), 0);
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(&vectord.t, &object), 0);
    intptr_t size = -1;
    EXPECT_EQ(kstd_vectord_getSizeIntPtr(static_cast<kstd_vectord*>(object), &size), 0);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(kstd_vectord_pushBack(static_cast<kstd_vectord*>(object), 2.5), 0);
    EXPECT_EQ(kstd_persistentType_deleteObject(&vectord.t, &object), 0);
    EXPECT_EQ(object, nullptr);

    // A new shared pointer is empty; a clone shares its object.
    Handle ptrh;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_ptrh(&ptrh.t, 0), 0);
    ASSERT_EQ(kstd_persistentType_newObject(&ptrh.t, &object), 0);
    kstd_shared* held = reinterpret_cast<kstd_shared*>(1);
    EXPECT_EQ(kstd_ptrh_getShared(static_cast<kstd_ptrh*>(object), &held), 0);
    EXPECT_EQ(held, nullptr);
    void* widget = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &widget), 0);
    kstd_shared* header = &static_cast<Widget*>(widget)->header;
    ASSERT_EQ(kstd_ptrh_assignShared(static_cast<kstd_ptrh*>(object), header), 0);
    const kstd_persistentType_* record = nullptr;
    {
        const void* whole = nullptr;
        kstd_ptrhConst_getWholeShared(&ptrh.t.record, &whole);
        record = static_cast<const kstd_persistentType_*>(whole);
    }
    void* clone = nullptr;
    ASSERT_EQ(record->objectVtable->newClone(&clone, object), 0);
    int32_t references = 0;
    kstd_shared_getReferenceCount(header, &references);
    EXPECT_EQ(references, 2);
    ASSERT_EQ(record->objectVtable->newClone(&clone, nullptr), 0);  // a null source deletes
    EXPECT_EQ(clone, nullptr);
    resetWidgetCalls();
    EXPECT_EQ(kstd_persistentType_deleteObject(&ptrh.t, &object), 0);  // the last reference
    EXPECT_EQ(widgetCalls().destructed, 1);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BuiltinTypes, ArraysOfVectors) {
    Handle vector;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector16(&vector.t, 1), 0);
    LiveBlockCheck leaks;
    Handle arrays;
    derive(arrays, &vector.t, kstd_persistentTypeDerivation_array);
    uint32_t contiguous = 0, stride = 0;
    const kstd_persistentContainerVtable* table = nullptr;
    Handle item;
    ASSERT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(&arrays.t, &contiguous, &stride, &table,
                                                                         &item.t),
              0);
    EXPECT_EQ(stride, sizeof(kstd_vector16));
    EXPECT_EQ(typeName(item.t), u"kstd_vector16");

    void* array = nullptr;
    ASSERT_EQ(kstd_persistentType_newArray(&arrays.t, 2, &array), 0);
    auto* vectors = static_cast<kstd_vector16*>(array);
    EXPECT_EQ(kstd_vector16_pushBack(&vectors[1], 9), 0);
    int32_t count = 2;
    EXPECT_EQ(kstd_persistentType_deleteArray(&arrays.t, &count, &array), 0);  // destroys the items' blocks
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BuiltinTypes, VariantFunctions) {
    kstd_vector32 numbers;
    ASSERT_EQ(kstd_vector32_construct(&numbers), 0);
    ASSERT_EQ(kstd_vector32_pushBack(&numbers, 4), 0);
    VariantBox variant;
    ASSERT_EQ(kstd_persistentVariant_setValue_kstd_vector32(&variant.v, &numbers), 0);
    EXPECT_EQ(variant.v.isBorrowed, 1u);
    const kstd_vector32* held = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConst_kstd_vector32(&variant.v, &held), 0);
    EXPECT_EQ(held, &numbers);
    // The address getter does not compare the held type.
    const kstd_vectorf* asFloats = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConst_kstd_vectorf(&variant.v, &asFloats), 0);
    EXPECT_EQ(static_cast<const void*>(asFloats), &numbers);

    // Copies go through the type's assignment, and only into the same type.
    kstd_vector32 copy;
    ASSERT_EQ(kstd_vector32_construct(&copy), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_vector32(&variant.v, &copy), 0);
    intptr_t size = 0;
    kstd_vector32_getSizeIntPtr(&copy, &size);
    EXPECT_EQ(size, 1);
    kstd_vectorf floats;
    ASSERT_EQ(kstd_vectorf_construct(&floats), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_vectorf(&variant.v, &floats), kstd_persistentResult_typeMismatch);
    // The generic reader reaches the same copy through the value access table.
    Handle type;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector32(&type.t, 0), 0);
    ASSERT_EQ(kstd_vector32_clear(&copy), 0);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(&variant.v, &type.t, &copy), 0);
    kstd_vector32_getSizeIntPtr(&copy, &size);
    EXPECT_EQ(size, 1);

    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 1), 0);
    held = &numbers;
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConst_kstd_vector32(&variant.v, &held),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(held, nullptr);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_vector32(&variant.v, &copy), kstd_persistentResult_typeMismatch);

    kstd_vectorf_destruct(&floats);
    kstd_vector32_destruct(&copy);
    kstd_vector32_destruct(&numbers);
}

TEST(BuiltinTypes, PropertyAndBagMembers) {
    startModule();
    for (const Builtin& builtin : builtins()) {
        Handle type;
        builtin.getType(&type.t, 1);
    }
    // Run once before counting: the registry interns the property names for
    // good.
    auto scenario = [] {
        kstd_vector16s items;
        kstd_vector16s_construct(&items);
        kstd_vector16s_pushBack(&items, -3);
        kstd_persistentPropertyBag bag;
        ASSERT_EQ(kstd_persistentPropertyBag_construct(&bag), 0);
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_kstd_vector16s(&bag, u"items", 5, &items), 0);
        const kstd_vector16s* held = nullptr;
        uint32_t access = 0;
        EXPECT_EQ(kstd_persistentPropertyBag_getValuePtrConst_kstd_vector16s(&bag, u"items", &access, &held), 0);
        EXPECT_EQ(held, &items);  // the bag borrows the caller's vector
        EXPECT_EQ(access, 5u);
        kstd_vector16s copy;
        kstd_vector16s_construct(&copy);
        bag.isStoring = 0;
        EXPECT_EQ(kstd_persistentPropertyBag_transferValue_kstd_vector16s(&bag, u"items", nullptr, &copy), 0);
        intptr_t size = 0;
        kstd_vector16s_getSizeIntPtr(&copy, &size);
        EXPECT_EQ(size, 1);
        kstd_vector16 other;
        kstd_vector16_construct(&other);
        EXPECT_EQ(kstd_persistentPropertyBag_getValue_kstd_vector16(&bag, u"items", nullptr, &other),
                  kstd_persistentResult_notSupported);  // no conversion between object types
        EXPECT_EQ(kstd_persistentPropertyBag_getValue_kstd_vector16s(&bag, u"absent", nullptr, &copy),
                  kstd_persistentResult_propertyNotFound);

        // A property holding a shared pointer shares nothing: it borrows.
        kstd_ptrh pointer;
        kstd_ptrh_constructEmpty(&pointer);
        kstd_persistentProperty property;
        ASSERT_EQ(kstd_persistentProperty_construct(&property), 0);
        ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&property, u"owner", 2, &pointer), 0);
        const kstd_ptrh* address = nullptr;
        EXPECT_EQ(kstd_persistentProperty_getValuePtrConst_kstd_ptrh(&property, &address), 0);
        EXPECT_EQ(address, &pointer);
        kstd_ptrh target;
        kstd_ptrh_constructEmpty(&target);
        EXPECT_EQ(kstd_persistentProperty_getValue_kstd_ptrh(&property, &target), 0);

        kstd_ptrh_destruct(&target);
        kstd_persistentProperty_destruct(&property);
        kstd_ptrh_destruct(&pointer);
        kstd_vector16_destruct(&other);
        kstd_vector16s_destruct(&copy);
        kstd_persistentPropertyBag_destruct(&bag);
        kstd_vector16s_destruct(&items);
    };
    scenario();
    LiveBlockCheck leaks;
    scenario();
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace

namespace {

using namespace vexpers::test;

// Storing a shared pointer gives one property "ptr": the pointee's type with
// the pointer derivation, pointing at the whole object; an empty pointer gives
// a null pointer of its base type; without any type name the store fails.
TEST(BuiltinSharedPointers, StoreThePointeeAsOneProperty) {
    startModule();
    LiveBlockCheck leaks;
    {
        Widget* widget = nullptr;
        ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, reinterpret_cast<void**>(&widget)), 0);
        kstd_ptrh pointer;
        ASSERT_EQ(kstd_ptrh_constructBaseTypename(&pointer, &widget->header, u"TestWidget"), 0);
        kstd_persistentPropertyBag bag;
        kstd_persistentPropertyBag_construct(&bag);
        Handle ptrhType;
        ASSERT_EQ(kstd_persistentTypeGetType_kstd_ptrh(&ptrhType.t, 1), 0);

        ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(&ptrhType.t, &pointer, &bag), 0);
        const kstd_persistentProperty* stored = nullptr;
        ASSERT_EQ(kstd_persistentPropertyBag_getPropertyPtrConstUsingName(&bag, u"ptr", &stored), 0);
        ASSERT_NE(stored, nullptr);
        EXPECT_EQ(typeName(stored->info.type), u"TestWidget");
        EXPECT_EQ(derivationOf(stored->info.type), kstd_persistentTypeDerivation_pointer);
        uint32_t dataAccess = 0;
        kstd_persistentProperty_getDataAccess(stored, &dataAccess);
        EXPECT_EQ(dataAccess, 2u);
        void* whole = nullptr;
        ASSERT_EQ(kstd_persistentVariant_getWholeObject(&stored->value, &whole), 0);
        EXPECT_EQ(whole, widget);

        // Empty: a null pointer of the base type.
        kstd_ptrh_reset(&pointer);
        ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(&ptrhType.t, &pointer, &bag), 0);
        ASSERT_EQ(kstd_persistentPropertyBag_getPropertyPtrConstUsingName(&bag, u"ptr", &stored), 0);
        uint32_t isNull = 0;
        kstd_persistentProperty_getIsNullPointer(stored, &isNull);
        EXPECT_EQ(isNull, 1u);

        kstd_ptrh anonymous;
        kstd_ptrh_constructEmpty(&anonymous);
        EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&ptrhType.t, &anonymous, &bag),
                  kstd_persistentResult_typeNotRegistered);
        kstd_ptrh_destruct(&anonymous);
        kstd_ptrh_destruct(&pointer);
        kstd_persistentPropertyBag_destruct(&bag);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
