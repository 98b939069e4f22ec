#include <cstdlib>

#include "bitmap_memory.h"

namespace pgview {

void* AllocateBitmapMemory(size_t size) { return std::calloc(size, 1); }

void FreeBitmapMemory(void* handle) { std::free(handle); }

uint8_t* LockBitmapMemory(void* handle) { return static_cast<uint8_t*>(handle); }

void UnlockBitmapMemory(void*) {}

size_t BitmapMemorySize(void*) { return SIZE_MAX; }

}  // namespace pgview
