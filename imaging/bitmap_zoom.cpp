#include "bitmap_zoom.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace pgview {

namespace {

// Part of a side that a new pixel is made of: neighbouring old pixels and their weights, whose sum
// is the same for all pixels of a side. Whole numbers make the means exact.
struct Tap {
    uint32_t source;
    uint64_t weight;
};

struct Side {
    std::vector<Tap> taps;
    std::vector<size_t> starts;  // of each new pixel's taps, and the end of the last
    uint64_t weightSum;

    size_t Count() const { return starts.size() - 1; }
};

// A new pixel covers as much of each old one as their areas overlap. Old pixels are newCount long
// here and new ones oldCount, so that both sides have the same length.
Side CoverAreas(uint64_t oldCount, uint64_t newCount) {
    Side side{{}, {0}, oldCount};
    for (uint64_t pixel = 0; pixel < newCount; ++pixel) {
        const uint64_t begin = pixel * oldCount;
        const uint64_t end = begin + oldCount;
        for (uint64_t source = begin / newCount; source * newCount < end; ++source) {
            const uint64_t from = std::max(begin, source * newCount);
            const uint64_t to = std::min(end, (source + 1) * newCount);
            side.taps.push_back({static_cast<uint32_t>(source), to - from});
        }
        side.starts.push_back(side.taps.size());
    }
    return side;
}

// A new pixel lies between the centres of two old ones; beyond the outermost centres it is like the
// pixel there. Positions count in parts of which an old pixel has 2 * newCount.
Side Interpolate(uint64_t oldCount, uint64_t newCount) {
    const uint64_t unit = 2 * newCount;
    Side side{{}, {0}, unit};
    for (uint64_t pixel = 0; pixel < newCount; ++pixel) {
        const uint64_t centre = (2 * pixel + 1) * oldCount;
        const uint64_t position = centre > newCount ? centre - newCount : 0;
        const uint64_t source = position / unit;
        const uint64_t next = std::min(source + 1, oldCount - 1);
        side.taps.push_back({static_cast<uint32_t>(source), unit - position % unit});
        side.taps.push_back({static_cast<uint32_t>(next), position % unit});
        side.starts.push_back(side.taps.size());
    }
    return side;
}

Side MakeSide(uint32_t oldCount, uint32_t newCount, Enlarging enlarging) {
    const bool interpolates = newCount > oldCount && enlarging == Enlarging::Interpolates;
    return interpolates ? Interpolate(oldCount, newCount) : CoverAreas(oldCount, newCount);
}

class Resizing {
  public:
    Resizing(const LockedBitmap& bitmap, Side across, Side up)
        : bitmap_(bitmap),
          across_(std::move(across)),
          up_(std::move(up)),
          sums_(across_.Count() * bitmap.Layout().channels) {
        for (unsigned value = 0; value < 256; ++value) {
            const auto byte = static_cast<uint8_t>(value);
            values_[value] = bitmap.Layout().channels == 1 ? bitmap.Gray(byte) : byte;
        }
    }

    void MakeRow(size_t row, uint8_t* out) {
        std::fill(sums_.begin(), sums_.end(), 0);
        for (size_t i = up_.starts[row]; i < up_.starts[row + 1]; ++i) {
            if (up_.taps[i].weight > 0) AddRow(bitmap_.Row(up_.taps[i].source), up_.taps[i].weight);
        }
        const uint64_t total = across_.weightSum * up_.weightSum;
        for (size_t i = 0; i < sums_.size(); ++i) {
            out[i] = static_cast<uint8_t>((sums_[i] + total / 2) / total);
        }
    }

  private:
    void AddRow(const uint8_t* row, uint64_t rowWeight) {
        const uint32_t channels = bitmap_.Layout().channels;
        for (size_t pixel = 0; pixel < across_.Count(); ++pixel) {
            for (uint32_t channel = 0; channel < channels; ++channel) {
                sums_[pixel * channels + channel] += rowWeight * SumAcross(row, pixel, channel);
            }
        }
    }

    uint64_t SumAcross(const uint8_t* row, size_t pixel, uint32_t channel) const {
        uint64_t sum = 0;
        for (size_t i = across_.starts[pixel]; i < across_.starts[pixel + 1]; ++i) {
            const Tap& tap = across_.taps[i];
            sum +=
                tap.weight * values_[row[size_t{tap.source} * bitmap_.Layout().channels + channel]];
        }
        return sum;
    }

    const LockedBitmap& bitmap_;
    Side across_;
    Side up_;
    std::vector<uint64_t> sums_;
    uint8_t values_[256];
};

void* CopyBitmap(const LockedBitmap& bitmap) {
    NewBitmap copy(bitmap.Layout());
    std::memcpy(copy.Bytes(), bitmap.Bytes(), bitmap.Layout().Size());
    return copy.Give();
}

// The products of sizes and fractions that were made to give whole numbers may fall short of them
// by their rounding. The tolerance is below any fraction that two sizes of 16 bits can make.
std::optional<uint32_t> ZoomedLength(uint32_t length, double zoom) {
    constexpr double kTolerance = 1e-6;
    const double zoomed = std::floor(length * zoom + kTolerance);
    if (zoomed > static_cast<double>(kMaxSide)) return std::nullopt;
    return std::max(static_cast<uint32_t>(zoomed), uint32_t{1});
}

}  // namespace

std::optional<BitmapSize> ZoomedSize(const BitmapLayout& layout, double zoom) {
    if (!std::isfinite(zoom) || zoom <= 0) return std::nullopt;
    const auto width = ZoomedLength(layout.width, zoom);
    const auto height = ZoomedLength(layout.height, zoom);
    if (!width || !height || !IsWithinBounds(*width, *height)) return std::nullopt;
    return BitmapSize{*width, *height};
}

std::optional<BitmapSize> FittedSize(const BitmapLayout& layout, uint32_t side) {
    const uint64_t longer = std::max(layout.width, layout.height);
    const uint64_t shorter = std::min(layout.width, layout.height);
    const uint64_t fitted = std::max<uint64_t>(shorter * side / longer, 1);
    if (!IsWithinBounds(side, fitted)) return std::nullopt;
    const auto other = static_cast<uint32_t>(fitted);
    return layout.width >= layout.height ? BitmapSize{side, other} : BitmapSize{other, side};
}

void* ResizeBitmap(const LockedBitmap& bitmap, std::optional<BitmapSize> size,
                   Enlarging enlarging) {
    if (!size) return nullptr;
    const BitmapLayout& layout = bitmap.Layout();
    if (size->width == layout.width && size->height == layout.height) return CopyBitmap(bitmap);

    NewBitmap resized(NewBitmapLayout(size->width, size->height, layout.channels));
    Resizing resizing(bitmap, MakeSide(layout.width, size->width, enlarging),
                      MakeSide(layout.height, size->height, enlarging));
    for (size_t row = 0; row < size->height; ++row)
        resizing.MakeRow(row, resized.Row(row));
    return resized.Give();
}

}  // namespace pgview
