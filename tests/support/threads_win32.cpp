#include <process.h>
#include <windows.h>

#include <system_error>
#include <vector>

#include "support/threads.h"

namespace pgkit_test {

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

void RunOnThreads(size_t count, const std::function<void(size_t)>& work) {
    std::vector<Job> jobs;
    for (size_t i = 0; i < count; ++i)
        jobs.push_back({&work, i});
    std::vector<HANDLE> threads;
    for (Job& job : jobs) {
        const uintptr_t thread = _beginthreadex(nullptr, 0, Run, &job, 0, nullptr);
        if (thread == 0) throw std::system_error(errno, std::generic_category());
        threads.push_back(reinterpret_cast<HANDLE>(thread));
    }
    for (HANDLE thread : threads) {
        WaitForSingleObject(thread, INFINITE);
        CloseHandle(thread);
    }
}

}  // namespace pgkit_test
