// Items of Icon Image Sequence (0088,0200).
#pragma once

#include "dataset/node_ptr.h"

namespace pgkit {

// The item that shows a bitmap of grays. Null for no bitmap, for one of other colours or without a
// colour table, for one that is broken, and when memory runs out.
NodeTree NewIconItem(void* bitmap);

}  // namespace pgkit
