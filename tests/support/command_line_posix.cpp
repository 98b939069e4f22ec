#include <cstdlib>

#include "support/command_line.h"

namespace pgkit_test {

// std::system returns the status word of wait(): the signal in the low seven bits, the exit status
// in the second byte.
int RunCommandLine(const std::string& line, const std::string& out, const std::string& err) {
    const int status = std::system((line + " >'" + out + "' 2>'" + err + "'").c_str());
    return (status & 0x7F) == 0 ? (status >> 8) & 0xFF : kNotStarted;
}

}  // namespace pgkit_test
