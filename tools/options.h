// Command line arguments as options and operands. Options begin with a dash and may stand anywhere;
// "--" ends them, and a lone dash is an operand.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "command.h"

namespace pgtool {

// An option and where its value goes; the default is kept when the option is absent. A switch
// stands alone; a number or a text follows: "--name N" or "--name=N". Numbers are decimal, or
// hexadecimal behind "0x"; nothing else: no sign, no blank, nothing above 0xFFFFFFFF.
struct Option {
    const char* name;  // with its dashes; a single dash for one letter ("-o")
    std::variant<bool*, uint32_t*, std::string*> value;
};

// Sorts arguments into the values of options and the operands. Gives the complaint when an option
// is unknown, or its value is missing or not a number; an empty text when all is well.
std::string ParseOptions(const Arguments& arguments, const std::vector<Option>& options,
                         Arguments* operands);

}  // namespace pgtool
