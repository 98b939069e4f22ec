#include "platform/temporary_file.h"

#include "platform/win32_files.h"

namespace pgkit::platform {

// GetTempFileName creates the file, under a name that nothing had; from its second opening on it
// goes with its handle.
FILE* CreateTemporary() {
    char directory[MAX_PATH + 1];
    char name[MAX_PATH + 1];
    const DWORD length = GetTempPathA(sizeof directory, directory);
    if (length == 0 || length > MAX_PATH) return nullptr;
    if (GetTempFileNameA(directory, "pgk", 0, name) == 0) return nullptr;
    const HANDLE handle =
        CreateFileA(name, GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, CREATE_ALWAYS,
                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (handle == INVALID_HANDLE_VALUE) DeleteFileA(name);
    return Unbuffered(StreamOf(handle, _O_RDWR | _O_BINARY, "w+b"));
}

}  // namespace pgkit::platform
