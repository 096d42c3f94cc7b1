// The object registry: growth, taken and free ids, the id cap, ids far
// beyond the vectors, findObject against the linear search it stands in
// for, clearing; and the tree's copy rule.
#include <random>
#include <vector>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

class RegistryTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { types(); }

    void hold(Variant& variant, Box* box) {
        ASSERT_EQ(kstd_persistentVariant_setValueUsingType(variant, types().boxPointer, box), 0);
    }
    int64_t length() const { return tree->objectPointers.base.size; }

    NoLeaks leaks;
    Tree tree;
};

TEST_F(RegistryTest, IdsGrowTheVectorsAndAreTakenOnce) {
    Box a{}, b{};
    Variant va, vb, out;
    hold(va, &a);
    hold(vb, &b);
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 5, va), 0);
    EXPECT_EQ(length(), 6);
    EXPECT_EQ(tree->objects.base.size, 6);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 3, out), kstd_persistentResult_objectIdNotFound);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 6, out), kstd_persistentResult_objectIdNotFound);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, -1, out), kstd_persistentResult_objectIdNotFound);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 5, vb), kstd_persistentResult_objectIdTaken);
    ASSERT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 5, out), 0);
    EXPECT_EQ(out->value.pointer, &a);

    // A new object gets the next id; a known one its id, without growth.
    int64_t id = -1;
    uint32_t isNew = 0;
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, vb, &id, &isNew), 0);
    EXPECT_EQ(id, 6);
    EXPECT_EQ(isNew, 1u);
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, va, &id, &isNew), 0);
    EXPECT_EQ(id, 5);
    EXPECT_EQ(isNew, 0u);
    EXPECT_EQ(length(), 7);

    // The same object under a lower id is found there, as the linear search would.
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 2, va), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, va, &id, &isNew), 0);
    EXPECT_EQ(id, 2);

    ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(tree), 0);
    EXPECT_EQ(length(), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, va, &id, &isNew), 0);
    EXPECT_EQ(id, 0);
}

TEST_F(RegistryTest, BadIdsAndObjectsGiveCodes) {
    AssertRecorder faults;
    Box a{};
    Variant va, nothing, number, out;
    hold(va, &a);
    ASSERT_EQ(kstd_persistentVariant_setValueUsingType(nothing, types().boxPointer, nullptr), 0);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(number, 4), 0);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, -1, va), kstd_persistentResult_invalidArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, int64_t{kstd_persistentPropertyTree_maxObjectId} + 1,
                                                          va),
              kstd_persistentResult_invalidArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, INT64_MAX, va), kstd_persistentResult_invalidArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, nothing), kstd_persistentResult_nullArgument);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, number), kstd_persistentResult_wrongTypeKind);
    int64_t id = 0;
    uint32_t isNew = 0;
    EXPECT_EQ(kstd_persistentPropertyTree_findObject(tree, nothing, &id, &isNew), kstd_persistentResult_nullArgument);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(length(), 0);

    // The highest id works; the next new object would pass the cap.
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, kstd_persistentPropertyTree_maxObjectId, va), 0);
    Box b{};
    Variant vb;
    hold(vb, &b);
    EXPECT_EQ(kstd_persistentPropertyTree_findObject(tree, vb, &id, &isNew), kstd_persistentResult_invalidArgument);

    // Vectors of different lengths are an inconsistency, not a crash.
    ASSERT_EQ(kstd_vectorPtrConstVoid_pushBack(&tree->objectPointers, nullptr), 0);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 0, vb), kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 0, out), kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(kstd_persistentPropertyTree_findObject(tree, vb, &id, &isNew),
              kstd_persistentResult_internalInconsistency);
    EXPECT_EQ(faults.count(), 0);
}

TEST_F(RegistryTest, IdsFarBeyondTheVectorsAllocateNothingPerUnusedId) {
    Box a{}, b{};
    Variant va, vb, out;
    hold(va, &a);
    hold(vb, &b);
    LiveBlockCheck blocks;
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 16777215, va), 0);
    EXPECT_EQ(length(), 0);
    EXPECT_LT(blocks.leaked(), 8);
    ASSERT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 16777215, out), 0);
    EXPECT_EQ(out->value.pointer, &a);
    EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(tree, 16777214, out), kstd_persistentResult_objectIdNotFound);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 16777215, vb), kstd_persistentResult_objectIdTaken);
    int64_t id = -1;
    uint32_t isNew = 0;
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, vb, &id, &isNew), 0);
    EXPECT_EQ(id, 16777216);
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, va, &id, &isNew), 0);
    EXPECT_EQ(id, 16777215);

    // Vectors that grow over an id kept aside take it in.
    ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(tree), 0);
    ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 10000, va), 0);
    EXPECT_EQ(length(), 0);
    for (int64_t step : {4000, 8000, 12000}) ASSERT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, step, vb), 0);
    ASSERT_EQ(length(), 12001);
    EXPECT_EQ(tree->objectPointers.base.size, tree->objects.base.size);
    EXPECT_EQ(static_cast<const void* const*>(tree->objectPointers.base.begin)[10000], &a);
    EXPECT_EQ(kstd_persistentPropertyTree_setObjectWithId(tree, 10000, vb), kstd_persistentResult_objectIdTaken);
    ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, va, &id, &isNew), 0);
    EXPECT_EQ(id, 10000);
}

// Random records and finds against a model that searches linearly.
TEST_F(RegistryTest, FindObjectGivesTheIdsOfTheLinearSearch) {
    std::vector<Box> items(64);
    std::vector<const void*> model;  // by id
    std::mt19937 random(7);
    for (int step = 0; step < 4000; ++step) {
        Box* item = &items[random() % items.size()];
        Variant variant;
        hold(variant, item);
        if (random() % 3 == 0) {
            const int64_t id = random() % 2 == 0 ? int64_t(random() % 200) : int64_t(random() % 100000);
            const bool taken = id < int64_t(model.size()) && model[id] != nullptr;
            const kstd_result result = kstd_persistentPropertyTree_setObjectWithId(tree, id, variant);
            ASSERT_EQ(result, taken ? kstd_persistentResult_objectIdTaken : 0);
            if (!taken) {
                if (id >= int64_t(model.size())) model.resize(id + 1, nullptr);
                model[id] = item;
            }
        } else {
            int64_t expected = -1;
            for (size_t i = 0; i < model.size() && expected < 0; ++i)
                if (model[i] == item) expected = int64_t(i);
            const bool isNewExpected = expected < 0;
            if (isNewExpected) {
                expected = int64_t(model.size());
                model.push_back(item);
            }
            int64_t id = -1;
            uint32_t isNew = 0;
            ASSERT_EQ(kstd_persistentPropertyTree_findObject(tree, variant, &id, &isNew), 0);
            ASSERT_EQ(id, expected) << "step " << step;
            ASSERT_EQ(isNew, isNewExpected ? 1u : 0u);
        }
        if (step % 1000 == 999) {
            ASSERT_EQ(kstd_persistentPropertyTree_forgetAllObjects(tree), 0);
            model.clear();
        }
    }
}

TEST_F(RegistryTest, RegistryFailuresLeakNothing) {
    Box a{}, b{};
    Variant va, vb;
    hold(va, &a);
    hold(vb, &b);
    sweepAllocationFailures([&]() -> kstd_result {
        Tree local;
        int64_t id = 0;
        uint32_t isNew = 0;
        kstd_result result = kstd_persistentPropertyTree_setObjectWithId(local, 3, va);
        if (result >= 0) result = kstd_persistentPropertyTree_setObjectWithId(local, 1000000, vb);
        if (result >= 0) result = kstd_persistentPropertyTree_findObject(local, vb, &id, &isNew);
        if (result >= 0) result = kstd_persistentPropertyTree_findObject(local, va, &id, &isNew);
        return result;
    });
}

TEST_F(RegistryTest, TreesAreNeverCopied) {
    AssertRecorder faults;
    EXPECT_EQ(kstd_persistentPropertyTree_assign(tree, tree), 0);
    Tree other;
    EXPECT_EQ(kstd_persistentPropertyTree_assign(tree, other), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);
    kstd_persistentPropertyTree* copy = nullptr;
    EXPECT_EQ(kstd_persistentPropertyTree_newClone(&copy, tree), ksys_result_preconditionFailed);
    EXPECT_EQ(copy, nullptr);
    ASSERT_EQ(kstd_persistentPropertyTree_new(&copy), 0);
    EXPECT_EQ(kstd_persistentPropertyTree_delete(&copy), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
