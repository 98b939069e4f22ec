#include "gray_rendering.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "bitmap.h"
#include "little_endian.h"

namespace pgview {

namespace {

constexpr double kWhite = 255;

// The value that stands in some bits of a sample; the others may hold overlays or anything.
class StoredValues {
  public:
    explicit StoredValues(const SampleFormat& format)
        : byteCount_(format.ByteCount()),
          shift_(format.highBit + 1 - format.bitsStored),
          mask_(UINT32_MAX >> (32 - format.bitsStored)),
          signBit_(format.isSigned ? int64_t{1} << (format.bitsStored - 1) : 0) {}

    int64_t At(const std::vector<uint8_t>& frame, size_t pixel) const {
        const uint8_t* const bytes = frame.data() + pixel * byteCount_;
        const int64_t stored = (Sample(bytes) >> shift_) & mask_;
        return (stored ^ signBit_) - signBit_;
    }

  private:
    uint32_t Sample(const uint8_t* bytes) const {
        if (byteCount_ == 1) return *bytes;
        return byteCount_ == 2 ? Load16(bytes) : Load32(bytes);
    }

    uint32_t byteCount_;
    uint32_t shift_;
    uint32_t mask_;
    int64_t signBit_;
};

// A piece of a line: black up to one value, white beyond another, and linear between.
struct GrayScale {
    double black;
    double white;
    double blackOfLine;  // where the line itself reaches 0
    double length;       // of the whole line; 0 only when black equals white

    double Gray(double value) const {
        if (value <= black) return 0;
        if (value > white) return kWhite;
        return (value - blackOfLine) / length * kWhite;
    }
};

// DICOM PS3.3 C.11.2.1.2: the window reaches from half a unit below its centre by half of its width
// less one to both sides. A width of 1 is a threshold.
GrayScale ScaleOfWindow(const Window& window) {
    const double middle = window.centre - 0.5;
    const double length = window.width - 1;
    const double black = middle - length / 2;
    return {black, middle + length / 2, black, length};
}

GrayScale ScaleOfRange(const ImageDescription& image, const std::vector<uint8_t>& frame) {
    const StoredValues stored(image.format);
    int64_t lowest = INT64_MAX;
    int64_t highest = INT64_MIN;
    for (size_t pixel = 0; pixel < image.PixelCount(); ++pixel) {
        const int64_t value = stored.At(frame, pixel);
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    double black = static_cast<double>(lowest) * image.rescaleSlope + image.rescaleIntercept;
    double white = static_cast<double>(highest) * image.rescaleSlope + image.rescaleIntercept;
    if (black > white) std::swap(black, white);
    return {black, white, black, white - black};
}

// Grays of the whole frame, top row first, go to the bitmap's rows from the bottom up.
class Renderer {
  public:
    Renderer(const ImageDescription& image, const std::vector<uint8_t>& frame)
        : image_(image),
          frame_(frame),
          stored_(image.format),
          scale_(image.window ? ScaleOfWindow(*image.window) : ScaleOfRange(image, frame)) {}

    void RenderRow(uint32_t row, uint8_t* out) const {
        const size_t first = size_t{row} * image_.columns;
        for (uint32_t column = 0; column < image_.columns; ++column) {
            const auto stored = static_cast<double>(stored_.At(frame_, first + column));
            out[column] = ToGray(stored * image_.rescaleSlope + image_.rescaleIntercept);
        }
    }

  private:
    uint8_t ToGray(double value) const {
        const double gray = scale_.Gray(value);
        // Also what is no number, from factors beyond all reason, must become some gray.
        const double bounded = gray >= 0 ? std::min(gray, kWhite) : 0;
        const auto rounded = static_cast<uint8_t>(std::lround(bounded));
        return static_cast<uint8_t>(image_.isInverted ? 255 - rounded : rounded);
    }

    const ImageDescription& image_;
    const std::vector<uint8_t>& frame_;
    StoredValues stored_;
    GrayScale scale_;
};

}  // namespace

void* RenderFrame(const ImageDescription& image, const std::vector<uint8_t>& frame) {
    NewBitmap bitmap(NewBitmapLayout(image.columns, image.rows, 1));
    const Renderer renderer(image, frame);
    for (uint32_t row = 0; row < image.rows; ++row)
        renderer.RenderRow(row, bitmap.Row(image.rows - 1 - row));
    return bitmap.Give();
}

}  // namespace pgview
