// The memory that bitmap handles stand for, which changes hands between modules: on Windows movable
// global memory blocks, on POSIX systems blocks of malloc whose handle is their address.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgview {

// A block of zeroed bytes; null when memory runs out.
void* AllocateBitmapMemory(size_t size);
// Null is allowed.
void FreeBitmapMemory(void* handle);

// The block's bytes, which stay in place until it is unlocked; null for a null or stale handle.
uint8_t* LockBitmapMemory(void* handle);
void UnlockBitmapMemory(void* handle);

// The size of a block, which may be a little more than was asked for; SIZE_MAX where the system
// does not tell.
size_t BitmapMemorySize(void* handle);

}  // namespace pgview
