#include "directory_links.h"
#include "tags.h"

#include <unordered_map>

namespace pgtool {

namespace {

constexpr pgkit::tag kHeadLinks[] = {tags::kFirstRecord, tags::kLastRecord};
constexpr pgkit::tag kRecordLinks[] = {tags::kNextRecord, tags::kLowerRecord};

using RecordsByOffset = std::unordered_map<uint32_t, PGX_Node*>;

void Tie(const pgkit::element& link, const RecordsByOffset& records) {
    const auto target = records.find(link.number<uint32_t>().value_or(0));
    if (!link || target == records.end()) return;
    link.node()->offsetPending = 1;
    link.node()->offsetTarget = target->second;
}

}  // namespace

void TieDirectoryLinks(const pgkit::data_set& root) {
    const pgkit::element sequence = root.find(tags::kRecordSequence);
    RecordsByOffset records;
    for (const pgkit::item record : sequence.items())
        records.try_emplace(record.node()->fileOffset - kItemHeaderSize, record.node());
    // An offset of 0 leads nowhere.
    records.erase(0);
    for (const pgkit::tag tag : kHeadLinks)
        Tie(root.find(tag), records);
    for (const pgkit::item record : sequence.items()) {
        for (const pgkit::tag tag : kRecordLinks)
            Tie(record.find(tag), records);
    }
}

}  // namespace pgtool
