// Composing from trees that a stream built: what a well-formed tree gives,
// and how trees that no writer of this library makes are refused, with
// result codes, nothing leaked, and the members loaded before the failure
// keeping their new values.
#include "tree/roundtrip_model.hpp"

namespace vexpers::test::rt {
namespace {

// A tree built from hand-written section lines, its top node, and a fresh node object to
// compose into.
struct Composition {
    Tree tree;
    SharedPointer target;
    kstd_result built;

    explicit Composition(const std::vector<Line>& lines) {
        built = rebuild(lines, tree);
        newNode(target);
    }
    Node& node() { return *nodeOf(target.v); }
    kstd_result compose() { return kstd_persistentType_loadPropertyNode(types().node, &node(), tree->firstChild); }
    ~Composition() {
        unlinkRecorded(tree, 8);
        unlinkNode(&node());
    }
};

// Runs `scenario` once to register and intern what it meets, then again
// counting blocks and objects.
template <class F>
void withoutLeaks(F scenario) {
    types();
    scenario();
    const int64_t objectsBefore = liveObjects();
    LiveBlockCheck leaks;
    scenario();
    EXPECT_EQ(liveObjects(), objectsBefore);
    EXPECT_EQ(leaks.leaked(), 0);
}

TEST(Compose, ValuesOfCoreTypesEnumsVectorsAndPointersLoad) {
    withoutLeaks([] {
        Composition c({start(u"root", u"RtNode"), integer(u"i8", u"k_Int8", -5), start(u"color", u"RtColor"),
                       integer(u"value", u"k_Int64", 3), end(), start(u"v64s", u"kstd_vector64s"),
                       items(u"k_Int64", {1, -2, 3}), end(), start(u"v8", u"kstd_vector8"), items(u"k_UInt8", {}),
                       end(), start(u"next", u"kstd_ptrh"), nullPointer(u"RtNode"), end(),
                       start(u"other", u"kstd_ptrh"), define(u"RtNode", 3), integer(u"i32", u"k_Int32", 31),
                       start(u"other", u"kstd_ptrh"), reference(u"RtNode", 3), end(), end(), end(), end()});
        ASSERT_EQ(c.built, 0);
        c.node().i32 = 77;
        kstd_vector8_pushBack(&c.node().v8, 1);
        newNode(&c.node().next);
        ASSERT_EQ(c.compose(), 0);
        EXPECT_EQ(c.node().i8, -5);
        EXPECT_EQ(c.node().color, 3);
        EXPECT_EQ(c.node().i32, 77) << "a member without a node keeps its value";
        const int64_t* begin = nullptr;
        intptr_t size = 0;
        kstd_vector64s_getBeginSizeIntPtrConst(&c.node().v64s, &begin, &size);
        ASSERT_EQ(size, 3);
        EXPECT_EQ(begin[1], -2);
        kstd_vector8_getSizeIntPtr(&c.node().v8, &size);
        EXPECT_EQ(size, 0) << "an empty array assigns an empty range";
        EXPECT_EQ(c.node().next.shared, nullptr);
        const char16_t* name = nullptr;
        kstd_ptrh_getTypename(&c.node().next, &name);
        EXPECT_EQ(std::u16string(name), u"RtNode") << "reset keeps the pointer's base type name";
        const Node* pointee = nodeOf(c.node().other);
        ASSERT_NE(pointee, nullptr);
        EXPECT_EQ(pointee->i32, 31);
        EXPECT_EQ(pointee->other.shared, c.node().other.shared) << "the reference inside resolves to the pointee";

        // A core type takes a core node's own value, and refuses an object's node.
        const kstd_persistentPropertyNode* i8 = nullptr;
        ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(c.tree->firstChild, u"i8", 1, &i8), 0);
        Type int32;
        ASSERT_EQ(kstd_persistentTypeGetType(u"k_Int32", 0, 1, int32), 0);
        int32_t value = 0;
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(int32, &value, i8), 0);
        EXPECT_EQ(value, -5);
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(int32, &value, c.tree->firstChild),
                  kstd_persistentResult_typeMismatch);

        // The per-vector function is the generic entry point.
        const kstd_persistentPropertyNode* v64s = nullptr;
        ASSERT_EQ(kstd_persistentPropertyNode_getMatchingChildConst(c.tree->firstChild, u"v64s", 1, &v64s), 0);
        Type vectorType;
        ASSERT_EQ(kstd_persistentTypeGetType_kstd_vector64s(vectorType, 1), 0);
        EXPECT_EQ(kstd_vector64s_loadPropertyNode(&c.node().v64s, vectorType, v64s), 0);
        AssertRecorder faults;
        EXPECT_EQ(kstd_vector64s_loadPropertyNode(nullptr, vectorType, v64s), ksys_result_preconditionFailed);
        EXPECT_EQ(faults.count(), 1);

        // A type without declared properties loads through its load entry,
        // which may load its members through their types in turn.
        Tree tree;
        ASSERT_EQ(rebuild({start(u"root", u"RtCounter"), integer(u"count", u"k_Int64", 41), start(u"box", u"RtBox"),
                           integer(u"height", u"k_Int32", 8), end(), end()},
                          tree),
                  0);
        Counter counter{0, Box{1, 2}};
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().counter, &counter, tree->firstChild), 0);
        EXPECT_EQ(counter.count, 41);
        EXPECT_EQ(counter.box.width, 1);
        EXPECT_EQ(counter.box.height, 8);
        Box bare{5, 6};
        EXPECT_EQ(kstd_persistentType_loadPropertyNode(types().bare, &bare, tree->firstChild),
                  kstd_persistentResult_operationMissing);
    });
}

// Each failing tree: the code, and no leak (the object created for a
// pointee that failed is released again).
TEST(Compose, UntrustedTreesFailWithCodesAndLeakNothing) {
    const struct {
        const char* what;
        std::vector<Line> lines;
        kstd_result code;
    } cases[]{
        {"a reference to an id nothing defined",
         {start(u"root", u"RtNode"), integer(u"i32", u"k_Int32", 12), start(u"next", u"kstd_ptrh"),
          reference(u"RtNode", 7), end(), start(u"box", u"RtBox"), integer(u"width", u"k_Int32", 9), end(), end()},
         kstd_persistentResult_objectIdNotFound},
        {"a pointee whose type offers no shared interface",
         {start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtBox", 0),
          integer(u"width", u"k_Int32", 1), end(), end(), end()},
         kstd_persistentResult_typeMismatch},
        {"a pointee of a core type that can be created",
         {start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"kstd_unicodeString", 0), end(), end(),
          end()},
         kstd_persistentResult_typeMismatch},
        {"vector items of another core type",
         {start(u"root", u"RtNode"), start(u"v32s", u"kstd_vector32s"), items(u"k_Int16", {1, 2}), end(), end()},
         kstd_persistentResult_typeMismatch},
        {"a single value where items belong",
         {start(u"root", u"RtNode"), start(u"v32s", u"kstd_vector32s"), integer(u"items", u"k_Int32", 4), end(),
          end()},
         kstd_persistentResult_typeMismatch},
        {"a core value where a pointer belongs",
         {start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), integer(u"ptr", u"k_Int32", 1), end(), end()},
         kstd_persistentResult_typeMismatch},
        {"an id defined twice",
         {start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtNode", 0), end(), end(),
          start(u"other", u"kstd_ptrh"), define(u"RtNode", 0), end(), end(), end()},
         kstd_persistentResult_objectIdTaken},
        {"a pointee of a type nobody registered",
         {start(u"root", u"RtNode"), start(u"next", u"kstd_ptrh"), define(u"RtNobody", 0), end(), end(), end()},
         kstd_persistentResult_typeNotRegistered},
    };
    withoutLeaks([&] {
        for (const auto& test : cases) {
            SCOPED_TRACE(test.what);
            Composition c(test.lines);
            ASSERT_EQ(c.built, 0);
            c.node().box.width = 1;
            kstd_vector32s_pushBack(&c.node().v32s, 5);
            EXPECT_EQ(c.compose(), test.code);
            // The member that failed is left as it was; members before it
            // are loaded, members after it not.
            EXPECT_EQ(c.node().box.width, 1);
            intptr_t size = 0;
            kstd_vector32s_getSizeIntPtr(&c.node().v32s, &size);
            EXPECT_EQ(size, 1);
            if (test.code == kstd_persistentResult_objectIdTaken) {
                EXPECT_NE(c.node().next.shared, nullptr) << "the first definition was loaded";
                EXPECT_EQ(c.node().other.shared, nullptr);
            } else {
                EXPECT_EQ(c.node().next.shared, nullptr);
            }
            if (test.code == kstd_persistentResult_objectIdNotFound) {
                EXPECT_EQ(c.node().i32, 12);
            }
            Variant recorded;
            if (test.code == kstd_persistentResult_typeMismatch) {
                EXPECT_EQ(kstd_persistentPropertyTree_getObjectById(c.tree, 0, recorded),
                          kstd_persistentResult_objectIdNotFound);
            }
        }
    });
}

}  // namespace
}  // namespace vexpers::test::rt
