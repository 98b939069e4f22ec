#include "codec/deflating_sink.h"

namespace pgkit {

namespace {

constexpr size_t kDeflatePiece = size_t{64} << 10;

}  // namespace

DeflatingSink::DeflatingSink(ByteSink& out)
    : out_(out),
      buffer_(std::make_unique_for_overwrite<uint8_t[]>(kDeflatePiece)),
      position_(out.Position().value_or(0)) {}

bool DeflatingSink::Write(const uint8_t* bytes, size_t count) {
    position_ += count;
    if (!hasStarted_) return out_.Write(bytes, count);
    return Deflate({bytes, count}, false) == DeflateState::Open;
}

// Damaged when the bytes do not get out.
DeflateState DeflatingSink::Deflate(std::span<const uint8_t> bytes, bool isLast) {
    while (true) {
        const DeflateStep step = deflater_.Run(bytes, {buffer_.get(), kDeflatePiece}, isLast);
        bytes = bytes.subspan(step.taken);
        deflatedSize_ += step.given;
        if (step.given > 0 && !out_.Write(buffer_.get(), step.given)) return DeflateState::Damaged;
        const bool isUsedUp = bytes.empty() && step.given < kDeflatePiece && !isLast;
        if (isUsedUp || step.state != DeflateState::Open) return step.state;
    }
}

bool DeflatingSink::Finish() {
    hasStarted_ = true;
    if (Deflate({}, true) != DeflateState::Ended) return false;
    constexpr uint8_t kPadding = 0;
    return (deflatedSize_ % 2 == 0 || out_.Write(&kPadding, 1)) && out_.Flush();
}

}  // namespace pgkit
