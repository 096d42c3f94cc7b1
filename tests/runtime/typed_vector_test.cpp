#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

// The typed vectors are expanded from one list over the generic vector;
// vectors of records, which copy their elements deeply, prove the expansion.
TEST(TypedVector, RecordsCopyDeeply) {
    LiveBlockCheck leaks;
    kstd_vector_vectorIntPtrs outer, copy;
    ASSERT_EQ(kstd_vector_vectorIntPtrs_constructEmpty(&outer), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_resize(&outer, 3), 0);
    kstd_vectorIntPtrs* inner = outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &outer, 1);
    for (intptr_t i = 0; i < 100; ++i) ASSERT_EQ(kstd_vectorIntPtrs_pushBack(inner, i), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_constructCopy(&copy, &outer), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_pushBack(&copy, inner), 0);  // grows: inner vectors are copied, not moved
    ASSERT_EQ(
        kstd_vectorIntPtrs_resize(outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &copy, 1), 1), 0);
    EXPECT_EQ(*outOf<const intptr_t*>(0, kstd_vectorIntPtrs_getElementConst, inner, 99), 99)
        << "the source's inner vector is untouched";
    EXPECT_EQ(outOf<const intptr_t*>(ksys_result_notFound, kstd_vectorIntPtrs_getElementConst, inner, 100), nullptr);
    intptr_t* element = outOf<intptr_t*>(0, kstd_vectorIntPtrs_getElement, inner, 2);
    ASSERT_EQ(kstd_vectorIntPtrs_getNextElement(inner, &element), 0);
    EXPECT_EQ(*element, 3);
    EXPECT_EQ(outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &copy, 3)->base.size, 100);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_destruct(&copy), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_destruct(&outer), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    kstd_vector_kstd_unicodeString strings;
    Text text;
    ASSERT_EQ(kstd_vector_kstd_unicodeString_construct(&strings), 0);
    for (const char16_t* word : {u"alpha", u"beta", u"gamma"}) {
        ASSERT_EQ(kstd_unicodeString_assignStringW(text, word), 0);
        ASSERT_EQ(kstd_vector_kstd_unicodeString_pushBack(&strings, text), 0);
    }
    sweepAllocationFailures([&] {
        kstd_vector_kstd_unicodeString* clone = nullptr;
        const kstd_result result = kstd_vector_kstd_unicodeString_newClone(&clone, &strings);
        kstd_vector_kstd_unicodeString_delete(&clone);
        return result;
    });
    ASSERT_EQ(kstd_vector_kstd_unicodeString_destruct(&strings), 0);
}

}  // namespace
