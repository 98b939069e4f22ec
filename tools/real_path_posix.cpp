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

}  // namespace pgtool
