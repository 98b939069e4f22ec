// The text dump with its allocator as an argument, which lets a test see memory run out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "pgkit/node.h"

namespace pgkit {

// A zeroed buffer that FreeValueBuffer takes, or null; NewValueBuffer.
using ValueAllocator = uint8_t* (*)(size_t size);

// Prints the node and everything below it. Returns 0 when the node is an element whose value buffer
// could not be allocated.
int32_t DumpTree(PGX_Node& node, FILE* stream, std::string_view prefix, ValueAllocator allocate);

}  // namespace pgkit
