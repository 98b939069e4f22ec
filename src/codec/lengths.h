// The lengths that items and sequences carry when they are written without delimiters.
#pragma once

#include <cstdint>

#include "pgkit/node.h"

namespace pgkit {

// Computes and stores the lengths of a data set and of all sequences and items in it, as the mode's
// headers make them, and returns the data set's. A sum that does not fit 32 bits becomes
// kUndefinedLength: such a container is written with delimiters. An element of undefined length
// counts as 0xFFFFFFFF, which wraps: what is around it is written with delimiters, too. Elements
// that are never written (IsElementTag) do not count. On a node
// that is not a data set prints "pgComputeLengths: can only work with NT_DataSet type\n" and
// returns 0.
uint32_t ComputeLengths(PGX_Node& dataSet, uint32_t mode);

}  // namespace pgkit
