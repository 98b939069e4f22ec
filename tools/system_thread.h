// Threads, on every platform: the compiler for Windows has none in its library.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace pgtool {

// As many as the machine runs at the same time; at least 1.
size_t ProcessorCount();

class SystemThread;
struct AwaitThread {
    void operator()(SystemThread* thread) const;
};
// Its end is waited for when it is destroyed.
using OwnThread = std::unique_ptr<SystemThread, AwaitThread>;

// Null where the system has no more threads to give. No exception may leave the work.
OwnThread StartThread(std::function<void()> work);

}  // namespace pgtool
