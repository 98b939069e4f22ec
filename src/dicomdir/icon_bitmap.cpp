#include "dicomdir/icon_bitmap.h"

#include <cstdint>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

#include "base/byte_order.h"
#include "dataset/value_source.h"
#include "dicomdir/bitmap_format.h"

namespace pgkit {

namespace {

constexpr uint32_t kGrayCount = 256;

// How the samples of the pixels lie in the value.
struct PixelLayout {
    uint32_t rows = 0;
    uint32_t columns = 0;
    uint32_t samplesPerPixel = 1;
    uint32_t bytesPerSample = 1;
    uint32_t highBit = 7;
    bool isInverted = false;  // the lowest sample is white
    bool isPlanar = false;    // all reds, then all greens, then all blues

    uint64_t FrameSize() const {
        return uint64_t{rows} * columns * samplesPerPixel * bytesPerSample;
    }
};

// How the rows lie in the bitmap.
struct BitmapLayout {
    uint32_t bitCount;
    uint32_t grayCount;
    uint64_t stride;
    uint64_t imageSize;

    explicit BitmapLayout(const PixelLayout& pixels)
        : bitCount(8 * pixels.samplesPerPixel),
          grayCount(pixels.samplesPerPixel == 1 ? kGrayCount : 0),
          stride(BitmapStride(pixels.columns, bitCount)),
          imageSize(stride * pixels.rows) {}

    uint64_t PixelsOffset() const { return kBitmapHeaderSize + uint64_t{4} * grayCount; }
    uint64_t Size() const { return PixelsOffset() + imageSize; }
};

uint32_t NumberOf(PGX_Node& dataSet, uint16_t element, uint32_t fallback) {
    PGX_Node* node = dataSet.FindNode(0x0028, element);
    return node == nullptr ? fallback : node->GetUSValue();
}

bool ReadPhotometricInterpretation(PGX_Node& dataSet, PixelLayout& pixels) {
    char buffer[17] = {};
    PGX_Node* node = dataSet.FindNode(0x0028, 0x0004);
    if (node != nullptr) node->GetStringValue(buffer, sizeof buffer - 1);
    const std::string_view text(buffer);
    pixels.isInverted = text.starts_with("MONOCHROME1");
    pixels.samplesPerPixel = text.starts_with("RGB") ? 3 : 1;
    return pixels.samplesPerPixel == 3 || text.starts_with("MONOCHROME");
}

std::optional<PixelLayout> ReadPixelLayout(PGX_Node& dataSet) {
    PixelLayout pixels;
    if (!ReadPhotometricInterpretation(dataSet, pixels)) return std::nullopt;
    pixels.rows = NumberOf(dataSet, 0x0010, 0);
    pixels.columns = NumberOf(dataSet, 0x0011, 0);
    const uint32_t bitsAllocated = NumberOf(dataSet, 0x0100, 8);
    pixels.highBit = NumberOf(dataSet, 0x0102, bitsAllocated - 1);
    pixels.isPlanar = NumberOf(dataSet, 0x0006, 0) == 1;
    if (bitsAllocated != 8 && bitsAllocated != 16 && bitsAllocated != 32) return std::nullopt;
    if (pixels.highBit >= bitsAllocated) return std::nullopt;
    pixels.bytesPerSample = bitsAllocated / 8;
    return pixels;
}

// The frame in host byte order; empty when the layout asks for more than the value holds.
std::vector<uint8_t> ReadFrame(PGX_Node& dataSet, const PixelLayout& pixels) {
    PGX_Node* node = dataSet.FindNode(0x7FE0, 0x0010);
    const uint64_t size = pixels.FrameSize();
    if (node == nullptr || size == 0 || size > AvailableLength(*node)) return {};
    std::vector<uint8_t> frame(size);
    if (node->GetPixelData(0, static_cast<uint32_t>(size), frame.data()) != 1) return {};
    return frame;
}

uint32_t SampleAt(const uint8_t* bytes, uint32_t size) {
    if (size == 1) return *bytes;
    return size == 2 ? LoadHost<uint16_t>(bytes) : LoadHost<uint32_t>(bytes);
}

// The eight bits from the high bit down.
uint8_t ToByte(uint32_t sample, uint32_t highBit) {
    return static_cast<uint8_t>(highBit >= 7 ? sample >> (highBit - 7) : sample << (7 - highBit));
}

void WriteHeader(const PixelLayout& pixels, const BitmapLayout& bitmap, uint8_t* out) {
    const auto put32 = [out](size_t field, uint32_t number) {
        Store<uint32_t>(out + field, number, ByteOrder::Little);
    };
    const auto put16 = [out](size_t field, uint16_t number) {
        Store<uint16_t>(out + field, number, ByteOrder::Little);
    };
    put32(0, kBitmapHeaderSize);
    put32(kBitmapWidth, pixels.columns);
    put32(kBitmapHeight, pixels.rows);
    put16(kBitmapPlanes, 1);
    put16(kBitmapBitCount, static_cast<uint16_t>(bitmap.bitCount));
    put32(kBitmapImageSize, static_cast<uint32_t>(bitmap.imageSize));
    put32(kBitmapColoursUsed, bitmap.grayCount);
}

void WriteGrays(const PixelLayout& pixels, const BitmapLayout& bitmap, uint8_t* out) {
    for (size_t i = 0; i < bitmap.grayCount; ++i) {
        const uint8_t gray = static_cast<uint8_t>(pixels.isInverted ? 255 - i : i);
        out[4 * i] = out[4 * i + 1] = out[4 * i + 2] = gray;
    }
}

// Bitmaps keep their pixels as blue, green, red.
void WriteRow(const PixelLayout& pixels, const uint8_t* frame, uint64_t row, uint8_t* out) {
    const uint64_t planeSize = uint64_t{pixels.rows} * pixels.columns;
    const uint32_t samples = pixels.samplesPerPixel;
    for (uint64_t column = 0; column < pixels.columns; ++column) {
        const uint64_t pixel = row * pixels.columns + column;
        for (uint32_t sample = 0; sample < samples; ++sample) {
            const uint64_t index =
                pixels.isPlanar ? sample * planeSize + pixel : pixel * samples + sample;
            const uint8_t* bytes = frame + index * pixels.bytesPerSample;
            out[column * samples + (samples - 1 - sample)] =
                ToByte(SampleAt(bytes, pixels.bytesPerSample), pixels.highBit);
        }
    }
}

void WriteBitmap(const PixelLayout& pixels, const BitmapLayout& bitmap, const uint8_t* frame,
                 uint8_t* out) {
    WriteHeader(pixels, bitmap, out);
    WriteGrays(pixels, bitmap, out + kBitmapHeaderSize);
    uint8_t* rowOut = out + bitmap.Size();
    for (uint64_t row = 0; row < pixels.rows; ++row) {
        rowOut -= bitmap.stride;
        WriteRow(pixels, frame, row, rowOut);
    }
}

BitmapHandle NewBitmap(PGX_Node& dataSet) {
    const std::optional<PixelLayout> pixels = ReadPixelLayout(dataSet);
    if (!pixels) return nullptr;
    const BitmapLayout bitmap(*pixels);
    if (bitmap.Size() > INT32_MAX) return nullptr;
    const std::vector<uint8_t> frame = ReadFrame(dataSet, *pixels);
    if (frame.empty()) return nullptr;

    BitmapHandle handle(platform::AllocateGlobalBlock(bitmap.Size()));
    uint8_t* const out = platform::LockGlobalBlock(handle.get());
    if (out == nullptr) return nullptr;
    WriteBitmap(*pixels, bitmap, frame.data(), out);
    platform::UnlockGlobalBlock(handle.get());
    return handle;
}

}  // namespace

BitmapHandle NewIconBitmap(PGX_Node& dataSet) {
    try {
        return NewBitmap(dataSet);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace pgkit
