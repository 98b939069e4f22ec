// The manual page and the completions of shells, from the table of commands.
#include <algorithm>
#include <sstream>

#include "help.h"
#include "words.h"

namespace pgtool {

namespace {

Arguments NamesOf(const OptionDescription& option) {
    const auto names = Split(option.names, ',');
    return {names.begin(), names.end()};
}

template <typename Use>
void ForEachCommand(Use use) {
    for (const CommandGroup& group : CommandGroups()) {
        for (const Command* command : group.commands) {
            use(*command,
                DescriptionsOf([command](OptionSet& options) { command->define(options); }));
        }
    }
}

// ---- The manual page ----------------------------------------------------------------------------

std::string Roff(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else {
            escaped += c;
        }
    }
    const bool isRequest = escaped.starts_with('.') || escaped.starts_with('\'');
    return (isRequest ? "\\&" : "") + escaped;
}

std::string RoffLines(const std::string& text) {
    std::string escaped;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        escaped += Roff(line) + "\n";
    return escaped;
}

// One line: the source has it in several, indented.
std::string OnOneLine(const std::string& text) {
    std::istringstream words(text);
    std::string line;
    for (std::string word; words >> word;)
        line += (line.empty() ? "" : " ") + word;
    return line;
}

std::string ManualOf(const Command& command, const std::vector<OptionDescription>& options) {
    std::string page = std::string(".SS ") + command.name + "\n.B pgtool " +
                       Roff(OnOneLine(command.synopsis)) + "\n.PP\n" + RoffLines(command.details);
    for (const OptionDescription& option : options) {
        page += ".TP\n.B " + Roff(Joined(NamesOf(option), ", "));
        if (!option.argument.empty()) page += " " + Roff(option.argument);
        page += "\n" + Roff(option.help) + "\n";
    }
    return page;
}

std::string Manual() {
    std::string page =
        ".\\\" Made by \"pgtool documentation man\".\n"
        ".TH PGTOOL 1 \"\" \"pgkit\" \"User Commands\"\n"
        ".SH NAME\n"
        "pgtool \\- read, edit and write DICOM data sets and media\n"
        ".SH SYNOPSIS\n"
        ".B pgtool\n"
        ".I COMMAND ARGUMENT...\n"
        ".br\n"
        ".B pgtool\n"
        ".I COMMAND\n"
        ".B \\-\\-help\n"
        ".br\n"
        ".B pgtool \\-\\-version\n"
        ".SH DESCRIPTION\n"
        ".B pgtool\n"
        "is the command line client of the pgkit library. Results go to the standard output, "
        "errors\n"
        "to the standard error stream, each with the file and the reason; the other files are "
        "still\n"
        "done. Options may stand anywhere, \\-\\- ends them.\n"
        ".SH COMMANDS\n";
    ForEachCommand([&](const Command& command, const std::vector<OptionDescription>& options) {
        page += ManualOf(command, options);
    });
    return page +
           ".SH EXIT STATUS\n"
           ".TP\n.B 0\ndone\n"
           ".TP\n.B 1\nthe operation failed, for some file at least\n"
           ".TP\n.B 2\nthe command line is wrong, and nothing was done\n"
           ".SH EXAMPLES\n"
           ".TP\n.B pgtool dump image.dcm \\-t PatientName\n"
           "print one element\n"
           ".TP\n.B pgtool set *.dcm PatientID=4711 \\-\\-in\\-place\n"
           "change a value in several files\n"
           ".TP\n.B pgtool scan /archive \\-\\-format jsonl\n"
           "list all data sets below a directory\n"
           ".TP\n.B pgtool browse /media/cdrom\n"
           "list what is on a disc\n";
}

// ---- Completions --------------------------------------------------------------------------------

std::string Bash() {
    std::string choices;
    std::string options;
    ForEachCommand([&](const Command& command, const std::vector<OptionDescription>& all) {
        Arguments names = {"--help"};
        for (const OptionDescription& option : all) {
            const Arguments own = NamesOf(option);
            names.push_back(own.back());
            if (option.choices.empty()) continue;
            choices += std::string("            ") + command.name + ":" + own.back() + ") words='" +
                       Joined(option.choices, " ") + "' ;;\n";
        }
        options += std::string("                ") + command.name + ") words='" +
                   Joined(names, " ") + "' ;;\n";
    });
    return "# Completion of pgtool's commands, options and their values, and of files behind them. "
           "Made\n"
           "# by \"pgtool documentation bash\".\n"
           "_pgtool() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words=''\n"
           "    COMPREPLY=()\n"
           "    if [[ $COMP_CWORD -eq 1 ]] || [[ $COMP_CWORD -eq 2 && $command == help ]]; then\n"
           "        words='" +
           Joined(CommandNames(), " ") +
           " help --help --version'\n"
           "    else\n"
           "        case $command:${COMP_WORDS[COMP_CWORD - 1]} in\n" +
           choices +
           "        esac\n"
           "        if [[ -z $words && $current == -* ]]; then\n"
           "            case $command in\n" +
           options +
           "            esac\n"
           "        fi\n"
           "    fi\n"
           "    if [[ -n $words ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -o default -F _pgtool pgtool\n";
}

// Within single quotes; some characters of a description mean something.
std::string Zsh(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\'') {
            escaped += "'\\''";
            continue;
        }
        if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string ZshOption(const OptionDescription& option) {
    const std::string description = "[" + Zsh(option.help) + "]";
    std::string value;
    if (!option.choices.empty()) {
        value = ":value:(" + Joined(option.choices, " ") + ")";
    } else if (!option.argument.empty()) {
        value = ":" + Zsh(option.argument) + ":_files";
    }
    std::string lines;
    for (const std::string& name : NamesOf(option))
        lines += "      '*" + name + description + value + "' \\\n";
    return lines;
}

std::string Zsh() {
    std::string commands;
    std::string cases;
    ForEachCommand([&](const Command& command, const std::vector<OptionDescription>& options) {
        commands += std::string("  '") + command.name + ":" + Zsh(command.summary) + "'\n";
        cases += std::string("  ") + command.name + ")\n    _arguments \\\n";
        for (const OptionDescription& option : options)
            cases += ZshOption(option);
        cases += "      '--help[explain the command]' \\\n      '*:file:_files'\n    ;;\n";
    });
    return "#compdef pgtool\n"
           "# Completion of pgtool's commands and options. Made by \"pgtool documentation zsh\".\n"
           "local -a commands\n"
           "commands=(\n" +
           commands +
           ")\n"
           "if ((CURRENT == 2)); then\n"
           "  _describe command commands\n"
           "  return\n"
           "fi\n"
           "shift words\n"
           "((CURRENT--))\n"
           "case $words[1] in\n" +
           cases + "esac\n";
}

}  // namespace

std::string Documentation(const std::string& format) {
    if (format == "man") return Manual();
    if (format == "bash") return Bash();
    return format == "zsh" ? Zsh() : "";
}

}  // namespace pgtool
