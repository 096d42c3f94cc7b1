// Helpers of the variant tests: owning wrappers, descriptors of core and
// test types, a hand-made type record for kinds the registry never makes,
// and text read back as 8-bit strings for readable failures.
#pragma once

#include <string>

#include "support/test_support.hpp"

namespace vexpers::test {

inline constexpr kstd_result D0 = kstd_persistentResult_valueOutOfRange;
inline constexpr kstd_result CA = kstd_persistentResult_notSupported;
inline constexpr kstd_result CB = kstd_persistentResult_invalidTypeCategory;
inline constexpr kstd_result CD = kstd_persistentResult_typeMismatch;
inline constexpr kstd_result D6 = kstd_persistentResult_wrongTypeKind;
inline constexpr kstd_result E66 = kstd_persistentResult_floatRangeExceeded;
inline constexpr kstd_result Empty = kstd_persistentResult_typeEmpty;

struct Variant {
    kstd_persistentVariant v;
    Variant() { EXPECT_EQ(kstd_persistentVariant_construct(&v), 0); }
    ~Variant() { EXPECT_EQ(kstd_persistentVariant_destruct(&v), 0); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    kstd_persistentVariant* operator->() { return &v; }
    const kstd_persistentVariant* get() const { return &v; }
    kstd_persistentVariant* get() { return &v; }
};

struct Type {
    kstd_persistentType t;
    Type() { EXPECT_EQ(kstd_persistentType_construct(&t), 0); }
    ~Type() { EXPECT_EQ(kstd_persistentType_destruct(&t), 0); }
    Type(const Type&) = delete;
    Type& operator=(const Type&) = delete;
    const kstd_persistentType* get() const { return &t; }
    kstd_persistentType* get() { return &t; }
};

// The registered descriptor of a core type in a derivation.
inline void coreType(Type& type, int32_t id, uint32_t derivation = 0) {
    ASSERT_EQ(kstd_persistentType_resetCoreTypeIdAndDerivation(type.get(), id, derivation), 0);
}

// A registered-looking record made by hand, for kinds no registration makes
// (categories 0 and 1 of derivation 4, an object type without value access).
inline void handMadeType(Type& type, uint32_t category, uint32_t derivation, int32_t coreTypeId = -1) {
    kstd_persistentType_* record = nullptr;
    ASSERT_EQ(kstd_persistentType__new(&record), 0);
    record->isKnown = 1;
    record->category = category;
    record->derivation = derivation;
    record->coreTypeId = coreTypeId;
    // The handle takes the only reference; the record is destroyed with it.
    ASSERT_EQ(kstd_ptrhConst_assignShared(&type.get()->record, &record->header), 0);
}

// An enum type with a bit-field form, and an object type whose value access
// reader records its calls. Registered once per process.
struct TestTypes {
    const kstd_persistentType* plainEnum;
    const kstd_persistentType* bitfieldEnum;
    const kstd_persistentType* object;
};
const TestTypes& testTypes();

// The object type's reader: the last variant and destination it was given.
struct ReaderCall {
    const kstd_persistentVariant* variant = nullptr;
    void* destination = nullptr;
    int calls = 0;
};
ReaderCall& objectReaderCalls();

inline std::string ascii(const char16_t* text) {
    if (text == nullptr) return "(null)";
    std::string out;
    for (; *text != 0; ++text) out += *text < 0x80 ? static_cast<char>(*text) : '?';
    return out;
}

// The text form of the variant, or "(unchanged)" when the function left its
// output as it found it (a text that no text form has).
inline std::string textForm(const kstd_persistentVariant* variant, kstd_result* code) {
    kstd_stringConst text;
    EXPECT_EQ(kstd_stringConst_construct(&text), 0);
    EXPECT_EQ(kstd_stringConst_assignString(&text, u"(unchanged)"), 0);
    *code = kstd_persistentVariant_getValueAsString(variant, &text);
    const char16_t* chars = nullptr;
    EXPECT_EQ(kstd_stringConst_getString(&text, &chars), 0);
    std::string out = ascii(chars);
    EXPECT_EQ(kstd_stringConst_destruct(&text), 0);
    return out;
}

inline int64_t allocations() {
    int64_t count = 0;
    ksys_memory_getAllocationCount(&count);
    return count;
}

}  // namespace vexpers::test
