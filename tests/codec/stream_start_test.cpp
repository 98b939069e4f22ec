// How a stream's start is recognised: preamble, File Meta Information, transfer syntax, or none.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <ostream>

#include "support/save_modes.h"
#include "support/tree.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::Describe;
using pgkit_test::kExplicitBig;
using pgkit_test::kExplicitLittle;
using pgkit_test::kImplicitLittle;
using pgkit_test::kLoadAll;
using pgkit_test::kPart10Big;
using pgkit_test::kPart10Explicit;
using pgkit_test::kPart10Implicit;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::PaddedUid;
using pgkit_test::StreamBuilder;
using pgkit_test::Tags;
using pgkit_test::TextOf;
using pgkit_test::VrMode;

struct SyntaxCase {
    const char* uid;
    VrMode mode;
    Order order;
    uint32_t syntaxFlags;
};

void PrintTo(const SyntaxCase& c, std::ostream* out) { *out << c.uid; }

class TransferSyntax : public testing::TestWithParam<SyntaxCase> {};

TEST_P(TransferSyntax, DecidesHowTheDataSetIsDecoded) {
    const SyntaxCase& c = GetParam();
    StreamBuilder body(c.mode, c.order);
    body.Element(0x0008, 0x0060, "CS", "CT").ElementUS(0x0028, 0x0010, 0x0102);
    StreamBuilder stream;
    stream.Part10(c.uid).Append(body.Data());

    OpenedStream opened(stream);

    EXPECT_EQ(opened->syntaxFlags, c.syntaxFlags);
    EXPECT_EQ(Tags(opened.Root()), "0002,0010 0008,0060 0028,0010");
    PGX_Node* rows = opened->FindNode(0x0028, 0x0010);
    EXPECT_EQ(rows->GetUSValue(), 0x0102);
    EXPECT_EQ(rows->endian, c.order == Order::Big ? ET_BigEndian : ET_LittleEndian);
}

INSTANTIATE_TEST_SUITE_P(
    Known, TransferSyntax,
    testing::Values(
        SyntaxCase{"1.2.840.10008.1.2", VrMode::Implicit, Order::Little, kPart10Implicit},
        SyntaxCase{"1.2.840.10008.1.2.1", VrMode::Explicit, Order::Little, kPart10Explicit},
        SyntaxCase{"1.2.840.10008.1.2.2", VrMode::Explicit, Order::Big, kPart10Big},
        SyntaxCase{"1.2.840.113619.5.2", VrMode::Implicit, Order::Little, kPart10Implicit},
        SyntaxCase{"1.2.840.113704.7.0.4.5", VrMode::Explicit, Order::Big, kPart10Big},
        SyntaxCase{"1.2.840.10008.1.2.4.50", VrMode::Explicit, Order::Little, kPart10Explicit},
        SyntaxCase{"1.2.840.10008.1.2.5", VrMode::Explicit, Order::Little, kPart10Explicit},
        SyntaxCase{"9.9", VrMode::Explicit, Order::Little, kPart10Explicit}));

TEST(StreamStart, MetaElementsStandFirstWithTheirValuesOnDisk) {
    StreamBuilder stream;
    stream.Preamble()
        .MetaElement(0x0001, "OB", std::string("\0\1", 2))
        .MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2.1"))
        .Element(0x0008, 0x0060, "CS", "CT");

    OpenedStream opened(stream);

    EXPECT_EQ(Describe(opened.Root()), "[(0002,0001)OB:2 (0002,0010)UI:20 (0008,0060)CS:2]");
    PGX_Node* syntax = opened->FindNode(0x0002, 0x0010);
    EXPECT_EQ(syntax->value, nullptr);
    EXPECT_EQ(syntax->file, opened->file);
    EXPECT_EQ(syntax->fileOffset, 132u + 14u + 8u);
    EXPECT_EQ(syntax->endian, ET_LittleEndian);
    EXPECT_EQ(syntax->tagName, nullptr);
    EXPECT_STREQ(TextOf(syntax).c_str(), "1.2.840.10008.1.2.1");
}

TEST(StreamStart, RootDescribesTheDataSet) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1");
    const uint32_t start = stream.Size();
    stream.Element(0x0008, 0x0060, "CS", "CT");

    OpenedStream opened(stream);

    EXPECT_EQ(opened->nodeType, NT_DataSet);
    EXPECT_EQ(opened->valueRep, 255u);
    EXPECT_EQ(opened->length, 0u);
    EXPECT_EQ(opened->endian, ET_LittleEndian);
    EXPECT_NE(opened->file, nullptr);
    EXPECT_EQ(opened->fileOffset, start);
    EXPECT_EQ(opened->first->syntaxFlags, 0xFFFFFFFFu);
}

TEST(StreamStart, PreambleMayHoldAnything) {
    StreamBuilder stream;
    stream.Text(std::string(128, 'x')).Text("DICM");
    stream.MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2"));
    stream.Mode(VrMode::Implicit).Element(0x0008, 0x0060, "CS", "CT");
    EXPECT_EQ(OpenedStream(stream)->syntaxFlags, kPart10Implicit);
}

TEST(StreamStart, MetaGroupWithoutPreambleIsRecognisedByItsGroupLength) {
    StreamBuilder stream;
    stream.ElementUL(0x0002, 0x0000, 28).Element(0x0002, 0x0010, "UI", "1.2.840.10008.1.2.2 ");
    StreamBuilder body(VrMode::Explicit, Order::Big);
    body.Element(0x0008, 0x0060, "CS", "CT");
    stream.Append(body.Data());

    OpenedStream opened(stream);

    EXPECT_EQ(opened->syntaxFlags, kPart10Big);
    EXPECT_EQ(Tags(opened.Root()), "0002,0000 0002,0010 0008,0060");
}

TEST(StreamStart, MetaGroupWithoutPreambleIsRecognisedByItsSopClass) {
    StreamBuilder stream;
    stream.Element(0x0002, 0x0002, "UI", "1.2 ")
        .Element(0x0002, 0x0010, "UI", PaddedUid("1.2.840.10008.1.2"))
        .Mode(VrMode::Implicit)
        .Element(0x0008, 0x0060, "CS", "CT");
    OpenedStream opened(stream);
    EXPECT_EQ(opened->syntaxFlags, kPart10Implicit);
    EXPECT_EQ(Tags(opened.Root()), "0002,0002 0002,0010 0008,0060");
}

TEST(StreamStart, AnyOtherFirstMetaElementIsNoMetaGroup) {
    StreamBuilder stream;
    stream.Element(0x0002, 0x0001, "OB", "xx").Element(0x0008, 0x0060, "CS", "CT");
    EXPECT_EQ(OpenedStream(stream)->syntaxFlags, kImplicitLittle);
}

TEST(StreamStart, MetaGroupMayBeImplicit) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Preamble()
        .ElementUL(0x0002, 0x0000, 0)
        .Element(0x0002, 0x0010, "", PaddedUid("1.2.840.10008.1.2.1"))
        .Mode(VrMode::Explicit)
        .Element(0x0008, 0x0060, "CS", "CT");
    OpenedStream opened(stream);
    EXPECT_EQ(opened->syntaxFlags, kPart10Explicit);
    EXPECT_EQ(Describe(opened.Root()), "[(0002,0000)UL:4 (0002,0010)UI:20 (0008,0060)CS:2]");
}

TEST(StreamStart, MetaGroupEndsWhereElementsDescend) {
    StreamBuilder stream;
    stream.Preamble()
        .MetaElement(0x0001, "OB", "xx")
        .MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2.1"))
        .MetaElement(0x0002, "UI", "1.2 ");
    const uint32_t metaSize = 132 + 14 + 28;

    OpenedStream opened(stream);

    EXPECT_EQ(Tags(opened.Root()), "0002,0001 0002,0010 0002,0002");
    EXPECT_EQ(opened->fileOffset, metaSize);
    // It belongs to the data set, where values are loaded.
    EXPECT_NE(opened->FindNode(0x0002, 0x0002)->value, nullptr);
    EXPECT_EQ(opened->FindNode(0x0002, 0x0010)->value, nullptr);
}

TEST(StreamStart, MetaElementsMayRepeatAndFollowAGroupLengthOfAnyKind) {
    StreamBuilder stream;
    stream.Preamble()
        .MetaElement(0x0000, "UL", std::string(4, '\0'))
        .MetaElement(0x0000, "UL", std::string(4, '\0'))
        .MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2.1"))
        .MetaElement(0x0010, "UI", PaddedUid("1.2.840.10008.1.2"))
        .Mode(VrMode::Implicit)
        .Element(0x0008, 0x0060, "CS", "CT");
    OpenedStream opened(stream);
    EXPECT_EQ(opened->syntaxFlags, kPart10Implicit);
    EXPECT_EQ(Tags(opened.Root()), "0002,0000 0002,0000 0002,0010 0002,0010 0008,0060");
}

TEST(StreamStart, TransferSyntaxIsTheFirstWordOfItsText) {
    for (const char* text :
         {"1.2.840.10008.1.2 ", "  1.2.840.10008.1.2", "1.2.840.10008.1.2 junk "}) {
        StreamBuilder stream;
        stream.Preamble().MetaElement(0x0010, "UI", text);
        stream.Mode(VrMode::Implicit).Element(0x0008, 0x0060, "CS", "CT");
        EXPECT_EQ(OpenedStream(stream)->syntaxFlags, kPart10Implicit) << text;
    }
}

TEST(StreamStart, OverlongTransferSyntaxIsCutAndSkippedWhole) {
    StreamBuilder stream;
    stream.Preamble().MetaElement(0x0010, "UI", std::string(5000, '1'));
    stream.Element(0x0008, 0x0060, "CS", "CT");
    OpenedStream opened(stream);
    EXPECT_EQ(opened->syntaxFlags, kPart10Explicit);
    EXPECT_EQ(Tags(opened.Root()), "0002,0010 0008,0060");
}

TEST(StreamStart, MetaGroupWithoutTransferSyntaxIsExplicitLittleEndian) {
    StreamBuilder stream;
    stream.Preamble().MetaElement(0x0002, "UI", "1.2 ").Element(0x0008, 0x0060, "CS", "CT");
    EXPECT_EQ(OpenedStream(stream)->syntaxFlags, kPart10Explicit);
}

TEST(StreamStart, PrefixWithoutMetaElementsIsExplicitLittleEndian) {
    StreamBuilder stream;
    stream.Preamble().Element(0x0008, 0x0060, "CS", "CT");
    OpenedStream opened(stream);
    EXPECT_EQ(opened->syntaxFlags, kPart10Explicit);
    EXPECT_EQ(Describe(opened.Root()), "[(0008,0060)CS:2]");
}

TEST(StreamStart, BareDataSetIsImplicitUnlessLettersStandForAVr) {
    StreamBuilder implicitVr(VrMode::Implicit);
    implicitVr.Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    EXPECT_EQ(OpenedStream(implicitVr)->syntaxFlags, kImplicitLittle);

    StreamBuilder explicitVr;
    explicitVr.Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    EXPECT_EQ(OpenedStream(explicitVr)->syntaxFlags, kExplicitLittle);
}

TEST(StreamStart, LettersOfEitherCaseCountButOnlyInGroup0008) {
    StreamBuilder lower;
    lower.Element(0x0008, 0x0005, "cs", "ISO_IR 100");
    EXPECT_EQ(OpenedStream(lower)->syntaxFlags, kExplicitLittle);

    StreamBuilder group10;
    group10.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(OpenedStream(group10)->syntaxFlags, kImplicitLittle);
}

TEST(StreamStart, FlagsForceTheEncodingOfABareDataSet) {
    StreamBuilder big(VrMode::Explicit, Order::Big);
    big.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(OpenedStream(big, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN)
                  ->syntaxFlags,
              kExplicitBig);
    EXPECT_EQ(
        Describe(OpenedStream(big, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN)
                     .Root()),
        "[(0010,0010)PN:8]");

    StreamBuilder implicitBig(VrMode::Implicit, Order::Big);
    implicitBig.Element(0x0010, 0x0010, "", "DOE^JOHN");
    OpenedStream opened(implicitBig, kLoadAll,
                        PG_OPEN_FORCE_IMPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    EXPECT_EQ(opened->syntaxFlags, PG_IMPLICIT_VR | PG_BIG_ENDIAN);
    EXPECT_EQ(Describe(opened.Root()), "[(0010,0010)PN:8]");
}

TEST(StreamStart, OfContradictingFlagsExplicitAndLittleEndianWin) {
    StreamBuilder stream;
    stream.Element(0x0010, 0x0010, "PN", "DOE^JOHN");
    EXPECT_EQ(OpenedStream(stream, kLoadAll, 0x78)->syntaxFlags, kExplicitLittle);
}

TEST(StreamStart, ImplicitFlagOverridesLetters) {
    StreamBuilder stream;
    stream.Element(0x0008, 0x0005, "CS", "ISO_IR 100");
    EXPECT_EQ(OpenedStream(stream, kLoadAll, PG_OPEN_FORCE_IMPLICIT_VR)->syntaxFlags,
              kImplicitLittle);
}

TEST(StreamStart, FlagsDoNotCountWithAMetaGroup) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "CT");
    EXPECT_EQ(OpenedStream(stream, kLoadAll, PG_OPEN_FORCE_IMPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN)
                  ->syntaxFlags,
              kPart10Explicit);
}

TEST(StreamStart, StreamsWithoutAWholeFirstHeaderAreRefused) {
    EXPECT_EQ(OpenedStream(Bytes{}).Root(), nullptr);
    EXPECT_EQ(OpenedStream(Bytes{8, 0, 5, 0, 'C'}).Root(), nullptr);
    EXPECT_EQ(OpenedStream(StreamBuilder().Preamble()).Root(), nullptr);
}

TEST(StreamStart, SixBytesAreEnoughForAnEmptyDataSet) {
    OpenedStream opened(Bytes{8, 0, 5, 0, 'C', 'S'});
    EXPECT_EQ(Describe(opened.Root()), "[]");
    EXPECT_EQ(opened->syntaxFlags, kExplicitLittle);
}

TEST(StreamStart, FileThatEndsInOrBehindItsMetaGroupIsRefused) {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1");
    EXPECT_EQ(OpenedStream(stream).Root(), nullptr);

    StreamBuilder longer = stream;
    EXPECT_EQ(OpenedStream(longer.Text("\x08")).Root(), nullptr);
    // A tag of another group ends the meta group; that it has no length ends the data set.
    StreamBuilder tag = stream;
    EXPECT_EQ(Tags(OpenedStream(tag.U16(0x0008).U16(0x0060)).Root()), "0002,0010");
}

TEST(StreamStart, BrokenMetaHeadersAreRefused) {
    StreamBuilder ffff;
    ffff.Preamble().MetaElement(0x0002, "UI", "1.2 ").U32(0xFFFFFFFF).Zeros(20);
    EXPECT_EQ(OpenedStream(ffff).Root(), nullptr);

    StreamBuilder reserved;
    reserved.Preamble().U16(0x0002).U16(0x0100).Text("UT").U16(1).U32(0).Zeros(20);
    EXPECT_EQ(OpenedStream(reserved).Root(), nullptr);

    StreamBuilder huge;
    huge.Preamble().U16(0x0002).U16(0x0001).Text("OB").U16(0).U32(0xFFFFFFFF).Zeros(20);
    EXPECT_EQ(OpenedStream(huge).Root(), nullptr);
}

}  // namespace
