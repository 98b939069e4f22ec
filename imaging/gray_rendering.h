// From samples to grays: stored values, rescaling, window, photometric interpretation.
#pragma once

#include <cstdint>
#include <vector>

#include "image_description.h"

namespace pgview {

// A new bitmap of one frame, given as FrameSize() bytes of little-endian samples.
void* RenderFrame(const ImageDescription& image, const std::vector<uint8_t>& frame);

}  // namespace pgview
