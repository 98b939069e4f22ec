// Icons as device-independent bitmaps: made from the pixels of a data set, held as a handle of a
// global memory block.
#pragma once

#include "pgkit/node.h"

namespace pgkit {

// A new bitmap of the first native frame of a data set, such as an Icon Image Sequence item, for
// platform::FreeGlobalBlock. MONOCHROME images give 8-bit bitmaps with a table of 256 grays, RGB
// images 24-bit ones. Null for any other photometric interpretation, for encapsulated pixels or
// samples that do not fill whole bytes, when a side is 0, when there are fewer pixels than that,
// and when memory runs out.
void* NewIconBitmap(PGX_Node& dataSet);

}  // namespace pgkit
