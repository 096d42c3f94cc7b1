// Allocation-failure sweeps over the operations a program runs on data it
// did not write: registering a client model, filling a bag from an object,
// walking with the processor, and writing and reading both storage formats
// (decomposing and composing are swept by the tree tests' round trip). Each
// scenario runs on the demo scene; every allocation it makes fails once and
// persistently in turn, and each run must give ksys_result_outOfMemory, leak
// nothing and leave a clean rerun working.
#include <cstdio>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "support/format_support.hpp"

namespace vexpers::test {
namespace {

// ---- A client model registered afresh by every run -----------------------------------------

struct Thing {
    int32_t number;
    double ratio;
    int64_t shade;
};

// Members are stored by address.
template <size_t Offset>
kstd_persistentPropertyAccessors addressAccessor() {
    return vexpers::client::accessors({{4, vexpers::client::word(vexpers::client::addressAt<Offset>)}});
}

// The enum that every registered Thing refers to, registered once.
uint32_t shadeFlag = 0, shadeBitsFlag = 0;
kstd_persistentType shadeType, shadeBitsType;

const kstd_persistentPropertyInfoDefinition thingDefinitions[]{
    {u"number", 2, u"k_Int32", 0, addressAccessor<offsetof(Thing, number)>()},
    {u"ratio", 2, u"double", 0, addressAccessor<offsetof(Thing, ratio)>()},
    {u"shade", 2, u"SweepShade", 0, addressAccessor<offsetof(Thing, shade)>()},
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

// ---- The demo scene and the scenarios ------------------------------------------------------

// Builds and releases a record around one call, so that a run leaves nothing.
template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*), class F>
kstd_result with(F call) {
    R record;
    kstd_result result = Construct(&record);
    if (result >= 0) result = call(&record);
    const kstd_result released = Destruct(&record);
    return result < 0 ? result : released;
}
template <class F>
kstd_result withTree(F call) {
    return with<kstd_persistentPropertyTree, kstd_persistentPropertyTree_construct,
                kstd_persistentPropertyTree_destruct>(call);
}

kstd_result countNodes(void*, int32_t, int32_t, const kstd_persistentPropertyNode*) { return 0; }

TEST(AllocationSweeps, EveryFailingAllocationGivesOutOfMemoryAndLeaksNothing) {
    ASSERT_EQ(demo::registerTypes(), 0);
    ASSERT_EQ(kstd_persistentTypeRegisterTypeEnum(u"SweepShade", 1, 2, 3, 4, &valueAccessTable, &valueAccessTable,
                                                  nullptr, nullptr, &shadeFlag, &shadeBitsFlag, &shadeType,
                                                  &shadeBitsType),
              0);
    internModelNames();
    formats::Scene scene;
    demo::Census census;
    Property property;
    formats::Tree decomposed;
    formats::Bytes bytes[3];  // by format id (kfmt_format_json, kfmt_format_binary)
    ASSERT_EQ(demo::buildScene(6, scene, &census), 0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_kstd_ptrh(property, u"scene", 2, scene), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_resetDecomposeProperty(decomposed, property), 0);
    for (uint32_t format : formats::bothFormats) ASSERT_EQ(formats::write(decomposed, format, &bytes[format]), 0);
    const kfmt_options options = formats::checkingOptions();
    void* root = static_cast<const demo::Scene*>(scene->shared->whole)->root.shared->whole;
    Type nodeType;
    ASSERT_EQ(kstd_persistentTypeGetType(u"DemoNode", 0, 1, nodeType), 0);

    // Decomposing and composing are swept by the tree tests' round trip.
    const struct {
        const char* name;
        std::function<kstd_result()> run;
        SweepKeeps keeps = SweepKeeps::nothing;
    } sweeps[]{
        {"object type registration", registerThing, SweepKeeps::whatSucceeds},
        {"enum registration", registerKind, SweepKeeps::whatSucceeds},
        {"bag filling",
         [&] {
             return with<kstd_persistentPropertyBag, kstd_persistentPropertyBag_construct,
                         kstd_persistentPropertyBag_destruct>([&](kstd_persistentPropertyBag* bag) {
                 return kstd_persistentType_transferObjectPersistentProperties(nodeType, root, bag);
             });
         }},
        {"processor walk",
         [&] {
             return with<kstd_persistentPropertyProcessor, kstd_persistentPropertyProcessor_construct,
                         kstd_persistentPropertyProcessor_destruct>([&](kstd_persistentPropertyProcessor* p) {
                 return kstd_persistentPropertyProcessor_processPropertyTree(p, decomposed, countNodes, nullptr);
             });
         }},
        {"json write", [&] { formats::Bytes out; return formats::write(decomposed, kfmt_format_json, &out); }},
        {"binary write", [&] { formats::Bytes out; return formats::write(decomposed, kfmt_format_binary, &out); }},
        {"json read",
         [&] { return withTree([&](auto* t) { return formats::read(t, bytes[kfmt_format_json], &options); }); }},
        {"binary read",
         [&] { return withTree([&](auto* t) { return formats::read(t, bytes[kfmt_format_binary], &options); }); }},
    };
    for (const auto& sweep : sweeps) {
        SCOPED_TRACE(sweep.name);
        // A first run interns the names and fills the caches it meets.
        ASSERT_GE(sweep.run(), 0);
        const int64_t sites = sweepAllocationFailures(sweep.run, {}, sweep.keeps);
        EXPECT_GT(sites, 0);
        std::printf("[ sweep    ] %-24s %5lld allocation sites\n", sweep.name, static_cast<long long>(sites));
    }
}

}  // namespace
}  // namespace vexpers::test
