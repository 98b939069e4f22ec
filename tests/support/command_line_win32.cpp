#include <windows.h>

#include <filesystem>
#include <memory>

#include "support/command_line.h"

namespace pgkit_test {

namespace {

using Handle = std::unique_ptr<void, decltype(&CloseHandle)>;

std::wstring Wide(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

// A stream that the program inherits.
Handle Stream(const std::wstring& path, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return Handle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                              creation, FILE_ATTRIBUTE_NORMAL, nullptr),
                  &CloseHandle);
}

}  // namespace

// Without the command processor, whose start takes as long as that of the program.
int RunCommandLine(const std::string& line, const std::string& out, const std::string& err) {
    const Handle in = Stream(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const Handle output = Stream(Wide(out), GENERIC_WRITE, CREATE_ALWAYS);
    const Handle errors = Stream(Wide(err), GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.get();
    startup.hStdOutput = output.get();
    startup.hStdError = errors.get();
    std::wstring text = Wide(line);
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, text.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &started) == FALSE)
        return kNotStarted;
    const Handle process(started.hProcess, &CloseHandle);
    const Handle thread(started.hThread, &CloseHandle);
    DWORD status = 0;
    const bool ended = WaitForSingleObject(process.get(), INFINITE) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(process.get(), &status) != FALSE;
    return ended ? static_cast<int>(status) : kNotStarted;
}

}  // namespace pgkit_test
