// Blocks of memory that come from the system and go back to it one by one.
#pragma once

#include <cstddef>

namespace pgkit::platform {

// Of a block, and what its address is a multiple of: the size of a large page where there are some.
inline constexpr size_t kMemoryBlockSize = size_t{2} << 20;

// Zeroed memory, in a large page where the system has one; null when it gives none.
void* TakeMemoryBlock() noexcept;

void ReturnMemoryBlock(void* block) noexcept;

}  // namespace pgkit::platform
