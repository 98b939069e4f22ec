// Opening by name and by stream, and the quick test for Part 10 files.
#include <gtest/gtest.h>
#include <pgkit/pgkit.h>

#include <cstdio>

#include "support/captured.h"
#include "support/tree.h"

namespace {

using pgkit_test::CapturePrinted;
using pgkit_test::DataSet;
using pgkit_test::Describe;
using pgkit_test::Printed;
using pgkit_test::StreamBuilder;
using pgkit_test::TempDir;

StreamBuilder SmallFile() {
    StreamBuilder stream;
    stream.Part10("1.2.840.10008.1.2.1").Element(0x0008, 0x0060, "CS", "CT");
    return stream;
}

TEST(Open, MissingFileGivesNullAndPrintsNothing) {
    TempDir directory;
    const std::string path = directory.Path("missing");
    PGX_Node* root = nullptr;
    const Printed printed = CapturePrinted([&] { root = pgOpenDataSetFile(path.c_str(), 64); });
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(Open, NullPathDirectoryAndNullStreamGiveNull) {
    TempDir directory;
    EXPECT_EQ(pgOpenDataSetFile(nullptr, 64), nullptr);
    EXPECT_EQ(pgOpenDataSetFileEx(directory.Path("").c_str(), 64, 0), nullptr);
    EXPECT_EQ(pgOpenDataSetFileHandle(nullptr, 64), nullptr);
    EXPECT_EQ(pgOpenDataSetFileHandleEx(nullptr, 64, 0), nullptr);
}

TEST(Open, NothingIsPrintedAboutAFileThatIsNotDicom) {
    TempDir directory;
    const std::string path = directory.Write("text", std::string_view("hello"));
    PGX_Node* root = nullptr;
    const Printed printed = CapturePrinted([&] { root = pgOpenDataSetFile(path.c_str(), 64); });
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(Open, ClosedDataSetLetsGoOfItsFile) {
    TempDir directory;
    const std::string path = directory.Write("file", SmallFile().Data());
    pgCloseDataSet(pgOpenDataSetFile(path.c_str(), 64));
    // Windows refuses to remove a file that is open.
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, RefusedFileIsNotKeptOpen) {
    TempDir directory;
    const std::string path = directory.Write("file", std::string_view("abc"));
    EXPECT_EQ(pgOpenDataSetFile(path.c_str(), 64), nullptr);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamBelongsToTheTree) {
    TempDir directory;
    const std::string path = directory.Write("file", SmallFile().Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    ASSERT_NE(stream, nullptr);

    PGX_Node* root = pgOpenDataSetFileHandle(stream, 64);

    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->file, stream);
    EXPECT_EQ(Describe(root), "[(0002,0010)UI:20 (0008,0060)CS:2]");
    pgCloseDataSet(root);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamIsClosedWhenItIsRefused) {
    TempDir directory;
    const std::string path = directory.Write("file", std::string_view("abc"));
    EXPECT_EQ(pgOpenDataSetFileHandle(std::fopen(path.c_str(), "rb"), 64), nullptr);
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(Open, StreamIsLeftWhereTheParseEnded) {
    TempDir directory;
    StreamBuilder content = SmallFile();
    const uint32_t end = content.Size();
    content.U16(0xFFFE).U16(0xE00D).U32(0).Text("something else");
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(std::ftell(stream), static_cast<long>(end + 8));
}

TEST(Open, PreambleIsLookedForFromTheStreamsPosition) {
    TempDir directory;
    StreamBuilder content;
    content.Text("0123").Append(SmallFile().Data());
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    std::fseek(stream, 4, SEEK_SET);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0002,0010)UI:20 (0008,0060)CS:2]");
}

TEST(Open, DataSetWithoutPreambleIsLookedForAtTheBeginning) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0008, 0x0060, "CS", "CT");
    const std::string path = directory.Write("file", content.Data());
    FILE* stream = std::fopen(path.c_str(), "rb");
    std::fseek(stream, 3, SEEK_SET);
    const DataSet root(pgOpenDataSetFileHandle(stream, 64));
    EXPECT_EQ(Describe(root.get()), "[(0008,0060)CS:2]");
}

TEST(Open, HandleFormsTakeFlags) {
    TempDir directory;
    StreamBuilder content;
    content.Element(0x0010, 0x0010, "PN", "AB");
    const std::string path = directory.Write("file", content.Data());
    const DataSet root(pgOpenDataSetFileHandleEx(std::fopen(path.c_str(), "rb"), 64, 0x08));
    EXPECT_EQ(root->syntaxFlags, 0x28u);
}

TEST(IsDicomFile, LooksForThePrefixOnly) {
    TempDir directory;
    EXPECT_EQ(pgIsDicomFile(directory.Write("a", SmallFile().Data()).c_str()), 1);
    EXPECT_EQ(pgIsDicomFile(directory.Write("b", StreamBuilder().Preamble().Data()).c_str()), 1);
    EXPECT_EQ(
        pgIsDicomFile(directory.Write("c", StreamBuilder().Zeros(128).Text("DICX").Data()).c_str()),
        0);
}

TEST(IsDicomFile, ShortFileIsNone) {
    TempDir directory;
    const Printed printed = CapturePrinted([&] {
        EXPECT_EQ(pgIsDicomFile(directory.Write("a", std::string_view("")).c_str()), 0);
        EXPECT_EQ(pgIsDicomFile(
                      directory.Write("b", StreamBuilder().Zeros(128).Text("DIC").Data()).c_str()),
                  0);
    });
    EXPECT_EQ(printed.out + printed.err, "");
}

TEST(IsDicomFile, MetaGroupWithoutPreambleIsNone) {
    TempDir directory;
    StreamBuilder stream;
    stream.ElementUL(0x0002, 0x0000, 0).Zeros(200);
    EXPECT_EQ(pgIsDicomFile(directory.Write("a", stream.Data()).c_str()), 0);
}

TEST(IsDicomFile, FileThatCannotBeOpenedIsReported) {
    TempDir directory;
    const std::string path = directory.Path("missing");
    int32_t result = 1;
    const Printed printed = CapturePrinted([&] { result = pgIsDicomFile(path.c_str()); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed.err, "pgIsDicomFile : unable to open " + path + "\n");
    EXPECT_EQ(printed.out, "");
}

}  // namespace
