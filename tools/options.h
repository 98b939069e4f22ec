// Command line arguments as options and operands. Options begin with a dash and may stand anywhere;
// "--" ends them, and a lone dash is an operand.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "command.h"

namespace pgtool {

// An option and where its value goes; the default is kept when the option is absent. A switch
// stands alone; a number or a text follows: "--name N" or "--name=N".
struct Option {
    const char* name;  // with its dashes; a single dash for one letter ("-o")
    std::variant<bool*, uint32_t*, std::string*> value;
};

// Sorts arguments into the values of options and the operands. Gives the complaint when an option
// is unknown, or its value is missing or not a number; an empty text when all is well.
std::string ParseOptions(const Arguments& arguments, const std::vector<Option>& options,
                         Arguments* operands);

// Runs a command that answers one question about each operand and has no options. print gives false
// when it has no answer, which fails the command but does not end it.
int AnswerEach(const Command& command, const Arguments& arguments, const std::string& expected,
               bool (*print)(const std::string& operand));

// The number that a whole text is: decimal, or hexadecimal behind "0x". Nothing else: no sign, no
// blank, nothing above 0xFFFFFFFF.
std::optional<uint32_t> ParseNumber(const std::string& text);

// A tag, "0010,0020" in hexadecimal, with parentheses around it or without.
struct Tag {
    uint16_t group = 0;
    uint16_t element = 0;
};
std::optional<Tag> ParseTag(std::string text);

// The tag of a name of the dictionary, case ignored.
std::optional<Tag> FindTagByName(const std::string& name);

// The number that a text of one to four hexadecimal digits is.
std::optional<uint16_t> ParseHexWord(const std::string& text);

}  // namespace pgtool
