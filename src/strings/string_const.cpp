// Constant strings: immutable UTF-16 texts whose copies share one
// reference-counted character holder. The null and the empty string need no
// holder; the empty string points at the record's own emptyChar, which is why
// records are copied only through assign.
#include "vexpers/stringconst.h"
#include "vexpers/text.h"

#include "frame/lifecycle.hpp"
#include "strings/text_hash.hpp"

namespace {

constexpr char16_t holderTypename[] = u"kstd_stringConst";

// The character holder: a shared object that owns a kstd_string.
struct Holder {
    kstd_shared header;
    kstd_string text;
};

kstd_result destroyHolder(kstd_shared* shared) {
    auto* holder = static_cast<Holder*>(shared->whole);
    const kstd_result result = kstd_string_destruct(&holder->text);
    void* memory = holder;
    ksys_memory_free_internal(&memory);
    return result;
}

kstd_result queryHolder(kstd_shared* shared, const char16_t* name, void** result) {
    *result = nullptr;
    if (shared == nullptr) return 0;
    if (name != nullptr && ksys_wcscmp(name, holderTypename) == 0) {
        *result = shared->whole;
        return 0;
    }
    return kstd_shared_queryInterfaceByTypenameFinal(shared, name, result);
}

kstd_result holderTypenameOf(const kstd_shared*, const char16_t** name) {
    *name = holderTypename;
    return 0;
}

constexpr kstd_sharedCustom holderCounting{destroyHolder, kstd_shared_increment_default, kstd_shared_decrement_default};
constexpr kstd_sharedTyped holderTyping{queryHolder, holderTypenameOf};

// Makes a holder whose text is still empty.
kstd_result newHolder(Holder** out) {
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(Holder), &memory));
    auto* holder = static_cast<Holder*>(memory);
    kstd_shared_initCustomTyped(&holder->header, holder, &holderCounting, &holderTyping);
    const kstd_result result = kstd_string_constructEmpty(&holder->text);
    if (vexpers::failed(result)) {
        ksys_memory_free_internal(&memory);
        return result;
    }
    *out = holder;
    return 0;
}

kstd_result constructState(kstd_stringConst* string, bool empty) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_TRY(kstd_ptrhConst_constructEmpty(&string->holder));
    string->emptyChar = 0;
    string->chars = empty ? &string->emptyChar : nullptr;
    string->length = 0;
    return 0;
}

kstd_result resetState(kstd_stringConst* string, bool empty) {
    VEXPERS_REQUIRE(string != nullptr);
    string->chars = empty ? &string->emptyChar : nullptr;
    string->length = 0;
    return kstd_ptrhConst_reset(&string->holder);
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_stringConst_constructNullString(kstd_stringConst* string) {
    return constructState(string, false);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_constructEmptyString(kstd_stringConst* string) {
    return constructState(string, true);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_construct(kstd_stringConst* string) {
    return constructState(string, false);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_destruct(kstd_stringConst* string) {
    VEXPERS_REQUIRE(string != nullptr);
    string->chars = nullptr;
    string->length = 0;
    return kstd_ptrhConst_destruct(&string->holder);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_assign(kstd_stringConst* string, const kstd_stringConst* source) {
    VEXPERS_REQUIRE(string != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (string == source) return 0;
    string->chars = nullptr;
    string->length = 0;
    string->emptyChar = 0;
    VEXPERS_TRY(kstd_ptrhConst_assign(&string->holder, &source->holder));
    // An empty source points into itself; the copy points into its own record.
    string->chars = source->chars == &source->emptyChar ? &string->emptyChar : source->chars;
    string->length = source->length;
    return 0;
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_stringConst)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_stringConst)

VEXPERS_EXPORT kstd_result kstd_stringConst_reset(kstd_stringConst* string) { return resetState(string, false); }

VEXPERS_EXPORT kstd_result kstd_stringConst_resetNullString(kstd_stringConst* string) {
    return resetState(string, false);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_resetEmptyString(kstd_stringConst* string) {
    return resetState(string, true);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_assignString(kstd_stringConst* string, const char16_t* text) {
    VEXPERS_REQUIRE(string != nullptr);
    if (text == nullptr) return resetState(string, false);
    if (text[0] == 0) return resetState(string, true);
    // The characters are copied before the old holder is released, so a text
    // that lives in that holder (the record's own chars) is safe to assign.
    // A holder that cannot be made leaves the record as it was; characters
    // that cannot be copied leave it the null string.
    Holder* holder = nullptr;
    VEXPERS_TRY(newHolder(&holder));
    kstd_result result = kstd_string_assignString(&holder->text, text);
    if (vexpers::failed(result)) {
        destroyHolder(&holder->header);
        resetState(string, false);
        return result;
    }
    result = kstd_ptrhConst_assignShared(&string->holder, &holder->header);
    if (vexpers::failed(result)) {
        destroyHolder(&holder->header);
        return result;
    }
    string->chars = holder->text.chars;
    string->length = holder->text.length;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConst_getString(const kstd_stringConst* string, const char16_t** text) {
    VEXPERS_REQUIRE(text != nullptr);
    *text = nullptr;
    VEXPERS_REQUIRE(string != nullptr);
    *text = string->chars;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConst_compareString(const kstd_stringConst* string, const char16_t* text,
                                                          int32_t* order) {
    VEXPERS_REQUIRE(order != nullptr);
    *order = 0;
    VEXPERS_REQUIRE(string != nullptr);
    const char16_t* chars = string->chars;
    if (chars == nullptr || text == nullptr)
        *order = (chars == nullptr) == (text == nullptr) ? 0 : (chars == nullptr ? -1 : 1);
    else
        *order = ksys_wcscmp(chars, text);
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConst_compare(const kstd_stringConst* string, const kstd_stringConst* other,
                                                    int32_t* order) {
    VEXPERS_REQUIRE(other != nullptr);
    return kstd_stringConst_compareString(string, other->chars, order);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_compareEqualString(const kstd_stringConst* string, const char16_t* text,
                                                               uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    int32_t order = 0;
    VEXPERS_TRY(kstd_stringConst_compareString(string, text, &order));
    *equal = order == 0 ? 1 : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConst_compareEqual(const kstd_stringConst* string, const kstd_stringConst* other,
                                                         uint32_t* equal) {
    VEXPERS_REQUIRE(other != nullptr);
    return kstd_stringConst_compareEqualString(string, other->chars, equal);
}

VEXPERS_EXPORT kstd_result kstd_stringConst_hash(const kstd_stringConst* string, uint32_t* hash) {
    VEXPERS_REQUIRE(hash != nullptr);
    *hash = 5381;
    VEXPERS_REQUIRE(string != nullptr);
    *hash = vexpers::hashText(string->chars);
    return 0;
}
