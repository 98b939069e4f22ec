// What the bytes of paths mean where the system has names of wider characters.
#pragma once

#include <atomic>

namespace pgkit::platform {

// Whether paths are UTF-8 whatever the system's code page is.
inline constinit std::atomic<bool> pathsAreUtf8 = false;

}  // namespace pgkit::platform
