#include "rle_decoder.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "little_endian.h"

namespace pgview {

namespace {

using Segment = std::span<const uint8_t>;

// The header is the number of segments and the offsets of up to 15, from its own first byte on.
constexpr size_t kRleHeaderSize = 64;
constexpr size_t kMaxSegments = 4;

// The most that segments can grow: a run of two bytes gives 128.
constexpr size_t kMaxExpansion = 64;

// Nothing when one of the segments is not a part of the frame behind the header.
std::optional<std::vector<Segment>> FindSegments(Segment frame, uint32_t count) {
    if (frame.size() < kRleHeaderSize || count > kMaxSegments) return std::nullopt;
    if (Load32(frame.data()) != count) return std::nullopt;
    std::vector<Segment> segments(count);
    size_t end = frame.size();
    for (uint32_t i = count; i-- > 0;) {
        const size_t begin = Load32(frame.data() + 4 + size_t{4} * i);
        if (begin < kRleHeaderSize || begin > end) return std::nullopt;
        segments[i] = frame.subspan(begin, end - begin);
        end = begin;
    }
    return segments;
}

// Takes a segment apart, as many bytes at a time as are asked for.
class SegmentDecoder {
  public:
    explicit SegmentDecoder(Segment segment) : segment_(segment) {}

    // Writes count bytes, step apart from each other. False when the segment ends before.
    bool Decode(size_t count, size_t step, uint8_t* out) {
        while (count > 0) {
            if (left_ == 0 && !BeginPiece()) return false;
            const size_t used = std::min(left_, count);
            if (!isRun_ && segment_.size() - position_ < used) return false;
            for (size_t i = 0; i < used; ++i, out += step)
                *out = isRun_ ? repeated_ : segment_[position_ + i];
            if (!isRun_) position_ += used;
            left_ -= used;
            count -= used;
        }
        return true;
    }

  private:
    // A control byte says how many bytes follow as they are, or how often the next one is repeated.
    bool BeginPiece() {
        do {
            if (position_ >= segment_.size()) return false;
            control_ = segment_[position_++];
        } while (control_ == 0x80);  // means nothing
        isRun_ = control_ > 0x80;
        left_ = isRun_ ? size_t{257} - control_ : size_t{1} + control_;
        if (!isRun_) return true;
        if (position_ >= segment_.size()) return false;
        repeated_ = segment_[position_++];
        return true;
    }

    Segment segment_;
    size_t position_ = 0;
    size_t left_ = 0;  // of the piece
    bool isRun_ = false;
    uint8_t control_ = 0;
    uint8_t repeated_ = 0;
};

class RleRows : public FrameRows {
  public:
    // The segments are parts of the encoded frame.
    RleRows(std::vector<uint8_t> encoded, std::vector<Segment> segments, size_t columns)
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
            if (!decoders_[i].Decode(columns_, byteCount, out)) return nullptr;
        }
        return row_.data();
    }
    void Rewind() override { BeginSegments(); }

  private:
    void BeginSegments() {
        decoders_.clear();
        for (const Segment& segment : segments_)
            decoders_.emplace_back(segment);
    }

    std::vector<uint8_t> encoded_;
    std::vector<Segment> segments_;
    std::vector<SegmentDecoder> decoders_;
    size_t columns_;
    std::vector<uint8_t> row_;
};

}  // namespace

std::unique_ptr<FrameRows> NewRleRows(std::vector<uint8_t> encoded, size_t rows, size_t columns,
                                      uint32_t byteCount) {
    auto segments = FindSegments(encoded, byteCount);
    if (!segments) return nullptr;
    for (const Segment& segment : *segments)
        if (segment.size() < rows * columns / kMaxExpansion) return nullptr;
    // A vector that is moved keeps its bytes in their place.
    return std::make_unique<RleRows>(std::move(encoded), *std::move(segments), columns);
}

}  // namespace pgview
