#include <fcntl.h>
#include <io.h>

#include "disk.h"

namespace pgtool {

bool FlushToDisk(const std::string& path) {
    const int descriptor = _open(path.c_str(), _O_WRONLY | _O_BINARY);
    if (descriptor < 0) return false;
    const bool isFlushed = _commit(descriptor) == 0;
    return _close(descriptor) == 0 && isFlushed;
}

}  // namespace pgtool
