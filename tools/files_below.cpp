#include "files_below.h"
#include "system_path.h"

#include <algorithm>
#include <filesystem>

namespace pgtool {

namespace fs = std::filesystem;

bool HasBackslash(const std::string& path) { return path.find('\\') != std::string::npos; }

std::vector<std::string> FilesBelow(const std::string& directory, bool descends,
                                    std::error_code& error) {
    std::vector<std::string> files;
    fs::recursive_directory_iterator entry(SystemPath(directory),
                                           fs::directory_options::skip_permission_denied, error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        std::error_code unknown;
        const std::string path = entry->path().lexically_relative(directory).generic_string();
        const bool isClosed = HasBackslash(path) && entry->is_directory(unknown);
        if (entry->is_regular_file(unknown) || (isClosed && descends)) files.push_back(path);
        if (!descends || isClosed) entry.disable_recursion_pending();
        entry.increment(error);
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::optional<std::string> PathInside(const std::string& directory, const std::string& path) {
    std::error_code error;
    const fs::path base = fs::canonical(SystemPath(directory), error);
    if (error) return std::nullopt;
    fs::path name = SystemPath(path).lexically_normal();
    if (!name.has_filename()) name = name.parent_path();
    const bool isNamed = name.filename() != "." && name.filename() != "..";
    const fs::path folder =
        fs::canonical(isNamed ? fs::path("." / name.parent_path()) : name, error);
    if (error) return std::nullopt;
    const fs::path inside = (isNamed ? folder / name.filename() : folder).lexically_relative(base);
    const bool isOutside = inside.empty() || *inside.begin() == "..";
    if (isOutside) return std::nullopt;
    return inside.generic_string();
}

}  // namespace pgtool
