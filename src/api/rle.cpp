// Frames of RLE Lossless.
#include "pgkit/rle.h"

#include <cstring>
#include <span>

#include "base/byte_order.h"
#include "base/firewall.h"
#include "base/rle_segment.h"

namespace pgkit {

namespace {

int32_t Decode(std::span<const uint8_t> frame, uint32_t segments, uint32_t bytesPerSample,
               std::span<uint8_t> samples) {
    if (samples.data() == nullptr) return 0;
    std::memset(samples.data(), 0, samples.size());
    const bool isPossible = segments >= 1 && segments <= kMaxRleSegments && bytesPerSample >= 1 &&
                            segments % bytesPerSample == 0 && samples.size() % segments == 0;
    if (!isPossible || RleSegmentCount(frame) != segments) return 0;
    const size_t pixels = samples.size() / segments;
    int32_t isWhole = 1;
    for (uint32_t i = 0; i < segments; ++i) {
        const size_t rank = i % bytesPerSample;  // 0 is the most significant byte
        const size_t first = kHostByteOrder == ByteOrder::Little ? bytesPerSample - 1 - rank : rank;
        const size_t plane = i / bytesPerSample * pixels * bytesPerSample;
        RleSegmentDecoder decoder(RleSegmentAt(frame, i, segments).value_or(RleSegment()));
        const size_t decoded =
            decoder.Decode(pixels, bytesPerSample, samples.data() + plane + first);
        if (decoded < pixels) isWhole = 0;
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
