// The core type table's variant writers and readers, expanded from the core
// type list: each forwards to the typed set or get of its row.
#include "variant/core_accessors.hpp"

#include <array>

namespace vexpers {
namespace {

#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype)                                           \
    kstd_result write_##stem(kstd_persistentVariant* variant, const void* value) {                  \
        return kstd_persistentVariant_setValue_##stem(variant, *static_cast<const ctype*>(value));  \
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
constexpr CoreVariantReader read_stringA = nullptr;
constexpr CoreVariantReader read_stringW = nullptr;
constexpr CoreVariantReader read_stringT = nullptr;
constexpr CoreVariantReader read_string16 = nullptr;
constexpr CoreVariantReader read_string32 = nullptr;

struct Row {
    CoreVariantWriter writer = nullptr;
    CoreVariantReader reader = nullptr;
};

constexpr std::array<Row, kstd_persistentCoreTypeId_count> rows = [] {
    std::array<Row, kstd_persistentCoreTypeId_count> table{};
#define VEXPERS_CORE_TYPE(id, stem, name, category, ctype) table[id] = {write_##stem, read_##stem};
#define VEXPERS_CORE_TYPE_RESERVED(id, stem, name, category)
#define VEXPERS_CORE_TYPE_STRING(id, stem, name, ctype) table[id] = {write_##stem, read_##stem};
#include "generated/core_types.def"
#undef VEXPERS_CORE_TYPE
#undef VEXPERS_CORE_TYPE_RESERVED
#undef VEXPERS_CORE_TYPE_STRING
    return table;
}();

}  // namespace

CoreVariantWriter coreVariantWriter(int32_t id) {
    return id >= 0 && id < kstd_persistentCoreTypeId_count ? rows[id].writer : nullptr;
}

CoreVariantReader coreVariantReader(int32_t id) {
    return id >= 0 && id < kstd_persistentCoreTypeId_count ? rows[id].reader : nullptr;
}

}  // namespace vexpers
