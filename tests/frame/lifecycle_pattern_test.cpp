// The generated life-cycle family on a test record whose operations can be
// made to fail: a failing destruct inside _delete keeps the memory and the
// caller's pointer, a failing assign inside _newClone deletes the new record;
// and the copy forms under allocation failure, which the conformance list
// does not drive.
#include "frame/lifecycle.hpp"
#include "support/test_support.hpp"

namespace {

struct Probe {
    int value;
};
bool failDestruct = false;
bool failAssign = false;
int destructs = 0;

kstd_result Probe_construct(Probe* probe) {
    probe->value = 0;
    return 0;
}
kstd_result Probe_assign(Probe* probe, const Probe* source) {
    if (failAssign) return kstd_persistentResult_notSupported;
    probe->value = source->value;
    return 0;
}
kstd_result Probe_destruct(Probe*) {
    ++destructs;
    return failDestruct ? kstd_persistentResult_internalInconsistency : 0;
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(Probe)

TEST(LifecyclePattern, FailingDestructKeepsTheRecord) {
    vexpers::test::NoLeaks leaks;
    Probe* probe = nullptr;
    ASSERT_EQ(Probe_new(&probe), 0);
    Probe* const held = probe;
    failDestruct = true;
    EXPECT_EQ(Probe_delete(&probe), kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(probe, held) << "the pointer is unchanged";
    EXPECT_EQ(leaks.leaked(), 1) << "nothing was freed";
    // _new over a record whose destruct fails returns that failure and allocates nothing.
    EXPECT_EQ(Probe_new(&probe), kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(leaks.leaked(), 1);
    failDestruct = false;
    EXPECT_EQ(Probe_delete(&probe), 0);
    EXPECT_EQ(probe, nullptr);
}

TEST(LifecyclePattern, FailingAssignUndoesCloneAndCopy) {
    vexpers::test::NoLeaks leaks;
    Probe source{42};
    Probe* clone = nullptr;
    failAssign = true;
    destructs = 0;
    EXPECT_EQ(Probe_newClone(&clone, &source), kstd_persistentResult_notSupported);
    EXPECT_EQ(clone, nullptr);
    Probe copy{7};
    EXPECT_EQ(Probe_constructCopy(&copy, &source), kstd_persistentResult_notSupported);
    EXPECT_EQ(destructs, 2) << "both half-made records were destroyed";
    failAssign = false;
    ASSERT_EQ(Probe_newClone(&clone, &source), 0);
    EXPECT_EQ(clone->value, 42);
    EXPECT_EQ(Probe_delete(&clone), 0);
}

// On interning tables as representatives: the copy forms under allocation
// failure.
TEST(Lifecycle, ConstructorsLeakNothingWhenAllocationFails) {
    kstd_stringConstTable* table = nullptr;
    kstd_stringConstTable source;
    kstd_stringConstTable_construct(&source);
    kstd_stringConstTable_resetNumBins(&source, 3);
    kstd_stringConstTable_addString(&source, u"x", nullptr, nullptr, nullptr);
    vexpers::test::sweepAllocationFailures([&] { return kstd_stringConstTable_newClone(&table, &source); },
                                           [&] { kstd_stringConstTable_delete(&table); });
    EXPECT_EQ(table, nullptr);
    kstd_stringConstTable copy;
    vexpers::test::sweepAllocationFailures(
        [&] {
            const kstd_result result = kstd_stringConstTable_constructCopy(&copy, &source);
            if (result >= 0) kstd_stringConstTable_destruct(&copy);
            return result;
        });
    kstd_stringConstTable_destruct(&source);
}

}  // namespace
