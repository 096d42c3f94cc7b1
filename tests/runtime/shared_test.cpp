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

kstd_result queryCounted(kstd_shared* shared, const char16_t* name, void** result) {
    if (ksys_wcscmp(name, u"Counted") == 0) {
        *result = shared->whole;
        return 0;
    }
    return kstd_shared_queryInterfaceByTypenameFinal(shared, name, result);
}

kstd_result countedTypename(const kstd_shared*, const char16_t** name) {
    *name = u"Counted";
    return 0;
}

const kstd_sharedTyped countedTyped = {queryCounted, countedTypename};

kstd_shared* newCounted(int* destroyed, bool typed) {
    void* memory = nullptr;
    EXPECT_EQ(ksys_memory_alloc_internal(sizeof(Counted), &memory), 0);
    auto* object = static_cast<Counted*>(memory);
    object->destroyed = destroyed;
    if (typed)
        kstd_shared_initCustomTyped(&object->header, object, &countedOperations, &countedTyped);
    else
        kstd_shared_initCustom(&object->header, object, &countedOperations);
    return &object->header;
}

int32_t countOf(const kstd_shared* shared) { return outOf<int32_t>(0, kstd_shared_getReferenceCount, shared); }

TEST(Shared, PointersKeepTheObjectAliveExactlyWhileHeld) {
    LiveBlockCheck leaks;
    int destroyedX = 0, destroyedY = 0;
    kstd_shared* x = newCounted(&destroyedX, false);
    kstd_shared* y = newCounted(&destroyedY, false);
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
    kstd_shared* z = newCounted(&destroyedX, false);
    {
        AssertRecorder faults;
        EXPECT_EQ(kstd_shared_decrement_default(z), Fault);
        EXPECT_EQ(faults.count(), 1);
    }
    EXPECT_EQ(countOf(z), 0);
    kstd_shared_increment_default(z);
    kstd_shared_decrement_default(z);
    EXPECT_EQ(destroyedX, 2);
    EXPECT_EQ(leaks.leaked(), 0);
}

kstd_result queryThroughShared(void* object, const char16_t* name, void** result) {
    return kstd_shared_queryInterfaceByTypename(static_cast<kstd_shared*>(object), name, result);
}

TEST(Shared, InterfaceQueries) {
    int destroyed = 0;
    kstd_shared* typed = newCounted(&destroyed, true);
    kstd_shared* plain = newCounted(&destroyed, false);

    const kstd_typeDescriptorMinimalVtable table = {queryThroughShared, nullptr};
    auto query = [&](kstd_shared* object, const char16_t* name) {
        return outOf<void*>(0, kstd_typeDescriptorMinimalVtable_queryInterfaceByTypename, &table, object, name);
    };
    EXPECT_EQ(query(typed, u"Counted"), typed->whole);
    EXPECT_EQ(query(typed, u"kstd_shared"), typed);
    EXPECT_EQ(query(typed, u"Unknown"), nullptr);
    // An untyped object answers only as a shared object, and has no name.
    EXPECT_EQ(query(plain, u"Counted"), nullptr);
    EXPECT_EQ(query(plain, u"kstd_shared"), plain);
    EXPECT_EQ(outOf<const char16_t*>(0, kstd_shared_getTypename, plain), nullptr);

    kstd_shared_increment_default(typed);
    kstd_shared_decrement_default(typed);
    kstd_shared_increment_default(plain);
    kstd_shared_decrement_default(plain);
    EXPECT_EQ(destroyed, 2);
}

}  // namespace
