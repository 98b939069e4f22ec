#include "dicomdir/icon_bitmap.h"

#include <cstdint>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

#include "base/byte_order.h"
#include "bitmap/new_bitmap.h"
#include "dataset/tree_size.h"
#include "dataset/value_source.h"
#include "dicomdir/elements.h"

namespace pgkit {

namespace {

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

bool ReadPhotometricInterpretation(PGX_Node& dataSet, PixelLayout& pixels) {
    char buffer[17];
    ReadText(dataSet, tags::kPhotometricInterpretation, buffer);
    const std::string_view text(buffer);
    pixels.isInverted = text.starts_with("MONOCHROME1");
    pixels.samplesPerPixel = text.starts_with("RGB") ? 3 : 1;
    return pixels.samplesPerPixel == 3 || text.starts_with("MONOCHROME");
}

std::optional<PixelLayout> ReadPixelLayout(PGX_Node& dataSet) {
    PixelLayout pixels;
    if (!ReadPhotometricInterpretation(dataSet, pixels)) return std::nullopt;
    pixels.rows = ReadUnsignedShort(dataSet, tags::kRows);
    pixels.columns = ReadUnsignedShort(dataSet, tags::kColumns);
    pixels.isPlanar = ReadUnsignedShort(dataSet, tags::kPlanarConfiguration) == 1;
    const uint16_t bitsAllocated = ReadUnsignedShort(dataSet, tags::kBitsAllocated, 8);
    if (bitsAllocated != 8 && bitsAllocated != 16 && bitsAllocated != 32) return std::nullopt;
    pixels.highBit =
        ReadUnsignedShort(dataSet, tags::kHighBit, static_cast<uint16_t>(bitsAllocated - 1));
    if (pixels.highBit >= bitsAllocated) return std::nullopt;
    pixels.bytesPerSample = bitsAllocated / 8;
    return pixels;
}

// Null when the layout asks for more than the value holds.
PGX_Node* FindPixelData(PGX_Node& dataSet, const PixelLayout& pixels) {
    PGX_Node* const node = FindElement(dataSet, tags::kPixelData);
    const uint64_t size = pixels.FrameSize();
    return node == nullptr || size == 0 || size > AvailableLength(*node) ? nullptr : node;
}

// The frame in host byte order; empty when it cannot be read.
std::vector<uint8_t> ReadFrame(PGX_Node& pixelData, const PixelLayout& pixels) {
    std::vector<uint8_t> frame(pixels.FrameSize());
    const auto size = static_cast<uint32_t>(frame.size());
    return pixelData.GetPixelData(0, size, frame.data()) == 1 ? frame : std::vector<uint8_t>();
}

uint32_t SampleAt(const uint8_t* bytes, uint32_t size) {
    if (size == 1) return *bytes;
    return size == 2 ? HostNumberAt<uint16_t>(bytes) : HostNumberAt<uint32_t>(bytes);
}

// The eight bits from the high bit down.
uint8_t ToByte(uint32_t sample, uint32_t highBit) {
    return static_cast<uint8_t>(highBit >= 7 ? sample >> (highBit - 7) : sample << (7 - highBit));
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

BitmapHandle ShowPixels(const PixelLayout& pixels, const BitmapHeader& header,
                        const std::vector<uint8_t>& frame) {
    NewBitmap bitmap(header);
    for (uint32_t i = 0; i < header.colourCount; ++i)
        bitmap.SetGray(i, static_cast<uint8_t>(pixels.isInverted ? 255 - i : i));
    for (uint32_t row = 0; row < pixels.rows; ++row)
        WriteRow(pixels, frame.data(), row, bitmap.RowFromTop(row));
    return bitmap.Give();
}

BitmapHandle MakeIcon(PGX_Node& dataSet, const std::function<bool(uint64_t)>& mayTake) {
    const std::optional<PixelLayout> pixels = ReadPixelLayout(dataSet);
    if (!pixels) return nullptr;
    PGX_Node* const pixelData = FindPixelData(dataSet, *pixels);
    if (pixelData == nullptr) return nullptr;
    const BitmapHeader header =
        NewBitmapHeader(pixels->columns, pixels->rows, 8 * pixels->samplesPerPixel);
    if (header.TotalSize() > INT32_MAX) return nullptr;
    if (!mayTake(HeapBlock(header.TotalSize()) + HeapBlock(pixels->FrameSize()))) return nullptr;
    const std::vector<uint8_t> frame = ReadFrame(*pixelData, *pixels);
    return frame.empty() ? nullptr : ShowPixels(*pixels, header, frame);
}

}  // namespace

BitmapHandle NewIconBitmap(PGX_Node& dataSet) {
    return NewIconBitmap(dataSet, [](uint64_t) { return true; });
}

BitmapHandle NewIconBitmap(PGX_Node& dataSet, const std::function<bool(uint64_t)>& mayTake) {
    try {
        return MakeIcon(dataSet, mayTake);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace pgkit
