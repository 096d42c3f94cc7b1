// Helpers of the property tests: descriptors that construct and destruct
// themselves and short readers. The registered test types whose declared
// properties use every kind of accessor are the shared test module's.
#pragma once

#include <string>
#include <vector>

#include "support/test_module.hpp"
#include "types/type_test_support.hpp"

namespace vexpers::test {

// ---- Descriptors, properties and bags ---------------------------------------------------

using InfoRecord =
    Owned<kstd_persistentPropertyInfo, kstd_persistentPropertyInfo_construct, kstd_persistentPropertyInfo_destruct>;
struct Info : InfoRecord {
    Info() = default;
    Info(const char16_t* name, int32_t coreTypeId, uint32_t dataAccess = 2) {
        EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&v, name, coreTypeId, dataAccess), 0);
    }
};

inline std::u16string text(const char16_t* chars) {
    return chars != nullptr ? std::u16string(chars) : std::u16string(u"(null)");
}

inline std::u16string nameOf(const kstd_persistentPropertyInfo& info) {
    return text(outOf<const char16_t*>(0, kstd_persistentPropertyInfo_getName, &info));
}

inline std::u16string nameOf(const kstd_persistentProperty& property) {
    return text(outOf<const char16_t*>(0, kstd_persistentProperty_getName, &property));
}

// Names of the properties in use, in order.
inline std::vector<std::u16string> namesOf(const kstd_persistentPropertyBag* bag) {
    const kstd_persistentProperty* begin = nullptr;
    int32_t count = 0;
    EXPECT_EQ(kstd_persistentPropertyBag_getPropertiesBeginSizeConst(bag, &begin, &count), 0);
    std::vector<std::u16string> names;
    for (int32_t i = 0; i < count; ++i) names.push_back(nameOf(begin[i]));
    return names;
}

}  // namespace vexpers::test
