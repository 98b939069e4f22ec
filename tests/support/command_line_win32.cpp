#include <cstdlib>
#include <filesystem>

#include "support/command_line.h"

namespace pgkit_test {

// std::system takes the line for one of the process's code page.
int RunCommandLine(const std::string& line) {
    const std::u8string text(line.begin(), line.end());
    return _wsystem(std::filesystem::path(text).c_str());
}

}  // namespace pgkit_test
