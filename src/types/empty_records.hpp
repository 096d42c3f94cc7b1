// The records that hold nothing, as their constructors leave them. They own
// no memory and no references, so they are plain constants: constructing is
// copying one, which the constructors of the variant, the descriptor and the
// property do, and so does the tree for each node it allocates.
#pragma once

#include "types/type_record.hpp"
#include "vexpers/property.h"

namespace vexpers::types {

// The null string: no holder, no characters.
inline constexpr kstd_stringConst nullStringConst{{nullptr, nullptr}, nullptr, 0, 0};
inline constexpr kstd_unicodeStringConst nullUnicodeStringConst{{nullptr, nullptr}, nullptr, 0, 0};
inline constexpr kstd_persistentType emptyType{{nullptr, recordTypename}};

inline constexpr kstd_persistentVariant emptyVariant{
    emptyType, 0, kstd_persistentVariantValue{0}, nullUnicodeStringConst, kstd_ptrh{nullptr, nullptr}, 0, nullptr};

// Data access 2 and no global index.
inline constexpr kstd_persistentPropertyInfo emptyInfo{nullStringConst, emptyType, 2, -1};

inline constexpr kstd_persistentProperty emptyProperty{emptyInfo, emptyVariant};

}  // namespace vexpers::types
