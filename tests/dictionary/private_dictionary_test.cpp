// The private dictionary file, seen through the exported lookups. Elements have all four digits
// here, since lookups by tag compare the element as the file has it.
#include <gtest/gtest.h>
#include <pgkit/dictionary.h>
#include <pgkit/value_representation.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/captured.h"
#include "support/private_dictionary.h"
#include "support/tag_name.h"
#include "support/temp_dir.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::Printed;
using pgkit_test::PrivateDictionaryText;
using pgkit_test::TagName;
using pgkit_test::TempDir;

constexpr const char* kUnknown = "<Unknown Tag>";
const std::string kLine = "(0019,\"X\",1010) LO Name 1\n";

class PrivateDictionaryFile : public testing::Test {
  protected:
    ~PrivateDictionaryFile() override { pgSetPrivateDictionaryFile(nullptr); }

    TempDir directory_;
};

std::string NameAfterLoading(std::string_view text) {
    const PrivateDictionaryText dictionary(text);
    return TagName(0x0019, 0x1010);
}

TEST_F(PrivateDictionaryFile, GivesValueRepresentationAndNameOfATag) {
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x1010), uint32_t{VR_Unknown});
    EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);

    const PrivateDictionaryText dictionary(kLine);
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x1010), uint32_t{VR_LO});
    EXPECT_EQ(TagName(0x0019, 0x1010), "Name");
}

TEST_F(PrivateDictionaryFile, IsNotSearchedForIdentifiers) {
    const PrivateDictionaryText dictionary(kLine);
    EXPECT_EQ(pgFindElementIdType(0x0019, 0x1010), 0xFFFFFFFFu);
    EXPECT_EQ(pgGetTagElementId("Name"), 0xFFFFFFFFu);
}

TEST_F(PrivateDictionaryFile, IsReplacedAsAWhole) {
    const std::string first = directory_.Write("first.dic", kLine);
    const std::string second = directory_.Write("second.dic", "(0019,\"X\",1011) CS Other 1\n");
    EXPECT_EQ(pgSetPrivateDictionaryFile(first.c_str()), 1u);
    EXPECT_EQ(pgSetPrivateDictionaryFile(second.c_str()), 1u);
    EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);
    EXPECT_EQ(TagName(0x0019, 0x1011), "Other");
}

TEST_F(PrivateDictionaryFile, IsDroppedBeforeThePathIsLookedAt) {
    const std::string path = directory_.Write("private.dic", kLine);
    const std::string missing = directory_.Path("missing.dic");
    const std::string directory = directory_.Path("");
    for (const char* bad :
         {static_cast<const char*>(nullptr), "", missing.c_str(), directory.c_str()}) {
        EXPECT_EQ(pgSetPrivateDictionaryFile(path.c_str()), 1u);
        EXPECT_EQ(TagName(0x0019, 0x1010), "Name");
        EXPECT_EQ(pgSetPrivateDictionaryFile(bad), 0u);
        EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);
    }
}

TEST_F(PrivateDictionaryFile, ExistingFileWithoutValidLinesCounts) {
    EXPECT_EQ(pgSetPrivateDictionaryFile(directory_.Write("private.dic", kLine).c_str()), 1u);
    EXPECT_EQ(pgSetPrivateDictionaryFile(directory_.Write("empty.dic", "").c_str()), 1u);
    EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);
    EXPECT_EQ(pgSetPrivateDictionaryFile(directory_.Write("no.dic", "nothing\n").c_str()), 1u);
}

TEST_F(PrivateDictionaryFile, ExistingFileThatCannotBeOpenedCounts) {
    const std::string path = directory_.Write("secret.dic", kLine);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    if (std::ifstream(path).good()) GTEST_SKIP() << "this user may read every file";
    EXPECT_EQ(pgSetPrivateDictionaryFile(path.c_str()), 1u);
    EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);
}

TEST_F(PrivateDictionaryFile, DeviceCountsAsAFileWithoutLines) {
    if (!std::filesystem::exists("/dev/null")) GTEST_SKIP() << "no such device";
    EXPECT_EQ(pgSetPrivateDictionaryFile("/dev/null"), 1u);
    EXPECT_EQ(TagName(0x0019, 0x1010), kUnknown);
}

TEST_F(PrivateDictionaryFile, LoadingPrintsNothing) {
    const std::string path =
        directory_.Write("bad.dic", "(zz\n(0019,\"X\",zz) LO Name 1\n" + kLine);
    const Printed printed = CapturePrinted([&] {
        pgSetPrivateDictionaryFile(path.c_str());
        pgSetPrivateDictionaryFile("missing");
        pgSetPrivateDictionaryFile(nullptr);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(PrivateDictionary, NeverOverridesABuiltInRow) {
    const PrivateDictionaryText dictionary(
        "(0010,\"X\",0010) LO Mine 1\n"
        "(0249,\"X\",1011) LO Mine 1\n"
        "(6002,\"X\",0010) LO Mine 1\n");
    EXPECT_EQ(pgFindValueRepresentation(0x0010, 0x0010), uint32_t{VR_PN});
    EXPECT_EQ(TagName(0x0010, 0x0010), "PatientsName");
    EXPECT_EQ(pgFindValueRepresentation(0x0249, 0x1011), uint32_t{VR_DA});
    EXPECT_EQ(TagName(0x0249, 0x1011), "GE_PlanCreationDate");
    EXPECT_EQ(pgFindValueRepresentation(0x6002, 0x0010), uint32_t{VR_US});
    EXPECT_EQ(TagName(0x6002, 0x0010), "OverlayRows");
}

TEST(PrivateDictionary, NamesGroupLengthsAndCreatorsThatHaveNoRow) {
    const PrivateDictionaryText dictionary(
        "(0019,\"X\",0000) LO MyLength 1\n"
        "(0019,\"X\",10) CS MyCreator 1\n");
    EXPECT_EQ(TagName(0x0019, 0x0000), "MyLength");
    EXPECT_EQ(TagName(0x0019, 0x0010), "MyCreator");
    // Their value representations are fixed whatever the file says.
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x0000), uint32_t{VR_UL});
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x0010), uint32_t{VR_LO});
}

TEST(PrivateDictionary, ElementOfTwoDigitsAnswersNoFullElementNumber) {
    const PrivateDictionaryText dictionary("(0019,\"X\",01) LO Name 1\n");
    EXPECT_EQ(TagName(0x0019, 0x1001), kUnknown);
    EXPECT_EQ(TagName(0x0019, 0x0001), "Name");
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x0001), uint32_t{VR_LO});
}

TEST(PrivateDictionary, FirstEntryOfATagWinsWhoeverItsCreator) {
    const PrivateDictionaryText dictionary(
        "(0019,\"B\",1010) LO First 1\n"
        "(0019,\"A\",1010) CS Second 1\n"
        "(0019,\"B\",1010) DS Third 1\n");
    EXPECT_EQ(TagName(0x0019, 0x1010), "First");
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x1010), uint32_t{VR_LO});
}

TEST(PrivateDictionary, EntryOfUnknownValueRepresentationStillHidesLaterOnes) {
    const PrivateDictionaryText dictionary("(0019,\"X\",1010) lo First 1\n" + kLine);
    EXPECT_EQ(pgFindValueRepresentation(0x0019, 0x1010), uint32_t{VR_Unknown});
    EXPECT_EQ(TagName(0x0019, 0x1010), "First");
}

TEST(PrivateDictionaryLines, OnlyThoseThatBeginWithAParenthesisCount) {
    EXPECT_EQ(NameAfterLoading("# a comment\n\n" + kLine), "Name");
    EXPECT_EQ(NameAfterLoading(" " + kLine), kUnknown);
    EXPECT_EQ(NameAfterLoading("\t" + kLine), kUnknown);
    EXPECT_EQ(NameAfterLoading("\xEF\xBB\xBF" + kLine), kUnknown);
}

TEST(PrivateDictionaryLines, LastOneNeedsNoLineEnd) {
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name 1"), "Name");
}

TEST(PrivateDictionaryLines, MayEndWithCarriageReturns) {
    EXPECT_EQ(NameAfterLoading("(0018,\"X\",1010) LO Other 1\r\n(0019,\"X\",1010) LO Name 1\r\n"),
              "Name");
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name\r\n"), kUnknown);
}

TEST(PrivateDictionaryLines, WordsAreSeparatedByAnyWhiteSpace) {
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010)\tLO \t Name\t1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010)LO Name 1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO\vName\f1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name 1-n more words\n"), "Name");
}

TEST(PrivateDictionaryLines, MissingPartsMakeThemInvalid) {
    for (const char* line : {
             "(\n",
             "(0019\n",
             "(0019,X,1010) LO Name 1\n",
             "(0019,\"X,1010) LO Name 1\n",
             "(0019,\"X\"1010) LO Name 1\n",
             "(0019,\"X\",1010 LO Name 1\n",
             "(0019,\"X\",1010) LO Name\n",
             "(0019,\"X\",1010) LO\n",
             "(0019,\"X\",1010)\n",
             "(,\"X\",1010) LO Name 1\n",
             "(0019,\"\",1010) LO Name 1\n",
             "(0019,\"X\",) LO Name 1\n",
             "(0019, \"X\",1010) LO Name 1\n",
             "(0019,\"X\" ,1010) LO Name 1\n",
         }) {
        EXPECT_EQ(NameAfterLoading(line), kUnknown) << line;
        // The next line is not affected.
        EXPECT_EQ(NameAfterLoading(line + kLine), "Name") << line;
    }
}

TEST(PrivateDictionaryLines, NumbersAreHexadecimalOrTheLineIsInvalid) {
    EXPECT_EQ(NameAfterLoading("(0x19,\"X\",0x1010) LO Name 1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("( 19 ,\"X\", 1010 ) LO Name 1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("(00019,\"X\",AB1010) LO Name 1\n"), "Name");  // low 16 bits
    EXPECT_EQ(NameAfterLoading("(zz19,\"X\",1010) LO Name 1\n"), kUnknown);
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",zz) LO Name 1\n"), kUnknown);
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010zz) LO Name 1\n"), kUnknown);
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010-1020) LO Name 1\n"), kUnknown);
    EXPECT_EQ(NameAfterLoading("(0019,\"X\", ) LO Name 1\n"), kUnknown);
}

TEST(PrivateDictionaryLines, RangeOfGroupsStandsForItsFirst) {
    EXPECT_EQ(NameAfterLoading("(0019-00FF,\"X\",1010) LO Name 1\n"), "Name");
    EXPECT_EQ(NameAfterLoading("(0019-zz,\"X\",1010) LO Name 1\n"), "Name");
    // Only a hyphen in the fifth place makes a range.
    EXPECT_EQ(NameAfterLoading("(019-0FF,\"X\",1010) LO Name 1\n"), kUnknown);
    EXPECT_EQ(NameAfterLoading("(00019-00FF,\"X\",1010) LO Name 1\n"), kUnknown);
}

TEST(PrivateDictionaryLines, FieldsHaveLimits) {
    const std::string x15(15, 'x');
    const std::string x127(127, 'x');
    const auto line = [](const std::string& group, const std::string& creator,
                         const std::string& element, const std::string& valueRep,
                         const std::string& name, const std::string& multiplicity) {
        return "(" + group + ",\"" + creator + "\"," + element + ") " + valueRep + " " + name +
               " " + multiplicity + "\n";
    };
    const std::string group15 = "000000000000019";
    const std::string element15 = "000000000001010";
    EXPECT_EQ(NameAfterLoading(line(group15, x127, element15, x15, x127, x15)), x127);

    EXPECT_EQ(NameAfterLoading(line("0" + group15, "X", "1010", "LO", "Name", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019-" + x15, "X", "1010", "LO", "Name", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019", x127 + "x", "1010", "LO", "Name", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019", "X", "0" + element15, "LO", "Name", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019", "X", "1010", x15 + "x", "Name", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019", "X", "1010", "LO", x127 + "x", "1")), kUnknown);
    EXPECT_EQ(NameAfterLoading(line("0019", "X", "1010", "LO", "Name", x15 + "x")), kUnknown);
}

TEST(PrivateDictionaryLines, LongerThan1023CharactersAreReadInPieces) {
    const std::string text = "(0019,\"X\",1010) LO Name 1";
    // The second piece begins right behind the first 1023 characters and counts as a line.
    EXPECT_EQ(NameAfterLoading(std::string(1023, '#') + text), "Name");
    EXPECT_EQ(NameAfterLoading(std::string(1022, '#') + text), kUnknown);
    EXPECT_EQ(NameAfterLoading(std::string(2 * 1023, '#') + text), "Name");
    // What follows the six fields does not matter, in however many pieces it comes.
    EXPECT_EQ(NameAfterLoading(text + std::string(5000, ' ') + "more\n"), "Name");
    // Five fields in the first piece and one in the second are not six.
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name" + std::string(1000, ' ') + "1\n"),
              kUnknown);
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name" + std::string(999, ' ') + "1\n"),
              "Name");
}

TEST(PrivateDictionaryLines, EndAtANulByte) {
    using namespace std::string_literals;
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name 1\0 rubbish\n"s), "Name");
    EXPECT_EQ(NameAfterLoading("(0019,\"X\",1010) LO Name\0 1\n"s), kUnknown);
    EXPECT_EQ(NameAfterLoading("\0(0019,\"X\",1010) LO Name 1\n"s), kUnknown);
    EXPECT_EQ(NameAfterLoading("\0\0\n\0\n"s + kLine), "Name");
}

TEST(PrivateDictionaryLines, ControlZDoesNotEndTheFile) {
    EXPECT_EQ(NameAfterLoading("\x1A\n" + kLine), "Name");
}

TEST(PrivateDictionaryLines, EveryValueRepresentationIsRecognised) {
    std::string text;
    for (uint32_t code = 0; code <= VR_UN; ++code) {
        char valueRep[5];
        ASSERT_EQ(pgGetVRPrintableName(code, valueRep), 1u);
        char line[64];
        std::snprintf(line, sizeof line, "(0019,\"X\",10%02X) %s Name 1\n", code, valueRep);
        text += line;
    }
    const PrivateDictionaryText dictionary(text);
    for (uint32_t code = 0; code <= VR_UN; ++code) {
        EXPECT_EQ(pgFindValueRepresentation(0x0019, static_cast<uint16_t>(0x1000 + code)), code);
    }
}

// Memory stays that of one piece, and the pieces are looked at once.
TEST(PrivateDictionaryLines, OneOfFiftyMegabytesIsSkipped) {
    std::string text = "(0019,\"X\",1010) LO ";
    text.append(50'000'000, '(');
    EXPECT_EQ(NameAfterLoading(text + "\n" + kLine), "Name");
}

TEST(PrivateDictionaryLines, HundredsOfThousandsAreLoadedAndFound) {
    std::string text;
    const auto tagOf = [](unsigned i) { return 0x00191000 + (i / 0x8000) * 0x20000 + i % 0x8000; };
    constexpr unsigned kLines = 300'000;
    for (unsigned i = 0; i < kLines; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "(%04X,\"C%u\",%04X) LO Name%u 1\n", tagOf(i) >> 16,
                      i % 1000, tagOf(i) & 0xFFFF, i);
        text += line;
    }
    const PrivateDictionaryText dictionary(text);
    for (unsigned i = 0; i < kLines; ++i) {
        const unsigned tag = tagOf(i);
        ASSERT_EQ(TagName(static_cast<uint16_t>(tag >> 16), static_cast<uint16_t>(tag)),
                  "Name" + std::to_string(i));
    }
}

}  // namespace
