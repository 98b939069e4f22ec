// What the Windows sources of the platform layer share.
#pragma once

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>

namespace pgkit::platform {

inline FILE* Unbuffered(FILE* stream) {
    if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

// The stream owns the handle, which is closed when there is no memory for it. The flags say whether
// it is one of bytes or of text.
inline FILE* StreamOf(HANDLE handle, int flags, const char* mode) {
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    FILE* stream = _fdopen(descriptor, mode);
    if (stream == nullptr) _close(descriptor);
    return stream;
}

struct CloseFileHandle {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const {
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }
};

struct EndSearch {
    using pointer = HANDLE;
    void operator()(HANDLE search) const {
        if (search != INVALID_HANDLE_VALUE) FindClose(search);
    }
};

}  // namespace pgkit::platform
