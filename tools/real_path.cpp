#include "real_path.h"

#include <utility>

namespace pgtool {

const std::optional<std::string>& RealPaths::Of(const std::string& path) {
    const auto known = known_.find(path);
    if (known != known_.end()) return known->second;
    const size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? "" : path.substr(slash + 1);
    std::optional<std::string> real;
    if (slash == 0 || name.empty() || name == "." || name == "..") {
        real = RealPath(path);
    } else if (const std::optional<std::string>& directory = Of(path.substr(0, slash))) {
        real = RealPathIn(*directory, name, path);
    }
    return known_.emplace(path, std::move(real)).first->second;
}

// The root of a file system is the only directory with a slash at its end.
bool IsBelow(std::string_view path, std::string_view directory) {
    if (directory.ends_with('/')) directory.remove_suffix(1);
    if (!path.starts_with(directory)) return false;
    return path.size() == directory.size() || path[directory.size()] == '/';
}

}  // namespace pgtool
