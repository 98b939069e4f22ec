// Bitmaps behind handles, read byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "support/temp_dir.h"

namespace pgkit_test {

// A bitmap that belongs to the test.
class Bitmap {
  public:
    explicit Bitmap(void* handle) : handle_(handle) {}
    // From all its bytes.
    explicit Bitmap(const Bytes& bytes);
    Bitmap(Bitmap&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Bitmap& operator=(Bitmap&&) = delete;
    ~Bitmap();

    bool Exists() const { return handle_ != nullptr; }
    void* Handle() const { return handle_; }

    uint32_t Width() const { return U32(4); }
    uint32_t Height() const { return U32(8); }
    uint32_t U32(size_t offset) const;
    uint16_t U16(size_t offset) const;
    Bytes Part(size_t offset, size_t size) const;
    // Header, colour table and rows.
    Bytes All() const;
    // The rows as they are stored.
    Bytes StoredRows() const;
    // The pixels from the top row to the bottom row, without padding.
    Bytes Pixels() const;

  private:
    void* handle_;
};

// A bitmap of grays as the module makes it, from its pixels, top row first.
Bitmap GrayBitmap(uint32_t width, uint32_t height, const Bytes& pixels);

// Header and pixels, all 0, of a bitmap; no colour table.
Bytes BitmapBytes(uint32_t width, uint32_t height, uint16_t bitCount, size_t pixelBytes);
// Sets four bytes, little endian.
void PutU32(Bytes& bytes, size_t offset, uint32_t n);

}  // namespace pgkit_test
