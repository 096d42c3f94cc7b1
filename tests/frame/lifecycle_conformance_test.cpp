// Every record with the life-cycle family, driven by one list: construct,
// constructCopy, assign (also to itself), reset, destruct, new, newClone (also
// with a null source) and delete (also of null). Each record is filled with a
// non-trivial value through its public functions; copies must equal the
// source by content, reset must give a record equal to a fresh one, and the
// copies must keep their contents when the source is reset. The memory
// service's live count ends where it started. Records that cannot be copied
// (bag set, tree) accept only themselves as the source; the processor has no
// copy forms and the variant no heap forms.
#include <cstring>

#include "support/test_support.hpp"

namespace {

using vexpers::test::NoLeaks;

// ---- Per record: a fill function and an equality ---------------------------------
// Records of this library's own public functions; elements of the vectors use
// the same two, so a vector is filled by filling one of its elements.

template <class R>
void fill(R* record);
template <class R>
bool equal(const R* first, const R* second);

// A record filled by one call of its public functions on `r`.
#define VEXPERS_FILL_BY(R, CALL) \
    template <>                  \
    void fill(R* r) {            \
        ASSERT_EQ(CALL, 0);      \
    }
// A record compared by its own comparison.
#define VEXPERS_EQUAL_BY_COMPARE(R)                                        \
    template <>                                                            \
    bool equal(const R* first, const R* second) {                          \
        uint32_t same = 0;                                                 \
        return R##_compareEqual(first, second, &same) == 0 && same == 1; \
    }

bool sameText(const char16_t* first, const char16_t* second) {
    return first == nullptr || second == nullptr ? first == second : ksys_wcscmp(first, second) == 0;
}

bool isEmptyType(const kstd_persistentType* type) {
    const char16_t* name = nullptr;
    return kstd_persistentType_getTypeName(type, &name) == kstd_persistentResult_typeEmpty;
}

VEXPERS_FILL_BY(kstd_stringConst, kstd_stringConst_assignString(r, u"interned text"))
VEXPERS_EQUAL_BY_COMPARE(kstd_stringConst)

VEXPERS_FILL_BY(kstd_unicodeString, kstd_unicodeString_assignStringW(r, u"mutable text"))
VEXPERS_EQUAL_BY_COMPARE(kstd_unicodeString)

template <>
void fill(kstd_stringConstTable* table) {
    ASSERT_EQ(kstd_stringConstTable_resetNumBins(table, 4), 0);
    ASSERT_EQ(kstd_stringConstTable_addString(table, u"alpha", nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(kstd_stringConstTable_addStringWithId(table, u"beta", 3, nullptr), 0);
}
template <>
bool equal(const kstd_stringConstTable* first, const kstd_stringConstTable* second) {
    intptr_t firstBins = 0, secondBins = 0;
    kstd_vector_vector_kstd_stringConst_getSizeIntPtr(&first->bins, &firstBins);
    kstd_vector_vector_kstd_stringConst_getSizeIntPtr(&second->bins, &secondBins);
    if (first->maxId != second->maxId || firstBins != secondBins) return false;
    for (int32_t id = 0; id <= first->maxId; ++id) {
        const char16_t *a = nullptr, *b = nullptr;
        const kstd_result ra = kstd_stringConstTable_getStringById(const_cast<kstd_stringConstTable*>(first), id,
                                                                   nullptr, &a);
        const kstd_result rb = kstd_stringConstTable_getStringById(const_cast<kstd_stringConstTable*>(second), id,
                                                                   nullptr, &b);
        if (ra != rb || !sameText(a, b)) return false;
    }
    return true;
}

VEXPERS_FILL_BY(kstd_persistentType, kstd_persistentType_resetCoreTypeId(r, kstd_persistentCoreTypeId_double))
template <>
bool equal(const kstd_persistentType* first, const kstd_persistentType* second) {
    if (isEmptyType(first) || isEmptyType(second)) return isEmptyType(first) && isEmptyType(second);
    uint32_t same = 0;
    return kstd_persistentType_compareEqual(first, second, &same) == 0 && same == 1;
}

template <>
void fill(kstd_persistentType_* record) {
    ASSERT_EQ(kstd_stringConst_assignString(&record->name, u"lifecycle.Record"), 0);
    ASSERT_EQ(kstd_stringConst_assignString(&record->containedItemTypeName, u"int"), 0);
    ASSERT_EQ(kstd_persistentType_resetCoreTypeId(&record->containedItemType, kstd_persistentCoreTypeId_int), 0);
    record->derivation = kstd_persistentTypeDerivation_array;
    record->coreTypeId = kstd_persistentCoreTypeId_registered;
    record->category = kstd_persistentTypeCategory_object;
    record->isContainer = 1;
    record->globalIndex = 12;
}
template <>
bool equal(const kstd_persistentType_* first, const kstd_persistentType_* second) {
    return equal(&first->name, &second->name) &&
           equal(&first->containedItemTypeName, &second->containedItemTypeName) &&
           equal(&first->containedItemType, &second->containedItemType) && first->derivation == second->derivation &&
           first->isKnown == second->isKnown && first->coreTypeId == second->coreTypeId &&
           first->category == second->category && first->isContainer == second->isContainer &&
           first->globalIndex == second->globalIndex;
}

template <>
void fill(kstd_persistentPropertyInfo* info) {
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(info, u"width", kstd_persistentCoreTypeId_int, 5),
              0);
}
// The descriptor's own comparison needs both types; defaults have none.
template <>
bool equal(const kstd_persistentPropertyInfo* first, const kstd_persistentPropertyInfo* second) {
    uint32_t same = 0;
    if (isEmptyType(&first->type) || isEmptyType(&second->type))
        return equal(&first->type, &second->type) && first->dataAccess == second->dataAccess &&
               first->globalIndex == second->globalIndex &&
               kstd_persistentPropertyInfo_compareEqualPropertyName(first, second, &same) == 0 && same == 1;
    return kstd_persistentPropertyInfo_compareEqual(first, second, &same) == 0 && same == 1;
}

template <>
void fill(kstd_persistentPropertyInfoSet* set) {
    kstd_persistentPropertyInfo info;
    ASSERT_EQ(kstd_persistentPropertyInfo_construct(&info), 0);
    fill(&info);
    EXPECT_EQ(kstd_vector_kstd_persistentPropertyInfo_pushBack(&set->infos, &info), 0);
    EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&info, u"height", kstd_persistentCoreTypeId_double,
                                                                    2), 0);
    EXPECT_EQ(kstd_vector_kstd_persistentPropertyInfo_pushBack(&set->infos, &info), 0);
    EXPECT_EQ(kstd_persistentPropertyInfo_destruct(&info), 0);
}
VEXPERS_EQUAL_BY_COMPARE(kstd_persistentPropertyInfoSet)

template <>
void fill(kstd_persistentTypeSchema* schema) {
    fill(&schema->infoSet);
    schema->globalIndex = 4;
}
VEXPERS_EQUAL_BY_COMPARE(kstd_persistentTypeSchema)

template <>
void fill(kstd_persistentPropertyInfoTable* table) {
    kstd_persistentPropertyInfoSet set;
    ASSERT_EQ(kstd_persistentPropertyInfoSet_construct(&set), 0);
    fill(&set);
    const kstd_persistentPropertyInfo* infos = nullptr;
    int32_t count = 0;
    kstd_vector_kstd_persistentPropertyInfo_getBeginSizeConst(&set.infos, &infos, &count);
    EXPECT_EQ(kstd_persistentPropertyInfoTable_addPropertyInfo(table, &infos[0], nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(kstd_persistentPropertyInfoTable_addPropertyInfoWithId(table, &infos[1], 5, nullptr), 0);
    EXPECT_EQ(kstd_persistentPropertyInfoSet_destruct(&set), 0);
}
template <>
bool equal(const kstd_persistentPropertyInfoTable* first, const kstd_persistentPropertyInfoTable* second) {
    kstd_persistentPropertyInfoSet a, b;
    kstd_persistentPropertyInfoSet_construct(&a);
    kstd_persistentPropertyInfoSet_construct(&b);
    const bool same = first->maxId == second->maxId &&
                      kstd_persistentPropertyInfoTable_getAllPropertyInfos(first, &a.infos) == 0 &&
                      kstd_persistentPropertyInfoTable_getAllPropertyInfos(second, &b.infos) == 0 && equal(&a, &b);
    kstd_persistentPropertyInfoSet_destruct(&a);
    kstd_persistentPropertyInfoSet_destruct(&b);
    return same;
}

VEXPERS_FILL_BY(kstd_persistentVariant, kstd_persistentVariant_setValueStringW(r, u"held text"))
template <>
bool equal(const kstd_persistentVariant* first, const kstd_persistentVariant* second) {
    const char16_t *a = nullptr, *b = nullptr;
    kstd_unicodeStringConst_getStringW(&first->stringValue, &a, nullptr);
    kstd_unicodeStringConst_getStringW(&second->stringValue, &b, nullptr);
    return equal(&first->type, &second->type) && first->isBorrowed == second->isBorrowed &&
           first->value.uint64 == second->value.uint64 && sameText(a, b) &&
           first->sharedObject.shared == second->sharedObject.shared && first->arrayCount == second->arrayCount;
}

VEXPERS_FILL_BY(kstd_persistentProperty, kstd_persistentProperty_resetInfoAndValueStringW(r, u"title", 3, u"a title"))
template <>
bool equal(const kstd_persistentProperty* first, const kstd_persistentProperty* second) {
    return equal(&first->info, &second->info) && equal(&first->value, &second->value);
}

template <>
void fill(kstd_persistentPropertyBag* bag) {
    ASSERT_EQ(kstd_persistentPropertyBag_addValue_int(bag, u"count", 2, 7), 0);
    ASSERT_EQ(kstd_persistentPropertyBag_addValueStringW(bag, u"label", 2, u"seven"), 0);
}
template <>
bool equal(const kstd_persistentPropertyBag* first, const kstd_persistentPropertyBag* second) {
    const kstd_persistentProperty *a = nullptr, *b = nullptr;
    int32_t countA = 0, countB = 0;
    kstd_persistentPropertyBag_getPropertiesBeginSizeConst(first, &a, &countA);
    kstd_persistentPropertyBag_getPropertiesBeginSizeConst(second, &b, &countB);
    if (first->isStoring != second->isStoring || countA != countB) return false;
    for (int32_t i = 0; i < countA; ++i)
        if (!equal(&a[i], &b[i])) return false;
    return true;
}

template <>
void fill(kstd_persistentPropertyNodeSection* section) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_setSectionType(section, kstd_persistentPropertyNodeSectionType_leaf),
              0);
    fill(&section->info);
    fill(&section->property);
    section->objectId = 42;
    section->numItems = 3;
}
template <>
bool equal(const kstd_persistentPropertyNodeSection* first, const kstd_persistentPropertyNodeSection* second) {
    return first->sectionType == second->sectionType && first->flags == second->flags &&
           first->objectId == second->objectId && first->numItems == second->numItems &&
           equal(&first->info, &second->info) && equal(&first->property, &second->property);
}

// Vectors of records: element 1 of two is filled, element 0 stays default.
// Compared through the generic vector's comparison with the element equality.
template <class R>
kstd_result elementEqual(const void* first, const void* second, uint32_t* same) {
    *same = equal(static_cast<const R*>(first), static_cast<const R*>(second)) ? 1 : 0;
    return 0;
}
#define VEXPERS_RECORD_VECTOR_TRAITS(V, R)                                              \
    template <>                                                                         \
    void fill(V* vector) {                                                              \
        R* element = nullptr;                                                           \
        ASSERT_EQ(V##_resize(vector, 2), 0);                                            \
        ASSERT_EQ(V##_getElement(vector, 1, &element), 0);                              \
        fill(element);                                                                  \
    }                                                                                   \
    template <>                                                                         \
    bool equal(const V* first, const V* second) {                                       \
        uint32_t same = 0;                                                              \
        return kstd_vector__compareEqual(&first->base, &second->base, &same,            \
                                         elementEqual<R>) == 0 && same == 1;            \
    }
// Vectors of scalars: three elements of nonzero bytes, compared bytewise.
#define VEXPERS_SCALAR_VECTOR_TRAITS(V)                                                 \
    template <>                                                                         \
    void fill(V* vector) {                                                              \
        ASSERT_EQ(V##_resize(vector, 3), 0);                                            \
        void* begin = nullptr;                                                          \
        ASSERT_EQ(kstd_vector__getBegin(&vector->base, &begin), 0);                     \
        std::memset(begin, 0x5A, 3 * static_cast<size_t>(vector->base.elementSize));    \
    }                                                                                   \
    template <>                                                                         \
    bool equal(const V* first, const V* second) {                                       \
        uint32_t same = 0;                                                              \
        return kstd_vector__compareEqual(&first->base, &second->base, &same, nullptr) == 0 && same == 1; \
    }

// The vectors: typed vectors of scalars, typed vectors of records (built with
// _construct) and record vectors (built with _constructEmpty).
#define VEXPERS_SCALAR_VECTORS(X) X(kstd_vector8s) X(kstd_vector8) X(kstd_vector16s) X(kstd_vector16) \
    X(kstd_vector32s) X(kstd_vector32) X(kstd_vector64s) X(kstd_vector64) X(kstd_vectorIntPtrs)      \
    X(kstd_vectorIntPtr) X(kstd_vectorf) X(kstd_vectord) X(kstd_vectorb) X(kstd_vectorPtrConstVoid)
#define VEXPERS_TYPED_RECORD_VECTORS(X) X(kstd_vector_kstd_unicodeString, kstd_unicodeString) \
    X(kstd_vector_vectorIntPtrs, kstd_vectorIntPtrs)
#define VEXPERS_RECORD_VECTORS(X)                                                            \
    X(kstd_vector_kstd_persistentProperty, kstd_persistentProperty)                          \
    X(kstd_vector_kstd_persistentType, kstd_persistentType)                                  \
    X(kstd_vector_kstd_persistentPropertyInfo, kstd_persistentPropertyInfo)                  \
    X(kstd_vector_kstd_persistentPropertyInfoSet, kstd_persistentPropertyInfoSet)            \
    X(kstd_vector_kstd_persistentTypeSchema, kstd_persistentTypeSchema)                      \
    X(kstd_vector_kstd_persistentVariant, kstd_persistentVariant)                            \
    X(kstd_vector_kstd_stringConst, kstd_stringConst)                                        \
    X(kstd_vector_vector_kstd_stringConst, kstd_vector_kstd_stringConst)
VEXPERS_SCALAR_VECTORS(VEXPERS_SCALAR_VECTOR_TRAITS)
VEXPERS_TYPED_RECORD_VECTORS(VEXPERS_RECORD_VECTOR_TRAITS)
VEXPERS_RECORD_VECTORS(VEXPERS_RECORD_VECTOR_TRAITS)

// ---- The family check ------------------------------------------------------------

template <class R>
struct Family {
    const char* name;
    kstd_result (*construct)(R*);
    kstd_result (*constructCopy)(R*, const R*);
    kstd_result (*assign)(R*, const R*);
    kstd_result (*reset)(R*);
    kstd_result (*destruct)(R*);
    kstd_result (*create)(R**);  // null: the record has no heap forms
    kstd_result (*clone)(R**, const R*);
    kstd_result (*remove)(R**);
};

template <class R>
void checkFamily(const Family<R>& f) {
    SCOPED_TRACE(f.name);
    R fresh, expected, source, copy, assigned;
    ASSERT_EQ(f.construct(&fresh), 0);
    ASSERT_EQ(f.construct(&expected), 0);
    ASSERT_EQ(f.construct(&source), 0);
    fill(&expected);
    fill(&source);
    EXPECT_FALSE(equal(&source, &fresh)) << "the fill must change the record";
    EXPECT_TRUE(equal(&source, &expected));

    ASSERT_EQ(f.constructCopy(&copy, &source), 0);
    EXPECT_TRUE(equal(&copy, &expected));
    ASSERT_EQ(f.construct(&assigned), 0);
    EXPECT_EQ(f.assign(&assigned, &source), 0);
    EXPECT_EQ(f.assign(&assigned, &assigned), 0);
    EXPECT_TRUE(equal(&assigned, &expected));

    R* heap = nullptr;
    if (f.create != nullptr) {
        EXPECT_EQ(f.remove(&heap), 0);
        ASSERT_EQ(f.create(&heap), 0);
        ASSERT_EQ(f.create(&heap), 0) << "over a held record";
        EXPECT_TRUE(equal(heap, &fresh));
        ASSERT_EQ(f.clone(&heap, &source), 0);
        EXPECT_TRUE(equal(heap, &expected));
    }

    // Reset gives a fresh record; the copies keep their contents.
    EXPECT_EQ(f.reset(&source), 0);
    EXPECT_TRUE(equal(&source, &fresh));
    EXPECT_TRUE(equal(&copy, &expected));
    EXPECT_TRUE(equal(&assigned, &expected));
    if (f.create != nullptr) {
        EXPECT_TRUE(equal(heap, &expected));
        EXPECT_EQ(f.clone(&heap, nullptr), 0);
        EXPECT_EQ(heap, nullptr);
    }
    for (R* record : {&fresh, &expected, &source, &copy, &assigned}) EXPECT_EQ(f.destruct(record), 0);
}

#define VEXPERS_FAMILY(R, CONSTRUCT, RESET) \
    checkFamily<R>({#R, R##CONSTRUCT, R##_constructCopy, R##_assign, R##RESET, R##_destruct, R##_new, R##_newClone, R##_delete})
#define VEXPERS_RECORD(R) VEXPERS_FAMILY(R, _construct, _reset);
#define VEXPERS_RECORD_VECTOR(V, ...) VEXPERS_FAMILY(V, _constructEmpty, _clear);
#define VEXPERS_TYPED_VECTOR(V, ...) VEXPERS_FAMILY(V, _construct, _clear);

// Records that accept only themselves as the source of a copy.
#define VEXPERS_SELF_ONLY(R)                                                            \
    {                                                                                   \
        R* heap = nullptr;                                                              \
        EXPECT_EQ(R##_delete(&heap), 0) << #R;                                           \
        ASSERT_EQ(R##_new(&heap), 0) << #R;                                              \
        EXPECT_EQ(R##_assign(heap, heap), 0) << #R;                                      \
        EXPECT_EQ(R##_reset(heap), 0) << #R;                                             \
        EXPECT_EQ(R##_newClone(&heap, nullptr), 0) << #R;                                \
        EXPECT_EQ(heap, nullptr) << #R;                                                  \
    }

// A record filled once and gone, for what its first fill makes for good.
#define VEXPERS_WARM(R) { R record; R##_construct(&record); fill(&record); R##_destruct(&record); }

TEST(LifecycleConformance, EveryRecordFollowsTheFamily) {
    // Start the registry, the variant's cache of core types and the interned
    // names used below first: they are made once per process, not by the
    // records.
    VEXPERS_WARM(kstd_persistentProperty)
    VEXPERS_WARM(kstd_persistentPropertyInfoSet)
    VEXPERS_WARM(kstd_persistentPropertyBag)
    NoLeaks leaks;
    VEXPERS_RECORD(kstd_stringConst)
    VEXPERS_RECORD(kstd_unicodeString)
    VEXPERS_RECORD(kstd_stringConstTable)
    VEXPERS_RECORD(kstd_persistentType)
    VEXPERS_RECORD(kstd_persistentType_)
    VEXPERS_RECORD(kstd_persistentPropertyInfo)
    VEXPERS_RECORD(kstd_persistentPropertyInfoSet)
    VEXPERS_RECORD(kstd_persistentTypeSchema)
    VEXPERS_RECORD(kstd_persistentPropertyInfoTable)
    VEXPERS_RECORD(kstd_persistentProperty)
    VEXPERS_RECORD(kstd_persistentPropertyBag)
    VEXPERS_RECORD(kstd_persistentPropertyNodeSection)
    checkFamily<kstd_persistentVariant>({"kstd_persistentVariant", kstd_persistentVariant_construct,
                                         kstd_persistentVariant_constructCopy, kstd_persistentVariant_assign,
                                         kstd_persistentVariant_reset, kstd_persistentVariant_destruct, nullptr,
                                         nullptr, nullptr});
    VEXPERS_SCALAR_VECTORS(VEXPERS_TYPED_VECTOR)
    VEXPERS_TYPED_RECORD_VECTORS(VEXPERS_TYPED_VECTOR)
    VEXPERS_RECORD_VECTORS(VEXPERS_RECORD_VECTOR)
    VEXPERS_SELF_ONLY(kstd_persistentPropertyBagSet)
    VEXPERS_SELF_ONLY(kstd_persistentPropertyTree)
    // The processor: no copy forms.
    {
        kstd_persistentPropertyProcessor* processor = nullptr;
        EXPECT_EQ(kstd_persistentPropertyProcessor_delete(&processor), 0);
        ASSERT_EQ(kstd_persistentPropertyProcessor_new(&processor), 0);
        EXPECT_EQ(kstd_persistentPropertyProcessor_reset(processor), 0);
        EXPECT_EQ(kstd_persistentPropertyProcessor_delete(&processor), 0);
        EXPECT_EQ(processor, nullptr);
    }
}

}  // namespace
