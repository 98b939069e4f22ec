#include "platform/memory_range.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

namespace platform = pgkit::platform;

constexpr size_t kPiece = size_t{2} << 20;
constexpr size_t kRange = size_t{16} << 20;

TEST(MemoryRange, IsNotGivenWhereTheAddressSanitizerWouldNotSeeInside) {
    void* const range = platform::ReserveAddresses(kRange);
    EXPECT_EQ(range == nullptr, PGKIT_TEST_SANITIZED);
    if (range != nullptr) platform::ReleaseAddresses(range, kRange);
}

TEST(MemoryRange, GetsZeroedMemoryEachTime) {
    void* const range = platform::ReserveAddresses(kRange);
    if (range == nullptr) GTEST_SKIP() << "the address sanitizer watches";
    uint8_t* const piece = static_cast<uint8_t*>(range) + kPiece;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(platform::CommitMemory(piece, kPiece));
        EXPECT_EQ(std::count(piece, piece + kPiece, uint8_t{0}), static_cast<ptrdiff_t>(kPiece));
        std::fill(piece, piece + kPiece, uint8_t{7});
        platform::DecommitMemory(piece, kPiece);
    }
    platform::ReleaseAddresses(range, kRange);
}

}  // namespace
