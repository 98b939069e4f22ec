#include "platform/temporary_file.h"

#include "platform/win32_files.h"

namespace pgkit::platform {

// GetTempFileName creates the file, under a name that nothing had; from its second opening on it
// goes with its handle.
FILE* CreateTemporary() {
    wchar_t directory[MAX_PATH + 1];
    wchar_t name[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, directory);
    if (length == 0 || length > MAX_PATH) return nullptr;
    if (GetTempFileNameW(directory, L"pgk", 0, name) == 0) return nullptr;
    const HANDLE handle =
        CreateFileW(name, GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, CREATE_ALWAYS,
                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (handle == INVALID_HANDLE_VALUE) DeleteFileW(name);
    return Unbuffered(StreamOf(handle, _O_RDWR | _O_BINARY, "w+b"));
}

}  // namespace pgkit::platform
