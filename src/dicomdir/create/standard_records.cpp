// The functions of standard_records.h.
#include "pgkit/standard_records.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <vector>

#include "base/firewall.h"
#include "base/text.h"
#include "dicomdir/create/standard_kinds.h"
#include "dicomdir/elements.h"
#include "dicomdir/record_links.h"

namespace pgkit {

namespace {

size_t GiveRecordType(std::string_view sopClass, char* buffer, size_t size) {
    const StandardKind* const kind = StandardKindOf(sopClass);
    return CopyBounded(buffer, size, kind == nullptr ? std::string_view() : kind->recordType);
}

bool IsRootRecordType(std::string_view recordType) {
    const StandardKind* const kind = StandardKindOfRecord(recordType);
    return kind != nullptr && kind->isAtRoot;
}

int32_t GiveKeys(std::string_view recordType, uint32_t* tags, uint32_t count) {
    const StandardKind* const kind = StandardKindOfRecord(recordType);
    if (kind == nullptr) return -1;
    uint32_t keys = 0;
    const auto give = [&](Tag tag) {
        if (keys < count) tags[keys] = TagKey(tag.group, tag.element);
        ++keys;
    };
    if (kind->isNumbered) give(tags::kInstanceNumber);
    for (const StandardKey& key : kind->keys)
        if (key.type == KeyType::Type1) give(key.tag);
    return static_cast<int32_t>(keys);
}

// A record of the chain at the root, and what leads to it.
struct RootRecord {
    PGX_Node* link;
    RecordNumber number;
};

// The records at the root, as far as their chain can be followed.
std::vector<RootRecord> ReadRoot(PGX_Node& dataSet, const RecordTable& records) {
    std::vector<RootRecord> root;
    std::vector<bool> isKnown(records.Count());
    PGX_Node* link = FindElement(dataSet, tags::kFirstRootRecord);
    for (;;) {
        const Link found = FollowLink(records, link);
        if (found.kind != Link::Kind::Found || isKnown[found.target]) return root;
        isKnown[found.target] = true;
        root.push_back({link, found.target});
        link = records[found.target].nextRecord;
    }
}

bool BelongsToNoPatient(PGX_Node& record) {
    char type[65];
    ReadTrimmedText(record, tags::kRecordType, type);
    return IsRootRecordType(type);
}

// Makes one link lead where another one does; to no record for null.
void LeadOn(PGX_Node& link, PGX_Node* next) {
    const uint32_t offset = next == nullptr ? 0 : next->GetULValue();
    const bool isMarked = next != nullptr && next->offsetPending != 0;
    if (link.SetValue(&offset, sizeof offset) == 0) throw std::bad_alloc();
    // A link to no record is marked as one: a browse need not look for it.
    link.offsetPending = isMarked || offset == 0 ? 1 : 0;
    link.offsetTarget = isMarked ? next->offsetTarget : nullptr;
}

uint32_t TakeRootRecords(PGX_Node& dataSet, PGX_Node** items, uint32_t room) {
    const PGX_Node* const sequence = FindElement(dataSet, tags::kRecordSequence);
    const RecordTable records(sequence == nullptr ? nullptr : sequence->first);
    const std::vector<RootRecord> root = ReadRoot(dataSet, records);
    const auto isTaken = [&](const RootRecord& record) {
        return BelongsToNoPatient(*records[record.number].item);
    };
    const auto count = static_cast<uint32_t>(std::ranges::count_if(root, isTaken));
    if (count > room) return count;
    PGX_Node* link = nullptr;  // that of the last record that stays
    for (const RootRecord& record : root) {
        if (link == nullptr) link = record.link;
        const DirectoryRecord& found = records[record.number];
        if (isTaken(record)) {
            *items++ = found.item;
            LeadOn(*link, found.nextRecord);
        } else {
            link = found.nextRecord;
        }
    }
    return count;
}

}  // namespace

}  // namespace pgkit

using pgkit::Guarded;
using pgkit::OrEmpty;

size_t pgxRecordTypeOf(const char* sopClassUid, char* buffer, size_t size) {
    return Guarded([=] { return pgkit::GiveRecordType(OrEmpty(sopClassUid), buffer, size); });
}

int32_t pgxIsRootRecordType(const char* recordType) {
    return Guarded([=] { return pgkit::IsRootRecordType(OrEmpty(recordType)) ? 1 : 0; });
}

int32_t pgxRecordTypeKeys(const char* recordType, uint32_t* tags, uint32_t count) {
    return Guarded([=] { return pgkit::GiveKeys(OrEmpty(recordType), tags, count); }, -1);
}

uint32_t pgxTakeRootRecords(PGX_DicomDir* directory, PGX_Node** records, uint32_t count) {
    return Guarded([=]() -> uint32_t {
        if (directory == nullptr || directory->dataSet == nullptr) return 0;
        return pgkit::TakeRootRecords(*directory->dataSet, records, count);
    });
}
