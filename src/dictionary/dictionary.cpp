#include "dictionary/dictionary.h"

#include <algorithm>
#include <iterator>

#include "base/row_index.h"
#include "base/text.h"
#include "dictionary/private_dictionary.h"
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

uint32_t unSequenceSwitch = 1;

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

bool DecodesUnSequences() { return unSequenceSwitch != 0; }

}  // namespace pgkit

using pgkit::DictionaryEntry;
using pgkit::ElementEntry;
using pgkit::FindEntry;
using pgkit::PrivateDictionary;
using pgkit::PrivateDictionaryEntry;

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
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
}

uint32_t pgGetTagPrintableName(uint16_t group, uint16_t element, char* buffer) {
    const char* name = nullptr;
    if (const DictionaryEntry* entry = FindEntry(group, element)) {
        name = entry->name;
    } else if (const PrivateDictionaryEntry* privateEntry =
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
