// The disc under the files.
#pragma once

#include <string>

namespace pgtool {

// Waits until what was written to a file is on the disc.
[[nodiscard]] bool FlushToDisk(const std::string& path);

}  // namespace pgtool
