#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/stream_builder.h"
#include "support/temp_dir.h"
#include "support/transfer_syntaxes.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class PgtoolDumpText : public testing::Test {
  protected:
    // What dump prints for one element.
    std::string Line(uint16_t group, uint16_t element, std::string_view vr, std::string_view value,
                     const std::string& option = "--utf8") {
        StreamBuilder stream;
        stream.Part10(kExplicitLittleUid).Element(group, element, vr, value);
        const std::string file = files_.Write("file", stream.Data());
        const std::string out = Pgtool({"dump", file, option}).out;
        const std::string end = "END-OF-DATASET\n";
        EXPECT_THAT(out, EndsWith(end));
        const std::string lines = out.substr(0, out.size() - end.size());
        return lines.substr(lines.rfind('\n', lines.size() - 2) + 1);
    }
    static std::string Raw(std::initializer_list<int> bytes) {
        std::string text;
        for (const int byte : bytes)
            text += static_cast<char>(byte);
        return text;
    }

    TempDir files_;
};

TEST_F(PgtoolDumpText, HasTheNamesOfToday) {
    EXPECT_EQ(Line(0x0010, 0x0010, "PN", "DOE^JOHN"),
              " | (0010,0010) : PN   Len: 8      PatientName                    Value: "
              "[DOE^JOHN]\n");
    EXPECT_THAT(Line(0x0010, 0x0010, "PN", "DOE^JOHN", "--edition=built-in"),
                HasSubstr(" PatientsName "));
}

// Bytes of the character set went to the terminal as they were.
TEST_F(PgtoolDumpText, TextsAreUtf8) {
    const std::string out =
        Pgtool({"dump", TestData("charset/japanese_ir87.dcm"), "-t", "PatientName"}).out;
    EXPECT_THAT(out, HasSubstr("[Yamada^Tarou=\u5C71\u7530^\u592A\u90CE=\u3084\u307E\u3060^"
                               "\u305F\u308D\u3046]\n"));
}

TEST_F(PgtoolDumpText, ControlCharactersAreEscapes) {
    EXPECT_THAT(Line(0x0010, 0x0010, "PN", "A\x01[2J\n\tB\x7F!"),
                EndsWith("Value: [A\\x01[2J\\n\\tB\\x7f!]\n"));
    EXPECT_THAT(Line(0x0010, 0x0010, "PN", "\xC2\x9B\xE2\x80\xAE!"),
                EndsWith("Value: [\\x9b\\u202e!]\n"));
}

TEST_F(PgtoolDumpText, LongValuesAreCutAndTheirLengthTold) {
    const std::string text(2000, 'x');
    EXPECT_THAT(Line(0x0010, 0x4000, "LT", text),
                EndsWith("[" + std::string(512, 'x') + "... 2000 bytes]\n"));
    EXPECT_THAT(Line(0x0010, 0x4000, "LT", text, "--full"), EndsWith("[" + text + "]\n"));
}

TEST_F(PgtoolDumpText, FloatingNumbersHaveAllTheirDigits) {
    // 0.1 and 1e-300.
    const std::string value = Raw({0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F, 0x59, 0xF3, 0xF8,
                                   0xC2, 0x1F, 0x6E, 0xA5, 0x01});
    EXPECT_THAT(Line(0x0072, 0x0074, "FD", value), EndsWith("Value: [0.1 1e-300 ]\n"));
}

// Nobody could tell whether one number was missing or a million.
TEST_F(PgtoolDumpText, TheLengthOfManyNumbersIsTold) {
    EXPECT_THAT(Line(0x0028, 0x3006, "US", std::string(80, '\1')),
                EndsWith(" 257 257 ... 80 bytes]\n"));
}

// The list was there, and nobody read it.
TEST_F(PgtoolDumpText, PrivateElementsHaveTheirNames) {
    const pgkit_test::InstanceFile file = pgkit_test::InstanceFile()
                                              .Set(0x0019, 0x0010, "LO", "1.2.840.113681")
                                              .Set(0x0019, 0x1010, "UN", "dull");
    const std::string path = files_.Write("private", file.Data());
    const auto line = [&](const std::vector<std::string>& options) {
        std::vector<std::string> arguments = {"dump", path, "-t", "0019,1010"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Pgtool(arguments).out;
    };
    EXPECT_EQ(line({}),
              "(0019,1010) : ST   Len: 4      CRImageParamsCommon            Value: [dull]\n");
    EXPECT_THAT(line({"--edition", "built-in"}), HasSubstr(" : UN "));
    // What is written keeps what it has.
    const std::string written = files_.Path("written");
    ASSERT_EQ(Pgtool({"set", path, "PatientID=7", "-o", written}).exitStatus, 0);
    const pgkit_test::Bytes bytes = pgkit_test::ReadFile(written);
    EXPECT_THAT(std::string(bytes.begin(), bytes.end()),
                HasSubstr(std::string("\x19\0\x10\x10UN", 6)));
}

TEST_F(PgtoolDumpText, UnsignedNumbersAreUnsigned) {
    EXPECT_THAT(Line(0x0072, 0x0078, "UL", Raw({0xFF, 0xFF, 0xFF, 0xFF})),
                EndsWith("Value: [4294967295]\n"));
}

TEST_F(PgtoolDumpText, BinaryValuesAreHexadecimal) {
    EXPECT_THAT(Line(0x0042, 0x0011, "OB", Raw({0, 1, 0xAB, 0xFF})),
                EndsWith("Value: [00 01 ab ff]\n"));
    EXPECT_THAT(Line(0x0042, 0x0011, "OB", std::string(40, 'A')),
                EndsWith(" 41 41 41... 40 bytes]\n"));
}

TEST_F(PgtoolDumpText, SequencesAreIndentedAsByTheLibrary) {
    StreamBuilder stream;
    stream.Part10(kExplicitLittleUid).Sequence(0x0008, 0x1140);
    stream.Item().Element(0x0008, 0x1155, "UI", "1.2").EndItem();
    stream.Item().EndItem().EndSequence().Element(0x0010, 0x0020, "LO", "4711");
    const std::string out =
        Pgtool({"dump", files_.Write("file", stream.Data()), "--edition=built-in"}).out;
    EXPECT_THAT(out, EndsWith("Value: [SEQUENCE]\n"
                              " |  | DATASET\n"
                              " |  |  | (0008,1155) : UI   Len: 3      "
                              "ReferencedSOPInstanceUID       Value: [1.2]\n"
                              " |  | END-OF-DATASET\n"
                              " |  | DATASET\n"
                              " |  | END-OF-DATASET\n"
                              " | (0010,0020) : LO   Len: 4      "
                              "PatientID                      Value: [4711]\n"
                              "END-OF-DATASET\n"));
}

TEST_F(PgtoolDumpText, PrintsOnlySomeElements) {
    const std::string file = TestData("sequences/sr_nested_be_defined.dcm");
    const Finished some = Pgtool({"dump", file, "-t", "PatientID", "-t", "0008,0060"});
    EXPECT_EQ(some.exitStatus, 0);
    EXPECT_EQ(std::count(some.out.begin(), some.out.end(), '\n'), 2);
    EXPECT_THAT(some.out, HasSubstr("(0008,0060) : CS   Len: 2      Modality"));
    // Wherever they are, or where a path leads.
    const auto count = [&](const std::string& place) {
        const std::string out = Pgtool({"dump", file, "-t", place}).out;
        return std::count(out.begin(), out.end(), '\n');
    };
    EXPECT_GT(count("CodeMeaning"), 1);
    EXPECT_EQ(count("ConceptNameCodeSequence[0].CodeMeaning"), 1);
    EXPECT_EQ(count("ConceptNameCodeSequence[7].CodeMeaning"), 0);
}

// Only one file was taken.
TEST_F(PgtoolDumpText, SeveralFilesHaveTheirPathsInFront) {
    const std::string a = files_.Write("a", ReadFile(TestData("native/mr_implicit_le.dcm")));
    const Finished run = Pgtool({"dump", a, files_.Path("missing"), a, "-t", "PatientID"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, StartsWith(a + ":\n(0010,0020) : "));
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 4);
    EXPECT_EQ(run.err, "pgtool dump: cannot open " + files_.Path("missing") + ": no such file\n");
}

TEST_F(PgtoolDumpText, DirectoriesAreWalkedOnDemand) {
    std::filesystem::create_directories(files_.Path("dir/sub"));
    const Bytes image = ReadFile(TestData("native/mr_implicit_le.dcm"));
    const std::string b = files_.Write("dir/b", image);
    const std::string inner = files_.Write("dir/sub/x", image);
    files_.Write("dir/text", "no DICOM at all, and never was");
    const std::string directory = files_.Path("dir");
    EXPECT_EQ(Pgtool({"dump", directory}).exitStatus, 1);
    const Finished run = Pgtool({"dump", "-r", directory, "-t", "PatientID"});
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith(directory + "/b:\n"));
    EXPECT_THAT(run.out, HasSubstr("]\n" + directory + "/sub/x:\n"));
    EXPECT_THAT(run.out, Not(HasSubstr("text")));
    EXPECT_THAT(run.err, IsEmpty());
}

TEST_F(PgtoolDumpText, TakesFilesFromAList) {
    const std::string image = TestData("native/mr_implicit_le.dcm");
    const std::string list = files_.Write("list", image + "\n\n" + image + "\r\n");
    const Finished run = Pgtool({"dump", "--files-from", list, "-t", "PatientID"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 4);
    EXPECT_EQ(Pgtool({"dump", "--files-from", files_.Path("no")}).exitStatus, 1);
}

// The parser of options takes brackets for lists.
TEST_F(PgtoolDumpText, NamesInBracketsAreNames) {
    const std::string image = files_.Write("[a,b]", ReadFile(TestData("charset/utf8_chinese.dcm")));
    const std::filesystem::path former = std::filesystem::current_path();
    if (former.root_name() != std::filesystem::path(image).root_name()) {
        GTEST_SKIP() << "pgtool lies on another drive, and its path does not say so";
    }
    std::filesystem::current_path(std::filesystem::path(image).parent_path());
    EXPECT_EQ(Pgtool({"dump", "[a,b]"}).exitStatus, 0);
    std::filesystem::current_path(former);
}

TEST_F(PgtoolDumpText, MisspeltOptionsAndElementsGetASuggestion) {
    EXPECT_THAT(Pgtool({"dump", "x", "--recursiv"}).err,
                StartsWith("pgtool dump: unknown option --recursiv; did you mean --recursive?\n"));
    EXPECT_THAT(Pgtool({"dump", "x", "-t", "PatientNam"}).err,
                HasSubstr("did you mean PatientName?"));
    EXPECT_THAT(Pgtool({"dmup"}).err, HasSubstr("did you mean dump?"));
}

TEST_F(PgtoolDumpText, EveryCommandExplainsItself) {
    for (const char* command :
         {"dump", "json", "from-json", "anonymize", "profiles", "documentation", "scan", "image",
          "set", "delete", "save", "browse", "mkdir", "check", "tags", "uid", "modality"}) {
        for (const char* option : {"-h", "--help"}) {
            const Finished run = Pgtool({command, option});
            EXPECT_EQ(run.exitStatus, 0) << command;
            EXPECT_THAT(run.out, StartsWith(std::string("usage: pgtool ") + command));
        }
    }
}

// A file that was cut short looked like a whole one.
TEST_F(PgtoolDumpText, FilesThatAreCutShortArePrintedAndFail) {
    const Bytes whole = ReadFile(TestData("native/mr_implicit_le.dcm"));
    const std::string file =
        files_.Write("file", std::span<const uint8_t>(whole).first(whole.size() - 100));
    const Finished run = Pgtool({"dump", file});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr("(7FE0,0010) : OWOB Len: 8192"));
    EXPECT_THAT(run.out, EndsWith("END-OF-DATASET\n"));
    EXPECT_EQ(run.err, "pgtool dump: " + file + ": it is cut short at byte " +
                           std::to_string(whole.size() - 100) + ", in (7FE0,0010) PixelData\n");
    // They are rows of a scan, and nothing is made of them.
    const Finished scan = Pgtool({"scan", file, "--tags", "PatientID"});
    EXPECT_EQ(scan.exitStatus, 1);
    EXPECT_THAT(scan.out, EndsWith(",4MR1\n"));
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"set", file, "PatientID=7"},
                                               {"delete", file, "-t", "PatientID"},
                                               {"anonymize", file}}) {
        std::vector<std::string> all = arguments;
        all.insert(all.end(), {"-o", files_.Path("out")});
        const Finished written = Pgtool(all);
        EXPECT_EQ(written.exitStatus, 1);
        EXPECT_THAT(written.err, HasSubstr("cut short"));
        EXPECT_FALSE(std::filesystem::exists(files_.Path("out")));
    }
}

TEST_F(PgtoolDumpText, TextsAndProgramsAreNoDataSets) {
    const std::string text = files_.Write("text", "this is no DICOM file, whoever reads it");
    for (const char* option : {"--utf8", "--full"}) {
        const Finished run = Pgtool({"dump", text, option});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_EQ(run.err, "pgtool dump: cannot open " + text + ": it is no DICOM data set\n");
    }
}

// 2,048 levels, which is as deep as the library reads.
TEST_F(PgtoolDumpText, DeepNestingTakesNoStack) {
    StreamBuilder stream;
    stream.Part10(kExplicitLittleUid);
    for (int i = 0; i < 2000; ++i)
        stream.Sequence(0x0040, 0xA730).Item();
    stream.Element(0x0040, 0xA160, "UT", "deep");
    for (int i = 0; i < 2000; ++i)
        stream.EndItem().EndSequence();
    const Finished run = Pgtool({"dump", files_.Write("deep", stream.Data())});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, HasSubstr("Value: [deep]\n"));
}

// It printed gigabytes of zeros for what a file of some hundred bytes claims to hold.
TEST(PgtoolDump, FullValuesEndWithTheirFile) {
    const Finished run =
        Pgtool({"dump", "--full", TestData("headerless/meta_without_transfer_syntax.dcm")});
    EXPECT_THAT(run.out, HasSubstr("Len: 3758161918"));
    EXPECT_LT(run.out.size(), 10000u);
}

}  // namespace
