// Internal helpers of the property descriptor shared with the rest of the
// property model.
#pragma once

#include "vexpers/propertyinfo.h"

namespace vexpers::property {

// Sets `name` from wide text the way every descriptor name is set: null text
// gives the null string, empty text the empty string, any other text the
// registry's interned string for it.
kstd_result setInternedName(kstd_stringConst* name, const char16_t* text);

}  // namespace vexpers::property
