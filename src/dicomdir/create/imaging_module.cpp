#include "dicomdir/create/imaging_module.h"

#include "platform/loaded_module.h"

namespace pgkit {

ImagingModule::ImagingModule()
    : module_(platform::OpenModule("pgview32")),
      allocateImage(Find<decltype(vwImaAllocEmptyDicomImage)>("vwImaAllocEmptyDicomImage")),
      freeImage(Find<decltype(vwImaFreeDicomImage)>("vwImaFreeDicomImage")),
      load(Find<decltype(vwImaLoadFrom)>("vwImaLoadFrom")),
      isGrayscale(Find<decltype(vwImaIsGrayscaleImage)>("vwImaIsGrayscaleImage")),
      countFrames(Find<decltype(vwImaGetNumber)>("vwImaGetNumber")),
      newFrameBitmap(Find<decltype(vwImaGetHDib)>("vwImaGetHDib")),
      newZoomedBitmap(Find<decltype(vwDuplicateZoomDib)>("vwDuplicateZoomDib")),
      writeBitmap(Find<decltype(vwWriteDib)>("vwWriteDib")) {}

ImagingModule::~ImagingModule() { platform::CloseModule(module_); }

bool ImagingModule::IsUsable() const {
    return allocateImage != nullptr && freeImage != nullptr && load != nullptr &&
           isGrayscale != nullptr && countFrames != nullptr && newFrameBitmap != nullptr &&
           newZoomedBitmap != nullptr;
}

template <typename Function>
Function* ImagingModule::Find(const char* name) const {
    return reinterpret_cast<Function*>(platform::FindFunction(module_, name));
}

}  // namespace pgkit
