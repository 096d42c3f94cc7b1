// Reading a stream into a tree: checks shared by both formats, the node
// protocol, object-id checks, and the public entry points.
#include "reader.hpp"

#include <cstdio>
#include <cstring>
#include <string>

namespace vexpers::formats {
namespace {

constexpr int64_t maxArrayItems = 0x7FFFFFFF;

const kstd_hashtableElementVtable int64Operations{8, nullptr, nullptr, nullptr, nullptr, nullptr};

bool isCategoryOfValues(uint32_t category) {
    return category == kstd_persistentTypeCategory_int || category == kstd_persistentTypeCategory_uint ||
           category == kstd_persistentTypeCategory_bool || category == kstd_persistentTypeCategory_float ||
           category == kstd_persistentTypeCategory_string;
}

}  // namespace

SectionReader::SectionReader(kstd_persistentPropertyTree* tree, const kfmt_options& options, Input& input)
    : tree_(tree), options_(options), input_(input) {}

SectionReader::~SectionReader() {
    if (idsReady_) kstd_hashtable_destruct(&defined_);
}

kstd_result SectionReader::init() {
    for (CachedSection& slot : sectionCache_) KFMT_TRY(slot.section.status());
    KFMT_TRY(value_.status());
    if (options_.flags & kfmt_flag_checkObjectIds) {
        KFMT_TRY(kstd_hashtable_construct(&defined_, &int64Operations, &int64Operations, 1024, -1));
        idsReady_ = true;
    }
    return 0;
}

namespace {

bool sameText(const char16_t* chars, int32_t length, const char16_t* other, int32_t otherLength) {
    if ((chars == nullptr) != (other == nullptr) || length != otherLength) return false;
    return length == 0 || std::memcmp(chars, other, static_cast<size_t>(length) * sizeof(char16_t)) == 0;
}

uint32_t mix(uint32_t hash, const Text& text) {
    hash = (hash ^ static_cast<uint32_t>(text.chars == nullptr ? 0xFFFFu : 0u)) * 16777619u;
    for (int32_t i = 0; i < text.length; ++i) hash = (hash ^ text.chars[i]) * 16777619u;
    return hash;
}

}  // namespace

kstd_result SectionReader::describedSection(const Header& header, kstd_persistentPropertyNodeSection** section) {
    *section = nullptr;
    KeyedSection* keyed = nullptr;
    if (header.textsKeyed) {
        const uint64_t key = static_cast<uint64_t>(header.nameKey) * 0x10001u + static_cast<uint64_t>(header.typeKey) * 31u +
                             header.derivation * 7u + header.dataAccess;
        bool hit = false;
        keyed = &cacheSlot(keyedCache_, key, cacheClock_, [&header](const KeyedSection& k) {
            return k.slot != nullptr && k.generation == k.slot->generation && k.nameKey == header.nameKey &&
                   k.typeKey == header.typeKey && k.derivation == header.derivation && k.dataAccess == header.dataAccess;
        }, &hit);
        if (hit) {
            *section = keyed->slot->section.get();
            return 0;
        }
    }
    CachedSection* slot = nullptr;
    KFMT_TRY(describedSlot(header, &slot));
    if (keyed != nullptr)
        *keyed = KeyedSection{header.nameKey, header.typeKey, header.derivation, header.dataAccess, slot, slot->generation};
    *section = slot->section.get();
    return 0;
}

kstd_result SectionReader::describedSlot(const Header& header, CachedSection** found) {
    *found = nullptr;
    uint32_t hash = mix(mix(2166136261u, header.name), header.typeName);
    hash = (hash ^ (header.derivation * 31u + header.dataAccess)) * 16777619u;
    bool hit = false;
    CachedSection& slot = cacheSlot(sectionCache_, hash, cacheClock_, [&header](CachedSection& s) {
        const kstd_persistentPropertyInfo* info = &s.section->info;
        const char16_t* typeName = nullptr;
        uint32_t derivation = 0;
        return s.used && info->dataAccess == header.dataAccess &&
               sameText(info->name.chars, info->name.length, header.name.chars, header.name.length) &&
               kstd_persistentType_getTypeName(&info->type, &typeName) >= 0 && typeName != nullptr &&
               kstd_persistentType_getTypeDerivation(&info->type, &derivation) >= 0 &&
               derivation == header.derivation &&
               sameText(typeName, static_cast<int32_t>(std::char_traits<char16_t>::length(typeName)),
                        header.typeName.chars, header.typeName.length);
    }, &hit);
    *found = &slot;
    if (hit) return 0;
    *found = nullptr;
    kstd_persistentPropertyInfo* info = &slot.section->info;
    slot.used = false;
    ++slot.generation;
    KFMT_TRY(kstd_persistentPropertyInfo_resetNameTypeNameDerivationAccess(
        info, header.name.chars, header.typeName.chars, header.derivation, header.dataAccess));
    slot.used = true;
    *found = &slot;
    return 0;
}

kstd_result SectionReader::justify(int64_t count, int64_t minimumBytes, int64_t offset) {
    if (count < 0) return reject(kfmt_result_malformed, offset, "a negative count or length");
    const int64_t remaining = input_.remaining();
    if (minimumBytes > 0 && count > remaining / minimumBytes) {
        std::snprintf(problemText_, sizeof problemText_, "%lld items or bytes claimed, but only %lld bytes remain",
                      static_cast<long long>(count), static_cast<long long>(remaining));
        return reject(kfmt_result_limitExceeded, offset, problemText_);
    }
    return 0;
}

kstd_result SectionReader::describe(const Header& header, int64_t offset) {
    header_ = header;
    offset_ = offset;
    complete_ = false;
    startEnd_ = false;
    itemsLeft_ = 0;
    const kfmt_limits& caps = options_.limits;
    const Kinds& k = header.kinds;
    const bool isStart = header.sectionType == kstd_persistentPropertyNodeSectionType_start;

    if (statistics_.nodes >= caps.maxNodes) return reject(kstd_persistentResult_tooManyNodes, offset, "too many nodes");
    if (header.name.length > caps.maxNameUnits || header.typeName.length > caps.maxNameUnits)
        return reject(kstd_persistentResult_nameTooLong, offset, "a name longer than the cap");
    if (header.typeName.chars == nullptr || header.typeName.length == 0)
        return reject(kfmt_result_malformed, offset, "a node without a type name");
    if (header.derivation > kstd_persistentTypeDerivation_bitfieldArray)
        return reject(kfmt_result_malformed, offset, "an unknown type derivation");
    if (k.leafKind > 4 || k.arrayKind > 2) return reject(kfmt_result_malformed, offset, "an unknown node kind");
    if (isStart) {
        if (k.leafKind != 0 || k.arrayKind == 1)
            return reject(kfmt_result_protocol, offset, "a start section that is neither an object nor a list");
    } else {
        const bool fits = (k.leafKind == 0 && k.arrayKind == 1) ||
                          ((k.leafKind == 1 || k.leafKind == 2 || k.leafKind == 4) && k.arrayKind == 0) ||
                          (k.leafKind == 3 && k.arrayKind != 0);
        if (!fits) return reject(kfmt_result_protocol, offset, "a leaf section of a kind that is no leaf");
    }
    if (k.leafKind == 4 && !k.hasId) return reject(kfmt_result_malformed, offset, "a reference without an id");
    if (k.hasId && header.id < 0) return reject(kfmt_result_malformed, offset, "a negative object id");
    if (k.hasId && header.id > kstd_persistentPropertyTree_maxObjectId)
        return reject(kstd_persistentResult_invalidArgument, offset, "an object id beyond the id cap");
    const bool counted = k.leafKind == 0 && k.arrayKind != 0;
    if (counted != (header.count >= 0))
        return reject(kfmt_result_malformed, offset,
                      counted ? "an array without its item count" : "an item count on a node that is no array");
    if (counted) {
        if (header.count == 0) return reject(kfmt_result_malformed, offset, "an array without items that is no empty array");
        if (header.count > caps.maxItems || header.count > maxArrayItems)
            return reject(kstd_persistentResult_arraySizeOverflow, offset, "more items than the cap");
        // Every item or child takes at least one byte of what remains.
        KFMT_TRY(justify(header.count, 1, offset));
    }

    // The section's descriptor is already the header's; the rest is what
    // kstd_persistentPropertyNodeSection_reset would clear. The property is
    // left as the last node of this descriptor had it: every section that
    // carries a value sets it anew, and the others carry none.
    section_ = nullptr;
    described_ = nullptr;
    kstd_persistentPropertyNodeSection* section = nullptr;
    kstd_result result = describedSection(header, &section);
    if (result >= 0) {
        section_ = section;
        described_ = &section->info;
        section->sectionType = kstd_persistentPropertyNodeSectionType_none;
        result = kstd_persistentPropertyNodeSection_setObjectInfo(section, described_, described_, k.hasId ? 1 : 0,
                                                                  header.id, k.leafKind, k.arrayKind,
                                                                  counted ? header.count : 0, k.isDeleted ? 1 : 0);
    }
    if (result < 0) return reject(result, offset, "the library refused the node's descriptor");
    if (k.isItem) section->flags |= kstd_persistentPropertyNodeFlag_arrayItem;
    KFMT_TRY(kstd_persistentPropertyNodeSection_setSectionType(section, header.sectionType));

    switch (isStart ? 0u : k.leafKind) {
    case 2:
        if (header.derivation == kstd_persistentTypeDerivation_pointer) {
            result = kstd_persistentPropertyNodeSection_setPropertyPointerNull(section);
        } else {
            // An object held by value without an object: a value of its type
            // without an object when the type is registered; otherwise the
            // node keeps no value (a start at once ended).
            uint32_t isKnown = 0;
            kstd_persistentType_getIsKnown(&described_->type, &isKnown);
            if (isKnown != 0) {
                result = kstd_persistentVariant_resetType(value_.get(), &described_->type);
                if (result >= 0) result = kstd_persistentPropertyNodeSection_setLeafPropertyValue(section, value_.get());
            } else {
                startEnd_ = true;
                result = kstd_persistentPropertyNodeSection_setSectionType(section,
                                                                           kstd_persistentPropertyNodeSectionType_start);
            }
        }
        if (result < 0) return reject(result, offset, "the library refused a null value of the node's type");
        complete_ = true;
        return 0;
    case 3:
        result = kstd_persistentPropertyNodeSection_setPropertyArrayEmpty(section);
        if (result < 0) return reject(result, offset, "the library refused an empty array of the node's type");
        complete_ = true;
        return 0;
    case 1:
        return 0;  // the value follows
    default:
        complete_ = !(k.leafKind == 0 && k.arrayKind == 1 && !isStart);
        return 0;
    }
}

kstd_result SectionReader::prepareValue(int32_t coreId, uint32_t* category) {
    *category = 0;
    if (coreId < 0) {
        // The descriptor already names the declared type: no second look-up.
        if (header_.derivation != 0 || cores_.idOfType(&described_->type, &coreId) < 0)
            return reject(kfmt_result_badValue, offset_, "a value whose declared type is no core type, without its own type");
    }
    CoreFacts facts;
    if (cores_.facts(coreId, &facts) < 0 || !isCategoryOfValues(facts.category))
        return reject(kfmt_result_badValue, offset_, "a value of a core type that holds no values");
    valueCoreId_ = coreId;
    *category = facts.category;
    return 0;
}

kstd_result SectionReader::value(const Scalar& scalar) {
    if (scalar.category == kstd_persistentTypeCategory_string && !scalar.isNull &&
        scalar.length > static_cast<size_t>(options_.limits.maxStringUnits))
        return reject(kfmt_result_limitExceeded, offset_, "a string longer than the cap");
    // The value goes straight into the section's property (what
    // setLeafPropertyValue would copy it to), which spares a variant copy.
    kstd_persistentPropertyNodeSection* section = section_;
    kstd_result result = variantOfScalar(cores_, valueCoreId_, scalar, &section->property.value);
    if (result >= 0) result = kstd_persistentPropertyInfo_assign(&section->property.info, &section->info);
    if (result < 0) return reject(result, offset_, "a value that does not fit its type");
    section->flags |= kstd_persistentPropertyNodeFlag_hasValue | kstd_persistentPropertyNodeFlag_leaf;
    complete_ = true;
    return 0;
}

kstd_result SectionReader::beginItems(int32_t coreId, uint32_t* category) {
    *category = 0;
    if (coreId < 0) {
        if (header_.derivation != kstd_persistentTypeDerivation_array ||
            cores_.idOfName(header_.typeName.chars, &coreId) < 0)
            return reject(kfmt_result_badValue, offset_, "items whose declared type is no array of a core type");
    }
    if (cores_.facts(coreId, &itemFacts_) < 0 || itemFacts_.category == kstd_persistentTypeCategory_enum ||
        itemFacts_.category == kstd_persistentTypeCategory_object ||
        (itemFacts_.category == kstd_persistentTypeCategory_string &&
         coreId != kstd_persistentCoreTypeId_kstd_unicodeString))
        return reject(kfmt_result_badValue, offset_, "items of a core type that holds no values");
    const kstd_persistentType* arrayType = nullptr;
    KFMT_TRY(cores_.type(coreId, kstd_persistentTypeDerivation_array, &arrayType));
    kstd_persistentPropertyNodeSection* section = section_;
    void* first = nullptr;
    uint32_t elementSize = 0;
    const int32_t count = static_cast<int32_t>(header_.count);
    kstd_result result;
    if (sameType(arrayType, &described_->type)) {
        result = kstd_persistentPropertyNodeSection_setPropertyArrayAndAlloc(section, count, &first, &elementSize);
    } else {
        // Items of another type than the declared one: the array is made
        // with its own type and put under the section's descriptor.
        result = kstd_persistentVariant_setValueUsingTypeArrayAndAlloc(value_.get(), arrayType, count, &first,
                                                                        &elementSize);
        if (result >= 0) result = kstd_persistentProperty_resetInfoAndValue(&section->property, &section->info, value_.get());
        if (result >= 0) section->numItems = count;
    }
    if (result < 0) return reject(result, offset_, "the library refused the array");
    if (elementSize != itemFacts_.elementSize || first == nullptr)
        return reject(kstd_persistentResult_internalInconsistency, offset_, "the array's elements are not as expected");
    nextItem_ = static_cast<uint8_t*>(first);
    itemsLeft_ = header_.count;
    *category = itemFacts_.category == kstd_persistentTypeCategory_char ? kstd_persistentTypeCategory_uint
                                                                        : itemFacts_.category;
    return 0;
}

kstd_result SectionReader::item(const Scalar& scalar) {
    if (itemsLeft_ <= 0) return reject(kfmt_result_countMismatch, input_.offset(), "more items than the count says");
    if (scalar.category == kstd_persistentTypeCategory_string && !scalar.isNull &&
        scalar.length > static_cast<size_t>(options_.limits.maxStringUnits))
        return reject(kfmt_result_limitExceeded, input_.offset(), "a string longer than the cap");
    const kstd_result result = storeItem(itemFacts_, scalar, nextItem_);
    if (result < 0) return reject(result, input_.offset(), "an item that does not fit the item type");
    nextItem_ += itemFacts_.elementSize;
    if (--itemsLeft_ == 0) complete_ = true;
    return 0;
}

kstd_result SectionReader::commit() {
    if (!complete_) return reject(kfmt_result_malformed, offset_, "a node without its value or items");
    complete_ = false;
    const bool isStart = header_.sectionType == kstd_persistentPropertyNodeSectionType_start;
    if (isStart && depth() >= options_.limits.maxDepth)
        return reject(kstd_persistentResult_nestingTooDeep, offset_, "nesting deeper than the cap");
    kstd_persistentPropertyNodeSection* section = section_;
    kstd_persistentPropertyNode* parent = open_.empty() ? nullptr : open_.back().node;
    if (parent != nullptr) {
        Open& top = open_.back();
        ++top.children;
        if (top.expectedItems >= 0 && top.children > top.expectedItems)
            return reject(kfmt_result_countMismatch, offset_, "more items in a list than its count says");
    }
    kstd_persistentPropertyNode* node = nullptr;
    kstd_result result = 0;
    if (isStart || startEnd_) {
        if (parent != nullptr) {
            result = kstd_persistentPropertyNode_startChildNode(parent, section, &node);
        } else {
            result = kstd_persistentPropertyTree_allocNextChild(tree_, &node);
            if (result >= 0) result = kstd_persistentPropertyNode_startNode(node, section);
        }
        if (result >= 0 && startEnd_) result = kstd_persistentPropertyNode_endNode(node);
        if (result >= 0 && !startEnd_)
            result = open_.push(Open{node, 0, header_.kinds.arrayKind == 2 ? header_.count : -1});
    } else if (parent != nullptr) {
        result = kstd_persistentPropertyNode_addChildLeafNode(parent, section);
    } else {
        result = kstd_persistentPropertyTree_allocNextChild(tree_, &node);
        if (result >= 0) result = kstd_persistentPropertyNode_startAndEndLeafNode(node, section);
    }
    if (result < 0) return reject(result, offset_, "the library refused the node");

    ++statistics_.nodes;
    const Kinds& k = header_.kinds;
    if (k.leafKind == 4) ++statistics_.references;
    else if (k.hasId) ++statistics_.objects;
    const int64_t level = depth() + (isStart && !startEnd_ ? 0 : 1);
    if (level > statistics_.maxDepth) statistics_.maxDepth = level;
    if (idsReady_) KFMT_TRY(noteIds(offset_));
    return progress();
}

kstd_result SectionReader::progress() {
    const kfmt_options& o = options_;
    if (o.progress != nullptr && o.progressInterval > 0 && statistics_.nodes % o.progressInterval == 0)
        o.progress(o.progressContext, statistics_.nodes, input_.offset());
    return 0;
}

kstd_result SectionReader::noteIds(int64_t offset) {
    const Kinds& k = header_.kinds;
    if (!k.hasId) return 0;
    const int64_t id = header_.id;
    uint32_t has = 0;
    KFMT_TRY(kstd_hashtable_has(&defined_, &id, &has));
    if (k.leafKind == 4) {
        if (has == 0 && forwardId_ < 0) {
            forwardId_ = id;
            forwardOffset_ = offset;
        }
        return 0;
    }
    if (has != 0) {
        if (forwardId_ >= 0) return reject(kfmt_result_objectIds, forwardOffset_, forwardProblem());
        void* first = nullptr;
        kstd_hashtable_getPtr(&defined_, &id, &first);
        std::snprintf(problemText_, sizeof problemText_, "object id %lld defined again (first at offset %lld)",
                      static_cast<long long>(id), first != nullptr ? static_cast<long long>(*static_cast<int64_t*>(first)) : -1ll);
        return reject(kfmt_result_objectIds, offset, problemText_);
    }
    if (id == forwardId_ && forwardDefinedAt_ < 0) forwardDefinedAt_ = offset;
    return kstd_hashtable_put(&defined_, &id, &offset);
}

bool SectionReader::earlierIdProblem(int64_t offset, int64_t* at, const char** problem) {
    if (forwardId_ < 0 || forwardOffset_ >= offset) return false;
    *at = forwardOffset_;
    *problem = forwardProblem();
    return true;
}

const char* SectionReader::forwardProblem() {
    if (forwardDefinedAt_ >= 0)
        std::snprintf(problemText_, sizeof problemText_,
                      "reference to object id %lld before its definition (at offset %lld)",
                      static_cast<long long>(forwardId_), static_cast<long long>(forwardDefinedAt_));
    else
        std::snprintf(problemText_, sizeof problemText_, "reference to object id %lld, which is never defined",
                      static_cast<long long>(forwardId_));
    return problemText_;
}

kstd_result SectionReader::end(int64_t offset) {
    if (open_.empty()) return reject(kfmt_result_protocol, offset, "an end section without an open node");
    const Open top = open_.back();
    // A node opened by a start section holds its members as children; one
    // without any could never be walked, and so never written back.
    if (top.children == 0) return reject(kfmt_result_malformed, offset, "a node that ends without children");
    if (top.expectedItems >= 0 && top.children != top.expectedItems)
        return reject(kfmt_result_countMismatch, offset, "fewer items in a list than its count says");
    const kstd_result result = kstd_persistentPropertyNode_endNode(top.node);
    if (result < 0) return reject(result, offset, "the library refused to end the node");
    open_.pop();
    return 0;
}

kstd_result SectionReader::finish(int64_t nodes, int64_t offset) {
    if (!open_.empty()) {
        std::snprintf(problemText_, sizeof problemText_, "the stream ends with %lld nodes still open",
                      static_cast<long long>(open_.size()));
        return reject(kfmt_result_protocol, offset, problemText_);
    }
    if (nodes != statistics_.nodes) {
        std::snprintf(problemText_, sizeof problemText_, "the stream claims %lld nodes but holds %lld",
                      static_cast<long long>(nodes), static_cast<long long>(statistics_.nodes));
        return reject(kfmt_result_countMismatch, offset, problemText_);
    }
    if (forwardId_ >= 0) return reject(kfmt_result_objectIds, forwardOffset_, forwardProblem());
    statistics_.bytes = input_.offset();
    return 0;
}

}  // namespace vexpers::formats
