#include <cstdlib>

#include "imaging/received_memory.h"

namespace pgkit_test {

uint8_t* LockReceived(void* handle) { return static_cast<uint8_t*>(handle); }
void UnlockReceived(void*) {}
void FreeReceived(void* handle) { std::free(handle); }
void* AllocateToGive(size_t size) { return std::calloc(size, 1); }

}  // namespace pgkit_test
