// The files around a DICOMDIR.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "real_path.h"

namespace pgtool {

// The DICOMDIR that a path means: the path itself or, when that is a directory, the file in it.
std::string DirectoryFileOf(const std::string& path);

enum class FileState { Present, Missing, Outside };

struct FoundFile {
    FileState state;
    std::string path;  // one that opens, with the names as they are there; empty unless present
};

class Medium {
  public:
    // Links that lead out of the medium are followed as any others, or count as outside; then
    // nothing behind them is looked at.
    enum class Links { Followed, Inside };

    // directoryFile is the path of its DICOMDIR.
    explicit Medium(const std::string& directoryFile, Links links = Links::Followed);

    // What is there of the file that a Referenced File ID names (PathOnMedium): of the very name,
    // or of one that differs in case. Nothing is asked of the system about an ID that leads
    // outside.
    FoundFile Find(std::string_view referencedFileId);
    // Where a path that was found leads when all links are followed.
    const std::optional<std::string>& RealPathOf(const std::string& path) {
        return realPaths_.Of(path);
    }

  private:
    // The names of one directory by their form in lower case, in their byte order.
    using Names = std::multimap<std::string, std::string>;

    const Names& NamesIn(const std::string& directory);
    bool LeadsOut(const std::string& path);

    std::string directory_;  // with a slash at its end
    bool staysInside_;
    std::optional<std::string> realRoot_;
    std::map<std::string, Names> listings_;
    RealPaths realPaths_;
};

}  // namespace pgtool
