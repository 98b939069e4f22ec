// Device-independent bitmaps in memory: a BITMAPINFOHEADER, a table of colours of four bytes (blue,
// green, red, 0), and the rows from the bottom of the picture to its top, each filled up to whole
// units of four bytes. Numbers are little endian, at any address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace pgkit {

constexpr uint32_t kBitmapHeaderSize = 40;

// As long as Rows and Columns can say.
constexpr uint32_t kLongestBitmapSide = 0xFFFF;

constexpr uint32_t kGrayCount = 256;

// What a header says of an uncompressed bitmap with the bottom row first.
struct BitmapHeader {
    uint32_t size;   // of the header itself: it may be longer than what is known of it
    uint32_t width;  // neither side is 0 or more than the longest
    uint32_t height;
    uint32_t bitCount;
    uint32_t colourCount;  // entries of the colour table

    uint64_t Stride() const { return (uint64_t{width} * bitCount + 31) / 32 * 4; }
    uint64_t PixelsOffset() const { return size + uint64_t{4} * colourCount; }
    uint64_t ImageSize() const { return Stride() * height; }
    // Header, table and rows.
    uint64_t TotalSize() const { return PixelsOffset() + ImageSize(); }
};

// The header at the start of a block of memory. Nothing that it says is believed before it fits the
// block: nothing for one that is too small for its bitmap, for no memory (null), and for a bitmap
// that is compressed, begins with its top row, or has a side of no length or more than the longest.
std::optional<BitmapHeader> ReadBitmapHeader(const uint8_t* bytes, size_t blockSize);

// The header of a new bitmap: of grays, with a table of them, for 8 bits, of colours for 24.
constexpr BitmapHeader NewBitmapHeader(uint32_t width, uint32_t height, uint32_t bitCount) {
    return {kBitmapHeaderSize, width, height, bitCount, bitCount == 8 ? kGrayCount : 0};
}

// Writes such a header over zeros, without the colour table.
void WriteBitmapHeader(const BitmapHeader& header, uint8_t* zeros);

}  // namespace pgkit
