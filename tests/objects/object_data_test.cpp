#include "objects/test_module.hpp"

namespace {

using namespace vexpers::test;

constexpr kstd_result C3 = kstd_persistentResult_invalidPropertyName;
constexpr kstd_result C9 = kstd_persistentResult_propertyNotFound;
constexpr kstd_result CC = kstd_persistentResult_nullArgument;
constexpr kstd_result D6 = kstd_persistentResult_wrongTypeKind;

struct Bag {
    kstd_persistentPropertyBag b;
    Bag() { kstd_persistentPropertyBag_construct(&b); }
    ~Bag() { kstd_persistentPropertyBag_destruct(&b); }
    Bag(const Bag&) = delete;
    Bag& operator=(const Bag&) = delete;
};

struct Property {
    kstd_persistentProperty p;
    Property() { kstd_persistentProperty_construct(&p); }
    ~Property() { kstd_persistentProperty_destruct(&p); }
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
};

class ObjectData : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        resetWidgetCalls();
        ASSERT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &object), 0);
        widget = static_cast<Widget*>(object);
        widget->number = 7;
        widget->ratio = 2.5;
        widget->color = 3;
        widget->flags32 = 0x80000000u;
        widget->flags64 = uint64_t{1} << 40;
        widget->inner.count = 11;
        for (int32_t item : {1, 2, 3}) kstd_vector32s_pushBack(&widget->values, item);
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&variant.v, moduleTypes().widget, widget), 0);
    }
    void TearDown() override { kstd_persistentType_deleteObject(moduleTypes().widget, &object); }

    const kstd_persistentProperty* find(const Bag& bag, const char16_t* name) {
        const kstd_persistentProperty* found = nullptr;
        kstd_persistentPropertyBag_getPropertyPtrConstUsingName(&bag.b, name, &found);
        return found;
    }

    void* object = nullptr;
    Widget* widget = nullptr;
    VariantBox variant;
};

TEST_F(ObjectData, EveryAccessorWordInItsOrder) {
    LiveBlockCheck leaks;
    {
        Bag bag;
        ASSERT_EQ(kstd_persistentVariant_getObjectData(&variant.v, &bag.b), 0);
        const kstd_persistentProperty* begin = nullptr;
        int32_t count = 0;
        ASSERT_EQ(kstd_persistentPropertyBag_getPropertiesBeginSizeConst(&bag.b, &begin, &count), 0);
        EXPECT_EQ(count, 10);  // every entry but "nothing"
        EXPECT_EQ(find(bag, u"nothing"), nullptr);
        EXPECT_EQ(widgetCalls().transfers, 1);  // the type's own part comes last

        int32_t number = 0;
        ASSERT_NE(find(bag, u"number"), nullptr);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(&find(bag, u"number")->value, &number), 0);
        EXPECT_EQ(number, 7);  // word 4 before word 3
        double ratio = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_double(&find(bag, u"ratio")->value, &ratio), 0);
        EXPECT_EQ(ratio, 2.5);  // word 3 before word 5
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(&find(bag, u"doubled")->value, &number), 0);
        EXPECT_EQ(number, 14);  // word 5 before word 7

        // Word 7 before word 0: the items stay in their container.
        const void* first = nullptr;
        intptr_t items = 0;
        ASSERT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtrConst(&find(bag, u"values")->value, &first, &items), 0);
        EXPECT_EQ(first, &widget->values);
        EXPECT_EQ(items, 3);

        int64_t color = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(&find(bag, u"color")->value, &color), 0);
        EXPECT_EQ(color, 3);  // word 0 before word 1
        uint64_t bits = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(&find(bag, u"flags32")->value, &bits), 0);
        EXPECT_EQ(bits, 2147483648u);  // word 1 before word 2, zero-extended
        EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(&find(bag, u"flags64")->value, &bits), 0);
        EXPECT_EQ(bits, uint64_t{1} << 40);
        EXPECT_EQ(find(bag, u"inner")->value.value.pointer, &widget->inner);
        int32_t stored = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_int(&find(bag, u"stored")->value, &stored), 0);
        EXPECT_EQ(stored, 8);  // word 6 fills the whole property

        uint32_t isNull = 0;
        EXPECT_EQ(kstd_persistentProperty_getIsNullPointer(find(bag, u"link"), &isNull), 0);
        EXPECT_EQ(isNull, 1u);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectData, ValuesWithoutProperties) {
    LiveBlockCheck leaks;
    {
        Bag bag;
        VariantBox other;
        ASSERT_EQ(kstd_persistentVariant_setValue_int(&other.v, 3), 0);
        ASSERT_EQ(kstd_persistentVariant_getObjectData(&variant.v, &bag.b), 0);
        EXPECT_EQ(kstd_persistentVariant_getObjectData(&other.v, &bag.b), 0);  // emptied, and stays so
        EXPECT_EQ(bag.b.numProperties, 0);

        ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeEnum(&other.v, moduleTypes().color, 2), 0);
        EXPECT_EQ(kstd_persistentVariant_getObjectData(&other.v, &bag.b), 0);
        Handle doubles;
        ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&doubles.t, u"double", 2), 0);
        ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&other.v, &doubles.t, 2, nullptr, nullptr), 0);
        EXPECT_EQ(kstd_persistentVariant_getObjectData(&other.v, &bag.b), kstd_persistentResult_notSupported);
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&other.v, moduleTypes().widget, nullptr), 0);
        EXPECT_EQ(kstd_persistentVariant_getObjectData(&other.v, &bag.b), CC);
        bag.b.isStoring = 0;
        EXPECT_EQ(kstd_persistentVariant_getObjectData(&variant.v, &bag.b), kstd_persistentResult_bagNotStoring);
        ASSERT_EQ(kstd_persistentVariant_reset(&other.v), 0);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectData, LoadingBagRefusesLoadableProperties) {
    Bag bag;
    int32_t value = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"number", 2, value), 0);
    bag.b.isStoring = 0;
    // "number" cannot be loaded: passed over.
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(moduleTypes().widget, object, &bag.b), 0);
    bag.b.isStoring = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"values", 2, value), 0);
    bag.b.isStoring = 0;
    EXPECT_EQ(kstd_persistentType_transferObjectPersistentProperties(moduleTypes().widget, object, &bag.b),
              kstd_persistentResult_notSupported);
}

TEST_F(ObjectData, DottedPaths) {
    LiveBlockCheck leaks;
    {
        Property property;
        int32_t count = 0;
        ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inner.count", &property.p), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(&property.p.value, &count), 0);
        EXPECT_EQ(count, 11);
        ASSERT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"number", &property.p), 0);

        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inner.absent", &property.p), C9);
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"absent.count", &property.p), C9);
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inner.", &property.p), C3);
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"", &property.p), C3);
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"number.count", &property.p), D6);
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"link.count", &property.p), CC);
        // Names match whole: a prefix of a name is no name.
        EXPECT_EQ(kstd_persistentVariant_getPropertyUsingName(&variant.v, u"inne.count", &property.p), C9);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectData, PropertiesByNamePartThroughTheType) {
    Property property;
    // The widget's own table has no lookup by name.
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(moduleTypes().widget, object, u"xnumber", 1, 6,
                                                                   &property.p),
              kstd_persistentResult_operationMissing);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(moduleTypes().widget, object, u"number", 1, 6,
                                                                   &property.p),
              C3);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(moduleTypes().widget, object, u"number", 0, 0,
                                                                   &property.p),
              C3);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(moduleTypes().widget, nullptr, u"number", 0, 6,
                                                                   &property.p),
              CC);

    // A built-in vector answers from its entries.
    Handle vector;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector32s(&vector.t, 1), 0);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(&vector.t, &widget->values, u"(items)", 1, 5,
                                                                   &property.p),
              0);
    void* first = nullptr;
    intptr_t items = 0;
    ASSERT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(&property.p.value, &first, &items), 0);
    EXPECT_EQ(first, &widget->values);
    EXPECT_EQ(items, 3);
    EXPECT_EQ(kstd_persistentType_getObjectPropertyUsingNameSubstr(&vector.t, &widget->values, u"items", 0, 4,
                                                                   &property.p),
              C9);
}

TEST_F(ObjectData, ArrayInAContainer) {
    Box box{{4, 5, 6}, 3};
    Handle ints;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&ints.t, u"k_Int32", 2), 0);
    VariantBox held;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayInContainer(&held.v, &ints.t, &box, boxOperations()), 0);
    void* first = nullptr;
    intptr_t count = 0;
    ASSERT_EQ(kstd_persistentVariant_getArrayBeginSizeIntPtr(&held.v, &first, &count), 0);
    EXPECT_EQ(first, &box);  // the container, not an element
    EXPECT_EQ(count, 3);

    void* container = nullptr;
    uint32_t containerValue = 0, elementSize = 0;
    const kstd_persistentContainerVtable* table = nullptr;
    Handle element;
    ASSERT_EQ(kstd_persistentVariant_getContainer(&held.v, &container, &containerValue, &elementSize, &first, &count,
                                                  &table, &element.t),
              0);
    EXPECT_EQ(container, &box);
    EXPECT_EQ(containerValue, 1u);
    EXPECT_EQ(elementSize, 4u);
    EXPECT_EQ(first, box.items);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(table, boxOperations());
    EXPECT_EQ(typeName(element.t), u"k_Int32");
    EXPECT_EQ(derivationOf(element.t), 0u);
}

}  // namespace
