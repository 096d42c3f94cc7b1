// Helpers of the property, bag and transfer tests: records that construct
// and destruct themselves, short readers, and a small family of registered
// test types whose declared properties use every kind of accessor.
#pragma once

#include <string>
#include <vector>

#include "types/type_test_support.hpp"

namespace vexpers::test::prop {

struct Property {
    Property() { kstd_persistentProperty_construct(&p); }
    ~Property() { kstd_persistentProperty_destruct(&p); }
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    kstd_persistentProperty p;
};

struct Bag {
    Bag() { kstd_persistentPropertyBag_construct(&b); }
    ~Bag() { kstd_persistentPropertyBag_destruct(&b); }
    Bag(const Bag&) = delete;
    Bag& operator=(const Bag&) = delete;
    int64_t slots() const { return b.propertySlots.base.size; }
    kstd_persistentPropertyBag b;
};

struct Variant {
    Variant() { kstd_persistentVariant_construct(&v); }
    ~Variant() { kstd_persistentVariant_destruct(&v); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    kstd_persistentVariant v;
};

inline std::u16string text(const char16_t* chars) {
    return chars != nullptr ? std::u16string(chars) : std::u16string(u"(null)");
}

inline std::u16string nameOf(const kstd_persistentProperty& property) {
    const char16_t* name = nullptr;
    kstd_persistentProperty_getName(&property, &name);
    return text(name);
}

// Names of the properties in use, in order.
inline std::vector<std::u16string> namesOf(const kstd_persistentPropertyBag& bag) {
    const kstd_persistentProperty* begin = nullptr;
    int32_t count = 0;
    kstd_persistentPropertyBag_getPropertiesBeginSizeConst(&bag, &begin, &count);
    std::vector<std::u16string> names;
    for (int32_t i = 0; i < count; ++i) names.push_back(nameOf(begin[i]));
    return names;
}

inline int32_t intOf(const kstd_persistentProperty& property) {
    int value = -1;
    EXPECT_EQ(kstd_persistentProperty_getValue_int(&property, &value), 0);
    return value;
}

// ---- Test types ------------------------------------------------------------------------

// A container of up to four ints, reached through a container table.
struct IntList {
    int32_t items[4];
    intptr_t size;
};

struct Inner {
    int32_t x;
};

struct Shape {
    int32_t width = 0;
    double ratio = 0;
    int64_t mood = 0;
    uint32_t bits = 0;
    uint64_t big = 0;
    IntList list{};
    Inner inner{};
    Shape* next = nullptr;
};

inline kstd_result listResize(void*, int64_t) { return 0; }
inline kstd_result listSize(const void* list, intptr_t* count) {
    *count = static_cast<const IntList*>(list)->size;
    return 0;
}
inline kstd_result listBegin(void* list, void** first) {
    *first = static_cast<IntList*>(list)->items;
    return 0;
}
inline kstd_result listLayout(uint32_t* contiguous, uint32_t* stride) {
    *contiguous = 1;
    *stride = 4;
    return 0;
}
inline kstd_result listNext(void*, void** element) {
    *element = static_cast<int32_t*>(*element) + 1;
    return 0;
}
inline const kstd_persistentContainerVtable listTable{listResize, listSize, listBegin, listLayout, listNext, nullptr};

inline const Shape& shapeOf(const void* object) { return *static_cast<const Shape*>(object); }
inline kstd_result widthAt(const void* o, const void** m) {
    *m = &shapeOf(o).width;
    return 0;
}
inline kstd_result ratioAt(const void* o, const void** m) {
    *m = &shapeOf(o).ratio;
    return 0;
}
inline kstd_result innerAt(const void* o, const void** m) {
    *m = &shapeOf(o).inner;
    return 0;
}
// A pointer member: the "address" handed out is the object pointed at.
inline kstd_result nextAt(const void* o, const void** m) {
    *m = shapeOf(o).next;
    return 0;
}
inline kstd_result moodOf(const void* o, int64_t* value) {
    *value = shapeOf(o).mood;
    return 0;
}
inline kstd_result bitsOf(const void* o, uint32_t* value) {
    *value = shapeOf(o).bits;
    return 0;
}
inline kstd_result bigOf(const void* o, uint64_t* value) {
    *value = shapeOf(o).big;
    return 0;
}
inline kstd_result listOf(void* o, void** first, void** second) {
    *first = &static_cast<Shape*>(o)->list;
    *second = const_cast<kstd_persistentContainerVtable*>(&listTable);
    return 0;
}
inline kstd_result areaOf(const void* o, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValue_double(value, shapeOf(o).width * shapeOf(o).ratio);
}
inline kstd_result labelOf(const void*, kstd_persistentProperty* property) {
    return kstd_persistentProperty_resetInfoAndValueStringW(property, u"label", 7, u"box");
}
inline kstd_result loadNothing(void*, const kstd_persistentType*, const kstd_persistentPropertyNode*) { return 0; }
inline kstd_result xAt(const void* o, const void** m) {
    *m = &static_cast<const Inner*>(o)->x;
    return 0;
}

// Calls of the shape type's own transfer; a storing bag gets "twice".
inline int transferCalls = 0;
inline kstd_result shapeTransfer(void* o, kstd_persistentPropertyBag* bag) {
    ++transferCalls;
    if (bag->isStoring == 0) return 0;
    int twice = shapeOf(o).width * 2;
    return kstd_persistentPropertyBag_transferValue_int(bag, u"twice", nullptr, &twice);
}
inline const kstd_persistentValueAccessVtable shapeAccess{nullptr, nullptr,       nullptr, nullptr, nullptr,
                                                          nullptr, shapeTransfer, nullptr, nullptr};

struct TestTypes {
    Target* mood;
    Target* moodBits;
    Target* inner;
    Target* shape;
    Target* broken;
};

// Registers, once: the enum "PropTestMood" (with a bit-field form), the
// object "PropTestInner" (x: int) and the object "PropTestShape", whose
// entries in order are width (address), ratio (second address), area
// (variant getter), label (store accessor), mood (enum), bits (32-bit bit
// field), big (64-bit bit field), items (container of ints), inner (an
// embedded PropTestInner), next (a pointer to a shape), hidden (loadable,
// no store accessor). "PropTestBroken" declares one property of a type that
// is never registered.
inline const TestTypes& testTypes() {
    static TestTypes types = [] {
        TestTypes t{&newTarget(), &newTarget(), &newTarget(), &newTarget(), &newTarget()};
        EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"PropTestMood", 0, 0, 0, 0, &valueAccessTable,
                                                      &bitfieldValueAccessTable, nullptr, nullptr, &t.mood->flag,
                                                      &t.moodBits->flag, &t.mood->handle, &t.moodBits->handle),
                  0);
        static kstd_persistentPropertyInfoDefinition innerList[1]{{u"x", 2, u"int", 0, {}}};
        innerList[0].accessors.slots.addressAccessor = xAt;
        static const kstd_persistentStaticPropertyList innerProperties{innerList, 1};
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"PropTestInner", &objectTable, &valueAccessTable,
                                                        &innerProperties, 0, &t.inner->flag, &t.inner->handle),
                  0);
        static kstd_persistentPropertyInfoDefinition shape[11]{
            {u"width", 1, u"int", 0, {}},           {u"ratio", 2, u"double", 0, {}},
            {u"area", 3, u"double", 0, {}},         {u"label", 2, u"stringW", 0, {}},
            {u"mood", 4, u"PropTestMood", 0, {}},   {u"bits", 5, u"PropTestMood", 4, {}},
            {u"big", 6, u"PropTestMood", 4, {}},    {u"items", 2, u"int", 2, {}},
            {u"inner", 2, u"PropTestInner", 0, {}}, {u"next", 2, u"PropTestShape", 1, {}},
            {u"hidden", 2, u"int", 0, {}}};
        shape[0].accessors.slots.addressAccessor = widthAt;
        shape[1].accessors.slots.secondAddressAccessor = ratioAt;
        shape[2].accessors.slots.variantGetter = areaOf;
        shape[3].accessors.slots.storeAccessor = labelOf;
        shape[4].accessors.slots.enumGetter = moodOf;
        shape[5].accessors.slots.bitfield32Getter = bitsOf;
        shape[6].accessors.slots.bitfield64Getter = bigOf;
        shape[7].accessors.slots.memberLocator = listOf;
        shape[8].accessors.slots.addressAccessor = innerAt;
        shape[9].accessors.slots.addressAccessor = nextAt;
        shape[10].accessors.slots.directLoadAccessor = loadNothing;
        static const kstd_persistentStaticPropertyList shapeProperties{shape, 11};
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"PropTestShape", &objectTable, &shapeAccess,
                                                        &shapeProperties, 0, &t.shape->flag, &t.shape->handle),
                  0);
        static kstd_persistentPropertyInfoDefinition broken[1]{{u"lost", 2, u"PropTestNeverRegistered", 0, {}}};
        broken[0].accessors.slots.addressAccessor = widthAt;
        static const kstd_persistentStaticPropertyList brokenProperties{broken, 1};
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"PropTestBroken", &objectTable, &valueAccessTable,
                                                        &brokenProperties, 0, &t.broken->flag, &t.broken->handle),
                  0);
        return t;
    }();
    return types;
}

}  // namespace vexpers::test::prop
