#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// A record that points into itself, like a constant string's empty state:
// `chars` must always hold the address of this record's own `empty`.
struct Probe {
    const char16_t* chars;
    char16_t empty;
    int32_t key;
    int32_t serial;
};

constexpr kstd_result copyFailure = VEXPERS_RESULT(0x80001234u);
int64_t liveProbes = 0;
int64_t copiesUntilFailure = 0;  // 0: never fail; k: the k-th copy from now fails

kstd_result probeConstruct(void* e) {
    auto* p = static_cast<Probe*>(e);
    *p = Probe{nullptr, 0, 0, 0};
    p->chars = &p->empty;
    ++liveProbes;
    return 0;
}
kstd_result probeCopy(void* e, const void* s) {
    if (copiesUntilFailure > 0 && --copiesUntilFailure == 0) return copyFailure;
    auto* p = static_cast<Probe*>(e);
    const auto* source = static_cast<const Probe*>(s);
    EXPECT_EQ(source->chars, &source->empty) << "a source record was moved bytewise";
    *p = Probe{nullptr, 0, source->key, source->serial};
    p->chars = &p->empty;
    ++liveProbes;
    return 0;
}
kstd_result probeAssign(void* e, const void* s) {
    static_cast<Probe*>(e)->key = static_cast<const Probe*>(s)->key;
    static_cast<Probe*>(e)->serial = static_cast<const Probe*>(s)->serial;
    return 0;
}
kstd_result probeDestruct(void* e) {
    EXPECT_EQ(static_cast<Probe*>(e)->chars, &static_cast<Probe*>(e)->empty);
    --liveProbes;
    return 0;
}
const kstd_vectorElementVtable probeTable{probeConstruct, probeCopy, probeAssign, probeDestruct};

kstd_result byKey(const void* a, const void* b, int32_t* order) {
    const int32_t x = static_cast<const Probe*>(a)->key, y = static_cast<const Probe*>(b)->key;
    *order = x < y ? -1 : x > y ? 1 : 0;
    return 0;
}

Probe probe(int32_t key, int32_t serial) {
    Probe p{nullptr, 0, key, serial};
    p.chars = &p.empty;
    return p;
}

// (key, serial) of every element; also checks that each record points into itself.
std::vector<std::pair<int32_t, int32_t>> contents(const kstd_vector__& v) {
    std::vector<std::pair<int32_t, int32_t>> out;
    const auto* p = static_cast<const Probe*>(v.begin);
    for (int64_t i = 0; i < v.size; ++i) {
        EXPECT_EQ(p[i].chars, &p[i].empty) << "element " << i;
        out.emplace_back(p[i].key, p[i].serial);
    }
    return out;
}

kstd_vector__ probes(int32_t count) {
    kstd_vector__ v;
    EXPECT_EQ(kstd_vector__constructWithVtable(&v, 0, sizeof(Probe), &probeTable), 0);
    EXPECT_EQ(kstd_vector__reserve(&v, count), 0);
    for (int32_t i = 0; i < count; ++i) {
        const Probe p = probe(count - i, i);
        EXPECT_EQ(kstd_vector__pushBack(&v, &p), 0);
    }
    return v;
}

// The sort is stable and moves records through their copy operation only;
// a vector appended to itself, or given its own element while it grows,
// copies the records it reads before it lets go of them.
TEST(Vector, StableSortAndSelfAppendOfRecordsThatPointIntoThemselves) {
    NoLeaks leaks;
    {
        kstd_vector__ v = probes(500);
        for (Probe* p = static_cast<Probe*>(v.begin); p != static_cast<Probe*>(v.begin) + v.size; ++p) p->key %= 7;
        auto before = contents(v);
        ASSERT_EQ(kstd_vector__qsort(&v, byKey), 0);
        std::stable_sort(before.begin(), before.end(), [](auto& a, auto& b) { return a.first < b.first; });
        EXPECT_EQ(contents(v), before);
        ASSERT_EQ(kstd_vector__append(&v, &v), 0);
        ASSERT_EQ(kstd_vector__reserve(&v, v.size), 0);
        ASSERT_EQ(kstd_vector__pushBack(&v, static_cast<Probe*>(v.begin) + 5), 0);  // its own element, while growing
        EXPECT_EQ(contents(v).back(), contents(v)[5]);
        EXPECT_EQ(liveProbes, 1001);
        EXPECT_EQ(kstd_vector__destruct(&v), 0);
    }
    EXPECT_EQ(liveProbes, 0);
}

// Each operation under an element copy that fails on the k-th call, for every
// k until it succeeds, and under every allocation failure: the failure code
// comes back, the vector keeps its contents (and, after a failed copy, its
// storage), and no record or block is left behind.
TEST(Vector, FailedOperationsLeaveTheVectorUnchanged) {
    const Probe extra = probe(99, 99);
    kstd_vector__ source = probes(3);
    const std::vector<std::pair<const char*, std::function<kstd_result(kstd_vector__*)>>> operations{
        {"pushBack with growth", [&](kstd_vector__* v) { return kstd_vector__pushBack(v, &extra); }},
        {"insert", [&](kstd_vector__* v) { return kstd_vector__insert(v, 3, &extra); }},
        {"resizeFill", [&](kstd_vector__* v) { return kstd_vector__resizeFill(v, 30, &extra); }},
        {"qsort", [&](kstd_vector__* v) { return kstd_vector__qsort(v, byKey); }},
        {"append", [&](kstd_vector__* v) { return kstd_vector__append(v, v); }},
        {"assign", [&](kstd_vector__* v) { return kstd_vector__assign(v, &source); }},
    };
    for (const auto& named : operations) {
        const auto& operation = named.second;  // a plain name, for the lambdas below
        SCOPED_TRACE(named.first);
        NoLeaks leaks;
        kstd_result result = copyFailure;
        for (int64_t k = 1; result == copyFailure; ++k) {
            kstd_vector__ v = probes(8);
            const auto before = contents(v);
            const void* storage = v.begin;
            const int64_t records = liveProbes;
            copiesUntilFailure = k;
            result = operation(&v);
            copiesUntilFailure = 0;
            if (result == copyFailure) {
                EXPECT_EQ(contents(v), before) << "copy " << k;
                EXPECT_EQ(v.begin, storage);
                EXPECT_EQ(liveProbes, records) << "copy " << k;
            } else {
                EXPECT_EQ(result, 0);
            }
            kstd_vector__destruct(&v);
        }
        kstd_vector__ v = probes(8);
        const auto original = contents(v);
        sweepAllocationFailures(
            [&] {
                const kstd_result result = operation(&v);
                if (result < 0) {
                    EXPECT_EQ(contents(v), original);
                }
                return result;
            },
            [&] {
                kstd_vector__destruct(&v);
                v = probes(8);
            });
        kstd_vector__destruct(&v);
        EXPECT_EQ(liveProbes, 3);  // the source's
    }
    kstd_vector__destruct(&source);
    EXPECT_EQ(liveProbes, 0);
}

// Without element operations the bytes move: an element of the vector itself
// inserted in the middle, then an overlapping range of it assigned to it.
TEST(Vector, PlainBytesOwnElementsAndRanges) {
    kstd_vector__ v;
    ASSERT_EQ(kstd_vector__constructWithVtable(&v, 4, sizeof(int32_t), nullptr), 0);
    auto* p = static_cast<int32_t*>(v.begin);
    for (int32_t i = 0; i < 4; ++i) p[i] = i + 1;
    ASSERT_EQ(kstd_vector__reserve(&v, 10), 0);
    ASSERT_EQ(kstd_vector__insert(&v, 1, static_cast<int32_t*>(v.begin) + 3), 0);
    p = static_cast<int32_t*>(v.begin);
    EXPECT_EQ(std::vector<int32_t>(p, p + v.size), (std::vector<int32_t>{1, 4, 2, 3, 4}));
    ASSERT_EQ(kstd_vector__assignElements(&v, p + 1, p + 4), 0);
    p = static_cast<int32_t*>(v.begin);
    EXPECT_EQ(std::vector<int32_t>(p, p + v.size), (std::vector<int32_t>{4, 2, 3}));
    kstd_vector__destruct(&v);
}

}  // namespace
