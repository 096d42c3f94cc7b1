// Typed sets and gets: range checks of the narrowed gets at each width's
// edges, booleans, refused characters, strings, access by type descriptor,
// and sets and gets that allocate nothing.
#include <limits>

#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

template <class T>
using Getter = kstd_result (*)(const kstd_persistentVariant*, T*);

// Stores `stored` as k_Int64 (or k_UInt64) and reads it back through `get`.
template <class T, class Stored>
void expectRead(Getter<T> get, Stored stored, kstd_result code, T expected, const char* name) {
    Variant v;
    if constexpr (std::is_signed_v<Stored>)
        ASSERT_EQ(kstd_persistentVariant_setValue_k_Int64(v.get(), stored), 0);
    else
        ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt64(v.get(), stored), 0);
    T out = static_cast<T>(0x5A);
    EXPECT_EQ(get(v.get(), &out), code) << name << " reading " << stored;
    EXPECT_EQ(out, expected) << name << " reading " << stored;
}

template <class T>
void checkSignedEdges(Getter<T> get, const char* name) {
    using L = std::numeric_limits<T>;
    expectRead<T>(get, int64_t{L::min()}, 0, L::min(), name);
    expectRead<T>(get, int64_t{L::max()}, 0, L::max(), name);
    if constexpr (sizeof(T) < 8) {
        expectRead<T>(get, int64_t{L::min()} - 1, D0, T{0}, name);
        expectRead<T>(get, int64_t{L::max()} + 1, D0, T{0}, name);
    } else {
        expectRead<T>(get, std::numeric_limits<uint64_t>::max(), D0, T{0}, name);
    }
}

template <class T>
void checkUnsignedEdges(Getter<T> get, const char* name) {
    using L = std::numeric_limits<T>;
    expectRead<T>(get, uint64_t{L::max()}, 0, L::max(), name);
    expectRead<T>(get, int64_t{-1}, D0, T{0}, name);  // negative never converts
    if constexpr (sizeof(T) < 8) expectRead<T>(get, uint64_t{L::max()} + 1, D0, T{0}, name);
}

TEST(VariantTyped, NarrowedGetsCheckTheWidthOfTheirType) {
    checkSignedEdges<int8_t>(kstd_persistentVariant_getValue_k_Int8, "k_Int8");
    checkSignedEdges<int16_t>(kstd_persistentVariant_getValue_k_Int16, "k_Int16");
    checkSignedEdges<int32_t>(kstd_persistentVariant_getValue_k_Int32, "k_Int32");
    checkSignedEdges<int64_t>(kstd_persistentVariant_getValue_k_Int64, "k_Int64");
    checkSignedEdges<intptr_t>(kstd_persistentVariant_getValue_k_IntPtr, "k_IntPtr");
    checkSignedEdges<short>(kstd_persistentVariant_getValue_short, "short");
    checkSignedEdges<int>(kstd_persistentVariant_getValue_int, "int");
    checkSignedEdges<long>(kstd_persistentVariant_getValue_long, "long");
    checkSignedEdges<ptrdiff_t>(kstd_persistentVariant_getValue_ptrdiff_t, "ptrdiff_t");
    checkUnsignedEdges<uint8_t>(kstd_persistentVariant_getValue_k_UInt8, "k_UInt8");
    checkUnsignedEdges<uint16_t>(kstd_persistentVariant_getValue_k_UInt16, "k_UInt16");
    checkUnsignedEdges<uint32_t>(kstd_persistentVariant_getValue_k_UInt32, "k_UInt32");
    checkUnsignedEdges<uint64_t>(kstd_persistentVariant_getValue_k_UInt64, "k_UInt64");
    checkUnsignedEdges<uintptr_t>(kstd_persistentVariant_getValue_k_UIntPtr, "k_UIntPtr");
    checkUnsignedEdges<unsigned short>(kstd_persistentVariant_getValue_ushort, "ushort");
    checkUnsignedEdges<unsigned int>(kstd_persistentVariant_getValue_uint, "uint");
    checkUnsignedEdges<unsigned long>(kstd_persistentVariant_getValue_ulong, "ulong");
    checkUnsignedEdges<size_t>(kstd_persistentVariant_getValue_size_t, "size_t");
}

TEST(VariantTyped, NarrowingAcrossSignedness) {
    Variant v;
    // -1 stored as k_Int8 does not read as k_UInt8, but does as k_Int32.
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int8(v.get(), -1), 0);
    uint8_t u8 = 9;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt8(v.get(), &u8), D0);
    EXPECT_EQ(u8, 0);
    int32_t i32 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &i32), 0);
    EXPECT_EQ(i32, -1);

    // 0xFFFFFFFF stored as k_UInt32 is zero-extended: too big for k_Int32.
    ASSERT_EQ(kstd_persistentVariant_setValue_k_UInt32(v.get(), 0xFFFFFFFFu), 0);
    i32 = 9;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &i32), D0);
    EXPECT_EQ(i32, 0);
    int64_t i64 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &i64), 0);
    EXPECT_EQ(i64, 4294967295);

    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int64(v.get(), 128), 0);
    int8_t i8 = 9;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int8(v.get(), &i8), D0);
    EXPECT_EQ(i8, 0);
    int16_t i16 = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int16(v.get(), &i16), 0);
    EXPECT_EQ(i16, 128);

    // Narrowed gets of doubles round first.
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 3.7), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &i32), 0);
    EXPECT_EQ(i32, 4);
    ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 1e10), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &i32), D0);
    EXPECT_EQ(i32, 0);
}

TEST(VariantTyped, KBoolKeepsItsValueBoolReadsNotZero) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Bool(v.get(), 5), 0);
    int32_t stored = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Bool(v.get(), &stored), 0);
    EXPECT_EQ(stored, 5);
    bool flag = false;
    EXPECT_EQ(kstd_persistentVariant_getValue_bool(v.get(), &flag), 0);
    EXPECT_TRUE(flag);
    int64_t wide = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &wide), 0);
    EXPECT_EQ(wide, 5);
    uint64_t unsignedWide = 0;
    EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(v.get(), &unsignedWide), 0);
    EXPECT_EQ(unsignedWide, 1u);

    ASSERT_EQ(kstd_persistentVariant_setValue_bool(v.get(), true), 0);
    EXPECT_EQ(v->value.boolean, 1);
    EXPECT_EQ(v->value.uint64, 1u);
    int32_t coreTypeId = 0;
    ASSERT_EQ(kstd_persistentType_getCoreTypeId(&v->type, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_bool);

    // bool writes its destination only on success.
    ASSERT_EQ(kstd_persistentVariant_setValueStringW(v.get(), u"true"), 0);
    flag = true;
    EXPECT_EQ(kstd_persistentVariant_getValue_bool(v.get(), &flag), CA);
    EXPECT_TRUE(flag);
}

TEST(VariantTyped, CharacterTypesAreRefusedAndLeaveTheVariantAlone) {
    Variant v;
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int32(v.get(), 42), 0);
    EXPECT_EQ(kstd_persistentVariant_setValue_char(v.get(), 'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_uchar(v.get(), 'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_schar(v.get(), 'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_wchar_t(v.get(), u'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_TCHAR(v.get(), u'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_k_Char16(v.get(), u'a'), CA);
    EXPECT_EQ(kstd_persistentVariant_setValue_k_Char32(v.get(), U'a'), CA);
    int32_t coreTypeId = 0;
    ASSERT_EQ(kstd_persistentType_getCoreTypeId(&v->type, &coreTypeId), 0);
    EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_k_Int32);
    EXPECT_EQ(v->value.int64, 42);

    // Gets fail whatever is held, with the destination 0.
    char c = 'z';
    unsigned char uc = 'z';
    signed char sc = 'z';
    char16_t w = u'z', t = u'z', c16 = u'z';
    char32_t c32 = U'z';
    EXPECT_EQ(kstd_persistentVariant_getValue_char(v.get(), &c), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_uchar(v.get(), &uc), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_schar(v.get(), &sc), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_wchar_t(v.get(), &w), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_TCHAR(v.get(), &t), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Char16(v.get(), &c16), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Char32(v.get(), &c32), CA);
    EXPECT_EQ(c | uc | sc | w | t | c16 | c32, 0u);
}

TEST(VariantTyped, StringsAreSharedNotCopied) {
    LiveBlockCheck leaks;
    {
        Variant v;
        ASSERT_EQ(kstd_persistentVariant_setValueStringW(v.get(), u"h\u00e9llo"), 0);
        kstd_unicodeStringConst shared;
        ASSERT_EQ(kstd_unicodeStringConst_construct(&shared), 0);
        const int64_t before = allocations();
        ASSERT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v.get(), &shared), 0);
        EXPECT_EQ(allocations(), before);
        EXPECT_EQ(shared.chars, v->stringValue.chars);
        EXPECT_EQ(kstd_unicodeStringConst_destruct(&shared), 0);

        int32_t number = 9;
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &number), CA);  // texts are not parsed
        EXPECT_EQ(number, 0);

        // Clones in each form, owned by the caller.
        char* utf8 = nullptr;
        ASSERT_EQ(kstd_persistentVariant_getValueCloneStringA(v.get(), &utf8), 0);
        EXPECT_STREQ(utf8, "h\xc3\xa9llo");
        char32_t* utf32 = nullptr;
        ASSERT_EQ(kstd_persistentVariant_getValueCloneString32(v.get(), &utf32), 0);
        EXPECT_EQ(std::u32string(utf32), U"h\u00e9llo");
        char16_t* utf16 = nullptr;
        ASSERT_EQ(kstd_persistentVariant_getValueCloneStringW(v.get(), &utf16), 0);
        EXPECT_EQ(std::u16string(utf16), u"h\u00e9llo");
        EXPECT_NE(utf16, v->stringValue.chars);
        void* blocks[] = {utf8, utf32, utf16};
        for (void*& block : blocks) ksys_memory_free_internal(&block);

        // A scalar gives its text form; a mutable string receives it too.
        ASSERT_EQ(kstd_persistentVariant_setValue_k_Int16(v.get(), -42), 0);
        ASSERT_EQ(kstd_persistentVariant_getValueCloneStringT(v.get(), &utf16), 0);
        EXPECT_EQ(std::u16string(utf16), u"-42");
        void* block = utf16;
        ksys_memory_free_internal(&block);
        kstd_unicodeString mutableText;
        ASSERT_EQ(kstd_unicodeString_construct(&mutableText), 0);
        ASSERT_EQ(kstd_persistentVariant_setValue_double(v.get(), 0.5), 0);
        ASSERT_EQ(kstd_persistentVariant_getValue_kstd_unicodeString(v.get(), &mutableText), 0);
        EXPECT_EQ(ascii(mutableText.chars), "0.5");

        // Round trip through the unicode string record.
        ASSERT_EQ(kstd_unicodeString_assignStringW(&mutableText, u"record"), 0);
        ASSERT_EQ(kstd_persistentVariant_setValue_kstd_unicodeString(v.get(), &mutableText), 0);
        int32_t coreTypeId = 0;
        ASSERT_EQ(kstd_persistentType_getCoreTypeId(&v->type, &coreTypeId), 0);
        EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_kstd_unicodeString);
        EXPECT_EQ(ascii(v->stringValue.chars), "record");
        EXPECT_EQ(kstd_unicodeString_destruct(&mutableText), 0);

        // Null stays null, in the variant and in the clones.
        ASSERT_EQ(kstd_persistentVariant_setValueString32(v.get(), nullptr), 0);
        ASSERT_EQ(kstd_persistentType_getCoreTypeId(&v->type, &coreTypeId), 0);
        EXPECT_EQ(coreTypeId, kstd_persistentCoreTypeId_string32);
        char16_t stale[] = u"stale";
        utf16 = stale;  // cleared first
        ASSERT_EQ(kstd_persistentVariant_getValueCloneString16(v.get(), &utf16), 0);
        EXPECT_EQ(utf16, nullptr);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(VariantTyped, StringGetsRefuseCharactersAndNonValues) {
    Variant v;
    kstd_unicodeStringConst text;
    ASSERT_EQ(kstd_unicodeStringConst_construct(&text), 0);
    ASSERT_EQ(kstd_persistentVariant_resetCoreTypeId(v.get(), kstd_persistentCoreTypeId_k_Char16), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v.get(), &text), CA);
    Type pointer;
    coreType(pointer, kstd_persistentCoreTypeId_stringW, kstd_persistentTypeDerivation_pointer);
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), pointer.get()), 0);
    EXPECT_EQ(kstd_persistentVariant_getValue_kstd_unicodeStringConst(v.get(), &text), CD);
    EXPECT_EQ(text.chars, nullptr);
    EXPECT_EQ(kstd_unicodeStringConst_destruct(&text), 0);
}

TEST(VariantTyped, SetAndGetByCoreTypeDescriptor) {
    // Every usable core type goes through its row's writer and reader.
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                                               \
    {                                                                                                    \
        Variant v;                                                                                       \
        Type type;                                                                                       \
        coreType(type, id);                                                                              \
        const ctype in = static_cast<ctype>(1);                                                          \
        ctype out = static_cast<ctype>(0);                                                               \
        const kstd_result expected = category == kstd_persistentTypeCategory_char ? CA : 0;              \
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), type.get(), &in), expected) << #stem; \
        EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), type.get(), &out), expected) << #stem; \
        EXPECT_EQ(out, expected == 0 ? in : static_cast<ctype>(0)) << #stem;                             \
    }
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)                                       \
    {                                                                                              \
        Variant v;                                                                                 \
        Type type;                                                                                 \
        coreType(type, id);                                                                        \
        int64_t value = 1;                                                                         \
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), type.get(), &value), CA) << #stem; \
        EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), type.get(), &value), CA) << #stem; \
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int64(v.get(), &value), CA) << #stem;          \
    }
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "../../src/generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING

    Variant v;
    Type stringA, unicode, int16Type, int32Type;
    coreType(stringA, kstd_persistentCoreTypeId_stringA);
    coreType(unicode, kstd_persistentCoreTypeId_kstd_unicodeString);
    coreType(int16Type, kstd_persistentCoreTypeId_k_Int16);
    coreType(int32Type, kstd_persistentCoreTypeId_k_Int32);

    // The string pointers are written from the text itself and have no reader.
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), stringA.get(), "text"), 0);
    EXPECT_EQ(ascii(v->stringValue.chars), "text");
    const char* pointer = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), stringA.get(), &pointer),
              kstd_persistentResult_operationMissing);
    kstd_unicodeString record;
    ASSERT_EQ(kstd_unicodeString_construct(&record), 0);
    ASSERT_EQ(kstd_unicodeString_assignStringW(&record, u"whole"), 0);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), unicode.get(), &record), 0);
    ASSERT_EQ(kstd_unicodeString_reset(&record), 0);
    ASSERT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), unicode.get(), &record), 0);
    EXPECT_EQ(ascii(record.chars), "whole");
    EXPECT_EQ(kstd_unicodeString_destruct(&record), 0);

    // No conversion by descriptor: k_Int16 is not read as k_Int32.
    const int16_t small = 12;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), int16Type.get(), &small), 0);
    int32_t wide = 9;
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), int32Type.get(), &wide), CA);
    EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &wide), 0);
    EXPECT_EQ(wide, 12);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), int16Type.get(), nullptr),
              kstd_persistentResult_nullArgument);

    // A null value: an error for a value type, a null pointer for a pointer type.
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), int32Type.get(), nullptr),
              kstd_persistentResult_nullArgument);
    Type intPointer;
    coreType(intPointer, kstd_persistentCoreTypeId_k_Int32, kstd_persistentTypeDerivation_pointer);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), intPointer.get(), nullptr), 0);
    uint32_t derivation = 0;
    ASSERT_EQ(kstd_persistentVariant_getTypeDerivation(v.get(), &derivation), 0);
    EXPECT_EQ(derivation, kstd_persistentTypeDerivation_pointer);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), intPointer.get(), &small), D6);

    // Unregistered names are refused once the type is held.
    Type unknown;
    ASSERT_EQ(kstd_persistentType_resetTypeName(unknown.get(), u"VariantTestUnknown"), 0);
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), unknown.get(), &small),
              kstd_persistentResult_typeNotRegistered);
}

TEST(VariantTyped, SetAndGetByEnumAndObjectDescriptor) {
    const TestTypes& types = testTypes();
    Variant v;
    int64_t enumValue = 3;
    // Enumerations have their own setters; by descriptor they are refused.
    EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), types.plainEnum, &enumValue), D6);

    // Objects are borrowed.
    int object = 7;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), types.object, &object), 0);
    EXPECT_EQ(v->isBorrowed, 1u);
    EXPECT_EQ(v->value.pointer, &object);
    const void* held = nullptr;
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConstUsingType(v.get(), types.object, &held), 0);
    EXPECT_EQ(held, &object);
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConstUsingType(v.get(), types.plainEnum, &held), CD);
    EXPECT_EQ(held, nullptr);

    // Reading an object goes through the type's value access reader.
    int destination = 0;
    objectReaderCalls() = {};
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), types.object, &destination), 0);
    EXPECT_EQ(objectReaderCalls().calls, 1);
    EXPECT_EQ(objectReaderCalls().variant, v.get());
    EXPECT_EQ(objectReaderCalls().destination, &destination);

    // Without a reader slot, or without a value access table.
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), types.plainEnum), 0);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), types.plainEnum, &destination),
              kstd_persistentResult_operationMissing);
    Type bare;
    handMadeType(bare, kstd_persistentTypeCategory_object, 0);
    ASSERT_EQ(kstd_persistentVariant_resetType(v.get(), bare.get()), 0);
    EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), bare.get(), &destination),
              kstd_persistentResult_noObjectVtable);

    // A held scalar is not an object.
    ASSERT_EQ(kstd_persistentVariant_setValue_int(v.get(), 1), 0);
    EXPECT_EQ(kstd_persistentVariant_getValuePtrConstUsingType(v.get(), types.object, &held), CD);
}

TEST(VariantTyped, TypedSetsAndGetsAllocateNothing) {
    Variant v;
    Type int32Type, doubleType;
    coreType(int32Type, kstd_persistentCoreTypeId_k_Int32);
    coreType(doubleType, kstd_persistentCoreTypeId_double);
    ASSERT_EQ(kstd_persistentVariant_setValue_k_Int8(v.get(), 1), 0);  // first use looks the core types up
    Variant copy;

    LiveBlockCheck leaks;
    const int64_t before = allocations();
    int8_t i8;
    uint16_t u16;
    int32_t i32;
    long l;
    size_t z;
    float f;
    double d;
    bool b;
    int32_t kb;
    uint64_t u64;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(kstd_persistentVariant_setValue_k_Int8(v.get(), -5), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int8(v.get(), &i8), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_k_UInt16(v.get(), 7), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt16(v.get(), &u16), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_long(v.get(), 1L << 40), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_long(v.get(), &l), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_size_t(v.get(), 3), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_size_t(v.get(), &z), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_float(v.get(), 1.5f), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_float(v.get(), &f), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_double(v.get(), &d), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_UInt64(v.get(), &u64), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_bool(v.get(), true), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_bool(v.get(), &b), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_k_Bool(v.get(), 5), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Bool(v.get(), &kb), 0);
        EXPECT_EQ(kstd_persistentVariant_setValue_char(v.get(), 'c'), CA);
        i32 = 4;
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(v.get(), int32Type.get(), &i32), 0);
        EXPECT_EQ(kstd_persistentVariant_getValueUsingType(v.get(), int32Type.get(), &i32), 0);
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType_double_(v.get(), doubleType.get(), 0.25), 0);
        EXPECT_EQ(kstd_persistentVariant_getValue_k_Int32(v.get(), &i32), 0);
        EXPECT_EQ(kstd_persistentVariant_assign(copy.get(), v.get()), 0);
        EXPECT_EQ(kstd_persistentVariant_reset(v.get()), 0);
    }
    EXPECT_EQ(allocations(), before);
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
}  // namespace vexpers::test
