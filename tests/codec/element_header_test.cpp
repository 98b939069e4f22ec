// Reading of element headers: VR fields, long and short lengths, delimiters, broken headers.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include "support/tree.h"

namespace {

using pgkit_test::Describe;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::Tags;
using pgkit_test::TextOf;
using pgkit_test::VrMode;

// A bare explicit little endian data set that starts with an element of group 0008.
StreamBuilder Explicit() {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT");
    return stream;
}

constexpr const char* kStart = "[(0008,0060)CS:2";

std::string DescribeRest(const StreamBuilder& stream, uint32_t flags = 0) {
    OpenedStream opened(stream, kLoadAll, flags);
    const std::string all = Describe(opened.Root());
    EXPECT_EQ(all.substr(0, 16), kStart);
    return all.substr(16);
}

TEST(ElementHeader, EveryVrIsReadInItsForm) {
    for (const char* vr :
         {"UL", "UI", "US", "AE", "AT", "LO", "OB", "SH", "CS", "DA", "TM", "DT", "ST",
          "PN", "IS", "DS", "LT", "FL", "AS", "SL", "FD", "SS", "OW", "UT", "OF"}) {
        StreamBuilder stream = Explicit();
        stream.Element(0x0010, 0x4000, vr, "abcd").Element(0x0010, 0x4001, "CS", "xy");
        EXPECT_EQ(DescribeRest(stream), std::string(" (0010,4000)") + vr + ":4 (0010,4001)CS:2]");
    }
}

TEST(ElementHeader, UnHasTheLongForm) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0010, 0x4000, "UN", "abcd").Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(stream), " (0010,4000)UN:4 (0010,4001)CS:2]");
}

TEST(ElementHeader, UnknownVrHasTheLongFormAndCode255) {
    for (const char* vr : {"ZZ", "cs", "ox", "C ", "?A"}) {
        StreamBuilder stream = Explicit();
        stream.Element(0x0010, 0x4000, vr, "abcd").Element(0x0010, 0x4001, "CS", "xy");
        EXPECT_EQ(DescribeRest(stream), " (0010,4000)????:4 (0010,4001)CS:2]") << vr;
    }
}

TEST(ElementHeader, PlaceholderVrHasTheShortFormAndCode255) {
    using std::string_view;
    for (string_view vr : {string_view("??"), string_view("  "), string_view("\0\0", 2)}) {
        StreamBuilder stream = Explicit();
        stream.Element(0x0010, 0x4000, vr, "abcd").Element(0x0010, 0x4001, "CS", "xy");
        EXPECT_EQ(DescribeRest(stream), " (0010,4000)????:4 (0010,4001)CS:2]");
    }
}

TEST(ElementHeader, NamesOfTheAmbiguousVrsAreNoVrFields) {
    // "OW" followed by "OB" would be a four-letter name; a header has room for two letters only.
    StreamBuilder stream = Explicit();
    stream.U16(0x0010).U16(0x4000).Text("OWOB").U32(2).Text("ab");
    EXPECT_EQ(DescribeRest(stream), " (0010,4000)OW:2]");
}

TEST(ElementHeader, ReservedBytesCountForUtOnly) {
    StreamBuilder ob = Explicit();
    ob.U16(0x0010).U16(0x4000).Text("OB").U16(0x1234).U32(2).Text("ab");
    ob.Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(ob), " (0010,4000)OB:2 (0010,4001)CS:2]");

    StreamBuilder ut = Explicit();
    ut.U16(0x0010).U16(0x4000).Text("UT").U16(0x1234).U32(2).Text("ab");
    ut.Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(ut), "]");
}

TEST(ElementHeader, TagFfffFfffEndsTheDataSet) {
    StreamBuilder stream = Explicit();
    stream.U32(0xFFFFFFFF).Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(stream), "]");

    StreamBuilder otherElement = Explicit();
    otherElement.Element(0xFFFF, 0x0001, "CS", "xy");
    EXPECT_EQ(DescribeRest(otherElement), " (FFFF,0001)CS:2]");
}

TEST(ElementHeader, StrayDelimiterEndsTheDataSet) {
    for (uint16_t delimiter : {uint16_t{0xE00D}, uint16_t{0xE0DD}}) {
        StreamBuilder stream = Explicit();
        stream.U16(0xFFFE).U16(delimiter).U32(0).Element(0x0010, 0x4001, "CS", "xy");
        EXPECT_EQ(DescribeRest(stream), "]");
    }
}

TEST(ElementHeader, StrayItemIsReadAsAnElementWithoutVr) {
    StreamBuilder stream = Explicit();
    stream.Item(4).Text("abcd").Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(stream), " (FFFE,E000)????:4 (0010,4001)CS:2]");
}

TEST(ElementHeader, ImplicitHeadersTakeTheirVrFromTheDictionary) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0000, "", "abcd")
        .Element(0x0008, 0x0060, "", "CT")
        .Element(0x0028, 0x0106, "", "ab")
        .Element(0x6002, 0x3000, "", "ab")
        .Element(0x7FE0, 0x0010, "", "ab");
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0000)UL:4 (0008,0060)CS:2 (0028,0106)USSS:2 (6002,3000)OWOB:2 "
              "(7FE0,0010)OWOB:2]");
}

TEST(ElementHeader, BigEndianNumbersAreSwapped) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.ElementUS(0x0028, 0x0010, 0x0102).Element(0x7FE0, 0x0010, "OW", "abcd");
    OpenedStream opened(stream, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    EXPECT_EQ(Describe(opened.Root()), "[(0028,0010)US:2 (7FE0,0010)OW:4]");
    EXPECT_EQ(opened->first->GetUSValue(), 0x0102);
    // The parser leaves value bytes as they are.
    EXPECT_EQ(opened->first->value[0], 0x01);
    EXPECT_EQ(opened->first->endian, ET_BigEndian);
    // The root stays little endian.
    EXPECT_EQ(opened->endian, ET_LittleEndian);
}

TEST(ElementHeader, UndefinedLengthOfAPlainElementIsSkippedAsANumber) {
    StreamBuilder stream = Explicit();
    stream.Header(0x0010, 0x4000, "OB", 0xFFFFFFFF).Element(0x0010, 0x4001, "CS", "xy");
    EXPECT_EQ(DescribeRest(stream), " (0010,4000)OB:-1]");
}

TEST(ElementHeader, GroupLengthsAreUlAndNamedByTheirGroup) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0009, 0x0000, "UN", "abcd").Element(0x0010, 0x0000, "UL", "abcd");
    OpenedStream opened(stream);
    EXPECT_EQ(Describe(opened.Root()), "[(0008,0060)CS:2 (0009,0000)UL:4 (0010,0000)UL:4]");
    EXPECT_STREQ(opened->FindNode(0x0009, 0x0000)->tagName, "GroupLength0009");
    EXPECT_STREQ(opened->FindNode(0x0010, 0x0000)->tagName, "GroupLength0010");
    EXPECT_EQ(opened->FindNode(0x0008, 0x0060)->tagName, nullptr);
}

TEST(ElementHeader, ElementZeroIsAGroupLengthInGroupFffeToo) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "CS", "CT").Element(0xFFFE, 0x0000, "", "abcd");
    OpenedStream opened(stream);
    EXPECT_EQ(Describe(opened.Root()), "[(0008,0060)CS:2 (FFFE,0000)UL:4]");
    EXPECT_STREQ(opened->FindNode(0xFFFE, 0x0000)->tagName, "GroupLengthFFFE");
}

TEST(ElementHeader, EachHeaderMayBeCutShort) {
    StreamBuilder stream = Explicit();
    const uint32_t start = stream.Size();
    stream.Header(0x0010, 0x4000, "OB", 0);
    for (size_t size = start; size < stream.Data().size(); ++size) {
        const pgkit_test::Bytes cut(stream.Data().begin(),
                                    stream.Data().begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(Describe(OpenedStream(cut).Root()), "[(0008,0060)CS:2]") << size;
    }
    EXPECT_EQ(DescribeRest(stream), " (0010,4000)OB:0]");
}

}  // namespace
