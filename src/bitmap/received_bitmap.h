// Bitmaps that come from others, another module or the host.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "bitmap/bitmap_format.h"

namespace pgkit {

// Holds the memory of a bitmap in place for the time of its own life. Null is allowed.
class ReceivedBitmap {
  public:
    explicit ReceivedBitmap(void* handle);
    ~ReceivedBitmap();
    ReceivedBitmap(const ReceivedBitmap&) = delete;
    ReceivedBitmap& operator=(const ReceivedBitmap&) = delete;

    // Nothing for no bitmap, and for one that is not all there; the rest is then not defined.
    const std::optional<BitmapHeader>& Header() const { return header_; }
    // Header, colour table and rows.
    const uint8_t* Bytes() const { return bytes_; }
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
