// A range of addresses in which memory is put and taken away again, in pieces of whole pages.
#pragma once

#include <cstddef>

namespace pgkit::platform {

// Addresses without memory behind them; null when the system does not give that many. Always null
// in builds with the address sanitizer, which would not see what happens inside.
void* ReserveAddresses(size_t size);

// Puts zeroed memory behind a part of a range. The system is asked for large pages, where it has
// them: a piece should be a multiple of 2 MiB, aligned to that. False when memory runs out.
bool CommitMemory(void* piece, size_t size);

// Gives the memory back and keeps the addresses.
void DecommitMemory(void* piece, size_t size);

void ReleaseAddresses(void* range, size_t size);

}  // namespace pgkit::platform
