#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>

#include "platform/name_collation.h"
#include "platform/platform.h"
#include "platform/posix_files.h"

namespace pgkit::platform {

namespace {

bool Exists(const std::string& path) {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0;
}

// Whether a directory has an entry, which must be a directory itself when a slash follows it.
bool HasEntry(std::string directory, const std::string& name, const std::string& slash) {
    return Exists(directory.append(name).append(slash));
}

struct DirectoryCloser {
    void operator()(DIR* listing) const { ::closedir(listing); }
};

// The entry of a directory whose name equals name when case is ignored; of several the first in
// byte order, so that the answer does not depend on the order in which the system lists them.
std::optional<std::string> FindIgnoringCase(const std::string& directory, const std::string& name,
                                            const std::string& slash) {
    const std::unique_ptr<DIR, DirectoryCloser> listing(
        ::opendir(directory.empty() ? "." : directory.c_str()));
    if (!listing) return std::nullopt;
    std::optional<std::string> found;
    while (const dirent* entry = ::readdir(listing.get())) {
        if (::strcasecmp(entry->d_name, name.c_str()) != 0) continue;
        if (found && *found < entry->d_name) continue;
        if (HasEntry(directory, entry->d_name, slash)) found = entry->d_name;
    }
    return found;
}

// The entry that a component of a path means where there is none as written: one of another case or
// else, as on Windows, the one without the blanks at its end. Names that come from data sets are
// padded with a blank.
std::optional<std::string> FindEntry(const std::string& directory, const std::string& name,
                                     const std::string& slash) {
    auto found = FindIgnoringCase(directory, name, slash);
    if (found || !name.ends_with(' ')) return found;
    const std::string unpadded = name.substr(0, name.find_last_not_of(' ') + 1);
    if (unpadded.empty()) return std::nullopt;
    if (HasEntry(directory, unpadded, slash)) return unpadded;
    return FindIgnoringCase(directory, unpadded, slash);
}

// Follows the path as far as it exists, each component as written or else as the entry that it
// means; from the first component that does not exist on it is kept as written.
std::string ResolveByEntries(const std::string& path) {
    std::string resolved;
    size_t start = 0;
    while (start < path.size()) {
        const size_t end = std::min(path.find('/', start), path.size());
        std::string name = path.substr(start, end - start);
        const std::string slash = path.substr(end, 1);
        if (!name.empty() && !HasEntry(resolved, name, slash)) {
            const auto found = FindEntry(resolved, name, slash);
            if (!found) return resolved + path.substr(start);
            name = *found;
        }
        resolved.append(name).append(slash);
        start = end + 1;
    }
    return resolved;
}

std::string NativePath(const char* path) {
    std::string result = WithSlashes(path);
    return Exists(result) ? result : ResolveByEntries(result);
}

bool StatPath(const char* path, struct stat* status) {
    return path != nullptr && ::stat(NativePath(path).c_str(), status) == 0;
}

FileIdentity Identity(const struct stat& status) {
    return {static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino)};
}

// Most file systems say what an entry is; only links, and entries of the others, cost a look.
// Everything that is no directory counts as a file, whether it can be read or not.
DirectoryEntry Classify(const std::string& directory, const dirent& entry) {
    DirectoryEntry known{entry.d_name, entry.d_type == DT_DIR, entry.d_type == DT_LNK};
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return known;
    const std::string path = directory + "/" + known.name;
    struct stat status;
    known.isLink = ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    known.isDirectory = ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return known;
}

int OpenDescriptor(const char* path, int flags) {
    if (path == nullptr) return -1;
    const std::string asWritten = WithSlashes(path);
    const int descriptor = ::open(asWritten.c_str(), flags);
    if (descriptor >= 0 || (errno != ENOENT && errno != ENOTDIR)) return descriptor;
    return ::open(ResolveByEntries(asWritten).c_str(), flags);
}

// A pipe is not waited for, and closed again like everything that is no regular file: a directory
// fails only at the first read, a device may never end.
FILE* OpenRegular(const char* path, uint64_t& size) {
    const int descriptor = OpenDescriptor(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status;
    const bool isRegular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    FILE* stream = isRegular ? ::fdopen(descriptor, "rb") : nullptr;
    if (stream == nullptr) {
        ::close(descriptor);
        return nullptr;
    }
    size = static_cast<uint64_t>(status.st_size);
    return Unbuffered(stream);
}

// A pipe that nobody reads fails at once instead of waiting; one that is read is written to as
// usual.
FILE* Create(const char* path, int disposition, const char* mode) {
    if (path == nullptr) return nullptr;
    const int flags = O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | disposition;
    const int descriptor = ::open(WithSlashes(path).c_str(), flags, 0666);
    if (descriptor < 0) return nullptr;
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    return StreamOf(descriptor, mode);
}

}  // namespace

FILE* OpenForReading(const char* path) {
    uint64_t size;
    return OpenForReading(path, size);
}

FILE* OpenForReading(const char* path, uint64_t& size) { return OpenRegular(path, size); }

// Also a device. What was written to a pipe is gone.
FILE* OpenForUpdate(const char* path) {
    const int descriptor = OpenDescriptor(path, O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat status;
    const bool isPipe = ::fstat(descriptor, &status) != 0 || S_ISFIFO(status.st_mode);
    FILE* stream = isPipe ? nullptr : ::fdopen(descriptor, "r+b");
    if (stream == nullptr) ::close(descriptor);
    return Unbuffered(stream);
}

FILE* CreateBinary(const char* path) { return Unbuffered(Create(path, O_TRUNC, "wb")); }

FILE* CreateText(const char* path) { return Create(path, O_TRUNC, "w"); }

FILE* AppendText(const char* path) { return Unbuffered(Create(path, O_APPEND, "a")); }

bool PathExists(const char* path) {
    struct stat status;
    return StatPath(path, &status);
}

bool IsDirectory(const char* path) {
    struct stat status;
    return StatPath(path, &status) && S_ISDIR(status.st_mode);
}

std::optional<uint64_t> FileSize(const char* path) {
    struct stat status;
    if (!StatPath(path, &status) || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<uint64_t>(status.st_size);
}

std::optional<FileIdentity> IdentityOf(FILE* stream) {
    struct stat status;
    if (::fstat(::fileno(stream), &status) != 0) return std::nullopt;
    return Identity(status);
}

std::optional<FileIdentity> IdentityOf(const char* path) {
    struct stat status;
    if (!StatPath(path, &status)) return std::nullopt;
    return Identity(status);
}

std::string ExistingFile(const std::string& folder, const std::string& names) {
    std::string path = NativePath((folder + "/" + names).c_str());
    struct stat status;
    const bool isFile = ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? path : std::string();
}

std::vector<DirectoryEntry> ListDirectory(const char* path) {
    std::vector<DirectoryEntry> entries;
    const std::string directory = NativePath(path);
    const std::unique_ptr<DIR, DirectoryCloser> listing(::opendir(directory.c_str()));
    if (!listing) return entries;
    while (const dirent* entry = ::readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") continue;
        entries.push_back(Classify(directory, *entry));
    }
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.name < b.name; });
    return entries;
}

bool IsReachableName(std::string_view name) { return name.find('\\') == name.npos; }

bool PathsIgnoreCase() { return false; }

bool RemoveFile(const char* path) { return ::unlink(path) == 0; }

bool Seek(FILE* stream, uint64_t position) {
    return position <= INT64_MAX && ::fseeko(stream, static_cast<off_t>(position), SEEK_SET) == 0;
}

bool SeekToEnd(FILE* stream) { return ::fseeko(stream, 0, SEEK_END) == 0; }

size_t ReadAt(FILE* stream, uint64_t position, uint8_t* out, size_t needed, size_t room) {
    const int file = ::fileno(stream);
    if (file < 0) return Seek(stream, position) ? std::fread(out, 1, room, stream) : 0;
    // A stream of the host's may hold back what was written to it.
    if (position > INT64_MAX - room || std::fflush(stream) != 0) return 0;
    size_t got = 0;
    while (got < needed) {
        const ssize_t more =
            ::pread(file, out + got, room - got, static_cast<off_t>(position + got));
        if (more < 0 && errno == EINTR) continue;
        if (more <= 0) break;
        got += static_cast<size_t>(more);
    }
    return got;
}

bool CutTo(FILE* stream, uint64_t size) {
    return ::ftruncate(::fileno(stream), static_cast<off_t>(size)) == 0;
}

std::optional<uint64_t> Tell(FILE* stream) {
    const off_t position = ::ftello(stream);
    if (position < 0) return std::nullopt;
    return static_cast<uint64_t>(position);
}

uint64_t StreamSize(FILE* stream) {
    struct stat status;
    const int descriptor = ::fileno(stream);
    if (descriptor >= 0) {
        return ::fstat(descriptor, &status) == 0 && status.st_size > 0
                   ? static_cast<uint64_t>(status.st_size)
                   : 0;
    }
    // A stream in memory or of the host's own making has no descriptor to ask.
    return SeekToEnd(stream) ? Tell(stream).value_or(0) : 0;
}

// The system's answer for a program that it cannot reach any more does not begin at the root.
std::string HostProgramDirectory() {
    char path[1024];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0 || static_cast<size_t>(length) >= sizeof path) return std::string();
    if (path[0] != '/') return std::string();
    std::string result(path, static_cast<size_t>(length));
    std::replace(result.begin(), result.end(), '/', '\\');
    return result.substr(0, result.rfind('\\') + 1);
}

CalendarTime LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
            local.tm_hour,        local.tm_min,     local.tm_sec};
}

int32_t CompareNames(const std::string& a, const std::string& b) { return CollateNames(a, b); }

}  // namespace pgkit::platform
