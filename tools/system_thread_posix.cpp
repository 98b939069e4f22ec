#include "system_thread.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

namespace pgtool {

class SystemThread {
  public:
    explicit SystemThread(std::function<void()> work) : thread_(std::move(work)) {}
    ~SystemThread() { thread_.join(); }
    SystemThread(const SystemThread&) = delete;
    SystemThread& operator=(const SystemThread&) = delete;

  private:
    std::thread thread_;
};

void AwaitThread::operator()(SystemThread* thread) const { delete thread; }

size_t ProcessorCount() { return std::max(std::thread::hardware_concurrency(), 1u); }

OwnThread StartThread(std::function<void()> work) {
    try {
        return OwnThread(new SystemThread(std::move(work)));
    } catch (const std::system_error&) {
        return nullptr;
    }
}

}  // namespace pgtool
