// What moving an object's declared properties through its type refuses, and
// what it leaves in the bag. (Storing each accessor word's value is carried
// by the round trips.)
#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

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
    Type ints;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, ints), 0);
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(ints, widget.get(), bag), C0);
}

}  // namespace
