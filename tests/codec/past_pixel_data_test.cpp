// The open flag that goes on behind fragments without a table.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "codec/encoded.h"
#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using namespace pgkit_test;

StreamBuilder UpToFragments() {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.4.50").Element(0x0008, 0x0060, "CS", "CT");
    return stream.Header(0x7FE0, 0x0010, "OB", kUndefined);
}

// A last frame of two fragments, of which no table is made.
StreamBuilder WithLastFrameInPieces() {
    StreamBuilder stream = UpToFragments();
    stream.Item(4).U32(0).Item(4).Text("abcd").Item(2).Text("ef").EndSequence();
    return stream.Element(0xFFFC, 0xFFFC, "OB", "pad ");
}

constexpr char kWithout[] = "0002,0010 0008,0060 7FE0,0010";
constexpr char kWith[] = "0002,0010 0008,0060 7FE0,0010 FFFC,FFFC";

TEST(PastPixelData, FollowingElementsAreReadOnlyOnRequest) {
    const Bytes file = WithLastFrameInPieces().Data();
    EXPECT_EQ(Tags(OpenedStream(file).Root()), kWithout);
    const OpenedStream opened(file, kLoadAll, PG_OPEN_PAST_PIXEL_DATA);
    EXPECT_EQ(Tags(opened.Root()), kWith);
    EXPECT_TRUE(IsNotIndexed(Child(opened.Root(), 0x7FE0, 0x0010)));
}

TEST(PastPixelData, FragmentsThatAreNotToBeIndexedArePassedToo) {
    StreamBuilder file = UpToFragments();
    file.Item(0).Item(4).Text("abcd").EndSequence().Element(0xFFFC, 0xFFFC, "OB", "pad ");
    EXPECT_EQ(Tags(OpenedStream(file, kLoadAll, PG_OPEN_SKIP_FRAGMENTS).Root()), kWithout);
    EXPECT_EQ(
        Tags(OpenedStream(file, kLoadAll, PG_OPEN_SKIP_FRAGMENTS | PG_OPEN_PAST_PIXEL_DATA).Root()),
        kWith);
}

TEST(PastPixelData, ItemsThatContainThemCountThem) {
    StreamBuilder icon;
    icon.Header(0x7FE0, 0x0010, "OB", kUndefined);
    icon.Item(4).U32(0).Item(2).Text("ab").Item(2).Text("cd").EndSequence();
    StreamBuilder file;
    file.Part10("1.2.840.10008.1.2.4.50");
    file.Sequence(0x0088, 0x0200, icon.Size() + 8).Item(icon.Size()).Append(icon.Data());
    file.Element(0x0090, 0x0010, "CS", "BEHIND");
    EXPECT_EQ(Tags(OpenedStream(file, kLoadAll, PG_OPEN_PAST_PIXEL_DATA).Root()),
              "0002,0010 0088,0200 0090,0010");
}

TEST(PastPixelData, WithoutDelimiterTheyAreTheLastElement) {
    StreamBuilder file = UpToFragments();
    file.Item(4).U32(0).Item(2).Text("ab").Item(2).Text("cd");
    EXPECT_EQ(Tags(OpenedStream(file, kLoadAll, PG_OPEN_PAST_PIXEL_DATA).Root()), kWithout);
    file.Element(0xFFFC, 0xFFFC, "OB", "pad ");
    EXPECT_EQ(Tags(OpenedStream(file, kLoadAll, PG_OPEN_PAST_PIXEL_DATA).Root()), kWithout);
}

TEST(PastPixelData, IsSavedWithTheOffsetTableAndWhatFollows) {
    const Bytes file = WithLastFrameInPieces().Data();
    const OpenedStream opened(file, kLoadAll, PG_OPEN_PAST_PIXEL_DATA);
    const TempDir directory;
    const std::string path = directory.Path("saved");
    ASSERT_EQ(opened->SaveDataSetAsEx(path.c_str(), kAsRead), 0u);
    const Bytes saved = ReadFile(path);
    const size_t metaSize = 12;  // (0002,0000) is new
    ASSERT_EQ(saved.size(), file.size() + metaSize);
    EXPECT_TRUE(std::equal(file.begin() + 140, file.end(), saved.begin() + 140 + metaSize));
}

}  // namespace
