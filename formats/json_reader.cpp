// The JSON decoder: RapidJSON's iterative SAX parser calls the handler below
// token by token; the handler collects a node's keys and hands the section
// to the SectionReader as soon as its value, items or children begin. No
// document is built, and nesting lives on RapidJSON's and the reader's heap
// stacks. The key order is that of the encoder (json_writer.cpp): the
// descriptor keys in any order, then at most one of "value", "items" or
// "children", last.
#include <bit>

#include "json.hpp"
#include "reader.hpp"

namespace vexpers::formats {
namespace {

// RapidJSON's view of the input. Its end reads as 0, which RapidJSON takes
// as the end of the text. The iterative parser calls StartObject and
// EndObject before it takes the brace, so the input's offset is then the
// brace's own. RapidJSON asks for every byte on its own: those come from
// the input's buffer without a call.
struct ByteStream {
    typedef char Ch;
    Input* in;
    Ch Peek() const {
        const int c = in->peekInline();
        return c < 0 ? '\0' : static_cast<char>(c);
    }
    Ch Take() {
        const int c = in->takeInline();
        return c < 0 ? '\0' : static_cast<char>(c);
    }
    size_t Tell() const { return static_cast<size_t>(in->offset()); }
    Ch* PutBegin() { return nullptr; }
    void Put(Ch) {}
    void Flush() {}
    size_t PutEnd(Ch*) { return 0; }

    // The number of plain ASCII characters (no quote, backslash or control
    // character) at the start of `bytes`; eight at a time where it can.
    static size_t plainRun(const char* bytes, size_t count) {
        size_t run = 0;
        if constexpr (std::endian::native == std::endian::little) {
            constexpr uint64_t ones = 0x0101010101010101u, highs = 0x8080808080808080u;
            const auto below = [&](uint64_t word, uint64_t limit) { return (word - ones * limit) & ~word; };
            const auto equal = [&](uint64_t word, uint64_t c) { return below(word ^ (ones * c), 1); };
            for (; count - run >= 8; run += 8) {
                uint64_t word;
                std::memcpy(&word, bytes + run, 8);
                // The lowest flagged byte of each test is exact; flags
                // above it may be false, and do not matter.
                const uint64_t special = (below(word, 0x20) | equal(word, '"') | equal(word, '\\') | word) & highs;
                if (special != 0) return run + static_cast<size_t>(__builtin_ctzll(special) >> 3);
            }
        }
        while (run < count && isPlain(bytes[run])) ++run;
        return run;
    }

    // Takes the white space before the next token, a buffer at a time;
    // the indentation of the lines eight spaces at a time.
    void skipWhitespace() {
        constexpr uint64_t eightSpaces = 0x2020202020202020u;
        for (;;) {
            size_t count = 0;
            const char* bytes = in->buffered(&count);
            if (count > 0 && !isSpace(bytes[0])) return;  // most tokens follow the one before at once
            size_t taken = 0;
            for (;;) {
                uint64_t word;
                if (count - taken >= 8 && (std::memcpy(&word, bytes + taken, 8), word == eightSpaces)) {
                    taken += 8;
                    continue;
                }
                if (taken == count || !isSpace(bytes[taken])) break;
                ++taken;
            }
            in->skipBuffered(taken);
            if (taken < count || in->peek() < 0) return;
        }
    }
    static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

    // Inside a string whose next character RapidJSON found to be no quote,
    // backslash or control character: when that character is ASCII, copies
    // it and the plain ASCII characters after it that the buffer holds to
    // `out`, as RapidJSON would one by one. False (nothing taken) when it
    // is no ASCII character.
    template <typename Out>
    bool copyPlainRun(Out& out) {
        size_t count = 0;
        const char* bytes = in->buffered(&count);
        if (count == 0 || static_cast<uint8_t>(bytes[0]) >= 0x80) return false;
        const size_t run = 1 + plainRun(bytes + 1, count - 1);
        char* to = static_cast<char*>(out.Push(run));
        for (size_t k = 0; k < run; ++k) to[k] = bytes[k];
        in->skipBuffered(run);
        return true;
    }
    static bool isPlain(char c) {
        const uint8_t u = static_cast<uint8_t>(c);
        return u - 0x20u < 0x60u && u != '"' && u != '\\';
    }
};

// The stream the parser is given. Its strings and numbers take the fast
// paths below, which leave everything else to RapidJSON's own code on a
// ByteStream.
struct Stream : ByteStream {};

// UTF-8 in and out: RapidJSON checks every character of a string (and
// refuses bad UTF-8, surrogates and overlong forms) and copies it; runs of
// plain ASCII characters are copied at once. Texts are widened to UTF-16
// only where they are kept.
struct Utf8 : rapidjson::UTF8<char> {
    template <typename InputStream, typename OutputStream>
    static bool Validate(InputStream& is, OutputStream& os) {
        // (RapidJSON's in-place parsing, not used here, copies into the input.)
        if constexpr (!std::is_same_v<InputStream, OutputStream>)
            if (is.copyPlainRun(os)) return true;
        return rapidjson::UTF8<char>::Validate(is, os);
    }
};

}  // namespace
}  // namespace vexpers::formats

namespace rapidjson {
template <>
inline void SkipWhitespace(vexpers::formats::Stream& is) {
    is.skipWhitespace();
}
}  // namespace rapidjson

namespace vexpers::formats {
namespace {

// `text` is the word `word` (a literal).
template <size_t N>
bool is(const char* text, size_t length, const char (&word)[N]) {
    return length == N - 1 && std::memcmp(text, word, N - 1) == 0;
}

enum class NodeKey { name, type, derivation, access, kind, item, deleted, id, count, valueType, value, items, children, unknown };

NodeKey nodeKeyOf(const char* text, size_t length) {
    if (is(text, length, "name")) return NodeKey::name;
    if (is(text, length, "type")) return NodeKey::type;
    if (is(text, length, "kind")) return NodeKey::kind;
    if (is(text, length, "value")) return NodeKey::value;
    if (is(text, length, "derivation")) return NodeKey::derivation;
    if (is(text, length, "id")) return NodeKey::id;
    if (is(text, length, "count")) return NodeKey::count;
    if (is(text, length, "items")) return NodeKey::items;
    if (is(text, length, "children")) return NodeKey::children;
    if (is(text, length, "valueType")) return NodeKey::valueType;
    if (is(text, length, "access")) return NodeKey::access;
    if (is(text, length, "item")) return NodeKey::item;
    if (is(text, length, "deleted")) return NodeKey::deleted;
    return NodeKey::unknown;
}

// The leaf and array kinds a "kind" word stands for; false for no word.
bool kindOf(const char* text, size_t length, uint32_t* leafKind, uint32_t* arrayKind) {
    const auto set = [&](uint32_t leaf, uint32_t array) {
        *leafKind = leaf;
        *arrayKind = array;
        return true;
    };
    if (is(text, length, "value")) return set(1, 0);
    if (is(text, length, "object")) return set(0, 0);
    if (is(text, length, "array")) return set(0, 1);
    if (is(text, length, "list")) return set(0, 2);
    if (is(text, length, "null")) return set(2, 0);
    if (is(text, length, "ref")) return set(4, 0);
    if (is(text, length, "emptyArray")) return set(3, 1);
    if (is(text, length, "emptyList")) return set(3, 2);
    return false;
}

// A JSON scalar as it came; strings in UTF-8.
struct Token {
    enum Kind { null, boolean, integer, bigUnsigned, real, string } kind = null;
    bool b = false;
    int64_t i = 0;
    uint64_t u = 0;
    double d = 0;
    const char* text = nullptr;
    size_t length = 0;
};

// A surrogate without its other half. RapidJSON takes the escape of a low
// surrogate on its own (of U+DD22, say) and writes that code point as its
// three bytes (ED B4 A2); JSON text holds whole characters only, and the
// writer could not write such a string back. Anything else RapidJSON lets
// through holds no surrogate: it refuses them as bytes, and the escape of a
// high surrogate without the escape of a low one after it.
bool hasUnpairedSurrogate(const char* text, size_t length) {
    for (const char* at = text; (at = static_cast<const char*>(std::memchr(at, 0xED, length - (at - text)))) != nullptr;) {
        if (++at == text + length) return false;
        if (static_cast<uint8_t>(*at) >= 0xA0) return true;
    }
    return false;
}

// A string with a 0 character or a surrogate (ED at all).
bool mayBeUnusual(const char* text, size_t length) {
    bool unusual = false;
    for (size_t k = 0; k < length; ++k) unusual |= text[k] == '\0' || static_cast<uint8_t>(text[k]) == 0xED;
    return unusual;
}

// The UTF-16 units of UTF-8 text that RapidJSON checked.
size_t unitsOf(const char* text, size_t length) {
    size_t units = 0;
    for (size_t k = 0; k < length; ++k) {
        const uint8_t byte = static_cast<uint8_t>(text[k]);
        units += (byte & 0xC0) != 0x80 ? 1 : 0;  // one for each character
        units += byte >= 0xF0 ? 1 : 0;           // two beyond U+FFFF
    }
    return units;
}

// UTF-8 text that RapidJSON checked (and the handler: no 0 character, no
// surrogate) as terminated UTF-16 in `out`; ASCII goes unit for unit.
kstd_result widen(Buffer<char16_t>& out, const char* text, size_t length) {
    size_t k = 0;
    while (k < length && static_cast<uint8_t>(text[k]) < 0x80) ++k;
    if (k < length) return decodeUtf8(out, text, length, false);
    out.clear();
    KFMT_TRY(out.resize(length + 1));
    char16_t* to = out.data();
    for (k = 0; k < length; ++k) to[k] = static_cast<uint8_t>(text[k]);
    out.pop();  // the terminator stays in the memory, not in the count
    return 0;
}

// A number of the forms the writer gives, scanned from bytes that hold it
// and the byte after it: an integer of at most 19 digits that fits in 64
// bits, or a fraction without an exponent. Its value is computed as
// RapidJSON computes it, with the same steps and the same final conversion.
struct Number {
    bool minus = false;
    bool isFraction = false;
    uint64_t integer = 0;  // the digits before the point
    double approximation = 0;
    int fractionExponent = 0;
    char digits[48];       // all digits, without the point
    size_t length = 0;
    size_t pointAt = 0;    // digits before the point
    size_t taken = 0;      // bytes of the number
};

// Eight digits at `bytes` as a number, if they are eight digits (on
// little-endian machines; elsewhere the digits go one by one).
bool eightDigits(const char* bytes, uint64_t* value) {
    if constexpr (std::endian::native != std::endian::little) return false;
    uint64_t word;
    std::memcpy(&word, bytes, 8);
    if (((word & 0xF0F0F0F0F0F0F0F0u) | (((word + 0x0606060606060606u) & 0xF0F0F0F0F0F0F0F0u) >> 4)) !=
        0x3333333333333333u)
        return false;
    word -= 0x3030303030303030u;
    word = word * 10 + (word >> 8);  // pairs of digits
    *value = (((word & 0x000000FF000000FFu) * (100 + (uint64_t{1000000} << 32))) +
              (((word >> 16) & 0x000000FF000000FFu) * (1 + (uint64_t{10000} << 32)))) >>
             32;
    return true;
}

// The decimal digits of a number below 10^8.
int digitsOf(uint64_t value) {
    int count = 0;
    for (; value != 0; value /= 10) ++count;
    return count;
}

// False for every other form, and when the number may go on past `count`.
bool scanNumber(const char* bytes, size_t count, Number* n) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const char* at = bytes;
    const char* const end = bytes + count;
    char* to = n->digits;
    char* const toEnd = n->digits + sizeof n->digits;
    if (at < end && *at == '-') {
        n->minus = true;
        ++at;
    }
    // The integer part: 0 alone, or up to 19 digits that fit in 64 bits
    // (down to -2^63), so that RapidJSON would not go on in a double.
    const char* const first = at;
    uint64_t integer = 0;
    for (; at < end && isDigit(*at); ++at) {
        if (at - first == 19) return false;
        integer = integer * 10 + static_cast<unsigned>(*at - '0');
        *to++ = *at;
    }
    if (at == first || at == end || (*first == '0' && at - first > 1)) return false;
    if (n->minus && integer > uint64_t{1} << 63) return false;
    n->integer = integer;
    n->pointAt = static_cast<size_t>(to - n->digits);
    if (*at == '.') {
        const char* const fraction = ++at;
        // As RapidJSON: digits go into a 64-bit significand up to 2^53 - 1,
        // then into a double while fewer than 17 are significant.
        int significant = *first == '0' ? 0 : static_cast<int>(n->pointAt) - 1;
        int exponent = 0;
        uint64_t significand = integer;
        constexpr uint64_t fastLimit = (uint64_t{1} << 53) - 1;
        // Eight digits at once while the significand stays within the
        // limit after them (so it was within it before each of them).
        uint64_t chunk;
        while (end - at > 8 && toEnd - to >= 8 && significand < 90071992u && eightDigits(at, &chunk) &&
               significand * 100000000u + chunk <= fastLimit) {
            significant += significand != 0 ? 8 : digitsOf(chunk);
            significand = significand * 100000000u + chunk;
            exponent -= 8;
            std::memcpy(to, at, 8);
            to += 8;
            at += 8;
        }
        for (; at < end && isDigit(*at) && significand <= fastLimit; ++at) {
            if (to == toEnd) return false;
            significand = significand * 10 + static_cast<unsigned>(*at - '0');
            --exponent;
            significant += significand != 0 ? 1 : 0;
            *to++ = *at;
        }
        double d = static_cast<double>(significand);
        for (; at < end && isDigit(*at); ++at) {
            if (to == toEnd) return false;
            if (significant < 17) {
                d = d * 10.0 + (*at - '0');
                --exponent;
                if (d > 0.0) ++significant;
            }
            *to++ = *at;
        }
        if (at == fraction || at == end) return false;
        n->isFraction = true;
        n->approximation = d;
        n->fractionExponent = exponent;
    }
    if (*at == 'e' || *at == 'E') return false;
    n->length = static_cast<size_t>(to - n->digits);
    n->taken = static_cast<size_t>(at - bytes);
    return true;
}

class Handler {
public:
    Handler(Input& input, SectionReader& reader) : in_(input), reader_(reader) {}

    // The code that stopped the parse (0 while none did).
    kstd_result failure() const { return failure_; }

    bool Null() { return scalar(Token{}); }
    bool Bool(bool b) {
        Token t;
        t.kind = Token::boolean;
        t.b = b;
        return scalar(t);
    }
    bool Int(int i) { return Int64(i); }
    bool Uint(unsigned u) { return Int64(u); }
    bool Int64(int64_t i) {
        Token t;
        t.kind = Token::integer;
        t.i = i;
        return scalar(t);
    }
    bool Uint64(uint64_t u) {
        if (u <= static_cast<uint64_t>(INT64_MAX)) return Int64(static_cast<int64_t>(u));
        Token t;
        t.kind = Token::bigUnsigned;
        t.u = u;
        return scalar(t);
    }
    bool Double(double d) {
        Token t;
        t.kind = Token::real;
        t.d = d;
        return scalar(t);
    }
    bool RawNumber(const char*, size_t, bool) { return stop(kfmt_result_malformed, "a raw number"); }
    bool String(const char* text, size_t length, bool) {
        if (mayBeUnusual(text, length)) {
            if (std::memchr(text, '\0', length) != nullptr)
                return stop(kfmt_result_malformed, "a string with a 0 character");
            if (hasUnpairedSurrogate(text, length))
                return stop(kfmt_result_malformed, "a string with an unpaired surrogate");
        }
        return checkedString(text, length);
    }
    // A string known to hold neither a 0 character nor a surrogate.
    bool checkedString(const char* text, size_t length) {
        Token t;
        t.kind = Token::string;
        t.text = text;
        t.length = length;
        return scalar(t);
    }

    bool StartObject() {
        switch (state_) {
        case State::start:
            state_ = State::document;
            return true;
        case State::nodeList:
            beginNode();
            state_ = State::node;
            return true;
        default:
            return stop(kfmt_result_malformed, "an object where none belongs");
        }
    }

    bool Key(const char* text, size_t length, bool) {
        if (state_ == State::document) return documentKey(text, length);
        if (state_ != State::node) return stop(kfmt_result_malformed, "a key where none belongs");
        const NodeKey key = nodeKeyOf(text, length);
        if (key == NodeKey::unknown) return stop(kfmt_result_malformed, "an unknown key");
        const uint32_t bit = 1u << static_cast<unsigned>(key);
        if (seen_ & bit) return stop(kfmt_result_malformed, "a key given twice");
        seen_ |= bit;
        key_ = key;
        state_ = State::nodeValue;
        return true;
    }

    bool EndObject(size_t) {
        switch (state_) {
        case State::document:
            if (!(docSeen_ & (1u << 3))) return stop(kfmt_result_malformed, "a document without \"nodeCount\"");
            if (!check(reader_.finish(nodeCount_, in_.offset()))) return false;
            state_ = State::done;
            return true;
        case State::node:
            // Nodes without value, items or children: null, empty and reference leaves.
            if (!describe(true)) return false;
            if (!check(reader_.commit())) return false;
            state_ = State::nodeList;
            return true;
        case State::afterValue:
            state_ = State::nodeList;
            return true;
        case State::afterChildren:
            if (!check(reader_.end(in_.offset()))) return false;
            state_ = State::nodeList;
            return true;
        default:
            return stop(kfmt_result_malformed, "an object ends where it cannot");
        }
    }

    bool StartArray() {
        if (state_ == State::documentValue && docKey_ == 2) {
            state_ = State::nodeList;
            return true;
        }
        if (state_ != State::nodeValue) return stop(kfmt_result_malformed, "an array where none belongs");
        if (key_ == NodeKey::items) {
            if (!describe()) return false;
            if (header_.kinds.leafKind != 0 || header_.kinds.arrayKind != 1)
                return stop(kfmt_result_malformed, "\"items\" on a node that is no array");
            if (!check(reader_.beginItems(valueTypeId_, &itemCategory_))) return false;
            state_ = State::items;
            return true;
        }
        if (key_ == NodeKey::children) {
            if (!describe()) return false;
            if (header_.sectionType != kstd_persistentPropertyNodeSectionType_start)
                return stop(kfmt_result_malformed, "\"children\" on a node that is no object or list");
            if (!check(reader_.commit())) return false;
            state_ = State::nodeList;
            return true;
        }
        return stop(kfmt_result_malformed, "an array where none belongs");
    }

    bool EndArray(size_t) {
        if (state_ == State::items) {
            if (reader_.itemsLeft() != 0) return stop(kfmt_result_countMismatch, "fewer items than the count says");
            if (!check(reader_.commit())) return false;
            state_ = State::afterValue;
            return true;
        }
        if (state_ != State::nodeList) return stop(kfmt_result_malformed, "an array ends where it cannot");
        state_ = reader_.depth() == 0 ? State::document : State::afterChildren;
        return true;
    }

private:
    enum class State { start, document, documentValue, nodeList, node, nodeValue, items, afterValue, afterChildren, done };

    bool stop(kstd_result code, const char* problem) {
        failure_ = reader_.reject(code, in_.offset(), problem);
        return false;
    }
    bool check(kstd_result result) {
        if (result < 0) failure_ = result;
        return result >= 0;
    }

    bool documentKey(const char* text, size_t length) {
        const bool known[] = {is(text, length, "format"), is(text, length, "version"), is(text, length, "nodes"),
                              is(text, length, "nodeCount")};
        for (uint32_t k = 0; k < 4; ++k) {
            if (!known[k]) continue;
            // In this order, each once.
            if (docSeen_ >> k) return stop(kfmt_result_malformed, "document keys out of order");
            if (k > 0 && !(docSeen_ & (1u << (k - 1))))
                return stop(kfmt_result_malformed, "document keys out of order");
            docSeen_ |= 1u << k;
            docKey_ = k;
            state_ = State::documentValue;
            return true;
        }
        return stop(kfmt_result_malformed, "an unknown document key");
    }

    bool documentValue(const Token& t) {
        state_ = State::document;
        switch (docKey_) {
        case 0:
            if (t.kind != Token::string || !is(t.text, t.length, "vexpers-tree"))
                return stop(kfmt_result_malformed, "not a \"vexpers-tree\" document");
            return true;
        case 1:
            if (t.kind != Token::integer) return stop(kfmt_result_malformed, "a version that is no number");
            if (t.i != kfmt_formatVersion) return stop(kfmt_result_unsupportedVersion, "an unsupported version");
            return true;
        case 3:
            if (t.kind != Token::integer || t.i < 0) return stop(kfmt_result_malformed, "a node count that is no count");
            nodeCount_ = t.i;
            return true;
        default:
            return stop(kfmt_result_malformed, "\"nodes\" that is no array");
        }
    }

    void beginNode() {
        nodeOffset_ = in_.offset();
        seen_ = 0;
        header_ = Header{};
        kindGiven_ = false;
        valueTypeId_ = -1;
        described_ = false;
    }

    // A text key into `buffer`, terminated.
    bool keepText(const Token& t, Buffer<char16_t>& buffer, Text* text, bool nullAllowed) {
        if (t.kind == Token::null && nullAllowed) {
            *text = Text{};
            return true;
        }
        if (t.kind != Token::string) return stop(kfmt_result_malformed, "a name that is no string");
        // The cap counts UTF-16 units, never more than the UTF-8 bytes.
        const size_t cap = static_cast<size_t>(reader_.limits().maxNameUnits);
        if (t.length > cap && unitsOf(t.text, t.length) > cap)
            return stop(kstd_persistentResult_nameTooLong, "a name longer than the cap");
        if (widen(buffer, t.text, t.length) < 0) return check(ksys_result_outOfMemory);
        text->chars = buffer.data();
        text->length = static_cast<int32_t>(buffer.size());
        return true;
    }

    bool unsignedKey(const Token& t, uint64_t maximum, uint64_t* value) {
        if (t.kind != Token::integer || t.i < 0 || static_cast<uint64_t>(t.i) > maximum)
            return stop(kfmt_result_malformed, "a number out of its range");
        *value = static_cast<uint64_t>(t.i);
        return true;
    }

    bool nodeValue(const Token& t) {
        state_ = State::node;
        uint64_t number = 0;
        switch (key_) {
        case NodeKey::name: return keepText(t, name_, &header_.name, true);
        case NodeKey::type: return keepText(t, type_, &header_.typeName, false);
        case NodeKey::derivation:
            if (!unsignedKey(t, kstd_persistentTypeDerivation_bitfieldArray, &number)) return false;
            header_.derivation = static_cast<uint32_t>(number);
            return true;
        case NodeKey::access:
            if (!unsignedKey(t, UINT32_MAX, &number)) return false;
            header_.dataAccess = static_cast<uint32_t>(number);
            return true;
        case NodeKey::kind:
            if (t.kind == Token::string && kindOf(t.text, t.length, &header_.kinds.leafKind, &header_.kinds.arrayKind)) {
                kindGiven_ = true;
                return true;
            }
            return stop(kfmt_result_malformed, "an unknown kind");
        case NodeKey::item:
        case NodeKey::deleted:
            if (t.kind != Token::boolean) return stop(kfmt_result_malformed, "a flag that is no boolean");
            (key_ == NodeKey::item ? header_.kinds.isItem : header_.kinds.isDeleted) = t.b;
            return true;
        case NodeKey::id:
            if (!unsignedKey(t, INT64_MAX, &number)) return false;
            header_.kinds.hasId = true;
            header_.id = static_cast<int64_t>(number);
            return true;
        case NodeKey::count:
            if (!unsignedKey(t, INT64_MAX, &number)) return false;
            header_.count = static_cast<int64_t>(number);
            return true;
        case NodeKey::valueType: {
            Text text;
            if (!keepText(t, valueType_, &text, false)) return false;
            Type type;
            int32_t coreId = -2;
            if (type.status() < 0 || kstd_persistentTypeGetType(text.chars, 0, 1, type.get()) < 0 ||
                kstd_persistentType_getCoreTypeId(type.get(), &coreId) < 0 || coreId < 0)
                return stop(kfmt_result_badValue, "a value type that is no core type");
            valueTypeId_ = coreId;
            return true;
        }
        case NodeKey::value: {
            if (!describe()) return false;
            if (header_.kinds.leafKind != 1) return stop(kfmt_result_malformed, "\"value\" on a node that is no value");
            uint32_t category = 0;
            if (!check(reader_.prepareValue(valueTypeId_, &category))) return false;
            Scalar scalar;
            if (!convert(t, category, &scalar)) return false;
            if (!check(reader_.value(scalar)) || !check(reader_.commit())) return false;
            state_ = State::afterValue;
            return true;
        }
        default:
            return stop(kfmt_result_malformed, "a scalar where an array belongs");
        }
    }

    bool scalar(const Token& t) {
        switch (state_) {
        case State::documentValue: return documentValue(t);
        case State::nodeValue: return nodeValue(t);
        case State::items: {
            Scalar scalar;
            return convert(t, itemCategory_, &scalar) && check(reader_.item(scalar));
        }
        default: return stop(kfmt_result_malformed, "a value where none belongs");
        }
    }

    // The node's keys so far as a section (once). `atEnd`: the node's object
    // ends without "value", "items" or "children".
    bool describe(bool atEnd = false) {
        if (described_) return true;
        described_ = true;
        if (!(seen_ & (1u << static_cast<unsigned>(NodeKey::type)))) return stop(kfmt_result_malformed, "a node without \"type\"");
        if (!kindGiven_) return stop(kfmt_result_malformed, "a node without \"kind\"");
        const Kinds& k = header_.kinds;
        header_.sectionType = k.leafKind == 0 && k.arrayKind != 1 ? kstd_persistentPropertyNodeSectionType_start
                                                                  : kstd_persistentPropertyNodeSectionType_leaf;
        if (atEnd && (k.leafKind == 1 || k.leafKind == 0))
            return stop(kfmt_result_malformed, "a node without its \"value\", \"items\" or \"children\"");
        if (valueTypeId_ >= 0 && !(k.leafKind == 1 || (k.leafKind == 0 && k.arrayKind == 1)))
            return stop(kfmt_result_malformed, "\"valueType\" on a node without a value");
        return check(reader_.describe(header_, nodeOffset_));
    }

    // A JSON scalar as a value of `category`.
    bool convert(const Token& t, uint32_t category, Scalar* scalar) {
        *scalar = Scalar{};
        scalar->category = category;
        switch (category) {
        case kstd_persistentTypeCategory_int:
            if (t.kind == Token::integer) return scalar->i = t.i, true;
            if (t.kind == Token::bigUnsigned) return stop(kfmt_result_badValue, "an integer out of range");
            break;
        case kstd_persistentTypeCategory_uint:
            if (t.kind == Token::bigUnsigned) return scalar->u = t.u, true;
            if (t.kind == Token::integer) {
                if (t.i < 0) return stop(kfmt_result_badValue, "a negative unsigned integer");
                return scalar->u = static_cast<uint64_t>(t.i), true;
            }
            break;
        case kstd_persistentTypeCategory_bool:
            if (t.kind == Token::boolean) return scalar->b = t.b ? 1 : 0, true;
            if (t.kind == Token::integer) {
                if (t.i < INT32_MIN || t.i > INT32_MAX) return stop(kfmt_result_badValue, "a boolean out of range");
                return scalar->b = static_cast<int32_t>(t.i), true;
            }
            break;
        case kstd_persistentTypeCategory_float:
            if (t.kind == Token::real) return scalar->f = t.d, true;
            if (t.kind == Token::integer) return scalar->f = static_cast<double>(t.i), true;
            if (t.kind == Token::bigUnsigned) return scalar->f = static_cast<double>(t.u), true;
            break;
        case kstd_persistentTypeCategory_string:
            if (t.kind == Token::null) return scalar->isNull = true, true;
            if (t.kind == Token::string) {
                // A string longer than the cap is refused by the reader by
                // its length alone; it is not widened first.
                const size_t cap = static_cast<size_t>(reader_.limits().maxStringUnits);
                if (t.length > cap) {
                    const size_t units = unitsOf(t.text, t.length);
                    if (units > cap) {
                        scalar->text = u"";
                        scalar->length = units;
                        return true;
                    }
                }
                if (widen(text_, t.text, t.length) < 0) return check(ksys_result_outOfMemory);
                scalar->text = text_.data();
                scalar->length = text_.size();
                return true;
            }
            break;
        default: break;
        }
        return stop(kfmt_result_malformed, "a value of the wrong JSON type");
    }

    Input& in_;
    SectionReader& reader_;
    State state_ = State::start;
    kstd_result failure_ = 0;
    uint32_t docSeen_ = 0;
    uint32_t docKey_ = 0;
    int64_t nodeCount_ = 0;

    int64_t nodeOffset_ = 0;
    uint32_t seen_ = 0;
    NodeKey key_ = NodeKey::name;
    Header header_;
    bool kindGiven_ = false;
    bool described_ = false;
    int32_t valueTypeId_ = -1;
    uint32_t itemCategory_ = 0;
    Buffer<char16_t> name_;
    Buffer<char16_t> type_;
    Buffer<char16_t> valueType_;
    Buffer<char16_t> text_;  // a string value or item
};

constexpr unsigned parseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                                rapidjson::kParseFullPrecisionFlag | rapidjson::kParseNanAndInfFlag;
using Parser = rapidjson::GenericReader<Utf8, Utf8, json::StackAllocator>;

}  // namespace
}  // namespace vexpers::formats

// The parser's strings and numbers on the Stream: those that the buffer
// holds whole and that need no more than a scan (a string of plain ASCII,
// a number of the forms the writer gives) are handed on from the buffer;
// everything else goes to RapidJSON's own code, on a ByteStream.
namespace rapidjson {

template <>
template <>
void vexpers::formats::Parser::ParseString<vexpers::formats::parseFlags, vexpers::formats::Stream,
                                           vexpers::formats::Handler>(vexpers::formats::Stream& is,
                                                                      vexpers::formats::Handler& handler, bool isKey) {
    size_t count = 0;
    const char* bytes = is.in->buffered(&count);
    const size_t end = count > 0 ? 1 + vexpers::formats::ByteStream::plainRun(bytes + 1, count - 1) : 0;
    if (count > 0 && bytes[0] == '"' && end < count && bytes[end] == '"') {
        // The text stays in the buffer; the closing quote is taken first.
        is.in->skipBuffered(end + 1);
        const bool success = isKey ? handler.Key(bytes + 1, end - 1, true) : handler.checkedString(bytes + 1, end - 1);
        if (RAPIDJSON_UNLIKELY(!success)) RAPIDJSON_PARSE_ERROR(kParseErrorTermination, is.Tell());
        return;
    }
    ParseString<vexpers::formats::parseFlags>(static_cast<vexpers::formats::ByteStream&>(is), handler, isKey);
}

template <>
template <>
void vexpers::formats::Parser::ParseNumber<vexpers::formats::parseFlags, vexpers::formats::Stream,
                                           vexpers::formats::Handler>(vexpers::formats::Stream& is,
                                                                      vexpers::formats::Handler& handler) {
    size_t count = 0;
    const char* bytes = is.in->buffered(&count);
    vexpers::formats::Number n;
    if (!vexpers::formats::scanNumber(bytes, count, &n)) {
        ParseNumber<vexpers::formats::parseFlags>(static_cast<vexpers::formats::ByteStream&>(is), handler);
        return;
    }
    const size_t startOffset = is.Tell();
    is.in->skipBuffered(n.taken);
    bool cont;
    if (n.isFraction) {
        const double d = internal::StrtodFullPrecision(n.approximation, n.fractionExponent, n.digits, n.length,
                                                       n.pointAt, 0);
        cont = handler.Double(n.minus ? -d : d);
    } else if (n.minus) {
        // RapidJSON's 32-bit forms reach down to -2^31, up to 2^32 - 1.
        if (n.integer > 2147483648u)
            cont = handler.Int64(static_cast<int64_t>(~n.integer + 1));
        else
            cont = handler.Int(static_cast<int32_t>(~static_cast<unsigned>(n.integer) + 1));
    } else {
        if (n.integer > 4294967295u)
            cont = handler.Uint64(n.integer);
        else
            cont = handler.Uint(static_cast<unsigned>(n.integer));
    }
    if (RAPIDJSON_UNLIKELY(!cont)) RAPIDJSON_PARSE_ERROR(kParseErrorTermination, startOffset);
}

}  // namespace rapidjson

namespace vexpers::formats {

kstd_result decodeJson(Input& input, SectionReader& reader) {
    json::StackAllocator allocator;
    Parser parser(&allocator, 256);
    Handler handler(input, reader);
    Stream stream{{&input}};
    const rapidjson::ParseResult parsed = parser.Parse<parseFlags>(stream, handler);
    if (allocator.failed())
        return reader.reject(ksys_result_outOfMemory, input.offset(), "memory for the parser's stack ran out");
    if (!parsed.IsError()) {
        // RapidJSON stops at a 0 byte as at the end.
        if (!input.atEnd()) return reader.reject(kfmt_result_malformed, input.offset(), "data after the document");
        return input.failure() < 0 ? reader.reject(input.failure(), input.offset(), "the source failed") : 0;
    }
    if (handler.failure() < 0) return handler.failure();
    const int64_t at = static_cast<int64_t>(parsed.Offset());
    if (input.failure() < 0)
        return reader.reject(input.failure(), at,
                             input.failure() == kfmt_result_limitExceeded ? "more input than the cap" : "the source failed");
    // RapidJSON reads the end of the input as a 0 character.
    if (input.atEnd()) return reader.reject(kfmt_result_truncated, at, "the text ends before the document does");
    return reader.reject(kfmt_result_malformed, at, rapidjson::GetParseError_En(parsed.Code()));
}

}  // namespace vexpers::formats
