// Expanding the property and bag typed families from the core type list.
// Their members are the usable scalar and character rows except `bool`
// (a property holds booleans as k_Bool); VEXPERS_PROPERTY_CORE_TYPE(m) gives
// a VEXPERS_CORE_TYPE definition that expands m(id, stem, ctype) for those
// rows and nothing for `bool`.
#pragma once

#include "frame/frame.hpp"

// VEXPERS_PROPERTY_SKIPS(stem) is 1 for the rows listed here, else 0: an
// undefined VEXPERS_PROPERTY_SKIP_<stem> leaves the 0 in second place.
#define VEXPERS_PROPERTY_SKIP_bool ~, 1
#define VEXPERS_PROPERTY_SECOND_(first, second, ...) second
#define VEXPERS_PROPERTY_SECOND(...) VEXPERS_PROPERTY_SECOND_(__VA_ARGS__)
#define VEXPERS_PROPERTY_SKIPS(stem) VEXPERS_PROPERTY_SECOND(VEXPERS_PROPERTY_SKIP_##stem, 0, ~)

#define VEXPERS_PROPERTY_MEMBER_0(macro, id, stem, ctype) macro(id, stem, ctype)
#define VEXPERS_PROPERTY_MEMBER_1(macro, id, stem, ctype)
#define VEXPERS_PROPERTY_MEMBER(macro, id, stem, ctype) \
    VEXPERS_CONCAT(VEXPERS_PROPERTY_MEMBER_, VEXPERS_PROPERTY_SKIPS(stem))(macro, id, stem, ctype)
