#include "dicomdir/create/folder_scan.h"

#include "dicomdir/create/directory_file.h"

namespace pgkit {

namespace {

std::string Joined(const std::string& folder, const std::string& name) {
    return folder.empty() ? name : folder + "\\" + name;
}

}  // namespace

// What links lead to comes last, so that a folder that has a path without links is known by it.
void FolderScan::Run(bool descends) {
    std::vector<Subfolder> pending{{"", false}};
    std::vector<Subfolder> linked;
    while (!pending.empty() || !linked.empty()) {
        std::vector<Subfolder>& source = pending.empty() ? linked : pending;
        const Subfolder current = std::move(source.back());
        source.pop_back();
        if (!IsNew(current)) continue;
        const auto entries = platform::ListDirectory(FullPath(current.path).c_str());
        if (!AddFiles(current.path, entries, descends) || !descends) return;
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
            if (!entry->isDirectory || !platform::IsReachableName(entry->name)) continue;
            const bool isLinked = current.isLinked || entry->isLink;
            (isLinked ? linked : pending).push_back({Joined(current.path, entry->name), isLinked});
        }
    }
}

// Without links folders form a tree. A link may lead to one that was visited, or that it is in
// itself.
bool FolderScan::IsNew(const Subfolder& subfolder) {
    const auto identity = platform::IdentityOf(FullPath(subfolder.path).c_str());
    if (!identity) return !subfolder.isLinked;
    const bool isNew = visited_.insert({identity->volume, identity->index}).second;
    return isNew || !subfolder.isLinked;
}

// A folder that no path leads to is told of like a file: what is in it is not.
bool FolderScan::AddFiles(const std::string& subfolder,
                          const std::vector<platform::DirectoryEntry>& entries, bool descends) {
    for (const platform::DirectoryEntry& entry : entries) {
        // What creations leave behind, and this one's own, is no part of the medium.
        if (subfolder.empty() && IsReplacementOfDicomdir(entry.name)) continue;
        const bool isEntered = platform::IsReachableName(entry.name);
        if (entry.isDirectory && (isEntered || !descends)) continue;
        const PgAcceptanceCode code = Judge(subfolder, entry);
        if (callback_ == nullptr) continue;
        const PgDicomdirScanReason reason{entry.name.c_str(), subfolder.c_str(),
                                          static_cast<uint32_t>(code), userData_};
        if (callback_(&reason) != 0) return false;
    }
    return true;
}

PgAcceptanceCode FolderScan::Judge(const std::string& subfolder,
                                   const platform::DirectoryEntry& entry) {
    const std::string name = Joined(subfolder, entry.name);
    const std::string path = FullPath(name);
    if (!platform::IsReachableName(entry.name)) return builder_.RefuseName(path.c_str());
    return builder_.Add({name.c_str(), path.c_str()}).code;
}

std::string FolderScan::FullPath(const std::string& relativePath) const {
    return relativePath.empty() ? folder_ : folder_ + "\\" + relativePath;
}

}  // namespace pgkit
