// Frames in RLE Lossless, transfer syntax 1.2.840.10008.1.2.5.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pgview {

// Decodes a frame of gray pixels, byteCount bytes each, into little-endian samples. The encoded
// frame has one segment for each of these bytes, the most significant first. Empty when it has not,
// or when a segment holds too few bytes; bytes beyond the last pixel are ignored.
std::vector<uint8_t> DecodeRleFrame(const std::vector<uint8_t>& encoded, size_t pixelCount,
                                    uint32_t byteCount);

}  // namespace pgview
