// How commands print and take texts.
#pragma once

#include <cstdint>
#include <string>

#include "options.h"

namespace pgtool {

struct TextOptions {
    std::string edition;  // "current", "built-in", or empty when nobody said
    bool raw = false;     // bytes as they stand in the file, instead of UTF-8
    bool utf8 = false;
};

// --edition alone, for commands that only look things up.
void AddEdition(OptionSet& options, TextOptions& texts);
// --edition, --raw and --utf8.
void AddTextOptions(OptionSet& options, TextOptions& texts);

bool IsCurrent(const TextOptions& texts);

// Makes the library answer by the edition. Returns the complaint about the options, or an empty
// text.
[[nodiscard]] std::string UseTextOptions(const TextOptions& texts);
// The same where JSON is printed or taken, which is UTF-8.
[[nodiscard]] std::string UseTextOptionsForJson(const TextOptions& texts);

// A text as it is printed: with escapes (WithEscapes), but for --raw.
std::string Shown(const std::string& text, const TextOptions& texts);
// The same of a text that nobody says the character set of (AnyToUtf8).
std::string ShownAny(const std::string& text, const TextOptions& texts);

}  // namespace pgtool
