// Files that somebody else holds open, as scanners and indexers do.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "platform/platform.h"
#include "support/temp_dir.h"
#include "support/threads.h"

namespace {

using pgkit_test::ReadFile;
using pgkit_test::TempDir;

class HeldFile : public testing::Test {
  protected:
    // Opens the target as one that lets nobody rename it.
    HANDLE Hold() {
        return CreateFileA(target_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                           0, nullptr);
    }
    std::string Content() {
        const auto bytes = ReadFile(target_);
        return std::string(bytes.begin(), bytes.end());
    }

    TempDir directory_;
    std::string target_ = directory_.Write("target", "old");
    std::string replacement_ = directory_.Write("replacement", "new");
};

// Saving over a file just written used to fail when a scanner had it open at that moment.
TEST_F(HeldFile, IsReplacedWhenItIsLetGoSoon) {
    const HANDLE held = Hold();
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    bool isReplaced = false;
    pgkit_test::RunOnThreads(2, [&](size_t i) {
        if (i == 0) {
            isReplaced = pgkit::platform::ReplaceWith(target_.c_str(), replacement_.c_str());
        } else {
            Sleep(200);
            CloseHandle(held);
        }
    });
    EXPECT_TRUE(isReplaced);
    EXPECT_EQ(Content(), "new");
}

TEST_F(HeldFile, IsLeftAloneWhenItIsHeldOn) {
    const HANDLE held = Hold();
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    const ULONGLONG start = GetTickCount64();
    EXPECT_FALSE(pgkit::platform::ReplaceWith(target_.c_str(), replacement_.c_str()));
    EXPECT_LT(GetTickCount64() - start, 10'000u);
    CloseHandle(held);
    EXPECT_EQ(Content(), "old");
    EXPECT_TRUE(pgkit::platform::PathExists(replacement_.c_str()));
}

}  // namespace
