// The object registry: taken and free ids and findObject against the
// linear search it stands in for, the id cap, allocation failures; and the
// tree's copy rule.
#include <deque>
#include <random>
#include <vector>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

class RegistryTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { types(); }

    // A variant holding a pointer to `box`.
    Variant& hold(Box* box) {
        Variant& variant = held.emplace_back();
        EXPECT_EQ(kstd_persistentVariant_setValueUsingType(variant, types().boxPointer, box), 0);
        return variant;
    }
    int64_t find(Variant& variant, kstd_result expected = 0, uint32_t* isNew = nullptr) {
        int64_t id = -2;
        uint32_t isNewObject = 9;
        EXPECT_EQ(kstd_persistentPropertyTree_findObject(tree, variant, &id, &isNewObject), expected);
        if (isNew != nullptr) *isNew = isNewObject;
        return id;
    }
    int64_t length() const { return tree->objectPointers.base.size; }

    NoLeaks leaks;
    std::deque<Variant> held;
    Tree tree;
};

// Random records, lookups and finds against a model that searches linearly.
TEST_F(RegistryTest, IdsAndFindObjectAnswerAsTheLinearSearch) {
    Box boxes[64]{};
    std::vector<const void*> model;  // by id
    std::mt19937 random(7);
    for (int step = 0; step < 4000; ++step) {
        Box* box = &boxes[random() % 64];
        Variant& variant = hold(box);
        if (random() % 3 == 0) {
            const int64_t id = random() % 2 == 0 ? int64_t(random() % 200) : int64_t(random() % 100000);
            const bool taken = id < int64_t(model.size()) && model[id] != nullptr;
            ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, id, variant),
                      taken ? kstd_persistentResult_objectIdTaken : 0);
            if (!taken) {
                if (id >= int64_t(model.size())) model.resize(id + 1, nullptr);
                model[id] = box;
            }
        } else {
            int64_t expected = -1;
            for (size_t i = 0; i < model.size() && expected < 0; ++i)
                if (model[i] == box) expected = int64_t(i);
            const uint32_t isNewExpected = expected < 0 ? 1 : 0;
            if (isNewExpected != 0) {
                expected = int64_t(model.size());
                model.push_back(box);
            }
            uint32_t isNew = 9;
            ASSERT_EQ(find(variant, 0, &isNew), expected) << "step " << step;
            ASSERT_EQ(isNew, isNewExpected);
        }
        const int64_t probe = int64_t(random() % 260) - 1;
        const bool recorded = probe >= 0 && probe < int64_t(model.size()) && model[probe] != nullptr;
        Variant out;
        ASSERT_EQ(kstd_persistentPropertyTree_getObjectById(tree, probe, out),
                  recorded ? 0 : kstd_persistentResult_objectIdNotFound);
        ASSERT_TRUE(!recorded || out->value.pointer == model[probe]) << probe;
        if (step % 1000 == 999) {
            ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(tree), 0);
            EXPECT_EQ(length(), 0);
            model.clear();
            held.clear();
        }
    }
}

TEST_F(RegistryTest, BadIdsObjectsAndCopiesGiveCodes) {
    Box a{}, b{};
    Variant &va = hold(&a), &vb = hold(&b);
    Variant nothing, number, out;
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(nothing, types().boxPointer, nullptr), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(number, 4), 0);
    AssertRecorder faults;
    for (int64_t id : {int64_t{-1}, int64_t{kstd_persistentPropertyTree_maxObjectId} + 1, INT64_MAX})
        EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, id, va), kstd_persistentResult_invalidArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, nothing), kstd_persistentResult_nullArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, number), kstd_persistentResult_wrongTypeKind);
    EXPECT_EQ(find(nothing, kstd_persistentResult_nullArgument), -1);
    EXPECT_EQ(length(), 0);

    // The highest id works; the next new object would pass the cap.
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, kstd_persistentPropertyTree_maxObjectId, va), 0);
    find(vb, kstd_persistentResult_invalidArgument);

    // Vectors of different lengths are an inconsistency, not a crash.
    ASSERT_EQ(kstd_vectorPtrConstVoid_pushBack(&tree->objectPointers, nullptr), 0);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, vb), kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 0, out), kstd_persistentResult_internalInconsistency);
    find(vb, kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(faults.count(), 0);

    // A tree is never copied into another.
    Tree other;
    EXPECT_EQ(kstd_persistentPropertyTree_assign(tree, other), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
}

TEST_F(RegistryTest, RegistryFailuresLeakNothing) {
    Box a{}, b{};
    Variant &va = hold(&a), &vb = hold(&b);
    sweepAllocationFailures([&]() -> kstd_result {
        Tree local;
        int64_t id = 0;
        uint32_t isNew = 0;
        RT_TRY(kstd_persistentPropertyTree_setObjectWithId(local, 3, va));
        RT_TRY(kstd_persistentPropertyTree_setObjectWithId(local, 1000000, vb));
        RT_TRY(kstd_persistentPropertyTree_findObject(local, vb, &id, &isNew));
        return kstd_persistentPropertyTree_findObject(local, va, &id, &isNew);
    });
}

}  // namespace
}  // namespace vexpers::test::rt
