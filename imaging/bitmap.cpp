#include "bitmap.h"

#include <algorithm>
#include <new>
#include <utility>

#include "bitmap_memory.h"
#include "little_endian.h"

namespace pgview {

namespace {

// The fields of a BITMAPINFOHEADER that matter, by their offsets.
constexpr size_t kHeaderSize = 40;
constexpr size_t kWidth = 4;
constexpr size_t kHeight = 8;
constexpr size_t kPlanes = 12;
constexpr size_t kBitCount = 14;
constexpr size_t kCompression = 16;
constexpr size_t kSizeImage = 20;
constexpr size_t kColoursUsed = 32;

constexpr uint32_t kGrayCount = 256;

uint32_t CountColours(uint32_t used, uint32_t channels) {
    return used == 0 && channels == 1 ? kGrayCount : used;
}

std::optional<BitmapLayout> ReadLayout(const uint8_t* bytes, size_t size) {
    if (bytes == nullptr || size < kHeaderSize) return std::nullopt;
    if (Load32(bytes) != kHeaderSize || Load32(bytes + kCompression) != 0) return std::nullopt;
    const uint32_t bitCount = Load16(bytes + kBitCount);
    if (bitCount != 8 && bitCount != 24) return std::nullopt;
    // Heights below 0, of bitmaps that begin with their top row, are too large as unsigned numbers.
    const uint32_t width = Load32(bytes + kWidth);
    const uint32_t height = Load32(bytes + kHeight);
    if (!IsWithinBounds(width, height)) return std::nullopt;
    const uint32_t channels = bitCount / 8;
    const uint32_t colours = CountColours(Load32(bytes + kColoursUsed), channels);
    if (colours > kGrayCount) return std::nullopt;
    const BitmapLayout layout{width, height, channels, colours};
    if (layout.Size() > size) return std::nullopt;
    return layout;
}

// Pixels cannot be averaged by the indexes of colours.
bool HasOnlyGrays(const uint8_t* bytes, const BitmapLayout& layout) {
    const uint8_t* entry = bytes + kHeaderSize;
    for (uint32_t i = 0; i < layout.colourCount; ++i, entry += 4) {
        if (entry[0] != entry[1] || entry[0] != entry[2]) return false;
    }
    return true;
}

void WriteHeader(const BitmapLayout& layout, uint8_t* out) {
    Store32(out, kHeaderSize);
    Store32(out + kWidth, layout.width);
    Store32(out + kHeight, layout.height);
    Store16(out + kPlanes, 1);
    Store16(out + kBitCount, static_cast<uint16_t>(8 * layout.channels));
    Store32(out + kSizeImage, static_cast<uint32_t>(layout.Stride() * layout.height));
    Store32(out + kColoursUsed, layout.colourCount);
}

void WriteGrays(const BitmapLayout& layout, uint8_t* out) {
    for (uint32_t i = 0; i < layout.colourCount; ++i, out += 4) {
        std::fill_n(out, 3, static_cast<uint8_t>(i));
    }
}

}  // namespace

size_t BitmapLayout::Stride() const { return (size_t{width} * channels + 3) / 4 * 4; }

size_t BitmapLayout::PixelsOffset() const { return kHeaderSize + size_t{4} * colourCount; }

size_t BitmapLayout::Size() const { return PixelsOffset() + Stride() * height; }

bool IsWithinBounds(uint64_t width, uint64_t height) {
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide) return false;
    return width * height <= kMaxPixels;
}

BitmapLayout NewBitmapLayout(uint32_t width, uint32_t height, uint32_t channels) {
    return {width, height, channels, channels == 1 ? kGrayCount : 0};
}

LockedBitmap::LockedBitmap(void* handle) : handle_(handle), bytes_(LockBitmapMemory(handle)) {
    if (bytes_ == nullptr) return;
    layout_ = ReadLayout(bytes_, BitmapMemorySize(handle));
    if (layout_ && layout_->channels == 1 && !HasOnlyGrays(bytes_, *layout_)) layout_.reset();
}

LockedBitmap::~LockedBitmap() {
    if (bytes_ != nullptr) UnlockBitmapMemory(handle_);
}

const uint8_t* LockedBitmap::Row(size_t row) const {
    return bytes_ + layout_->PixelsOffset() + row * layout_->Stride();
}

uint8_t LockedBitmap::Gray(uint8_t entry) const {
    return entry < layout_->colourCount ? bytes_[kHeaderSize + size_t{4} * entry] : uint8_t{0};
}

NewBitmap::NewBitmap(const BitmapLayout& layout)
    : layout_(layout),
      handle_(AllocateBitmapMemory(layout.Size())),
      bytes_(LockBitmapMemory(handle_)) {
    if (bytes_ == nullptr) {
        FreeBitmapMemory(handle_);
        throw std::bad_alloc();
    }
    WriteHeader(layout_, bytes_);
    WriteGrays(layout_, bytes_ + kHeaderSize);
}

NewBitmap::~NewBitmap() { FreeBitmapMemory(Give()); }

void* NewBitmap::Give() {
    void* const given = std::exchange(handle_, nullptr);
    if (given != nullptr) UnlockBitmapMemory(given);
    return given;
}

}  // namespace pgview
