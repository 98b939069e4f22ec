// The links between the records of a DICOMDIR: offsets of items that are known only when the items
// have been written, and are then put into the file.
#pragma once

#include <cstdio>
#include <vector>

#include "codec/write_result.h"
#include "codec/written_positions.h"
#include "dataset/tree_walk.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"

namespace pgkit {

// The offset elements of one tree that are to be patched after a save, and where they and their
// targets were written.
class PendingOffsets {
  public:
    // Finds them. Each gets a value of four bytes, so that there is room for the offset. Throws
    // std::bad_alloc.
    explicit PendingOffsets(PGX_Node& root);

    // To be filled while the tree is written.
    WrittenPositions& Positions() { return positions_; }

    // Puts the offsets into the elements and, in host byte order, into the written file, which has
    // been opened again (null: it could not be) and is closed.
    WriteResult Patch(platform::FileHandle file);

    // For WalkTree.
    WalkStep Enter(PGX_Node& node, size_t depth);
    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    WriteResult PatchElements(FILE* stream);
    WriteResult PatchElement(PGX_Node& element, FILE* stream);

    std::vector<PGX_Node*> elements_;
    WrittenPositions positions_;
};

}  // namespace pgkit
