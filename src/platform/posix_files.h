// What the POSIX sources of the platform layer share.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace pgkit::platform {

inline std::string WithSlashes(const char* path) {
    std::string result = path;
    std::replace(result.begin(), result.end(), '\\', '/');
    return result;
}

inline FILE* Unbuffered(FILE* stream) {
    if (stream != nullptr) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

// The stream owns the descriptor, which is closed when there is no memory for it.
inline FILE* StreamOf(int descriptor, const char* mode) {
    if (descriptor < 0) return nullptr;
    FILE* stream = ::fdopen(descriptor, mode);
    if (stream == nullptr) ::close(descriptor);
    return stream;
}

}  // namespace pgkit::platform
