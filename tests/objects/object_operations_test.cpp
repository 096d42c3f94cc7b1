#include "support/test_module.hpp"

namespace {

using namespace vexpers::test;

class ObjectOperations : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        widgetCalls = {};
    }
    const ModuleTypes& types = moduleTypes();
};

// Makes `type` the array form of `base`.
void arrayOf(Type& type, const kstd_persistentType* base, uint32_t derivation = kstd_persistentTypeDerivation_array) {
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(type, base, derivation), 0);
}

TEST_F(ObjectOperations, NewObjectReplacesWhatThePointerHolds) {
    LiveBlockCheck leaks;
    void* object = nullptr;
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    ASSERT_EQ(kstd_persistentType_newObject(types.widget, &object), 0);
    EXPECT_EQ(widgetCalls.constructed, 2);
    EXPECT_EQ(widgetCalls.destructed, 1);  // the first object went first
    // A failing destruct keeps the object and the pointer.
    widgetCalls.failDestructAt = widgetCalls.destructAttempts;
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), injectedFailure);
    EXPECT_NE(object, nullptr);
    EXPECT_EQ(kstd_persistentType_deleteObject(types.widget, &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(leaks.leaked(), 0);

    // Refusals, before anything is made.
    Type type;
    ASSERT_EQ(kstd_persistentType_resetTypeName(type, u"int"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(type, &object), C1);  // a core table has a size only
    ASSERT_EQ(kstd_persistentType_resetTypeName(type, u"k_Int128"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(type, &object), C0);  // a reserved name has no table
    arrayOf(type, types.widget);
    EXPECT_EQ(kstd_persistentType_newObject(type, &object), D6);
    ASSERT_EQ(kstd_persistentType_resetTypeName(type, u"NobodyRegisteredThis"), 0);
    EXPECT_EQ(kstd_persistentType_newObject(type, &object), C8);
    EXPECT_EQ(object, nullptr);
}

TEST_F(ObjectOperations, ArraysOfACoreType) {
    NoLeaks leaks;
    Type doubles, plain;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(doubles, u"double", 2), 0);
    void* array = nullptr;
    ASSERT_EQ(kstd_persistentType_newArray(doubles, 3, &array), 0);
    static_cast<double*>(array)[2] = 1.5;  // the whole block is usable

    EXPECT_EQ(kstd_persistentType_newArray(doubles, 1, &array), kstd_persistentResult_outputNotEmpty);
    EXPECT_EQ(kstd_persistentType_newArray(doubles, -1, &array), D7);
    int32_t count = 3;
    ASSERT_EQ(kstd_persistentType_deleteArray(doubles, &count, &array), 0);
    EXPECT_EQ(std::make_pair(count, array), std::make_pair(0, static_cast<void*>(nullptr)));

    ASSERT_EQ(kstd_persistentType_resetTypeName(plain, u"double"), 0);
    EXPECT_EQ(kstd_persistentType_newArray(plain, 1, &array), D6);
    EXPECT_EQ(kstd_persistentType_deleteArray(plain, &count, &array), D6);

}

TEST_F(ObjectOperations, ConstructOrDestructFailingMidArray) {
    NoLeaks leaks;
    Type widgets;
    arrayOf(widgets, types.widget);
    void* array = nullptr;
    widgetCalls.failConstructAt = 2;
    EXPECT_EQ(kstd_persistentType_newArray(widgets, 4, &array), injectedFailure);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(widgetCalls.constructed, 2);
    EXPECT_EQ(widgetCalls.destructed, 2);  // elements 1 and 0
    EXPECT_EQ(leaks.leaked(), 0);
    // The first element failing leaves nothing to destroy.
    widgetCalls = {};
    widgetCalls.failConstructAt = 0;
    EXPECT_EQ(kstd_persistentType_newArray(widgets, 4, &array), injectedFailure);
    EXPECT_EQ(widgetCalls.destructAttempts, 0);

    widgetCalls = {};
    ASSERT_EQ(kstd_persistentType_newArray(widgets, 3, &array), 0);
    auto* elements = static_cast<Widget*>(array);
    ASSERT_EQ(kstd_vector32s_pushBack(&elements[2].values, 5), 0);  // element 2 owns a block
    // Element 2 goes first; element 1 fails and stays, with element 0.
    widgetCalls.failDestructAt = 1;
    int32_t count = 3;
    EXPECT_EQ(kstd_persistentType_deleteArray(widgets, &count, &array), injectedFailure);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(array, elements);
    EXPECT_EQ(widgetCalls.destructed, 1);
    EXPECT_EQ(leaks.leaked(), 1);  // the array itself
    // The count tells the caller what is still alive.
    EXPECT_EQ(kstd_persistentType_deleteArray(widgets, &count, &array), 0);
    EXPECT_EQ(std::make_pair(count, array), std::make_pair(0, static_cast<void*>(nullptr)));
    EXPECT_EQ(widgetCalls.destructed, 2);
}

TEST_F(ObjectOperations, AssignObjectFromVariant) {
    NewWidget source, target;
    Variant variant;
    source->number = 42;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, types.widget, source.get()), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, target.get(), variant), 0);
    EXPECT_EQ(target->number, 42);
    EXPECT_EQ(widgetCalls.assigns, 1);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, nullptr, variant), CC);

    // Another object type, a core value, or no object.
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.inner, target.get(), variant), CD);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(variant, 3), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, target.get(), variant), CD);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, types.widget, nullptr), 0);
    EXPECT_EQ(kstd_persistentType_assignObjectFromVariant(types.widget, target.get(), variant), CC);
    EXPECT_EQ(widgetCalls.assigns, 1);
}

TEST_F(ObjectOperations, SetPropertyAndInterfaceQueryDispatchToTheType) {
    Widget widget{};
    Inner inner{};
    Variant value;
    Type core;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(value, 1), 0);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, &widget, u"number", value), 0);
    EXPECT_EQ(widgetCalls.lastPropertyName, u"number");
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.widget, nullptr, u"number", value), CC);
    EXPECT_EQ(widgetCalls.setProperty, 1);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(types.inner, &inner, u"count", value), C1);
    ASSERT_EQ(kstd_persistentType_resetTypeName(core, u"int"), 0);
    EXPECT_EQ(kstd_persistentType_setObjectPropertyFromVariant(core, &inner, u"count", value), C0);

    // The interface query; whether an object is shareable asks it too (the
    // type tests cover that).
    auto query = [](Expect code, const kstd_persistentType* type, void* object, const char16_t* name) {
        return outOf<void*>(code, kstd_persistentType_queryInterfaceByTypename, type, object, name);
    };
    EXPECT_EQ(query(0, types.widget, &widget, u"kstd_shared"), &widget.header);
    EXPECT_EQ(query(kstd_persistentResult_noInterfaceQuery, types.inner, &inner, u"kstd_shared"), nullptr);
}

TEST_F(ObjectOperations, ContainerDescriptions) {
    uint32_t contiguous = 9, stride = 9;
    const kstd_persistentContainerVtable* table = nullptr;
    Type item, type, vector;
    auto describe = [&](const kstd_persistentType* described) {
        return kstd_persistentType_getContainerVtableAndContainedItemType(described, &contiguous, &stride, &table,
                                                                          item);
    };

    // An array of objects: contiguous at the element size, no table.
    arrayOf(type, types.widget);
    ASSERT_EQ(describe(type), 0);
    EXPECT_EQ(std::make_pair(contiguous, stride), std::make_pair(1u, uint32_t{sizeof(Widget)}));
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(nameOf(item), u"TestWidget");
    EXPECT_EQ(derivationOf(item), 0u);

    // An enum has no size; a container's item type need not be registered.
    arrayOf(type, types.colorBits, kstd_persistentTypeDerivation_bitfieldArray);
    EXPECT_EQ(describe(type), C0);
    ASSERT_EQ(describe(types.looseBox), 0);
    EXPECT_EQ(nameOf(item), u"TestNeverRegisteredItem");
    EXPECT_EQ(outOf<uint32_t>(0, kstd_persistentType_getIsKnown, item), 0u);

    // Plain objects are no containers; the built-in vectors reach their table
    // through their "items" property only.
    EXPECT_EQ(describe(types.widget), D6);
    EXPECT_EQ(nameOf(item), u"(null)");  // reset on failure
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector32s(vector, 1), 0);
    EXPECT_EQ(describe(vector), D6);
}

}  // namespace
