#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <memory>

#include "platform/platform.h"
#include "platform/wide_path_win32.h"

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
    const HANDLE handle = CreateFileW(WidePath(path), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
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

// Scanners and indexers hold files open for a moment, new ones above all. That is worth waiting
// for, up to a second for one job.
class Patience {
  public:
    bool Move(const char* from, const char* to) {
        const WidePath source(from);
        const WidePath target(to);
        while (!MoveFileExW(source, target, 0)) {
            const DWORD error = GetLastError();
            if (error != ERROR_SHARING_VIOLATION && error != ERROR_LOCK_VIOLATION) return false;
            if (waits_ == kMostWaits) return false;
            ++waits_;
            Sleep(kWait);
        }
        return true;
    }

  private:
    static constexpr DWORD kWait = 20;  // milliseconds
    static constexpr int kMostWaits = 50;
    int waits_ = 0;
};

// Gives a file an unused name beside its own; empty on failure.
std::string MoveAside(const char* path, Patience& patience) {
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string aside = NameBeside(path, number);
        if (patience.Move(path, aside.c_str())) return aside;
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

FILE* OpenWith(const char* path, const wchar_t* mode) {
    return path == nullptr ? nullptr : _wfopen(WidePath(path), mode);
}

DWORD AttributesOf(const char* path) {
    return path == nullptr ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(WidePath(path));
}

// The name of the one entry of a directory that a name means, as it is there; empty for none, and
// for what the system takes for several names, a drive or a stream of a file.
std::wstring NameInDirectory(const std::wstring& directory, const std::wstring& name) {
    if (name.empty() || name.find_first_of(L"*?:<>\"|") != std::wstring::npos)
        return std::wstring();
    WIN32_FIND_DATAW found;
    const std::unique_ptr<HANDLE, EndSearch> search(
        FindFirstFileW((directory + L"\\" + name).c_str(), &found));
    return search.get() == INVALID_HANDLE_VALUE ? std::wstring() : found.cFileName;
}

}  // namespace

FILE* OpenForReading(const char* path) {
    uint64_t size;
    return OpenForReading(path, size);
}

FILE* OpenForReading(const char* path, uint64_t& size) {
    return path == nullptr ? nullptr : RegularOnly(OpenShared(path), size);
}

FILE* OpenForUpdate(const char* path) { return Unbuffered(OpenWith(path, L"r+b")); }

FILE* CreateBinary(const char* path) { return Unbuffered(OpenWith(path, L"wb")); }

FILE* CreateText(const char* path) { return OpenWith(path, L"w"); }

FILE* AppendText(const char* path) { return OpenWith(path, L"a"); }

bool PathExists(const char* path) { return AttributesOf(path) != INVALID_FILE_ATTRIBUTES; }

bool IsDirectory(const char* path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::optional<uint64_t> FileSize(const char* path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (path == nullptr || !GetFileAttributesExW(WidePath(path), GetFileExInfoStandard, &data) ||
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
    const std::unique_ptr<HANDLE, CloseFileHandle> handle(CreateFileW(
        WidePath(path), 0, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return Identity(handle.get());
}

std::string ExistingFile(const std::string& folder, const std::string& names) {
    std::wstring path(WidePath(folder.c_str()));
    for (size_t start = 0; start < names.size();) {
        const size_t end = std::min(names.find('\\', start), names.size());
        const std::string component = names.substr(start, end - start);
        // Blanks at the end mean nothing here; names that come from data sets are padded.
        const std::wstring name = NameInDirectory(
            path, std::wstring(
                      WidePath(component.substr(0, component.find_last_not_of(' ') + 1).c_str())));
        if (name.empty()) return std::string();
        path += L"\\" + name;
        start = end + 1;
    }
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isFile =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    return isFile ? Narrow(path.c_str()) : std::string();
}

std::vector<DirectoryEntry> ListDirectory(const char* path) {
    std::vector<DirectoryEntry> entries;
    WIN32_FIND_DATAW found;
    const std::unique_ptr<HANDLE, EndSearch> search(
        FindFirstFileW(WidePath((std::string(path) + "\\*").c_str()), &found));
    if (search.get() == INVALID_HANDLE_VALUE) return entries;
    do {
        const std::string name = Narrow(found.cFileName);
        if (name == "." || name == "..") continue;
        entries.push_back({name, (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                           (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0});
    } while (FindNextFileW(search.get(), &found));
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
        const HANDLE handle =
            CreateFileW(WidePath(candidate.c_str()), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                        CREATE_NEW, kNotThroughLinks, nullptr);
        if (handle == INVALID_HANDLE_VALUE && IsNameTaken()) continue;
        FILE* stream = Unbuffered(StreamOf(handle, _O_WRONLY, "wb"));
        if (stream != nullptr) {
            replacement.swap(candidate);
        } else if (handle != INVALID_HANDLE_VALUE) {
            RemoveFile(candidate.c_str());
        }
        return stream;
    }
    return nullptr;
}

bool FlushToDisk(const char* replacement) {
    const std::unique_ptr<HANDLE, CloseFileHandle> handle(
        CreateFileW(WidePath(replacement), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return handle.get() != INVALID_HANDLE_VALUE && FlushFileBuffers(handle.get());
}

// An open file cannot be overwritten by a rename, but it can itself be renamed, and vanishes from
// there when the last stream on it is closed.
bool ReplaceWith(const char* path, const char* replacement) {
    Patience patience;
    const std::string aside = MoveAside(path, patience);
    if (aside.empty()) return false;
    if (!patience.Move(replacement, path)) {
        Patience().Move(aside.c_str(), path);
        return false;
    }
    RemoveFile(aside.c_str());
    return true;
}

bool RemoveFile(const char* path) { return DeleteFileW(WidePath(path)) != 0; }

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
    constexpr DWORD kSize = 1024;
    wchar_t path[kSize];
    const DWORD length = GetModuleFileNameW(nullptr, path, kSize);
    std::string program = length < kSize ? Narrow(path) : std::string();
    if (program.size() >= kSize) program.clear();
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
