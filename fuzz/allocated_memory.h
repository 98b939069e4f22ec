// How much memory the heap has given out.
#pragma once

#include <cstdint>
#include <optional>

namespace pgkit_fuzz {

// The bytes that were asked for and not given back; nothing where only a sanitizer would know.
std::optional<uint64_t> AllocatedMemory();

}  // namespace pgkit_fuzz
