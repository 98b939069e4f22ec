// Frames of RLE Lossless.
#include "pgkit/rle.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "base/byte_order.h"
#include "base/firewall.h"

namespace pgkit {

namespace {

// The header: how many segments there are, and where they begin.
constexpr size_t kHeaderSize = 64;
constexpr uint32_t kMaxSegments = 15;

constexpr uint8_t kNoOperation = 0x80;

uint32_t HeaderField(std::span<const uint8_t> frame, size_t index) {
    return Load<uint32_t>(&frame[index * sizeof(uint32_t)], ByteOrder::Little);
}

// Puts decoded bytes where they belong: each is one byte of the next sample.
class SampleBytes {
  public:
    SampleBytes(std::span<uint8_t> plane, size_t first, size_t stride)
        : plane_(plane), next_(first), stride_(stride) {}

    bool IsFull() const { return next_ >= plane_.size(); }

    void Put(uint8_t byte) {
        plane_[next_] = byte;
        next_ += stride_;
    }

  private:
    std::span<uint8_t> plane_;
    size_t next_;
    size_t stride_;
};

// Whether the segment has all bytes of the plane.
bool DecodeSegment(std::span<const uint8_t> segment, SampleBytes out) {
    size_t at = 0;
    while (!out.IsFull() && at < segment.size()) {
        const uint8_t control = segment[at++];
        if (control == kNoOperation) continue;
        if (control < kNoOperation) {
            const size_t end = std::min(segment.size(), at + control + 1);
            for (; at < end && !out.IsFull(); ++at)
                out.Put(segment[at]);
        } else if (at < segment.size()) {
            for (int count = 257 - control; count > 0 && !out.IsFull(); --count)
                out.Put(segment[at]);
            ++at;
        }
    }
    return out.IsFull();
}

// From where it begins to where the next one does; empty when it does not lie in the frame.
std::span<const uint8_t> SegmentOf(std::span<const uint8_t> frame, uint32_t index,
                                   uint32_t segments) {
    const size_t begin = HeaderField(frame, index + 1);
    const size_t end = index + 1 < segments ? HeaderField(frame, index + 2) : frame.size();
    if (begin < kHeaderSize || begin > end || end > frame.size()) return {};
    return frame.subspan(begin, end - begin);
}

int32_t Decode(std::span<const uint8_t> frame, uint32_t segments, uint32_t bytesPerSample,
               std::span<uint8_t> samples) {
    if (samples.data() == nullptr) return 0;
    std::memset(samples.data(), 0, samples.size());
    const bool isPossible = segments >= 1 && segments <= kMaxSegments && bytesPerSample >= 1 &&
                            segments % bytesPerSample == 0 && samples.size() % segments == 0;
    if (!isPossible || frame.size() < kHeaderSize || HeaderField(frame, 0) != segments) return 0;
    const size_t planeSize = samples.size() / (segments / bytesPerSample);
    int32_t isWhole = 1;
    for (uint32_t i = 0; i < segments; ++i) {
        const size_t rank = i % bytesPerSample;  // 0 is the most significant byte
        const size_t first = kHostByteOrder == ByteOrder::Little ? bytesPerSample - 1 - rank : rank;
        const SampleBytes out(samples.subspan(i / bytesPerSample * planeSize, planeSize), first,
                              bytesPerSample);
        if (!DecodeSegment(SegmentOf(frame, i, segments), out)) isWhole = 0;
    }
    return isWhole;
}

}  // namespace

}  // namespace pgkit

int32_t pgxDecodeRle(const void* frame, size_t length, uint32_t segments, uint32_t bytesPerSample,
                     void* buffer, size_t size) {
    return pgkit::Guarded([=] {
        return pgkit::Decode({static_cast<const uint8_t*>(frame), frame == nullptr ? 0 : length},
                             segments, bytesPerSample,
                             {static_cast<uint8_t*>(buffer), buffer == nullptr ? 0 : size});
    });
}
