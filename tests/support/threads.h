// Threads for tests.
#pragma once

#include <cstddef>
#include <functional>

namespace pgkit_test {

// Runs work(0) to work(count - 1), each on a thread of its own, and returns when all have ended.
// Nothing may be asserted on these threads.
void RunOnThreads(size_t count, const std::function<void(size_t)>& work);

}  // namespace pgkit_test
