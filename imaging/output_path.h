// Files to create, by paths as hosts write them.
#pragma once

#include <cstdio>

namespace pgview {

// Creates or truncates a binary file; null on failure. Callers separate components with backslashes
// on every platform, and paths are encoded as the library's are.
std::FILE* CreateOutput(const char* path);

}  // namespace pgview
