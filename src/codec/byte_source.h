// Where the bytes of a data set come from: the one seam between the reader and a file, or memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

namespace pgkit {

class ByteSource {
  public:
    virtual ~ByteSource() = default;

    // Fewer bytes than were asked for are the last ones, or the system has failed.
    struct Portion {
        size_t count;
        bool hasFailed;
    };
    // Reads on from the present position.
    [[nodiscard]] virtual Portion Read(uint8_t* out, size_t count) = 0;
    // Any position may be taken, also beyond the end. False when the system fails.
    [[nodiscard]] virtual bool Seek(uint64_t position) = 0;
    // Nothing where there is none, as in a pipe.
    virtual std::optional<uint64_t> Position() = 0;
    // May move the source.
    virtual uint64_t Size() = 0;
};

// A stream of the C runtime.
class StreamSource final : public ByteSource {
  public:
    explicit StreamSource(FILE* stream) : stream_(stream) {}
    FILE* Stream() const { return stream_; }

    Portion Read(uint8_t* out, size_t count) override;
    [[nodiscard]] bool Seek(uint64_t position) override;
    std::optional<uint64_t> Position() override;
    uint64_t Size() override;

  private:
    FILE* stream_;
};

// Bytes that stay where they are as long as they are read.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    Portion Read(uint8_t* out, size_t count) override;
    [[nodiscard]] bool Seek(uint64_t position) override;
    std::optional<uint64_t> Position() override { return position_; }
    uint64_t Size() override { return bytes_.size(); }

  private:
    std::span<const uint8_t> bytes_;
    uint64_t position_ = 0;
};

}  // namespace pgkit
