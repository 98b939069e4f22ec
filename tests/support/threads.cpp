#include "support/threads.h"

#include <stdexcept>
#include <vector>

#include "system_thread.h"

namespace pgkit_test {

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<pgtool::OwnThread> threads;
    for (size_t i = 0; i < count; ++i) {
        threads.push_back(pgtool::StartThread([&work, i] { work(i); }));
        if (threads.back() == nullptr) throw std::runtime_error("there are no more threads");
    }
}

}  // namespace pgkit_test
