// Sequences and items: defined and undefined lengths, delimiters, and the byte counts by which
// containers of defined length end.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <functional>

#include "support/tree.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::Describe;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::VrMode;

std::string Parse(const StreamBuilder& stream, uint32_t flags = 0) {
    return Describe(OpenedStream(stream, kLoadAll, flags).Root());
}

StreamBuilder NamedItem(VrMode mode, const char* name) {
    StreamBuilder item(mode);
    item.Element(0x0010, 0x0010, "PN", name);
    return item;
}

class SequenceParsing : public testing::TestWithParam<VrMode> {
  protected:
    StreamBuilder Start() const {
        StreamBuilder stream(GetParam());
        stream.Element(0x0008, 0x0060, "CS", "CT");
        return stream;
    }
    StreamBuilder Item(const char* name) const { return NamedItem(GetParam(), name); }
    uint32_t SequenceHeaderSize() const { return GetParam() == VrMode::Implicit ? 8 : 12; }
};

INSTANTIATE_TEST_SUITE_P(Modes, SequenceParsing,
                         testing::Values(VrMode::Explicit, VrMode::Implicit), [](const auto& c) {
                             return c.param == VrMode::Explicit ? "Explicit" : "Implicit";
                         });

TEST_P(SequenceParsing, DefinedLengths) {
    const StreamBuilder item = Item("AB");
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140, 2 * (8 + item.Size()));
    stream.Item(item.Size()).Append(item.Data()).Item(item.Size()).Append(item.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(2 * (8 + item.Size())) +
                  "{[(0010,0010)PN:2][(0010,0010)PN:2]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, UndefinedLengths) {
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140);
    stream.Item().Append(Item("AB").Data()).EndItem();
    stream.Item().Append(Item("ABCD").Data()).EndItem();
    stream.EndSequence().Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:-1{[(0010,0010)PN:2][(0010,0010)PN:4]} "
              "(0010,0020)LO:2]");
}

TEST_P(SequenceParsing, DefinedItemsInAnUndefinedSequence) {
    const StreamBuilder item = Item("AB");
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140).Item(item.Size()).Append(item.Data()).EndSequence();
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:-1{[(0010,0010)PN:2]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, UndefinedItemInADefinedSequenceCountsItsDelimiter) {
    const StreamBuilder item = Item("AB");
    const uint32_t length = 8 + item.Size() + 8;
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140, length).Item().Append(item.Data()).EndItem();
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(length) +
                                 "{[(0010,0010)PN:2]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, EmptySequencesAndItems) {
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1110, 0);
    stream.Sequence(0x0008, 0x1115).EndSequence();
    stream.Sequence(0x0008, 0x1120, 8).Item(0);
    stream.Sequence(0x0008, 0x1140).Item().EndItem().EndSequence();
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1110)SQ:0{} (0008,1115)SQ:-1{} (0008,1120)SQ:8{[]} "
              "(0008,1140)SQ:-1{[]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, NestedSequencesReturnToTheirParents) {
    StreamBuilder inner(GetParam());
    inner.Sequence(0x0008, 0x1199).Item().Append(Item("AB").Data()).EndItem().EndSequence();
    inner.Append(Item("ABCD").Data());
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140, 8 + inner.Size()).Item(inner.Size()).Append(inner.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(8 + inner.Size()) +
                  "{[(0008,1199)SQ:-1{[(0010,0010)PN:2]} (0010,0010)PN:4]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, DefinedItemOfADefinedInnerSequenceIsCountedWithItsHeader) {
    StreamBuilder inner(GetParam());
    const StreamBuilder leaf = Item("AB");
    inner.Sequence(0x0008, 0x1199, 8 + leaf.Size()).Item(leaf.Size()).Append(leaf.Data());
    ASSERT_EQ(inner.Size(), SequenceHeaderSize() + 8 + leaf.Size());
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140, 8 + inner.Size()).Item(inner.Size()).Append(inner.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(8 + inner.Size()) +
                                 "{[(0008,1199)SQ:" + std::to_string(8 + leaf.Size()) +
                                 "{[(0010,0010)PN:2]}]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, ForeignHeaderEndsASequenceAndIsLost) {
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140).Item().Append(Item("AB").Data()).EndItem();
    stream.Element(0x0010, 0x0020, "LO", "");  // where an item or the delimiter should stand
    stream.Element(0x0010, 0x0040, "CS", "F ");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:-1{[(0010,0010)PN:2]} (0010,0040)CS:2]");
}

TEST_P(SequenceParsing, MissingSequenceDelimiterAtTheEndIsTolerated) {
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140).Item().Append(Item("AB").Data()).EndItem();
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:-1{[(0010,0010)PN:2]}]");
}

TEST_P(SequenceParsing, SequenceDelimiterAlsoEndsAnItemThatLacksItsOwn) {
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140).Item().Append(Item("AB").Data());
    stream.EndSequence();  // ends the item
    stream.EndSequence();  // ends the sequence
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:-1{[(0010,0010)PN:2]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, ElementMayReachBeyondItsItem) {
    const StreamBuilder item = Item("ABCDEFGH");
    StreamBuilder stream = Start();
    // The item claims 4 bytes less than its element takes: it ends behind the element.
    stream.Sequence(0x0008, 0x1140, 8 + item.Size()).Item(item.Size() - 4).Append(item.Data());
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(8 + item.Size()) +
                                 "{[(0010,0010)PN:8]} (0010,0020)LO:2]");
}

TEST_P(SequenceParsing, ItemLongerThanItsContentTakesWhatFollows) {
    const StreamBuilder item = Item("AB");
    StreamBuilder following(GetParam());
    following.Element(0x0010, 0x0020, "LO", "ID");
    StreamBuilder stream = Start();
    stream.Sequence(0x0008, 0x1140, 8 + item.Size());
    stream.Item(item.Size() + following.Size()).Append(item.Data()).Append(following.Data());
    stream.Element(0x0010, 0x0040, "CS", "F ");
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:" + std::to_string(8 + item.Size()) +
                                 "{[(0010,0010)PN:2 (0010,0020)LO:2]} (0010,0040)CS:2]");
}

TEST(SequenceNodes, ItemsDescribeThemselves) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Element(0x0008, 0x0060, "CS", "CT").Sequence(0x0008, 0x1140);
    const uint32_t sequenceValue = stream.Size();
    stream.Item().Element(0x0010, 0x0010, "PN", "AB").EndItem().EndSequence();

    OpenedStream opened(stream, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);

    PGX_Node* sequence = opened->FindNode(0x0008, 0x1140);
    EXPECT_EQ(sequence->fileOffset, sequenceValue);
    EXPECT_EQ(sequence->value, nullptr);
    EXPECT_EQ(sequence->nodeType, NT_DataElement);
    EXPECT_EQ(sequence->endian, ET_BigEndian);
    PGX_Node* item = sequence->first;
    EXPECT_EQ(item->nodeType, NT_DataSet);
    EXPECT_EQ(item->valueRep, 255u);
    EXPECT_EQ(item->length, 0u);
    EXPECT_EQ(item->endian, ET_LittleEndian);
    EXPECT_EQ(item->file, opened->file);
    EXPECT_EQ(item->fileOffset, sequenceValue + 8);
    EXPECT_EQ(item->syntaxFlags, 0xFFFFFFFFu);
}

// A header that fails inside an item gives its bytes up: the sequence goes on behind them.
TEST(SequenceRecovery, BrokenTagInAnItemCostsFourBytes) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Sequence(0x0008, 0x1140);
    stream.Item().U32(0xFFFFFFFF);
    stream.Item().Element(0x0010, 0x0010, "PN", "AB").EndItem().EndSequence();
    stream.Element(0x0010, 0x0020, "LO", "ID");
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:-1{[][(0010,0010)PN:2]} (0010,0020)LO:2]");
}

TEST(SequenceRecovery, BrokenUtHeaderInAnItemCostsEightBytes) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Sequence(0x0008, 0x1140);
    stream.Item().U16(0x0010).U16(0x4000).Text("UT").U16(7);
    stream.Item().Element(0x0010, 0x0010, "PN", "AB").EndItem().EndSequence();
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:-1{[][(0010,0010)PN:2]}]");
}

// An element header counts by its VR's form, not by the bytes it took.
TEST(SequenceByteCounts, PlaceholderVrCountsTwelveBytesOfHeader) {
    StreamBuilder item;
    item.Element(0x0010, 0x0010, "??", "AB");  // 10 bytes that count as 14
    item.Element(0x0010, 0x0020, "LO", "ID");  // 10 bytes
    for (const auto& [length, tags] : {std::pair<uint32_t, const char*>{14, "(0010,0010)????:2"},
                                       {15, "(0010,0010)????:2 (0010,0020)LO:2"}}) {
        StreamBuilder stream;
        stream.Element(0x0008, 0x0060, "CS", "CT");
        stream.Sequence(0x0008, 0x1140).Item(length).Append(item.Data()).EndSequence();
        const std::string expected = std::string("[(0008,0060)CS:2 (0008,1140)SQ:-1{[") + tags;
        EXPECT_EQ(Parse(stream).substr(0, expected.size() + 1), expected + "]");
    }
}

TEST(SequenceByteCounts, StrayItemTagCountsTwelveBytesOfHeader) {
    StreamBuilder item;
    item.Item(2).Text("AB");                   // 10 bytes that count as 14
    item.Element(0x0010, 0x0020, "LO", "ID");  // 10 bytes
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT");
    stream.Sequence(0x0008, 0x1140, 22).Item(14).Append(item.Data());
    EXPECT_EQ(Parse(stream),
              "[(0008,0060)CS:2 (0008,1140)SQ:22{[(FFFE,E000)????:2]} (0010,0020)LO:2]");
}

TEST(SequenceByteCounts, UnSequenceCountsByTheModeOfItsItems) {
    // Explicit stream, implicit items: the sequence's 12-byte header counts 8.
    StreamBuilder un;
    un.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF).Mode(VrMode::Implicit);
    un.Item().EndItem().EndSequence();  // 12 + 8 + 8 + 8 bytes that count 32
    StreamBuilder last;
    last.Element(0x0020, 0x0010, "SH", "1 ");
    for (const auto& [length, inside] : {std::pair<uint32_t, bool>{32, false}, {33, true}}) {
        StreamBuilder stream;
        stream.Element(0x0008, 0x0060, "CS", "CT");
        stream.Sequence(0x0008, 0x1140, 8 + length).Item(length);
        stream.Append(un.Data()).Append(last.Data());
        const std::string sequence = "(0008,1140)SQ:" + std::to_string(8 + length);
        const std::string item = "(0019,1001)SQ:-1{[]}";
        EXPECT_EQ(Parse(stream),
                  inside ? "[(0008,0060)CS:2 " + sequence + "{[" + item + " (0020,0010)SH:2]}]"
                         : "[(0008,0060)CS:2 " + sequence + "{[" + item + "]} (0020,0010)SH:2]");
    }
}

TEST(SequenceByteCounts, HugeElementInASmallItemEndsEverything) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Sequence(0x0008, 0x1140, 40).Item(32);
    stream.Header(0x0010, 0x4000, "OB", 0xFFFFFFF8).Zeros(100);
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0008,1140)SQ:40{[(0010,4000)OB:4294967288]}]");
}

// The first frame's length follows from the offsets, here to a number close to 2^32; with the other
// lengths it makes a small sum, behind which the item goes on.
TEST(SequenceByteCounts, WrapAsLengthsDo) {
    StreamBuilder icon;
    icon.Element(0x0008, 0x0060, "CS", std::string(200, 'C'));
    icon.Header(0x7FE0, 0x0010, "OB", 0xFFFFFFFF).Item(8).U32(100).U32(12);
    icon.Item(4).Text("abcd").Item(4).Text("efgh").EndSequence();
    icon.Element(0x7FE1, 0x1001, "LO", "AB");
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Sequence(0x0088, 0x0200, icon.Size() + 8);
    stream.Item(icon.Size()).Append(icon.Data());
    EXPECT_EQ(Parse(stream), "[(0008,0060)CS:2 (0088,0200)SQ:" + std::to_string(icon.Size() + 8) +
                                 "{[(0008,0060)CS:200 (7FE0,0010)OB:-1 (7FE1,1001)LO:2]}]");
}

StreamBuilder Nested(size_t levels) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "CS", "CT");
    for (size_t i = 0; i < levels; ++i)
        stream.Sequence(0x0008, 0x1140).Item();
    return stream;
}

size_t DepthOf(const PGX_Node* dataSet) {
    size_t depth = 0;
    while (true) {
        const PGX_Node* child = dataSet->first;
        while (child != nullptr && child->valueRep != VR_SQ)
            child = child->next;
        if (child == nullptr || child->first == nullptr) return depth;
        dataSet = child->first;
        ++depth;
    }
}

TEST(SequenceNesting, FifteenHundredLevelsComeBackWhole) {
    StreamBuilder stream = Nested(1500);
    stream.Element(0x0010, 0x0010, "PN", "AB");
    for (size_t i = 0; i < 1500; ++i)
        stream.EndItem().EndSequence();
    stream.Element(0x0010, 0x0020, "LO", "ID");
    OpenedStream opened(stream);
    EXPECT_EQ(DepthOf(opened.Root()), 1500u);
    EXPECT_NE(opened->FindNode(0x0010, 0x0020), nullptr);
}

TEST(SequenceNesting, ItemsBelowTheDeepestLevelEndTheirDataSet) {
    OpenedStream opened(Nested(2049));
    EXPECT_EQ(DepthOf(opened.Root()), 2048u);
    OpenedStream allowed(Nested(2048));
    EXPECT_EQ(DepthOf(allowed.Root()), 2048u);
}

// 2 MB of nothing but openings once meant as many stack frames.
TEST(SequenceNesting, HundredThousandLevelsAreCutWithoutHarm) {
    OpenedStream opened(Nested(100000));
    EXPECT_EQ(DepthOf(opened.Root()), 2048u);
}

}  // namespace
