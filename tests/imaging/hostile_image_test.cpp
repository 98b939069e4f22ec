// Images that claim more than they have.
#include <gtest/gtest.h>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::HasBitmap;
using pgkit_test::ImageFile;
using pgkit_test::LoadedImage;
using pgkit_test::Words;

TEST(HostileImage, TooFewPixelsHaveNoBitmap) {
    EXPECT_FALSE(HasBitmap({.rows = 2, .pixels = Bytes(6)}));
    EXPECT_FALSE(HasBitmap({.bitsAllocated = 16, .pixels = Bytes(6)}));
    EXPECT_FALSE(HasBitmap({.bitsAllocated = 32, .pixels = Bytes(14)}));
    EXPECT_TRUE(HasBitmap({.bitsAllocated = 16, .pixels = Bytes(8)}));
}

TEST(HostileImage, FramesThatAreNotThereHaveNoBitmap) {
    const ImageFile file{.frameCount = "1000000", .pixels = Bytes(8)};
    EXPECT_TRUE(HasBitmap(file, 1));
    EXPECT_FALSE(HasBitmap(file, 2));
    EXPECT_FALSE(HasBitmap(file, 999999));
}

TEST(HostileImage, LargestFrameIndexDoesNotWrap) {
    const ImageFile file{.frameCount = "2147483647", .pixels = Bytes(8)};
    EXPECT_FALSE(HasBitmap(file, 0x40000000));  // at 4 bytes a frame, 4 GiB into the value
    EXPECT_FALSE(HasBitmap(file, 0x7FFFFFFE));
}

TEST(HostileImage, HugeSidesHaveNoBitmap) {
    EXPECT_FALSE(HasBitmap({.rows = 65535, .columns = 65535, .pixels = Bytes(64)}));
    EXPECT_FALSE(
        HasBitmap({.rows = 65535, .columns = 65535, .bitsAllocated = 32, .pixels = Bytes(64)}));
    EXPECT_FALSE(HasBitmap({.rows = 16384, .columns = 16384, .pixels = Bytes(64)}));
    // 65536 * 65536 pixels, were the rows not limited to 16 bits, would wrap to none.
    EXPECT_FALSE(
        HasBitmap({.rows = 32768, .columns = 32768, .bitsAllocated = 32, .pixels = Bytes(64)}));
}

// The length says that all is there, the file does not hold it.
TEST(HostileImage, LengthBeyondTheEndOfTheFileIsNotBelieved) {
    for (const uint16_t side : std::initializer_list<uint16_t>{4, 64, 16000}) {
        Bytes file = ImageFile{.rows = side, .columns = side, .pixels = Bytes(12)}.Build();
        pgkit_test::PutU32(file, file.size() - 16, uint32_t{side} * side);
        const LoadedImage image(file);
        EXPECT_TRUE(image.IsLoaded());
        EXPECT_FALSE(image.Frame(0).Exists()) << side;
        EXPECT_EQ(vwGetThumbnailDib(image.Handle(), 64), nullptr);
    }
}

TEST(HostileImage, LongestSidesHaveABitmap) {
    const LoadedImage wide(ImageFile{.rows = 1, .columns = 65535, .pixels = Bytes(65536, 7)});
    EXPECT_EQ(wide.Pixels(), Bytes(65535, 7));
    const LoadedImage high(ImageFile{.rows = 65535, .columns = 1, .pixels = Bytes(65536, 7)});
    EXPECT_EQ(high.Pixels(), Bytes(65535, 7));
}

TEST(HostileImage, EveryPrefixOfAFileIsHarmless) {
    const Bytes whole = ImageFile{.frameCount = "2",
                                  .bitsAllocated = 16,
                                  .rescaleIntercept = "-5",
                                  .rescaleSlope = "2",
                                  .pixels = Words({1, 2, 3, 4, 5, 6, 7, 8})}
                            .Build();
    for (size_t size = 0; size < whole.size(); ++size) {
        const LoadedImage image(
            Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_FALSE(image.Frame(1).Exists());
    }
    EXPECT_TRUE(LoadedImage(whole).Frame(1).Exists());
}

// Every byte of the description in turn, with values that are likely to hurt.
TEST(HostileImage, EveryChangedByteIsHarmless) {
    const Bytes whole = ImageFile{.frameCount = "2", .pixels = Bytes(8)}.Build();
    for (size_t position = 132; position < whole.size(); ++position) {
        for (const uint8_t value : std::initializer_list<uint8_t>{0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes file = whole;
            file[position] = value;
            const LoadedImage image(file);
            image.Frame(0);
            image.Frame(1);
        }
    }
    EXPECT_TRUE(LoadedImage(whole).Frame(1).Exists());
}

}  // namespace
