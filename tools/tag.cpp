#include "tag.h"

#include "digits.h"
#include "pgkit/dictionary.h"

namespace pgtool {

namespace {

// The number that a text of one to four hexadecimal digits is.
std::optional<uint16_t> ParseHexWord(const std::string& text) {
    return text.size() <= 4 ? ParseDigits<uint16_t>(text, 16) : std::nullopt;
}

}  // namespace

std::optional<Tag> ParseTag(std::string text) {
    if (text.size() > 2 && text.front() == '(' && text.back() == ')') {
        text = text.substr(1, text.size() - 2);
    }
    const size_t comma = text.find(',');
    if (comma == std::string::npos) return std::nullopt;
    const auto group = ParseHexWord(text.substr(0, comma));
    const auto element = ParseHexWord(text.substr(comma + 1));
    if (!group || !element) return std::nullopt;
    return Tag{*group, *element};
}

std::optional<Tag> FindTagByName(const std::string& name) {
    const uint32_t identifier = pgGetTagElementId(name.c_str());
    Tag tag;
    if (identifier == kNoIdentifier ||
        pgFindElementIdInfo(static_cast<int32_t>(identifier), &tag.group, &tag.element) == 0) {
        return std::nullopt;
    }
    return tag;
}

}  // namespace pgtool
