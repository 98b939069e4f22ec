#include <windows.h>

#include <filesystem>

#include "program_directory.h"

namespace pgtool {

std::string ProgramDirectory() {
    constexpr size_t kLongestPath = 0x8000;
    std::wstring path(kLongestPath, L'\0');
    const DWORD size = GetModuleFileNameW(nullptr, path.data(), kLongestPath);
    path.resize(size < kLongestPath ? size : 0);
    const std::string name = std::filesystem::path(path).string();
    return name.substr(0, name.find_last_of("/\\") + 1);
}

}  // namespace pgtool
