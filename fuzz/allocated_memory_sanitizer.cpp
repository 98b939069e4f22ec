#include <sanitizer/allocator_interface.h>

#include "allocated_memory.h"

namespace pgkit_fuzz {

std::optional<uint64_t> AllocatedMemory() { return __sanitizer_get_current_allocated_bytes(); }

}  // namespace pgkit_fuzz
