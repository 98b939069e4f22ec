#include <windows.h>

#include <filesystem>

#include "library_path.h"
#include "real_path.h"
#include "system_path.h"

namespace pgtool {

namespace {

// The path of an open file or directory, of whatever length; empty when the system does not tell.
std::wstring PathOf(HANDLE handle) {
    const DWORD size = GetFinalPathNameByHandleW(handle, nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring path(size, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(handle, path.data(), size, FILE_NAME_NORMALIZED);
    path.resize(length < size ? length : 0);
    return path;
}

// "\\?\C:\MEDIUM" and "\\?\UNC\SERVER\SHARE" as people write them.
std::wstring WithoutPrefix(const std::wstring& path) {
    if (path.starts_with(L"\\\\?\\UNC\\")) return L"\\" + path.substr(7);
    return path.starts_with(L"\\\\?\\") ? path.substr(4) : path;
}

}  // namespace

std::optional<std::string> RealPath(const std::string& path) {
    constexpr DWORD kEverybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle =
        CreateFileW(SystemPath(path).c_str(), 0, kEverybody, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);  // directories, too
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    const std::wstring found = WithoutPrefix(PathOf(handle));
    CloseHandle(handle);
    if (found.empty()) return std::nullopt;
    std::string real = WithSlashes(std::filesystem::path(found).string());
    if (real.ends_with('/')) real.pop_back();
    return real;
}

// Whether a name leads elsewhere, and how it is written, only the system knows.
std::optional<std::string> RealPathIn(const std::string&, const std::string&,
                                      const std::string& path) {
    return RealPath(path);
}

}  // namespace pgtool
