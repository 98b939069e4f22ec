// UTF-8 to text of a data set.
#pragma once

#include <string>
#include <string_view>

#include "text/text_rules.h"

namespace pgkit {

// By itself, because the formatter breaks a definition that has an attribute.
enum class [[nodiscard]] EncodeResult;

enum class EncodeResult { Done, NotExpressible, InvalidUtf8 };

// Appends the encoded text to result, which is of no use after a failure. Throws std::bad_alloc.
EncodeResult EncodeText(std::string_view attribute, const TextRules& rules, std::string_view utf8,
                        std::string& result);

}  // namespace pgkit
