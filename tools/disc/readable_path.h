// Files whose names the library would take for other ones.
#pragma once

#include <memory>
#include <string>

namespace pgtool {

// A path that the library opens as the file that the system has there. For the library a backslash
// separates components, which on some systems is a character of names like any other: such a file
// gets a link under another name, for as long as the object lives.
class ReadablePath {
  public:
    explicit ReadablePath(const std::string& path);
    ~ReadablePath();
    ReadablePath(const ReadablePath&) = delete;
    ReadablePath& operator=(const ReadablePath&) = delete;

    // Empty when no link can be made.
    const std::string& Path() const { return path_; }

  private:
    std::string path_;
    std::string link_;
};

}  // namespace pgtool
