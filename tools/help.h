// What the tool says about itself: help, the manual page, the completions of shells. All of it
// comes from the table of commands and the descriptions of their options.
#pragma once

#include <string>

#include "command.h"

namespace pgtool {

std::string GeneralHelp();
std::string HelpAbout(const Command& command, const std::vector<OptionDescription>& options);

// "man", "bash" or "zsh"; empty for any other word.
std::string Documentation(const std::string& format);

}  // namespace pgtool
