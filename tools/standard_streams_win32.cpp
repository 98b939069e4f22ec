#include "standard_streams.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace pgtool {

namespace {

constexpr int kStandardInput = 0;
constexpr int kStandardOutput = 1;
constexpr int kStandardError = 2;

}  // namespace

void MakeStandardOutputBinary() { _setmode(kStandardOutput, _O_BINARY); }
void MakeStandardInputBinary() { _setmode(kStandardInput, _O_BINARY); }

// The C library also counts the null device, and what a parent process had for a stream.
static bool IsTerminal(DWORD stream) {
    DWORD mode;
    return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

bool StandardErrorIsTerminal() { return IsTerminal(STD_ERROR_HANDLE); }
bool StandardOutputIsTerminal() { return IsTerminal(STD_OUTPUT_HANDLE); }

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
