// Icons of images, which the imaging module makes, if there is one. Whatever goes wrong means only
// that there is no icon.
#pragma once

#include <cstdint>

#include "bitmap/bitmap_handle.h"

namespace pgkit {

// A bitmap of the frame one third into a grayscale image that fits into a square of this edge. None
// for an edge of 0 or above 256.
BitmapHandle NewImageIcon(const char* path, uint32_t edge);

}  // namespace pgkit
