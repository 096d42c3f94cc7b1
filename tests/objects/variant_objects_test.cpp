#include "objects/test_module.hpp"

namespace {

using namespace vexpers::test;

constexpr kstd_result D6 = kstd_persistentResult_wrongTypeKind;

class VariantObjects : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        resetWidgetCalls();
    }
    const ModuleTypes& types = moduleTypes();
};

TEST_F(VariantObjects, NewSharedObjectLivesWithTheLastCopy) {
    LiveBlockCheck leaks;
    {
        VariantBox first;
        ASSERT_EQ(kstd_persistentVariant_resetNewObject(&first.v, types.widget), 0);
        auto* widget = static_cast<Widget*>(first.v.value.pointer);
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(first.v.isBorrowed, 0u);
        kstd_shared* shared = nullptr;
        EXPECT_EQ(kstd_persistentVariant_getShared(&first.v, &shared), 0);
        EXPECT_EQ(shared, &widget->header);

        VariantBox second;
        ASSERT_EQ(kstd_persistentVariant_assign(&second.v, &first.v), 0);
        ASSERT_EQ(kstd_persistentVariant_reset(&first.v), 0);
        EXPECT_EQ(widgetCalls().destructed, 0);
        EXPECT_EQ(second.v.value.pointer, widget);
        ASSERT_EQ(kstd_persistentVariant_setValue_int(&second.v, 1), 0);  // any set lets go
        EXPECT_EQ(widgetCalls().destructed, 1);

        // A failing creation leaves the type and no value.
        widgetCalls().failConstructAt = widgetCalls().constructAttempts;
        EXPECT_EQ(kstd_persistentVariant_resetNewObject(&first.v, types.widget), injectedFailure);
        EXPECT_EQ(first.v.value.pointer, nullptr);
        EXPECT_EQ(typeName(first.v.type), u"TestWidget");
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(VariantObjects, NewObjectWithoutASharedInterfaceBelongsToTheCaller) {
    LiveBlockCheck leaks;
    Handle vectord;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vectord(&vectord.t, 1), 0);
    VariantBox variant;
    ASSERT_EQ(kstd_persistentVariant_resetNewObject(&variant.v, &vectord.t), 0);
    void* object = variant.v.value.pointer;
    ASSERT_NE(object, nullptr);
    kstd_shared* shared = reinterpret_cast<kstd_shared*>(1);
    EXPECT_EQ(kstd_persistentVariant_getShared(&variant.v, &shared), 0);
    EXPECT_EQ(shared, nullptr);
    ASSERT_EQ(kstd_persistentVariant_reset(&variant.v), 0);
    EXPECT_EQ(leaks.leaked(), 1);
    EXPECT_EQ(kstd_persistentType_deleteObject(&vectord.t, &object), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    // Types that make no objects.
    Handle core;
    ASSERT_EQ(kstd_persistentType_resetTypeName(&core.t, u"int"), 0);
    EXPECT_EQ(kstd_persistentVariant_resetNewObject(&variant.v, &core.t), kstd_persistentResult_operationMissing);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 1), 0);
    EXPECT_EQ(kstd_persistentVariant_getShared(&variant.v, &shared), D6);
    ASSERT_EQ(kstd_persistentVariant_reset(&variant.v), 0);
    EXPECT_EQ(kstd_persistentVariant_getShared(&variant.v, &shared), kstd_persistentResult_typeEmpty);
}

TEST_F(VariantObjects, AllocatedArrayLivesWithTheLastCopy) {
    LiveBlockCheck leaks;
    Handle widgets;
    derive(widgets, types.widget, kstd_persistentTypeDerivation_array);
    {
        VariantBox first;
        void* data = nullptr;
        uint32_t size = 0;
        ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&first.v, &widgets.t, 3, &data, &size), 0);
        EXPECT_EQ(widgetCalls().constructed, 3);
        EXPECT_EQ(data, first.v.value.pointer);
        EXPECT_EQ(size, sizeof(Widget));
        EXPECT_EQ(first.v.arrayCount, 3);
        ASSERT_EQ(kstd_vector32s_pushBack(&static_cast<Widget*>(data)[1].values, 8), 0);

        kstd_persistentVariant second;
        ASSERT_EQ(kstd_persistentVariant_constructCopy(&second, &first.v), 0);
        ASSERT_EQ(kstd_persistentVariant_reset(&first.v), 0);
        EXPECT_EQ(widgetCalls().destructed, 0);
        intptr_t items = 0;
        kstd_vector32s_getSizeIntPtr(&static_cast<Widget*>(second.value.pointer)[1].values, &items);
        EXPECT_EQ(items, 1);
        VariantBox third;
        ASSERT_EQ(kstd_persistentVariant_assign(&third.v, &second), 0);
        ASSERT_EQ(kstd_persistentVariant_destruct(&second), 0);
        EXPECT_EQ(widgetCalls().destructed, 0);
        ASSERT_EQ(kstd_persistentVariant_reset(&third.v), 0);
        EXPECT_EQ(widgetCalls().destructed, 3);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST_F(VariantObjects, AllocatedArrayRefusals) {
    LiveBlockCheck leaks;
    VariantBox variant;
    Handle doubles;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&doubles.t, u"double", 2), 0);
    void* data = &data;
    uint32_t size = 7;

    // Count 0 is an empty allocated array.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, &doubles.t, 0, &data, &size), 0);
    EXPECT_EQ(variant.v.arrayCount, 0);
    EXPECT_EQ(size, 8u);

    // A negative count is refused before the type is looked at; a type that
    // is no array leaves the variant as it was.
    Handle empty;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 5), 0);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, &empty.t, -1, &data, &size),
              kstd_persistentResult_invalidCount);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, types.widget, 2, nullptr, nullptr),
              D6);
    int32_t value = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_int(&variant.v, &value), 0);
    EXPECT_EQ(value, 5);

    // Elements that fail to construct leave the array type with no array.
    Handle widgets;
    derive(widgets, types.widget, kstd_persistentTypeDerivation_array);
    widgetCalls().failConstructAt = 1;
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, &widgets.t, 3, &data, nullptr),
              injectedFailure);
    EXPECT_EQ(variant.v.value.pointer, nullptr);
    EXPECT_EQ(variant.v.arrayCount, 0);
    EXPECT_EQ(derivationOf(variant.v.type), 2u);
    EXPECT_EQ(widgetCalls().destructed, 1);
    ASSERT_EQ(kstd_persistentVariant_reset(&variant.v), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    sweepAllocationFailures(
        [&] { return kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, &widgets.t, 4, &data, &size); },
        [&] { kstd_persistentVariant_reset(&variant.v); });
}

TEST_F(VariantObjects, ContainerOfAnAllocatedArray) {
    VariantBox variant;
    Handle doubles;
    ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(&doubles.t, u"double", 2), 0);
    void* data = nullptr;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(&variant.v, &doubles.t, 4, &data, nullptr), 0);

    void* container = &data;
    uint32_t containerValue = 9, elementSize = 0;
    void* first = nullptr;
    intptr_t count = 0;
    const kstd_persistentContainerVtable* table = reinterpret_cast<const kstd_persistentContainerVtable*>(&data);
    Handle element;
    ASSERT_EQ(kstd_persistentVariant_getContainer(&variant.v, &container, &containerValue, &elementSize, &first,
                                                  &count, &table, &element.t),
              0);
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(containerValue, 0u);
    EXPECT_EQ(elementSize, 8u);
    EXPECT_EQ(first, data);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(typeName(element.t), u"double");
    EXPECT_EQ(derivationOf(element.t), 0u);

    // An element count beyond 32 bits, and values that are no arrays.
    variant.v.arrayCount = int64_t{1} << 32;
    EXPECT_EQ(kstd_persistentVariant_getContainer(&variant.v, &container, &containerValue, &elementSize, &first,
                                                  &count, &table, &element.t),
              kstd_persistentResult_arraySizeOverflow);
    variant.v.arrayCount = 4;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&variant.v, 1), 0);
    EXPECT_EQ(kstd_persistentVariant_getContainer(&variant.v, &container, &containerValue, &elementSize, &first,
                                                  &count, &table, &element.t),
              D6);
    EXPECT_EQ(typeName(element.t), u"(null)");
}

}  // namespace
