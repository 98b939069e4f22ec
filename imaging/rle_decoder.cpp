#include "rle_decoder.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

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
std::optional<std::array<Segment, kMaxSegments>> FindSegments(Segment frame, uint32_t count) {
    if (frame.size() < kRleHeaderSize || count > kMaxSegments) return std::nullopt;
    if (Load32(frame.data()) != count) return std::nullopt;
    std::array<Segment, kMaxSegments> segments;
    size_t end = frame.size();
    for (uint32_t i = count; i-- > 0;) {
        const size_t begin = Load32(frame.data() + 4 + size_t{4} * i);
        if (begin < kRleHeaderSize || begin > end) return std::nullopt;
        segments[i] = frame.subspan(begin, end - begin);
        end = begin;
    }
    return segments;
}

// Writes count bytes, step apart from each other. False when the segment ends before.
bool DecodeSegment(Segment segment, size_t count, size_t step, uint8_t* out) {
    size_t position = 0;
    while (count > 0) {
        if (position >= segment.size()) return false;
        const uint8_t control = segment[position++];
        if (control == 0x80) continue;  // means nothing
        const bool isRun = control > 0x80;
        const size_t length = isRun ? size_t{257} - control : size_t{1} + control;
        const size_t used = std::min(length, count);
        if (segment.size() - position < (isRun ? 1 : used)) return false;
        for (size_t i = 0; i < used; ++i, out += step)
            *out = segment[isRun ? position : position + i];
        position += isRun ? 1 : used;
        count -= used;
    }
    return true;
}

}  // namespace

std::vector<uint8_t> DecodeRleFrame(const std::vector<uint8_t>& encoded, size_t pixelCount,
                                    uint32_t byteCount) {
    const auto segments = FindSegments(encoded, byteCount);
    if (!segments) return {};
    // Nothing is allocated for pixels that the segments cannot hold.
    for (uint32_t i = 0; i < byteCount; ++i) {
        if ((*segments)[i].size() < pixelCount / kMaxExpansion) return {};
    }
    std::vector<uint8_t> frame(pixelCount * byteCount);
    for (uint32_t i = 0; i < byteCount; ++i) {
        uint8_t* const out = frame.data() + (byteCount - 1 - i);
        if (!DecodeSegment((*segments)[i], pixelCount, byteCount, out)) return {};
    }
    return frame;
}

}  // namespace pgview
