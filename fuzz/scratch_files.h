// Files for the interfaces that take paths, in a directory of this process.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace pgkit_fuzz {

// Full path of an entry; it need not exist.
std::string ScratchPath(const char* name);

// Writes a file, in the place of what was there, and returns its path.
std::string WriteScratch(const char* name, std::span<const uint8_t> content);

}  // namespace pgkit_fuzz
