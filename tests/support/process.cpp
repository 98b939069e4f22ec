#include "support/process.h"

#include <filesystem>

#include "support/command_line.h"
#include "support/host_system.h"
#include "support/temp_dir.h"

namespace pgkit_test {

namespace {

// As one argument. On Windows backslashes in front of a quotation mark count double.
std::string Quoted(const std::string& text) {
    if (!kIsWindows) return "'" + text + "'";
    const size_t atEnd = text.size() - (text.find_last_not_of('\\') + 1);
    return "\"" + text + std::string(atEnd, '\\') + "\"";
}

// Wine fails to start a program now and then on a busy machine.
constexpr int kStartAttempts = kIsWindows ? 5 : 1;

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
    int status = RunCommandLine(line, out, err);
    for (int attempt = 1; status == kNotStarted && attempt < kStartAttempts; ++attempt)
        status = RunCommandLine(line, out, err);
    return {status, BytesOf(out), TextOf(err)};
}

}  // namespace pgkit_test
