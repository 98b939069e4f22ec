#include <process.h>
#include <windows.h>

#include <algorithm>
#include <utility>

#include "system_thread.h"

namespace pgtool {

class SystemThread {
  public:
    explicit SystemThread(std::function<void()> work) : work_(std::move(work)) {}
    ~SystemThread() {
        if (handle_ == nullptr) return;
        WaitForSingleObject(handle_, INFINITE);
        CloseHandle(handle_);
    }
    SystemThread(const SystemThread&) = delete;
    SystemThread& operator=(const SystemThread&) = delete;

    bool Start() {
        handle_ = reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, Run, this, 0, nullptr));
        return handle_ != nullptr;
    }

  private:
    static unsigned __stdcall Run(void* thread) {
        static_cast<SystemThread*>(thread)->work_();
        return 0;
    }

    std::function<void()> work_;
    HANDLE handle_ = nullptr;
};

void AwaitThread::operator()(SystemThread* thread) const { delete thread; }

size_t ProcessorCount() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return std::max<size_t>(info.dwNumberOfProcessors, 1);
}

OwnThread StartThread(std::function<void()> work) {
    OwnThread thread(new SystemThread(std::move(work)));
    return thread->Start() ? std::move(thread) : nullptr;
}

}  // namespace pgtool
