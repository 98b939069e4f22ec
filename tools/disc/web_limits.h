// How much the pages for web browsers show, and what that takes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgtool {

// Pictures of a series; of one with more images, so many of them.
constexpr size_t kMaxThumbnails = 60;
// The longer side of a picture, in pixels.
constexpr uint32_t kThumbnailSize = 160;
// A gray picture that cannot be compressed.
constexpr uint64_t kMaxThumbnailBytes = uint64_t{kThumbnailSize} * kThumbnailSize + 2048;

}  // namespace pgtool
