// Files of more than 4 GiB. Most of each is a hole, so that it costs neither time nor space.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <string>

#include "platform/platform.h"
#include "support/private_dictionary.h"
#include "support/tree.h"

namespace {

namespace platform = pgkit::platform;
using pgkit_test::Child;
using pgkit_test::DataSet;
using pgkit_test::Describe;
using pgkit_test::kUndefined;
using pgkit_test::PrivateDictionaryText;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::TextOf;

constexpr uint32_t kHuge = 0xFFFFFF00;
constexpr uint32_t kBeyond = 0xFFFFFFFF;

// More than the 256 bytes that kHuge is short of 4 GiB.
const std::string kFiller(300, 'x');

class LargeFile : public testing::Test {
  protected:
    // Opens a file of head, kHuge zeros and tail, with a load limit of 64.
    PGX_Node* Open(const StreamBuilder& head, const StreamBuilder& tail) {
        const std::string path = directory_.Path("large");
        FILE* file = platform::CreateBinary(path.c_str());
        std::fwrite(head.Data().data(), 1, head.Size(), file);
        EXPECT_TRUE(platform::Seek(file, uint64_t{head.Size()} + kHuge));
        std::fwrite(tail.Data().data(), 1, tail.Size(), file);
        EXPECT_EQ(std::fclose(file), 0);
        root_.reset(pgOpenDataSetFile(path.c_str(), 64));
        return root_.get();
    }

    // Opens a file whose tail stands behind a huge value, beyond 4 GiB.
    PGX_Node* OpenWithTail(const StreamBuilder& tail) {
        StreamBuilder head;
        head.Element(0x0008, 0x0080, "LO", kFiller).Header(0x0042, 0x0011, "OB", kHuge);
        return Open(head, tail);
    }

  private:
    TempDir directory_;
    DataSet root_;
};

TEST_F(LargeFile, SmallValuesBeyondFourGibibytesAreLoaded) {
    StreamBuilder tail;
    tail.Element(0x0060, 0x3000, "LO", "far away");
    PGX_Node* root = OpenWithTail(tail);
    EXPECT_EQ(Describe(root), "[(0008,0080)LO:300 (0042,0011)OB:4294967040 (0060,3000)LO:8]");
    PGX_Node* far = Child(root, 0x0060, 0x3000);
    EXPECT_EQ(TextOf(far), "far away");
    EXPECT_EQ(far->fileOffset, kBeyond);
}

TEST_F(LargeFile, LargeValuesBeyondFourGibibytesAreThereButHaveNoBytes) {
    StreamBuilder tail;
    tail.Element(0x0060, 0x3000, "LO", kFiller).Element(0x0060, 0x3002, "LO", "behind");
    PGX_Node* root = OpenWithTail(tail);
    PGX_Node* far = Child(root, 0x0060, 0x3000);
    EXPECT_EQ(far->length, 300u);
    EXPECT_EQ(far->fileOffset, kBeyond);
    std::string buffer(301, '?');
    EXPECT_EQ(far->GetValue(buffer.data()), 0);
    EXPECT_EQ(buffer, std::string(301, '?'));
    EXPECT_EQ(TextOf(Child(root, 0x0060, 0x3002)), "behind");
}

TEST_F(LargeFile, PixelsBeyondFourGibibytesAreReportedAsMissingRatherThanBlack) {
    StreamBuilder tail;
    tail.Element(0x7FE0, 0x0010, "OW", kFiller);
    PGX_Node* pixelData = Child(OpenWithTail(tail), 0x7FE0, 0x0010);
    std::string frame(4, '?');
    EXPECT_EQ(pixelData->GetPixelData(0, 4, frame.data()), 0);
    EXPECT_EQ(frame, "????");
}

TEST_F(LargeFile, SequencesBeyondFourGibibytesAreParsed) {
    StreamBuilder tail;
    tail.Sequence(0x0070, 0x0001).Item().Element(0x0070, 0x0006, "ST", "text");
    tail.EndItem().EndSequence();
    PGX_Node* sequence = Child(OpenWithTail(tail), 0x0070, 0x0001);
    ASSERT_NE(sequence->first, nullptr);
    EXPECT_EQ(sequence->first->fileOffset, kBeyond);
    EXPECT_EQ(TextOf(Child(sequence->first, 0x0070, 0x0006)), "text");
}

// The creator is too long to be loaded, and its position too far to be noted.
TEST_F(LargeFile, CreatorsBeyondFourGibibytesCount) {
    const PrivateDictionaryText dictionary(
        "(0099,\"ACME MEDICAL SYSTEMS OF ROADS\",01) DS Scale 1\n");
    StreamBuilder tail;
    tail.Element(0x0099, 0x0010, "LO", "ACME MEDICAL SYSTEMS OF ROADS ");
    tail.Element(0x0099, 0x1001, "UN", "1.5 ");
    PGX_Node* element = Child(OpenWithTail(tail), 0x0099, 0x1001);
    EXPECT_EQ(element->valueRep, VR_DS);
    EXPECT_STREQ(element->tagName, "Scale");
}

TEST_F(LargeFile, SizeCountsBeyondFourGibibytesEndNoItemOfUndefinedLength) {
    StreamBuilder head;
    head.Element(0x0008, 0x0080, "LO", kFiller).Sequence(0x0070, 0x0001).Item();
    head.Header(0x0042, 0x0011, "OB", kHuge);
    StreamBuilder tail;
    tail.Element(0x0070, 0x0006, "ST", kFiller).Element(0x0070, 0x0008, "ST", "text");
    tail.EndItem().EndSequence().Element(0x0080, 0x0010, "LO", "AB");
    EXPECT_EQ(Describe(Open(head, tail)),
              "[(0008,0080)LO:300 (0070,0001)SQ:-1{[(0042,0011)OB:4294967040 (0070,0006)ST:300 "
              "(0070,0008)ST:4]} (0080,0010)LO:2]");
}

TEST_F(LargeFile, PixelDataBeyondFourGibibytesIsNotIndexed) {
    StreamBuilder tail;
    tail.Header(0x7FE0, 0x0010, "OB", kUndefined).Item(0).Item(4).Text("abcd").EndSequence();
    PGX_Node* pixelData = Child(OpenWithTail(tail), 0x7FE0, 0x0010);
    EXPECT_EQ(pixelData->encapsulated, 1u);
    EXPECT_EQ(pixelData->fragmentCount, 0u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(pixelData->fragments), 1u);
}

// An entry holds a position of 32 bits: a table with a wrong one would be worse than none.
TEST_F(LargeFile, FragmentBeyondFourGibibytesLeavesNoneIndexed) {
    StreamBuilder head;
    head.Element(0x0008, 0x0080, "LO", kFiller).Header(0x7FE0, 0x0010, "OB", kUndefined);
    head.Item(0).Item(4).Text("abcd").Item(kHuge);
    StreamBuilder tail;
    tail.Item(4).Text("efgh").EndSequence();
    PGX_Node* pixelData = Child(Open(head, tail), 0x7FE0, 0x0010);
    EXPECT_EQ(pixelData->fragmentCount, 0u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(pixelData->fragments), 1u);
}

TEST_F(LargeFile, DelimiterBeyondFourGibibytesEndsTheFragments) {
    StreamBuilder head;
    head.Element(0x0008, 0x0080, "LO", kFiller).Header(0x7FE0, 0x0010, "OB", kUndefined);
    head.Item(0).Item(4).Text("abcd").Item(kHuge);
    StreamBuilder tail;
    tail.EndSequence().Element(0x7FE1, 0x1001, "LO", "AB");
    PGX_Node* root = Open(head, tail);
    EXPECT_EQ(Child(root, 0x7FE0, 0x0010)->fragmentCount, 2u);
    EXPECT_EQ(TextOf(Child(root, 0x7FE1, 0x1001)), "AB");
}

}  // namespace
