#include "dictionary/dictionary.h"

#include <algorithm>
#include <atomic>
#include <iterator>

#include "base/firewall.h"
#include "base/row_index.h"
#include "base/text.h"
#include "dictionary/private_dictionary.h"
#include "dictionary/tag_name.h"
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

constexpr uint32_t NameHash(std::string_view name) {
    return HashText(name, [](char c) { return ToUpper(c); });
}

using ElementIndex = RowIndex<8192>;

constexpr ElementIndex kTagIndex(kElementCount, [](size_t row) {
    return TagKey(kElements[row].group, kElements[row].element);
});

constexpr ElementIndex kNameIndex(kElementCount,
                                  [](size_t row) { return NameHash(kElements[row].name); });

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ToUpper(x) == ToUpper(y); });
}

// Whoever parses reads it once.
std::atomic<uint32_t> unSequenceSwitch = 1;

uint32_t FindTag(int32_t elementId, uint16_t* group, uint16_t* element) {
    const uint32_t id = static_cast<uint32_t>(elementId);
    if (id >= kElementCount) return 0;
    if (group != nullptr) *group = ElementEntry(id).group;
    if (element != nullptr) *element = ElementEntry(id).element;
    return 1;
}

uint32_t FindTagAndVr(int32_t elementId, uint16_t* group, uint16_t* element, uint8_t* valueRep) {
    uint16_t ownGroup, ownElement;
    if (FindTag(elementId, &ownGroup, &ownElement) == 0) return 0;
    if (valueRep != nullptr) {
        *valueRep = static_cast<uint8_t>(pgFindValueRepresentation(ownGroup, ownElement));
    }
    return FindTag(elementId, group, element);
}

uint32_t FindVr(uint16_t group, uint16_t element) {
    if (IsPrivateCreator(group, element)) return VR_LO;
    if (element == 0) return VR_UL;
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->valueRep;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
}

}  // namespace

const DictionaryEntry& ElementEntry(uint32_t elementId) { return kElements[elementId]; }

uint32_t FindElementId(uint16_t group, uint16_t element) {
    const size_t row = kTagIndex.Find(TagKey(group, element), [=](size_t i) {
        return kElements[i].group == group && kElements[i].element == element;
    });
    return row == ElementIndex::kNoRow ? kNoElementId : static_cast<uint32_t>(row);
}

uint32_t FindElementIdByName(std::string_view name) {
    if (name.size() > kMaxNameLength) return kNoElementId;
    const size_t row = kNameIndex.Find(
        NameHash(name), [name](size_t i) { return EqualIgnoringCase(kElements[i].name, name); });
    return row == ElementIndex::kNoRow ? kNoElementId : static_cast<uint32_t>(row);
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

std::optional<std::string_view> TagName(uint16_t group, uint16_t element) {
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->name;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    if (entry != nullptr) return entry->name;
    if (element == 0x0000) return "GroupLength";
    if (element == 0x0010) return "FileCreator";
    return std::nullopt;
}

bool DecodesUnSequences() { return unSequenceSwitch.load(std::memory_order_relaxed) != 0; }

}  // namespace pgkit

using pgkit::Guarded;

uint32_t pgFindElementIdInfo(int32_t elementId, uint16_t* group, uint16_t* element) {
    return Guarded([=] { return pgkit::FindTag(elementId, group, element); });
}

uint32_t pgFindElementIdInfoAndVR(int32_t elementId, uint16_t* group, uint16_t* element,
                                  uint8_t* valueRep) {
    return Guarded([=] { return pgkit::FindTagAndVr(elementId, group, element, valueRep); });
}

uint32_t pgFindElementIdType(uint16_t group, uint16_t element) {
    return Guarded([=] { return pgkit::FindElementId(group, element); }, pgkit::kNoElementId);
}

uint32_t pgGetTagElementId(const char* name) {
    return Guarded([=] { return pgkit::FindElementIdByName(pgkit::OrEmpty(name)); },
                   pgkit::kNoElementId);
}

uint32_t pgFindValueRepresentation(uint16_t group, uint16_t element) {
    return Guarded([=] { return pgkit::FindVr(group, element); }, VR_Unknown);
}

uint32_t pgGetTagPrintableName(uint16_t group, uint16_t element, char* buffer) {
    return Guarded([=] {
        const auto name = pgkit::TagName(group, element);
        pgkit::CopyUnbounded(buffer, name.value_or(pgkit::kUnknownTag));
        return name ? 1u : 0u;
    });
}

uint32_t pgTryToDecodeUNSequences(uint32_t flag) {
    return Guarded([=] { return pgkit::unSequenceSwitch = flag; });
}
