#include "platform/memory_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

using pgkit::platform::kMemoryBlockSize;
using pgkit::platform::ReturnMemoryBlock;
using pgkit::platform::TakeMemoryBlock;

TEST(MemoryBlock, IsZeroedAndAlignedToItsSizeEachTime) {
    for (int round = 0; round < 3; ++round) {
        uint8_t* blocks[3];
        for (uint8_t*& block : blocks) {
            block = static_cast<uint8_t*>(TakeMemoryBlock());
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % kMemoryBlockSize, 0u);
            EXPECT_EQ(std::count(block, block + kMemoryBlockSize, uint8_t{0}),
                      static_cast<ptrdiff_t>(kMemoryBlockSize));
            std::fill(block, block + kMemoryBlockSize, uint8_t{7});
        }
        for (uint8_t* const block : blocks)
            ReturnMemoryBlock(block);
    }
}

}  // namespace
