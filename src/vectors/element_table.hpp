// Element tables for vectors of records: thunks that call a record's own
// life-cycle functions through the untyped element interface.
#pragma once

#include "vexpers/vector.h"

namespace vexpers {

template <class E, kstd_result (*Construct)(E*), kstd_result (*ConstructCopy)(E*, const E*),
          kstd_result (*Assign)(E*, const E*), kstd_result (*Destruct)(E*)>
struct ElementTable {
    static kstd_result construct(void* element) { return Construct(static_cast<E*>(element)); }
    static kstd_result constructCopy(void* element, const void* source) {
        return ConstructCopy(static_cast<E*>(element), static_cast<const E*>(source));
    }
    static kstd_result assign(void* element, const void* source) {
        return Assign(static_cast<E*>(element), static_cast<const E*>(source));
    }
    static kstd_result destruct(void* element) { return Destruct(static_cast<E*>(element)); }
    static constexpr kstd_vectorElementVtable table{construct, constructCopy, assign, destruct};
};

// The generic record of a typed vector; null stays null so that the generic
// function reports the precondition fault.
template <class V>
kstd_vector__* baseOf(V* vector) {
    return vector != nullptr ? &vector->base : nullptr;
}

template <class V>
const kstd_vector__* baseOf(const V* vector) {
    return vector != nullptr ? &vector->base : nullptr;
}

template <class E>
void** untyped(E** pointer) {
    return reinterpret_cast<void**>(pointer);
}

template <class E>
const void** untyped(const E** pointer) {
    return reinterpret_cast<const void**>(pointer);
}

}  // namespace vexpers
