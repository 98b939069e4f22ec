// An output that takes a given number of bytes and then fails, as a full disk does; and bytes for
// it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "codec/output_writer.h"
#include "support/temp_dir.h"

namespace pgkit_test {

class FailingSink : public pgkit::ByteSink {
  public:
    static constexpr size_t kUnlimited = static_cast<size_t>(-1);

    explicit FailingSink(size_t limit = kUnlimited, uint64_t position = 0)
        : limit_(limit), position_(position) {}

    bool Write(const uint8_t* bytes, size_t count) override {
        const size_t taken = std::min(count, limit_ - written_.size());
        written_.insert(written_.end(), bytes, bytes + taken);
        return taken == count;
    }
    bool Flush() override { return true; }
    std::optional<uint64_t> Position() override { return position_; }

    const Bytes& Written() const { return written_; }

  private:
    size_t limit_;
    uint64_t position_;
    Bytes written_;
};

// Bytes whose period fits no buffer: one that is lost or written twice shows.
inline Bytes Pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return bytes;
}

}  // namespace pgkit_test
