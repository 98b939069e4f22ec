// Adds every file of a directory tree to a hierarchy.
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
    FolderScan(std::string directory, HierarchyBuilder& builder, PgDicomdirScanCallback callback,
               void* userData)
        : directory_(std::move(directory)),
          builder_(builder),
          callback_(callback),
          userData_(userData) {}

    void Run(bool descends);

  private:
    struct Subdirectory {
        std::string path;  // relative, with backslashes; empty for the scanned directory itself
        bool isLinked;     // a link is part of the path
    };

    bool IsNew(const Subdirectory& subdirectory);
    // False when the callback ended the scan.
    bool AddFiles(const std::string& subdirectory,
                  const std::vector<platform::DirectoryEntry>& entries, bool descends);
    PgAcceptanceCode Judge(const std::string& subdirectory, const platform::DirectoryEntry& entry);
    std::string FullPath(const std::string& relativePath) const;

    std::string directory_;
    HierarchyBuilder& builder_;
    PgDicomdirScanCallback callback_;
    void* userData_;
    std::set<std::pair<uint64_t, uint64_t>> visited_;  // volumes and indexes
};

}  // namespace pgkit
