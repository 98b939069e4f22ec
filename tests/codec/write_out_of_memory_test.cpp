#include <gtest/gtest.h>

#include "codec/encoded.h"
#include "support/failing_new.h"
#include "support/save_modes.h"
#include "support/tree.h"
#include "support/write_results.h"

namespace {

using namespace pgkit_test;

// With items, an offset to patch, and values and fragments in a file.
class WriteOutOfMemory : public testing::Test {
  protected:
    void SetUp() override {
        const uint32_t none = 0;
        PGX_Node* offset = root_->InsertNode(0x0004, 0x1200, &none, 4);
        offset->offsetPending = 1;
        offset->offsetTarget = AddItem(*root_->InsertNode(0x0004, 0x1220, nullptr, 0));
        SetSource(*root_->InsertNode(0x0010, 0x0010, nullptr, 0), source_.get(), 1, 4);
        PGX_Node* content = NewElement(*root_, 0x0011, 0x1001, VR_OB, "");
        content->SetFileContentValue(directory_.Write("content", "abcd").c_str());
        root_->AddPart10Elements(nullptr);
    }

    // Runs an operation with one allocation more each time, until it no longer runs out of memory,
    // and returns how often it did.
    template <typename Operation>
    static size_t TimesFailed(Operation&& operation) {
        for (size_t allowed = 0;; ++allowed) {
            const size_t before = BlocksInUse();
            uint32_t result = 0;
            {
                const FailingNew failing(allowed);
                result = operation();
            }
            if (result != pgkit_test::kOutOfMemory) {
                EXPECT_EQ(result, 0u);
                return allowed;
            }
            EXPECT_EQ(BlocksInUse(), before) << allowed;
        }
    }

    TempDir directory_;
    Stream source_ = OpenStream(directory_.Write("source", "0123456789"), "rb");
    DataSet root_{pgAllocateDataSetNode()};
};

TEST_F(WriteOutOfMemory, IsReportedByWritingAStream) {
    const Stream output = OpenStream(directory_.Path("output"), "wb");
    const size_t failures =
        TimesFailed([&] { return root_->WriteNodeEx(output.get(), PG_LITTLE_ENDIAN); });
    EXPECT_GE(failures, 4u);
}

TEST_F(WriteOutOfMemory, IsReportedByPatchingAStream) {
    const Stream output = OpenStream(directory_.Path("output"), "wb");
    EXPECT_GE(TimesFailed([&] { return root_->WriteNodeOffsetEx(output.get()); }), 1u);
}

TEST_F(WriteOutOfMemory, IsReportedBySaving) {
    const std::string path = directory_.Path("saved.dcm");
    // The first save makes the group length, whose node then stays.
    root_->SaveDataSetAsEx(path.c_str(), kPart10Explicit);
    root_->FindNode(0x0004, 0x1200)->offsetPending = 1;
    const size_t failures =
        TimesFailed([&] { return root_->SaveDataSetAsEx(path.c_str(), kPart10Explicit); });
    EXPECT_GE(failures, 8u);
}

TEST_F(WriteOutOfMemory, LeavesAFileThatTheTreeReadsFrom) {
    const std::string path = directory_.Path("content");
    const Bytes before = ReadFile(path);
    root_->SaveDataSetAsEx(directory_.Path("other").c_str(), kPart10Explicit);
    for (size_t allowed = 0;; ++allowed) {
        uint32_t result = 0;
        {
            const FailingNew failing(allowed);
            result = root_->SaveDataSetAsEx(path.c_str(), kPart10Explicit);
        }
        if (result == 0) break;
        ASSERT_EQ(result, pgkit_test::kOutOfMemory);
        ASSERT_EQ(ReadFile(path), before) << allowed;
    }
    EXPECT_NE(ReadFile(path), before);
}

TEST_F(WriteOutOfMemory, FailsTheExportOfAValue) {
    const std::string path = directory_.Path("value");
    for (PGX_Node* element : {root_->FindNode(0x0010, 0x0010), root_->FindNode(0x0011, 0x1001)}) {
        const FailingNew failing(0);
        EXPECT_EQ(element->GetFileContentValue(path.c_str()), 0);
    }
}

}  // namespace
