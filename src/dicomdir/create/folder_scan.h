// Adds every file of a folder, and of the folders in it, to a hierarchy.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "dicomdir/create/hierarchy_builder.h"
#include "pgkit/dicomdir_creation.h"
#include "platform/platform.h"

namespace pgkit {

class FolderScan {
  public:
    FolderScan(std::string folder, HierarchyBuilder& builder, PgDicomdirScanCallback callback,
               void* userData)
        : folder_(std::move(folder)), builder_(builder), callback_(callback), userData_(userData) {}

    void Run(bool descends);

  private:
    struct Subfolder {
        std::string path;  // relative, with backslashes; empty for the scanned folder itself
        bool isLinked;     // a link is part of the path
    };

    bool IsNew(const Subfolder& subfolder);
    // False when the callback ended the scan.
    [[nodiscard]] bool AddFiles(const std::string& subfolder,
                                const std::vector<platform::DirectoryEntry>& entries,
                                bool descends);
    PgAcceptanceCode Judge(const std::string& subfolder, const platform::DirectoryEntry& entry);
    std::string FullPath(const std::string& relativePath) const;

    std::string folder_;
    HierarchyBuilder& builder_;
    PgDicomdirScanCallback callback_;
    void* userData_;
    std::set<std::pair<uint64_t, uint64_t>> visited_;  // volumes and indexes
};

}  // namespace pgkit
