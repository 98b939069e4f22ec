#include "library_path.h"

#include <algorithm>

namespace pgtool {

std::string LibraryPath(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path.find('\\') == std::string::npos ? ".\\" + path : path;
}

}  // namespace pgtool
