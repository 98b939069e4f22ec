#include "allocated_memory.h"

#include <cstddef>

// Of the sanitizer's runtime. Not every compiler comes with the header that declares it.
extern "C" size_t
__sanitizer_get_current_allocated_bytes();  // NOLINT(bugprone-reserved-identifier)

namespace pgkit_fuzz {

std::optional<uint64_t> AllocatedMemory() { return __sanitizer_get_current_allocated_bytes(); }

}  // namespace pgkit_fuzz
