// Starts programs as the system does it.
#pragma once

#include <string>

namespace pgkit_test {

// For a program that could not be started, or did not end by itself.
constexpr int kNotStarted = -1;

// Runs a line of a program and its arguments, each quoted where it has to be, to the program's end;
// returns its exit status. Its output goes to two files. All texts are UTF-8 on every platform.
int RunCommandLine(const std::string& line, const std::string& out, const std::string& err);

}  // namespace pgkit_test
