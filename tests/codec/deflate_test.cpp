// Deflated Explicit VR Little Endian, read and written.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>
#include <string>

#include "support/deflated.h"
#include "support/nodes.h"
#include "support/save_modes.h"
#include "support/stream.h"
#include "support/tree.h"
#include "support/tree_comparison.h"

namespace {

using namespace pgkit_test;

StreamBuilder Content() {
    StreamBuilder content;
    content.Element(0x0008, 0x0060, "CS", "CT");
    content.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    content.Sequence(0x0040, 0xA730).Item().Element(0x0008, 0x0104, "LO", "an item ");
    return content.EndItem().EndSequence();
}

Bytes PlainFile(const StreamBuilder& content) {
    return StreamBuilder().Part10(kDeflatedSyntax).Append(content.Data()).Data();
}

constexpr char kContent[] = "(0008,0060)CS:2 (0010,0010)PN:8 (0040,A730)SQ:-1{[(0008,0104)LO:8]}";

std::string DescribeData(const OpenedStream& opened) {
    const std::string all = Describe(opened.Root());
    const std::string meta = "[(0002,0010)UI:22 ";
    return all.starts_with(meta) ? all.substr(meta.size(), all.size() - meta.size() - 1) : all;
}

// The tree was garbage: the deflated bytes were read as elements.
TEST(Deflate, FileIsReadAsWhatWasDeflated) {
    const OpenedStream opened(DeflatedFile(Deflated(Content())), 0);
    EXPECT_EQ(DescribeData(opened), kContent);
    EXPECT_EQ(opened->syntaxFlags, kPart10Explicit);
    EXPECT_EQ(TextOf(Child(opened.Root(), 0x0010, 0x0010)), "DOE^JOHN");
    EXPECT_EQ(TextOf(Child(opened.Root(), 0x0002, 0x0010)), kDeflatedSyntax);
}

TEST(Deflate, OffsetsAreThoseOfTheInflatedFile) {
    const OpenedStream opened(DeflatedFile(Deflated(Content())), 0);
    const Bytes plain = PlainFile(Content());
    Bytes inflated(plain.size());
    const auto size = static_cast<uint32_t>(inflated.size());
    EXPECT_EQ(opened->GetFileData(inflated.data(), 0, size), 1);
    EXPECT_EQ(inflated, plain);
    EXPECT_EQ(opened->GetFileData(inflated.data(), 1, size), 0);
}

TEST(Deflate, ReadsWhatIsLongerThanItsBuffers) {
    StreamBuilder content = Content();
    content.Element(0x7FE0, 0x0010, "OB", std::string(300000, 'p') + "ixels!");
    const OpenedStream opened(DeflatedFile(Deflated(content)), 0);
    EXPECT_EQ(ValueOf(*Child(opened.Root(), 0x7FE0, 0x0010)).substr(299998, 8), "ppixels!");
}

TEST(Deflate, HeaderAndChecksumOfZlibAreTolerated) {
    Bytes deflated = {0x78, 0x9C};
    for (const uint8_t byte : Deflated(Content()))
        deflated.push_back(byte);
    EXPECT_EQ(DescribeData(OpenedStream(DeflatedFile(deflated))), kContent);
}

// A stored block of 412 bytes: its header, and the bits behind its type, which mean nothing, look
// like the header of zlib.
TEST(Deflate, StoredBlockIsNotTakenForAHeader) {
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", std::string(404, 'n'));
    const StreamBuilder deflated = StreamBuilder()
                                       .Append({0x78, 0x9C, 0x01, 0x63, 0xFE})
                                       .Append(content.Data())
                                       .Append(Deflated(Bytes()));
    EXPECT_EQ(DescribeData(OpenedStream(DeflatedFile(deflated.Data()))), "(0010,0010)PN:404");
}

TEST(Deflate, WhatFollowsIsPadding) {
    Bytes deflated = Deflated(Content());
    for (const uint8_t byte : Bytes{0x00, 0x08, 0x00, 0x60, 0x00, 0x43, 0x53, 0x02, 0x00})
        deflated.push_back(byte);
    EXPECT_EQ(DescribeData(OpenedStream(DeflatedFile(deflated))), kContent);
}

TEST(Deflate, CutShortOrDamagedItGivesWhatPrecedes) {
    const Bytes deflated = Deflated(Content());
    const Bytes cut(deflated.begin(), deflated.begin() + 30);
    EXPECT_EQ(DescribeData(OpenedStream(DeflatedFile(cut))), "(0008,0060)CS:2 (0010,0010)PN:8");
    Bytes damaged = Deflated(Content());
    damaged[0] = 0;                                           // not the last block
    damaged.insert(damaged.end(), {0x07, 0x07, 0x07, 0x07});  // one of a type that there is not
    EXPECT_EQ(DescribeData(OpenedStream(DeflatedFile(damaged))), kContent);
}

TEST(Deflate, EmptyDataSetIsOne) {
    const OpenedStream opened(DeflatedFile({0x03, 0x00}));
    EXPECT_EQ(Describe(opened.Root()), "[(0002,0010)UI:22]");
}

TEST(Deflate, NothingIsNoDataSet) { EXPECT_EQ(OpenedStream(DeflatedFile({})).Root(), nullptr); }

TEST(Deflate, StreamOfTheHostIsClosed) {
    const TempDir directory;
    const std::string path = directory.Write("file", DeflatedFile(Deflated(Content())));
    const DataSet root(pgOpenDataSetFileHandle(std::fopen(path.c_str(), "rb"), 0));
    ASSERT_NE(root, nullptr);
    // Windows refuses to remove a file that is open.
    EXPECT_EQ(std::remove(path.c_str()), 0);
    EXPECT_EQ(TextOf(root->FindNode(0x0010, 0x0010)), "DOE^JOHN");
}

class SavedDeflated : public testing::Test {
  protected:
    Bytes Save(PGX_Node& root, uint32_t mode) const {
        EXPECT_EQ(root.SaveDataSetAsEx(path_.c_str(), static_cast<int32_t>(mode)), 0u);
        return ReadFile(path_);
    }
    DataSet Reopen() const { return DataSet(pgOpenDataSetFile(path_.c_str(), kLoadAll)); }

    static StreamBuilder LongContent() {
        StreamBuilder content = Content();
        return content.Element(0x7FE0, 0x0010, "OB", std::string(100000, 'p'));
    }

    const OpenedStream opened_{DeflatedFile(Deflated(LongContent())), 0};
    const TempDir directory_;
    const std::string path_ = directory_.Path("saved");
};

TEST_F(SavedDeflated, IsDeflatedAndEvenInEveryMode) {
    for (const uint32_t mode : {kAsRead, kPart10Explicit, kPart10Implicit, kPart10Big}) {
        const Bytes saved = Save(*opened_.Root(), mode);
        EXPECT_LT(saved.size(), 2000u) << mode;
        EXPECT_EQ(saved.size() % 2, 0u) << mode;
        const DataSet again = Reopen();
        ASSERT_NE(again, nullptr) << mode;
        EXPECT_EQ(FirstDifference(*opened_.Root(), *again), "") << mode;
        EXPECT_EQ(TextOf(again->FindNode(0x0002, 0x0010)), kDeflatedSyntax);
    }
}

TEST_F(SavedDeflated, ReplacesItsOwnFile) {
    const Bytes first = Save(*opened_.Root(), kAsRead);
    ASSERT_EQ(opened_->SaveDataSetAsEx(opened_.Path().c_str(), 0), 0u);
    EXPECT_EQ(ReadFile(opened_.Path()), first);
    EXPECT_EQ(TextOf(Child(opened_.Root(), 0x0010, 0x0010)), "DOE^JOHN");
}

TEST_F(SavedDeflated, BareDataSetIsNot) {
    const Bytes saved = Save(*opened_.Root(), kExplicitLittle);
    const size_t delimiters = 16;
    EXPECT_EQ(saved.size(), LongContent().Size() - delimiters);
}

TEST_F(SavedDeflated, AnotherSyntaxInflatesIt) {
    opened_->AddOrReplaceNode(0x0002, 0x0010, "1.2.840.10008.1.2.1", 19);
    EXPECT_GT(Save(*opened_.Root(), kAsRead).size(), 100000u);
    EXPECT_EQ(FirstDifference(*opened_.Root(), *Reopen()), "");
}

TEST_F(SavedDeflated, FileMetaInformationAloneIsFollowedByAnEmptyDataSet) {
    const OpenedStream empty(DeflatedFile({0x03, 0x00}));
    const Bytes saved = Save(*empty.Root(), kAsRead);
    EXPECT_EQ(Bytes(saved.end() - 2, saved.end()), (Bytes{0x03, 0x00}));
}

// The offset is where a reader finds the item: in what is inflated.
TEST_F(SavedDeflated, LinksCountWhatIsInflated) {
    PGX_Node* const item = opened_->FindNode(0x0040, 0xA730)->first;
    const uint32_t none = 0;
    PGX_Node* const link = opened_->InsertNode(0x0004, 0x1200, &none, 4);
    link->offsetPending = 1;
    link->offsetTarget = item;
    Save(*opened_.Root(), kAsRead);
    const DataSet again = Reopen();
    EXPECT_EQ(again->FindNode(0x0004, 0x1200)->GetULValue(),
              again->FindNode(0x0040, 0xA730)->first->fileOffset - 8);
}

}  // namespace
