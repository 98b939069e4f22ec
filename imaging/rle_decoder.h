// Frames in RLE Lossless, transfer syntax 1.2.840.10008.1.2.5.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "frame_rows.h"

namespace pgview {

// Decodes a frame of gray pixels, byteCount bytes each, while its rows are asked for. The encoded
// frame has one segment for each of these bytes, the most significant first; bytes beyond the last
// pixel are ignored. Null when it has not, or when it is too short for so many pixels, however well
// they are compressed.
std::unique_ptr<FrameRows> NewRleRows(std::vector<uint8_t> encoded, size_t rows, size_t columns,
                                      uint32_t byteCount);

}  // namespace pgview
