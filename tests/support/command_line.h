// Runs a line of the system's command processor.
#pragma once

#include <string>

namespace pgkit_test {

// The line is UTF-8 on every platform. What std::system returns.
int RunCommandLine(const std::string& line);

}  // namespace pgkit_test
