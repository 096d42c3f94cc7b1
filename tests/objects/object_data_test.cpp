// An object's data through its type's declared properties. (Property paths
// and loading bags the property tests cover.)
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
        widget->number = 7;
        widget->ratio = 2.5;
        widget->color = 3;
        widget->flags32 = 0x80000000u;
        widget->flags64 = uint64_t{1} << 40;
        widget->inner.count = 11;
        for (int32_t item : {1, 2, 3}) kstd_vector32s_pushBack(&widget->values, item);
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, moduleTypes().widget, widget), 0);
    }
    void TearDown() override { kstd_persistentType_deleteObject(moduleTypes().widget, &object); }

    const kstd_persistentVariant* valueOf(const Bag& bag, const char16_t* name) {
        const auto* found = outOf<const kstd_persistentProperty*>(
            0, kstd_persistentPropertyBag_getPropertyPtrConstUsingName, bag, name);
        return found != nullptr ? &found->value : nullptr;
    }

    void* object = nullptr;
    Widget* widget = nullptr;
    Variant variant;
};

TEST_F(ObjectData, EveryAccessorWordInItsOrder) {
    LiveBlockCheck leaks;
    {
        Bag bag;
        ASSERT_EQ(kstd_persistentVariant_getObjectData(variant, bag), 0);
        EXPECT_EQ(bag->numProperties, 12);  // every entry but "nothing", then "twice"
        EXPECT_EQ(valueOf(bag, u"nothing"), nullptr);
        ASSERT_NE(valueOf(bag, u"number"), nullptr);

        EXPECT_EQ(outOf<int32_t>(0, kstd_persistentVariant_getValue_k_Int32, valueOf(bag, u"number")), 7);  // 4, not 3
        EXPECT_EQ(outOf<double>(0, kstd_persistentVariant_getValue_double, valueOf(bag, u"ratio")), 2.5);  // 3, not 5
        EXPECT_EQ(outOf<int32_t>(0, kstd_persistentVariant_getValue_k_Int32, valueOf(bag, u"doubled")),
                  14);  // 5, not 7
        // Word 7 before word 0: the items stay in their container.
        const void* first = nullptr;
        intptr_t items = 0;
        ASSERT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtrConst(valueOf(bag, u"values"), &first, &items), 0);
        EXPECT_EQ(first, &widget->values);
        EXPECT_EQ(items, 3);
        EXPECT_EQ(outOf<int64_t>(0, kstd_persistentVariant_getValue_k_Int64, valueOf(bag, u"color")), 3);  // 0, not 1
        // Word 1 before word 2, zero-extended.
        EXPECT_EQ(outOf<uint64_t>(0, kstd_persistentVariant_getValue_k_UInt64, valueOf(bag, u"flags32")), 2147483648u);
        EXPECT_EQ(outOf<uint64_t>(0, kstd_persistentVariant_getValue_k_UInt64, valueOf(bag, u"flags64")), 1ull << 40);
        EXPECT_EQ(valueOf(bag, u"inner")->value.pointer, &widget->inner);
        EXPECT_EQ(valueOf(bag, u"link")->value.pointer, nullptr);
        EXPECT_EQ(outOf<int>(0, kstd_persistentVariant_getValue_int, valueOf(bag, u"stored")), 8);  // word 6 fills all
        EXPECT_EQ(outOf<int>(0, kstd_persistentVariant_getValue_int, valueOf(bag, u"twice")), 14);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectData, ValuesWithoutProperties) {
    LiveBlockCheck leaks;
    {
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
    EXPECT_EQ(leaks.leaked(), 0);
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
