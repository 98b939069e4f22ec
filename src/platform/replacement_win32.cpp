#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/replacement_name.h"
#include "platform/wide_path_win32.h"
#include "platform/win32_files.h"

namespace pgkit::platform {

namespace {

// Names that are tried for a file beside another one.
constexpr unsigned kMaxNames = 10000;

// The path with another name at its end.
std::string Sibling(const std::string& path, const std::string& name) {
    return path.substr(0, path.find_last_of("\\/:") + 1) + name;
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
    bool Move(const char* from, const char* to, DWORD flags = 0) {
        const WidePath source(from);
        const WidePath target(to);
        while (!MoveFileExW(source, target, flags)) {
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

// Gives a file an unused name of the kind that its replacement has; empty on failure.
std::string MoveAside(const char* path, const std::string& replacement, Patience& patience) {
    const std::string stem = replacement.substr(0, replacement.rfind(".new"));
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string aside = ReplacementName(stem, number);
        if (patience.Move(path, aside.c_str())) return aside;
        if (!IsNameTaken()) break;
    }
    return std::string();
}

// An open file cannot be overwritten by a rename, but it can itself be renamed, and vanishes from
// there when the last stream on it is closed.
bool ReplaceOpenFile(const char* path, const char* replacement, Patience& patience) {
    const std::string aside = MoveAside(path, replacement, patience);
    if (aside.empty()) return false;
    if (!patience.Move(replacement, path)) {
        Patience().Move(aside.c_str(), path);
        return false;
    }
    RemoveFile(aside.c_str());
    return true;
}

}  // namespace

bool CanBeReplaced(const char* path) {
    if (path == nullptr) return false;
    const DWORD attributes = GetFileAttributesW(WidePath(path));
    constexpr DWORD kNotReplaced = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return attributes == INVALID_FILE_ATTRIBUTES || (attributes & kNotReplaced) == 0;
}

// A link of the name counts as what it is: followed, it would lead to a file created elsewhere. As
// long as the stream is open others may open the file, but not delete it.
FILE* CreateReplacement(const char* path, std::string& replacement, const char* stem) {
    constexpr DWORD kNotThroughLinks = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
    replacement.clear();
    if (path == nullptr) return nullptr;
    const std::string named = stem != nullptr ? Sibling(path, stem) : path;
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string candidate = ReplacementName(named, number);
        const HANDLE handle = CreateFileW(WidePath(candidate.c_str()), GENERIC_WRITE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_NEW,
                                          kNotThroughLinks, nullptr);
        if (handle == INVALID_HANDLE_VALUE && IsNameTaken()) continue;
        FILE* stream = Unbuffered(StreamOf(handle, _O_WRONLY | _O_BINARY, "wb"));
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
    const std::unique_ptr<HANDLE, CloseFileHandle> handle(CreateFileW(
        WidePath(replacement), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return handle.get() != INVALID_HANDLE_VALUE && FlushFileBuffers(handle.get());
}

bool ReplaceWith(const char* path, const char* replacement) {
    constexpr DWORD kAtOnce = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (MoveFileExW(WidePath(replacement), WidePath(path), kAtOnce)) return true;
    Patience patience;
    return ReplaceOpenFile(path, replacement, patience);
}

void RemoveStrayReplacements(const char* path) {
    const std::string target = path;
    const std::string stem = target.substr(target.find_last_of("\\/:") + 1);
    std::vector<std::string> strays;
    WIN32_FIND_DATAW found;
    {
        const std::unique_ptr<HANDLE, EndSearch> search(
            FindFirstFileW(WidePath((target + ".new*").c_str()), &found));
        if (search.get() == INVALID_HANDLE_VALUE) return;
        constexpr DWORD kNoFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
        do {
            const bool isFile = (found.dwFileAttributes & kNoFile) == 0;
            std::string name = Narrow(found.cFileName);
            if (isFile && IsReplacementName(name, stem)) strays.push_back(std::move(name));
        } while (FindNextFileW(search.get(), &found));
    }
    for (const std::string& name : strays)
        RemoveFile(Sibling(target, name).c_str());
}

}  // namespace pgkit::platform
