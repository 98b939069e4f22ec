// What the tool needs to know of its standard streams and to do with them, on every platform.
#pragma once

namespace pgtool {

// The standard streams as bytes: the same on every platform, for files, pipes and comparisons.
void MakeStandardOutputBinary();
void MakeStandardInputBinary();

bool StandardErrorIsTerminal();
// Whether the standard output is a terminal that takes escape sequences for colours.
bool StandardOutputTakesColours();

// While it lives, what anybody in the process prints to the standard output goes to the standard
// error stream: the library reports on the one, where the results of a command belong.
class DivertedOutput {
  public:
    DivertedOutput();
    ~DivertedOutput();
    DivertedOutput(const DivertedOutput&) = delete;
    DivertedOutput& operator=(const DivertedOutput&) = delete;

  private:
    int output_;  // a duplicate of the standard output's descriptor
};

}  // namespace pgtool
