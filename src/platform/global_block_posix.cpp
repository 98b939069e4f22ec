#include <malloc.h>

#include <cstdlib>

#include "platform/global_block.h"

namespace pgkit::platform {

void* AllocateGlobalBlock(size_t size) { return std::calloc(size == 0 ? 1 : size, 1); }

uint8_t* LockGlobalBlock(void* handle) { return static_cast<uint8_t*>(handle); }

void UnlockGlobalBlock(void*) {}

size_t GlobalBlockSize(void* handle) { return ::malloc_usable_size(handle); }

void FreeGlobalBlock(void* handle) { std::free(handle); }

}  // namespace pgkit::platform
