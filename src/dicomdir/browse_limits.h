// What one browse may cost, whatever the links say. An honest directory, whose records have one
// parent each, stays far below.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pgkit {

class BrowseLimits {
  public:
    // For a file of that size with so many records, of which the tree and what else the browse
    // begins with takes memory already.
    BrowseLimits(size_t recordCount, uint64_t fileSize, uint64_t memoryInUse);

    // Each takes its share, or refuses when there is not so much left. The first refusal is
    // reported on the standard output; from then on everything is refused.
    //
    // A visit of a record: four for each record that there is, and in any case ten thousand.
    [[nodiscard]] bool TakeVisit();
    // Bytes of the file in records that are visited again: they have to be searched again.
    [[nodiscard]] bool TakeBytesAgain(uint64_t bytes);
    // Memory, as a bound from above: 64 MiB and 60 times the file in all.
    [[nodiscard]] bool TakeMemory(uint64_t bytes);
    // What was taken and proved not to be needed.
    void ReturnMemory(uint64_t bytes) { memoryLeft_ += bytes; }

    bool AreExhausted() const { return areExhausted_; }

  private:
    [[nodiscard]] bool Take(uint64_t& left, uint64_t wanted);

    uint64_t visitsLeft_;
    uint64_t bytesAgainLeft_;
    uint64_t memoryLeft_;
    bool areExhausted_ = false;
};

}  // namespace pgkit
