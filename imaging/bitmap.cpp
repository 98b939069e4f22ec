#include "bitmap.h"

namespace pgview {

namespace {

// Pixels cannot be averaged by the indexes of colours.
bool HasOnlyGrays(const pgkit::ReceivedBitmap& bitmap) {
    for (uint32_t i = 0; i < bitmap.Header()->colourCount; ++i) {
        const uint8_t* const entry = bitmap.Colour(i);
        if (entry[0] != entry[1] || entry[0] != entry[2]) return false;
    }
    return true;
}

bool IsTaken(const pgkit::ReceivedBitmap& bitmap) {
    if (!bitmap.Header()) return false;
    const pgkit::BitmapHeader& header = *bitmap.Header();
    if (header.size != pgkit::kBitmapHeaderSize || header.colourCount > pgkit::kGrayCount) {
        return false;
    }
    if (!IsWithinBounds(header.width, header.height)) return false;
    return header.bitCount == 24 || (header.bitCount == 8 && HasOnlyGrays(bitmap));
}

}  // namespace

bool IsWithinBounds(uint64_t width, uint64_t height) {
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) return false;
    return width * height <= kMaxPixels;
}

LockedBitmap::LockedBitmap(void* handle) : received_(handle), isUsable_(IsTaken(received_)) {}

uint8_t LockedBitmap::Gray(uint8_t entry) const {
    return entry < Header().colourCount ? *received_.Colour(entry) : uint8_t{0};
}

}  // namespace pgview
