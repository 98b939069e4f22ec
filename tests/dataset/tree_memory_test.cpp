#include "dataset/tree_memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/threads.h"

namespace {

using pgkit::FreeTreeMemory;
using pgkit::IsTreeMemory;
using pgkit::TreeMemory;
using pgkit::platform::kGapBehindPieces;

constexpr size_t kNodeSize = 120;
constexpr size_t kWorthABlock = size_t{2} << 20;
constexpr size_t kBlockSize = size_t{2} << 20;

// Asks for what comes from the heap at the beginning, so that the next cell comes from a block.
void MakeLarge(TreeMemory& memory) {
    for (size_t asked = 0; asked < kWorthABlock; asked += kNodeSize)
        ASSERT_EQ(memory.Allocate(kNodeSize), nullptr);
}

std::vector<void*> FillTwoBlocks(TreeMemory& memory) {
    std::vector<void*> cells;
    for (size_t used = 0; used < 2 * kBlockSize; used += kNodeSize)
        cells.push_back(memory.Allocate(kNodeSize));
    return cells;
}

TEST(TreeMemory, NeitherNullNorTheHeapIsTreeMemory) {
    const std::vector<char> heap(100);
    EXPECT_FALSE(IsTreeMemory(nullptr));
    EXPECT_FALSE(IsTreeMemory(heap.data()));
}

TEST(TreeMemory, SmallTreesComeFromTheHeap) {
    TreeMemory memory;
    MakeLarge(memory);
}

TEST(LargeTreeMemory, CellsFollowEachOther) {
    TreeMemory memory;
    MakeLarge(memory);
    auto* node = static_cast<char*>(memory.Allocate(kNodeSize));
    auto* value = static_cast<char*>(memory.Allocate(6));
    auto* next = static_cast<char*>(memory.Allocate(kNodeSize));
    EXPECT_TRUE(IsTreeMemory(node));
    EXPECT_EQ(value, node + kNodeSize + kGapBehindPieces);
    EXPECT_EQ(next, value + 8 + kGapBehindPieces);
    for (char* cell : {node, value, next})
        FreeTreeMemory(cell);
}

TEST(LargeTreeMemory, LongValuesComeFromTheHeap) {
    TreeMemory memory;
    MakeLarge(memory);
    EXPECT_EQ(memory.Allocate(257), nullptr);
    void* cell = memory.Allocate(256);
    ASSERT_TRUE(IsTreeMemory(cell));
    FreeTreeMemory(cell);
}

TEST(LargeTreeMemory, CellsOutliveTheTreeTheyWereReadFor) {
    std::vector<void*> cells;
    {
        TreeMemory memory;
        MakeLarge(memory);
        cells = FillTwoBlocks(memory);
    }
    for (void* cell : cells)
        std::memset(cell, 'x', kNodeSize);
    void* kept = cells.back();
    cells.pop_back();
    for (void* cell : cells)
        FreeTreeMemory(cell);
    EXPECT_EQ(static_cast<char*>(kept)[kNodeSize - 1], 'x');
    FreeTreeMemory(kept);
}

// The addresses of a tree that was gone stayed taken, and so did 16 GiB for the first one.
TEST(LargeTreeMemory, BlocksGoBackWithTheirLastCell) {
    void* last = nullptr;
    {
        TreeMemory memory;
        MakeLarge(memory);
        const std::vector<void*> cells = FillTwoBlocks(memory);
        last = cells.back();
        for (void* cell : cells)
            FreeTreeMemory(cell);
        EXPECT_FALSE(IsTreeMemory(cells.front()));
        EXPECT_TRUE(IsTreeMemory(last));  // in the block that is open
    }
    EXPECT_FALSE(IsTreeMemory(last));
}

// A long value was a cell when the open block had room for it.
TEST(LargeTreeMemory, LongValuesComeFromTheHeapWhenABlockIsOpen) {
    TreeMemory memory;
    MakeLarge(memory);
    void* cell = memory.Allocate(8);
    EXPECT_EQ(memory.Allocate(257), nullptr);
    FreeTreeMemory(cell);
}

// The address sanitizer saw nothing of what happens in the memory of large trees.
TEST(LargeTreeMemory, IsWatchedByTheAddressSanitizer) {
    if (!PGKIT_TEST_SANITIZED) GTEST_SKIP() << "there is no address sanitizer";
    TreeMemory memory;
    MakeLarge(memory);
    auto* cell = static_cast<char*>(memory.Allocate(13));
    auto* next = static_cast<char*>(memory.Allocate(8));
    const auto touch = [](char* byte) { *static_cast<volatile char*>(byte) = 'x'; };
    touch(cell + 12);
    EXPECT_DEATH(touch(cell + 13), "use-after-poison");
    FreeTreeMemory(cell);
    EXPECT_DEATH(touch(cell), "use-after-poison");
    EXPECT_DEATH(FreeTreeMemory(cell), "use-after-poison");
    touch(next);
    FreeTreeMemory(next);
}

TEST(LargeTreeMemory, OpenBlockStaysWhenAllItsCellsAreFree) {
    TreeMemory memory;
    MakeLarge(memory);
    auto* cell = static_cast<char*>(memory.Allocate(8));
    FreeTreeMemory(cell);
    void* const next = memory.Allocate(8);
    EXPECT_EQ(next, cell + 8 + kGapBehindPieces);
    FreeTreeMemory(next);
}

TEST(LargeTreeMemory, ThreadsFreeWhatOthersHaveAllocated) {
    std::vector<std::vector<void*>> trees(4);
    pgkit_test::RunOnThreads(trees.size(), [&trees](size_t i) {
        TreeMemory memory;
        for (size_t asked = 0; asked < kWorthABlock; asked += kNodeSize)
            memory.Allocate(kNodeSize);
        trees[i] = FillTwoBlocks(memory);
        for (void* cell : trees[i])
            std::memset(cell, static_cast<int>(i), kNodeSize);
    });
    for (size_t i = 0; i < trees.size(); ++i)
        EXPECT_EQ(*static_cast<char*>(trees[i].front()), static_cast<char>(i));
    pgkit_test::RunOnThreads(trees.size(), [&trees](size_t i) {
        for (size_t cell = i; cell < trees[0].size(); cell += trees.size())
            for (const std::vector<void*>& tree : trees)
                FreeTreeMemory(tree[cell]);
    });
    TreeMemory memory;
    MakeLarge(memory);
    void* cell = memory.Allocate(8);
    EXPECT_TRUE(IsTreeMemory(cell));
    FreeTreeMemory(cell);
}

}  // namespace
