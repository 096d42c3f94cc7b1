// RapidJSON as the JSON format uses it: 64-bit sizes, stacks in memory of the
// memory service, and the keys and names of the "vexpers-tree" document.
#pragma once

#include <string>

#include "common.hpp"

// RapidJSON checks its own invariants with assert(), which would stop the
// host process in a build without NDEBUG; one fires on input (an escaped low
// surrogate on its own, which the reader then rejects as malformed). Its
// checks stay out of every build, as in release builds.
#define RAPIDJSON_ASSERT(x) static_cast<void>(0)
#define RAPIDJSON_NO_SIZETYPEDEFINE
namespace rapidjson {
typedef ::std::size_t SizeType;
}
#include <rapidjson/encodings.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/writer.h>

namespace vexpers::formats::json {

// RapidJSON's stacks (a few bytes per nesting level and the longest string
// being parsed) through the memory service, so that leak checks see them.
// RapidJSON does not survive a failed allocation of its own stacks; those
// grow only with the input's nesting and strings.
class StackAllocator {
public:
    static const bool kNeedFree = true;
    void* Malloc(size_t size) {
        void* memory = nullptr;
        if (size != 0) ksys_memory_alloc_internal(size, &memory);
        return memory;
    }
    void* Realloc(void* original, size_t, size_t newSize) {
        void* memory = original;
        if (newSize == 0) {
            ksys_memory_free_internal(&memory);
            return nullptr;
        }
        // A failed growth must not hand back the old, smaller block.
        if (ksys_memory_realloc_internal(newSize, &memory) < 0) return nullptr;
        return memory;
    }
    static void Free(void* pointer) { ksys_memory_free_internal(&pointer); }
};

using Utf16 = rapidjson::UTF16<char16_t>;
using Utf8 = rapidjson::UTF8<char>;

inline constexpr char16_t formatName[] = u"vexpers-tree";

}  // namespace vexpers::formats::json
