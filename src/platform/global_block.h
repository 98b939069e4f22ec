// Blocks of memory that change hands between modules: a handle that its receiver locks to see the
// bytes. On Windows these are movable global memory blocks, which any module can lock and free; on
// POSIX the handle is the address of the bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgkit::platform {

// A block of zeroed bytes; null when memory runs out.
void* AllocateGlobalBlock(size_t size);

// The block's bytes, which stay in place until it is unlocked; null for a null handle.
uint8_t* LockGlobalBlock(void* handle);
void UnlockGlobalBlock(void* handle);

// The size of a block, which may be a little more than was asked for; 0 for a null handle.
size_t GlobalBlockSize(void* handle);

// Null is allowed.
void FreeGlobalBlock(void* handle);

}  // namespace pgkit::platform
