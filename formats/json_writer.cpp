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

constexpr unsigned writeFlags = rapidjson::kWriteValidateEncodingFlag | rapidjson::kWriteNanAndInfFlag;
using Base = rapidjson::Writer<Stream, json::Utf16, json::Utf8, json::StackAllocator, writeFlags>;

// A writer that puts the node objects of "nodes" and "children" arrays on
// lines of their own, indented by their depth (up to 20 levels, so that
// deep trees do not drown in white space).
class LineWriter : public Base {
public:
    LineWriter(Stream& stream, json::StackAllocator* allocator) : Base(stream, allocator, 64) {}

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

private:
    void newLine(int64_t depth) {
        os_->Put('\n');
        for (int64_t i = 0; i < depth && i < 20; ++i) {
            os_->Put(' ');
            os_->Put(' ');
        }
    }
};

const char16_t* kindName(const Kinds& kinds) {
    switch (kinds.leafKind) {
    case 1: return u"value";
    case 2: return u"null";
    case 3: return kinds.arrayKind == 1 ? u"emptyArray" : u"emptyList";
    case 4: return u"ref";
    default: break;
    }
    if (kinds.arrayKind == 1) return u"array";
    if (kinds.arrayKind == 2) return u"list";
    return u"object";
}

class JsonEncoder final : public Encoder {
public:
    explicit JsonEncoder(Output& output) : Encoder(output), writer_(stream_, &allocator_) { stream_.out = &output; }

    kstd_result begin() override {
        bool ok = writer_.StartObject() && writer_.key(u"format") && writer_.String(json::formatName) &&
                  writer_.key(u"version") && writer_.Int(kfmt_formatVersion) && writer_.key(u"nodes") &&
                  writer_.StartArray();
        return ok ? 0 : kfmt_result_notStorable;
    }

    kstd_result node(NodeView& view) override {
        const Kinds& kinds = view.kinds;
        bool ok = writer_.startNodeObject(depth_ + 1) && writer_.key(u"name") &&
                  (view.name.chars == nullptr ? writer_.Null()
                                              : writer_.String(view.name.chars, static_cast<size_t>(view.name.length))) &&
                  writer_.key(u"type") &&
                  (view.typeName.chars == nullptr
                       ? writer_.Null()
                       : writer_.String(view.typeName.chars, static_cast<size_t>(view.typeName.length)));
        if (ok && view.derivation != 0) ok = writer_.key(u"derivation") && writer_.Uint(view.derivation);
        if (ok && view.dataAccess != 2) ok = writer_.key(u"access") && writer_.Uint(view.dataAccess);
        if (ok) ok = writer_.key(u"kind") && writer_.String(kindName(kinds));
        if (ok && kinds.isItem) ok = writer_.key(u"item") && writer_.Bool(true);
        if (ok && kinds.isDeleted) ok = writer_.key(u"deleted") && writer_.Bool(true);
        if (ok && kinds.hasId) ok = writer_.key(u"id") && writer_.Int64(view.id);
        if (!ok) return kfmt_result_notStorable;

        if (view.sectionType == kstd_persistentPropertyNodeSectionType_start) {
            if (kinds.arrayKind == 2 && !(writer_.key(u"count") && writer_.Int64(view.numItems)))
                return kfmt_result_notStorable;
            if (!(writer_.key(u"children") && writer_.StartArray())) return kfmt_result_notStorable;
            ++depth_;
            return 0;
        }
        if (kinds.leafKind == 1) {
            if (view.valueTypeDiffers) KFMT_TRY(coreTypeName(view.valueCoreId));
            if (!(writer_.key(u"value") && scalar(view.scalar))) return kfmt_result_notStorable;
        } else if (kinds.leafKind == 0 && view.items != nullptr) {
            ArrayCursor& items = *view.items;
            if (!(writer_.key(u"count") && writer_.Int64(items.count()))) return kfmt_result_notStorable;
            if (view.itemTypeDiffers) KFMT_TRY(coreTypeName(items.itemCoreId()));
            if (!(writer_.key(u"items") && writer_.StartArray())) return kfmt_result_notStorable;
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

    Stream stream_{};
    json::StackAllocator allocator_;
    LineWriter writer_;
    int64_t depth_ = 0;
};

}  // namespace

kstd_result makeJsonEncoder(Output& output, Encoder** encoder) {
    JsonEncoder* made = nullptr;
    KFMT_TRY(createObject(&made, output));
    *encoder = made;
    return 0;
}

void deleteEncoder(Encoder* encoder) { destroyObject(encoder); }

}  // namespace vexpers::formats
