// Where a path leads when all links on the way are followed.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace pgtool {

// The absolute path of what is there, with slashes on every platform and the names as the file
// system has them. None when there is no such file or directory.
std::optional<std::string> RealPath(const std::string& path);

// The same of many paths, as they are when each is first asked for: to follow all links of a long
// path takes a call of the system for each of its names.
class RealPaths {
  public:
    const std::optional<std::string>& Of(const std::string& path);

  private:
    std::map<std::string, std::optional<std::string>> known_;
};

// The real path of what has a name in a directory, of which the real path is given; its path leads
// through that directory.
std::optional<std::string> RealPathIn(const std::string& realDirectory, const std::string& name,
                                      const std::string& path);

// Whether one of two real paths is that of the other directory, or leads into it.
bool IsBelow(std::string_view path, std::string_view directory);

}  // namespace pgtool
