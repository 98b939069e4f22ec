#include "medium.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <set>

#include "file_id.h"
#include "library_path.h"
#include "real_path.h"
#include "words.h"

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

}  // namespace

std::string DirectoryFileOf(const std::string& path) {
    const size_t end = path.find_last_not_of(kSeparators);
    const std::string bare = end == std::string::npos ? path : path.substr(0, end + 1);
    return IsDirectory(bare) ? bare + "/DICOMDIR" : path;
}

Medium::Medium(const std::string& directoryFile, Links links)
    : staysInside_(links == Links::Inside) {
    const size_t end = directoryFile.find_last_of(kSeparators);
    directory_ = end == std::string::npos ? "./" : WithSlashes(directoryFile.substr(0, end + 1));
    if (staysInside_) realRoot_ = RealPath(directory_);
}

FoundFile Medium::Find(std::string_view referencedFileId) {
    const auto components = PathOnMedium(referencedFileId);
    if (!components) return {FileState::Outside, ""};
    std::string path = directory_;
    for (const std::string_view component : *components) {
        const Names& names = NamesIn(path);
        const auto [first, last] = names.equal_range(LowerAscii(component));
        if (first == last) return {FileState::Missing, ""};
        const auto exact =
            std::find_if(first, last, [&](const auto& name) { return name.second == component; });
        if (!path.ends_with('/')) path += '/';
        path += (exact == last ? first : exact)->second;
        if (LeadsOut(path)) return {FileState::Outside, ""};
    }
    if (!IsFile(path)) return {FileState::Missing, ""};
    return {FileState::Present, path};
}

const Medium::Names& Medium::NamesIn(const std::string& directory) {
    const auto [listing, isNew] = listings_.try_emplace(directory);
    if (!isNew) return listing->second;
    const std::unique_ptr<DIR, CloseDirectory> stream(opendir(directory.c_str()));
    if (stream == nullptr) return listing->second;
    std::set<std::string> names;
    while (const dirent* entry = readdir(stream.get()))
        names.insert(entry->d_name);
    for (const std::string& name : names)
        listing->second.emplace(LowerAscii(name), name);
    return listing->second;
}

// A link that leads nowhere leads to no place outside either.
bool Medium::LeadsOut(const std::string& path) {
    if (!staysInside_) return false;
    const std::optional<std::string>& real = realPaths_.Of(path);
    return real && !(realRoot_ && IsBelow(*real, *realRoot_));
}

}  // namespace pgtool
