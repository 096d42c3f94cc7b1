// The built-in types' answers from their property info entries.
#include "types/builtin_types.hpp"

#include "frame/frame.hpp"

namespace vexpers::types {

kstd_result propertyFromEntries(const kstd_persistentType*, const void*, const char16_t*, int32_t, int32_t,
                                kstd_persistentProperty*) {
    return kstd_persistentResult_operationMissing;
}

kstd_result infoSetFromEntries(const kstd_persistentType*, kstd_persistentPropertyInfoSet*) {
    return kstd_persistentResult_operationMissing;
}

}  // namespace vexpers::types
