// Texts of data sets in UTF-8, for terminals and other programs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pgtool {

// A field of a directory record of a value representation, under the record's own character set
// (pgxFieldToUtf8).
std::string FieldToUtf8(const char* field, uint32_t valueRep, const char* characterSet);

// The same of a text that nobody says the character set of: UTF-8 if it can be, else ISO 8859-1.
std::string AnyToUtf8(const std::string& text);

// With U+FFFD for what is no UTF-8.
std::string WellFormedUtf8(std::string_view text);

bool IsUtf8(std::string_view text);

// How many characters a text in UTF-8 has.
size_t CharacterCount(std::string_view utf8);

// A text in UTF-8 as it can be shown: control characters, and bytes that are no UTF-8, as "\n",
// "\r", "\t" or their number, "\x1b"; what turns the direction of the text around as
// "\u202e".
std::string WithEscapes(std::string_view utf8);

}  // namespace pgtool
