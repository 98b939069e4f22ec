#include "rle_decoder.h"

#include <optional>
#include <utility>

#include "base/rle_segment.h"

namespace pgview {

namespace {

using pgkit::RleSegment;
using pgkit::RleSegmentDecoder;

constexpr size_t kMaxSegments = 4;

// The most that segments can grow: a run of two bytes gives 128.
constexpr size_t kMaxExpansion = 64;

// None when one of the segments is not a part of the frame behind the header.
std::optional<std::vector<RleSegment>> FindSegments(RleSegment frame, uint32_t count) {
    if (frame.size() < pgkit::kRleHeaderSize || count > kMaxSegments) return std::nullopt;
    if (pgkit::RleSegmentCount(frame) != count) return std::nullopt;
    std::vector<RleSegment> segments;
    for (uint32_t i = 0; i < count; ++i) {
        const std::optional<RleSegment> segment = pgkit::RleSegmentAt(frame, i, count);
        if (!segment) return std::nullopt;
        segments.push_back(*segment);
    }
    return segments;
}

class RleRows : public FrameRows {
  public:
    // The segments are parts of the encoded frame.
    RleRows(std::vector<uint8_t> encoded, std::vector<RleSegment> segments, size_t columns)
        : encoded_(std::move(encoded)),
          segments_(std::move(segments)),
          columns_(columns),
          row_(columns * segments_.size()) {
        BeginSegments();
    }

    const uint8_t* Next() override {
        const size_t byteCount = decoders_.size();
        for (size_t i = 0; i < byteCount; ++i) {
            uint8_t* const out = row_.data() + (byteCount - 1 - i);
            if (decoders_[i].Decode(columns_, byteCount, out) < columns_) return nullptr;
        }
        return row_.data();
    }
    void Rewind() override { BeginSegments(); }

  private:
    void BeginSegments() {
        decoders_.clear();
        for (const RleSegment& segment : segments_)
            decoders_.emplace_back(segment);
    }

    std::vector<uint8_t> encoded_;
    std::vector<RleSegment> segments_;
    std::vector<RleSegmentDecoder> decoders_;
    size_t columns_;
    std::vector<uint8_t> row_;
};

}  // namespace

std::unique_ptr<FrameRows> NewRleRows(std::vector<uint8_t> encoded, size_t rows, size_t columns,
                                      uint32_t byteCount) {
    auto segments = FindSegments(encoded, byteCount);
    if (!segments) return nullptr;
    for (const RleSegment& segment : *segments)
        if (segment.size() < rows * columns / kMaxExpansion) return nullptr;
    // A vector that is moved keeps its bytes in their place.
    return std::make_unique<RleRows>(std::move(encoded), *std::move(segments), columns);
}

}  // namespace pgview
