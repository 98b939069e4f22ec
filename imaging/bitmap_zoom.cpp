#include "bitmap_zoom.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <utility>
#include <vector>

#include "bitmap/new_bitmap.h"

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

// Makes rows of new pixels one after the other out of old rows, which it asks for in ascending
// order, some of them twice.
class Resizing {
  public:
    // The old row of a number; null for none.
    using RowSource = std::function<const uint8_t*(uint32_t)>;

    // The grays that the bytes of pixels stand for are grays[byte].
    Resizing(Side across, Side down, uint32_t channels, const std::array<uint8_t, 256>& grays)
        : across_(std::move(across)),
          down_(std::move(down)),
          channels_(channels),
          grays_(grays),
          sums_(across_.Count() * channels) {}

    // False when an old row is missing.
    bool MakeRow(size_t row, const RowSource& source, uint8_t* out) {
        std::fill(sums_.begin(), sums_.end(), 0);
        for (size_t i = down_.starts[row]; i < down_.starts[row + 1]; ++i) {
            const Tap& tap = down_.taps[i];
            if (tap.weight == 0) continue;
            const uint8_t* const old = source(tap.source);
            if (old == nullptr) return false;
            AddRow(old, tap.weight);
        }
        const uint64_t total = across_.weightSum * down_.weightSum;
        for (size_t i = 0; i < sums_.size(); ++i) {
            out[i] = static_cast<uint8_t>((sums_[i] + total / 2) / total);
        }
        return true;
    }

  private:
    void AddRow(const uint8_t* row, uint64_t rowWeight) {
        for (size_t pixel = 0; pixel < across_.Count(); ++pixel) {
            for (uint32_t channel = 0; channel < channels_; ++channel) {
                sums_[pixel * channels_ + channel] += rowWeight * SumAcross(row, pixel, channel);
            }
        }
    }

    uint64_t SumAcross(const uint8_t* row, size_t pixel, uint32_t channel) const {
        uint64_t sum = 0;
        for (size_t i = across_.starts[pixel]; i < across_.starts[pixel + 1]; ++i) {
            const Tap& tap = across_.taps[i];
            sum += tap.weight * grays_[row[size_t{tap.source} * channels_ + channel]];
        }
        return sum;
    }

    Side across_;
    Side down_;
    uint32_t channels_;
    std::array<uint8_t, 256> grays_;
    std::vector<uint64_t> sums_;
};

std::array<uint8_t, 256> BytesThemselves() {
    std::array<uint8_t, 256> bytes;
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

std::array<uint8_t, 256> GraysOf(const LockedBitmap& bitmap) {
    std::array<uint8_t, 256> grays = BytesThemselves();
    if (bitmap.Channels() == 3) return grays;
    for (uint8_t& gray : grays)
        gray = bitmap.Gray(gray);
    return grays;
}

pgkit::BitmapHandle CopyBitmap(const LockedBitmap& bitmap) {
    pgkit::NewBitmap copy(bitmap.Header());
    std::memcpy(copy.Bytes(), bitmap.Bytes(), bitmap.Header().TotalSize());
    return copy.Give();
}

// Keeps the row that was asked for last.
class RowsInOrder {
  public:
    RowsInOrder(uint32_t width, const std::function<bool(uint8_t*)>& nextRow)
        : row_(width), nextRow_(nextRow) {}

    // Numbers never descend.
    const uint8_t* Row(uint32_t number) {
        for (; count_ <= number; ++count_)
            if (!nextRow_(row_.data())) return nullptr;
        return row_.data();
    }

  private:
    std::vector<uint8_t> row_;
    const std::function<bool(uint8_t*)>& nextRow_;
    uint32_t count_ = 0;  // of the rows that were read
};

// The products of sizes and fractions that were made to give a length between two may fall short of
// it by their rounding. The tolerance is below any fraction that two sizes of 16 bits can make.
std::optional<uint32_t> ZoomedLength(uint32_t length, double zoom) {
    constexpr double kTolerance = 1e-6;
    const double zoomed = std::floor(length * zoom + 0.5 + kTolerance);
    if (zoomed > static_cast<double>(kMaxSide)) return std::nullopt;
    return std::max(static_cast<uint32_t>(zoomed), uint32_t{1});
}

}  // namespace

std::optional<BitmapSize> ZoomedSize(BitmapSize size, double zoom) {
    if (!std::isfinite(zoom) || zoom <= 0) return std::nullopt;
    const auto width = ZoomedLength(size.width, zoom);
    const auto height = ZoomedLength(size.height, zoom);
    if (!width || !height || !IsWithinBounds(*width, *height)) return std::nullopt;
    return BitmapSize{*width, *height};
}

std::optional<BitmapSize> FittedSize(BitmapSize size, uint32_t side) {
    const uint64_t longer = std::max(size.width, size.height);
    const uint64_t shorter = std::min(size.width, size.height);
    const uint64_t fitted = std::max<uint64_t>((2 * shorter * side + longer) / (2 * longer), 1);
    if (!IsWithinBounds(side, fitted)) return std::nullopt;
    const auto other = static_cast<uint32_t>(fitted);
    return size.width >= size.height ? BitmapSize{side, other} : BitmapSize{other, side};
}

pgkit::BitmapHandle ResizeBitmap(const LockedBitmap& bitmap, std::optional<BitmapSize> size,
                                 Enlarging enlarging) {
    if (!size) return nullptr;
    const pgkit::BitmapHeader& header = bitmap.Header();
    if (*size == BitmapSize{header.width, header.height}) return CopyBitmap(bitmap);

    pgkit::NewBitmap resized(pgkit::NewBitmapHeader(size->width, size->height, header.bitCount));
    resized.SetGrays();
    Resizing resizing(MakeSide(header.width, size->width, enlarging),
                      MakeSide(header.height, size->height, enlarging), bitmap.Channels(),
                      GraysOf(bitmap));
    const auto stored = [&](uint32_t row) { return bitmap.Row(row); };
    for (size_t row = 0; row < size->height; ++row)
        resizing.MakeRow(row, stored, resized.Row(row));
    return resized.Give();
}

pgkit::BitmapHandle ResizeRows(BitmapSize from, BitmapSize to,
                               const std::function<bool(uint8_t*)>& nextRow) {
    pgkit::NewBitmap resized(pgkit::NewBitmapHeader(to.width, to.height, 8));
    resized.SetGrays();
    Resizing resizing(CoverAreas(from.width, to.width), CoverAreas(from.height, to.height), 1,
                      BytesThemselves());
    RowsInOrder rows(from.width, nextRow);
    const auto fromTop = [&](uint32_t row) { return rows.Row(row); };
    for (size_t row = 0; row < to.height; ++row)
        if (!resizing.MakeRow(row, fromTop, resized.RowFromTop(row))) return nullptr;
    return resized.Give();
}

}  // namespace pgview
