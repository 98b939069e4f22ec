// What the creation of a DICOMDIR takes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgtool {

inline constexpr uint32_t kLargestIcon = 256;    // pixels of a side
inline constexpr size_t kLongestFileSetId = 16;  // that of its VR

}  // namespace pgtool
