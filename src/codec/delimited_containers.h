// Items and sequences whose computed length cannot be that of what is written for them.
#pragma once

#include <cstdint>
#include <unordered_set>

#include "pgkit/node.h"

namespace pgkit {

using NodeSet = std::unordered_set<const PGX_Node*>;

// Adds every item and sequence at and below a sequence whose counted length is not that of what is
// written in this mode, because it holds, at any depth, encapsulated Pixel Data (delimited itself,
// so of no length that could be counted) or, in the modes that leave it out, an element of group
// 0002.
void CollectDelimitedContainers(PGX_Node& sequence, uint32_t mode, NodeSet& containers);

// Whether an item or a sequence was read from a file and nobody has counted its length since then:
// the tree has not been saved. Items have the length 0 then, and one that has been counted has it
// only when it is empty.
bool IsUncounted(const PGX_Node& container);

}  // namespace pgkit
