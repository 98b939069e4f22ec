#include "threads.h"

#include <utility>
#include <vector>

#include "system_thread.h"

namespace pgtool {

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<OwnThread> threads;
    size_t next = 1;
    for (; next < count; ++next) {
        OwnThread thread = StartThread([&work, next] { work(next); });
        if (thread == nullptr) break;
        threads.push_back(std::move(thread));
    }
    if (count > 0) work(0);
    for (; next < count; ++next)
        work(next);
}

}  // namespace pgtool
