// Helpers shared by the test programs: a handler that records precondition
// faults instead of printing them, a check that a scope leaks no block of the
// memory service, allocation-failure sweeps, owning wrappers of the library's
// records and a reader of output parameters.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

#include "client_object.hpp"
#include "vexpers/vexpers.h"

namespace vexpers::test {

// Installs a recording assertion handler for its lifetime.
class AssertRecorder {
public:
    AssertRecorder();
    ~AssertRecorder();
    AssertRecorder(const AssertRecorder&) = delete;
    AssertRecorder& operator=(const AssertRecorder&) = delete;

    int count() const { return count_; }
    int32_t lastLine() const { return lastLine_; }

private:
    static void record(int32_t line, const char* file, void* context);
    ksys_assertHandler previous_ = nullptr;
    void* previousContext_ = nullptr;
    int count_ = 0;
    int32_t lastLine_ = 0;
};

int64_t liveBlocks();

// UTF-16 text as 8-bit text for readable failures ('?' beyond ASCII).
inline std::string ascii(const char16_t* text) {
    if (text == nullptr) return "(null)";
    std::string out;
    for (; *text != 0; ++text) out += *text < 0x80 ? static_cast<char>(*text) : '?';
    return out;
}

// Frees a block the library allocated for the caller (a clone of a text).
inline void freeBlock(void* block) { ksys_memory_free_internal(&block); }

// Records the live block count at construction; `leaked()` gives the blocks
// allocated since then and not freed.
class LiveBlockCheck {
public:
    LiveBlockCheck() : start_(liveBlocks()) {}
    int64_t leaked() const { return liveBlocks() - start_; }

private:
    int64_t start_;
};

// Expects, when it goes, that no block allocated since it was made is left;
// declare it before the records whose memory it checks.
struct NoLeaks : LiveBlockCheck {
    NoLeaks(const char* file = __builtin_FILE(), int line = __builtin_LINE()) : file_(file), line_(line) {}
    ~NoLeaks() {
        if (leaked() != 0) ADD_FAILURE_AT(file_, line_) << leaked() << " blocks leaked in this scope";
    }
    const char* file_;
    int line_;
};

// Allocation-failure sweep. Runs `scenario` once cleanly and counts its
// allocations A; then, for k = 1..A (and on while the k-th allocation is
// still reached: growing reallocations count as well), runs it with the k-th
// allocation failing once, and again with every allocation from the k-th on
// failing. A run that reached the injected failure must return
// ksys_result_outOfMemory; after every run (and `cleanup`, which may be
// empty and releases what a run built) the live block count must be back
// where it started, and a clean rerun must succeed. Returns the number of
// allocation sites reached (the highest k whose failure was reached).
// A scenario that registers types or interns names keeps what it made when
// it succeeds: with SweepKeeps::whatSucceeds, every successful run must keep
// as many blocks as the clean run did, every failed run none.
enum class SweepKeeps { nothing, whatSucceeds };
int64_t sweepAllocationFailures(const std::function<kstd_result()>& scenario,
                                const std::function<void()>& cleanup = {}, SweepKeeps keeps = SweepKeeps::nothing);

// Short names of the result codes the tests compare most, after the last
// hexadecimal digits of their values (0x800040C0 is C0).
inline constexpr kstd_result C0 = kstd_persistentResult_noObjectVtable;
inline constexpr kstd_result C1 = kstd_persistentResult_operationMissing;
inline constexpr kstd_result C3 = kstd_persistentResult_invalidPropertyName;
inline constexpr kstd_result C5 = kstd_persistentResult_invalidCoreTypeId;
inline constexpr kstd_result C6 = kstd_persistentResult_invalidTypeName;
inline constexpr kstd_result C8 = kstd_persistentResult_typeNotRegistered;
inline constexpr kstd_result C9 = kstd_persistentResult_propertyNotFound;
inline constexpr kstd_result CA = kstd_persistentResult_notSupported;
inline constexpr kstd_result CB = kstd_persistentResult_invalidTypeCategory;
inline constexpr kstd_result CC = kstd_persistentResult_nullArgument;
inline constexpr kstd_result CD = kstd_persistentResult_typeMismatch;
inline constexpr kstd_result D0 = kstd_persistentResult_valueOutOfRange;
inline constexpr kstd_result D6 = kstd_persistentResult_wrongTypeKind;
inline constexpr kstd_result D7 = kstd_persistentResult_invalidCount;
inline constexpr kstd_result E66 = kstd_persistentResult_floatRangeExceeded;
inline constexpr kstd_result Empty = kstd_persistentResult_typeEmpty;
inline constexpr kstd_result Fault = ksys_result_preconditionFailed;
inline constexpr kstd_result OOM = ksys_result_outOfMemory;

// A record of the library that constructs itself and destructs itself at the
// end of its scope, and stands for its address where a function takes one.
template <class T, kstd_result (*Construct)(T*), kstd_result (*Destruct)(T*)>
struct Owned {
    T v;
    Owned() { EXPECT_EQ(Construct(&v), 0); }
    ~Owned() { EXPECT_EQ(Destruct(&v), 0); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    operator T*() { return &v; }
    operator const T*() const { return &v; }
    T* operator->() { return &v; }
    const T* operator->() const { return &v; }
};

using Type = Owned<kstd_persistentType, kstd_persistentType_construct, kstd_persistentType_destruct>;
using Variant = Owned<kstd_persistentVariant, kstd_persistentVariant_construct, kstd_persistentVariant_destruct>;
using Property = Owned<kstd_persistentProperty, kstd_persistentProperty_construct, kstd_persistentProperty_destruct>;
using Bag = Owned<kstd_persistentPropertyBag, kstd_persistentPropertyBag_construct,
                  kstd_persistentPropertyBag_destruct>;
using Text = Owned<kstd_unicodeString, kstd_unicodeString_construct, kstd_unicodeString_destruct>;
using SharedText = Owned<kstd_unicodeStringConst, kstd_unicodeStringConst_construct, kstd_unicodeStringConst_destruct>;
using SharedPointer = Owned<kstd_ptrh, kstd_ptrh_constructEmpty, kstd_ptrh_destruct>;

// Operation tables that registration accepts: slots 5 to 8 (reset, new,
// clone, delete) are the ones it requires; the others stay empty.
inline kstd_result noOp(void*) { return 0; }
inline kstd_result noOpObject(void**) { return 0; }  // new and delete
inline kstd_result noOpClone(void**, const void*) { return 0; }
template <class T>
kstd_result sizeOf(uint32_t* size) {
    *size = sizeof(T);
    return 0;
}
template <class T>
inline constexpr kstd_persistentObjectVtable objectTableOf{sizeOf<T>, nullptr, nullptr, nullptr, nullptr,
                                                           noOp,      noOpObject, noOpClone, noOpObject};
inline constexpr const kstd_persistentObjectVtable& objectTable = objectTableOf<int32_t>;
inline constexpr kstd_persistentValueAccessVtable valueAccessTable{};
inline constexpr kstd_persistentValueAccessVtable bitfieldValueAccessTable{};

// The operations of a container `C` that holds up to `Capacity` items of
// type `I` in `items`, `count` of them in use.
template <class C, class I, int64_t Capacity>
struct ListOperations {
    static kstd_result resize(void* container, int64_t count) {
        if (count < 0 || count > Capacity) return kstd_persistentResult_invalidCount;
        static_cast<C*>(container)->count = static_cast<intptr_t>(count);
        return 0;
    }
    static kstd_result size(const void* container, intptr_t* count) {
        *count = static_cast<const C*>(container)->count;
        return 0;
    }
    static kstd_result begin(void* container, void** first) {
        *first = static_cast<C*>(container)->items;
        return 0;
    }
    static kstd_result layout(uint32_t* isContiguous, uint32_t* stride) {
        *isContiguous = 1;
        *stride = sizeof(I);
        return 0;
    }
    static kstd_result next(void*, void** element) {
        *element = static_cast<I*>(*element) + 1;
        return 0;
    }
    static constexpr kstd_persistentContainerVtable table{resize, size, begin, layout, next, nullptr};
};

// Accessor words of a declared property: `word` makes one of a function,
// `accessors` puts each at its index.
using vexpers::client::accessors;
using vexpers::client::word;

// The record a type descriptor shares, or null.
inline const kstd_persistentType_* recordOf(const kstd_persistentType* type) {
    const void* whole = nullptr;
    kstd_ptrhConst_getWholeShared(&type->record, &whole);
    return static_cast<const kstd_persistentType_*>(whole);
}
inline const kstd_persistentType_* recordOf(const kstd_persistentType& type) { return recordOf(&type); }

// The name of a type, or "(null)".
inline std::u16string nameOf(const kstd_persistentType* type) {
    const char16_t* name = nullptr;
    kstd_persistentType_getTypeName(type, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}
inline std::u16string nameOf(const kstd_persistentType& type) { return nameOf(&type); }

// The code a check expects, with the place of the check, so that a helper
// reports a wrong code at its caller's line.
struct Expect {
    Expect(kstd_result code, const char* file = __builtin_FILE(), int line = __builtin_LINE())
        : code(code), file(file), line(line) {}
    kstd_result code;
    const char* file;
    int line;
};

// Calls `function(arguments..., &out)`, checks the code it returns and gives
// back what `out` then holds. `out` starts at a value no getter gives (77, or
// the address 0x4D), so that an output a failure left alone shows.
template <class T, class F, class... A>
T outOf(Expect expected, F function, A&&... arguments) {
    T out;
    if constexpr (std::is_pointer_v<T>)
        out = reinterpret_cast<T>(uintptr_t{0x4D});
    else
        out = static_cast<T>(77);
    const kstd_result result = function(std::forward<A>(arguments)..., &out);
    if (result != expected.code)
        ADD_FAILURE_AT(expected.file, expected.line)
            << std::hex << "returned 0x" << uint32_t(result) << ", expected 0x" << uint32_t(expected.code);
    return out;
}

}  // namespace vexpers::test
