// Icon items from bitmaps of every kind, also from those that no module should hand out.
#include "dicomdir/create/icon_item.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "base/byte_order.h"
#include "platform/global_block.h"
#include "support/tree.h"

namespace {

using pgkit::ByteOrder;
using pgkit::NodeTree;
using namespace pgkit_test;

using Colour = std::array<uint8_t, 4>;  // blue, green, red, 0

std::vector<Colour> Grays(size_t count) {
    std::vector<Colour> colours;
    for (size_t i = 0; i < count; ++i) {
        const auto gray = static_cast<uint8_t>(255 * i / (count - 1));
        colours.push_back({gray, gray, gray, 0});
    }
    return colours;
}

// A bitmap, by its fields.
struct BitmapBytes {
    uint32_t headerSize = 40;
    uint32_t width = 4;
    uint32_t height = 1;
    uint16_t bitCount = 8;
    uint32_t compression = 0;
    uint32_t coloursUsed = 256;
    std::vector<Colour> colours = Grays(256);
    Bytes rows = {0, 1, 2, 255};

    Bytes Build() const {
        Bytes bytes(std::max<size_t>(headerSize, 40));
        const auto put = [&](size_t offset, uint32_t n) {
            pgkit::PutNumber<uint32_t>(&bytes[offset], n, ByteOrder::Little);
        };
        put(0, headerSize);
        put(4, width);
        put(8, height);
        bytes[12] = 1;
        pgkit::PutNumber<uint16_t>(&bytes[14], bitCount, ByteOrder::Little);
        put(16, compression);
        put(32, coloursUsed);
        for (const Colour& colour : colours)
            bytes.insert(bytes.end(), colour.begin(), colour.end());
        bytes.insert(bytes.end(), rows.begin(), rows.end());
        return bytes;
    }
};

NodeTree ItemOfBytes(const Bytes& bitmap) {
    void* const handle = pgkit::platform::AllocateGlobalBlock(bitmap.size());
    std::copy(bitmap.begin(), bitmap.end(), pgkit::platform::LockGlobalBlock(handle));
    pgkit::platform::UnlockGlobalBlock(handle);
    NodeTree item = pgkit::NewIconItem(handle);
    pgkit::platform::FreeGlobalBlock(handle);
    return item;
}

NodeTree ItemOf(const BitmapBytes& bitmap) { return ItemOfBytes(bitmap.Build()); }

Bytes Pixels(const NodeTree& item) {
    if (item == nullptr) return {};
    const std::string text = TextOf(Child(item.get(), 0x7FE0, 0x0010));
    return Bytes(text.begin(), text.end());
}

TEST(IconItem, HasTheRowsOfTheBitmapFromTheTopDown) {
    const NodeTree item = ItemOf({.width = 3,
                                  .height = 2,
                                  .rows = {1, 2, 3, 0,  //
                                           4, 5, 6, 0}});
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(Child(item.get(), 0x0028, 0x0010)->GetUSValue(), 2);
    EXPECT_EQ(Child(item.get(), 0x0028, 0x0011)->GetUSValue(), 3);
    EXPECT_EQ(Pixels(item), (Bytes{4, 5, 6, 1, 2, 3}));
}

TEST(IconItem, HasTheGraysOfTheColourTable) {
    BitmapBytes bitmap{.rows = {0, 1, 2, 1}};
    bitmap.colours[0] = {200, 200, 200, 0};
    bitmap.colours[1] = {7, 7, 7, 99};
    EXPECT_EQ(Pixels(ItemOf(bitmap)), (Bytes{200, 7, 2, 7}));
}

TEST(IconItem, HasTwoGraysForOneBit) {
    const BitmapBytes bitmap{.width = 10,
                             .bitCount = 1,
                             .coloursUsed = 0,
                             .colours = Grays(2),
                             .rows = {0b10110000, 0b01000000, 0, 0}};
    EXPECT_EQ(Pixels(ItemOf(bitmap)), (Bytes{255, 0, 255, 255, 0, 0, 0, 0, 0, 255}));
}

TEST(IconItem, HasSixteenGraysForFourBits) {
    const BitmapBytes bitmap{.width = 3,
                             .bitCount = 4,
                             .coloursUsed = 0,
                             .colours = Grays(16),
                             .rows = {0x1F, 0x20, 0, 0}};
    EXPECT_EQ(Pixels(ItemOf(bitmap)), (Bytes{17, 255, 34, 0}));
}

TEST(IconItem, Has256GraysForEightBits) {
    EXPECT_EQ(Pixels(ItemOf({.coloursUsed = 0})), (Bytes{0, 1, 2, 255}));
}

TEST(IconItem, CountsTheColoursThatTheHeaderSays) {
    const BitmapBytes few{.coloursUsed = 3, .colours = Grays(3), .rows = {0, 1, 2, 0}};
    EXPECT_EQ(Pixels(ItemOf(few)), (Bytes{0, 127, 255, 0}));
    const BitmapBytes many{.coloursUsed = 300, .colours = Grays(300), .rows = {0, 0, 0, 0}};
    EXPECT_EQ(Pixels(ItemOf(many)), Bytes(4, 0));
}

TEST(IconItem, ShowsPixelsBeyondTheColoursBlack) {
    const BitmapBytes bitmap{.coloursUsed = 2, .colours = Grays(2), .rows = {1, 2, 255, 0}};
    EXPECT_EQ(Pixels(ItemOf(bitmap)), (Bytes{255, 0, 0, 0}));
}

TEST(IconItem, TakesLongerHeaders) {
    EXPECT_EQ(Pixels(ItemOf({.headerSize = 124})), (Bytes{0, 1, 2, 255}));
}

TEST(IconItem, IsNotMadeOfOtherColours) {
    BitmapBytes bitmap;
    bitmap.colours[2] = {2, 2, 3, 0};
    EXPECT_EQ(ItemOf(bitmap), nullptr);
    bitmap.rows = {0, 1, 3, 255};  // a colour that no pixel has does not matter
    EXPECT_NE(ItemOf(bitmap), nullptr);
    EXPECT_EQ(ItemOf({.width = 1, .bitCount = 24, .coloursUsed = 0, .colours = {}}), nullptr);
}

TEST(IconItem, IsNotMadeOfNothing) { EXPECT_EQ(pgkit::NewIconItem(nullptr), nullptr); }

TEST(IconItem, IsNotMadeOfPartOfABitmap) {
    const Bytes whole = BitmapBytes().Build();
    ASSERT_NE(ItemOfBytes(whole), nullptr);
    for (const size_t missing : {size_t{100}, whole.size() - 40, whole.size() - 10, whole.size()})
        EXPECT_EQ(ItemOfBytes(Bytes(whole.begin(), whole.end() - static_cast<int>(missing))),
                  nullptr);
}

TEST(IconItem, IsNotMadeOfAbsurdHeaders) {
    EXPECT_EQ(ItemOf({.headerSize = 12}), nullptr);
    EXPECT_EQ(ItemOf({.width = 0}), nullptr);
    EXPECT_EQ(ItemOf({.height = 0}), nullptr);
    EXPECT_EQ(ItemOf({.width = 0x7FFFFFFF, .height = 0x7FFFFFFF}), nullptr);
    EXPECT_EQ(ItemOf({.width = 65535, .height = 65535}), nullptr);
    EXPECT_EQ(ItemOf({.height = 0xFFFFFFFF}), nullptr);  // the top row first
    EXPECT_EQ(ItemOf({.bitCount = 0}), nullptr);
    EXPECT_EQ(ItemOf({.bitCount = 2}), nullptr);
    EXPECT_EQ(ItemOf({.bitCount = 0xFFFF}), nullptr);
    EXPECT_EQ(ItemOf({.compression = 1}), nullptr);
    EXPECT_EQ(ItemOf({.coloursUsed = 0xFFFFFFFF}), nullptr);
    Bytes header = BitmapBytes().Build();
    std::fill_n(header.begin(), 4, uint8_t{0xFF});
    EXPECT_EQ(ItemOfBytes(header), nullptr);
}

}  // namespace
