// Memory that changes hands with bitmap handles, as programs that receive and give them treat it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgkit_test {

uint8_t* LockReceived(void* handle);
void UnlockReceived(void* handle);
void FreeReceived(void* handle);
// Memory to hand to a module, zeroed.
void* AllocateToGive(size_t size);

}  // namespace pgkit_test
