#include "imaging/bitmap.h"

#include <algorithm>

#include "imaging/received_memory.h"

namespace pgkit_test {

namespace {

constexpr size_t kGrayPixels = 40 + 4 * 256;

size_t StrideOf(uint32_t width, uint32_t bitCount) {
    return (size_t{width} * bitCount / 8 + 3) / 4 * 4;
}

}  // namespace

Bitmap::Bitmap(const Bytes& bytes) : handle_(AllocateToGive(bytes.size())) {
    std::copy(bytes.begin(), bytes.end(), LockReceived(handle_));
    UnlockReceived(handle_);
}

Bitmap::~Bitmap() {
    if (handle_ != nullptr) FreeReceived(handle_);
}

Bytes Bitmap::Part(size_t offset, size_t size) const {
    const uint8_t* const bytes = LockReceived(handle_) + offset;
    Bytes part(bytes, bytes + size);
    UnlockReceived(handle_);
    return part;
}

uint16_t Bitmap::U16(size_t offset) const {
    const Bytes bytes = Part(offset, 2);
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

uint32_t Bitmap::U32(size_t offset) const { return U16(offset) | uint32_t{U16(offset + 2)} << 16; }

Bytes Bitmap::All() const { return Part(0, 40 + 4 * U32(32) + U32(20)); }

Bytes Bitmap::StoredRows() const { return Part(40 + 4 * U32(32), U32(20)); }

Bytes Bitmap::Pixels() const {
    const Bytes rows = StoredRows();
    const size_t stride = StrideOf(Width(), U16(14));
    const size_t used = size_t{Width()} * U16(14) / 8;
    Bytes pixels;
    for (size_t row = Height(); row-- > 0;) {
        const auto begin = rows.begin() + static_cast<std::ptrdiff_t>(row * stride);
        pixels.insert(pixels.end(), begin, begin + static_cast<std::ptrdiff_t>(used));
    }
    return pixels;
}

void PutU32(Bytes& bytes, size_t offset, uint32_t n) {
    for (size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<uint8_t>(n >> (8 * i) & 0xFF);
}

Bytes BitmapBytes(uint32_t width, uint32_t height, uint16_t bitCount, size_t pixelBytes) {
    Bytes bytes(40 + pixelBytes);
    PutU32(bytes, 0, 40);
    PutU32(bytes, 4, width);
    PutU32(bytes, 8, height);
    PutU32(bytes, 12, 1 | uint32_t{bitCount} << 16);
    PutU32(bytes, 20, static_cast<uint32_t>(pixelBytes));
    return bytes;
}

Bitmap GrayBitmap(uint32_t width, uint32_t height, const Bytes& pixels) {
    const size_t stride = StrideOf(width, 8);
    Bytes bytes = BitmapBytes(width, height, 8, 1024 + stride * height);
    PutU32(bytes, 20, static_cast<uint32_t>(stride * height));
    PutU32(bytes, 32, 256);
    for (uint32_t gray = 0; gray < 256; ++gray)
        PutU32(bytes, 40 + size_t{4} * gray, gray * 0x010101);
    for (size_t row = 0; row < height; ++row) {
        for (size_t column = 0; column < width; ++column) {
            bytes[kGrayPixels + (height - 1 - row) * stride + column] =
                pixels.at(row * width + column);
        }
    }
    return Bitmap(bytes);
}

}  // namespace pgkit_test
