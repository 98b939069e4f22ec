#include "gray_rendering.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "bitmap/new_bitmap.h"
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

    int64_t At(const uint8_t* row, size_t column) const {
        const uint8_t* const bytes = row + column * byteCount_;
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

// None when the frame ends before its last row.
std::optional<GrayScale> ScaleOfRange(const ImageDescription& image, FrameRows& rows) {
    const StoredValues stored(image.format);
    int64_t lowest = INT64_MAX;
    int64_t highest = INT64_MIN;
    for (uint32_t i = 0; i < image.rows; ++i) {
        const uint8_t* const row = rows.Next();
        if (row == nullptr) return std::nullopt;
        for (uint32_t column = 0; column < image.columns; ++column) {
            const int64_t value = stored.At(row, column);
            lowest = std::min(lowest, value);
            highest = std::max(highest, value);
        }
    }
    rows.Rewind();
    double black = static_cast<double>(lowest) * image.rescaleSlope + image.rescaleIntercept;
    double white = static_cast<double>(highest) * image.rescaleSlope + image.rescaleIntercept;
    if (black > white) std::swap(black, white);
    return GrayScale{black, white, black, white - black};
}

}  // namespace

class GrayRows::Renderer {
  public:
    Renderer(const ImageDescription& image, const GrayScale& scale)
        : image_(image), stored_(image.format), scale_(scale) {}

    void RenderRow(const uint8_t* row, uint8_t* out) const {
        for (uint32_t column = 0; column < image_.columns; ++column) {
            const auto stored = static_cast<double>(stored_.At(row, column));
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
    StoredValues stored_;
    GrayScale scale_;
};

GrayRows::GrayRows(const ImageDescription& image, std::unique_ptr<FrameRows> rows)
    : rows_(std::move(rows)) {
    const std::optional<GrayScale> scale =
        image.window ? ScaleOfWindow(*image.window) : ScaleOfRange(image, *rows_);
    if (scale) renderer_ = std::make_unique<Renderer>(image, *scale);
}

GrayRows::~GrayRows() = default;
GrayRows::GrayRows(GrayRows&&) noexcept = default;

bool GrayRows::Next(uint8_t* out) {
    const uint8_t* const row = renderer_ == nullptr ? nullptr : rows_->Next();
    if (row == nullptr) return false;
    renderer_->RenderRow(row, out);
    return true;
}

pgkit::BitmapHandle RenderFrame(const ImageDescription& image, GrayRows& rows) {
    pgkit::NewBitmap bitmap(pgkit::NewBitmapHeader(image.columns, image.rows, 8));
    bitmap.SetGrays();
    for (uint32_t row = 0; row < image.rows; ++row)
        if (!rows.Next(bitmap.RowFromTop(row))) return nullptr;
    return bitmap.Give();
}

}  // namespace pgview
