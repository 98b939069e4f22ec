// Paths in the tool are texts in UTF-8, with whatever other bytes names have on POSIX systems.
#pragma once

#include <filesystem>
#include <string>

namespace pgtool {

// Such a path for the C++ library, which by itself takes a narrow text for one of the C library's
// locale on Windows.
inline std::filesystem::path SystemPath(const std::string& path) {
    return std::u8string(path.begin(), path.end());
}

}  // namespace pgtool
