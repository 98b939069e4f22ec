#include "support/process.h"

#include "support/command_line.h"
#include "support/temp_dir.h"

namespace pgkit_test {

namespace {

constexpr bool kIsWindows = std::filesystem::path::preferred_separator == '\\';

// As one argument. On Windows backslashes in front of a quotation mark count double.
std::string Quoted(const std::string& text) {
    if (!kIsWindows) return "'" + text + "'";
    const size_t atEnd = text.size() - (text.find_last_not_of('\\') + 1);
    return "\"" + text + std::string(atEnd, '\\') + "\"";
}

// The Windows command processor's own status when it could not start a program, and that of a
// command processor which could not be started itself. No program under test ends with either. Wine
// gives them now and then on a busy machine for programs that are there.
constexpr int kNotStarted = 9009;
constexpr int kNoCommandProcessor = -1;
constexpr int kStartAttempts = 5;

bool IsUnstarted(int status) {
    return kIsWindows && (status == kNotStarted || status == kNoCommandProcessor);
}

// std::system returns the exit status itself on Windows, elsewhere the status word of wait(): the
// signal in the low seven bits, the exit status in the second byte.
int ExitStatus(int status) {
    if (kIsWindows) return status;
    return (status & 0x7F) == 0 ? (status >> 8) & 0xFF : -1;
}

std::string BytesOf(const std::string& path) {
    const Bytes bytes = ReadFile(path);
    return std::string(bytes.begin(), bytes.end());
}

// The standard error stream is a text stream: Windows ends its lines with two characters.
std::string TextOf(const std::string& path) {
    std::string text = BytesOf(path);
    if (kIsWindows) std::erase(text, '\r');
    return text;
}

}  // namespace

Finished RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
    const TempDir directory;
    const std::string out = directory.Path("out");
    const std::string err = directory.Path("err");
    std::string line = PGKIT_TEST_LAUNCHER;  // of an emulator, or nothing
    if (!line.empty()) line += ' ';
    line += Quoted(std::filesystem::path(path).make_preferred().string());
    for (const std::string& argument : arguments)
        line += " " + Quoted(argument);
    line += " >" + Quoted(out) + " 2>" + Quoted(err);
    // The Windows command processor takes one pair of quotation marks off the whole line.
    if (kIsWindows) line = Quoted(line);
    int status = RunCommandLine(line);
    for (int attempt = 1; IsUnstarted(status) && attempt < kStartAttempts; ++attempt)
        status = RunCommandLine(line);
    return {ExitStatus(status), BytesOf(out), TextOf(err)};
}

}  // namespace pgkit_test
