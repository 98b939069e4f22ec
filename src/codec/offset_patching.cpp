#include "codec/offset_patching.h"

#include <new>
#include <optional>
#include <utility>

#include "codec/part10_format.h"
#include "dataset/node_memory.h"
#include "dataset/tree_walk.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Of an element of VR UL, in explicit and in implicit VR.
constexpr uint64_t kElementHeaderSize = 8;

bool IsOffset(const PGX_Node& node) {
    if (node.nodeType != NT_DataElement || node.group != 0x0004) return false;
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

// An offset counts from the item's tag, and its position is that of its first element. None when
// the tag is beyond what 32 bits can say.
std::optional<uint32_t> OffsetOfItem(std::optional<uint64_t> firstElement) {
    if (!firstElement || *firstElement > uint64_t{UINT32_MAX} + kItemHeaderSize)
        return std::nullopt;
    return static_cast<uint32_t>(*firstElement - kItemHeaderSize);
}

// The setter forgets where the element stands, which is the position in the output.
bool StoreOffset(PGX_Node& element, uint32_t offset) {
    const uint32_t position = element.fileOffset;
    const bool stored = element.SetValue(&offset, sizeof offset) != 0;
    element.fileOffset = position;
    return stored;
}

template <typename Put>
WriteResult PutOffset(std::optional<uint32_t> offset, std::optional<uint64_t> valuePosition,
                      const Put& put, ByteOrder order) {
    if (!offset || !valuePosition) return kWriteFailed;
    BytePatch patch{*valuePosition, {}};
    PutNumber(patch.bytes.data(), *offset, order);
    return put(patch) ? kWritten : kWriteFailed;
}

bool WritePatch(FILE* stream, const BytePatch& patch) {
    const size_t size = patch.bytes.size();
    return platform::Seek(stream, patch.position) &&
           std::fwrite(patch.bytes.data(), 1, size, stream) == size;
}

// Items keep the position they were read from or first written to, and what counts in the tree are
// the positions of its nodes: links go on leading to their targets when the tree is browsed again.
std::optional<uint32_t> OffsetInTree(const PGX_Node& target, std::optional<uint32_t> inFile) {
    return target.fileOffset != 0 ? OffsetOfItem(NodePosition(target)) : inFile;
}

// The item that was read from where the offset says.
PGX_Node* ItemReadFrom(PGX_Node& root, uint32_t offset) {
    PGX_Node* const records = root.FindNode(0x0004, 0x1220);
    if (offset == 0 || records == nullptr) return nullptr;
    for (PGX_Node* item = records->first; item != nullptr; item = item->next) {
        if (item->file != nullptr && OffsetOfItem(NodePosition(*item)) == offset) return item;
    }
    return nullptr;
}

// Patches from the positions that stand in the nodes.
class PatchFromNodes {
  public:
    explicit PatchFromNodes(FILE* stream) : stream_(stream) {}

    WriteResult Result() const { return result_; }

    WalkStep Enter(PGX_Node& node, size_t) {
        if (!IsOffset(node) || node.offsetPending == 0) return WalkStep::Continue;
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
        const auto offset = OffsetOfItem(NodePosition(*element.offsetTarget));
        if (!offset || !valuePosition) return kWriteFailed;
        if (!StoreOffset(element, *offset)) return kOutOfMemory;
        return PutOffset(
            offset, valuePosition,
            [this](const BytePatch& patch) { return WritePatch(stream_, patch); }, kHostByteOrder);
    }

    FILE* stream_;
    WriteResult result_ = kWritten;
};

}  // namespace

PendingOffsets::PendingOffsets(PGX_Node& root) {
    WalkTree(root, *this);
    if (!positions_.Empty()) AddRootLinks(root);
}

WalkStep PendingOffsets::Enter(PGX_Node& node, size_t) {
    if (!IsOffset(node)) return WalkStep::Continue;
    if (node.offsetPending != 0 || node.offsetTarget != nullptr) Add(node, node.offsetTarget);
    return WalkStep::SkipChildren;
}

void PendingOffsets::AddRootLinks(PGX_Node& root) {
    for (const uint16_t number : {uint16_t{0x1200}, uint16_t{0x1202}}) {
        PGX_Node* const element = root.FindNode(0x0004, number);
        if (element == nullptr || element->offsetPending != 0) continue;
        PGX_Node* const item = ItemReadFrom(root, element->GetULValue());
        if (item != nullptr) Add(*element, item);
    }
}

void PendingOffsets::Add(PGX_Node& element, PGX_Node* target) {
    links_.push_back({&element, target});
    if (target == nullptr) return;
    positions_.Want(&element);
    positions_.Want(target);
    const bool hasRoom = element.length == sizeof(uint32_t);
    if (element.offsetPending != 0 && !hasRoom) StoreOffset(element, 0);
}

WriteResult PendingOffsets::PatchPending(const Link& link, const Put& put, ByteOrder order) {
    if (link.target == nullptr) return kWritten;
    const std::optional<uint64_t> valuePosition = positions_.Find(link.element);
    // Not part of what was written: there is nothing to correct.
    if (!valuePosition) return kWritten;
    std::optional<uint64_t> position = positions_.Find(link.target);
    if (!position) position = NodePosition(*link.target);
    const std::optional<uint32_t> offset = OffsetOfItem(position);
    if (!offset) return kWriteFailed;
    const uint32_t inTree = OffsetInTree(*link.target, offset).value_or(*offset);
    if (!StoreOffset(*link.element, inTree)) return kOutOfMemory;
    return PutOffset(offset, valuePosition, put, order);
}

WriteResult PendingOffsets::PatchSettled(const Link& link, const Put& put, ByteOrder order) {
    const std::optional<uint64_t> valuePosition = positions_.Find(link.element);
    const std::optional<uint64_t> position = positions_.Find(link.target);
    if (!valuePosition || !position) return kWritten;
    // Whoever has given it another value wanted that.
    const std::optional<uint32_t> inTree = OffsetInTree(*link.target, std::nullopt);
    const bool isValid = link.element->length == sizeof(uint32_t) &&
                         inTree == std::optional<uint32_t>(link.element->GetULValue());
    if (!isValid) return kWritten;
    return PutOffset(OffsetOfItem(position), valuePosition, put, order);
}

WriteResult PendingOffsets::PatchLinks(const Put& put, ByteOrder order) {
    for (const Link& link : links_) {
        const bool isPending = link.element->offsetPending != 0;
        const WriteResult result =
            isPending ? PatchPending(link, put, order) : PatchSettled(link, put, order);
        if (result != kWritten) return result;
        link.element->offsetPending = 0;
    }
    return kWritten;
}

WriteResult PendingOffsets::Patch(platform::FileHandle file, ByteOrder order) {
    if (file == nullptr) return kCannotReopen;
    const Put put = [&](const BytePatch& patch) { return WritePatch(file.get(), patch); };
    const WriteResult result = PatchLinks(put, order);
    return CloseWritten(std::move(file), result);
}

WriteResult PendingOffsets::Collect(ByteOrder order, std::vector<BytePatch>& patches) {
    const Put put = [&](const BytePatch& patch) {
        patches.push_back(patch);
        return true;
    };
    return PatchLinks(put, order);
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
