// How stored values lie in samples, in every byte order.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::ImageFile;
using pgkit_test::kBigEndian;
using pgkit_test::kImplicit;
using pgkit_test::LoadedImage;
using pgkit_test::LongWords;
using pgkit_test::Order;
using pgkit_test::PixelsOf;
using pgkit_test::Words;

TEST(SampleFormat, EightBits) {
    EXPECT_EQ(PixelsOf({.pixels = {0, 1, 200, 255}}), (Bytes{0, 1, 200, 255}));
    EXPECT_EQ(PixelsOf({.pixels = {0, 1, 200, 255}, .pixelVr = "OB"}), (Bytes{0, 1, 200, 255}));
}

TEST(SampleFormat, SixteenBits) {
    // A width of 255 * 256 + 1 makes a step of one gray every 256 values.
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .windowCentre = "32640.5",
                        .windowWidth = "65281",
                        .pixels = Words({0, 256, 0x8000, 0xFF00})}),
              (Bytes{0, 1, 128, 255}));
}

TEST(SampleFormat, ThirtyTwoBits) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 32,
                        .windowCentre = "2139095040.5",
                        .windowWidth = "4278190081",
                        .pixels = LongWords({0, 0x01000000, 0x80000000, 0xFF000000})}),
              (Bytes{0, 1, 128, 255}));
}

TEST(SampleFormat, SignedValuesReachBelowZero) {
    EXPECT_EQ(PixelsOf({.pixelRepresentation = 1,
                        .windowCentre = "0.5",
                        .windowWidth = "255",
                        .pixels = {0x81, 0xFF, 0x00, 0x7F}}),
              (Bytes{0, 126, 128, 255}));
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .pixelRepresentation = 1,
                        .windowCentre = "-872",
                        .windowWidth = "256",
                        .pixels = Words({0xFC18, 0xFC19, 0xFCE0, 0xFD17})}),  // -1000 ...
              (Bytes{0, 1, 200, 255}));
    EXPECT_EQ(PixelsOf({.bitsAllocated = 32,
                        .pixelRepresentation = 1,
                        .windowCentre = "-872",
                        .windowWidth = "256",
                        .pixels = LongWords({0xFFFFFC18, 0xFFFFFC19, 0xFFFFFCE0, 0xFFFFFD17})}),
              (Bytes{0, 1, 200, 255}));
}

TEST(SampleFormat, BitsAboveTheHighBitAreIgnored) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .bitsStored = 12,
                        .highBit = 11,
                        .pixels = Words({0xF000, 0x1001, 0xF0C8, 0x80FF})}),
              (Bytes{0, 1, 200, 255}));
}

TEST(SampleFormat, BitsBelowTheStoredOnesAreIgnored) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .bitsStored = 12,
                        .highBit = 15,
                        .pixels = Words({0x000F, 0x001A, 0x0C85, 0x0FF1})}),
              (Bytes{0, 1, 200, 255}));
}

TEST(SampleFormat, TheSignIsTheHighBit) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .bitsStored = 12,
                        .highBit = 11,
                        .pixelRepresentation = 1,
                        .windowCentre = "0",
                        .windowWidth = "256",
                        .pixels = Words({0x0F80, 0xFFFF, 0x0000, 0xF07F})}),  // -128 -1 0 127
              (Bytes{0, 127, 128, 255}));
}

TEST(SampleFormat, BitsStoredAndHighBitHaveDefaults) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16, .pixels = Words({0, 255, 0x0200, 0xFFFF})}),
              (Bytes{0, 255, 255, 255}));
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .bitsStored = 8,
                        .pixels = Words({0x1200, 0x12FF, 0x0001, 0xFFC8})}),
              (Bytes{0, 255, 1, 200}));
}

TEST(SampleFormat, BigEndianWords) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .pixels = Words({0, 1, 200, 255}, Order::Big),
                        .transferSyntax = kBigEndian}),
              (Bytes{0, 1, 200, 255}));
    EXPECT_EQ(PixelsOf({.frameCount = "2",
                        .bitsAllocated = 16,
                        .pixels = Words({9, 9, 9, 9, 0, 1, 200, 255}, Order::Big),
                        .transferSyntax = kBigEndian},
                       1),
              (Bytes{0, 1, 200, 255}));
}

// In words of two samples, the first of them in the less significant byte.
TEST(SampleFormat, BigEndianWordsOfEightBitSamples) {
    EXPECT_EQ(PixelsOf({.pixels = {2, 1, 4, 3}, .transferSyntax = kBigEndian}),
              (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(PixelsOf({.pixels = {1, 2, 3, 4}, .transferSyntax = kBigEndian, .pixelVr = "OB"}),
              (Bytes{1, 2, 3, 4}));
}

// Words may then hold the end of one frame and the beginning of the next.
TEST(SampleFormat, BigEndianWordsOfFramesOfAnOddSize) {
    const ImageFile file{.frameCount = "3",
                         .rows = 1,
                         .columns = 3,
                         .pixels = {2, 1, 4, 3, 6, 5, 8, 7, 0, 9},
                         .transferSyntax = kBigEndian};
    EXPECT_EQ(PixelsOf(file, 0), (Bytes{1, 2, 3}));
    EXPECT_EQ(PixelsOf(file, 1), (Bytes{4, 5, 6}));
    EXPECT_EQ(PixelsOf(file, 2), (Bytes{7, 8, 9}));
}

TEST(SampleFormat, ImplicitVr) {
    EXPECT_EQ(PixelsOf({.pixels = {1, 2, 3, 4}, .transferSyntax = kImplicit}), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(
        PixelsOf(
            {.bitsAllocated = 16, .pixels = Words({0, 1, 200, 255}), .transferSyntax = kImplicit}),
        (Bytes{0, 1, 200, 255}));
}

TEST(SampleFormat, FramesOfAnOddSizeFollowEachOtherWithoutPadding) {
    const ImageFile file{
        .frameCount = "2", .rows = 1, .columns = 5, .pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}};
    EXPECT_EQ(PixelsOf(file, 0), (Bytes{1, 2, 3, 4, 5}));
    EXPECT_EQ(PixelsOf(file, 1), (Bytes{6, 7, 8, 9, 10}));
}

}  // namespace
