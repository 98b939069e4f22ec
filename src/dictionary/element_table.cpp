#include "dictionary/element_table.h"

#include <algorithm>
#include <iterator>

#include "base/row_index.h"
#include "dictionary/name_hash.h"
#include "dictionary/tags.h"
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

using ElementIndex = RowIndex<8192>;

constexpr ElementIndex kTagIndex(kElementCount, [](size_t row) {
    return TagKey(kElements[row].group, kElements[row].element);
});

constexpr ElementIndex kNameIndex(kElementCount,
                                  [](size_t row) { return NameHash(kElements[row].name); });

}  // namespace

const DictionaryEntry& ElementEntry(uint32_t elementId) { return kElements[elementId]; }

uint32_t FindElementId(uint16_t group, uint16_t element) {
    const size_t row = kTagIndex.Find(TagKey(group, element), [=](size_t i) {
        return kElements[i].group == group && kElements[i].element == element;
    });
    return row == ElementIndex::kNoRow ? kNoElementId : static_cast<uint32_t>(row);
}

uint32_t FindElementIdByName(std::string_view name) {
    if (name.size() > kMaxElementNameLength) return kNoElementId;
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

}  // namespace pgkit
