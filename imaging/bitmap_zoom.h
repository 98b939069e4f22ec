// Bitmaps in other sizes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "bitmap.h"
#include "bitmap/bitmap_handle.h"

namespace pgview {

struct BitmapSize {
    uint32_t width;
    uint32_t height;

    bool operator==(const BitmapSize&) const = default;
};

enum class Enlarging { RepeatsPixels, Interpolates };

// The size of a picture, zoomed, to the nearest pixel; nothing when that is no size.
std::optional<BitmapSize> ZoomedSize(BitmapSize size, double zoom);

// The size of a picture, scaled so that its longer side is side, to the nearest pixel; nothing when
// side is 0 or too large.
std::optional<BitmapSize> FittedSize(BitmapSize size, uint32_t side);

// A new bitmap of another size, null for none. The same size gives a copy.
pgkit::BitmapHandle ResizeBitmap(const LockedBitmap& bitmap, std::optional<BitmapSize> size,
                                 Enlarging enlarging);

// The same for grays that are given row by row, from the top: nextRow writes one and returns false
// when there is none, which gives null. Enlarging repeats pixels.
pgkit::BitmapHandle ResizeRows(BitmapSize from, BitmapSize to,
                               const std::function<bool(uint8_t*)>& nextRow);

}  // namespace pgview
