// The property info table: distinct descriptors stored under dense ids, each
// stamped with its id as global index. Ids are given out ascending from 0 or
// as wanted by the caller, and freed only all at once by reset.
#include "vexpers/propertyinfo.h"

#include <climits>

#include "frame/lifecycle.hpp"
#include "property/info_table_index.hpp"
#include "vectors/vector_view.hpp"

using Table = kstd_persistentPropertyInfoTable;
using Info = kstd_persistentPropertyInfo;
using namespace vexpers::property;

namespace {

constexpr int32_t idLimit = INT32_MAX - 1;

bool parallelVectorsAgree(const Table* table) {
    return vexpers::sizeOf(table->infos) == vexpers::sizeOf(table->used);
}

bool isInUse(const Table* table, int64_t id) {
    return id >= 0 && id < vexpers::sizeOf(table->used) && vexpers::elementsOf<const uint8_t>(table->used)[id] == 1;
}

// Stores `info` under a new id: `wanted` when it is 0 or more, else the next
// automatic id. Any failure leaves the table as it was.
kstd_result insert(Table* table, const Info* info, int32_t wanted, Info* outInfo, int32_t* outId) {
    if (outId != nullptr) *outId = -1;
    const int64_t length = vexpers::sizeOf(table->used);
    if (length != int64_t{table->maxId} + 1) return kstd_persistentResult_internalInconsistency;
    if (wanted >= 0 && isInUse(table, wanted)) return kstd_persistentResult_idInUse;
    if (wanted == INT32_MAX || table->maxId >= idLimit) return kstd_persistentResult_idLimitReached;
    const int32_t id = wanted >= 0 ? wanted : table->maxId + 1;

    // Everything that needs memory comes first, so that a failure can be
    // undone by shrinking back.
    VEXPERS_TRY(reserveIndexForOneMore(table));
    const bool grows = id >= length;
    if (grows) {
        VEXPERS_TRY(kstd_vector8_resizeFill(&table->used, int64_t{id} + 1, 0));
        const kstd_result result = kstd_vector_kstd_persistentPropertyInfo_resize(&table->infos, int64_t{id} + 1);
        if (vexpers::failed(result)) {
            kstd_vector8_resize(&table->used, length);
            return result;
        }
    }
    Info& stored = vexpers::elementsOf<Info>(table->infos)[id];
    const kstd_result result = kstd_persistentPropertyInfo_assign(&stored, info);
    if (vexpers::failed(result)) {
        if (grows) {
            kstd_vector_kstd_persistentPropertyInfo_resize(&table->infos, length);
            kstd_vector8_resize(&table->used, length);
        } else {
            kstd_persistentPropertyInfo_reset(&stored);
        }
        return result;
    }
    stored.globalIndex = id;
    vexpers::elementsOf<uint8_t>(table->used)[id] = 1;
    if (table->maxId < id) table->maxId = id;
    addToIndex(table, id);
    if (outId != nullptr) *outId = id;
    return outInfo != nullptr ? kstd_persistentPropertyInfo_assign(outInfo, &stored) : 0;
}

// Behind the add and find operations: the lowest id holding `info` (global
// index ignored), else, when adding, a new id.
kstd_result findOrAdd(Table* table, const Info* input, bool adding, int32_t wanted, Info* outInfo, int32_t* outId,
                      uint32_t* added) {
    if (outId != nullptr) *outId = -1;
    if (added != nullptr) *added = 0;
    // The out descriptor is reset first; keep the input when it is the same record.
    Info copy;
    VEXPERS_TRY(kstd_persistentPropertyInfo_construct(&copy));
    VEXPERS_DEFER { kstd_persistentPropertyInfo_destruct(&copy); };
    const Info* info = input;
    if (outInfo == input) {
        VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&copy, input));
        info = &copy;
    }
    if (outInfo != nullptr) VEXPERS_TRY(kstd_persistentPropertyInfo_reset(outInfo));
    if (!parallelVectorsAgree(table)) return kstd_persistentResult_internalInconsistency;

    int32_t id = -1;
    VEXPERS_TRY(findInTable(table, info, &id));
    if (id >= 0) {
        if (outId != nullptr) *outId = id;
        return outInfo != nullptr ? kstd_persistentPropertyInfo_assign(outInfo, &vexpers::elementsOf<const Info>(
                                                                                    table->infos)[id])
                                  : 0;
    }
    if (!adding) return 0;
    VEXPERS_TRY(insert(table, info, wanted, outInfo, outId));
    if (added != nullptr) *added = 1;
    return 0;
}

}  // namespace

// ---- Life cycle -------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_construct(Table* table) {
    VEXPERS_REQUIRE(table != nullptr);
    table->maxId = -1;
    table->maxInfoSetId = -1;
    table->index = nullptr;
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_constructEmpty(&table->infos));
    auto infos = vexpers::makeGuard([&] { kstd_vector_kstd_persistentPropertyInfo_destruct(&table->infos); });
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfoSet_constructEmpty(&table->infoSets));
    auto infoSets = vexpers::makeGuard([&] { kstd_vector_kstd_persistentPropertyInfoSet_destruct(&table->infoSets); });
    VEXPERS_TRY(kstd_vector8_construct(&table->used));
    auto used = vexpers::makeGuard([&] { kstd_vector8_destruct(&table->used); });
    VEXPERS_TRY(kstd_vector8_construct(&table->infoSetUsed));
    infos.dismiss();
    infoSets.dismiss();
    used.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_assign(Table* table, const Table* source) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (table == source) return 0;
    // The source's index describes the copies as well; take it before the
    // target changes, so that running out of memory here changes nothing.
    void* index = nullptr;
    VEXPERS_TRY(cloneIndex(source, &index));
    auto dropIndex = vexpers::makeGuard([&] { ksys_memory_free_internal(&index); });
    freeIndex(table);
    table->maxId = -1;
    table->maxInfoSetId = -1;
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_assign(&table->infos, &source->infos));
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfoSet_assign(&table->infoSets, &source->infoSets));
    VEXPERS_TRY(kstd_vector8_assign(&table->used, &source->used));
    VEXPERS_TRY(kstd_vector8_assign(&table->infoSetUsed, &source->infoSetUsed));
    table->maxId = source->maxId;
    table->maxInfoSetId = source->maxInfoSetId;
    table->index = index;
    dropIndex.dismiss();
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_destruct(Table* table) {
    VEXPERS_REQUIRE(table != nullptr);
    freeIndex(table);
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_destruct(&table->infos));
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfoSet_destruct(&table->infoSets));
    VEXPERS_TRY(kstd_vector8_destruct(&table->used));
    return kstd_vector8_destruct(&table->infoSetUsed);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_reset(Table* table) {
    VEXPERS_REQUIRE(table != nullptr);
    freeIndex(table);
    table->maxId = -1;
    table->maxInfoSetId = -1;
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_clear(&table->infos));
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfoSet_clear(&table->infoSets));
    VEXPERS_TRY(kstd_vector8_clear(&table->used));
    return kstd_vector8_clear(&table->infoSetUsed);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyInfoTable)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyInfoTable)

// ---- Adding and finding ---------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_addPropertyInfo(Table* table, const Info* info,
                                                                            Info* outInfo, int32_t* id,
                                                                            uint32_t* added) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return findOrAdd(table, info, true, -1, outInfo, id, added);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_addPropertyInfoWithId(Table* table, const Info* info,
                                                                                  int32_t wantedId, Info* outInfo) {
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return findOrAdd(table, info, true, wantedId, outInfo, nullptr, nullptr);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_findPropertyInfo(const Table* table, const Info* info,
                                                                             Info* outInfo, int32_t* id) {
    VEXPERS_REQUIRE(id != nullptr);
    *id = -1;
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    // Finding never changes the table.
    return findOrAdd(const_cast<Table*>(table), info, false, -1, outInfo, id, nullptr);
}

// ---- Reading ------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_getPropertyInfoById(const Table* table, int32_t id,
                                                                                Info* outInfo) {
    VEXPERS_REQUIRE(outInfo != nullptr);
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_TRY(kstd_persistentPropertyInfo_reset(outInfo));
    if (!isInUse(table, id)) return kstd_persistentResult_propertyInfoIdNotFound;
    if (!parallelVectorsAgree(table)) return kstd_persistentResult_internalInconsistency;
    return kstd_persistentPropertyInfo_assign(outInfo, &vexpers::elementsOf<const Info>(table->infos)[id]);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoTable_getAllPropertyInfos(
    const Table* table, kstd_vector_kstd_persistentPropertyInfo* infos) {
    VEXPERS_REQUIRE(infos != nullptr);
    VEXPERS_REQUIRE(table != nullptr);
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_clear(infos));
    if (!parallelVectorsAgree(table)) return kstd_persistentResult_internalInconsistency;
    const auto used = vexpers::elementsOf<const uint8_t>(table->used);
    const auto stored = vexpers::elementsOf<const Info>(table->infos);
    int64_t count = 0;
    for (uint8_t inUse : used) count += inUse == 1 ? 1 : 0;
    if (count == 0) return 0;
    VEXPERS_TRY(kstd_vector_kstd_persistentPropertyInfo_resize(infos, count));
    const auto out = vexpers::elementsOf<Info>(*infos);
    size_t next = 0;
    for (size_t i = 0; i < used.size(); ++i)
        if (used[i] == 1) VEXPERS_TRY(kstd_persistentPropertyInfo_assign(&out[next++], &stored[i]));
    return 0;
}
