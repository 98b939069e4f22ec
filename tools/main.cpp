// pgtool: pgkit at the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>

#include "command.h"
#include "command_line.h"
#include "help.h"
#include "pgkit/diagnostics.h"
#include "pgkit/paths.h"
#include "pgkit/version.h"
#include "standard_streams.h"
#include "suggestion.h"
#include "utf8_text.h"

namespace pgtool {

namespace {

int PrintVersion() {
    char text[64];
    pgGetVersionString(text, sizeof text);
    std::printf("pgkit %s\n", text);
    return kDone;
}

int UnknownCommand(const std::string& name) {
    std::fprintf(stderr, "pgtool: unknown command %s%s; pgtool --help lists them\n",
                 WithEscapes(name).c_str(), DidYouMean(name, CommandNames()).c_str());
    return kMisuse;
}

// "--outptu" is the first argument that nobody knows, if it looks like an option.
std::string UnknownOption(const Arguments& unknown, const OptionSet& options) {
    std::string name = unknown.empty() ? "" : unknown.front().substr(0, unknown.front().find('='));
    if (!name.starts_with('-')) return "unexpected: " + name;
    Arguments known = {"--help"};
    for (const OptionDescription& option : options.Descriptions())
        known.push_back(option.names.substr(option.names.find("--")));
    return "unknown option " + name + DidYouMean(name, known);
}

int RunCommand(const Command& command, const Arguments& arguments) {
    CLI::App parser;
    parser.set_help_flag("-h,--help");
    parser.allow_windows_style_options(false);
    OptionSet options(parser);
    const Work work = command.define(options);
    try {
        parser.parse(ForParser(arguments));
    } catch (const CLI::CallForHelp&) {
        std::fputs(HelpAbout(command, options.Descriptions()).c_str(), stdout);
        return kDone;
    } catch (const CLI::ExtrasError&) {
        return Misuse(command, UnknownOption(parser.remaining(), options));
    } catch (const CLI::ParseError& error) {
        return Misuse(command, error.what());
    }
    const std::string complaint = options.ComplaintAboutOperands();
    return complaint.empty() ? work() : Misuse(command, complaint);
}

int Help(const Arguments& arguments) {
    if (arguments.empty()) {
        std::fputs(GeneralHelp().c_str(), stdout);
        return kDone;
    }
    const Command* const command = FindCommand(arguments[0]);
    return command != nullptr ? RunCommand(*command, {"--help"}) : UnknownCommand(arguments[0]);
}

int Run(const Arguments& arguments) {
    for (const std::string& argument : arguments) {
        if (IsUtf8(argument)) continue;
        std::fputs("pgtool: an argument is not UTF-8\n", stderr);
        return kMisuse;
    }
    if (arguments.empty()) {
        std::fputs(GeneralHelp().c_str(), stderr);
        return kMisuse;
    }
    const std::string& name = arguments[0];
    const Arguments rest(arguments.begin() + 1, arguments.end());
    if (name == "help" || name == "--help" || name == "-h") return Help(rest);
    if (name == "--version") return PrintVersion();
    const Command* const command = FindCommand(name);
    return command != nullptr ? RunCommand(*command, rest) : UnknownCommand(name);
}

int Main(int argumentCount, char** arguments) {
    MakeStandardOutputBinary();
    pgxSetVerbosity(0);  // names of patients are printed where a command is about them
    pgxSetPathEncoding(PGX_PATHS_UTF8);
    const int status = Run(CommandLine(argumentCount, arguments));
    // A full disk or a closed pipe shows at the latest here.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("pgtool: cannot write to the standard output\n", stderr);
        return kFailed;
    }
    return status;
}

}  // namespace

}  // namespace pgtool

int main(int argumentCount, char** arguments) {
    try {
        return pgtool::Main(argumentCount, arguments);
    } catch (const std::exception& error) {  // memory has run out, above all
        std::fprintf(stderr, "pgtool: %s\n", error.what());
        return pgtool::kFailed;
    }
}
