#include "dicomdir/create/received_bitmap.h"

#include "base/byte_order.h"
#include "platform/global_block.h"

namespace pgkit {

namespace {

constexpr uint32_t kLongestSide = 0xFFFF;

// Four colour bits and less index a table; more than eight have none, but may bring one along.
uint32_t CountColours(uint32_t used, uint32_t bitCount) {
    if (used != 0 || bitCount > 8) return used;
    return uint32_t{1} << bitCount;
}

// Heights below 0, of bitmaps with the top row first, are too large as unsigned numbers.
bool IsSide(uint32_t length) { return length > 0 && length <= kLongestSide; }

std::optional<BitmapHeader> ReadHeader(const uint8_t* bytes, size_t size) {
    if (bytes == nullptr || size < kBitmapHeaderSize) return std::nullopt;
    const auto u32 = [&](size_t field) { return Load<uint32_t>(bytes + field, ByteOrder::Little); };
    BitmapHeader header{u32(0), u32(kBitmapWidth), u32(kBitmapHeight), 0, 0};
    header.bitCount = Load<uint16_t>(bytes + kBitmapBitCount, ByteOrder::Little);
    const bool isCompressed = u32(kBitmapCompression) != 0;
    if (header.size < kBitmapHeaderSize || isCompressed) return std::nullopt;
    if (!IsSide(header.width) || !IsSide(header.height)) return std::nullopt;
    header.colourCount = CountColours(u32(kBitmapColoursUsed), header.bitCount);
    if (header.PixelsOffset() + header.Stride() * header.height > size) return std::nullopt;
    return header;
}

}  // namespace

ReceivedBitmap::ReceivedBitmap(void* handle)
    : handle_(handle),
      bytes_(platform::LockGlobalBlock(handle)),
      header_(ReadHeader(bytes_, platform::GlobalBlockSize(handle))) {}

ReceivedBitmap::~ReceivedBitmap() {
    if (bytes_ != nullptr) platform::UnlockGlobalBlock(handle_);
}

}  // namespace pgkit
