// The shared array holder. Its reference count belongs to the shared
// pointers of the variants that hold it; the last release destroys the
// elements through the array type and frees both blocks.
#include "variant/array_holder.hpp"

#include <cstdint>

#include "frame/frame.hpp"

namespace vexpers::variant {
namespace {

struct ArrayHolder {
    kstd_shared header;
    // The array type the elements were made with.
    kstd_persistentType type;
    // Non-zero once elements were allocated for the holder.
    uint32_t hasContents;
    void* data;
    int32_t count;
};

bool isArrayType(const kstd_persistentType* type) {
    uint32_t derivation = 0;
    if (failed(kstd_persistentType_getTypeDerivation(type, &derivation))) return false;
    return derivation == kstd_persistentTypeDerivation_array ||
           derivation == kstd_persistentTypeDerivation_bitfieldArray;
}

// Destroys the contents, the type and the holder's memory; goes on after a
// failure and returns the first.
kstd_result destroyHolder(ArrayHolder* holder) {
    kstd_result result = 0;
    if (holder->hasContents != 0) {
        result = isArrayType(&holder->type) ? kstd_persistentType_deleteArray(&holder->type, &holder->count, &holder->data)
                                            : kstd_persistentType_deleteObject(&holder->type, &holder->data);
        holder->hasContents = 0;
    }
    const kstd_result type = kstd_persistentType_destruct(&holder->type);
    if (!failed(result)) result = type;
    void* memory = holder;
    ksys_memory_free_internal(&memory);
    return result;
}

kstd_result releaseHolder(kstd_shared* shared) { return destroyHolder(static_cast<ArrayHolder*>(shared->whole)); }

constexpr kstd_sharedCustom holderCounting{releaseHolder, kstd_shared_increment_default,
                                           kstd_shared_decrement_default};

// A holder with its elements, not yet shared.
kstd_result makeHolder(const kstd_persistentType* type, int64_t count, ArrayHolder** made) {
    *made = nullptr;
    void* memory = nullptr;
    VEXPERS_TRY(ksys_memory_alloc_internal(sizeof(ArrayHolder), &memory));
    auto* holder = static_cast<ArrayHolder*>(memory);
    if (count < 0 || !isArrayType(type)) {
        ksys_memory_free_internal(&memory);
        return count < 0 ? kstd_persistentResult_invalidCount : kstd_persistentResult_wrongTypeKind;
    }
    holder->hasContents = 0;
    holder->data = nullptr;
    holder->count = 0;
    kstd_result result = kstd_shared_initCustom(&holder->header, holder, &holderCounting);
    if (!failed(result)) result = kstd_persistentType_construct(&holder->type);
    if (failed(result)) {
        ksys_memory_free_internal(&memory);
        return result;
    }
    auto undo = makeGuard([&] { destroyHolder(holder); });
    VEXPERS_TRY(kstd_persistentType_assign(&holder->type, type));
    holder->hasContents = 1;
    if (count > INT32_MAX) return kstd_persistentResult_arraySizeOverflow;
    VEXPERS_TRY(kstd_persistentType_newArray(&holder->type, static_cast<int32_t>(count), &holder->data));
    holder->count = static_cast<int32_t>(count);
    undo.dismiss();
    *made = holder;
    return 0;
}

}  // namespace

kstd_result holdNewArray(kstd_ptrh* owner, const kstd_persistentType* type, int64_t count, void** data) {
    *data = nullptr;
    VEXPERS_TRY(kstd_ptrh_reset(owner));
    ArrayHolder* holder = nullptr;
    VEXPERS_TRY(makeHolder(type, count, &holder));
    const kstd_result result = kstd_ptrh_assignShared(owner, &holder->header);
    if (failed(result)) {
        destroyHolder(holder);
        return result;
    }
    *data = holder->data;
    return 0;
}

}  // namespace vexpers::variant
