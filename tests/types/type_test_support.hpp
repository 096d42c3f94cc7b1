// Helpers of the type tests: a module-style registration target (flag and
// global handle, never freed) for the operation tables of the shared support.
// TypeVector holds what the registry lists.
#pragma once

#include <string>

#include "support/test_support.hpp"

namespace vexpers::test {

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

// Registers an object type with the shared support's tables, and the
// declared properties of `list` when given.
inline kstd_result registerObject(const char16_t* name, Target& target,
                                  const kstd_persistentStaticPropertyList* list = nullptr) {
    return kstd_persistentTypeRegisterTypeObject(name, &objectTable, &valueAccessTable, list, 0, &target.flag,
                                                 &target.handle);
}

// Starts the registry, so that a leak check that follows does not count
// what the registry makes once per process.
inline void startRegistry() {
    kstd_persistentType type;
    kstd_persistentType_construct(&type);
    kstd_persistentTypeGetType(u"int", 0, 1, &type);
    kstd_persistentType_destruct(&type);
}

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
