#include "platform/global_block.h"

#include <gtest/gtest.h>

namespace {

namespace platform = pgkit::platform;

TEST(GlobalBlock, IsZeroedAndKeepsItsBytes) {
    void* handle = platform::AllocateGlobalBlock(3);
    ASSERT_NE(handle, nullptr);
    uint8_t* bytes = platform::LockGlobalBlock(handle);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(bytes[0] | bytes[1] | bytes[2], 0);
    bytes[2] = 7;
    platform::UnlockGlobalBlock(handle);
    bytes = platform::LockGlobalBlock(handle);
    EXPECT_EQ(bytes[2], 7);
    platform::UnlockGlobalBlock(handle);
    platform::FreeGlobalBlock(handle);
}

TEST(GlobalBlock, KnowsItsSize) {
    void* handle = platform::AllocateGlobalBlock(1000);
    EXPECT_GE(platform::GlobalBlockSize(handle), 1000u);
    EXPECT_LT(platform::GlobalBlockSize(handle), 1100u);
    platform::FreeGlobalBlock(handle);
}

TEST(GlobalBlock, OfSizeZeroExists) {
    void* handle = platform::AllocateGlobalBlock(0);
    EXPECT_NE(handle, nullptr);
    platform::FreeGlobalBlock(handle);
}

TEST(GlobalBlock, NullIsTolerated) {
    EXPECT_EQ(platform::LockGlobalBlock(nullptr), nullptr);
    EXPECT_EQ(platform::GlobalBlockSize(nullptr), 0u);
    platform::UnlockGlobalBlock(nullptr);
    platform::FreeGlobalBlock(nullptr);
}

}  // namespace
