#include <cstdlib>
#include <vector>

#include "support/test_module.hpp"

namespace {

using namespace vexpers::test;

int64_t typeCount() {
    Owned<kstd_vector_kstd_persistentType, kstd_vector_kstd_persistentType_constructEmpty,
          kstd_vector_kstd_persistentType_destruct>
        types;
    EXPECT_EQ(kstd_persistentTypeGetAllTypes(types), 0);
    return types->base.size;
}

// In a fresh process: the shared pointers come with the registry, a vector
// type registers on its first GetType with registerIfNeeded and only then.
bool vectorRegistersOnFirstUse() {
    Type type;
    bool ok = kstd_persistentTypeGetType_kstd_vector32s(type, 0) == 0 && recordOf(type) == nullptr;
    const int64_t before = typeCount();
    ok = ok && kstd_persistentTypeGetType_kstd_ptrh(type, 0) == 0 && nameOf(type) == u"kstd_ptrh";
    ok = ok && kstd_persistentTypeGetType_kstd_vector32s(type, 1) == 0 && typeCount() == before + 4;
    ok = ok && recordOf(type)->category == 7 && recordOf(type)->coreTypeId == -1 && recordOf(type)->isKnown == 1;
    ok = ok && kstd_persistentTypeGetType_kstd_vector32s(type, 1) == 0 && typeCount() == before + 4;
    return ok && kstd_persistentTypeRegisterTypeObject_kstd_vector32s() == 0 && typeCount() == before + 4;
}

// In a fresh process: asking for a shared-pointer type first starts the
// registry, which registers it once; shut-down frees everything.
bool sharedPointerFirst() {
    const int64_t start = liveBlocks();
    {
        Type type;
        if (kstd_persistentTypeGetType_kstd_ptrhConst(type, 1) != 0 || nameOf(type) != u"kstd_ptrhConst") return false;
        if (typeCount() != 216) return false;
    }
    return ksys_shutdown() == 0 && liveBlocks() == start;
}

TEST(BuiltinTypesDeathTest, RegistrationOnFirstUse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::exit(vectorRegistersOnFirstUse() ? 0 : 1), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(std::exit(sharedPointerFirst() ? 0 : 1), testing::ExitedWithCode(0), "");
}

// The family is expanded from one list; a shared pointer, a vector of
// integers, of booleans and of records prove the expansion.
TEST(BuiltinTypes, ObjectTypesWithOneProperty) {
    struct Builtin {
        const char16_t* name;
        kstd_result (*getType)(kstd_persistentType*, uint32_t);
        uint32_t size;
        const char16_t* itemType;  // null for the shared pointers
    };
    const Builtin builtins[] = {
        {u"kstd_ptrhConst", kstd_persistentTypeGetType_kstd_ptrhConst, sizeof(kstd_ptrhConst), nullptr},
        {u"kstd_vector8s", kstd_persistentTypeGetType_kstd_vector8s, sizeof(kstd_vector8s), u"k_Int8"},
        {u"kstd_vectorb", kstd_persistentTypeGetType_kstd_vectorb, sizeof(kstd_vectorb), u"k_Bool"},
        {u"kstd_vector_kstd_unicodeString", kstd_persistentTypeGetType_kstd_vector_kstd_unicodeString,
         sizeof(kstd_vector_kstd_unicodeString), u"kstd_unicodeString"},
    };
    for (const Builtin& builtin : builtins) {
        SCOPED_TRACE(ascii(builtin.name));
        Type type;
        Variant value;
        ASSERT_EQ(builtin.getType(type, 1), 0);
        EXPECT_EQ(nameOf(type), builtin.name);
        EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getElementSize, type), builtin.size);

        // The type describes its one property from its entries.
        kstd_persistentPropertyInfoSet set;
        ASSERT_EQ(kstd_persistentPropertyInfoSet_construct(&set), 0);
        ASSERT_EQ(kstd_persistentType_getPersistentPropertyInfoSet(type, &set), 0);
        ASSERT_EQ(set.infos.base.size, 1);
        const auto* info = static_cast<const kstd_persistentPropertyInfo*>(set.infos.base.begin);
        EXPECT_EQ(ascii(info->name.chars), builtin.itemType ? "items" : "ptr");
        EXPECT_EQ(nameOf(info->type), builtin.itemType ? builtin.itemType : u"void");
        EXPECT_EQ(derivationOf(&info->type), builtin.itemType ? 2u : 1u);
        kstd_persistentPropertyInfoSet_destruct(&set);

        // Setting a property by name is not offered, and does not recurse.
        kstd_vector32s object;
        EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(type, &object, u"items", value), CA);
    }
}

TEST(BuiltinTypes, NewObjectsAndArraysThroughTheTables) {
    startModule();
    Type vectord, vector16, arrays, item, ptrh;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector16(vector16, 1), 0);
    LiveBlockCheck leaks;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vectord(vectord, 1), 0);
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(vectord, &object), 0);
    EXPECT_EQ(kstd_vectord_pushBack(static_cast<kstd_vectord*>(object), 2.5), 0);
    EXPECT_EQ(kstd_persistentType_deleteObject(vectord, &object), 0);

    // Arrays of vectors: the items are whole vector records.
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(arrays, vector16, kstd_persistentTypeDerivation_array), 0);
    uint32_t contiguous = 0, stride = 0;
    const kstd_persistentContainerVtable* table = nullptr;
    ASSERT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(arrays, &contiguous, &stride, &table, item),
              0);
    EXPECT_EQ(stride, sizeof(kstd_vector16));
    EXPECT_EQ(nameOf(item), u"kstd_vector16");
    void* array = nullptr;
    ASSERT_EQ(kstd_persistentType_newArray(arrays, 2, &array), 0);
    EXPECT_EQ(kstd_vector16_pushBack(&static_cast<kstd_vector16*>(array)[1], 9), 0);
    int32_t count = 2;
    EXPECT_EQ(kstd_persistentType_deleteArray(arrays, &count, &array), 0);  // destroys the items' blocks
    EXPECT_EQ(leaks.leaked(), 0);

    // A new shared pointer is empty; a clone shares its object.
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_ptrh(ptrh, 0), 0);
    ASSERT_EQ(kstd_persistentType_newObject(ptrh, &object), 0);
    EXPECT_EQ(outOf<kstd_shared*>(0, kstd_ptrh_getShared, static_cast<kstd_ptrh*>(object)), nullptr);
    void* widget = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &widget), 0);
    kstd_shared* header = &static_cast<Widget*>(widget)->header;
    ASSERT_EQ(kstd_ptrh_assignShared(static_cast<kstd_ptrh*>(object), header), 0);
    const kstd_persistentObjectVtable* operations = recordOf(ptrh)->objectVtable;
    void* clone = nullptr;
    ASSERT_EQ(operations->newClone(&clone, object), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_shared_getReferenceCount, header), 2);
    ASSERT_EQ(operations->deleteObject(&clone), 0);
    widgetCalls = {};
    EXPECT_EQ(kstd_persistentType_deleteObject(ptrh, &object), 0);  // the last reference
    EXPECT_EQ(widgetCalls.destructed, 1);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(BuiltinTypes, PropertyAndBagMembers) {
    startModule();
    Type type;
    kstd_persistentTypeGetType_kstd_vector16s(type, 1);
    kstd_persistentTypeGetType_kstd_ptrh(type, 1);
    // Run once before counting: the registry interns the property names for good.
    auto scenario = [] {
        using Shorts = Owned<kstd_vector16s, kstd_vector16s_construct, kstd_vector16s_destruct>;
        Shorts items, copy;
        Owned<kstd_vector16, kstd_vector16_construct, kstd_vector16_destruct> other;
        SharedPointer pointer, target;
        Bag bag;
        Property property;
        kstd_vector16s_pushBack(items, -3);
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_kstd_vector16s(bag, u"items", 5, items), 0);
        const kstd_vector16s* held = nullptr;
        uint32_t access = 0;
        EXPECT_EQ(kstd_persistentPropertyBag_getValuePtrConst_kstd_vector16s(bag, u"items", &access, &held), 0);
        EXPECT_EQ(held, &items.v);  // the bag borrows the caller's vector
        EXPECT_EQ(access, 5u);
        bag->isStoring = 0;
        EXPECT_EQ(kstd_persistentPropertyBag_transferValue_kstd_vector16s(bag, u"items", nullptr, copy), 0);
        EXPECT_EQ(copy->base.size, 1);
        // No conversion between object types.
        EXPECT_EQ(kstd_persistentPropertyBag_getValue_kstd_vector16(bag, u"items", nullptr, other), CA);

        // A property holding a shared pointer shares nothing: it borrows.
        ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"owner", 2, pointer), 0);
        EXPECT_EQ(outOf<const kstd_ptrh*>(0, kstd_persistentProperty_getValuePtrConst_kstd_ptrh, property),
                  &pointer.v);
        EXPECT_EQ(kstd_persistentProperty_getValue_kstd_ptrh(property, target), 0);
    };
    scenario();
    LiveBlockCheck leaks;
    scenario();
    EXPECT_EQ(leaks.leaked(), 0);
}

// Storing a shared pointer gives one property "ptr": the pointee's type with
// the pointer derivation, pointing at the whole object; an empty pointer gives
// a null pointer of its base type; without any type name the store fails.
TEST(BuiltinSharedPointers, StoreThePointeeAsOneProperty) {
    startModule();
    LiveBlockCheck leaks;
    {
        void* widget = nullptr;  // the pointer keeps it, and frees it when it lets go
        ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &widget), 0);
        kstd_ptrh pointer;
        SharedPointer anonymous;
        ASSERT_EQ(kstd_ptrh_constructBaseTypename(&pointer, &static_cast<Widget*>(widget)->header, u"TestWidget"), 0);
        Bag bag;
        Type ptrhType;
        ASSERT_EQ(kstd_persistentTypeGetType_kstd_ptrh(ptrhType, 1), 0);

        ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(ptrhType, &pointer, bag), 0);
        const auto* stored = outOf<const kstd_persistentProperty*>(
            0, kstd_persistentPropertyBag_getPropertyPtrConstUsingName, bag, u"ptr");
        ASSERT_NE(stored, nullptr);
        EXPECT_EQ(nameOf(stored->info.type), u"TestWidget");
        EXPECT_EQ(derivationOf(&stored->info.type), kstd_persistentTypeDerivation_pointer);
        EXPECT_EQ(outOf<void*>(0, kstd_persistentVariant_getWholeObject, &stored->value), widget);

        // Empty: a null pointer of the base type.
        kstd_ptrh_reset(&pointer);
        ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(ptrhType, &pointer, bag), 0);
        stored = outOf<const kstd_persistentProperty*>(0, kstd_persistentPropertyBag_getPropertyPtrConstUsingName, bag,
                                                       u"ptr");
        EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentProperty_getIsNullPointer, stored), 1u);
        EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(ptrhType, anonymous, bag), C8);
        kstd_ptrh_destruct(&pointer);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
