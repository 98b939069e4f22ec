#include "command_line.h"

#include <windows.h>

#include <shellapi.h>

#include <memory>

namespace pgtool {

namespace {

std::string ToUtf8(const wchar_t* text) {
    // Counts the terminating zero.
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.resize(utf8.find('\0'));
    return utf8;
}

}  // namespace

// The manifest asks for UTF-8, which systems before Windows 10 of 2019 do not know.
Arguments CommandLine(int argumentCount, char** arguments) {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(
        CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    if (wide == nullptr) return Arguments(arguments + 1, arguments + argumentCount);
    Arguments converted;
    for (int i = 1; i < count; ++i)
        converted.push_back(ToUtf8(wide.get()[i]));
    return converted;
}

}  // namespace pgtool
