#include "dicomdir/icon_bitmap.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "base/byte_order.h"
#include "platform/global_block.h"
#include "support/host_order.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using pgkit::ByteOrder;
using pgkit_test::Bytes;
using pgkit_test::DataSet;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::VrMode;

// A data set with the elements that describe pixels.
struct Icon {
    std::string photometricInterpretation = "MONOCHROME2";
    uint16_t rows = 1;
    uint16_t columns = 4;
    uint16_t bitsAllocated = 8;
    uint16_t highBit = 7;
    Bytes pixels;
    uint16_t planarConfiguration = 0;

    DataSet Build() const {
        DataSet dataSet(pgAllocateDataSetNode());
        const auto number = [&](uint16_t element, uint16_t value) {
            dataSet->InsertNode(0x0028, element, &value, sizeof value);
        };
        dataSet->InsertNode(0x0028, 0x0004, photometricInterpretation.data(),
                            static_cast<uint32_t>(photometricInterpretation.size()));
        if (planarConfiguration != 0) number(0x0006, planarConfiguration);
        number(0x0010, rows);
        number(0x0011, columns);
        number(0x0100, bitsAllocated);
        number(0x0102, highBit);
        dataSet->InsertNode(0x7FE0, 0x0010, pixels.data(), static_cast<uint32_t>(pixels.size()));
        return dataSet;
    }
};

// A bitmap as a module that receives the handle reads it.
class Bitmap {
  public:
    explicit Bitmap(PGX_Node& dataSet) : handle_(pgkit::NewIconBitmap(dataSet)) {
        bytes_ = pgkit::platform::LockGlobalBlock(handle_.get());
    }
    explicit Bitmap(const Icon& icon) : Bitmap(*icon.Build()) {}
    ~Bitmap() { pgkit::platform::UnlockGlobalBlock(handle_.get()); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    bool Exists() const { return handle_ != nullptr; }
    uint32_t U32(size_t offset) const {
        return pgkit::NumberAt<uint32_t>(bytes_ + offset, ByteOrder::Little);
    }
    uint16_t U16(size_t offset) const {
        return pgkit::NumberAt<uint16_t>(bytes_ + offset, ByteOrder::Little);
    }
    Bytes Part(size_t offset, size_t size) const {
        return Bytes(bytes_ + offset, bytes_ + offset + size);
    }
    // All rows, as they are stored.
    Bytes Rows() const { return Part(40 + 4 * U32(32), U32(20)); }

  private:
    pgkit::BitmapHandle handle_;
    uint8_t* bytes_;
};

TEST(GrayIcon, HasAnEightBitHeader) {
    const Bitmap bitmap(Icon{.rows = 2, .columns = 4, .pixels = Bytes(8)});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.U32(0), 40u);    // biSize
    EXPECT_EQ(bitmap.U32(4), 4u);     // biWidth
    EXPECT_EQ(bitmap.U32(8), 2u);     // biHeight
    EXPECT_EQ(bitmap.U16(12), 1u);    // biPlanes
    EXPECT_EQ(bitmap.U16(14), 8u);    // biBitCount
    EXPECT_EQ(bitmap.U32(16), 0u);    // biCompression
    EXPECT_EQ(bitmap.U32(20), 8u);    // biSizeImage
    EXPECT_EQ(bitmap.U32(24), 0u);    // biXPelsPerMeter
    EXPECT_EQ(bitmap.U32(28), 0u);    // biYPelsPerMeter
    EXPECT_EQ(bitmap.U32(32), 256u);  // biClrUsed
    EXPECT_EQ(bitmap.U32(36), 0u);    // biClrImportant
}

TEST(GrayIcon, HasATableOf256Grays) {
    const Bitmap bitmap(Icon{.pixels = Bytes(4)});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Part(40, 8), (Bytes{0, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(bitmap.Part(40 + 4 * 255, 4), (Bytes{255, 255, 255, 0}));
}

TEST(GrayIcon, Monochrome1HasTheTableInverted) {
    const Bitmap bitmap(
        Icon{.photometricInterpretation = "MONOCHROME1", .pixels = {10, 20, 30, 40}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Part(40, 8), (Bytes{255, 255, 255, 0, 254, 254, 254, 0}));
    EXPECT_EQ(bitmap.Part(40 + 4 * 255, 4), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(bitmap.Rows(), (Bytes{10, 20, 30, 40}));
}

TEST(GrayIcon, RowsRunFromTheBottomUp) {
    const Bitmap bitmap(Icon{.rows = 3,
                             .columns = 4,
                             .pixels = {1, 2, 3, 4,  //
                                        5, 6, 7, 8,  //
                                        9, 10, 11, 12}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Rows(), (Bytes{9, 10, 11, 12, 5, 6, 7, 8, 1, 2, 3, 4}));
}

TEST(GrayIcon, RowsAreFilledUpToFourBytes) {
    const Bytes expected[] = {
        {4, 0, 0, 0, 1, 0, 0, 0},
        {4, 5, 0, 0, 1, 2, 0, 0},
        {4, 5, 6, 0, 1, 2, 3, 0},
    };
    const Bytes pixels[] = {{1, 4}, {1, 2, 4, 5}, {1, 2, 3, 4, 5, 6}};
    for (uint16_t columns = 1; columns <= 3; ++columns) {
        const Bitmap bitmap(Icon{.rows = 2, .columns = columns, .pixels = pixels[columns - 1]});
        ASSERT_TRUE(bitmap.Exists());
        EXPECT_EQ(bitmap.U32(4), columns);
        EXPECT_EQ(bitmap.U32(20), 8u);
        EXPECT_EQ(bitmap.Rows(), expected[columns - 1]);
    }
}

TEST(GrayIcon, WideSamplesOfMonochrome1KeepTheirValuesAndInvertTheTable) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Bitmap bitmap(Icon{.photometricInterpretation = "MONOCHROME1",
                             .columns = 3,
                             .bitsAllocated = 16,
                             .highBit = 11,
                             .pixels = {0xF0, 0x0F, 0x00, 0x08, 0x00, 0x00}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Part(40, 4), (Bytes{255, 255, 255, 0}));
    EXPECT_EQ(bitmap.Rows(), (Bytes{0xFF, 0x80, 0, 0}));
}

TEST(GrayIcon, PhotometricInterpretationIsToldByItsBeginning) {
    for (const char* text : {"MONOCHROME2 ", "MONOCHROME", "MONOCHROME3"}) {
        const Bitmap bitmap(Icon{.photometricInterpretation = text, .pixels = {1, 2, 3, 4}});
        ASSERT_TRUE(bitmap.Exists()) << text;
        EXPECT_EQ(bitmap.Part(40 + 4, 4), (Bytes{1, 1, 1, 0})) << text;
    }
    const Bitmap inverted(
        Icon{.photometricInterpretation = "MONOCHROME1X", .pixels = {1, 2, 3, 4}});
    ASSERT_TRUE(inverted.Exists());
    EXPECT_EQ(inverted.Part(40, 4), (Bytes{255, 255, 255, 0}));
}

TEST(GrayIcon, TheHighBitBecomesBit7OfWideSamples) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Icon twelveBits{
        .columns = 2, .bitsAllocated = 16, .highBit = 11, .pixels = {0xF0, 0x0F, 0x34, 0x02}};
    EXPECT_EQ(Bitmap(twelveBits).Rows(), (Bytes{0xFF, 0x23, 0, 0}));
    const Icon sixteenBits{
        .columns = 2, .bitsAllocated = 16, .highBit = 15, .pixels = {0x34, 0x12, 0xFF, 0xAB}};
    EXPECT_EQ(Bitmap(sixteenBits).Rows(), (Bytes{0x12, 0xAB, 0, 0}));
}

TEST(GrayIcon, TheHighBitBecomesBit7OfSamplesWithFewerBits) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Icon fourBits{.columns = 4, .highBit = 3, .pixels = {0x0, 0x1, 0x8, 0xF}};
    EXPECT_EQ(Bitmap(fourBits).Rows(), (Bytes{0x00, 0x10, 0x80, 0xF0}));
    const Icon inWords{
        .columns = 2, .bitsAllocated = 16, .highBit = 5, .pixels = {0x3F, 0x00, 0x20, 0x00}};
    EXPECT_EQ(Bitmap(inWords).Rows(), (Bytes{0xFC, 0x80, 0, 0}));
}

TEST(GrayIcon, BitsAboveTheHighBitAreDropped) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Icon overlayBits{
        .columns = 2, .bitsAllocated = 16, .highBit = 11, .pixels = {0x00, 0xF8, 0xF0, 0xFF}};
    EXPECT_EQ(Bitmap(overlayBits).Rows(), (Bytes{0x80, 0xFF, 0, 0}));
}

TEST(GrayIcon, SamplesMayHave32Bits) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Icon icon{
        .columns = 1, .bitsAllocated = 32, .highBit = 31, .pixels = {0x11, 0x22, 0x33, 0x44}};
    EXPECT_EQ(Bitmap(icon).Rows(), (Bytes{0x44, 0, 0, 0}));
}

TEST(GrayIcon, BitsAllocatedAndHighBitDefaultToWholeBytes) {
    const DataSet dataSet = Icon{.pixels = {1, 2, 3, 4}}.Build();
    dataSet->RemoveNode(dataSet->FindNode(0x0028, 0x0102));
    EXPECT_EQ(Bitmap(*dataSet).Rows(), (Bytes{1, 2, 3, 4}));
    dataSet->RemoveNode(dataSet->FindNode(0x0028, 0x0100));
    EXPECT_EQ(Bitmap(*dataSet).Rows(), (Bytes{1, 2, 3, 4}));
}

TEST(GrayIcon, TakesTheFirstOfSeveralFrames) {
    const Bitmap bitmap(Icon{.columns = 4, .pixels = {1, 2, 3, 4, 5, 6, 7, 8}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Rows(), (Bytes{1, 2, 3, 4}));
}

TEST(RgbIcon, HasA24BitHeaderAndNoTable) {
    const Bitmap bitmap(Icon{
        .photometricInterpretation = "RGB", .rows = 1, .columns = 2, .pixels = {1, 2, 3, 4, 5, 6}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.U32(4), 2u);
    EXPECT_EQ(bitmap.U32(8), 1u);
    EXPECT_EQ(bitmap.U16(14), 24u);
    EXPECT_EQ(bitmap.U32(20), 8u);
    EXPECT_EQ(bitmap.U32(32), 0u);
}

TEST(RgbIcon, PixelsAreBlueGreenRedFromTheBottomUp) {
    const Bitmap bitmap(Icon{
        .photometricInterpretation = "RGB", .rows = 2, .columns = 1, .pixels = {1, 2, 3, 4, 5, 6}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Rows(), (Bytes{6, 5, 4, 0, 3, 2, 1, 0}));
}

TEST(RgbIcon, RowsAreFilledUpToFourBytes) {
    const Bitmap bitmap(Icon{.photometricInterpretation = "RGB",
                             .rows = 2,
                             .columns = 3,
                             .pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9,  //
                                        11, 12, 13, 14, 15, 16, 17, 18, 19}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.U32(20), 24u);
    EXPECT_EQ(bitmap.Rows(), (Bytes{13, 12, 11, 16, 15, 14, 19, 18, 17, 0, 0, 0,  //
                                    3,  2,  1,  6,  5,  4,  9,  8,  7,  0, 0, 0}));
}

TEST(RgbIcon, SamplesMayLieInPlanes) {
    const Bitmap bitmap(Icon{.photometricInterpretation = "RGB",
                             .rows = 1,
                             .columns = 2,
                             .pixels = {1, 2, 11, 12, 21, 22},
                             .planarConfiguration = 1});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Rows(), (Bytes{21, 11, 1, 22, 12, 2, 0, 0}));
}

TEST(RgbIcon, SamplesMayHave16Bits) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    const Bitmap bitmap(Icon{.photometricInterpretation = "RGB",
                             .rows = 1,
                             .columns = 1,
                             .bitsAllocated = 16,
                             .highBit = 15,
                             .pixels = {0, 1, 0, 2, 0, 3}});
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Rows(), (Bytes{3, 2, 1, 0}));
}

TEST(NoIcon, ForOtherPhotometricInterpretations) {
    for (const char* text : {"PALETTE COLOR", "YBR_FULL", "", " MONOCHROME2", "monochrome2"}) {
        EXPECT_FALSE(Bitmap(Icon{.photometricInterpretation = text, .pixels = Bytes(12)}).Exists())
            << text;
    }
}

TEST(NoIcon, WithoutPixelsOrTheirDescription) {
    using Tag = std::pair<uint16_t, uint16_t>;
    for (const auto& [group, element] :
         {Tag{0x0028, 0x0004}, Tag{0x0028, 0x0010}, Tag{0x0028, 0x0011}, Tag{0x7FE0, 0x0010}}) {
        const DataSet dataSet = Icon{.pixels = Bytes(4)}.Build();
        dataSet->RemoveNode(dataSet->FindNode(group, element));
        EXPECT_FALSE(Bitmap(*dataSet).Exists()) << element;
    }
}

TEST(NoIcon, WhenASideIsZero) {
    EXPECT_FALSE(Bitmap(Icon{.rows = 0, .pixels = Bytes(4)}).Exists());
    EXPECT_FALSE(Bitmap(Icon{.columns = 0, .pixels = Bytes(4)}).Exists());
}

TEST(NoIcon, WhenThereAreTooFewPixels) {
    EXPECT_FALSE(Bitmap(Icon{.rows = 2, .columns = 4, .pixels = Bytes(6)}).Exists());
    EXPECT_TRUE(Bitmap(Icon{.rows = 2, .columns = 4, .pixels = Bytes(8)}).Exists());
    EXPECT_FALSE(Bitmap(Icon{.pixels = {}}).Exists());
}

TEST(NoIcon, WhenTheSizeOverflows) {
    EXPECT_FALSE(Bitmap(Icon{.photometricInterpretation = "RGB",
                             .rows = 65535,
                             .columns = 65535,
                             .bitsAllocated = 32,
                             .highBit = 31,
                             .pixels = Bytes(64)})
                     .Exists());
}

TEST(NoIcon, WhenSamplesDoNotFillBytes) {
    for (const uint16_t bits : {uint16_t{0}, uint16_t{1}, uint16_t{12}, uint16_t{64}}) {
        EXPECT_FALSE(
            Bitmap(Icon{.bitsAllocated = bits, .highBit = 0, .pixels = Bytes(64)}).Exists())
            << bits;
    }
}

TEST(NoIcon, WhenTheHighBitIsOutsideOfTheSample) {
    EXPECT_FALSE(Bitmap(Icon{.highBit = 8, .pixels = Bytes(4)}).Exists());
    EXPECT_FALSE(Bitmap(Icon{.highBit = 0xFFFF, .pixels = Bytes(4)}).Exists());
}

// An image in a file: what the description says, and pixels of the given VR.
StreamBuilder ImageStream(Order order, uint16_t bitsAllocated, const char* vr,
                          const std::string& pixels, uint32_t length) {
    StreamBuilder stream(VrMode::Explicit, order);
    stream.Part10(order == Order::Big ? "1.2.840.10008.1.2.2" : "1.2.840.10008.1.2.1");
    stream.Element(0x0028, 0x0004, "CS", "MONOCHROME2 ")
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 2)
        .ElementUS(0x0028, 0x0100, bitsAllocated)
        .ElementUS(0x0028, 0x0102, static_cast<uint16_t>(bitsAllocated - 1))
        .Header(0x7FE0, 0x0010, vr, length)
        .Text(pixels);
    return stream;
}

TEST(NoIcon, OfEncapsulatedPixels) {
    StreamBuilder stream = ImageStream(Order::Little, 8, "OB", "", 0xFFFFFFFF);
    stream.Item(0).Item(2).Text("\x12\x34").EndSequence();
    const OpenedStream file(stream);
    ASSERT_EQ(file->FindNode(0x7FE0, 0x0010)->IsEncodedPixelData(), 1);
    EXPECT_FALSE(Bitmap(*file.Root()).Exists());
}

TEST(IconByteOrder, WordsOfABigEndianFileAreSwapped) {
    const OpenedStream file(ImageStream(Order::Big, 16, "OW", "\x12\x34\x56\x78", 4));
    EXPECT_EQ(Bitmap(*file.Root()).Rows(), (Bytes{0x12, 0x56, 0, 0}));
}

TEST(IconByteOrder, BytesInWordsOfABigEndianFileAreExchanged) {
    const OpenedStream words(ImageStream(Order::Big, 8, "OW", "\x12\x34", 2));
    EXPECT_EQ(Bitmap(*words.Root()).Rows(), (Bytes{0x34, 0x12, 0, 0}));
    const OpenedStream bytes(ImageStream(Order::Big, 8, "OB", "\x12\x34", 2));
    EXPECT_EQ(Bitmap(*bytes.Root()).Rows(), (Bytes{0x12, 0x34, 0, 0}));
}

TEST(IconFromFile, PixelsMayStillBeOnDisk) {
    const OpenedStream file(ImageStream(Order::Little, 8, "OB", "\x12\x34", 2), 0);
    ASSERT_EQ(file->FindNode(0x7FE0, 0x0010)->value, nullptr);
    EXPECT_EQ(Bitmap(*file.Root()).Rows(), (Bytes{0x12, 0x34, 0, 0}));
}

TEST(IconFromFile, PixelsThatTheFileDoesNotHoldGiveNone) {
    StreamBuilder stream = ImageStream(Order::Little, 8, "OB", "\x12", 2);
    const OpenedStream file(stream, 0);
    ASSERT_NE(file.Root(), nullptr);
    EXPECT_FALSE(Bitmap(*file.Root()).Exists());
}

}  // namespace
