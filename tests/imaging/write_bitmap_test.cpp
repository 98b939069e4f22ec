// Bitmaps as BMP files.
#include <gtest/gtest.h>
#include <pgkit/imaging.h>
#include <pgkit/paths.h>

#include <filesystem>

#include "imaging/bitmap.h"

namespace {

using pgkit_test::Bitmap;
using pgkit_test::Bytes;
using pgkit_test::GrayBitmap;
using pgkit_test::LibraryPath;
using pgkit_test::ReadFile;
using pgkit_test::TempDir;

TEST(WriteDib, PutsAFileHeaderInFront) {
    const TempDir directory;
    const std::string path = directory.Path("picture.bmp");
    const Bitmap bitmap = GrayBitmap(3, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(vwWriteDib(bitmap.Handle(), path.c_str()), 1);
    // 14 + 40 + 1024 + 8 bytes, the pixels from 1078 on.
    Bytes expected = {'B', 'M', 0x3E, 0x04, 0, 0, 0, 0, 0, 0, 0x36, 0x04, 0, 0};
    const Bytes all = bitmap.All();
    expected.insert(expected.end(), all.begin(), all.end());
    EXPECT_EQ(ReadFile(path), expected);
}

TEST(WriteDib, ColouredBitmapsHaveNoColourTable) {
    const TempDir directory;
    const std::string path = directory.Path("picture.bmp");
    const Bytes bytes = pgkit_test::BitmapBytes(1, 1, 24, 4);
    EXPECT_EQ(vwWriteDib(Bitmap(bytes).Handle(), path.c_str()), 1);
    Bytes expected = {'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0};
    expected.insert(expected.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(ReadFile(path), expected);
}

TEST(WriteDib, ReplacesAnExistingFile) {
    const TempDir directory;
    const std::string path = directory.Write("picture.bmp", Bytes(5000, 9));
    EXPECT_EQ(vwWriteDib(GrayBitmap(1, 1, {1}).Handle(), path.c_str()), 1);
    EXPECT_EQ(ReadFile(path).size(), 14u + 40 + 1024 + 4);
}

TEST(WriteDib, BackslashesSeparateComponents) {
    const TempDir directory;
    const std::string path = LibraryPath(directory.Path("picture.bmp"));
    EXPECT_EQ(vwWriteDib(GrayBitmap(1, 1, {1}).Handle(), path.c_str()), 1);
    EXPECT_EQ(ReadFile(directory.Path("picture.bmp")).size(), 14u + 40 + 1024 + 4);
}

TEST(WriteDib, TakesPathsInTheEncodingOfTheLibrary) {
    const TempDir directory;
    const std::string path = directory.Path("\xC3\x9Cn\xC3\xAF \xE4\xB8\xAD");  // UTF-8
    pgxSetPathEncoding(PGX_PATHS_UTF8);
    EXPECT_EQ(vwWriteDib(GrayBitmap(1, 1, {1}).Handle(), path.c_str()), 1);
    pgxSetPathEncoding(PGX_PATHS_SYSTEM);
    const std::filesystem::path written(std::u8string(path.begin(), path.end()));
    EXPECT_EQ(file_size(written), 14u + 40 + 1024 + 4);
}

TEST(WriteDib, FailsWithoutBitmapOrPlace) {
    const TempDir directory;
    const Bitmap bitmap = GrayBitmap(1, 1, {1});
    EXPECT_EQ(vwWriteDib(nullptr, directory.Path("picture.bmp").c_str()), 0);
    EXPECT_EQ(vwWriteDib(bitmap.Handle(), nullptr), 0);
    EXPECT_EQ(vwWriteDib(bitmap.Handle(), ""), 0);
    EXPECT_EQ(vwWriteDib(bitmap.Handle(), directory.Path("").c_str()), 0);
    EXPECT_EQ(vwWriteDib(bitmap.Handle(), directory.Path("missing/picture.bmp").c_str()), 0);
    EXPECT_FALSE(std::filesystem::exists(directory.Path("picture.bmp")));
}

}  // namespace
