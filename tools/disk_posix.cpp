#include <fcntl.h>
#include <unistd.h>

#include "disk.h"

namespace pgtool {

bool FlushToDisk(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isFlushed = fsync(descriptor) == 0;
    return close(descriptor) == 0 && isFlushed;
}

}  // namespace pgtool
