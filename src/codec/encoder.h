// Writes a tree, or a part of it, to an output.
#pragma once

#include <cstdint>

#include "codec/deflating_sink.h"
#include "codec/output_writer.h"
#include "codec/written_positions.h"
#include "pgkit/node.h"

namespace pgkit {

// Writes a node and everything below it in the encoding that the mode says. Sequences and items
// carry the lengths that stand in their nodes (ComputeLengths). Sets every fileOffset that is 0 to
// the output position, and records the positions that are wanted. A deflating sink, through which
// everything goes, is started behind the File Meta Information. When it returns, nothing of it is
// held back, whatever the result.
[[nodiscard]] WriteResult EncodeNode(PGX_Node& node, uint32_t mode, ByteSink& sink,
                                     WrittenPositions* positions = nullptr,
                                     DeflatingSink* deflating = nullptr);

}  // namespace pgkit
