#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "real_path.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using pgtool::RealPath;
using pgtool::RealPaths;

class RealPathsTest : public testing::Test {
  protected:
    RealPathsTest() {
        fs::create_directories(directory_.Path("a/b"));
        directory_.Write("a/b/file", "x");
    }
    std::string Path(const std::string& name) const {
        return fs::path(directory_.Path(name)).generic_string();
    }

    pgkit_test::TempDir directory_;
    RealPaths paths_;
};

TEST_F(RealPathsTest, AreThoseThatTheSystemGives) {
    for (const char* name : {"a/b/file", "a/b", "a", "a/b/", "a//b/file", "a/./b/file",
                             "a/b/../b/file", "a/none", "none/none", "a/b/file/none"}) {
        EXPECT_EQ(paths_.Of(Path(name)), RealPath(Path(name))) << name;
        EXPECT_EQ(paths_.Of(Path(name)), RealPath(Path(name))) << name << ", again";
    }
    EXPECT_EQ(paths_.Of("."), RealPath("."));
    EXPECT_EQ(paths_.Of("/"), RealPath("/"));
    EXPECT_EQ(paths_.Of(""), RealPath(""));
}

TEST_F(RealPathsTest, FollowLinksOfFilesAndOfFolders) {
    std::error_code error;
    fs::create_symlink(directory_.Path("a/b/file"), directory_.Path("a/link"), error);
    if (error) GTEST_SKIP() << "no links here";
    fs::create_directory_symlink(directory_.Path("a/b"), directory_.Path("folder"));
    fs::create_symlink(directory_.Path("none"), directory_.Path("lost"));
    for (const char* name : {"a/link", "folder", "folder/file", "folder/../b/file", "lost",
                             "lost/file", "folder/none"}) {
        EXPECT_EQ(paths_.Of(Path(name)), RealPath(Path(name))) << name;
    }
    EXPECT_EQ(paths_.Of(Path("folder/file")), RealPath(Path("a/b/file")));
}

TEST_F(RealPathsTest, AreAskedForOnce) {
    const auto before = paths_.Of(Path("a/b/file"));
    fs::remove(directory_.Path("a/b/file"));
    EXPECT_EQ(paths_.Of(Path("a/b/file")), before);
}

}  // namespace
