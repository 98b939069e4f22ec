// What images of a few bytes and many pixels take.
#include <gtest/gtest.h>

#include "imaging/image_file.h"
#include "support/peak_memory.h"

namespace {

using namespace pgkit_test;

constexpr uint16_t kSide = 6000;
constexpr uint64_t kPixels = uint64_t{kSide} * kSide;
constexpr uint64_t kAllowance = uint64_t{64} << 20;

// Every segment in runs of 128 bytes.
ImageFile EvenRleImage(uint16_t bitsAllocated) {
    Bytes segment;
    for (uint64_t i = 0; i < kPixels; i += 128)
        segment.insert(segment.end(), {0x81, 1});
    const std::vector<Bytes> segments(bitsAllocated / 8, segment);
    return {.rows = kSide,
            .columns = kSide,
            .bitsAllocated = bitsAllocated,
            .items = {Bytes(), RleFrame(segments)},
            .transferSyntax = kRleLossless};
}

// Runs code with a loaded image, and expects that it takes no more than allowed and 8 times the
// file.
template <typename Code>
void ExpectWithinBounds(const Bytes& file, uint64_t allowed, Code&& code) {
    const PeakMemory memory;
    {
        const LoadedImage image(file);
        ASSERT_TRUE(image.IsLoaded());
        code(image);
    }
    if (const auto growth = memory.Growth()) {
        EXPECT_LE(*growth, allowed + 8 * file.size());
    }
}

// Used to take 185 times the file: all samples, beside the bitmap.
TEST(Memory, OfARleImageIsThatOfItsBitmap) {
    for (const uint16_t bitsAllocated : std::initializer_list<uint16_t>{8, 16, 32}) {
        const Bytes file = EvenRleImage(bitsAllocated).Build();
        ExpectWithinBounds(file, kAllowance + kPixels, [](const LoadedImage& image) {
            const Bitmap frame = image.Frame(0);
            ASSERT_TRUE(frame.Exists());
            EXPECT_EQ(frame.Width(), kSide);
            EXPECT_EQ(frame.Height(), kSide);
        });
    }
}

// Used to take the bitmap of the whole frame, too.
TEST(Memory, OfAThumbnailIsWithoutTheFrame) {
    for (const uint16_t bitsAllocated : std::initializer_list<uint16_t>{8, 32}) {
        const Bytes file = EvenRleImage(bitsAllocated).Build();
        ExpectWithinBounds(file, kAllowance / 4, [](const LoadedImage& image) {
            const Bitmap thumbnail(vwGetThumbnailDib(image.Handle(), 64));
            ASSERT_TRUE(thumbnail.Exists());
            EXPECT_EQ(thumbnail.Width(), 64u);
        });
    }
}

TEST(Memory, OfAnUncompressedImageIsItsPixelsAndItsBitmap) {
    const Bytes file = ImageFile{.rows = kSide, .columns = kSide, .pixels = Bytes(kPixels)}.Build();
    const PeakMemory memory;
    {
        const LoadedImage image(file);
        EXPECT_TRUE(image.Frame(0).Exists());
    }
    if (const auto growth = memory.Growth()) {
        EXPECT_LE(*growth, kAllowance / 4 + 2 * kPixels);
    }
}

}  // namespace
