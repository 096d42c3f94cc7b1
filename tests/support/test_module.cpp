#include "support/test_module.hpp"

#include <cstring>
#include <iterator>
#include <utility>

namespace vexpers::test {
namespace {

WidgetCalls& calls = widgetCalls;

// ---- Widget: object operations and interface query ---------------------------------

// The client template makes the widget a shared object; construct, assign and
// destruct count their calls (newObject and deleteObject go through them).
struct WidgetTraits {
    static constexpr const char16_t* name = u"TestWidget";
    static kstd_result construct(Widget& widget) {
        if (calls.constructAttempts++ == calls.failConstructAt) return injectedFailure;
        ++calls.constructed;
        return kstd_vector32s_construct(&widget.values);
    }
    static kstd_result destruct(Widget& widget) {
        if (calls.destructAttempts++ == calls.failDestructAt) return injectedFailure;
        ++calls.destructed;
        return kstd_vector32s_destruct(&widget.values);
    }
};
using WidgetOperations = vexpers::client::ObjectOperations<Widget, WidgetTraits>;

kstd_result widgetAssign(void* object, const void* source) {
    auto* widget = static_cast<Widget*>(object);
    const auto* from = static_cast<const Widget*>(source);
    ++calls.assigns;
    // Every member but the header and the vector is plain data.
    const kstd_shared header = widget->header;
    const kstd_vector32s values = widget->values;
    *widget = *from;
    widget->header = header;
    widget->values = values;
    return kstd_vector32s_assign(&widget->values, &from->values);
}

constexpr kstd_persistentObjectVtable widgetObjects{
    sizeOf<Widget>, WidgetOperations::construct, nullptr,   widgetAssign, WidgetOperations::destruct,
    noOp,           WidgetOperations::newObject, noOpClone, WidgetOperations::deleteObject};

// ---- Widget: value access -------------------------------------------------------------

const Widget& widgetOf(const void* object) { return *static_cast<const Widget*>(object); }

kstd_result widgetSetProperty(void*, const char16_t* name, const kstd_persistentVariant*) {
    ++calls.setProperty;
    calls.lastPropertyName = name;
    return 0;
}

kstd_result widgetTransfer(void* object, kstd_persistentPropertyBag* bag) {
    ++calls.transfers;
    if (bag->isStoring == 0) return 0;
    int twice = widgetOf(object).number * 2;
    return kstd_persistentPropertyBag_transferValue_int(bag, u"twice", nullptr, &twice);
}

constexpr kstd_persistentValueAccessVtable widgetAccess{nullptr, nullptr, nullptr,        widgetSetProperty,
                                                        nullptr, nullptr, widgetTransfer, nullptr,
                                                        nullptr};

// ---- Box: a container of int32 items -----------------------------------------------

using BoxOperations = ListOperations<Box, int32_t, 8>;

kstd_result registerNothing() { return 0; }

// ---- Declared properties -------------------------------------------------------------

// The address of a member; of the pointer member, the object it points at.
template <auto Member>
kstd_result memberAddress(const void* object, const void** member) {
    if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(widgetOf(object).*Member)>>)
        *member = widgetOf(object).*Member;
    else
        *member = &(widgetOf(object).*Member);
    return 0;
}
// A member's value; a value that is never the member's.
template <auto Member, class T>
kstd_result memberValue(const void* object, T* value) {
    *value = widgetOf(object).*Member;
    return 0;
}
template <class T, T Wrong>
kstd_result wrongValue(const void*, T* value) {
    *value = Wrong;
    return 0;
}
kstd_result innerCountAddress(const void* object, const void** member) {  // never preferred
    *member = &widgetOf(object).inner.count;
    return 0;
}
kstd_result wrongRatio(const void*, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValue_double(value, -1.0);
}
kstd_result doubledNumber(const void* object, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValue_k_Int32(value, widgetOf(object).number * 2);
}
kstd_result nullLink(const void*, kstd_persistentVariant* value) {
    kstd_persistentType link;
    kstd_persistentType_construct(&link);
    kstd_result result = kstd_persistentType_assignDifferentDerivation(&link, moduleTypes().inner, 1);
    if (result >= 0) result = kstd_persistentVariant_setValueUsingType(value, &link, nullptr);
    kstd_persistentType_destruct(&link);
    return result;
}

kstd_result vectorResize(void* container, int64_t count) {
    return kstd_vector32s_resize(static_cast<kstd_vector32s*>(container), count);
}
kstd_result vectorSize(const void* container, intptr_t* count) {
    return kstd_vector32s_getSizeIntPtr(static_cast<const kstd_vector32s*>(container), count);
}
kstd_result vectorBegin(void* container, void** first) {
    int32_t* begin = nullptr;
    const kstd_result result = kstd_vector32s_getBegin(static_cast<kstd_vector32s*>(container), &begin);
    *first = begin;
    return result;
}
constexpr kstd_persistentContainerVtable vectorTable{vectorResize,          vectorSize,          vectorBegin,
                                                     BoxOperations::layout, BoxOperations::next, nullptr};

kstd_result locateValues(void* object, void** first, void** second) {
    *first = &static_cast<Widget*>(object)->values;
    *second = const_cast<kstd_persistentContainerVtable*>(&vectorTable);
    return 0;
}
kstd_result loadDirectly(void*, const kstd_persistentType*, const kstd_persistentPropertyNode*) {
    return kstd_persistentResult_notSupported;
}
kstd_result loadMember(void*, void*, void*, const kstd_persistentType*, const kstd_persistentPropertyNode*) {
    return kstd_persistentResult_notSupported;
}
kstd_result registerColor();
kstd_result storeWhole(const void* object, kstd_persistentProperty* property) {
    return kstd_persistentProperty_resetInfoAndValue_int(property, u"stored", 7, widgetOf(object).number + 1);
}

constexpr auto colorOf = memberValue<&Widget::color, int64_t>;
constexpr auto flags32Of = memberValue<&Widget::flags32, uint32_t>;
constexpr auto flags64Of = memberValue<&Widget::flags64, uint64_t>;
const kstd_persistentPropertyInfoDefinition widgetDefinitions[]{
    {u"number", 1, u"k_Int32", 0,
     accessors({{4, word(memberAddress<&Widget::number>)}, {3, word(innerCountAddress)}})},
    {u"ratio", 2, u"double", 0, accessors({{3, word(memberAddress<&Widget::ratio>)}, {5, word(wrongRatio)}})},
    {u"doubled", 2, u"k_Int32", 0, accessors({{5, word(doubledNumber)}, {7, word(locateValues)}})},
    {u"values", 2, u"k_Int32", 2,
     accessors({{7, word(locateValues)}, {0, word(wrongValue<int64_t, -1>)}, {9, word(loadMember)}})},
    {u"color", 2, u"TestColor", 0,
     accessors({{0, word(colorOf)}, {1, word(wrongValue<uint32_t, 0xDEAD>)}, {10, word(registerColor)}})},
    {u"flags32", 2, u"TestColor", 4, accessors({{1, word(flags32Of)}, {2, word(wrongValue<uint64_t, 0xDEAD>)}})},
    {u"flags64", 2, u"TestColor", 4, accessors({{2, word(flags64Of)}})},
    {u"inner", 2, u"TestInner", 0, accessors({{4, word(memberAddress<&Widget::inner>)}, {8, word(loadDirectly)}})},
    {u"link", 2, u"TestInner", 1, accessors({{5, word(nullLink)}})},
    {u"next", 2, u"TestWidget", 1, accessors({{4, word(memberAddress<&Widget::next>)}})},
    // Word 6 fills the whole property and is preferred to all others.
    {u"stored", 2, u"int", 0, accessors({{6, word(storeWhole)}, {4, word(innerCountAddress)}})},
    // Words 11 and 12 are kept and never called: no property.
    {u"nothing", 2, u"k_Int32", 0, accessors({{11, &calls}, {12, &calls}})},
};
const kstd_persistentStaticPropertyList widgetProperties{widgetDefinitions, std::size(widgetDefinitions)};

kstd_result innerCount(const void* object, const void** member) {
    *member = &static_cast<const Inner*>(object)->count;
    return 0;
}
const kstd_persistentPropertyInfoDefinition innerDefinitions[]{
    {u"count", 2, u"k_Int32", 0, accessors({{4, word(innerCount)}})},
};
const kstd_persistentStaticPropertyList innerProperties{innerDefinitions, std::size(innerDefinitions)};

const kstd_persistentPropertyInfoDefinition brokenDefinitions[]{
    {u"lost", 2, u"TestNeverRegistered", 0, accessors({{4, word(memberAddress<&Widget::number>)}})},
};
const kstd_persistentStaticPropertyList brokenProperties{brokenDefinitions, std::size(brokenDefinitions)};

// ---- Registration -----------------------------------------------------------------

struct Registered {
    uint32_t widgetFlag, innerFlag, colorFlag, colorBitsFlag, boxFlag, looseBoxFlag, brokenFlag;
    kstd_persistentType widget, inner, color, colorBits, box, looseBox, broken;
};

Registered registered{};

kstd_result registerColor() {
    return kstd_persistentTypeRegisterTypeEnum(u"TestColor", 1, 2, 3, 4, &valueAccessTable, &valueAccessTable,
                                               nullptr, nullptr, &registered.colorFlag, &registered.colorBitsFlag,
                                               &registered.color, &registered.colorBits);
}

ModuleTypes registerModule() {
    Registered& r = registered;
    EXPECT_EQ(registerColor(), 0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"TestInner", &objectTableOf<Inner>, &valueAccessTable,
                                                    &innerProperties, 0, &r.innerFlag, &r.inner),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"TestWidget", &widgetObjects, &widgetAccess,
                                                           &widgetProperties, &WidgetOperations::minimal, 0, &r.widgetFlag,
                                                           &r.widget),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"TestBox", &objectTableOf<Box>, &valueAccessTable,
                                                             nullptr, &BoxOperations::table, u"k_Int32",
                                                             kstd_persistentTypeRegisterType_k_Int32, 0, &r.boxFlag,
                                                             &r.box),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectContainer(u"TestLooseBox", &objectTableOf<Box>, &valueAccessTable,
                                                             nullptr, &BoxOperations::table, u"TestNeverRegisteredItem",
                                                             registerNothing, 0, &r.looseBoxFlag, &r.looseBox),
              0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"TestBroken", &objectTableOf<Widget>, &valueAccessTable,
                                                    &brokenProperties, 0, &r.brokenFlag, &r.broken),
              0);
    return ModuleTypes{&r.widget, &r.inner, &r.color, &r.colorBits, &r.box, &r.looseBox, &r.broken};
}

}  // namespace

const kstd_persistentContainerVtable* boxOperations() { return &BoxOperations::table; }

const ModuleTypes& moduleTypes() {
    static const ModuleTypes types = registerModule();
    return types;
}

void startModule() {
    moduleTypes();
    // The vector and shared-pointer types the tests use.
    Type type;
    kstd_persistentTypeGetType_kstd_vector32s(type, 1);
    kstd_persistentTypeGetType_kstd_vectord(type, 1);
    kstd_persistentTypeGetType_kstd_vector8(type, 1);
    // The variant looks up the core types once; a first store interns the
    // names its properties bring and resolves the widget's entries.
    Variant variant;
    kstd_persistentVariant_setValue_int(variant, 0);
    NewWidget widget;
    Bag bag;
    kstd_persistentType_transferObjectPersistentProperties(moduleTypes().widget, widget.get(), bag);
}

}  // namespace vexpers::test
