// Images of the imaging module that free themselves.
#pragma once

#include <memory>

#include "pgkit/imaging.h"

namespace pgtool {

struct FreeImage {
    void operator()(void* image) const { vwImaFreeDicomImage(image); }
};
using LoadedImage = std::unique_ptr<void, FreeImage>;

}  // namespace pgtool
