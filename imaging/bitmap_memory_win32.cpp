#include <windows.h>

#include "bitmap_memory.h"

namespace pgview {

void* AllocateBitmapMemory(size_t size) { return GlobalAlloc(GHND, size); }

void FreeBitmapMemory(void* handle) {
    if (handle != nullptr) GlobalFree(handle);
}

uint8_t* LockBitmapMemory(void* handle) {
    return handle == nullptr ? nullptr : static_cast<uint8_t*>(GlobalLock(handle));
}

void UnlockBitmapMemory(void* handle) {
    if (handle != nullptr) GlobalUnlock(handle);
}

size_t BitmapMemorySize(void* handle) { return GlobalSize(handle); }

}  // namespace pgview
