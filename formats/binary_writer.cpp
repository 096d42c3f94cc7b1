// The binary encoder (layout in binary.hpp).
#include "binary.hpp"
#include "writer.hpp"

namespace vexpers::formats {
namespace {

// Texts written so far, by content, with their table index. Open
// addressing over a power-of-two slot array; the texts live in one arena.
class TextTable {
public:
    // The index of the text, or -1 after adding it under the next index.
    kstd_result find(const char16_t* text, int32_t length, int64_t* index) {
        *index = -1;
        // Names arrive as interned strings, so the same text mostly comes
        // back at the same address: a small cache by address skips the
        // hashing. A hit is still compared by content.
        Recent& recent = recent_[(reinterpret_cast<uintptr_t>(text) >> 3) % recentSlots];
        if (recent.chars == text && recent.length == length) {
            const Entry& e = entries_[static_cast<size_t>(recent.entry)];
            if (e.length == static_cast<size_t>(length) &&
                std::memcmp(arena_.data() + e.offset, text, e.length * sizeof(char16_t)) == 0) {
                *index = recent.entry;
                return 0;
            }
        }
        if (slots_.size() == 0 || (entries_.size() + 1) * 2 > slots_.size()) KFMT_TRY(grow());
        const uint64_t hash = hashOf(text, length);
        const size_t mask = slots_.size() - 1;
        for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
            const int64_t entry = slots_[slot];
            if (entry < 0) {
                const Entry added{arena_.size(), static_cast<size_t>(length), hash};
                KFMT_TRY(arena_.append(text, static_cast<size_t>(length)));
                KFMT_TRY(entries_.push(added));
                slots_[slot] = static_cast<int64_t>(entries_.size() - 1);
                recent = Recent{text, length, slots_[slot]};
                return 0;
            }
            const Entry& e = entries_[static_cast<size_t>(entry)];
            if (e.hash == hash && e.length == static_cast<size_t>(length) &&
                std::memcmp(arena_.data() + e.offset, text, e.length * sizeof(char16_t)) == 0) {
                *index = entry;
                recent = Recent{text, length, entry};
                return 0;
            }
        }
    }

private:
    struct Entry {
        size_t offset;
        size_t length;
        uint64_t hash;
    };
    struct Recent {
        const char16_t* chars = nullptr;
        int32_t length = -1;
        int64_t entry = -1;
    };
    static constexpr size_t recentSlots = 64;
    static uint64_t hashOf(const char16_t* text, int32_t length) {
        uint64_t hash = 1469598103934665603ull;
        for (int32_t i = 0; i < length; ++i) hash = (hash ^ text[i]) * 1099511628211ull;
        return hash;
    }
    kstd_result grow() {
        Buffer<int64_t> slots;
        const size_t count = slots_.size() == 0 ? 64 : slots_.size() * 2;
        KFMT_TRY(slots.resize(count));
        for (size_t i = 0; i < count; ++i) slots[i] = -1;
        for (size_t i = 0; i < entries_.size(); ++i) {
            size_t slot = entries_[i].hash & (count - 1);
            while (slots[slot] >= 0) slot = (slot + 1) & (count - 1);
            slots[slot] = static_cast<int64_t>(i);
        }
        slots_.release();
        KFMT_TRY(slots_.append(slots.data(), slots.size()));
        return 0;
    }
    Buffer<int64_t> slots_;
    Buffer<Entry> entries_;
    Buffer<char16_t> arena_;
    Recent recent_[recentSlots];
};

class BinaryEncoder final : public Encoder {
public:
    explicit BinaryEncoder(Output& output) : Encoder(output) {}

    kstd_result begin() override {
        out.write(binary::magic, sizeof binary::magic);
        const char rest[4] = {static_cast<char>(kfmt_formatVersion), 0, 0, 0};
        out.write(rest, sizeof rest);
        return 0;
    }

    kstd_result node(NodeView& view) override {
        const Kinds& kinds = view.kinds;
        const bool isStart = view.sectionType == kstd_persistentPropertyNodeSectionType_start;
        out.put(static_cast<char>(isStart ? binary::tagStart : binary::tagLeaf));
        // A null leaf keeps no array kind, as in JSON ("null"): reading gives
        // it back from the node's type, and the reader takes null leaves
        // without one only.
        const uint32_t arrayKind = kinds.leafKind == 2 ? 0u : kinds.arrayKind;
        uint32_t packed = kinds.leafKind | (arrayKind << 3);
        if (kinds.isItem) packed |= binary::kindItem;
        if (kinds.hasId) packed |= binary::kindHasId;
        if (kinds.isDeleted) packed |= binary::kindDeleted;
        out.put(static_cast<char>(packed));
        KFMT_TRY(descriptor(view));
        if (kinds.hasId) number(static_cast<uint64_t>(view.id));
        if (kinds.leafKind == 0 && kinds.arrayKind != 0)
            number(static_cast<uint64_t>(view.items != nullptr ? view.items->count() : view.numItems));
        if (isStart) return 0;
        if (kinds.leafKind == 1) {
            out.put(static_cast<char>(view.valueCoreId));
            return scalar(view.scalar);
        }
        if (kinds.leafKind == 0 && view.items != nullptr) {
            ArrayCursor& items = *view.items;
            out.put(static_cast<char>(items.itemCoreId()));
            for (int64_t i = 0; i < items.count(); ++i) {
                Scalar item;
                KFMT_TRY(items.next(&item));
                KFMT_TRY(scalar(item));
            }
        }
        return 0;
    }

    kstd_result end() override {
        out.put(static_cast<char>(binary::tagEnd));
        return 0;
    }

    kstd_result finish(int64_t nodes) override {
        out.put(static_cast<char>(binary::tagFinish));
        number(static_cast<uint64_t>(nodes));
        return 0;
    }

private:
    // Writes `value` as a varint at `bytes` (room for 10); gives its size.
    static size_t varint(uint64_t value, char* bytes) {
        size_t count = 0;
        do {
            uint8_t byte = value & 0x7F;
            value >>= 7;
            if (value != 0) byte |= 0x80;
            bytes[count++] = static_cast<char>(byte);
        } while (value != 0);
        return count;
    }

    void number(uint64_t value) {
        char bytes[10];
        out.write(bytes, varint(value, bytes));
    }

    // The name, type name, derivation and access of a section. Once both
    // texts are in the table their encoding no longer changes, so it is kept
    // by the view's descriptor and written again as it stands.
    kstd_result descriptor(const NodeView& view) {
        KnownDescriptor* known = view.descriptor != 0 ? &known_[view.descriptor % knownSlots] : nullptr;
        if (known != nullptr && known->descriptor == view.descriptor) {
            out.write(known->bytes, known->size);
            return 0;
        }
        int64_t nameIndex = -1;
        int64_t typeIndex = -1;
        KFMT_TRY(textReference(view.name, &nameIndex));
        KFMT_TRY(textReference(view.typeName, &typeIndex));
        out.put(static_cast<char>(view.derivation));
        number(view.dataAccess);
        if (known == nullptr || nameIndex < 0 || typeIndex < 0) return 0;
        // References are 0 for the null text, else the index + 2.
        char* bytes = known->bytes;
        size_t size = varint(view.name.chars == nullptr ? 0 : static_cast<uint64_t>(nameIndex) + 2, bytes);
        size += varint(view.typeName.chars == nullptr ? 0 : static_cast<uint64_t>(typeIndex) + 2, bytes + size);
        bytes[size++] = static_cast<char>(view.derivation);
        size += varint(view.dataAccess, bytes + size);
        known->size = static_cast<uint8_t>(size);
        known->descriptor = view.descriptor;
        return 0;
    }

    kstd_result text(const char16_t* chars, size_t length) {
        utf8_.clear();
        KFMT_TRY(appendUtf8(utf8_, chars, length, true));
        number(utf8_.size() + 1);
        out.write(utf8_.data(), utf8_.size());
        return 0;
    }

    // A text by reference: 0 for the null text, the index + 2 of a text
    // written before, or 1 followed by the text. `*index` is the text's
    // index when it was in the table (0 for the null text), else -1.
    kstd_result textReference(const Text& value, int64_t* index) {
        *index = 0;
        if (value.chars == nullptr) {
            number(0);
            return 0;
        }
        KFMT_TRY(texts_.find(value.chars, value.length, index));
        if (*index >= 0) {
            number(static_cast<uint64_t>(*index) + 2);
            return 0;
        }
        number(1);
        return text(value.chars, static_cast<size_t>(value.length));
    }

    kstd_result scalar(const Scalar& value) {
        switch (value.category) {
        case kstd_persistentTypeCategory_int: number(binary::zigzag(value.i)); return 0;
        case kstd_persistentTypeCategory_uint: number(value.u); return 0;
        case kstd_persistentTypeCategory_bool: number(binary::zigzag(value.b)); return 0;
        case kstd_persistentTypeCategory_float: {
            uint64_t bits;
            std::memcpy(&bits, &value.f, sizeof bits);
            char bytes[8];
            for (int i = 0; i < 8; ++i) bytes[i] = static_cast<char>(bits >> (8 * i));
            out.write(bytes, sizeof bytes);
            return 0;
        }
        case kstd_persistentTypeCategory_string:
            if (value.isNull) {
                number(0);
                return 0;
            }
            return text(value.text, value.length);
        default: return kfmt_result_notStorable;
        }
    }

    struct KnownDescriptor {
        uint64_t descriptor = 0;
        char bytes[31];  // two references and the access (10, 10, 10) and the derivation
        uint8_t size = 0;
    };
    static constexpr size_t knownSlots = 64;

    TextTable texts_;
    Buffer<char> utf8_;
    KnownDescriptor known_[knownSlots];
};

}  // namespace

kstd_result makeBinaryEncoder(Output& output, Encoder** encoder) {
    BinaryEncoder* made = nullptr;
    KFMT_TRY(createObject(&made, output));
    *encoder = made;
    return 0;
}

}  // namespace vexpers::formats
