// From samples to grays: stored values, rescaling, window, photometric interpretation.
#pragma once

#include <cstdint>
#include <memory>

#include "bitmap/bitmap_handle.h"
#include "frame_rows.h"
#include "image_description.h"

namespace pgview {

// The rows of a frame as grays. Without a window the frame's own range is needed first: its rows
// are then read twice.
class GrayRows {
  public:
    GrayRows(const ImageDescription& image, std::unique_ptr<FrameRows> rows);
    ~GrayRows();
    GrayRows(GrayRows&&) noexcept;
    GrayRows& operator=(GrayRows&&) = delete;

    // Writes the next row, from the top; false when the frame ends before.
    bool Next(uint8_t* out);

  private:
    class Renderer;

    std::unique_ptr<FrameRows> rows_;
    std::unique_ptr<Renderer> renderer_;  // null when the frame ends before its last row
};

// A new bitmap of one frame; null when the frame ends before its last row.
pgkit::BitmapHandle RenderFrame(const ImageDescription& image, GrayRows& rows);

}  // namespace pgview
