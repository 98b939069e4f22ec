#include "codec/offset_patching.h"

#include <new>
#include <optional>
#include <utility>

#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

constexpr uint64_t kItemHeaderSize = 8;
// Of an element of VR UL, in explicit and in implicit VR.
constexpr uint64_t kElementHeaderSize = 8;

bool IsPendingOffset(const PGX_Node& node) {
    if (node.nodeType != NT_DataElement || node.group != 0x0004 || node.offsetPending == 0) {
        return false;
    }
    switch (node.element) {
        case 0x1200:  // first record of the root entity
        case 0x1202:  // last record of the root entity
        case 0x1400:  // next record
        case 0x1420:  // lower-level entity
            return true;
        default:
            return false;
    }
}

// Positions as they stand in fileOffset; nothing for one that did not fit.
std::optional<uint64_t> NodePosition(const PGX_Node& node) {
    if (node.fileOffset == kUnreadablePosition) return std::nullopt;
    return node.fileOffset;
}

// An offset counts from the item's tag, and its position is that of its first element. Nothing when
// the tag is beyond what 32 bits can say.
std::optional<uint32_t> OffsetOfItem(std::optional<uint64_t> firstElement) {
    if (!firstElement || *firstElement > UINT32_MAX + kItemHeaderSize) return std::nullopt;
    return static_cast<uint32_t>(*firstElement - kItemHeaderSize);
}

// The setter forgets where the element stands, which is the position in the output.
bool StoreOffset(PGX_Node& element, uint32_t offset) {
    const uint32_t position = element.fileOffset;
    const bool stored = element.SetValue(&offset, sizeof offset) != 0;
    element.fileOffset = position;
    return stored;
}

WriteResult PutOffset(PGX_Node& element, std::optional<uint32_t> offset,
                      std::optional<uint64_t> valuePosition, FILE* stream) {
    if (!offset || !valuePosition) return kWriteFailed;
    if (!StoreOffset(element, *offset)) return kOutOfMemory;
    const bool written = platform::Seek(stream, *valuePosition) &&
                         std::fwrite(&*offset, 1, sizeof *offset, stream) == sizeof *offset;
    return written ? kWritten : kWriteFailed;
}

// Patches from the positions that stand in the nodes.
class PatchFromNodes {
  public:
    explicit PatchFromNodes(FILE* stream) : stream_(stream) {}

    WriteResult Result() const { return result_; }

    WalkStep Enter(PGX_Node& node, size_t) {
        if (!IsPendingOffset(node)) return WalkStep::Continue;
        result_ = Patch(node);
        if (result_ != kWritten) return WalkStep::Unwind;
        node.offsetPending = 0;
        return WalkStep::SkipChildren;
    }

    WalkStep Leave(PGX_Node&, size_t) { return WalkStep::Continue; }

  private:
    WriteResult Patch(PGX_Node& element) {
        if (element.offsetTarget == nullptr) return kWritten;
        std::optional<uint64_t> valuePosition = NodePosition(element);
        if (valuePosition) *valuePosition += kElementHeaderSize;
        return PutOffset(element, OffsetOfItem(NodePosition(*element.offsetTarget)), valuePosition,
                         stream_);
    }

    FILE* stream_;
    WriteResult result_ = kWritten;
};

}  // namespace

WalkStep PendingOffsets::Enter(PGX_Node& node, size_t) {
    if (!IsPendingOffset(node)) return WalkStep::Continue;
    elements_.push_back(&node);
    if (node.offsetTarget != nullptr) {
        positions_.Want(node);
        positions_.Want(*node.offsetTarget);
        if (node.length != sizeof(uint32_t)) StoreOffset(node, 0);
    }
    return WalkStep::SkipChildren;
}

PendingOffsets::PendingOffsets(PGX_Node& root) { WalkTree(root, *this); }

WriteResult PendingOffsets::PatchElement(PGX_Node& element, FILE* stream) {
    if (element.offsetTarget == nullptr) return kWritten;
    const std::optional<uint64_t> valuePosition = positions_.Find(element);
    // Not part of what was written: there is nothing to correct.
    if (!valuePosition) return kWritten;
    std::optional<uint64_t> target = positions_.Find(*element.offsetTarget);
    if (!target) target = NodePosition(*element.offsetTarget);
    return PutOffset(element, OffsetOfItem(target), valuePosition, stream);
}

WriteResult PendingOffsets::PatchElements(FILE* stream) {
    for (PGX_Node* element : elements_) {
        const WriteResult result = PatchElement(*element, stream);
        if (result != kWritten) return result;
        element->offsetPending = 0;
    }
    return kWritten;
}

WriteResult PendingOffsets::Patch(platform::FileHandle file) {
    if (file == nullptr) return kCannotReopen;
    const WriteResult result = PatchElements(file.get());
    return CloseWritten(std::move(file), result);
}

}  // namespace pgkit

void PGX_Node::WriteNodeOffset(FILE* stream) { WriteNodeOffsetEx(stream); }

uint32_t PGX_Node::WriteNodeOffsetEx(FILE* stream) {
    if (stream == nullptr) return pgkit::kWriteFailed;
    pgkit::PatchFromNodes patch(stream);
    try {
        pgkit::WalkTree(*this, patch);
    } catch (const std::bad_alloc&) {
        return pgkit::kOutOfMemory;
    }
    const bool flushed = std::fflush(stream) == 0;
    if (patch.Result() != pgkit::kWritten) return patch.Result();
    return flushed ? pgkit::kWritten : pgkit::kWriteFailed;
}
