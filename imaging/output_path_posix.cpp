#include <algorithm>

#include "output_path.h"

namespace pgview {

std::string NativeOutputPath(const char* path) {
    std::string result = path;
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

}  // namespace pgview
