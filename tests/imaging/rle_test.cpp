// Images in RLE Lossless.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::HasBitmap;
using pgkit_test::ImageFile;
using pgkit_test::kRleLossless;
using pgkit_test::LoadedImage;
using pgkit_test::LongWords;
using pgkit_test::RleFrame;

const Bytes kNoTable;

ImageFile RleImage(std::vector<Bytes> items) {
    return {.items = std::move(items), .transferSyntax = kRleLossless};
}

// Four pixels from the segments of a single frame.
Bytes Decoded(const std::vector<Bytes>& segments, uint16_t bitsAllocated = 8) {
    ImageFile file = RleImage({kNoTable, RleFrame(segments)});
    file.bitsAllocated = bitsAllocated;
    return LoadedImage(file).Pixels();
}

TEST(Rle, LiteralsAndRuns) {
    EXPECT_EQ(Decoded({{3, 1, 2, 3, 4}}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Decoded({{0xFD, 9}}), (Bytes{9, 9, 9, 9}));
    EXPECT_EQ(Decoded({{0, 7, 0xFF, 8, 0, 9}}), (Bytes{7, 8, 8, 9}));
}

TEST(Rle, ControlByte128MeansNothing) {
    EXPECT_EQ(Decoded({{0x80, 1, 1, 2, 0x80, 0x80, 0xFF, 3}}), (Bytes{1, 2, 3, 3}));
}

TEST(Rle, LongestLiteralAndLongestRun) {
    Bytes segment = {127};
    Bytes expected;
    for (uint8_t i = 0; i < 128; ++i)
        segment.push_back(i);
    expected.assign(segment.begin() + 1, segment.end());
    segment.insert(segment.end(), {0x81, 200});
    expected.insert(expected.end(), 128, 200);
    ImageFile file = RleImage({kNoTable, RleFrame({segment})});
    file.columns = 256;
    EXPECT_EQ(LoadedImage(file).Pixels(), expected);
}

// Rows used to be made only when the whole frame was decoded.
TEST(Rle, PiecesReachAcrossRows) {
    ImageFile file = RleImage({kNoTable, RleFrame({{0, 7, 0xFC, 8, 4, 1, 2, 3, 4, 5, 0xFF, 9}})});
    file.rows = 3;
    EXPECT_EQ(LoadedImage(file).Pixels(), (Bytes{7, 8, 8, 8, 8, 8, 1, 2, 3, 4, 5, 9}));
    file.windowCentre = file.windowWidth = "";  // the range of all rows
    EXPECT_EQ(LoadedImage(file).Pixels(),
              (Bytes{191, 223, 223, 223, 223, 223, 0, 32, 64, 96, 128, 255}));
}

TEST(Rle, FramesThatEndInTheLastRowHaveNoBitmap) {
    ImageFile file = RleImage({kNoTable, RleFrame({{0xFD, 9, 0xFD, 8, 2, 1, 2, 3}})});
    file.rows = 3;
    EXPECT_FALSE(HasBitmap(file));
    const LoadedImage image(file);
    EXPECT_EQ(vwGetThumbnailDib(image.Handle(), 2), nullptr);
    file.windowCentre = file.windowWidth = "";
    EXPECT_FALSE(HasBitmap(file));
}

TEST(Rle, MostSignificantBytesComeFirst) {
    EXPECT_EQ(Decoded({{0xFD, 0}, {3, 0, 1, 200, 255}}, 16), (Bytes{0, 1, 200, 255}));
    EXPECT_EQ(Decoded({{3, 0, 0, 1, 0}, {3, 0, 1, 0, 255}}, 16), (Bytes{0, 1, 255, 255}));
    EXPECT_EQ(Decoded({{0xFD, 0}, {0xFD, 0}, {0xFD, 0}, {3, 0, 1, 200, 255}}, 32),
              (Bytes{0, 1, 200, 255}));
    EXPECT_EQ(Decoded({{0, 1, 0xFE, 0}, {0xFD, 0}, {0xFD, 0}, {3, 0, 1, 200, 255}}, 32),
              (Bytes{255, 1, 200, 255}));
}

TEST(Rle, SignedSamples) {
    ImageFile file =
        RleImage({kNoTable, RleFrame({{0xFE, 0xFF, 0, 0}, {3, 0x80, 0x81, 0xFF, 0x7F}})});
    file.bitsAllocated = 16;
    file.pixelRepresentation = 1;
    file.windowCentre = "0";
    EXPECT_EQ(LoadedImage(file).Pixels(), (Bytes{0, 1, 127, 255}));
}

TEST(Rle, BytesBeyondTheLastPixelAreIgnored) {
    EXPECT_EQ(Decoded({{7, 1, 2, 3, 4, 5, 6, 7, 8}}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Decoded({{0x81, 5, 99}}), (Bytes{5, 5, 5, 5}));
}

TEST(Rle, FramesAreFragmentsWithoutAnOffsetTable) {
    ImageFile file = RleImage({kNoTable, RleFrame({{3, 1, 2, 3, 4}}), RleFrame({{0xFD, 5}})});
    file.frameCount = "2";
    const LoadedImage image(file);
    EXPECT_EQ(image.Pixels(0), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(image.Pixels(1), (Bytes{5, 5, 5, 5}));
    EXPECT_FALSE(image.Frame(2).Exists());
}

TEST(Rle, FramesAreFoundByTheOffsetTable) {
    const Bytes first = RleFrame({{3, 1, 2, 3, 4}});
    const Bytes second = RleFrame({{0xFD, 5}});
    const uint32_t secondOffset = static_cast<uint32_t>(first.size()) + 8;
    ImageFile file = RleImage({LongWords({0, secondOffset}), first, second});
    file.frameCount = "2";
    const LoadedImage image(file);
    EXPECT_EQ(image.Pixels(0), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(image.Pixels(1), (Bytes{5, 5, 5, 5}));
}

TEST(Rle, FragmentsOfAFrameAreJoined) {
    const Bytes frame = RleFrame({{3, 1, 2, 3, 4}});
    const Bytes head(frame.begin(), frame.begin() + 10);
    const Bytes tail(frame.begin() + 10, frame.end());
    EXPECT_EQ(LoadedImage(RleImage({kNoTable, head, tail})).Pixels(), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(LoadedImage(RleImage({LongWords({0}), head, tail})).Pixels(), (Bytes{1, 2, 3, 4}));

    const Bytes other = RleFrame({{0xFD, 5}});
    const uint32_t otherOffset = static_cast<uint32_t>(frame.size()) + 16;
    ImageFile file = RleImage({LongWords({0, otherOffset}), head, tail, other});
    file.frameCount = "2";
    EXPECT_EQ(LoadedImage(file).Pixels(0), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(LoadedImage(file).Pixels(1), (Bytes{5, 5, 5, 5}));
}

TEST(Rle, WrongOffsetOfASingleFrameDoesNotMatter) {
    EXPECT_EQ(LoadedImage(RleImage({LongWords({1234}), RleFrame({{0xFD, 5}})})).Pixels(),
              (Bytes{5, 5, 5, 5}));
}

TEST(Rle, FramesThatCannotBeTellApartHaveNoBitmap) {
    const Bytes frame = RleFrame({{0xFD, 5}});
    ImageFile file = RleImage({kNoTable, frame, frame, frame});
    file.frameCount = "2";
    EXPECT_FALSE(HasBitmap(file));
}

TEST(Rle, OffsetsThatLeadToNoItemHaveNoBitmap) {
    const Bytes frame = RleFrame({{0xFD, 5}});
    const uint32_t length = static_cast<uint32_t>(frame.size());
    for (uint32_t offset : {uint32_t{0}, uint32_t{2}, length, uint32_t{0x7FFFFFFF}, 0xFFFFFFFFu}) {
        ImageFile file = RleImage({LongWords({offset, length + 8, 0}), frame, frame});
        file.frameCount = "3";
        const LoadedImage image(file);
        EXPECT_EQ(image.Frame(0).Exists(), offset == 0) << offset;
        image.Frame(1);
        image.Frame(2);
    }
}

TEST(Rle, TooFewBytesHaveNoBitmap) {
    const std::vector<Bytes> segments = {{},        {0x80},       {3, 1, 2, 3}, {0xFE, 1},
                                         {0, 1, 0}, {0, 1, 0xFD}, {0xFE, 1, 0}};
    for (const Bytes& segment : segments) {
        Bytes frame = RleFrame({segment});
        frame.resize(64 + segment.size());
        EXPECT_FALSE(HasBitmap(RleImage({kNoTable, frame})));
    }
}

TEST(Rle, ShortOrMissingHeaderHasNoBitmap) {
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, Bytes(62)})));
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, Bytes()})));
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, Bytes(64)})));
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable})));
}

TEST(Rle, NumberOfSegmentsMustBeThatOfTheBytes) {
    const Bytes run = {0xFD, 0};
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, RleFrame({run, run})})));
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, RleFrame({run, run, run})})));
    Bytes frame = RleFrame({run});
    pgkit_test::PutU32(frame, 0, 0xFFFFFFFF);
    EXPECT_FALSE(HasBitmap(RleImage({kNoTable, frame})));
    ImageFile file = RleImage({kNoTable, RleFrame({run})});
    file.bitsAllocated = 16;
    EXPECT_FALSE(HasBitmap(file));
}

TEST(Rle, SegmentsMustLieInTheFrameAndInOrder) {
    const Bytes run = {0xFD, 0};
    for (uint32_t offset : {0u, 63u, 200u, 0x80000000u, 0xFFFFFFFFu}) {
        Bytes frame = RleFrame({run});
        pgkit_test::PutU32(frame, 4, offset);
        EXPECT_FALSE(HasBitmap(RleImage({kNoTable, frame}))) << offset;
    }
    Bytes frame = RleFrame({run, run});
    pgkit_test::PutU32(frame, 4, 66);
    pgkit_test::PutU32(frame, 8, 64);
    ImageFile file = RleImage({kNoTable, frame});
    file.bitsAllocated = 16;
    EXPECT_FALSE(HasBitmap(file));
}

// 100 bytes cannot be the 16 million pixels that they claim to be.
TEST(Rle, PixelsThatSegmentsCannotHoldAreNotAllocated) {
    ImageFile file = RleImage({kNoTable, RleFrame({Bytes(100, 0x81)})});
    file.rows = 4096;
    file.columns = 4096;
    EXPECT_FALSE(HasBitmap(file));
}

TEST(Rle, FileThatEndsInAFrameHasNoBitmapOfIt) {
    ImageFile file = RleImage({kNoTable, RleFrame({{3, 1, 2, 3, 4}}), RleFrame({{0xFD, 5}})});
    file.frameCount = "2";
    const Bytes whole = file.Build();
    Bytes cut(whole.begin(), whole.end() - 10);
    const LoadedImage image(cut);
    ASSERT_TRUE(image.IsLoaded());
    EXPECT_TRUE(image.Frame(0).Exists());
    EXPECT_FALSE(image.Frame(1).Exists());
}

TEST(Rle, EveryPrefixOfAFileIsHarmless) {
    ImageFile file =
        RleImage({LongWords({0, 78}), RleFrame({{3, 1, 2, 3, 4}}), RleFrame({{0xFD, 5}})});
    file.frameCount = "2";
    const Bytes whole = file.Build();
    for (size_t size = 0; size < whole.size(); ++size) {
        const LoadedImage image(
            Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        image.Frame(0);
        image.Frame(1);
    }
    EXPECT_EQ(LoadedImage(whole).Pixels(1), (Bytes{5, 5, 5, 5}));
}

}  // namespace
