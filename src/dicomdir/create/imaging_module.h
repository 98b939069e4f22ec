// The companion imaging module and those of its functions that icons need.
#pragma once

#include "pgkit/imaging.h"

namespace pgkit {

class ImagingModule {
  public:
    // Loads the module; the destructor unloads it.
    ImagingModule();
    ~ImagingModule();
    ImagingModule(const ImagingModule&) = delete;
    ImagingModule& operator=(const ImagingModule&) = delete;

    // Whether the module is there and has all that it takes to make an icon.
    bool IsUsable() const;

  private:
    void* module_;

    template <typename Function>
    Function* Find(const char* name) const;

  public:
    decltype(vwImaAllocEmptyDicomImage)* const allocateImage;
    decltype(vwImaFreeDicomImage)* const freeImage;
    decltype(vwImaLoadFrom)* const load;
    decltype(vwImaIsGrayscaleImage)* const isGrayscale;
    decltype(vwImaGetNumber)* const countFrames;
    decltype(vwImaGetHDib)* const newFrameBitmap;
    decltype(vwDuplicateZoomDib)* const newZoomedBitmap;
    decltype(vwWriteDib)* const writeBitmap;  // for debugging; may be null
};

}  // namespace pgkit
