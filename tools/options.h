// Command line arguments as options and operands. Options have two dashes and may stand anywhere;
// "--" ends them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "command.h"

namespace pgtool {

// An option that takes a 32-bit number: "--name N" or "--name=N".
struct NumberOption {
    const char* name;  // with its dashes
    uint32_t* value;   // keeps its default when the option is absent
};

// Sorts arguments into the numbers of options and the operands. Gives the complaint when an option
// is unknown, or its number is missing or not one; an empty text when all is well.
std::string ParseOptions(const Arguments& arguments, const std::vector<NumberOption>& options,
                         Arguments* operands);

// The number that a whole text is: decimal, or hexadecimal behind "0x". Nothing else: no sign, no
// blank, nothing above 0xFFFFFFFF.
std::optional<uint32_t> ParseNumber(const std::string& text);

// The number that a text of one to four hexadecimal digits is.
std::optional<uint16_t> ParseHexWord(const std::string& text);

}  // namespace pgtool
