#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/instance_file.h"
#include "support/temp_dir.h"
#include "tools/run_pgtool.h"

namespace {

using namespace pgkit_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class PgtoolScan : public testing::Test {
  protected:
    PgtoolScan() { std::filesystem::create_directories(files_.Path("in/sub")); }

    std::string In() const { return files_.Path("in"); }
    std::string Write(const std::string& name, const InstanceFile& file) {
        return files_.Write("in/" + name, file.Data());
    }
    Finished Scan(std::vector<std::string> options) {
        options.insert(options.begin(), {"scan", In()});
        return Pgtool(options);
    }

    TempDir files_;
};

TEST_F(PgtoolScan, PrintsARowForEachDataSetInTheOrderOfTheWalk) {
    Write("b", Instance(2).Patient("ID2", "DOE^JANE"));
    Write("a", Instance(1).Patient("ID1", "DOE^JOHN"));
    Write("sub/c", Instance(3).Patient("ID3", "X"));
    files_.Write("in/sub.txt", "neither data set nor reason to fail");
    const Finished run = Scan({"--tags", "PatientID,0010,0010"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.out, "path,PatientID,PatientName\n" + In() + "/a,ID1,DOE^JOHN\n" + In() +
                           "/b,ID2,DOE^JANE\n" + In() + "/sub/c,ID3,X\n");
    EXPECT_EQ(run.err, "pgtool scan: 3 data sets, 1 other files\n");
}

TEST_F(PgtoolScan, TheOrderIsTheSameForEveryNumberOfThreads) {
    for (int i = 0; i < 200; ++i)
        Write("f" + std::to_string(i), Instance(i));
    const std::string one = Scan({"-j", "1"}).out;
    EXPECT_EQ(std::count(one.begin(), one.end(), '\n'), 201);
    EXPECT_EQ(Scan({"-j", "2"}).out, one);
    EXPECT_EQ(Scan({"--jobs=16"}).out, one);
    EXPECT_EQ(Scan({}).out, one);
}

TEST_F(PgtoolScan, CsvQuotesAndEscapes) {
    Write("a", Instance(1).Patient("a,\"b\"", "X\x01[2J\nY"));
    EXPECT_EQ(Scan({"--tags", "PatientID,PatientName"}).out,
              "path,PatientID,PatientName\n" + In() + "/a,\"a,\"\"b\"\"\",X\\x01[2J\\nY\n");
}

TEST_F(PgtoolScan, JsonLinesHaveTheElementsThatAreThere) {
    Write("a", Instance(1).Patient("a\"\n", "\xE9").Set(0x0008, 0x0005, "CS", "ISO_IR 100"));
    std::string folder = In();  // on Windows with backslashes, which JSON escapes
    for (size_t at = folder.find('\\'); at != std::string::npos; at = folder.find('\\', at + 2))
        folder.insert(at, 1, '\\');
    EXPECT_EQ(Scan({"--format", "jsonl", "--tags", "PatientID,PatientName,BodyPartExamined"}).out,
              "{\"path\":\"" + folder +
                  "/a\",\"PatientID\":\"a\\\"\\u000a\",\"PatientName\":\"\xC3\xA9\"}\n");
}

TEST_F(PgtoolScan, TablesAreAligned) {
    Write("a", Instance(1).Patient("1", "X\xC3\xA9").Set(0x0008, 0x0005, "CS", "ISO_IR 192"));
    Write("b", Instance(2).Patient("22", "LONGER"));
    const std::string gap(In().size() - 2, ' ');
    EXPECT_EQ(Scan({"--format", "table", "--tags", "PatientName,PatientID"}).out,
              "path" + gap + "  PatientName  PatientID\n" + In() + "/a  X\xC3\xA9           1\n" +
                  In() + "/b  LONGER       22\n");
}

TEST_F(PgtoolScan, ColumnsMayBePathsAndSeveralValuesAreJoined) {
    const std::string file = TestData("sequences/sr_nested_be_defined.dcm");
    const Finished run =
        Pgtool({"scan", file, TestData("native/mr_implicit_le.dcm"), "--tags", "ImageType", "-t",
                "ConceptNameCodeSequence[0].CodeMeaning", "-t", "ContentSequence"});
    EXPECT_THAT(run.out, StartsWith("path,ImageType,ConceptNameCodeSequence[0].CodeMeaning,"
                                    "ContentSequence\n"));
    EXPECT_THAT(run.out, HasSubstr(" items\n"));
    EXPECT_THAT(run.out, EndsWith(",DERIVED\\SECONDARY\\OTHER,,\n"));
}

// More files than are read at a time.
TEST_F(PgtoolScan, ThousandsOfFilesAreRowsOfOneTable) {
    const Bytes image = Instance(1).Data();
    const std::string first = files_.Write("in/0", image);
    std::string list;
    for (int i = 0; i < 5000; ++i)
        list += first + "\n";
    const Finished run =
        Pgtool({"scan", "--files-from", files_.Write("list", list), "--tags", "Modality"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 5001);
}

TEST_F(PgtoolScan, MissingDirectoriesFailAndTheOthersAreScanned) {
    Write("a", Instance(1));
    const Finished run = Scan({files_.Path("no"), "--tags", "Modality"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "pgtool scan: cannot open " + files_.Path("no") + ": no such file\n");
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2);
}

TEST_F(PgtoolScan, WrongCommandLinesAreMisuse) {
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{"--tags", "NoSuchName"},
                                               {"--tags", ""},
                                               {"--format", "xml"},
                                               {"-j", "257"},
                                               {"-j", "many"},
                                               {"--raw", "--utf8"}}) {
        const Finished run = Scan(options);
        EXPECT_EQ(run.exitStatus, 2) << options[0];
        EXPECT_THAT(run.out, IsEmpty());
        EXPECT_THAT(run.err, HasSubstr("usage: pgtool scan"));
    }
    EXPECT_EQ(Pgtool({"scan"}).exitStatus, 2);
}

}  // namespace
