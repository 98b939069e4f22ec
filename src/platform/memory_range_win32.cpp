#include <windows.h>

#include "platform/memory_range.h"

namespace pgkit::platform {

void* ReserveAddresses(size_t size) {
    return VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
}

bool CommitMemory(void* piece, size_t size) {
    return VirtualAlloc(piece, size, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

void DecommitMemory(void* piece, size_t size) { VirtualFree(piece, size, MEM_DECOMMIT); }

void ReleaseAddresses(void* range, size_t) { VirtualFree(range, 0, MEM_RELEASE); }

}  // namespace pgkit::platform
