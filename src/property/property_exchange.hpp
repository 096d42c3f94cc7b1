// Moving a property's contents to another property record without touching
// any reference count: the records exchange what they hold.
#pragma once

#include <utility>

#include "vexpers/property.h"

namespace vexpers::property {

// Exchanges two strings by their bytes, except that a string's characters
// may point at its own emptyChar, which must keep pointing into its record.
inline void exchangeStrings(kstd_stringConst& a, kstd_stringConst& b) {
    const bool aOwnEmpty = a.chars == &a.emptyChar;
    const bool bOwnEmpty = b.chars == &b.emptyChar;
    std::swap(a, b);
    if (aOwnEmpty) b.chars = &b.emptyChar;
    if (bOwnEmpty) a.chars = &a.emptyChar;
}

inline void exchangeProperties(kstd_persistentProperty& a, kstd_persistentProperty& b) {
    exchangeStrings(a.info.name, b.info.name);
    std::swap(a.info.type, b.info.type);
    std::swap(a.info.dataAccess, b.info.dataAccess);
    std::swap(a.info.globalIndex, b.info.globalIndex);
    // A variant holds no pointer into itself: its shares and its value
    // move with it unchanged.
    std::swap(a.value, b.value);
}

}  // namespace vexpers::property
