#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>

#include "disk.h"

namespace pgtool {

bool FlushToDisk(const std::string& path) {
    const int descriptor = _open(path.c_str(), _O_WRONLY | _O_BINARY);
    if (descriptor < 0) return false;
    const bool isFlushed = _commit(descriptor) == 0;
    return _close(descriptor) == 0 && isFlushed;
}

bool IsWritable(const std::string& path) {
    constexpr int kWritable = 2;
    return _access(path.c_str(), kWritable) == 0;
}

// Who may read it is up to the folder here.
NewFile CreateNewFile(const std::string& path, Readers) {
    const int descriptor =
        _open(path.c_str(), _O_WRONLY | _O_BINARY | _O_CREAT | _O_EXCL, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) return {nullptr, errno == EEXIST};
    std::FILE* const stream = _fdopen(descriptor, "wb");
    if (stream == nullptr) _close(descriptor);
    return {stream, false};
}

}  // namespace pgtool
