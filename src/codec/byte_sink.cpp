#include "codec/byte_sink.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/platform.h"

namespace pgkit {

bool StreamSink::Write(const uint8_t* bytes, size_t count) {
    return stream_ != nullptr && std::fwrite(bytes, 1, count, stream_) == count;
}

bool StreamSink::Flush() { return stream_ != nullptr && std::fflush(stream_) == 0; }

std::optional<uint64_t> StreamSink::Position() {
    return stream_ == nullptr ? std::nullopt : platform::Tell(stream_);
}

bool FunctionSink::Write(const uint8_t* bytes, size_t count) {
    if (count == 0) return true;
    const bool isTaken = write_ != nullptr && write_(context_, bytes, count) == count;
    // It is not called again after a failure.
    if (!isTaken) write_ = nullptr;
    position_ += count;
    return isTaken;
}

bool BufferSink::Write(const uint8_t* bytes, size_t count) {
    const size_t taken = std::min(count, room_.size());
    if (taken > 0) std::memcpy(room_.data(), bytes, taken);
    room_ = room_.subspan(taken);
    position_ += count;
    return true;
}

PatchingSink::PatchingSink(ByteSink& out, std::vector<BytePatch> patches)
    : out_(out), patches_(std::move(patches)), position_(out.Position().value_or(0)) {
    std::ranges::sort(patches_, {}, &BytePatch::position);
}

bool PatchingSink::Write(const uint8_t* bytes, size_t count) {
    const uint64_t end = position_ + count;
    auto patch = std::ranges::lower_bound(patches_, position_, {}, [](const BytePatch& one) {
        return one.position + one.bytes.size() - 1;
    });
    if (patch == patches_.end() || patch->position >= end) {
        position_ = end;
        return out_.Write(bytes, count);
    }
    std::vector<uint8_t> patched(bytes, bytes + count);
    for (; patch != patches_.end() && patch->position < end; ++patch) {
        for (size_t i = 0; i < patch->bytes.size(); ++i) {
            const uint64_t at = patch->position + i;
            if (at >= position_ && at < end) patched[at - position_] = patch->bytes[i];
        }
    }
    position_ = end;
    return out_.Write(patched.data(), count);
}

}  // namespace pgkit
