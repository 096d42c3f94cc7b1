#include "variant/variant_fixtures.hpp"

namespace vexpers::test {
namespace {

kstd_result objectReader(const kstd_persistentVariant* variant, void* destination) {
    ReaderCall& call = objectReaderCalls();
    call.variant = variant;
    call.destination = destination;
    ++call.calls;
    return 0;
}

kstd_result noSize(uint32_t* size) {
    *size = 1;
    return 0;
}
kstd_result noReset(void*) { return 0; }
kstd_result noNew(void** object) {
    *object = nullptr;
    return kstd_persistentResult_operationMissing;
}
kstd_result noClone(void** object, const void*) { return noNew(object); }
kstd_result noDelete(void** object) {
    *object = nullptr;
    return 0;
}

constexpr kstd_persistentObjectVtable objectTable{noSize,  nullptr, nullptr, nullptr, nullptr,
                                                  noReset, noNew,   noClone, noDelete};
constexpr kstd_persistentValueAccessVtable objectAccess = [] {
    kstd_persistentValueAccessVtable table{};
    table.getVariant = objectReader;
    return table;
}();
constexpr kstd_persistentValueAccessVtable enumAccess{};

kstd_persistentType plainEnum;
kstd_persistentType bitfieldEnum;
kstd_persistentType object;
uint32_t enumRegistered = 0;
uint32_t bitfieldRegistered = 0;
uint32_t objectRegistered = 0;

}  // namespace

ReaderCall& objectReaderCalls() {
    static ReaderCall call;
    return call;
}

const TestTypes& testTypes() {
    static const TestTypes types = [] {
        EXPECT_EQ(kstd_persistentTypeRegisterTypeEnum(u"VariantTestEnum", 0, 0, 0, 0, &enumAccess, &enumAccess,
                                                      nullptr, nullptr, &enumRegistered, &bitfieldRegistered,
                                                      &plainEnum, &bitfieldEnum),
                  0);
        EXPECT_EQ(kstd_persistentTypeRegisterTypeObject(u"VariantTestObject", &objectTable, &objectAccess, nullptr,
                                                        0, &objectRegistered, &object),
                  0);
        return TestTypes{&plainEnum, &bitfieldEnum, &object};
    }();
    return types;
}

}  // namespace vexpers::test

namespace vexpers::test {
namespace {

// Starts the registry, the variant's core types and the test types before
// any test counts live blocks or allocations.
class VariantEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        testTypes();
        Variant v;
        EXPECT_EQ(kstd_persistentVariant_setValue_k_Int32(v.get(), 1), 0);
    }
};

[[maybe_unused]] ::testing::Environment* const environment =
    ::testing::AddGlobalTestEnvironment(new VariantEnvironment);

}  // namespace
}  // namespace vexpers::test
