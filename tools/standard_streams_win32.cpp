#include "standard_streams.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace pgtool {

namespace {

constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

}  // namespace

void MakeStandardOutputBinary() { _setmode(kStandardOutput, _O_BINARY); }

// The C library also counts the null device, and what a parent process had for a stream.
bool StandardErrorIsTerminal() {
    DWORD mode;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

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
