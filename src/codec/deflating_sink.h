// Deflates a data set on its way out.
#pragma once

#include <memory>

#include "codec/byte_sink.h"
#include "codec/deflate_stream.h"

namespace pgkit {

// What is written before Start goes out as it is. Positions are those of what comes in: it is these
// that readers see, who inflate it again.
class DeflatingSink final : public ByteSink {
  public:
    // Throws std::bad_alloc.
    explicit DeflatingSink(ByteSink& out);

    [[nodiscard]] bool Write(const uint8_t* bytes, size_t count) override;
    [[nodiscard]] bool Flush() override { return out_.Flush(); }
    std::optional<uint64_t> Position() override { return position_; }

    bool HasStarted() const { return hasStarted_; }
    void Start() { hasStarted_ = true; }
    // Brings out what is left, and the byte that makes its size even.
    [[nodiscard]] bool Finish();

  private:
    DeflateState Deflate(std::span<const uint8_t> bytes, bool isLast);

    ByteSink& out_;
    Deflater deflater_;
    std::unique_ptr<uint8_t[]> buffer_;
    uint64_t position_;
    uint64_t deflatedSize_ = 0;
    bool hasStarted_ = false;
};

}  // namespace pgkit
