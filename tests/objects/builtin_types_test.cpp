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

TEST(BuiltinTypes, NewSharedPointerClonesShareTheObject) {
    startModule();
    Type ptrh;
    NoLeaks leaks;
    void* object = nullptr;
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
}

TEST(BuiltinTypes, PropertyAndBagMembers) {
    startModule();
    Type type;
    kstd_persistentTypeGetType_kstd_vector16s(type, 1);
    // Run once before counting: the registry interns the property names for good.
    auto scenario = [] {
        using Shorts = Owned<kstd_vector16s, kstd_vector16s_construct, kstd_vector16s_destruct>;
        Shorts items, copy;
        Owned<kstd_vector16, kstd_vector16_construct, kstd_vector16_destruct> other;
        Bag bag;
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
    };
    scenario();
    NoLeaks leaks;
    scenario();
}

// A shared pointer with neither an object nor a base type name cannot name
// the type of its one property. (What a held or empty pointer stores, the
// round trips carry.)
TEST(BuiltinSharedPointers, StoreWithoutAnyTypeNameFails) {
    startModule();
    SharedPointer anonymous;
    Bag bag;
    Type ptrhType;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_ptrh(ptrhType, 1), 0);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(ptrhType, anonymous, bag), C8);
}

}  // namespace
