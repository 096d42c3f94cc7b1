// The text dump of a tree: one node a line, indented by depth, walked with an
// explicit stack. Values are read from the nodes as core values, so no type
// of the program that wrote them needs to be registered.
#include <charconv>
#include <cstdio>

#include "io.hpp"
#include "values.hpp"

namespace vexpers::formats {
namespace {

class Dumper {
public:
    explicit Dumper(Output& out) : out_(out) {}

    kstd_result run(const kstd_persistentPropertyTree* tree) {
        KFMT_TRY(holder_.status());
        const kstd_persistentPropertyNode* first = nullptr;
        KFMT_TRY(kstd_persistentPropertyTree_getFirstChildConst(tree, &first));
        KFMT_TRY(stack_.push(Frame{first, 0}));
        while (!stack_.empty()) {
            Frame& top = stack_.back();
            const kstd_persistentPropertyNode* node = top.next;
            if (node == nullptr) {
                stack_.pop();
                continue;
            }
            const int64_t index = top.index++;
            KFMT_TRY(kstd_persistentPropertyNode_getNextSiblingConst(node, &top.next));
            KFMT_TRY(line(node, static_cast<int64_t>(stack_.size()) - 1, index));
            const kstd_persistentPropertyNode* child = nullptr;
            KFMT_TRY(kstd_persistentPropertyNode_getFirstChildConst(node, &child));
            if (child != nullptr) KFMT_TRY(stack_.push(Frame{child, 0}));
        }
        return out_.flush();
    }

private:
    struct Frame {
        const kstd_persistentPropertyNode* next;
        int64_t index;
    };

    void text(const char* s) { out_.write(s, std::strlen(s)); }
    void number(const char* format, long long value) {
        char buffer[32];
        const int n = std::snprintf(buffer, sizeof buffer, format, value);
        out_.write(buffer, static_cast<size_t>(n));
    }

    kstd_result utf16(const char16_t* chars, size_t length) {
        utf8_.clear();
        KFMT_TRY(appendUtf8(utf8_, chars, length, true));
        out_.write(utf8_.data(), utf8_.size());
        return 0;
    }

    kstd_result quoted(const char16_t* chars, size_t length) {
        out_.put('"');
        size_t start = 0;
        for (size_t i = 0; i < length; ++i) {
            const char16_t c = chars[i];
            const bool lead = c >= 0xD800 && c <= 0xDBFF && i + 1 < length && chars[i + 1] >= 0xDC00 && chars[i + 1] <= 0xDFFF;
            if (lead) {
                ++i;
                continue;
            }
            const bool lone = c >= 0xD800 && c <= 0xDFFF;
            if (c >= 0x20 && c != '"' && c != '\\' && !lone) continue;
            KFMT_TRY(utf16(chars + start, i - start));
            start = i + 1;
            switch (c) {
            case '"': text("\\\""); break;
            case '\\': text("\\\\"); break;
            case '\n': text("\\n"); break;
            case '\t': text("\\t"); break;
            case '\r': text("\\r"); break;
            default: number("\\u%04llX", static_cast<long long>(c)); break;
            }
        }
        KFMT_TRY(utf16(chars + start, length - start));
        out_.put('"');
        return 0;
    }

    kstd_result scalar(const Scalar& s) {
        switch (s.category) {
        case kstd_persistentTypeCategory_int: number("%lld", static_cast<long long>(s.i)); return 0;
        case kstd_persistentTypeCategory_uint: {
            char buffer[32];
            const int n = std::snprintf(buffer, sizeof buffer, "%llu", static_cast<unsigned long long>(s.u));
            out_.write(buffer, static_cast<size_t>(n));
            return 0;
        }
        case kstd_persistentTypeCategory_bool:
            if (s.b == 0 || s.b == 1) text(s.b == 1 ? "true" : "false");
            else number("%lld", s.b);
            return 0;
        case kstd_persistentTypeCategory_float: {
            char buffer[64];
            const auto written = std::to_chars(buffer, buffer + sizeof buffer, s.f);
            out_.write(buffer, static_cast<size_t>(written.ptr - buffer));
            return 0;
        }
        case kstd_persistentTypeCategory_string:
            if (s.isNull) {
                text("null");
                return 0;
            }
            return quoted(s.text, s.length);
        default: text("?"); return 0;
        }
    }

    kstd_result coreTypeNote(int32_t coreId) {
        const char16_t* name = nullptr;
        KFMT_TRY(kstd_persistentTypeGetCoreTypeTypeName(coreId, &name));
        out_.put('(');
        KFMT_TRY(utf16(name, ksys_wcslen(name)));
        text(") ");
        return 0;
    }

    kstd_result line(const kstd_persistentPropertyNode* node, int64_t depth, int64_t index) {
        for (int64_t i = 0; i < depth && i < 64; ++i) text("  ");
        const Kinds k = kindsOf(node->flags);
        const kstd_persistentPropertyInfo* info = &node->info;
        if (k.isItem) {
            number("[%lld]", index);
        } else {
            const char16_t* name = nullptr;
            KFMT_TRY(kstd_persistentPropertyInfo_getName(info, &name));
            if (name == nullptr) text("(null)");
            else KFMT_TRY(utf16(name, ksys_wcslen(name)));
        }
        text(": ");
        const char16_t* typeName = nullptr;
        uint32_t derivation = 0;
        uint32_t access = 2;
        if (kstd_persistentPropertyInfo_getTypeName(info, &typeName) >= 0 && typeName != nullptr)
            KFMT_TRY(utf16(typeName, ksys_wcslen(typeName)));
        else
            text("(no type)");
        kstd_persistentPropertyInfo_getTypeDerivation(info, &derivation);
        kstd_persistentPropertyInfo_getDataAccess(info, &access);
        text(derivationSuffix(derivation));
        if (access != 2) number(" access=%lld", access);

        if (k.leafKind == 4) {
            number(" -> #%lld", static_cast<long long>(node->objectId));
        } else if (k.leafKind == 2) {
            text(" = null");
        } else if (k.leafKind == 3) {
            text(" = []");
        } else if (k.leafKind == 1) {
            const kstd_persistentVariant* value = &node->leafProperty.value;
            int32_t coreId = -1;
            CoreFacts facts;
            Scalar s;
            KFMT_TRY(kstd_persistentType_getCoreTypeId(&value->type, &coreId));
            KFMT_TRY(cores_.facts(coreId, &facts));
            KFMT_TRY(scalarOfVariant(value, facts.category, holder_, &s));
            text(" = ");
            if (!sameType(&info->type, &value->type)) KFMT_TRY(coreTypeNote(coreId));
            KFMT_TRY(scalar(s));
        } else if (k.arrayKind == 1) {
            KFMT_TRY(cursor_.open(node, cores_));
            text(" = ");
            if (!sameType(&info->type, &node->leafProperty.value.type)) KFMT_TRY(coreTypeNote(cursor_.itemCoreId()));
            out_.put('[');
            for (int64_t i = 0; i < cursor_.count(); ++i) {
                if (i > 0) text(", ");
                Scalar s;
                KFMT_TRY(cursor_.next(&s));
                KFMT_TRY(scalar(s));
            }
            out_.put(']');
        } else if (k.arrayKind == 2) {
            number(node->numItems == 1 ? " (%lld item)" : " (%lld items)", static_cast<long long>(node->numItems));
        }
        if (k.hasId && k.leafKind != 4) number(" #%lld", static_cast<long long>(node->objectId));
        if (k.isDeleted) text(" (deleted)");
        out_.put('\n');
        return out_.failure();
    }

    Output& out_;
    Buffer<Frame> stack_;
    Buffer<char> utf8_;
    CoreTypes cores_;
    StringConst holder_;
    ArrayCursor cursor_;
};

}  // namespace
}  // namespace vexpers::formats

using namespace vexpers::formats;

extern "C" KFMT_API kstd_result kfmt_dumpTree(const kstd_persistentPropertyTree* tree, const kfmt_sink* sink) {
    KFMT_REQUIRE(tree != nullptr);
    KFMT_REQUIRE(sink != nullptr && sink->write != nullptr);
    Output* output = nullptr;
    Dumper* dumper = nullptr;
    kstd_result result = createObject(&output, sink);
    if (result >= 0) result = output->init();
    if (result >= 0) result = createObject(&dumper, *output);
    if (result >= 0) result = dumper->run(tree);
    destroyObject(dumper);
    destroyObject(output);
    return result;
}
