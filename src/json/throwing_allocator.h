// Memory for the JSON library, which does not look whether it got any.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace pgkit {

// An Allocator as RapidJSON wants it, that throws.
class ThrowingAllocator {
  public:
    static constexpr bool kNeedFree = true;

    void* Malloc(size_t size) { return size == 0 ? nullptr : Checked(std::malloc(size)); }
    void* Realloc(void* block, size_t, size_t newSize) {
        if (newSize != 0) return Checked(std::realloc(block, newSize));
        std::free(block);
        return nullptr;
    }
    static void Free(void* block) { std::free(block); }

  private:
    static void* Checked(void* block) {
        if (block == nullptr) throw std::bad_alloc();
        return block;
    }
};

}  // namespace pgkit
