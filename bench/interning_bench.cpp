// Interning: find-or-add of n distinct names, then lookups of names that are
// present. With a fixed bin count the lookup cost grows only with the bin
// scan (n / bins names per bin).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "vexpers/vexpers.h"

namespace {

std::vector<std::u16string> makeNames(int64_t count) {
    std::vector<std::u16string> names;
    names.reserve(count);
    for (int64_t i = 0; i < count; ++i) {
        std::u16string name = u"property_";
        for (int64_t v = i; v > 0 || name.size() == 9; v /= 26) name.push_back(char16_t(u'a' + v % 26));
        names.push_back(std::move(name));
    }
    return names;
}

void BM_InternFindOrAdd(benchmark::State& state) {
    const auto names = makeNames(state.range(0));
    for (auto _ : state) {
        kstd_stringConstTable table;
        kstd_stringConstTable_construct(&table);
        kstd_stringConstTable_resetNumBins(&table, 4096);
        for (const auto& name : names) kstd_stringConstTable_addString(&table, name.c_str(), nullptr, nullptr, nullptr);
        kstd_stringConstTable_destruct(&table);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_InternFindOrAdd)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Lookups of present names in a table of n names (4096 bins, as the registry).
void BM_InternLookup(benchmark::State& state) {
    const auto names = makeNames(state.range(0));
    kstd_stringConstTable table;
    kstd_stringConstTable_construct(&table);
    kstd_stringConstTable_resetNumBins(&table, 4096);
    for (const auto& name : names) kstd_stringConstTable_addString(&table, name.c_str(), nullptr, nullptr, nullptr);
    size_t next = 0;
    for (auto _ : state) {
        int32_t id = -1;
        kstd_stringConstTable_findString(&table, names[next].c_str(), nullptr, &id);
        benchmark::DoNotOptimize(id);
        next = (next + 7919) % names.size();
    }
    state.SetItemsProcessed(state.iterations());
    kstd_stringConstTable_destruct(&table);
}
BENCHMARK(BM_InternLookup)->Arg(10000)->Arg(100000)->Arg(1000000);

}  // namespace
