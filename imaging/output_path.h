// Paths of files to create, as the system wants them.
#pragma once

#include <string>

namespace pgview {

// Callers separate components with backslashes on every platform.
std::string NativeOutputPath(const char* path);

}  // namespace pgview
