#include "codec/stream_reader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace pgkit {

// The stream counts as moved: when its user has written last, a seek must come before a read.
StreamReader::StreamReader(FILE* stream)
    : stream_(stream), bufferStart_(stream_.Position().value_or(0)) {}

void StreamReader::Seek(uint64_t position) {
    if (position >= bufferStart_ && position - bufferStart_ <= end_) {
        next_ = static_cast<size_t>(position - bufferStart_);
        return;
    }
    bufferStart_ = position;
    next_ = end_ = 0;
    fillSize_ = kFirstFill;
}

uint64_t StreamReader::Size() {
    if (!size_) {
        size_ = source_.Size();
        StreamMoved();
    }
    return *size_;
}

uint64_t StreamReader::Remaining() {
    const uint64_t position = Position();
    return Size() > position ? Size() - position : 0;
}

bool StreamReader::MoveStreamTo(uint64_t position) {
    if (streamPosition_ == position) return true;
    streamPosition_.reset();
    if (!source_.Seek(position)) {
        hasFailed_ = true;
        return false;
    }
    streamPosition_ = position;
    return true;
}

void StreamReader::MakeRoom(size_t size) {
    if (size <= bufferSize_) return;
    auto larger = std::make_unique_for_overwrite<uint8_t[]>(size);
    std::memcpy(larger.get(), buffer_, end_);
    largeBuffer_ = std::move(larger);
    buffer_ = largeBuffer_.get();
    bufferSize_ = size;
}

size_t StreamReader::ReadSource(uint8_t* out, size_t count) {
    const ByteSource::Portion got = source_.Read(out, count);
    if (got.hasFailed) hasFailed_ = true;
    *streamPosition_ += got.count;
    return got.count;
}

bool StreamReader::FillTo(size_t count) {
    const size_t kept = Buffered();
    std::memmove(buffer_, buffer_ + next_, kept);
    bufferStart_ += next_;
    next_ = 0;
    end_ = kept;
    while (end_ < count) {
        const uint64_t position = bufferStart_ + end_;
        if (size_ && position >= *size_) return false;
        if (!MoveStreamTo(position)) return false;
        size_t wanted = std::min(fillSize_, kBufferSize - end_);
        if (size_) wanted = std::min<uint64_t>(wanted, *size_ - position);
        MakeRoom(end_ + wanted);
        const size_t got = ReadSource(buffer_ + end_, wanted);
        end_ += got;
        if (got < wanted) size_ = streamPosition_;
        fillSize_ = std::min(2 * fillSize_, kBufferSize);
    }
    return true;
}

size_t StreamReader::ReadLarge(uint8_t* out, size_t count) {
    const size_t fromBuffer = std::min(count, Buffered());
    std::memcpy(out, buffer_ + next_, fromBuffer);
    next_ += fromBuffer;
    if (fromBuffer == count) return count;

    const size_t missing = count - fromBuffer;
    if (missing < kMaxPeek) {
        FillTo(missing);
        const size_t more = std::min(missing, Buffered());
        std::memcpy(out + fromBuffer, buffer_ + next_, more);
        next_ += more;
        return fromBuffer + more;
    }
    const uint64_t position = Position();
    if (!MoveStreamTo(position)) return fromBuffer;
    const size_t more = ReadSource(out + fromBuffer, missing);
    Seek(position + more);
    return fromBuffer + more;
}

void StreamReader::RestorePosition() { static_cast<void>(MoveStreamTo(Position())); }

}  // namespace pgkit
