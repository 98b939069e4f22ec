// Lists in texts, and letters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pgtool {

// The parts between the separators, parts of the text themselves: one more than there are
// separators.
std::vector<std::string_view> Split(std::string_view text, char separator);

// Without the blanks around it.
std::string_view WithoutBlanks(std::string_view text);

// With a to z for A to Z.
std::string LowerAscii(std::string_view text);

// "1 file", "2 files".
std::string Counted(size_t count, const char* one, const char* several);

std::string Joined(const std::vector<std::string>& words, std::string_view separator);

}  // namespace pgtool
