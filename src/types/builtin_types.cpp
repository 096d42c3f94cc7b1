// The built-in object types: the two shared pointers and the typed vectors
// of core items, registered like any client type with an object operation
// table, a value access table and one declared property ("ptr" or "items").
// Everything here is expanded from generated/builtin_types.def.
//
// The shared pointers register while the registry starts; a vector type
// registers the first time one of its functions asks for it. Registered
// flags are read with acquire order: the registry fills the global handle
// before it publishes the flag with release order.
#include <atomic>

#include "vexpers/property.h"
#include "vexpers/variant.h"
#include "vexpers/vector.h"

#include "frame/lifecycle.hpp"
#include "tree/compose.hpp"
#include "types/builtin_types.hpp"
#include "types/registry.hpp"

namespace vexpers::types {
namespace {

// ---- Adapters from the untyped table slots to the typed record functions ------------

template <class R>
kstd_result sizeOfRecord(uint32_t* size) {
    *size = static_cast<uint32_t>(sizeof(R));
    return 0;
}

template <class R, kstd_result (*F)(R*)>
kstd_result onRecord(void* object) {
    return F(static_cast<R*>(object));
}

template <class R, kstd_result (*F)(R*, const R*)>
kstd_result onRecordAndSource(void* object, const void* source) {
    return F(static_cast<R*>(object), static_cast<const R*>(source));
}

template <class R, kstd_result (*F)(R**)>
kstd_result onHeapRecord(void** object) {
    R* typed = static_cast<R*>(*object);
    const kstd_result result = F(&typed);
    *object = typed;
    return result;
}

template <class R, kstd_result (*F)(R**, const R*)>
kstd_result onHeapRecordAndSource(void** object, const void* source) {
    R* typed = static_cast<R*>(*object);
    const kstd_result result = F(&typed, static_cast<const R*>(source));
    *object = typed;
    return result;
}

// ---- Shared pointers: the heap forms over the library's own record functions ---------

template <class P, kstd_result (*Construct)(P*), kstd_result (*Destruct)(P*)>
kstd_result newPointer(void** object) {
    P* typed = static_cast<P*>(*object);
    const kstd_result result = lifecycle::newRecord<P>(&typed, Construct, Destruct);
    *object = typed;
    return result;
}

template <class P, kstd_result (*Construct)(P*), kstd_result (*Assign)(P*, const P*), kstd_result (*Destruct)(P*)>
kstd_result newPointerClone(void** object, const void* source) {
    P* typed = static_cast<P*>(*object);
    const kstd_result result =
        lifecycle::newClone<P>(&typed, static_cast<const P*>(source), Construct, Assign, Destruct);
    *object = typed;
    return result;
}

template <class P, kstd_result (*Destruct)(P*)>
kstd_result deletePointer(void** object) {
    P* typed = static_cast<P*>(*object);
    const kstd_result result = lifecycle::deleteRecord<P>(&typed, Destruct);
    *object = typed;
    return result;
}

// The store accessor of "ptr": one property whose descriptor has the pointee's
// own type name (or, for an empty pointer or an untyped pointee, the pointer's
// base type name) with the pointer derivation, and whose value points at the
// whole shared object. The value borrows the object, like every object a
// decomposition meets: a property kept for reuse in a bag's spare slot must
// not keep the caller's object alive.
template <class P>
kstd_result storePointee(const void* object, kstd_persistentProperty* property) {
    const P* pointer = static_cast<const P*>(object);
    const char16_t* typeName = nullptr;
    if (pointer->shared != nullptr) VEXPERS_TRY(kstd_shared_getTypename(pointer->shared, &typeName));
    if (typeName == nullptr) typeName = pointer->baseTypename;
    if (typeName == nullptr || typeName[0] == 0) return kstd_persistentResult_typeNotRegistered;
    kstd_persistentType type;
    VEXPERS_TRY(kstd_persistentType_construct(&type));
    VEXPERS_DEFER { kstd_persistentType_destruct(&type); };
    VEXPERS_TRY(kstd_persistentType_resetTypeNameAndDerivation(&type, typeName, kstd_persistentTypeDerivation_pointer));
    void* whole = nullptr;
    if (pointer->shared != nullptr) VEXPERS_TRY(kstd_shared_getWhole(pointer->shared, &whole));
    return kstd_persistentProperty_resetInfoAndValueUsingType(property, &type, u"ptr", 2, whole);
}

// The accessor words of "ptr": the store accessor and the direct load
// accessor.
constexpr kstd_persistentPropertyAccessors pointeeAccessors(
    kstd_result (*store)(const void*, kstd_persistentProperty*),
    kstd_result (*load)(void*, const kstd_persistentType*, const kstd_persistentPropertyNode*)) {
    kstd_persistentPropertyAccessors accessors{};
    accessors.slots.storeAccessor = store;
    accessors.slots.directLoadAccessor = load;
    return accessors;
}

// ---- Vectors: the container operations --------------------------------------------

template <class V, kstd_result (*F)(V*, int64_t)>
kstd_result resizeContainer(void* container, int64_t count) {
    return F(static_cast<V*>(container), count);
}

template <class V, kstd_result (*F)(const V*, intptr_t*)>
kstd_result containerSize(const void* container, intptr_t* count) {
    return F(static_cast<const V*>(container), count);
}

template <class V, class E, kstd_result (*F)(V*, E**)>
kstd_result containerElement(void* container, void** element) {
    E* typed = static_cast<E*>(*element);
    const kstd_result result = F(static_cast<V*>(container), &typed);
    *element = typed;
    return result;
}

template <uint32_t Stride>
kstd_result contiguousLayout(uint32_t* isContiguous, uint32_t* stride) {
    *isContiguous = 1;
    *stride = Stride;
    return 0;
}

template <class V, class E, kstd_result (*F)(V*, const E*, const E*)>
kstd_result assignContainerElements(void* container, const void* first, const void* end) {
    return F(static_cast<V*>(container), static_cast<const E*>(first), static_cast<const E*>(end));
}

// The member locator of "items": the vector is its own container.
template <const kstd_persistentContainerVtable* Table>
kstd_result locateItems(void* object, void** first, void** second) {
    *first = object;
    *second = const_cast<kstd_persistentContainerVtable*>(Table);
    return 0;
}

// The accessor words of "items": the member locator, the member load
// accessor and the item type's registration.
constexpr kstd_persistentPropertyAccessors itemsAccessors(kstd_result (*locator)(void*, void**, void**),
                                                          kstd_result (*registerItemType)()) {
    kstd_persistentPropertyAccessors accessors{};
    accessors.slots.memberLocator = locator;
    accessors.slots.memberLoadAccessor = vexpers::tree::loadVectorItems;
    accessors.slots.entryTypeRegistration = registerItemType;
    return accessors;
}


// ---- Value access -------------------------------------------------------------------

template <class R, kstd_result (*F)(kstd_persistentVariant*, const R*)>
kstd_result setVariant(kstd_persistentVariant* variant, const void* object) {
    return F(variant, static_cast<const R*>(object));
}

template <class R, kstd_result (*F)(const kstd_persistentVariant*, R*)>
kstd_result getVariant(const kstd_persistentVariant* variant, void* object) {
    return F(variant, static_cast<R*>(object));
}

template <class R, kstd_result (*F)(const kstd_persistentVariant*, const R**)>
kstd_result getVariantPtrConst(const kstd_persistentVariant* variant, const void** object) {
    const R* typed = nullptr;
    const kstd_result result = F(variant, &typed);
    *object = typed;
    return result;
}

using GetTypeFn = kstd_result (*)(kstd_persistentType*, uint32_t);

// Slots 3 to 5 answer from the type's own property info entries and never
// dispatch through the value access table again, which would call these
// same slots without end.
kstd_result setObjectPropertyUnsupported(void*, const char16_t*, const kstd_persistentVariant*) {
    return kstd_persistentResult_notSupported;
}

template <GetTypeFn GetType>
kstd_result propertyUsingNameSubstr(const void* object, const char16_t* text, int32_t start, int32_t length,
                                    kstd_persistentProperty* property) {
    kstd_persistentType type;
    VEXPERS_TRY(kstd_persistentType_construct(&type));
    VEXPERS_DEFER { kstd_persistentType_destruct(&type); };
    VEXPERS_TRY(GetType(&type, 1));
    return propertyFromEntries(&type, object, text, start, length, property);
}

template <GetTypeFn GetType>
kstd_result propertyInfoSet(kstd_persistentPropertyInfoSet* set) {
    kstd_persistentType type;
    VEXPERS_TRY(kstd_persistentType_construct(&type));
    VEXPERS_DEFER { kstd_persistentType_destruct(&type); };
    VEXPERS_TRY(GetType(&type, 1));
    return infoSetFromEntries(&type, set);
}

// ---- Registration state ------------------------------------------------------------------

bool isRegistered(uint32_t& flag) { return std::atomic_ref<uint32_t>(flag).load(std::memory_order_acquire) != 0; }

kstd_result registerBuiltin(const char16_t* name, const kstd_persistentObjectVtable* objects,
                            const kstd_persistentValueAccessVtable* access,
                            const kstd_persistentStaticPropertyList* properties, uint32_t& flag,
                            kstd_persistentType& handle) {
    if (isRegistered(flag)) return 0;
    // Outside the registry's start-up, start it first: the shared pointers
    // are registered there, and a registration must not start the registry
    // half-way through (its own look-ups would register the type again).
    if (!registryInitializing()) {
        VEXPERS_TRY(ensureRegistryInitialized());
        if (isRegistered(flag)) return 0;
    }
    return kstd_persistentTypeRegisterTypeObject(name, objects, access, properties, 0, &flag, &handle);
}

kstd_result getBuiltin(kstd_persistentType* type, uint32_t registerIfNeeded, kstd_result (*registerType)(),
                       uint32_t& flag, const kstd_persistentType& handle) {
    VEXPERS_REQUIRE(type != nullptr);
    if (!isRegistered(flag) && registerIfNeeded != 0) VEXPERS_TRY(registerType());
    // Before registration the global handle holds no record.
    if (!isRegistered(flag)) return kstd_persistentType_reset(type);
    return kstd_persistentType_assign(type, &handle);
}

#define VEXPERS_BUILTIN_TEXT(stem) u"" #stem

// The parts every built-in type has: flag and global handle, value access
// table, static property list and the registration functions.
#define VEXPERS_BUILTIN_COMMON(stem)                                                                       \
    uint32_t stem##_registered = 0;                                                                        \
    kstd_persistentType stem##_global{};                                                                   \
    constexpr kstd_persistentValueAccessVtable stem##_valueAccess{                                         \
        setVariant<stem, kstd_persistentVariant_setValue_##stem>,                                          \
        getVariant<stem, kstd_persistentVariant_getValue_##stem>,                                          \
        getVariantPtrConst<stem, kstd_persistentVariant_getValuePtrConst_##stem>,                          \
        setObjectPropertyUnsupported,                                                                      \
        propertyUsingNameSubstr<kstd_persistentTypeGetType_##stem>,                                        \
        propertyInfoSet<kstd_persistentTypeGetType_##stem>,                                                \
        nullptr,                                                                                           \
        nullptr,                                                                                           \
        nullptr};                                                                                          \
    constexpr kstd_persistentStaticPropertyList stem##_properties{stem##_definitions, 1};

#define VEXPERS_BUILTIN_SHARED_POINTER(stem)                                                              \
    constexpr kstd_persistentObjectVtable stem##_objects{                                                 \
        sizeOfRecord<stem>,                                                                               \
        onRecord<stem, stem##_constructEmpty>,                                                            \
        onRecordAndSource<stem, stem##_constructCopy>,                                                    \
        onRecordAndSource<stem, stem##_assign>,                                                           \
        onRecord<stem, stem##_destruct>,                                                                  \
        onRecord<stem, stem##_reset>,                                                                     \
        newPointer<stem, stem##_constructEmpty, stem##_destruct>,                                         \
        newPointerClone<stem, stem##_constructEmpty, stem##_assign, stem##_destruct>,                     \
        deletePointer<stem, stem##_destruct>};                                                            \
    constexpr kstd_persistentPropertyInfoDefinition stem##_definitions[1]{                                \
        {u"ptr", 2, u"void", kstd_persistentTypeDerivation_pointer,                                       \
         pointeeAccessors(storePointee<stem>, vexpers::tree::SharedPointerLoad<stem>::load)}};            \
    VEXPERS_BUILTIN_COMMON(stem)

#define VEXPERS_BUILTIN_VECTOR(stem, element, item, stride)                                               \
    static_assert((stride) == sizeof(element), "stride of " #stem);                                       \
    constexpr kstd_persistentObjectVtable stem##_objects{                                                 \
        sizeOfRecord<stem>,                                                                               \
        onRecord<stem, stem##_construct>,                                                                 \
        onRecordAndSource<stem, stem##_constructCopy>,                                                    \
        onRecordAndSource<stem, stem##_assign>,                                                           \
        onRecord<stem, stem##_destruct>,                                                                  \
        onRecord<stem, stem##_clear>,                                                                     \
        onHeapRecord<stem, stem##_new>,                                                                   \
        onHeapRecordAndSource<stem, stem##_newClone>,                                                     \
        onHeapRecord<stem, stem##_delete>};                                                               \
    constexpr kstd_persistentContainerVtable stem##_container{                                            \
        resizeContainer<stem, stem##_resize>,                                                             \
        containerSize<stem, stem##_getSizeIntPtr>,                                                        \
        containerElement<stem, element, stem##_getBegin>,                                                 \
        contiguousLayout<(stride)>,                                                                       \
        containerElement<stem, element, stem##_getNextElement>,                                           \
        assignContainerElements<stem, element, stem##_assignElements>};                                   \
    constexpr kstd_persistentPropertyInfoDefinition stem##_definitions[1]{                                \
        {u"items", 2, VEXPERS_BUILTIN_TEXT(item), kstd_persistentTypeDerivation_array,                    \
         itemsAccessors(locateItems<&stem##_container>, kstd_persistentTypeRegisterType_##item)}};        \
    VEXPERS_BUILTIN_COMMON(stem)

#include "generated/builtin_types.def"
#undef VEXPERS_BUILTIN_SHARED_POINTER
#undef VEXPERS_BUILTIN_VECTOR
#undef VEXPERS_BUILTIN_COMMON

}  // namespace
}  // namespace vexpers::types

using namespace vexpers::types;

#define VEXPERS_BUILTIN_REGISTRATION(stem)                                                                 \
    VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterType_##stem(void) {                              \
        return registerBuiltin(VEXPERS_BUILTIN_TEXT(stem), &stem##_objects, &stem##_valueAccess,           \
                               &stem##_properties, stem##_registered, stem##_global);                      \
    }                                                                                                      \
    VEXPERS_EXPORT kstd_result kstd_persistentTypeRegisterTypeObject_##stem(void) {                        \
        return kstd_persistentTypeRegisterType_##stem();                                                   \
    }                                                                                                      \
    VEXPERS_EXPORT kstd_result kstd_persistentTypeGetType_##stem(kstd_persistentType* type,                \
                                                                 uint32_t registerIfNeeded) {              \
        return getBuiltin(type, registerIfNeeded, kstd_persistentTypeRegisterType_##stem, stem##_registered,  \
                          stem##_global);                                                                  \
    }
#define VEXPERS_BUILTIN_SHARED_POINTER(stem) VEXPERS_BUILTIN_REGISTRATION(stem)
#define VEXPERS_BUILTIN_VECTOR(stem, element, item, stride) VEXPERS_BUILTIN_REGISTRATION(stem)
#include "generated/builtin_types.def"
#undef VEXPERS_BUILTIN_SHARED_POINTER
#undef VEXPERS_BUILTIN_VECTOR
#undef VEXPERS_BUILTIN_REGISTRATION
