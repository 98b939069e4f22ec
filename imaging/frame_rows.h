// The pixels of one frame, given row by row, so that no more of them is held than is needed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace pgview {

class FrameRows {
  public:
    FrameRows() = default;
    virtual ~FrameRows() = default;
    FrameRows(const FrameRows&) = delete;
    FrameRows& operator=(const FrameRows&) = delete;

    // The next row, from the top: little-endian samples, valid until the next call. Null when the
    // frame ends before. There is no row behind the last one.
    virtual const uint8_t* Next() = 0;
    // Begins with the first row again.
    virtual void Rewind() = 0;
};

// The rows of a frame that is all in memory.
class StoredRows : public FrameRows {
  public:
    StoredRows(std::vector<uint8_t> frame, size_t rowSize)
        : frame_(std::move(frame)), rowSize_(rowSize) {}

    const uint8_t* Next() override {
        const uint8_t* const row = frame_.data() + position_;
        position_ += rowSize_;
        return row;
    }
    void Rewind() override { position_ = 0; }

  private:
    std::vector<uint8_t> frame_;
    size_t rowSize_;
    size_t position_ = 0;
};

}  // namespace pgview
