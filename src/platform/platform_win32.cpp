#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "platform/platform.h"
#include "platform/wide_path_win32.h"
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
    const HANDLE handle = CreateFileW(WidePath(path), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
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

FILE* AppendText(const char* path) {
    if (path == nullptr) return nullptr;
    const HANDLE handle = CreateFileW(WidePath(path), GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return Unbuffered(StreamOf(handle, _O_WRONLY | _O_APPEND | _O_TEXT, "a"));
}

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

bool IsReachableName(std::string_view) { return true; }

bool PathsIgnoreCase() { return true; }

bool RemoveFile(const char* path) { return DeleteFileW(WidePath(path)) != 0; }

bool Seek(FILE* stream, uint64_t position) {
    return position <= INT64_MAX &&
           _fseeki64(stream, static_cast<int64_t>(position), SEEK_SET) == 0;
}

bool SeekToEnd(FILE* stream) { return _fseeki64(stream, 0, SEEK_END) == 0; }

size_t ReadAt(FILE* stream, uint64_t position, uint8_t* out, size_t /*needed*/, size_t room) {
    return Seek(stream, position) ? std::fread(out, 1, room, stream) : 0;
}

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
