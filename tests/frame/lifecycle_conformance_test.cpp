// Every record with the life-cycle family, driven by one list: construct,
// constructCopy, assign (also to itself), reset, destruct, new, newClone (also
// with a null source) and delete (also of null) succeed and leave the memory
// service's live count where it started. Records that cannot be copied (bag
// set, tree) accept only themselves as the source; the processor has no copy
// forms and the variant no heap forms.
#include "support/test_support.hpp"

namespace {

using vexpers::test::LiveBlockCheck;

template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*)>
struct Scoped {
    R record;
    Scoped() { EXPECT_EQ(Construct(&record), 0); }
    ~Scoped() { EXPECT_EQ(Destruct(&record), 0); }
};

// The full family: copies are made from a second record.
#define VEXPERS_FULL_FAMILY(R)                                                          \
    {                                                                                   \
        Scoped<R, R##_construct, R##_destruct> source;                                  \
        R copy;                                                                         \
        ASSERT_EQ(R##_constructCopy(&copy, &source.record), 0) << #R;                    \
        EXPECT_EQ(R##_assign(&copy, &source.record), 0) << #R;                           \
        EXPECT_EQ(R##_assign(&copy, &copy), 0) << #R;                                    \
        EXPECT_EQ(R##_reset(&copy), 0) << #R;                                            \
        EXPECT_EQ(R##_destruct(&copy), 0) << #R;                                         \
        R* heap = nullptr;                                                              \
        EXPECT_EQ(R##_delete(&heap), 0) << #R;                                           \
        ASSERT_EQ(R##_new(&heap), 0) << #R;                                              \
        ASSERT_EQ(R##_new(&heap), 0) << #R << " over a held record";                     \
        ASSERT_EQ(R##_newClone(&heap, &source.record), 0) << #R;                         \
        EXPECT_EQ(R##_newClone(&heap, nullptr), 0) << #R;                                \
        EXPECT_EQ(heap, nullptr) << #R;                                                  \
    }

// Records that accept only themselves as the source of a copy.
#define VEXPERS_SELF_ONLY_FAMILY(R)                                                     \
    {                                                                                   \
        R* heap = nullptr;                                                              \
        EXPECT_EQ(R##_delete(&heap), 0) << #R;                                           \
        ASSERT_EQ(R##_new(&heap), 0) << #R;                                              \
        EXPECT_EQ(R##_assign(heap, heap), 0) << #R;                                      \
        EXPECT_EQ(R##_reset(heap), 0) << #R;                                             \
        EXPECT_EQ(R##_newClone(&heap, nullptr), 0) << #R;                                \
        EXPECT_EQ(heap, nullptr) << #R;                                                  \
    }

TEST(LifecycleConformance, EveryRecordFollowsTheFamily) {
    // Start the registry and the variant's cache of core types first: both
    // are made once per process, not by the records below.
    kstd_persistentVariant warm;
    kstd_persistentVariant_construct(&warm);
    ASSERT_EQ(kstd_persistentVariant_setValue_int(&warm, 1), 0);
    kstd_persistentVariant_destruct(&warm);

    LiveBlockCheck leaks;
    VEXPERS_FULL_FAMILY(kstd_stringConst)
    VEXPERS_FULL_FAMILY(kstd_stringConstTable)
    VEXPERS_FULL_FAMILY(kstd_persistentType)
    VEXPERS_FULL_FAMILY(kstd_persistentType_)
    VEXPERS_FULL_FAMILY(kstd_persistentPropertyInfo)
    VEXPERS_FULL_FAMILY(kstd_persistentPropertyInfoSet)
    VEXPERS_FULL_FAMILY(kstd_persistentTypeSchema)
    VEXPERS_FULL_FAMILY(kstd_persistentPropertyInfoTable)
    VEXPERS_FULL_FAMILY(kstd_persistentProperty)
    VEXPERS_FULL_FAMILY(kstd_persistentPropertyBag)
    VEXPERS_FULL_FAMILY(kstd_persistentPropertyNodeSection)
    VEXPERS_SELF_ONLY_FAMILY(kstd_persistentPropertyBagSet)
    VEXPERS_SELF_ONLY_FAMILY(kstd_persistentPropertyTree)
    EXPECT_EQ(leaks.leaked(), 0);

    // The variant: no heap forms.
    {
        kstd_persistentVariant source, copy;
        ASSERT_EQ(kstd_persistentVariant_construct(&source), 0);
        kstd_persistentVariant_setValue_int(&source, 7);
        ASSERT_EQ(kstd_persistentVariant_constructCopy(&copy, &source), 0);
        int value = 0;
        EXPECT_EQ(kstd_persistentVariant_getValue_int(&copy, &value), 0);
        EXPECT_EQ(value, 7);
        EXPECT_EQ(kstd_persistentVariant_assign(&copy, &copy), 0);
        EXPECT_EQ(kstd_persistentVariant_reset(&copy), 0);
        EXPECT_EQ(kstd_persistentVariant_destruct(&copy), 0);
        EXPECT_EQ(kstd_persistentVariant_destruct(&source), 0);
    }
    // The processor: no copy forms.
    {
        kstd_persistentPropertyProcessor* processor = nullptr;
        EXPECT_EQ(kstd_persistentPropertyProcessor_delete(&processor), 0);
        ASSERT_EQ(kstd_persistentPropertyProcessor_new(&processor), 0);
        EXPECT_EQ(kstd_persistentPropertyProcessor_reset(processor), 0);
        EXPECT_EQ(kstd_persistentPropertyProcessor_delete(&processor), 0);
        EXPECT_EQ(processor, nullptr);
    }
    EXPECT_EQ(leaks.leaked(), 0);
}

// The record vectors, from the same pattern: a copy of a vector of three
// default records is independent of its source.
TEST(LifecycleConformance, RecordVectorsCopyWholeRecords) {
    LiveBlockCheck leaks;
#define VEXPERS_VECTOR_FAMILY(V)                                                         \
    {                                                                                    \
        V source;                                                                        \
        ASSERT_EQ(V##_construct(&source, 3), 0) << #V;                                    \
        V* heap = nullptr;                                                               \
        ASSERT_EQ(V##_newClone(&heap, &source), 0) << #V;                                 \
        EXPECT_EQ(V##_resize(heap, 1), 0) << #V;                                          \
        intptr_t size = 0;                                                               \
        V##_getSizeIntPtr(&source, &size);                                               \
        EXPECT_EQ(size, 3) << #V;                                                        \
        EXPECT_EQ(V##_assign(heap, heap), 0) << #V;                                       \
        EXPECT_EQ(V##_newClone(&heap, nullptr), 0) << #V;                                 \
        EXPECT_EQ(heap, nullptr) << #V;                                                   \
        EXPECT_EQ(V##_destruct(&source), 0) << #V;                                        \
    }
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentProperty)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentType)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentPropertyInfo)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentPropertyInfoSet)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentTypeSchema)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_persistentVariant)
    VEXPERS_VECTOR_FAMILY(kstd_vector_kstd_stringConst)
    VEXPERS_VECTOR_FAMILY(kstd_vector_vector_kstd_stringConst)
#undef VEXPERS_VECTOR_FAMILY
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
