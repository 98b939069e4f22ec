// Memory for the nodes of large trees that are read from a file, and for their short values and
// names: laid out in the order in which they are read, without a block of the heap for each.
//
// Cells are freed one by one, in any order and by any thread; a block goes back to the system with
// its last cell. Cells are told from blocks of the heap by their address, so a tree may be made of
// both, and nodes may leave it and outlive it.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/memory_access.h"
#include "platform/memory_block.h"

namespace pgkit {

// Hands out the cells of one tree while it is read. The first two mebibytes are not its business: a
// tree that is not large is not worth a block.
class TreeMemory {
  public:
    TreeMemory() = default;
    ~TreeMemory() { CloseBlock(); }
    TreeMemory(const TreeMemory&) = delete;
    TreeMemory& operator=(const TreeMemory&) = delete;

    // At least one byte, aligned for what consists of numbers and pointers. Null for what is to
    // come from the heap: what is long, and everything while the system has no block to give.
    void* Allocate(size_t size) {
        if (size > kLargestCell) return nullptr;
        const size_t taken =
            (size + platform::kGapBehindPieces + kAlignment - 1) & ~(kAlignment - 1);
        if (taken > room_) {
            if (fromHeap_ < kTreeWorthABlock) {
                fromHeap_ += size;
                return nullptr;
            }
            if (!OpenBlock()) return nullptr;
        }
        uint8_t* cell = next_;
        next_ += taken;
        room_ -= taken;
        ++cells_;
        platform::AllowAccess(cell, size);
        return cell;
    }

  private:
    static constexpr size_t kAlignment = 8;
    static constexpr size_t kLargestCell = 256;
    static constexpr size_t kTreeWorthABlock = size_t{2} << 20;

    [[nodiscard]] bool OpenBlock();
    void CloseBlock();

    uint8_t* next_ = nullptr;
    size_t room_ = 0;
    uint32_t cells_ = 0;  // of the open block
    size_t fromHeap_ = 0;
};

// ---- Where the blocks are -----------------------------------------------------------------------
//
// For each place where a block could be the number of its uses, 0 where there is no block of ours.
// The numbers of a region of addresses come from the heap when the region gets its first block.

// Addresses of programs have 47 bits on both systems; what the system may give above is not used.
inline constexpr int kAddressBits = 47;
inline constexpr size_t kBlocksPerRegion = 8192;
inline constexpr size_t kRegionCount =
    (size_t{1} << kAddressBits) / platform::kMemoryBlockSize / kBlocksPerRegion;

using BlockUses = std::array<std::atomic<uint32_t>, kBlocksPerRegion>;
inline std::array<std::atomic<BlockUses*>, kRegionCount> blockRegions{};

// Null for the place of an address in a region without blocks.
inline std::atomic<uint32_t>* UsesOfBlockAt(const void* address) {
    const uintptr_t place = reinterpret_cast<uintptr_t>(address) / platform::kMemoryBlockSize;
    if (place / kBlocksPerRegion >= kRegionCount) return nullptr;
    BlockUses* const region =
        blockRegions[place / kBlocksPerRegion].load(std::memory_order_acquire);
    return region == nullptr ? nullptr : &(*region)[place % kBlocksPerRegion];
}

// Whether this is a cell. Null is none.
inline bool IsTreeMemory(const void* address) {
    const std::atomic<uint32_t>* const uses = UsesOfBlockAt(address);
    return uses != nullptr && uses->load(std::memory_order_relaxed) != 0;
}

// Frees a cell.
void FreeTreeMemory(void* cell);

}  // namespace pgkit
