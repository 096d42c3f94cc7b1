// Shared pieces of the fuzz harnesses: a reader that turns fuzz bytes into
// values, owning wrappers of the library's records, a precondition handler
// that stops the run (data must never reach a precondition fault), and the
// section stream that drives the start/end protocol of the nodes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vexpers/formats/formats.h"
#include "vexpers/vexpers.h"

#include "client_object.hpp"

// Runs one step; a failure ends the enclosing function with its code.
#define VEXPERS_TRY_FUZZ(expression)               \
    do {                                           \
        const kstd_result fuzzTry_ = (expression); \
        if (fuzzTry_ < 0) return fuzzTry_;         \
    } while (0)

namespace vexpers::fuzz {

// Stops the run with a message: a harness found a fault.
[[noreturn]] inline void fail(const char* what) {
    std::fprintf(stderr, "fuzz: %s\n", what);
    std::abort();
}

// Consumes fuzz bytes front to back; past the end every read gives zeros.
class ByteReader {
public:
    ByteReader(const uint8_t* data, size_t size) : data_(data), size_(size) {}
    bool empty() const { return position_ >= size_; }
    size_t remaining() const { return empty() ? 0 : size_ - position_; }
    const uint8_t* rest() const { return data_ + (empty() ? size_ : position_); }

    uint8_t u8() { return empty() ? 0 : data_[position_++]; }
    uint16_t u16() { return static_cast<uint16_t>(u8() | (u8() << 8)); }
    uint32_t u32() { return static_cast<uint32_t>(u16()) | (static_cast<uint32_t>(u16()) << 16); }
    uint64_t u64() { return static_cast<uint64_t>(u32()) | (static_cast<uint64_t>(u32()) << 32); }
    int64_t i64() { return static_cast<int64_t>(u64()); }
    double f64() {
        const uint64_t bits = u64();
        double value;
        __builtin_memcpy(&value, &bits, sizeof value);
        return value;
    }
    // A small number below `bound` (bound > 0).
    uint32_t below(uint32_t bound) { return u8() % bound; }
    // Mostly small numbers, sometimes any 64-bit value.
    int64_t count() {
        const uint8_t b = u8();
        return b < 0xF0 ? static_cast<int64_t>(b & 0x3F) - 1 : i64();
    }
    // UTF-16 text of up to `maxUnits` units: mostly ASCII, some characters
    // beyond it, surrogate pairs and, when `loneSurrogates`, unpaired halves.
    std::u16string text(size_t maxUnits, bool loneSurrogates);

private:
    const uint8_t* data_;
    size_t size_;
    size_t position_ = 0;
};

// Once per process: installs a precondition handler that aborts (input
// bytes must give result codes, never precondition faults) and registers
// the demo model and the built-in types the harnesses name, so that what an
// input does never depends on the inputs run before it.
void prepare();

template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*)>
using Owned = vexpers::client::Owned<R, Construct, Destruct>;
using Tree = Owned<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                   kstd_persistentPropertyTree_destruct>;
using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Variant = Owned<kstd_persistentVariant, kstd_persistentVariant_construct, kstd_persistentVariant_destruct>;
using Type = Owned<kstd_persistentType, kstd_persistentType_construct, kstd_persistentType_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;
using Property = Owned<kstd_persistentProperty, kstd_persistentProperty_construct, kstd_persistentProperty_destruct>;
using Processor = Owned<kstd_persistentPropertyProcessor, kstd_persistentPropertyProcessor_construct,
                        kstd_persistentPropertyProcessor_destruct>;
using Text = Owned<kstd_unicodeString, kstd_unicodeString_construct, kstd_unicodeString_destruct>;

// A growing memory buffer and the sink that appends to it.
struct Memory {
    kfmt_memoryWriter writer{};
    kfmt_sink sink{};
    Memory() { kfmt_sink_initMemory(&sink, &writer); }
    ~Memory() { kfmt_memoryWriter_release(&writer); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
};

// Reads `size` bytes at `data` into `tree` with the given format and flags.
kstd_result readTree(const void* data, size_t size, uint32_t format, uint32_t flags, kstd_persistentPropertyTree* tree,
                     kfmt_report* report = nullptr);

// Walks the whole tree with the processor, turning every node into a
// section (as a writer does) and back into a scratch node (as a reader
// does), and dumps it: none of this may fault, whatever the tree holds.
void exerciseTree(kstd_persistentPropertyTree* tree);

// ---- Section stream ----------------------------------------------------------------------
//
// Fuzz bytes as a stream of operations on a tree, each starting with an
// operation byte (low three bits the kind):
//   0 start section, 2 leaf section, 3 start-with-value section: fields
//     follow; applied as a top-level node when no node is open, else as a
//     child of the open node (startChildNode / addChildLeafNode)
//   1 end section: name byte; isMatchingEnd then endNode on the open node
//     (bit 3 set: endNode without asking isMatchingEnd)
//   4 a section of any type (u32) applied to the open node itself with
//     startNode, or to a new top-level node with startAndEndLeafNode
//   5 object registry: setObjectWithId / getObjectById / findObject
//   6 the open node's own accessors (getIsLeaf, getContainer, enums, ...)
//   7 forgetAllObjects (bit 3 set: reset the tree)
// Section fields: flag byte (below 0xE0 a flag word from a table of the
// words writers make, with bit 7 of the operation byte toggling one random
// bit, else a raw u32), a name byte, a type byte, an access byte, an id and
// an item count (ByteReader::count), a value byte (0 none, 1 a core value,
// 2 a null pointer, 3 an empty array, 4 an allocated array, 5 a string,
// 6 the kinds through setObjectInfo); bit 4 of the operation byte makes
// the name and type names free text from the input.
void applySectionStream(ByteReader& input, kstd_persistentPropertyTree* tree);

}  // namespace vexpers::fuzz
