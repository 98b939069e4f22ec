#include "dicomdir/browse_guard.h"

#include <algorithm>

namespace pgkit {

namespace {

// Sound directories share no records, but those that do are browsed as well, within these bounds:
// so many records for each one that there is, in any case so many, and at most so many more.
constexpr size_t kRecordsPerRecord = 100;
constexpr size_t kAlwaysRecords = 10'000;
constexpr size_t kAdditionalRecords = 1'000'000;

// Sharing a large record is dearer than sharing a small one: what exceeds the size of an ordinary
// record counts each time when it is handled again.
constexpr uint64_t kOrdinarySize = 4096;
constexpr uint64_t kSharedBytes = 64 << 20;

size_t RecordLimit(size_t count) {
    return std::max(kAlwaysRecords,
                    std::min(kRecordsPerRecord * count, count + kAdditionalRecords));
}

}  // namespace

BrowseGuard::BrowseGuard(const RecordTable& records)
    : records_(records),
      visits_(records.Count()),
      recordsLeft_(RecordLimit(records.Count())),
      bytesLeft_(kSharedBytes) {}

void BrowseGuard::BeginWalk(RecordLevel level) {
    current_[static_cast<size_t>(level)] = ++lastWalk_;
}

bool BrowseGuard::Admit(RecordLevel level, RecordNumber number) {
    const size_t index = static_cast<size_t>(level);
    Visits& visits = visits_[number];
    if (recordsLeft_ == 0 || visits[index] == current_[index]) return false;
    if (visits != Visits{}) {
        const uint64_t extent = records_.Extent(number);
        const uint64_t charge = extent > kOrdinarySize ? extent - kOrdinarySize : 0;
        if (charge > bytesLeft_) return false;
        bytesLeft_ -= charge;
    }
    --recordsLeft_;
    visits[index] = current_[index];
    return true;
}

}  // namespace pgkit
