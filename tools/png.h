// Pictures as PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pgtool {

// The bytes of a PNG file (ISO/IEC 15948) with a byte of gray for each pixel, or three of red,
// green and blue: rows from the top, without padding. Empty when memory runs out.
std::string EncodePng(uint32_t width, uint32_t height, uint32_t samples,
                      const std::vector<uint8_t>& pixels);

}  // namespace pgtool
