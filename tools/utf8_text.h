// Texts of data sets in UTF-8, for terminals and other programs.
#pragma once

#include <string>
#include <string_view>

namespace pgtool {

// With the character set ISO_IR 192 the text is UTF-8 already; what is not well-formed in it
// becomes U+FFFD. With any other, each byte becomes the character of its number, as in ISO 8859-1:
// nothing is lost, and whoever knows the character set can have the bytes back.
std::string ToUtf8(std::string_view text, std::string_view characterSet);

// A text in UTF-8 with question marks for the control characters, which could move the cursor of a
// terminal or break a line.
std::string WithoutControls(std::string_view utf8);

bool IsUtf8(std::string_view text);

// How many characters a text in UTF-8 has.
size_t CharacterCount(std::string_view utf8);

// A text in UTF-8 as it can be shown: control characters, and bytes that are no UTF-8, as "\n",
// "\r", "\t" or their number, "\x1b"; what turns the direction of the text around as
// "\u202e".
std::string WithEscapes(std::string_view utf8);

}  // namespace pgtool
