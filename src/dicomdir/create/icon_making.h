// Icons of images, which the imaging module makes, if there is one. Whatever goes wrong means only
// that there is no icon.
#pragma once

#include <cstdint>
#include <optional>

#include "bitmap/bitmap_handle.h"
#include "pgkit/imaging.h"

namespace pgkit {

// The companion imaging module and those of its functions that icons need.
class ImagingModule {
  public:
    // Loads the module; the destructor unloads it.
    ImagingModule();
    ~ImagingModule();
    ImagingModule(const ImagingModule&) = delete;
    ImagingModule& operator=(const ImagingModule&) = delete;

    // Whether the module is there and has all of them.
    bool IsUsable() const;

  private:
    void* module_;

    template <typename Function>
    Function* Find(const char* name) const;

  public:
    decltype(vwImaAllocEmptyDicomImage)* const allocateImage;
    decltype(vwImaFreeDicomImage)* const freeImage;
    decltype(vwImaLoadFrom)* const openImage;
    decltype(vwImaIsGrayscaleImage)* const isGrayscale;
    decltype(vwImaGetNumber)* const countFrames;
    decltype(vwImaGetHDib)* const newFrameBitmap;
    decltype(vwDuplicateZoomDib)* const newZoomedBitmap;
};

// The same picture twice: bitmaps belong to one object each.
struct ImageIcons {
    BitmapHandle ofImage;
    BitmapHandle ofSeries;  // if it is wanted
};

// Makes icons of any number of images. The module is loaded when the first one is wanted, and once.
class IconMaker {
  public:
    // Bitmaps of the frame one third into a grayscale image that fit into a square of this edge.
    // None for an edge of 0 or above 256.
    ImageIcons Make(const char* path, uint32_t edge, bool wantsSeriesIcon);

  private:
    std::optional<ImagingModule> module_;
};

}  // namespace pgkit
