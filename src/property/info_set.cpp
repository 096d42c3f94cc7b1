// The info set: an ordered list of property descriptors, such as the
// persistent properties an object type reports for itself.
#include "vexpers/propertyinfo.h"

#include "frame/lifecycle.hpp"

namespace {

kstd_result compareDescriptors(const void* first, const void* second, uint32_t* equal) {
    return kstd_persistentPropertyInfo_compareEqual(static_cast<const kstd_persistentPropertyInfo*>(first),
                                                    static_cast<const kstd_persistentPropertyInfo*>(second), equal);
}

}  // namespace

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoSet_construct(kstd_persistentPropertyInfoSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    return kstd_vector_kstd_persistentPropertyInfo_constructEmpty(&set->infos);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoSet_assign(kstd_persistentPropertyInfoSet* set,
                                                                 const kstd_persistentPropertyInfoSet* source) {
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (set == source) return 0;
    return kstd_vector_kstd_persistentPropertyInfo_assign(&set->infos, &source->infos);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoSet_destruct(kstd_persistentPropertyInfoSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    return kstd_vector_kstd_persistentPropertyInfo_destruct(&set->infos);
}

VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoSet_reset(kstd_persistentPropertyInfoSet* set) {
    VEXPERS_REQUIRE(set != nullptr);
    return kstd_vector_kstd_persistentPropertyInfo_clear(&set->infos);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentPropertyInfoSet)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentPropertyInfoSet)

// Descriptors are compared with their global indexes.
VEXPERS_EXPORT kstd_result kstd_persistentPropertyInfoSet_compareEqual(const kstd_persistentPropertyInfoSet* set,
                                                                       const kstd_persistentPropertyInfoSet* other,
                                                                       uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(set != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    return kstd_vector__compareEqual(&set->infos.base, &other->infos.base, equal, compareDescriptors);
}
