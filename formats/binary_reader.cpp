// The binary decoder (layout in binary.hpp): a loop over tagged sections.
// Every length and count is checked against the input that remains before
// anything is allocated for it.
#include "binary.hpp"
#include "reader.hpp"

namespace vexpers::formats {
namespace {

class Decoder {
public:
    Decoder(Input& input, SectionReader& reader) : in_(input), reader_(reader) {}

    kstd_result run() {
        KFMT_TRY(header());
        for (;;) {
            const int64_t offset = in_.offset();
            const int tag = in_.take();
            switch (tag) {
            case binary::tagStart:
            case binary::tagLeaf:
                KFMT_TRY(section(tag == binary::tagStart, offset));
                break;
            case binary::tagEnd:
                KFMT_TRY(reader_.end(offset));
                break;
            case binary::tagFinish: {
                uint64_t nodes = 0;
                KFMT_TRY(number(&nodes));
                if (nodes > static_cast<uint64_t>(INT64_MAX)) return malformed("a node count out of range");
                KFMT_TRY(reader_.finish(static_cast<int64_t>(nodes), offset));
                if (!in_.atEnd()) return reader_.reject(kfmt_result_malformed, in_.offset(), "data after the end");
                if (in_.failure() < 0) return ended();
                return 0;
            }
            case -1:
                return ended();
            default:
                return reader_.reject(kfmt_result_malformed, offset, "an unknown section tag");
            }
        }
    }

private:
    kstd_result malformed(const char* problem) { return reader_.reject(kfmt_result_malformed, in_.offset(), problem); }

    // The input ended (or failed) where more was needed.
    kstd_result ended() {
        if (in_.failure() < 0)
            return reader_.reject(in_.failure(), in_.offset(),
                                  in_.failure() == kfmt_result_limitExceeded ? "more input than the cap"
                                                                             : "the source failed");
        return reader_.reject(kfmt_result_truncated, in_.offset(), "the stream ends inside a section or before its end");
    }

    kstd_result byte(uint32_t* value) {
        const int c = in_.take();
        if (c < 0) return ended();
        *value = static_cast<uint32_t>(c);
        return 0;
    }

    kstd_result number(uint64_t* value) {
        *value = 0;
        for (int shift = 0; shift < 70; shift += 7) {
            const int c = in_.take();
            if (c < 0) return ended();
            if (shift == 63 && (c & 0x7E) != 0) return malformed("a number beyond 64 bits");
            *value |= static_cast<uint64_t>(c & 0x7F) << shift;
            if ((c & 0x80) == 0) return 0;
        }
        return malformed("a number beyond 64 bits");
    }

    kstd_result header() {
        char bytes[binary::headerSize];
        if (!in_.read(bytes, sizeof bytes)) return ended();
        if (std::memcmp(bytes, binary::magic, sizeof binary::magic) != 0)
            return reader_.reject(kfmt_result_malformed, 0, "not a vexpers binary stream (no \"VXPB\")");
        if (bytes[4] != kfmt_formatVersion) return reader_.reject(kfmt_result_unsupportedVersion, 4, "an unsupported version");
        if (bytes[5] != 0 || bytes[6] != 0 || bytes[7] != 0)
            return reader_.reject(kfmt_result_malformed, 5, "reserved header bytes that are not 0");
        return 0;
    }

    // A text of up to `maxUnits` units into `out` (terminated); *isNull for
    // the null string. A longer one fails with `tooLong`.
    kstd_result text(Buffer<char16_t>& out, int64_t maxUnits, bool* isNull,
                     kstd_result tooLong = kfmt_result_limitExceeded) {
        const int64_t offset = in_.offset();
        uint64_t n = 0;
        KFMT_TRY(number(&n));
        *isNull = n == 0;
        out.clear();
        if (n == 0) return 0;
        const uint64_t bytes = n - 1;
        // At most three bytes a unit.
        // A length beyond what remains is refused before the cap.
        if (bytes > static_cast<uint64_t>(INT64_MAX)) return reader_.reject(kfmt_result_limitExceeded, offset, "a text longer than the input");
        KFMT_TRY(reader_.justify(static_cast<int64_t>(bytes), 1, offset));
        if (bytes > static_cast<uint64_t>(maxUnits) * 3) return reader_.reject(tooLong, offset, "a text longer than the cap");
        KFMT_TRY(utf8_.resize(static_cast<size_t>(bytes)));
        if (!in_.read(utf8_.data(), utf8_.size())) return ended();
        const kstd_result decoded = decodeUtf8(out, utf8_.data(), utf8_.size(), true);
        if (decoded == ksys_result_outOfMemory) return reader_.reject(decoded, offset, "memory for a text ran out");
        if (decoded < 0)
            return reader_.reject(kfmt_result_malformed, offset, "a text that is not UTF-8 or holds a 0 character");
        if (static_cast<int64_t>(out.size()) > maxUnits) return reader_.reject(tooLong, offset, "a text longer than the cap");
        return 0;
    }

    // A text reference: the table index of the text, or -1 for the null string.
    kstd_result textReference(int64_t* index) {
        const int64_t offset = in_.offset();
        uint64_t k = 0;
        KFMT_TRY(number(&k));
        *index = -1;
        if (k == 0) return 0;
        if (k >= 2) {
            if (k - 2 >= entries_.size()) return reader_.reject(kfmt_result_malformed, offset, "a reference to a text not yet given");
            *index = static_cast<int64_t>(k - 2);
            return 0;
        }
        bool isNull = false;
        KFMT_TRY(text(scratch_, reader_.limits().maxNameUnits, &isNull, kstd_persistentResult_nameTooLong));
        if (isNull) return reader_.reject(kfmt_result_malformed, offset, "a new text that is the null string");
        const Entry entry{arena_.size(), scratch_.size()};
        KFMT_TRY(arena_.append(scratch_.data(), scratch_.size()));
        KFMT_TRY(arena_.push(0));
        KFMT_TRY(entries_.push(entry));
        *index = static_cast<int64_t>(entries_.size() - 1);
        return 0;
    }

    Text textOf(int64_t index) {
        if (index < 0) return Text{};
        const Entry& entry = entries_[static_cast<size_t>(index)];
        return Text{arena_.data() + entry.offset, static_cast<int32_t>(entry.length)};
    }

    kstd_result section(bool isStart, int64_t offset) {
        Header h;
        h.sectionType = isStart ? kstd_persistentPropertyNodeSectionType_start : kstd_persistentPropertyNodeSectionType_leaf;
        uint32_t packed = 0;
        KFMT_TRY(byte(&packed));
        h.kinds.leafKind = packed & 7;
        h.kinds.arrayKind = (packed >> 3) & 3;
        h.kinds.isItem = (packed & binary::kindItem) != 0;
        h.kinds.hasId = (packed & binary::kindHasId) != 0;
        h.kinds.isDeleted = (packed & binary::kindDeleted) != 0;
        int64_t name = -1;
        int64_t type = -1;
        KFMT_TRY(textReference(&name));
        KFMT_TRY(textReference(&type));
        // Both texts are in the arena now, which no longer moves for this section.
        h.name = textOf(name);
        h.typeName = textOf(type);
        // Table entries never change once given.
        h.textsKeyed = true;
        h.nameKey = name;
        h.typeKey = type;
        KFMT_TRY(byte(&h.derivation));
        uint64_t value = 0;
        KFMT_TRY(number(&value));
        if (value > UINT32_MAX) return malformed("a data access beyond 32 bits");
        h.dataAccess = static_cast<uint32_t>(value);
        if (h.kinds.hasId) {
            KFMT_TRY(number(&value));
            if (value > static_cast<uint64_t>(INT64_MAX)) return malformed("an object id out of range");
            h.id = static_cast<int64_t>(value);
        }
        if (h.kinds.leafKind == 0 && h.kinds.arrayKind != 0) {
            KFMT_TRY(number(&value));
            if (value > static_cast<uint64_t>(INT64_MAX)) return malformed("an item count out of range");
            h.count = static_cast<int64_t>(value);
        }
        KFMT_TRY(reader_.describe(h, offset));
        if (!isStart && h.kinds.leafKind == 1) {
            uint32_t coreId = 0;
            uint32_t category = 0;
            KFMT_TRY(byte(&coreId));
            KFMT_TRY(reader_.prepareValue(static_cast<int32_t>(coreId), &category));
            Scalar s;
            KFMT_TRY(scalar(category, &s));
            KFMT_TRY(reader_.value(s));
        } else if (!isStart && h.kinds.leafKind == 0 && h.kinds.arrayKind == 1) {
            uint32_t coreId = 0;
            uint32_t category = 0;
            KFMT_TRY(byte(&coreId));
            KFMT_TRY(reader_.beginItems(static_cast<int32_t>(coreId), &category));
            while (reader_.itemsLeft() > 0) {
                Scalar s;
                KFMT_TRY(scalar(category, &s));
                KFMT_TRY(reader_.item(s));
            }
        }
        return reader_.commit();
    }

    kstd_result scalar(uint32_t category, Scalar* s) {
        *s = Scalar{};
        s->category = category;
        uint64_t n = 0;
        switch (category) {
        case kstd_persistentTypeCategory_int:
            KFMT_TRY(number(&n));
            s->i = binary::unzigzag(n);
            return 0;
        case kstd_persistentTypeCategory_uint:
            return number(&s->u);
        case kstd_persistentTypeCategory_bool: {
            KFMT_TRY(number(&n));
            const int64_t b = binary::unzigzag(n);
            if (b < INT32_MIN || b > INT32_MAX) return reader_.reject(kfmt_result_badValue, in_.offset(), "a boolean out of range");
            s->b = static_cast<int32_t>(b);
            return 0;
        }
        case kstd_persistentTypeCategory_float: {
            uint8_t bytes[8];
            if (!in_.read(bytes, sizeof bytes)) return ended();
            uint64_t bits = 0;
            for (int i = 0; i < 8; ++i) bits |= static_cast<uint64_t>(bytes[i]) << (8 * i);
            std::memcpy(&s->f, &bits, sizeof bits);
            return 0;
        }
        case kstd_persistentTypeCategory_string: {
            bool isNull = false;
            KFMT_TRY(text(value_, reader_.limits().maxStringUnits, &isNull));
            s->isNull = isNull;
            if (!isNull) {
                KFMT_TRY(value_.push(0));
                value_.pop();
                s->text = value_.data();
                s->length = value_.size();
            }
            return 0;
        }
        default:
            return reader_.reject(kfmt_result_badValue, in_.offset(), "a value of a category the format does not store");
        }
    }

    struct Entry {
        size_t offset;
        size_t length;
    };

    Input& in_;
    SectionReader& reader_;
    Buffer<Entry> entries_;
    Buffer<char16_t> arena_;
    Buffer<char16_t> scratch_;
    Buffer<char16_t> value_;
    Buffer<char> utf8_;
};

}  // namespace

kstd_result decodeBinary(Input& input, SectionReader& reader) {
    Decoder* decoder = nullptr;
    KFMT_TRY(createObject(&decoder, input, reader));
    const kstd_result result = decoder->run();
    destroyObject(decoder);
    return result;
}

}  // namespace vexpers::formats
