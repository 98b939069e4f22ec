// Real files. The grays that are expected were computed from the files by other means.
#include <gtest/gtest.h>

#include <numeric>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::Bytes;
using pgkit_test::LoadedImage;
using pgkit_test::TestData;

uint32_t SumOf(const Bytes& pixels) { return std::accumulate(pixels.begin(), pixels.end(), 0u); }

Bytes FirstOf(const Bytes& pixels, std::ptrdiff_t count) {
    return Bytes(pixels.begin(), pixels.begin() + count);
}

TEST(RealImage, SignedImageIsTheSameInEveryByteOrder) {
    for (const char* name : {"native/mr_explicit_be.dcm", "native/mr_implicit_le.dcm",
                             "native/mr_ge_private_syntax_be_pixels.dcm"}) {
        const LoadedImage image(TestData(name));
        ASSERT_TRUE(image.IsLoaded()) << name;
        EXPECT_EQ(vwImaGetNumber(image.Handle()), 1u);
        const Bytes pixels = image.Pixels();
        ASSERT_EQ(pixels.size(), 64u * 64u);
        EXPECT_EQ(FirstOf(pixels, 8), (Bytes{176, 194, 228, 233, 153, 96, 134, 178})) << name;
        EXPECT_EQ(SumOf(pixels), 463120u) << name;
    }
}

TEST(RealImage, RescaledTwelveBits) {
    const LoadedImage image(TestData("native/synthetic_overlays_and_curves_explicit.dcm"));
    const Bytes pixels = image.Pixels();
    ASSERT_EQ(pixels.size(), 16u * 16u);
    EXPECT_EQ(FirstOf(pixels, 8), (Bytes{112, 83, 58, 37, 20, 7, 0, 0}));
    EXPECT_EQ(SumOf(pixels), 2027u);
}

TEST(RealImage, ThirtyTwoBitsInRleFrames) {
    const LoadedImage image(TestData("encapsulated/rtdose_rle_15frames_no_bot.dcm"));
    EXPECT_EQ(vwImaIsGrayscaleImage(image.Handle()), 1);
    EXPECT_EQ(vwImaGetNumber(image.Handle()), 15u);
    const Bytes pixels = image.Pixels(5);
    ASSERT_EQ(pixels.size(), 100u);
    EXPECT_EQ(FirstOf(pixels, 8), (Bytes{253, 253, 252, 248, 245, 247, 249, 252}));
    EXPECT_EQ(SumOf(pixels), 12016u);
    EXPECT_TRUE(image.Frame(14).Exists());
    EXPECT_FALSE(image.Frame(15).Exists());
}

TEST(RealImage, EightBitsWithoutAWindow) {
    const LoadedImage image(TestData("charset/utf8_chinese.dcm"));
    const Bytes pixels = image.Pixels();
    ASSERT_EQ(pixels.size(), 32u * 32u);
    EXPECT_EQ(FirstOf(pixels, 4), (Bytes{127, 191, 191, 127}));
    EXPECT_EQ(SumOf(pixels), 141765u);
}

TEST(RealImage, ColourInRleHasNoBitmap) {
    for (const char* name : {"encapsulated/sc_rle_2frame_multifragment_bot.dcm",
                             "encapsulated/sc_rle_2frame_multifragment_no_bot.dcm"}) {
        const LoadedImage image(TestData(name));
        EXPECT_TRUE(image.IsLoaded()) << name;
        EXPECT_EQ(vwImaIsGrayscaleImage(image.Handle()), 0);
        EXPECT_EQ(vwImaGetNumber(image.Handle()), 2u);
        EXPECT_FALSE(image.Frame(0).Exists());
    }
}

TEST(RealImage, Jpeg2000IsNotLoaded) {
    EXPECT_FALSE(LoadedImage(TestData("encapsulated/mini_defined_bot_2_to_1.dcm")).IsLoaded());
    EXPECT_FALSE(LoadedImage(TestData("encapsulated/nm_j2k_delimiter_bytes_inside_fragment.dcm"))
                     .IsLoaded());
}

TEST(RealImage, WithoutPixelsIsNotLoaded) {
    EXPECT_FALSE(LoadedImage(TestData("sequences/rtplan_implicit.dcm")).IsLoaded());
    EXPECT_FALSE(LoadedImage(TestData("dicomdir/DICOMDIR_implicit")).IsLoaded());
}

TEST(RealImage, ThatWasCutShortHasNoBitmap) {
    const LoadedImage image(TestData("bad/truncated_pixel_data.dcm"));
    EXPECT_TRUE(image.IsLoaded());
    EXPECT_FALSE(image.Frame(0).Exists());
}

// All files of the test data, whatever they are.
TEST(RealImage, NoFileIsHarmful) {
    uint32_t loaded = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TestData(""))) {
        if (!entry.is_regular_file()) continue;
        const LoadedImage image(entry.path().string());
        loaded += image.IsLoaded();
        const Bitmap first = image.Frame(0);
        const Bitmap thumbnail(vwGetThumbnailDib(image.Handle(), 64));
        EXPECT_TRUE(image.IsLoaded() || !first.Exists()) << entry.path();
    }
    EXPECT_GE(loaded, 9u);
}

}  // namespace
