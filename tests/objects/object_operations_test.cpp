#include "objects/test_module.hpp"

namespace {

using namespace vexpers::test;

constexpr kstd_result C0 = kstd_persistentResult_noObjectVtable;
constexpr kstd_result C1 = kstd_persistentResult_operationMissing;
constexpr kstd_result CC = kstd_persistentResult_nullArgument;
constexpr kstd_result CD = kstd_persistentResult_typeMismatch;
constexpr kstd_result D6 = kstd_persistentResult_wrongTypeKind;

class ObjectOperations : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        resetWidgetCalls();
    }
    const ModuleTypes& types = moduleTypes();
};

TEST_F(ObjectOperations, NewObjectReplacesWhatThePointerHolds) {
    LiveBlockCheck leaks;
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    void* first = object;
    ASSERT_NE(first, nullptr);
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    EXPECT_EQ(widgetCalls().constructed, 2);
    EXPECT_EQ(widgetCalls().destructed, 1);  // the first object went first
    ASSERT_EQ(kstd_persistentType_deleteObject(types.widget, &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(widgetCalls().destructed, 2);
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), 0);  // null: nothing to do

    // A failing destruct keeps the object and the pointer.
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    widgetCalls().failDestructAt = widgetCalls().destructAttempts;
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), injectedFailure);
    EXPECT_NE(object, nullptr);
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectOperations, NewObjectRefusals) {
    Handle type;
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&type.t, u"int"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(&type.t, &object), C1);  // a core table has a size only
    ASSERT_EQ(kstd_persistentType_resetTypeName(&type.t, u"k_Int128"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(&type.t, &object), C0);  // a reserved name has no table
    derive(type, types.widget, kstd_persistentTypeDerivation_array);
    EXPECT_EQ(kstd_persistentType_newObject(&type.t, &object), D6);
    EXPECT_EQ(kstd_persistentType_deleteObject(&type.t, &object), D6);
    ASSERT_EQ(kstd_persistentType_resetTypeName(&type.t, u"NobodyRegisteredThis"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(&type.t, &object), kstd_persistentResult_typeNotRegistered);
    ASSERT_EQ(kstd_persistentType_reset(&type.t), 0);
    EXPECT_EQ(kstd_persistentType_newObject(&type.t, &object), kstd_persistentResult_typeEmpty);
    EXPECT_EQ(object, nullptr);
}

TEST_F(ObjectOperations, ArraysOfACoreType) {
    LiveBlockCheck leaks;
    Handle doubles;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&doubles.t, u"double", 2), 0);
    void* array = nullptr;
    ASSERT_EQ(kstd_persistentType_newArray(&doubles.t, 3, &array), 0);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(leaks.leaked(), 1);  // 24 bytes, nothing constructed
    static_cast<double*>(array)[2] = 1.5;  // the whole block is usable

    EXPECT_EQ(kstd_persistentType_newArray(&doubles.t, 1, &array), kstd_persistentResult_outputNotEmpty);
    EXPECT_EQ(kstd_persistentType_newArray(&doubles.t, -1, &array), kstd_persistentResult_invalidCount);
    int32_t count = 3;
    ASSERT_EQ(kstd_persistentType_deleteArray(&doubles.t, &count, &array), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(array, nullptr);

    // An empty array; deleting a null array only zeroes the count.
    ASSERT_EQ(kstd_persistentType_newArray(&doubles.t, 0, &array), 0);
    ASSERT_EQ(kstd_persistentType_deleteArray(&doubles.t, &count, &array), 0);
    count = 7;
    EXPECT_EQ(kstd_persistentType_deleteArray(&doubles.t, &count, &array), 0);
    EXPECT_EQ(count, 0);

    Handle plain;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&plain.t, u"double"), 0);
    EXPECT_EQ(kstd_persistentType_newArray(&plain.t, 1, &array), D6);
    EXPECT_EQ(kstd_persistentType_deleteArray(&plain.t, &count, &array), D6);

    // The element size is that of the named type whatever the derivation.
    uint32_t size = 0;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&plain.t, u"double", 1), 0);
    EXPECT_EQ(kstd_persistentType_getElementSize(&plain.t, &size), 0);
    EXPECT_EQ(size, 8u);
    ASSERT_EQ(kstd_persistentType_resetTypeName(&plain.t, u"k_Int128"), 0);
    EXPECT_EQ(kstd_persistentType_getElementSize(&plain.t, &size), C0);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectOperations, ConstructFailingMidArray) {
    LiveBlockCheck leaks;
    Handle widgets;
    derive(widgets, types.widget, kstd_persistentTypeDerivation_array);
    widgetCalls().failConstructAt = 2;
    void* array = nullptr;
    EXPECT_EQ(kstd_persistentType_newArray(&widgets.t, 4, &array), injectedFailure);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(widgetCalls().constructed, 2);
    EXPECT_EQ(widgetCalls().destructed, 2);  // elements 1 and 0
    EXPECT_EQ(leaks.leaked(), 0);

    // The first element failing leaves nothing to destroy.
    resetWidgetCalls();
    widgetCalls().failConstructAt = 0;
    EXPECT_EQ(kstd_persistentType_newArray(&widgets.t, 4, &array), injectedFailure);
    EXPECT_EQ(widgetCalls().destructAttempts, 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectOperations, DestructFailingMidArray) {
    LiveBlockCheck leaks;
    Handle widgets;
    derive(widgets, types.widget, kstd_persistentTypeDerivation_array);
    void* array = nullptr;
    ASSERT_EQ(kstd_persistentType_newArray(&widgets.t, 3, &array), 0);
    auto* elements = static_cast<Widget*>(array);
    ASSERT_EQ(kstd_vector32s_pushBack(&elements[2].values, 5), 0);  // element 2 owns a block

    // Element 2 goes first; element 1 fails and stays, with element 0.
    widgetCalls().failDestructAt = 1;
    int32_t count = 3;
    EXPECT_EQ(kstd_persistentType_deleteArray(&widgets.t, &count, &array), injectedFailure);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(array, elements);
    EXPECT_EQ(widgetCalls().destructed, 1);
    EXPECT_EQ(leaks.leaked(), 1);  // the array itself

    // The count tells the caller what is still alive.
    EXPECT_EQ(kstd_persistentType_deleteArray(&widgets.t, &count, &array), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(widgetCalls().destructed, 2);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(ObjectOperations, AssignObjectFromVariant) {
    Widget source{};
    Widget target{};
    VariantBox variant;
    source.number = 42;
    kstd_vector32s_construct(&source.values);
    kstd_vector32s_construct(&target.values);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&variant.v, types.widget, &source), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, &target, &variant.v), 0);
    EXPECT_EQ(target.number, 42);
    EXPECT_EQ(widgetCalls().assigns, 1);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, nullptr, &variant.v), CC);

    // Another object type, a core value, or no object.
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.inner, &target, &variant.v), CD);
    kstd_ptrh pointer;
    kstd_ptrh_constructEmpty(&pointer);
    kstd_vector8 bytes;
    kstd_vector8_construct(&bytes);
    Handle vector8;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector8(&vector8.t, 1), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_kstd_ptrh(&variant.v, &pointer), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(&vector8.t, &bytes, &variant.v), CD);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 3), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, &target, &variant.v), CD);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&variant.v, types.widget, nullptr), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, &target, &variant.v), CC);
    EXPECT_EQ(widgetCalls().assigns, 1);

    // A table without assign copies the element's bytes.
    Inner from{7};
    Inner to{0};
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(&variant.v, types.inner, &from), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.inner, &to, &variant.v), 0);
    EXPECT_EQ(to.count, 7);

    kstd_vector8_destruct(&bytes);
    kstd_ptrh_destruct(&pointer);
    kstd_vector32s_destruct(&source.values);
    kstd_vector32s_destruct(&target.values);
}

TEST_F(ObjectOperations, SetObjectPropertyDispatchesToTheType) {
    Widget widget{};
    VariantBox value;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&value.v, 1), 0);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, &widget, u"number", &value.v), 0);
    EXPECT_EQ(widgetCalls().lastPropertyName, u"number");
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, nullptr, u"number", &value.v), CC);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, &widget, u"", &value.v),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, &widget, nullptr, &value.v),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(widgetCalls().setProperty, 1);
    Inner inner{};
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.inner, &inner, u"count", &value.v), C1);
    Handle core;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&core.t, u"int"), 0);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(&core.t, &inner, u"count", &value.v), C0);
}

TEST_F(ObjectOperations, InterfaceQueryAndShareability) {
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    void* shared = nullptr;
    EXPECT_EQ(kstd_persistentType_queryInterfaceByTypename(types.widget, object, u"kstd_shared", &shared), 0);
    EXPECT_EQ(shared, &static_cast<Widget*>(object)->header);
    EXPECT_EQ(kstd_persistentType_queryInterfaceByTypename(types.widget, object, u"Other", &shared), 0);
    EXPECT_EQ(shared, nullptr);
    EXPECT_EQ(kstd_persistentType_queryInterfaceByTypename(types.widget, object, u"", &shared),
              kstd_persistentResult_invalidTypeName);
    EXPECT_EQ(kstd_persistentType_queryInterfaceByTypename(types.widget, nullptr, u"kstd_shared", &shared), CC);
    Inner inner{};
    EXPECT_EQ(kstd_persistentType_queryInterfaceByTypename(types.inner, &inner, u"kstd_shared", &shared),
              kstd_persistentResult_noInterfaceQuery);

    // Shareability asks the same interface query.
    uint32_t shareable = 0;
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(types.widget, object, &shareable), 0);
    EXPECT_EQ(shareable, 1u);
    EXPECT_EQ(kstd_persistentType_getIsObjectShareable(types.inner, &inner, &shareable), 0);
    EXPECT_EQ(shareable, 0u);
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), 0);
}

TEST_F(ObjectOperations, ContainerDescriptions) {
    uint32_t contiguous = 9;
    uint32_t stride = 9;
    const kstd_persistentContainerVtable* table = nullptr;
    Handle item;
    Handle type;

    // An array of objects: contiguous at the element size, no table.
    derive(type, types.widget, kstd_persistentTypeDerivation_array);
    ASSERT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(&type.t, &contiguous, &stride, &table,
                                                                         &item.t),
              0);
    EXPECT_EQ(contiguous, 1u);
    EXPECT_EQ(stride, sizeof(Widget));
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(typeName(item.t), u"TestWidget");
    EXPECT_EQ(derivationOf(item.t), 0u);

    // A bit-field array's items are the bit-field form; an enum has no size.
    derive(type, types.colorBits, kstd_persistentTypeDerivation_bitfieldArray);
    EXPECT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(&type.t, &contiguous, &stride, &table,
                                                                         &item.t),
              C0);
    EXPECT_EQ(typeName(item.t), u"TestColor");
    EXPECT_EQ(derivationOf(item.t), 4u);

    // A container: its table, its layout and its item type, looked up once.
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(types.box, &contiguous, &stride, &table,
                                                                             &item.t),
                  0);
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(contiguous, 1u);
        EXPECT_EQ(stride, 4u);
        EXPECT_EQ(typeName(item.t), u"k_Int32");
        uint32_t known = 0;
        kstd_persistentType_getIsKnown(&item.t, &known);
        EXPECT_EQ(known, 1u);
    }
    ASSERT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(types.looseBox, &contiguous, &stride, &table,
                                                                         &item.t),
              0);
    EXPECT_EQ(typeName(item.t), u"TestNeverRegisteredItem");
    uint32_t known = 1;
    kstd_persistentType_getIsKnown(&item.t, &known);
    EXPECT_EQ(known, 0u);

    // Plain objects are no containers; the built-in vectors reach their table
    // through their "items" property only.
    EXPECT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(types.widget, &contiguous, &stride, &table,
                                                                         &item.t),
              D6);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(typeName(item.t), u"(null)");  // reset on failure
    Handle vector;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector32s(&vector.t, 1), 0);
    EXPECT_EQ(kstd_persistentType_getContainerVtableAndContainedItemType(&vector.t, &contiguous, &stride, &table,
                                                                         &item.t),
              D6);
}

}  // namespace
