// The files that a command works on.
#pragma once

#include <functional>
#include <string>

#include "command.h"
#include "pgkit/cpp/result.hpp"

namespace pgtool {

struct InputOptions {
    Arguments operands;
    bool recursive = false;
    std::string filesFrom;
};

// The operands FILE..., -r and --files-from.
void AddInputs(OptionSet& options, InputOptions& inputs);

// One file. Directories are walked in the byte order of their names, links to directories are not
// followed.
struct Input {
    std::string path;   // "-" for the standard input
    std::string inner;  // below the directory that was walked; the name alone of a file
    bool isFound;       // in a directory; nobody named it
};

// Visits all files of the operands, in their order, then those of the list. At no time are more
// paths in memory than the directories that are open have names. A visitor that gives false ends
// it. complain is called with the reason for what cannot be walked: a directory without -r among
// it.
void WalkInputs(const InputOptions& inputs, const std::function<bool(const Input&)>& visit,
                const std::function<void(const std::string&)>& complain);

// The complaint when there is nothing to work on, or an empty text.
std::string ComplaintAbout(const InputOptions& inputs);

// Whether there may be more than one file.
bool MayBeSeveral(const InputOptions& inputs);

struct InputCounts {
    size_t done = 0;
    size_t failed = 0;
    size_t noDataSets = 0;  // found in directories, and left alone
};

// Does the work on each file. It gives the error with which it failed, whose message is printed;
// one of no kind when all went well. Files that were found in directories and are no DICOM files
// are counted only. Shows progress on a terminal.
InputCounts ForEachInput(const Command& command, const InputOptions& inputs,
                         const std::function<pgkit::error(const Input&)>& work);

}  // namespace pgtool
