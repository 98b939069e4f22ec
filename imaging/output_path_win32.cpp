#include "output_path.h"

#include <pgkit/paths.h>
#include <windows.h>

#include <string>

namespace pgview {

namespace {

// Empty for what is no UTF-8; no file has that name.
std::wstring FromUtf8(const std::string& path) {
    const int size = static_cast<int>(path.size());
    const auto convert = [&](wchar_t* to, int room) {
        return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), size, to, room);
    };
    std::wstring name(static_cast<size_t>(convert(nullptr, 0)), L'\0');
    convert(name.data(), static_cast<int>(name.size()));
    return name;
}

}  // namespace

std::FILE* CreateOutput(const char* path) {
    return pgxGetPathEncoding() == PGX_PATHS_UTF8 ? _wfopen(FromUtf8(path).c_str(), L"wb")
                                                  : std::fopen(path, "wb");
}

}  // namespace pgview
