// Moving an object's declared properties into a bag through its type, and
// what a loading bag refuses. (The value each accessor word gives, and which
// word storing prefers, the object tests check.)
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

TEST(PropertyTransfer, StoresEveryDeclaredPropertyInOrder) {
    NewWidget widget;
    widget->number = 3;
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"stale", 2, 0), 0);
    widgetCalls = {};
    ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(moduleTypes().widget, widget.get(), bag), 0);
    EXPECT_EQ(widgetCalls.transfers, 1);
    // The stale property went first; the entry without a value gives nothing;
    // the type's own transfer comes last.
    EXPECT_EQ(namesOf(bag), (std::vector<std::u16string>{u"number", u"ratio", u"doubled", u"values", u"color",
                                                         u"flags32", u"flags64", u"inner", u"link", u"next",
                                                         u"stored", u"twice"}));
    const kstd_persistentProperty* stored = bag->propertiesBegin;
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, &stored[0]), 3);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentProperty_getDataAccess, &stored[0]), 1u);   // the entry's
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentProperty_getDataAccess, &stored[10]), 7u);  // the accessor's own
    EXPECT_EQ(intOf(stored[11]), 6);

    // The entry of the widget's own type (registered after the entry was
    // made) resolved on first use.
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentProperty_getIsNullPointer, &stored[9]), 1u);
    EXPECT_EQ(nameOf(stored[9].info.type), u"TestWidget");
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getCoreTypeId, &stored[9]),
              kstd_persistentCoreTypeId_registered);
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentProperty_getTypeDerivation, &stored[9]),
              kstd_persistentTypeDerivation_pointer);

    // Storing again reuses the slots in place.
    widget->number = 10;
    ASSERT_EQ(kstd_persistentType_transferObjectPersistentProperties(moduleTypes().widget, widget.get(), bag), 0);
    EXPECT_EQ(bag->propertiesBegin, stored);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, &stored[0]), 10);
    EXPECT_EQ(bag->numProperties, 12);
}

TEST(PropertyTransfer, LoadingBagsAndFailures) {
    const ModuleTypes& types = moduleTypes();
    NewWidget widget;
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"number", 2, 1), 0);
    bag->isStoring = 0;
    // Names of entries that cannot load, and names no entry has, pass; the
    // bag is left alone. A name of a loadable entry is refused.
    widgetCalls = {};
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(types.widget, widget.get(), bag), 0);
    EXPECT_EQ(widgetCalls.transfers, 1);
    EXPECT_EQ(namesOf(bag), std::vector<std::u16string>{u"number"});
    bag->isStoring = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"values", 2, 1), 0);
    bag->isStoring = 0;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(types.widget, widget.get(), bag), CA);
    EXPECT_EQ(widgetCalls.transfers, 1);

    bag->isStoring = 1;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(types.widget, nullptr, bag), CC);
    EXPECT_EQ(bag->numProperties, 2);  // a null object is refused before the bag is emptied
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(types.broken, widget.get(), bag), C8);
    EXPECT_EQ(bag->numProperties, 0);
    Type empty, unknown, ints;
    ASSERT_EQ(kstd_persistentTypeGetType(u"PropTestUnknownObject", 0, 0, unknown), 0);
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, ints), 0);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(empty, widget.get(), bag), Empty);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(unknown, widget.get(), bag), C8);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(ints, widget.get(), bag), C0);
}

}  // namespace
