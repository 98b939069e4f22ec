#include "dicomdir/create/directory_scan.h"

namespace pgkit {

namespace {

std::string Joined(const std::string& directory, const std::string& name) {
    return directory.empty() ? name : directory + "\\" + name;
}

}  // namespace

// What links lead to comes last, so that a directory that has a path without links is known by it.
void DirectoryScan::Run(bool descends) {
    std::vector<Subdirectory> pending{{"", false}};
    std::vector<Subdirectory> linked;
    while (!pending.empty() || !linked.empty()) {
        std::vector<Subdirectory>& source = pending.empty() ? linked : pending;
        const Subdirectory current = std::move(source.back());
        source.pop_back();
        if (!IsNew(current)) continue;
        const auto entries = platform::ListDirectory(FullPath(current.path).c_str());
        if (!AddFiles(current.path, entries) || !descends) return;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (!entry->isDirectory) continue;
            const bool isLinked = current.isLinked || entry->isLink;
            (isLinked ? linked : pending).push_back({Joined(current.path, entry->name), isLinked});
        }
    }
}

// Without links directories form a tree. A link may lead to one that was visited, or that it is in
// itself.
bool DirectoryScan::IsNew(const Subdirectory& subdirectory) {
    const auto identity = platform::IdentityOf(FullPath(subdirectory.path).c_str());
    if (!identity) return !subdirectory.isLinked;
    const bool isNew = visited_.insert({identity->volume, identity->index}).second;
    return isNew || !subdirectory.isLinked;
}

bool DirectoryScan::AddFiles(const std::string& subdirectory,
                             const std::vector<platform::DirectoryEntry>& entries) {
    for (const platform::DirectoryEntry& entry : entries) {
        if (entry.isDirectory) continue;
        const std::string name = Joined(subdirectory, entry.name);
        const std::string path = FullPath(name);
        const AddedRecords added = builder_.Add({name.c_str(), path.c_str()});
        if (callback_ == nullptr) continue;
        const PgDicomdirScanReason reason{entry.name.c_str(), subdirectory.c_str(), added.code,
                                          userData_};
        if (callback_(&reason) != 0) return false;
    }
    return true;
}

std::string DirectoryScan::FullPath(const std::string& relativePath) const {
    return relativePath.empty() ? directory_ : directory_ + "\\" + relativePath;
}

}  // namespace pgkit
