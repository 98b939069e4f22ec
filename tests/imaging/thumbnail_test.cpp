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
    EXPECT_EQ(SizeOf(300, 200, 64), (Size{64, 43}));
    EXPECT_EQ(SizeOf(300, 199, 64), (Size{64, 42}));
    EXPECT_EQ(SizeOf(200, 300, 64), (Size{43, 64}));
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

// A thumbnail never sees the bitmap of the whole frame, but it is what that would be scaled to.
TEST(Thumbnail, IsTheFrameZoomed) {
    Bytes pixels(size_t{97} * 60);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * i / 7 + i);
    const LoadedImage image(ImageFile{.rows = 60, .columns = 97, .pixels = pixels});
    const Bitmap frame = image.Frame(0);
    for (const uint32_t size : {1u, 2u, 13u, 48u, 96u, 97u, 98u, 194u, 250u}) {
        const Bitmap thumbnail(vwGetThumbnailDib(image.Handle(), size));
        const Bitmap zoomed(vwDuplicateZoomDib(frame.Handle(), size / 97.0));
        EXPECT_EQ(thumbnail.All(), zoomed.All()) << size;
    }
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
