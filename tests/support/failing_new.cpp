#include "support/failing_new.h"

#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

// The linker sends calls of malloc to __wrap_malloc, and those of __real_malloc to malloc.
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* block, size_t size);
}

namespace {

pgkit_test::FailurePlan allocations;
bool nextMallocFails = false;
size_t largestBlock = SIZE_MAX;
size_t blocksInUse = 0;

bool IsRefused(size_t size) noexcept { return size > largestBlock || allocations.Fails(); }

void* Allocate(size_t size) noexcept {
    void* block = allocations.Fails() ? nullptr : __real_malloc(size == 0 ? 1 : size);
    if (block != nullptr) ++blocksInUse;
    return block;
}

void* AllocateOrThrow(size_t size) {
    void* block = Allocate(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void Release(void* block) noexcept {
    if (block == nullptr) return;
    --blocksInUse;
    std::free(block);
}

}  // namespace

void* __wrap_malloc(size_t size) {
    if (std::exchange(nextMallocFails, false)) return nullptr;
    return IsRefused(size) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size) {
    const size_t whole = size > 0 && count > SIZE_MAX / size ? SIZE_MAX : count * size;
    return IsRefused(whole) ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, size_t size) {
    return IsRefused(size) ? nullptr : __real_realloc(block, size);
}

void* operator new(size_t size) { return AllocateOrThrow(size); }
void* operator new[](size_t size) { return AllocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, size_t) noexcept { Release(block); }
void operator delete[](void* block, size_t) noexcept { Release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { Release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { Release(block); }

namespace pgkit_test {

namespace {

void ThrowAndCatch() {
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
    }
}

// The runtime allocates when a thread throws for the first time, and again when malloc has no room
// for an exception for the first time. It could not do without, so it gets it before memory runs
// out.
void PrepareToThrow() {
    ThrowAndCatch();
    nextMallocFails = true;
    ThrowAndCatch();
    nextMallocFails = false;
}

}  // namespace

FailingNew::FailingNew(size_t allowed, Failures failures) {
    PrepareToThrow();
    allocations.Arm(allowed, failures);
}

FailingNew::~FailingNew() { allocations.Disarm(); }

bool FailingNew::HasFailed() const { return allocations.HasFailed(); }

LittleMemory::LittleMemory(size_t largest) { largestBlock = largest; }

LittleMemory::~LittleMemory() { largestBlock = SIZE_MAX; }

size_t BlocksInUse() { return blocksInUse; }

}  // namespace pgkit_test
