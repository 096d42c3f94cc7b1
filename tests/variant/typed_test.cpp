// Typed sets and gets: range checks of the narrowed gets at each width's
// edges, booleans, refused characters, strings, and access by type
// descriptor. The typed families are expanded
// from one worker per category, so one member per width proves each.
#include <limits>

#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

template <class T>
using Getter = kstd_result (*)(const kstd_persistentVariant*, T*);

// Stores `stored` as k_Int64 (or k_UInt64) and reads it back through `get`.
template <class T, class Stored>
void expectRead(Getter<T> get, Stored stored, kstd_result code, T expected) {
    Variant v;
    if constexpr (std::is_signed_v<Stored>)
        ASSERT_EQ(kstd_persistentVariant_setValue_k_Int64(v, stored), 0);
    else
        ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt64(v, stored), 0);
    EXPECT_EQ(outOf<T>(code, get, v), expected) << sizeof(T) << " bytes reading " << stored;
}

template <class T>
void checkSignedEdges(Getter<T> get) {
    using L = std::numeric_limits<T>;
    expectRead<T>(get, int64_t{L::min()}, 0, L::min());
    expectRead<T>(get, int64_t{L::max()}, 0, L::max());
    if constexpr (sizeof(T) < 8) {
        expectRead<T>(get, int64_t{L::min()} - 1, D0, T{0});
        expectRead<T>(get, int64_t{L::max()} + 1, D0, T{0});
    } else {
        expectRead<T>(get, std::numeric_limits<uint64_t>::max(), D0, T{0});
    }
}

template <class T>
void checkUnsignedEdges(Getter<T> get) {
    using L = std::numeric_limits<T>;
    expectRead<T>(get, uint64_t{L::max()}, 0, L::max());
    expectRead<T>(get, int64_t{-1}, D0, T{0});  // negative never converts
    if constexpr (sizeof(T) < 8) expectRead<T>(get, uint64_t{L::max()} + 1, D0, T{0});
}

TEST(VariantTyped, NarrowedGetsCheckTheWidthOfTheirType) {
    checkSignedEdges<int8_t>(kstd_persistentVariant_getValue_k_Int8);
    checkSignedEdges<int32_t>(kstd_persistentVariant_getValue_k_Int32);
    checkSignedEdges<int64_t>(kstd_persistentVariant_getValue_k_Int64);
    checkUnsignedEdges<uint8_t>(kstd_persistentVariant_getValue_k_UInt8);
    checkUnsignedEdges<uint32_t>(kstd_persistentVariant_getValue_k_UInt32);
    checkUnsignedEdges<uint64_t>(kstd_persistentVariant_getValue_k_UInt64);

    // Across signedness: -1 as k_Int8 is no k_UInt8; 0xFFFFFFFF as k_UInt32
    // is zero-extended, too big for k_Int32.
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int8(v, -1), 0);
    EXPECT_EQ(outOf<uint8_t>(D0, kstd_persistentVariant_getValue_k_UInt8, v), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt32(v, 0xFFFFFFFFu), 0);
    EXPECT_EQ(outOf<int32_t>(D0, kstd_persistentVariant_getValue_k_Int32, v), 0);
}

// k_Bool keeps its value (the reader table shows it); bool stores 1 and reads
// "not 0". Characters are never held: sets leave the variant alone, gets give 0.
TEST(VariantTyped, BooleansAndRefusedCharacters) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v, 5), 0);
    EXPECT_TRUE(outOf<bool>(0, kstd_persistentVariant_getValue_bool, v));
    ASSERT_EQ(kstd_persistentVariant_setValue_bool(v, true), 0);
    EXPECT_EQ(v->value.uint64, 1u);
    EXPECT_EQ(coreTypeIdOf(v), kstd_persistentCoreTypeId_bool);
    // Written through its core type row, a bool is its byte: any non-zero byte is true.
    Type boolType;
    coreType(boolType, kstd_persistentCoreTypeId_bool);
    const unsigned char byte = 5;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, boolType, &byte), 0);
    EXPECT_EQ(v->value.uint64, 1u);

    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(v, 42), 0);
    EXPECT_EQ(kstd_persistentVariant_setValue_char(v, 'a'), CA);
    EXPECT_EQ(coreTypeIdOf(v), kstd_persistentCoreTypeId_k_Int32);
    EXPECT_EQ(v->value.int64, 42);
    EXPECT_EQ(outOf<char>(CA, kstd_persistentVariant_getValue_char, v), 0);
}

TEST(VariantTyped, StringsAreSharedNotCopied) {
    NoLeaks leaks;
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValueStringW(v, u"h\u00e9llo"), 0);
    SharedText shared, text;
    const int64_t before = allocations();
    ASSERT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v, shared), 0);
    EXPECT_EQ(allocations(), before);
    EXPECT_EQ(shared->chars, v->stringValue.chars);
    EXPECT_EQ(outOf<int32_t>(CA, kstd_persistentVariant_getValue_k_Int32, v), 0);  // texts are not parsed

    // A clone, owned by the caller.
    char* utf8 = outOf<char*>(0, kstd_persistentVariant_getValueCloneStringA, v);
    EXPECT_STREQ(utf8, "h\xc3\xa9llo");
    freeBlock(utf8);

    // Null stays null, in the variant and in the clones (cleared first).
    ASSERT_EQ(kstd_persistentVariant_setValueString32(v, nullptr), 0);
    EXPECT_EQ(coreTypeIdOf(v), kstd_persistentCoreTypeId_string32);
    EXPECT_EQ(outOf<char16_t*>(0, kstd_persistentVariant_getValueCloneString16, v), nullptr);

    // Characters and non-values have no string.
    ASSERT_EQ(kstd_persistentVariant_resetCoreTypeId(v, kstd_persistentCoreTypeId_k_Char16), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v, text), CA);
    holdCore(v, kstd_persistentCoreTypeId_stringW, kstd_persistentTypeDerivation_pointer);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v, text), CD);
    EXPECT_EQ(text->chars, nullptr);
}

TEST(VariantTyped, SetAndGetByCoreTypeDescriptor) {
    // Every usable core type goes through its row's writer and reader.
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                                \
    {                                                                                     \
        Variant v;                                                                        \
        Type type;                                                                        \
        coreType(type, id);                                                               \
        const ctype in = static_cast<ctype>(1);                                           \
        const kstd_result code = category == kstd_persistentTypeCategory_char ? CA : 0;   \
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, type, &in), code) << #stem; \
        EXPECT_EQ(outOf<ctype>(code, kstd_persistentVariant_getValueUsingType, v, type),  \
                  code == 0 ? in : static_cast<ctype>(0))                                 \
            << #stem;                                                                     \
    }
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)                               \
    {                                                                                      \
        Variant v;                                                                         \
        Type type;                                                                         \
        coreType(type, id);                                                                \
        int64_t value = 1;                                                                 \
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, type, &value), CA) << #stem; \
        EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, type, &value), CA) << #stem; \
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v, &value), CA) << #stem;        \
    }
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "../../src/generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING

    Variant v;
    Type stringA, int16Type, int32Type, intPointer, unknown;
    coreType(stringA, kstd_persistentCoreTypeId_stringA);
    coreType(int16Type, kstd_persistentCoreTypeId_k_Int16);
    coreType(int32Type, kstd_persistentCoreTypeId_k_Int32);
    coreType(intPointer, kstd_persistentCoreTypeId_k_Int32, kstd_persistentTypeDerivation_pointer);

    // The string pointers are written from the text itself and have no reader.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, stringA, "text"), 0);
    const char* pointer = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, stringA, &pointer), C1);

    // No conversion by descriptor: k_Int16 is not read as k_Int32.
    const int16_t small = 12;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, int16Type, &small), 0);
    int32_t wide = 0;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, int32Type, &wide), CA);

    // A null value: an error for a value type, a null pointer for a pointer type.
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, int32Type, nullptr), CC);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, intPointer, nullptr), 0);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, intPointer, &small), D6);

    // Unregistered names are refused once the type is held.
    ASSERT_EQ(kstd_persistentType_resetTypeName(unknown, u"VariantTestUnknown"), 0);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v, unknown, &small), C8);
}

// Objects are borrowed and read through their type's value access reader;
// without a reader slot, or without a value access table, reads fail.
TEST(VariantTyped, ObjectsAreBorrowedAndReadThroughTheirReader) {
    const TestTypes& types = testTypes();
    Variant v;
    int object = 7, destination = 0;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v, types.object, &object), 0);
    EXPECT_EQ(outOf<const void*>(0, kstd_persistentVariant_getValuePtrConstUsingType, v, types.object), &object);
    objectReaderDestination = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, types.object, &destination), 0);
    EXPECT_EQ(objectReaderDestination, &destination);

    ASSERT_EQ(kstd_persistentVariant_resetType(v, types.plainEnum), 0);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, types.plainEnum, &destination), C1);
    Type bare;
    handMadeType(bare, kstd_persistentTypeCategory_object, 0);
    ASSERT_EQ(kstd_persistentVariant_resetType(v, bare), 0);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v, bare, &destination), C0);
}

}  // namespace
}  // namespace vexpers::test
