#include "disc/thumbnail.h"

#include <memory>

#include "bitmap.h"
#include "disc/web_limits.h"
#include "pgkit/imaging.h"
#include "png.h"

namespace pgtool {

namespace {

struct FreeLoadedImage {
    void operator()(void* image) const { vwImaFreeDicomImage(image); }
};

}  // namespace

std::string MakeThumbnail(const std::string& path) {
    const std::unique_ptr<void, FreeLoadedImage> image(vwImaAllocEmptyDicomImage());
    if (vwImaLoadFrom(image.get(), path.c_str()) == 0) return "";
    const GrayPicture picture = TakeBitmap(vwGetThumbnailDib(image.get(), kThumbnailSize));
    if (picture.pixels.empty()) return "";
    return EncodePng(picture.width, picture.height, 1, picture.pixels);
}

}  // namespace pgtool
