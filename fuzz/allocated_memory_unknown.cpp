#include "allocated_memory.h"

namespace pgkit_fuzz {

std::optional<uint64_t> AllocatedMemory() { return std::nullopt; }

}  // namespace pgkit_fuzz
