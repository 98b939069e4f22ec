#include <windows.h>

#include "imaging/received_memory.h"

namespace pgkit_test {

uint8_t* LockReceived(void* handle) { return static_cast<uint8_t*>(GlobalLock(handle)); }
void UnlockReceived(void* handle) { GlobalUnlock(handle); }
void FreeReceived(void* handle) { GlobalFree(handle); }
void* AllocateToGive(size_t size) { return GlobalAlloc(GHND, size); }

}  // namespace pgkit_test
