#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// A shared object whose header is not at the start of the whole object, so
// that header and whole object are told apart.
struct Counted {
    int32_t payload;
    kstd_shared header;
    int* destroyed;
};

kstd_result destroyCounted(kstd_shared* shared) {
    void* whole = shared->whole;
    ++*static_cast<Counted*>(whole)->destroyed;
    return ksys_memory_free_internal(&whole);
}

const kstd_sharedCustom countedOperations = {destroyCounted, kstd_shared_increment_default,
                                             kstd_shared_decrement_default};

kstd_shared* newCounted(int* destroyed) {
    void* memory = nullptr;
    EXPECT_EQ(ksys_memory_alloc_internal(sizeof(Counted), &memory), 0);
    auto* object = static_cast<Counted*>(memory);
    object->destroyed = destroyed;
    kstd_shared_initCustom(&object->header, object, &countedOperations);
    return &object->header;
}

int32_t countOf(const kstd_shared* shared) { return outOf<int32_t>(0, kstd_shared_getReferenceCount, shared); }

TEST(Shared, PointersKeepTheObjectAliveExactlyWhileHeld) {
    NoLeaks leaks;
    int destroyedX = 0, destroyedY = 0;
    kstd_shared* x = newCounted(&destroyedX);
    kstd_shared* y = newCounted(&destroyedY);
    kstd_ptrh a, b, c;
    ASSERT_EQ(kstd_ptrh_construct(&a, x), 0);
    ASSERT_EQ(kstd_ptrh_constructCopy(&b, &a), 0);
    ASSERT_EQ(kstd_ptrh_construct(&c, y), 0);
    EXPECT_EQ(outOf<void*>(0, kstd_ptrh_getWholeShared, &b), x->whole);
    EXPECT_NE(x->whole, static_cast<void*>(x));

    // Self-assignment and re-holding the same object change nothing.
    EXPECT_EQ(kstd_ptrh_assign(&a, &a), 0);
    EXPECT_EQ(kstd_ptrh_assignShared(&b, x), 0);
    EXPECT_EQ(countOf(x), 2);

    // c drops the last reference to y while taking x.
    EXPECT_EQ(kstd_ptrh_assign(&c, &a), 0);
    EXPECT_EQ(destroyedY, 1);
    EXPECT_EQ(kstd_ptrh_reset(&a), 0);
    EXPECT_EQ(kstd_ptrh_destruct(&b), 0);
    EXPECT_EQ(destroyedX, 0);
    EXPECT_EQ(kstd_ptrh_destruct(&c), 0);
    EXPECT_EQ(destroyedX, 1);
    kstd_ptrh_destruct(&a);

    // More releases than references are reported and leave the count alone.
    kstd_shared* z = newCounted(&destroyedX);
    {
        AssertRecorder faults;
        EXPECT_EQ(kstd_shared_decrement_default(z), Fault);
        EXPECT_EQ(faults.count(), 1);
    }
    EXPECT_EQ(countOf(z), 0);
    kstd_shared_increment_default(z);
    kstd_shared_decrement_default(z);
    EXPECT_EQ(destroyedX, 2);
}

}  // namespace
