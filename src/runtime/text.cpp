// Text services over UTF-16: the platform string functions, the owned buffer
// kstd_string, the mutable kstd_unicodeString and the shared, immutable
// kstd_unicodeStringConst, with conversion between UTF-8, UTF-16 and UTF-32.
#include <climits>
#include <cstring>
#include <new>
#include <type_traits>

#include "frame/lifecycle.hpp"
#include "vexpers/text.h"

// ---- Platform string functions ----------------------------------------------

// These return plain values, so a null text is reported and read as empty.
#define VEXPERS_TEXT_REQUIRE(condition, fallback) \
    do {                                          \
        if (!(condition)) [[unlikely]] {          \
            ksys_assert_at(__FILE__, __LINE__);   \
            return fallback;                      \
        }                                         \
    } while (0)

VEXPERS_EXPORT size_t ksys_wcslen(const char16_t* text) {
    VEXPERS_TEXT_REQUIRE(text != nullptr, 0);
    size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

VEXPERS_EXPORT int32_t ksys_wcsncmp(const char16_t* first, const char16_t* second, size_t count) {
    VEXPERS_TEXT_REQUIRE(first != nullptr && second != nullptr, 0);
    for (size_t i = 0; i < count; ++i) {
        // char16_t is unsigned, so units compare as unsigned 16-bit values.
        if (first[i] != second[i]) return first[i] < second[i] ? -1 : 1;
        if (first[i] == 0) return 0;
    }
    return 0;
}

VEXPERS_EXPORT int32_t ksys_wcscmp(const char16_t* first, const char16_t* second) {
    return ksys_wcsncmp(first, second, SIZE_MAX);
}

VEXPERS_EXPORT const char16_t* ksys_wcschr(const char16_t* text, char16_t unit) {
    VEXPERS_TEXT_REQUIRE(text != nullptr, nullptr);
    for (;; ++text) {
        if (*text == unit) return text;
        if (*text == 0) return nullptr;
    }
}

// ---- Conversion -------------------------------------------------------------

namespace {

constexpr char16_t emptyText[1] = {0};
constexpr char32_t invalidPoint = 0xFFFFFFFF;

bool isSurrogate(char32_t point) { return point >= 0xD800 && point <= 0xDFFF; }

// Decoders: read one code point at `text` (not at the terminator) and advance;
// invalid input gives invalidPoint.
char32_t decode(const char*& text) {
    const auto lead = static_cast<unsigned char>(*text++);
    if (lead < 0x80) return lead;
    int extra;
    char32_t point, minimum;
    if (lead >= 0xC2 && lead <= 0xDF) extra = 1, point = lead & 0x1F, minimum = 0x80;
    else if (lead >= 0xE0 && lead <= 0xEF) extra = 2, point = lead & 0x0F, minimum = 0x800;
    else if (lead >= 0xF0 && lead <= 0xF4) extra = 3, point = lead & 0x07, minimum = 0x10000;
    else return invalidPoint;
    while (extra-- > 0) {
        const auto next = static_cast<unsigned char>(*text);
        if ((next & 0xC0) != 0x80) return invalidPoint;  // also stops at the terminator
        ++text;
        point = (point << 6) | (next & 0x3F);
    }
    // Overlong forms, surrogates and points beyond U+10FFFF are not UTF-8.
    return point < minimum || isSurrogate(point) || point > 0x10FFFF ? invalidPoint : point;
}

char32_t decode(const char16_t*& text) {
    const char32_t unit = *text++;
    if (!isSurrogate(unit)) return unit;
    if (unit >= 0xDC00 || *text < 0xDC00 || *text > 0xDFFF) return invalidPoint;
    return 0x10000 + ((unit - 0xD800) << 10) + (*text++ - 0xDC00);
}

char32_t decode(const char32_t*& text) {
    const char32_t point = *text++;
    return isSurrogate(point) || point > 0x10FFFF ? invalidPoint : point;
}

// Encoders: the number of units of `point`, written to `out` unless null.
size_t encode(char32_t point, char* out) {
    const size_t count = point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
    if (out != nullptr) {
        static constexpr unsigned char leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
        for (size_t i = count - 1; i > 0; --i, point >>= 6) out[i] = static_cast<char>(0x80 | (point & 0x3F));
        out[0] = static_cast<char>(leads[count] | point);
    }
    return count;
}

size_t encode(char32_t point, char16_t* out) {
    if (point < 0x10000) {
        if (out != nullptr) out[0] = static_cast<char16_t>(point);
        return 1;
    }
    if (out != nullptr) {
        out[0] = static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
        out[1] = static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
    return 2;
}

size_t encode(char32_t point, char32_t* out) {
    if (out != nullptr) out[0] = point;
    return 1;
}

// Converts NUL-terminated `text` into `out` (null: only counts) and gives the
// number of units without the terminator. Text of the target's own encoding is
// copied unit by unit, as it is.
template <class To, class From>
kstd_result transcode(const From* text, To* out, size_t* count) {
    *count = 0;
    while (*text != 0) {
        if constexpr (std::is_same_v<To, From>) {
            if (out != nullptr) out[*count] = *text;
            ++*count;
            ++text;
        } else {
            const char32_t point = decode(text);
            if (point == invalidPoint) return ksys_result_invalidText;
            *count += encode(point, out != nullptr ? out + *count : nullptr);
        }
    }
    if (out != nullptr) out[*count] = 0;
    return 0;
}

// Allocates one block of `headerBytes` followed by `text` converted to To and
// NUL-terminated; *chars points at the text inside the block. On failure
// nothing is allocated and the outputs are null.
template <class To, class From>
kstd_result newText(const From* text, size_t headerBytes, void** block, To** chars, int32_t* length) {
    *block = nullptr;
    *chars = nullptr;
    *length = 0;
    size_t count = 0;
    VEXPERS_TRY(transcode<To>(text, static_cast<To*>(nullptr), &count));
    if (count >= INT32_MAX) return ksys_result_invalidSize;
    VEXPERS_TRY(ksys_memory_alloc_internal(headerBytes + (count + 1) * sizeof(To), block));
    *chars = reinterpret_cast<To*>(static_cast<char*>(*block) + headerBytes);
    transcode(text, *chars, &count);
    *length = static_cast<int32_t>(count);
    return 0;
}

// A clone that the caller owns: null for null text.
template <class To>
kstd_result newClone(const char16_t* text, To** clone) {
    *clone = nullptr;
    if (text == nullptr) return 0;
    void* block;
    int32_t length;
    return newText(text, 0, &block, clone, &length);
}

}  // namespace

// ---- kstd_string -----------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_string_constructEmpty(kstd_string* string) {
    VEXPERS_REQUIRE(string != nullptr);
    *string = kstd_string{nullptr, 0, 0};
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_string_destruct(kstd_string* string) {
    VEXPERS_REQUIRE(string != nullptr);
    void* chars = string->chars;
    *string = kstd_string{nullptr, 0, 0};
    return ksys_memory_free_internal(&chars);
}

VEXPERS_EXPORT kstd_result kstd_string_assignString(kstd_string* string, const char16_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    if (text == nullptr || text[0] == 0) return kstd_string_destruct(string);
    void* block;
    char16_t* chars;
    int32_t length;
    VEXPERS_TRY(newText(text, 0, &block, &chars, &length));
    kstd_string_destruct(string);  // after the copy: `text` may be our own
    *string = kstd_string{chars, length, length + 1};
    return 0;
}

// ---- kstd_unicodeString ----------------------------------------------------------

namespace {

// Replaces the text with `text` converted to UTF-16 (null: the null string,
// empty: the empty string). On failure the string is unchanged.
template <class From>
kstd_result assignText(kstd_unicodeString* string, const From* text) {
    char16_t* chars = nullptr;
    int32_t length = 0;
    if (text == nullptr) {
    } else if (text[0] == 0) {
        chars = const_cast<char16_t*>(emptyText);  // never written: capacity 0
    } else {
        void* block;
        VEXPERS_TRY(newText(text, 0, &block, &chars, &length));
    }
    kstd_unicodeString_destruct(string);  // after the copy: `text` may be our own
    *string = kstd_unicodeString{chars, length, length == 0 ? 0 : length + 1};
    return 0;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_unicodeString_construct(kstd_unicodeString* string) {
    VEXPERS_REQUIRE(string != nullptr);
    *string = kstd_unicodeString{nullptr, 0, 0};
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_destruct(kstd_unicodeString* string) {
    VEXPERS_REQUIRE(string != nullptr);
    void* owned = string->capacity > 0 ? string->chars : nullptr;
    *string = kstd_unicodeString{nullptr, 0, 0};
    return ksys_memory_free_internal(&owned);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_reset(kstd_unicodeString* string) {
    return kstd_unicodeString_destruct(string);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_assign(kstd_unicodeString* string, const kstd_unicodeString* source) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (string == source) return 0;
    return assignText(string, source->chars);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_unicodeString)

VEXPERS_EXPORT kstd_result kstd_unicodeString_assignUnicodeStringConst(kstd_unicodeString* string,
                                                                       const kstd_unicodeStringConst* source) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    return assignText(string, source->chars);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_assignStringA(kstd_unicodeString* string, const char* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_assignStringW(kstd_unicodeString* string, const char16_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_assignString32(kstd_unicodeString* string, const char32_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_getStringW(const kstd_unicodeString* string, const char16_t** text,
                                                        int32_t* length) {
    VEXPERS_REQUIRE(text != nullptr);
    *text = nullptr;
    if (length != nullptr) *length = 0;
    VEXPERS_REQUIRE(string != nullptr);
    *text = string->chars;
    if (length != nullptr) *length = string->length;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_unicodeString_compareEqual(const kstd_unicodeString* first,
                                                          const kstd_unicodeString* second, uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(first != nullptr);
    VEXPERS_REQUIRE(second != nullptr);
    if (first->chars == nullptr || second->chars == nullptr)
        *equal = first->chars == second->chars;
    else
        *equal = first->length == second->length && ksys_wcscmp(first->chars, second->chars) == 0;
    return 0;
}

// ---- kstd_unicodeStringConst -----------------------------------------------------

namespace {

// A holder is one block: the shared header, then the NUL-terminated text.
kstd_result destroyHolder(kstd_shared* shared) {
    void* block = shared->whole;  // the pointer must not live in the block it frees
    return ksys_memory_free_internal(&block);
}

constexpr kstd_sharedCustom holderOperations = {destroyHolder, kstd_shared_increment_default,
                                                kstd_shared_decrement_default};

// Replaces the text with `text` converted to UTF-16 in a new holder (null:
// the null string, empty: the empty string, neither has a holder). On
// failure the string is unchanged.
template <class From>
kstd_result assignText(kstd_unicodeStringConst* string, const From* text) {
    if (text == nullptr || text[0] == 0) {
        VEXPERS_TRY(kstd_ptrhConst_reset(&string->holder));
        string->chars = text == nullptr ? nullptr : emptyText;
        string->length = 0;
        return 0;
    }
    void* block;
    char16_t* chars;
    int32_t length;
    VEXPERS_TRY(newText(text, sizeof(kstd_shared), &block, &chars, &length));
    auto* holder = static_cast<kstd_shared*>(block);
    kstd_shared_initCustom(holder, block, &holderOperations);
    // Taking the new holder cannot fail (its count is ours); dropping the old
    // one may free the text that `text` pointed into, after it was copied.
    const kstd_result result = kstd_ptrhConst_assignShared(&string->holder, holder);
    string->chars = chars;
    string->length = length;
    return result;
}

template <class To>
kstd_result getClone(const kstd_unicodeStringConst* string, To** clone) {
    VEXPERS_REQUIRE(clone != nullptr);
    *clone = nullptr;
    VEXPERS_REQUIRE(string != nullptr);
    return newClone(string->chars, clone);
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_construct(kstd_unicodeStringConst* string) {
    VEXPERS_REQUIRE(string != nullptr);
    string->chars = nullptr;
    string->length = 0;
    string->reserved = 0;
    return kstd_ptrhConst_constructEmpty(&string->holder);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_destruct(kstd_unicodeStringConst* string) {
    VEXPERS_REQUIRE(string != nullptr);
    string->chars = nullptr;
    string->length = 0;
    return kstd_ptrhConst_destruct(&string->holder);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_reset(kstd_unicodeStringConst* string) {
    VEXPERS_REQUIRE(string != nullptr);
    string->chars = nullptr;
    string->length = 0;
    return kstd_ptrhConst_reset(&string->holder);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assign(kstd_unicodeStringConst* string,
                                                          const kstd_unicodeStringConst* source) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (string == source) return 0;
    VEXPERS_TRY(kstd_ptrhConst_assign(&string->holder, &source->holder));
    string->chars = source->chars;  // the empty text is static, so copying it is fine
    string->length = source->length;
    return 0;
}

VEXPERS_DEFINE_CONSTRUCT_COPY(kstd_unicodeStringConst)

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assignStringA(kstd_unicodeStringConst* string, const char* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assignStringW(kstd_unicodeStringConst* string,
                                                                 const char16_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assignString16(kstd_unicodeStringConst* string,
                                                                  const char16_t* text) {
    return kstd_unicodeStringConst_assignStringW(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assignString32(kstd_unicodeStringConst* string,
                                                                  const char32_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    return assignText(string, text);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_assignUnicodeString(kstd_unicodeStringConst* string,
                                                                       const kstd_unicodeString* source) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    return assignText(string, static_cast<const char16_t*>(source->chars));
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getStringW(const kstd_unicodeStringConst* string,
                                                              const char16_t** text, int32_t* length) {
    VEXPERS_REQUIRE(text != nullptr);
    *text = nullptr;
    if (length != nullptr) *length = 0;
    VEXPERS_REQUIRE(string != nullptr);
    *text = string->chars;
    if (length != nullptr) *length = string->length;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getCloneStringA(const kstd_unicodeStringConst* string,
                                                                   char** clone) {
    return getClone(string, clone);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getCloneStringW(const kstd_unicodeStringConst* string,
                                                                   char16_t** clone) {
    return getClone(string, clone);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getCloneStringT(const kstd_unicodeStringConst* string,
                                                                   char16_t** clone) {
    return getClone(string, clone);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getCloneString16(const kstd_unicodeStringConst* string,
                                                                    char16_t** clone) {
    return getClone(string, clone);
}

VEXPERS_EXPORT kstd_result kstd_unicodeStringConst_getCloneString32(const kstd_unicodeStringConst* string,
                                                                    char32_t** clone) {
    return getClone(string, clone);
}
