// Device-independent bitmaps in memory: a BITMAPINFOHEADER, a table of colours of four bytes, and
// the rows from the bottom of the picture to its top. Numbers are little endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgkit {

constexpr uint32_t kBitmapHeaderSize = 40;

// The fields of the header that matter, by their offsets. The first is its own size.
constexpr size_t kBitmapWidth = 4;
constexpr size_t kBitmapHeight = 8;  // positive when the bottom row comes first
constexpr size_t kBitmapPlanes = 12;
constexpr size_t kBitmapBitCount = 14;
constexpr size_t kBitmapCompression = 16;
constexpr size_t kBitmapImageSize = 20;
constexpr size_t kBitmapColoursUsed = 32;

// Rows are filled up to whole units of four bytes.
constexpr uint64_t BitmapStride(uint32_t width, uint32_t bitCount) {
    return (uint64_t{width} * bitCount + 31) / 32 * 4;
}

}  // namespace pgkit
