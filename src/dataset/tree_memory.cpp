#include "dataset/tree_memory.h"

#include <array>
#include <atomic>
#include <bit>

#include "platform/memory_range.h"

namespace pgkit {

namespace {

constexpr size_t kBlockSize = size_t{2} << 20;
constexpr size_t kBlockCount = kTreeMemoryRange / kBlockSize;

// What a block is used for: 0 when it has no memory, else one more than the cells in use. The cells
// of a block that is still being filled count only when it is closed; until then kFilling stands
// for them.
constexpr uint32_t kWithMemory = 1;
constexpr uint32_t kFilling = uint32_t{1} << 30;
std::array<std::atomic<uint32_t>, kBlockCount> uses{};

class Range {
  public:
    // The first block is aligned to its size, for large pages.
    Range() : addresses_(platform::ReserveAddresses(kTreeMemoryRange + kBlockSize)) {
        if (addresses_ == nullptr) return;
        const auto begin = reinterpret_cast<uintptr_t>(addresses_);
        treeMemoryBegin = (begin + kBlockSize - 1) / kBlockSize * kBlockSize;
    }
    // A host may still hold trees when the module's objects are destroyed.
    ~Range() {
        if (addresses_ == nullptr) return;
        for (const std::atomic<uint32_t>& use : uses)
            if (use != 0) return;
        treeMemoryBegin = kNoTreeMemory;
        platform::ReleaseAddresses(addresses_, kTreeMemoryRange + kBlockSize);
    }
    Range(const Range&) = delete;
    Range& operator=(const Range&) = delete;

  private:
    void* addresses_;
};

size_t IndexOf(const void* cell) {
    return (reinterpret_cast<uintptr_t>(cell) - treeMemoryBegin) / kBlockSize;
}

uint8_t* BlockAt(size_t index) {
    return std::bit_cast<uint8_t*>(treeMemoryBegin + index * kBlockSize);
}

uint8_t* AcquireBlock() {
    static const Range range;
    if (treeMemoryBegin == kNoTreeMemory) return nullptr;
    for (size_t index = 0; index < kBlockCount; ++index) {
        uint32_t unused = 0;
        if (!uses[index].compare_exchange_strong(unused, kWithMemory + kFilling)) continue;
        if (platform::CommitMemory(BlockAt(index), kBlockSize)) return BlockAt(index);
        uses[index] = 0;
        return nullptr;
    }
    return nullptr;
}

void TakeFrom(size_t index, uint32_t count) {
    if (uses[index].fetch_sub(count) != kWithMemory + count) return;
    platform::DecommitMemory(BlockAt(index), kBlockSize);
    uses[index] = 0;
}

}  // namespace

bool TreeMemory::OpenBlock() {
    CloseBlock();
    next_ = AcquireBlock();
    if (next_ != nullptr) {
        room_ = kBlockSize;
    } else {
        fromHeap_ = 0;  // a while later there may be one
    }
    return next_ != nullptr;
}

void TreeMemory::CloseBlock() {
    if (next_ == nullptr) return;
    TakeFrom(IndexOf(next_ - 1), kFilling - cells_);
    next_ = nullptr;
    room_ = 0;
    cells_ = 0;
}

void FreeTreeMemory(void* cell) { TakeFrom(IndexOf(cell), 1); }

}  // namespace pgkit
