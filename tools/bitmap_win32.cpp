#include <windows.h>

#include "bitmap.h"

namespace pgtool {

const uint8_t* LockBitmap(void* bitmap) { return static_cast<const uint8_t*>(GlobalLock(bitmap)); }

void FreeBitmap(void* bitmap) {
    GlobalUnlock(bitmap);
    GlobalFree(bitmap);
}

}  // namespace pgtool
