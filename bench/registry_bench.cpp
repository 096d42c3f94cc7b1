// Registry lookups: kstd_persistentTypeGetType of a registered name, with the
// registry holding the core types alone and with a few thousand registered
// object types besides.
#include <benchmark/benchmark.h>

#include <string>

#include "vexpers/vexpers.h"

namespace {

kstd_result noOp(void*) { return 0; }
kstd_result noOpNew(void**) { return 0; }
kstd_result noOpClone(void**, const void*) { return 0; }
const kstd_persistentObjectVtable objectTable{nullptr, nullptr, nullptr, nullptr, nullptr,
                                              noOp,    noOpNew, noOpClone, noOpNew};
const kstd_persistentValueAccessVtable valueAccess{};

// Registers `count` object types named "BenchType<i>" (once per process).
void registerTypes(int count) {
    static int registered = 0;
    for (; registered < count; ++registered) {
        std::u16string name = u"BenchType";
        for (char c : std::to_string(registered)) name += char16_t(c);
        auto* flag = new uint32_t(0);
        auto* handle = new kstd_persistentType;
        kstd_persistentTypeRegisterTypeObject(name.c_str(), &objectTable, &valueAccess, nullptr, 0, flag, handle);
    }
}

void BM_GetTypeRegistered(benchmark::State& state) {
    registerTypes(static_cast<int>(state.range(0)));
    kstd_persistentType type;
    kstd_persistentType_construct(&type);
    for (auto _ : state) {
        if (kstd_persistentTypeGetType(u"unsigned int", kstd_persistentTypeDerivation_pointer, 1, &type) != 0)
            state.SkipWithError("lookup failed");
        benchmark::DoNotOptimize(type.record.shared);
    }
    kstd_persistentType_destruct(&type);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GetTypeRegistered)->Arg(0)->Arg(5000);

}  // namespace
