// A file that a command writes: beside the one that is there, if any, and then moved into its
// place. Whatever fails, or kills the command, leaves the former file, or none where there was
// none.
#pragma once

#include <string>

namespace pgtool {

// A new, empty file in a directory, under a name that nothing else has, for as long as the object
// lives.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& directory);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Empty when no file can be created.
    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

class OutputFile {
  public:
    // A link is followed. What is no regular file, such as a device, is written where it is.
    explicit OutputFile(const std::string& path);
    // Removes what has not been put in place.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Where to write: an empty file, which nobody but its user may read as long as it is to replace
    // another. Empty when no file can be created, or the one that is there may not be written.
    const std::string& Path() const { return path_; }

    // Once everything is written and closed. On Windows the file that is replaced must not be open
    // any more either. False when it cannot be moved; the former file is as it was.
    [[nodiscard]] bool PutInPlace();

  private:
    [[nodiscard]] bool Replace() const;

    std::string target_;
    std::string path_;
};

}  // namespace pgtool
