// Where the bytes of a data set go, and what may happen to them on the way.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <vector>

#include "pgkit/streams.h"

namespace pgkit {

class ByteSink {
  public:
    virtual ~ByteSink() = default;
    // Whether all the bytes were taken.
    [[nodiscard]] virtual bool Write(const uint8_t* bytes, size_t count) = 0;
    [[nodiscard]] virtual bool Flush() { return true; }
    // None when the sink has no position.
    virtual std::optional<uint64_t> Position() = 0;
};

// A stream of the C runtime. A null stream takes nothing.
class StreamSink final : public ByteSink {
  public:
    explicit StreamSink(FILE* stream) : stream_(stream) {}
    [[nodiscard]] bool Write(const uint8_t* bytes, size_t count) override;
    [[nodiscard]] bool Flush() override;
    std::optional<uint64_t> Position() override;

  private:
    FILE* stream_;
};

// A function of the caller. A null one takes nothing.
class FunctionSink final : public ByteSink {
  public:
    FunctionSink(PgxWriteFunction write, void* context) : write_(write), context_(context) {}
    [[nodiscard]] bool Write(const uint8_t* bytes, size_t count) override;
    std::optional<uint64_t> Position() override { return position_; }

  private:
    PgxWriteFunction write_;
    void* context_;
    uint64_t position_ = 0;
};

// Memory, which gets as much as it has room for; the rest is counted only.
class BufferSink final : public ByteSink {
  public:
    explicit BufferSink(std::span<uint8_t> room, uint64_t position = 0)
        : room_(room), position_(position) {}
    [[nodiscard]] bool Write(const uint8_t* bytes, size_t count) override;
    std::optional<uint64_t> Position() override { return position_; }

  private:
    std::span<uint8_t> room_;
    uint64_t position_;
};

// Four bytes that are to stand at a position instead of those that are written there.
struct BytePatch {
    uint64_t position;
    std::array<uint8_t, 4> bytes;
};

class PatchingSink final : public ByteSink {
  public:
    PatchingSink(ByteSink& out, std::vector<BytePatch> patches);
    [[nodiscard]] bool Write(const uint8_t* bytes, size_t count) override;
    [[nodiscard]] bool Flush() override { return out_.Flush(); }
    std::optional<uint64_t> Position() override { return out_.Position(); }

  private:
    ByteSink& out_;
    std::vector<BytePatch> patches_;  // in order
    uint64_t position_;
};

}  // namespace pgkit
