// A client module as the object and property tests see it: its own object
// types, an enum with a bit-field form, a container type and a type with a
// broken declaration, registered once per process on first use, with
// operation tables that count their calls and can be told to fail.
#pragma once

#include <string>

#include "support/test_support.hpp"

namespace vexpers::test {

inline constexpr kstd_result injectedFailure = ksys_result_failure;

// A member object reached by address.
struct Inner {
    int32_t count;
};

// The module's main object type: shared (it answers "kstd_shared"), with a
// member of every kind the declared properties read.
struct Widget {
    kstd_shared header;
    int32_t number;
    double ratio;
    int64_t color;
    uint32_t flags32;
    uint64_t flags64;
    kstd_vector32s values;
    Inner inner;
    Widget* next;
};

// A container of up to eight int32 items.
struct Box {
    int32_t items[8];
    intptr_t count;
};

// Calls of the widget's operations. A construct or destruct whose attempt
// number (from 0, counted since the last reset) equals failAt fails with
// injectedFailure and constructs or destroys nothing.
struct WidgetCalls {
    int constructAttempts = 0;
    int destructAttempts = 0;
    int constructed = 0;  // successful constructs
    int destructed = 0;   // successful destructs
    int failConstructAt = -1;
    int failDestructAt = -1;
    int assigns = 0;
    int setProperty = 0;  // value access slot 3
    std::u16string lastPropertyName;
    int transfers = 0;  // value access slot 6
};
inline WidgetCalls widgetCalls;

// The module's types, registered on first use (derivation 0 unless named).
//
// TestWidget declares, in this order: number (address, data access 1),
// ratio (second address), doubled (variant getter: number * 2), values
// (member locator: the vector's items), color (enum getter), flags32 and
// flags64 (bit-field getters), inner (address of a TestInner), link (variant
// getter: a null TestInner pointer), next (address: the widget pointed at,
// an entry of its own type, so resolved only on first use), stored (store
// accessor: "stored" = number + 1, data access 7) and nothing (no accessor
// that gives a value). Where an entry has several words, the one storing
// must prefer gives the true value and the others a wrong one; values and
// inner are loadable. The widget's own transfer comes last and, when
// storing, adds "twice" = number * 2.
struct ModuleTypes {
    const kstd_persistentType* widget;
    const kstd_persistentType* inner;      // count (address)
    const kstd_persistentType* color;      // enum, derivation 0
    const kstd_persistentType* colorBits;  // its bit-field form, derivation 4
    const kstd_persistentType* box;        // container of "k_Int32"
    const kstd_persistentType* looseBox;   // container of an item type nobody registers
    const kstd_persistentType* broken;     // lost: a TestNeverRegistered by address (of a widget's number)
};
const ModuleTypes& moduleTypes();

// The container table of TestBox.
const kstd_persistentContainerVtable* boxOperations();

// Starts the registry and registers the module, so that a leak check that
// follows counts only what a test makes.
void startModule();

// A widget made through its type, deleted at the end of the scope.
struct NewWidget {
    void* object = nullptr;
    NewWidget() { EXPECT_EQ(kstd_persistentType_newObject(moduleTypes().widget, &object), 0); }
    ~NewWidget() { EXPECT_EQ(kstd_persistentType_deleteObject(moduleTypes().widget, &object), 0); }
    NewWidget(const NewWidget&) = delete;
    NewWidget& operator=(const NewWidget&) = delete;
    Widget* get() const { return static_cast<Widget*>(object); }
    Widget* operator->() const { return get(); }
};

inline uint32_t derivationOf(const kstd_persistentType* type) {
    return outOf<uint32_t>(0, kstd_persistentType_getTypeDerivation, type);
}

}  // namespace vexpers::test
