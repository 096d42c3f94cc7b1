// The property descriptor: an interned name, a type, a data-access tag the
// declaring code chooses and the id under which an info table stores it.
#include "vexpers/propertyinfo.h"

#include "frame/lifecycle.hpp"
#include "property/property_info.hpp"
#include "types/empty_records.hpp"
#include "types/registry.hpp"

namespace vexpers::property {

kstd_result setInternedName(kstd_stringConst* name, const char16_t* text) {
    if (text == nullptr) return kstd_stringConst_resetNullString(name);
    if (text[0] == 0) return kstd_stringConst_resetEmptyString(name);
    return types::internName(text, name);
}

}  // namespace vexpers::property

namespace {

constexpr uint32_t defaultDataAccess = vexpers::types::emptyInfo.dataAccess;

// Data access, then the name: the first two steps of every setter.
kstd_result setAccessAndName(kstd_persistentPropertyInfo* info, const char16_t* name, uint32_t dataAccess) {
    info->dataAccess = dataAccess;
    return vexpers::property::setInternedName(&info->name, name);
}

// The comparison behind both equality tests: integers first, then the name,
// then the type, stopping at the first difference.
kstd_result compareInfos(const kstd_persistentPropertyInfo* info, const kstd_persistentPropertyInfo* other,
                         bool withGlobalIndex, uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    if (info->dataAccess != other->dataAccess) return 0;
    if (withGlobalIndex && info->globalIndex != other->globalIndex) return 0;
    uint32_t same = 0;
    VEXPERS_TRY(kstd_stringConst_compareEqual(&info->name, &other->name, &same));
    if (same == 0) return 0;
    return kstd_persistentType_compareEqual(&info->type, &other->type, equal);
}

}  // namespace

// ---- Life cycle -------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_construct(kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(info != nullptr);
    *info = vexpers::types::emptyInfo;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_assign(kstd_persistentPropertyInfo* info,
                                                              const kstd_persistentPropertyInfo* source) {
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (info == source) return 0;
    info->dataAccess = source->dataAccess;
    info->globalIndex = source->globalIndex;
    VEXPERS_TRY(kstd_stringConst_assign(&info->name, &source->name));
    return kstd_persistentType_assign(&info->type, &source->type);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_destruct(kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(info != nullptr);
    const kstd_result result = kstd_stringConst_destruct(&info->name);
    const kstd_result typeResult = kstd_persistentType_destruct(&info->type);
    return vexpers::failed(result) ? result : typeResult;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_reset(kstd_persistentPropertyInfo* info) {
    VEXPERS_REQUIRE(info != nullptr);
    info->dataAccess = defaultDataAccess;
    info->globalIndex = -1;
    VEXPERS_TRY(kstd_stringConst_resetNullString(&info->name));
    return kstd_persistentType_reset(&info->type);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyInfo)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyInfo)

// ---- Setting ---------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_resetNameTypeAccess(kstd_persistentPropertyInfo* info,
                                                                           const char16_t* name,
                                                                           const kstd_persistentType* type,
                                                                           uint32_t dataAccess) {
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_TRY(setAccessAndName(info, name, dataAccess));
    return kstd_persistentType_assign(&info->type, type);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(kstd_persistentPropertyInfo* info,
                                                                                 const char16_t* name,
                                                                                 int32_t coreTypeId,
                                                                                 uint32_t dataAccess) {
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(setAccessAndName(info, name, dataAccess));
    return kstd_persistentType_resetCoreTypeId(&info->type, coreTypeId);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(
    kstd_persistentPropertyInfo* info, const char16_t* name, const char16_t* typeName, uint32_t typeDerivation,
    uint32_t dataAccess) {
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_TRY(setAccessAndName(info, name, dataAccess));
    return kstd_persistentType_resetTypeNameAndDerivation(&info->type, typeName, typeDerivation);
}

// ---- Comparing ---------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_compareEqual(const kstd_persistentPropertyInfo* info,
                                                                    const kstd_persistentPropertyInfo* other,
                                                                    uint32_t* equal) {
    return compareInfos(info, other, true, equal);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(
    const kstd_persistentPropertyInfo* info, const kstd_persistentPropertyInfo* other, uint32_t* equal) {
    return compareInfos(info, other, false, equal);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_compareEqualPropertyName(
    const kstd_persistentPropertyInfo* info, const kstd_persistentPropertyInfo* other, uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(info != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    return kstd_stringConst_compareEqual(&info->name, &other->name, equal);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_doesNameMatch(const kstd_persistentPropertyInfo* info,
                                                                     const char16_t* text, uint32_t* match) {
    VEXPERS_REQUIRE(match != nullptr);
    *match = 0;
    VEXPERS_REQUIRE(info != nullptr);
    const char16_t* name = nullptr;
    VEXPERS_TRY(kstd_stringConst_getString(&info->name, &name));
    if (text == nullptr || name == nullptr) {
        *match = text == name ? 1 : 0;
        return 0;
    }
    *match = ksys_wcscmp(name, text) == 0 ? 1 : 0;
    return 0;
}

// ---- Reading ---------------------------------------------------------------------------------

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getName(const kstd_persistentPropertyInfo* info,
                                                               const char16_t** name) {
    VEXPERS_REQUIRE(name != nullptr);
    *name = nullptr;
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_stringConst_getString(&info->name, name);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getNameStringConst(const kstd_persistentPropertyInfo* info,
                                                                          kstd_stringConst* name) {
    VEXPERS_REQUIRE(name != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_stringConst_assign(name, &info->name);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getType(const kstd_persistentPropertyInfo* info,
                                                               kstd_persistentType* type) {
    VEXPERS_REQUIRE(type != nullptr);
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentType_assign(type, &info->type);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getTypeName(const kstd_persistentPropertyInfo* info,
                                                                   const char16_t** typeName) {
    VEXPERS_REQUIRE(typeName != nullptr);
    *typeName = nullptr;
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentType_getTypeName(&info->type, typeName);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getTypeDerivation(const kstd_persistentPropertyInfo* info,
                                                                         uint32_t* derivation) {
    VEXPERS_REQUIRE(derivation != nullptr);
    *derivation = kstd_persistentTypeDerivation_value;
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentType_getTypeDerivation(&info->type, derivation);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getTypeCategory(const kstd_persistentPropertyInfo* info,
                                                                       uint32_t* category) {
    VEXPERS_REQUIRE(category != nullptr);
    *category = kstd_persistentTypeCategory_object;
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentType_getTypeCategory(&info->type, category);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getCoreTypeId(const kstd_persistentPropertyInfo* info,
                                                                     int32_t* coreTypeId) {
    VEXPERS_REQUIRE(coreTypeId != nullptr);
    *coreTypeId = kstd_persistentCoreTypeId_notSet;
    VEXPERS_REQUIRE(info != nullptr);
    return kstd_persistentType_getCoreTypeId(&info->type, coreTypeId);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getDataAccess(const kstd_persistentPropertyInfo* info,
                                                                     uint32_t* dataAccess) {
    VEXPERS_REQUIRE(dataAccess != nullptr);
    *dataAccess = defaultDataAccess;
    VEXPERS_REQUIRE(info != nullptr);
    *dataAccess = info->dataAccess;
    return 0;
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfo_getGlobalIndex(const kstd_persistentPropertyInfo* info,
                                                                      int32_t* globalIndex) {
    VEXPERS_REQUIRE(globalIndex != nullptr);
    *globalIndex = -1;
    VEXPERS_REQUIRE(info != nullptr);
    *globalIndex = info->globalIndex;
    return 0;
}
