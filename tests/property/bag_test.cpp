#include <string>

#include "property/property_test_support.hpp"

namespace {

using namespace vexpers::test;

using Names = std::vector<std::u16string>;

const kstd_persistentProperty* find(const kstd_persistentPropertyBag* bag, const char16_t* name) {
    return outOf<const kstd_persistentProperty*>(0, kstd_persistentPropertyBag_getPropertyPtrConstUsingName, bag, name);
}

TEST(PropertyBag, RejectedAddsLeaveTheBagUnchanged) {
    Bag bag;
    Property unnamed;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"a", 2, 1), 0);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_double(bag, u"a", 2, 1.5),
              kstd_persistentResult_duplicatePropertyName);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"", 2, 1), C3);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(unnamed, u"", 2, 3), 0);
    EXPECT_EQ(kstd_persistentPropertyBag_addProperty(bag, unnamed), C3);
    // Names differ by case.
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"A", 2, 2), 0);
    EXPECT_EQ(namesOf(bag), (Names{u"a", u"A"}));
    EXPECT_EQ(outOf<int>(0, kstd_persistentProperty_getValue_int, find(bag, u"a")), 1);
    EXPECT_EQ(find(bag, nullptr), nullptr);
}

TEST(PropertyBag, FailedFillGivesTheSlotBack) {
    Bag bag;
    Type unknown;
    for (const char16_t* name : {u"a", u"b", u"c"})
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, name, 2, 1), 0);
    // Characters are declared but never held: the fill fails.
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_char(bag, u"d", 2, 'd'), CA);
    EXPECT_EQ(bag->propertySlots.base.size, 3);
    // An unregistered type fails in the value step, after the name was set.
    ASSERT_EQ(kstd_persistentTypeGetType(u"PropTestUnknownValue", 0, 0, unknown), 0);
    int value = 1;
    EXPECT_EQ(kstd_persistentPropertyBag_addValueUsingType(bag, unknown, u"d", 2, &value), C8);
    EXPECT_EQ(namesOf(bag), (Names{u"a", u"b", u"c"}));
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"d", 2, 4), 0);

    // Emptied and refilled: the spare slots stay out of sight; a failed add
    // that reused a spare slot erases it.
    const kstd_persistentProperty* firstSlot = bag->propertiesBegin;
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(bag), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"c", 2, 30), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"x", 2, 40), 0);
    EXPECT_EQ(bag->propertiesBegin, firstSlot);  // the records were reused in place
    EXPECT_EQ(find(bag, u"a"), nullptr);
    EXPECT_EQ(bag->propertySlots.base.size, 4);
    EXPECT_EQ(kstd_persistentPropertyBag_addValue_wchar_t(bag, u"y", 2, u'y'), CA);
    EXPECT_EQ(namesOf(bag), (Names{u"c", u"x"}));
    EXPECT_EQ(bag->propertySlots.base.size, 3);

}

TEST(PropertyBag, TransferInBothDirections) {
    Bag bag;
    Type ints;
    int value = 5;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(bag, u"n", nullptr, &value), 0);
    uint32_t access = 7;
    value = 6;
    ASSERT_EQ(kstd_persistentPropertyBag_transferValue_int(bag, u"m", &access, &value), 0);
    EXPECT_EQ(namesOf(bag), (Names{u"n", u"m"}));

    bag->isStoring = 0;
    access = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_transferValue_int(bag, u"n", &access, &value), 0);
    EXPECT_EQ(std::make_pair(value, access), std::make_pair(5, 2u));  // 2 when storing got no data access
    EXPECT_EQ(kstd_persistentPropertyBag_transferValue_int(bag, u"m", &access, &value), 0);
    EXPECT_EQ(std::make_pair(value, access), std::make_pair(6, 7u));
    EXPECT_EQ(kstd_persistentPropertyBag_transferValue_int(bag, u"missing", &access, &value), C9);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(namesOf(bag).size(), 2u);  // reading never adds

    // The typed get writes the data access before converting; by type it is
    // written only after the value was read.
    bag->isStoring = 1;
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_k_Int64(bag, u"big", 9, 300), 0);
    int8_t small = 1;
    access = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_getValue_k_Int8(bag, u"big", &access, &small), D0);
    EXPECT_EQ(std::make_pair(small, access), std::make_pair(int8_t{0}, 9u));
    ASSERT_EQ(kstd_persistentTypeGetType(u"int", 0, 1, ints), 0);
    access = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_getValueUsingType(bag, ints, u"big", &access, &value), CA);
    EXPECT_EQ(access, 0u);
}

// A path's first part names a property of the bag, the rest goes through
// the variant's paths (tested with the object values).
TEST(PropertyBag, PathsAndSpareSlots) {
    Widget widget{};
    widget.inner.count = 8;
    Bag bag;
    Property found;
    ASSERT_EQ(kstd_persistentPropertyBag_addValueUsingType(bag, moduleTypes().widget, u"widget", 3, &widget), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"n", 2, 1), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(bag, u"widget.inner.count", found), 0);
    EXPECT_EQ(outOf<int32_t>(0, kstd_persistentProperty_getValue_k_Int32, found), 8);
    for (auto [path, code] : {std::pair{u"widge.inner", C9}, {u"widget.", C3}, {u"", C3}, {u"n.x", D6}})
        EXPECT_EQ(kstd_persistentPropertyBag_getPropertyUsingName(bag, path, found), code) << ascii(path);

    // A property added from the bag's own spare slot.
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(bag), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"only", 2, 3), 0);
    kstd_persistentProperty* spare = bag->propertiesBegin + 1;
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_int(spare, u"fromSpare", 2, 5), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addProperty(bag, spare), 0);
    EXPECT_EQ(namesOf(bag), (Names{u"only", u"fromSpare"}));
}

// Large bags answer through their name index exactly as the scan would,
// through adds, failed adds, emptying, refilling and copies.
TEST(PropertyBag, LargeBagsFindEveryName) {
    Bag bag, copy;
    auto name = [](int i, const char16_t* prefix) {
        return std::u16string(prefix) + std::u16string(1, u'a' + i % 26) + std::u16string(1, u'a' + i / 26);
    };
    auto check = [&](const kstd_persistentPropertyBag* b, int count, const char16_t* prefix) {
        EXPECT_EQ(b->numProperties, count);
        for (int i = 0; i < count; ++i) ASSERT_EQ(find(b, name(i, prefix).c_str()), &b->propertiesBegin[i]) << i;
        EXPECT_EQ(find(b, name(count, prefix).c_str()), nullptr);
        EXPECT_EQ(find(b, name(0, prefix).substr(0, 2).c_str()), nullptr);
    };
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, name(i, u"p").c_str(), 2, i), 0);
        if (i % 37 == 0) {
            EXPECT_EQ(kstd_persistentPropertyBag_addValue_int(bag, name(i / 2, u"p").c_str(), 2, 0),
                      kstd_persistentResult_duplicatePropertyName);
            EXPECT_EQ(kstd_persistentPropertyBag_addValue_char(bag, name(i, u"q").c_str(), 2, 'c'), CA);
            EXPECT_EQ(find(bag, name(i, u"q").c_str()), nullptr);
        }
    }
    check(bag, 300, u"p");
    ASSERT_EQ(kstd_persistentPropertyBag_assign(copy, bag), 0);
    check(copy, 300, u"p");
    // Refilled with other names, then with the old ones again.
    ASSERT_EQ(kstd_persistentPropertyBag_removeAllProperties(bag), 0);
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, name(i, u"r").c_str(), 2, i), 0);
    check(bag, 40, u"r");
    EXPECT_EQ(find(bag, name(5, u"p").c_str()), nullptr);
}

// Every allocation of a series of adds may fail: each add either succeeds
// or leaves the bag as it was, and nothing leaks.
TEST(PropertyBag, AddsSurviveAllocationFailures) {
    auto scenario = [&]() -> kstd_result {
        Bag bag;
        Property property;
        kstd_result first = 0;
        auto attempt = [&](const std::u16string& name, const std::function<kstd_result()>& add) {
            const int32_t before = bag->numProperties;
            const kstd_result result = add();
            EXPECT_EQ(bag->numProperties, result < 0 ? before : before + 1);
            EXPECT_EQ(find(bag, name.c_str()) != nullptr, result >= 0);
            if (result < 0 && first == 0) first = result;
        };
        for (int i = 0; i < 12; ++i) {
            const std::u16string name = u"n" + std::u16string(1, u'a' + i);
            attempt(name, [&] { return kstd_persistentPropertyBag_addValue_int(bag, name.c_str(), 2, i); });
        }
        const kstd_result made = kstd_persistentProperty_resetInfoAndValueString32(property, u"copied", 2, U"utf32");
        if (made < 0) return made;
        attempt(u"copied", [&] { return kstd_persistentPropertyBag_addProperty(bag, property); });
        // Emptied and refilled over the spare slots.
        kstd_persistentPropertyBag_removeAllProperties(bag);
        for (int i = 0; i < 14; ++i) {
            const std::u16string name = u"m" + std::u16string(1, u'a' + i);
            attempt(name,
                    [&] { return kstd_persistentPropertyBag_addValueStringA(bag, name.c_str(), 2, "8-bit text"); });
        }
        return first;
    };
    // A first run interns the names, which stay with the registry.
    EXPECT_EQ(scenario(), 0);
    EXPECT_GT(sweepAllocationFailures(scenario), 10);
}

TEST(PropertyBagSet, LoansGiveBackAndReset) {
    kstd_persistentPropertyBagSet set;
    ASSERT_EQ(kstd_persistentPropertyBagSet_construct(&set), 0);
    kstd_persistentPropertyBagSetNewBagGetter first, second, third;
    kstd_persistentPropertyBag *bag0 = nullptr, *bag1 = nullptr, *again = nullptr;
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&first, &set, &bag0), 0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&second, &set, &bag1), 0);
    EXPECT_NE(bag0, bag1);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_destruct(&first), 0);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_destruct(&second), 0);

    // After a reset the next loan is bag 0 again, and no bag is created; a
    // loan that fails to create its bag leaves the set as it was.
    ASSERT_EQ(kstd_persistentPropertyBagSet_reset(&set), 0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&first, &set, &again), 0);
    EXPECT_EQ(again, bag0);
    ASSERT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&second, &set, &again), 0);
    ksys_memory_failAt(1, 1);
    EXPECT_EQ(kstd_persistentPropertyBagSetNewBagGetter_construct(&third, &set, &again), OOM);
    ksys_memory_failAt(0, 0);
    EXPECT_EQ(again, nullptr);
    EXPECT_EQ(std::make_pair(set.numBags, set.numHandedOut), std::make_pair(2, 2));
    for (auto* loan : {&first, &second, &third}) kstd_persistentPropertyBagSetNewBagGetter_destruct(loan);
    EXPECT_EQ(kstd_persistentPropertyBagSet_destruct(&set), 0);
}

}  // namespace
