// The bitmaps that frames become.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::Bytes;
using pgkit_test::ImageFile;
using pgkit_test::LoadedImage;

TEST(FrameBitmap, HasAnEightBitHeader) {
    const LoadedImage image(ImageFile{.rows = 2, .columns = 6, .pixels = Bytes(12)});
    const Bitmap bitmap = image.Frame(0);
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.U32(0), 40u);    // biSize
    EXPECT_EQ(bitmap.U32(4), 6u);     // biWidth
    EXPECT_EQ(bitmap.U32(8), 2u);     // biHeight
    EXPECT_EQ(bitmap.U16(12), 1u);    // biPlanes
    EXPECT_EQ(bitmap.U16(14), 8u);    // biBitCount
    EXPECT_EQ(bitmap.U32(16), 0u);    // biCompression
    EXPECT_EQ(bitmap.U32(20), 16u);   // biSizeImage
    EXPECT_EQ(bitmap.U32(24), 0u);    // biXPelsPerMeter
    EXPECT_EQ(bitmap.U32(28), 0u);    // biYPelsPerMeter
    EXPECT_EQ(bitmap.U32(32), 256u);  // biClrUsed
    EXPECT_EQ(bitmap.U32(36), 0u);    // biClrImportant
}

TEST(FrameBitmap, HasATableOf256Grays) {
    const LoadedImage image(ImageFile{.pixels = Bytes(4)});
    const Bitmap bitmap = image.Frame(0);
    ASSERT_TRUE(bitmap.Exists());
    for (const uint8_t gray : std::initializer_list<uint8_t>{0, 1, 128, 255}) {
        EXPECT_EQ(bitmap.Part(40 + size_t{4} * gray, 4), (Bytes{gray, gray, gray, 0}));
    }
}

TEST(FrameBitmap, RowsRunFromTheBottomUp) {
    const LoadedImage image(ImageFile{.rows = 3,
                                      .columns = 4,
                                      .pixels = {1, 2, 3, 4,  //
                                                 5, 6, 7, 8,  //
                                                 9, 10, 11, 12}});
    EXPECT_EQ(image.Frame(0).StoredRows(), (Bytes{9, 10, 11, 12,  //
                                                  5, 6, 7, 8,     //
                                                  1, 2, 3, 4}));
}

TEST(FrameBitmap, RowsArePaddedToFourBytes) {
    const LoadedImage three(ImageFile{.rows = 2, .columns = 3, .pixels = {1, 2, 3, 4, 5, 6}});
    EXPECT_EQ(three.Frame(0).StoredRows(), (Bytes{4, 5, 6, 0, 1, 2, 3, 0}));
    const LoadedImage five(ImageFile{.rows = 1, .columns = 5, .pixels = {1, 2, 3, 4, 5, 0}});
    EXPECT_EQ(five.Frame(0).StoredRows(), (Bytes{1, 2, 3, 4, 5, 0, 0, 0}));
    const LoadedImage one(ImageFile{.rows = 2, .columns = 1, .pixels = {1, 2}});
    EXPECT_EQ(one.Frame(0).StoredRows(), (Bytes{2, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(FrameBitmap, EachFrameHasItsOwn) {
    const LoadedImage image(
        ImageFile{.frameCount = "3", .pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}});
    EXPECT_EQ(vwImaGetNumber(image.Handle()), 3u);
    EXPECT_EQ(image.Pixels(0), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(image.Pixels(1), (Bytes{5, 6, 7, 8}));
    EXPECT_EQ(image.Pixels(2), (Bytes{9, 10, 11, 12}));
}

TEST(FrameBitmap, FramesOutOfRangeHaveNone) {
    const LoadedImage image(ImageFile{.frameCount = "2", .pixels = Bytes(12)});
    EXPECT_TRUE(image.Frame(1).Exists());
    EXPECT_FALSE(image.Frame(2).Exists());
    EXPECT_FALSE(image.Frame(0xFFFFFFFF).Exists());
}

TEST(FrameBitmap, OutlivesItsImage) {
    void* handle = nullptr;
    {
        const LoadedImage image(ImageFile{.pixels = {1, 2, 3, 4}});
        handle = vwImaGetHDib(image.Handle(), 0);
    }
    const Bitmap bitmap(handle);
    ASSERT_TRUE(bitmap.Exists());
    EXPECT_EQ(bitmap.Pixels(), (Bytes{1, 2, 3, 4}));
}

}  // namespace
