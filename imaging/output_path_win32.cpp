#include "output_path.h"

namespace pgview {

std::string NativeOutputPath(const char* path) { return path; }

}  // namespace pgview
