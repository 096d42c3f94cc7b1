#include "values.hpp"

#include <cmath>
#include <limits>

namespace vexpers::formats {
namespace {

// Core types of which no value can be made (k_Int128 ... k_UIntMax,
// longlong, ulonglong, longdouble, k_Float32 ... k_FloatMax).
bool isReserved(int32_t coreId) {
    return (coreId >= 10 && coreId <= 17) || coreId == 24 || coreId == 25 || (coreId >= 30 && coreId <= 36);
}

template <class T>
T loadAs(const void* element) {
    T value;
    std::memcpy(&value, element, sizeof(T));
    return value;
}

template <class T>
void storeAs(void* element, T value) {
    std::memcpy(element, &value, sizeof(T));
}

}  // namespace

kstd_result CoreTypes::load(int32_t coreId) {
    if (coreId < 0 || coreId >= kstd_persistentCoreTypeId_count || isReserved(coreId))
        return kfmt_result_badValue;
    if (loaded_[coreId]) return 0;
    KFMT_TRY(values_[coreId].status());
    KFMT_TRY(arrays_[coreId].status());
    KFMT_TRY(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(coreId, 0, values_[coreId].get()));
    KFMT_TRY(kstd_persistentTypeGetTypeUsingCoreTypeIdAndDerivation(coreId, 2, arrays_[coreId].get()));
    CoreFacts& facts = facts_[coreId];
    KFMT_TRY(kstd_persistentType_getTypeCategory(values_[coreId].get(), &facts.category));
    KFMT_TRY(kstd_persistentType_getElementSize(values_[coreId].get(), &facts.elementSize));
    KFMT_TRY(kstd_persistentTypeGetCoreTypeTypeName(coreId, &facts.name));
    loaded_[coreId] = true;
    return 0;
}

kstd_result CoreTypes::type(int32_t coreId, uint32_t derivation, const kstd_persistentType** type) {
    *type = nullptr;
    KFMT_TRY(load(coreId));
    *type = derivation == kstd_persistentTypeDerivation_array ? arrays_[coreId].get() : values_[coreId].get();
    return 0;
}

kstd_result CoreTypes::facts(int32_t coreId, CoreFacts* facts) {
    KFMT_TRY(load(coreId));
    *facts = facts_[coreId];
    return 0;
}

kstd_result CoreTypes::idOfName(const char16_t* name, int32_t* coreId) {
    *coreId = -1;
    if (name == nullptr || name[0] == 0) return kfmt_result_badValue;
    Type type;
    KFMT_TRY(type.status());
    if (kstd_persistentTypeGetType(name, 0, 1, type.get()) < 0) return kfmt_result_badValue;
    return idOfType(type.get(), coreId);
}

kstd_result CoreTypes::idOfType(const kstd_persistentType* type, int32_t* coreId) {
    *coreId = -1;
    uint32_t isKnown = 0;
    if (kstd_persistentType_getIsKnown(type, &isKnown) < 0 || isKnown == 0) return kfmt_result_badValue;
    int32_t id = -2;
    if (kstd_persistentType_getCoreTypeId(type, &id) < 0 || id < 0) return kfmt_result_badValue;
    KFMT_TRY(load(id));
    *coreId = id;
    return 0;
}

kstd_result scalarOfVariant(const kstd_persistentVariant* value, uint32_t category, StringConst& holder,
                            Scalar* scalar) {
    *scalar = Scalar{};
    scalar->category = category;
    switch (category) {
    case kstd_persistentTypeCategory_int:
        return kstd_persistentVariant_getValue_k_Int64(value, &scalar->i);
    case kstd_persistentTypeCategory_uint:
        return kstd_persistentVariant_getValue_k_UInt64(value, &scalar->u);
    case kstd_persistentTypeCategory_bool:
        return kstd_persistentVariant_getValue_k_Bool(value, &scalar->b);
    case kstd_persistentTypeCategory_float:
        return kstd_persistentVariant_getValue_double(value, &scalar->f);
    case kstd_persistentTypeCategory_string: {
        KFMT_TRY(holder.status());
        KFMT_TRY(kstd_persistentVariant_getValue_kstd_unicodeStringConst(value, holder.get()));
        const char16_t* text = nullptr;
        int32_t length = 0;
        KFMT_TRY(kstd_unicodeStringConst_getStringW(holder.get(), &text, &length));
        scalar->text = text;
        scalar->length = text != nullptr ? static_cast<size_t>(length) : 0;
        scalar->isNull = text == nullptr;
        return 0;
    }
    default:
        return kfmt_result_notStorable;
    }
}

kstd_result variantOfScalar(CoreTypes& cores, int32_t coreId, const Scalar& scalar, kstd_persistentVariant* value) {
    CoreFacts facts;
    KFMT_TRY(cores.facts(coreId, &facts));
    if (facts.category != scalar.category) return kfmt_result_badValue;
    const kstd_persistentType* type = nullptr;
    KFMT_TRY(cores.type(coreId, 0, &type));
    switch (scalar.category) {
    case kstd_persistentTypeCategory_int:
        return kstd_persistentVariant_setValueUsingType_k_Int64_(value, type, scalar.i);
    case kstd_persistentTypeCategory_uint:
        return kstd_persistentVariant_setValueUsingType_k_UInt64_(value, type, scalar.u);
    case kstd_persistentTypeCategory_bool:
        return kstd_persistentVariant_setValueUsingType_k_Bool_(value, type, scalar.b);
    case kstd_persistentTypeCategory_float:
        return kstd_persistentVariant_setValueUsingType_double_(value, type, scalar.f);
    case kstd_persistentTypeCategory_string:
        break;
    default:
        return kfmt_result_badValue;
    }
    // Strings: the decoders hand over terminated text; each string type has
    // its own setter (null text gives the null string).
    const char16_t* text = scalar.isNull ? nullptr : scalar.text;
    switch (coreId) {
    case kstd_persistentCoreTypeId_kstd_unicodeString: {
        UnicodeString string;
        KFMT_TRY(string.status());
        KFMT_TRY(kstd_unicodeString_assignStringW(string.get(), text));
        return kstd_persistentVariant_setValue_kstd_unicodeString(value, string.get());
    }
    case kstd_persistentCoreTypeId_stringW:
        return kstd_persistentVariant_setValueStringW(value, text);
    case kstd_persistentCoreTypeId_stringT:
        return kstd_persistentVariant_setValueStringT(value, text);
    case kstd_persistentCoreTypeId_string16:
        return kstd_persistentVariant_setValueString16(value, text);
    case kstd_persistentCoreTypeId_stringA:
    case kstd_persistentCoreTypeId_string32: {
        if (text == nullptr)
            return coreId == kstd_persistentCoreTypeId_stringA ? kstd_persistentVariant_setValueStringA(value, nullptr)
                                                               : kstd_persistentVariant_setValueString32(value, nullptr);
        StringConst string;
        KFMT_TRY(string.status());
        KFMT_TRY(kstd_unicodeStringConst_assignStringW(string.get(), text));
        if (coreId == kstd_persistentCoreTypeId_stringA) {
            char* clone = nullptr;
            KFMT_TRY(kstd_unicodeStringConst_getCloneStringA(string.get(), &clone));
            const kstd_result result = kstd_persistentVariant_setValueStringA(value, clone);
            void* memory = clone;
            ksys_memory_free_internal(&memory);
            return result;
        }
        char32_t* clone = nullptr;
        KFMT_TRY(kstd_unicodeStringConst_getCloneString32(string.get(), &clone));
        const kstd_result result = kstd_persistentVariant_setValueString32(value, clone);
        void* memory = clone;
        ksys_memory_free_internal(&memory);
        return result;
    }
    default:
        return kfmt_result_badValue;
    }
}

kstd_result ArrayCursor::open(const kstd_persistentPropertyNode* node, CoreTypes& cores) {
    KFMT_TRY(itemType_.status());
    uint32_t containerValue = 0;
    void* first = nullptr;
    intptr_t count = 0;
    KFMT_TRY(kstd_persistentPropertyNode_getContainer(node, &container_, &containerValue, &elementSize_, &first,
                                                      &count, &table_, itemType_.get()));
    if (count < 0) return kstd_persistentResult_invalidCount;
    KFMT_TRY(kstd_persistentType_getCoreTypeId(itemType_.get(), &itemCoreId_));
    if (itemCoreId_ < 0) return kfmt_result_notStorable;
    if (cores.facts(itemCoreId_, &facts_) < 0) return kfmt_result_notStorable;
    if (facts_.category == kstd_persistentTypeCategory_string &&
        itemCoreId_ != kstd_persistentCoreTypeId_kstd_unicodeString)
        return kfmt_result_notStorable;  // arrays of text pointers own nothing the reader could rebuild
    if (elementSize_ != facts_.elementSize) return kfmt_result_notStorable;
    // A plain array (no container) and a container that says so lie one
    // element size apart; other containers are stepped through their table.
    contiguous_ = container_ == nullptr || containerValue != 0;
    if (!contiguous_ && (table_ == nullptr || table_->getNextElement == nullptr))
        return kstd_persistentResult_operationMissing;
    if (count > 0 && first == nullptr) return kstd_persistentResult_nullArrayData;
    current_ = static_cast<uint8_t*>(first);
    count_ = count;
    index_ = 0;
    return 0;
}

kstd_result ArrayCursor::next(Scalar* scalar) {
    *scalar = Scalar{};
    if (index_ >= count_) return kstd_persistentResult_invalidCount;
    if (index_ > 0) {
        if (contiguous_) {
            current_ += elementSize_;
        } else {
            void* element = current_;
            KFMT_TRY(table_->getNextElement(container_, &element));
            if (element == nullptr) return kstd_persistentResult_nullArrayData;
            current_ = static_cast<uint8_t*>(element);
        }
    }
    ++index_;
    const void* element = current_;
    const uint32_t size = facts_.elementSize;
    scalar->category = facts_.category;
    switch (facts_.category) {
    case kstd_persistentTypeCategory_int:
        scalar->i = size == 1   ? loadAs<int8_t>(element)
                    : size == 2 ? loadAs<int16_t>(element)
                    : size == 4 ? loadAs<int32_t>(element)
                                : loadAs<int64_t>(element);
        return size == 1 || size == 2 || size == 4 || size == 8 ? 0 : kfmt_result_notStorable;
    case kstd_persistentTypeCategory_uint:
    case kstd_persistentTypeCategory_char:
        scalar->category = kstd_persistentTypeCategory_uint;
        scalar->u = size == 1   ? loadAs<uint8_t>(element)
                    : size == 2 ? loadAs<uint16_t>(element)
                    : size == 4 ? loadAs<uint32_t>(element)
                                : loadAs<uint64_t>(element);
        return size == 1 || size == 2 || size == 4 || size == 8 ? 0 : kfmt_result_notStorable;
    case kstd_persistentTypeCategory_bool:
        if (size == 1) {
            scalar->b = loadAs<uint8_t>(element);
            return 0;
        }
        scalar->b = loadAs<int32_t>(element);
        return size == 4 ? 0 : kfmt_result_notStorable;
    case kstd_persistentTypeCategory_float:
        scalar->f = size == 4 ? static_cast<double>(loadAs<float>(element)) : loadAs<double>(element);
        return size == 4 || size == 8 ? 0 : kfmt_result_notStorable;
    case kstd_persistentTypeCategory_string: {
        const char16_t* text = nullptr;
        int32_t length = 0;
        KFMT_TRY(kstd_unicodeString_getStringW(static_cast<const kstd_unicodeString*>(element), &text, &length));
        scalar->text = text;
        scalar->length = text != nullptr && length > 0 ? static_cast<size_t>(length) : 0;
        scalar->isNull = text == nullptr;
        return 0;
    }
    default:
        return kfmt_result_notStorable;
    }
}

kstd_result storeItem(const CoreFacts& facts, const Scalar& scalar, void* element) {
    const uint32_t size = facts.elementSize;
    const uint32_t category =
        facts.category == kstd_persistentTypeCategory_char ? kstd_persistentTypeCategory_uint : facts.category;
    if (category != scalar.category) return kfmt_result_badValue;
    switch (category) {
    case kstd_persistentTypeCategory_int: {
        const int64_t v = scalar.i;
        if (size == 8) return storeAs<int64_t>(element, v), 0;
        const int64_t bound = int64_t{1} << (size * 8 - 1);
        if (size != 1 && size != 2 && size != 4) return kfmt_result_badValue;
        if (v < -bound || v >= bound) return kfmt_result_badValue;
        if (size == 1) storeAs<int8_t>(element, static_cast<int8_t>(v));
        if (size == 2) storeAs<int16_t>(element, static_cast<int16_t>(v));
        if (size == 4) storeAs<int32_t>(element, static_cast<int32_t>(v));
        return 0;
    }
    case kstd_persistentTypeCategory_uint: {
        const uint64_t v = scalar.u;
        if (size == 8) return storeAs<uint64_t>(element, v), 0;
        if (size != 1 && size != 2 && size != 4) return kfmt_result_badValue;
        if (v >> (size * 8) != 0) return kfmt_result_badValue;
        if (size == 1) storeAs<uint8_t>(element, static_cast<uint8_t>(v));
        if (size == 2) storeAs<uint16_t>(element, static_cast<uint16_t>(v));
        if (size == 4) storeAs<uint32_t>(element, static_cast<uint32_t>(v));
        return 0;
    }
    case kstd_persistentTypeCategory_bool:
        if (size == 1) {
            if (scalar.b != 0 && scalar.b != 1) return kfmt_result_badValue;
            storeAs<uint8_t>(element, static_cast<uint8_t>(scalar.b));
            return 0;
        }
        if (size != 4) return kfmt_result_badValue;
        storeAs<int32_t>(element, scalar.b);
        return 0;
    case kstd_persistentTypeCategory_float:
        if (size == 8) return storeAs<double>(element, scalar.f), 0;
        if (size != 4) return kfmt_result_badValue;
        // A float item was widened when written; a double that is no float
        // does not fit.
        if (std::isfinite(scalar.f) && static_cast<double>(static_cast<float>(scalar.f)) != scalar.f)
            return kfmt_result_badValue;
        storeAs<float>(element, static_cast<float>(scalar.f));
        return 0;
    case kstd_persistentTypeCategory_string:
        return kstd_unicodeString_assignStringW(static_cast<kstd_unicodeString*>(element),
                                                scalar.isNull ? nullptr : scalar.text);
    default:
        return kfmt_result_badValue;
    }
}

bool sameType(const kstd_persistentType* first, const kstd_persistentType* second) {
    if (first->record.shared == second->record.shared) return true;  // one record: one type
    uint32_t equal = 0;
    return kstd_persistentType_compareEqual(first, second, &equal) >= 0 && equal != 0;
}

}  // namespace vexpers::formats
