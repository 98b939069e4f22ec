// Room on the disk for what is needed while something is open.
#pragma once

#include <cstdio>

namespace pgkit::platform {

// A new empty file for reading and writing, where the system has its temporary files. Nobody else
// can open it, and it goes when it is closed or the process dies. The stream is unbuffered. Null on
// failure.
[[nodiscard]] FILE* CreateTemporary();

}  // namespace pgkit::platform
