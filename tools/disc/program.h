// Other programs.
#pragma once

#include <string>
#include <vector>

namespace pgtool {

// The path of a program that is installed; empty when there is none of that name.
std::string FindProgram(const std::string& name);

// Runs a program, by its path, with its arguments behind that, and waits for its end. Its standard
// output goes to the standard error stream. Returns its exit status, -1 when it did not end by
// itself or could not be started.
int RunToItsEnd(const std::vector<std::string>& command);

// ---- The system's part --------------------------------------------------------------------------

// What divides the folders in the environment variable PATH, and what programs' files end with.
extern const char kPathSeparator;
extern const char* const kProgramSuffix;

}  // namespace pgtool
