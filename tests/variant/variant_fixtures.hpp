// Helpers of the variant tests: descriptors of core and test types, a
// hand-made type record for kinds the registry never makes, and text read
// back as 8-bit strings for readable failures.
#pragma once

#include <string>

#include "types/type_test_support.hpp"

namespace vexpers::test {

// The registered descriptor of a core type in a derivation.
inline void coreType(Type& type, int32_t id, uint32_t derivation = 0) {
    ASSERT_EQ(kstd_persistentType_resetCoreTypeIdAndDerivation(type, id, derivation), 0);
}

// A registered-looking record made by hand, for kinds no registration makes
// (categories 0 and 1 of derivation 4, an object type without value access).
inline void handMadeType(Type& type, uint32_t category, uint32_t derivation) {
    kstd_persistentType_* record = nullptr;
    ASSERT_EQ(kstd_persistentType__new(&record), 0);
    record->isKnown = 1;
    record->category = category;
    record->derivation = derivation;
    record->coreTypeId = -1;
    // The handle takes the only reference; the record is destroyed with it.
    ASSERT_EQ(kstd_ptrhConst_assignShared(&type->record, &record->header), 0);
}

// The variant holding a core type and a zero value.
inline void holdCore(kstd_persistentVariant* v, int32_t id, uint32_t derivation = 0) {
    Type type;
    coreType(type, id, derivation);
    ASSERT_EQ(kstd_persistentVariant_resetType(v, type), 0);
}

// The test object type's reader: records the last destination it was given.
inline void* objectReaderDestination = nullptr;
inline kstd_result objectReader(const kstd_persistentVariant*, void* destination) {
    objectReaderDestination = destination;
    return 0;
}

// An enum type with a bit-field form, and an object type whose value access
// reader records its calls. Registered once per process.
struct TestTypes {
    const kstd_persistentType* plainEnum;
    const kstd_persistentType* bitfieldEnum;
    const kstd_persistentType* object;
};
inline const TestTypes& testTypes() {
    static const TestTypes types = [] {
        static kstd_persistentValueAccessVtable objectAccess{};
        objectAccess.getVariant = objectReader;
        Target &plain = newTarget(), &bits = newTarget(), &object = newTarget();
        EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"VariantTestEnum", 0, 0, 0, 0, &valueAccessTable,
                                                      &bitfieldValueAccessTable, nullptr, nullptr, &plain.flag,
                                                      &bits.flag, &plain.handle, &bits.handle),
                  0);
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"VariantTestObject", &objectTable, &objectAccess, nullptr, 0,
                                                        &object.flag, &object.handle),
                  0);
        return TestTypes{&plain.handle, &bits.handle, &object.handle};
    }();
    return types;
}

// Starts the registry, the variant's core types and the test types before
// any test counts live blocks or allocations.
struct VariantEnvironment : ::testing::Environment {
    void SetUp() override {
        testTypes();
        Variant v;
        EXPECT_EQ(kstd_persistentVariant_setValue_k_Int32(v, 1), 0);
    }
};
inline ::testing::Environment* const variantEnvironment =
    ::testing::AddGlobalTestEnvironment(new VariantEnvironment);

// The text form of the variant, or "(unchanged)" when the function left its
// output as it found it (a text that no text form has).
inline std::string textForm(const kstd_persistentVariant* variant, kstd_result* code) {
    Owned<kstd_stringConst, kstd_stringConst_construct, kstd_stringConst_destruct> text;
    EXPECT_EQ(kstd_stringConst_assignString(text, u"(unchanged)"), 0);
    *code = kstd_persistentVariant_getValueAsString(variant, text);
    return ascii(text->chars);
}

inline int64_t allocations() {
    int64_t count = 0;
    ksys_memory_getAllocationCount(&count);
    return count;
}

inline int32_t coreTypeIdOf(const kstd_persistentVariant* v) {
    return outOf<int32_t>(0, kstd_persistentType_getCoreTypeId, &v->type);
}

}  // namespace vexpers::test
