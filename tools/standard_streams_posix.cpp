#include "standard_streams.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace pgtool {

// Streams have no text mode here.
void MakeStandardOutputBinary() {}
void MakeStandardInputBinary() {}

bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

bool StandardOutputTakesColours() {
    const char* const terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

DivertedOutput::DivertedOutput() {
    std::fflush(stdout);
    output_ = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

DivertedOutput::~DivertedOutput() {
    std::fflush(stdout);
    dup2(output_, STDOUT_FILENO);
    close(output_);
}

}  // namespace pgtool
