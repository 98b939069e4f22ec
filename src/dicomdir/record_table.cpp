#include "dicomdir/record_table.h"

#include <algorithm>

#include "codec/part10_format.h"
#include "dataset/node_memory.h"
#include "dicomdir/elements.h"
#include "platform/platform.h"

namespace pgkit {

namespace {

size_t CountFrom(const PGX_Node* item) {
    size_t count = 0;
    for (; item != nullptr; item = item->next)
        ++count;
    return count;
}

}  // namespace

RecordTable::RecordTable(PGX_Node* firstItem) {
    if (firstItem == nullptr) return;
    if (firstItem->file != nullptr) fileSize_ = platform::StreamSize(firstItem->file);
    records_.reserve(CountFrom(firstItem));
    for (PGX_Node* item = firstItem; item != nullptr; item = item->next) {
        records_.push_back({item, FindElement(*item, tags::kNextRecordLink),
                            FindElement(*item, tags::kLowerLevelLink)});
    }
    positions_.reserve(records_.size());
    for (RecordNumber number = 0; number < records_.size(); ++number) {
        const uint32_t position = records_[number].item->fileOffset;
        if (position != kUnreadablePosition) positions_.push_back({position, number});
    }
    if (!std::ranges::is_sorted(positions_, {}, &Position::position)) {
        std::ranges::stable_sort(positions_, {}, &Position::position);
    }
}

// Offsets lead to the item tag; the parser notes where the first element of the item stands. The
// sum wraps, as offsets are 32 bits wide.
std::optional<RecordNumber> RecordTable::FindOffset(uint32_t offset) const {
    const uint32_t position = offset + kItemHeaderSize;
    const auto found = std::ranges::lower_bound(positions_, position, {}, &Position::position);
    if (found == positions_.end() || found->position != position) return std::nullopt;
    return found->number;
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
