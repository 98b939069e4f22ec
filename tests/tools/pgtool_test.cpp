#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>

#include "pgkit/pgkit.h"
#include "support/instance_file.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using pgkit_test::Finished;
using pgkit_test::Pgtool;
using pgkit_test::TempDir;
using pgkit_test::TestData;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// What the library itself dumps, with "\n" line ends.
std::string LibraryDump(const std::string& path, uint32_t flags) {
    const TempDir directory;
    const std::string output = directory.Path("dump");
    PGX_Node* const root = pgOpenDataSetFileEx(path.c_str(), 64, flags);
    if (root == nullptr) return "cannot be opened";
    std::FILE* const stream = std::fopen(output.c_str(), "wb");
    root->Dump(stream, "");
    std::fclose(stream);
    pgCloseDataSet(root);
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(output);
    return std::string(bytes.begin(), bytes.end());
}

TEST(Pgtool, WithoutArgumentsItIsMisusedAndHelpGoesToStandardError) {
    const Finished run = Pgtool({});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, HasSubstr("dump"));
}

TEST(Pgtool, HelpListsTheCommandsAndTheExitStatuses) {
    const Finished run = Pgtool({"--help"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("dump"));
    EXPECT_THAT(run.out, HasSubstr("tags"));
    EXPECT_THAT(run.out, HasSubstr("Exit status: 0 done"));
    EXPECT_THAT(run.err, IsEmpty());
}

TEST(Pgtool, HelpExplainsOneCommand) {
    const Finished run = Pgtool({"help", "dump"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("--load-limit N"));
    EXPECT_THAT(run.err, IsEmpty());
}

TEST(Pgtool, UnknownCommandIsMisuse) {
    for (const auto& arguments : {std::vector<std::string>{"frobnicate"}, {"help", "frobnicate"}}) {
        const Finished run = Pgtool(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_THAT(run.err, HasSubstr("frobnicate"));
    }
}

TEST(Pgtool, VersionIsThatOfTheLibrary) {
    const Finished run = Pgtool({"--version"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "pgkit 2.86e 24-mar-2o15\n");
}

TEST(PgtoolPaths, MayHaveLettersOfEveryScript) {
    const TempDir directory;
    const std::string file = directory.Path("") + "\xC3\x9Cn\xC3\xAF \xE4\xB8\xAD \xD1\x84";
    const auto data = pgkit_test::InstanceFile().Data();
    std::ofstream(std::filesystem::path(std::u8string(file.begin(), file.end())), std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    EXPECT_EQ(Pgtool({"set", file, "PatientID=7", "-o", file + "2"}).exitStatus, 0);
    EXPECT_THAT(Pgtool({"scan", file + "2", "--tags", "PatientID"}).out, HasSubstr(file + "2,7"));
    EXPECT_THAT(Pgtool({"dump", file + "3"}).err, HasSubstr(file + "3"));
}

TEST(PgtoolTags, NameIsFoundWithoutRegardToCase) {
    const Finished run = Pgtool({"tags", "patientsname"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "(0010,0010) PN   PatientsName 245 PatientName\n");
    EXPECT_THAT(run.err, IsEmpty());
}

// Only the built-in spelling was known.
TEST(PgtoolTags, BothSpellingsAreFoundAndElementsOfToday) {
    EXPECT_EQ(Pgtool({"tags", "PatientName", "--edition", "current"}).out,
              "(0010,0010) PN   PatientsName 245 PatientName\n");
    EXPECT_EQ(Pgtool({"tags", "patientsname", "--edition=built-in"}).out,
              "(0010,0010) PN   PatientsName 245\n");
    EXPECT_EQ(Pgtool({"tags", "0010,0222"}).out,
              "(0010,0222) UC   GeneticModificationsDescription\n");
}

TEST(PgtoolTags, FindsByAPartOfEitherName) {
    const Finished run = Pgtool({"tags", "--find", "tientsna", "tientidentityr"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out,
              "(0010,0010) PN   PatientsName 245 PatientName\n"
              "(0012,0062) CS   PatientIdentityRemoved 306\n");
    EXPECT_EQ(Pgtool({"tags", "-f", "nothinglikethat"}).exitStatus, 1);
}

TEST(PgtoolTags, MisspeltNamesGetASuggestion) {
    EXPECT_EQ(Pgtool({"tags", "PatientNmae"}).err,
              "pgtool tags: unknown: PatientNmae; did you mean PatientName?\n");
}

TEST(PgtoolTags, TagMayBeInParenthesesAndEachGetsALine) {
    const Finished run = Pgtool({"tags", "0028,0010", "(7fe0,10)"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "(0028,0010) US   Rows 1496\n(7FE0,0010) OWOB PixelData 3652\n");
}

TEST(PgtoolTags, TagsWithoutARowOfTheirOwnHaveNoIdentifier) {
    const Finished run = Pgtool({"tags", "6002,0010", "0009,0010", "0008,0000"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out,
              "(6002,0010) US   OverlayRows\n"
              "(0009,0010) LO   FileCreator\n"
              "(0008,0000) UL   GroupLength\n");
    EXPECT_EQ(Pgtool({"tags", "PatientName", "--edition", "built-in"}).exitStatus, 1);
}

TEST(PgtoolTags, UnknownOnesFailAndTheOthersAreStillPrinted) {
    const Finished run = Pgtool({"tags", "NoSuchElement", "0011,1200", "0010,0010"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.out, "(0010,0010) PN   PatientsName 245 PatientName\n");
    EXPECT_THAT(run.err, HasSubstr("NoSuchElement"));
    EXPECT_THAT(run.err, HasSubstr("0011,1200"));
}

TEST(PgtoolTags, TextThatIsNoTagIsMisuse) {
    for (const char* text : {"0010,", ",0010", "00100,0010", "0010,00x0", "(0010,0010", "-1,10"}) {
        const Finished run = Pgtool({"tags", text});
        EXPECT_EQ(run.exitStatus, 2) << text;
        EXPECT_THAT(run.out, IsEmpty()) << text;
    }
    EXPECT_EQ(Pgtool({"tags"}).exitStatus, 2);
}

TEST(PgtoolProfiles, PrintsTheNamesThatTheLibraryHas) {
    const Finished run = Pgtool({"profiles", "--names"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), pgxProfileCount());
    EXPECT_THAT(run.out, HasSubstr("STD-GEN-CD\n"));
}

TEST(PgtoolProfiles, TellsWhatEachAllows) {
    const Finished all = Pgtool({"profiles"});
    EXPECT_EQ(all.exitStatus, 0);
    size_t names = 0;
    std::istringstream lines(all.out);
    for (std::string line; std::getline(lines, line);)
        names += line.starts_with(' ') ? 0 : 1;
    EXPECT_EQ(names, static_cast<size_t>(pgxProfileCount()));

    EXPECT_EQ(Pgtool({"profiles", "STD-GEN-MIME", "STD-DEN-CD", "STD-XA1K"}).out,
              "STD-XA1K\n"
              "    images: X-Ray Angiographic Image Storage, modality XA: JPEG Lossless, "
              "Non-Hierarchical, First-Order Prediction (Process 14 [Selection Value 1]); "
              "JPEG Baseline (Process 1); JPEG Extended (Process 2 and 4)\n"
              "    images: Secondary Capture Image Storage, modality XA: Explicit VR Little "
              "Endian\n"
              "    others: Grayscale Softcopy Presentation State Storage, modality PR: Explicit VR "
              "Little Endian\n"
              "STD-GEN-MIME\n"
              "    nothing\n"
              "STD-DEN-CD\n"
              "    images: Digital Intra-Oral X-Ray Image Storage - For Presentation: Explicit VR "
              "Little Endian\n"
              "    images: Digital X-Ray Image Storage - For Presentation: Explicit VR Little "
              "Endian\n");
    EXPECT_THAT(Pgtool({"profiles", "STD-GEN-CD"}).out,
                HasSubstr("    others: any SOP class: Explicit VR Little Endian\n"));
    EXPECT_THAT(Pgtool({"profiles", "STD-CTMR"}).out,
                HasSubstr("    photometric: PALETTE COLOR: any transfer syntax\n"));
    const Finished unknown = Pgtool({"profiles", "STD-CTMR-CDR"});
    EXPECT_EQ(unknown.exitStatus, 2);
    EXPECT_THAT(unknown.out, IsEmpty());
    EXPECT_THAT(unknown.err, HasSubstr("; did you mean STD-CTMR-CD"));
}

// Run "pgtool documentation FORMAT" when an option changes.
TEST(PgtoolDocumentation, IsWhatIsInstalled) {
    const std::vector<std::pair<std::string, std::string>> files = {
        {"man", "pgtool.1"}, {"bash", "pgtool.bash"}, {"zsh", "pgtool.zsh"}};
    for (const auto& [format, name] : files) {
        const pgkit_test::Bytes bytes = pgkit_test::ReadFile(PGKIT_TOOLS "/" + name);
        EXPECT_EQ(Pgtool({"documentation", format}).out, std::string(bytes.begin(), bytes.end()))
            << name;
    }
    EXPECT_EQ(Pgtool({"documentation", "html"}).exitStatus, 2);
}

TEST(PgtoolDocumentation, NamesEveryCommandAndOption) {
    for (const char* format : {"man", "bash", "zsh"}) {
        std::string text = Pgtool({"documentation", format}).out;
        text.erase(std::remove(text.begin(), text.end(), '\\'), text.end());
        for (const char* word : {"anonymize", "--in-place", "--retain-dates", "--offshore"})
            EXPECT_THAT(text, HasSubstr(word)) << format;
    }
}

TEST(PgtoolDump, RawPrintsWhatTheLibraryDumpsByteForByte) {
    for (const char* name : {"native/all_vrs_explicit_be.dcm", "charset/japanese_ir87.dcm",
                             "encapsulated/rtdose_rle_15frames_no_bot.dcm"}) {
        const Finished run = Pgtool({"dump", "--raw", TestData(name)});
        EXPECT_EQ(run.exitStatus, 0) << name;
        EXPECT_THAT(run.out, StartsWith("DATASET\n | (0002,0000) : UL   Len: 4 ")) << name;
        EXPECT_EQ(run.out, LibraryDump(TestData(name), 0)) << name;
        EXPECT_THAT(run.err, IsEmpty()) << name;
    }
}

TEST(PgtoolDump, TextIsTheSameForEveryLoadLimit) {
    const std::string file = TestData("native/all_vrs_explicit_le.dcm");
    const std::string expected = Pgtool({"dump", file}).out;
    for (const char* limit : {"0", "64", "0x1000", "4294967295"}) {
        const Finished run = Pgtool({"dump", "--load-limit", limit, file});
        EXPECT_EQ(run.exitStatus, 0) << limit;
        EXPECT_EQ(run.out, expected) << limit;
    }
}

TEST(PgtoolDump, FlagsForceTheEncodingOfABareDataSet) {
    const std::string file = TestData("headerless/explicit_be_no_meta.dcm");
    const Finished run = Pgtool({"dump", file, "--flags=0x48"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("(0008,0016) : UI"));
    EXPECT_EQ(Pgtool({"dump", file, "--flags=0x48", "--raw"}).out,
              LibraryDump(file, PG_OPEN_FORCE_EXPLICIT_VR | PG_OPEN_FORCE_BIG_ENDIAN));
}

TEST(PgtoolDump, FileThatCannotBeOpenedFails) {
    const TempDir directory;
    for (const std::string& path : {directory.Path("missing"), directory.Write("empty", "")}) {
        const Finished run = Pgtool({"dump", path});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_THAT(run.err, HasSubstr(path));
    }
}

TEST(PgtoolDump, WrongCommandLineIsMisuse) {
    const std::string file = TestData("charset/utf8_chinese.dcm");
    const std::vector<std::vector<std::string>> commandLines = {
        {"dump"},
        {"dump", file, "-t", "NoSuchName"},
        {"dump", file, "--raw", "--utf8"},
        {"dump", file, "--raw", "-t", "Rows"},
        {"dump", file, "--edition", "2011"},
        {"dump", file, "--load-limit"},
        {"dump", file, "--load-limit", "ten"},
        {"dump", file, "--load-limit", "-1"},
        {"dump", file, "--load-limit", "4294967296"},
        {"dump", file, "--load-limit=0x"},
        {"dump", file, "--verbose"},
    };
    for (const auto& arguments : commandLines) {
        const Finished run = Pgtool(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_THAT(run.err, HasSubstr("usage: pgtool dump"));
    }
}

TEST(PgtoolDump, TwoDashesEndTheOptions) {
    const Finished run = Pgtool({"dump", "--", "--no-such-file"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.err, HasSubstr("--no-such-file"));
}

}  // namespace
