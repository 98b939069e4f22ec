// Icons as device-independent bitmaps: made from the pixels of a data set, held as a handle of a
// global memory block.
#pragma once

#include <cstdint>
#include <functional>

#include "bitmap/bitmap_handle.h"
#include "pgkit/node.h"

namespace pgkit {

// A new bitmap of the first native frame of a data set, such as an Icon Image Sequence item.
// MONOCHROME images become 8-bit bitmaps with a table of 256 grays, RGB images 24-bit ones. Null
// for any other photometric interpretation, for encapsulated pixels or samples that do not fill
// whole bytes, when a side is 0, when there are fewer pixels than that, and when memory runs out.
BitmapHandle NewIconBitmap(PGX_Node& dataSet);

// The same, null also when it may not take the memory that it asks for: a bound from above of what
// the bitmap takes, and of what is needed on the way. It is not asked when there is none to make.
BitmapHandle NewIconBitmap(PGX_Node& dataSet, const std::function<bool(uint64_t)>& mayTake);

}  // namespace pgkit
