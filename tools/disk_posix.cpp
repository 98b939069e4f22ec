#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "disk.h"

namespace pgtool {

bool FlushToDisk(const std::string& path) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool isFlushed = fsync(descriptor) == 0;
    return close(descriptor) == 0 && isFlushed;
}

bool IsWritable(const std::string& path) { return access(path.c_str(), W_OK) == 0; }

NewFile CreateNewFile(const std::string& path, Readers readers) {
    const mode_t mode = readers == Readers::Everybody ? 0666 : 0600;
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0) return {nullptr, errno == EEXIST};
    std::FILE* const stream = fdopen(descriptor, "wb");
    if (stream == nullptr) close(descriptor);
    return {stream, false};
}

}  // namespace pgtool
