#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/directory_builder.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using pgkit_test::Bytes;
using pgkit_test::DirectoryBuilder;
using pgkit_test::Finished;
using pgkit_test::Pgtool;
using pgkit_test::TempDir;
using pgkit_test::TestData;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// One image, of instance number 7, whose file is IMG\X1.
DirectoryBuilder OneImage() {
    DirectoryBuilder directory;
    const size_t study = directory.Study(directory.Patient("4711", "DOE^JOHN"), "1.2");
    directory.Image(directory.Series(study, "1.2.3", "CT"), "1.2.3.4", 7, "IMG\\X1");
    return directory;
}
constexpr size_t kImage = 3;  // its record

class PgtoolBrowse : public testing::Test {
  protected:
    Finished Browse(const DirectoryBuilder& builder, const std::string& option = "") {
        std::vector<std::string> arguments = {"browse", files_.Write("DICOMDIR", builder.Build())};
        if (!option.empty()) arguments.push_back(option);
        return Pgtool(arguments);
    }
    void MakeFile(const std::string& directory, const std::string& name) {
        std::filesystem::create_directories(files_.Path(directory));
        files_.Write(directory + "/" + name, "content");
    }

    TempDir files_;
};

// The system was asked about files anywhere.
TEST_F(PgtoolBrowse, TellsFileIdsThatLeadOutside) {
    MakeFile("IMG", "X1");
    for (const char* id :
         {"..\\IMG\\X1", "IMG\\..\\..\\X", "../X", "..", "/ETC/PASSWD", "C:\\X", "\\\\SERVER\\X"}) {
        DirectoryBuilder directory = OneImage();
        directory[kImage].Set(0x0004, 0x1500, "CS", id);
        const Finished tree = Browse(directory);
        EXPECT_THAT(tree.out, HasSubstr("  [1.2.3.4]  (outside)\n")) << id;
        EXPECT_THAT(tree.out, EndsWith("1 instance, 0 missing files, 1 file outside\n")) << id;
        const Finished json = Browse(directory, "--json");
        EXPECT_THAT(json.out, HasSubstr("\"outside\"")) << id;
    }
}

TEST_F(PgtoolBrowse, FollowsFileIdsThatStayOnTheMedium) {
    MakeFile("IMG", "X1");
    for (const char* id : {"IMG\\..\\IMG\\X1", ".\\IMG\\X1", "\\IMG\\X1", "IMG/X1"}) {
        DirectoryBuilder directory = OneImage();
        directory[kImage].Set(0x0004, 0x1500, "CS", id);
        EXPECT_THAT(Browse(directory).out, EndsWith("1 instance, 0 missing files\n")) << id;
    }
}

TEST_F(PgtoolBrowse, PrintsATreeAndTheNumbers) {
    MakeFile("IMG", "X1");
    const Finished run = Browse(OneImage());
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out,
              "Patient  4711  DOE^JOHN\n"
              "  Study  CT  [1.2]\n"
              "    Series  CT  [1.2.3]\n"
              "      7  IMAGE  IMG\\X1  [1.2.3.4]\n"
              "1 patient, 1 study, 1 series, 1 instance, 0 missing files\n");
}

TEST_F(PgtoolBrowse, PrintsTheSameAsJson) {
    MakeFile("IMG", "X1");
    const Finished run = Browse(OneImage(), "--json");
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, StartsWith("{\"patients\":[{\"patientId\":\"4711\",\"patientsName\":"
                                    "\"DOE^JOHN\",\"birthDate\":\"\",\"sex\":\"\","));
    EXPECT_THAT(run.out, HasSubstr("\"studies\":[{\"studyInstanceUid\":\"1.2\","));
    EXPECT_THAT(run.out, HasSubstr("\"series\":[{\"seriesInstanceUid\":\"1.2.3\","));
    EXPECT_THAT(run.out, HasSubstr("\"leaves\":[{\"type\":\"image\",\"recordType\":\"IMAGE\","));
    EXPECT_THAT(run.out, HasSubstr("\"referencedFileId\":\"IMG\\\\X1\""));
    EXPECT_THAT(run.out, HasSubstr("\"instanceNumber\":7,"));
    EXPECT_THAT(run.out, HasSubstr("\"file\":\"present\""));
    EXPECT_THAT(run.out, EndsWith("\"counts\":{\"patients\":1,\"studies\":1,\"series\":1,"
                                  "\"instances\":1,\"missingFiles\":0}\n}\n"));
}

// Nobody was told that something is missing but by a line of the library's, and scripts not at all.
TEST_F(PgtoolBrowse, TellsWhatOfADamagedDirectoryCannotBeRead) {
    DirectoryBuilder directory = OneImage();
    directory[kImage].nextOffset = 5;
    for (const char* option : {"", "--json"}) {
        const Finished run = Browse(directory, option);
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_THAT(run.out, HasSubstr("DOE^JOHN"));
        EXPECT_THAT(run.out, Not(HasSubstr("Item not found")));
        EXPECT_THAT(run.err, StartsWith("DICOMDIR resolve error : Item not found \n"
                                        "DICOMDIR parsing error: Next Leaf item not found\n"
                                        "pgtool browse: "));
        EXPECT_THAT(run.err, HasSubstr("DICOMDIR: record 4 (IMAGE at "));
        EXPECT_THAT(run.err, EndsWith(" is 5, where no record begins\n"));
    }
}

TEST_F(PgtoolBrowse, TellsThatADirectoryIsCutShort) {
    Bytes bytes = OneImage().Build();
    bytes.resize(bytes.size() - 20);
    const Finished run = Pgtool({"browse", files_.Write("DICOMDIR", bytes)});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, StartsWith("Patient  4711"));
    EXPECT_THAT(run.err, HasSubstr("DICOMDIR: it is cut short at byte "));
}

TEST_F(PgtoolBrowse, TellsWhichRecordsNothingLeadsTo) {
    DirectoryBuilder directory = OneImage();
    directory.Image(2, "1.2.3.5", 8, "IMG\\X2");
    directory[kImage].next.reset();
    const Finished run = Browse(directory);
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, HasSubstr("1 instance,"));
    EXPECT_THAT(run.err, HasSubstr("record 5 (IMAGE at "));
    EXPECT_THAT(run.err, EndsWith("): no link leads to it\n"));
}

TEST_F(PgtoolBrowse, HasNoProgressWithoutATerminal) {
    EXPECT_THAT(Browse(OneImage()).err, Not(HasSubstr("image found")));
}

TEST_F(PgtoolBrowse, CountsTheFilesThatAreMissing) {
    DirectoryBuilder directory = OneImage();
    directory.Image(2, "1.2.3.5", 8, "IMG\\X2");
    MakeFile("IMG", "X2");
    const Finished tree = Browse(directory);
    EXPECT_EQ(tree.exitStatus, 0);
    EXPECT_THAT(tree.out, HasSubstr("IMG\\X1  [1.2.3.4]  (missing)\n"));
    EXPECT_THAT(tree.out, HasSubstr("IMG\\X2  [1.2.3.5]\n"));
    EXPECT_THAT(tree.out, EndsWith("2 instances, 1 missing file\n"));
    const Finished json = Browse(directory, "--json");
    EXPECT_THAT(json.out, HasSubstr("\"file\":\"missing\""));
    EXPECT_THAT(json.out, HasSubstr("\"missingFiles\":1"));
}

TEST_F(PgtoolBrowse, FindsFilesWithoutRegardToCaseAndBlanks) {
    MakeFile("img", "X1");
    for (const char* fileId : {"IMG\\X1", "IMG\\X1 ", "img \\ x1", "\\IMG\\X1"}) {
        DirectoryBuilder directory = OneImage();
        directory[kImage].Set(0x0004, 0x1500, "CS", fileId);
        EXPECT_THAT(Browse(directory).out, EndsWith(" 0 missing files\n")) << fileId;
    }
}

TEST_F(PgtoolBrowse, ADirectoryIsNoFile) {
    MakeFile("IMG/X1", "inside");
    EXPECT_THAT(Browse(OneImage()).out, EndsWith(" 1 missing file\n"));
}

TEST_F(PgtoolBrowse, ARecordWithoutAFileIdMissesNoFile) {
    DirectoryBuilder directory = OneImage();
    directory[kImage].Remove(0x0004, 0x1500);
    const Finished run = Browse(directory, "--json");
    EXPECT_THAT(run.out, HasSubstr("\"file\":\"none\""));
    EXPECT_THAT(run.out, HasSubstr("\"missingFiles\":0"));
    directory[kImage].Set(0x0004, 0x1500, "CS", "");
    EXPECT_THAT(Browse(directory, "--json").out, HasSubstr("\"file\":\"none\""));
}

TEST_F(PgtoolBrowse, ADirectoryMeansTheDicomdirInIt) {
    Browse(OneImage());
    const std::string path = std::filesystem::path(files_.Path("DICOMDIR")).parent_path().string();
    for (const std::string& directory : {path, path + "/"}) {
        const Finished run = Pgtool({"browse", directory});
        EXPECT_EQ(run.exitStatus, 0) << directory;
        EXPECT_THAT(run.out, StartsWith("Patient  4711")) << directory;
    }
}

TEST_F(PgtoolBrowse, FullPathsBeginWithTheDirectory) {
    const std::string out = Browse(OneImage(), "--json").out;
    std::string expected = files_.Path("IMG/X1");
    for (char& c : expected)
        c = c == '/' ? '\\' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    size_t at = 0;
    while ((at = expected.find('\\', at)) != std::string::npos) {
        expected.insert(at, "\\");
        at += 2;
    }
    EXPECT_THAT(out, HasSubstr("\"fullPath\":\"" + expected + "\""));
}

TEST_F(PgtoolBrowse, JsonIsWellFormedWhateverTheKeysHold) {
    DirectoryBuilder directory = OneImage();
    directory[0].Set(0x0010, 0x0020, "LO", "a\"b\\c\x01\t\x7F\xFF\xC3\xA9");
    EXPECT_THAT(Browse(directory, "--json").out,
                HasSubstr("\"patientId\":\"a\\\"b\\\\c\\u0001\\u0009\\u007f"
                          "\xC3\xBF\xC3\x83\xC2\xA9\","));
}

TEST_F(PgtoolBrowse, JsonKeepsUtf8AndRepairsIt) {
    const auto idOf = [&](const std::string& id) {
        DirectoryBuilder directory = OneImage();
        directory[0].Set(0x0008, 0x0005, "CS", "ISO_IR 192").Set(0x0010, 0x0020, "LO", id);
        const std::string out = Browse(directory, "--json").out;
        const size_t begin = out.find("patientId\":\"") + 12;
        return out.substr(begin, out.find('"', begin) - begin);
    };
    const std::string bad = "\xEF\xBF\xBD";
    EXPECT_EQ(idOf("\xC3\xA9|\xE7\x8E\x8B|\xF0\x9F\x98\x80"),
              "\xC3\xA9|\xE7\x8E\x8B|\xF0\x9F\x98\x80");
    EXPECT_EQ(idOf("a\x80|"), "a" + bad + "|");                         // no lead byte
    EXPECT_EQ(idOf("\xC3|\xC3"), bad + "|");                            // cut; the field, too
    EXPECT_EQ(idOf("\xC0\xAF|"), bad + bad + "|");                      // overlong
    EXPECT_EQ(idOf("\xED\xA0\x80|"), bad + bad + bad + "|");            // a surrogate
    EXPECT_EQ(idOf("\xF4\x90\x80\x80|"), bad + bad + bad + bad + "|");  // above U+10FFFF
}

// They could move the cursor of a terminal, or pretend lines.
TEST_F(PgtoolBrowse, TheTreeHasEscapesForControlCharacters) {
    DirectoryBuilder directory = OneImage();
    const std::string id =
        "a\x07[2J\nb\x9B"
        "c\xE9";
    directory[0].Set(0x0010, 0x0020, "LO", id);
    EXPECT_THAT(Browse(directory).out,
                StartsWith("Patient  a\\x07[2J\\nb\\x9bc\xC3\xA9  DOE^JOHN\n"));
    EXPECT_THAT(Browse(directory, "--raw").out, StartsWith("Patient  " + id + "  DOE^JOHN\n"));
}

// All but ISO_IR 192 was taken for ISO 8859-1.
TEST_F(PgtoolBrowse, TextsAreInTheCharacterSetOfTheirOwnRecord) {
    DirectoryBuilder directory = OneImage();
    directory[0].Set(0x0008, 0x0005, "CS", "ISO_IR 144").Set(0x0010, 0x0010, "PN", "\xBB\xEE");
    directory[2]
        .Set(0x0008, 0x0005, "CS", "\\ISO 2022 IR 87")
        .Set(0x0008, 0x103E, "LO", "\x1B$B;3ED\x1B(B");
    const std::string cyrillic = "\xD0\x9B\xD1\x8E";
    const std::string kanji = "\xE5\xB1\xB1\xE7\x94\xB0";
    const Finished tree = Browse(directory);
    EXPECT_THAT(tree.out, StartsWith("Patient  4711  " + cyrillic + "\n"));
    EXPECT_THAT(tree.out, HasSubstr("Series  CT  " + kanji + "  [1.2.3]\n"));
    const Finished json = Browse(directory, "--json");
    EXPECT_THAT(json.out, HasSubstr("\"patientsName\":\"" + cyrillic + "\""));
    EXPECT_THAT(json.out, HasSubstr("\"seriesDescription\":\"" + kanji + "\""));
}

// They were in upper case with backslashes, which opens nothing on most systems.
TEST_F(PgtoolBrowse, PathsInJsonOpen) {
    MakeFile("img", "x1");
    MakeFile("img", "X2");
    DirectoryBuilder directory = OneImage();
    directory.Image(2, "1.2.3.5", 8, "IMG\\X2");
    const std::string out = Browse(directory, "--json").out;
    std::vector<std::string> paths;
    const std::string key = "\"fullPath\":\"";
    for (size_t at = 0; (at = out.find(key, at)) != std::string::npos;) {
        at += key.size();
        paths.push_back(out.substr(at, out.find('"', at) - at));
        EXPECT_TRUE(std::filesystem::is_regular_file(paths.back())) << paths.back();
    }
    ASSERT_EQ(paths.size(), 2u);
    EXPECT_THAT(paths[1], EndsWith("/img/X2"));
}

TEST_F(PgtoolBrowse, ListsFiles) {
    MakeFile("img", "X1");
    MakeFile("IMG2", "X 2");
    DirectoryBuilder directory = OneImage();
    directory.Image(2, "1.2.3.5", 8, "IMG2\\X 2");
    const Finished run = Browse(directory, "--files");
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    const size_t lineEnd = run.out.find('\n');
    ASSERT_NE(lineEnd, std::string::npos);
    EXPECT_THAT(run.out.substr(0, lineEnd), EndsWith("/img/X1"));
    EXPECT_THAT(run.out.substr(lineEnd + 1), EndsWith("/IMG2/X 2\n"));
    EXPECT_TRUE(std::filesystem::is_regular_file(run.out.substr(0, lineEnd)));
}

TEST_F(PgtoolBrowse, FilesThatAreNotThereAreErrorsOfTheList) {
    DirectoryBuilder directory = OneImage();
    directory.Image(2, "1.2.3.5", 8, "..\\X2");
    const Finished run = Browse(directory, "--files");
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_EQ(run.err,
              "pgtool browse: missing: IMG\\X1\n"
              "pgtool browse: outside of the medium: ..\\X2\n");
}

// The first of two names that differ in case was taken, whichever that was.
TEST_F(PgtoolBrowse, AFileOfTheVeryNameComesBeforeOthers) {
    MakeFile("IMG", "X1");
    MakeFile("IMG", "x1");
    if (std::filesystem::exists(files_.Path("img"))) GTEST_SKIP() << "case does not matter here";
    EXPECT_THAT(Browse(OneImage(), "--files").out, EndsWith("/IMG/X1\n"));
}

TEST_F(PgtoolBrowse, FilesThatAreNoDicomdirFail) {
    const Finished image = Pgtool({"browse", TestData("native/mr_implicit_le.dcm"), "--json"});
    EXPECT_EQ(image.exitStatus, 1);
    EXPECT_THAT(image.out, IsEmpty());
    EXPECT_THAT(image.err, HasSubstr("is not a DICOMDIR"));
    const Finished missing = Pgtool({"browse", files_.Path("nothing")});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_THAT(missing.out, IsEmpty());
    EXPECT_THAT(missing.err, HasSubstr("cannot open"));
    std::filesystem::create_directory(files_.Path("empty"));
    EXPECT_EQ(Pgtool({"browse", files_.Path("empty")}).exitStatus, 1);
}

TEST_F(PgtoolBrowse, WrongCommandLinesAreMisuse) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"browse"},
                                               {"browse", "a", "b"},
                                               {"browse", "a", "--xml"},
                                               {"browse", "a", "--json", "--files"},
                                               {"browse", "a", "--json", "--raw"},
                                               {"browse", "a", "--utf8", "--raw"},
                                               {"browse", "a", "--json=1"}}) {
        const Finished run = Pgtool(arguments);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_THAT(run.err, HasSubstr("usage: pgtool browse"));
    }
}

TEST_F(PgtoolBrowse, ReadsARealDirectory) {
    const Finished run = Pgtool({"browse", TestData("dicomdir/DICOMDIR_implicit")});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.out, StartsWith("Patient  77654033  Doe^Archibald\n"));
    EXPECT_THAT(run.out, EndsWith("\n2 patients, 6 studies, 13 series, 31 instances, "
                                  "31 missing files\n"));
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2 + 6 + 13 + 31 + 1);
}

}  // namespace
