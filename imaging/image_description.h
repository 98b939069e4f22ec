// What a data set says about its pixels, and its frame count and presentation.
#pragma once

#include <pgkit/node.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace pgview {

// Where the bits of a stored value lie in a sample.
struct SampleFormat {
    uint32_t bitsAllocated;  // 8, 16 or 32
    uint32_t bitsStored;
    uint32_t highBit;
    bool isSigned;

    uint32_t ByteCount() const { return bitsAllocated / 8; }
};

struct Window {
    double centre;
    double width;  // at least 1
};

struct ImageDescription {
    uint32_t rows;
    uint32_t columns;
    uint32_t frameCount;
    bool isGrayscale;
    bool isInverted;  // MONOCHROME1: the lowest value is white
    SampleFormat format;
    double rescaleSlope;
    double rescaleIntercept;
    std::optional<Window> window;

    size_t PixelCount() const { return size_t{rows} * columns; }
    // Of a grayscale image.
    size_t FrameSize() const { return PixelCount() * format.ByteCount(); }
};

// None when the data set describes no image, or one whose samples cannot be read.
std::optional<ImageDescription> DescribeImage(PGX_Node& dataSet);

}  // namespace pgview
