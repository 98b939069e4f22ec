// Outputs that fail after every number of bytes, and positions beyond those of small files.
#include <gtest/gtest.h>

#include "codec/encoded.h"
#include "codec/encoder.h"
#include "codec/failing_sink.h"
#include "codec/lengths.h"
#include "support/save_modes.h"
#include "support/stream_builder.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;
using pgkit::EncodeNode;

// Headers of every form, values from memory and from a stream, items and fragments.
DataSet SmallTree(FILE* source) {
    DataSet root(pgAllocateDataSetNode());
    root->InsertNode(0x0002, 0x0010, "1.2.840.10008.1.2.1", 19);
    PGX_Node* item = AddItem(*root->InsertNode(0x0008, 0x1140, nullptr, 0));
    item->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    const uint16_t rows = 0x0102;
    root->InsertNode(0x0028, 0x0010, &rows, 2);
    SetSource(*NewElement(*root, 0x0029, 0x1001, VR_OW, ""), source, 1, 6);
    PGX_Node* pixelData = root->InsertEncodedPixelDataNode(2);
    pixelData->SetEncodedPixelData(0, 4, "abcd");
    pixelData->file = source;
    pixelData->fragments[1] = {2, 4, nullptr};
    return root;
}

class FailingOutput : public testing::TestWithParam<uint32_t> {
  protected:
    TempDir directory_;
    Stream source_ = OpenStream(directory_.Write("source", "abcdefg"), "rb");
};

TEST_P(FailingOutput, IsReportedAfterAnyNumberOfBytes) {
    const DataSet root = SmallTree(source_.get());
    pgkit::ComputeLengths(*root, GetParam());
    FailingSink whole;
    ASSERT_EQ(EncodeNode(*root, GetParam(), whole), pgkit::kWritten);
    const Bytes expected = whole.Written();
    for (size_t limit = 0; limit < expected.size(); ++limit) {
        FailingSink sink(limit);
        EXPECT_EQ(EncodeNode(*root, GetParam(), sink), pgkit::kWriteFailed) << limit;
        EXPECT_EQ(sink.Written(),
                  Bytes(expected.begin(), expected.begin() + static_cast<ptrdiff_t>(limit)));
    }
    FailingSink exact(expected.size());
    EXPECT_EQ(EncodeNode(*root, GetParam(), exact), pgkit::kWritten);
}

INSTANTIATE_TEST_SUITE_P(Modes, FailingOutput,
                         testing::Values(0u, PG_UNDEFINED_LENGTHS, kPart10Explicit,
                                         kPart10Explicit | PG_UNDEFINED_LENGTHS,
                                         kExplicitLittle | PG_META_IMPLICIT_VR, kPart10Implicit,
                                         kPart10Implicit | PG_UNDEFINED_LENGTHS, kPart10Big,
                                         kPart10Big | PG_UNDEFINED_LENGTHS));

// An element that cannot be written stands behind others: which failure comes first decides.
TEST(FailingOutputs, AreReportedBeforeAFailureBehindThem) {
    const DataSet root(pgAllocateDataSetNode());
    root->InsertNode(0x0008, 0x0060, "CT", 2);
    NewElement(*root, 0x0009, 0x1001, VR_LO, "")->length = 65535;
    for (size_t limit = 0; limit < 16; ++limit) {
        FailingSink sink(limit);
        EXPECT_EQ(EncodeNode(*root, kExplicitLittle, sink), pgkit::kWriteFailed) << limit;
    }
    FailingSink sink(16);
    EXPECT_EQ(EncodeNode(*root, kExplicitLittle, sink), pgkit::kValueTooLong);
}

TEST(FailingOutputs, DoNotChangeTheResultOfAnItemThatFailedBeforeItsDelimiters) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* item = AddItem(*root->InsertNode(0x0008, 0x1140, nullptr, 0));
    NewElement(*item, 0x0009, 0x1001, VR_LO, "")->length = 65535;
    constexpr size_t kBeforeDelimiters = 12 + 8 + 6;
    for (size_t limit = kBeforeDelimiters; limit < kBeforeDelimiters + 16; ++limit) {
        FailingSink sink(limit);
        EXPECT_EQ(EncodeNode(*root, kExplicitLittle | PG_UNDEFINED_LENGTHS, sink),
                  pgkit::kValueTooLong);
    }
}

TEST(LargeOutput, PositionsThatDoNotFitAreMarked) {
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* first = root->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* second = root->InsertNode(0x0010, 0x0010, "DOE^JOHN", 8);
    FailingSink sink(FailingSink::kUnlimited, 0xFFFFFFFE);
    EXPECT_EQ(EncodeNode(*root, kExplicitLittle, sink), pgkit::kWritten);
    EXPECT_EQ(root->fileOffset, 0xFFFFFFFEu);
    EXPECT_EQ(first->fileOffset, 0xFFFFFFFEu);
    EXPECT_EQ(second->fileOffset, 0xFFFFFFFFu);
}

TEST(LargeOutput, PositionsOfAStreamWithoutAnyAreMarked) {
    struct Pipe : FailingSink {
        std::optional<uint64_t> Position() override { return std::nullopt; }
    };
    const DataSet root(pgAllocateDataSetNode());
    PGX_Node* element = root->InsertNode(0x0008, 0x0060, "CT", 2);
    Pipe sink;
    EXPECT_EQ(EncodeNode(*root, kExplicitLittle, sink), pgkit::kWritten);
    EXPECT_EQ(sink.Written().size(), 10u);
    EXPECT_EQ(element->fileOffset, 0xFFFFFFFFu);
}

TEST(LargeOutput, WantedPositionsAreRecordedInFull) {
    const DataSet root(pgAllocateDataSetNode());
    root->InsertNode(0x0008, 0x0060, "CT", 2);
    PGX_Node* offset = root->InsertNode(0x0004, 0x1200, "abcd", 4);
    PGX_Node* item = AddItem(*root->InsertNode(0x0004, 0x1220, nullptr, 0));
    offset->fileOffset = 77;
    item->fileOffset = 78;
    pgkit::WrittenPositions positions;
    positions.Want(offset);
    positions.Want(item);
    FailingSink sink(FailingSink::kUnlimited, 0x1'0000'0000);
    EXPECT_EQ(EncodeNode(*root, kExplicitLittle, sink, {.positions = &positions}), pgkit::kWritten);
    EXPECT_EQ(positions.Find(offset), 0x1'0000'0008);
    EXPECT_EQ(positions.Find(item), 0x1'0000'0000 + 12 + 12 + 8);
    EXPECT_EQ(positions.Find(root.get()), std::nullopt);
    EXPECT_EQ(offset->fileOffset, 77u);
    EXPECT_EQ(item->fileOffset, 78u);
}

}  // namespace
