// The files of a medium in the making.
#pragma once

#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace pgtool {

// Where a name has a backslash, which is none of its characters for the library.
bool HasBackslash(const std::string& path);

// The files below a directory in the byte order of their paths, which are relative to it and have
// slashes. Directories that the library cannot enter are among them.
std::vector<std::string> FilesBelow(const std::string& directory, bool descends,
                                    std::error_code& error);

// The path of a file or directory relative to a directory that it is in, with slashes; "." for the
// directory itself, nothing for what is outside of it. A link counts by where it is.
std::optional<std::string> PathInside(const std::string& directory, const std::string& path);

}  // namespace pgtool
