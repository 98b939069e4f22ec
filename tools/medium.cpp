#include "medium.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "file_id.h"

namespace pgtool {

namespace {

constexpr std::string_view kSeparators = "/\\";

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

bool IsDirectory(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// ASCII only, as names on media are.
std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

}  // namespace

std::string DirectoryFileOf(const std::string& path) {
    const size_t end = path.find_last_not_of(kSeparators);
    const std::string bare = end == std::string::npos ? path : path.substr(0, end + 1);
    return IsDirectory(bare) ? bare + "/DICOMDIR" : path;
}

Medium::Medium(const std::string& directoryFile) {
    const size_t end = directoryFile.find_last_of(kSeparators);
    directory_ = end == std::string::npos ? "." : directoryFile.substr(0, end + 1);
    std::replace(directory_.begin(), directory_.end(), '\\', '/');
}

FileState Medium::Find(std::string_view referencedFileId) {
    const auto components = PathOnMedium(referencedFileId);
    if (!components) return FileState::Outside;
    std::string path = directory_;
    for (const std::string_view component : *components) {
        const Names& names = NamesIn(path);
        const auto found = names.find(Lower(component));
        if (found == names.end()) return FileState::Missing;
        path += "/" + found->second;
    }
    return IsFile(path) ? FileState::Present : FileState::Missing;
}

const Medium::Names& Medium::NamesIn(const std::string& directory) {
    const auto [listing, isNew] = listings_.try_emplace(directory);
    if (!isNew) return listing->second;
    const std::unique_ptr<DIR, CloseDirectory> stream(opendir(directory.c_str()));
    if (stream == nullptr) return listing->second;
    while (const dirent* entry = readdir(stream.get()))
        listing->second.try_emplace(Lower(entry->d_name), entry->d_name);
    return listing->second;
}

}  // namespace pgtool
