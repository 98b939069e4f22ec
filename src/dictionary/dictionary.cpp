#include "dictionary/dictionary.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "dictionary/private_dictionary.h"
#include "frame/row_index.h"
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

constexpr uint32_t TagKey(uint16_t group, uint16_t element) {
    return (uint32_t{group} << 16) | element;
}

constexpr char UpperLetter(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

using ElementIndex = RowIndex<8192>;

constexpr ElementIndex kTagIndex(kElementCount, [](size_t row) {
    return TagKey(kElements[row].group, kElements[row].element);
});

constexpr ElementIndex kNameIndex(kElementCount, [](size_t row) {
    return HashText(kElements[row].name, UpperLetter);
});

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return UpperLetter(x) == UpperLetter(y); });
}

uint32_t unSequenceSwitch = 1;

}  // namespace

const DictionaryEntry& ElementEntry(uint32_t elementId) {
    return kElements[elementId];
}

uint32_t FindElementId(uint16_t group, uint16_t element) {
    const size_t row = kTagIndex.Find(TagKey(group, element), [=](size_t i) {
        return kElements[i].group == group && kElements[i].element == element;
    });
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

bool DecodesUnSequences() {
    return unSequenceSwitch != 0;
}

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
    const std::string_view wanted = pgkit::OrEmpty(name);
    if (wanted.size() > pgkit::kMaxNameLength) return pgkit::kNoElementId;
    const size_t row = pgkit::kNameIndex.Find(
        pgkit::HashText(wanted, pgkit::UpperLetter),
        [wanted](size_t i) { return pgkit::EqualIgnoringCase(pgkit::kElements[i].name, wanted); });
    return row == pgkit::ElementIndex::kNoRow ? pgkit::kNoElementId : static_cast<uint32_t>(row);
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
    std::strcpy(buffer, name != nullptr ? name : "<Unknown Tag>");
    return name != nullptr ? 1 : 0;
}

uint32_t pgTryToDecodeUNSequences(uint32_t flag) {
    pgkit::unSequenceSwitch = flag;
    return flag;
}
