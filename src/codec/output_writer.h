// A buffer in front of an output stream, for headers and values of a few bytes each.
//
// A failure shows at the latest in Flush, and everything after it fails too. Fail reports another
// error only when all that precedes it has gone out: the results are those of checking every write
// by itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "codec/byte_sink.h"
#include "codec/write_result.h"

namespace pgkit {

class OutputWriter {
  public:
    // The most that is held in memory, and the size of the pieces in which values are copied.
    static constexpr size_t kCapacity = 0x40000;

    explicit OutputWriter(ByteSink& sink);
    OutputWriter(const OutputWriter&) = delete;
    OutputWriter& operator=(const OutputWriter&) = delete;

    // Whether there is a buffer. Nothing else may be called without one.
    bool HasBuffer() const { return buffer_ != nullptr; }

    WriteResult Write(const void* bytes, size_t count);

    // Room for count bytes, at most kCapacity, to be filled and then committed in whole or in part;
    // null when writing has failed.
    uint8_t* Reserve(size_t count);
    void Commit(size_t count) { used_ += count; }

    // Brings out what is held.
    [[nodiscard]] bool Flush();
    // Flushes and gives the error, or kWriteFailed when that is what went wrong first.
    WriteResult Fail(WriteResult error) { return Flush() ? error : kWriteFailed; }

    // Where the next byte will stand in the sink.
    std::optional<uint64_t> Position() const;

  private:
    [[nodiscard]] bool Drain();

    ByteSink& sink_;
    std::unique_ptr<uint8_t[]> buffer_;
    size_t used_ = 0;
    bool failed_ = false;
    std::optional<uint64_t> drainedPosition_;
};

}  // namespace pgkit
