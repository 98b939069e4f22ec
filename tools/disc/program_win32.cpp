#include <process.h>

#include "disc/program.h"
#include "standard_streams.h"

namespace pgtool {

const char kPathSeparator = ';';
const char* const kProgramSuffix = ".exe";

namespace {

// As one argument: names of files have no quotation marks, and backslashes in front of one count
// double.
std::string Quoted(const std::string& argument) {
    const size_t atEnd = argument.size() - (argument.find_last_not_of('\\') + 1);
    return "\"" + argument + std::string(atEnd, '\\') + "\"";
}

}  // namespace

int RunToItsEnd(const std::vector<std::string>& command) {
    std::vector<std::string> quoted;
    quoted.reserve(command.size());
    for (const std::string& argument : command)
        quoted.push_back(Quoted(argument));
    std::vector<const char*> arguments;
    arguments.reserve(quoted.size() + 1);
    for (const std::string& argument : quoted)
        arguments.push_back(argument.c_str());
    arguments.push_back(nullptr);
    const DivertedOutput diverted;
    return static_cast<int>(_spawnv(_P_WAIT, command[0].c_str(), arguments.data()));
}

}  // namespace pgtool
