#include <string>

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;
using namespace vexpers::test::prop;

int32_t countOf(const kstd_persistentPropertyBag& bag) {
    const kstd_persistentProperty* begin = nullptr;
    int32_t count = -1;
    kstd_persistentPropertyBag_getPropertiesBeginSizeConst(&bag, &begin, &count);
    return count;
}

const kstd_persistentProperty* find(const kstd_persistentPropertyBag& bag, const char16_t* name) {
    const kstd_persistentProperty* found = reinterpret_cast<const kstd_persistentProperty*>(1);
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertyPtrConstUsingName(&bag, name, &found), 0);
    return found;
}

TEST(PropertyBag, RejectedAddsLeaveTheBagUnchanged) {
    Bag bag;
    EXPECT_EQ(bag.b.isStoring, 1);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"a", 2, 1), 0);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_double(&bag.b, u"a", 2, 1.5),
              kstd_persistentResult_duplicatePropertyName);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"", 2, 1), kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentPropertyBag_addValueStringW(&bag.b, nullptr, 2, u"x"),
              kstd_persistentResult_invalidPropertyName);
    Property unnamed;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(&unnamed.p, u"", 2, 3), 0);
    EXPECT_EQ(kstd_persistentPropertyBag_addProperty(&bag.b, &unnamed.p), kstd_persistentResult_invalidPropertyName);
    // Names differ by case.
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"A", 2, 2), 0);
    EXPECT_EQ(namesOf(bag.b), (std::vector<std::u16string>{u"a", u"A"}));
    EXPECT_EQ(intOf(*find(bag.b, u"a")), 1);
    EXPECT_EQ(find(bag.b, u"b"), nullptr);
    EXPECT_EQ(find(bag.b, nullptr), nullptr);
}

TEST(PropertyBag, FailedFillGivesTheSlotBack) {
    Bag bag;
    for (const char16_t* name : {u"a", u"b", u"c"})
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, name, 2, 1), 0);
    // Characters are declared but never held: the fill fails.
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_char(&bag.b, u"d", 2, 'd'), kstd_persistentResult_notSupported);
    EXPECT_EQ(countOf(bag.b), 3);
    EXPECT_EQ(bag.slots(), 3);
    // An unregistered type fails in the value step, after the name was set.
    TypeHandle unknown;
    ASSERT_EQ(kstd_persistentTypeGetType(u"PropTestUnknownValue", 0, 0, &unknown.t), 0);
    int value = 1;
    EXPECT_EQ(kstd_persistentPropertyBag_addValueUsingType(&bag.b, &unknown.t, u"d", 2, &value),
              kstd_persistentResult_typeNotRegistered);
    EXPECT_EQ(namesOf(bag.b), (std::vector<std::u16string>{u"a", u"b", u"c"}));
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"d", 2, 4), 0);

    // Emptied and refilled: the spare slots stay out of sight; a failed add
    // that reused a spare slot erases it.
    const kstd_persistentProperty* firstSlot = bag.b.propertiesBegin;
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(&bag.b), 0);
    EXPECT_EQ(bag.b.isStoring, 1);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"c", 2, 30), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"x", 2, 40), 0);
    EXPECT_EQ(countOf(bag.b), 2);
    EXPECT_EQ(bag.b.propertiesBegin, firstSlot);  // the records were reused in place
    EXPECT_EQ(find(bag.b, u"a"), nullptr);
    EXPECT_EQ(bag.slots(), 4);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_wchar_t(&bag.b, u"y", 2, u'y'), kstd_persistentResult_notSupported);
    EXPECT_EQ(namesOf(bag.b), (std::vector<std::u16string>{u"c", u"x"}));
    EXPECT_EQ(bag.slots(), 3);

    bag.b.isStoring = 0;
    ASSERT_EQ(kstd_persistentPropertyBag_reset(&bag.b), 0);
    EXPECT_EQ(bag.b.isStoring, 1);
    EXPECT_EQ(countOf(bag.b), 0);
}

TEST(PropertyBag, TransferInBothDirections) {
    Bag bag;
    int value = 5;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(&bag.b, u"n", nullptr, &value), 0);
    uint32_t access = 7;
    value = 6;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(&bag.b, u"m", &access, &value), 0);
    EXPECT_EQ(namesOf(bag.b), (std::vector<std::u16string>{u"n", u"m"}));

    bag.b.isStoring = 0;
    value = -1;
    access = 0;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(&bag.b, u"n", &access, &value), 0);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(access, 2u);  // the default when storing got no data access
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(&bag.b, u"m", &access, &value), 0);
    EXPECT_EQ(value, 6);
    EXPECT_EQ(access, 7u);
    EXPECT_EQ(kstd_persistentPropertyBag_transferValue_int(&bag.b, u"missing", &access, &value),
              kstd_persistentResult_propertyNotFound);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(countOf(bag.b), 2);  // reading never adds

    // The typed get writes the data access before converting; by type it is
    // written only after the value was read.
    bag.b.isStoring = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_k_Int64(&bag.b, u"big", 9, 300), 0);
    int8_t small = 1;
    access = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_getValue_k_Int8(&bag.b, u"big", &access, &small),
              kstd_persistentResult_valueOutOfRange);
    EXPECT_EQ(small, 0);
    EXPECT_EQ(access, 9u);
    TypeHandle ints;
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, &ints.t), 0);
    access = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_getValueUsingType(&bag.b, &ints.t, u"big", &access, &value),
              kstd_persistentResult_notSupported);
    EXPECT_EQ(access, 0u);
    EXPECT_EQ(kstd_persistentPropertyBag_getValueUsingType(&bag.b, &ints.t, u"m", &access, &value), 0);
    EXPECT_EQ(access, 7u);

    // Unicode strings go by address both ways.
    kstd_unicodeString string;
    kstd_unicodeString_construct(&string);
    kstd_unicodeString_assignStringW(&string, u"hello");
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_kstd_unicodeString(&bag.b, u"s", nullptr, &string), 0);
    kstd_unicodeString_reset(&string);
    bag.b.isStoring = 0;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_kstd_unicodeString(&bag.b, u"s", nullptr, &string), 0);
    const char16_t* chars = nullptr;
    kstd_unicodeString_getStringW(&string, &chars, nullptr);
    EXPECT_EQ(text(chars), u"hello");
    kstd_unicodeString_destruct(&string);
}

TEST(PropertyBag, PathsAndCopies) {
    const TestTypes& types = testTypes();
    Shape shape;
    shape.inner.x = 8;
    Bag bag;
    ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(&bag.b, &types.shape->handle, u"shape", 3, &shape), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"n", 2, 1), 0);
    Property found;
    ASSERT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"shape.inner.x", &found.p), 0);
    EXPECT_EQ(intOf(found.p), 8);
    ASSERT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"n", &found.p), 0);
    EXPECT_EQ(intOf(found.p), 1);
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"shap.inner", &found.p),
              kstd_persistentResult_propertyNotFound);
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"shape.", &found.p),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"", &found.p),
              kstd_persistentResult_invalidPropertyName);
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(&bag.b, u"n.x", &found.p),
              kstd_persistentResult_wrongTypeKind);

    // A copy has the same properties, spare slots and direction; so has a
    // property added from the bag's own slots.
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(&bag.b), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, u"only", 2, 3), 0);
    bag.b.isStoring = 0;
    kstd_persistentPropertyBag* copy = nullptr;
    ASSERT_EQ(kstd_persistentPropertyBag_newClone(&copy, &bag.b), 0);
    EXPECT_EQ(namesOf(*copy), std::vector<std::u16string>{u"only"});
    EXPECT_EQ(copy->propertySlots.base.size, 2);
    EXPECT_EQ(copy->isStoring, 0);
    EXPECT_EQ(copy->propertiesBegin, static_cast<kstd_persistentProperty*>(copy->propertySlots.base.begin));
    const kstd_persistentProperty& spare = copy->propertiesBegin[1];
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(const_cast<kstd_persistentProperty*>(&spare),
                                                            u"fromSpare", 2, 5),
              0);
    ASSERT_EQ(kstd_persistentPropertyBag_addProperty(copy, &spare), 0);
    EXPECT_EQ(namesOf(*copy), (std::vector<std::u16string>{u"only", u"fromSpare"}));
    EXPECT_EQ(kstd_persistentPropertyBag_delete(&copy), 0);
}

// Large bags answer through their name index exactly as the scan would,
// through adds, failed adds, emptying, refilling and copies.
TEST(PropertyBag, LargeBagsFindEveryName) {
    Bag bag;
    auto name = [](int i, const char16_t* prefix) {
        return std::u16string(prefix) + std::u16string(1, u'a' + i % 26) + std::u16string(1, u'a' + i / 26);
    };
    auto check = [&](const kstd_persistentPropertyBag& b, int count, const char16_t* prefix) {
        EXPECT_EQ(countOf(b), count);
        for (int i = 0; i < count; ++i) {
            const kstd_persistentProperty* found = find(b, name(i, prefix).c_str());
            ASSERT_EQ(found, &b.propertiesBegin[i]) << i;
        }
        EXPECT_EQ(find(b, name(count, prefix).c_str()), nullptr);
        EXPECT_EQ(find(b, (name(0, prefix) + u"x").c_str()), nullptr);
        EXPECT_EQ(find(b, name(0, prefix).substr(0, 2).c_str()), nullptr);
    };
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, name(i, u"p").c_str(), 2, i), 0);
        if (i % 37 == 0) {
            EXPECT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, name(i / 2, u"p").c_str(), 2, 0),
                      kstd_persistentResult_duplicatePropertyName);
            EXPECT_EQ(kstd_persistentPropertyBag_addValue_char(&bag.b, name(i, u"q").c_str(), 2, 'c'),
                      kstd_persistentResult_notSupported);
            EXPECT_EQ(find(bag.b, name(i, u"q").c_str()), nullptr);
        }
    }
    check(bag.b, 300, u"p");
    Bag copy;
    ASSERT_EQ(kstd_persistentPropertyBag_assign(&copy.b, &bag.b), 0);
    check(copy.b, 300, u"p");
    // Refilled with other names, then with the old ones again.
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(&bag.b), 0);
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, name(i, u"r").c_str(), 2, i), 0);
    check(bag.b, 40, u"r");
    EXPECT_EQ(find(bag.b, name(5, u"p").c_str()), nullptr);
    ASSERT_EQ(kstd_persistentPropertyBag_reset(&bag.b), 0);
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(&bag.b, name(i, u"p").c_str(), 2, i), 0);
    check(bag.b, 20, u"p");
}

// Every allocation of a series of adds may fail: each add either succeeds
// or leaves the bag as it was, and nothing leaks.
TEST(PropertyBag, AddsSurviveAllocationFailures) {
    Shape shape;
    const kstd_persistentType shapeType = testTypes().shape->handle;
    auto scenario = [&]() -> kstd_result {
        Bag bag;
        kstd_result first = 0;
        auto attempt = [&](int32_t expected, kstd_result result, const char16_t* name) {
            const int32_t count = countOf(bag.b);
            if (result < 0) {
                EXPECT_EQ(count, expected) << "after a failed add of " << std::string(name, name + 1);
                EXPECT_EQ(find(bag.b, name), nullptr);
                if (first == 0) first = result;
            } else {
                EXPECT_EQ(count, expected + 1);
                EXPECT_NE(find(bag.b, name), nullptr);
            }
        };
        for (int i = 0; i < 24; ++i) {
            const std::u16string name = u"n" + std::u16string(1, u'a' + i);
            const int32_t before = countOf(bag.b);
            attempt(before, kstd_persistentPropertyBag_addValue_int(&bag.b, name.c_str(), 2, i), name.c_str());
        }
        int32_t before = countOf(bag.b);
        attempt(before, kstd_persistentPropertyBag_addValueStringW(&bag.b, u"text", 2, u"a longer text value"),
                u"text");
        before = countOf(bag.b);
        attempt(before, kstd_persistentPropertyBag_addValueUsingType(&bag.b, &shapeType, u"obj", 2, &shape), u"obj");
        Property property;
        const kstd_result made =
            kstd_persistentProperty_resetInfoAndValueString32(&property.p, u"copied", 2, U"utf32");
        if (made < 0) return made;
        before = countOf(bag.b);
        attempt(before, kstd_persistentPropertyBag_addProperty(&bag.b, &property.p), u"copied");
        // Emptied and refilled over the spare slots.
        kstd_persistentPropertyBag_removeAllProperties(&bag.b);
        for (int i = 0; i < 20; ++i) {
            const std::u16string name = u"m" + std::u16string(1, u'a' + i);
            before = countOf(bag.b);
            attempt(before, kstd_persistentPropertyBag_addValueStringA(&bag.b, name.c_str(), 2, "eight bit text"),
                    name.c_str());
        }
        return first;
    };
    // A first run interns the names, which stay with the registry.
    EXPECT_EQ(scenario(), 0);
    EXPECT_GT(sweepAllocationFailures(scenario), 20);
}

TEST(PropertyBagSet, LoansGiveBackAndReset) {
    kstd_persistentPropertyBagSet set;
    ASSERT_EQ(kstd_persistentPropertyBagSet_construct(&set), 0);
    kstd_persistentPropertyBagSetNewBagGetter first, second, third;
    kstd_persistentPropertyBag* bag0 = nullptr;
    kstd_persistentPropertyBag* bag1 = nullptr;
    kstd_persistentPropertyBag* again = nullptr;
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&first, &set, &bag0), 0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&second, &set, &bag1), 0);
    EXPECT_EQ(first.index, 0);
    EXPECT_EQ(second.index, 1);
    EXPECT_NE(bag0, bag1);
    // A bag comes back as it was left.
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag0, u"left", 2, 1), 0);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_destruct(&first), 0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&third, &set, &again), 0);
    EXPECT_EQ(again, bag0);
    EXPECT_EQ(third.index, 0);
    EXPECT_EQ(countOf(*again), 1);
    EXPECT_EQ(set.numBags, 2);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_destruct(&third), 0);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_destruct(&second), 0);

    // After a reset the next loan is bag 0 again, and no bag is created.
    ASSERT_EQ(kstd_persistentPropertyBagSet_reset(&set), 0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&first, &set, &again), 0);
    EXPECT_EQ(again, bag0);
    EXPECT_EQ(set.numBags, 2);
    EXPECT_EQ(set.numHandedOut, 1);
    // A loan that fails to create its bag leaves the set as it was.
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&second, &set, &again), 0);
    EXPECT_EQ(again, bag1);
    ksys_memory_failAt(1, 1);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&third, &set, &again), ksys_result_outOfMemory);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(set.numBags, 2);
    EXPECT_EQ(set.numHandedOut, 2);
    kstd_persistentPropertyBagSetNewBagGetter_destruct(&first);
    kstd_persistentPropertyBagSetNewBagGetter_destruct(&second);
    kstd_persistentPropertyBagSetNewBagGetter_destruct(&third);  // nothing lent: nothing given back

    {
        AssertRecorder faults;
        kstd_persistentPropertyBagSet other;
        kstd_persistentPropertyBagSet_construct(&other);
        EXPECT_EQ(kstd_persistentPropertyBagSet_assign(&other, &set), ksys_result_preconditionFailed);
        EXPECT_EQ(kstd_persistentPropertyBagSet_assign(&set, &set), 0);
        EXPECT_EQ(faults.count(), 1);
        EXPECT_EQ(other.numBags, 0);
        kstd_persistentPropertyBagSet_destruct(&other);
    }
    EXPECT_EQ(kstd_persistentPropertyBagSet_destruct(&set), 0);
    EXPECT_EQ(set.bags, nullptr);
}

}  // namespace
