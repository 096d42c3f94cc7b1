#include "tree/tree_fixtures.hpp"

#include <cstring>
#include <iterator>

namespace vexpers::test::tree {
namespace {

kstd_result noDestroy(kstd_shared*) { return 0; }
constexpr kstd_sharedCustom counting{noDestroy, nullptr, nullptr};
kstd_result itemSharedTypename(const kstd_shared*, const char16_t** name) {
    *name = u"TreeItem";
    return 0;
}
constexpr kstd_sharedTyped typed{kstd_shared_queryInterfaceByTypenameFinal, itemSharedTypename};

const Item& itemOf(const void* object) { return *static_cast<const Item*>(object); }

// Items live where the tests put them; the type's heap operations are not
// used by decomposition.
template <class T>
kstd_result sizeOf(uint32_t* size) {
    *size = sizeof(T);
    return 0;
}
kstd_result unsupported(void*) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedCopy(void*, const void*) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedNew(void**) { return kstd_persistentResult_notSupported; }
kstd_result unsupportedClone(void**, const void*) { return kstd_persistentResult_notSupported; }
template <class T>
constexpr kstd_persistentObjectVtable objects{sizeOf<T>,   unsupported,    unsupportedCopy,
                                              unsupportedCopy, unsupported, unsupported,
                                              unsupportedNew, unsupportedClone, unsupportedNew};

kstd_result itemQuery(void* object, const char16_t* name, void** result) {
    *result = std::u16string(name) == u"kstd_shared" ? &static_cast<Item*>(object)->header : nullptr;
    return 0;
}
kstd_result itemTypename(const void*, const char16_t** name) {
    *name = u"TreeItem";
    return 0;
}
constexpr kstd_typeDescriptorMinimalVtable itemMinimal{itemQuery, itemTypename};
constexpr kstd_persistentValueAccessVtable noAccess{};

kstd_result numberAddress(const void* object, const void** member) {
    *member = &itemOf(object).number;
    return 0;
}
kstd_result ratioAddress(const void* object, const void** member) {
    *member = &itemOf(object).ratio;
    return 0;
}
kstd_result linkAddress(const void* object, const void** member) {
    *member = &itemOf(object).link;
    return 0;
}
kstd_result partAddress(const void* object, const void** member) {
    *member = &itemOf(object).part;
    return 0;
}
kstd_result firstValue(const void* object, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValueUsingType(value, &types().itemPointer, itemOf(object).first);
}
kstd_result secondValue(const void* object, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValueUsingType(value, &types().itemPointer, itemOf(object).second);
}
kstd_result embeddedValue(const void* object, kstd_persistentVariant* value) {
    return kstd_persistentVariant_setValueUsingType(value, &types().item, itemOf(object).embedded);
}

kstd_result vectorResize(void* container, int64_t count) {
    return kstd_vector32s_resize(static_cast<kstd_vector32s*>(container), count);
}
kstd_result vectorSize(const void* container, intptr_t* count) {
    return kstd_vector32s_getSizeIntPtr(static_cast<const kstd_vector32s*>(container), count);
}
kstd_result vectorBegin(void* container, void** first) {
    int32_t* begin = nullptr;
    const kstd_result result = kstd_vector32s_getBegin(static_cast<kstd_vector32s*>(container), &begin);
    *first = begin;
    return result;
}
kstd_result int32Layout(uint32_t* isContiguous, uint32_t* stride) {
    *isContiguous = 1;
    *stride = 4;
    return 0;
}
kstd_result int32Next(void*, void** element) {
    *element = static_cast<int32_t*>(*element) + 1;
    return 0;
}
constexpr kstd_persistentContainerVtable vectorTable{vectorResize, vectorSize, vectorBegin, int32Layout, int32Next,
                                                     nullptr};
kstd_result locateValues(void* object, void** first, void** second) {
    *first = &static_cast<Item*>(object)->values;
    *second = const_cast<kstd_persistentContainerVtable*>(&vectorTable);
    return 0;
}

template <class F>
kstd_persistentPropertyAccessors word(int index, F function) {
    kstd_persistentPropertyAccessors accessors{};
    accessors.words[index] = reinterpret_cast<const void*>(function);
    return accessors;
}

const kstd_persistentPropertyInfoDefinition itemDefinitions[]{
    {u"number", 2, u"k_Int32", 0, word(4, numberAddress)},
    {u"ratio", 2, u"double", 0, word(4, ratioAddress)},
    {u"part", 2, u"TreePart", 0, word(4, partAddress)},
    {u"first", 2, u"TreeItem", 1, word(5, firstValue)},
    {u"second", 2, u"TreeItem", 1, word(5, secondValue)},
    {u"embedded", 2, u"TreeItem", 0, word(5, embeddedValue)},
    {u"values", 2, u"k_Int32", 2, word(7, locateValues)},
    {u"link", 2, u"kstd_ptrh", 0, word(4, linkAddress)},
};
const kstd_persistentStaticPropertyList itemProperties{itemDefinitions, std::size(itemDefinitions)};

kstd_result sizeAddress(const void* object, const void** member) {
    *member = &static_cast<const Part*>(object)->size;
    return 0;
}
const kstd_persistentPropertyInfoDefinition partDefinitions[]{{u"size", 2, u"k_Int32", 0, word(4, sizeAddress)}};
const kstd_persistentStaticPropertyList partProperties{partDefinitions, 1};

struct Registration {
    uint32_t itemFlag = 0, partFlag = 0, colorFlag = 0, colorBitsFlag = 0;
    Types types{};
    kstd_persistentType colorBits{};
};

Registration* registerTypes() {
    static Registration r;
    kstd_persistentType_construct(&r.types.itemPointer);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"TreePart", &objects<Part>, &noAccess, &partProperties, 0,
                                                    &r.partFlag, &r.types.part),
              0);
    // The item's entries name its own type: register it before they resolve.
    EXPECT_EQ(kstd_persistentTypeRegisterTypeObjectDynamic(u"TreeItem", &objects<Item>, &noAccess, &itemProperties,
                                                           &itemMinimal, 0, &r.itemFlag, &r.types.item),
              0);
    EXPECT_EQ(kstd_persistentType_assignDifferentDerivation(&r.types.itemPointer, &r.types.item, 1), 0);
    EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"TreeColor", 1, 2, 3, 4, &noAccess, &noAccess, nullptr, nullptr,
                                                  &r.colorFlag, &r.colorBitsFlag, &r.types.color, &r.colorBits),
              0);
    return &r;
}

}  // namespace

Item::Item() : number(0), ratio(0), part{0}, first(nullptr), second(nullptr), embedded(nullptr) {
    std::memset(&header, 0, sizeof header);
    kstd_shared_initCustomTyped(&header, this, &counting, &typed);
    kstd_vector32s_construct(&values);
    kstd_ptrh_constructBaseTypename(&link, nullptr, u"TreeItem");
}

Item::~Item() {
    kstd_ptrh_destruct(&link);
    kstd_vector32s_destruct(&values);
}

const Types& types() {
    static Registration* r = registerTypes();
    return r->types;
}

void start() {
    types();
    // Decompose once, so that every lazily made part of the registry exists.
    Item item;
    Tree tree;
    Property property;
    pointTo(property, u"warm", &item);
    kstd_persistentPropertyTree_resetDecomposeProperty(&tree, &property);
    // The registry interns every name for good: intern the tests' names now.
    Info info;
    for (const char16_t* name : {u"top", u"part", u"size", u"count", u"x", u"again", u"twin", u"ref", u"item", u"p",
                                 u"a", u"n", u"color", u"value", u"level", u"i", u"other", u"Top", u"to", u"root",
                                 u"TreeNobody"})
        kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(&info, name, name, 0, 2);
}

void pointTo(Property& property, const char16_t* name, Item* item) {
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(&property, &types().itemPointer, name, 2, item), 0);
}

void holdByValue(Property& property, const char16_t* name, Item* item) {
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValueUsingType(&property, &types().item, name, 2, item), 0);
}

void intLeafSection(Section& section, uint32_t type, const char16_t* name, int32_t value) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(&section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&section->info, name,
                                                                    kstd_persistentCoreTypeId_k_Int32, 2),
              0);
    ASSERT_EQ(kstd_persistentProperty_resetInfoAndValue_k_Int32(&section->property, name, 2, value), 0);
    section->sectionType = type;
    section->flags = 0x18;
}

void startSection(Section& section, const char16_t* name) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(&section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, name, &types().part, 2), 0);
    section->sectionType = kstd_persistentPropertyNodeSectionType_start;
    section->flags = 0x4;
}

void endSection(Section& section, const char16_t* name) {
    ASSERT_EQ(kstd_persistentPropertyNodeSection_reset(&section), 0);
    ASSERT_EQ(kstd_persistentPropertyInfo_resetNameTypeAccess(&section->info, name, &types().part, 2), 0);
    section->sectionType = kstd_persistentPropertyNodeSectionType_end;
}

std::u16string nameOf(const kstd_persistentPropertyNode* node) {
    const char16_t* name = nullptr;
    kstd_persistentPropertyInfo_getName(&node->info, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}

int64_t liveNodes(const kstd_persistentPropertyTree* tree) {
    int64_t count = -1;
    kstd_blockAllocator_getLiveCount(&tree->nodeAllocator, &count);
    return count;
}

int childCount(const kstd_persistentPropertyNode* node) {
    int count = 0;
    for (const kstd_persistentPropertyNode* c = node->firstChild; c != nullptr; c = c->nextSibling) ++count;
    return count;
}

const kstd_persistentPropertyNode* child(const kstd_persistentPropertyNode* node, const char16_t* name) {
    const kstd_persistentPropertyNode* found = nullptr;
    kstd_persistentPropertyNode_getMatchingChildConst(node, name, 1, &found);
    return found;
}

}  // namespace vexpers::test::tree
