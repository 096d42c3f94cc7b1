// Reading: the decoders of both formats describe each section to a
// SectionReader, which checks it, turns it into a node section and builds the
// tree from it with the node protocol. Open nodes are kept on an explicit
// stack, so nesting costs heap memory only.
#pragma once

#include "io.hpp"
#include "values.hpp"

namespace vexpers::formats {

// A start or leaf section as decoded, before it becomes a node section.
// Texts are terminated; `name.chars` null is the null name.
struct Header {
    uint32_t sectionType = kstd_persistentPropertyNodeSectionType_start;
    Kinds kinds;
    int64_t id = -1;
    // Items of an array of core items or of a list; -1 when not given.
    int64_t count = -1;
    Text name;
    Text typeName;
    uint32_t derivation = 0;
    uint32_t dataAccess = 2;
    // Set by a decoder whose texts are entries of a table that does not
    // change during the read: the entries of name and type name (-1 for the
    // null text). Equal keys then mean equal texts.
    bool textsKeyed = false;
    int64_t nameKey = -1;
    int64_t typeKey = -1;
};

class SectionReader {
public:
    SectionReader(kstd_persistentPropertyTree* tree, const kfmt_options& options, Input& input);
    SectionReader(const SectionReader&) = delete;
    SectionReader& operator=(const SectionReader&) = delete;
    kstd_result init();

    // Checks the header against the caps and the kinds against the section
    // type, and prepares the node section. For a leaf of kind 1 the value
    // follows with value(); for an array of core items the items follow with
    // item() after beginItems(); everything else is complete. `offset` is
    // where the section began.
    kstd_result describe(const Header& header, int64_t offset);
    // The value's core type: `coreId`, or -1 for the declared type; gives
    // the category in which the value is to be decoded.
    kstd_result prepareValue(int32_t coreId, uint32_t* category);
    kstd_result value(const Scalar& scalar);
    // The items' core type: `coreId`, or -1 for the declared item type;
    // allocates the items and gives their category.
    kstd_result beginItems(int32_t coreId, uint32_t* category);
    kstd_result item(const Scalar& scalar);
    int64_t itemsLeft() const { return itemsLeft_; }
    // Adds the described section to the tree.
    kstd_result commit();
    // An end section.
    kstd_result end(int64_t offset);
    // The end of the stream, which claimed `nodes` sections.
    kstd_result finish(int64_t nodes, int64_t offset);

    int64_t depth() const { return static_cast<int64_t>(open_.size()); }
    const kfmt_statistics& statistics() const { return statistics_; }
    // For reports: where the problem was found and what it was.
    int64_t problemOffset() const { return problemOffset_; }
    const char* problem() const { return problem_; }
    // A problem found by a decoder (it returns the code).
    kstd_result reject(kstd_result code, int64_t offset, const char* problem) {
        problemOffset_ = offset;
        problem_ = problem;
        return code;
    }
    // Checks a count or length read from the input against the bytes that
    // remain, at `minimumBytes` each.
    kstd_result justify(int64_t count, int64_t minimumBytes, int64_t offset);
    const kfmt_limits& limits() const { return options_.limits; }

private:
    struct Open {
        kstd_persistentPropertyNode* node;
        int64_t children;
        int64_t expectedItems;  // -1: not a list
    };
    kstd_result addNode(bool isLeaf, bool isStartEnd);
    // The node section of a header's name, type name, derivation and access,
    // whose `info` is that descriptor: made once for each distinct
    // combination (kept in a small cache with one slot per hash), so the
    // registry is not asked again for every node, and a section that comes
    // back for the next node of the same descriptor keeps its descriptor
    // instead of copying it in again.
    kstd_result describedSection(const Header& header, kstd_persistentPropertyNodeSection** section);
    struct CachedSection;
    kstd_result describedSlot(const Header& header, CachedSection** slot);
    kstd_result noteIds(int64_t offset);
    kstd_result progress();

    kstd_persistentPropertyTree* tree_;
    const kfmt_options& options_;
    Input& input_;

    struct CachedSection {
        Section section;
        bool used = false;
        uint64_t generation = 0;  // counts the descriptors the slot has held
        uint64_t lastUse = 0;
    };
    CachedSection sectionCache_[128];
    // Sections found by a header's text keys, without looking at the texts.
    struct KeyedSection {
        int64_t nameKey = -1;
        int64_t typeKey = -1;
        uint32_t derivation = 0;
        uint32_t dataAccess = 0;
        CachedSection* slot = nullptr;
        uint64_t generation = 0;  // the slot's when it was found
        uint64_t lastUse = 0;
    };
    KeyedSection keyedCache_[64];
    uint64_t cacheClock_ = 0;
    kstd_persistentPropertyNodeSection* section_ = nullptr;   // the section being described
    const kstd_persistentPropertyInfo* described_ = nullptr;  // its descriptor
    Variant value_;
    CoreTypes cores_;
    Buffer<Open> open_;
    kfmt_statistics statistics_{};

    // The section being described.
    Header header_;
    int64_t offset_ = 0;
    bool startEnd_ = false;  // a null object without a registered type: start + end, no value
    int32_t valueCoreId_ = -1;
    CoreFacts itemFacts_;
    uint8_t* nextItem_ = nullptr;
    int64_t itemsLeft_ = 0;
    bool complete_ = false;

    // Object ids (with kfmt_flag_checkObjectIds): defined ids and the first
    // reference that came before its definition.
    kstd_hashtable defined_{};
    bool idsReady_ = false;
    int64_t forwardId_ = -1;
    int64_t forwardOffset_ = -1;
    int64_t forwardDefinedAt_ = -1;

    int64_t problemOffset_ = -1;
    const char* problem_ = nullptr;
    char problemText_[160] = {};

public:
    ~SectionReader();
    const char* forwardProblem();
    // With object-id checks: a reference before `offset` to an id not
    // defined before it, which is then the earlier problem.
    bool earlierIdProblem(int64_t offset, int64_t* at, const char** problem);
};

// The decoders: read the whole stream from `input` into `reader`.
kstd_result decodeJson(Input& input, SectionReader& reader);
kstd_result decodeBinary(Input& input, SectionReader& reader);

}  // namespace vexpers::formats
