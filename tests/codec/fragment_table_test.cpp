// Fragment tables of encapsulated Pixel Data: from the Basic Offset Table and by scanning.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <vector>

#include "codec/encoded.h"
#include "support/tree.h"

namespace {

using pgkit_test::Child;
using pgkit_test::Describe;
using pgkit_test::IsNotIndexed;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::StreamBuilder;
using pgkit_test::Tags;
using pgkit_test::VrMode;

PGX_Node* const kNoNode = nullptr;

StreamBuilder UpToPixelData() {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").ElementUS(0x0028, 0x0100, 8);
    return stream.Header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF);
}

StreamBuilder& OffsetTable(StreamBuilder& stream, const std::vector<uint32_t>& offsets) {
    stream.Item(static_cast<uint32_t>(4 * offsets.size()));
    for (uint32_t offset : offsets)
        stream.U32(offset);
    return stream;
}

StreamBuilder& Fragment(StreamBuilder& stream, size_t size) {
    return stream.Item(static_cast<uint32_t>(size)).Text(std::string(size, 'f'));
}

PGX_Node* PixelData(const OpenedStream& opened) { return Child(opened.Root(), 0x7FE0, 0x0010); }

std::string Entries(PGX_Node* node, uint32_t base) {
    std::string text;
    uint32_t length = 0;
    uint32_t offset = 0;
    for (uint32_t i = 0; node->GetEncodedPixelInfo(i, &length, &offset) == 1; ++i) {
        text += std::to_string(offset - base) + "+" + std::to_string(length) + " ";
    }
    return text;
}

TEST(OffsetTable, SingleFrameStartsAtTheFirstItemWhateverItsOffset) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t tableHeader = stream.Size();
    OffsetTable(stream, {1234});
    Fragment(stream, 20).EndSequence();

    OpenedStream opened(stream);

    PGX_Node* node = PixelData(opened);
    EXPECT_EQ(node->encapsulated, 1u);
    EXPECT_EQ(node->IsEncodedPixelData(), 1);
    EXPECT_EQ(node->length, 0xFFFFFFFFu);
    EXPECT_EQ(node->fragmentCount, 1u);
    EXPECT_EQ(node->fragmentCapacity, 1u);
    // T is behind the table's item header.
    const uint32_t t = tableHeader + 8;
    EXPECT_EQ(Entries(node, 0), std::to_string(t + 4 + 8) + "+20 ");
    EXPECT_EQ(node->fragments[0].bytes, nullptr);
}

TEST(OffsetTable, FramesReachUpToTheNextFramesItem) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0, 1000});
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 992);
    Fragment(stream, 6).EndSequence();
    OpenedStream opened(stream);
    EXPECT_EQ(Entries(PixelData(opened), first), "0+992 1000+6 ");
}

TEST(OffsetTable, FrameOfSeveralFragmentsIsOneEntry) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0, 36});
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10);
    Fragment(stream, 10);
    Fragment(stream, 6).EndSequence();
    OpenedStream opened(stream);
    EXPECT_EQ(Entries(PixelData(opened), first), "0+28 36+6 ");
}

TEST(OffsetTable, LastFrameOfSeveralFragmentsFails) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    Fragment(stream, 10);
    Fragment(stream, 10).EndSequence().Element(0xFFFC, 0xFFFC, "OB", "ab");
    OpenedStream opened(stream);
    EXPECT_TRUE(IsNotIndexed(PixelData(opened)));
    EXPECT_EQ(Tags(opened.Root()), "0008,0060 0028,0100 7FE0,0010");
}

TEST(OffsetTable, ParseGoesOnBehindTheDelimiter) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    Fragment(stream, 10).EndSequence().Element(0xFFFC, 0xFFFC, "OB", "ab");
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0060)CS:2 (0028,0100)US:2 (7FE0,0010)OB:-1 (FFFC,FFFC)OB:2]");
}

TEST(OffsetTable, IsUsedAlsoWithoutScanning) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10).EndSequence();
    OpenedStream opened(stream, 64, 0x01);
    EXPECT_EQ(Entries(PixelData(opened), first), "0+10 ");
}

TEST(OffsetTable, MissingDelimiterFails) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    Fragment(stream, 10);
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(stream))));
}

TEST(OffsetTable, HalfOfTheLastItemsTagIsEnough) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0, 18});
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10);
    stream.U16(0x1234).U16(0xE000).U32(4).Text("abcd").EndSequence();
    EXPECT_EQ(Entries(PixelData(OpenedStream(stream)), first), "0+10 18+4 ");

    StreamBuilder neither = UpToPixelData();
    OffsetTable(neither, {0, 18});
    Fragment(neither, 10);
    neither.U16(0x1234).U16(0x5678).U32(4).Text("abcd").EndSequence();
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(neither))));
}

TEST(OffsetTable, DescendingOffsetsGiveTheLengthsThatFollowFromThem) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {18, 0, 18});
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10);
    Fragment(stream, 4).EndSequence();
    OpenedStream opened(stream);
    uint32_t length = 0;
    uint32_t offset = 0;
    ASSERT_EQ(PixelData(opened)->GetEncodedPixelInfo(0, &length, &offset), 1);
    EXPECT_EQ(offset, first + 18);
    EXPECT_EQ(length, 0u - 18u - 8u);
}

TEST(OffsetTable, OffsetsBeyondTheStreamFail) {
    for (uint32_t wild : {0x7FFFFFFFu, 0xFFFFFFF0u, 0xFFFFFFFFu}) {
        StreamBuilder stream = UpToPixelData();
        OffsetTable(stream, {0, wild});
        Fragment(stream, 10);
        Fragment(stream, 4).EndSequence();
        EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(stream)))) << wild;
    }
}

TEST(OffsetTable, OfFewerThanFourBytesFails) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(2).Text("ab");
    Fragment(stream, 10).EndSequence();
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(stream))));
}

TEST(OffsetTable, OfAnOddSizeIgnoresItsRest) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(6).U32(0).Text("ab");
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10).EndSequence();
    EXPECT_EQ(Entries(PixelData(OpenedStream(stream)), first), "0+10 ");
}

TEST(OffsetTable, ClaimedSizeIsNotAllocated) {
    for (uint32_t claimed : {400u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        StreamBuilder stream = UpToPixelData();
        stream.Item(claimed).Zeros(100);
        EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(stream)))) << claimed;
    }
}

TEST(FragmentScan, EveryFragmentIsAnEntry) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0);
    const uint32_t first = stream.Size() + 8;
    Fragment(stream, 10);
    Fragment(stream, 0);
    Fragment(stream, 4).EndSequence().Element(0xFFFC, 0xFFFC, "OB", "ab");

    OpenedStream opened(stream);

    PGX_Node* node = PixelData(opened);
    EXPECT_EQ(Entries(node, first), "0+10 18+0 26+4 ");
    EXPECT_EQ(node->fragmentCount, 3u);
    EXPECT_EQ(node->fragmentCapacity, 250u);
    EXPECT_EQ(node->fragments[3].length, 0u);
    EXPECT_NE(opened->FindNode(0xFFFC, 0xFFFC), kNoNode);
}

TEST(FragmentScan, CapacityGrowsInStepsOf250) {
    for (const auto& [count, capacity] :
         {std::pair<uint32_t, uint32_t>{250, 250}, {251, 500}, {300, 500}, {501, 750}}) {
        StreamBuilder stream = UpToPixelData();
        stream.Item(0);
        for (uint32_t i = 0; i < count; ++i)
            Fragment(stream, 2);
        stream.EndSequence();
        OpenedStream opened(stream);
        EXPECT_EQ(PixelData(opened)->fragmentCount, count);
        EXPECT_EQ(PixelData(opened)->fragmentCapacity, capacity);
    }
}

TEST(FragmentScan, IsLeftOutWithFlag01) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0);
    Fragment(stream, 10).EndSequence().Element(0xFFFC, 0xFFFC, "OB", "ab");
    OpenedStream opened(stream, 64, 0x01);
    PGX_Node* node = PixelData(opened);
    EXPECT_TRUE(IsNotIndexed(node));
    uint32_t length = 7;
    uint32_t offset = 7;
    EXPECT_EQ(node->GetEncodedPixelInfo(0, &length, &offset), 0);
    EXPECT_EQ(offset, 7u);
    // Pixel Data is taken to be the last element.
    EXPECT_EQ(opened->FindNode(0xFFFC, 0xFFFC), kNoNode);
}

TEST(FragmentScan, NoFragmentsBeforeTheDelimiterIsAnEmptyTable) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0).EndSequence().Element(0xFFFC, 0xFFFC, "OB", "ab");
    OpenedStream opened(stream);
    EXPECT_EQ(PixelData(opened)->fragmentCount, 0u);
    EXPECT_EQ(PixelData(opened)->fragmentCapacity, 250u);
    EXPECT_NE(opened->FindNode(0xFFFC, 0xFFFC), kNoNode);
}

TEST(FragmentScan, MissingDelimiterIsToleratedBehindAFragment) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0);
    StreamBuilder none = stream;
    Fragment(stream, 10);
    EXPECT_EQ(PixelData(OpenedStream(stream))->fragmentCount, 1u);
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(none))));
}

TEST(FragmentScan, ForeignTagEndsTheScanAndIsLost) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0);
    Fragment(stream, 10).Element(0x0010, 0x0010, "PN", "").Element(0xFFFC, 0xFFFC, "OB", "ab");
    OpenedStream opened(stream);
    EXPECT_EQ(PixelData(opened)->fragmentCount, 1u);
    EXPECT_EQ(Tags(opened.Root()), "0008,0060 0028,0100 7FE0,0010 FFFC,FFFC");
}

TEST(FragmentScan, FragmentLongerThanTheStreamIsRecordedAsItClaims) {
    StreamBuilder stream = UpToPixelData();
    stream.Item(0).Item(0xFFFFFFFF).Zeros(40);
    OpenedStream opened(stream);
    EXPECT_EQ(PixelData(opened)->fragmentCount, 1u);
    EXPECT_EQ(PixelData(opened)->fragments[0].length, 0xFFFFFFFFu);
}

TEST(EncapsulatedPixelData, WithoutAFirstItemIsNotIndexed) {
    StreamBuilder stream = UpToPixelData();
    stream.Element(0x0010, 0x0010, "PN", "AB");
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(stream))));
    EXPECT_TRUE(IsNotIndexed(PixelData(OpenedStream(UpToPixelData()))));
}

TEST(EncapsulatedPixelData, IsRecognisedInImplicitVrToo) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "", "CT").Header(0x7FE0, 0x0010, "", 0xFFFFFFFF).Item(0);
    Fragment(stream, 10).EndSequence();
    OpenedStream opened(stream);
    EXPECT_EQ(PixelData(opened)->fragmentCount, 1u);
    EXPECT_EQ(PixelData(opened)->valueRep, uint32_t{VR_OWOB});
}

TEST(EncapsulatedPixelData, InAnItemIsCountedByItsFragments) {
    StreamBuilder icon;
    icon.Header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF).Item(0);
    Fragment(icon, 10).EndSequence();
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT");
    stream.Sequence(0x0088, 0x0200, 8 + icon.Size()).Item(icon.Size()).Append(icon.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");
    OpenedStream opened(stream);
    EXPECT_EQ(Tags(opened.Root()), "0008,0060 0088,0200 0010,0020");
    EXPECT_EQ(Tags(Child(opened.Root(), 0x0088, 0x0200)->first), "7FE0,0010");
}

TEST(EncapsulatedPixelData, AsUnOfUndefinedLengthBecomesASequence) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x7FE0, 0x0010, "UN", 0xFFFFFFFF);
    stream.Item(0).EndSequence();
    OpenedStream opened(stream);
    EXPECT_EQ(Describe(opened.Root()), "[(0008,0060)CS:2 (7FE0,0010)SQ:-1{[]}]");
    EXPECT_EQ(PixelData(opened)->encapsulated, 0u);
}

TEST(EncapsulatedPixelData, HasNoValue) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    Fragment(stream, 10).EndSequence();
    OpenedStream opened(stream);
    char buffer[64];
    EXPECT_EQ(PixelData(opened)->GetValue(buffer), 0);
    EXPECT_EQ(PixelData(opened)->GetPixelData(0, 10, buffer), 0);
}

TEST(GetEncodedPixelInfo, NeedsAnEntryAndAPlaceForItsOffset) {
    StreamBuilder stream = UpToPixelData();
    OffsetTable(stream, {0});
    Fragment(stream, 10).EndSequence();
    OpenedStream opened(stream);
    PGX_Node* node = PixelData(opened);
    uint32_t length = 0;
    uint32_t offset = 0;
    EXPECT_EQ(node->GetEncodedPixelInfo(0, &length, &offset), 1);
    EXPECT_EQ(node->GetEncodedPixelInfo(0, nullptr, &offset), 1);
    EXPECT_EQ(node->GetEncodedPixelInfo(0, &length, nullptr), 0);
    EXPECT_EQ(node->GetEncodedPixelInfo(1, &length, &offset), 0);
    EXPECT_EQ(opened->GetEncodedPixelInfo(0, &length, &offset), 0);
    EXPECT_EQ(Child(opened.Root(), 0x0008, 0x0060)->GetEncodedPixelInfo(0, &length, &offset), 0);
}

class LoadEncodedPixelTable : public testing::Test {
  protected:
    int32_t Load(const StreamBuilder& stream, uint32_t start, int32_t scan) {
        opened_ = std::make_unique<OpenedStream>(stream, 64, 0x01);
        node_.file = opened_->Root()->file;
        node_.fileOffset = start;
        node_.encapsulated = 1;
        return node_.LoadEncodedPixelTable(node_.file, &node_, scan, &consumed_);
    }

    PGX_Node node_{NT_DataElement, ET_LittleEndian, 0x7FE0, 0x0010, VR_OB, 0xFFFFFFFF};
    uint32_t consumed_ = 99;
    std::unique_ptr<OpenedStream> opened_;
};

TEST_F(LoadEncodedPixelTable, CountsTheBytesUpToTheEndOfTheDelimiter) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t start = stream.Size();
    OffsetTable(stream, {0, 18});
    Fragment(stream, 10);
    Fragment(stream, 4).EndSequence();
    EXPECT_EQ(Load(stream, start, 0), 1);
    EXPECT_EQ(consumed_, stream.Size() - start);
    EXPECT_EQ(std::ftell(node_.file), static_cast<long>(stream.Size()));
}

TEST_F(LoadEncodedPixelTable, ScanCountsTheSame) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t start = stream.Size();
    stream.Item(0);
    Fragment(stream, 10);
    Fragment(stream, 4).EndSequence();
    EXPECT_EQ(Load(stream, start, 1), 1);
    EXPECT_EQ(consumed_, stream.Size() - start);
}

TEST_F(LoadEncodedPixelTable, MissingDelimiterIsCountedAllTheSame) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t start = stream.Size();
    stream.Item(0);
    Fragment(stream, 10);
    EXPECT_EQ(Load(stream, start, 1), 1);
    EXPECT_EQ(consumed_, stream.Size() - start + 8);
}

TEST_F(LoadEncodedPixelTable, EmptyTableWithoutScanGives0) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t start = stream.Size();
    stream.Item(0);
    Fragment(stream, 10).EndSequence();
    EXPECT_EQ(Load(stream, start, 0), 0);
    EXPECT_EQ(consumed_, 8u);
    EXPECT_EQ(node_.fragments, nullptr);
}

TEST_F(LoadEncodedPixelTable, FailureGivesMinus1AndNoTable) {
    StreamBuilder noItem = UpToPixelData();
    const uint32_t start = noItem.Size();
    EXPECT_EQ(Load(noItem, start, 1), -1);
    EXPECT_EQ(consumed_, 0u);
    EXPECT_EQ(Load(noItem.U32(0).U32(0), start, 1), -1);
    EXPECT_EQ(consumed_, 8u);

    StreamBuilder noFragments = UpToPixelData();
    EXPECT_EQ(Load(noFragments.Item(0), start, 1), -1);
    EXPECT_EQ(node_.fragments, nullptr);
    EXPECT_EQ(node_.fragmentCount, 0u);
    EXPECT_EQ(node_.fragmentCapacity, 0u);
    EXPECT_EQ(node_.LoadEncodedPixelTable(nullptr, &node_, 1, &consumed_), -1);
    EXPECT_EQ(node_.LoadEncodedPixelTable(node_.file, nullptr, 1, &consumed_), -1);
}

TEST_F(LoadEncodedPixelTable, CountsATableWhoseLastFrameIsNotThere) {
    for (const uint32_t last : {1000u, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
        StreamBuilder stream = UpToPixelData();
        const uint32_t start = stream.Size();
        OffsetTable(stream, {0, last});
        Fragment(stream, 10).EndSequence();
        EXPECT_EQ(Load(stream, start, 0), -1);
        EXPECT_EQ(consumed_, 16u);
    }
}

TEST_F(LoadEncodedPixelTable, MayBeRepeated) {
    StreamBuilder stream = UpToPixelData();
    const uint32_t start = stream.Size();
    stream.Item(0);
    Fragment(stream, 10).EndSequence();
    EXPECT_EQ(Load(stream, start, 1), 1);
    EXPECT_EQ(node_.LoadEncodedPixelTable(node_.file, &node_, 1, &consumed_), 1);
    EXPECT_EQ(node_.fragmentCount, 1u);
}

}  // namespace
