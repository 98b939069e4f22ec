// Writes a tree, or a part of it, to an output.
#pragma once

#include <cstdint>

#include "codec/deflating_sink.h"
#include "codec/output_writer.h"
#include "codec/written_positions.h"
#include "pgkit/node.h"

namespace pgkit {

// What a save wants beyond the bytes.
struct SaveWishes {
    // Records where what it asks for is written.
    WrittenPositions* positions = nullptr;
    // Everything goes through it; it is started behind the File Meta Information.
    DeflatingSink* deflating = nullptr;
    // The lengths in the nodes are those of what is written (ComputeLengths).
    bool hasLengths = false;
};

// Writes a node and everything below it in the encoding that the mode says. Sequences and items
// carry the lengths that stand in their nodes. Sets every fileOffset that is 0 to the output
// position. When it returns, nothing is held back, whatever the result.
WriteResult EncodeNode(PGX_Node& node, uint32_t mode, ByteSink& sink,
                       const SaveWishes& wishes = {});

}  // namespace pgkit
