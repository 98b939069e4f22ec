// What counts as an image, and what is said of it.
#include <gtest/gtest.h>

#include "imaging/image_file.h"
#include "support/captured.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::Bytes;
using pgkit_test::ImageFile;
using pgkit_test::kRleLossless;
using pgkit_test::LoadedImage;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

bool Loads(const ImageFile& file) {
    const LoadedImage image(file);
    EXPECT_EQ(vwImaGetNumber(image.Handle()) > 0, image.IsLoaded());
    return image.IsLoaded();
}

bool IsGrayscale(const ImageFile& file) {
    const LoadedImage image(file);
    EXPECT_TRUE(image.IsLoaded());
    return vwImaIsGrayscaleImage(image.Handle()) == 1;
}

uint32_t Number(const char* frameCount) {
    const LoadedImage image(ImageFile{.frameCount = frameCount, .pixels = Bytes(4)});
    EXPECT_TRUE(image.IsLoaded());
    return vwImaGetNumber(image.Handle());
}

TEST(Image, WithoutContentHasNoFrames) {
    void* const image = vwImaAllocEmptyDicomImage();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(vwImaIsGrayscaleImage(image), 0);
    EXPECT_EQ(vwImaGetNumber(image), 0u);
    EXPECT_EQ(vwImaGetHDib(image, 0), nullptr);
    EXPECT_EQ(vwGetThumbnailDib(image, 64), nullptr);
    vwImaFreeDicomImage(image);
}

TEST(Image, NullIsAllowedEverywhere) {
    vwImaFreeDicomImage(nullptr);
    EXPECT_EQ(vwImaLoadFrom(nullptr, "image.dcm"), 0);
    EXPECT_EQ(vwImaIsGrayscaleImage(nullptr), 0);
    EXPECT_EQ(vwImaGetNumber(nullptr), 0u);
    EXPECT_EQ(vwImaGetHDib(nullptr, 0), nullptr);
    EXPECT_EQ(vwGetThumbnailDib(nullptr, 64), nullptr);
    void* const image = vwImaAllocEmptyDicomImage();
    EXPECT_EQ(vwImaLoadFrom(image, nullptr), 0);
    vwImaFreeDicomImage(image);
}

TEST(Loading, GrayscaleImages) {
    EXPECT_TRUE(IsGrayscale({.pixels = Bytes(4)}));
    EXPECT_TRUE(IsGrayscale({.photometricInterpretation = "MONOCHROME1", .pixels = Bytes(4)}));
    // Older images may not say it.
    EXPECT_TRUE(IsGrayscale({.photometricInterpretation = "", .pixels = Bytes(4)}));
}

TEST(Loading, ColourImagesAreLoadedButHaveNoBitmaps) {
    for (const char* interpretation : {"RGB ", "YBR_FULL", "PALETTE COLOR", "mono"}) {
        EXPECT_FALSE(
            IsGrayscale({.photometricInterpretation = interpretation, .pixels = Bytes(4)}));
    }
    const ImageFile rgb{
        .photometricInterpretation = "RGB ", .samplesPerPixel = 3, .pixels = Bytes(12)};
    const LoadedImage image(rgb);
    EXPECT_EQ(vwImaGetNumber(image.Handle()), 1u);
    EXPECT_FALSE(image.Frame(0).Exists());
    EXPECT_EQ(vwGetThumbnailDib(image.Handle(), 64), nullptr);
    EXPECT_FALSE(IsGrayscale({.samplesPerPixel = 3, .pixels = Bytes(12)}));
}

TEST(Loading, OnlyRleOfTheCompressedSyntaxes) {
    const std::vector<Bytes> items = {{}, Bytes(64)};
    EXPECT_TRUE(Loads({.items = items, .transferSyntax = kRleLossless}));
    for (const char* syntax :
         {"1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.70", "1.2.840.10008.1.2.4.90",
          "1.2.840.10008.1.2.1", "1.2.840.10008.1.2.50", "1.2.3"}) {
        EXPECT_FALSE(Loads({.items = items, .transferSyntax = syntax})) << syntax;
    }
}

TEST(Loading, NumberOfFrames) {
    EXPECT_EQ(Number(""), 1u);
    EXPECT_EQ(Number("1"), 1u);
    EXPECT_EQ(Number("30"), 30u);
    EXPECT_EQ(Number(" 7 "), 7u);
    EXPECT_EQ(Number("0"), 1u);
    EXPECT_EQ(Number("-3"), 1u);
    EXPECT_EQ(Number("many"), 1u);
    EXPECT_EQ(Number("99999999999"), 0x7FFFFFFFu);
}

TEST(Loading, FilesThatCannotBeOpened) {
    const TempDir directory;
    EXPECT_FALSE(LoadedImage(directory.Path("missing")).IsLoaded());
    EXPECT_FALSE(LoadedImage(directory.Path("")).IsLoaded());
    EXPECT_FALSE(LoadedImage(std::string()).IsLoaded());
}

TEST(Loading, FilesThatAreNoImage) {
    EXPECT_FALSE(LoadedImage(Bytes()).IsLoaded());
    EXPECT_FALSE(LoadedImage(Bytes(1000, 0xFF)).IsLoaded());
    StreamBuilder report;
    report.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "SR");
    EXPECT_FALSE(LoadedImage(report.Data()).IsLoaded());
    // Pixels that nothing describes.
    report.Element(0x7FE0, 0x0010, "OW", "12345678");
    EXPECT_FALSE(LoadedImage(report.Data()).IsLoaded());
}

TEST(Loading, NeedsRowsColumnsAndPixels) {
    EXPECT_FALSE(Loads({.rows = 0, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.columns = 0, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.pixels = {}}));
}

TEST(Loading, NeedsSamplesOfWholeBytes) {
    for (const uint16_t bits : std::initializer_list<uint16_t>{0, 1, 7, 9, 12, 24, 64, 65535}) {
        EXPECT_FALSE(Loads({.bitsAllocated = bits, .pixels = Bytes(64)})) << bits;
    }
}

TEST(Loading, NeedsStoredBitsWithinTheAllocatedOnes) {
    EXPECT_TRUE(Loads({.bitsStored = 1, .highBit = 0, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.bitsStored = 0, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.bitsStored = 9, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.bitsStored = 65535, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.highBit = 8, .pixels = Bytes(4)}));
    EXPECT_FALSE(Loads({.bitsStored = 8, .highBit = 6, .pixels = Bytes(4)}));
}

TEST(Loading, TakesTheNewFile) {
    const TempDir directory;
    const LoadedImage image(ImageFile{.frameCount = "2", .pixels = {1, 2, 3, 4, 5, 6, 7, 8}});
    const std::string other = directory.Write("other", ImageFile{.pixels = {9, 9, 8, 8}}.Build());
    EXPECT_EQ(vwImaLoadFrom(image.Handle(), other.c_str()), 1);
    EXPECT_EQ(vwImaGetNumber(image.Handle()), 1u);
    EXPECT_EQ(image.Pixels(), (Bytes{9, 9, 8, 8}));
    EXPECT_EQ(vwImaLoadFrom(image.Handle(), directory.Path("missing").c_str()), 0);
    EXPECT_EQ(vwImaGetNumber(image.Handle()), 0u);
    EXPECT_FALSE(image.Frame(0).Exists());
    // The file is no longer open: it can be removed on every platform.
    EXPECT_TRUE(std::filesystem::remove(other));
}

TEST(Loading, BareDataSets) {
    const LoadedImage image(ImageFile{.pixels = {1, 2, 3, 4}, .transferSyntax = ""});
    ASSERT_TRUE(image.IsLoaded());
    EXPECT_EQ(image.Pixels(), (Bytes{1, 2, 3, 4}));
}

TEST(Loading, PrintsNothing) {
    const TempDir directory;
    const auto printed = pgkit_test::CapturePrinted([&] {
        const LoadedImage missing(directory.Path("missing"));
        const LoadedImage image(ImageFile{.pixels = Bytes(4)});
        const Bitmap frame = image.Frame(0);
        EXPECT_EQ(vwWriteDib(frame.Handle(), directory.Path("no/such/directory").c_str()), 0);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

}  // namespace
