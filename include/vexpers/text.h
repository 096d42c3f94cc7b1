/*
 * vexpers/text.h - text records of the standard services:
 *   kstd_string              a growable UTF-16 buffer (owned characters);
 *   kstd_unicodeString       a mutable UTF-16 string with null and empty states;
 *   kstd_unicodeStringConst  an immutable UTF-16 string whose copies share one
 *                            reference-counted holder.
 *
 * Texts are NUL-terminated. Null and empty are distinct everywhere: a null
 * text pointer gives the null string, a text whose first unit is 0 the empty
 * string; neither allocates. Conversions from UTF-8 and UTF-32 produce UTF-16
 * with surrogate pairs; invalid input (bad UTF-8, code points beyond U+10FFFF,
 * unpaired surrogates in UTF-32) fails with ksys_result_invalidText and leaves
 * the target unchanged. UTF-16 input is stored as given; converting it to
 * UTF-8 or UTF-32 fails with ksys_result_invalidText on an unpaired
 * surrogate. Allocation failure returns ksys_result_outOfMemory, and a text
 * of INT32_MAX units or more ksys_result_invalidSize, with the target
 * unchanged. Clones returned by the getClone functions are
 * allocated with ksys_memory_alloc_internal and are the caller's to free with
 * ksys_memory_free_internal; the clone of the null string is a null pointer.
 */
#ifndef VEXPERS_TEXT_H
#define VEXPERS_TEXT_H

#include "vexpers/base.h"
#include "vexpers/shared.h"

VEXPERS_EXTERN_C_BEGIN

/* ---- kstd_string ------------------------------------------------------------ */

/** Owned UTF-16 characters: `chars` is null when empty, else NUL-terminated
 *  text of `length` units (the terminator not counted). */
typedef struct kstd_string {
    char16_t* chars;
    int32_t length;
    int32_t capacity;
} kstd_string;

/* _constructEmpty gives the empty string (nothing allocated); _destruct frees
 * the characters. */
VEXPERS_API kstd_result kstd_string_constructEmpty(kstd_string* string);
VEXPERS_API kstd_result kstd_string_destruct(kstd_string* string);
/** Copies `text` (null or empty gives an empty string with null chars). */
VEXPERS_API kstd_result kstd_string_assignString(kstd_string* string, const char16_t* text);

/* ---- kstd_unicodeString -------------------------------------------------------- */

/**
 * A mutable UTF-16 string. `chars` is null for the null string; for the empty
 * string it points at a static empty text (capacity 0, not owned); otherwise
 * at `capacity` owned units holding `length` units and a terminator.
 * The record holds no pointer into itself, so it may be moved bytewise.
 */
typedef struct kstd_unicodeString {
    char16_t* chars;
    int32_t length;
    int32_t capacity;
} kstd_unicodeString;

typedef struct kstd_unicodeStringConst kstd_unicodeStringConst;

/* The life-cycle family (vexpers/base.h): _construct gives the null string,
 * _reset returns to it and frees the characters; _assign and _constructCopy
 * copy the source's state and characters into storage of their own. The
 * _assign forms from other texts convert as described at the top of this
 * header; _assignUnicodeStringConst copies that string's characters. */
VEXPERS_API kstd_result kstd_unicodeString_construct(kstd_unicodeString* string);
VEXPERS_API kstd_result kstd_unicodeString_constructCopy(kstd_unicodeString* string, const kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_unicodeString_assign(kstd_unicodeString* string, const kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_unicodeString_destruct(kstd_unicodeString* string);
VEXPERS_API kstd_result kstd_unicodeString_reset(kstd_unicodeString* string);
VEXPERS_API kstd_result kstd_unicodeString_new(kstd_unicodeString** out);
VEXPERS_API kstd_result kstd_unicodeString_newClone(kstd_unicodeString** out, const kstd_unicodeString* source);
VEXPERS_API kstd_result kstd_unicodeString_delete(kstd_unicodeString** out);
VEXPERS_API kstd_result kstd_unicodeString_assignUnicodeStringConst(kstd_unicodeString* string,
                                                                    const kstd_unicodeStringConst* source);
VEXPERS_API kstd_result kstd_unicodeString_assignStringA(kstd_unicodeString* string, const char* text);
VEXPERS_API kstd_result kstd_unicodeString_assignStringW(kstd_unicodeString* string, const char16_t* text);
VEXPERS_API kstd_result kstd_unicodeString_assignString32(kstd_unicodeString* string, const char32_t* text);
/** The text (null for the null string) and its length in units (optional). */
VEXPERS_API kstd_result kstd_unicodeString_getStringW(const kstd_unicodeString* string, const char16_t** text,
                                                     int32_t* length);
/** 1 when both hold the same state and units (null equals only null). */
VEXPERS_API kstd_result kstd_unicodeString_compareEqual(const kstd_unicodeString* first,
                                                       const kstd_unicodeString* second, uint32_t* equal);

/* ---- kstd_unicodeStringConst ---------------------------------------------------- */

/**
 * An immutable UTF-16 string. Copies share the holder; assigning new text
 * makes a new holder. `chars` is null for the null string and points at a
 * static empty text for the empty string (neither has a holder). A holder is
 * one allocation: a shared object with the text stored after its header.
 * The record holds no pointer into itself, so it may be moved bytewise.
 */
struct kstd_unicodeStringConst {
    kstd_ptrhConst holder;
    const char16_t* chars;
    int32_t length;
    int32_t reserved;
};

/* _construct gives the null string; _constructCopy and _assign share the
 * source's holder; _reset drops the holder and gives the null string. The
 * _assign forms from texts make a new holder (StringA: UTF-8, String32:
 * UTF-32, W and 16: UTF-16) and convert as described at the top of this
 * header; _assignUnicodeString copies that string's characters. The getClone
 * forms give a new copy in the form of their suffix (A: UTF-8, W, T and 16:
 * UTF-16, 32: UTF-32, surrogate pairs joined); *clone is null first. */
VEXPERS_API kstd_result kstd_unicodeStringConst_construct(kstd_unicodeStringConst* string);
VEXPERS_API kstd_result kstd_unicodeStringConst_constructCopy(kstd_unicodeStringConst* string,
                                                              const kstd_unicodeStringConst* source);
VEXPERS_API kstd_result kstd_unicodeStringConst_destruct(kstd_unicodeStringConst* string);
VEXPERS_API kstd_result kstd_unicodeStringConst_reset(kstd_unicodeStringConst* string);
VEXPERS_API kstd_result kstd_unicodeStringConst_assign(kstd_unicodeStringConst* string,
                                                       const kstd_unicodeStringConst* source);
VEXPERS_API kstd_result kstd_unicodeStringConst_assignStringA(kstd_unicodeStringConst* string, const char* text);
VEXPERS_API kstd_result kstd_unicodeStringConst_assignStringW(kstd_unicodeStringConst* string, const char16_t* text);
VEXPERS_API kstd_result kstd_unicodeStringConst_assignString16(kstd_unicodeStringConst* string, const char16_t* text);
VEXPERS_API kstd_result kstd_unicodeStringConst_assignString32(kstd_unicodeStringConst* string, const char32_t* text);
VEXPERS_API kstd_result kstd_unicodeStringConst_assignUnicodeString(kstd_unicodeStringConst* string,
                                                                    const kstd_unicodeString* source);
/** The shared text (null for the null string, valid while a copy holds it)
 *  and its length in units (optional). Never makes a temporary copy. */
VEXPERS_API kstd_result kstd_unicodeStringConst_getStringW(const kstd_unicodeStringConst* string,
                                                           const char16_t** text, int32_t* length);
VEXPERS_API kstd_result kstd_unicodeStringConst_getCloneStringA(const kstd_unicodeStringConst* string, char** clone);
VEXPERS_API kstd_result kstd_unicodeStringConst_getCloneStringW(const kstd_unicodeStringConst* string, char16_t** clone);
VEXPERS_API kstd_result kstd_unicodeStringConst_getCloneStringT(const kstd_unicodeStringConst* string, char16_t** clone);
VEXPERS_API kstd_result kstd_unicodeStringConst_getCloneString16(const kstd_unicodeStringConst* string, char16_t** clone);
VEXPERS_API kstd_result kstd_unicodeStringConst_getCloneString32(const kstd_unicodeStringConst* string, char32_t** clone);

/* ---- Platform string functions over UTF-16 ---------------------------------------- */
/* A null text is a precondition fault: it is reported and read as no text
 * (length 0, comparison 0, no unit found). */

/** Length in units up to the terminator. */
VEXPERS_API size_t ksys_wcslen(const char16_t* text);
/** Compares unsigned 16-bit units: -1, 0 or +1. */
VEXPERS_API int32_t ksys_wcscmp(const char16_t* first, const char16_t* second);
/** As ksys_wcscmp over at most `count` units. */
VEXPERS_API int32_t ksys_wcsncmp(const char16_t* first, const char16_t* second, size_t count);
/** First occurrence of `unit` (the terminator included when unit is 0). */
VEXPERS_API const char16_t* ksys_wcschr(const char16_t* text, char16_t unit);

VEXPERS_EXTERN_C_END

#endif /* VEXPERS_TEXT_H */
