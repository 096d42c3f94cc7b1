// The type schema: an info set with a global index of its own.
#include "vexpers/propertyinfo.h"

#include "frame/lifecycle.hpp"

VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_construct(kstd_persistentTypeSchema* schema) {
    VEXPERS_REQUIRE(schema != nullptr);
    schema->globalIndex = -1;
    return kstd_persistentPropertyInfoSet_construct(&schema->infoSet);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_assign(kstd_persistentTypeSchema* schema,
                                                            const kstd_persistentTypeSchema* source) {
    VEXPERS_REQUIRE(schema != nullptr);
    VEXPERS_REQUIRE(source != nullptr);
    if (schema == source) return 0;
    schema->globalIndex = source->globalIndex;
    return kstd_persistentPropertyInfoSet_assign(&schema->infoSet, &source->infoSet);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_destruct(kstd_persistentTypeSchema* schema) {
    VEXPERS_REQUIRE(schema != nullptr);
    return kstd_persistentPropertyInfoSet_destruct(&schema->infoSet);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_reset(kstd_persistentTypeSchema* schema) {
    VEXPERS_REQUIRE(schema != nullptr);
    schema->globalIndex = -1;
    return kstd_persistentPropertyInfoSet_reset(&schema->infoSet);
}

VEXPERS_DEFINE_DERIVED_LIFECYCLE(kstd_persistentTypeSchema)
VEXPERS_DEFINE_TYPECHECK_HOOKS(kstd_persistentTypeSchema)

// Schemas with different indexes are unequal without looking at their sets.
VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_compareEqual(const kstd_persistentTypeSchema* schema,
                                                                  const kstd_persistentTypeSchema* other,
                                                                  uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(schema != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    if (schema->globalIndex != other->globalIndex) return 0;
    return kstd_persistentPropertyInfoSet_compareEqual(&schema->infoSet, &other->infoSet, equal);
}

VEXPERS_EXPORT kstd_result kstd_persistentTypeSchema_compareEqualIgnoreGlobalIndex(
    const kstd_persistentTypeSchema* schema, const kstd_persistentTypeSchema* other, uint32_t* equal) {
    VEXPERS_REQUIRE(equal != nullptr);
    *equal = 0;
    VEXPERS_REQUIRE(schema != nullptr);
    VEXPERS_REQUIRE(other != nullptr);
    return kstd_persistentPropertyInfoSet_compareEqual(&schema->infoSet, &other->infoSet, equal);
}
