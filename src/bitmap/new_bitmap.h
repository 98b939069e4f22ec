// Bitmaps that are made here and given away.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bitmap/bitmap_format.h"
#include "bitmap/bitmap_handle.h"

namespace pgkit {

// A new bitmap with its memory held in place until it is given away, and freed when it is not. The
// header is complete, all else 0.
class NewBitmap {
  public:
    // Throws std::bad_alloc, also for one of 2 GiB or more: sizes in its header are signed.
    explicit NewBitmap(const BitmapHeader& header);
    ~NewBitmap();
    NewBitmap(const NewBitmap&) = delete;
    NewBitmap& operator=(const NewBitmap&) = delete;

    // The table's entry.
    void SetGray(size_t entry, uint8_t gray);
    // Makes every entry of the table its own number.
    void SetGrays();

    uint8_t* Bytes() { return bytes_; }
    // The stored row, counted from the bottom of the picture.
    uint8_t* Row(size_t row) { return bytes_ + header_.PixelsOffset() + row * header_.Stride(); }
    // The row of the picture, counted from its top.
    uint8_t* RowFromTop(size_t row) { return Row(header_.height - 1 - row); }

    // Hands the bitmap over to the caller.
    BitmapHandle Give();

  private:
    BitmapHeader header_;
    BitmapHandle handle_;
    uint8_t* bytes_;
};

}  // namespace pgkit
