#include "platform/temporary_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/posix_files.h"

namespace pgkit::platform {

namespace {

// Not every file system knows files that never had a name.
int CreateNameless(const std::string& directory) {
    return ::open(directory.c_str(), O_TMPFILE | O_RDWR | O_EXCL | O_CLOEXEC, 0600);
}

int CreateAndUnlink(const std::string& directory) {
    std::string name = directory + "/pgkit-XXXXXX";
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor >= 0) ::unlink(name.c_str());
    return descriptor;
}

}  // namespace

FILE* CreateTemporary() {
    const char* const chosen = std::getenv("TMPDIR");
    const std::string directory = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
    int descriptor = CreateNameless(directory);
    if (descriptor < 0) descriptor = CreateAndUnlink(directory);
    return Unbuffered(StreamOf(descriptor, "w+b"));
}

}  // namespace pgkit::platform
