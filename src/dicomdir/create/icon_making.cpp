#include "dicomdir/create/icon_making.h"

#include <algorithm>
#include <new>

#include "bitmap/received_bitmap.h"
#include "dicomdir/create/imaging_module.h"

namespace pgkit {

namespace {

constexpr uint32_t kLongestEdge = 256;

// An image of the module.
class LoadedImage {
  public:
    LoadedImage(const ImagingModule& module, const char* path)
        : module_(module), image_(module.allocateImage()) {
        isLoaded_ = image_ != nullptr && module.load(image_, path) != 0;
    }
    ~LoadedImage() {
        if (image_ != nullptr) module_.freeImage(image_);
    }
    LoadedImage(const LoadedImage&) = delete;
    LoadedImage& operator=(const LoadedImage&) = delete;

    // One that stands for all; nothing for an image in colours.
    BitmapHandle TypicalFrame() const {
        if (!isLoaded_ || module_.isGrayscale(image_) == 0) return nullptr;
        const auto frameCount = static_cast<uint16_t>(module_.countFrames(image_));
        return BitmapHandle(module_.newFrameBitmap(image_, frameCount / 3u));
    }

  private:
    const ImagingModule& module_;
    void* image_;
    bool isLoaded_;
};

// By this factor the longer side becomes the edge; the module rounds the other one to the nearest
// pixel, and never below 1. The icon's own height by that of the image would be the same factor,
// but for what that height was rounded: a width could then exceed the square.
double FittingZoom(const BitmapHeader& bitmap, uint32_t edge) {
    return static_cast<double>(edge) / std::max(bitmap.width, bitmap.height);
}

BitmapHandle ZoomedToFit(const ImagingModule& module, void* bitmap, uint32_t edge) {
    double zoom = 0;
    {
        const ReceivedBitmap received(bitmap);
        if (received.Header()) zoom = FittingZoom(*received.Header(), edge);
    }
    return BitmapHandle(zoom > 0 ? module.newZoomedBitmap(bitmap, zoom) : nullptr);
}

BitmapHandle NewIconOfModule(const char* path, uint32_t edge) {
    const ImagingModule module;
    if (!module.IsUsable()) return nullptr;
    const LoadedImage image(module, path);
    const BitmapHandle frame = image.TypicalFrame();
    return frame == nullptr ? nullptr : ZoomedToFit(module, frame.get(), edge);
}

}  // namespace

BitmapHandle NewImageIcon(const char* path, uint32_t edge) {
    if (edge == 0 || edge > kLongestEdge) return nullptr;
    try {
        return NewIconOfModule(path, edge);
    } catch (const std::bad_alloc&) {
        // The image needs no icon to be accepted.
        return nullptr;
    }
}

}  // namespace pgkit
