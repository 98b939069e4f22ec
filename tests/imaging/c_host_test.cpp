// The module in a host program written in C.
#include <gtest/gtest.h>

#include "imaging/image_file.h"
#include "support/process.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::Finished;
using pgkit_test::ImageFile;
using pgkit_test::ReadFile;
using pgkit_test::RunProgram;
using pgkit_test::TempDir;

TEST(CHost, WritesAThumbnail) {
    const TempDir directory;
    const ImageFile file{.columns = 2, .pixels = {10, 20}};
    const std::string image = directory.Write("image.dcm", file.Build());
    const std::string picture = directory.Path("picture.bmp");
    const Finished run = RunProgram(PGKIT_TEST_C_HOST, {image, "4", picture});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out.substr(0, run.out.find_first_of("\r\n")), "grayscale, 1 frames");
    const Bytes bytes = ReadFile(picture);
    ASSERT_EQ(bytes.size(), 14u + 40 + 1024 + 8);
    EXPECT_EQ(Bytes(bytes.end() - 8, bytes.end()), (Bytes{10, 10, 20, 20, 10, 10, 20, 20}));
}

TEST(CHost, IsToldThatAFileIsNoImage) {
    const TempDir directory;
    const std::string file = directory.Write("file", Bytes(10));
    const Finished run = RunProgram(PGKIT_TEST_C_HOST, {file, "4", directory.Path("picture.bmp")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_FALSE(std::filesystem::exists(directory.Path("picture.bmp")));
}

}  // namespace
