#include <windows.h>

#include "platform/global_block.h"

namespace pgkit::platform {

void* AllocateGlobalBlock(size_t size) { return GlobalAlloc(GHND, size == 0 ? 1 : size); }

uint8_t* LockGlobalBlock(void* handle) {
    return handle == nullptr ? nullptr : static_cast<uint8_t*>(GlobalLock(handle));
}

void UnlockGlobalBlock(void* handle) {
    if (handle != nullptr) GlobalUnlock(handle);
}

size_t GlobalBlockSize(void* handle) { return handle == nullptr ? 0 : GlobalSize(handle); }

void FreeGlobalBlock(void* handle) {
    if (handle != nullptr) GlobalFree(handle);
}

}  // namespace pgkit::platform
