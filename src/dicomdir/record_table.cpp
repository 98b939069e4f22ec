#include "dicomdir/record_table.h"

#include "dataset/node_memory.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

// Offsets lead to the item tag; the parser notes where the first element of the item stands.
constexpr uint32_t kItemHeaderSize = 8;

}  // namespace

RecordTable::RecordTable(PGX_Node* firstItem) {
    if (firstItem == nullptr) return;
    if (firstItem->file != nullptr) fileSize_ = platform::StreamSize(firstItem->file);
    for (PGX_Node* item = firstItem; item != nullptr; item = item->next)
        records_.push_back({item, item->FindNode(0x0004, 0x1400), item->FindNode(0x0004, 0x1420)});
    byPosition_.reserve(records_.size());
    for (RecordNumber number = 0; number < records_.size(); ++number) {
        const uint32_t position = records_[number].item->fileOffset;
        if (position != kUnreadablePosition) byPosition_.try_emplace(position, number);
    }
}

// The sum wraps, as offsets are 32 bits wide.
std::optional<RecordNumber> RecordTable::FindOffset(uint32_t offset) const {
    const auto found = byPosition_.find(offset + kItemHeaderSize);
    if (found == byPosition_.end()) return std::nullopt;
    return found->second;
}

std::optional<RecordNumber> RecordTable::Find(const PGX_Node& item) const {
    return FindOffset(item.fileOffset - kItemHeaderSize);
}

uint64_t RecordTable::Extent(RecordNumber number) const {
    const uint64_t begin = records_[number].item->fileOffset;
    const bool isLast = number + 1 == records_.size();
    const uint64_t end = isLast ? fileSize_ : records_[number + 1].item->fileOffset;
    return end > begin ? end - begin : 0;
}

}  // namespace pgkit
