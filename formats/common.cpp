#include "common.hpp"

#include <cstdarg>
#include <cstdio>

namespace vexpers::formats {

kstd_result fail(kfmt_report* report, kstd_result code, int64_t offset, const char* format, ...) {
    if (report == nullptr) return code;
    report->code = code;
    report->offset = offset;
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    char scratch[16];
    if (offset >= 0)
        std::snprintf(report->message, sizeof report->message, "offset %lld: %s (%s)",
                      static_cast<long long>(offset), text, codeName(code, scratch));
    else
        std::snprintf(report->message, sizeof report->message, "%s (%s)", text, codeName(code, scratch));
    return code;
}

void succeed(kfmt_report* report) {
    if (report == nullptr) return;
    report->code = 0;
    report->offset = -1;
    report->message[0] = 0;
}

const char* codeName(kstd_result code, char (&scratch)[16]) {
    switch (code) {
    case kfmt_result_truncated: return "truncated";
    case kfmt_result_malformed: return "malformed";
    case kfmt_result_unsupportedVersion: return "unsupported version";
    case kfmt_result_limitExceeded: return "limit exceeded";
    case kfmt_result_protocol: return "section protocol";
    case kfmt_result_badValue: return "bad value";
    case kfmt_result_objectIds: return "object ids";
    case kfmt_result_countMismatch: return "count mismatch";
    case kfmt_result_io: return "input/output";
    case kfmt_result_notStorable: return "not storable";
    case ksys_result_outOfMemory: return "out of memory";
    case kstd_persistentResult_nestingTooDeep: return "nesting too deep";
    case kstd_persistentResult_tooManyNodes: return "too many nodes";
    case kstd_persistentResult_nameTooLong: return "name too long";
    case kstd_persistentResult_arraySizeOverflow: return "array too large";
    case kstd_persistentResult_invalidArgument: return "invalid argument";
    default:
        std::snprintf(scratch, sizeof scratch, "0x%08X", static_cast<unsigned>(code));
        return scratch;
    }
}

kstd_result appendUtf8(Buffer<char>& out, const char16_t* text, size_t length, bool allowSurrogates) {
    KFMT_TRY(out.reserve(out.size() + length));
    for (size_t i = 0; i < length; ++i) {
        uint32_t unit = text[i];
        uint32_t code = unit;
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            code = 0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (unit >= 0xD800 && unit <= 0xDFFF && !allowSurrogates) {
            return ksys_result_invalidText;
        }
        char bytes[4];
        size_t count;
        if (code < 0x80) {
            bytes[0] = static_cast<char>(code);
            count = 1;
        } else if (code < 0x800) {
            bytes[0] = static_cast<char>(0xC0 | (code >> 6));
            bytes[1] = static_cast<char>(0x80 | (code & 0x3F));
            count = 2;
        } else if (code < 0x10000) {
            bytes[0] = static_cast<char>(0xE0 | (code >> 12));
            bytes[1] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            bytes[2] = static_cast<char>(0x80 | (code & 0x3F));
            count = 3;
        } else {
            bytes[0] = static_cast<char>(0xF0 | (code >> 18));
            bytes[1] = static_cast<char>(0x80 | ((code >> 12) & 0x3F));
            bytes[2] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
            bytes[3] = static_cast<char>(0x80 | (code & 0x3F));
            count = 4;
        }
        KFMT_TRY(out.append(bytes, count));
    }
    return 0;
}

kstd_result decodeUtf8(Buffer<char16_t>& out, const char* text, size_t length, bool allowSurrogates) {
    out.clear();
    KFMT_TRY(out.reserve(length + 1));
    const auto* bytes = reinterpret_cast<const uint8_t*>(text);
    size_t i = 0;
    while (i < length) {
        const uint32_t lead = bytes[i];
        uint32_t code;
        size_t count;
        if (lead < 0x80) {
            code = lead;
            count = 1;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            code = lead & 0x1F;
            count = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            code = lead & 0x0F;
            count = 3;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            code = lead & 0x07;
            count = 4;
        } else {
            return ksys_result_invalidText;
        }
        if (count > length - i) return ksys_result_invalidText;
        for (size_t k = 1; k < count; ++k) {
            const uint32_t next = bytes[i + k];
            if ((next & 0xC0) != 0x80) return ksys_result_invalidText;
            code = (code << 6) | (next & 0x3F);
        }
        // Overlong forms and code points beyond U+10FFFF.
        if ((count == 3 && code < 0x800) || (count == 4 && (code < 0x10000 || code > 0x10FFFF)))
            return ksys_result_invalidText;
        if (code >= 0xD800 && code <= 0xDFFF && !allowSurrogates) return ksys_result_invalidText;
        if (code == 0) return ksys_result_invalidText;
        if (code >= 0x10000) {
            KFMT_TRY(out.push(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10))));
            KFMT_TRY(out.push(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF))));
        } else {
            KFMT_TRY(out.push(static_cast<char16_t>(code)));
        }
        i += count;
    }
    KFMT_TRY(out.push(0));
    out.pop();  // the terminator stays in the memory, not in the count
    return 0;
}

const char* derivationSuffix(uint32_t derivation) {
    switch (derivation) {
    case kstd_persistentTypeDerivation_value: return "";
    case kstd_persistentTypeDerivation_pointer: return "*";
    case kstd_persistentTypeDerivation_array: return "[]";
    case kstd_persistentTypeDerivation_indirect: return "&";
    case kstd_persistentTypeDerivation_bitfield: return "{bits}";
    case kstd_persistentTypeDerivation_bitfieldArray: return "{bits}[]";
    default: return "?";
    }
}

Kinds kindsOf(uint32_t flags) {
    Kinds kinds;
    if ((flags & 0x18u) == 0x18u) kinds.leafKind = 1;
    else if ((flags & 0x28u) == 0x28u) kinds.leafKind = 2;
    else if ((flags & 0x48u) == 0x48u) kinds.leafKind = 3;
    else if ((flags & 0x88u) == 0x88u) kinds.leafKind = 4;
    kinds.arrayKind = (flags & kstd_persistentPropertyNodeFlag_arrayOfCoreItems)    ? 1u
                      : (flags & kstd_persistentPropertyNodeFlag_arrayOfOtherItems) ? 2u
                                                                                    : 0u;
    kinds.isItem = (flags & kstd_persistentPropertyNodeFlag_arrayItem) != 0;
    kinds.hasId = (flags & kstd_persistentPropertyNodeFlag_hasObjectId) != 0;
    kinds.isDeleted = (flags & kstd_persistentPropertyNodeFlag_deleted) != 0;
    return kinds;
}

}  // namespace vexpers::formats
