#include <sys/mman.h>

#include <cstdint>

#include "platform/memory_block.h"

namespace pgkit::platform {

namespace {

void* Map(size_t size) {
    void* const memory =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

// How far it is to the next multiple of a block's size.
size_t BytesBeforeBlock(const void* memory) {
    return (0 - reinterpret_cast<uintptr_t>(memory)) % kMemoryBlockSize;
}

// A block out of the middle of twice as much.
void* CutOut() {
    auto* const begin = static_cast<char*>(Map(2 * kMemoryBlockSize));
    if (begin == nullptr) return nullptr;
    const size_t before = BytesBeforeBlock(begin);
    char* const block = begin + before;
    if (before != 0) ::munmap(begin, before);
    ::munmap(block + kMemoryBlockSize, kMemoryBlockSize - before);
    return block;
}

}  // namespace

// The system puts one mapping beside the other, so that it is only the first of many that is not in
// its place.
void* TakeMemoryBlock() noexcept {
    void* block = Map(kMemoryBlockSize);
    if (block != nullptr && BytesBeforeBlock(block) != 0) {
        ::munmap(block, kMemoryBlockSize);
        block = CutOut();
    }
#if defined(MADV_HUGEPAGE)
    if (block != nullptr) ::madvise(block, kMemoryBlockSize, MADV_HUGEPAGE);
#endif
    return block;
}

void ReturnMemoryBlock(void* block) noexcept { ::munmap(block, kMemoryBlockSize); }

}  // namespace pgkit::platform
