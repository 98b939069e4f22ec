// An output that takes a given number of bytes and then fails, as a full disk does.
#pragma once

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

}  // namespace pgkit_test
