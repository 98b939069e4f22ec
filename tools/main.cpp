// pgtool: pgkit at the command line.
#include <cstdio>

#include "command.h"
#include "command_line.h"
#include "pgkit/diagnostics.h"
#include "pgkit/paths.h"
#include "pgkit/version.h"
#include "standard_streams.h"

namespace pgtool {

namespace {

constexpr const Command* kCommands[] = {&kBrowseCommand,   &kDumpCommand,  &kSaveCommand,
                                        &kSetCommand,      &kTagsCommand,  &kUidCommand,
                                        &kModalityCommand, &kMkdirCommand, &kCheckCommand};

const Command* FindCommand(const std::string& name) {
    for (const Command* command : kCommands) {
        if (name == command->name) return command;
    }
    return nullptr;
}

void PrintHelp(std::FILE* stream) {
    std::fputs("usage: pgtool COMMAND ARGUMENT...\n\n", stream);
    for (const Command* command : kCommands) {
        std::fprintf(stream, "  %-9s %s\n", command->name, command->summary);
    }
    std::fputs(
        "\npgtool help COMMAND explains a command, pgtool --version names the library.\n"
        "Results go to the standard output, errors to the standard error stream.\n"
        "Exit status: 0 done, 1 the operation failed, 2 the command line is wrong.\n",
        stream);
}

int PrintVersion() {
    char text[64];
    pgGetVersionString(text, sizeof text);
    std::printf("pgkit %s\n", text);
    return kDone;
}

int UnknownCommand(const std::string& name) {
    std::fprintf(stderr, "pgtool: unknown command %s; pgtool --help lists them\n", name.c_str());
    return kMisuse;
}

int Help(const Arguments& arguments) {
    if (arguments.empty()) {
        PrintHelp(stdout);
        return kDone;
    }
    const Command* const command = FindCommand(arguments[0]);
    if (command == nullptr) return UnknownCommand(arguments[0]);
    std::printf("usage: pgtool %s\n\n%s", command->synopsis, command->details);
    return kDone;
}

int Run(const Arguments& arguments) {
    if (arguments.empty()) {
        PrintHelp(stderr);
        return kMisuse;
    }
    const std::string& name = arguments[0];
    const Arguments rest(arguments.begin() + 1, arguments.end());
    if (name == "help" || name == "--help" || name == "-h") return Help(rest);
    if (name == "--version") return PrintVersion();
    const Command* const command = FindCommand(name);
    return command != nullptr ? command->run(rest) : UnknownCommand(name);
}

}  // namespace

}  // namespace pgtool

int main(int argumentCount, char** arguments) {
    pgtool::MakeStandardOutputBinary();
    pgxSetVerbosity(0);  // names of patients are printed where a command is about them
    pgxSetPathEncoding(PGX_PATHS_UTF8);
    const int status = pgtool::Run(pgtool::CommandLine(argumentCount, arguments));
    // A full disk or a closed pipe shows at the latest here.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("pgtool: cannot write to the standard output\n", stderr);
        return pgtool::kFailed;
    }
    return status;
}
