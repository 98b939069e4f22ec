#include "dicomdir/browse_limits.h"

#include <algorithm>

#include "base/diagnostics.h"

namespace pgkit {

namespace {

constexpr uint64_t kVisitsPerRecord = 4;
constexpr uint64_t kAlwaysVisits = 10'000;

constexpr uint64_t kMemoryPerByte = 60;
constexpr uint64_t kAlwaysMemory = uint64_t{64} << 20;
// Kept back for what comes and goes while one record is handled.
constexpr uint64_t kWorkingMemory = uint64_t{2} << 20;

// In the same proportion as the visits.
constexpr uint64_t kBytesAgainPerByte = kVisitsPerRecord;
constexpr uint64_t kAlwaysBytesAgain = uint64_t{64} << 20;

uint64_t MemoryLeft(uint64_t fileSize, uint64_t inUse) {
    const uint64_t allowed = kAlwaysMemory - kWorkingMemory + kMemoryPerByte * fileSize;
    return allowed > inUse ? allowed - inUse : 0;
}

}  // namespace

BrowseLimits::BrowseLimits(size_t recordCount, uint64_t fileSize, uint64_t memoryInUse)
    : visitsLeft_(std::max(kAlwaysVisits, kVisitsPerRecord * recordCount)),
      bytesAgainLeft_(kAlwaysBytesAgain + kBytesAgainPerByte * fileSize),
      memoryLeft_(MemoryLeft(fileSize, memoryInUse)) {}

bool BrowseLimits::TakeVisit() { return Take(visitsLeft_, 1); }

bool BrowseLimits::TakeBytesAgain(uint64_t bytes) { return Take(bytesAgainLeft_, bytes); }

bool BrowseLimits::TakeMemory(uint64_t bytes) { return Take(memoryLeft_, bytes); }

bool BrowseLimits::Take(uint64_t& left, uint64_t wanted) {
    if (areExhausted_) return false;
    if (wanted <= left) {
        left -= wanted;
        return true;
    }
    areExhausted_ = true;
    PrintOut("DICOMDIR parsing error: too many shared records\n");
    return false;
}

}  // namespace pgkit
