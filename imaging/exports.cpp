// The functions that the module exports: null handles and exceptions end here.
#include <pgkit/imaging.h>

#include <new>

#include "bitmap.h"
#include "bitmap_file.h"
#include "bitmap_zoom.h"
#include "dicom_image.h"

using pgview::BitmapSize;
using pgview::DicomImage;
using pgview::Enlarging;
using pgview::LockedBitmap;

namespace {

DicomImage* ImageOf(void* handle) { return static_cast<DicomImage*>(handle); }

// What a function gives, or a null or 0 when memory runs out on the way.
template <typename Function>
auto Guarded(Function&& function) -> decltype(function()) {
    try {
        return function();
    } catch (...) {
        return {};
    }
}

void* Zoom(void* dib, double zoom, Enlarging enlarging) {
    return Guarded([&]() -> void* {
        const LockedBitmap bitmap(dib);
        if (!bitmap.IsUsable()) return nullptr;
        const BitmapSize size{bitmap.Header().width, bitmap.Header().height};
        return ResizeBitmap(bitmap, ZoomedSize(size, zoom), enlarging).release();
    });
}

}  // namespace

void* vwImaAllocEmptyDicomImage() { return new (std::nothrow) DicomImage; }

void vwImaFreeDicomImage(void* image) { delete ImageOf(image); }

int32_t vwImaLoadFrom(void* image, const char* path) {
    if (image == nullptr) return 0;
    return Guarded([&] { return ImageOf(image)->Load(path) ? 1 : 0; });
}

int32_t vwImaIsGrayscaleImage(void* image) {
    return image != nullptr && ImageOf(image)->IsGrayscale() ? 1 : 0;
}

uint32_t vwImaGetNumber(void* image) { return image == nullptr ? 0 : ImageOf(image)->FrameCount(); }

void* vwImaGetHDib(void* image, uint32_t frame) {
    if (image == nullptr) return nullptr;
    return Guarded([&] { return ImageOf(image)->NewFrameBitmap(frame).release(); });
}

void* vwDuplicateZoomDib(void* dib, double zoom) {
    return Zoom(dib, zoom, Enlarging::RepeatsPixels);
}

void* vwInterpolateZoomDib(void* dib, double zoom) {
    return Zoom(dib, zoom, Enlarging::Interpolates);
}

int32_t vwWriteDib(void* dib, const char* path) {
    if (path == nullptr) return 0;
    return Guarded([&] {
        const LockedBitmap bitmap(dib);
        return bitmap.IsUsable() && WriteBitmapFile(bitmap, path) ? 1 : 0;
    });
}

void* vwGetThumbnailDib(void* image, uint32_t size) {
    if (image == nullptr) return nullptr;
    return Guarded([&] { return ImageOf(image)->NewThumbnail(size).release(); });
}
