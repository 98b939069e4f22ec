#include "dataset/tree_memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/threads.h"

namespace {

using pgkit::FreeTreeMemory;
using pgkit::IsTreeMemory;
using pgkit::TreeMemory;

constexpr size_t kNodeSize = 120;
constexpr size_t kWorthABlock = size_t{2} << 20;
constexpr size_t kBlockSize = size_t{2} << 20;

// Asks for what comes from the heap at the beginning, so that the next cell comes from a block.
void MakeLarge(TreeMemory& memory) {
    for (size_t asked = 0; asked < kWorthABlock; asked += kNodeSize)
        ASSERT_EQ(memory.Allocate(kNodeSize), nullptr);
}

class LargeTreeMemory : public testing::Test {
  protected:
    void SetUp() override {
        TreeMemory memory;
        MakeLarge(memory);
        void* cell = memory.Allocate(1);
        if (cell == nullptr) GTEST_SKIP() << "everything comes from the heap here";
        FreeTreeMemory(cell);
    }

    static std::vector<void*> FillTwoBlocks(TreeMemory& memory) {
        std::vector<void*> cells;
        for (size_t used = 0; used < 2 * kBlockSize; used += kNodeSize)
            cells.push_back(memory.Allocate(kNodeSize));
        return cells;
    }
};

TEST(TreeMemory, NeitherNullNorTheHeapIsTreeMemory) {
    const std::vector<char> heap(100);
    EXPECT_FALSE(IsTreeMemory(nullptr));
    EXPECT_FALSE(IsTreeMemory(heap.data()));
}

TEST(TreeMemory, SmallTreesComeFromTheHeap) {
    TreeMemory memory;
    MakeLarge(memory);
}

TEST_F(LargeTreeMemory, CellsFollowEachOther) {
    TreeMemory memory;
    MakeLarge(memory);
    auto* node = static_cast<char*>(memory.Allocate(kNodeSize));
    auto* value = static_cast<char*>(memory.Allocate(6));
    auto* next = static_cast<char*>(memory.Allocate(kNodeSize));
    EXPECT_TRUE(IsTreeMemory(node));
    EXPECT_EQ(value, node + kNodeSize);
    EXPECT_EQ(next, value + 8);
    for (char* cell : {node, value, next})
        FreeTreeMemory(cell);
}

TEST_F(LargeTreeMemory, LongValuesComeFromTheHeap) {
    TreeMemory memory;
    MakeLarge(memory);
    EXPECT_EQ(memory.Allocate(257), nullptr);
    void* cell = memory.Allocate(256);
    ASSERT_TRUE(IsTreeMemory(cell));
    FreeTreeMemory(cell);
}

TEST_F(LargeTreeMemory, CellsOutliveTheTreeTheyWereReadFor) {
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

TEST_F(LargeTreeMemory, BlocksAreUsedAgainWhenTheirLastCellIsFree) {
    void* first = nullptr;
    for (int tree = 0; tree < 3; ++tree) {
        TreeMemory memory;
        MakeLarge(memory);
        const std::vector<void*> cells = FillTwoBlocks(memory);
        if (first == nullptr) first = cells.front();
        EXPECT_EQ(cells.front(), first);
        for (void* cell : cells)
            FreeTreeMemory(cell);
    }
}

TEST_F(LargeTreeMemory, OpenBlockStaysWhenAllItsCellsAreFree) {
    TreeMemory memory;
    MakeLarge(memory);
    auto* cell = static_cast<char*>(memory.Allocate(8));
    FreeTreeMemory(cell);
    EXPECT_EQ(memory.Allocate(8), cell + 8);
    FreeTreeMemory(cell + 8);
}

TEST_F(LargeTreeMemory, ThreadsFreeWhatOthersHaveAllocated) {
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
