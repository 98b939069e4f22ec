#include "codec/output_writer.h"

#include <cstring>
#include <new>

namespace pgkit {

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

WriteResult OutputWriter::Write(const void* bytes, size_t count) {
    if (failed_ || (count > kCapacity - used_ && !Drain())) return kWriteFailed;
    if (count < kCapacity) {
        std::memcpy(buffer_.get() + used_, bytes, count);
        used_ += count;
        return kWritten;
    }
    failed_ = !sink_.Write(static_cast<const uint8_t*>(bytes), count);
    if (drainedPosition_) *drainedPosition_ += count;
    return failed_ ? kWriteFailed : kWritten;
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
