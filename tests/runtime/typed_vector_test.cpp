#include <string>
#include <vector>

#include "support/test_support.hpp"

namespace {

using namespace vexpers::test;

std::vector<int32_t> values(const kstd_vector32s& v) {
    const int32_t* begin = nullptr;
    intptr_t size = 0;
    EXPECT_EQ(kstd_vector32s_getBeginSizeIntPtrConst(&v, &begin, &size), 0);
    return size == 0 ? std::vector<int32_t>{} : std::vector<int32_t>(begin, begin + size);
}

// The typed vectors are expanded from one list over the generic vector; a
// vector of scalars, of pointers and of records prove the expansion.
TEST(TypedVector, ScalarOperations) {
    LiveBlockCheck leaks;
    kstd_vector32s v;
    ASSERT_EQ(kstd_vector32s_construct(&v), 0);
    for (int32_t i = 0; i < 5; ++i) ASSERT_EQ(kstd_vector32s_pushBack(&v, i * 10), 0);
    ASSERT_EQ(kstd_vector32s_resizeFill(&v, 7, -1), 0);
    ASSERT_EQ(kstd_vector32s_popBack(&v), 0);
    EXPECT_EQ(values(v), (std::vector<int32_t>{0, 10, 20, 30, 40, -1}));

    int32_t* element = outOf<int32_t*>(0, kstd_vector32s_getElement, &v, 2);
    ASSERT_EQ(kstd_vector32s_getNextElement(&v, &element), 0);
    EXPECT_EQ(*element, 30);
    EXPECT_EQ(outOf<const int32_t*>(ksys_result_notFound, kstd_vector32s_getElementConst, &v, 6), nullptr);

    kstd_vector32s* copy = nullptr;
    ASSERT_EQ(kstd_vector32s_newClone(&copy, &v), 0);
    const int32_t range[] = {7, 8, 9};
    ASSERT_EQ(kstd_vector32s_assignElements(copy, range, range + 3), 0);
    EXPECT_EQ(values(*copy), (std::vector<int32_t>{7, 8, 9}));
    EXPECT_EQ(values(v).size(), 6u) << "the clone is independent";
    ASSERT_EQ(kstd_vector32s_assign(&v, copy), 0);
    EXPECT_EQ(values(v), (std::vector<int32_t>{7, 8, 9}));
    ASSERT_EQ(kstd_vector32s_delete(&copy), 0);
    EXPECT_EQ(copy, nullptr);
    ASSERT_EQ(kstd_vector32s_clear(&v), 0);
    EXPECT_EQ(outOf<intptr_t>(0, kstd_vector32s_getSizeIntPtr, &v), 0);
    ASSERT_EQ(kstd_vector32s_destruct(&v), 0);

    // A vector of untyped pointers keeps the pointers themselves.
    kstd_vectorPtrConstVoid pointers;
    ASSERT_EQ(kstd_vectorPtrConstVoid_constructEmpty(&pointers), 0);
    ASSERT_EQ(kstd_vectorPtrConstVoid_resizeFill(&pointers, 3, &v), 0);
    EXPECT_EQ(outOf<const void**>(0, kstd_vectorPtrConstVoid_getBegin, &pointers)[2], &v);
    ASSERT_EQ(kstd_vectorPtrConstVoid_destruct(&pointers), 0);
    EXPECT_EQ(leaks.leaked(), 0);

    AssertRecorder faults;
    EXPECT_EQ(kstd_vector32s_pushBack(nullptr, 1), Fault);
    EXPECT_EQ(kstd_vector32s_getBegin(&v, nullptr), Fault);
    EXPECT_EQ(faults.count(), 2);
}

TEST(TypedVector, VectorsOfRecordsCopyTheirElementsDeeply) {
    LiveBlockCheck leaks;
    kstd_vector_vectorIntPtrs outer, copy;
    ASSERT_EQ(kstd_vector_vectorIntPtrs_constructEmpty(&outer), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_resize(&outer, 3), 0);
    kstd_vectorIntPtrs* inner = outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &outer, 1);
    EXPECT_EQ(outOf<intptr_t>(0, kstd_vectorIntPtrs_getSizeIntPtr, inner), 0) << "new elements are empty vectors";
    for (intptr_t i = 0; i < 100; ++i) ASSERT_EQ(kstd_vectorIntPtrs_pushBack(inner, i), 0);

    ASSERT_EQ(kstd_vector_vectorIntPtrs_constructCopy(&copy, &outer), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_pushBack(&copy, inner), 0);  // grows: inner vectors are copied, not moved
    ASSERT_EQ(
        kstd_vectorIntPtrs_resize(outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &copy, 1), 1), 0);
    EXPECT_EQ(*outOf<const intptr_t*>(0, kstd_vectorIntPtrs_getElementConst, inner, 99), 99)
        << "the source's inner vector is untouched";
    EXPECT_EQ(outOf<kstd_vectorIntPtrs*>(0, kstd_vector_vectorIntPtrs_getElement, &copy, 3)->base.size, 100);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_destruct(&copy), 0);
    ASSERT_EQ(kstd_vector_vectorIntPtrs_destruct(&outer), 0);

    // Unicode strings: elements own their text.
    kstd_vector_kstd_unicodeString strings;
    kstd_unicodeString text;
    ASSERT_EQ(kstd_vector_kstd_unicodeString_construct(&strings), 0);
    ASSERT_EQ(kstd_unicodeString_construct(&text), 0);
    for (const char16_t* word : {u"alpha", u"beta", u"gamma"}) {
        ASSERT_EQ(kstd_unicodeString_assignStringW(&text, word), 0);
        ASSERT_EQ(kstd_vector_kstd_unicodeString_pushBack(&strings, &text), 0);
    }
    ASSERT_EQ(kstd_unicodeString_destruct(&text), 0);
    EXPECT_EQ(ascii(outOf<kstd_unicodeString*>(0, kstd_vector_kstd_unicodeString_getElement, &strings, 1)->chars),
              "beta");
    sweepAllocationFailures([&] {
        kstd_vector_kstd_unicodeString* clone = nullptr;
        const kstd_result result = kstd_vector_kstd_unicodeString_newClone(&clone, &strings);
        kstd_vector_kstd_unicodeString_delete(&clone);
        return result;
    });
    ASSERT_EQ(kstd_vector_kstd_unicodeString_destruct(&strings), 0);
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
