#include <process.h>
#include <windows.h>

#include <algorithm>
#include <vector>

#include "threads.h"

namespace pgtool {

namespace {

struct Job {
    const std::function<void(size_t)>* work;
    size_t number;
};

unsigned __stdcall Run(void* argument) {
    const Job& job = *static_cast<Job*>(argument);
    (*job.work)(job.number);
    return 0;
}

}  // namespace

size_t ProcessorCount() {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return std::max<size_t>(info.dwNumberOfProcessors, 1);
}

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<Job> jobs;
    for (size_t i = 0; i < count; ++i)
        jobs.push_back({&work, i});
    std::vector<HANDLE> threads;
    size_t next = 1;
    for (; next < count; ++next) {
        const uintptr_t thread = _beginthreadex(nullptr, 0, Run, &jobs[next], 0, nullptr);
        if (thread == 0) break;
        threads.push_back(reinterpret_cast<HANDLE>(thread));
    }
    if (count > 0) work(0);
    for (; next < count; ++next)
        work(next);
    for (HANDLE thread : threads) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
}

}  // namespace pgtool
