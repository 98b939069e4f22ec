#include <gtest/gtest.h>

#include "codec/encoded.h"
#include "codec/offset_patching.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::PendingOffsets;

class PendingOffset : public testing::Test {
  protected:
    void SetUp() override {
        const uint32_t none = 0;
        offset_ = root_->InsertNode(0x0004, 0x1200, &none, 4);
        item_ = AddItem(*root_->InsertNode(0x0004, 0x1220, nullptr, 0));
        offset_->offsetPending = 1;
        offset_->offsetTarget = item_;
    }

    // Patches a file of 16 bytes.
    pgkit::WriteResult Patch(PendingOffsets& offsets, const char* mode = "r+b") {
        path_ = directory_.Write("file", "0123456789abcdef");
        return offsets.Patch(pgkit::platform::FileHandle(std::fopen(path_.c_str(), mode)),
                             pgkit::ByteOrder::Little);
    }

    DataSet root_{pgAllocateDataSetNode()};
    PGX_Node* offset_ = nullptr;
    PGX_Node* item_ = nullptr;
    TempDir directory_;
    std::string path_;
};

TEST_F(PendingOffset, IsPutWhereItsValueWasWritten) {
    PendingOffsets offsets(*root_);
    offsets.Positions().Record(*offset_, 8);
    offsets.Positions().Record(*item_, 0x64636261 + 8);
    EXPECT_EQ(Patch(offsets), pgkit::kWritten);
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(std::string(file.begin(), file.end()), "01234567abcdcdef");
    EXPECT_EQ(offset_->offsetPending, 0u);
}

TEST_F(PendingOffset, NeedsAFileThatCouldBeReopened) {
    PendingOffsets offsets(*root_);
    EXPECT_EQ(offsets.Patch(nullptr, pgkit::ByteOrder::Little), pgkit::kCannotReopen);
    EXPECT_EQ(offset_->offsetPending, 1u);
}

TEST_F(PendingOffset, ReportsAFileThatCannotBeWritten) {
    PendingOffsets offsets(*root_);
    offsets.Positions().Record(*offset_, 8);
    offsets.Positions().Record(*item_, 16);
    EXPECT_EQ(Patch(offsets, "rb"), pgkit::kWriteFailed);
}

TEST_F(PendingOffset, IsNotCutToFitThirtyTwoBits) {
    PendingOffsets offsets(*root_);
    offsets.Positions().Record(*offset_, 8);
    offsets.Positions().Record(*item_, 0x1'0000'0008);
    EXPECT_EQ(Patch(offsets), pgkit::kWriteFailed);
    EXPECT_EQ(offset_->offsetPending, 1u);
    offsets.Positions().Record(*item_, 0x1'0000'0007);
    EXPECT_EQ(Patch(offsets), pgkit::kWritten);
    EXPECT_EQ(offset_->GetULValue(), 0xFFFFFFFFu);
}

TEST_F(PendingOffset, OfATargetThatWasNotWrittenTakesThePositionItCarries) {
    PGX_Node elsewhere;
    elsewhere.fileOffset = 0x41414149;
    offset_->offsetTarget = &elsewhere;
    PendingOffsets offsets(*root_);
    offsets.Positions().Record(*offset_, 0);
    EXPECT_EQ(Patch(offsets), pgkit::kWritten);
    const Bytes file = ReadFile(path_);
    EXPECT_EQ(std::string(file.begin(), file.end()), "AAAA456789abcdef");
}

}  // namespace
