#include <sys/stat.h>
#include <windows.h>

#include "platform/platform.h"

namespace pgkit::platform {

namespace {

FILE* OpenUnbuffered(const char* path, const char* mode) {
    if (path == nullptr) return nullptr;
    FILE* stream = std::fopen(path, mode);
    if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

FILE* Create(const char* path, const char* mode) {
    return path == nullptr ? nullptr : std::fopen(path, mode);
}

}  // namespace

FILE* OpenForReading(const char* path) { return OpenUnbuffered(path, "rb"); }

FILE* OpenForUpdate(const char* path) { return OpenUnbuffered(path, "r+b"); }

FILE* CreateBinary(const char* path) { return Create(path, "wb"); }

FILE* CreateText(const char* path) { return Create(path, "w"); }

bool PathExists(const char* path) {
    return path != nullptr && GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

bool IsDirectory(const char* path) {
    if (path == nullptr) return false;
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::optional<uint64_t> FileSize(const char* path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (path == nullptr || !GetFileAttributesExA(path, GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return std::nullopt;
    }
    return (uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

bool Seek(FILE* stream, uint64_t position) {
    return position <= INT64_MAX &&
           _fseeki64(stream, static_cast<int64_t>(position), SEEK_SET) == 0;
}

bool SeekToEnd(FILE* stream) { return _fseeki64(stream, 0, SEEK_END) == 0; }

std::optional<uint64_t> Tell(FILE* stream) {
    const int64_t position = _ftelli64(stream);
    if (position < 0) return std::nullopt;
    return static_cast<uint64_t>(position);
}

uint64_t StreamSize(FILE* stream) {
    struct _stat64 status;
    if (_fstat64(_fileno(stream), &status) != 0 || status.st_size < 0) return 0;
    return static_cast<uint64_t>(status.st_size);
}

std::string HostProgramPath() {
    char path[1024];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return length < sizeof path ? std::string(path, length) : std::string();
}

int32_t CompareNames(const std::string& a, const std::string& b) {
    constexpr DWORD kIgnore =
        NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREWIDTH;
    return CompareStringA(LOCALE_SYSTEM_DEFAULT, kIgnore, a.c_str(), -1, b.c_str(), -1) - 2;
}

}  // namespace pgkit::platform
