#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "platform/platform.h"
#include "platform/win32_files.h"

namespace pgkit::platform {

namespace {

// No device name is a DICOM file.
FILE* RegularOnly(FILE* stream, uint64_t& size) {
    if (stream == nullptr) return nullptr;
    struct _stat64 status;
    if (_fstat64(_fileno(stream), &status) != 0 || (status.st_mode & _S_IFMT) != _S_IFREG) {
        std::fclose(stream);
        return nullptr;
    }
    size = static_cast<uint64_t>(status.st_size);
    return Unbuffered(stream);
}

// fopen would not share the file for deletion: nobody could then rename or replace it while it is
// open.
FILE* OpenShared(const char* path) {
    const HANDLE handle =
        CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return StreamOf(handle, _O_RDONLY | _O_BINARY, "rb");
}

std::optional<FileIdentity> Identity(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION info;
    if (handle == INVALID_HANDLE_VALUE || !GetFileInformationByHandle(handle, &info)) {
        return std::nullopt;
    }
    return FileIdentity{info.dwVolumeSerialNumber,
                        (uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow};
}

FILE* Create(const char* path, const char* mode) {
    return path == nullptr ? nullptr : std::fopen(path, mode);
}

}  // namespace

FILE* OpenForReading(const char* path) {
    uint64_t size;
    return OpenForReading(path, size);
}

FILE* OpenForReading(const char* path, uint64_t& size) {
    return path == nullptr ? nullptr : RegularOnly(OpenShared(path), size);
}

FILE* OpenForUpdate(const char* path) {
    return path == nullptr ? nullptr : Unbuffered(std::fopen(path, "r+b"));
}

FILE* CreateBinary(const char* path) { return Unbuffered(Create(path, "wb")); }

FILE* CreateText(const char* path) { return Create(path, "w"); }

FILE* AppendText(const char* path) {
    if (path == nullptr) return nullptr;
    const HANDLE handle =
        CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return Unbuffered(StreamOf(handle, _O_WRONLY | _O_APPEND | _O_TEXT, "a"));
}

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

std::optional<FileIdentity> IdentityOf(FILE* stream) {
    return Identity(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))));
}

std::optional<FileIdentity> IdentityOf(const char* path) {
    if (path == nullptr) return std::nullopt;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::unique_ptr<HANDLE, CloseFileHandle> handle(CreateFileA(
        path, 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return Identity(handle.get());
}

std::vector<DirectoryEntry> ListDirectory(const char* path) {
    std::vector<DirectoryEntry> entries;
    WIN32_FIND_DATAA found;
    const std::unique_ptr<HANDLE, EndSearch> search(
        FindFirstFileA((std::string(path) + "\\*").c_str(), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return entries;
    do {
        const std::string name = found.cFileName;
        if (name == "." || name == "..") continue;
        entries.push_back({name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                           (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0});
    } while (FindNextFileA(search.get(), &found));
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.name < b.name; });
    return entries;
}

bool IsReachableName(std::string_view) { return true; }

bool PathsIgnoreCase() { return true; }

bool RemoveFile(const char* path) { return DeleteFileA(path) != 0; }

bool Seek(FILE* stream, uint64_t position) {
    return position <= INT64_MAX &&
           _fseeki64(stream, static_cast<int64_t>(position), SEEK_SET) == 0;
}

bool SeekToEnd(FILE* stream) { return _fseeki64(stream, 0, SEEK_END) == 0; }

bool CutTo(FILE* stream, uint64_t size) {
    return _chsize_s(_fileno(stream), static_cast<int64_t>(size)) == 0;
}

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

std::string HostProgramDirectory() {
    char path[1024];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    const std::string program = length < sizeof path ? std::string(path, length) : std::string();
    const size_t backslash = program.rfind('\\');
    return backslash == std::string::npos ? "C:\\" : program.substr(0, backslash + 1);
}

CalendarTime LocalTime() {
    SYSTEMTIME local;
    GetLocalTime(&local);
    return {local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond};
}

int32_t CompareNames(const std::string& a, const std::string& b) {
    constexpr DWORD kIgnore =
        NORM_IGNORECASE | NORM_IGNORENONSPACE | NORM_IGNORESYMBOLS | NORM_IGNOREWIDTH;
    return CompareStringA(LOCALE_SYSTEM_DEFAULT, kIgnore, a.c_str(), -1, b.c_str(), -1) - 2;
}

}  // namespace pgkit::platform
