#include "dictionary/dictionary.h"

#include <algorithm>
#include <array>

#include "dictionary/private_dictionary.h"
#include "frame/text.h"
#include "pgkit/dictionary.h"
#include "pgkit/value_representation.h"

namespace pgkit {

namespace {

constexpr DictionaryEntry kElements[] = {
#define PGKIT_ELEMENT(group, element, repeating, vr, name) \
    {group, element, repeating, VR_##vr, name},
#include "dictionary/elements.inc"
#undef PGKIT_ELEMENT
};
static_assert(std::size(kElements) == kElementCount);

constexpr size_t kMaxNameLength = 127;

// Open-addressing hash tables of row numbers, at most half full, made at compile time. A row that
// comes later than an equal one is found later, so the first row wins every lookup.
constexpr size_t kBuckets = 8192;
constexpr uint16_t kEmpty = 0xFFFF;
using Index = std::array<uint16_t, kBuckets>;

constexpr size_t TagBucket(uint16_t group, uint16_t element) {
    const uint32_t tag = (uint32_t{group} << 16) | element;
    return (tag * 0x9E3779B1u) >> 19;
}

constexpr size_t NameBucket(std::string_view name) {
    uint32_t hash = 2166136261u;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(ToUpper(c))) * 16777619u;
    return (hash ^ (hash >> 15)) % kBuckets;
}

constexpr size_t NextBucket(size_t bucket) { return (bucket + 1) % kBuckets; }

template <typename Bucket>
constexpr Index BuildIndex(Bucket bucketOf) {
    Index index{};
    for (uint16_t& slot : index)
        slot = kEmpty;
    for (uint16_t id = 0; id < kElementCount; ++id) {
        size_t bucket = bucketOf(kElements[id]);
        while (index[bucket] != kEmpty)
            bucket = NextBucket(bucket);
        index[bucket] = id;
    }
    return index;
}

constexpr Index kTagIndex =
    BuildIndex([](const DictionaryEntry& entry) { return TagBucket(entry.group, entry.element); });

constexpr Index kNameIndex =
    BuildIndex([](const DictionaryEntry& entry) { return NameBucket(entry.name); });

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ToUpper(x) == ToUpper(y); });
}

uint32_t unSequenceSwitch = 1;

}  // namespace

const DictionaryEntry& ElementEntry(uint32_t elementId) { return kElements[elementId]; }

uint32_t FindElementId(uint16_t group, uint16_t element) {
    for (size_t bucket = TagBucket(group, element); kTagIndex[bucket] != kEmpty;
         bucket = NextBucket(bucket)) {
        const uint16_t id = kTagIndex[bucket];
        if (kElements[id].group == group && kElements[id].element == element) return id;
    }
    return kNoElementId;
}

uint32_t FindElementIdByName(std::string_view name) {
    if (name.size() > kMaxNameLength) return kNoElementId;
    for (size_t bucket = NameBucket(name); kNameIndex[bucket] != kEmpty;
         bucket = NextBucket(bucket)) {
        const uint16_t id = kNameIndex[bucket];
        if (EqualIgnoringCase(kElements[id].name, name)) return id;
    }
    return kNoElementId;
}

const DictionaryEntry* FindEntry(uint16_t group, uint16_t element) {
    uint32_t id = FindElementId(group, element);
    // The repeating groups stand in the table under their base groups, 5000 and 6000.
    const uint16_t baseGroup = group & 0xFF00;
    if (baseGroup != group && (baseGroup == 0x5000 || baseGroup == 0x6000)) {
        const uint32_t baseId = FindElementId(baseGroup, element);
        if (baseId != kNoElementId && kElements[baseId].repeating != 0) id = std::min(id, baseId);
    }
    return id == kNoElementId ? nullptr : &kElements[id];
}

bool DecodesUnSequences() { return unSequenceSwitch != 0; }

}  // namespace pgkit

using pgkit::DictionaryEntry;
using pgkit::ElementEntry;
using pgkit::FindEntry;
using pgkit::PrivateDictionary;
using pgkit::PrivateEntry;

uint32_t pgFindElementIdInfo(int32_t elementId, uint16_t* group, uint16_t* element) {
    const uint32_t id = static_cast<uint32_t>(elementId);
    if (id >= pgkit::kElementCount) return 0;
    *group = ElementEntry(id).group;
    *element = ElementEntry(id).element;
    return 1;
}

uint32_t pgFindElementIdInfoAndVR(int32_t elementId, uint16_t* group, uint16_t* element,
                                  uint8_t* valueRep) {
    if (pgFindElementIdInfo(elementId, group, element) == 0) return 0;
    *valueRep = static_cast<uint8_t>(pgFindValueRepresentation(*group, *element));
    return 1;
}

uint32_t pgFindElementIdType(uint16_t group, uint16_t element) {
    return pgkit::FindElementId(group, element);
}

uint32_t pgGetTagElementId(const char* name) {
    return pgkit::FindElementIdByName(pgkit::OrEmpty(name));
}

uint32_t pgFindValueRepresentation(uint16_t group, uint16_t element) {
    if (pgkit::IsPrivateCreator(group, element)) return VR_LO;
    if (element == 0) return VR_UL;
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->valueRep;
    const PrivateEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
}

uint32_t pgGetTagPrintableName(uint16_t group, uint16_t element, char* buffer) {
    const char* name = nullptr;
    if (const DictionaryEntry* entry = FindEntry(group, element)) {
        name = entry->name;
    } else if (const PrivateEntry* privateEntry =
                   PrivateDictionary::Instance().FindExact(group, element)) {
        name = privateEntry->name.c_str();
    } else if (element == 0x0000) {
        name = "GroupLength";
    } else if (element == 0x0010) {
        name = "FileCreator";
    }
    pgkit::CopyUnbounded(buffer, name != nullptr ? name : "<Unknown Tag>");
    return name != nullptr ? 1 : 0;
}

uint32_t pgTryToDecodeUNSequences(uint32_t flag) {
    pgkit::unSequenceSwitch = flag;
    return flag;
}
