// Helpers of the type tests: operation tables that registration accepts, a
// module-style registration target (flag and global handle, never freed),
// and short ways to read a descriptor.
#pragma once

#include <string>

#include "support/test_support.hpp"

namespace vexpers::test {

inline kstd_result noOp(void*) { return 0; }
inline kstd_result noOpCopy(void*, const void*) { return 0; }
inline kstd_result noOpNew(void**) { return 0; }
inline kstd_result noOpClone(void**, const void*) { return 0; }
inline kstd_result fourBytes(uint32_t* size) {
    *size = 4;
    return 0;
}

// Slots 5 to 8 are the ones registration requires.
inline const kstd_persistentObjectVtable objectTable{fourBytes, noOp,     noOpCopy,  noOpCopy, noOp,
                                                     noOp,      noOpNew,  noOpClone, noOpNew};
inline const kstd_persistentValueAccessVtable valueAccessTable{};
inline const kstd_persistentValueAccessVtable bitfieldValueAccessTable{};

// What a module keeps for one of its types. The registry constructs the
// handle and frees it at shut-down, so targets live for the whole process.
struct Target {
    uint32_t flag = 0;
    kstd_persistentType handle{};
};

// A fresh target of static storage (the registry remembers its handle until
// shut-down). For the test's main thread only.
inline Target& newTarget() {
    static Target pool[256];
    static int used = 0;
    return pool[used++];
}

inline kstd_result registerObject(const char16_t* name, Target& target) {
    return kstd_persistentTypeRegisterTypeObject(name, &objectTable, &valueAccessTable, nullptr, 0, &target.flag,
                                                 &target.handle);
}

// The record a handle shares, or null.
inline const kstd_persistentType_* recordOf(const kstd_persistentType& type) {
    const void* whole = nullptr;
    kstd_ptrhConst_getWholeShared(&type.record, &whole);
    return static_cast<const kstd_persistentType_*>(whole);
}

inline std::u16string nameOf(const kstd_persistentType& type) {
    const char16_t* name = nullptr;
    kstd_persistentType_getTypeName(&type, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}

// Starts the registry, so that a leak check that follows does not count
// what the registry makes once per process.
inline void startRegistry() {
    kstd_persistentType type;
    kstd_persistentType_construct(&type);
    kstd_persistentTypeGetType(u"int", 0, 1, &type);
    kstd_persistentType_destruct(&type);
}

// A descriptor that constructs and destructs itself.
struct TypeHandle {
    TypeHandle() { kstd_persistentType_construct(&t); }
    ~TypeHandle() { kstd_persistentType_destruct(&t); }
    TypeHandle(const TypeHandle&) = delete;
    TypeHandle& operator=(const TypeHandle&) = delete;
    kstd_persistentType t;
};

// A vector of descriptors that constructs and destructs itself.
struct TypeVector {
    TypeVector() { kstd_vector_kstd_persistentType_constructEmpty(&v); }
    ~TypeVector() { kstd_vector_kstd_persistentType_destruct(&v); }
    TypeVector(const TypeVector&) = delete;
    TypeVector& operator=(const TypeVector&) = delete;
    int64_t size() const { return v.base.size; }
    const kstd_persistentType& operator[](int64_t i) const {
        return static_cast<const kstd_persistentType*>(v.base.begin)[i];
    }
    kstd_vector_kstd_persistentType v;
};

}  // namespace vexpers::test
