#include "support/test_module.hpp"

namespace {

using namespace vexpers::test;

class VariantObjects : public testing::Test {
protected:
    void SetUp() override {
        startModule();
        widgetCalls = {};
        ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(widgets, types.widget, 2), 0);
        ASSERT_EQ(kstd_persistentType_resetTypeNameAndDerivation(doubles, u"double", 2), 0);
    }
    const ModuleTypes& types = moduleTypes();
    Type widgets, doubles;  // arrays of each
};

TEST_F(VariantObjects, NewObjectsLiveWithTheLastCopyOrBelongToTheCaller) {
    LiveBlockCheck leaks;
    {
        Variant first, second;
        ASSERT_EQ(kstd_persistentVariant_resetNewObject(first, types.widget), 0);
        auto* widget = static_cast<Widget*>(first->value.pointer);
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(outOf<kstd_shared*>(0, kstd_persistentVariant_getShared, first), &widget->header);

        ASSERT_EQ(kstd_persistentVariant_assign(second, first), 0);
        ASSERT_EQ(kstd_persistentVariant_reset(first), 0);
        EXPECT_EQ(widgetCalls.destructed, 0);
        ASSERT_EQ(kstd_persistentVariant_setValue_int(second, 1), 0);  // any set lets go
        EXPECT_EQ(widgetCalls.destructed, 1);

        // A failing creation leaves the type and no value.
        widgetCalls.failConstructAt = widgetCalls.constructAttempts;
        EXPECT_EQ(kstd_persistentVariant_resetNewObject(first, types.widget), injectedFailure);
        EXPECT_EQ(first->value.pointer, nullptr);
        EXPECT_EQ(nameOf(first->type), u"TestWidget");
    }
    EXPECT_EQ(leaks.leaked(), 0);

    // An object without a shared interface belongs to the caller.
    Type vectord;
    Variant variant;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vectord(vectord, 1), 0);
    ASSERT_EQ(kstd_persistentVariant_resetNewObject(variant, vectord), 0);
    void* object = variant->value.pointer;
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(outOf<kstd_shared*>(0, kstd_persistentVariant_getShared, variant), nullptr);
    ASSERT_EQ(kstd_persistentVariant_reset(variant), 0);
    EXPECT_EQ(leaks.leaked(), 1);
    EXPECT_EQ(kstd_persistentType_deleteObject(vectord, &object), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    // Values that are no objects.
    ASSERT_EQ(kstd_persistentVariant_setValue_int(variant, 1), 0);
    EXPECT_EQ(outOf<kstd_shared*>(D6, kstd_persistentVariant_getShared, variant), nullptr);
}

TEST_F(VariantObjects, AllocatedArrayLivesWithTheLastCopy) {
    NoLeaks leaks;
    Variant first, third;
    void* data = nullptr;
    uint32_t size = 0;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(first, widgets, 3, &data, &size), 0);
    EXPECT_EQ(widgetCalls.constructed, 3);
    EXPECT_EQ(size, sizeof(Widget));
    ASSERT_EQ(kstd_vector32s_pushBack(&static_cast<Widget*>(data)[1].values, 8), 0);

    ASSERT_EQ(kstd_persistentVariant_assign(third, first), 0);
    ASSERT_EQ(kstd_persistentVariant_reset(first), 0);
    EXPECT_EQ(widgetCalls.destructed, 0);
    EXPECT_EQ(static_cast<Widget*>(third->value.pointer)[1].values.base.size, 1);
    ASSERT_EQ(kstd_persistentVariant_reset(third), 0);
    EXPECT_EQ(widgetCalls.destructed, 3);
}

TEST_F(VariantObjects, AllocatedArrayRefusals) {
    LiveBlockCheck leaks;
    Variant variant;
    Type empty;
    void* data = &data;
    uint32_t size = 7;

    // A negative count is refused before the type is looked at; a type that
    // is no array leaves the variant as it was.
    ASSERT_EQ(kstd_persistentVariant_setValue_int(variant, 5), 0);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(variant, empty, -1, &data, &size), D7);
    EXPECT_EQ(std::make_pair(data, size), std::make_pair(static_cast<void*>(nullptr), 0u));
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(variant, types.widget, 2, nullptr, nullptr), D6);
    EXPECT_EQ(outOf<int>(0, kstd_persistentVariant_getValue_int, variant), 5);

    // Elements that fail to construct leave the array type with no array.
    widgetCalls.failConstructAt = 1;
    EXPECT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(variant, widgets, 3, &data, nullptr),
              injectedFailure);
    EXPECT_EQ(std::make_pair(variant->value.pointer, variant->arrayCount), std::make_pair((void*)nullptr, int64_t{0}));
    EXPECT_EQ(derivationOf(&variant->type), 2u);
    EXPECT_EQ(widgetCalls.destructed, 1);
    ASSERT_EQ(kstd_persistentVariant_reset(variant), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    sweepAllocationFailures(
        [&] { return kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(variant, widgets, 4, &data, &size); },
        [&] { kstd_persistentVariant_reset(variant); });
}

TEST_F(VariantObjects, ContainerOfAnAllocatedArray) {
    Variant variant;
    Type element;
    void* data = nullptr;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(variant, doubles, 4, &data, nullptr), 0);

    void* container = &data;
    uint32_t containerValue = 9, elementSize = 0;
    void* first = nullptr;
    intptr_t count = 0;
    const kstd_persistentContainerVtable* table = boxOperations();
    auto describe = [&] {
        return kstd_persistentVariant_getContainer(variant, &container, &containerValue, &elementSize, &first, &count,
                                                   &table, element);
    };
    ASSERT_EQ(describe(), 0);
    EXPECT_EQ(std::make_pair(container, first), std::make_pair(static_cast<void*>(nullptr), data));
    EXPECT_EQ(table, nullptr);

    // An element count beyond 32 bits, and values that are no arrays.
    variant->arrayCount = int64_t{1} << 32;
    EXPECT_EQ(describe(), kstd_persistentResult_arraySizeOverflow);
    variant->arrayCount = 4;
    ASSERT_EQ(kstd_persistentVariant_setValue_int(variant, 1), 0);
    EXPECT_EQ(describe(), D6);
    EXPECT_EQ(nameOf(element), u"(null)");
}

}  // namespace
