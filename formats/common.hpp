// Pieces every part of the formats library uses: result checks, a growable
// buffer in memory of the memory service, owning wrappers of the library's
// records, reports and UTF-8 <-> UTF-16 conversion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "vexpers/formats/formats.h"
#include "vexpers/vexpers.h"

#define KFMT_TRY(expr)                                  \
    do {                                                \
        const kstd_result kfmtResult_ = (expr);         \
        if (kfmtResult_ < 0) return kfmtResult_;        \
    } while (0)

#define KFMT_REQUIRE(cond)                                         \
    do {                                                           \
        if (!(cond)) {                                             \
            ksys_assert_at(__FILE__, __LINE__);                    \
            return ksys_result_preconditionFailed;                 \
        }                                                          \
    } while (0)

namespace vexpers::formats {

// Runs a function when the scope ends.
template <class F>
class Defer {
public:
    explicit Defer(F f) : f_(std::move(f)) {}
    ~Defer() { f_(); }
    Defer(const Defer&) = delete;
    Defer& operator=(const Defer&) = delete;

private:
    F f_;
};

// An object in memory of the memory service (ksys_result_outOfMemory when
// there is none), and its release.
template <class T, class... Args>
kstd_result createObject(T** object, Args&&... args) {
    *object = nullptr;
    void* memory = nullptr;
    KFMT_TRY(ksys_memory_alloc_internal(sizeof(T), &memory));
    *object = new (memory) T(std::forward<Args>(args)...);
    return 0;
}
template <class T>
void destroyObject(T* object) {
    if (object == nullptr) return;
    object->~T();
    void* memory = object;
    ksys_memory_free_internal(&memory);
}

// A growable array of trivially copyable elements. Growth goes through the
// memory service; a failed growth returns ksys_result_outOfMemory and leaves
// the contents as they were.
template <class T>
class Buffer {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Buffer() = default;
    ~Buffer() { release(); }
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    kstd_result reserve(size_t count) {
        if (count <= capacity_) return 0;
        size_t grown = capacity_ < 8 ? 8 : capacity_ + capacity_ / 2;
        if (grown < count) grown = count;
        if (grown > SIZE_MAX / sizeof(T)) return ksys_result_outOfMemory;
        void* memory = data_;
        KFMT_TRY(ksys_memory_realloc_internal(grown * sizeof(T), &memory));
        data_ = static_cast<T*>(memory);
        capacity_ = grown;
        return 0;
    }
    kstd_result push(const T& value) {
        if (size_ == capacity_) KFMT_TRY(reserve(size_ + 1));
        data_[size_++] = value;
        return 0;
    }
    kstd_result append(const T* values, size_t count) {
        if (count == 0) return 0;
        if (count > SIZE_MAX - size_) return ksys_result_outOfMemory;
        KFMT_TRY(reserve(size_ + count));
        std::memcpy(data_ + size_, values, count * sizeof(T));
        size_ += count;
        return 0;
    }
    kstd_result resize(size_t count) {
        KFMT_TRY(reserve(count));
        if (count > size_) std::memset(static_cast<void*>(data_ + size_), 0, (count - size_) * sizeof(T));
        size_ = count;
        return 0;
    }
    void pop() { --size_; }
    void clear() { size_ = 0; }
    void release() {
        void* memory = data_;
        ksys_memory_free_internal(&memory);
        data_ = nullptr;
        size_ = capacity_ = 0;
    }
    T& back() { return data_[size_ - 1]; }
    T& operator[](size_t index) { return data_[index]; }
    const T& operator[](size_t index) const { return data_[index]; }
    T* data() { return data_; }
    const T* data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

private:
    T* data_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
};

// A library record constructed for the wrapper's lifetime. `status()` is the
// result of its construction.
template <class R, kstd_result (*Construct)(R*), kstd_result (*Destruct)(R*)>
class Owned {
public:
    Owned() { status_ = Construct(&record_); }
    ~Owned() {
        if (status_ >= 0) Destruct(&record_);
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    kstd_result status() const { return status_; }
    R* get() { return &record_; }
    const R* get() const { return &record_; }
    R* operator->() { return &record_; }
    const R* operator->() const { return &record_; }

private:
    R record_{};
    kstd_result status_ = 0;
};

using Section = Owned<kstd_persistentPropertyNodeSection, kstd_persistentPropertyNodeSection_construct,
                      kstd_persistentPropertyNodeSection_destruct>;
using Info = Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct,
                   kstd_persistentPropertyInfo_destruct>;
using Name = Owned<kstd_stringConst, kstd_stringConst_construct, kstd_stringConst_destruct>;
using Variant = Owned<kstd_persistentVariant, kstd_persistentVariant_construct, kstd_persistentVariant_destruct>;
using Type = Owned<kstd_persistentType, kstd_persistentType_construct, kstd_persistentType_destruct>;
using StringConst = Owned<kstd_unicodeStringConst, kstd_unicodeStringConst_construct,
                          kstd_unicodeStringConst_destruct>;
using UnicodeString = Owned<kstd_unicodeString, kstd_unicodeString_construct, kstd_unicodeString_destruct>;
using Processor = Owned<kstd_persistentPropertyProcessor, kstd_persistentPropertyProcessor_construct,
                        kstd_persistentPropertyProcessor_destruct>;

// Fills `report` (may be null) with a code, an offset and a message that
// names the offset; returns the code.
kstd_result fail(kfmt_report* report, kstd_result code, int64_t offset, const char* format, ...)
    __attribute__((format(printf, 4, 5)));
// Clears `report` (may be null).
void succeed(kfmt_report* report);
// A short name of a result code for messages ("truncated", "0x80000000").
const char* codeName(kstd_result code, char (&scratch)[16]);

// UTF-16 to UTF-8. Unpaired surrogates are encoded as three-byte sequences
// when `allowSurrogates` is set (so that the binary format keeps any text),
// and fail with ksys_result_invalidText otherwise.
kstd_result appendUtf8(Buffer<char>& out, const char16_t* text, size_t length, bool allowSurrogates);
// UTF-8 (with three-byte surrogates when `allowSurrogates`) to UTF-16,
// terminated by a 0 unit that `length` does not count. A 0 unit inside the
// text, bad UTF-8 and code points beyond U+10FFFF fail with
// ksys_result_invalidText.
kstd_result decodeUtf8(Buffer<char16_t>& out, const char* text, size_t length, bool allowSurrogates);

// The small caches of descriptors: a key may sit in either of two
// neighbouring slots, and a new key takes the one used less recently, so
// that two keys whose hashes meet do not keep evicting each other. Entries
// have a `lastUse` stamp; *hit says whether `matches` found one.
template <class Entry, size_t N, class Matches>
Entry& cacheSlot(Entry (&entries)[N], uint64_t hash, uint64_t& clock, Matches matches, bool* hit) {
    static_assert(N >= 2 && (N & (N - 1)) == 0, "a power of two");
    const size_t first = static_cast<size_t>((hash * 0x9E3779B97F4A7C15ull) >> 40) & (N - 1);
    Entry* const pair[2] = {&entries[first], &entries[first ^ 1]};
    for (Entry* entry : pair) {
        if (matches(*entry)) {
            entry->lastUse = ++clock;
            *hit = true;
            return *entry;
        }
    }
    Entry& older = pair[0]->lastUse <= pair[1]->lastUse ? *pair[0] : *pair[1];
    older.lastUse = ++clock;
    *hit = false;
    return older;
}

// The text of a name or type name, null for the null string.
struct Text {
    const char16_t* chars = nullptr;
    int32_t length = 0;
};

// Names written for derivations 0..5 in dumps: "", "*", "[]", "&", "{bits}", "{bits}[]".
const char* derivationSuffix(uint32_t derivation);

// The three processor-facing flag groups of a node or section.
struct Kinds {
    uint32_t leafKind = 0;   // 0..4
    uint32_t arrayKind = 0;  // 0..2
    bool isItem = false;
    bool hasId = false;
    bool isDeleted = false;
};
Kinds kindsOf(uint32_t flags);

}  // namespace vexpers::formats
