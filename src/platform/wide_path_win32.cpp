#include "platform/wide_path_win32.h"

#include <windows.h>

#include <iterator>
#include <new>

#include "platform/path_encoding.h"

namespace pgkit::platform {

namespace {

// As the system's own narrow functions choose it.
UINT CodePage() {
    if (pathsAreUtf8.load(std::memory_order_relaxed)) return CP_UTF8;
    return AreFileApisANSI() ? CP_ACP : CP_OEMCP;
}

// With the terminating zero; 0 when the path is not valid or there is too little room.
int Convert(UINT codePage, const char* path, wchar_t* name, int room) {
    const DWORD flags = codePage == CP_UTF8 ? MB_ERR_INVALID_CHARS : 0;
    return MultiByteToWideChar(codePage, flags, path, -1, name, room);
}

}  // namespace

WidePath::WidePath(const char* path) noexcept {
    const UINT codePage = CodePage();
    if (Convert(codePage, path, usual_, static_cast<int>(std::size(usual_))) > 0) {
        text_ = usual_;
        return;
    }
    const int length = Convert(codePage, path, nullptr, 0);
    if (length <= 0) return;
    long_.reset(new (std::nothrow) wchar_t[static_cast<size_t>(length)]);
    if (long_ != nullptr && Convert(codePage, path, long_.get(), length) > 0) text_ = long_.get();
}

std::string Narrow(const wchar_t* name) {
    const UINT codePage = CodePage();
    const int size = WideCharToMultiByte(codePage, 0, name, -1, nullptr, 0, nullptr, nullptr);
    std::string path(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(codePage, 0, name, -1, path.data(), size, nullptr, nullptr);
    if (!path.empty()) path.pop_back();
    return path;
}

}  // namespace pgkit::platform
