// How much memory trees take: bounds from above, whatever allocator there is.
#pragma once

#include <cstdint>

#include "pgkit/node.h"

namespace pgkit {

// A block of the heap with what the allocator adds: 16 bytes of its own at most, and whole units of
// 16 bytes.
constexpr uint64_t HeapBlock(uint64_t size) { return (size + 15) / 16 * 16 + 16; }

// What a node and everything below it take now. Of a value whose length is a mere claim only what
// the file holds counts: nothing touches the rest.
uint64_t TreeSize(PGX_Node& tree);

// What a copy of them for a record takes, with what is needed on the way: values that are mere
// claims are left out of it.
uint64_t CopySize(PGX_Node& tree);

}  // namespace pgkit
