#include <cstdlib>

#include "support/command_line.h"

namespace pgkit_test {

int RunCommandLine(const std::string& line) { return std::system(line.c_str()); }

}  // namespace pgkit_test
