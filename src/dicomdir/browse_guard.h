// Keeps a browse finite and in proportion to its DICOMDIR, whatever the links say: chains that run
// in circles end, and records that many parents share are handled a bounded number of times.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dicomdir/browse_limits.h"
#include "dicomdir/record_table.h"

namespace pgkit {

enum class HierarchyLevel : size_t { Patient, Study, Series, Leaf };
constexpr size_t kHierarchyLevels = 4;

class BrowseGuard {
  public:
    BrowseGuard(const RecordTable& records, BrowseLimits& limits);

    // What it takes itself for each record.
    static constexpr size_t kMemoryPerRecord = sizeof(uint32_t) * kHierarchyLevels;

    // A walk along a chain begins. On one level no walk begins within another.
    void BeginWalk(HierarchyLevel level);

    // Whether the walk of this level may handle the record. False ends the chain there: the record
    // was handled in this walk already, or the browse has used up what it may handle.
    [[nodiscard]] bool Admit(HierarchyLevel level, RecordNumber number);

  private:
    using WalkNumber = uint32_t;  // 0 is no walk

    // The walks that handled a record last, by level.
    using Visits = std::array<WalkNumber, kHierarchyLevels>;

    const RecordTable& records_;
    BrowseLimits& limits_;
    std::vector<Visits> visits_;
    Visits current_{};
    WalkNumber lastWalk_ = 0;
};

}  // namespace pgkit
