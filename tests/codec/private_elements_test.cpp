// Private creators, the private dictionary, and elements whose VR is unknown or UN.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstring>

#include "support/tree.h"

namespace {

using pgkit_test::Child;
using pgkit_test::Describe;
using pgkit_test::kLoadAll;
using pgkit_test::OpenedStream;
using pgkit_test::Order;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;
using pgkit_test::VrMode;

class PrivateElements : public testing::Test {
  protected:
    PrivateElements() {
        SetDictionary(
            "(0019,\"ACME 1.1\",01) DS AcmeScale 1\n"
            "(0019,\"ACME 1.1\",02) SQ AcmeSequence 1\n"
            "(0019,\"ACME 1.1\",03) zz AcmeOddity 1\n"
            "(0019,\"OTHER\",01) IS OtherNumber 1\n");
    }
    ~PrivateElements() override {
        pgSetPrivateDictionaryFile(nullptr);
        pgTryToDecodeUNSequences(1);
    }

    void SetDictionary(std::string_view lines) {
        const std::string path = directory_.Write("privdict", lines);
        ASSERT_EQ(pgSetPrivateDictionaryFile(path.c_str()), 1u);
    }

    // A bare implicit data set.
    static StreamBuilder Implicit() {
        StreamBuilder stream(VrMode::Implicit);
        stream.Element(0x0008, 0x0060, "CS", "CT");
        return stream;
    }
    static StreamBuilder Explicit() {
        StreamBuilder stream;
        stream.Element(0x0008, 0x0060, "CS", "CT");
        return stream;
    }

    // VR and name of the last element: "DS AcmeScale".
    static std::string Last(const StreamBuilder& stream, uint32_t maxLoadLength = kLoadAll) {
        OpenedStream opened(stream, maxLoadLength);
        PGX_Node* last = opened->first;
        while (last->next != nullptr)
            last = last->next;
        char vr[5];
        pgGetVRPrintableName(last->valueRep, vr);
        return std::string(vr) + " " + (last->tagName == nullptr ? "(none)" : last->tagName);
    }

  private:
    TempDir directory_;
};

TEST_F(PrivateElements, CreatorIsNamedAndLoInImplicitVr) {
    EXPECT_EQ(Last(Implicit().Element(0x0009, 0x0010, "", "ACME")), "LO PrivateCreator10xx");
    EXPECT_EQ(Last(Implicit().Element(0x0009, 0x00FF, "", "ACME")), "LO PrivateCreatorFFxx");
}

TEST_F(PrivateElements, CreatorWithAnotherExplicitVrKeepsItAndIsNamedBuggy) {
    EXPECT_EQ(Last(Explicit().Element(0x0009, 0x0010, "LO", "ACME")), "LO PrivateCreator10xx");
    EXPECT_EQ(Last(Explicit().Element(0x0009, 0x0010, "SH", "ACME")), "SH BUGGYPrivateCreator10xx");
    EXPECT_EQ(Last(Explicit().Element(0x0009, 0x0010, "UN", "ACME")), "UN BUGGYPrivateCreator10xx");
}

TEST_F(PrivateElements, OnlyElements10ToFfOfOddGroupsAreCreators) {
    EXPECT_EQ(Last(Explicit().Element(0x0009, 0x000F, "SH", "ACME")), "SH (none)");
    EXPECT_EQ(Last(Explicit().Element(0x0009, 0x0100, "SH", "ACME")), "SH (none)");
    EXPECT_EQ(Last(Explicit().Element(0x0010, 0x0010, "SH", "ACME")), "SH (none)");
}

TEST_F(PrivateElements, ImplicitElementIsFoundThroughItsCreator) {
    EXPECT_EQ(
        Last(Implicit().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1001, "", "1 ")),
        "DS AcmeScale");
}

TEST_F(PrivateElements, CreatorTextIsTrimmedAndCaseIgnored) {
    EXPECT_EQ(
        Last(
            Implicit().Element(0x0019, 0x0023, "", " Acme 1.1 ").Element(0x0019, 0x2301, "", "1 ")),
        "DS AcmeScale");
}

TEST_F(PrivateElements, BlockOfTheCreatorAndGroupOfTheEntryMustFit) {
    EXPECT_EQ(
        Last(Implicit().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1101, "", "1 ")),
        "???? <unknown tag>");
    EXPECT_EQ(
        Last(Implicit().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0021, 0x1001, "", "1 ")),
        "???? <unknown tag>");
}

// The name of every element as pgxGetTagName gives it, with its result where there is none.
std::string NamesOf(const StreamBuilder& stream) {
    OpenedStream opened(stream);
    std::string names;
    for (PGX_Node* element = opened->first; element != nullptr; element = element->next) {
        char name[300];
        const size_t length = pgxGetTagName(element, name, sizeof name);
        EXPECT_EQ(length, name[0] == '<' ? 0 : std::strlen(name));
        names += std::string(name) + "\n";
    }
    return names;
}

TEST_F(PrivateElements, TheFlatFunctionNamesThemLikeAllOthers) {
    EXPECT_EQ(NamesOf(Implicit()
                          .Element(0x0009, 0x0000, "", std::string_view("\0\0\0\0", 4))
                          .Element(0x0018, 0x9999, "", "1 ")
                          .Element(0x0019, 0x0010, "", "ACME 1.1")
                          .Element(0x0019, 0x1001, "", "1 ")
                          .Element(0x0019, 0x10FF, "", "1 ")),
              "Modality\nGroupLength0009\n<Unknown Tag>\nPrivateCreator10xx\nAcmeScale\n"
              "<Unknown Tag>\n");
}

TEST_F(PrivateElements, NamesHaveABoundOfTheCaller) {
    OpenedStream opened(
        Implicit().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1001, "", "1 "));
    PGX_Node* const element = opened->FindNode(0x0019, 0x1001);
    char name[5] = "****";
    EXPECT_EQ(pgxGetTagName(element, name, sizeof name), 9u);
    EXPECT_STREQ(name, "Acme");
    EXPECT_EQ(pgxGetTagName(element, nullptr, 0), 9u);
    EXPECT_EQ(pgxGetTagName(nullptr, name, sizeof name), 0u);
    EXPECT_STREQ(name, "<Unk");
}

TEST_F(PrivateElements, WithoutCreatorTheTagIsUnknown) {
    EXPECT_EQ(Last(Implicit().Element(0x0019, 0x1001, "", "1 ")), "???? <unknown tag>");
    EXPECT_EQ(Last(Implicit().Element(0x0018, 0x9999, "", "1 ")), "???? <unknown tag>");
}

TEST_F(PrivateElements, SecondCreatorOfABlockIsAskedToo) {
    EXPECT_EQ(Last(Implicit()
                       .Element(0x0019, 0x0010, "", "NOBODY")
                       .Element(0x0019, 0x0010, "", "OTHER ")
                       .Element(0x0019, 0x1001, "", "1 ")),
              "IS OtherNumber");
}

// The block of group 0009 answers for group 0019, whose own creator comes later.
TEST_F(PrivateElements, CreatorOfAnotherGroupCountsWhenTheDictionaryKnowsItInThisOne) {
    SetDictionary(
        "(0019,\"OTHER\",01) IS OtherNumber 1\n"
        "(0019,\"ACME 1.1\",01) US AcmeCount 1\n");
    EXPECT_EQ(Last(Implicit()
                       .Element(0x0009, 0x0010, "", "ACME 1.1")
                       .Element(0x0019, 0x0010, "", "OTHER ")
                       .Element(0x0019, 0x1001, "", "abcd")),
              "US AcmeCount");
}

TEST_F(PrivateElements, CreatorsCountWithinTheirDataSetOnly) {
    StreamBuilder stream = Implicit().Element(0x0019, 0x0010, "", "ACME 1.1");
    stream.Sequence(0x0040, 0xA730).Item().Element(0x0019, 0x1001, "", "1 ").EndItem();
    stream.EndSequence();
    OpenedStream opened(stream);
    PGX_Node* inner = opened->FindNode(0x0040, 0xA730)->first->first;
    EXPECT_EQ(inner->valueRep, 255u);
    EXPECT_STREQ(inner->tagName, "<unknown tag>");
}

TEST_F(PrivateElements, EachItemHasCreatorsOfItsOwn) {
    StreamBuilder stream = Implicit();
    stream.Sequence(0x0040, 0xA730);
    stream.Item().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1001, "", "1 ");
    stream.EndItem().Item().Element(0x0019, 0x1001, "", "1 ").EndItem().EndSequence();
    OpenedStream opened(stream);
    PGX_Node* item = opened->FindNode(0x0040, 0xA730)->first;
    EXPECT_EQ(item->FindNode(0x0019, 0x1001)->valueRep, uint32_t{VR_DS});
    EXPECT_EQ(item->next->FindNode(0x0019, 0x1001)->valueRep, 255u);
}

TEST_F(PrivateElements, CreatorOfUpTo64BytesCounts) {
    const std::string padded = "ACME 1.1" + std::string(56, ' ');
    EXPECT_EQ(
        Last(Implicit().Element(0x0019, 0x0010, "", padded).Element(0x0019, 0x1001, "", "1 ")),
        "DS AcmeScale");
    EXPECT_EQ(
        Last(
            Implicit().Element(0x0019, 0x0010, "", padded + " ").Element(0x0019, 0x1001, "", "1 ")),
        "???? <unknown tag>");
}

TEST_F(PrivateElements, ThirtyNineCreatorsCount) {
    StreamBuilder stream = Implicit();
    for (uint16_t i = 0; i < 38; ++i) {
        stream.Element(0x0019, static_cast<uint16_t>(0x10 + i), "", "NOBODY");
    }
    StreamBuilder last = stream;
    EXPECT_EQ(Last(last.Element(0x0019, 0x0036, "", "ACME 1.1").Element(0x0019, 0x3601, "", "1 ")),
              "DS AcmeScale");
    stream.Element(0x0019, 0x0036, "", "NOBODY");
    EXPECT_EQ(
        Last(stream.Element(0x0019, 0x0037, "", "ACME 1.1").Element(0x0019, 0x3701, "", "1 ")),
        "???? <unknown tag>");
}

TEST_F(PrivateElements, CreatorIsReadAlsoWhenItsValueIsNotLoaded) {
    StreamBuilder stream = Implicit();
    stream.Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1001, "", "1 ");
    stream.Element(0x0019, 0x1001, "", "2 ");
    EXPECT_EQ(Last(stream, 0), "DS AcmeScale");
}

TEST_F(PrivateElements, BuggyCreatorDoesNotCount) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0019, 0x0010, "SH", "ACME 1.1").Element(0x0019, 0x1001, "UN", "1 ");
    EXPECT_EQ(Last(stream), "UN <unknown tag>");
}

TEST_F(PrivateElements, DictionarySequenceOfDefinedLengthIsParsed) {
    StreamBuilder stream = Implicit();
    stream.Element(0x0019, 0x0010, "", "ACME 1.1").Sequence(0x0019, 0x1002, 18);
    stream.Item(10).Element(0x0010, 0x0010, "", "AB");
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0060)CS:2 (0019,0010)LO:8 (0019,1002)SQ:18{[(0010,0010)PN:2]}]");
}

TEST_F(PrivateElements, EntryOfUnknownVrStillNamesTheElement) {
    EXPECT_EQ(
        Last(Implicit().Element(0x0019, 0x0010, "", "ACME 1.1").Element(0x0019, 0x1003, "", "1 ")),
        "???? AcmeOddity");
    EXPECT_EQ(Last(Explicit()
                       .Element(0x0019, 0x0010, "LO", "ACME 1.1")
                       .Element(0x0019, 0x1003, "UN", "1 ")),
              "UN AcmeOddity");
}

TEST_F(PrivateElements, FullElementNumbersAreAnsweredWithoutCreatorOrName) {
    SetDictionary("(0019,\"X\",1001) FD Full 1\n");
    EXPECT_EQ(Last(Implicit().Element(0x0019, 0x1001, "", "1234567 ")), "FD (none)");
}

TEST_F(PrivateElements, UnknownImplicitTagOfUndefinedLengthIsASequence) {
    StreamBuilder stream = Implicit();
    stream.Sequence(0x0019, 0x1001).Item().Element(0x0010, 0x0010, "", "AB").EndItem();
    stream.EndSequence().Element(0x0020, 0x0010, "", "1 ");
    OpenedStream opened(stream);
    EXPECT_EQ(Describe(opened.Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]} (0020,0010)SH:2]");
    EXPECT_EQ(opened->FindNode(0x0019, 0x1001)->tagName, nullptr);
}

TEST_F(PrivateElements, UnOfDefinedLengthIsLookedUpWhenTheSwitchIsOn) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0019, 0x0010, "LO", "ACME 1.1").Element(0x0019, 0x1001, "UN", "1 ");
    EXPECT_EQ(Last(stream), "DS AcmeScale");
    EXPECT_EQ(pgTryToDecodeUNSequences(0), 0u);
    EXPECT_EQ(Last(stream), "UN (none)");
}

TEST_F(PrivateElements, UnknownUnOfDefinedLengthStaysUn) {
    EXPECT_EQ(Last(Explicit().Element(0x0018, 0x9999, "UN", "1 ")), "UN <unknown tag>");
}

TEST_F(PrivateElements, OtherVrsAreNotLookedUp) {
    StreamBuilder stream = Explicit();
    stream.Element(0x0019, 0x0010, "LO", "ACME 1.1").Element(0x0019, 0x1001, "SH", "1 ");
    EXPECT_EQ(Last(stream), "SH (none)");
}

TEST_F(PrivateElements, UndefinedUnIsASequenceOfImplicitItems) {
    StreamBuilder stream = Explicit();
    stream.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF).Mode(VrMode::Implicit);
    stream.Item().Element(0x0010, 0x0010, "", "AB").EndItem().EndSequence();
    stream.Mode(VrMode::Explicit).Element(0x0020, 0x0010, "SH", "1 ");
    EXPECT_EQ(Describe(OpenedStream(stream).Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]} (0020,0010)SH:2]");
}

TEST_F(PrivateElements, UndefinedUnKeepsTheByteOrderOfItsStream) {
    StreamBuilder stream(VrMode::Explicit, Order::Big);
    stream.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF).Mode(VrMode::Implicit);
    stream.Item().ElementUS(0x0028, 0x0010, 258).EndItem().EndSequence();
    OpenedStream opened(stream, kLoadAll, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN);
    EXPECT_EQ(Describe(opened.Root()), "[(0019,1001)SQ:-1{[(0028,0010)US:2]}]");
    EXPECT_EQ(Child(opened->first->first, 0x0028, 0x0010)->GetUSValue(), 258u);
}

TEST_F(PrivateElements, ImplicitCreatorOfUndefinedLengthIsSkippedAsANumber) {
    StreamBuilder stream(VrMode::Implicit);
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x0019, 0x0010, "", 0xFFFFFFFF);
    stream.Item().EndItem().EndSequence();
    EXPECT_EQ(Describe(OpenedStream(stream).Root()), "[(0008,0060)CS:2 (0019,0010)LO:-1]");
}

TEST_F(PrivateElements, UndefinedUnIsSkippedAsANumberWhenTheSwitchIsOff) {
    pgTryToDecodeUNSequences(0);
    StreamBuilder stream = Explicit();
    stream.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF).Mode(VrMode::Implicit);
    stream.Item().Element(0x0010, 0x0010, "", "AB").EndItem().EndSequence();
    EXPECT_EQ(Describe(OpenedStream(stream).Root()), "[(0008,0060)CS:2 (0019,1001)UN:-1]");
}

// An undefined UN element whose items are in explicit VR, against the rule.
StreamBuilder UnWithExplicitItems() {
    StreamBuilder item;
    item.Element(0x0010, 0x0010, "PN", "AB");
    StreamBuilder stream;
    stream.Element(0x0008, 0x0060, "CS", "CT").Header(0x0019, 0x1001, "UN", 0xFFFFFFFF);
    stream.Item(item.Size()).Append(item.Data()).EndSequence();
    return stream;
}

TEST_F(PrivateElements, Flag200KeepsTheSurroundingVrMode) {
    EXPECT_EQ(Describe(OpenedStream(UnWithExplicitItems(), kLoadAll, 0x200).Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]}]");
}

TEST_F(PrivateElements, Flag400LooksAtTheFirstItem) {
    EXPECT_EQ(Describe(OpenedStream(UnWithExplicitItems(), kLoadAll, 0x400).Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]}]");

    StreamBuilder implicitItems = Explicit();
    implicitItems.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF).Mode(VrMode::Implicit);
    implicitItems.Item(10).Element(0x0010, 0x0010, "", "AB").EndSequence();
    EXPECT_EQ(Describe(OpenedStream(implicitItems, kLoadAll, 0x400).Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]}]");
}

TEST_F(PrivateElements, Flag400DoesNotJudgeEmptyOrUndefinedItems) {
    StreamBuilder item;
    item.Element(0x0010, 0x0010, "PN", "AB");
    for (uint32_t length : {uint32_t{0}, 0xFFFFFFFF}) {
        StreamBuilder stream = Explicit();
        stream.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF);
        stream.Item(length).Append(item.Data());
        // Taken for implicit VR: of the item nothing sensible comes out.
        const std::string tree = Describe(OpenedStream(stream, kLoadAll, 0x400).Root());
        EXPECT_EQ(tree.find("PN:2"), std::string::npos) << tree;
    }
}

TEST_F(PrivateElements, Flag200GoesBeforeFlag400) {
    StreamBuilder stream = Explicit();
    stream.Header(0x0019, 0x1001, "UN", 0xFFFFFFFF);
    stream.Item().Element(0x0010, 0x0010, "PN", "AB").EndItem().EndSequence();
    EXPECT_EQ(Describe(OpenedStream(stream, kLoadAll, 0x600).Root()),
              "[(0008,0060)CS:2 (0019,1001)SQ:-1{[(0010,0010)PN:2]}]");
}

TEST_F(PrivateElements, GroupFffeIsNeverLookedUp) {
    OpenedStream opened(Implicit().Element(0xFFFE, 0x1001, "", "1 "));
    PGX_Node* node = opened->FindNode(0xFFFE, 0x1001);
    EXPECT_EQ(node->valueRep, 255u);
    EXPECT_EQ(node->tagName, nullptr);
}

TEST_F(PrivateElements, GroupOfTenThousandCreatorsIsHarmless) {
    StreamBuilder stream = Implicit();
    for (int i = 0; i < 10000; ++i)
        stream.Element(0x0019, 0x0010, "", "ACME 1.1");
    EXPECT_EQ(Last(stream.Element(0x0019, 0x1001, "", "1 ")), "DS AcmeScale");
}

}  // namespace
