// Bitmaps of whole images, made to fit a square.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::Bytes;
using pgkit_test::ImageFile;
using pgkit_test::LoadedImage;

Bitmap Thumbnail(const ImageFile& file, uint32_t size) {
    const LoadedImage image(file);
    return Bitmap(vwGetThumbnailDib(image.Handle(), size));
}

std::pair<uint32_t, uint32_t> SizeOf(uint16_t columns, uint16_t rows, uint32_t size) {
    const Bitmap bitmap = Thumbnail(
        {.rows = rows, .columns = columns, .pixels = Bytes(size_t{rows} * columns)}, size);
    if (!bitmap.Exists()) return {0, 0};
    return {bitmap.Width(), bitmap.Height()};
}

using Size = std::pair<uint32_t, uint32_t>;

TEST(Thumbnail, LongerSideFillsTheSquare) {
    EXPECT_EQ(SizeOf(512, 256, 64), (Size{64, 32}));
    EXPECT_EQ(SizeOf(256, 512, 64), (Size{32, 64}));
    EXPECT_EQ(SizeOf(100, 100, 64), (Size{64, 64}));
    EXPECT_EQ(SizeOf(300, 200, 64), (Size{64, 42}));
}

TEST(Thumbnail, SmallImagesAreEnlarged) {
    EXPECT_EQ(SizeOf(2, 1, 64), (Size{64, 32}));
    EXPECT_EQ(Thumbnail({.columns = 2, .pixels = {1, 2}}, 4).Pixels(),
              (Bytes{1, 1, 2, 2, 1, 1, 2, 2}));
}

TEST(Thumbnail, OfALineIsALine) {
    EXPECT_EQ(SizeOf(1000, 2, 64), (Size{64, 1}));
    EXPECT_EQ(SizeOf(2, 1000, 64), (Size{1, 64}));
}

TEST(Thumbnail, SizesBeyondReasonGiveNone) {
    EXPECT_EQ(SizeOf(4, 4, 0), (Size{0, 0}));
    EXPECT_EQ(SizeOf(4, 4, 20000), (Size{0, 0}));
    EXPECT_EQ(SizeOf(4, 4, 0xFFFFFFFF), (Size{0, 0}));
}

TEST(Thumbnail, IsOfTheFrameOneThirdIn) {
    const auto picture = [](const char* frames) {
        return Thumbnail({.frameCount = frames,
                          .rows = 1,
                          .columns = 1,
                          .pixels = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
                         1)
            .Pixels();
    };
    EXPECT_EQ(picture("1"), (Bytes{0}));
    EXPECT_EQ(picture("2"), (Bytes{0}));
    EXPECT_EQ(picture("3"), (Bytes{1}));
    EXPECT_EQ(picture("10"), (Bytes{3}));
    EXPECT_FALSE(Thumbnail({.frameCount = "30", .columns = 1, .pixels = Bytes(10)}, 1).Exists());
}

}  // namespace
