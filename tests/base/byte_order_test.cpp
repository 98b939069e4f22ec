#include "base/byte_order.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using pgkit::ByteOrder;
using Block = std::vector<uint8_t>;

Block Swapped(Block bytes, size_t unit) {
    pgkit::SwapUnits(bytes.data(), bytes.size(), unit);
    return bytes;
}

TEST(ByteOrder, LoadsAndStoresBothOrdersAtAnyAddress) {
    const uint8_t bytes[] = {0xFF, 0x01, 0x02, 0x03, 0x04};
    EXPECT_EQ(pgkit::NumberAt<uint16_t>(bytes + 1, ByteOrder::Little), 0x0201);
    EXPECT_EQ(pgkit::NumberAt<uint16_t>(bytes + 1, ByteOrder::Big), 0x0102);
    EXPECT_EQ(pgkit::NumberAt<uint32_t>(bytes + 1, ByteOrder::Little), 0x04030201u);
    EXPECT_EQ(pgkit::NumberAt<uint32_t>(bytes + 1, ByteOrder::Big), 0x01020304u);

    uint8_t out[5] = {};
    pgkit::PutNumber(out + 1, uint32_t{0x01020304}, ByteOrder::Big);
    EXPECT_EQ(Block(out, out + 5), (Block{0, 1, 2, 3, 4}));
    pgkit::PutNumber(out + 1, uint16_t{0x0102}, ByteOrder::Little);
    EXPECT_EQ(Block(out, out + 5), (Block{0, 2, 1, 3, 4}));
}

TEST(ByteOrder, SwapsWholeUnitsAndLeavesTheRest) {
    EXPECT_EQ(Swapped({1, 2, 3, 4, 5}, 2), (Block{2, 1, 4, 3, 5}));
    EXPECT_EQ(Swapped({1, 2, 3, 4, 5, 6}, 4), (Block{4, 3, 2, 1, 5, 6}));
    EXPECT_EQ(Swapped({1, 2, 3, 4, 5, 6, 7, 8, 9}, 8), (Block{8, 7, 6, 5, 4, 3, 2, 1, 9}));
    EXPECT_EQ(Swapped({1}, 2), (Block{1}));
    EXPECT_EQ(Swapped({}, 4), (Block{}));
}

TEST(ByteOrder, UnitOneIsNoSwap) { EXPECT_EQ(Swapped({1, 2, 3}, 1), (Block{1, 2, 3})); }

}  // namespace
