#include "dicomdir/create/icon_item.h"

#include <algorithm>
#include <array>
#include <new>
#include <vector>

#include "bitmap/received_bitmap.h"
#include "dicomdir/elements.h"
#include "dicomdir/record_copy.h"

namespace pgkit {

namespace {

constexpr int16_t kNoGray = -1;

// By the values of pixels; those beyond the table are black.
using Grays = std::array<int16_t, 256>;

Grays ReadGrays(const ReceivedBitmap& bitmap) {
    Grays grays{};
    const size_t count = std::min<size_t>(bitmap.Header()->colourCount, grays.size());
    for (size_t entry = 0; entry < count; ++entry) {
        const uint8_t* colour = bitmap.Colour(entry);
        const bool isGray = colour[0] == colour[1] && colour[0] == colour[2];
        grays[entry] = isGray ? int16_t{colour[0]} : kNoGray;
    }
    return grays;
}

// Pixels of less than a byte begin with its highest bits.
uint8_t ValueAt(const uint8_t* row, size_t column, uint32_t bitCount) {
    const size_t bit = column * bitCount;
    const uint32_t mask = (1u << bitCount) - 1;
    return static_cast<uint8_t>(row[bit / 8] >> (8 - bitCount - bit % 8) & mask);
}

// The grays from the top row to the bottom row; empty when a pixel is not gray.
std::vector<uint8_t> ReadPixels(const ReceivedBitmap& bitmap) {
    const BitmapHeader& header = *bitmap.Header();
    const Grays grays = ReadGrays(bitmap);
    std::vector<uint8_t> pixels(size_t{header.width} * header.height);
    auto out = pixels.begin();
    for (size_t row = header.height; row-- > 0;) {
        for (size_t column = 0; column < header.width; ++column, ++out) {
            const int16_t gray = grays[ValueAt(bitmap.Row(row), column, header.bitCount)];
            if (gray == kNoGray) return {};
            *out = static_cast<uint8_t>(gray);
        }
    }
    return pixels;
}

bool HasColourIndexes(const BitmapHeader& header) {
    return header.bitCount == 1 || header.bitCount == 4 || header.bitCount == 8;
}

NodeTree NewItem(const BitmapHeader& header, const std::vector<uint8_t>& pixels) {
    NodeTree item(pgAllocateDataSetNode());
    if (item == nullptr) return nullptr;
    PutText(*item, tags::kPhotometricInterpretation, "MONOCHROME2");
    PutNumber<uint16_t>(*item, tags::kSamplesPerPixel, 1);
    PutNumber<uint16_t>(*item, tags::kBitsAllocated, 8);
    PutNumber<uint16_t>(*item, tags::kBitsStored, 8);
    PutNumber<uint16_t>(*item, tags::kHighBit, 7);
    PutNumber<uint16_t>(*item, tags::kPixelRepresentation, 0);
    PutNumber(*item, tags::kRows, static_cast<uint16_t>(header.height));
    PutNumber(*item, tags::kColumns, static_cast<uint16_t>(header.width));
    PutBytes(*item, tags::kPixelData, pixels.data(), static_cast<uint32_t>(pixels.size()));
    return item;
}

}  // namespace

NodeTree NewIconItem(void* bitmap) {
    const ReceivedBitmap received(bitmap);
    if (!received.Header() || !HasColourIndexes(*received.Header())) return nullptr;
    if (uint64_t{received.Header()->width} * received.Header()->height > kMaxRecordCopy) {
        return nullptr;
    }
    try {
        const std::vector<uint8_t> pixels = ReadPixels(received);
        return pixels.empty() ? nullptr : NewItem(*received.Header(), pixels);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace pgkit
