// RapidJSON as the JSON format uses it: 64-bit sizes, stacks in memory of the
// memory service, and the keys and names of the "vexpers-tree" document.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
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
// RapidJSON cannot take a failed allocation of its stacks: when the memory
// service refuses one, the block comes from the C heap instead and the
// allocator remembers the failure, which the reader and the writer then
// return as ksys_result_outOfMemory. A header before each block says where
// it came from.
class StackAllocator {
public:
    static const bool kNeedFree = true;
    void* Malloc(size_t size) { return size == 0 ? nullptr : Realloc(nullptr, 0, size); }
    void* Realloc(void* original, size_t originalSize, size_t newSize) {
        if (newSize == 0) {
            Free(original);
            return nullptr;
        }
        if (newSize > SIZE_MAX - header) return nullptr;
        void* block = original != nullptr ? static_cast<char*>(original) - header : nullptr;
        if (block != nullptr && *static_cast<uint32_t*>(block) == heapTag) {
            void* memory = std::realloc(block, newSize + header);
            return memory != nullptr ? tag(memory, heapTag) : nullptr;
        }
        void* memory = block;
        if (ksys_memory_realloc_internal(newSize + header, &memory) >= 0) return tag(memory, serviceTag);
        failed_ = true;
        // The service refused: move to the C heap (the old block stays valid).
        void* moved = std::malloc(newSize + header);
        if (moved == nullptr) return nullptr;
        if (original != nullptr) {
            std::memcpy(static_cast<char*>(moved) + header, original, originalSize < newSize ? originalSize : newSize);
            ksys_memory_free_internal(&block);
        }
        return tag(moved, heapTag);
    }
    static void Free(void* pointer) {
        if (pointer == nullptr) return;
        void* block = static_cast<char*>(pointer) - header;
        if (*static_cast<uint32_t*>(block) == heapTag)
            std::free(block);
        else
            ksys_memory_free_internal(&block);
    }
    bool failed() const { return failed_; }

private:
    static constexpr size_t header = 16;
    static constexpr uint32_t serviceTag = 0x56585331u;
    static constexpr uint32_t heapTag = 0x56584831u;
    static void* tag(void* block, uint32_t origin) {
        *static_cast<uint32_t*>(block) = origin;
        return static_cast<char*>(block) + header;
    }
    bool failed_ = false;
};

using Utf16 = rapidjson::UTF16<char16_t>;
using Utf8 = rapidjson::UTF8<char>;

inline constexpr char16_t formatName[] = u"vexpers-tree";

}  // namespace vexpers::formats::json
