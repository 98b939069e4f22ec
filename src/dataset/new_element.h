// The elements that a data set gets through InsertNode and the group lengths.
#pragma once

#include <cstdint>

#include "pgkit/node.h"

namespace pgkit {

// A new element with the dictionary's VR and a copy of the value, not linked yet; null when memory
// runs out. Between the data set and its Pixel Data this passes Bits Allocated on.
PGX_Node* NewElement(PGX_Node& dataSet, uint16_t group, uint16_t element, const void* data,
                     uint32_t size);

}  // namespace pgkit
