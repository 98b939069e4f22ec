#include "codec/output_writer.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/platform.h"

namespace pgkit {

bool StreamSink::Write(const uint8_t* bytes, size_t count) {
    return stream_ != nullptr && std::fwrite(bytes, 1, count, stream_) == count;
}

bool StreamSink::Flush() { return stream_ != nullptr && std::fflush(stream_) == 0; }

std::optional<uint64_t> StreamSink::Position() {
    return stream_ == nullptr ? std::nullopt : platform::Tell(stream_);
}

OutputWriter::OutputWriter(ByteSink& sink)
    : sink_(sink),
      buffer_(new (std::nothrow) uint8_t[kCapacity]),
      drainedPosition_(sink.Position()) {}

bool OutputWriter::Drain() {
    if (failed_) return false;
    if (used_ == 0) return true;
    failed_ = !sink_.Write(buffer_.get(), used_);
    if (drainedPosition_) *drainedPosition_ += used_;
    used_ = 0;
    return !failed_;
}

WriteResult OutputWriter::Write(const void* data, size_t count) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    return count < kCapacity ? WriteSmall(bytes, count) : WriteLarge(bytes, count);
}

WriteResult OutputWriter::WriteSmall(const uint8_t* bytes, size_t count) {
    if (failed_) return kWriteFailed;
    const size_t fitting = std::min(count, kCapacity - used_);
    Append(bytes, fitting);
    if (fitting == count) return kWritten;
    if (!Drain()) return kWriteFailed;
    Append(bytes + fitting, count - fitting);
    return kWritten;
}

// As one write of the sink.
WriteResult OutputWriter::WriteLarge(const uint8_t* bytes, size_t count) {
    if (!Drain()) return kWriteFailed;
    failed_ = !sink_.Write(bytes, count);
    if (drainedPosition_) *drainedPosition_ += count;
    return failed_ ? kWriteFailed : kWritten;
}

void OutputWriter::Append(const uint8_t* bytes, size_t count) {
    std::memcpy(buffer_.get() + used_, bytes, count);
    used_ += count;
}

size_t OutputWriter::NextPiece(size_t unit) const {
    const size_t room = kCapacity - used_;
    return room < unit ? kCapacity : room - room % unit;
}

uint8_t* OutputWriter::Reserve(size_t count) {
    if (failed_ || (count > kCapacity - used_ && !Drain())) return nullptr;
    return buffer_.get() + used_;
}

bool OutputWriter::Flush() {
    if (!Drain()) return false;
    failed_ = !sink_.Flush();
    return !failed_;
}

std::optional<uint64_t> OutputWriter::Position() const {
    if (!drainedPosition_) return std::nullopt;
    return *drainedPosition_ + used_;
}

}  // namespace pgkit
