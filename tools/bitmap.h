// Bitmaps of the imaging module.
#pragma once

#include <cstdint>
#include <vector>

namespace pgtool {

// Pixels of one byte of gray, rows from the top, without padding.
struct GrayPicture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> pixels;
};

// Reads a bitmap and frees it. Null gives an empty picture.
GrayPicture TakeBitmap(void* bitmap);

// The system's part: bitmaps are blocks of its memory.
const uint8_t* LockBitmap(void* bitmap);
void FreeBitmap(void* bitmap);

}  // namespace pgtool
