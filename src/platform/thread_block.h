// A block of memory of each thread's own.
#pragma once

#include <cstddef>

namespace pgkit::platform {

inline constexpr size_t kThreadBlockSize = 520;

// The block of the calling thread: zeros at first, the same at every call, gone with the thread.
// Null when there is no memory for the first call. (The variables that compilers offer for this end
// the process then: those of a module that was loaded late, and with mingw-w64 all of them, get
// their memory from the heap when a thread first uses them.)
void* ThreadBlock() noexcept;

}  // namespace pgkit::platform
