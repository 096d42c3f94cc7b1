// Property bags: adding n properties with distinct names to a new bag, then
// looking each up by name; and refilling an emptied bag, as a walk does for
// every object. Past a small size a bag finds names through its index, so
// the cost per add and per lookup stays flat as n grows.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "vexpers/vexpers.h"

namespace {

std::vector<std::u16string> makeNames(int64_t count) {
    std::vector<std::u16string> names;
    names.reserve(count);
    for (int64_t i = 0; i < count; ++i) {
        std::u16string name = u"member_";
        for (int64_t v = i; v > 0 || name.size() == 7; v /= 26) name.push_back(char16_t(u'a' + v % 26));
        names.push_back(std::move(name));
    }
    return names;
}

// Interns the names once, so that every run measures the bag alone.
void warmUp(const std::vector<std::u16string>& names) {
    kstd_persistentPropertyBag bag;
    kstd_persistentPropertyBag_construct(&bag);
    for (const auto& name : names) kstd_persistentPropertyBag_addValue_int(&bag, name.c_str(), 2, 1);
    kstd_persistentPropertyBag_destruct(&bag);
}

// A new bag, n adds, destruct: the time per item is the cost of one add. At
// 10,000 properties the slots take megabytes, which the C allocator hands
// back to the system when the bag goes, so this includes faulting in fresh
// pages on every run (GLIBC_TUNABLES=glibc.malloc.trim_threshold=268435456
// leaves them mapped and shows the bag's own cost).
void BM_BagAdd(benchmark::State& state) {
    const auto names = makeNames(state.range(0));
    warmUp(names);
    for (auto _ : state) {
        kstd_persistentPropertyBag bag;
        kstd_persistentPropertyBag_construct(&bag);
        int value = 0;
        for (const auto& name : names)
            if (kstd_persistentPropertyBag_addValue_int(&bag, name.c_str(), 2, value++) != 0)
                state.SkipWithError("add");
        kstd_persistentPropertyBag_destruct(&bag);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_BagAdd)->Arg(10)->Arg(100)->Arg(10000);

// Looking up each of the n names of a full bag.
void BM_BagLookup(benchmark::State& state) {
    const auto names = makeNames(state.range(0));
    kstd_persistentPropertyBag bag;
    kstd_persistentPropertyBag_construct(&bag);
    for (const auto& name : names) kstd_persistentPropertyBag_addValue_int(&bag, name.c_str(), 2, 1);
    for (auto _ : state) {
        for (const auto& name : names) {
            const kstd_persistentProperty* found = nullptr;
            kstd_persistentPropertyBag_getPropertyPtrConstUsingName(&bag, name.c_str(), &found);
            if (found == nullptr) state.SkipWithError("lookup");
            benchmark::DoNotOptimize(found);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    kstd_persistentPropertyBag_destruct(&bag);
}
BENCHMARK(BM_BagLookup)->Arg(10)->Arg(100)->Arg(10000);

// Emptying a bag and refilling it with the same names reuses its slots.
void BM_BagRefill(benchmark::State& state) {
    const auto names = makeNames(state.range(0));
    kstd_persistentPropertyBag bag;
    kstd_persistentPropertyBag_construct(&bag);
    for (auto _ : state) {
        kstd_persistentPropertyBag_removeAllProperties(&bag);
        int value = 0;
        for (const auto& name : names)
            if (kstd_persistentPropertyBag_addValue_int(&bag, name.c_str(), 2, value++) != 0)
                state.SkipWithError("add");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    kstd_persistentPropertyBag_destruct(&bag);
}
BENCHMARK(BM_BagRefill)->Arg(10)->Arg(100)->Arg(10000);

}  // namespace
