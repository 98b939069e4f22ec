// Bitmaps as BMP files.
#pragma once

#include "bitmap.h"

namespace pgview {

bool WriteBitmapFile(const LockedBitmap& bitmap, const char* path);

}  // namespace pgview
