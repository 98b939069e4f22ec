#include "library_path.h"

#include <algorithm>
#include <utility>

namespace pgtool {

std::string LibraryPath(std::string path) {
    path = WithBackslashes(std::move(path));
    return path.find('\\') == std::string::npos ? ".\\" + path : path;
}

std::string WithBackslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

}  // namespace pgtool
