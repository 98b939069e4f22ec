#include <sys/stat.h>

#include <cstdlib>
#include <memory>

#include "real_path.h"

namespace pgtool {

std::optional<std::string> RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr),
                                                           std::free);
    if (real == nullptr) return std::nullopt;
    return std::string(real.get());
}

std::optional<std::string> RealPathIn(const std::string& realDirectory, const std::string& name,
                                      const std::string& path) {
    struct stat status;
    const std::string real =
        (realDirectory.ends_with('/') ? realDirectory : realDirectory + '/') + name;
    if (lstat(real.c_str(), &status) != 0) return std::nullopt;
    return S_ISLNK(status.st_mode) ? RealPath(path) : real;
}

}  // namespace pgtool
