// Typed views of a generic vector's elements for code inside the library,
// which reads its own vectors without a call per element.
#pragma once

#include <span>

#include "vexpers/vector.h"

namespace vexpers {

template <class E, class V>
std::span<E> elementsOf(V& vector) {
    kstd_vector__& base = vector.base;
    return {static_cast<E*>(base.begin), static_cast<size_t>(base.size)};
}

template <class E, class V>
std::span<const E> elementsOf(const V& vector) {
    const kstd_vector__& base = vector.base;
    return {static_cast<const E*>(base.begin), static_cast<size_t>(base.size)};
}

template <class V>
int64_t sizeOf(const V& vector) {
    return vector.base.size;
}

}  // namespace vexpers
