// The commands of pgtool. A new command is one file that defines one constant, and one row of the
// table in main.cpp.
#pragma once

#include <string>
#include <vector>

namespace pgtool {

// The exit statuses of every command.
enum ExitStatus : int {
    kDone = 0,
    kFailed = 1,  // the operation itself failed: a file cannot be read, a tag is unknown
    kMisuse = 2   // the command line is wrong
};

using Arguments = std::vector<std::string>;

struct Command {
    const char* name;
    const char* synopsis;  // what follows "pgtool " in the help
    const char* summary;   // one line
    const char* details;   // the rest of the command's help, complete lines
    int (*run)(const Arguments& arguments);
};

extern const Command kBrowseCommand;
extern const Command kCheckCommand;
extern const Command kDumpCommand;
extern const Command kMkdirCommand;
extern const Command kModalityCommand;
extern const Command kSaveCommand;
extern const Command kSetCommand;
extern const Command kTagsCommand;
extern const Command kUidCommand;

// Both print "pgtool COMMAND: ..." on the standard error stream and give the exit status.
int Fail(const Command& command, const std::string& reason);
int Misuse(const Command& command, const std::string& reason);

// Runs a command that answers one question about each operand and has no options. print gives false
// when it has no answer, which fails the command but does not end it.
int AnswerEach(const Command& command, const Arguments& arguments, const std::string& expected,
               bool (*print)(const std::string& operand));

}  // namespace pgtool
