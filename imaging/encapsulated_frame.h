// The bytes of one frame of encapsulated Pixel Data.
#pragma once

#include <pgkit/node.h>

#include <cstdint>
#include <vector>

namespace pgview {

// The fragments of a frame, joined. Frames are found by the Basic Offset Table or, when that is
// empty, by counting fragments, where each is a frame or all are the only one. Empty when the frame
// cannot be found, or when the file holds it only in part.
std::vector<uint8_t> ReadEncapsulatedFrame(PGX_Node& dataSet, PGX_Node& pixelData,
                                           uint32_t frameIndex, uint32_t frameCount);

}  // namespace pgview
