// The files around a DICOMDIR.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace pgtool {

// The DICOMDIR that a path means: the path itself or, when that is a directory, the file in it.
std::string DirectoryFileOf(const std::string& path);

enum class FileState { Present, Missing, Outside };

class Medium {
  public:
    // directoryFile is the path of its DICOMDIR.
    explicit Medium(const std::string& directoryFile);

    // What is there of the file that a Referenced File ID names (PathOnMedium); case does not
    // matter. Nothing is asked of the system about one that leads outside.
    FileState Find(std::string_view referencedFileId);

  private:
    using Names = std::map<std::string, std::string>;  // by their form in lower case

    const Names& NamesIn(const std::string& directory);

    std::string directory_;
    std::map<std::string, Names> listings_;
};

}  // namespace pgtool
