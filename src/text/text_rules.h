// What a value representation makes of text: whether the character set holds for it, and which
// characters of it are delimiters.
#pragma once

#include <cstdint>
#include <string_view>

namespace pgkit {

struct TextRules {
    uint32_t valueRep;
    bool usesCharacterSet;  // else ASCII
    // Between values, name components and component groups. Lines, pages and tabs always delimit.
    std::string_view delimiters;
};

// Null for a value representation whose values are no text.
const TextRules* FindTextRules(uint32_t valueRep);

// Whether a character in a text of these rules brings the initial sets back: behind it they are
// active again, in front of it a writer makes them so.
bool IsDelimiter(const TextRules& rules, char c);

}  // namespace pgkit
