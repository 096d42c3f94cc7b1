// The JSON encoder. A document looks like this, one node a line:
//
//   {"format":"vexpers-tree","version":1,"nodes":[
//     {"name":"scene","type":"DemoScene","derivation":1,"kind":"object","id":0,"children":[
//       {"name":"title","type":"kstd_unicodeString","kind":"value","value":"Demo"},
//       {"name":"items","type":"double","derivation":2,"kind":"array","count":3,"items":[1.0,0.5,2.0]}
//     ]}
//   ],"nodeCount":3}
//
// Keys of a node, in this order: "name" (null for the null name), "type",
// "derivation" (when not 0), "access" (when not 2), "kind" (object, list,
// value, null, emptyArray, emptyList, ref, array), "item" (true for an item
// of an array of other items), "deleted" (true), "id" (an object's id, or
// the id a reference points at), "count" (items of an array or a list),
// "valueType" (the core type of a value or of an array's items when it is
// not the declared one), and last "value", "items" or "children".
#include <cstdio>

#include "json.hpp"
#include "writer.hpp"

namespace vexpers::formats {
namespace {

// RapidJSON's view of the output.
struct Stream {
    typedef char Ch;
    Output* out;
    void Put(char c) { out->put(c); }
    void Flush() {}
};
// Found by argument-dependent lookup from RapidJSON's encoders.
inline void PutUnsafe(Stream& stream, char c) { stream.Put(c); }
inline void PutReserve(Stream&, size_t) {}

// RapidJSON's view of a scratch buffer, in which texts are escaped once.
struct ScratchStream {
    typedef char Ch;
    Buffer<char>* bytes;
    bool failed = false;
    void Put(char c) {
        if (bytes->push(c) < 0) failed = true;
    }
    void Flush() {}
};
inline void PutUnsafe(ScratchStream& stream, char c) { stream.Put(c); }
inline void PutReserve(ScratchStream&, size_t) {}

constexpr unsigned writeFlags = rapidjson::kWriteValidateEncodingFlag | rapidjson::kWriteNanAndInfFlag;
using Base = rapidjson::Writer<Stream, json::Utf16, json::Utf8, json::StackAllocator, writeFlags>;
using ScratchWriter = rapidjson::Writer<ScratchStream, json::Utf16, json::Utf8, json::StackAllocator, writeFlags>;

// A writer that puts the node objects of "nodes" and "children" arrays on
// lines of their own, indented by their depth (up to 20 levels, so that
// deep trees do not drown in white space), or all on one line when compact.
// Members whose JSON text is known in advance go out as they stand.
class LineWriter : public Base {
public:
    LineWriter(Stream& stream, json::StackAllocator* allocator, bool compact)
        : Base(stream, allocator, 64), compact_(compact) {}

    bool startNodeObject(int64_t depth) {
        Level* level = level_stack_.Top<Level>();
        if (level->valueCount > 0) os_->Put(',');
        newLine(depth);
        level->valueCount++;
        new (level_stack_.Push<Level>()) Level(false);
        return WriteStartObject();
    }
    bool endNodeList(int64_t depth) {
        const bool empty = level_stack_.Pop<Level>(1)->valueCount == 0;
        if (!empty) newLine(depth);
        return WriteEndArray();
    }
    bool key(const char16_t* text) { return Key(text, std::char_traits<char16_t>::length(text)); }

    // Members of the open object in JSON text (keys and values, `values` of
    // them in all, separated by commas), as a key would follow them.
    void rawMembers(const char* text, size_t length, size_t values) {
        Level* level = level_stack_.Top<Level>();
        if (level->valueCount > 0) os_->Put(',');
        os_->out->write(text, length);
        level->valueCount += values;
    }
    template <size_t N>
    void rawMember(const char (&text)[N]) {
        rawMembers(text, N - 1, 2);
    }
    // A key in JSON text, quotes included; its value follows through the writer.
    template <size_t N>
    void rawKey(const char (&text)[N]) {
        rawMembers(text, N - 1, 1);
    }

private:
    void newLine(int64_t depth) {
        if (compact_) return;
        os_->Put('\n');
        for (int64_t i = 0; i < depth && i < 20; ++i) {
            os_->Put(' ');
            os_->Put(' ');
        }
    }
    bool compact_;
};

// The "kind" member of each kind of node.
void writeKind(LineWriter& writer, const Kinds& kinds) {
    switch (kinds.leafKind) {
    case 1: return writer.rawMember("\"kind\":\"value\"");
    case 2: return writer.rawMember("\"kind\":\"null\"");
    case 3:
        if (kinds.arrayKind == 1) return writer.rawMember("\"kind\":\"emptyArray\"");
        return writer.rawMember("\"kind\":\"emptyList\"");
    case 4: return writer.rawMember("\"kind\":\"ref\"");
    default: break;
    }
    if (kinds.arrayKind == 1) return writer.rawMember("\"kind\":\"array\"");
    if (kinds.arrayKind == 2) return writer.rawMember("\"kind\":\"list\"");
    return writer.rawMember("\"kind\":\"object\"");
}

class JsonEncoder final : public Encoder {
public:
    JsonEncoder(Output& output, bool compact)
        : Encoder(output), writer_(stream_, &allocator_, compact), scratch_(scratchStream_, &allocator_) {
        stream_.out = &output;
        scratchStream_.bytes = &scratchBytes_;
    }

    kstd_result begin() override {
        bool ok = writer_.StartObject() && writer_.key(u"format") && writer_.String(json::formatName) &&
                  writer_.key(u"version") && writer_.Int(kfmt_formatVersion) && writer_.key(u"nodes") &&
                  writer_.StartArray();
        return ok ? 0 : kfmt_result_notStorable;
    }

    kstd_result node(NodeView& view) override {
        const Kinds& kinds = view.kinds;
        if (!writer_.startNodeObject(depth_ + 1)) return kfmt_result_notStorable;
        KFMT_TRY(descriptor(view));
        writeKind(writer_, kinds);
        if (kinds.isItem) writer_.rawMember("\"item\":true");
        if (kinds.isDeleted) writer_.rawMember("\"deleted\":true");
        if (kinds.hasId) {
            writer_.rawKey("\"id\"");
            if (!writer_.Int64(view.id)) return kfmt_result_notStorable;
        }

        if (view.sectionType == kstd_persistentPropertyNodeSectionType_start) {
            if (kinds.arrayKind == 2) {
                writer_.rawKey("\"count\"");
                if (!writer_.Int64(view.numItems)) return kfmt_result_notStorable;
            }
            writer_.rawKey("\"children\"");
            if (!writer_.StartArray()) return kfmt_result_notStorable;
            ++depth_;
            return 0;
        }
        if (kinds.leafKind == 1) {
            if (view.valueTypeDiffers) KFMT_TRY(coreTypeName(view.valueCoreId));
            writer_.rawKey("\"value\"");
            if (!scalar(view.scalar)) return kfmt_result_notStorable;
        } else if (kinds.leafKind == 0 && view.items != nullptr) {
            ArrayCursor& items = *view.items;
            writer_.rawKey("\"count\"");
            if (!writer_.Int64(items.count())) return kfmt_result_notStorable;
            if (view.itemTypeDiffers) KFMT_TRY(coreTypeName(items.itemCoreId()));
            writer_.rawKey("\"items\"");
            if (!writer_.StartArray()) return kfmt_result_notStorable;
            for (int64_t i = 0; i < items.count(); ++i) {
                Scalar item;
                KFMT_TRY(items.next(&item));
                if (!scalar(item)) return kfmt_result_notStorable;
            }
            if (!writer_.EndArray()) return kfmt_result_notStorable;
        }
        return writer_.EndObject() ? 0 : kfmt_result_notStorable;
    }

    kstd_result end() override {
        if (depth_ == 0) return kfmt_result_protocol;
        --depth_;
        const bool ok = writer_.endNodeList(depth_ + 1) && writer_.EndObject();
        return ok ? 0 : kfmt_result_notStorable;
    }

    kstd_result finish(int64_t nodes) override {
        const bool ok = writer_.endNodeList(0) && writer_.key(u"nodeCount") && writer_.Int64(nodes) &&
                        writer_.EndObject();
        out.put('\n');
        if (allocator_.failed()) return ksys_result_outOfMemory;
        return ok ? 0 : kfmt_result_notStorable;
    }

private:
    // The members "name", "type", "derivation" (when not 0) and "access"
    // (when not 2). Their text is the same for every node of a descriptor,
    // so it is escaped once and kept by the view's descriptor.
    kstd_result descriptor(const NodeView& view) {
        KnownDescriptor* known = view.descriptor != 0 ? &known_[view.descriptor % knownSlots] : nullptr;
        if (known != nullptr && known->descriptor == view.descriptor) {
            writer_.rawMembers(known->text, known->length, known->values);
            return 0;
        }
        scratchBytes_.clear();
        scratchStream_.failed = false;
        bool ok = appendRaw("\"name\":") && appendText(view.name) && appendRaw(",\"type\":") &&
                  appendText(view.typeName);
        size_t values = 4;
        char digits[32];
        if (ok && view.derivation != 0) {
            std::snprintf(digits, sizeof digits, ",\"derivation\":%u", view.derivation);
            ok = appendRaw(digits);
            values += 2;
        }
        if (ok && view.dataAccess != 2) {
            std::snprintf(digits, sizeof digits, ",\"access\":%u", view.dataAccess);
            ok = appendRaw(digits);
            values += 2;
        }
        if (scratchStream_.failed) return ksys_result_outOfMemory;
        if (!ok) return kfmt_result_notStorable;
        writer_.rawMembers(scratchBytes_.data(), scratchBytes_.size(), values);
        if (known != nullptr && scratchBytes_.size() <= sizeof known->text) {
            std::memcpy(known->text, scratchBytes_.data(), scratchBytes_.size());
            known->length = scratchBytes_.size();
            known->values = values;
            known->descriptor = view.descriptor;
        }
        return 0;
    }
    bool appendRaw(const char* text) {
        if (scratchBytes_.append(text, std::strlen(text)) >= 0) return true;
        scratchStream_.failed = true;  // out of memory
        return false;
    }
    // A name as a JSON string (null for the null name), escaped and checked
    // as the writer checks every string.
    bool appendText(const Text& text) {
        if (text.chars == nullptr) return appendRaw("null");
        scratch_.Reset(scratchStream_);
        return scratch_.String(text.chars, static_cast<size_t>(text.length)) && !scratchStream_.failed;
    }

    kstd_result coreTypeName(int32_t coreId) {
        const char16_t* name = nullptr;
        KFMT_TRY(kstd_persistentTypeGetCoreTypeTypeName(coreId, &name));
        return writer_.key(u"valueType") && writer_.String(name) ? 0 : kfmt_result_notStorable;
    }

    bool scalar(const Scalar& value) {
        switch (value.category) {
        case kstd_persistentTypeCategory_int: return writer_.Int64(value.i);
        case kstd_persistentTypeCategory_uint: return writer_.Uint64(value.u);
        case kstd_persistentTypeCategory_bool:
            // A k_Bool may hold any 32-bit value; 0 and 1 read best as words.
            if (value.b == 0 || value.b == 1) return writer_.Bool(value.b == 1);
            return writer_.Int(value.b);
        case kstd_persistentTypeCategory_float: return writer_.Double(value.f);
        case kstd_persistentTypeCategory_string:
            if (value.isNull) return writer_.Null();
            return writer_.String(value.text, value.length);
        default: return false;
        }
    }

    struct KnownDescriptor {
        uint64_t descriptor = 0;
        size_t length = 0;
        size_t values = 0;
        char text[232];
    };
    static constexpr size_t knownSlots = 64;

    Stream stream_{};
    json::StackAllocator allocator_;
    LineWriter writer_;
    Buffer<char> scratchBytes_;
    ScratchStream scratchStream_{};
    ScratchWriter scratch_;
    KnownDescriptor known_[knownSlots];
    int64_t depth_ = 0;
};

}  // namespace

kstd_result makeJsonEncoder(Output& output, bool compact, Encoder** encoder) {
    JsonEncoder* made = nullptr;
    KFMT_TRY(createObject(&made, output, compact));
    *encoder = made;
    return 0;
}

void deleteEncoder(Encoder* encoder) { destroyObject(encoder); }

}  // namespace vexpers::formats
