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

// Older consoles do not know the mode.
bool StandardOutputTakesColours() {
    constexpr DWORD kTakesSequences = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode;
    return GetConsoleMode(console, &mode) != 0 &&
           SetConsoleMode(console, mode | kTakesSequences) != 0;
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
