// Allocation-failure sweeps over the operations a program runs on data it
// did not write: registering a client model, filling a bag from an object,
// decomposing, walking with the processor, composing, and writing and
// reading both storage formats. Each scenario runs on the demo scene; every
// allocation it makes fails once and persistently in turn, and each run must
// give ksys_result_outOfMemory, leak nothing and leave a clean rerun working.
#include <cstdio>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "demo_model.hpp"
#include "support/test_support.hpp"
#include "vexpers/formats/formats.h"

namespace vexpers::test {
namespace {

using Bytes = std::vector<uint8_t>;

// ---- A client model registered afresh by every run -----------------------------------------

struct Thing {
    int32_t number;
    double ratio;
    int64_t shade;
};

template <auto Member>
kstd_result memberOf(const void* object, const void** member) {
    *member = &(static_cast<const Thing*>(object)->*Member);
    return 0;
}

kstd_persistentPropertyAccessors addressAccessor(kstd_result (*address)(const void*, const void**)) {
    kstd_persistentPropertyAccessors result{};
    result.words[4] = reinterpret_cast<const void*>(address);
    return result;
}

// The enum that every registered Thing refers to, registered once.
uint32_t shadeFlag = 0, shadeBitsFlag = 0;
kstd_persistentType shadeType, shadeBitsType;

const kstd_persistentPropertyInfoDefinition thingDefinitions[]{
    {u"number", 2, u"k_Int32", 0, addressAccessor(memberOf<&Thing::number>)},
    {u"ratio", 2, u"double", 0, addressAccessor(memberOf<&Thing::ratio>)},
    {u"shade", 2, u"SweepShade", 0, addressAccessor(memberOf<&Thing::shade>)},
};
const kstd_persistentStaticPropertyList thingProperties{thingDefinitions, 3};

// The registry keeps the flags and handles of a registration until shut-down,
// so each run gets slots that are never freed.
struct RegistrationSlot {
    uint32_t thingFlag = 0, kindFlag = 0, kindBitsFlag = 0;
    kstd_persistentType thing, kind, kindBits;
};
std::deque<RegistrationSlot>& slots() {
    static auto* kept = new std::deque<RegistrationSlot>;
    return *kept;
}

std::u16string numbered(const char* prefix, size_t n) {
    std::u16string text;
    for (const char* c = prefix; *c != 0; ++c) text += char16_t(*c);
    for (char c : std::to_string(n)) text += char16_t(c);
    return text;
}

// Names are interned for good the first time they are met, so the names of
// the models are interned before the sweep; a run that fails leaves its
// name to the next one.
constexpr size_t modelNames = 1000;
size_t thingsRegistered = 0, kindsRegistered = 0;

void internModelNames() {
    Type type;
    for (size_t n = 0; n < modelNames; ++n)
        for (const char* prefix : {"SweepThing", "SweepKind"})
            ASSERT_EQ(kstd_persistentTypeGetType(numbered(prefix, n).c_str(), 0, 0, type), 0);
}

// Registers an object type with properties of core types and of the shared
// enum under a new name.
kstd_result registerThing() {
    if (thingsRegistered == modelNames) return ksys_result_failure;
    RegistrationSlot& slot = slots().emplace_back();
    const kstd_result result =
        kstd_persistentTypeRegisterTypeObject(numbered("SweepThing", thingsRegistered).c_str(), &objectTableOf<Thing>,
                                              &valueAccessTable, &thingProperties, 0, &slot.thingFlag, &slot.thing);
    if (result >= 0) ++thingsRegistered;
    return result;
}

// Registers an enum with its bit-field form under a new name.
kstd_result registerKind() {
    if (kindsRegistered == modelNames) return ksys_result_failure;
    RegistrationSlot& slot = slots().emplace_back();
    const kstd_result result = kstd_persistentTypeRegisterTypeEnum(
        numbered("SweepKind", kindsRegistered).c_str(), 1, 2, 3, 4, &valueAccessTable, &valueAccessTable, nullptr,
        nullptr, &slot.kindFlag, &slot.kindBitsFlag, &slot.kind, &slot.kindBits);
    if (result >= 0) ++kindsRegistered;
    return result;
}

// ---- The demo scene and what the scenarios share ---------------------------------------------

struct World {
    kstd_ptrh scene{};
    kstd_persistentProperty property{};
    kstd_persistentPropertyTree decomposed{};
    kstd_persistentPropertyTree read{};
    kstd_ptrh composed{};
    Bytes bytes[3];  // by format id (kfmt_format_json, kfmt_format_binary)

    World() {
        kstd_ptrh_constructEmpty(&scene);
        kstd_ptrh_constructEmpty(&composed);
        kstd_persistentProperty_construct(&property);
        kstd_persistentPropertyTree_construct(&decomposed);
        kstd_persistentPropertyTree_construct(&read);
    }
    ~World() {
        kstd_persistentPropertyTree_destruct(&read);
        kstd_persistentPropertyTree_destruct(&decomposed);
        kstd_persistentProperty_destruct(&property);
        demo::releaseScene(&composed);
        demo::releaseScene(&scene);
        kstd_ptrh_destruct(&composed);
        kstd_ptrh_destruct(&scene);
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;
};

kstd_result writeTree(kstd_persistentPropertyTree* tree, uint32_t format, Bytes* bytes) {
    kfmt_memoryWriter writer;
    kfmt_sink sink;
    kfmt_sink_initMemory(&sink, &writer);
    const kstd_result result = kfmt_writeTree(tree, format, &sink, nullptr, nullptr, nullptr);
    if (bytes != nullptr) bytes->assign(writer.data, writer.data + writer.size);
    kfmt_memoryWriter_release(&writer);
    return result;
}

kstd_result readTree(kstd_persistentPropertyTree* tree, const Bytes& bytes) {
    kfmt_memoryReader reader;
    kfmt_source source;
    kfmt_source_initMemory(&source, &reader, bytes.data(), bytes.size());
    kfmt_options options;
    kfmt_options_setDefaults(&options);
    options.flags = kfmt_flag_checkObjectIds;
    return kfmt_readTree(tree, kfmt_format_detect, &source, &options, nullptr, nullptr);
}

kstd_result countNodes(void* context, int32_t, int32_t, const kstd_persistentPropertyNode*) {
    ++*static_cast<int64_t*>(context);
    return 0;
}
// The processor's walk of the decomposed tree, as the writers run it.
kstd_result walk(World& world) {
    kstd_persistentPropertyProcessor processor;
    kstd_result result = kstd_persistentPropertyProcessor_construct(&processor);
    if (result < 0) return result;
    int64_t events = 0;
    result = kstd_persistentPropertyProcessor_processPropertyTree(&processor, &world.decomposed, countNodes, &events);


    const kstd_result released = kstd_persistentPropertyProcessor_destruct(&processor);
    return result < 0 ? result : released;
}

// Fills a bag with the persistent properties of the scene's root node.
kstd_result fillBag(World& world) {
    const auto* scene = static_cast<const demo::Scene*>(world.scene.shared->whole);
    kstd_persistentType type;
    kstd_persistentType_construct(&type);
    kstd_persistentPropertyBag bag;
    kstd_persistentPropertyBag_construct(&bag);
    kstd_result result = kstd_persistentTypeGetType(u"DemoNode", 0, 1, &type);
    if (result >= 0) result = kstd_persistentType_transferObjectPersistentProperties(&type, scene->root.shared->whole, &bag);
    kstd_persistentPropertyBag_destruct(&bag);
    kstd_persistentType_destruct(&type);
    return result;
}

kstd_result decompose(World& world) {
    kstd_persistentPropertyTree tree;
    kstd_result result = kstd_persistentPropertyTree_construct(&tree);
    if (result < 0) return result;
    result = kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &world.property);
    const kstd_result released = kstd_persistentPropertyTree_destruct(&tree);
    return result < 0 ? result : released;
}

kstd_result compose(World& world) {
    return kstd_persistentType_loadPropertyNode(demo::pointerType(), &world.composed, world.read.firstChild);
}
void forgetComposed(World& world) {
    demo::unlinkRecorded(&world.read);
    kstd_persistentPropertyTree_forgetAllObjects(&world.read);
    demo::releaseScene(&world.composed);
}

kstd_result readInto(const Bytes& bytes) {
    kstd_persistentPropertyTree tree;
    kstd_result result = kstd_persistentPropertyTree_construct(&tree);
    if (result < 0) return result;
    result = readTree(&tree, bytes);
    const kstd_result released = kstd_persistentPropertyTree_destruct(&tree);
    return result < 0 ? result : released;
}

struct Sweep {
    const char* name;
    std::function<kstd_result(World&)> run;
    std::function<void(World&)> cleanup;
    SweepKeeps keeps;
};

const Sweep sweeps[]{
    {"object type registration", [](World&) { return registerThing(); }, nullptr, SweepKeeps::whatSucceeds},
    {"enum registration", [](World&) { return registerKind(); }, nullptr, SweepKeeps::whatSucceeds},
    {"bag filling", fillBag, nullptr, SweepKeeps::nothing},
    {"decomposition", decompose, nullptr, SweepKeeps::nothing},
    {"processor walk", walk, nullptr, SweepKeeps::nothing},
    {"composing", compose, forgetComposed, SweepKeeps::nothing},
    {"json write", [](World& w) { return writeTree(&w.decomposed, kfmt_format_json, nullptr); }, nullptr,
     SweepKeeps::nothing},
    {"binary write", [](World& w) { return writeTree(&w.decomposed, kfmt_format_binary, nullptr); }, nullptr,
     SweepKeeps::nothing},
    {"json read", [](World& w) { return readInto(w.bytes[kfmt_format_json]); }, nullptr, SweepKeeps::nothing},
    {"binary read", [](World& w) { return readInto(w.bytes[kfmt_format_binary]); }, nullptr, SweepKeeps::nothing},
};

TEST(AllocationSweeps, EveryFailingAllocationGivesOutOfMemoryAndLeaksNothing) {
    ASSERT_EQ(demo::registerTypes(), 0);
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"SweepShade", 1, 2, 3, 4, &valueAccessTable, &valueAccessTable,
                                                  nullptr, nullptr, &shadeFlag, &shadeBitsFlag, &shadeType,
                                                  &shadeBitsType),
              0);
    internModelNames();
    World world;
    demo::Census census;
    ASSERT_EQ(demo::buildScene(6, &world.scene, &census), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(&world.property, u"scene", 2, &world.scene), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(&world.decomposed, &world.property), 0);
    for (uint32_t format : {kfmt_format_json, kfmt_format_binary})
        ASSERT_EQ(writeTree(&world.decomposed, format, &world.bytes[format]), 0);
    ASSERT_EQ(readTree(&world.read, world.bytes[kfmt_format_binary]), 0);

    for (const Sweep& sweep : sweeps) {
        SCOPED_TRACE(sweep.name);
        const auto run = [&] { return sweep.run(world); };
        const std::function<void()> cleanup = sweep.cleanup ? std::function<void()>([&] { sweep.cleanup(world); })
                                                            : std::function<void()>();
        // A first run interns the names and fills the caches it meets.
        ASSERT_GE(run(), 0);
        if (cleanup) cleanup();
        const int64_t sites = sweepAllocationFailures(run, cleanup, sweep.keeps);
        EXPECT_GT(sites, 0);
        std::printf("[ sweep    ] %-16s %5lld allocation sites\n", sweep.name, static_cast<long long>(sites));
    }
    // The composed copy still agrees with the scene after all that.
    ASSERT_EQ(compose(world), 0);
    EXPECT_EQ(demo::compareScenes(world.scene, world.composed, &census), "");
    forgetComposed(world);
}

}  // namespace
}  // namespace vexpers::test
