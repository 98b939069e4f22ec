#include "dicomdir/create/icon_making.h"

#include <algorithm>
#include <new>

#include "bitmap/received_bitmap.h"
#include "platform/loaded_module.h"

namespace pgkit {

namespace {

constexpr uint32_t kLongestEdge = 256;

// An image of the module.
class OpenedImage {
  public:
    OpenedImage(const ImagingModule& module, const char* path)
        : module_(module), image_(module.allocateImage()) {
        isOpen_ = image_ != nullptr && module.openImage(image_, path) != 0;
    }
    ~OpenedImage() {
        if (image_ != nullptr) module_.freeImage(image_);
    }
    OpenedImage(const OpenedImage&) = delete;
    OpenedImage& operator=(const OpenedImage&) = delete;

    // One that stands for all; none of an image in colours.
    BitmapHandle TypicalFrame() const {
        if (!isOpen_ || module_.isGrayscale(image_) == 0) return nullptr;
        const auto frameCount = static_cast<uint16_t>(module_.countFrames(image_));
        return BitmapHandle(module_.newFrameBitmap(image_, frameCount / 3u));
    }

  private:
    const ImagingModule& module_;
    void* image_;
    bool isOpen_;
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

ImageIcons IconsOf(const ImagingModule& module, const char* path, uint32_t edge,
                   bool wantsSeriesIcon) {
    const OpenedImage image(module, path);
    const BitmapHandle frame = image.TypicalFrame();
    ImageIcons icons;
    if (frame == nullptr) return icons;
    icons.ofImage = ZoomedToFit(module, frame.get(), edge);
    if (wantsSeriesIcon && icons.ofImage != nullptr) {
        icons.ofSeries = ZoomedToFit(module, frame.get(), edge);
    }
    return icons;
}

}  // namespace

ImagingModule::ImagingModule()
    : module_(platform::OpenModule("pgview32")),
      allocateImage(Find<decltype(vwImaAllocEmptyDicomImage)>("vwImaAllocEmptyDicomImage")),
      freeImage(Find<decltype(vwImaFreeDicomImage)>("vwImaFreeDicomImage")),
      openImage(Find<decltype(vwImaLoadFrom)>("vwImaLoadFrom")),
      isGrayscale(Find<decltype(vwImaIsGrayscaleImage)>("vwImaIsGrayscaleImage")),
      countFrames(Find<decltype(vwImaGetNumber)>("vwImaGetNumber")),
      newFrameBitmap(Find<decltype(vwImaGetHDib)>("vwImaGetHDib")),
      newZoomedBitmap(Find<decltype(vwDuplicateZoomDib)>("vwDuplicateZoomDib")) {}

ImagingModule::~ImagingModule() { platform::CloseModule(module_); }

bool ImagingModule::IsUsable() const {
    return allocateImage != nullptr && freeImage != nullptr && openImage != nullptr &&
           isGrayscale != nullptr && countFrames != nullptr && newFrameBitmap != nullptr &&
           newZoomedBitmap != nullptr;
}

template <typename Function>
Function* ImagingModule::Find(const char* name) const {
    return reinterpret_cast<Function*>(platform::FindFunction(module_, name));
}

ImageIcons IconMaker::Make(const char* path, uint32_t edge, bool wantsSeriesIcon) {
    if (edge == 0 || edge > kLongestEdge) return {};
    try {
        if (!module_) module_.emplace();
        if (!module_->IsUsable()) return {};
        return IconsOf(*module_, path, edge, wantsSeriesIcon);
    } catch (const std::bad_alloc&) {
        // The image needs no icon to be accepted.
        return {};
    }
}

}  // namespace pgkit
