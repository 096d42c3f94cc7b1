// Fuzz harness of one storage format's reader (VEXPERS_FUZZ_FORMAT): any
// bytes give a tree or a result code. A tree that was read must write, read
// back and write again to the same bytes; converted to the other format and
// back, it must convert to the same bytes again.
#include <cstring>

#include "demo_model.hpp"
#include "fuzz_support.hpp"

using namespace vexpers::fuzz;

namespace {

bool sameBytes(const Memory& a, const Memory& b) {
    return a.writer.size == b.writer.size &&
           (a.writer.size == 0 || std::memcmp(a.writer.data, b.writer.data, a.writer.size) == 0);
}

// Writes `tree` in `format`; a tree that was read must write.
void write(kstd_persistentPropertyTree* tree, uint32_t format, Memory* out) {
    kfmt_report report{};
    if (kfmt_writeTree(tree, format, &out->sink, nullptr, nullptr, &report) < 0) {
        std::fprintf(stderr, "fuzz: %s\n", report.message);
        fail("a tree that was read does not write");
    }
}

void readBack(const Memory& bytes, uint32_t format, kstd_persistentPropertyTree* tree) {
    kfmt_report report{};
    if (readTree(bytes.writer.data, bytes.writer.size, format, 0, tree, &report) < 0) {
        std::fprintf(stderr, "fuzz: %s\n", report.message);
        fail("what was written does not read");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // With the demo model registered, its type names find registered types.
    prepare();
    constexpr uint32_t format = VEXPERS_FUZZ_FORMAT;
    constexpr uint32_t other = format == kfmt_format_json ? kfmt_format_binary : kfmt_format_json;

    Tree checked;
    const bool idsOk = readTree(data, size, format, kfmt_flag_checkObjectIds, &checked.r) >= 0;
    kstd_persistentPropertyTree_reset(&checked.r);

    Tree tree;
    if (readTree(data, size, format, 0, &tree.r) < 0) {
        if (idsOk) fail("a stream that passes the id check does not read without it");
        return 0;
    }
    exerciseTree(&tree.r);

    Memory first;
    write(&tree.r, format, &first);
    kstd_persistentPropertyTree_reset(&tree.r);
    Tree again;
    readBack(first, format, &again.r);
    Memory second;
    write(&again.r, format, &second);
    if (!sameBytes(first, second)) fail("writing what was read changes the bytes");

    // Through the other format and back, twice: the second pass writes the
    // same bytes in the other format. (Only the second: JSON spells every
    // NaN the same, so a binary NaN's payload does not survive the first.)
    Memory converted;
    kfmt_report report{};
    if (kfmt_writeTree(&again.r, other, &converted.sink, nullptr, nullptr, &report) < 0) {
        // JSON stores only valid text; the binary form stores any units.
        if (other == kfmt_format_json && report.code == kfmt_result_notStorable) return 0;
        std::fprintf(stderr, "fuzz: %s\n", report.message);
        fail("a tree that was read does not write in the other format");
    }
    Tree viaOther;
    readBack(converted, other, &viaOther.r);
    Memory back;
    write(&viaOther.r, format, &back);
    kstd_persistentPropertyTree_reset(&viaOther.r);
    Tree backTree;
    readBack(back, format, &backTree.r);
    Memory convertedAgain;
    write(&backTree.r, other, &convertedAgain);
    if (!sameBytes(converted, convertedAgain)) fail("a conversion to the other format and back changes the bytes");
    return 0;
}
