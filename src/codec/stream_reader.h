// The parser's view of its bytes: a 64-bit position and a buffer over them.
//
// Reading headers and skipping inside the buffer cost no system call; skipping beyond it costs one
// seek when something is read there. A stream's own position is arbitrary until RestorePosition.
// What fills the buffer throws std::bad_alloc.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include "codec/byte_source.h"

namespace pgkit {

class StreamReader {
  public:
    // Starts at the present position of a stream that somebody else has used.
    explicit StreamReader(FILE* stream);
    // Starts at the beginning of a file that was just opened and has this size.
    StreamReader(FILE* stream, uint64_t size) : stream_(stream), streamPosition_(0), size_(size) {}
    // Starts at the beginning of bytes that stay where they are as long as they are read.
    explicit StreamReader(MemorySource& memory)
        : stream_(nullptr), source_(memory), streamPosition_(0), size_(memory.Size()) {}
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;

    // Null when the bytes are none of a stream.
    FILE* Stream() const { return stream_.Stream(); }

    uint64_t Position() const { return bufferStart_ + next_; }
    // Any position may be taken; reading beyond the end of the stream then fails.
    void Seek(uint64_t position);
    void Skip(uint64_t count) {
        if (count <= Buffered()) {
            next_ += static_cast<size_t>(count);
        } else {
            Seek(Position() + count);
        }
    }
    void SeekToEnd() { Seek(Size()); }

    // The length of the stream, and how much of it lies ahead. A stream that fails ends there.
    uint64_t Size();
    uint64_t Remaining();
    // Whether at least count bytes lie ahead; cheap while they are in the buffer.
    bool Holds(uint64_t count) { return count <= Buffered() || count <= Remaining(); }

    // The next count bytes, not consumed; null when the stream ends before. At most kMaxPeek.
    static constexpr size_t kMaxPeek = 256;
    const uint8_t* Peek(size_t count) {
        return count <= Buffered() || FillTo(count) ? buffer_ + next_ : nullptr;
    }

    // Reads as many bytes as there are, up to count.
    size_t Read(uint8_t* out, size_t count) {
        if (count > kMaxPeek || count > Buffered()) return ReadLarge(out, count);
        std::memcpy(out, buffer_ + next_, count);
        next_ += count;
        return count;
    }

    // Whether the system has failed to read or to seek so far, where it can tell. What ends early
    // is a file that ends there as long as this is false.
    bool HasFailed() const { return hasFailed_; }

    // Something else has used the stream, and moved it.
    void StreamMoved() { streamPosition_.reset(); }
    // Moves the stream itself to Position().
    void RestorePosition();

  private:
    static constexpr size_t kBufferSize = size_t{64} * 1024;
    // Of a large file that is mostly skipped little is read around each header; of a stretch that
    // is read through more is read at a time. A reader mostly lies on the stack, with a buffer for
    // the first fill; that is enough for most files, which then need no other.
    static constexpr size_t kFirstFill = size_t{7} * 1024;

    size_t Buffered() const { return end_ - next_; }
    bool FillTo(size_t count);
    void MakeRoom(size_t size);
    size_t ReadLarge(uint8_t* out, size_t count);
    [[nodiscard]] bool MoveStreamTo(uint64_t position);
    // Reads at the source's own position.
    size_t ReadSource(uint8_t* out, size_t count);

    StreamSource stream_;
    ByteSource& source_ = stream_;
    std::optional<uint64_t> streamPosition_;
    std::optional<uint64_t> size_;
    uint64_t bufferStart_ = 0;  // position of the buffer's first byte
    size_t next_ = 0;           // index of the next byte to read
    size_t end_ = 0;            // index behind the last byte
    size_t fillSize_ = kFirstFill;
    bool hasFailed_ = false;
    std::array<uint8_t, kFirstFill> firstBuffer_;
    uint8_t* buffer_ = firstBuffer_.data();
    size_t bufferSize_ = kFirstFill;
    std::unique_ptr<uint8_t[]> largeBuffer_;  // grows with the fills, up to kBufferSize
};

}  // namespace pgkit
