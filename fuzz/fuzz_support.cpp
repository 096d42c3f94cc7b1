#include "fuzz_support.hpp"

#include "demo_model.hpp"

#include <cstring>
#include <vector>

namespace vexpers::fuzz {

std::u16string ByteReader::text(size_t maxUnits, bool loneSurrogates) {
    const size_t length = u8() % (maxUnits + 1);
    std::u16string result;
    for (size_t i = 0; i < length && !empty(); ++i) {
        const uint8_t b = u8();
        if (b < 0xC0) {
            result.push_back(static_cast<char16_t>(0x20 + b % 0x5F));
        } else if (b < 0xE0) {
            result.push_back(static_cast<char16_t>(0xA0 + u8()));  // Latin-1 and beyond
        } else if (b < 0xF0) {
            char16_t unit = u16();
            if (unit == 0 || (unit >= 0xD800 && unit < 0xE000)) unit = 0x2713;
            result.push_back(unit);
        } else if (b < 0xFC || !loneSurrogates) {
            result.push_back(static_cast<char16_t>(0xD800 + (u16() & 0x3FF)));  // a pair
            result.push_back(static_cast<char16_t>(0xDC00 + (u16() & 0x3FF)));
        } else {
            result.push_back(static_cast<char16_t>(0xD800 + (u16() & 0x7FF)));  // one half alone
        }
    }
    return result;
}

namespace {

void abortOnFault(int32_t line, const char* file, void*) {
    std::fprintf(stderr, "fuzz: precondition fault at %s:%d\n", file != nullptr ? file : "?", line);
    std::abort();
}

// ---- Tables of the section stream ------------------------------------------------------

// Flag words that writers make, and some that only a hostile file holds.
constexpr uint32_t flagWords[] = {
    0x0,     0x4,     0x18,    0x28,    0x48,    0x49,    0x4A,    0x88,    0x80088, 0x8008C, 0x80004, 0x1,
    0x2,     0x80002, 0x104,   0x118,   0x80104, 0x101,   0x148,   0x128,   0x8,     0xC,     0x3,     0x98,
    0x1C,    0x40018, 0x80018, 0x10004, 0x20004, 0x200004, 0x400004, 0x100004, 0x800000, 0x7FFFFFFF};
constexpr size_t flagWordCount = sizeof flagWords / sizeof flagWords[0];

const char16_t* const names[] = {nullptr,       u"",          u"value",   u"i",          u"scene",
                                 u"root",       u"name",      u"kind",    u"flags",      u"transform",
                                 u"tags",       u"material",  u"parent",  u"firstChild", u"nextSibling",
                                 u"title",      u"version",   u"camera",  u"environment", u"color",
                                 u"roughness",  u"\u00e9t\u00e9", u"x"};
constexpr size_t nameCount = sizeof names / sizeof names[0];

struct TypeName {
    const char16_t* name;
    uint32_t derivation;
};
const TypeName typeNames[] = {
    {u"k_Int32", 0},
    {u"k_Int64", 0},
    {u"k_UInt8", 0},
    {u"k_UInt64", 0},
    {u"k_Bool", 0},
    {u"double", 0},
    {u"float", 0},
    {u"k_Int16", 0},
    {u"kstd_unicodeString", 0},
    {u"kstd_ptrh", 0},
    {u"kstd_vectord", 0},
    {u"kstd_vector32s", 0},
    {u"kstd_vector8", 0},
    {u"kstd_vectorb", 0},
    {u"kstd_vector_kstd_unicodeString", 0},
    {u"DemoScene", 1},
    {u"DemoNode", 1},
    {u"DemoMaterial", 1},
    {u"DemoNode", 0},
    {u"DemoKind", 0},
    {u"DemoFlags", 4},
    {u"k_Int32", 2},
    {u"double", 2},
    {u"DemoNode", 2},
    {u"k_Char16", 0},
    {u"k_Int32", 1},
    {u"kstd_ptrh", 1},
    {u"Unknown", 0},
    {u"Unknown", 1},
    {u"k_Int32", 9},
};
constexpr size_t typeNameCount = sizeof typeNames / sizeof typeNames[0];

struct Names {
    std::u16string name, typeName;
    const char16_t* namePointer = nullptr;
    uint32_t derivation = 0;
};

// Reads the name and the type of a section or a value.
void readNames(ByteReader& input, bool freeText, Names* out) {
    if (freeText) {
        out->name = input.text(40, true);
        out->namePointer = out->name.c_str();
        out->typeName = input.text(40, true);
        out->derivation = input.u8() % 8;
    } else {
        out->namePointer = names[input.below(nameCount)];
        if (out->namePointer != nullptr) out->name = out->namePointer;
        const TypeName& type = typeNames[input.below(typeNameCount)];
        out->typeName = type.name;
        out->derivation = type.derivation;
    }
}

// A value of the type `typeName` (or of one named by the input) into `variant`.
kstd_result readCoreValue(ByteReader& input, bool freeText, kstd_persistentVariant* variant) {
    std::u16string typeName;
    uint32_t derivation = 0;
    if (freeText) {
        typeName = input.text(40, true);
        derivation = input.u8() % 8;
    } else {
        const TypeName& type = typeNames[input.below(typeNameCount)];
        typeName = type.name;
        derivation = type.derivation;
    }
    Type type;
    VEXPERS_TRY_FUZZ(kstd_persistentTypeGetType(typeName.c_str(), derivation, 0, &type.r));
    switch (input.u8() % 4) {
        case 0:
            return kstd_persistentVariant_setValueUsingType_k_Int64_(variant, &type.r, input.i64());
        case 1:
            return kstd_persistentVariant_setValueUsingType_k_UInt64_(variant, &type.r, input.u64());
        case 2:
            return kstd_persistentVariant_setValueUsingType_k_Bool_(variant, &type.r, static_cast<int32_t>(input.u32()));
        default:
            return kstd_persistentVariant_setValueUsingType_double_(variant, &type.r, input.f64());
    }
}

kstd_result readStringValue(ByteReader& input, kstd_persistentVariant* variant) {
    Text text;
    if (input.u8() != 0xFF) {
        const std::u16string value = input.text(60, true);
        VEXPERS_TRY_FUZZ(kstd_unicodeString_assignStringW(&text.r, value.c_str()));
    }
    return kstd_persistentVariant_setValue_kstd_unicodeString(variant, &text.r);
}

// Fills a section from the input (everything but the section type).
kstd_result readSection(ByteReader& input, uint8_t op, kstd_persistentPropertyNodeSection* section) {
    VEXPERS_TRY_FUZZ(kstd_persistentPropertyNodeSection_reset(section));
    const bool freeText = (op & 0x10) != 0;
    const uint8_t flagByte = input.u8();
    uint32_t flags = flagByte < 0xE0 ? flagWords[flagByte % flagWordCount] : input.u32();
    if ((op & 0x80) != 0) flags ^= 1u << (input.u8() % 32);
    Names n;
    readNames(input, freeText, &n);
    const uint32_t access = input.u8() % 12;
    const int64_t objectId = input.count();
    const int64_t numItems = input.count();
    // The descriptor: a failure (an empty type name) leaves the section as it is.
    kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&section->info, n.namePointer, n.typeName.c_str(),
                                                                  n.derivation, access);
    section->flags = flags;
    section->objectId = objectId;
    section->numItems = numItems;
    switch (input.u8() % 7) {
        case 1: {
            Variant value;
            if (readCoreValue(input, freeText, &value.r) >= 0)
                kstd_persistentPropertyNodeSection_setLeafPropertyValue(section, &value.r);
            return 0;
        }
        case 2:
            kstd_persistentPropertyNodeSection_setPropertyPointerNull(section);
            return 0;
        case 3:
            kstd_persistentPropertyNodeSection_setPropertyArrayEmpty(section);
            return 0;
        case 4: {
            const uint8_t b = input.u8();
            int32_t count = b < 0xF0 ? b % 24 : static_cast<int32_t>(input.u32());
            void* first = nullptr;
            uint32_t elementSize = 0;
            // Counts past the cap must fail; counts below it are bounded here
            // only so that one input does not write a gigabyte of items.
            if (count > 65536 && kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, 0, nullptr,
                                                                                             &elementSize) >= 0 &&
                static_cast<int64_t>(count) * elementSize <= kstd_persistentPropertyNodeSection_maxArrayBytes)
                count %= 65536;
            if (kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, count, &first, &elementSize) < 0 ||
                first == nullptr)
                return 0;
            // Items of core numbers take any bytes; texts are assigned; other
            // items (vectors, objects) stay as the allocation made them.
            uint32_t category = 0, derivation = 0;
            kstd_persistentType_getTypeCategoryAndDerivation(&section->property.value.type, &category, &derivation);
            if (category <= kstd_persistentTypeCategory_char) {
                const size_t bytes = static_cast<size_t>(count) * elementSize;
                const size_t take = bytes < input.remaining() ? bytes : input.remaining();
                std::memcpy(first, input.rest(), take);
                for (size_t i = 0; i < take; ++i) input.u8();
            } else if (category == kstd_persistentTypeCategory_string && elementSize == sizeof(kstd_unicodeString)) {
                auto* items = static_cast<kstd_unicodeString*>(first);
                for (int32_t i = 0; i < count && !input.empty(); ++i) {
                    const std::u16string value = input.text(20, true);
                    kstd_unicodeString_assignStringW(&items[i], value.c_str());
                }
            }
            return 0;
        }
        case 5: {
            Variant value;
            if (readStringValue(input, &value.r) >= 0)
                kstd_persistentPropertyNodeSection_setLeafPropertyValue(section, &value.r);
            return 0;
        }
        case 6: {
            // The kinds as a reader that knows them sets them.
            Info info, objectInfo;
            kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info.r, n.namePointer, n.typeName.c_str(),
                                                                          n.derivation, access);
            Names object;
            readNames(input, freeText, &object);
            kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(
                &objectInfo.r, object.namePointer, object.typeName.c_str(), object.derivation, access);
            const uint8_t kinds = input.u8();
            kstd_persistentPropertyNodeSection_setObjectInfo(section, &info.r, &objectInfo.r, kinds & 1, objectId,
                                                             (kinds >> 1) % 5, (kinds >> 4) % 3, numItems,
                                                             (kinds >> 6) & 1);
            if ((kinds & 0x80) != 0) {
                Variant value;
                if (readCoreValue(input, freeText, &value.r) >= 0)
                    kstd_persistentPropertyNodeSection_setLeafPropertyValue(section, &value.r);
            }
            return 0;
        }
        default:
            return 0;
    }
}

// Every accessor of one node, as composing and writing use them.
void exerciseNode(const kstd_persistentPropertyNode* node) {
    uint32_t a = 0, b = 0, c = 0;
    int64_t id = 0;
    uint64_t bits = 0;
    kstd_persistentPropertyNode_getIsLeaf(node, &a, &b);
    kstd_persistentPropertyNode_getIsTerminal(node, &a);
    kstd_persistentPropertyNode_getIsArrayItem(node, &a);
    kstd_persistentPropertyNode_getIsDeleted(node, &a);
    kstd_persistentPropertyNode_getObjectId(node, &a, &id, &c);
    kstd_persistentPropertyNode_getEnumAsInt64(node, u"value", &id);
    kstd_persistentPropertyNode_getEnumBitfieldAsUInt64(node, u"value", &bits);
    const kstd_persistentVariant* variant = nullptr;
    kstd_persistentPropertyNode_getCoreTypeOrEnumVariant(node, 0, &variant);
    const kstd_persistentProperty* property = nullptr;
    kstd_persistentPropertyNode_getPropertyPtrConst(node, &property);
    kstd_persistentPropertyNode_getLeafPropertyPtrConst(node, &property);
    void* container = nullptr;
    uint32_t containerValue = 0, elementSize = 0;
    void* first = nullptr;
    intptr_t count = 0;
    const kstd_persistentContainerVtable* table = nullptr;
    Type itemType;
    kstd_persistentPropertyNode_getContainer(node, &container, &containerValue, &elementSize, &first, &count, &table,
                                             &itemType.r);
    const void* begin = nullptr;
    kstd_persistentPropertyNode_getArrayBeginSizeIntPtrConst(node, &begin, &count);
    const kstd_persistentPropertyNode* child = nullptr;
    kstd_persistentPropertyNode_getMatchingChildConst(node, u"value", 0, &child);
}

// Node visitor: each node becomes a section as a writer makes it, and the
// section starts a scratch node as a reader would.
struct Exercise {
    kstd_persistentPropertyTree* tree;
    Section section;
    int64_t visits = 0;
};

kstd_result visitNode(void* context, int32_t event, int32_t, const kstd_persistentPropertyNode* node) {
    auto* exercise = static_cast<Exercise*>(context);
    if (++exercise->visits > 100000) return ksys_result_failure;  // enough for one input
    exerciseNode(node);
    uint32_t sectionType = kstd_persistentPropertyNodeSectionType_start;
    if (event == kstd_persistentPropertyProcessorEvent_leaf || event == kstd_persistentPropertyProcessorEvent_coreArray)
        sectionType = kstd_persistentPropertyNodeSectionType_leaf;
    else if (event == kstd_persistentPropertyProcessorEvent_nodeEnd)
        sectionType = kstd_persistentPropertyNodeSectionType_end;
    if (kstd_persistentPropertyNodeSection_assignNode(&exercise->section.r, node, sectionType) < 0) return 0;
    uint32_t isLeaf = 0, leafKind = 0, isArray = 0, arrayKind = 0, matches = 0;
    kstd_persistentPropertyNodeSection_getIsLeaf(&exercise->section.r, &isLeaf, &leafKind);
    kstd_persistentPropertyNodeSection_getIsArray(&exercise->section.r, &isArray, &arrayKind);
    kstd_persistentPropertyNode_isMatchingEnd(node, &exercise->section.r, &matches);
    if (sectionType == kstd_persistentPropertyNodeSectionType_end) return 0;
    kstd_persistentPropertyNode* scratch = nullptr;
    if (kstd_persistentPropertyTree_allocTempNode(exercise->tree, &scratch) < 0) return 0;
    kstd_persistentPropertyNode_startNode(scratch, &exercise->section.r);
    kstd_persistentPropertyNode_endNode(scratch);
    kstd_persistentPropertyNode_freeNodeAndChildren(scratch);
    return 0;
}

kstd_result discard(void*, const void*, size_t) { return 0; }

}  // namespace

void prepare() {
    static const bool prepared = [] {
        if (ksys_assert_setHandler(abortOnFault, nullptr, nullptr, nullptr) < 0) fail("cannot set the handler");
        if (vexpers::demo::registerTypes() < 0) fail("the demo model does not register");
        kstd_result (*const registrations[])() = {
            kstd_persistentTypeRegisterType_kstd_unicodeString, kstd_persistentTypeRegisterType_kstd_ptrh,
            kstd_persistentTypeRegisterType_kstd_ptrhConst,     kstd_persistentTypeRegisterType_kstd_vector8s,
            kstd_persistentTypeRegisterType_kstd_vector8,       kstd_persistentTypeRegisterType_kstd_vector16s,
            kstd_persistentTypeRegisterType_kstd_vector16,      kstd_persistentTypeRegisterType_kstd_vector32s,
            kstd_persistentTypeRegisterType_kstd_vector32,      kstd_persistentTypeRegisterType_kstd_vector64s,
            kstd_persistentTypeRegisterType_kstd_vector64,      kstd_persistentTypeRegisterType_kstd_vectorIntPtrs,
            kstd_persistentTypeRegisterType_kstd_vectorIntPtr,  kstd_persistentTypeRegisterType_kstd_vectorf,
            kstd_persistentTypeRegisterType_kstd_vectord,       kstd_persistentTypeRegisterType_kstd_vectorb,
            kstd_persistentTypeRegisterType_kstd_vector_kstd_unicodeString};
        for (const auto registration : registrations)
            if (registration() < 0) fail("a built-in type does not register");
        return true;
    }();
    (void)prepared;
}

kstd_result readTree(const void* data, size_t size, uint32_t format, uint32_t flags,
                     kstd_persistentPropertyTree* tree, kfmt_report* report) {
    kfmt_memoryReader reader;
    kfmt_source source;
    VEXPERS_TRY_FUZZ(kfmt_source_initMemory(&source, &reader, data, size));
    kfmt_options options;
    VEXPERS_TRY_FUZZ(kfmt_options_setDefaults(&options));
    options.flags = flags;
    kfmt_report own{};
    if (report == nullptr) report = &own;
    kfmt_statistics statistics{};
    const kstd_result result = kfmt_readTree(tree, format, &source, &options, &statistics, report);
    if (result != report->code) fail("the report's code is not the code returned");
    return result;
}

void exerciseTree(kstd_persistentPropertyTree* tree) {
    Exercise exercise{tree, {}, 0};
    Processor processor;
    kstd_persistentPropertyProcessor_processPropertyTree(&processor.r, tree, visitNode, &exercise);
    const kfmt_sink sink{discard, nullptr};
    kfmt_dumpTree(tree, &sink);
}

void applySectionStream(ByteReader& input, kstd_persistentPropertyTree* tree) {
    Section section;
    std::vector<kstd_persistentPropertyNode*> open;
    for (int operations = 0; !input.empty() && operations < 4096; ++operations) {
        const uint8_t op = input.u8();
        switch (op & 7) {
            case 0:
            case 2:
            case 3: {
                readSection(input, op, &section.r);
                section.r.sectionType = op & 3u;
                kstd_persistentPropertyNode* node = nullptr;
                if (open.empty()) {
                    if (kstd_persistentPropertyTree_allocNextChild(tree, &node) < 0) break;
                    if (kstd_persistentPropertyNode_startNode(node, &section.r) >= 0 && (op & 3) != 2)
                        open.push_back(node);
                } else if ((op & 3) == 2) {
                    kstd_persistentPropertyNode_addChildLeafNode(open.back(), &section.r);
                } else if (kstd_persistentPropertyNode_startChildNode(open.back(), &section.r, &node) >= 0) {
                    open.push_back(node);
                }
                break;
            }
            case 1: {
                kstd_persistentPropertyNodeSection_reset(&section.r);
                section.r.sectionType = kstd_persistentPropertyNodeSectionType_end;
                const char16_t* name = names[input.below(nameCount)];
                kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&section.r.info, name, u"k_Int32", 0, 2);
                if (open.empty()) break;
                uint32_t matches = 1;
                if ((op & 8) == 0) kstd_persistentPropertyNode_isMatchingEnd(open.back(), &section.r, &matches);
                if (matches != 0 && kstd_persistentPropertyNode_endNode(open.back()) >= 0) open.pop_back();
                break;
            }
            case 4: {
                const uint32_t sectionType = input.u8() < 0xF0 ? input.u8() % 5 : input.u32();
                readSection(input, op, &section.r);
                section.r.sectionType = sectionType;
                if (!open.empty() && (op & 8) == 0) {
                    kstd_persistentPropertyNode_startNode(open.back(), &section.r);
                } else {
                    kstd_persistentPropertyNode* node = nullptr;
                    if (kstd_persistentPropertyTree_allocNextChild(tree, &node) >= 0)
                        kstd_persistentPropertyNode_startAndEndLeafNode(node, &section.r);
                }
                break;
            }
            case 5: {
                const int64_t id = (op & 8) != 0 ? input.i64() : input.count();
                Variant value;
                switch ((op >> 4) % 3) {
                    case 0:
                        // Whatever a node of the tree holds, under a chosen id.
                        if (!open.empty()) kstd_persistentVariant_assign(&value.r, &open.back()->leafProperty.value);
                        kstd_persistentPropertyTree_setObjectWithId(tree, id, &value.r);
                        break;
                    case 1:
                        kstd_persistentPropertyTree_getObjectById(tree, id, &value.r);
                        break;
                    default: {
                        if (kstd_persistentPropertyTree_getObjectById(tree, id, &value.r) < 0) break;
                        int64_t found = 0;
                        uint32_t isNew = 0;
                        kstd_persistentPropertyTree_findObject(tree, &value.r, &found, &isNew);
                        break;
                    }
                }
                break;
            }
            case 6:
                if (!open.empty()) exerciseNode(open.back());
                break;
            default:
                if ((op & 8) != 0) {
                    kstd_persistentPropertyTree_reset(tree);
                    open.clear();
                } else {
                    kstd_persistentPropertyTree_forgetAllObjects(tree);
                }
                break;
        }
    }
}

}  // namespace vexpers::fuzz
