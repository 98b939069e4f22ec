// Items and sequences whose computed length cannot be that of what is written for them.
#pragma once

#include <unordered_set>

#include "pgkit/node.h"

namespace pgkit {

using NodeSet = std::unordered_set<const PGX_Node*>;

// Adds every item and sequence at and below a sequence that holds, at any depth, encapsulated Pixel
// Data (delimited itself, so of no length that could be counted) or an element of group 0002 (left
// out, or written with another header than is counted).
void CollectDelimitedContainers(PGX_Node& sequence, NodeSet& containers);

}  // namespace pgkit
