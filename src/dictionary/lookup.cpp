// The exported lookups by tag: the built-in rows first, then those of the current edition where
// that is used, and the private dictionary last.
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"
#include "dictionary/current_table.h"
#include "dictionary/edition.h"
#include "dictionary/element_table.h"
#include "dictionary/private_dictionary.h"
#include "dictionary/tags.h"
#include "dictionary/un_sequence_switch.h"
#include "pgkit/dictionary.h"
#include "pgkit/value_representation.h"

using pgkit::CurrentElement;
using pgkit::DictionaryEntry;
using pgkit::ElementEntry;
using pgkit::FindEntry;
using pgkit::PrivateDictionary;
using pgkit::PrivateDictionaryEntry;

namespace {

// Null when the built-in edition is used.
std::optional<CurrentElement> FindIfCurrent(uint16_t group, uint16_t element) {
    if (!pgkit::UsesCurrentEdition()) return std::nullopt;
    return pgkit::FindCurrentElement(group, element);
}

// The name that a table has; empty when none has one.
std::string_view TableName(uint16_t group, uint16_t element) {
    if (const DictionaryEntry* entry = FindEntry(group, element)) return entry->name;
    const auto current = FindIfCurrent(group, element);
    if (current && !current->keyword.empty()) return current->keyword;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? std::string_view(entry->name) : std::string_view();
}

}  // namespace

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
    if (const auto current = FindIfCurrent(group, element)) return current->valueRep;
    const PrivateDictionaryEntry* entry = PrivateDictionary::Instance().FindExact(group, element);
    return entry != nullptr ? entry->valueRep : uint32_t{VR_Unknown};
}

uint32_t pgGetTagPrintableName(uint16_t group, uint16_t element, char* buffer) {
    std::string_view name = TableName(group, element);
    if (name.empty() && element == 0x0000) name = "GroupLength";
    if (name.empty() && element == 0x0010) name = "FileCreator";
    pgkit::CopyUnbounded(buffer, !name.empty() ? name : "<Unknown Tag>");
    return name.empty() ? 0 : 1;
}

uint32_t pgTryToDecodeUNSequences(uint32_t flag) {
    pgkit::unSequenceSwitch.store(flag, std::memory_order_relaxed);
    return flag;
}
