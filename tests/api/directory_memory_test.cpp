#include <gtest/gtest.h>

#include <string>

#include "pgkit/accessors.h"
#include "support/failing_new.h"
#include "support/instance_file.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::BlocksInUse;
using pgkit_test::FailingNew;
using pgkit_test::InstanceFile;
using pgkit_test::TempDir;

TEST(OpenDicomDirByHandle, LeavesNothingBehindWhenTheFileIsNoDicomdir) {
    const TempDir files;
    const std::string path = files.Write("image", InstanceFile().Data());
    const size_t before = BlocksInUse();
    EXPECT_EQ(pgKitOpenDicomDir(path.c_str(), 0x20000), nullptr);
    EXPECT_EQ(BlocksInUse(), before);
}

TEST(AllocationByHandle, GivesNullWithoutMemory) {
    const FailingNew failing(0);
    EXPECT_EQ(pgKitAllocEmptyNode(), nullptr);
    EXPECT_EQ(pgKitAllocNode(1, 0x0010, 0x0010, 0, 0), nullptr);
    EXPECT_EQ(pgKitListAllocate(), nullptr);
    EXPECT_EQ(pgKitOpenDicomDir("DICOMDIR", 0), nullptr);
}

}  // namespace
