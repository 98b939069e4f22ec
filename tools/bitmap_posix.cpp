#include <cstdlib>

#include "bitmap.h"

namespace pgtool {

const uint8_t* LockBitmap(void* bitmap) { return static_cast<const uint8_t*>(bitmap); }

void FreeBitmap(void* bitmap) { std::free(bitmap); }

}  // namespace pgtool
