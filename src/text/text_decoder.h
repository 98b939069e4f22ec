// Text of a data set to UTF-8.
#pragma once

#include <string_view>

#include "text/specific_character_set.h"
#include "text/text_rules.h"
#include "text/utf8_output.h"

namespace pgkit {

// What becomes of a character, or an escape sequence, that the end of the text cuts in two.
enum class CutEnd { Replace, Drop };

// The text without the blanks and NULs that fill it up at its end.
std::string_view WithoutPadding(std::string_view text);

// Whether the bytes are UTF-8 as they stand in every character set: ASCII without escapes.
bool IsPlainText(std::string_view text);

// Every byte sequence gives some text. The attribute is that of (0008,0005).
void DecodeText(std::string_view attribute, const TextRules& rules, std::string_view text,
                CutEnd cutEnd, Utf8Output& output);

}  // namespace pgkit
