// The commands of pgtool. A new command is one file that defines one constant, and one row of the
// table in commands.cpp.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "options.h"

namespace pgtool {

// The exit statuses of every command.
enum ExitStatus : int {
    kDone = 0,
    kFailed = 1,  // the operation itself failed: a file cannot be read, a tag is unknown
    kMisuse = 2   // the command line is wrong
};

// What a command does once its options have their values; gives the exit status.
using Work = std::function<int()>;

struct Command {
    const char* name;
    const char* synopsis;  // what follows "pgtool " in the help
    const char* summary;   // one line
    const char* details;   // what the help says beside the options, complete lines
    Work (*define)(OptionSet& options);
};

// The commands under their headings, in the order of the help.
struct CommandGroup {
    const char* heading;
    std::vector<const Command*> commands;
};
const std::vector<CommandGroup>& CommandGroups();
Arguments CommandNames();
// Null for a name that no command has.
const Command* FindCommand(const std::string& name);

// Both print "pgtool COMMAND: ..." on the standard error stream and give the exit status.
int Fail(const Command& command, const std::string& reason);
int Misuse(const Command& command, const std::string& reason);

// Answers one question about each operand. print gives false when it has no answer, which fails the
// command but does not end it.
int AnswerEach(const Command& command, const Arguments& operands,
               const std::function<bool(const std::string& operand)>& print);

}  // namespace pgtool
