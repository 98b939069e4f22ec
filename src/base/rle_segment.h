// The segments of a frame in RLE Lossless (PS3.5, annex G), which both modules take apart.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/byte_order.h"

namespace pgkit {

using RleSegment = std::span<const uint8_t>;

// A frame begins with the number of its segments and the offsets of up to 15, from its own first
// byte on.
constexpr size_t kRleHeaderSize = 64;
constexpr uint32_t kMaxRleSegments = 15;

// How many segments a frame says to have; 0 when it is too short for that.
inline uint32_t RleSegmentCount(RleSegment frame) {
    return frame.size() < kRleHeaderSize ? 0 : NumberAt<uint32_t>(frame.data(), ByteOrder::Little);
}

// One of so many segments, from where it begins to where the next one does; nothing when that is no
// part of the frame behind its header, which is there.
inline std::optional<RleSegment> RleSegmentAt(RleSegment frame, uint32_t index, uint32_t count) {
    const auto beginOf = [frame](uint32_t segment) -> size_t {
        return NumberAt<uint32_t>(&frame[(segment + 1) * sizeof(uint32_t)], ByteOrder::Little);
    };
    const size_t begin = beginOf(index);
    const size_t end = index + 1 < count ? beginOf(index + 1) : frame.size();
    if (begin < kRleHeaderSize || begin > end || end > frame.size()) return std::nullopt;
    return frame.subspan(begin, end - begin);
}

// Takes a segment apart, as many bytes at a time as are asked for.
class RleSegmentDecoder {
  public:
    explicit RleSegmentDecoder(RleSegment segment) : segment_(segment) {}

    // Writes count bytes, step apart from each other. Returns how many; fewer when the segment ends
    // before.
    size_t Decode(size_t count, size_t step, uint8_t* out) {
        size_t written = 0;
        while (written < count && (left_ > 0 || BeginPiece())) {
            const size_t available = isRun_ ? left_ : std::min(left_, segment_.size() - position_);
            const size_t used = std::min(available, count - written);
            if (used == 0) break;
            for (size_t i = 0; i < used; ++i, out += step)
                *out = isRun_ ? repeated_ : segment_[position_ + i];
            if (!isRun_) position_ += used;
            left_ -= used;
            written += used;
        }
        return written;
    }

  private:
    // A control byte says how many bytes follow as they are, or how often the next one is repeated.
    bool BeginPiece() {
        uint8_t control;
        do {
            if (position_ >= segment_.size()) return false;
            control = segment_[position_++];
        } while (control == 0x80);  // means nothing
        isRun_ = control > 0x80;
        const size_t length = isRun_ ? size_t{257} - control : size_t{1} + control;
        if (isRun_) {
            if (position_ >= segment_.size()) return false;
            repeated_ = segment_[position_++];
        }
        left_ = length;
        return true;
    }

    RleSegment segment_;
    size_t position_ = 0;
    size_t left_ = 0;  // of the piece
    bool isRun_ = false;
    uint8_t repeated_ = 0;
};

}  // namespace pgkit
