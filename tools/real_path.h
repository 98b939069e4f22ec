// Where a path leads when all links on the way are followed.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pgtool {

// The absolute path of what is there, with slashes on every platform and the names as the file
// system has them. None when there is no such file or directory.
std::optional<std::string> RealPath(const std::string& path);

// Whether one of two real paths is that of the other directory, or leads into it.
bool IsBelow(std::string_view path, std::string_view directory);

}  // namespace pgtool
