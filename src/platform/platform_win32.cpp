#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <memory>

#include "platform/platform.h"

namespace pgkit::platform {

namespace {

FILE* Unbuffered(FILE* stream) {
    if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

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

// The stream owns the handle, which is closed when there is no memory for it.
FILE* StreamOf(HANDLE handle, int flags, const char* mode) {
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags | _O_BINARY);
    if (descriptor < 0) {
        CloseHandle(handle);
        return nullptr;
    }
    FILE* stream = _fdopen(descriptor, mode);
    if (stream == nullptr) _close(descriptor);
    return stream;
}

// fopen would not share the file for deletion: nobody could then rename or replace it while it is
// open.
FILE* OpenShared(const char* path) {
    const HANDLE handle =
        CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return StreamOf(handle, _O_RDONLY, "rb");
}

// Names that are tried for a file beside another one.
constexpr unsigned kMaxNames = 1000;

std::string NameBeside(const char* path, unsigned number) {
    return path + (".new" + std::to_string(number));
}

// Whether the last call failed because of something that has the name. Access is denied, too, to
// the name of a deleted file until the last stream on it is closed.
bool IsNameTaken() {
    const DWORD error = GetLastError();
    return error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS ||
           error == ERROR_ACCESS_DENIED;
}

// Gives a file an unused name beside its own; empty on failure.
std::string MoveAside(const char* path) {
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string aside = NameBeside(path, number);
        if (MoveFileExA(path, aside.c_str(), 0)) return aside;
        if (!IsNameTaken()) break;
    }
    return std::string();
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

FILE* AppendText(const char* path) { return Create(path, "a"); }

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

// A link of the name counts as what it is: followed, it would lead to a file created elsewhere.
FILE* CreateReplacement(const char* path, std::string& replacement) {
    constexpr DWORD kNotThroughLinks = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
    replacement.clear();
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string candidate = NameBeside(path, number);
        const HANDLE handle = CreateFileA(candidate.c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                          nullptr, CREATE_NEW, kNotThroughLinks, nullptr);
        if (handle == INVALID_HANDLE_VALUE && IsNameTaken()) continue;
        FILE* stream = Unbuffered(StreamOf(handle, _O_WRONLY, "wb"));
        if (stream != nullptr) {
            replacement.swap(candidate);
        } else if (handle != INVALID_HANDLE_VALUE) {
            DeleteFileA(candidate.c_str());
        }
        return stream;
    }
    return nullptr;
}

bool FlushToDisk(const char* replacement) {
    const std::unique_ptr<HANDLE, CloseFileHandle> handle(
        CreateFileA(replacement, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return handle.get() != INVALID_HANDLE_VALUE && FlushFileBuffers(handle.get());
}

// An open file cannot be overwritten by a rename, but it can itself be renamed, and vanishes from
// there when the last stream on it is closed.
bool ReplaceWith(const char* path, const char* replacement) {
    const std::string aside = MoveAside(path);
    if (aside.empty()) return false;
    if (!MoveFileExA(replacement, path, 0)) {
        MoveFileExA(aside.c_str(), path, 0);
        return false;
    }
    DeleteFileA(aside.c_str());
    return true;
}

bool RemoveFile(const char* path) { return DeleteFileA(path) != 0; }

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
