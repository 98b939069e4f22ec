// Paths in the library's form, which takes a backslash for a separator everywhere, and in the
// tool's own.
#pragma once

#include <string>

namespace pgtool {

// A path as the library takes it where it looks for its folder: with backslashes, at least one.
std::string LibraryPath(std::string path);

std::string WithBackslashes(std::string path);
std::string WithSlashes(std::string path);

}  // namespace pgtool
