// Fuzz harness of the start/end protocol: bytes become node sections
// (flags, descriptors, ids, counts and values of every kind, also ones no
// writer makes) streamed into a tree with startNode, startChildNode,
// addChildLeafNode, isMatchingEnd and endNode, mixed with object registry
// calls. Every step must give a code, never a fault; the tree built is then
// walked, turned back into sections, dumped, written and read back.
#include "demo_model.hpp"
#include "fuzz_support.hpp"

using namespace vexpers::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    prepare();
    ByteReader input(data, size);
    Tree tree;
    applySectionStream(input, &tree.r);
    exerciseTree(&tree.r);
    for (const uint32_t format : {kfmt_format_json, kfmt_format_binary}) {
        Memory bytes;
        if (kfmt_writeTree(&tree.r, format, &bytes.sink, nullptr, nullptr, nullptr) < 0) continue;
        Tree back;
        readTree(bytes.writer.data, bytes.writer.size, format, 0, &back.r);
    }
    return 0;
}
