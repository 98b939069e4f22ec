#include "bitmap/bitmap_format.h"

#include "base/byte_order.h"

namespace pgkit {

namespace {

// The fields that matter, by their offsets. The first is the header's own size.
constexpr size_t kWidth = 4;
constexpr size_t kHeight = 8;  // positive when the bottom row comes first
constexpr size_t kPlanes = 12;
constexpr size_t kBitCount = 14;
constexpr size_t kCompression = 16;
constexpr size_t kImageSize = 20;
constexpr size_t kColoursUsed = 32;

// Eight colour bits and less index a table; more have none, but may bring one along.
uint32_t CountColours(uint32_t used, uint32_t bitCount) {
    if (used != 0 || bitCount > 8) return used;
    return uint32_t{1} << bitCount;
}

// Heights below 0, of bitmaps with the top row first, are too large as unsigned numbers.
bool IsSide(uint32_t length) { return length > 0 && length <= kLongestBitmapSide; }

}  // namespace

std::optional<BitmapHeader> ReadBitmapHeader(const uint8_t* bytes, size_t blockSize) {
    if (bytes == nullptr || blockSize < kBitmapHeaderSize) return std::nullopt;
    const auto u32 = [&](size_t field) {
        return NumberAt<uint32_t>(bytes + field, ByteOrder::Little);
    };
    BitmapHeader header{u32(0), u32(kWidth), u32(kHeight), 0, 0};
    header.bitCount = NumberAt<uint16_t>(bytes + kBitCount, ByteOrder::Little);
    const bool isCompressed = u32(kCompression) != 0;
    if (header.size < kBitmapHeaderSize || isCompressed) return std::nullopt;
    if (!IsSide(header.width) || !IsSide(header.height)) return std::nullopt;
    header.colourCount = CountColours(u32(kColoursUsed), header.bitCount);
    if (header.TotalSize() > blockSize) return std::nullopt;
    return header;
}

void WriteBitmapHeader(const BitmapHeader& header, uint8_t* zeros) {
    const auto put32 = [zeros](size_t field, uint32_t number) {
        PutNumber<uint32_t>(zeros + field, number, ByteOrder::Little);
    };
    const auto put16 = [zeros](size_t field, uint32_t number) {
        PutNumber<uint16_t>(zeros + field, static_cast<uint16_t>(number), ByteOrder::Little);
    };
    put32(0, header.size);
    put32(kWidth, header.width);
    put32(kHeight, header.height);
    put16(kPlanes, 1);
    put16(kBitCount, header.bitCount);
    put32(kImageSize, static_cast<uint32_t>(header.ImageSize()));
    put32(kColoursUsed, header.colourCount);
}

}  // namespace pgkit
