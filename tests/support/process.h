// Runs a program and collects what it did.
#pragma once

#include <string>
#include <vector>

namespace pgkit_test {

struct Finished {
    int exitStatus;  // -1 when the program did not end by itself
    std::string out;
    std::string err;
};

// The arguments may hold blanks but no quotation marks.
Finished RunProgram(const std::string& path, const std::vector<std::string>& arguments);

}  // namespace pgkit_test
