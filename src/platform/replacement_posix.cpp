#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <vector>

#include "platform/platform.h"
#include "platform/posix_files.h"
#include "platform/replacement_name.h"

namespace pgkit::platform {

namespace {

// Names that are tried for a file beside another one.
constexpr unsigned kMaxNames = 10000;

// Where a link of this name leads; the path itself where there is no link, or one that leads
// nowhere. Other paths are left as they are: made absolute, they could get a backslash from the
// directories above, which is no separator there.
std::string BehindLinks(const std::string& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                               &std::free);
    return resolved != nullptr ? resolved.get() : path;
}

std::string TargetOf(const char* path) { return BehindLinks(WithSlashes(path)); }

// The path with another name at its end.
std::string Sibling(const std::string& path, const std::string& name) {
    return path.substr(0, path.rfind('/') + 1) + name;
}

// Of the file itself: a link is not followed.
void SetPermissions(const char* path, mode_t permissions) {
    const int descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fchmod(descriptor, permissions);
    ::close(descriptor);
}

bool HasLock(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool IsFileAt(int descriptor, const std::string& path) {
    struct stat file;
    struct stat named;
    return ::fstat(descriptor, &file) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           file.st_dev == named.st_dev && file.st_ino == named.st_ino;
}

// A lock tells others that the file is in use, and ends with the process. Whoever clears strays
// away may have been there first, in the moment between the creation and the lock.
int CreateLocked(const std::string& path, mode_t permissions) {
    constexpr int kNewOnly = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    const int descriptor = ::open(path.c_str(), kNewOnly, permissions);
    if (descriptor < 0 || (HasLock(descriptor) && IsFileAt(descriptor, path))) return descriptor;
    ::close(descriptor);
    errno = EEXIST;
    return -1;
}

void RemoveUnlessInUse(const std::string& path) {
    const int descriptor =
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return;
    struct stat status;
    const bool isRegular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (isRegular && HasLock(descriptor)) ::unlink(path.c_str());
    ::close(descriptor);
}

}  // namespace

bool CanBeReplaced(const char* path) {
    if (path == nullptr) return false;
    const std::string target = TargetOf(path);
    struct stat status;
    if (::stat(target.c_str(), &status) != 0) return true;
    return S_ISREG(status.st_mode) && ::access(target.c_str(), W_OK) == 0;
}

// Until it is in place, nobody but the owner may read what replaces a file: its permissions are
// those of that file. A new file is what any new file is.
FILE* CreateReplacement(const char* path, std::string& replacement, const char* stem) {
    replacement.clear();
    if (path == nullptr) return nullptr;
    const std::string target = TargetOf(path);
    // From here on the path is used by those who take a backslash for a separator.
    if (target.find('\\') != std::string::npos) return nullptr;
    struct stat status;
    const bool isNew = ::stat(target.c_str(), &status) != 0;
    const mode_t permissions = isNew ? 0666 : S_IRUSR | S_IWUSR;
    const std::string named = stem != nullptr ? Sibling(target, stem) : target;
    for (unsigned number = 0; number < kMaxNames; ++number) {
        std::string candidate = ReplacementName(named, number);
        const int descriptor = CreateLocked(candidate, permissions);
        if (descriptor < 0 && errno == EEXIST) continue;
        FILE* stream = Unbuffered(StreamOf(descriptor, "wb"));
        if (stream != nullptr) {
            replacement.swap(candidate);
        } else if (descriptor >= 0) {
            ::unlink(candidate.c_str());
        }
        return stream;
    }
    return nullptr;
}

bool FlushToDisk(const char* replacement) {
    const int descriptor = ::open(replacement, O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isFlushed = ::fsync(descriptor) == 0;
    return ::close(descriptor) == 0 && isFlushed;
}

bool ReplaceWith(const char* path, const char* replacement) {
    const std::string target = TargetOf(path);
    struct stat status;
    if (::stat(target.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) return false;
        // Only now may others read it who may read the old one. Not every file system can tell them
        // apart.
        SetPermissions(replacement, status.st_mode & 07777);
    }
    return ::rename(replacement, target.c_str()) == 0;
}

void RemoveStrayReplacements(const char* path) {
    const std::string target = TargetOf(path);
    const std::string stem = target.substr(target.rfind('/') + 1);
    std::vector<std::string> strays;
    {
        struct CloseListing {
            void operator()(DIR* listing) const { ::closedir(listing); }
        };
        const std::unique_ptr<DIR, CloseListing> listing(::opendir(Sibling(target, ".").c_str()));
        if (listing == nullptr) return;
        while (const dirent* entry = ::readdir(listing.get())) {
            if (IsReplacementName(entry->d_name, stem)) strays.emplace_back(entry->d_name);
        }
    }
    for (const std::string& name : strays)
        RemoveUnlessInUse(Sibling(target, name));
}

}  // namespace pgkit::platform
