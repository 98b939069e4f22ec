#include "real_path.h"

namespace pgtool {

// The root of a file system is the only directory with a slash at its end.
bool IsBelow(std::string_view path, std::string_view directory) {
    if (directory.ends_with('/')) directory.remove_suffix(1);
    if (!path.starts_with(directory)) return false;
    return path.size() == directory.size() || path[directory.size()] == '/';
}

}  // namespace pgtool
