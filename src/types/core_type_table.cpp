// The core type table, expanded row by row from generated/core_types.def.
#include "types/core_type_table.hpp"

#include "vexpers/text.h"

#include "frame/frame.hpp"
#include "variant/core_accessors.hpp"

namespace vexpers::types {
namespace {

// Slot 0 of a core type's operation table: the size of its C type.
template <class T>
kstd_result sizeOf(uint32_t* size) {
    VEXPERS_REQUIRE(size != nullptr);
    *size = static_cast<uint32_t>(sizeof(T));
    return 0;
}

template <class T>
constexpr kstd_persistentObjectVtable sizeOnlyTable{sizeOf<T>, nullptr, nullptr, nullptr, nullptr,
                                                    nullptr,   nullptr, nullptr, nullptr};

// The unicode string is a record with its own life cycle; the table adapts
// its functions to untyped objects.
using String = kstd_unicodeString;
kstd_result stringConstruct(void* object) { return kstd_unicodeString_construct(static_cast<String*>(object)); }
kstd_result stringConstructCopy(void* object, const void* source) {
    return kstd_unicodeString_constructCopy(static_cast<String*>(object), static_cast<const String*>(source));
}
kstd_result stringAssign(void* object, const void* source) {
    return kstd_unicodeString_assign(static_cast<String*>(object), static_cast<const String*>(source));
}
kstd_result stringDestruct(void* object) { return kstd_unicodeString_destruct(static_cast<String*>(object)); }
kstd_result stringReset(void* object) { return kstd_unicodeString_reset(static_cast<String*>(object)); }
kstd_result stringNew(void** object) { return kstd_unicodeString_new(reinterpret_cast<String**>(object)); }
kstd_result stringNewClone(void** object, const void* source) {
    return kstd_unicodeString_newClone(reinterpret_cast<String**>(object), static_cast<const String*>(source));
}
kstd_result stringDelete(void** object) { return kstd_unicodeString_delete(reinterpret_cast<String**>(object)); }

constexpr kstd_persistentObjectVtable unicodeStringTable{sizeOf<String>, stringConstruct, stringConstructCopy,
                                                         stringAssign,   stringDestruct,  stringReset,
                                                         stringNew,      stringNewClone,  stringDelete};

template <class T>
constexpr const kstd_persistentObjectVtable* tableOf() {
    return &sizeOnlyTable<T>;
}
template <>
constexpr const kstd_persistentObjectVtable* tableOf<String>() {
    return &unicodeStringTable;
}

}  // namespace

// Writers and readers are the variant's typed setters and getters of the row.
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype) {id, category, name, tableOf<ctype>(), core::write_##stem, core::read_##stem},
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category) {id, category, name, nullptr, nullptr, nullptr},
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype) \
    {id, kstd_persistentTypeCategory_string, name, tableOf<ctype>(), core::write_##stem, core::read_##stem},

const CoreTypeRow coreTypeTable[coreTypeCount] = {
#include "generated/core_types.def"
};

#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING

}  // namespace vexpers::types
