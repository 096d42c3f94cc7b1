// Moving an object's declared properties into a bag through its type, and
// what a loading bag refuses.
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::prop;

const kstd_persistentProperty& at(const kstd_persistentPropertyBag& bag, int i) { return bag.propertiesBegin[i]; }

TEST(PropertyTransfer, StoresEveryDeclaredPropertyInOrder) {
    const TestTypes& types = testTypes();
    Shape shape;
    shape.width = 3;
    shape.ratio = 0.5;
    shape.mood = -2;
    shape.bits = 0x80000001u;
    shape.big = 0xFFFFFFFFFFFFFFFFull;
    shape.list = {{7, 8, 9, 0}, 3};
    shape.inner.x = 4;
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"stale", 2, 0), 0);
    transferCalls = 0;
    ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.shape->handle, &shape, &bag.b), 0);
    EXPECT_EQ(transferCalls, 1);
    // The stale property went first; the hidden entry gives nothing; the
    // type's own transfer comes last.
    EXPECT_EQ(namesOf(bag.b), (std::vector<std::u16string>{u"width", u"ratio", u"area", u"label", u"mood", u"bits",
                                                           u"big", u"items", u"inner", u"next", u"twice"}));
    EXPECT_EQ(intOf(at(bag.b, 0)), 3);
    uint32_t access = 0;
    EXPECT_EQ(kstd_persistentProperty_getDataAccess(&at(bag.b, 0), &access), 0);
    EXPECT_EQ(access, 1u);
    double number = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_double(&at(bag.b, 1), &number), 0);
    EXPECT_EQ(number, 0.5);
    EXPECT_EQ(kstd_persistentProperty_getValue_double(&at(bag.b, 2), &number), 0);
    EXPECT_EQ(number, 1.5);
    char16_t* label = nullptr;
    ASSERT_EQ(kstd_persistentProperty_getValueCloneStringW(&at(bag.b, 3), &label), 0);
    EXPECT_EQ(text(label), u"box");
    void* memory = label;
    ksys_memory_free_internal(&memory);
    int64_t mood = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_k_Int64(&at(bag.b, 4), &mood), 0);
    EXPECT_EQ(mood, -2);
    uint64_t bits = 0;
    EXPECT_EQ(kstd_persistentProperty_getValue_k_UInt64(&at(bag.b, 5), &bits), 0);
    EXPECT_EQ(bits, 0x80000001u);
    EXPECT_EQ(kstd_persistentProperty_getValue_k_UInt64(&at(bag.b, 6), &bits), 0);
    EXPECT_EQ(bits, 0xFFFFFFFFFFFFFFFFull);
    int64_t items = 0;
    EXPECT_EQ(kstd_persistentProperty_getNumItemsIfArray(&at(bag.b, 7), &items), 0);
    EXPECT_EQ(items, 3);
    EXPECT_EQ(at(bag.b, 7).value.value.pointer, &shape.list);
    EXPECT_EQ(at(bag.b, 8).value.value.pointer, &shape.inner);  // borrowed
    uint32_t isNull = 0;
    EXPECT_EQ(kstd_persistentProperty_getIsNullPointer(&at(bag.b, 9), &isNull), 0);
    EXPECT_EQ(isNull, 1u);
    EXPECT_EQ(intOf(at(bag.b, 10)), 6);

    // The entry whose type registered after it was made (the shape pointer)
    // resolved on first use.
    int32_t coreTypeId = 0;
    uint32_t derivation = 0;
    EXPECT_EQ(kstd_persistentProperty_getCoreTypeId(&at(bag.b, 9), &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_registered);
    EXPECT_EQ(kstd_persistentProperty_getTypeDerivation(&at(bag.b, 9), &derivation), 0);
    EXPECT_EQ(derivation, kstd_persistentTypeDerivation_pointer);

    // Storing again reuses the slots in place.
    const kstd_persistentProperty* slots = bag.b.propertiesBegin;
    shape.width = 10;
    ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.shape->handle, &shape, &bag.b), 0);
    EXPECT_EQ(bag.b.propertiesBegin, slots);
    EXPECT_EQ(intOf(at(bag.b, 0)), 10);
    EXPECT_EQ(bag.b.numProperties, 11);
}

TEST(PropertyTransfer, LoadingBagsAndFailures) {
    const TestTypes& types = testTypes();
    Shape shape;
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"width", 2, 1), 0);
    bag.b.isStoring = 0;
    // Names of entries that cannot load, and names no entry has, pass; the
    // bag is left alone.
    transferCalls = 0;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.shape->handle, &shape, &bag.b), 0);
    EXPECT_EQ(transferCalls, 1);
    EXPECT_EQ(namesOf(bag.b), std::vector<std::u16string>{u"width"});
    bag.b.isStoring = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"hidden", 2, 1), 0);
    bag.b.isStoring = 0;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.shape->handle, &shape, &bag.b),
              kstd_persistentResult_notSupported);
    EXPECT_EQ(transferCalls, 1);

    bag.b.isStoring = 1;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.shape->handle, nullptr, &bag.b),
              kstd_persistentResult_nullArgument);
    EXPECT_EQ(bag.b.numProperties, 2);  // a null object is refused before the bag is emptied
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&types.broken->handle, &shape, &bag.b),
              kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(bag.b.numProperties, 0);
    TypeHandle empty, unknown, ints;
    ASSERT_EQ(kstd_persistentTypeGetType(u"PropTestUnknownObject", 0, 0, &unknown.t), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &ints.t), 0);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&empty.t, &shape, &bag.b),
              kstd_persistentResult_typeEmpty);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&unknown.t, &shape, &bag.b),
              kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(&ints.t, &shape, &bag.b),
              kstd_persistentResult_noObjectVtable);
}

}  // namespace
