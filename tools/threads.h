// Work on several threads.
#pragma once

#include <cstddef>
#include <functional>

namespace pgtool {

// Runs work(0) to work(count - 1), all but the first on threads of their own, and returns when all
// have ended. Where the system has no more threads to give, those that there are do the work of the
// others after their own. No exception may leave the work.
void RunOnThreads(size_t count, const std::function<void(size_t)>& work);

}  // namespace pgtool
