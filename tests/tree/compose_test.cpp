// Composing from trees that a stream built: what a well-formed tree gives,
// and how trees that no writer of this library makes are refused, with
// result codes, nothing leaked, and the members loaded before the failure
// keeping their new values.
#include <vector>

#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

constexpr uint32_t hasInfo = kstd_persistentPropertyNodeFlag_hasInfo;
constexpr uint32_t hasId = kstd_persistentPropertyNodeFlag_hasObjectId;

Record start(const char16_t* name, const char16_t* typeName, uint32_t derivation = 0) {
    Record r;
    r.sectionType = kstd_persistentPropertyNodeSectionType_start;
    r.flags = kstd_persistentPropertyNodeFlag_compound | hasInfo;
    r.name = name;
    r.typeName = typeName;
    r.derivation = derivation;
    return r;
}

Record define(const char16_t* typeName, int64_t id) {
    Record r = start(u"ptr", typeName, kstd_persistentTypeDerivation_pointer);
    r.flags |= hasId;
    r.objectId = id;
    return r;
}

Record end() {
    Record r;
    r.sectionType = kstd_persistentPropertyNodeSectionType_end;
    return r;
}

Record leaf(const char16_t* name, const char16_t* typeName, uint32_t derivation, uint32_t kindBits) {
    Record r;
    r.sectionType = kstd_persistentPropertyNodeSectionType_leaf;
    r.flags = kstd_persistentPropertyNodeFlag_leaf | kindBits | hasInfo;
    r.name = name;
    r.typeName = typeName;
    r.derivation = derivation;
    return r;
}

Record integer(const char16_t* name, const char16_t* typeName, int64_t value) {
    Record r = leaf(name, typeName, 0, kstd_persistentPropertyNodeFlag_leafCoreValue);
    r.value = Record::Value::scalar;
    r.valueTypeName = typeName;
    r.scalar.category = kstd_persistentTypeCategory_int;
    r.scalar.i = value;
    return r;
}

Record reference(const char16_t* typeName, int64_t id) {
    Record r = leaf(u"ptr", typeName, kstd_persistentTypeDerivation_pointer, kstd_persistentPropertyNodeFlag_leafReference);
    r.flags |= hasId;
    r.objectId = id;
    return r;
}

Record nullPointer(const char16_t* typeName) {
    Record r = leaf(u"ptr", typeName, kstd_persistentTypeDerivation_pointer, kstd_persistentPropertyNodeFlag_leafNullPointer);
    r.value = Record::Value::nullPointer;
    return r;
}

Record items(const char16_t* itemTypeName, std::vector<int64_t> values) {
    Record r;
    r.sectionType = kstd_persistentPropertyNodeSectionType_leaf;
    r.flags = kstd_persistentPropertyNodeFlag_arrayOfCoreItems | hasInfo;
    r.name = u"items";
    r.typeName = itemTypeName;
    r.derivation = kstd_persistentTypeDerivation_array;
    r.numItems = static_cast<int64_t>(values.size());
    r.valueTypeName = itemTypeName;
    r.valueDerivation = kstd_persistentTypeDerivation_array;
    if (values.empty()) {
        r.flags |= kstd_persistentPropertyNodeFlag_leaf | kstd_persistentPropertyNodeFlag_leafEmptyArray;
        r.value = Record::Value::emptyArray;
        return r;
    }
    r.value = Record::Value::items;
    for (int64_t v : values) {
        Scalar s;
        s.category = kstd_persistentTypeCategory_int;
        s.i = v;
        r.items.push_back(s);
    }
    return r;
}

// A tree built from records, its top node, and a fresh node object to
// compose into.
struct Composition {
    TreeBox tree;
    PointerBox target;
    kstd_result built;

    explicit Composition(const std::vector<Record>& records) {
        built = rebuild(records, &tree.t);
        newNode(&target.p);
    }
    Node& node() { return *nodeOf(target.p); }
    kstd_result compose() { return kstd_persistentType_loadPropertyNode(types().node, &node(), tree.t.firstChild); }
    ~Composition() {
        unlinkRecorded(&tree.t, 8);
        unlinkNode(&node());
    }
};

void valuesOfCoreTypesEnumsAndVectorsLoadAndMissingMembersStay() {
    Composition c({start(u"root", u"RtNode"), integer(u"i8", u"k_Int8", -5), integer(u"i16", u"k_Int16", 7),
                   start(u"color", u"RtColor"), integer(u"value", u"k_Int64", 3), end(),
                   start(u"v64s", u"kstd_vector64s"), items(u"k_Int64", {1, -2, 3}), end(),
                   start(u"v8", u"kstd_vector8"), items(u"k_UInt8", {}), end(), end()});
    ASSERT_EQ(c.built, 0);
    c.node().i32 = 77;
    kstd_vector8_pushBack(&c.node().v8, 1);
    ASSERT_EQ(c.compose(), 0);
    EXPECT_EQ(c.node().i8, -5);
    EXPECT_EQ(c.node().i16, 7);
    EXPECT_EQ(c.node().color, 3);
    EXPECT_EQ(c.node().i32, 77) << "a member without a node keeps its value";
    const int64_t* begin = nullptr;
    intptr_t size = 0;
    kstd_vector64s_getBeginSizeIntPtrConst(&c.node().v64s, &begin, &size);
    ASSERT_EQ(size, 3);
    EXPECT_EQ(begin[1], -2);
    intptr_t emptied = -1;
    kstd_vector8_getSizeIntPtr(&c.node().v8, &emptied);
    EXPECT_EQ(emptied, 0) << "an empty array assigns an empty range";

    // A core type takes a core node's own value, and refuses an object's node.
    const kstd_persistentPropertyNode* i8 = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(c.tree.t.firstChild, u"i8", 1, &i8), 0);
    TypeBox int32;
    ASSERT_EQ(kstd_persistentTypeGetType(u"k_Int32", 0, 1, &int32.t), 0);
    int32_t value = 0;
    EXPECT_EQ(kstd_persistentType_loadPropertyNode(&int32.t, &value, i8), 0);
    EXPECT_EQ(value, -5);
    EXPECT_EQ(kstd_persistentType_loadPropertyNode(&int32.t, &value, c.tree.t.firstChild),
              kstd_persistentResult_typeMismatch);
    EXPECT_EQ(kstd_persistentType_loadPropertyNode(&int32.t, nullptr, i8), kstd_persistentResult_nullArgument);

    // The per-vector function is the generic entry point.
    const kstd_persistentPropertyNode* v64s = nullptr;
    ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(c.tree.t.firstChild, u"v64s", 1, &v64s), 0);
    TypeBox vectorType;
    ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector64s(&vectorType.t, 1), 0);
    kstd_vector64s vector;
    kstd_vector64s_construct(&vector);
    EXPECT_EQ(kstd_vector64s_loadPropertyNode(&vector, &vectorType.t, v64s), 0);
    kstd_vector64s_getSizeIntPtr(&vector, &size);
    EXPECT_EQ(size, 3);
    kstd_vector64s_destruct(&vector);
    AssertRecorder faults;
    EXPECT_EQ(kstd_vector64s_loadPropertyNode(nullptr, &vectorType.t, v64s), ksys_result_preconditionFailed);
    EXPECT_EQ(faults.count(), 1);

    // A type without declared properties loads through its load entry,
    // which may load its members through their types in turn.
    TreeBox tree;
    ASSERT_EQ(rebuild({start(u"root", u"RtCounter"), integer(u"count", u"k_Int64", 41), start(u"box", u"RtBox"),
                       integer(u"height", u"k_Int32", 8), end(), end()},
                      &tree.t),
              0);
    Counter counter{0, Box{1, 2}};
    EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().counter, &counter, tree.t.firstChild), 0);
    EXPECT_EQ(counter.count, 41);
    EXPECT_EQ(counter.box.width, 1);
    EXPECT_EQ(counter.box.height, 8);
    Plain bare{5};
    EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().bare, &bare, tree.t.firstChild),
              kstd_persistentResult_operationMissing);
}

TEST(Compose, ValuesOfCoreTypesEnumsAndVectorsLoadAndMissingMembersStay) {
    types();
    // Names are interned and types registered on first use: run once before
    // counting.
    valuesOfCoreTypesEnumsAndVectorsLoadAndMissingMembersStay();
    LiveBlockCheck leaks;
    valuesOfCoreTypesEnumsAndVectorsLoadAndMissingMembersStay();
    EXPECT_EQ(leaks.leaked(), 0);
}

// Each failing tree: the code, what was loaded before the failure, and no
// leak (the object created for a pointee that failed is released again).
void untrustedTreesFailWithCodesAndLeakNothing() {
    {
        // A reference to an id that nothing defined.
        Composition c({start(u"root", u"RtNode"), integer(u"i32", u"k_Int32", 12), start(u"next", u"kstd_ptrh"),
                       reference(u"RtNode", 7), end(), start(u"box", u"RtBox"), integer(u"width", u"k_Int32", 9),
                       end(), end()});
        ASSERT_EQ(c.built, 0);
        c.node().box.width = 1;
        EXPECT_EQ(c.compose(), kstd_persistentResult_objectIdNotFound);
        EXPECT_EQ(c.node().i32, 12) << "loaded before the failure";
        EXPECT_EQ(c.node().box.width, 1) << "after the failure: not loaded";
        EXPECT_EQ(c.node().next.shared, nullptr);
    }
    {
        // A pointee whose type offers no shared interface.
        Composition c({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtPlain", 0),
                       integer(u"value", u"k_Int32", 1), end(), end(), end()});
        ASSERT_EQ(c.built, 0);
        EXPECT_EQ(c.compose(), kstd_persistentResult_typeMismatch);
        EXPECT_EQ(c.node().next.shared, nullptr);
        kstd_persistentVariant recorded;
        kstd_persistentVariant_construct(&recorded);
        EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(&c.tree.t, 0, &recorded), kstd_persistentResult_objectIdNotFound);
        kstd_persistentVariant_destruct(&recorded);
        // The same with a core type that can be created (a string).
        Composition text({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"kstd_unicodeString", 0),
                          end(), end(), end()});
        ASSERT_EQ(text.built, 0);
        EXPECT_EQ(text.compose(), kstd_persistentResult_typeMismatch);
    }
    {
        // Vector items of another core type, and a single value where items belong.
        Composition c({start(u"root", u"RtNode"), start(u"v32s", u"kstd_vector32s"), items(u"k_Int16", {1, 2}), end(),
                       end()});
        ASSERT_EQ(c.built, 0);
        kstd_vector32s_pushBack(&c.node().v32s, 5);
        EXPECT_EQ(c.compose(), kstd_persistentResult_typeMismatch);
        intptr_t size = 0;
        kstd_vector32s_getSizeIntPtr(&c.node().v32s, &size);
        EXPECT_EQ(size, 1) << "the vector is left as it was";
        Composition single({start(u"root", u"RtNode"), start(u"v32s", u"kstd_vector32s"),
                            integer(u"items", u"k_Int32", 4), end(), end()});
        ASSERT_EQ(single.built, 0);
        EXPECT_EQ(single.compose(), kstd_persistentResult_typeMismatch);
    }
    {
        // A core value where a pointer belongs; an id defined twice.
        Composition core({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), integer(u"ptr", u"k_Int32", 1),
                          end(), end()});
        ASSERT_EQ(core.built, 0);
        EXPECT_EQ(core.compose(), kstd_persistentResult_typeMismatch);
        Composition twice({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtNode", 0), end(), end(),
                           start(u"other", u"kstd_ptrh"), define(u"RtNode", 0), end(), end(), end()});
        ASSERT_EQ(twice.built, 0);
        EXPECT_EQ(twice.compose(), kstd_persistentResult_objectIdTaken);
        EXPECT_NE(twice.node().next.shared, nullptr) << "the first definition was loaded";
        EXPECT_EQ(twice.node().other.shared, nullptr);
    }
    {
        // A pointee defined with a type nobody registered.
        Composition c({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtNobody", 0), end(), end(),
                       end()});
        ASSERT_EQ(c.built, 0);
        EXPECT_LT(c.compose(), 0);
        EXPECT_EQ(c.node().next.shared, nullptr);
    }
}

TEST(Compose, UntrustedTreesFailWithCodesAndLeakNothing) {
    types();
    // Names are interned and types registered on first use: run once before
    // counting.
    untrustedTreesFailWithCodesAndLeakNothing();
    const int64_t objectsBefore = liveObjects();
    LiveBlockCheck leaks;
    untrustedTreesFailWithCodesAndLeakNothing();
    EXPECT_EQ(liveObjects(), objectsBefore);
    EXPECT_EQ(leaks.leaked(), 0);
}

void nullPointerLeafResetsAndSelfReferenceResolves() {
    Composition c({start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), nullPointer(u"RtNode"), end(),
                   start(u"other", u"kstd_ptrh"), define(u"RtNode", 3), integer(u"i32", u"k_Int32", 31),
                   start(u"other", u"kstd_ptrh"), reference(u"RtNode", 3), end(), end(), end(), end()});
    ASSERT_EQ(c.built, 0);
    newNode(&c.node().next);
    ASSERT_EQ(c.compose(), 0);
    EXPECT_EQ(c.node().next.shared, nullptr);
    const char16_t* name = nullptr;
    kstd_ptrh_getTypename(&c.node().next, &name);
    EXPECT_EQ(std::u16string(name), u"RtNode") << "reset keeps the pointer's base type name";
    const Node* pointee = nodeOf(c.node().other);
    ASSERT_NE(pointee, nullptr);
    EXPECT_EQ(pointee->i32, 31);
    EXPECT_EQ(pointee->other.shared, c.node().other.shared) << "the reference inside resolves to the pointee";
}

TEST(Compose, NullPointerLeafResetsAndSelfReferenceResolves) {
    types();
    // Names are interned and types registered on first use: run once before
    // counting.
    nullPointerLeafResetsAndSelfReferenceResolves();
    LiveBlockCheck leaks;
    nullPointerLeafResetsAndSelfReferenceResolves();
    EXPECT_EQ(leaks.leaked(), 0);
}

}  // namespace
}  // namespace vexpers::test::rt
