// Text form of doubles. std::to_chars formats like printf in the C locale, so
// the host's decimal separator never leaks into stored text.
#include <charconv>
#include <cmath>
#include <cstring>

#include "frame/frame.hpp"

VEXPERS_EXPORT kstd_result ksys_clxSprintf_double(char16_t* buffer, const char* format, double value) {
    VEXPERS_REQUIRE(buffer != nullptr);
    buffer[0] = 0;
    VEXPERS_REQUIRE(format != nullptr && std::strcmp(format, "%.20g") == 0);
    // %.20g of a finite double needs at most 27 characters.
    char narrow[64];
    const char* special = std::isnan(value) ? "nan" : !std::isinf(value) ? nullptr : value < 0 ? "-inf" : "inf";
    const char* end = special != nullptr
                          ? std::strchr(std::strcpy(narrow, special), 0)
                          : std::to_chars(narrow, narrow + sizeof narrow, value, std::chars_format::general, 20).ptr;
    size_t i = 0;
    for (const char* c = narrow; c != end; ++c) buffer[i++] = static_cast<char16_t>(*c);
    buffer[i] = 0;
    return 0;
}
