#include <thread>
#include <vector>

#include "support/threads.h"

namespace pgkit_test {

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<std::thread> threads;
    for (size_t i = 0; i < count; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

}  // namespace pgkit_test
