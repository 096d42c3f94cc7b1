#include "objects/test_module.hpp"

#include <cstring>

namespace vexpers::test {
namespace {

WidgetCalls calls;

// ---- Widget: object operations ---------------------------------------------------

kstd_result widgetSize(uint32_t* size) {
    *size = sizeof(Widget);
    return 0;
}

kstd_result widgetDelete(void** object);

kstd_result destroySharedWidget(kstd_shared* shared) {
    void* whole = shared->whole;
    return widgetDelete(&whole);
}

constexpr kstd_sharedCustom widgetCounting{destroySharedWidget, nullptr, nullptr};

kstd_result widgetConstruct(void* object) {
    if (calls.constructAttempts++ == calls.failConstructAt) return injectedFailure;
    auto* widget = static_cast<Widget*>(object);
    std::memset(widget, 0, sizeof(Widget));
    kstd_shared_initCustom(&widget->header, widget, &widgetCounting);
    kstd_vector32s_construct(&widget->values);
    ++calls.constructed;
    return 0;
}

kstd_result widgetAssign(void* object, const void* source) {
    auto* widget = static_cast<Widget*>(object);
    const auto* from = static_cast<const Widget*>(source);
    ++calls.assigns;
    widget->number = from->number;
    widget->ratio = from->ratio;
    widget->color = from->color;
    widget->flags32 = from->flags32;
    widget->flags64 = from->flags64;
    widget->inner = from->inner;
    return kstd_vector32s_assign(&widget->values, &from->values);
}

kstd_result widgetConstructCopy(void* object, const void* source) {
    if (kstd_result result = widgetConstruct(object); result < 0) return result;
    return widgetAssign(object, source);
}

kstd_result widgetDestruct(void* object) {
    if (calls.destructAttempts++ == calls.failDestructAt) return injectedFailure;
    kstd_vector32s_destruct(&static_cast<Widget*>(object)->values);
    ++calls.destructed;
    return 0;
}

kstd_result widgetReset(void* object) {
    auto* widget = static_cast<Widget*>(object);
    widget->number = 0;
    widget->ratio = 0;
    return kstd_vector32s_clear(&widget->values);
}

kstd_result widgetNew(void** object) {
    if (*object != nullptr)
        if (kstd_result result = widgetDelete(object); result < 0) return result;
    void* memory = nullptr;
    if (kstd_result result = ksys_memory_alloc_internal(sizeof(Widget), &memory); result < 0) return result;
    if (kstd_result result = widgetConstruct(memory); result < 0) {
        ksys_memory_free_internal(&memory);
        return result;
    }
    *object = memory;
    return 0;
}

kstd_result widgetNewClone(void** object, const void* source) {
    if (source == nullptr) return widgetDelete(object);
    if (kstd_result result = widgetNew(object); result < 0) return result;
    return widgetAssign(*object, source);
}

kstd_result widgetDelete(void** object) {
    if (*object == nullptr) return 0;
    if (kstd_result result = widgetDestruct(*object); result < 0) return result;
    return ksys_memory_free_internal(object);
}

constexpr kstd_persistentObjectVtable widgetObjects{widgetSize,     widgetConstruct, widgetConstructCopy,
                                                    widgetAssign,   widgetDestruct,  widgetReset,
                                                    widgetNew,      widgetNewClone,  widgetDelete};

// ---- Widget: interface query and value access ------------------------------------

kstd_result widgetQuery(void* object, const char16_t* name, void** result) {
    *result = nullptr;
    if (std::u16string(name) == u"kstd_shared") *result = &static_cast<Widget*>(object)->header;
    return 0;
}

kstd_result widgetTypename(const void*, const char16_t** name) {
    *name = u"TestWidget";
    return 0;
}

constexpr kstd_typeDescriptorMinimalVtable widgetMinimal{widgetQuery, widgetTypename};

kstd_result widgetSetProperty(void*, const char16_t* name, const kstd_persistentVariant*) {
    ++calls.setProperty;
    calls.lastPropertyName = name;
    return 0;
}

kstd_result widgetTransfer(void*, kstd_persistentPropertyBag*) {
    ++calls.transfers;
    return 0;
}

constexpr kstd_persistentValueAccessVtable widgetAccess{nullptr, nullptr, nullptr,        widgetSetProperty,
                                                        nullptr, nullptr, widgetTransfer, nullptr,
                                                        nullptr};

// ---- Plain object operations of the small types ------------------------------------

template <class T>
kstd_result sizeOf(uint32_t* size) {
    *size = sizeof(T);
    return 0;
}
template <class T>
kstd_result zero(void* object) {
    std::memset(object, 0, sizeof(T));
    return 0;
}
template <class T>
kstd_result copy(void* object, const void* source) {
    std::memcpy(object, source, sizeof(T));
    return 0;
}
kstd_result nothing(void*) { return 0; }
template <class T>
kstd_result make(void** object) {
    if (*object != nullptr) ksys_memory_free_internal(object);
    if (kstd_result result = ksys_memory_alloc_internal(sizeof(T), object); result < 0) return result;
    return zero<T>(*object);
}
template <class T>
kstd_result clone(void** object, const void* source) {
    if (kstd_result result = make<T>(object); result < 0) return result;
    return copy<T>(*object, source);
}
kstd_result unmake(void** object) { return ksys_memory_free_internal(object); }

template <class T>
constexpr kstd_persistentObjectVtable plainObjects{sizeOf<T>, zero<T>,   copy<T>,  copy<T>,  nothing,
                                                   zero<T>,   make<T>,   clone<T>, unmake};

constexpr kstd_persistentValueAccessVtable emptyAccess{};

// ---- Box: a container of int32 items -----------------------------------------------

kstd_result boxResize(void* container, int64_t count) {
    if (count < 0 || count > 8) return kstd_persistentResult_invalidCount;
    static_cast<Box*>(container)->count = static_cast<intptr_t>(count);
    return 0;
}
kstd_result boxSize(const void* container, intptr_t* count) {
    *count = static_cast<const Box*>(container)->count;
    return 0;
}
kstd_result boxBegin(void* container, void** first) {
    *first = static_cast<Box*>(container)->items;
    return 0;
}
kstd_result int32Layout(uint32_t* isContiguous, uint32_t* stride) {
    *isContiguous = 1;
    *stride = 4;
    return 0;
}
kstd_result int32Next(void*, void** element) {
    *element = static_cast<int32_t*>(*element) + 1;
    return 0;
}

constexpr kstd_persistentContainerVtable boxTable{boxResize, boxSize, boxBegin, int32Layout, int32Next, nullptr};

kstd_result registerNothing() { return 0; }

// ---- Registration -----------------------------------------------------------------

struct Registered {
    uint32_t widgetFlag, innerFlag, colorFlag, colorBitsFlag, boxFlag, looseBoxFlag;
    kstd_persistentType widget, inner, color, colorBits, box, looseBox;
    ModuleTypes types;
};

Registered registered{};

kstd_result registerColor() {
    return kstd_persistentTypeRegisterTypeEnum(u"TestColor", 1, 2, 3, 4, &emptyAccess, &emptyAccess, nullptr,
                                               nullptr, &registered.colorFlag, &registered.colorBitsFlag,
                                               &registered.color, &registered.colorBits);
}

ModuleTypes registerModule() {
    EXPECT_EQ(registerColor(), 0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"TestInner", &plainObjects<Inner>, &emptyAccess, nullptr, 0,
                                                    &registered.innerFlag, &registered.inner),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"TestWidget", &widgetObjects, &widgetAccess, nullptr,
                                                           &widgetMinimal, 0, &registered.widgetFlag,
                                                           &registered.widget),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(
                  u"TestBox", &plainObjects<Box>, &emptyAccess, nullptr, &boxTable, u"k_Int32",
                  kstd_persistentTypeRegisterType_k_Int32, 0, &registered.boxFlag, &registered.box),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"TestLooseBox", &plainObjects<Box>, &emptyAccess,
                                                             nullptr, &boxTable, u"TestNeverRegisteredItem",
                                                             registerNothing, 0, &registered.looseBoxFlag,
                                                             &registered.looseBox),
              0);
    return ModuleTypes{&registered.widget, &registered.inner, &registered.color,
                       &registered.colorBits, &registered.box, &registered.looseBox};
}

}  // namespace

WidgetCalls& widgetCalls() { return calls; }

const ModuleTypes& moduleTypes() {
    static const ModuleTypes types = registerModule();
    return types;
}

void startModule() {
    moduleTypes();
    // The vector and shared-pointer types the tests use.
    Handle type;
    kstd_persistentTypeGetType_kstd_vector32s(&type.t, 1);
    kstd_persistentTypeGetType_kstd_vectord(&type.t, 1);
    kstd_persistentTypeGetType_kstd_vector8(&type.t, 1);
    // The variant looks up the core types once.
    VariantBox variant;
    kstd_persistentVariant_setValue_int(&variant.v, 0);
}

}  // namespace vexpers::test
