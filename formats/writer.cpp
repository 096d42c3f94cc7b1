// Writing a tree: the processor walks it and calls the visitor below for
// every node; the visitor describes the node as a section and hands it to the
// format's encoder. The processor expands arrays of other items of a
// decomposed tree item by item; nothing here recurses.
#include "writer.hpp"

namespace vexpers::formats {
namespace {

// A node descriptor taken apart once: the texts, derivation and access that
// every section of this name, type and access repeats. The slot keeps its
// own share of the name and the type record, so a descriptor that matches
// by those pointers is the same descriptor.
struct KnownInfo {
    Name name;
    Type type;
    uint32_t dataAccess = 0;
    Text nameText;
    Text typeText;
    uint32_t derivation = 0;
    uint64_t descriptor = 0;  // 0: the slot is empty
    uint64_t lastUse = 0;
};

bool sameName(const kstd_stringConst& a, const kstd_stringConst& b) {
    if (a.holder.shared != b.holder.shared || a.length != b.length) return false;
    // Without a holder the text is the null or the empty string.
    return a.holder.shared != nullptr ? a.chars == b.chars : (a.chars == nullptr) == (b.chars == nullptr);
}

struct Walk {
    Encoder* encoder = nullptr;
    Output* output = nullptr;
    CoreTypes cores;
    StringConst holder;
    ArrayCursor cursor;
    kfmt_statistics statistics{};
    const kfmt_options* options = nullptr;
    // The node of the last start event, while nothing else has followed it:
    // an array that the processor finds empty while expanding it reports
    // itself again as a leaf, which is no node of its own.
    const kstd_persistentPropertyNode* justStarted = nullptr;
    int64_t openNodes = 0;
    // Where the walk failed, and what failed, for the report.
    int64_t failedAt = -1;
    const char* failedStep = nullptr;
    KnownInfo known[64];
    uint64_t descriptors = 0;  // descriptors named so far
    uint64_t knownClock = 0;
};

kstd_result textOf(const char16_t* chars, Text* text) {
    text->chars = chars;
    text->length = chars != nullptr ? static_cast<int32_t>(ksys_wcslen(chars)) : 0;
    return 0;
}

// The walk's record of the node's descriptor, made on first sight.
kstd_result knownInfo(Walk& walk, const kstd_persistentPropertyInfo* info, const KnownInfo** known) {
    *known = nullptr;
    const uint64_t key = reinterpret_cast<uintptr_t>(info->name.holder.shared) * 31u ^
                         reinterpret_cast<uintptr_t>(info->type.record.shared) ^ info->dataAccess;
    bool hit = false;
    KnownInfo& slot = cacheSlot(walk.known, key, walk.knownClock, [info](const KnownInfo& k) {
        return k.descriptor != 0 && k.dataAccess == info->dataAccess &&
               k.type->record.shared == info->type.record.shared && sameName(*k.name.get(), info->name);
    }, &hit);
    if (hit) {
        *known = &slot;
        return 0;
    }
    slot.descriptor = 0;
    KFMT_TRY(slot.name.status());
    KFMT_TRY(slot.type.status());
    KFMT_TRY(kstd_stringConst_assign(slot.name.get(), &info->name));
    KFMT_TRY(kstd_persistentType_assign(slot.type.get(), &info->type));
    slot.dataAccess = info->dataAccess;
    const char16_t* name = nullptr;
    const char16_t* typeName = nullptr;
    KFMT_TRY(kstd_stringConst_getString(slot.name.get(), &name));
    KFMT_TRY(kstd_persistentType_getTypeName(slot.type.get(), &typeName));
    KFMT_TRY(kstd_persistentType_getTypeDerivation(slot.type.get(), &slot.derivation));
    KFMT_TRY(textOf(name, &slot.nameText));
    KFMT_TRY(textOf(typeName, &slot.typeText));
    slot.descriptor = ++walk.descriptors;
    *known = &slot;
    return 0;
}

// Takes the node apart into `view`: the fields a section made from it would
// hold, read in place rather than copied into a section first.
kstd_result describe(Walk& walk, const kstd_persistentPropertyNode* node, uint32_t sectionType, NodeView& view) {
    const kstd_persistentPropertyInfo* info = &node->info;
    const kstd_persistentVariant* value = &node->leafProperty.value;
    view = NodeView{};
    view.sectionType = sectionType;
    view.kinds = kindsOf(node->flags);
    view.id = node->objectId;
    view.numItems = node->numItems;
    const KnownInfo* known = nullptr;
    KFMT_TRY(knownInfo(walk, info, &known));
    view.name = known->nameText;
    view.typeName = known->typeText;
    view.derivation = known->derivation;
    view.dataAccess = known->dataAccess;
    view.descriptor = known->descriptor;
    if (view.kinds.hasId && view.id < 0) return kstd_persistentResult_objectIdNotFound;
    if (view.kinds.leafKind == 1) {
        KFMT_TRY(kstd_persistentType_getCoreTypeId(&value->type, &view.valueCoreId));
        CoreFacts facts;
        if (walk.cores.facts(view.valueCoreId, &facts) < 0) return kfmt_result_notStorable;
        KFMT_TRY(scalarOfVariant(value, facts.category, walk.holder, &view.scalar));
        view.valueTypeDiffers = !sameType(&info->type, &value->type);
    } else if (view.kinds.leafKind == 0 && view.kinds.arrayKind == 1) {
        KFMT_TRY(walk.cursor.open(node, walk.cores));
        view.items = &walk.cursor;
        view.numItems = walk.cursor.count();
        view.itemTypeDiffers = !sameType(&info->type, &value->type);
    }
    return 0;
}

void count(Walk& walk, const NodeView& view, int32_t depth) {
    kfmt_statistics& s = walk.statistics;
    ++s.nodes;
    if (view.kinds.leafKind == 4) ++s.references;
    else if (view.kinds.hasId) ++s.objects;
    if (depth + 1 > s.maxDepth) s.maxDepth = depth + 1;
    const kfmt_options* o = walk.options;
    if (o != nullptr && o->progress != nullptr && o->progressInterval > 0 && s.nodes % o->progressInterval == 0)
        o->progress(o->progressContext, s.nodes, walk.output->offset());
}

kstd_result visitStep(Walk& walk, int32_t event, int32_t depth, const kstd_persistentPropertyNode* node) {
    NodeView view;
    switch (event) {
    case kstd_persistentPropertyProcessorEvent_nodeBegin:
        walk.failedStep = "describing a node";
        KFMT_TRY(describe(walk, node, kstd_persistentPropertyNodeSectionType_start, view));
        walk.failedStep = "encoding a start section";
        KFMT_TRY(walk.encoder->node(view));
        ++walk.openNodes;
        count(walk, view, depth);
        walk.justStarted = node;
        return 0;
    case kstd_persistentPropertyProcessorEvent_leaf:
    case kstd_persistentPropertyProcessorEvent_coreArray:
        if (node == walk.justStarted && event == kstd_persistentPropertyProcessorEvent_leaf) {
            walk.justStarted = nullptr;
            return 0;
        }
        walk.justStarted = nullptr;
        walk.failedStep = "describing a node";
        KFMT_TRY(describe(walk, node, kstd_persistentPropertyNodeSectionType_leaf, view));
        walk.failedStep = "encoding a leaf section";
        KFMT_TRY(walk.encoder->node(view));
        count(walk, view, depth);
        return 0;
    case kstd_persistentPropertyProcessorEvent_nodeEnd:
        walk.justStarted = nullptr;
        walk.failedStep = "encoding an end section";
        --walk.openNodes;
        return walk.encoder->end();
    default:
        walk.failedStep = "walking the tree";
        return kstd_persistentResult_notSupported;
    }
}

kstd_result visit(void* context, int32_t event, int32_t depth, const kstd_persistentPropertyNode* node) {
    Walk& walk = *static_cast<Walk*>(context);
    kstd_result result = visitStep(walk, event, depth, node);
    // A sink failure shows in the output first.
    if (result >= 0 && walk.output->failure() < 0) result = walk.output->failure();
    if (result < 0) walk.failedAt = walk.output->offset();
    return result;
}

}  // namespace

kstd_result makeEncoder(uint32_t format, uint32_t flags, Output& output, Encoder** encoder) {
    if (format == kfmt_format_json) return makeJsonEncoder(output, (flags & kfmt_flag_compact) != 0, encoder);
    if (format == kfmt_format_binary) return makeBinaryEncoder(output, encoder);
    *encoder = nullptr;
    return kfmt_result_malformed;
}

}  // namespace vexpers::formats

using namespace vexpers::formats;

extern "C" KFMT_API kstd_result kfmt_writeTree(kstd_persistentPropertyTree* tree, uint32_t format,
                                               const kfmt_sink* sink, const kfmt_options* options,
                                               kfmt_statistics* statistics, kfmt_report* report) {
    KFMT_REQUIRE(tree != nullptr);
    KFMT_REQUIRE(sink != nullptr && sink->write != nullptr);
    succeed(report);
    if (statistics != nullptr) *statistics = kfmt_statistics{};
    if (format != kfmt_format_json && format != kfmt_format_binary)
        return fail(report, kfmt_result_malformed, -1, "unknown format %u", format);

    Output* output = nullptr;
    Walk* walk = nullptr;
    Encoder* encoder = nullptr;
    Defer release([&] {
        deleteEncoder(encoder);
        destroyObject(walk);
        destroyObject(output);
    });
    kstd_result result = createObject(&output, sink);
    if (result >= 0) result = output->init();
    if (result >= 0) result = createObject(&walk);
    if (result >= 0) result = makeEncoder(format, options != nullptr ? options->flags : 0u, *output, &encoder);
    if (result < 0) return fail(report, result, -1, "cannot set up the writer");
    walk->encoder = encoder;
    walk->output = output;
    walk->options = options;

    result = encoder->begin();
    if (result >= 0) {
        Processor processor;
        result = processor.status();
        if (result >= 0) result = kstd_persistentPropertyProcessor_processPropertyTree(processor.get(), tree, visit, walk);
        if (result < 0) {
            const int64_t at = walk->failedAt >= 0 ? walk->failedAt : output->offset();
            return fail(report, result, at, "writing stopped while %s",
                        walk->failedStep != nullptr ? walk->failedStep : "walking the tree");
        }
    }
    if (result >= 0) result = encoder->finish(walk->statistics.nodes);
    if (result >= 0) result = output->flush();
    if (result < 0) return fail(report, result, output->offset(), "cannot write the stream");
    walk->statistics.bytes = output->offset();
    if (options != nullptr && options->progress != nullptr)
        options->progress(options->progressContext, walk->statistics.nodes, walk->statistics.bytes);
    if (statistics != nullptr) *statistics = walk->statistics;
    return 0;
}
