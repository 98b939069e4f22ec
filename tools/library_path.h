// Paths in the library's form.
#pragma once

#include <string>

namespace pgtool {

// A path as the library takes it where it looks for its folder: with backslashes, at least one.
std::string LibraryPath(std::string path);

}  // namespace pgtool
