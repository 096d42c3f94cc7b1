// Writing: the walk over a tree that turns every node into a section, and
// the interface through which the two formats encode the sections.
#pragma once

#include "io.hpp"
#include "values.hpp"

namespace vexpers::formats {

// One start or leaf section, taken apart for the encoders.
struct NodeView {
    uint32_t sectionType = kstd_persistentPropertyNodeSectionType_start;
    Kinds kinds;
    int64_t id = -1;
    int64_t numItems = 0;
    Text name;
    Text typeName;
    uint32_t derivation = 0;
    uint32_t dataAccess = 2;
    // Names the four fields above for this walk: views with the same
    // non-zero descriptor have the same name, type name, derivation and
    // access. 0 when not known.
    uint64_t descriptor = 0;
    // Leaf kind 1: the value, its core type id and whether that differs from
    // the declared type.
    int32_t valueCoreId = -1;
    bool valueTypeDiffers = false;
    Scalar scalar;
    // An array of core items: the items (read through the cursor), their
    // core type id and whether the array's type differs from the declared one.
    ArrayCursor* items = nullptr;
    bool itemTypeDiffers = false;
};

class Encoder {
public:
    explicit Encoder(Output& output) : out(output) {}
    virtual ~Encoder() = default;
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    virtual kstd_result begin() = 0;
    // A start section (the node stays open) or a leaf section.
    virtual kstd_result node(NodeView& view) = 0;
    // The end section of the most recent open node.
    virtual kstd_result end() = 0;
    // After the last node: `nodes` start and leaf sections were written.
    virtual kstd_result finish(int64_t nodes) = 0;

protected:
    Output& out;
};

// Makes the encoder of `format` (kfmt_result_malformed for another value).
// `compact`: JSON on one line, without line breaks and indentation.
kstd_result makeJsonEncoder(Output& output, bool compact, Encoder** encoder);
kstd_result makeBinaryEncoder(Output& output, Encoder** encoder);
void deleteEncoder(Encoder* encoder);

}  // namespace vexpers::formats
