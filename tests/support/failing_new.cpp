#include "support/failing_new.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

size_t allowedAllocations = SIZE_MAX;
size_t blocksInUse = 0;

void* Allocate(size_t size) noexcept {
    if (allowedAllocations == 0) return nullptr;
    if (allowedAllocations != SIZE_MAX) --allowedAllocations;
    void* block = std::malloc(size == 0 ? 1 : size);
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

FailingNew::FailingNew(size_t allowed) { allowedAllocations = allowed; }

FailingNew::~FailingNew() { allowedAllocations = SIZE_MAX; }

size_t BlocksInUse() { return blocksInUse; }

}  // namespace pgkit_test
