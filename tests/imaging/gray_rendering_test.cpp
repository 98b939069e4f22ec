// Which values become which grays.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::ImageFile;
using pgkit_test::LoadedImage;
using pgkit_test::PixelsOf;
using pgkit_test::Words;

// A row of pixels of 16 bits, unsigned, through a window.
Bytes Windowed(std::initializer_list<uint32_t> values, const char* centre, const char* width) {
    return PixelsOf({.columns = static_cast<uint16_t>(values.size()),
                     .bitsAllocated = 16,
                     .windowCentre = centre,
                     .windowWidth = width,
                     .pixels = Words(values)});
}

// The standard's own example: centre 2048 and width 4096 map 0 to the lowest and 4095 to the
// highest gray.
TEST(Window, MapsItsRangeToAllGrays) {
    EXPECT_EQ(Windowed({0, 4095, 2047, 2048, 16, 17}, "2048", "4096"),
              (Bytes{0, 255, 127, 128, 1, 1}));
}

TEST(Window, IsHalfAUnitLowerThanItsCentre) {
    // From 39.5 - 9.5 = 30 up to 49.
    EXPECT_EQ(Windowed({29, 30, 31, 39, 40, 48, 49, 50}, "40", "20"),
              (Bytes{0, 0, 13, 121, 134, 242, 255, 255}));
}

TEST(Window, OfWidthOneIsAThreshold) {
    EXPECT_EQ(Windowed({98, 99, 100, 101}, "100", "1"), (Bytes{0, 0, 255, 255}));
    EXPECT_EQ(Windowed({98, 99, 100, 101}, "100.5", "1"), (Bytes{0, 0, 0, 255}));
}

TEST(Window, OfWidthTwoHasNothingBetweenBlackAndWhite) {
    EXPECT_EQ(Windowed({98, 99, 100, 101}, "100", "2"), (Bytes{0, 0, 255, 255}));
}

TEST(Window, MayHaveFractions) {
    // From 9.75 - 0.75 = 9 up to 10.5.
    EXPECT_EQ(Windowed({8, 9, 10, 11}, "10.25", "2.5"), (Bytes{0, 0, 170, 255}));
}

TEST(Window, TheFirstOfSeveralCounts) {
    EXPECT_EQ(Windowed({0, 1, 200, 255}, "128\\40", "256\\400"), (Bytes{0, 1, 200, 255}));
}

TEST(Window, FarFromAllValuesGivesOneGray) {
    EXPECT_EQ(Windowed({0, 1, 200, 65535}, "1e300", "1"), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Windowed({0, 1, 200, 65535}, "-1e300", "1"), (Bytes{255, 255, 255, 255}));
}

TEST(ValueRange, CountsWithoutAWindow) {
    EXPECT_EQ(Windowed({1000, 1100, 1200, 1255}, "", ""), (Bytes{0, 100, 200, 255}));
    EXPECT_EQ(Windowed({1000, 1100, 1200, 1255}, "128", ""), (Bytes{0, 100, 200, 255}));
    EXPECT_EQ(Windowed({1000, 1100, 1200, 1255}, "", "256"), (Bytes{0, 100, 200, 255}));
}

TEST(ValueRange, CountsWhenTheWindowIsNone) {
    for (const char* width : {"0", "-5", "0.5", "wide", "1e999"}) {
        EXPECT_EQ(Windowed({1000, 1100, 1200, 1255}, "128", width), (Bytes{0, 100, 200, 255}))
            << width;
    }
    EXPECT_EQ(Windowed({1000, 1100, 1200, 1255}, "-1e999", "1"), (Bytes{0, 100, 200, 255}));
}

TEST(ValueRange, CountsWhereTheWindowIsForTheOutputOfATable) {
    EXPECT_EQ(PixelsOf({.windowCentre = "7",
                        .windowWidth = "3",
                        .pixels = {0, 100, 200, 255},
                        .hasModalityTable = true}),
              (Bytes{0, 100, 200, 255}));
}

TEST(ValueRange, IsThatOfTheFrame) {
    const LoadedImage image(ImageFile{.frameCount = "2",
                                      .windowCentre = "",
                                      .windowWidth = "",
                                      .pixels = {0, 100, 200, 250, 10, 11, 12, 12}});
    EXPECT_EQ(image.Pixels(0), (Bytes{0, 102, 204, 255}));
    EXPECT_EQ(image.Pixels(1), (Bytes{0, 128, 255, 255}));
}

TEST(ValueRange, OfOneValueIsBlack) {
    EXPECT_EQ(Windowed({7, 7, 7, 7}, "", ""), (Bytes{0, 0, 0, 0}));
}

TEST(Rescaling, ComesBeforeTheWindow) {
    EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                        .windowCentre = "-872",
                        .windowWidth = "256",
                        .rescaleIntercept = "-1024",
                        .rescaleSlope = "2",
                        .pixels = Words({12, 62, 112, 139})}),  // -1000 -900 -800 -746
              (Bytes{0, 100, 200, 254}));
}

TEST(Rescaling, InterceptAloneHasASlopeOfOne) {
    for (const char* slope : {"", "0", "1e999"}) {
        EXPECT_EQ(PixelsOf({.bitsAllocated = 16,
                            .rescaleIntercept = "-1000",
                            .rescaleSlope = slope,
                            .pixels = Words({1000, 1001, 1200, 1255})}),
                  (Bytes{0, 1, 200, 255}));
    }
}

TEST(Rescaling, NegativeSlopeTurnsTheRangeRound) {
    EXPECT_EQ(PixelsOf({.windowCentre = "",
                        .windowWidth = "",
                        .rescaleSlope = "-1",
                        .pixels = {0, 100, 200, 255}}),
              (Bytes{255, 155, 55, 0}));
}

TEST(Rescaling, BeyondTheRangeOfNumbersGivesSomeGray) {
    for (const char* window : {"", "100"}) {
        EXPECT_EQ(PixelsOf({.windowCentre = window,
                            .windowWidth = window,
                            .rescaleIntercept = "-1e308",
                            .rescaleSlope = "1e308",
                            .pixels = {0, 1, 2, 255}})
                      .size(),
                  4u);
    }
}

TEST(Monochrome1, InvertsTheGrays) {
    EXPECT_EQ(PixelsOf({.photometricInterpretation = "MONOCHROME1", .pixels = {0, 1, 200, 255}}),
              (Bytes{255, 254, 55, 0}));
    EXPECT_EQ(PixelsOf({.photometricInterpretation = "MONOCHROME1",
                        .windowCentre = "",
                        .windowWidth = "",
                        .pixels = {7, 7, 7, 7}}),
              (Bytes{255, 255, 255, 255}));
}

TEST(Monochrome1, KeepsAnUprightColourTable) {
    const LoadedImage image(
        ImageFile{.photometricInterpretation = "MONOCHROME1", .pixels = Bytes(4)});
    EXPECT_EQ(image.Frame(0).Part(40, 8), (Bytes{0, 0, 0, 0, 1, 1, 1, 0}));
}

}  // namespace
