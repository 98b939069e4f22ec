// The C++ layer: frames of native and of encapsulated Pixel Data.
#include <gmock/gmock.h>

#include "data_set/opened.h"
#include "support/host_order.h"

namespace {

using namespace pgkit_test;
using testing::ElementsAre;

struct Image {
    uint16_t rows = 1;
    uint16_t columns = 2;
    uint16_t samples = 1;
    uint16_t bits = 8;
    const char* interpretation = "MONOCHROME2 ";
    const char* frames = nullptr;
    const char* vr = "OB";
};

StreamBuilder WithPixels(const Image& image, std::string_view pixels) {
    StreamBuilder stream = Part10Stream();
    stream.ElementUS(0x0028, 0x0002, image.samples)
        .Element(0x0028, 0x0004, "CS", image.interpretation);
    if (image.frames != nullptr) stream.Element(0x0028, 0x0008, "IS", image.frames);
    stream.ElementUS(0x0028, 0x0010, image.rows)
        .ElementUS(0x0028, 0x0011, image.columns)
        .ElementUS(0x0028, 0x0100, image.bits)
        .Element(0x7FE0, 0x0010, image.vr, pixels);
    return stream;
}

// How many frames there are, and of what size.
std::pair<size_t, size_t> Frames(const Image& image, size_t pixelBytes) {
    Opened file(WithPixels(image, std::string(pixelBytes, 'p')));
    const pgkit::frame_range frames = file->frames();
    return {frames.size(), frames[0].size()};
}

TEST(DataSetFrames, OfNativePixelsAreParts) {
    Image image;
    image.frames = "3 ";
    Opened file(WithPixels(image, "aabbcc"));
    std::string all;
    std::vector<uint8_t> room;
    for (const pgkit::frame frame : file->frames()) {
        const pgkit::span<const uint8_t> bytes = frame.bytes(room);
        all.append(bytes.begin(), bytes.end()) += ' ';
    }
    EXPECT_EQ(all, "aa bb cc ");
    EXPECT_THAT(file->frames()[2].bytes(), ElementsAre('c', 'c'));
    EXPECT_EQ(file->frames()[3].size(), 0u);
    EXPECT_TRUE(file->frames()[3].bytes().empty());
}

TEST(DataSetFrames, InMemoryAreNotCopied) {
    Image image;
    image.frames = "2 ";
    const StreamBuilder stream = WithPixels(image, "aabb");
    Opened loaded(stream, 64);
    std::vector<uint8_t> room;
    EXPECT_EQ(loaded->frames()[1].bytes(room).data(), loaded->find("PixelData").node()->value + 2);
    EXPECT_TRUE(room.empty());
    Opened unloaded(stream, 0);
    const pgkit::span<const uint8_t> read = unloaded->frames()[1].bytes(room);
    EXPECT_EQ(read.data(), room.data());
    EXPECT_THAT(room, ElementsAre('b', 'b'));
}

TEST(DataSetFrames, OfBigEndianWordsAreInHostOrder) {
    PGKIT_SKIP_ON_BIG_ENDIAN();
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Part10("1.2.840.10008.1.2.2")
        .ElementUS(0x0028, 0x0002, 1)
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 1)
        .ElementUS(0x0028, 0x0100, 16)
        .Header(0x7FE0, 0x0010, "OW", 2)
        .U16(0x0102);
    for (const uint32_t loadBelow : {0u, 64u}) {
        Opened file(stream, loadBelow);
        EXPECT_THAT(file->frames()[0].bytes(), ElementsAre(2, 1)) << loadBelow;
    }
}

TEST(DataSetFrames, HaveTheSizeThatTheImageSays) {
    Image image;
    EXPECT_EQ(Frames(image, 2), std::pair(size_t{1}, size_t{2}));
    image.bits = 16;
    EXPECT_EQ(Frames(image, 4), std::pair(size_t{1}, size_t{4}));
    image.samples = 3;
    image.bits = 8;
    image.interpretation = "RGB ";
    EXPECT_EQ(Frames(image, 6), std::pair(size_t{1}, size_t{6}));
    image.interpretation = "YBR_FULL_422";
    EXPECT_EQ(Frames(image, 4), std::pair(size_t{1}, size_t{4}));
    image.interpretation = "YBR_PARTIAL_420 ";
    EXPECT_EQ(Frames(image, 4), std::pair(size_t{1}, size_t{3}));
    Image mask;
    mask.bits = 1;
    mask.columns = 12;
    EXPECT_EQ(Frames(mask, 2), std::pair(size_t{1}, size_t{2}));
    mask.columns = 16;
    mask.frames = "2 ";
    EXPECT_EQ(Frames(mask, 4), std::pair(size_t{2}, size_t{2}));
}

TEST(DataSetFrames, AreNoneWhereTheImageIsNotDescribed) {
    Image image;
    image.columns = 0;
    EXPECT_EQ(Frames(image, 2).first, 0u);
    image.columns = 2;
    image.bits = 0;
    EXPECT_EQ(Frames(image, 2).first, 0u);
    // The second frame would begin within a byte.
    image.bits = 1;
    image.frames = "2 ";
    EXPECT_EQ(Frames(image, 2).first, 0u);
    Opened no_pixels(Part10Stream().Element(0x0010, 0x0010, "PN", "DOE^"));
    EXPECT_TRUE(no_pixels->frames().empty());
}

TEST(DataSetFrames, ThatTheValueLacksAreLeftOut) {
    Image image;
    image.frames = "2000000000";
    EXPECT_EQ(Frames(image, 6).first, 3u);
    image.rows = 65535;
    image.columns = 65535;
    image.samples = 65535;
    image.bits = 64;
    EXPECT_EQ(Frames(image, 6).first, 0u);
    image = Image();
    image.frames = "-1";
    EXPECT_EQ(Frames(image, 2).first, 1u);

    StreamBuilder cut = WithPixels(Image(), "");
    Bytes bytes = cut.Data();
    bytes[bytes.size() - 1] = 0xFF;  // the length of Pixel Data becomes 0xFF000000
    bytes.insert(bytes.end(), {'a', 'a', 'b'});
    const TempDir directory;
    const auto file = pgkit::data_set::open(directory.Write("cut", bytes));
    EXPECT_EQ(file->frames().size(), 1u);
    EXPECT_THAT(file->frames()[0].bytes(), ElementsAre('a', 'a'));
}

TEST(DataSetFrames, OfFloatPixelDataAreFound) {
    StreamBuilder stream = Part10Stream();
    stream.ElementUS(0x0028, 0x0002, 1)
        .ElementUS(0x0028, 0x0010, 1)
        .ElementUS(0x0028, 0x0011, 1)
        .ElementUS(0x0028, 0x0100, 32)
        .Element(0x7FE0, 0x0008, "OF", BytesOf(1.5f));
    Opened file(stream);
    ASSERT_EQ(file->frames().size(), 1u);
    const std::vector<uint8_t> bytes = file->frames()[0].bytes();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), BytesOf(1.5f));
}

// ---- Encapsulated -------------------------------------------------------------------------------

StreamBuilder Encapsulated(const char* frames) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.5");
    if (frames != nullptr) stream.Element(0x0028, 0x0008, "IS", frames);
    return stream.Header(0x7FE0, 0x0010, "OB", kUndefined);
}

TEST(DataSetFrames, OfEncapsulatedPixelsAreFragmentsWhereThereAreAsMany) {
    StreamBuilder stream = Encapsulated("2 ");
    stream.Item(0).Item(2).Text("AA").Item(4).Text("BBBB").EndSequence();
    Opened file(stream);
    ASSERT_EQ(file->frames().size(), 2u);
    EXPECT_EQ(file->frames()[1].size(), 4u);
    EXPECT_THAT(file->frames()[0].bytes(), ElementsAre('A', 'A'));
    EXPECT_THAT(file->frames()[1].bytes(), ElementsAre('B', 'B', 'B', 'B'));
    EXPECT_TRUE(file->find("PixelData").is_encapsulated());
    EXPECT_TRUE(file->find("PixelData").bytes().empty());
    EXPECT_TRUE(file->find("PixelData").items().empty());
}

// They had the headers of the items between them, which no decoder takes, or were none at all.
TEST(DataSetFrames, OfSeveralFragmentsAreJoined) {
    StreamBuilder stream = Encapsulated("2 ");
    stream.Item(8).U32(0).U32(20);
    stream.Item(2).Text("AA").Item(2).Text("aa").Item(4).Text("BBBB").Item(2).Text("bb");
    stream.EndSequence();
    for (const uint32_t flags : {0u, uint32_t{PG_OPEN_SKIP_FRAGMENTS}}) {
        Opened file(stream, 64, flags);
        ASSERT_EQ(file->frames().size(), 2u);
        EXPECT_EQ(file->frames()[0].size(), 4u);
        EXPECT_THAT(file->frames()[0].bytes(), ElementsAre('A', 'A', 'a', 'a'));
        EXPECT_THAT(file->frames()[1].bytes(), ElementsAre('B', 'B', 'B', 'B', 'b', 'b'));
    }
}

TEST(DataSetFrames, WithoutANumberOfThemAreOneOfAllFragments) {
    StreamBuilder stream = Encapsulated(nullptr);
    stream.Item(0).Item(2).Text("AA").Item(2).Text("aa").EndSequence();
    Opened file(stream);
    ASSERT_EQ(file->frames().size(), 1u);
    EXPECT_THAT(file->frames()[0].bytes(), ElementsAre('A', 'A', 'a', 'a'));
}

TEST(DataSetFrames, AreNoneWhereNobodyKnowsWhereTheyBegin) {
    StreamBuilder stream = Encapsulated("2 ");
    stream.Item(0).Item(2).Text("AA").Item(2).Text("aa").Item(2).Text("BB").EndSequence();
    EXPECT_TRUE(Opened(stream)->frames().empty());
    StreamBuilder wrong = Encapsulated("2 ");
    wrong.Item(8).U32(0).U32(0x10000000).Item(2).Text("AA").EndSequence();
    EXPECT_TRUE(Opened(wrong)->frames().empty());
}

TEST(DataSetFrames, OfEncapsulatedPixelsInMemoryAreNotCopied) {
    pgkit::data_set dataSet = pgkit::data_set::create();
    ASSERT_TRUE(dataSet.set_number("NumberOfFrames", 2));
    PGX_Node* const pixels = pgKitInsertEncodedPixelDataNode(dataSet.node(), 2);
    ASSERT_EQ(pgKitSetEncodedPixelData(pixels, 1, 2, "XY"), 1);
    ASSERT_EQ(dataSet.frames().size(), 2u);
    std::vector<uint8_t> room;
    EXPECT_TRUE(dataSet.frames()[0].bytes(room).empty());
    EXPECT_THAT(dataSet.frames()[1].bytes(room), ElementsAre('X', 'Y'));
    EXPECT_TRUE(room.empty());
}

// A frame may be kept when the range is gone.
TEST(DataSetFrames, MayBeKeptWithoutTheirRange) {
    StreamBuilder stream = Encapsulated("1 ");
    stream.Item(0).Item(2).Text("AA").Item(2).Text("aa").EndSequence();
    Opened file(stream);
    const pgkit::frame kept = file->frames()[0];
    EXPECT_THAT(kept.bytes(), ElementsAre('A', 'A', 'a', 'a'));
}

TEST(DataSetFrames, OfRealFilesAreThere) {
    const auto image = pgkit::data_set::open(TestData("native/mr_implicit_le.dcm"));
    ASSERT_EQ(image->frames().size(), 1u);
    EXPECT_EQ(image->frames()[0].bytes(), image->find("PixelData").bytes());
    const auto doses =
        pgkit::data_set::open(TestData("encapsulated/rtdose_rle_15frames_no_bot.dcm"));
    EXPECT_EQ(doses->frames().size(), 15u);
}

}  // namespace
