#include "disc/thumbnail.h"

#include "bitmap.h"
#include "disc/web_limits.h"
#include "loaded_image.h"
#include "png.h"

namespace pgtool {

std::string MakeThumbnail(const std::string& path) {
    const LoadedImage image(vwImaAllocEmptyDicomImage());
    if (vwImaLoadFrom(image.get(), path.c_str()) == 0) return "";
    const GrayPicture picture = TakeBitmap(vwGetThumbnailDib(image.get(), kThumbnailSize));
    if (picture.pixels.empty()) return "";
    return EncodePng(picture.width, picture.height, 1, picture.pixels);
}

}  // namespace pgtool
