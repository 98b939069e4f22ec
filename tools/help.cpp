#include "help.h"

#include <algorithm>
#include <sstream>

namespace pgtool {

namespace {

constexpr size_t kWidth = 88;
constexpr size_t kHelpColumn = 26;

// A paragraph in lines, each but the first behind an indentation.
std::string Wrapped(const std::string& text, size_t indentation) {
    std::string wrapped;
    size_t column = indentation;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (!wrapped.empty() && column + 1 + word.size() > kWidth) {
            wrapped += "\n" + std::string(indentation, ' ');
            column = indentation;
        } else if (!wrapped.empty()) {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += word.size();
    }
    return wrapped;
}

std::string OptionHelp(const OptionDescription& option) {
    std::string head = "  " + option.names;
    for (size_t comma = 0; (comma = head.find(',', comma)) != std::string::npos; comma += 2)
        head.replace(comma, 1, ", ");
    if (!option.argument.empty()) head += " " + option.argument;
    if (head.size() + 2 > kHelpColumn) {
        head += "\n" + std::string(kHelpColumn, ' ');
    } else {
        head.resize(kHelpColumn, ' ');
    }
    return head + Wrapped(option.help, kHelpColumn) + "\n";
}

}  // namespace

std::string GeneralHelp() {
    std::string help = "usage: pgtool COMMAND ARGUMENT...\n";
    for (const CommandGroup& group : CommandGroups()) {
        help += "\n" + std::string(group.heading) + ":\n";
        for (const Command* command : group.commands) {
            std::string line = "  " + std::string(command->name);
            line.resize(std::max<size_t>(line.size() + 1, 14), ' ');
            help += line + command->summary + "\n";
        }
    }
    return help +
           "\npgtool COMMAND --help explains a command, pgtool --version names the library.\n"
           "Results go to the standard output, errors to the standard error stream.\n"
           "Exit status: 0 done, 1 the operation failed, 2 the command line is wrong.\n";
}

std::string HelpAbout(const Command& command, const std::vector<OptionDescription>& options) {
    std::string help = "usage: pgtool " + std::string(command.synopsis) + "\n\n";
    help += command.details;
    if (!options.empty()) help += "\n";
    for (const OptionDescription& option : options)
        help += OptionHelp(option);
    return help + (options.empty() ? "\n" : "") +
           OptionHelp({"-h,--help", "", "explain the command", {}});
}

}  // namespace pgtool
