#include <windows.h>

#include <cstdint>

#include "platform/memory_block.h"

namespace pgkit::platform {

namespace {

void* TakeAt(void* place, size_t size, DWORD kind) {
    return VirtualAlloc(place, size, kind, PAGE_READWRITE);
}

void Return(void* memory) { VirtualFree(memory, 0, MEM_RELEASE); }

}  // namespace

// The system knows multiples of 64 KiB only, and takes back what it gave as a whole. So it is asked
// for addresses that have a block's place among them, and then for that place; another thread may
// have it by then.
void* TakeMemoryBlock() noexcept {
    constexpr int kTries = 4;
    for (int i = 0; i < kTries; ++i) {
        void* const room = TakeAt(nullptr, 2 * kMemoryBlockSize, MEM_RESERVE);
        if (room == nullptr) return nullptr;
        const auto address = reinterpret_cast<uintptr_t>(room);
        auto* const place = static_cast<char*>(room) + (0 - address) % kMemoryBlockSize;
        Return(room);
        void* const block = TakeAt(place, kMemoryBlockSize, MEM_RESERVE | MEM_COMMIT);
        if (block != nullptr) return block;
    }
    return nullptr;
}

void ReturnMemoryBlock(void* block) noexcept { Return(block); }

}  // namespace pgkit::platform
