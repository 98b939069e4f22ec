// Small pictures of images.
#pragma once

#include <string>

namespace pgtool {

// The bytes of a PNG file: the image with its longer side of kThumbnailSize pixels. Empty for what
// the imaging module makes no picture of, such as images in colours and most compressed ones.
std::string MakeThumbnail(const std::string& path);

}  // namespace pgtool
