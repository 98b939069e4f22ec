// Items and delimiters where none belong, and none where they do.
#include "hostile/hostile_file.h"

namespace {

using namespace pgkit_test;

class HostileDelimiters : public testing::Test {
  protected:
    StreamBuilder stream_ = StreamBuilder().Part10("1.2.840.10008.1.2.1");
};

TEST_F(HostileDelimiters, OutsideOfSequencesEndTheDataSet) {
    for (const bool isItem : {true, false}) {
        StreamBuilder stream = stream_;
        stream.Element(0x0008, 0x0060, "CS", "CT");
        isItem ? stream.EndItem() : stream.EndSequence();
        stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
        EXPECT_EQ(UseBytes(stream), kMeta + std::string("(0008,0060)CS:2]"));
    }
}

TEST_F(HostileDelimiters, MayHaveALengthThatIsIgnored) {
    stream_.Sequence(0x0008, 0x1140).Item();
    stream_.U16(0xFFFE).U16(0xE00D).U32(0xFFFFFFFF);
    stream_.U16(0xFFFE).U16(0xE0DD).U32(0x7FFFFFFF);
    stream_.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream_), kMeta + std::string("(0008,1140)SQ:-1{[]} (0010,0010)PN:8]"));
}

TEST_F(HostileDelimiters, ThatAreMissingMakeWhatFollowsPartOfTheItem) {
    stream_.Sequence(0x0008, 0x1140).Item();
    stream_.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream_), kMeta + std::string("(0008,1140)SQ:-1{[(0010,0010)PN:8]}]"));
}

TEST_F(HostileDelimiters, OfItemsCloseASequenceThatHasNone) {
    stream_.Sequence(0x0008, 0x1140).EndItem();
    stream_.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(UseBytes(stream_), kMeta + std::string("(0008,1140)SQ:-1{} (0010,0010)PN:8]"));
}

TEST_F(HostileDelimiters, InARowCloseOneLevelEach) {
    stream_.Sequence(0x0008, 0x1140).Item();
    for (int i = 0; i < 10000; ++i)
        stream_.EndSequence();
    EXPECT_EQ(UseBytes(stream_), kMeta + std::string("(0008,1140)SQ:-1{[]}]"));
}

TEST_F(HostileDelimiters, OfUnSequencesMayBeMissingToo) {
    stream_.Header(0x0009, 0x1001, "UN", kUndefined).Item();
    stream_.U16(0x0010).U16(0x0010).U32(8).Text("DOE^JOHN");
    EXPECT_EQ(UseBytes(stream_), kMeta + std::string("(0009,1001)SQ:-1{[(0010,0010)PN:8]}]"));
}

TEST_F(HostileDelimiters, AnItemTagInADataSetIsAnElement) {
    stream_.Item(4).Text("abcd").Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_TRUE(UseBytes(stream_).ends_with("(0010,0010)PN:8]"));
}

}  // namespace
