// The bitmaps that this module makes and takes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bitmap/received_bitmap.h"

namespace pgview {

// No larger bitmap is made or taken. A side is as long as Rows and Columns can say.
constexpr uint64_t kMaxPixels = uint64_t{1} << 28;
constexpr uint64_t kMaxSide = pgkit::kLongestBitmapSide;

bool IsWithinBounds(uint64_t width, uint64_t height);

// A bitmap that belongs to someone else, locked for the time of this object's life: of 8 bits with
// a table of grays, or of 24.
class LockedBitmap {
  public:
    explicit LockedBitmap(void* handle);

    // False for a bitmap that the module does not take; the rest is then not defined.
    bool IsUsable() const { return isUsable_; }
    const pgkit::BitmapHeader& Header() const { return *received_.Header(); }
    // Bytes per pixel: 1 or 3.
    uint32_t Channels() const { return Header().bitCount / 8; }
    // Header, colour table and rows.
    const uint8_t* Bytes() const { return received_.Bytes(); }
    // The stored row, counted from the bottom of the picture.
    const uint8_t* Row(size_t row) const { return received_.Row(row); }
    // The gray of a colour table's entry; black beyond its end.
    uint8_t Gray(uint8_t entry) const;

  private:
    pgkit::ReceivedBitmap received_;
    bool isUsable_;
};

}  // namespace pgview
