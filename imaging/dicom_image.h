// An image of a DICOM file: opened, described, its frames made into bitmaps one by one.
#pragma once

#include <pgkit/pgkit.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "bitmap/bitmap_handle.h"
#include "frame_rows.h"
#include "gray_rendering.h"
#include "image_description.h"

namespace pgview {

class DicomImage {
  public:
    // False when there is no image that can be read; the object then has no content.
    bool Load(const char* path);

    bool IsGrayscale() const { return description_ && description_->isGrayscale; }
    uint32_t FrameCount() const { return description_ ? description_->frameCount : 0; }
    // The frame that stands for the whole image.
    uint32_t TypicalFrame() const { return FrameCount() / 3; }
    // A new bitmap; null when there is no such frame or it is not there as a whole.
    pgkit::BitmapHandle NewFrameBitmap(uint32_t index) const;
    // A new bitmap of the typical frame whose longer side is so long; null as before, and for a
    // side that is 0 or too long. Only the bitmap's own size is held of it, not the frame's.
    pgkit::BitmapHandle NewThumbnail(uint32_t side) const;

  private:
    struct Closer {
        void operator()(PGX_Node* root) const { pgCloseDataSet(root); }
    };

    // None when there is no such frame.
    std::optional<GrayRows> ReadFrame(uint32_t index) const;
    std::unique_ptr<FrameRows> ReadSamples(uint32_t index) const;
    std::vector<uint8_t> ReadNativeFrame(uint32_t index) const;
    bool HoldsNativeFrame(uint32_t index) const;

    std::unique_ptr<PGX_Node, Closer> root_;
    PGX_Node* pixelData_ = nullptr;  // part of the tree
    std::optional<ImageDescription> description_;
};

}  // namespace pgview
