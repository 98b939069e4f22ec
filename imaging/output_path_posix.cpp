#include "output_path.h"

#include <algorithm>
#include <string>

namespace pgview {

std::FILE* CreateOutput(const char* path) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return std::fopen(native.c_str(), "wb");
}

}  // namespace pgview
