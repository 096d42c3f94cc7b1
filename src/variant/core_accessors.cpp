// The core type table's variant writers and readers, expanded from the core
// type list: each forwards to the typed set or get of its row.
#include "variant/core_accessors.hpp"

#include <type_traits>

#include "types/core_type_table.hpp"

namespace vexpers::core {
namespace {

// One value of the row's C type read from memory. A bool is read as its
// byte, so that any non-zero byte (not only 1) counts as true.
template <class T>
T load(const void* value) {
    if constexpr (std::is_same_v<T, bool>)
        return *static_cast<const unsigned char*>(value) != 0;
    else
        return *static_cast<const T*>(value);
}

}  // namespace

#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                                           \
    kstd_result write_##stem(kstd_persistentVariant* variant, const void* value) {                  \
        return kstd_persistentVariant_setValue_##stem(variant, load<ctype>(value));                 \
    }                                                                                                \
    kstd_result read_##stem(const kstd_persistentVariant* variant, void* out) {                     \
        return kstd_persistentVariant_getValue_##stem(variant, static_cast<ctype*>(out));           \
    }
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype)
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING

// The string rows: the unicode string record is read and written whole; the
// string pointers are written from the text they point at and have no reader.
kstd_result write_kstd_unicodeString(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValue_kstd_unicodeString(variant, static_cast<const kstd_unicodeString*>(value));
}
kstd_result read_kstd_unicodeString(const kstd_persistentVariant* variant, void* out) {
    return kstd_persistentVariant_getValue_kstd_unicodeString(variant, static_cast<kstd_unicodeString*>(out));
}
kstd_result write_stringA(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValueStringA(variant, static_cast<const char*>(value));
}
kstd_result write_stringW(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValueStringW(variant, static_cast<const char16_t*>(value));
}
kstd_result write_stringT(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValueStringT(variant, static_cast<const char16_t*>(value));
}
kstd_result write_string16(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValueString16(variant, static_cast<const char16_t*>(value));
}
kstd_result write_string32(kstd_persistentVariant* variant, const void* value) {
    return kstd_persistentVariant_setValueString32(variant, static_cast<const char32_t*>(value));
}
}  // namespace vexpers::core

namespace vexpers {

CoreVariantWriter coreVariantWriter(int32_t id) {
    const auto* row = types::coreTypeRow(id);
    return row != nullptr ? row->writer : nullptr;
}

CoreVariantReader coreVariantReader(int32_t id) {
    const auto* row = types::coreTypeRow(id);
    return row != nullptr ? row->reader : nullptr;
}

}  // namespace vexpers
