// The JSON decoder: RapidJSON's iterative SAX parser calls the handler below
// token by token; the handler collects a node's keys and hands the section
// to the SectionReader as soon as its value, items or children begin. No
// document is built, and nesting lives on RapidJSON's and the reader's heap
// stacks. The key order is that of the encoder (json_writer.cpp): the
// descriptor keys in any order, then at most one of "value", "items" or
// "children", last.
#include "json.hpp"
#include "reader.hpp"

namespace vexpers::formats {
namespace {

// RapidJSON's view of the input. Its end reads as 0, which RapidJSON takes
// as the end of the text. The iterative parser calls StartObject and
// EndObject before it takes the brace, so the input's offset is then the
// brace's own. RapidJSON asks for every byte on its own: those come from
// the input's buffer without a call.
struct Stream {
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

    // Takes the white space before the next token, a buffer at a time.
    void skipWhitespace() {
        for (;;) {
            size_t count = 0;
            const char* bytes = in->buffered(&count);
            size_t taken = 0;
            while (taken < count && isSpace(bytes[taken])) ++taken;
            in->skipBuffered(taken);
            if (taken < count || in->peek() < 0) return;
        }
    }
    static bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }
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

enum class NodeKey { name, type, derivation, access, kind, item, deleted, id, count, valueType, value, items, children };

struct KeyName {
    const char16_t* text;
    NodeKey key;
};
constexpr KeyName keyNames[] = {
    {u"name", NodeKey::name},   {u"type", NodeKey::type},           {u"derivation", NodeKey::derivation},
    {u"access", NodeKey::access}, {u"kind", NodeKey::kind},         {u"item", NodeKey::item},
    {u"deleted", NodeKey::deleted}, {u"id", NodeKey::id},           {u"count", NodeKey::count},
    {u"valueType", NodeKey::valueType}, {u"value", NodeKey::value}, {u"items", NodeKey::items},
    {u"children", NodeKey::children},
};

struct KindName {
    const char16_t* text;
    uint32_t leafKind;
    uint32_t arrayKind;
};
constexpr KindName kindNames[] = {
    {u"object", 0, 0}, {u"list", 0, 2},       {u"value", 1, 0},     {u"null", 2, 0},
    {u"ref", 4, 0},    {u"array", 0, 1},      {u"emptyArray", 3, 1}, {u"emptyList", 3, 2},
};

bool equals(const char16_t* text, size_t length, const char16_t* word) {
    const size_t wordLength = std::char_traits<char16_t>::length(word);
    return length == wordLength && std::char_traits<char16_t>::compare(text, word, length) == 0;
}

// A JSON scalar as it came.
struct Token {
    enum Kind { null, boolean, integer, bigUnsigned, real, string } kind = null;
    bool b = false;
    int64_t i = 0;
    uint64_t u = 0;
    double d = 0;
    const char16_t* text = nullptr;
    size_t length = 0;
};

// A surrogate without its other half. RapidJSON takes the escape of a low
// surrogate on its own (of U+DD22, say); JSON text holds whole characters
// only, and the writer could not write such a string back.
bool hasUnpairedSurrogate(const char16_t* text, size_t length) {
    for (size_t i = 0; i < length; ++i) {
        const char16_t unit = text[i];
        if (unit < 0xD800 || unit > 0xDFFF) continue;
        if (unit > 0xDBFF || i + 1 == length || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF) return true;
        ++i;
    }
    return false;
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
    bool RawNumber(const char16_t*, size_t, bool) { return stop(kfmt_result_malformed, "a raw number"); }
    bool String(const char16_t* text, size_t length, bool) {
        if (std::char_traits<char16_t>::find(text, length, u'\0') != nullptr)
            return stop(kfmt_result_malformed, "a string with a 0 character");
        if (hasUnpairedSurrogate(text, length)) return stop(kfmt_result_malformed, "a string with an unpaired surrogate");
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

    bool Key(const char16_t* text, size_t length, bool) {
        if (state_ == State::document) return documentKey(text, length);
        if (state_ != State::node) return stop(kfmt_result_malformed, "a key where none belongs");
        for (const KeyName& name : keyNames) {
            if (!equals(text, length, name.text)) continue;
            const uint32_t bit = 1u << static_cast<unsigned>(name.key);
            if (seen_ & bit) return stop(kfmt_result_malformed, "a key given twice");
            seen_ |= bit;
            key_ = name.key;
            state_ = State::nodeValue;
            return true;
        }
        return stop(kfmt_result_malformed, "an unknown key");
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

    bool documentKey(const char16_t* text, size_t length) {
        static const char16_t* const names[] = {u"format", u"version", u"nodes", u"nodeCount"};
        for (uint32_t k = 0; k < 4; ++k) {
            if (!equals(text, length, names[k])) continue;
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
            if (t.kind != Token::string || !equals(t.text, t.length, json::formatName))
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
        if (t.length > static_cast<size_t>(reader_.limits().maxNameUnits))
            return stop(kstd_persistentResult_nameTooLong, "a name longer than the cap");
        buffer.clear();
        if (buffer.append(t.text, t.length) < 0 || buffer.push(0) < 0) return check(ksys_result_outOfMemory);
        text->chars = buffer.data();
        text->length = static_cast<int32_t>(t.length);
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
            if (t.kind == Token::string) {
                for (const KindName& kind : kindNames) {
                    if (!equals(t.text, t.length, kind.text)) continue;
                    header_.kinds.leafKind = kind.leafKind;
                    header_.kinds.arrayKind = kind.arrayKind;
                    kindGiven_ = true;
                    return true;
                }
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
                // The reader needs terminated text; the token's own buffer is
                // terminated by RapidJSON.
                scalar->text = t.text;
                scalar->length = t.length;
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
};

}  // namespace

kstd_result decodeJson(Input& input, SectionReader& reader) {
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                               rapidjson::kParseFullPrecisionFlag | rapidjson::kParseNanAndInfFlag;
    json::StackAllocator allocator;
    rapidjson::GenericReader<json::Utf8, json::Utf16, json::StackAllocator> parser(&allocator, 256);
    Handler handler(input, reader);
    Stream stream{&input};
    const rapidjson::ParseResult parsed = parser.Parse<flags>(stream, handler);
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
