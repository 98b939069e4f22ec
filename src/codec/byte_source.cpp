#include "codec/byte_source.h"

#include <algorithm>
#include <cstring>

#include "platform/platform.h"

namespace pgkit {

// The error mark of a stream stays until somebody clears it, and may be an old one. The mark of its
// end is taken away by every seek: what comes back short without it has failed.
ByteSource::Portion StreamSource::Read(uint8_t* out, size_t count) {
    const size_t got = std::fread(out, 1, count, stream_);
    return {got, got < count && std::feof(stream_) == 0};
}

bool StreamSource::Seek(uint64_t position) { return platform::Seek(stream_, position); }

std::optional<uint64_t> StreamSource::Position() { return platform::Tell(stream_); }

uint64_t StreamSource::Size() { return platform::StreamSize(stream_); }

ByteSource::Portion MemorySource::Read(uint8_t* out, size_t count) {
    const uint64_t start = std::min<uint64_t>(position_, bytes_.size());
    const size_t got = std::min<size_t>(count, bytes_.size() - static_cast<size_t>(start));
    if (got > 0) std::memcpy(out, bytes_.data() + start, got);
    position_ += got;
    return {got, false};
}

bool MemorySource::Seek(uint64_t position) {
    position_ = position;
    return true;
}

}  // namespace pgkit
