// The exported functions over the tables of today's standard.
#include "dictionary/edition.h"

#include <optional>
#include <string_view>

#include "base/firewall.h"
#include "base/text.h"
#include "dictionary/current_table.h"
#include "dictionary/element_table.h"
#include "dictionary/tags.h"

namespace pgkit {

namespace {

constexpr Tag TagOf(uint32_t key) {
    return {static_cast<uint16_t>(key >> 16), static_cast<uint16_t>(key)};
}

// The value of a digit; an x stands for the first group, or element, of a range.
std::optional<uint32_t> DigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char upper = ToUpper(c);
    if (upper >= 'A' && upper <= 'F') return upper - 'A' + 10;
    if (upper == 'X') return 0;
    return std::nullopt;
}

std::optional<uint16_t> ParseDigits(std::string_view digits) {
    uint32_t number = 0;
    for (const char c : digits) {
        const std::optional<uint32_t> digit = DigitValue(c);
        if (!digit) return std::nullopt;
        number = number * 16 + *digit;
    }
    return static_cast<uint16_t>(number);
}

// "gggg,eeee", with or without parentheses, or "ggggeeee".
std::optional<Tag> ParseTag(std::string_view text) {
    if (text.size() == 11 && text.front() == '(' && text.back() == ')') text = text.substr(1, 9);
    const bool hasComma = text.size() == 9 && text[4] == ',';
    if (!hasComma && text.size() != 8) return std::nullopt;
    const auto group = ParseDigits(text.substr(0, 4));
    const auto element = ParseDigits(text.substr(hasComma ? 5 : 4));
    if (!group || !element) return std::nullopt;
    return Tag{*group, *element};
}

std::optional<Tag> CurrentTagAt(size_t index) {
    const auto current = CurrentElementAt(index);
    if (!current) return std::nullopt;
    return TagOf(current->tag);
}

std::optional<Tag> FindTag(std::string_view name) {
    const uint32_t id = FindElementIdByName(name);
    if (id != kNoElementId) return Tag{ElementEntry(id).group, ElementEntry(id).element};
    if (const auto current = FindCurrentKeyword(name)) return TagOf(current->tag);
    return ParseTag(name);
}

int32_t UseEdition(int32_t wanted) {
    if (wanted != PGX_EDITION_BUILT_IN && wanted != PGX_EDITION_CURRENT) return -1;
    return edition.exchange(wanted, std::memory_order_relaxed);
}

int32_t TellTag(std::optional<Tag> tag, uint16_t* group, uint16_t* element) {
    if (!tag) return 0;
    if (group != nullptr) *group = tag->group;
    if (element != nullptr) *element = tag->element;
    return 1;
}

// Copies a text of an element, or an empty one when the standard has no such element.
size_t Copy(uint16_t group, uint16_t element, std::string_view CurrentElement::*text, char* buffer,
            size_t size) {
    const auto entry = FindCurrentElement(group, element);
    return CopyBounded(buffer, size, entry ? (*entry).*text : std::string_view());
}

size_t Copy(const char* uid, const char* CurrentUid::*text, char* buffer, size_t size) {
    const CurrentUid* entry = FindCurrentUid(OrEmpty(uid));
    return CopyBounded(buffer, size, entry != nullptr ? entry->*text : "");
}

}  // namespace

}  // namespace pgkit

using pgkit::Copy;
using pgkit::CurrentElement;
using pgkit::CurrentUid;
using pgkit::Guarded;

int32_t pgxUseEdition(int32_t edition) {
    return Guarded([=] { return pgkit::UseEdition(edition); });
}

size_t pgxTagKeyword(uint16_t group, uint16_t element, char* buffer, size_t size) {
    return Guarded([=] { return Copy(group, element, &CurrentElement::keyword, buffer, size); });
}

size_t pgxTagMultiplicity(uint16_t group, uint16_t element, char* buffer, size_t size) {
    return Guarded(
        [=] { return Copy(group, element, &CurrentElement::multiplicity, buffer, size); });
}

int32_t pgxFindTag(const char* name, uint16_t* group, uint16_t* element) {
    return Guarded(
        [=] { return pgkit::TellTag(pgkit::FindTag(pgkit::OrEmpty(name)), group, element); });
}

int32_t pgxCurrentTagAt(uint32_t index, uint16_t* group, uint16_t* element) {
    return Guarded([=] { return pgkit::TellTag(pgkit::CurrentTagAt(index), group, element); });
}

size_t pgxUidName(const char* uid, char* buffer, size_t size) {
    return Guarded([=] { return Copy(uid, &CurrentUid::name, buffer, size); });
}

size_t pgxUidKeyword(const char* uid, char* buffer, size_t size) {
    return Guarded([=] { return Copy(uid, &CurrentUid::keyword, buffer, size); });
}
