// Runs a program and collects what it did.
#pragma once

#include <string>
#include <vector>

namespace pgkit_test {

struct Finished {
    int exitStatus;   // -1 when the program did not end by itself
    std::string out;  // as it was written
    std::string err;  // line ends read as "\n" on every platform
};

// The arguments may hold blanks and backslashes but no quotation marks of either kind.
Finished RunProgram(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace pgkit_test
