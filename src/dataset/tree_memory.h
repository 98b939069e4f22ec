// Memory for the nodes of large trees that are read from a file, and for their short values and
// names: laid out in the order in which they are read, without a block of the heap for each.
//
// Cells are freed one by one, in any order and by any thread; a block goes back to the system with
// its last cell. Cells are told from blocks of the heap by their address, so a tree may be made of
// both, and nodes may leave it and outlive it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

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
    // come from the heap.
    void* Allocate(size_t size) {
        size = (size + kAlignment - 1) / kAlignment * kAlignment;
        if (size > room_) {
            if (size > kLargestCell) return nullptr;
            if (fromHeap_ < kTreeWorthABlock) {
                fromHeap_ += size;
                return nullptr;
            }
            if (!OpenBlock()) return nullptr;
        }
        uint8_t* cell = next_;
        next_ += size;
        room_ -= size;
        ++cells_;
        return cell;
    }

  private:
    static constexpr size_t kAlignment = 8;
    static constexpr size_t kLargestCell = 256;
    static constexpr size_t kTreeWorthABlock = size_t{2} << 20;

    bool OpenBlock();
    void CloseBlock();

    uint8_t* next_ = nullptr;
    size_t room_ = 0;
    uint32_t cells_ = 0;  // of the open block
    size_t fromHeap_ = 0;
};

// Where the range of all blocks begins; while there is none, at an address that nothing has.
inline constexpr size_t kTreeMemoryRange = size_t{16} << 30;
inline constexpr uintptr_t kNoTreeMemory = uintptr_t{1} << 63;
inline std::atomic<uintptr_t> treeMemoryBegin = kNoTreeMemory;

// Whether this is a cell. Null is none.
inline bool IsTreeMemory(const void* address) {
    return reinterpret_cast<uintptr_t>(address) - treeMemoryBegin.load(std::memory_order_relaxed) <
           kTreeMemoryRange;
}

// Frees a cell.
void FreeTreeMemory(void* cell);

}  // namespace pgkit
