#include "disc/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace pgtool {

std::string WriteWholeFile(const std::string& path, std::string_view bytes) {
    std::FILE* const stream = std::fopen(path.c_str(), "wb");
    const bool isWritten =
        stream != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
    const bool isClosed = stream != nullptr && std::fclose(stream) == 0;
    if (isWritten && isClosed) return "";
    return path + ": writing failed: " + std::generic_category().message(errno);
}

}  // namespace pgtool
