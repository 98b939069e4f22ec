#include "dicomdir/record_links.h"

#include "base/diagnostics.h"

namespace pgkit {

namespace {

void Unmark(PGX_Node* offsetElement) {
    if (offsetElement == nullptr) return;
    offsetElement->offsetPending = 0;
    offsetElement->offsetTarget = nullptr;
}

void Mark(PGX_Node* offsetElement, PGX_Node* target) {
    if (offsetElement == nullptr) return;
    offsetElement->offsetPending = 1;
    offsetElement->offsetTarget = target;
}

uint32_t OffsetOf(PGX_Node* offsetElement) {
    return offsetElement == nullptr ? 0 : offsetElement->GetULValue();
}

// Targets are looked for among the records from a number on.
bool ResolveLink(const RecordTable& records, PGX_Node* offsetElement, uint32_t offset,
                 RecordNumber from) {
    if (offset == 0) {
        Mark(offsetElement, nullptr);
        return true;
    }
    const std::optional<RecordNumber> target = records.FindOffset(offset);
    if (!target || *target < from) return false;
    Mark(offsetElement, records[*target].item);
    return true;
}

// A sound directory needs no look behind a record unless a link points back.
bool ResolveRecord(const RecordTable& records, RecordNumber number) {
    const DirectoryRecord& record = records[number];
    const uint32_t next = OffsetOf(record.nextRecord);
    const uint32_t lower = OffsetOf(record.lowerLevel);
    const auto pointsBack = [&](uint32_t offset) {
        return offset != 0 && offset < record.item->fileOffset;
    };
    const RecordNumber from = pointsBack(next) || pointsBack(lower) ? 0 : number + 1;
    const bool nextResolved = ResolveLink(records, record.nextRecord, next, from);
    return ResolveLink(records, record.lowerLevel, lower, from) && nextResolved;
}

}  // namespace

bool ResolveLinks(const RecordTable& records) {
    bool isResolving = true;
    for (RecordNumber number = 0; number < records.Count(); ++number) {
        Unmark(records[number].nextRecord);
        Unmark(records[number].lowerLevel);
        if (!isResolving || ResolveRecord(records, number)) continue;
        PrintOut("DICOMDIR resolve error : Item not found \n");
        isResolving = false;
    }
    return isResolving;
}

Link FollowLink(const RecordTable& records, PGX_Node* offsetElement) {
    if (offsetElement == nullptr) return {};
    std::optional<RecordNumber> target;
    if (offsetElement->offsetPending != 0) {
        if (offsetElement->offsetTarget == nullptr) return {};
        target = records.Find(*offsetElement->offsetTarget);
    } else {
        const uint32_t offset = OffsetOf(offsetElement);
        if (offset == 0) return {};
        target = records.FindOffset(offset);
        if (!target) return {.kind = Link::Kind::Lost, .offset = offset};
    }
    if (!target) return {};
    return {.kind = Link::Kind::Found, .target = *target};
}

}  // namespace pgkit
