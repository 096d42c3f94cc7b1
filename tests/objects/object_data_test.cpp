// What an object's data through its type refuses, and name lookups through
// the type. (The value each accessor word gives is carried by the round
// trips; property paths and loading bags the property tests cover.)
#include "support/test_module.hpp"

namespace {

using namespace vexpers::test;

class ObjectData : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        widgetCalls = {};
        ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &object), 0);
        widget = static_cast<Widget*>(object);
        for (int32_t item : {1, 2, 3}) kstd_vector32s_pushBack(&widget->values, item);
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, moduleTypes().widget, widget), 0);
    }
    void TearDown() override { kstd_persistentType_deleteObject(moduleTypes().widget, &object); }

    void* object = nullptr;
    Widget* widget = nullptr;
    Variant variant;
};

TEST_F(ObjectData, ValuesWithoutProperties) {
    NoLeaks leaks;
    Bag bag;
    Variant other;
    Type doubles;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(other, 3), 0);
    ASSERT_EQ(kstd_persistentVariant_getObjectData(variant, bag), 0);
    EXPECT_EQ(kstd_persistentVariant_getObjectData(other, bag), 0);  // emptied, and stays so
    EXPECT_EQ(bag->numProperties, 0);

    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(other, moduleTypes().color, 2), 0);
    EXPECT_EQ(kstd_persistentVariant_getObjectData(other, bag), 0);
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(doubles, u"double", 2), 0);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(other, doubles, 2, nullptr, nullptr), 0);
    EXPECT_EQ(kstd_persistentVariant_getObjectData(other, bag), CA);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(other, moduleTypes().widget, nullptr), 0);
    EXPECT_EQ(kstd_persistentVariant_getObjectData(other, bag), CC);
    bag->isStoring = 0;
    EXPECT_EQ(kstd_persistentVariant_getObjectData(variant, bag), kstd_persistentResult_bagNotStoring);
}

TEST_F(ObjectData, PropertiesByNamePartThroughTheType) {
    Property property;
    const kstd_persistentType* type = moduleTypes().widget;
    // The widget's own table has no lookup by name.
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(type, object, u"xnumber", 1, 6, property), C1);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(type, object, u"number", 1, 6, property), C3);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(type, nullptr, u"number", 0, 6, property), CC);

    // A built-in vector answers from its entries.
    Type vector;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector32s(vector, 1), 0);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(vector, &widget->values, u"(items)", 1, 5, property),
              0);
    EXPECT_EQ(property->value.arrayCount, 3);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(vector, &widget->values, u"items", 0, 4, property),
              C9);
}

}  // namespace
