// The hash of constant strings and of the interning table's bins:
// h = 5381, then h * 33 + unit for every UTF-16 unit, modulo 2^32.
#pragma once

#include <cstdint>

namespace vexpers {

inline uint32_t hashText(const char16_t* text) {
    uint32_t h = 5381;
    if (text != nullptr)
        for (; *text != 0; ++text) h = (h << 5) + h + *text;
    return h;
}

}  // namespace vexpers
