// Helpers of the descriptor, info set, schema, table and entry tests:
// records that construct and destruct themselves, and short readers.
#pragma once

#include <string>

#include "types/type_test_support.hpp"

namespace vexpers::test::info {

struct Info {
    Info() { kstd_persistentPropertyInfo_construct(&d); }
    Info(const char16_t* name, int32_t coreTypeId, uint32_t dataAccess = 2) : Info() {
        EXPECT_EQ(kstd_persistentPropertyInfo_resetNameCoreTypeIdAccess(&d, name, coreTypeId, dataAccess), 0);
    }
    ~Info() { kstd_persistentPropertyInfo_destruct(&d); }
    Info(const Info&) = delete;
    Info& operator=(const Info&) = delete;
    kstd_persistentPropertyInfo d;
};

struct InfoVector {
    InfoVector() { kstd_vector_kstd_persistentPropertyInfo_constructEmpty(&v); }
    ~InfoVector() { kstd_vector_kstd_persistentPropertyInfo_destruct(&v); }
    InfoVector(const InfoVector&) = delete;
    InfoVector& operator=(const InfoVector&) = delete;
    int64_t size() const { return v.base.size; }
    const kstd_persistentPropertyInfo& operator[](int64_t i) const {
        return static_cast<const kstd_persistentPropertyInfo*>(v.base.begin)[i];
    }
    kstd_vector_kstd_persistentPropertyInfo v;
};

inline std::u16string nameOf(const kstd_persistentPropertyInfo& info) {
    const char16_t* name = nullptr;
    kstd_persistentPropertyInfo_getName(&info, &name);
    return name != nullptr ? std::u16string(name) : std::u16string(u"(null)");
}

inline uint32_t equalInfos(const kstd_persistentPropertyInfo& a, const kstd_persistentPropertyInfo& b,
                           bool ignoreGlobalIndex = false) {
    uint32_t equal = 2;
    const kstd_result result = ignoreGlobalIndex
                                   ? kstd_persistentPropertyInfo_compareEqualIgnoreGlobalIndex(&a, &b, &equal)
                                   : kstd_persistentPropertyInfo_compareEqual(&a, &b, &equal);
    EXPECT_EQ(result, 0);
    return equal;
}

}  // namespace vexpers::test::info
