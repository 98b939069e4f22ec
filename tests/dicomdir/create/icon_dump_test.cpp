#include "dicomdir/create/icon_dump.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "dicomdir/create/icon_making.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using namespace pgkit_test;

std::string DumpPath(int number) {
    char path[32];
    std::snprintf(path, sizeof path, "C:/pgSaveBmp%03d.bmp", number);
    return path;
}

// The number of the file that a dump has just written, which is removed; -1 for none.
int TakeDump() {
    for (int number = 0; number < 1000; ++number) {
        if (fs::remove(DumpPath(number))) return number;
    }
    return -1;
}

TEST(IconDump, WritesNumberedFiles) {
    const pgkit::BitmapHandle icon =
        pgkit::NewImageIcon(TestData("native/mr_explicit_be.dcm").c_str(), 16);
    if (icon == nullptr) GTEST_SKIP() << "built without the imaging module";
    // Where there are no drives, C: is a directory in the current one.
    const TempDir directory;
    const fs::path before = fs::current_path();
    fs::current_path(directory.Path(""));
    std::error_code isDrive;
    fs::create_directory("C:", isDrive);

    pgkit::DumpIcon(icon.get());
    const int first = TakeDump();
    EXPECT_GE(first, 0);
    pgkit::DumpIcon(icon.get());
    EXPECT_EQ(fs::file_size(DumpPath(first + 1)), 14u + 40 + 1024 + 16 * 16);
    EXPECT_EQ(TakeDump(), first + 1);
    pgkit::DumpIcon(nullptr);
    EXPECT_EQ(TakeDump(), -1);
    fs::current_path(before);
}

}  // namespace
