#include "dicomdir/browse_guard.h"

namespace pgkit {

namespace {

// Visiting a large record again is dearer than visiting a small one: what exceeds the size of an
// ordinary record counts each time.
constexpr uint64_t kOrdinarySize = 4096;

}  // namespace

BrowseGuard::BrowseGuard(const RecordTable& records, BrowseLimits& limits)
    : records_(records), limits_(limits), visits_(records.Count()) {}

void BrowseGuard::BeginWalk(HierarchyLevel level) {
    current_[static_cast<size_t>(level)] = ++lastWalk_;
}

bool BrowseGuard::Admit(HierarchyLevel level, RecordNumber number) {
    const size_t index = static_cast<size_t>(level);
    Visits& visits = visits_[number];
    if (visits[index] == current_[index]) return false;
    if (!limits_.TakeVisit()) return false;
    if (visits != Visits{}) {
        const uint64_t extent = records_.Extent(number);
        if (extent > kOrdinarySize && !limits_.TakeBytesAgain(extent - kOrdinarySize)) return false;
    }
    visits[index] = current_[index];
    return true;
}

}  // namespace pgkit
