// The links between the records of a DICOMDIR: offsets of items that are known only when the items
// have been written, and are then put into the file.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/byte_order.h"
#include "codec/byte_sink.h"
#include "codec/write_result.h"
#include "codec/written_positions.h"
#include "dataset/tree_walk.h"
#include "pgkit/node.h"
#include "platform/file_handle.h"

namespace pgkit {

// The links of one tree that are to be put right after a save, and where they and their targets
// were written: those that are pending; those of records that an earlier save has settled; and,
// where there are any of these, those to the first and the last record.
class PendingOffsets {
  public:
    // Finds them. A pending one gets a value of four bytes, so that there is room for the offset.
    // Throws std::bad_alloc.
    explicit PendingOffsets(PGX_Node& root);

    // To be filled while the tree is written.
    WrittenPositions& Positions() { return positions_; }

    // Whether there are none.
    bool Empty() const { return links_.empty(); }

    // Puts the offsets into the elements and, in the given byte order, into the written file, which
    // has been opened again (null: it could not be) and is closed.
    WriteResult Patch(platform::FileHandle file, ByteOrder order);
    // Puts them into the elements, and tells what is to stand in the output.
    WriteResult Collect(ByteOrder order, std::vector<BytePatch>& patches);

    // For WalkTree.
    WalkStep Enter(PGX_Node& node, size_t depth);
    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    // The target of a link that is not pending may be gone: it is read only when it was written.
    struct Link {
        PGX_Node* element;
        PGX_Node* target;
    };

    void AddRootLinks(PGX_Node& root);
    void Add(PGX_Node& element, PGX_Node* target);
    // Puts an offset into the output; false when that fails.
    using Put = std::function<bool(const BytePatch& patch)>;

    WriteResult PatchLinks(const Put& put, ByteOrder order);
    WriteResult PatchPending(const Link& link, const Put& put, ByteOrder order);
    WriteResult PatchSettled(const Link& link, const Put& put, ByteOrder order);

    std::vector<Link> links_;
    WrittenPositions positions_;
};

}  // namespace pgkit
