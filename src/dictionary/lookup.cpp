// The exported lookups by tag: the built-in rows first, then those of the current edition where
// that is used, and the private dictionary last; and the choice of its file.
#include <optional>
#include <string>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dictionary/current_table.h"
#include "dictionary/edition.h"
#include "dictionary/element_table.h"
#include "dictionary/private_dictionary.h"
#include "dictionary/tag_name.h"
#include "dictionary/tags.h"
#include "dictionary/un_sequence_switch.h"
#include "pgkit/dictionary.h"
#include "pgkit/value_representation.h"

namespace pgkit {

namespace {

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

// None while the built-in edition is used.
std::optional<CurrentElement> FindIfCurrent(uint16_t group, uint16_t element) {
    if (!UsesCurrentEdition()) return std::nullopt;
    return FindCurrentElement(group, element);
}

uint32_t FindVr(uint16_t group, uint16_t element) {
    if (IsPrivateCreator(group, element)) return VR_LO;
    if (element == 0) return VR_UL;
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->valueRep;
    if (const auto current = FindIfCurrent(group, element)) return current->valueRep;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
}

}  // namespace

std::optional<std::string_view> TagName(uint16_t group, uint16_t element) {
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->name;
    const auto current = FindIfCurrent(group, element);
    if (current && !current->keyword.empty()) return current->keyword;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    if (entry != nullptr) return entry->name;
    if (element == 0x0000) return "GroupLength";
    if (element == 0x0010) return "FileCreator";
    return std::nullopt;
}

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

uint32_t pgSetPrivateDictionaryFile(const char* path) {
    return Guarded([=] { return pgkit::PrivateDictionary::Instance().ReadFile(path) ? 1u : 0u; });
}
