#include "dataset/tree_memory.h"

#include <bit>
#include <cstdlib>
#include <new>

namespace pgkit {

namespace {

using platform::kMemoryBlockSize;

// What a block is used for: 0 when there is none, else one more than the cells in use. The cells of
// a block that is still being filled count only when it is closed; until then kFilling stands for
// them.
constexpr uint32_t kThere = 1;
constexpr uint32_t kFilling = uint32_t{1} << 30;

// A host may still hold trees when the module's objects are destroyed. Regions without any go back.
class RegionsEnd {
  public:
    RegionsEnd() = default;
    ~RegionsEnd() {
        for (std::atomic<BlockUses*>& region : blockRegions)
            if (region != nullptr && !IsUsed(*region)) std::free(region.exchange(nullptr));
    }
    RegionsEnd(const RegionsEnd&) = delete;
    RegionsEnd& operator=(const RegionsEnd&) = delete;

  private:
    static bool IsUsed(const BlockUses& region) {
        for (const std::atomic<uint32_t>& uses : region)
            if (uses != 0) return true;
        return false;
    }
};

const RegionsEnd regionsEnd;

// Null when there is no memory for the region, or the address lies beyond all of them.
std::atomic<uint32_t>* MakeUsesOfBlockAt(const void* address) {
    const uintptr_t region =
        reinterpret_cast<uintptr_t>(address) / kMemoryBlockSize / kBlocksPerRegion;
    if (region >= kRegionCount) return nullptr;
    if (blockRegions[region] == nullptr) {
        void* const memory = std::malloc(sizeof(BlockUses));
        if (memory == nullptr) return nullptr;
        // Another thread may have been first.
        BlockUses* none = nullptr;
        if (!blockRegions[region].compare_exchange_strong(none, new (memory) BlockUses{})) {
            std::free(memory);
        }
    }
    return UsesOfBlockAt(address);
}

uint8_t* AcquireBlock() {
    void* const block = platform::TakeMemoryBlock();
    if (block == nullptr) return nullptr;
    std::atomic<uint32_t>* const uses = MakeUsesOfBlockAt(block);
    if (uses == nullptr) {
        platform::ReturnMemoryBlock(block);
        return nullptr;
    }
    platform::ForbidAccess(block, kMemoryBlockSize);
    *uses = kThere + kFilling;
    return static_cast<uint8_t*>(block);
}

// The place is given up before the block: as soon as the system has it back, another thread may get
// it.
void TakeFrom(void* cell, uint32_t count) {
    std::atomic<uint32_t>& uses = *UsesOfBlockAt(cell);
    if (uses.fetch_sub(count) != kThere + count) return;
    uses = 0;
    const uintptr_t address = reinterpret_cast<uintptr_t>(cell);
    void* const block = std::bit_cast<void*>(address - address % kMemoryBlockSize);
    platform::AllowAccess(block, kMemoryBlockSize);
    platform::ReturnMemoryBlock(block);
}

}  // namespace

bool TreeMemory::OpenBlock() {
    CloseBlock();
    next_ = AcquireBlock();
    if (next_ != nullptr) {
        room_ = kMemoryBlockSize;
    } else {
        fromHeap_ = 0;  // a while later there may be one
    }
    return next_ != nullptr;
}

void TreeMemory::CloseBlock() {
    if (next_ == nullptr) return;
    TakeFrom(next_ - 1, kFilling - cells_);
    next_ = nullptr;
    room_ = 0;
    cells_ = 0;
}

void FreeTreeMemory(void* cell) {
    platform::ForbidPiece(cell);
    TakeFrom(cell, 1);
}

}  // namespace pgkit
