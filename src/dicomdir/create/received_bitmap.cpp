#include "dicomdir/create/received_bitmap.h"

#include "frame/byte_order.h"

namespace pgkit {

namespace {

constexpr uint32_t kSmallestHeader = 40;
constexpr uint32_t kLongestSide = 0xFFFF;

// Four colour bits and less index a table; more than eight have none, but may bring one along.
uint32_t CountColours(uint32_t used, uint32_t bitCount) {
    if (used != 0 || bitCount > 8) return used;
    return uint32_t{1} << bitCount;
}

// Heights below 0, of bitmaps with the top row first, are too large as unsigned numbers.
bool IsSide(uint32_t length) { return length > 0 && length <= kLongestSide; }

std::optional<BitmapHeader> ReadHeader(const uint8_t* bytes, size_t size) {
    if (bytes == nullptr || size < kSmallestHeader) return std::nullopt;
    const auto u32 = [&](size_t offset) {
        return Load<uint32_t>(bytes + offset, ByteOrder::Little);
    };
    BitmapHeader header{u32(0), u32(4), u32(8), 0, 0};
    header.bitCount = Load<uint16_t>(bytes + 14, ByteOrder::Little);
    const bool isCompressed = u32(16) != 0;
    if (header.size < kSmallestHeader || isCompressed) return std::nullopt;
    if (!IsSide(header.width) || !IsSide(header.height)) return std::nullopt;
    header.colourCount = CountColours(u32(32), header.bitCount);
    if (header.PixelsOffset() + header.Stride() * header.height > size) return std::nullopt;
    return header;
}

}  // namespace

ReceivedBitmap::ReceivedBitmap(void* handle)
    : handle_(handle),
      bytes_(platform::LockGlobalBlock(handle)),
      size_(platform::GlobalBlockSize(handle)),
      header_(ReadHeader(bytes_, size_)) {}

ReceivedBitmap::~ReceivedBitmap() {
    if (bytes_ != nullptr) platform::UnlockGlobalBlock(handle_);
}

}  // namespace pgkit
