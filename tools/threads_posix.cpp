#include "threads.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace pgtool {

size_t ProcessorCount() { return std::max(std::thread::hardware_concurrency(), 1u); }

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<std::thread> threads;
    size_t next = 1;
    try {
        for (; next < count; ++next)
            threads.emplace_back(work, next);
    } catch (const std::system_error&) {
    }
    if (count > 0) work(0);
    for (; next < count; ++next)
        work(next);
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace pgtool
