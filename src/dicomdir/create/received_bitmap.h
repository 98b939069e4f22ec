// Bitmaps that come from others, the imaging module or the host: nothing that their headers say is
// believed before it fits their memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "dicomdir/bitmap_format.h"

namespace pgkit {

// What a BITMAPINFOHEADER says of an uncompressed bitmap with the bottom row first.
struct BitmapHeader {
    uint32_t size;
    uint32_t width;  // neither side is 0, or more than the 65,535 that Rows and Columns can say
    uint32_t height;
    uint32_t bitCount;
    uint32_t colourCount;  // entries of the colour table

    size_t Stride() const { return BitmapStride(width, bitCount); }
    size_t PixelsOffset() const { return size + size_t{4} * colourCount; }
};

// Holds the memory of a bitmap in place for the time of its own life.
class ReceivedBitmap {
  public:
    explicit ReceivedBitmap(void* handle);
    ~ReceivedBitmap();
    ReceivedBitmap(const ReceivedBitmap&) = delete;
    ReceivedBitmap& operator=(const ReceivedBitmap&) = delete;

    // Nothing for no bitmap, and for one that is not all there.
    const std::optional<BitmapHeader>& Header() const { return header_; }
    // The table's entry: blue, green, red, 0.
    const uint8_t* Colour(size_t entry) const { return bytes_ + header_->size + 4 * entry; }
    // The stored row, counted from the bottom of the picture.
    const uint8_t* Row(size_t row) const {
        return bytes_ + header_->PixelsOffset() + row * header_->Stride();
    }

  private:
    void* handle_;
    const uint8_t* bytes_;
    std::optional<BitmapHeader> header_;
};

}  // namespace pgkit
