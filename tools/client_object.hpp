// The pieces every client module of this project writes the same way: the
// accessor words of a member stored at a fixed offset, and the object
// operations of a type whose objects start with a kstd_shared header and
// live on the library's heap. Header-only; the demo model, the benchmarks
// and the fuzz harnesses share it.
#pragma once

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>

#include "vexpers/vexpers.h"

namespace vexpers::client {

template <class F>
const void* word(F function) {
    return reinterpret_cast<const void*>(function);
}

inline kstd_persistentPropertyAccessors accessors(std::initializer_list<std::pair<int, const void*>> words) {
    kstd_persistentPropertyAccessors result{};
    for (const auto& [index, w] : words) result.words[index] = w;
    return result;
}

template <size_t Offset>
kstd_result addressAt(const void* object, const void** member) {
    *member = static_cast<const char*>(object) + Offset;
    return 0;
}

template <size_t Offset>
kstd_result loadAt(void* object, const kstd_persistentType* type, const kstd_persistentPropertyNode* node) {
    return kstd_persistentType_loadPropertyNode(type, static_cast<char*>(object) + Offset, node);
}

// Word 4 stores the member by address, word 8 loads it through its own
// type, word 10 registers the member's type first when it is the module's.
template <size_t Offset>
kstd_persistentPropertyAccessors member(kstd_result (*registration)() = nullptr) {
    return accessors({{4, word(addressAt<Offset>)}, {8, word(loadAt<Offset>)}, {10, word(registration)}});
}

// Object operations of T, whose first member `header` is its kstd_shared.
// Traits gives the type's name and constructs and destructs the members
// of an object zeroed first.
// Objects are shareable (the header answers "kstd_shared") and not copyable.
template <class T, class Traits>
struct ObjectOperations {
    static kstd_result destroyShared(kstd_shared* shared) {
        void* whole = shared->whole;
        return deleteObject(&whole);
    }
    static kstd_result sharedName(const kstd_shared*, const char16_t** name) {
        *name = Traits::name;
        return 0;
    }
    static constexpr kstd_sharedCustom counting{destroyShared, nullptr, nullptr};
    static constexpr kstd_sharedTyped typed{kstd_shared_queryInterfaceByTypenameFinal, sharedName};

    static kstd_result size(uint32_t* size) {
        *size = sizeof(T);
        return 0;
    }
    static kstd_result construct(void* object) {
        T* t = static_cast<T*>(object);
        std::memset(static_cast<void*>(t), 0, sizeof(T));
        const kstd_result shared = kstd_shared_initCustomTyped(&t->header, t, &counting, &typed);
        if (shared < 0) return shared;
        return Traits::construct(*t);
    }
    static kstd_result destruct(void* object) { return Traits::destruct(*static_cast<T*>(object)); }
    static kstd_result notOffered(void*, const void*) { return kstd_persistentResult_notSupported; }
    static kstd_result notOffered(void*) { return kstd_persistentResult_notSupported; }
    static kstd_result notOfferedClone(void**, const void*) { return kstd_persistentResult_notSupported; }
    static kstd_result deleteObject(void** object) {
        if (*object == nullptr) return 0;
        const kstd_result destructed = destruct(*object);
        if (destructed < 0) return destructed;
        return ksys_memory_free_internal(object);
    }
    static kstd_result newObject(void** object) {
        const kstd_result deleted = deleteObject(object);
        if (deleted < 0) return deleted;
        void* memory = nullptr;
        const kstd_result allocated = ksys_memory_alloc_internal(sizeof(T), &memory);
        if (allocated < 0) return allocated;
        if (const kstd_result result = construct(memory); result < 0) {
            ksys_memory_free_internal(&memory);
            return result;
        }
        *object = memory;
        return 0;
    }
    // A new object, which `pointer` then holds; *object points at it.
    static kstd_result make(kstd_ptrh* pointer, T** object) {
        void* memory = nullptr;
        const kstd_result made = newObject(&memory);
        if (made < 0) return made;
        *object = static_cast<T*>(memory);
        return kstd_ptrh_assignShared(pointer, &(*object)->header);
    }
    static kstd_result query(void* object, const char16_t* name, void** result) {
        *result = nullptr;
        if (std::char_traits<char16_t>::compare(name, u"kstd_shared", 12) == 0)
            *result = &static_cast<T*>(object)->header;
        return 0;
    }
    static kstd_result typeName(const void*, const char16_t** name) {
        *name = Traits::name;
        return 0;
    }
    static constexpr kstd_persistentObjectVtable objects{size,       construct,   notOffered,      notOffered, destruct,
                                                         notOffered, newObject,   notOfferedClone, deleteObject};
    static constexpr kstd_typeDescriptorMinimalVtable minimal{query, typeName};
};

// A library record constructed for the wrapper's lifetime.
template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*)>
struct Owned {
    R r;
    Owned() { Construct(&r); }
    ~Owned() { Destruct(&r); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
};

// The object a shared pointer holds, or null.
template <class T>
T* objectOf(const kstd_ptrh& pointer) {
    return pointer.shared != nullptr ? static_cast<T*>(pointer.shared->whole) : nullptr;
}

}  // namespace vexpers::client
