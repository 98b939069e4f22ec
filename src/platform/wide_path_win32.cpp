#include "platform/wide_path_win32.h"

#include <windows.h>

#include "platform/path_encoding.h"

namespace pgkit::platform {

namespace {

// As the system's own narrow functions choose it.
UINT CodePage() {
    if (pathsAreUtf8.load(std::memory_order_relaxed)) return CP_UTF8;
    return AreFileApisANSI() ? CP_ACP : CP_OEMCP;
}

}  // namespace

std::wstring Wide(const std::string& path) {
    const UINT codePage = CodePage();
    const DWORD flags = codePage == CP_UTF8 ? MB_ERR_INVALID_CHARS : 0;
    const int size = static_cast<int>(path.size());
    const int length = MultiByteToWideChar(codePage, flags, path.data(), size, nullptr, 0);
    std::wstring name(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(codePage, flags, path.data(), size, name.data(), length);
    return name;
}

std::string Narrow(const std::wstring& name) {
    const UINT codePage = CodePage();
    const int size = static_cast<int>(name.size());
    const int length =
        WideCharToMultiByte(codePage, 0, name.data(), size, nullptr, 0, nullptr, nullptr);
    std::string path(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(codePage, 0, name.data(), size, path.data(), length, nullptr, nullptr);
    return path;
}

}  // namespace pgkit::platform
