// A client module as the object tests see it: its own object types, an enum
// with a bit-field form and a container type, registered once per process
// with operation tables that count their calls and can be told to fail.
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
};

// A container of up to eight int32 items.
struct Box {
    int32_t items[8];
    intptr_t count;
};

// Calls of the widget's object operations. A construct or destruct whose
// attempt number (from 0, counted since the last reset) equals failAt fails
// with injectedFailure and changes nothing.
struct WidgetCalls {
    int constructAttempts = 0;
    int destructAttempts = 0;
    int constructed = 0;  // successful constructs
    int destructed = 0;   // successful destructs
    int failConstructAt = -1;
    int failDestructAt = -1;
    int assigns = 0;
    int setProperty = 0;         // value access slot 3
    std::u16string lastPropertyName;
    int transfers = 0;           // value access slot 6
};
WidgetCalls& widgetCalls();
inline void resetWidgetCalls() { widgetCalls() = WidgetCalls{}; }

// The module's types, registered on first use (derivation 0 unless named).
struct ModuleTypes {
    const kstd_persistentType* widget;
    const kstd_persistentType* inner;
    const kstd_persistentType* color;      // enum, derivation 0
    const kstd_persistentType* colorBits;  // its bit-field form, derivation 4
    const kstd_persistentType* box;        // container of "k_Int32"
    const kstd_persistentType* looseBox;   // container of an item type nobody registers
};
const ModuleTypes& moduleTypes();

// The container table of TestBox.
const kstd_persistentContainerVtable* boxOperations();

// Starts the registry and registers the module, so that a leak check that
// follows counts only what a test makes.
void startModule();

// Owning wrappers.
struct Handle {
    kstd_persistentType t;
    Handle() { kstd_persistentType_construct(&t); }
    ~Handle() { kstd_persistentType_destruct(&t); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
};

struct VariantBox {
    kstd_persistentVariant v;
    VariantBox() { kstd_persistentVariant_construct(&v); }
    ~VariantBox() { kstd_persistentVariant_destruct(&v); }
    VariantBox(const VariantBox&) = delete;
    VariantBox& operator=(const VariantBox&) = delete;
};

// The descriptor of `type`'s name in another derivation.
inline void derive(Handle& out, const kstd_persistentType* type, uint32_t derivation) {
    ASSERT_EQ(kstd_persistentType_assignDifferentDerivation(&out.t, type, derivation), 0);
}

inline std::u16string typeName(const kstd_persistentType& type) {
    const char16_t* name = nullptr;
    kstd_persistentType_getTypeName(&type, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}

inline uint32_t derivationOf(const kstd_persistentType& type) {
    uint32_t derivation = 99;
    kstd_persistentType_getTypeDerivation(&type, &derivation);
    return derivation;
}

}  // namespace vexpers::test
