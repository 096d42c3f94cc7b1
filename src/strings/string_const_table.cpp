// The interning table: each distinct text stored once as a constant string
// under a dense id, found by hash within a fixed number of bins or by id.
#include "vexpers/stringconst.h"
#include "vexpers/text.h"

#include "frame/lifecycle.hpp"
#include "strings/text_hash.hpp"
#include "vectors/vector_view.hpp"

using vexpers::elementsOf;
using vexpers::sizeOf;

namespace {

int64_t numBins(const kstd_stringConstTable& table) { return sizeOf(table.bins); }

int64_t binOf(const kstd_stringConstTable& table, uint32_t hash) {
    return table.binMask != 0 ? hash & table.binMask : hash % static_cast<uint32_t>(numBins(table));
}

// Stores a new entry for `text` (or `source`) in bin `bin` under the wanted
// id, or the next id when `wantedId` is negative. A failure part-way restores
// the table as it was, so a failed add leaves no half-made entry behind.
kstd_result insertNew(kstd_stringConstTable* table, int64_t bin, uint32_t hash, const char16_t* text,
                      const kstd_stringConst* source, int32_t wantedId, kstd_stringConst* string, int32_t* id) {
    const int64_t size = sizeOf(table->used);
    VEXPERS_REQUIRE(size == int64_t(table->maxId) + 1);
    if (wantedId >= 0 && wantedId < size && elementsOf<uint8_t>(table->used)[wantedId] == 1) return ksys_result_failure;
    if (wantedId < 0 && table->maxId == INT32_MAX) return ksys_result_invalidSize;
    const int32_t newId = wantedId >= 0 ? wantedId : table->maxId + 1;
    const int32_t oldMaxId = table->maxId;

    kstd_vector_kstd_stringConst* binStrings = nullptr;
    kstd_vectorIntPtrs* ids = nullptr;
    kstd_vectorIntPtrs* hashes = nullptr;
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_getElement(&table->bins, bin, &binStrings));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_getElement(&table->binIds, bin, &ids));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_getElement(&table->binHashes, bin, &hashes));
    const int64_t binSize = sizeOf(*binStrings);
    auto undo = vexpers::makeGuard([&] {
        kstd_vector_kstd_stringConst_resize(binStrings, binSize);
        kstd_vectorIntPtrs_resize(ids, binSize);
        kstd_vectorIntPtrs_resize(hashes, binSize);
        if (newId < size) {
            elementsOf<uint8_t>(table->used)[newId] = 0;
            kstd_stringConst_reset(&elementsOf<kstd_stringConst>(table->strings)[newId]);
        }
        kstd_vector8_resize(&table->used, size);
        kstd_vector_kstd_stringConst_resize(&table->strings, size);
        table->maxId = oldMaxId;
    });
    if (newId >= size) {
        VEXPERS_TRY(kstd_vector8_resizeFill(&table->used, int64_t(newId) + 1, 0));
        VEXPERS_TRY(kstd_vector_kstd_stringConst_resize(&table->strings, int64_t(newId) + 1));
    }
    if (table->maxId < newId) table->maxId = newId;
    elementsOf<uint8_t>(table->used)[newId] = 1;
    kstd_stringConst* stored = &elementsOf<kstd_stringConst>(table->strings)[newId];
    VEXPERS_TRY(source != nullptr ? kstd_stringConst_assign(stored, source) : kstd_stringConst_assignString(stored, text));
    VEXPERS_TRY(kstd_vector_kstd_stringConst_pushBack(binStrings, stored));
    VEXPERS_TRY(kstd_vectorIntPtrs_pushBack(ids, newId));
    VEXPERS_TRY(kstd_vectorIntPtrs_pushBack(hashes, hash));
    undo.dismiss();
    if (string != nullptr) VEXPERS_TRY(kstd_stringConst_assign(string, stored));
    if (id != nullptr) *id = newId;
    return 0;
}

// Behind every add and find: the first equal text of its bin, or a new entry.
kstd_result findOrAdd(kstd_stringConstTable* table, const char16_t* text, const kstd_stringConst* source, bool add,
                      int32_t wantedId, kstd_stringConst* string, int32_t* id, uint32_t* added) {
    VEXPERS_REQUIRE(table != nullptr);
    if (string != nullptr) VEXPERS_TRY(kstd_stringConst_resetNullString(string));
    if (id != nullptr) *id = -1;
    if (added != nullptr) *added = 0;
    if (source != nullptr) text = source->chars;
    VEXPERS_REQUIRE(numBins(*table) >= 1);
    const uint32_t hash = vexpers::hashText(text);
    const int64_t bin = binOf(*table, hash);
    const auto strings = elementsOf<kstd_stringConst>(elementsOf<kstd_vector_kstd_stringConst>(table->bins)[bin]);
    const auto hashes = elementsOf<intptr_t>(elementsOf<kstd_vectorIntPtrs>(table->binHashes)[bin]);
    for (size_t position = 0; position < strings.size(); ++position) {
        if (static_cast<uint32_t>(hashes[position]) != hash) continue;
        uint32_t equal = 0;
        VEXPERS_TRY(kstd_stringConst_compareEqualString(&strings[position], text, &equal));
        if (equal) {
            if (string != nullptr) VEXPERS_TRY(kstd_stringConst_assign(string, &strings[position]));
            if (id != nullptr)
                *id = static_cast<int32_t>(elementsOf<intptr_t>(elementsOf<kstd_vectorIntPtrs>(table->binIds)[bin])[position]);
            return 0;
        }
    }
    if (!add) return 0;
    VEXPERS_TRY(insertNew(table, bin, hash, text, source, wantedId, string, id));
    if (added != nullptr) *added = 1;
    return 0;
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_stringConstTable_construct(kstd_stringConstTable* table) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_constructEmpty(&table->bins));
    auto undoBins = vexpers::makeGuard([&] { kstd_vector_vector_kstd_stringConst_destruct(&table->bins); });
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_constructEmpty(&table->binIds));
    auto undoIds = vexpers::makeGuard([&] { kstd_vector_vectorIntPtrs_destruct(&table->binIds); });
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_constructEmpty(&table->binHashes));
    auto undoHashes = vexpers::makeGuard([&] { kstd_vector_vectorIntPtrs_destruct(&table->binHashes); });
    VEXPERS_TRY(kstd_vector8_constructEmpty(&table->used));
    auto undoUsed = vexpers::makeGuard([&] { kstd_vector8_destruct(&table->used); });
    VEXPERS_TRY(kstd_vector_kstd_stringConst_constructEmpty(&table->strings));
    undoBins.dismiss();
    undoIds.dismiss();
    undoHashes.dismiss();
    undoUsed.dismiss();
    table->maxId = -1;
    table->binMask = 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_assign(kstd_stringConstTable* table,
                                                        const kstd_stringConstTable* source) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (table == source) return 0;
    table->maxId = -1;
    table->binMask = 0;
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_assign(&table->bins, &source->bins));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_assign(&table->binIds, &source->binIds));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_assign(&table->binHashes, &source->binHashes));
    VEXPERS_TRY(kstd_vector8_assign(&table->used, &source->used));
    VEXPERS_TRY(kstd_vector_kstd_stringConst_assign(&table->strings, &source->strings));
    table->binMask = source->binMask;
    table->maxId = source->maxId;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_destruct(kstd_stringConstTable* table) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_destruct(&table->bins));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_destruct(&table->binIds));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_destruct(&table->binHashes));
    VEXPERS_TRY(kstd_vector8_destruct(&table->used));
    return kstd_vector_kstd_stringConst_destruct(&table->strings);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_stringConstTable)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_stringConstTable)

VEXPERS_EXPORT kstd_result kstd_stringConstTable_reset(kstd_stringConstTable* table) {
    VEXPERS_REQUIRE(table != nullptr);
    table->maxId = -1;
    table->binMask = 0;
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_clear(&table->bins));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_clear(&table->binIds));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_clear(&table->binHashes));
    VEXPERS_TRY(kstd_vector8_clear(&table->used));
    return kstd_vector_kstd_stringConst_clear(&table->strings);
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_resetNumBins(kstd_stringConstTable* table, int32_t numBins) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(numBins >= 1);
    VEXPERS_TRY(kstd_stringConstTable_reset(table));
    VEXPERS_TRY(kstd_vector_vector_kstd_stringConst_resize(&table->bins, numBins));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_resize(&table->binIds, numBins));
    VEXPERS_TRY(kstd_vector_vectorIntPtrs_resize(&table->binHashes, numBins));
    int64_t power = 1;
    for (int k = 0; k < 31 && power < numBins; ++k) power *= 2;
    table->binMask = power == numBins ? static_cast<uint32_t>(numBins - 1) : 0;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_addString(kstd_stringConstTable* table, const char16_t* text,
                                                           kstd_stringConst* string, int32_t* id, uint32_t* added) {
    return findOrAdd(table, text, nullptr, true, -1, string, id, added);
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_addStringConst(kstd_stringConstTable* table,
                                                                const kstd_stringConst* source,
                                                                kstd_stringConst* string, int32_t* id,
                                                                uint32_t* added) {
    VEXPERS_REQUIRE(source != nullptr);
    return findOrAdd(table, nullptr, source, true, -1, string, id, added);
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_addStringWithId(kstd_stringConstTable* table, const char16_t* text,
                                                                 int32_t wantedId, kstd_stringConst* string) {
    return findOrAdd(table, text, nullptr, true, wantedId, string, nullptr, nullptr);
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_findString(kstd_stringConstTable* table, const char16_t* text,
                                                            kstd_stringConst* string, int32_t* id) {
    VEXPERS_REQUIRE(id != nullptr);
    return findOrAdd(table, text, nullptr, false, -1, string, id, nullptr);
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_getStringById(kstd_stringConstTable* table, int32_t id,
                                                               kstd_stringConst* string, const char16_t** text) {
    VEXPERS_REQUIRE(table != nullptr);
    if (string != nullptr) VEXPERS_TRY(kstd_stringConst_resetNullString(string));
    if (text != nullptr) *text = nullptr;
    if (id < 0 || id >= sizeOf(table->used) || elementsOf<uint8_t>(table->used)[id] != 1) return ksys_result_failure;
    const kstd_stringConst& stored = elementsOf<kstd_stringConst>(table->strings)[id];
    if (string != nullptr) VEXPERS_TRY(kstd_stringConst_assign(string, &stored));
    if (text != nullptr) *text = stored.chars;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_stringConstTable_getAllStrings(kstd_stringConstTable* table,
                                                               kstd_vector_kstd_stringConst* strings) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(strings != nullptr);
    VEXPERS_TRY(kstd_vector_kstd_stringConst_clear(strings));
    int64_t total = 0;
    for (const auto& bin : elementsOf<kstd_vector_kstd_stringConst>(table->bins)) total += sizeOf(bin);
    if (total == 0) return 0;
    VEXPERS_TRY(kstd_vector_kstd_stringConst_reserve(strings, total));
    for (const auto& bin : elementsOf<kstd_vector_kstd_stringConst>(table->bins))
        VEXPERS_TRY(kstd_vector_kstd_stringConst_append(strings, &bin));
    return 0;
}
