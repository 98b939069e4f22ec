// Bitmaps in other sizes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

#include "imaging/image_file.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::BitmapBytes;
using pgkit_test::Bytes;
using pgkit_test::GrayBitmap;
using pgkit_test::PutU32;

Bitmap Duplicate(const Bitmap& bitmap, double zoom) {
    return Bitmap(vwDuplicateZoomDib(bitmap.Handle(), zoom));
}

Bitmap Interpolate(const Bitmap& bitmap, double zoom) {
    return Bitmap(vwInterpolateZoomDib(bitmap.Handle(), zoom));
}

std::pair<uint32_t, uint32_t> ZoomedSize(uint32_t width, uint32_t height, double zoom) {
    const Bitmap zoomed = Duplicate(GrayBitmap(width, height, Bytes(size_t{width} * height)), zoom);
    if (!zoomed.Exists()) return {0, 0};
    return {zoomed.Width(), zoomed.Height()};
}

using Size = std::pair<uint32_t, uint32_t>;

TEST(DuplicateZoom, OfOneIsACopy) {
    const Bitmap bitmap = GrayBitmap(3, 2, {1, 2, 3, 4, 5, 6});
    for (const Bitmap& copy : {Duplicate(bitmap, 1.0), Interpolate(bitmap, 1.0)}) {
        ASSERT_TRUE(copy.Exists());
        EXPECT_NE(copy.Handle(), bitmap.Handle());
        EXPECT_EQ(copy.All(), bitmap.All());
    }
}

TEST(DuplicateZoom, HalfIsTheMeanOfFourPixels) {
    const Bitmap half = Duplicate(GrayBitmap(4, 2,
                                             {0, 10, 255, 255,  //
                                              20, 30, 255, 255}),
                                  0.5);
    ASSERT_TRUE(half.Exists());
    EXPECT_EQ(half.Width(), 2u);
    EXPECT_EQ(half.Height(), 1u);
    EXPECT_EQ(half.Pixels(), (Bytes{15, 255}));
    EXPECT_EQ(half.StoredRows(), (Bytes{15, 255, 0, 0}));
    EXPECT_EQ(half.U32(20), 4u);
    EXPECT_EQ(half.U32(32), 256u);
    EXPECT_EQ(half.Part(40 + 4 * 200, 4), (Bytes{200, 200, 200, 0}));
}

TEST(DuplicateZoom, MeansAreRoundedToTheNearest) {
    EXPECT_EQ(Duplicate(GrayBitmap(2, 2, {0, 0, 0, 1}), 0.5).Pixels(), (Bytes{0}));
    EXPECT_EQ(Duplicate(GrayBitmap(2, 2, {0, 0, 1, 1}), 0.5).Pixels(), (Bytes{1}));
    EXPECT_EQ(Duplicate(GrayBitmap(2, 2, {254, 255, 255, 255}), 0.5).Pixels(), (Bytes{255}));
}

// Three pixels become two: each is one old pixel and half of the one in the middle.
TEST(DuplicateZoom, PixelsCountByTheAreaThatIsCovered) {
    EXPECT_EQ(Duplicate(GrayBitmap(3, 3, {0, 90, 240, 0, 90, 240, 0, 90, 240}), 2.0 / 3).Pixels(),
              (Bytes{30, 190, 30, 190}));
    EXPECT_EQ(Duplicate(GrayBitmap(3, 3, {0, 0, 0, 90, 90, 90, 240, 240, 240}), 2.0 / 3).Pixels(),
              (Bytes{30, 30, 190, 190}));
}

TEST(DuplicateZoom, OfAnEvenPictureStaysEven) {
    for (double zoom : {0.1, 0.37, 0.999, 1.5, 3.3}) {
        const Bitmap zoomed = Duplicate(GrayBitmap(17, 13, Bytes(221, 77)), zoom);
        EXPECT_EQ(zoomed.Pixels(), Bytes(size_t{zoomed.Width()} * zoomed.Height(), 77)) << zoom;
    }
}

TEST(DuplicateZoom, WholeFactorsRepeatPixels) {
    EXPECT_EQ(Duplicate(GrayBitmap(2, 2, {1, 2, 3, 4}), 2).Pixels(), (Bytes{1, 1, 2, 2,  //
                                                                            1, 1, 2, 2,  //
                                                                            3, 3, 4, 4,  //
                                                                            3, 3, 4, 4}));
}

// Used to be rounded down.
TEST(DuplicateZoom, SidesAreRoundedToTheNearestAndNeverZero) {
    EXPECT_EQ(ZoomedSize(10, 10, 0.99), (Size{10, 10}));
    EXPECT_EQ(ZoomedSize(10, 10, 0.94), (Size{9, 9}));
    EXPECT_EQ(ZoomedSize(10, 1, 0.5), (Size{5, 1}));
    EXPECT_EQ(ZoomedSize(5, 7, 0.5), (Size{3, 4}));
    EXPECT_EQ(ZoomedSize(3, 1000, 0.1), (Size{1, 100}));
    EXPECT_EQ(ZoomedSize(10, 10, 1e-300), (Size{1, 1}));
    EXPECT_EQ(ZoomedSize(10, 10, 1.19), (Size{12, 12}));
    EXPECT_EQ(ZoomedSize(10, 10, 1.14), (Size{11, 11}));
}

// A product that falls just short of the middle between two lengths by its rounding is the middle.
TEST(DuplicateZoom, HalfPixelsAreRoundedUp) {
    for (uint32_t length = 1; length < 400; length += 2)
        EXPECT_EQ(ZoomedSize(length, 1, 0.1 * 5).first, (length + 1) / 2) << length;
    EXPECT_EQ(ZoomedSize(45, 15, 0.7), (Size{32, 11}));
    EXPECT_EQ(ZoomedSize(300, 200, 64.5 / 300).first, 65u);
}

// A fraction of two sizes, times one of them, must not fall short of the other.
TEST(DuplicateZoom, FractionsOfSizesGiveThatSize) {
    for (uint32_t height : {3u, 49u, 333u, 511u, 1023u, 2999u}) {
        for (uint32_t wanted : {1u, 2u, 31u, 64u, 107u, 256u}) {
            const double zoom = static_cast<double>(wanted) / height;
            EXPECT_EQ(ZoomedSize(1, height, zoom).second, wanted) << height;
        }
    }
}

TEST(DuplicateZoom, IconsOfTheUsualShapes) {
    EXPECT_EQ(ZoomedSize(512, 256, 32.0 / 256), (Size{64, 32}));
    EXPECT_EQ(ZoomedSize(256, 512, 64.0 / 512), (Size{32, 64}));
}

TEST(DuplicateZoom, AbsurdFactorsGiveNone) {
    const Bitmap bitmap = GrayBitmap(4, 4, Bytes(16));
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (double zoom :
         {0.0, -0.0, -1.0, -kInfinity, kInfinity, 1e300, 1e9, 16384.0, 5000.0, std::nan("")}) {
        EXPECT_FALSE(Duplicate(bitmap, zoom).Exists()) << zoom;
        EXPECT_FALSE(Interpolate(bitmap, zoom).Exists()) << zoom;
    }
}

TEST(InterpolateZoom, NewPixelsLieBetweenTheCentresOfTheOld) {
    EXPECT_EQ(Interpolate(GrayBitmap(2, 1, {0, 100}), 2).Pixels(), (Bytes{0, 25, 75, 100,  //
                                                                          0, 25, 75, 100}));
    EXPECT_EQ(Interpolate(GrayBitmap(2, 2, {0, 80, 160, 240}), 2).Pixels(),
              (Bytes{0, 20, 60, 80,       //
                     40, 60, 100, 120,    //
                     120, 140, 180, 200,  //
                     160, 180, 220, 240}));
}

TEST(InterpolateZoom, ReducesByMeans) {
    EXPECT_EQ(Interpolate(GrayBitmap(2, 2, {0, 10, 20, 30}), 0.5).Pixels(), (Bytes{15}));
}

TEST(InterpolateZoom, OfAnEvenPictureStaysEven) {
    for (double zoom : {1.01, 1.5, 3.3, 10.0}) {
        const Bitmap zoomed = Interpolate(GrayBitmap(17, 13, Bytes(221, 255)), zoom);
        EXPECT_EQ(zoomed.Pixels(), Bytes(size_t{zoomed.Width()} * zoomed.Height(), 255)) << zoom;
    }
}

TEST(Zoom, GraysAreThoseOfTheColourTable) {
    Bytes bytes = BitmapBytes(2, 1, 8, 4 * 256 + 4);
    for (uint32_t i = 0; i < 256; ++i)
        PutU32(bytes, 40 + size_t{4} * i, (255 - i) * 0x010101);
    bytes[40 + 4 * 256] = 5;
    bytes[40 + 4 * 256 + 1] = 15;
    EXPECT_EQ(Duplicate(Bitmap(bytes), 0.5).Pixels(), (Bytes{245}));
}

TEST(Zoom, ShortColourTableIsBlackBeyondItsEnd) {
    Bytes bytes = BitmapBytes(2, 1, 8, 4 * 2 + 4);
    PutU32(bytes, 20, 4);
    PutU32(bytes, 32, 2);
    PutU32(bytes, 44, 0xFEFEFE);
    bytes[48] = 1;
    bytes[49] = 200;
    const Bitmap zoomed = Duplicate(Bitmap(bytes), 0.5);
    EXPECT_EQ(zoomed.Pixels(), (Bytes{127}));
    EXPECT_EQ(zoomed.U32(32), 256u);
}

TEST(Zoom, ColouredPixelsAreAveragedByColour) {
    Bytes bytes = BitmapBytes(2, 1, 24, 8);
    const Bytes pixels = {0, 100, 255, 10, 200, 255};
    std::copy(pixels.begin(), pixels.end(), bytes.begin() + 40);
    const Bitmap bitmap(bytes);
    const Bitmap half = Duplicate(bitmap, 0.5);
    ASSERT_TRUE(half.Exists());
    EXPECT_EQ(half.U16(14), 24u);
    EXPECT_EQ(half.U32(32), 0u);
    EXPECT_EQ(half.Pixels(), (Bytes{5, 150, 255}));
    EXPECT_EQ(Duplicate(bitmap, 1.0).All(), bytes);
    EXPECT_EQ(Duplicate(bitmap, 2.0).Pixels().size(), 24u);
}

TEST(Zoom, OtherBitmapsAreNotTaken) {
    EXPECT_EQ(vwDuplicateZoomDib(nullptr, 1.0), nullptr);
    EXPECT_EQ(vwInterpolateZoomDib(nullptr, 1.0), nullptr);
    const Bytes good = GrayBitmap(4, 4, Bytes(16)).All();
    const auto isTaken = [&](size_t offset, uint32_t value) {
        Bytes bytes = good;
        PutU32(bytes, offset, value);
        return Duplicate(Bitmap(bytes), 1.0).Exists();
    };
    EXPECT_TRUE(isTaken(0, 40));
    EXPECT_FALSE(isTaken(0, 12));  // another header
    EXPECT_FALSE(isTaken(0, 124));
    EXPECT_FALSE(isTaken(4, 0));  // no width
    EXPECT_FALSE(isTaken(4, 0x7FFFFFFF));
    EXPECT_FALSE(isTaken(8, 0));             // no height
    EXPECT_FALSE(isTaken(8, 0xFFFFFFFC));    // top row first
    EXPECT_FALSE(isTaken(12, 1 | 1 << 16));  // 1, 4 and 32 bits for each pixel
    EXPECT_FALSE(isTaken(12, 1 | 4 << 16));
    EXPECT_FALSE(isTaken(12, 1 | 32 << 16));
    EXPECT_FALSE(isTaken(16, 1));    // compressed
    EXPECT_FALSE(isTaken(32, 257));  // more colours than there can be
    EXPECT_FALSE(isTaken(32, 0xFFFFFFFF));
    EXPECT_FALSE(isTaken(44, 0x000001));  // a colour
}

// Their headers used to be believed where handles are plain addresses.
TEST(Zoom, BitmapsThatExceedTheirBlockAreNotTaken) {
    const Bytes good = GrayBitmap(4, 4, Bytes(16)).All();
    const auto isTaken = [](const Bytes& bytes) {
        const Bitmap bitmap(bytes);
        pgkit_test::TempDir files;
        const bool isCopied = Duplicate(bitmap, 1.0).Exists();
        EXPECT_EQ(Duplicate(bitmap, 0.5).Exists(), isCopied);
        EXPECT_EQ(Interpolate(bitmap, 2.0).Exists(), isCopied);
        EXPECT_EQ(vwWriteDib(bitmap.Handle(), files.Path("bitmap").c_str()), isCopied ? 1 : 0);
        return isCopied;
    };
    const auto with = [&](size_t offset, uint32_t value) {
        Bytes bytes = good;
        PutU32(bytes, offset, value);
        return bytes;
    };
    EXPECT_TRUE(isTaken(good));
    EXPECT_FALSE(isTaken(with(4, 400)));
    EXPECT_FALSE(isTaken(with(4, 65535)));
    EXPECT_FALSE(isTaken(with(8, 400)));
    EXPECT_FALSE(isTaken(with(8, 65535)));
    // Blocks may be a little larger than was asked for.
    for (const size_t size : {size_t{1}, size_t{4}, size_t{39}, size_t{40}, size_t{1000}})
        EXPECT_FALSE(isTaken(Bytes(good.begin(), good.begin() + static_cast<ptrdiff_t>(size))));
}

}  // namespace
