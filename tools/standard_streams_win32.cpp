#include "standard_streams.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace pgtool {

namespace {

constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

}  // namespace

void MakeStandardOutputBinary() { _setmode(kStandardOutput, _O_BINARY); }

bool StandardErrorIsTerminal() { return _isatty(kStandardError) != 0; }

DivertedOutput::DivertedOutput() {
    std::fflush(stdout);
    output_ = _dup(kStandardOutput);
    _dup2(kStandardError, kStandardOutput);
}

// The mode goes with the descriptor.
DivertedOutput::~DivertedOutput() {
    std::fflush(stdout);
    _dup2(output_, kStandardOutput);
    _close(output_);
    MakeStandardOutputBinary();
}

}  // namespace pgtool
