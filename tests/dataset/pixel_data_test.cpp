// Frames of native Pixel Data.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <numeric>

#include "support/host_order.h"
#include "support/tree.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::Child;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::VrMode;

StreamBuilder Image(Order order, std::string_view vr, uint16_t bitsAllocated) {
    StreamBuilder stream(VrMode::Explicit, order);
    stream.ElementUS(0x0028, 0x0100, bitsAllocated);
    return stream.Element(0x7FE0, 0x0010, vr, "\1\2\3\4\5\6\7\10");
}

Bytes Frame(const StreamBuilder& stream, uint32_t limit, uint32_t index, uint32_t size) {
    OpenedStream opened(stream, limit, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    Bytes frame(size, 0xEE);
    EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->GetPixelData(index, size, frame.data()), 1);
    return frame;
}

Bytes LittleFrame(const StreamBuilder& stream, uint32_t limit, uint32_t index, uint32_t size) {
    OpenedStream opened(stream, limit, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_LITTLE_ENDIAN);
    Bytes frame(size, 0xEE);
    EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->GetPixelData(index, size, frame.data()), 1);
    return frame;
}

TEST(GetPixelData, FrameComesFromMemoryOrFile) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    for (uint32_t limit : {uint32_t{0}, kLoadAll}) {
        const StreamBuilder image = Image(Order::Little, "OW", 16);
        EXPECT_EQ(LittleFrame(image, limit, 0, 4), (Bytes{1, 2, 3, 4}));
        EXPECT_EQ(LittleFrame(image, limit, 1, 4), (Bytes{5, 6, 7, 8}));
    }
}

TEST(GetPixelData, BigEndianWordsAreSwapped) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    EXPECT_EQ(Frame(Image(Order::Big, "OW", 16), kLoadAll, 1, 4), (Bytes{6, 5, 8, 7}));
    EXPECT_EQ(Frame(Image(Order::Big, "OW", 16), 0, 0, 4), (Bytes{2, 1, 4, 3}));
}

TEST(GetPixelData, OtherVrsAreLeftAsTheyAre) {
    EXPECT_EQ(Frame(Image(Order::Big, "OB", 16), kLoadAll, 0, 4), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Frame(Image(Order::Big, "OF", 32), kLoadAll, 0, 4), (Bytes{1, 2, 3, 4}));
}

TEST(GetPixelData, EightBitSamplesInBigEndianWordsAreSwappedUnlessTheyAreOb) {
    EXPECT_EQ(Frame(Image(Order::Big, "OW", 8), kLoadAll, 0, 4), (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(Frame(Image(Order::Big, "UN", 8), kLoadAll, 0, 4), (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(Frame(Image(Order::Big, "OB", 8), kLoadAll, 0, 4), (Bytes{1, 2, 3, 4}));
}

TEST(GetPixelData, BeyondTheValueReadsAsZeros) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    for (uint32_t limit : {uint32_t{0}, kLoadAll}) {
        const StreamBuilder image = Image(Order::Little, "OW", 16);
        EXPECT_EQ(LittleFrame(image, limit, 1, 6), (Bytes{7, 8, 0, 0, 0, 0}));
        EXPECT_EQ(LittleFrame(image, limit, 0xFFFFFFFF, 6), (Bytes(6, 0)));
    }
}

// An undefined length outside encapsulated Pixel Data belongs to a damaged file.
TEST(GetPixelData, UndefinedLengthHasNoFrames) {
    StreamBuilder stream;
    stream.Header(0x7FE0, 0x0010, "OW", 8).Text("abcdefgh");
    OpenedStream opened(stream, 0);
    PGX_Node* pixelData = Child(opened.Root(), 0x7FE0, 0x0010);
    pixelData->length = 0xFFFFFFFF;
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(pixelData->GetPixelData(0, 4, buffer), 0);
    EXPECT_STREQ(buffer, "xxxxxxx");
}

TEST(GetPixelData, IsForNonEmptyElementsOnly) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "").Sequence(0x0008, 0x1140, 0);
    OpenedStream opened(stream);
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(opened->GetPixelData(0, 4, buffer), 0);
    EXPECT_EQ(Child(opened.Root(), 0x0008, 0x0060)->GetPixelData(0, 4, buffer), 0);
    EXPECT_EQ(Child(opened.Root(), 0x0008, 0x1140)->GetPixelData(0, 4, buffer), 0);
    EXPECT_STREQ(buffer, "xxxxxxx");
}

// Encapsulated Pixel Data is little endian by the standard; its items stay so where a writer put it
// into a big-endian data set.
TEST(EncapsulatedInBigEndian, ItemsAreLittleEndian) {
    StreamBuilder items;
    items.Item(4).U32(0).Item(6).Text("abcdef").EndSequence();
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF).Append(items.Data());
    stream.Element(0x7FE1, 0x1001, "LO", "AB");

    OpenedStream opened(stream, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);

    uint32_t length = 0;
    uint32_t offset = 0;
    EXPECT_EQ(Child(opened.Root(), 0x7FE0, 0x0010)->GetEncodedPixelInfo(0, &length, &offset), 1);
    EXPECT_EQ(length, 6u);
    Child(opened.Root(), 0x7FE1, 0x1001);
}

}  // namespace
