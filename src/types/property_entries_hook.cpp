// Where registration hands a static property list to the property model.
// Until property info entries exist, no entries are made: the registry keeps
// the list of every registered form (staticPropertyListOf) and the types'
// hasPropertyInfoEntries stays 0.
#include "types/registry.hpp"

#include "frame/frame.hpp"

namespace vexpers::types {

kstd_result makePropertyInfoEntries(const kstd_persistentStaticPropertyList* list, bool, int32_t* descriptorSerial,
                                    kstd_persistentPropertyInfoEntryVector** entries) {
    VEXPERS_REQUIRE(list != nullptr);
    VEXPERS_REQUIRE(descriptorSerial != nullptr);
    VEXPERS_REQUIRE(entries != nullptr);
    *entries = nullptr;
    return 0;
}

kstd_result deletePropertyInfoEntries(kstd_persistentPropertyInfoEntryVector** entries) {
    VEXPERS_REQUIRE(entries != nullptr);
    VEXPERS_REQUIRE(*entries == nullptr);
    return 0;
}

}  // namespace vexpers::types
