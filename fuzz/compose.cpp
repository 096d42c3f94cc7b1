// Fuzz harness of composing: bytes become a tree (through a storage format
// when they start like one, else through the section stream), and each
// top-level node is composed into a value of the demo model's types: a
// shared pointer to a scene, node or material graph (shared objects,
// cycles, vectors, enums, bit fields), a vector, a string, an enum or a core
// value. The first byte chooses the target. Every step must give a code,
// never a fault or a leak.
#include "demo_model.hpp"
#include "fuzz_support.hpp"

using namespace vexpers::fuzz;

namespace {

struct Target {
    const char16_t* typeName;
    uint32_t derivation;
};
constexpr Target targets[] = {
    {u"kstd_ptrh", 0},          {u"kstd_vectord", 0}, {u"kstd_vector_kstd_unicodeString", 0},
    {u"kstd_unicodeString", 0}, {u"DemoKind", 0},     {u"DemoFlags", 4},
    {u"k_Int32", 0},            {u"double", 0},       {u"kstd_vector32s", 0},
};
constexpr uint32_t targetCount = sizeof targets / sizeof targets[0];

void composeInto(uint32_t target, const kstd_persistentPropertyNode* node, kstd_persistentPropertyTree* tree) {
    if (target == 0) {
        kstd_ptrh pointer;
        kstd_ptrh_constructEmpty(&pointer);
        kstd_persistentType_loadPropertyNode(vexpers::demo::pointerType(), &pointer, node);
        // Cycles go through objects with ids, all recorded in the tree.
        vexpers::demo::unlinkRecorded(tree);
        kstd_ptrh_destruct(&pointer);
        return;
    }
    Type type;
    if (kstd_persistentTypeGetType(targets[target].typeName, targets[target].derivation, 1, &type.r) < 0)
        fail("a type of the demo model is not registered");
    void* object = nullptr;
    if (kstd_persistentType_newObject(&type.r, &object) >= 0) {
        kstd_persistentType_loadPropertyNode(&type.r, object, node);
        vexpers::demo::unlinkRecorded(tree);
        if (kstd_persistentType_deleteObject(&type.r, &object) < 0) fail("cannot delete a composed object");
        return;
    }
    // Core values and enums have no object table: they load into plain memory.
    alignas(16) unsigned char value[64] = {};
    kstd_persistentType_loadPropertyNode(&type.r, value, node);
    vexpers::demo::unlinkRecorded(tree);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    prepare();
    if (size == 0) return 0;
    const uint32_t target = data[0] % targetCount;
    const uint8_t* rest = data + 1;
    const size_t restSize = size - 1;
    Tree tree;
    uint32_t format = 0;
    if (kfmt_detectFormat(rest, restSize, &format) >= 0) {
        if (readTree(rest, restSize, format, (data[0] & 0x80) != 0 ? kfmt_flag_checkObjectIds : 0, &tree.r) < 0)
            return 0;
    } else {
        ByteReader input(rest, restSize);
        applySectionStream(input, &tree.r);
    }
    int composed = 0;
    for (kstd_persistentPropertyNode* node = tree.r.firstChild; node != nullptr && composed < 4;
         node = node->nextSibling, ++composed) {
        // Each composition starts from a registry without objects, as a reader leaves it.
        kstd_persistentPropertyTree_forgetAllObjects(&tree.r);
        composeInto(target, node, &tree.r);
    }
    return 0;
}
