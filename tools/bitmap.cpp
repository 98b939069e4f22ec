#include "bitmap.h"

#include <cstddef>

namespace pgtool {

namespace {

constexpr size_t kTable = 40;
constexpr size_t kRows = kTable + 1024;

uint32_t NumberAt(const uint8_t* bytes) {
    return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

}  // namespace

// The layout is that of pgkit/imaging.h: 8 bits for each pixel, entry i of the table is the gray i,
// the bottom row first.
GrayPicture TakeBitmap(void* bitmap) {
    GrayPicture picture;
    if (bitmap == nullptr) return picture;
    if (const uint8_t* const bytes = LockBitmap(bitmap)) {
        picture.width = NumberAt(bytes + 4);
        picture.height = NumberAt(bytes + 8);
        const size_t stride = (size_t{picture.width} + 3) / 4 * 4;
        picture.pixels.reserve(size_t{picture.width} * picture.height);
        for (size_t y = picture.height; y-- > 0;) {
            const uint8_t* const row = bytes + kRows + y * stride;
            picture.pixels.insert(picture.pixels.end(), row, row + picture.width);
        }
    }
    FreeBitmap(bitmap);
    return picture;
}

}  // namespace pgtool
