// Bitmaps in other sizes.
#pragma once

#include <cstdint>
#include <optional>

#include "bitmap.h"

namespace pgview {

struct BitmapSize {
    uint32_t width;
    uint32_t height;
};

enum class Enlarging { RepeatsPixels, Interpolates };

// The size of a bitmap, zoomed; nothing when that is no size.
std::optional<BitmapSize> ZoomedSize(const BitmapLayout& layout, double zoom);

// The size of a bitmap, scaled so that its longer side is side; nothing when side is 0 or too
// large.
std::optional<BitmapSize> FittedSize(const BitmapLayout& layout, uint32_t side);

// A new bitmap of another size, null for none. The same size gives a copy.
void* ResizeBitmap(const LockedBitmap& bitmap, std::optional<BitmapSize> size, Enlarging enlarging);

}  // namespace pgview
